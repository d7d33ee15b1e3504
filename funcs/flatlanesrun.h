/* funcs/flatlanesrun.h - the run of flat code on points side by side; included once for each processor,
 * inside a namespace of its own. No include guard. Owns:    the loops over lanes. Callers: flatlanes.cpp.
 * Never: rounds otherwise than one point alone: every processor gives the same bits. */

// Results are collected apart, so that the loops need not ask whether they lie over their operands.
template <class Op> inline void apply(flatlane* r, const flatop& o, Op op) {
    const double *a = r[o.a].x, *b = r[o.b].x;
    flatlane d;
    for (int i = 0; i < FLATLANES; i++) d.x[i] = op(a[i], b[i]);
    r[o.dst] = d;
}

inline bool finite(const flatlane& lane) {
    int64_t bad = 0;
    for (int i = 0; i < FLATLANES; i++) bad |= fpfinite(lane.x[i]) ? 0 : 1;
    return bad == 0;
}

// What costs much is done for the lanes in use alone; the others repeat the first.
template <class Op> inline bool compute(flatlane& d, int used, Op op) {
    for (int i = 0; i < used; i++) d.x[i] = op(i);
    for (int i = used; i < FLATLANES; i++) d.x[i] = d.x[0];
    return finite(d);
}

inline bool power(flatlane* r, const flatop& o, int used) {
    const flatlane a = r[o.a], b = r[o.b];
    bool domain = false;
    const bool good = compute(r[o.dst], used, [&](int i) {
        domain |= a.x[i] == 0 && b.x[i] == 0;
        return b.x[i] == 2 ? a.x[i] * a.x[i] : std::pow(a.x[i], b.x[i]);
    });
    return good && !domain;
}

inline bool call1(const flatunit& unit, flatlane* r, const flatop& o, int used) {
    const flatlane a = r[o.a];
    flatlane& d = r[o.dst];
    const columnroutine whole = unit.columns[o.b];
    if (whole) whole(a.x, d.x, size_t(used));
    return compute(d, used, [&](int i) { return whole ? d.x[i] : unit.rows[o.b]->f1(a.x[i]); });
}

inline bool call2(const flatunit& unit, flatlane* r, const flatop& o, const flatop& data, int used) {
    const flatlane a = r[o.a], b = r[o.b];
    return compute(r[o.dst], used, [&](int i) { return unit.rows[data.dst]->f2(a.x[i], b.x[i]); });
}

inline bool calln(const flatunit& unit, flatlane* r, const flatop& o, const flatop* data, int used) {
    constexpr int most = 32;
    if (o.b > most) return false;
    return compute(r[o.dst], used, [&](int i) {
        double x[most];
        for (int k = 0; k < o.b; k++)
            x[k] = r[k % 3 == 0 ? data[k / 3].dst : k % 3 == 1 ? data[k / 3].a : data[k / 3].b].x[i];
        return scalarrowcall(*unit.rows[o.a], x, o.b);
    });
}

inline bool element(const flatunit& unit, flatlane* r, const flatop& o, const flatop& data, int used) {
    const harray* m = unit.matrices[data.dst].m;
    const flatlane a = r[o.a], b = r[o.b];
    const double rowend = m->rows + 1.0, colend = m->cols + 1.0;
    bool inside = true;
    for (int i = 0; i < used; i++) inside &= a.x[i] >= 1 && a.x[i] < rowend && b.x[i] >= 1 && b.x[i] < colend;
    return inside && compute(r[o.dst], used, [&](int i) { return at(m, size_t(a.x[i]), size_t(b.x[i])); });
}

// Lanes in use that hold to a condition.
template <class Condition> inline int holding(const flatlane* r, const flatop& o, int used, Condition holds) {
    int count = 0;
    for (int i = 0; i < used; i++) count += holds(r[o.a].x[i], r[o.b].x[i]);
    return count;
}

flatresult run(const flatunit& unit, flatlane* r, int used) {
    const flatop* const code = unit.routines[0].code.data();
    const auto fill = [](flatlane& d, double x) {
        for (double& lane : d.x) lane = x;
    };
    for (const flatop* at = code;;) {
        const flatop& o = *at++;
        bool good = true;
        int stay = used; // lanes that do not jump
        switch (o.op) {
        case FLATMOVE: r[o.dst] = r[o.a]; continue;
        case FLATADD: apply(r, o, [](double x, double y) { return x + y; }); continue;
        case FLATADDCHECK:
            apply(r, o, [](double x, double y) { return x + y; });
            good = finite(r[o.dst]);
            break;
        case FLATSUB: apply(r, o, [](double x, double y) { return x - y; }); continue;
        case FLATSUBCHECK:
            apply(r, o, [](double x, double y) { return x - y; });
            good = finite(r[o.dst]);
            break;
        case FLATMUL: apply(r, o, [](double x, double y) { return x * y; }); continue;
        case FLATMULCHECK:
            apply(r, o, [](double x, double y) { return x * y; });
            good = finite(r[o.dst]);
            break;
        case FLATDIV: apply(r, o, [](double x, double y) { return x / y; }); continue;
        case FLATDIVCHECK:
            apply(r, o, [](double x, double y) { return x / y; });
            good = finite(r[o.dst]);
            break;
        case FLATCHECK: good = finite(r[o.a]); break;
        case FLATPOW: good = power(r, o, used); break;
        case FLATNEG: apply(r, {o.op, o.dst, o.a, o.a}, [](double x, double) { return -x; }); continue;
        case FLATEQ: apply(r, o, [](double x, double y) -> double { return x == y; }); continue;
        case FLATLT: apply(r, o, [](double x, double y) -> double { return x < y; }); continue;
        case FLATLE: apply(r, o, [](double x, double y) -> double { return x <= y; }); continue;
        case FLATAND: apply(r, o, [](double x, double y) -> double { return x != 0 && y != 0; }); continue;
        case FLATOR: apply(r, o, [](double x, double y) -> double { return x != 0 || y != 0; }); continue;
        case FLATNOT:
            apply(r, {o.op, o.dst, o.a, o.a}, [](double x, double) -> double { return x == 0; });
            continue;
        case FLATJUMP: stay = 0; break;
        case FLATJUMPNOT:
            stay = holding(r, {o.op, o.dst, o.a, o.a}, used, [](double x, double) { return x != 0; });
            break;
        case FLATJUMPNE: stay = holding(r, o, used, [](double x, double y) { return x == y; }); break;
        case FLATJUMPNLT: stay = holding(r, o, used, [](double x, double y) { return x < y; }); break;
        case FLATJUMPNLE: stay = holding(r, o, used, [](double x, double y) { return x <= y; }); break;
        case FLATCALL1: good = call1(unit, r, o, used); break;
        case FLATCALL2: good = call2(unit, r, o, *at++, used); break;
        case FLATCALLN:
            good = calln(unit, r, o, at, used);
            at += (o.b + 2) / 3;
            break;
        case FLATELEM: good = element(unit, r, o, *at++, used); break;
        case FLATROWS: fill(r[o.dst], unit.matrices[o.a].m->rows); continue;
        case FLATCOLS: fill(r[o.dst], unit.matrices[o.a].m->cols); continue;
        case FLATSTORE: continue; // of several values no function keeps one
        case FLATEND: return FLATDONE;
        default: return FLATGIVENUP; // nothing else is in code that is run so
        }
        if (!good || (stay > 0 && stay < used)) return FLATGIVENUP;
        if (stay == 0) at = code + o.dst;
    }
}

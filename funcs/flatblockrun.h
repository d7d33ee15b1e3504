/* funcs/flatblockrun.h - the run of flat code on a block of rows; included once for each processor, inside a
 * namespace of its own. No include guard. Owns:    the loops over rows. Callers: flatblock.cpp. Never:   adds
 * or multiplies in another order than one row alone: every processor gives the same bits. */

// An operand: a column of the block, or one number for all rows.
struct column {
    const double* x;
    bool varies;
};

struct blockrun {
    const flatunit& unit;
    const flatroutine& routine;
    const uint8_t* vary;
    double* frame;
    double* block;
    uint16_t* order; // the row that stands in each place
    int first, n;    // places in use
    bool parted;     // by a branch: rows may stand in other places than their own

    double* rowsof(int r) const { return block + size_t(r) * FLATBLOCK + first; }
    column operand(int r) const { return vary[r] ? column{rowsof(r), true} : column{frame + r, false}; }
    // Where a result goes, and how many rows it has.
    double* result(int r) const { return vary[r] ? rowsof(r) : frame + r; }
    int rows(int r) const { return vary[r] ? n : 1; }
    int lastplace() const {
        return parted ? int(std::max_element(order + first, order + first + n) - order) - first : n - 1;
    }
    int lastrow() const { return order[first + lastplace()]; }

    flatresult execute(int from, int to);
    flatresult branch(int pc, int target, const uint8_t* holds, int count);
};

template <class Op> void apply(const blockrun& run, const flatop& o, Op op) {
    const column a = run.operand(o.a), b = run.operand(o.b);
    double* __restrict d = run.result(o.dst);
    const int n = run.rows(o.dst);
    if (a.varies && b.varies) {
        for (int i = 0; i < n; i++) d[i] = op(a.x[i], b.x[i]);
    } else if (a.varies) {
        const double y = *b.x;
        for (int i = 0; i < n; i++) d[i] = op(a.x[i], y);
    } else if (b.varies) {
        const double x = *a.x;
        for (int i = 0; i < n; i++) d[i] = op(x, b.x[i]);
    } else {
        const double z = op(*a.x, *b.x);
        for (int i = 0; i < n; i++) d[i] = z;
    }
}

template <class Op> void apply1(const blockrun& run, const flatop& o, Op op) {
    const column a = run.operand(o.a);
    double* d = run.result(o.dst);
    const int n = run.rows(o.dst);
    for (int i = 0; i < n; i++) d[i] = op(a.x[a.varies ? i : 0]);
}

bool finite(const double* x, int n) {
    int64_t bad = 0;
    for (int i = 0; i < n; i++) bad |= fpfinite(x[i]) ? 0 : 1;
    return bad == 0;
}
bool finite(const blockrun& run, int r) { return finite(run.result(r), run.rows(r)); }

bool power(const blockrun& run, const flatop& o) {
    const column a = run.operand(o.a), b = run.operand(o.b);
    double* d = run.result(o.dst);
    const int n = run.rows(o.dst);
    bool domain = false;
    for (int i = 0; i < n; i++) {
        const double x = a.x[a.varies ? i : 0], y = b.x[b.varies ? i : 0];
        d[i] = y == 2 ? x * x : std::pow(x, y);
        domain |= x == 0 && y == 0;
    }
    return !domain && finite(d, n);
}

bool call1(const blockrun& run, const flatop& o) {
    const scalarrow& row = *run.unit.rows[o.b];
    const columnroutine whole = run.unit.columns[o.b];
    if (whole && run.vary[o.a])
        whole(run.rowsof(o.a), run.rowsof(o.dst), size_t(run.n));
    else
        apply1(run, o, row.f1);
    return finite(run, o.dst);
}

bool call2(const blockrun& run, const flatop& o, const flatop& data) {
    double (*const f)(double, double) = run.unit.rows[data.dst]->f2;
    const column a = run.operand(o.a), b = run.operand(o.b);
    double* d = run.result(o.dst);
    const int n = run.rows(o.dst);
    for (int i = 0; i < n; i++) d[i] = f(a.x[a.varies ? i : 0], b.x[b.varies ? i : 0]);
    return finite(d, n);
}

bool calln(const blockrun& run, const flatop& o, const flatop* data) {
    constexpr int most = 32;
    if (o.b > most) return false;
    column arg[most];
    for (int k = 0; k < o.b; k++)
        arg[k] = run.operand(k % 3 == 0 ? data[k / 3].dst : k % 3 == 1 ? data[k / 3].a : data[k / 3].b);
    const scalarrow& row = *run.unit.rows[o.a];
    double* d = run.result(o.dst);
    const int n = run.rows(o.dst);
    double x[most];
    for (int i = 0; i < n; i++) {
        for (int k = 0; k < o.b; k++) x[k] = arg[k].x[arg[k].varies ? i : 0];
        d[i] = scalarrowcall(row, x, o.b);
    }
    return finite(d, n);
}

bool element(const blockrun& run, const flatop& o, const flatop& data) {
    const harray* m = run.unit.matrices[data.dst].m;
    const column a = run.operand(o.a), b = run.operand(o.b);
    const double rowend = m->rows + 1.0, colend = m->cols + 1.0;
    double* d = run.result(o.dst);
    const int n = run.rows(o.dst);
    for (int i = 0; i < n; i++) {
        const double row = a.x[a.varies ? i : 0], col = b.x[b.varies ? i : 0];
        if (!(row >= 1 && row < rowend && col >= 1 && col < colend)) return false;
        d[i] = at(m, size_t(row), size_t(col));
    }
    return true;
}

void move(const blockrun& run, const flatop& o) {
    apply1(run, o, [](double x) { return x; });
}

// Which rows hold to the condition of a jump; the number of them. Without rows that differ: 0 or all.
template <class Condition>
int holding(const blockrun& run, const flatop& o, uint8_t* holds, Condition condition) {
    const column a = run.operand(o.a), b = run.operand(o.b);
    if (!a.varies && !b.varies) return condition(*a.x, *b.x) ? run.n : 0;
    int count = 0;
    for (int i = 0; i < run.n; i++) {
        holds[i] = condition(a.x[a.varies ? i : 0], b.x[b.varies ? i : 0]);
        count += holds[i];
    }
    return count;
}

// A function keeps the value of the last row in which it is called; a branch may have left out that row.
void store(const blockrun& run, const flatop& o) {
    const std::vector<int16_t>& stored = run.unit.stored;
    int& row = run.unit.storedrow[size_t(std::find(stored.begin(), stored.end(), o.dst) - stored.begin())];
    if (run.lastrow() < row) return;
    row = run.lastrow();
    const column a = run.operand(o.a);
    sym(o.dst).val.rval = a.x[a.varies ? run.lastplace() : 0];
}

// Rows that hold come first; each kind keeps its order.
template <class T> void sortrows(T* x, const uint8_t* holds, int n) {
    T rest[FLATBLOCK];
    int kept = 0, left = 0;
    for (int i = 0; i < n; i++) {
        if (holds[i])
            x[kept++] = x[i];
        else
            rest[left++] = x[i];
    }
    std::copy_n(rest, left, x + kept);
}

/* The jump before pc parts the rows: `count` of them go on to the word before target, which jumps to where
 * the branches meet, the others from target to there. */
flatresult blockrun::branch(int pc, int target, const uint8_t* holds, int count) {
    for (size_t r = 0; r < routine.lastuse.size(); r++)
        if (vary[r] && routine.firstset[r] < pc && routine.lastuse[r] >= pc)
            sortrows(rowsof(int(r)), holds, n);
    sortrows(order + first, holds, n);
    parted = true;
    blockrun yes = *this, no = *this;
    yes.n = count;
    no.first += count;
    no.n -= count;
    const flatresult result = yes.execute(pc, target - 1);
    return result != FLATDONE ? result : no.execute(target, routine.code[size_t(target) - 1].dst);
}

[[gnu::flatten]] flatresult blockrun::execute(int from, int to) {
    const blockrun& run = *this;
    const flatop* const code = routine.code.data();
    const auto add = [](double x, double y) { return x + y; };
    const auto subtract = [](double x, double y) { return x - y; };
    const auto multiply = [](double x, double y) { return x * y; };
    const auto divide = [](double x, double y) { return x / y; };
    uint8_t holds[FLATBLOCK];
    for (int pc = from; pc < to;) {
        const flatop& o = code[pc++];
        int follow = n; // rows that do not jump
        bool good = true;
        switch (o.op) {
        case FLATMOVE: move(run, o); break;
        case FLATADD: apply(run, o, add); break;
        case FLATADDCHECK: apply(run, o, add), good = finite(run, o.dst); break;
        case FLATSUB: apply(run, o, subtract); break;
        case FLATSUBCHECK: apply(run, o, subtract), good = finite(run, o.dst); break;
        case FLATMUL: apply(run, o, multiply); break;
        case FLATMULCHECK: apply(run, o, multiply), good = finite(run, o.dst); break;
        case FLATDIV: apply(run, o, divide); break;
        case FLATDIVCHECK: apply(run, o, divide), good = finite(run, o.dst); break;
        case FLATPOW: good = power(run, o); break;
        case FLATNEG: apply1(run, o, [](double x) { return -x; }); break;
        case FLATEQ: apply(run, o, [](double x, double y) -> double { return x == y; }); break;
        case FLATLT: apply(run, o, [](double x, double y) -> double { return x < y; }); break;
        case FLATLE: apply(run, o, [](double x, double y) -> double { return x <= y; }); break;
        case FLATAND: apply(run, o, [](double x, double y) -> double { return x != 0 && y != 0; }); break;
        case FLATOR: apply(run, o, [](double x, double y) -> double { return x != 0 || y != 0; }); break;
        case FLATNOT: apply1(run, o, [](double x) -> double { return x == 0; }); break;
        case FLATJUMP: follow = 0; break;
        case FLATJUMPNOT:
            follow = holding(run, {o.op, o.dst, o.a, o.a}, holds, [](double x, double) { return x != 0; });
            break;
        case FLATJUMPNE: follow = holding(run, o, holds, [](double x, double y) { return x == y; }); break;
        case FLATJUMPNLT: follow = holding(run, o, holds, [](double x, double y) { return x < y; }); break;
        case FLATJUMPNLE: follow = holding(run, o, holds, [](double x, double y) { return x <= y; }); break;
        case FLATCALL1: good = call1(run, o); break;
        case FLATCALL2: good = call2(run, o, code[pc++]); break;
        case FLATCALLN:
            good = calln(run, o, code + pc);
            pc += (o.b + 2) / 3;
            break;
        case FLATELEM: good = element(run, o, code[pc++]); break;
        case FLATROWS: *run.result(o.dst) = unit.matrices[o.a].m->rows; break;
        case FLATCOLS: *run.result(o.dst) = unit.matrices[o.a].m->cols; break;
        case FLATSTORE: store(run, o); break;
        default: return FLATGIVENUP; // nothing else is in code that is run so
        }
        if (!good) return FLATGIVENUP;
        if (follow == n) continue;
        if (follow > 0 && branch(pc, o.dst, holds, follow) != FLATDONE) return FLATGIVENUP;
        pc = follow == 0 ? o.dst : code[o.dst - 1].dst;
    }
    return FLATDONE;
}

flatresult run(const flatunit& unit, const flatroutine& routine, int from, int to, const uint8_t* vary,
               double* frame, double* block, uint16_t* order, int n) {
    for (int i = 0; i < n; i++) order[i] = uint16_t(i);
    std::fill(unit.storedrow.begin(), unit.storedrow.end(), -1);
    return blockrun{unit, routine, vary, frame, block, order, 0, n, false}.execute(from, to);
}

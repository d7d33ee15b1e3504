// Flat code, one point at a time: the loop over instructions.
#include "funcs/flatimpl.h"

#include "funcs/operators.h"
#include "funcs/rootint.h"
#include "interp/base/hooks.h"
#include "interp/base/report.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>
#include <cstring>

flatmachine flat;

namespace {

struct givenup {}; // thrown through the methods of ROOT and INTEGRAL

constexpr double FEWROUNDS = 8; // not worth a block
constexpr int MOSTARGS = 256;   // of a builtin that takes any number

// Word k of the data behind an instruction holds three registers.
inline uint16_t dataword(const flatop* data, int k) {
    const flatop& d = data[k / 3];
    return k % 3 == 0 ? d.dst : k % 3 == 1 ? d.a : d.b;
}

struct execution {
    flatunit& unit;
    const flatroutine* routine;
    double* frame;
    const flatop* pc;
    flatcells cells;
    const size_t base = flat.calls.size();

    bool run();
    bool calln(const flatop& o);
    bool element(const flatop& o);
    bool number(const flatop& o);
    bool user(const flatop& o);
    bool leave(const flatop& o);
    bool loop(const flatop& o);
    bool next(const flatop& o);
    bool segment(const flatop& o);
};

bool pollbreak() {
    if ((++flat.rounds & 0xFFFF) == 0 && console.breakpending()) throw recoveryjump{6};
    return true;
}

bool execution::calln(const flatop& o) {
    if (o.b > MOSTARGS) return false;
    double x[MOSTARGS];
    for (int k = 0; k < o.b; k++) x[k] = frame[dataword(pc, k)];
    pc += (o.b + 2) / 3;
    return fpfinite(frame[o.dst] = scalarrowcall(*unit.rows[o.a], x, o.b));
}

bool execution::element(const flatop& o) {
    const harray* m = unit.matrices[pc++->dst].m;
    const double row = frame[o.a], col = frame[o.b];
    if (!(row >= 1 && row < m->rows + 1.0 && col >= 1 && col < m->cols + 1.0)) return false;
    frame[o.dst] = at(m, size_t(row), size_t(col));
    return true;
}

// The stacks as they were, also when the builtin refuses.
struct stacksbefore {
    const int pol = parser.poltop, scalar = parser.scalartop;
    ~stacksbefore() {
        parser.poltop = pol;
        parser.scalartop = scalar;
    }
};

bool execution::number(const flatop& o) {
    const flatnumbercall& call = routine->numbercalls[o.a];
    const stacksbefore before;
    polpush(call.callee);
    for (int arg : call.arg) {
        if (arg >= 0)
            polpush(scalarpush(frame[arg]));
        else if (const int m = unit.matrices[size_t(-1 - arg)].symbol; m > 0)
            polpush(m);
        else
            return false;
    }
    frame[o.dst] = call.row->call({before.pol + 1, int(call.arg.size()), sym(call.callee).type});
    return fpfinite(frame[o.dst]);
}

bool execution::user(const flatop& o) {
    const flatroutine& callee = unit.routines[o.a];
    const flatcells inside{cells.pol + pc->dst, cells.scalar + pc->a};
    pc++;
    double* inner = frame + routine->nregs;
    if (inside.pol + callee.polcells >= POLSTACKSIZE ||
        inside.scalar + callee.scalarcells > SCALARSTACKSIZE + 1 ||
        inner + callee.nregs > flat.stack.data() + flat.stack.size())
        return false;
    const size_t image = callee.image.size();
    for (size_t k = 0; k < image; k++) inner[k] = callee.image[k];
    double* arg = inner + image;
    for (int k = 0; k < o.b; k++) arg[k] = frame[dataword(pc, k)];
    pc += (o.b + 2) / 3;
    flat.calls.push_back({pc, routine, frame, cells, o.dst});
    routine = &callee;
    frame = inner;
    cells = inside;
    pc = callee.code.data();
    return true;
}

bool execution::leave(const flatop& o) {
    const double x = frame[o.a];
    sym(o.dst).val.rval = x;
    const flatcall& back = flat.calls.back();
    pc = back.pc;
    routine = back.routine;
    frame = back.frame;
    cells = back.cells;
    frame[back.dst] = x;
    flat.calls.pop_back();
    return true;
}

bool execution::loop(const flatop& o) {
    const flatloop& l = routine->loops[o.dst];
    const double low = frame[o.a], high = frame[l.high];
    if (low + 1 == low || high - 1 == high) return false;
    frame[l.dummy] = low;
    if (!(low <= high)) {
        pc = routine->code.data() + l.end;
        return true;
    }
    if (!l.blocks || high - low < FEWROUNDS) return true;
    pc = routine->code.data() + l.end;
    return flatloopblocks(unit, *routine, l, frame, low) == FLATDONE;
}

bool execution::next(const flatop& o) {
    const flatloop& l = routine->loops[o.dst];
    double& sum = frame[l.accumulator];
    sum = l.product ? sum * frame[l.term] : sum + frame[l.term];
    const double x = frame[l.dummy] += 1.0;
    if (!(x <= frame[l.high])) return true;
    pollbreak();
    pc = routine->code.data() + l.body;
    return true;
}

bool execution::segment(const flatop& o) {
    const flatsegment& s = routine->segments[o.a];
    const double low = frame[o.b], high = frame[s.high];
    if (low == UNDEFINEDMARK || high == UNDEFINEDMARK) return false;
    const auto f = [&](double x) {
        frame[s.dummy] = x;
        pollbreak();
        if (!flatexecute(unit, *routine, s.body, frame, cells)) throw givenup{};
        return frame[s.value];
    };
    const size_t depth = flat.calls.size();
    try {
        if (!s.root)
            frame[o.dst] = integralof(f, low, high);
        else if (!rootfind(
                     f, [] { throw givenup{}; }, low, high, frame[o.dst]))
            return false;
    } catch (const givenup&) {
        flat.calls.resize(depth);
        return false;
    }
    pc = routine->code.data() + s.end;
    return fpfinite(frame[o.dst]);
}

/* The place and the frame stand in variables of this function, not of the execution, so that they stay in
 * registers: what goes elsewhere hands them over. */
bool execution::run() {
    const flatop* at = pc;
    double* r = frame;
    const auto handover = [&](bool (execution::*serve)(const flatop&), const flatop& o) {
        pc = at;
        const bool good = (this->*serve)(o);
        at = pc;
        r = frame;
        return good;
    };
    for (;;) {
        const flatop& o = *at++;
        switch (o.op) {
        case FLATMOVE: r[o.dst] = r[o.a]; break;
        case FLATADD: r[o.dst] = r[o.a] + r[o.b]; break;
        case FLATADDCHECK:
            if (!fpfinite(r[o.dst] = r[o.a] + r[o.b])) return false;
            break;
        case FLATSUB: r[o.dst] = r[o.a] - r[o.b]; break;
        case FLATSUBCHECK:
            if (!fpfinite(r[o.dst] = r[o.a] - r[o.b])) return false;
            break;
        case FLATMUL: r[o.dst] = r[o.a] * r[o.b]; break;
        case FLATMULCHECK:
            if (!fpfinite(r[o.dst] = r[o.a] * r[o.b])) return false;
            break;
        case FLATDIV: r[o.dst] = r[o.a] / r[o.b]; break;
        case FLATDIVCHECK:
            if (!fpfinite(r[o.dst] = r[o.a] / r[o.b])) return false;
            break;
        case FLATCHECK:
            if (!fpfinite(r[o.a])) return false;
            break;
        case FLATPOW: {
            const double x = r[o.a], y = r[o.b];
            const double z = y == 2 ? x * x : std::pow(x, y);
            if (!fpfinite(z) || (x == 0 && y == 0)) return false;
            r[o.dst] = z;
            break;
        }
        case FLATNEG: r[o.dst] = -r[o.a]; break;
        case FLATEQ: r[o.dst] = r[o.a] == r[o.b]; break;
        case FLATLT: r[o.dst] = r[o.a] < r[o.b]; break;
        case FLATLE: r[o.dst] = r[o.a] <= r[o.b]; break;
        case FLATAND: r[o.dst] = r[o.a] != 0 && r[o.b] != 0; break;
        case FLATOR: r[o.dst] = r[o.a] != 0 || r[o.b] != 0; break;
        case FLATNOT: r[o.dst] = r[o.a] == 0; break;
        case FLATJUMP: at = routine->code.data() + o.dst; break;
        case FLATJUMPNOT:
            if (r[o.a] == 0) at = routine->code.data() + o.dst;
            break;
        case FLATJUMPNE:
            if (r[o.a] != r[o.b]) at = routine->code.data() + o.dst;
            break;
        case FLATJUMPNLT:
            if (!(r[o.a] < r[o.b])) at = routine->code.data() + o.dst;
            break;
        case FLATJUMPNLE:
            if (!(r[o.a] <= r[o.b])) at = routine->code.data() + o.dst;
            break;
        case FLATCALL1:
            if (!fpfinite(r[o.dst] = unit.rows[o.b]->f1(r[o.a]))) return false;
            break;
        case FLATCALL2:
            if (!fpfinite(r[o.dst] = unit.rows[at++->dst]->f2(r[o.a], r[o.b]))) return false;
            break;
        case FLATCALLN:
            if (!handover(&execution::calln, o)) return false;
            break;
        case FLATELEM:
            if (!handover(&execution::element, o)) return false;
            break;
        case FLATROWS: r[o.dst] = unit.matrices[o.a].m->rows; break;
        case FLATCOLS: r[o.dst] = unit.matrices[o.a].m->cols; break;
        case FLATNUMBER:
            if (!handover(&execution::number, o)) return false;
            break;
        case FLATSTORE: sym(o.dst).val.rval = r[o.a]; break;
        case FLATUSER:
            if (!handover(&execution::user, o)) return false;
            break;
        case FLATRETURN: handover(&execution::leave, o); break;
        case FLATLOOP:
            if (!handover(&execution::loop, o)) return false;
            break;
        case FLATNEXT:
            if (!handover(&execution::next, o)) return false;
            break;
        case FLATSEGMENT:
            if (!handover(&execution::segment, o)) return false;
            break;
        default: return true; // FLATEND, FLATSEGMENTEND
        }
    }
}

} // namespace

bool flatexecute(flatunit& unit, const flatroutine& routine, int pc, double* frame, flatcells cells) {
    execution e{unit, &routine, frame, routine.code.data() + pc, cells};
    if (e.run()) return true;
    flat.calls.resize(e.base);
    return false;
}

/* The accumulator takes the terms in order. The dummy's values are those of repeated addition, which are the
 * sums themselves while they are whole. */
flatresult flatloopblocks(const flatunit& unit, const flatroutine& routine, const flatloop& l, double* frame,
                          double low) {
    const double high = frame[l.high];
    if (flat.block.size() < size_t(routine.nregs) * FLATBLOCK)
        flat.block.resize(size_t(routine.nregs) * FLATBLOCK);
    double* const block = flat.block.data();
    double* const x = block + size_t(l.dummy) * FLATBLOCK;
    const double* const term = block + size_t(l.term) * FLATBLOCK;
    const bool varies = l.vary[size_t(l.term)];
    uint16_t order[FLATBLOCK];
    double inorder[FLATBLOCK];
    double sum = frame[l.accumulator];
    const bool whole = low == std::floor(low) && std::fabs(low) < 0x1p52 && high < 0x1p52;
    for (double at = low; at <= high;) {
        int n = 0;
        frame[l.dummy] = at;
        if (whole) {
            n = int(std::min(high - at + 1, double(FLATBLOCK)));
            for (int k = 0; k < n; k++) x[k] = at + k;
            at += n;
        } else {
            for (; n < FLATBLOCK && at <= high; at += 1.0) x[n++] = at;
        }
        frame[l.accumulator] = sum;
        const flatresult result =
            flatexecuteblock(unit, routine, l.body, l.next, l.vary.data(), frame, block, order, n);
        if (result != FLATDONE) return result;
        for (int k = 0; k < n; k++) inorder[order[k]] = varies ? term[k] : frame[l.term];
        for (int k = 0; k < n; k++) sum = l.product ? sum * inorder[k] : sum + inorder[k];
        flat.rounds |= 0xFF00; // a block counts as many rounds
        pollbreak();
    }
    frame[l.accumulator] = sum;
    return FLATDONE;
}

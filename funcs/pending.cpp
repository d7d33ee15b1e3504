#include "funcs/pending.h"

#include "funcs/cellkernels.h"
#include "funcs/elementwise.h"
#include "funcs/matrixoperand.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "values/harray.h"

#include <algorithm>
#include <cfenv>
#include <iterator>
#include <vector>

pendingstate pending;

namespace {

constexpr size_t BLOCK = 512,
                 FEWEST = 4096; // cells in a pass; cells below which waiting costs more than it saves
constexpr int MOSTLEAVES = 8, MOSTSTEPS = 2 * MOSTLEAVES - 1, MOSTWAITING = 4;

struct leaf {
    const harray* m; // null: the number
    int owner;       // the temporary that holds m, or 0
    double number;
};

// An expression in postfix order: steps that are not negative push a leaf, others are minus an operator.
struct expression {
    int idx = 0;            // the temporary that waits
    uint32_t statement = 0; // in which it was made: one of an earlier statement was swept with it
    uint32_t rows = 0, cols = 0;
    int nleaves = 0, nsteps = 0;
    leaf leaves[MOSTLEAVES];
    int8_t steps[MOSTSTEPS];
};
expression waiting[MOSTWAITING];

expression* find(int idx) {
    for (int k = 0; k < pending.count; k++)
        if (waiting[k].idx == idx) return &waiting[k];
    return nullptr;
}

void dropstale() {
    if (pending.count && waiting[0].statement != parser.statement) pending.count = 0;
}

bool worthwaiting(int op) {
    return (op >= TOKTIMES && op <= TOKMINUS) || (op >= TOKLESS && op <= TOKGREATER) || op == TOKAND ||
           op == TOKOR || op == TOKCELLTIMES || op == TOKCELLDIVIDE;
}

// What operand idx is in an expression of its own.
bool operandexpression(int idx, expression& e) {
    if (const expression* known = find(idx)) {
        e = *known;
        return true;
    }
    e.nleaves = e.nsteps = 1;
    e.steps[0] = 0;
    if (ismatrix(idx)) {
        const harray* m = matrixof(idx);
        e.leaves[0] = {m, istemporary(idx) ? idx : 0, 0};
        e.rows = m->rows;
        e.cols = m->cols;
        return harraycount(m) >= FEWEST;
    }
    if (!isscalar(idx) || sym(idx).val.rval == UNDEFINEDMARK) return false;
    e.leaves[0] = {nullptr, 0, sym(idx).val.rval};
    return true;
}

bool joinable(const expression& x, const expression& y) {
    if (x.nleaves + y.nleaves > MOSTLEAVES) return false;
    const bool xmatrix = x.rows != 0, ymatrix = y.rows != 0;
    return (xmatrix || ymatrix) && (!xmatrix || !ymatrix || (x.rows == y.rows && x.cols == y.cols));
}

// x := x y op
void join(expression& x, const expression& y, int op) {
    for (int k = 0; k < y.nsteps; k++)
        x.steps[x.nsteps++] = int8_t(y.steps[k] < 0 ? y.steps[k] : y.steps[k] + x.nleaves);
    std::copy_n(y.leaves, y.nleaves, x.leaves + x.nleaves);
    x.nleaves += y.nleaves;
    x.steps[x.nsteps++] = int8_t(-op);
    if (x.rows == 0) {
        x.rows = y.rows;
        x.cols = y.cols;
    }
}

void forget(int idx) {
    if (expression* e = find(idx)) *e = waiting[--pending.count];
}

// The runs of cells of one pass: constants are spread out once, results of operators have a place by depth.
struct passspace {
    std::vector<double> constants, results;
    passspace(const expression& e) : constants(size_t(e.nleaves) * BLOCK), results(MOSTLEAVES * BLOCK) {
        for (int k = 0; k < e.nleaves; k++)
            if (!e.leaves[k].m) std::fill_n(constants.begin() + long(k * BLOCK), BLOCK, e.leaves[k].number);
    }
};

// Cells first .. first + n - 1 of the expression into `result`.
void runpass(const expression& e, passspace& space, size_t first, size_t n, double* result) {
    const double* stack[MOSTLEAVES];
    int depth = 0;
    for (int k = 0; k < e.nsteps; k++) {
        const int step = e.steps[k];
        if (step >= 0) {
            const leaf& l = e.leaves[step];
            stack[depth++] = l.m ? cells(l.m) + 1 + first : &space.constants[size_t(step) * BLOCK];
            continue;
        }
        depth--;
        double* to = k == e.nsteps - 1 ? result : &space.results[size_t(depth) * BLOCK];
        cellkernelof(-step)(to, stack[depth - 1], stack[depth], n);
        stack[depth - 1] = to;
    }
}

// One pass over all cells; null as soon as a block faults.
harrayptr onepass(const expression& e) {
    harrayptr result(harrayraw(e.rows, e.cols));
    passspace space(e);
    const size_t count = harraycount(result.get());
    std::feclearexcept(CELLFAULTS);
    for (size_t first = 0; first < count; first += BLOCK) {
        runpass(e, space, first, std::min(BLOCK, count - first), cells(result.get()) + 1 + first);
        if (std::fetestexcept(CELLFAULTS)) return nullptr;
    }
    return result;
}

// Each operator over all its cells before the next, with the repairs and messages that belong to it.
[[gnu::cold]] harrayptr onebyone(const expression& e) {
    struct value {
        const harray* m;
        harrayptr own;
    };
    std::vector<value> stack;
    for (int k = 0; k < e.nsteps; k++) {
        if (const int step = e.steps[k]; step < 0) {
            harrayptr r = elementwise(-step, stack[stack.size() - 2].m, stack.back().m);
            stack.pop_back();
            stack.back() = {r.get(), std::move(r)};
        } else if (const leaf& l = e.leaves[step]; l.m) {
            stack.push_back({l.m, nullptr});
        } else {
            harrayptr one(harrayraw(1, 1));
            cells(one.get())[1] = l.number;
            stack.push_back({one.get(), std::move(one)});
        }
    }
    return std::move(stack.back().own);
}

void finish(const expression& e) {
    harrayptr result = onepass(e);
    if (!result) result = onebyone(e);
    sym(e.idx).val.ptr = result.release();
    for (int k = 0; k < e.nleaves; k++) tempfree(e.leaves[k].owner);
}

} // namespace

int pendingoperation(int op, int a, int b) {
    dropstale();
    if (!worthwaiting(op)) return 0;
    if (op == TOKTIMES && ismatrix(a) && ismatrix(b)) return 0;
    expression x, y;
    if (!operandexpression(a, x) || !operandexpression(b, y) || !joinable(x, y)) return 0;
    join(x, y, op);
    for (const int idx : {a, b})
        if (find(idx) || !ismatrix(idx)) {
            forget(idx);
            tempfree(idx);
        }
    if (pending.count == MOSTWAITING) pendingcompute();
    x.idx = symtabtemp(0, 0, nullptr, MATRIX, 0);
    x.statement = parser.statement;
    waiting[pending.count++] = x;
    return x.idx;
}

void pendingcompute() {
    dropstale();
    for (int k = 0; k < pending.count; k++) finish(waiting[k]);
    pending.count = 0;
}

bool pendingkeeps(int token) { return worthwaiting(token) || token == TOKUNARYMINUS || token == TOKNOT; }

void pendingreset() { pending.count = 0; }

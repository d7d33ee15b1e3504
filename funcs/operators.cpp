#include "funcs/operators.h"

#include "funcs/elementwise.h"
#include "funcs/matmul.h"
#include "funcs/matrixoperand.h"
#include "funcs/pending.h"
#include "funcs/stringops.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <algorithm>

operatorhooks operatorfns = {
    [](const harray*) -> harrayptr { tarnerror("the pseudo-inverse is not available"); }};

namespace {

uint32_t copycount(double b) {
    if (b < 0) tarnerror(further("B is %.15g", b), "in A^^B or A^^'B, B must be a non-negative integer");
    if (b > 0x3FFFFFFF)
        tarnerror(further("%.15g copies are asked for", b), "Too many elements requested in 'xalloc()'");
    return uint32_t(b);
}

void checkproduct(size_t a, size_t b) {
    if (a != 0 && b > size_t(0x3FFFFFFF) / a)
        tarnerror(further("%zu times %zu", a, b), "Too many elements requested in 'xalloc()'");
}

harrayptr repeatscalar(int op, double x, uint32_t n) {
    harrayptr m(op == TOKREPEAT ? harrayraw(n, 1) : harrayraw(1, n));
    std::fill_n(cells(m.get()) + 1, n, x);
    return m;
}

// n copies of m one under the other, or side by side.
harrayptr repeatmatrix(int op, const harray* m, uint32_t n) {
    checkproduct(op == TOKREPEAT ? m->rows : m->cols, n);
    const uint32_t rows = op == TOKREPEAT ? m->rows * n : m->rows,
                   cols = op == TOKREPEAT ? m->cols : m->cols * n;
    checkproduct(rows, cols);
    harrayptr result(harrayraw(rows, cols));
    if (harraycount(result.get()) == 0) return result;
    const size_t run = op == TOKREPEAT ? harraycount(m) : m->cols; // cells that are copied at once
    const size_t runs = op == TOKREPEAT ? 1 : m->rows;
    double* to = cells(result.get()) + 1;
    for (size_t i = 0; i < runs; i++)
        for (uint32_t k = 0; k < n; k++, to += run) std::copy_n(cells(m) + 1 + i * run, run, to);
    return result;
}

void repeatop(int op, int a, int b) {
    if (!isscalar(b))
        tarnerror(furtherline{describe(b)},
                  "in A^^B or A^^'B, A must be a scalar or a matrix and B must be a scalar");
    const uint32_t n = copycount(scalaroperand(b));
    harrayptr m = ismatrix(a) ? repeatmatrix(op, matrixof(a), n) : repeatscalar(op, scalaroperand(a), n);
    polpush(symtabmatrix(a, b, std::move(m)));
}

// The matrix of a temporary may become the result; its entry then owns nothing any more.
bool mayreuse(int idx, uint32_t rows, uint32_t cols) {
    if (!istemporary(idx) || !ismatrix(idx)) return false;
    const harray* m = matrixof(idx);
    return m->rows == rows && m->cols == cols;
}

harrayptr celloperation(int op, int a, int b) {
    const matrixoperand x(a), y(b);
    const uint32_t rows = std::max(x.m->rows, y.m->rows), cols = std::max(x.m->cols, y.m->cols);
    checkproduct(rows, cols);
    const int given = mayreuse(a, rows, cols) ? a : mayreuse(b, rows, cols) ? b : 0;
    harrayptr result = elementwise(op, x.m, y.m, given ? matrixof(given) : nullptr);
    if (given) {
        sym(given).type = SCALAR;
        sym(given).val.rval = 0;
    }
    return result;
}

std::string factor(int idx) {
    return istemporary(idx) ? kindtext(idx) : nametext(idx) + " (" + kindtext(idx) + ")";
}

[[noreturn]] void refuseproduct(int a, int b) {
    const harray* x = matrixof(a);
    const harray* y = matrixof(b);
    const bool same = x->rows == y->rows && x->cols == y->cols;
    tarnerror(further("%s times %s: the first must have as many columns as the second has rows%s",
                      factor(a).c_str(), factor(b).c_str(),
                      same ? "; A*'B multiplies element by element" : ""),
              "matrices to be multiplied must be conformable");
}

void matrixop(int op, int a, int b) {
    harrayptr result;
    if (op == TOKPOWER && isscalar(b)) {
        result = matrixpower(matrixof(a), scalaroperand(b));
    } else if (op == TOKTIMES && ismatrix(a) && ismatrix(b)) {
        const harray* x = matrixof(a);
        const harray* y = matrixof(b);
        if (x->cols != y->rows) refuseproduct(a, b);
        result = matmul(x, y);
    } else {
        result = celloperation(op, a, b);
    }
    polpush(symtabmatrix(a, b, std::move(result)));
}

[[noreturn]] void refuseoperands(int a, int b) {
    const auto fits = [](int k) { return isscalar(k) || ismatrix(k); };
    std::string more = fits(a) ? "" : describe(a);
    if (!fits(b) && a != b) more += (more.empty() ? "" : ", ") + describe(b);
    tarnerror(furtherline{more}, "only SCALAR or MATRIX types in binary operators");
}

harrayptr padded(const harray* m, uint32_t d) {
    if (m->rows == d && m->cols == d) return harrayptr(harraydup(m));
    harrayptr p(harraynew(d, d));
    const double* from = cells(m) + 1;
    for (size_t i = 1; i <= m->rows; i++, from += m->cols) std::copy_n(from, m->cols, &at(p.get(), i, 1));
    return p;
}

harrayptr identity(uint32_t d) {
    harrayptr m(harraynew(d, d));
    for (size_t i = 1; i <= d; i++) at(m.get(), i, i) = 1;
    return m;
}

} // namespace

double powfault(double x, double y, double result) {
    if (x == 0 && y == 0) return matherr(MEDOMAIN, "pow", 1);
    if (x == 0) return y < 0 ? matherr(MESING, "pow", MAXPOS) : result;
    if (std::isnan(result)) return matherr(MEDOMAIN, "pow", 0);
    return fprepair(result);
}

double scalarop(double x, double y, int op) {
    switch (op) {
    case TOKPOWER: return fppow(x, y);
    case TOKTIMES:
    case TOKCELLTIMES: return fpcheck(x * y);
    case TOKDIVIDE:
    case TOKCELLDIVIDE: return fpdiv(x, y);
    case TOKPLUS: return fpcheck(x + y);
    case TOKMINUS: return fpcheck(x - y);
    case TOKEQUAL: return x == y;
    case TOKLESS: return x < y;
    case TOKLESSEQUAL: return x <= y;
    case TOKGREATEREQUAL: return x >= y;
    case TOKGREATER: return x > y;
    case TOKAND: return x != 0 && y != 0;
    case TOKOR: return x != 0 || y != 0;
    default: return 0;
    }
}

harrayptr matrixpower(const harray* m, double n) {
    if (n != std::floor(n))
        tarnerror(further("the power is %.15g; EXP(B*LOG(A)) and the like work element by element", n),
                  "non-integer matrix powers not available yet");
    if (n == -1) return operatorfns.pseudoinverse(m);
    const uint32_t d = std::max(m->rows, m->cols);
    checkproduct(d, d);
    harrayptr p = padded(m, d), r = identity(d);
    if (n < 0) p = operatorfns.pseudoinverse(p.get());
    for (double left = std::fabs(n); left != 0;) {
        if (std::fmod(left, 2) == 1) r = matmul(r.get(), p.get());
        left = std::floor(left / 2);
        if (left != 0) p = matmul(p.get(), p.get());
    }
    return r;
}

void binop(int op, int a, int b) {
    if (ismatrix(a) || ismatrix(b))
        if (const int later = pendingoperation(op, a, b)) return polpush(later);
    pendingfinish();
    if (isstringtype(a) || isstringtype(b)) return stringbinop(op, a, b);
    if (!(isscalar(a) || ismatrix(a)) || !(isscalar(b) || ismatrix(b))) refuseoperands(a, b);
    if (op == TOKREPEAT || op == TOKREPEATBY) return repeatop(op, a, b);
    if (ismatrix(a) || ismatrix(b)) return matrixop(op, a, b);
    const double x = scalaroperand(a), y = scalaroperand(b);
    polpush(symtabtempscalar(a, b, scalarop(x, y, op)));
}

void ifmatrixselect() {
    const int other = polpop(), then = polpop(), condition = polpop();
    const matrixoperand c(condition), x(then), y(other);
    harrayptr result(harrayraw(c.m->rows, c.m->cols));
    double* to = cells(result.get()) + 1;
    const double* test = c.cell() + 1;
    for (uint32_t i = 1; i <= c.m->rows; i++)
        for (uint32_t j = 1; j <= c.m->cols; j++) *to++ = harrayelem(*test++ != 0 ? x.m : y.m, i, j);
    tempfree(condition);
    polpush(symtabmatrix(then, other, std::move(result)));
}

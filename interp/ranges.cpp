#include "interp/ranges.h"

#include "interp/base/fpfault.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/harray.h"

#include <cmath>
#include <cstring>

namespace {

// The last element is made exact when the additions came this near to it.
constexpr double NEAREND = 1e-9;

// a, a + d, a + 2 d, ... towards b, with |d| the step.
harrayptr stepped(double a, double b, double step) {
    const double d = b < a ? -std::fabs(step) : std::fabs(step);
    const double n = d == 0 ? 1 : 1 + std::floor(std::fabs((b + 1e-6 * d - a) / std::fabs(d)));
    if (!(n <= 0x3FFFFFFF))
        tarnerror(further("a range from %.15g to %.15g in steps of %.15g", a, b, d),
                  "Too many elements requested in 'xalloc()'");
    harrayptr m(harrayraw(uint32_t(n), 1));
    double x = a;
    for (size_t k = 1; k <= size_t(n); k++, x += d) cells(m.get())[k] = x;
    return m;
}

double& last(const harrayptr& m) { return cells(m.get())[m->rows]; }

void exactend(const harrayptr& m, double b) {
    if (std::fabs(b) >= 1 && std::fabs(b - last(m)) <= NEAREND) last(m) = b;
}

void needincrement(double c, const char* what) {
    if (c == 0) tarnerror(further("%s is 0", what), "COLON (:) zero increment not allowed");
}

} // namespace

harrayptr rangematrix(double a, double b) {
    harrayptr m = stepped(a, b, a == b ? 0 : 1);
    exactend(m, b);
    return m;
}

harrayptr stepmatrix(double a, double b, double step) {
    needincrement(step, "the step, the last number of A:B:STEP,");
    harrayptr m = stepped(a, b, step);
    exactend(m, b);
    return m;
}

harrayptr countmatrix(double a, double b, double n) {
    needincrement(n, "the count, the last number of A:B!COUNT,");
    double k = std::floor(n);
    if (k != n) {
        tarnwarn(":! count is not an integer");
        tarnwarn("%.15g is read as %.15g", n, k);
    }
    if (k < 0) k = 1 - k;
    harrayptr m = k == 1 ? stepped(b, b, 0) : stepped(a, b, (b - a) / (k - 1));
    last(m) = b;
    return m;
}

int rangeof(int a, int b) {
    harrayptr m = rangematrix(scalarval(a), scalarval(b));
    return symtabmatrix(a, b, std::move(m));
}

int rangebystep(int a, int b, int step) {
    const double from = scalarval(a), to = scalarval(b);
    harrayptr m = stepmatrix(from, to, scalarval(step));
    tempfree(step);
    return symtabmatrix(a, b, std::move(m));
}

int rangebycount(int a, int b, int n) {
    const double from = scalarval(a), to = scalarval(b);
    harrayptr m = countmatrix(from, to, scalarval(n));
    tempfree(n);
    return symtabmatrix(a, b, std::move(m));
}

int listof(const int16_t* operands, int count) {
    size_t total = 0;
    for (int k = 0; k < count; k++) {
        const symbol& s = sym(operands[k]);
        if (s.type == MATRIX)
            total += harraycount(static_cast<const harray*>(s.val.ptr));
        else if (s.type == CONSTANT || s.type == SCALAR)
            total++;
        else
            tarnerror(further("value %d of the list: %s", k + 1, describe(operands[k]).c_str()),
                      "bad type in LIST expression");
    }
    if (total > 0x3FFFFFFF) tarnerror("Too many elements requested in 'xalloc()'");
    harrayptr m(harrayraw(uint32_t(total), 1));
    double* to = cells(m.get()) + 1;
    for (int k = 0; k < count; k++) {
        const symbol& s = sym(operands[k]);
        if (s.type != MATRIX) {
            *to++ = s.val.rval;
            continue;
        }
        const harray* from = static_cast<const harray*>(s.val.ptr);
        memcpy(to, cells(from) + 1, harraycount(from) * sizeof(double));
        to += harraycount(from);
    }
    return symtabmatrix(0, 0, std::move(m));
}

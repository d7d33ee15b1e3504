// The operators with a dummy: SUM, PRODUCT, ROOT, INTEGRAL and EVAL by the walk of the tree.
#include "funcs/rootint.h"
#include "funcs/trinode.h"
#include "funcs/valueimpl.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

namespace {

/* The dummy is a global symbol that is a scalar while the operator runs. An error leaves a scalar or a new
 * name as it stands at that moment; anything else that the name stood for comes back. */
struct dummyscope {
    symbol& s;
    const int16_t type;
    const double rval; // the bytes of the value, whatever it is
    explicit dummyscope(int idx) : s(sym(idx)), type(s.type), rval(s.val.rval) {
        pushcell(type);
        pushcell(rval);
        s.type = SCALAR;
        if (!isscalartype(type)) s.val.rval = UNDEFINEDMARK;
    }
    dummyscope(const dummyscope&) = delete;
    void restore() {
        s.val.rval = rval;
        s.type = type;
    }
    ~dummyscope() {
        if (type != UNKNOWN && type != SCALAR) restore();
    }
};

double sumloop(int code, double* x, double low, double high, int body, int p) {
    double r = code == CODESUM ? 0 : 1;
    uint32_t rounds = 0;
    for (*x = low; *x <= high; *x += 1.0) {
        const double term = evalscalar(body, p);
        r = fpcheck(code == CODESUM ? r + term : r * term);
        if ((++rounds & 0xFFFF) == 0 && console.breakpending()) throw recoveryjump{6};
    }
    return r;
}

double rootloop(double* x, double low, double high, int body, int p) {
    double root;
    const auto f = [=](double at) {
        *x = at;
        return evalscalar(body, p);
    };
    if (rootfind(
            f, [] { tarnprint("calling value() to evalute f(MAXPOS)\n"); }, low, high, root))
        return root;
    tarnwarn("rootf: no root found");
    return *x = MAXPOS;
}

double integralloop(double* x, double low, double high, int body, int p) {
    uint32_t rounds = 0;
    return fpcheck(integralof(
        [=](double at) mutable {
            *x = at;
            if ((++rounds & 0xFFFF) == 0 && console.breakpending()) throw recoveryjump{6};
            return evalscalar(body, p);
        },
        low, high));
}

double boundedoperator(int code, double* x, const int* arg, int n, int p) {
    const double low = evalref(arg[1], p);
    const double high = evalref(arg[2], p);
    if (low == UNDEFINEDMARK || high == UNDEFINEDMARK)
        tarnerror("undefined bound argument for ROOT, SUM, PRODUCT, INTEGRAL");
    const bool counts = code == CODESUM || code == CODEPRODUCT;
    if (counts && (low + 1 == low || high - 1 == high))
        tarnerror("magnitude of lower or upper bound for SUM, PRODUCT too large");
    if (n > 4) tarnerror("too many arguments for ROOT, SUM, PRODUCT, or INTEGRAL");
    if (counts) return sumloop(code, x, low, high, arg[3], p);
    return code == CODEROOT ? rootloop(x, low, high, arg[3], p) : integralloop(x, low, high, arg[3], p);
}

} // namespace

double operatorcall(int code, int call, int p) {
    int arg[5] = {}, n = 0;
    for (int cell = tri(call).left; cell < 0; cell = tri(cell).left, n++)
        if (n < 5) arg[n] = tri(cell).right;
    if (!issymbolref(arg[0])) tarnerror("1st operator argument must not be an expression");
    if (n < (code == CODEEVAL ? 3 : 4)) checkcount(tri(call).right, n);
    const stackmark mark;
    dummyscope dummy(arg[0]);
    double* x = &sym(arg[0]).val.rval;
    double result;
    if (code == CODEEVAL) {
        const double at = evalscalar(arg[1], p);
        *x = at;
        result = evalscalar(arg[2], p);
    } else {
        result = boundedoperator(code, x, arg, n, p);
    }
    dummy.restore();
    return result;
}

#include "funcs/cellkernels.h"

#include "funcs/operators.h"

namespace {

template <class Operation> void overcells(double* r, const double* a, const double* b, size_t n) {
#pragma GCC ivdep
    for (size_t k = 0; k < n; k++) r[k] = Operation()(a[k], b[k]);
}

// One and zero without a branch, so that comparisons run in vector registers.
struct celladd {
    double operator()(double x, double y) const { return x + y; }
};
struct cellsubtract {
    double operator()(double x, double y) const { return x - y; }
};
struct celltimes {
    double operator()(double x, double y) const { return x * y; }
};
struct celldivide {
    double operator()(double x, double y) const { return x / y; }
};
struct cellpower {
    double operator()(double x, double y) const { return fppow(x, y); }
};
struct cellequal {
    double operator()(double x, double y) const { return x == y ? 1.0 : 0.0; }
};
struct cellless {
    double operator()(double x, double y) const { return x < y ? 1.0 : 0.0; }
};
struct celllesseq {
    double operator()(double x, double y) const { return x <= y ? 1.0 : 0.0; }
};
struct cellgreatereq {
    double operator()(double x, double y) const { return x >= y ? 1.0 : 0.0; }
};
struct cellgreater {
    double operator()(double x, double y) const { return x > y ? 1.0 : 0.0; }
};
struct celland {
    double operator()(double x, double y) const { return (x != 0) & (y != 0) ? 1.0 : 0.0; }
};
struct cellor {
    double operator()(double x, double y) const { return (x != 0) | (y != 0) ? 1.0 : 0.0; }
};
struct cellzero {
    double operator()(double, double) const { return 0.0; }
};

} // namespace

cellkernel cellkernelof(int op) {
    switch (op) {
    case TOKPOWER: return overcells<cellpower>;
    case TOKTIMES:
    case TOKCELLTIMES: return overcells<celltimes>;
    case TOKDIVIDE:
    case TOKCELLDIVIDE: return overcells<celldivide>;
    case TOKPLUS: return overcells<celladd>;
    case TOKMINUS: return overcells<cellsubtract>;
    case TOKEQUAL: return overcells<cellequal>;
    case TOKLESS: return overcells<cellless>;
    case TOKLESSEQUAL: return overcells<celllesseq>;
    case TOKGREATEREQUAL: return overcells<cellgreatereq>;
    case TOKGREATER: return overcells<cellgreater>;
    case TOKAND: return overcells<celland>;
    case TOKOR: return overcells<cellor>;
    default: return overcells<cellzero>;
    }
}

bool cellopfaults(int op) {
    return (op >= TOKTIMES && op <= TOKMINUS) || op == TOKCELLTIMES || op == TOKCELLDIVIDE;
}

#include "funcs/vectorloops.h"

#include "special/doubledouble.h"

namespace {

struct looptable {
    void (*axpy)(size_t, double, const double*, double*);
    void (*axpy4)(size_t, const double*, const double*, size_t, double*);
    void (*rotate)(size_t, double, double, double*, double*);
    double (*dotproduct)(size_t, const double*, const double*);
    void (*dotproduct2)(size_t, const double*, const double*, double*);
    void (*reflect3)(size_t, double, double, double, double, double, double*, double*, double*);
    void (*reflect2)(size_t, double, double, double, double*, double*);
};

namespace anyprocessor {
#include "funcs/vectorloopsrun.h"
} // namespace anyprocessor

#pragma GCC push_options
#pragma GCC target("avx2")
namespace avx2 {
#include "funcs/vectorloopsrun.h"
} // namespace avx2
#pragma GCC pop_options

#pragma GCC push_options
#pragma GCC target("avx512f")
namespace avx512 {
#include "funcs/vectorloopsrun.h"
} // namespace avx512
#pragma GCC pop_options

const looptable& pickloops() {
    if (__builtin_cpu_supports("avx512f")) return avx512::loops;
    if (__builtin_cpu_supports("avx2")) return avx2::loops;
    return anyprocessor::loops;
}
const looptable& picked = pickloops();

} // namespace

void axpy(size_t n, double alpha, const double* x, double* y) { picked.axpy(n, alpha, x, y); }
void axpy4(size_t n, const double* a, const double* x, size_t stride, double* y) {
    picked.axpy4(n, a, x, stride, y);
}
void rotate(size_t n, double c, double s, double* x, double* y) { picked.rotate(n, c, s, x, y); }
double dotproduct(size_t n, const double* x, const double* y) { return picked.dotproduct(n, x, y); }
void dotproduct2(size_t n, const double* x, const double* y, double* sum) {
    picked.dotproduct2(n, x, y, sum);
}
void reflect3(size_t n, double x, double y, double z, double q, double r, double* a, double* b, double* c) {
    picked.reflect3(n, x, y, z, q, r, a, b, c);
}
void reflect2(size_t n, double x, double y, double q, double* a, double* b) {
    picked.reflect2(n, x, y, q, a, b);
}

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

#define PROCESSORBODY "funcs/vectorloopsrun.h"
#include "funcs/eachprocessor.h"

const looptable& picked = bestprocessor(anyprocessor::loops, avx2::loops, avx512::loops);

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

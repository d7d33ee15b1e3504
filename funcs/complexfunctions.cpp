/* Functions of complex numbers: a matrix of two columns, real and imaginary parts, a number a row. A scalar
 * is real. */
#include "funcs/builtin.h"
#include "funcs/matrixoperand.h"
#include "funcs/rows.h"
#include "interp/base/report.h"
#include "special/cbessel.h"
#include "special/complexfn.h"
#include "special/physint.h"
#include "special/polyroots.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

class complexoperand {
public:
    complexoperand(const callargs& a, int k) : m(a[k]) {
        real = m.m && m.count() == 1;
        if (m.m && !real && m.cols() != 2) argshape(a.name());
    }
    uint32_t count() const { return m.m ? m.m->rows : 0; }
    spcomplex operator[](size_t i) const { // from 0, recycling; 0 when not given
        if (count() == 0) return {};
        if (real) return {m.cell()[1], 0};
        const double* pair = m.cell() + 1 + 2 * (i % count());
        return {pair[0], pair[1]};
    }

private:
    matrixoperand m;
    bool real;
};

// f of each row; the faults of all rows are told of together.
template <class Function> int overrows(int code, uint32_t n, Function f) {
    harrayptr result(harrayraw(n, 2));
    double* to = cells(result.get()) + 1;
    for (uint32_t i = 0; i < n; i++, to += 2) {
        const spcomplex w = f(i);
        to[0] = w.re;
        to[1] = w.im;
    }
    spchecked(0, code);
    return symtabmatrix(0, 0, std::move(result));
}

// The complex form of the scalar function of the same code.
int elementary(const callargs& a) {
    const complexoperand z(a, 1);
    return overrows(a.code, z.count(), [&](uint32_t i) { return cmath(-a.code, z[i]); });
}

// LOG(Z), LOG(Z, base)
int logarithm(const callargs& a) {
    if (a.n < 2) return elementary(a);
    const complexoperand z(a, 1), base(a, 2);
    return overrows(a.code, std::max(z.count(), base.count()),
                    [&](uint32_t i) { return cdivide(clogfn(z[i]), clogfn(base[i])); });
}

// CMATH(selector, Z, W)
int selected(const callargs& a) {
    const double selector = a.scalar(1);
    const complexoperand z(a, 2), w(a, 3);
    return overrows(a.code, std::max(z.count(), w.count()),
                    [&](uint32_t i) { return cmath(selector, z[i], w[i]); });
}

template <spcomplex (*f)(spcomplex)> int ofone(const callargs& a) {
    const complexoperand z(a, 1);
    return overrows(a.code, z.count(), [&](uint32_t i) { return f(z[i]); });
}

int power(const callargs& a) {
    const complexoperand z(a, 1), w(a, 2);
    return overrows(a.code, std::max(z.count(), w.count()), [&](uint32_t i) { return cpowfn(z[i], w[i]); });
}

int abramowitz(const callargs& a) {
    const double m = a.scalar(1);
    const complexoperand z(a, 2);
    return overrows(a.code, z.count(), [&](uint32_t i) {
        const complexpair w = cabram(m, z[i].re, z[i].im);
        return spcomplex{w.re, w.im};
    });
}

// CBESS(kind, nu, Z), CBESSJ(nu, Z)
int bessel(const callargs& a) {
    const double kind = a.scalar(1), nu = a.scalar(2);
    const complexoperand z(a, 3);
    return overrows(a.code, z.count(), [&](uint32_t i) { return cbess(kind, nu, z[i]); });
}
int besselj(const callargs& a) {
    const double nu = a.scalar(1);
    const complexoperand z(a, 2);
    return overrows(a.code, z.count(), [&](uint32_t i) { return cbessj(nu, z[i]); });
}

int rootmatrix(int code, const std::vector<spcomplex>& roots) {
    return overrows(code, uint32_t(roots.size()), [&](uint32_t i) { return roots[i]; });
}

// PROOT(P): real coefficients, the highest power first, in one row or column.
int realpolynomial(const callargs& a) {
    const matrixoperand m(a[1]);
    if (m.rows() != 1 && m.cols() != 1) argshape(a.name());
    return rootmatrix(a.code, proot(std::vector<double>(m.cell() + 1, m.cell() + 1 + m.count())));
}
// ZROOT(P): complex coefficients, one a row.
int complexpolynomial(const callargs& a) {
    const complexoperand z(a, 1);
    std::vector<spcomplex> c(z.count());
    for (size_t i = 0; i < c.size(); i++) c[i] = z[i];
    return rootmatrix(a.code, zroot(c));
}

constexpr valuerow rows[] = {
    {-1, elementary},      {-2, logarithm},        {-3, elementary},          {-67, elementary},
    {-4, elementary},      {-269, elementary},     {-5, elementary},          {-7, elementary},
    {-9, elementary},      {-64, elementary},      {-74, elementary},         {-75, elementary},
    {-14, elementary},     {-15, elementary},      {-16, elementary},         {-79, elementary},
    {-80, elementary},     {-81, elementary},      {-11, elementary},         {-12, elementary},
    {-13, elementary},     {-111, elementary},     {-112, elementary},        {-113, elementary},
    {-46, elementary},     {-47, elementary},      {-48, elementary},         {-49, elementary},
    {-50, elementary},     {-51, elementary},      {-70, elementary},         {-17, elementary},
    {-69, elementary},     {-630, selected},       {-631, ofone<clogfn>},     {-632, power},
    {-635, ofone<cpsi>},   {-636, ofone<clnrel>},  {-637, ofone<clngam>},     {-638, ofone<c9lgmc>},
    {-639, ofone<cgamma>}, {-640, ofone<cce1>},    {-641, abramowitz},        {-642, bessel},
    {-643, besselj},       {-678, realpolynomial}, {-629, complexpolynomial},
};

} // namespace

void complexfunctionrows() { builtinadd(rows, int(std::size(rows))); }

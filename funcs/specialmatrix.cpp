/* Functions of special/ that take or give matrices. */
#include "funcs/builtin.h"
#include "funcs/matrixoperand.h"
#include "funcs/rows.h"
#include "funcs/value.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "special/combin.h"
#include "special/hbpower.h"
#include "special/primes.h"
#include "special/quadrature.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

double mulcoefof(const callargs& a) {
    const matrixoperand m(a[1]);
    return mulcoef(m.cell() + 1, int(m.count()));
}
double parityof(const callargs& a) {
    const matrixoperand m(a[1]);
    return parity(m.cell() + 1, int(m.count()));
}

// A curve of two columns, time and survival, as two lists.
struct curvelists {
    std::vector<double> time, survival;
    curvelists(const callargs& a, int k) {
        if (a[k] <= 0 || !ismatrix(a[k])) argtype(a.name());
        const matrixoperand m(a[k]);
        if (m.cols() != 2) argshape(a.name());
        for (size_t i = 1; i <= m.rows(); i++) {
            time.push_back(at(m.m, i, 1));
            survival.push_back(at(m.m, i, 2));
        }
    }
    survivalcurve view() const { return {time.data(), survival.data(), int(time.size())}; }
};

// HBPOWER(control, treated, alpha, n, ratio, sides, subdivisions, weight)
double hbpowerof(const callargs& a) {
    if (a.n < 2 || a.n > 8)
        tarnerror("function %s takes %hd arguments; %hd are mandatory", a.name(), short(8), short(2));
    const curvelists control(a, 1), treated(a, 2);
    trialdesign d;
    d.alpha = a.scalar(3, d.alpha);
    d.n = a.scalar(4, d.n);
    d.ratio = a.scalar(5, d.ratio);
    d.sides = a.scalar(6, d.sides);
    d.subdivisions = a.scalar(7, d.subdivisions);
    d.weight = a.scalar(8, d.weight);
    return hbpower(control.view(), treated.view(), d);
}

// QROMB(F, a, b, eps, steps, points)
double qrombof(const callargs& a) {
    int f = a[1];
    const auto evaluate = [](double x, void* context) {
        return callvalue(*static_cast<int*>(context), &x, 1);
    };
    rombergrule rule;
    rule.eps = a.scalar(4, rule.eps);
    rule.steps = int(std::clamp(a.scalar(5, rule.steps), 1.0, 40.0));
    rule.points = int(std::clamp(a.scalar(6, rule.points), 1.0, 20.0));
    return qromb(evaluate, &f, a.scalar(2), a.scalar(3), rule);
}

int factors(const callargs& a) {
    const std::vector<double> found = factorfn(a.scalar(1));
    spchecked(0, a.code);
    harrayptr m(harrayraw(uint32_t(found.size()), 1));
    std::copy(found.begin(), found.end(), cells(m.get()) + 1);
    return symtabmatrix(0, 0, std::move(m));
}

int primes(const callargs& a) {
    const double n = a.scalar(1), count = spchecked(primecount(n), a.code);
    harrayptr m(harrayraw(uint32_t(count), 1));
    if (count > 0) primesto(n, cells(m.get()) + 1);
    return symtabmatrix(0, 0, std::move(m));
}

constexpr numberrow numbers[] = {{-425, mulcoefof}, {-440, parityof}, {-436, hbpowerof}, {-412, qrombof}};
constexpr valuerow values[] = {{-752, factors}, {-751, primes}};

} // namespace

void specialmatrixrows() {
    builtinadd(numbers, int(std::size(numbers)));
    builtinadd(values, int(std::size(values)));
}

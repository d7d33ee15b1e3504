#include "special/doubledouble.h"

#include "interp/base/machine.h"

#include <cfloat>

dd ddsqrt(dd a) {
    if (a.hi <= 0) return 0;
    const double x = std::sqrt(a.hi);
    const dd r = a - ddprod(x, x);
    return ddquicksum(x, r.hi / (2 * x));
}

dd ddexp(dd a) {
    if (a.hi < -745) return 0;
    if (a.hi > 709.78) return MAXPOS;
    if (std::isnan(a.hi)) return a;
    const double k = std::nearbyint(a.hi / DDLN2.hi);
    const dd r = ddscale(a - DDLN2 * k, -6);
    dd term = r, sum = r; // exp(r) - 1, |r| below 0.0055
    for (int n = 2; n <= 14; n++) {
        term = term * r / dd(n);
        sum += term;
    }
    for (int n = 0; n < 6; n++) sum = sum * 2.0 + sum * sum; // (1+s)^2 - 1
    return ddscale(sum + 1.0, static_cast<int>(k));
}

dd ddlog(dd a) {
    if (a.hi == 1 && a.lo == 0) return 0;
    const double y = std::log(a.hi);
    const dd e = ddexp(y);
    return dd(y) + (a - e) * 2.0 / (a + e); // Newton's step with its second order
}

void ddsincos(dd a, dd* s, dd* c) {
    const double k = std::nearbyint(a.hi / (DDPI.hi / 2));
    if (!std::isfinite(k)) {
        *s = *c = std::nan("");
        return;
    }
    const dd r = a - ddscale(DDPI, -1) * k, r2 = -(r * r);
    dd sn = r, cs = 1, ts = r, tc = 1;
    for (int n = 1; n <= 15; n++) {
        tc = tc * r2 / dd((2.0 * n - 1) * (2.0 * n));
        ts = ts * r2 / dd((2.0 * n) * (2.0 * n + 1));
        cs += tc;
        sn += ts;
    }
    switch (static_cast<int>(std::fmod(k, 4)) & 3) {
    case 0: *s = sn, *c = cs; break;
    case 1: *s = cs, *c = -sn; break;
    case 2: *s = -sn, *c = -cs; break;
    default: *s = -cs, *c = sn;
    }
}

dd ddsinpi(dd a) {
    const double n = std::nearbyint(a.hi);
    const dd r = (a - n) * DDPI;
    dd s, c;
    ddsincos(r, &s, &c);
    return std::fmod(n, 2) == 0 ? s : -s;
}

namespace {

// Stirling's series for log Gamma(a), a at least 30: the term left out is below 1e-34.
dd stirling(dd a) {
    // B(2k) as exact quotients, k from 1: DLMF table 24.2.3.
    static constexpr double bernoulli[][2] = {{1, 6},
                                              {-1, 30},
                                              {1, 42},
                                              {-1, 30},
                                              {5, 66},
                                              {-691, 2730},
                                              {7, 6},
                                              {-3617, 510},
                                              {43867, 798},
                                              {-174611, 330},
                                              {854513, 138},
                                              {-236364091, 2730},
                                              {8553103, 6},
                                              {-23749461029, 870},
                                              {8615841276005, 14322}};
    constexpr dd halflog2pi{0.9189385332046728, -3.8782941580672414e-17};
    const dd r = dd(1) / a, r2 = r * r;
    dd sum = 0;
    for (int k = 15; k >= 1; k--)
        sum = sum * r2 + dd(bernoulli[k - 1][0]) / dd(bernoulli[k - 1][1] * (2.0 * k) * (2.0 * k - 1));
    return (a - 0.5) * ddlog(a) - a + halflog2pi + sum * r;
}

} // namespace

dd ddloggamma(dd a, int* sign) {
    int ignored;
    if (!sign) sign = &ignored;
    *sign = 1;
    if (a.hi < 0.5) {
        const dd s = ddsinpi(a);
        if (s.hi == 0) {
            *sign = 0;
            return MAXPOS;
        }
        *sign = s.hi > 0 ? 1 : -1;
        return ddlog(DDPI / fabs(s)) - ddloggamma(dd(1) - a);
    }
    dd product = 1;
    while (a.hi < 30) {
        product *= a;
        a += 1.0;
    }
    return stirling(a) - ddlog(product);
}

dd ddrgamma(dd a) {
    int sign;
    const dd l = ddloggamma(a, &sign);
    return sign == 0 ? dd(0) : ddexp(-l) * static_cast<double>(sign);
}

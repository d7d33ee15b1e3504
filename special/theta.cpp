// Theta functions by their series in the nome, or in the nome of the imaginary transformation
// (DLMF 20.7(viii)), whichever is the smaller: five terms are then enough.
#include "special/doubledouble.h"
#include "special/elementary.h"
#include "special/elliptic.h"
#include "special/range.h"

#include <cmath>

namespace {

constexpr int TERMS = 6; // q <= exp(-pi): the next is below exp(-36 pi)

// theta_2 (odd false) or theta_1 (odd true): 2 sum of (+-1)^k q^((k+1/2)^2) cos or sin (2k+1) z.
double halfseries(double z, double q, bool odd) {
    const double q2 = q * q;
    double sum = 0, power = 1, step = q2; // q^(k(k+1))
    for (int k = 0; k < TERMS; k++) {
        const double t = power * (odd ? std::sin((2 * k + 1) * z) : std::cos((2 * k + 1) * z));
        sum += odd && k % 2 ? -t : t;
        power *= step;
        step *= q2;
    }
    return 2 * std::sqrt(std::sqrt(q)) * sum;
}

// theta_3 or, with alternating signs, theta_4: 1 + 2 sum of (+-1)^k q^(k^2) cos 2kz.
double wholeseries(double z, double q, bool alternating) {
    const double q2 = q * q;
    double sum = 0, power = q, step = q * q2;
    for (int k = 1; k <= TERMS; k++) {
        const double t = power * std::cos(2 * k * z);
        sum += alternating && k % 2 ? -t : t;
        power *= step;
        step *= q2;
    }
    return 1 + 2 * sum;
}

// exp(-(z-a)^2/s) + sign exp(-(z+a)^2/s), without cancellation; a >= 0.
double pairof(double z, double a, double s, int sign) {
    const double near = std::fabs(z) - a;
    const double first = std::exp(-near * near / s), e = -4 * a * std::fabs(z) / s;
    const double r = sign > 0 ? first * (1 + std::exp(e)) : -first * std::expm1(e);
    return sign < 0 && z < 0 ? -r : r;
}

// The sums over Gaussians, s = -log q, |z| <= pi/2.
double gaussians(int n, double z, double s) {
    const double front = std::sqrt(PI / s);
    double sum = 0;
    if (n == 2 || n == 3) {
        sum = std::exp(-z * z / s);
        for (int k = 1; k <= TERMS; k++) sum += (n == 2 && k % 2 ? -1 : 1) * pairof(z, k * PI, s, 1);
    } else {
        for (int k = 0; k < TERMS; k++)
            sum += (n == 1 && k % 2 ? -1 : 1) * pairof(z, (k + 0.5) * PI, s, n == 1 ? -1 : 1);
    }
    return front * sum;
}

} // namespace

double theta(double n, double z, double q) {
    if (std::isnan(n + z + q)) return n + z + q;
    if (!(n == 1 || n == 2 || n == 3 || n == 4) || !(std::fabs(q) < 1) || std::isinf(z))
        return outofrange("THETA", 0);
    if (q < 0) {
        if (n < 3) return outofrange("THETA", 0);
        n = 7 - n; // theta_3(z, -q) = theta_4(z, q)
        q = -q;
    }
    // take out multiples of pi: theta_1 and theta_2 change their sign with each
    const double k = std::nearbyint(z / PI);
    const double rest = std::fabs(k) < 1e8 ? (dd(z) - DDPI * k).hi : std::remainder(z, PI);
    const double sign = n < 3 ? paritysign(k) : 1;
    if (q > 0.04321391826377225) { // exp(-pi)
        const double s = q > 0.5 ? -std::log1p(q - 1) : -std::log(q);
        return sign * gaussians(static_cast<int>(n), rest, s);
    }
    return sign * (n < 3 ? halfseries(rest, q, n == 1) : wholeseries(rest, q, n == 4));
}

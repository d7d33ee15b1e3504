#include "special/elementary.h"
#include "special/fault.h"
#include "special/zeta.h"

#include <cmath>

namespace {
// B(2k)/(2k+1)!; made by tools/special/zetatables.py, as the two tables below.
constexpr double debye[] = {0,
                            0.027777777777777777778,
                            -0.00027777777777777777778,
                            4.7241118669690098262e-6,
                            -9.1857730746619635509e-8,
                            1.8978869988970999072e-9,
                            -4.0647616451442255268e-11,
                            8.9216910204564525552e-13,
                            -1.9939295860721075687e-14,
                            4.5189800296199181917e-16,
                            -1.0356517612181247014e-17};

// |B(2k)| / (2k (2k+1)!), Abramowitz and Stegun 27.8.2
constexpr double clausen0[] = {0,
                               0.013888888888888888889,
                               0.000069444444444444444444,
                               7.8735197782816830436e-7,
                               1.1482216343327454439e-8,
                               1.8978869988970999072e-10,
                               3.3873013709535212723e-12,
                               6.3726364431831803966e-14,
                               1.2462059912950672305e-15,
                               2.5105444608999545509e-17,
                               5.1782588060906235072e-19,
                               1.0887357368300848844e-20,
                               2.3257441143020872235e-22,
                               5.0351952131473895608e-24,
                               1.1026499294381215333e-25,
                               2.4386585509007344735e-27,
                               5.4401426788562523156e-29,
                               1.2228340131217352117e-30,
                               2.7672634689679505842e-32};

// the same times 4^k - 1, Abramowitz and Stegun 27.8.3
constexpr double clausenpi[] = {0,
                                0.041666666666666666667,
                                0.0010416666666666666667,
                                0.000049603174603174603175,
                                2.9279651675485008818e-6,
                                1.9415383998717332051e-7,
                                1.387099911405466961e-8,
                                1.0440290284867004444e-9,
                                8.1670109639522230948e-11,
                                6.5812165661369678584e-12,
                                5.4297927275964755441e-13,
                                4.566487567193635521e-14,
                                3.9019509040630692297e-15,
                                3.3790622573736396484e-16,
                                2.9599033551444004814e-17,
                                2.6184896781186929256e-18,
                                2.3365234885821291702e-19,
                                2.100812837795431639e-20,
                                1.9016489757535847463e-21};

// sum of c[k] x^(2k+1), k = 1..n
double oddseries(const double* c, int n, double x) {
    const double w = x * x;
    double sum = 0;
    for (int k = n; k > 0; k--) sum = (sum + c[k]) * w;
    return sum * x;
}

// Li2(x) for -1 <= x <= 1/2: in u = -log(1-x), L. Lewin, Polylogarithms and Associated Functions, 1981,
// (1.75).
double dilogcentre(double x) {
    const double u = -std::log1p(-x);
    return u - 0.25 * u * u + oddseries(debye, 10, u);
}

constexpr double pi2sixth = PI * PI / 6;
} // namespace

double dilog(double x) {
    if (x < -1) {
        const double ln = std::log(-x);
        return -pi2sixth - 0.5 * ln * ln - dilogcentre(1 / x);
    }
    if (x <= 0.5) return dilogcentre(x);
    if (x == 1) return pi2sixth;
    if (x < 1) return pi2sixth - std::log(x) * std::log1p(-x) - dilogcentre(1 - x);
    spnote(SPWARN, "DILOG has imaginary part -pi*log(x)");
    const double ln = std::log(x);
    if (x <= 2) return pi2sixth - ln * std::log(x - 1) - dilogcentre(1 - x);
    return 2 * pi2sixth - 0.5 * ln * ln - dilogcentre(1 / x);
}

// The reduction to (-pi,pi] is left to sin and cos, which hold it exact near the zeros.
double clausen(double x) {
    const double s = std::sin(x), c = std::cos(x);
    if (s == 0 || std::isnan(s)) return 0;
    const double y = std::atan2(std::fabs(s), c), z = std::atan2(std::fabs(s), -c); // z = pi - y
    constexpr double ln2 = 0.69314718055994530942;
    const double value =
        z < PI / 3 ? z * ln2 - oddseries(clausenpi, 18, z) : y - y * std::log(y) + oddseries(clausen0, 18, y);
    return std::copysign(value, s);
}

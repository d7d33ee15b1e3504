#include "special/expint.h"

#include "interp/base/machine.h"
#include "special/chebyshev.h"
#include "special/elementary.h"
#include "special/fault.h"
#include "special/gamma.h"
#include "special/incgamma.h"
#include "special/range.h"

#include <cmath>

namespace {
// All tables of this file are made by tools/special/expinttables.py, to the last bit of a double.
// x exp(-x) Ei(x), linear in 1/x
// 6 <= x <= 12
constexpr double eics1[] = {0,
                            2.3730394632118859822,
                            0.088672777991565662956,
                            0.0045388496158548903189,
                            -0.00073609171335335054873,
                            -0.00013118020944213831529,
                            0.000018602818582777689962,
                            1.7610424153850597992e-6,
                            -6.4104266923763720853e-7,
                            4.3431190977401598818e-8,
                            9.4577130140178854254e-9,
                            -2.8048676608249656177e-9,
                            2.9077513809389466784e-10,
                            1.5005396668585006627e-11,
                            -1.1038674953026538643e-11,
                            2.0752769575841014132e-12,
                            -1.8248940142556408126e-13,
                            -1.3060424323093775119e-14,
                            8.2281744343895399164e-15,
                            -1.7064640854405606295e-15,
                            2.0895115006185691296e-16,
                            -6.9695238878518599086e-18};
// 12 <= x <= 24
constexpr double eics2[] = {0,
                            2.1466569874520723919,
                            0.028589376984320986734,
                            0.00098773545990196571015,
                            0.000065351426746843672979,
                            4.0808674376255065728e-6,
                            -3.5899266118380607095e-7,
                            -1.3445734356897559319e-7,
                            -3.0965540010360472342e-9,
                            2.9939580378560676217e-9,
                            6.6369011954466873324e-11,
                            -7.5802988735125443003e-11,
                            2.9109327100644497699e-12,
                            1.6949183480316524959e-12,
                            -2.4843531143767758321e-13,
                            -1.4921371160913074558e-14,
                            8.5695925175476658057e-15,
                            -8.5523277712507054582e-16,
                            -9.5673823387102185473e-17,
                            3.9227847191595896401e-17,
                            -4.3426859203216500565e-18};
// 24 <= x <= 60
constexpr double eics3[] = {0,
                            2.0624959401869046437,
                            0.014201765996440817192,
                            0.00021076265873676076438,
                            5.118581810533216034e-6,
                            1.8443386587345898098e-7,
                            9.5684581702269512466e-9,
                            7.1384083047670190776e-10,
                            7.1201420521031751294e-11,
                            7.1504553880931337885e-12,
                            2.1931472302483112598e-13,
                            -1.5808933095596212521e-13,
                            -4.2976662500583057042e-14,
                            -2.8672291059540159815e-15,
                            1.0504167558908474236e-15,
                            2.3429368620157533101e-16,
                            -1.6437812938797671921e-17};

// x exp(x) E1(x), linear in 1/x
// 1 <= x <= 2
constexpr double e1cs1[] = {0,
                            1.3102505610495427161,
                            -0.062795787219454734937,
                            0.0043444007128698889579,
                            -0.00035597374150849384641,
                            0.000032291597118565355483,
                            -3.1401050523085303741e-6,
                            3.2140143985676214288e-7,
                            -3.422981502468124828e-8,
                            3.7638631986270102144e-9,
                            -4.249374440706047656e-10,
                            4.9055642383674900131e-11,
                            -5.7723872043846925712e-12,
                            6.9063393560192238975e-13,
                            -8.3849908486448126088e-14,
                            1.0313691564633702478e-14,
                            -1.2835057954030442915e-15,
                            1.6142196819773348815e-16,
                            -2.0497057032587532044e-17,
                            2.6255888620426866616e-18};
// 2 <= x <= 5
constexpr double e1cs2[] = {0,
                            1.5664275741626551218,
                            -0.064393254609602190627,
                            0.0041397754248893723527,
                            -0.00033051002469984246088,
                            0.000030166180317676035159,
                            -3.0218544063948708174e-6,
                            3.244853031314634404e-7,
                            -3.6790145125659992482e-8,
                            4.3590925257989346683e-9,
                            -5.3574625208909878814e-10,
                            6.7921191801804247416e-11,
                            -8.8444887423452047596e-12,
                            1.1789373119690499054e-12,
                            -1.6042559105712216577e-13,
                            2.223562696474642665e-14,
                            -3.1333512051213228965e-15,
                            4.4819942292796480503e-16,
                            -6.4991354824540777014e-17,
                            9.542513361246355164e-18};
// 5 <= x <= 20
constexpr double e1cs3[] = {0,
                            1.8014522865646930383,
                            -0.050965317127736634075,
                            0.0025017760852707195666,
                            -0.00016352992242164356368,
                            0.000012860145519043022647,
                            -1.1546681524473720378e-6,
                            1.1471437811755180295e-7,
                            -1.2353548507470690908e-8,
                            1.4214461422217397453e-9,
                            -1.72925063823895428e-10,
                            2.2064910174599834841e-11,
                            -2.9346300561784951778e-12,
                            4.0480700278975070152e-13,
                            -5.768005636082283972e-14,
                            8.4611773876027434016e-15,
                            -1.2742170476749437533e-15,
                            1.9652998650838587655e-16,
                            -3.0981354732660989666e-17,
                            4.9830063723989507642e-18};
// 20 <= x
constexpr double e1cs4[] = {0,
                            1.9533486887837393663,
                            -0.022798022879878203375,
                            0.00051042388661146643045,
                            -0.000016487689055150255863,
                            6.8467086266962631665e-7,
                            -3.4338836668011950619e-8,
                            2.0005544473974527251e-9,
                            -1.3184383882413369676e-10,
                            9.6427694679803031477e-12,
                            -7.7146400570684089057e-13,
                            6.6762238552037272986e-14,
                            -6.1938429330011224578e-15,
                            6.1155609165615694008e-16,
                            -6.3875465479581695909e-17,
                            7.0217632385135597318e-18};

// (1 - log(1+x)/x)/x in x/0.375, |x| <= 0.375: the series ALNRCS of W. Fullerton's ALNREL (SLATEC)
constexpr double alnrcs[] = {0,
                             1.0378693562743769801,
                             -0.13364301504908918099,
                             0.019408249135520563358,
                             -0.003010755112753577769,
                             0.0004869461479715485009,
                             -0.000081054881893175356067,
                             0.000013778847799559524783,
                             -2.3802210894358970251e-6,
                             4.1640416213865183476e-7,
                             -7.3595828378075994984e-8,
                             1.3117611876241674949e-8,
                             -2.3546709317742425137e-9,
                             4.2522773276034997776e-10,
                             -7.7190894134840796826e-11,
                             1.4075746481359069909e-11,
                             -2.5769072058024680628e-12,
                             4.7342406666294421849e-13,
                             -8.7249012674742641745e-14,
                             1.6124614902740551466e-14,
                             -2.9875652015665773007e-15,
                             5.5480701209082887983e-16,
                             -1.0324619158271569595e-16,
                             1.9250239203049851178e-17,
                             -3.5955073465265150011e-18};

constexpr double eizero = 0x1.7d72952b4b5fcp-2, eizerorest = 1.3140183414386028201e-17;
constexpr double lizero = 0x1.738cef263ea25p+0, lizerorest = -4.8271364269603301007e-17;

// A table in 1/x over low <= x <= high
template <int n> double inverseseries(const double* table, double x, double low, double high) {
    const double near = 1 / low, far = 1 / high, t = (2 / x - near - far) / (near - far);
    return csevlfixed<n>(t < -1 ? -1 : t > 1 ? 1 : t, table);
}

// The sum of x^k/(k k!), k >= 1
double einseries(double x) {
    double term = 1, sum = 0;
    for (int k = 1; k < 60; k++) {
        term *= x / k;
        sum += term / k;
        if (std::fabs(term) < 1e-18 * std::fabs(sum)) break;
    }
    return sum;
}

/* Ei at x = z + d near its zero z: Ei(x) - Ei(z) is log(x/z) and the sum of (x^k - z^k)/(k k!), where d is
 * taken out of each difference. */
double einearzero(double x, double d) {
    double p = 1, zk = 1, factorial = 1, sum = 0; // p = x^(k-1) + x^(k-2) z + .. + z^(k-1)
    for (int k = 1; k < 18; k++) {
        factorial *= k;
        sum += p / (k * factorial);
        zk *= eizero;
        p = x * p + zk;
    }
    return std::log1p(d / eizero) + d * sum;
}

// x exp(-x) Ei(x), x >= 6; beyond 60 the asymptotic series, DLMF 6.12.2
double eiscaled(double x) {
    if (x <= 12) return inverseseries<21>(eics1, x, 6, 12);
    if (x <= 24) return inverseseries<20>(eics2, x, 12, 24);
    if (x <= 60) return inverseseries<16>(eics3, x, 24, 60);
    double term = 1, sum = 1;
    for (int k = 1; term > 1e-18; k++) sum += term *= k / x;
    return sum;
}

// x exp(x) E1(x), x > 1
double e1scaled(double x) {
    if (x <= 2) return inverseseries<19>(e1cs1, x, 1, 2);
    if (x <= 5) return inverseseries<19>(e1cs2, x, 2, 5);
    if (x <= 20) return inverseseries<19>(e1cs3, x, 5, 20);
    return inverseseries<15>(e1cs4, x, 20, HUGE_VAL);
}

double e1(double x) {
    if (x > 1) return std::exp(-x) * e1scaled(x) / x;
    return -EULERGAMMA - std::log(x) - einseries(-x);
}

double eipositive(double x) {
    if (std::fabs(x - eizero) < 0.12) return einearzero(x, (x - eizero) - eizerorest);
    if (x < 6) return EULERGAMMA + std::log(x) + einseries(x);
    if (x > 720) return HUGE_VAL;
    return std::exp(x - 20) * (eiscaled(x) / x * 485165195.40979027797); // exp(20)
}

/* E_p(x) for p > 0 by the continued fraction DLMF 8.19.17, its even part, by the method of Lentz; good where
 * x or p is large. */
double enfraction(double p, double x, double factor) {
    double b = x + p, c = 1e300, d = 1 / b, h = d;
    for (int k = 1; k < 1000; k++) {
        const double numerator = -k * (p - 1 + k);
        b += 2;
        d = 1 / (numerator * d + b);
        c = b + numerator / c;
        h *= c * d;
        if (std::fabs(c * d - 1) < 2 * MACHEPS) break;
    }
    return h * factor;
}

/* E_p(x) for p > 0, x <= 1: the sum of -(-x)^k / (k! (1-p+k)) and Gamma(1-p) x^(p-1), DLMF 8.19.10. With n
 * the whole number nearest to p = n + e, the term k = n-1 and the gamma function together are
 * (-x)^(n-1)/(n-1)! times -(exp(e log(x) + log(Gamma(1-e)) - sum of log(1+e/j), j < n) - 1)/e. */
double enseries(double p, double x) {
    const double n = std::fmax(1, std::round(p)), e = p - n;
    double ln = 0; // the exponent over e
    for (int j = 1; j < n; j++) ln -= e == 0 ? 1.0 / j : std::log1p(e / j) / e;
    ln += std::log(x) + (e == 0 ? EULERGAMMA : loggamma1p(-e) / e);
    double term = 1, sum = 0;
    for (int k = 0; k < 60; k++) {
        if (k == n - 1)
            sum -= term * (e == 0 ? ln : std::expm1(e * ln) / e);
        else
            sum -= term / (1 - p + k);
        term *= -x / (k + 1);
        if (k >= n && std::fabs(term) < 1e-18 * std::fabs(sum)) break;
    }
    return sum;
}

// E_p(x), x > 0, p >= 0
double enpositive(double p, double x) {
    if (p == 1) return e1(x);
    if (p == 0) return std::exp(-x) / x;
    return x > 1 || p > 12 ? enfraction(p, x, std::exp(-x)) : enseries(p, x);
}

/* E_-n(x) for x < 0: with |x| > n the finite sum exp(-x)/x (1 + n/x + n(n-1)/x^2 + ..), else what the whole
 * integral n!/x^(n+1) leaves, exp(-x)/(n+1) (1 + x/(n+2) + x^2/((n+2)(n+3)) + ..). Neither sum cancels. */
double enfinite(double n, double x) {
    double term = 1, sum = 1;
    if (-x > n) {
        for (double k = n; k > 0 && std::fabs(term) > 1e-18; k--) sum += term *= k / x;
        return std::exp(-x) / x * sum;
    }
    double whole = 1 / x;
    for (double k = 1; k <= n; k++) whole *= k / x;
    for (double k = n + 2; std::fabs(term) > 1e-18; k++) sum += term *= x / k;
    return whole - std::exp(-x) / (n + 1) * sum;
}

/* E_p(x) for p < 0: upwards from the fraction of p by DLMF 8.19.12, where for x > 0 all terms are positive;
 * the factor exp(-x) is kept apart. Far down as an upper incomplete gamma function, DLMF 8.19.1. */
double ennegative(double p, double x) {
    if (p < -200 && x > 0) return igammac(1 - p, x) * std::exp(loggamma(1 - p) - (1 - p) * std::log(x));
    if (p < -1e4) return -paritysign(p) * HUGE_VAL; // x < 0 and p whole: it grows like (-p)!/x^(1-p)
    if (x < 0) return enfinite(-p, x);
    const double steps = -std::floor(p);
    double q = p + steps, e = q == 0 ? 1 / x : x > 30 ? enfraction(q, x, 1) : std::exp(x) * enpositive(q, x);
    for (double k = 0; k < steps; k++) {
        q -= 1;
        e = (1 - q * e) / x;
    }
    return e * std::exp(-x);
}
} // namespace

double expint(double x) {
    if (x < 0) return -e1(-x);
    return capped("EXPINT", x == 0 ? -HUGE_VAL : eipositive(x));
}

double expintn(double n, double x) {
    const bool elementary = n <= 0 && n == std::trunc(n);
    if (std::isnan(n) || std::isnan(x) || (x < 0 && !elementary)) return outofrange("EXPINTN", 0);
    if (x == 0) return n > 1 ? 1 / (n - 1) : capped("EXPINTN", HUGE_VAL);
    return cappedorpole("EXPINTN", n < 0 ? ennegative(n, x) : enpositive(n, x));
}

double logint(double x) {
    if (!(x >= 0)) {
        rangewarn("LOGINT");
        return 0;
    }
    if (x == 0) return 0;
    if (std::fabs(x - lizero) < 0.1)
        return einearzero(std::log(x), std::log1p(((x - lizero) - lizerorest) / lizero));
    return x == 1 ? capped("LOGINT", -HUGE_VAL) : expint(std::log(x));
}

double logrel(double x) {
    if (!(x > -1)) {
        rangewarn("LOGREL");
        return x == -1 ? MAXNEG : 0;
    }
    if (x < -1 + 1.0536713e-8) spnote(SPWARN, "LOGREL: reduced precision"); // sqrt(MACHEPS) from the pole
    if (std::fabs(x) <= 0.375) return x * (1 - x * csevlfixed<24>(x / 0.375, alnrcs));
    return std::log(1 + x);
}

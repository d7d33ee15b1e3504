#include "special/airy.h"

#include "special/doubledouble.h"
#include "special/elementary.h"
#include "special/range.h"

#include <cmath>

namespace {

// Ai, Ai', Bi, Bi' at the integers from -10 to 10, made by tools/special/airytable.py (mpmath, 40 digits).
constexpr int LASTNODE = 10;
constexpr airyvalues nodes[2 * LASTNODE + 1] = {
    {0.04024123848644319, 0.99626504413279, -0.3146798296438386, 0.11941411339990923},
    {-0.022133721547341403, -0.9756639809263316, 0.3249473234552449, -0.05740051384366925},
    {-0.0527050503563862, 0.9355609381983065, -0.33125158075113786, -0.1594504978129814},
    {0.18428083525050565, -0.7710081684101265, 0.293762071854414, 0.4982445900581135},
    {-0.3291451736298231, 0.3459354872813429, -0.14669837667055705, -0.812898785105067},
    {0.35076100902411433, 0.32719281855444315, -0.13836913490160058, 0.7784117730018992},
    {-0.07026553294928951, -0.7906285753685813, 0.3922347057069993, -0.1166705674383409},
    {-0.37881429367765806, 0.3145837692165988, -0.19828962637492653, -0.6756112226852585},
    {0.22740742820168558, 0.618259020741691, -0.4123025879563985, 0.2787951669211695},
    {0.5355608832923521, -0.01016056711664521, 0.1039973894969446, 0.5923756264227924},
    {0.3550280538878172, -0.2588194037928068, 0.6149266274460007, 0.4482883573538264},
    {0.13529241631288141, -0.1591474412967932, 1.2074235949528713, 0.9324359333927756},
    {0.03492413042327438, -0.05309038443365363, 3.2980949999782148, 4.10068204993289},
    {0.006591139357460719, -0.011912976705951319, 14.037328963730232, 22.92221496638217},
    {0.0009515638512048018, -0.001958640950204179, 83.84707140846814, 161.9266835046134},
    {0.00010834442813607442, -0.0002474138908684625, 657.7920441711711, 1435.8190802179824},
    {9.947694360252889e-06, -2.4765200397034955e-05, 6536.446104809864, 15725.602621930477},
    {7.492128863997167e-07, -2.008150894738792e-06, 80327.79070943025, 209552.6708739713},
    {4.6922076160992316e-08, -1.3414392979067865e-07, 1199586.00412446, 3354342.3127445388},
    {2.47116843087249e-09, -7.480641389658946e-09, 21472868.891435347, 63807489.78090821},
    {1.1047532552898686e-10, -3.5206336767389237e-10, 455641153.54822516, 1429236134.4828658},
};

constexpr double SQRT1PI = 0.56418958354775628695; // 1/sqrt(pi)

// Taylor's series about a node, |h| <= 1/2: y'' = x y gives (n+2)(n+1) a(n+2) = x0 a(n) + a(n-1).
void taylor(double x0, double h, double y0, double yp0, double* y, double* yp) {
    double before = 0, a = y0, next = yp0 * h; // terms a(n-1) h^(n-1), a(n) h^n, a(n+1) h^(n+1)
    double sum = a + next, slope = next;       // slope: sum of n a(n) h^n
    const double h2 = h * h, h3 = h2 * h;
    for (int n = 0; n < 60; n++) {
        const double t = (x0 * h2 * a + h3 * before) / ((n + 2.0) * (n + 1.0));
        before = a;
        a = next;
        next = t;
        sum += t;
        slope += (n + 2) * t;
        if (std::fabs(t) + std::fabs(a) < 1e-18 * std::fabs(sum)) break;
    }
    *y = sum;
    *yp = h == 0 ? yp0 : slope / h;
}

// The sums of u_k/z^k and v_k/z^k of DLMF 9.7(i), z = zeta >= 19, apart for even and odd k;
// `sign` -1 makes the signs within each alternate.
struct airysums {
    double ueven = 1, uodd = 0, veven = 1, vodd = 0;
};
airysums sums(double z, int sign) {
    airysums s;
    double u = 1;
    for (int k = 1; k < 40; k++) {
        u *= (6.0 * k - 5) * (6.0 * k - 3) * (6.0 * k - 1) / ((2.0 * k - 1) * 216 * k * z);
        const double su = (k / 2) % 2 ? sign * u : u;
        const double sv = su * (6.0 * k + 1) / (1 - 6.0 * k);
        (k % 2 ? s.uodd : s.ueven) += su;
        (k % 2 ? s.vodd : s.veven) += sv;
        if (u < 1e-18) break;
    }
    return s;
}

dd zetaof(double z) { return ddsqrt(z) * z * 2.0 / 3.0; }

airyvalues largepositive(double x) {
    const dd zeta = zetaof(x);
    const airysums s = sums(zeta.hi, 1);
    const double root4 = std::sqrt(std::sqrt(x));
    const double half = std::exp(zeta.hi / 2), up = 1 + zeta.lo;
    const double small = SQRT1PI / 2 / half / half / up;
    const auto grown = [&](double m) { return m * half * half * up; };
    return {small / root4 * (s.ueven - s.uodd), -small * root4 * (s.veven - s.vodd),
            grown(SQRT1PI / root4 * (s.ueven + s.uodd)), grown(SQRT1PI * root4 * (s.veven + s.vodd))};
}

airyvalues largenegative(double x) {
    const double z = -x;
    const dd zeta = zetaof(z);
    const airysums s = sums(zeta.hi, -1);
    const double root4 = std::sqrt(std::sqrt(z));
    double sn = std::sin(zeta.hi), cs = std::cos(zeta.hi);
    const double t = sn + zeta.lo * cs; // the low part of zeta
    cs -= zeta.lo * sn;
    sn = t;
    const double c = (cs + sn) * M_SQRT1_2, d = (sn - cs) * M_SQRT1_2; // of zeta - pi/4
    const double small = SQRT1PI / root4, large = SQRT1PI * root4;
    return {small * (c * s.ueven + d * s.uodd), large * (d * s.veven - c * s.vodd),
            small * (c * s.uodd - d * s.ueven), large * (c * s.veven + d * s.vodd)};
}

} // namespace

airyvalues airyall(double x) {
    if (std::isnan(x)) return {x, x, x, x};
    if (std::isinf(x)) return x > 0 ? airyvalues{0, 0, x, x} : airyvalues{0, 0, 0, 0};
    if (x > LASTNODE + 0.5) return largepositive(x);
    if (x < -LASTNODE - 0.5) return largenegative(x);
    const double x0 = std::nearbyint(x);
    const airyvalues& n = nodes[static_cast<int>(x0) + LASTNODE];
    airyvalues r;
    taylor(x0, x - x0, n.ai, n.aip, &r.ai, &r.aip);
    taylor(x0, x - x0, n.bi, n.bip, &r.bi, &r.bip);
    return r;
}

double airyai(double x) { return airyall(x).ai; }
double airyaip(double x) { return airyall(x).aip; }

double bairy(double x, double kind) {
    const airyvalues a = airyall(x);
    const double r = kind == 0 ? a.bi : kind == 1 ? a.bip : kind == 2 ? a.ai : a.aip;
    if (kind != 0 && kind != 1 && kind != 2 && kind != 3) return outofrange("BAIRY", 0);
    if (std::isnan(r) && x > 0) return kind < 2 ? outofrange("BAIRY", MAXPOS) : 0;
    return cappedorpole("BAIRY", r);
}

void airyphase(double x, double* modulus, double* theta) {
    if (!(x <= 1)) {
        spnote(SPERR, "airyphase: argument must be <= 1.0");
        *modulus = *theta = 0;
        return;
    }
    const double zeta = x < 0 ? zetaof(-x).hi : 0;
    if (x < -LASTNODE - 0.5) {
        const airysums s = sums(zeta, -1);
        *modulus = SQRT1PI * std::hypot(s.ueven, s.uodd) / std::sqrt(std::sqrt(-x));
        *theta = PI / 4 - zeta + std::atan(s.uodd / s.ueven);
        return;
    }
    const airyvalues a = airyall(x);
    *modulus = std::hypot(a.ai, a.bi);
    const double principal = std::atan2(a.bi, a.ai); // take the turn nearest to pi/4 - zeta
    *theta = principal + 2 * PI * std::nearbyint((PI / 4 - zeta - principal) / (2 * PI));
}

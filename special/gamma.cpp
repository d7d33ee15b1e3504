#include "special/gamma.h"

#include "interp/base/machine.h"
#include "special/chebyshev.h"
#include "special/elementary.h"
#include "special/fault.h"

#include <cmath>

const double factorials[171] = {1.0,
                                1.0,
                                2.0,
                                6.0,
                                24.0,
                                120.0,
                                720.0,
                                5040.0,
                                40320.0,
                                362880.0,
                                3628800.0,
                                39916800.0,
                                479001600.0,
                                6227020800.0,
                                87178291200.0,
                                1307674368000.0,
                                20922789888000.0,
                                355687428096000.0,
                                6402373705728000.0,
                                1.21645100408832e17,
                                2.43290200817664e18,
                                5.109094217170944e19,
                                1.1240007277776077e21,
                                2.585201673888498e22,
                                6.204484017332394e23,
                                1.5511210043330986e25,
                                4.0329146112660565e26,
                                1.0888869450418352e28,
                                3.0488834461171387e29,
                                8.841761993739702e30,
                                2.6525285981219107e32,
                                8.222838654177922e33,
                                2.631308369336935e35,
                                8.683317618811886e36,
                                2.9523279903960416e38,
                                1.0333147966386145e40,
                                3.7199332678990125e41,
                                1.3763753091226346e43,
                                5.230226174666011e44,
                                2.0397882081197444e46,
                                8.159152832478977e47,
                                3.345252661316381e49,
                                1.40500611775288e51,
                                6.041526306337383e52,
                                2.658271574788449e54,
                                1.1962222086548019e56,
                                5.502622159812089e57,
                                2.5862324151116818e59,
                                1.2413915592536073e61,
                                6.082818640342675e62,
                                3.0414093201713376e64,
                                1.5511187532873822e66,
                                8.065817517094388e67,
                                4.2748832840600255e69,
                                2.308436973392414e71,
                                1.2696403353658276e73,
                                7.109985878048635e74,
                                4.0526919504877214e76,
                                2.3505613312828785e78,
                                1.3868311854568984e80,
                                8.32098711274139e81,
                                5.075802138772248e83,
                                3.146997326038794e85,
                                1.98260831540444e87,
                                1.2688693218588417e89,
                                8.247650592082472e90,
                                5.443449390774431e92,
                                3.647111091818868e94,
                                2.4800355424368305e96,
                                1.711224524281413e98,
                                1.1978571669969892e100,
                                8.504785885678623e101,
                                6.1234458376886085e103,
                                4.4701154615126844e105,
                                3.307885441519386e107,
                                2.48091408113954e109,
                                1.8854947016660504e111,
                                1.4518309202828587e113,
                                1.1324281178206297e115,
                                8.946182130782976e116,
                                7.156945704626381e118,
                                5.797126020747368e120,
                                4.753643337012842e122,
                                3.945523969720659e124,
                                3.314240134565353e126,
                                2.81710411438055e128,
                                2.4227095383672734e130,
                                2.107757298379528e132,
                                1.8548264225739844e134,
                                1.650795516090846e136,
                                1.4857159644817615e138,
                                1.352001527678403e140,
                                1.2438414054641308e142,
                                1.1567725070816416e144,
                                1.087366156656743e146,
                                1.032997848823906e148,
                                9.916779348709496e149,
                                9.619275968248212e151,
                                9.426890448883248e153,
                                9.332621544394415e155,
                                9.332621544394415e157,
                                9.42594775983836e159,
                                9.614466715035127e161,
                                9.90290071648618e163,
                                1.0299016745145628e166,
                                1.081396758240291e168,
                                1.1462805637347084e170,
                                1.226520203196138e172,
                                1.324641819451829e174,
                                1.4438595832024937e176,
                                1.588245541522743e178,
                                1.7629525510902446e180,
                                1.974506857221074e182,
                                2.2311927486598138e184,
                                2.5435597334721877e186,
                                2.925093693493016e188,
                                3.393108684451898e190,
                                3.969937160808721e192,
                                4.684525849754291e194,
                                5.574585761207606e196,
                                6.689502913449127e198,
                                8.094298525273444e200,
                                9.875044200833601e202,
                                1.214630436702533e205,
                                1.506141741511141e207,
                                1.882677176888926e209,
                                2.372173242880047e211,
                                3.0126600184576594e213,
                                3.856204823625804e215,
                                4.974504222477287e217,
                                6.466855489220474e219,
                                8.47158069087882e221,
                                1.1182486511960043e224,
                                1.4872707060906857e226,
                                1.9929427461615188e228,
                                2.6904727073180504e230,
                                3.659042881952549e232,
                                5.012888748274992e234,
                                6.917786472619489e236,
                                9.615723196941089e238,
                                1.3462012475717526e241,
                                1.898143759076171e243,
                                2.695364137888163e245,
                                3.854370717180073e247,
                                5.5502938327393044e249,
                                8.047926057471992e251,
                                1.1749972043909107e254,
                                1.727245890454639e256,
                                2.5563239178728654e258,
                                3.80892263763057e260,
                                5.713383956445855e262,
                                8.62720977423324e264,
                                1.3113358856834524e267,
                                2.0063439050956823e269,
                                3.0897696138473508e271,
                                4.789142901463394e273,
                                7.471062926282894e275,
                                1.1729568794264145e278,
                                1.853271869493735e280,
                                2.9467022724950384e282,
                                4.7147236359920616e284,
                                7.590705053947219e286,
                                1.2296942187394494e289,
                                2.0044015765453026e291,
                                3.287218585534296e293,
                                5.423910666131589e295,
                                9.003691705778438e297,
                                1.503616514864999e300,
                                2.5260757449731984e302,
                                4.269068009004705e304,
                                7.257415615307999e306};

namespace {
/* Gamma(1+y) - 0.9375 on 0 <= y <= 1, in 2y-1. Source: the 23-term series GAMCS of W. Fullerton's
 * GAMMA (SLATEC), here to full double accuracy, made by tools/special/gammatables.py. */
constexpr double gamcs[] = {0,
                            0.0085711955909893314219,
                            0.0044153813248410067572,
                            0.056850436815993633786,
                            -0.004219835396418560501,
                            0.0013268081812124602206,
                            -0.00018930245297988804325,
                            0.000036069253274412452566,
                            -6.0567619044608642185e-6,
                            1.0558295463022833447e-6,
                            -1.8119673655423840483e-7,
                            3.1177249647153222778e-8,
                            -5.3542196390196871409e-9,
                            9.1932755198595889469e-10,
                            -1.5779412802883397618e-10,
                            2.7079806229349545433e-11,
                            -4.6468186538257301441e-12,
                            7.9733501920074196565e-13,
                            -1.3680782098309160258e-13,
                            2.3473194865638006572e-14,
                            -4.0274326149490669328e-15,
                            6.9100517473721009121e-16,
                            -1.1855845002219929071e-16,
                            2.0341485424963739552e-17};
constexpr int gamterms = inits(gamcs, 23, 1e-14);

/* x times the rest of Stirling's formula on x >= 10, in 2(10/x)^2-1. Source: the series ALGMCS of
 * W. Fullerton's R9LGMC (SLATEC); made by tools/special/gammatables.py. */
constexpr double algmcs[] = {0,
                             0.16663894804518632472,
                             -0.000013849481760675638407,
                             9.8108256469247294262e-9,
                             -1.8091294755724941943e-11,
                             6.2210980418926052271e-14,
                             -3.3996150054177219443e-16,
                             2.683181998482698749e-18};
constexpr int algmterms = inits(algmcs, 7, 0.5 * MACHEPS);

/* x times the rest of Stirling's formula on x >= 7, powers of 1/x^2, lowest first: the first five
 * terms of the asymptotic series, minimax on the interval (tools/special/gammatables.py), so that the error
 * of the polynomial is below 1.2e-14 there. */
constexpr double stirlingcs[] = {.083333333333322039205, -.0027777777500715260881, .00079363985930629601555,
                                 -.00059371529995289481882, .00075356644621190483205};

/* log(Gamma(1+y)) / (y(y-1)) on 0 <= y <= 1, in 2y-1; made by tools/special/gammatables.py. */
constexpr double lgam12cs[] = {0,
                               0.98283078605877425496,
                               -0.076114161670435843041,
                               0.0084323249659327779588,
                               -0.0010794937263286081511,
                               0.00014900748003692964505,
                               -0.000021512399888556785352,
                               3.1979329860862186449e-6,
                               -4.8516930121399261911e-7,
                               7.4714878211631597591e-8,
                               -1.163829670017051855e-8,
                               1.8294004371186679595e-9,
                               -2.8969180607129606429e-10,
                               4.6157014062090900998e-11,
                               -7.3928102304979824561e-12,
                               1.1894280008333085569e-12,
                               -1.921206867652280446e-13,
                               3.1139755263871640045e-14,
                               -5.0628432984486112745e-15,
                               8.2541502816311442781e-16,
                               -1.3490578987574843217e-16,
                               2.2098761167826228497e-17,
                               -3.6274129549239769289e-18};
constexpr int lgam12terms = inits(lgam12cs, 22, 0.5 * MACHEPS);

constexpr double dxrel = 1.8249928e-8; // sqrt(3 MACHEPS): nearer to a pole the result holds half its digits

bool nearpole(double x) { return std::fabs((x - std::trunc(x - 0.5)) / x) < dxrel; }

// The result of GAMMA, held within the doubles: tiny arguments and the neighbourhood of poles overflow.
double gammaresult(double g) {
    if (std::isfinite(g)) return g;
    rangewarn("GAMMA");
    return g > 0 ? MAXPOS : MAXNEG;
}

// |x| <= 10: from the series for 1+y, y the fraction of x, by recurrence up or down.
double gammasmall(double x) {
    int n = int(x);
    if (x < 0) n--;
    const double y = x - n;
    n--;
    if (y == 0 && n >= 0) return factorials[n]; // the series, cut at 1e-14, would miss the integer
    double g = csevlfixed<gamterms>(2 * y - 1, gamcs) + 0.9375;
    if (n >= 0) {
        for (int i = 1; i <= n; i++) g *= y + i;
        return g;
    }
    if (x == std::trunc(x)) {
        rangewarn("GAMMA");
        return 0;
    }
    if (x < -0.5 && nearpole(x)) spnote(SPWARN, "gamma(x) precision reduced: x too close to -integer");
    double divisor = x;
    for (int i = 1; i < -n; i++) divisor *= x + i;
    return gammaresult(g / divisor);
}

/* Stirling's formula exp((y-0.5)log(y) - y + log(sqrt(2 pi)) + r9lgmc(y)), 10 < y < 172. The exponent
 * rounded once would cost 1e-13 at the end of the range, so y^(y-0.5) is taken as a square. */
double gammastirling(double y) {
    constexpr double sqrt2pi = 2.50662827463100050242;
    const double half = std::pow(y, 0.5 * y - 0.25);
    return half * std::exp(-y) * half * (sqrt2pi * std::exp(r9lgmc(y)));
}

double gammalarge(double x) {
    static const gammalimits limits = gamlim();
    if (x > limits.xmax) {
        rangewarn("GAMMA");
        return MAXPOS;
    }
    if (x < limits.xmin) return 0;
    if (std::isnan(x)) return x;
    if (x > 0) return x == std::trunc(x) ? factorials[int(x) - 1] : gammastirling(x);
    const double y = -x, s = sinpi(y);
    if (s == 0) {
        rangewarn("GAMMA");
        return 0;
    }
    if (nearpole(x)) rangewarn("GAMMA");
    return -PI / (y * s * gammastirling(y));
}

/* Newton's iteration x - f/f' on f = (x + shift) log(x) - x + rest, from a start to a relative change
 * below 0.005; 0 if ten steps do not settle. */
double stirlinglimit(double x, double shift, double rest) {
    for (int i = 0; i < 10; i++) {
        const double old = x, ln = std::log(x);
        x -= x * ((x + shift) * ln - x + rest) / (x * ln - 0.5);
        if (std::fabs((x - old) / x) < 0.005) return x;
    }
    return 0;
}
} // namespace

gammalimits gamlim() {
    gammalimits g = {};
    const double alnsml = std::log(MINPOS), alnbig = std::log(MAXPOS);
    const double low = stirlinglimit(-alnsml, 0.5, -0.2258 + alnsml);
    if (low == 0) spnote(SPERR, "GAMMA: unable to find minimum limit for gamma function");
    g.xmin = 0.01 - low;
    const double high = stirlinglimit(alnbig, -0.5, 0.9189 - alnbig);
    if (high == 0) spnote(SPERR, "GAMMA: unable to find maximum limit for gamma function");
    g.xmax = high - 0.01;
    return g;
}

double gammafn(double x) { return std::fabs(x) <= 10 ? gammasmall(x) : gammalarge(x); }

double r9lgmc(double x) {
    if (x >= 1e8) return 1 / (12 * x);
    const double r = 10 / x;
    return csevlfixed<algmterms>(2 * r * r - 1, algmcs) / x;
}

double loggamma1p(double x) {
    if (x < 0) return loggamma1p(x + 1) - std::log1p(x);
    if (x > 1) return loggamma1p(x - 1) + std::log(x);
    return x * (x - 1) * csevlfixed<lgam12terms>(2 * x - 1, lgam12cs);
}

// Stirling's formula from 7 upwards, reached by shifting. Around its zeros 1 and 2, where that
// cancels, the series of loggamma1p.
double loggamma(double x) {
    if (x == 0) return MAXPOS;
    if (x < 0) {
        rangewarn("LOGGAMMA");
        return 0;
    }
    if (x >= 0.5 && x <= 2.5) return loggamma1p(x - 1);
    double p = 1;
    for (; x < 7; x++) p *= x;
    const double w = 1 / (x * x), *c = stirlingcs;
    const double rest = (c[0] + w * (c[1] + w * (c[2] + w * (c[3] + w * c[4])))) / x;
    const double result = (x - 0.5) * std::log(x) - x + LNSQRT2PI + rest - std::log(p);
    if (std::isfinite(result) || std::isnan(x)) return result;
    rangewarn("LOGGAMMA");
    return MAXPOS;
}

double loggammasign(double x, int* sign) {
    *sign = 1;
    if (!(x <= 0)) return loggamma(x);
    const double s = sinpi(x);
    if (s == 0) {
        *sign = 0;
        return MAXPOS;
    }
    if (s < 0) *sign = -1; // Gamma(x) Gamma(1-x) = pi/sin(pi x), Gamma(-x) = -x Gamma(1-x)
    if (x < -10) return std::log(PI / std::fabs(x * s)) - loggamma(-x);
    return -std::log(std::fabs(rgamma(x)));
}

double rgamma(double x) {
    if (x < 0.5 && x > -170) return sinpi(x) / PI * gammafn(1 - x);
    if (x >= 0.5 && x < 171) return 1 / gammafn(x);
    int sign;
    const double ln = loggammasign(x, &sign);
    return sign * std::exp(-ln);
}

/* Difference of two Stirling formulas: with u = 1/b, v = 1/(a+b) each term c (u^n - v^n) is taken as
 * c (u-v) (u^(n-1) + .. + v^(n-1)), so that nothing cancels for small a either. */
double gammaratiorest(double a, double b) {
    constexpr double c[] = {1 / 12.,   -1 / 360.,      1 / 1260., -1 / 1680.,
                            1 / 1188., -691 / 360360., 1 / 156.,  -3617 / 122400.};
    const double t = a / b, u = 1 / b, v = 1 / (a + b);
    double rest = 0, q = 1, vn = v; // q = (u^n - v^n)/(u - v), vn = v^n
    for (double ck : c) {
        rest += ck * q;
        for (int step = 0; step < 2; step++) {
            q = u * q + vn;
            vn *= v;
        }
    }
    return rest * t * v - b * log1pmx(t) + 0.5 * std::log1p(t);
}

double loggammaratio(double a, double b) {
    double shift = 0;
    for (; std::fmin(b, a + b) < 10; b++) shift += std::log1p(a / b);
    return gammaratiorest(a, b) - a * std::log(a + b) + shift;
}

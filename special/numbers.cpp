#include "special/combin.h"

#include "special/elementary.h"
#include "special/fault.h"
#include "special/gamma.h"
#include "special/range.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace {
// B(2k) and E(2k), rounded; made by tools/special/numbertables.py.
constexpr double bernoullis[] = {1.,
                                 0.16666666666666666,
                                 -0.03333333333333333,
                                 0.023809523809523808,
                                 -0.03333333333333333,
                                 0.07575757575757576,
                                 -0.2531135531135531,
                                 1.1666666666666667,
                                 -7.092156862745098,
                                 54.971177944862156,
                                 -529.1242424242424,
                                 6192.123188405797,
                                 -86580.25311355312,
                                 1425517.1666666667,
                                 -27298231.067816094,
                                 601580873.9006424,
                                 -15116315767.092157,
                                 429614643061.1667,
                                 -13711655205088.332,
                                 488332318973593.2,
                                 -1.9296579341940068e16,
                                 8.416930475736826e17,
                                 -4.0338071854059454e19,
                                 2.1150748638081993e21,
                                 -1.2086626522296526e23,
                                 7.500866746076964e24,
                                 -5.038778101481069e26,
                                 3.6528776484818122e28,
                                 -2.849876930245088e30,
                                 2.3865427499683627e32,
                                 -2.1399949257225335e34,
                                 2.0500975723478097e36,
                                 -2.093800591134638e38,
                                 2.2752696488463515e40,
                                 -2.6257710286239577e42,
                                 3.212508210271803e44,
                                 -4.159827816679471e46,
                                 5.692069548203528e48,
                                 -8.218362941978458e50,
                                 1.2502904327166994e53,
                                 -2.001558323324837e55,
                                 3.3674982915364376e57,
                                 -5.947097050313545e59,
                                 1.1011910323627977e62,
                                 -2.1355259545253502e64,
                                 4.3328896986641194e66,
                                 -9.188552824166933e68,
                                 2.0346896776329074e71,
                                 -4.700383395803573e73,
                                 1.131804344548425e76,
                                 -2.8382249570693707e78,
                                 7.406424897967885e80,
                                 -2.0096454802756605e83,
                                 5.665717005080594e85,
                                 -1.6584511154136216e88,
                                 5.036885995049238e90,
                                 -1.5861468237658186e93,
                                 5.1756743617545625e95,
                                 -1.7488921840217116e98,
                                 6.116051999495218e100,
                                 -2.2122776912707833e103,
                                 8.272277679877097e105,
                                 -3.195892511141571e108,
                                 1.2750082223387793e111,
                                 -5.250092308677413e113,
                                 2.2301817894241627e116,
                                 -9.76845219309552e118,
                                 4.409836197845295e121,
                                 -2.050857088646409e124,
                                 9.821443327979128e126,
                                 -4.841260079820888e129,
                                 2.4553088801480982e132,
                                 -1.2806926804084748e135,
                                 6.867616710466858e137,
                                 -3.7846468581969106e140,
                                 2.142610125066529e143,
                                 -1.2456727137183695e146,
                                 7.434578755100016e148,
                                 -4.5535795304641704e151,
                                 2.861211281685887e154,
                                 -1.843772355203387e157,
                                 1.2181154536221047e160,
                                 -8.248218718531412e162,
                                 5.722587793783294e165,
                                 -4.0668530525059105e168,
                                 2.9596092064642052e171,
                                 -2.2049522565189457e174,
                                 1.68125970728896e177,
                                 -1.3116736213556958e180,
                                 1.0467894009478039e183,
                                 -8.543289357883371e185,
                                 7.128782132248655e188,
                                 -6.08029314555359e191,
                                 5.299677642484992e194,
                                 -4.719425916874586e197,
                                 4.292841379140298e200,
                                 -3.9876744968232205e203,
                                 3.781978041935888e206,
                                 -3.661423368368119e209,
                                 3.617609027237286e212,
                                 -3.647077264519136e215,
                                 3.750875543645441e218,
                                 -3.934586729643903e221,
                                 4.208821114819008e224,
                                 -4.590229622061792e227,
                                 5.103172577262957e230,
                                 -5.782276230365695e233,
                                 6.676248216783588e236,
                                 -7.853530764445042e239,
                                 9.410689406705872e242,
                                 -1.1484933873465185e246,
                                 1.4272958742848785e249,
                                 -1.805955958690931e252,
                                 2.3261535307660807e255,
                                 -3.0495751715499594e258,
                                 4.068580607643398e261,
                                 -5.523103132197436e264,
                                 7.6277279396434395e267,
                                 -1.0715571119697886e271,
                                 1.5310200895969188e274,
                                 -2.2244891682179836e277,
                                 3.286267919069014e280,
                                 -4.935592895596035e283,
                                 7.534957120083251e286,
                                 -1.1691485154584178e290,
                                 1.843526146783894e293,
                                 -2.953682617296808e296,
                                 4.807932127750157e299,
                                 -7.950212504588525e302,
                                 1.3352784187354634e306};
constexpr double eulers[] = {1.,
                             -1.,
                             5.,
                             -61.,
                             1385.,
                             -50521.,
                             2702765.,
                             -199360981.,
                             19391512145.,
                             -2404879675441.,
                             370371188237525.,
                             -6.93488743931379e16,
                             1.5514534163557087e19,
                             -4.087072509293124e21,
                             1.25225964140363e24,
                             -4.415438932490231e26,
                             1.775193915795393e29,
                             -8.07232992358879e31,
                             4.1222060339517704e34,
                             -2.3489580527043107e37,
                             1.485115071811498e40,
                             -1.0364622733519612e43,
                             7.947579422597592e45,
                             -6.667537516685545e48,
                             6.096278645568542e51,
                             -6.053285248188622e54,
                             6.506162486684609e57,
                             -7.546659939008739e60,
                             9.420321896420241e63,
                             -1.2622019251806219e67,
                             1.810891149657923e70,
                             -2.7757101702071582e73,
                             4.535810333001789e76,
                             -7.886284206661789e79,
                             1.456184438013963e83,
                             -2.850517832236977e86,
                             5.905747207775443e89,
                             -1.292973664187864e93,
                             2.986928183284577e96,
                             -7.270601714016864e99,
                             1.8622915758412697e103,
                             -5.01310494081098e106,
                             1.4165255759785626e110,
                             -4.1966431640402446e113,
                             1.3021595905240464e117,
                             -4.227240686139909e120,
                             1.4343212791976582e124,
                             -5.081799072458043e127,
                             1.87833293645293e131,
                             -7.236534381033858e134,
                             2.9035283466610976e138,
                             -1.2122937378929218e142,
                             5.26306424961699e145,
                             -2.374073071936766e149,
                             1.1118900942482822e153,
                             -5.403078659795293e156,
                             2.722341085572227e160,
                             -1.421301054800967e164,
                             7.684261820646903e167,
                             -4.2996219254397495e171,
                             2.488391574782987e175,
                             -1.4887582089062041e179,
                             9.202614118852094e182,
                             -5.874244457292436e186,
                             3.870133554175927e190,
                             -2.630384646272822e194,
                             1.8434218619068164e198,
                             -1.3315007608319975e202,
                             9.9077340794641e205,
                             -7.591616153760865e209,
                             5.987386904215955e213,
                             -4.85853153680527e217,
                             4.054747377507915e221,
                             -3.478923713390906e225,
                             3.067497388251085e229,
                             -2.778574047804574e233,
                             2.5846560390271182e237,
                             -2.4681704804636407e241,
                             2.4187539760367133e245,
                             -2.431692647091073e249,
                             2.5071830005737145e253,
                             -2.6502520005258137e257,
                             2.8713019731666796e261,
                             -3.187360216235411e265,
                             3.6242416450584564e269,
                             -4.220005513130261e273,
                             5.030345578531501e277,
                             -6.136961784942134e281,
                             7.660628138463374e285,
                             -9.781780112839675e289,
                             1.2773316636719806e294,
                             -1.7053514185447204e298,
                             2.32725003482003e302,
                             -3.245547458389247e306};

__extension__ typedef unsigned __int128 wideint;

bool iscount(double n, const char* name) {
    if (n >= 0 && n == std::trunc(n)) return true;
    rangewarn(name);
    return false;
}

// The even member of a table, with the sign (-1)^(k+turn) where it has overflowed
double evenmember(const double* table, int size, double n, int turn, const char* name) {
    if (std::fmod(n, 2) == 1) return 0;
    if (0.5 * n < size) return table[int(0.5 * n)];
    return capped(name, paritysign(0.5 * n + turn) * HUGE_VAL);
}

// z = pi sqrt(n/d) in two parts, so that its rounding is not magnified by exp
struct twoparts {
    double high, low;
};
twoparts piroot(double n, double d) {
    constexpr double pirest = 1.2246467991473531772e-16; // pi - PI
    const double q = n / d, qrest = std::fma(-q, d, n) / d;
    const double r = std::sqrt(q), rrest = (std::fma(-r, r, q) + qrest) / (2 * r);
    const double high = PI * r;
    return {high, std::fma(PI, r, -high) + pirest * r + PI * rrest};
}

/* Partitions into any parts: Euler's recurrence over the pentagonal numbers while 64 bits hold them, then
 * Rademacher's series (Proc. London Math. Soc. 43, 1937, 241), whose fourth term is below 1e-17 of the first.
 */
constexpr int partsknown = 416;

std::vector<uint64_t> partitiontable() {
    std::vector<uint64_t> p(partsknown + 1);
    p[0] = 1;
    for (int n = 1; n <= partsknown; n++)
        for (int k = 1; k * (3 * k - 1) / 2 <= n; k++) { // unsigned wraparound is harmless: the sums fit
            const int g = k * (3 * k - 1) / 2;
            const uint64_t terms = p[n - g] + (n >= g + k ? p[n - g - k] : 0);
            p[n] += k % 2 ? terms : -terms;
        }
    return p;
}

constexpr double exp30 = 10686474581524.462147;

double rademacher(double n) {
    const double m = 24 * n - 1, scale = std::sqrt(12.0) / m;
    const twoparts c = piroot(m, 36);
    const double a2 = std::fmod(n, 2) == 0 ? std::sqrt(0.5) : -std::sqrt(0.5);
    const double a3 = 2 / std::sqrt(3.0) * std::cos(2 * PI / 3 * std::fmod(n, 3) - PI / 18);
    const double lesser =
        a2 * (1 - 2 / c.high) * std::exp(c.high / 2) + a3 * (1 - 3 / c.high) * std::exp(c.high / 3);
    return scale * lesser + std::exp(c.high - 30) * (scale * (1 - 1 / c.high) * (1 + c.low) * exp30);
}

/* Partitions into distinct parts: by the parts, one after the other, while 128 bits hold them; then the
 * leading term of Hua's series (Trans. AMS 51, 1942, 194), pi^2/(6 sqrt(2) z) I1(z), z = pi sqrt((24
 * n+1)/72); the next is below exp(-2z/3) of it. */
constexpr int distinctknown = 1300;

std::vector<double> distincttable() {
    std::vector<wideint> q(distinctknown + 1);
    q[0] = 1;
    for (int part = 1; part <= distinctknown; part++)
        for (int n = distinctknown; n >= part; n--) q[n] += q[n - part];
    return {q.begin(), q.end()};
}

double huaterm(double n) {
    const twoparts z = piroot(24 * n + 1, 72);
    double term = 1, sum = 1; // I1 by its asymptotic series, DLMF 10.40.1
    for (int k = 1; k < 30 && std::fabs(term) > 1e-18; k++) {
        term *= -(4.0 - (2 * k - 1) * (2 * k - 1)) / (8 * k * z.high);
        sum += term;
    }
    const double scale = PI * PI / (6 * std::sqrt(2.0) * z.high) / std::sqrt(2 * PI * z.high) * sum;
    return std::exp(z.high - 30) * (scale * exp30 * (1 + z.low));
}
} // namespace

double bernum(double n) {
    if (!iscount(n, "BERNUM")) return 0;
    if (n == 1) return -0.5;
    return evenmember(bernoullis, sizeof bernoullis / sizeof *bernoullis, n, 1, "BERNUM");
}

double eulnum(double n) {
    if (!iscount(n, "EULNUM")) return 0;
    return evenmember(eulers, sizeof eulers / sizeof *eulers, n, 0, "EULNUM");
}

double partu(double n) {
    static const std::vector<uint64_t> known = partitiontable();
    if (!iscount(n, "PARTU")) return 0;
    const double p = n <= partsknown ? double(known[int(n)]) : n < 1e6 ? rademacher(n) : HUGE_VAL;
    return capped("PARTU", p);
}

double partd(double n) {
    static const std::vector<double> known = distincttable();
    if (!iscount(n, "PARTD")) return 0;
    const double q = n <= distinctknown ? known[int(n)] : n < 1e6 ? huaterm(n) : HUGE_VAL;
    return capped("PARTD", q);
}

double harnum(double x) {
    if (!(x > -1) && x == std::trunc(x)) {
        rangewarn("HARNUM");
        return 0;
    }
    if (x < -0.5) return digamma(x + 1) + EULERGAMMA;
    if (x <= 60 && x == std::trunc(x)) {
        double sum = 0;
        for (double k = x; k >= 1; k--) sum += 1 / k;
        return sum;
    }
    return digammadifference(1, x);
}

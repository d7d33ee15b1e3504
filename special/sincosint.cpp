#include "special/chebyshev.h"
#include "special/elementary.h"
#include "special/expint.h"
#include "special/fault.h"
#include "special/range.h"

#include <cmath>

namespace {
// All tables of this file are made by tools/special/expinttables.py, to the last bit of a double.
// On 0 <= x <= 4, linear in x^2: Si(x)/x and (Ci(x) - gamma - log(x))/x^2
constexpr double sics[] = {0,
                           1.3684353401815158071,
                           -0.2776578526973601892,
                           0.035441405486665917975,
                           -0.0025631631447933977659,
                           0.00011623653904970092813,
                           -3.590432724160604267e-6,
                           8.0234212370571016231e-8,
                           -1.356299769254025065e-9,
                           1.7944072159973677557e-11,
                           -1.9083873430871454907e-13,
                           1.6669989586824330853e-15,
                           -1.217309883685030425e-17};
constexpr double cics[] = {0,
                           -0.37074501750909688742,
                           0.05893574896364446832,
                           -0.0053818964211356912405,
                           0.0002986005284196213532,
                           -0.00001095572575321620077,
                           2.8405454877346630492e-7,
                           -5.4697399487538491246e-9,
                           8.1241874613181570833e-11,
                           -9.5868593117706609013e-13,
                           9.2026600439235103138e-15,
                           -7.3258879990178950235e-17,
                           4.9143726675842908897e-19};

// The auxiliary functions (DLMF 6.2(iii)), linear in 1/x^2: x f(x)
// 4 <= x <= 8
constexpr double fcs1[] = {0,
                           1.8866620884648783295,
                           -0.027972069650662482698,
                           0.0015348107300124438888,
                           -0.00013766978575076114097,
                           0.000016080695680138958765,
                           -2.2184546509800334256e-6,
                           3.434555115274505082e-7,
                           -5.7893383175975088282e-8,
                           1.0420310693484687238e-8,
                           -1.9763186427758577548e-9,
                           3.9122945487587868913e-10,
                           -8.0268313618516015186e-11,
                           1.6976880364073417891e-11,
                           -3.6859117937513659409e-12,
                           8.1874095979598078699e-13,
                           -1.8555742955378434342e-13,
                           4.281192516297945949e-14,
                           -1.0036715383073806656e-14,
                           2.387107082934234114e-15,
                           -5.7520168769259287745e-16,
                           1.4025972184954494305e-16,
                           -3.4575951007479498793e-17,
                           8.6092019834235751601e-18};
// 8 <= x
constexpr double fcs2[] = {0,
                           1.9720813139247651953,
                           -0.013471738208295213132,
                           0.00045329284116522654335,
                           -0.000030672886516551651198,
                           3.1319919760108725171e-6,
                           -4.2110196496309774964e-7,
                           6.907244830281719012e-8,
                           -1.3183212904229397741e-8,
                           2.8369743299741645096e-9,
                           -6.7329234254863242556e-10,
                           1.7339686939790845767e-10,
                           -4.7869389042489191964e-11,
                           1.4032346521292900299e-11,
                           -4.3349571255319907426e-12,
                           1.4027265342681546587e-12,
                           -4.7306173464299964549e-13,
                           1.6557877505805563815e-13,
                           -5.9938082460428171834e-14,
                           2.2372132982506767565e-14,
                           -8.5880652314334179377e-15,
                           3.3829238741050623953e-15,
                           -1.3647281768904620426e-15,
                           5.6286899856135221433e-16,
                           -2.3698003543410956571e-16,
                           1.017110652686884165e-16,
                           -4.4447516421531099553e-17,
                           1.9754855213207924551e-17};

// and x^2 g(x)
// 4 <= x <= 8
constexpr double gcs1[] = {0,
                           1.7098958232938962353,
                           -0.064707028261481503401,
                           0.0051097669767304587694,
                           -0.00056661344757283478533,
                           0.000076544171922489433452,
                           -0.000011777406929058731435,
                           1.9883885404379631644e-6,
                           -3.6001224808870793348e-7,
                           6.8853445057673702474e-8,
                           -1.376398717440868013e-8,
                           2.8539221923437896158e-9,
                           -6.1026203407045907928e-10,
                           1.3397839026782297952e-10,
                           -3.0093455126680012741e-11,
                           6.8960640432810992087e-12,
                           -1.6084941526249264976e-12,
                           3.8114948452372748396e-13,
                           -9.1607579533985244222e-14,
                           2.2301616324405214477e-14,
                           -5.4929286338841684735e-15,
                           1.367405544768063956e-15,
                           -3.4374506917237920904e-16,
                           8.719440469663739025e-17,
                           -2.2302859816492421183e-17};
// 8 <= x
constexpr double gcs2[] = {0,
                           1.9214956795040719261,
                           -0.037113896212398056099,
                           0.0019414398889919036673,
                           -0.00017165988425147079345,
                           0.000021126377532314657316,
                           -3.2716325671153155909e-6,
                           6.006921161477705638e-7,
                           -1.2586794403387073713e-7,
                           2.9325634579957761347e-8,
                           -7.4569592062762840818e-9,
                           2.0410547835874713082e-9,
                           -5.9502230387633327165e-10,
                           1.8322967411118143665e-10,
                           -5.9205060782841302255e-11,
                           1.9965165181282272009e-11,
                           -6.9951140078472233756e-12,
                           2.5368577392860408518e-12,
                           -9.4928511643566553653e-13,
                           3.6552311529158361286e-13,
                           -1.4448739149813032335e-13,
                           5.8513121437675542806e-14,
                           -2.4232902148123071653e-14,
                           1.0247042520028650964e-14,
                           -4.4179608206972682239e-15,
                           1.9396807770775257889e-15,
                           -8.6623311643318274143e-16,
                           3.9309260519129918368e-16,
                           -1.8109729263460378587e-16,
                           8.4629943164630780918e-17,
                           -4.0086785185553701299e-17,
                           1.9232768741345299691e-17};

// Si(x) = pi/2 - f cos(x) - g sin(x), Ci(x) = f sin(x) - g cos(x)
struct auxiliary {
    double f, g;
};

// x >= 4
auxiliary sincosauxiliary(double x) {
    const double w = 1 / (x * x);
    if (x <= 8) {
        const double t = std::fmin(1, std::fmax(-1, (2 * w - 5 / 64.) * (64 / 3.)));
        return {csevlfixed<23>(t, fcs1) / x, csevlfixed<24>(t, gcs1) * w};
    }
    const double t = 128 * w - 1;
    return {csevlfixed<27>(t, fcs2) / x, csevlfixed<31>(t, gcs2) * w};
}

// The sum of x^k/(k k!) over k = first, first + 2, ..
double alternatesum(double x, int first) {
    double term = first == 1 ? x : 0.5 * x * x, sum = term / first;
    for (int k = first + 2; term > 1e-18 * sum && k < 100; k += 2) {
        term *= x / (k - 1) * (x / k);
        sum += term / k;
    }
    return sum;
}

/* Ci (sign -1) and Chi (sign 1) near their first zero z + rest: the difference from there is log(x/z) and the
 * sum of sign^k (x^2k - z^2k)/(2k (2k)!), with x^2 - z^2 taken out of each term. */
double nearzero(double x, double z, double rest, double sign) {
    const double d = (x - z) - rest, x2 = x * x, z2 = z * z;
    double p = 1, zk = 1, factor = 1, sum = 0; // p = x2^(k-1) + x2^(k-2) z2 + .. + z2^(k-1)
    for (int k = 1; k <= 8; k++) {
        factor *= sign / ((2 * k - 1) * (2 * k));
        sum += factor * p / (2 * k);
        zk *= z2;
        p = x2 * p + zk;
    }
    return std::log1p(d / z) + d * (x + z) * sum;
}
constexpr double cizero = 0x1.3ba69b6517559p-1, cirest = -4.2099203214331859197e-17;
constexpr double chizero = 0x1.0c3278da0d5c1p-1, chirest = -2.6671382575502846487e-17;

// The argument of a function of log(x), made positive; the imaginary part is left out with a warning.
double realpart(double x, const char* warning) {
    if (x >= 0) return x;
    spnote(SPWARN, "%s has imaginary part -pi", warning);
    return -x;
}
} // namespace

double sinint(double x) {
    const double y = std::fabs(x);
    if (y <= 4) return x * csevlfixed<12>(y * y / 8 - 1, sics);
    const auxiliary a = sincosauxiliary(y);
    return std::copysign(PI / 2 - a.f * std::cos(y) - a.g * std::sin(y), x);
}

double cosint(double x) {
    const double y = realpart(x, "COSINT");
    if (std::fabs(y - cizero) < 0.1) return nearzero(y, cizero, cirest, -1);
    if (y <= 4)
        return capped("COSINT", EULERGAMMA + std::log(y) + y * y * csevlfixed<12>(y * y / 8 - 1, cics));
    const auxiliary a = sincosauxiliary(y);
    return a.f * std::sin(y) - a.g * std::cos(y);
}

double sinhint(double x) {
    const double y = std::fabs(x);
    if (y < 2) return std::copysign(alternatesum(y, 1), x);
    if (y > 717) return capped("SINHINT", std::copysign(HUGE_VAL, x));
    return std::copysign(0.5 * (expint(y) - expint(-y)), x);
}

double coshint(double x) {
    const double y = realpart(x, "COSHINT");
    if (std::fabs(y - chizero) < 0.1) return nearzero(y, chizero, chirest, 1);
    if (y < 2) return capped("COSHINT", EULERGAMMA + std::log(y) + alternatesum(y, 2));
    if (y > 717) return capped("COSHINT", HUGE_VAL);
    return 0.5 * (expint(y) + expint(-y));
}

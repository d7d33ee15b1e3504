#include "interp/base/machine.h"
#include "reftable.h"
#include "special/cbessel.h"
#include "special/complexfn.h"
#include "special/elementary.h"

#include <random>

namespace {

// The two parts of a function of the last two arguments of a row; the others come first.
template <class F> void addparts(std::vector<reffunction>& all, const std::string& name, int arity, F f) {
    all.emplace_back((name + ".RE").c_str(), arity, [f](const double* a) { return f(a).re; });
    all.emplace_back((name + ".IM").c_str(), arity, [f](const double* a) { return f(a).im; });
}

struct scatter {
    std::mt19937 random{31};
    double uniform(double a, double b) { return std::uniform_real_distribution<double>(a, b)(random); }
    spcomplex square(double r) { return {uniform(-r, r), uniform(-r, r)}; }
};

double distance(spcomplex a, spcomplex b) { return magnitude(a - b); }

} // namespace

TEST(complexfn, referencevalues) {
    std::vector<reffunction> all;
    const struct {
        const char* name;
        spcomplex (*f)(spcomplex);
    } plain[] = {{"CLOG", clogfn},   {"CLNREL", clnrel}, {"CPSI", cpsi}, {"CLNGAM", clngam},
                 {"CGAMMA", cgamma}, {"C9LGMC", c9lgmc}, {"CCE1", cce1}};
    for (const auto& p : plain) addparts(all, p.name, 2, [&p](const double* a) { return p.f({a[0], a[1]}); });
    addparts(all, "CMATH", 3, [](const double* a) { return cmath(a[0], {a[1], a[2]}); });
    addparts(all, "CPOW", 4, [](const double* a) { return cpowfn({a[2], a[3]}, {a[0], a[1]}); });
    runreftable("complexfn.txt", all);
}

TEST(complexfn, inversesundotheirfunctions) {
    const int pairs[][2] = {{14, 5},  {15, 7},  {16, 9},   {46, 11},  {47, 12},  {48, 13}, {79, 64},
                            {80, 74}, {81, 75}, {49, 113}, {50, 112}, {51, 111}, {2, 1}};
    scatter s;
    for (const auto& p : pairs)
        for (int i = 0; i < 100; i++) {
            const spcomplex z = s.square(3), back = cmath(p[1], cmath(p[0], z));
            EXPECT_LT(distance(back, z), 2e-13 * (1 + magnitude(z) * magnitude(z)))
                << p[0] << " " << z.re << " " << z.im;
        }
    for (int i = 0; i < 100; i++) {
        const spcomplex z = s.square(40), r = csqrtfn(z);
        EXPECT_LT(distance(r * r, z), 1e-15 * magnitude(z));
        EXPECT_GE(r.re, 0);
        EXPECT_LT(distance(cmath(405, cmath(404, z, r), r), z), 1e-15 * magnitude(z));
        EXPECT_LT(distance(cmath(2, z, {2, 0}), cmath(67, z)), 1e-14);
    }
}

TEST(complexfn, gammafunctionsbyrecurrenceandreflection) {
    scatter s;
    for (int i = 0; i < 500; i++) {
        const spcomplex z = s.square(15), one = {1, 0};
        const spcomplex g = cgamma(z), next = cgamma(z + one);
        EXPECT_LT(distance(next, z * g), 2e-13 * magnitude(next)) << z.re << " " << z.im;
        EXPECT_LT(distance(cexpfn(clngam(z)), g), 3e-13 * magnitude(g)) << z.re << " " << z.im;
        EXPECT_LT(distance(cpsi(z + one), cpsi(z) + one / z), 1e-13 * (1 + magnitude(one / z)));
        const spcomplex l = spcomplex{z.re - 0.5, z.im} * clogfn(z) - z + spcomplex{LNSQRT2PI, 0} + c9lgmc(z);
        EXPECT_LT(distance(l, clngam(z)), 1e-13 * (20 + magnitude(l))) << z.re << " " << z.im;
    }
}

TEST(complexfn, realargumentsstayreal) {
    for (double x : {-3.3, -0.4, 0.2, 1.0, 4.5, 30.0}) {
        EXPECT_EQ(cgamma({x, 0}).im, 0);
        EXPECT_EQ(cpsi({x, 0}).im, 0);
        EXPECT_EQ(cbessj(2, {x, 0}).im, 0);
        for (int code : {1, 5, 7, 9, 11, 12, 13, 16, 46, 74, 113})
            EXPECT_EQ(cmath(code, {x, 0}).im, 0) << code << " " << x;
    }
    EXPECT_EQ(cmath(4, {-4, 0}).im, 2);
    EXPECT_EQ(cmath(4, {-4, -0.0}).im, 2); // a zero without sign: the cut belongs to the upper side
    EXPECT_EQ(clogfn({-1, -0.0}).im, PI);
    EXPECT_EQ(cmath(23, {3, -4}).re, 5);
    EXPECT_EQ(cmath(19, {0, -4}).re, -PI / 2);
}

TEST(complexfn, faults) {
    const struct {
        spfaultkind kind;
        const char* text;
        std::function<spcomplex()> call;
    } rows[] = {{SPERR, "complex division by zero",
                 [] {
                     return cdivide({1, 2}, {0, 0});
                 }},
                {SPERR, "complex division by zero",
                 [] {
                     return cmath(405, {1, 2}, {0, 0});
                 }},
                {SPERR, "complex division by zero",
                 [] {
                     return cpowfn({0, 0}, {-1, 2});
                 }},
                {SPERR, "complex division by zero",
                 [] {
                     return cmath(64, {0, 0});
                 }},
                {SPRANGEWARN, "CLOG",
                 [] {
                     return clogfn({0, 0});
                 }},
                {SPRANGEWARN, "CLNREL",
                 [] {
                     return clnrel({-1, 0});
                 }},
                {SPRANGEWARN, "CGAMMA",
                 [] {
                     return cgamma({-2, 0});
                 }},
                {SPRANGEWARN, "CGAMMA",
                 [] {
                     return cgamma({300, 1});
                 }},
                {SPRANGEWARN, "CLNGAM",
                 [] {
                     return clngam({0, 0});
                 }},
                {SPRANGEWARN, "CPSI",
                 [] {
                     return cpsi({-7, 0});
                 }},
                {SPRANGEWARN, "CCE1",
                 [] {
                     return cce1({0, 0});
                 }},
                {SPRANGEWARN, "C9LGMC",
                 [] {
                     return c9lgmc({-1, 0});
                 }},
                {SPRANGEWARN, "CMATH",
                 [] {
                     return cmath(99, {1, 1});
                 }},
                {SPRANGEWARN, "CMATH",
                 [] {
                     return cmath(1, {800, 0});
                 }},
                {SPWARN, "CLNREL: reduced precision",
                 [] {
                     return clnrel({-1 + 1e-9, 1e-10});
                 }},
                {SPWARN, "CLNGAM: reduced precision",
                 [] {
                     return clngam({-3, 1e-9});
                 }},
                {SPWARN, "CPSI: reduced precision", [] {
                     return cpsi({-3, 1e-9});
                 }}};
    for (const auto& r : rows) {
        spfaultclear();
        const spcomplex z = r.call();
        EXPECT_TRUE(std::isfinite(z.re) && std::isfinite(z.im)) << r.text;
        EXPECT_TRUE(notedonly(r.kind, r.text)) << r.text << ": " << spfaults.at[0].text;
    }
}

TEST(cbessel, referencevalues) {
    std::vector<reffunction> all;
    addparts(all, "CBESS", 4, [](const double* a) { return cbess(a[0], a[1], {a[2], a[3]}); });
    all.emplace_back("KELVIN", kelvin);
    runreftable("cbessel.txt", all);
}

TEST(cbessel, wronskiansandrecurrences) {
    scatter s;
    for (int i = 0; i < 400; i++) {
        const spcomplex z = s.square(i % 2 ? 8 : 60), one = {1, 0};
        const double nu = s.uniform(0, 25);
        spcomplex j, y, h1, h2, j1, y1, ignored;
        cjyhbs(nu, z, &j, &y, &h1, &h2);
        cjyhbs(nu + 1, z, &j1, &y1, &ignored, &ignored);
        const spcomplex w = 0.5 * PI * z; // DLMF 10.5.2: J_{nu+1} Y_nu - J_nu Y_{nu+1} = 2/(pi z)
        const double size = magnitude(w * j1 * y) + magnitude(w * j * y1);
        EXPECT_LT(distance(w * (j1 * y - j * y1), one), 1e-13 * (1 + size))
            << nu << " " << z.re << " " << z.im;
        const spcomplex i0 = cbess(3, nu, z), i1 = cbess(3, nu + 1, z), k0 = cbess(4, nu, z),
                        k1 = cbess(4, nu + 1, z);
        const double bulk = magnitude(z * i0 * k1) + magnitude(z * i1 * k0);
        EXPECT_LT(distance(z * (i0 * k1 + i1 * k0), one), 1e-13 * (1 + bulk))
            << nu << " " << z.re << " " << z.im;
        EXPECT_LT(distance(h1 + h2, 2 * j), 1e-13 * (magnitude(h1) + magnitude(h2)));
    }
}

TEST(cbessel, edges) {
    EXPECT_EQ(cbessj(0, {0, 0}).re, 1);
    EXPECT_EQ(cbessj(-3, {0, 0}).re, 0);
    const struct {
        const char* name;
        std::function<double()> call;
        double want;
    } rows[] = {{"CBESS",
                 [] {
                     return cbess(2, 0, {0, 0}).re;
                 },
                 MAXNEG},
                {"CBESS",
                 [] {
                     return cbess(4, 1, {0, 0}).re;
                 },
                 MAXPOS},
                {"CBESS",
                 [] {
                     return cbess(7, 1, {1, 1}).re;
                 },
                 0},
                {"CBESSJ",
                 [] {
                     return cbessj(-0.5, {0, 0}).re;
                 },
                 MAXPOS},
                {"CBESSJ",
                 [] {
                     return cbessj(0, {1, 800}).re;
                 },
                 MAXPOS},
                {"CBESS",
                 [] {
                     return cbess(4, 1e9, {1, 800}).re;
                 },
                 0},
                {"KELVIN", [] { return kelvin(0, -1, 3); }, 0},
                {"KELVIN", [] { return kelvin(0, 0, 3); }, MAXPOS},
                {"KELVIN", [] { return kelvin(0.5, -1, 1); }, 0},
                {"KELVIN", [] { return kelvin(0, 1, 9); }, 0},
                {"KELVIN", [] { return kelvin(0, 1500, 1); }, MAXNEG}};
    for (const auto& r : rows) {
        spfaultclear();
        const double got = r.call();
        EXPECT_TRUE(got == r.want || (std::fabs(r.want) == MAXPOS && std::fabs(got) == MAXPOS))
            << r.name << " " << got;
        EXPECT_TRUE(spfaults.count > 0 && spfaults.at[0].kind == SPRANGEWARN &&
                    r.name == std::string(spfaults.at[0].text));
    }
    EXPECT_EQ(kelvin(0, 0), 1);
    EXPECT_EQ(kelvin(0, 0, 4), -PI / 4);
    for (int k : {1, 2, 5, 6}) { // parity of whole orders
        EXPECT_EQ(kelvin(2, -3, k), (k > 4 ? -1 : 1) * kelvin(2, 3, k));
        EXPECT_EQ(kelvin(3, -3, k), (k > 4 ? 1 : -1) * kelvin(3, 3, k));
    }
}

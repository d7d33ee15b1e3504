#include "interp/base/machine.h"
#include "reftable.h"
#include "special/combin.h"
#include "special/primes.h"

#include <numeric>
#include <random>

TEST(combin, referencevalues) {
    runreftable("combin.txt", {{"FACT", fact},
                               {"BINCOEF", bincoef},
                               {"STIRL1", stirl1},
                               {"STIRL2", stirl2},
                               {"CATNUM", catnum},
                               {"BERNUM", bernum},
                               {"EULNUM", eulnum},
                               {"PARTU", partu},
                               {"PARTD", partd},
                               {"HARNUM", harnum}});
}

TEST(combin, exactwhereadoubleholdsthem) {
    // Pascal's rule and the recurrences of Stirling's numbers hold to the last bit below 2^53
    for (double n = 1; n < 70; n++)
        for (double k = 1; k < n; k++) {
            const double c = bincoef(n, k), s1 = stirl1(n, k), s2 = stirl2(n, k);
            if (c < 0x1p53) { EXPECT_EQ(c, bincoef(n - 1, k) + bincoef(n - 1, k - 1)) << n << ' ' << k; }
            if (std::fabs(s1) < 0x1p53) { EXPECT_EQ(s1, stirl1(n - 1, k - 1) - (n - 1) * stirl1(n - 1, k)); }
            if (s2 < 0x1p53) { EXPECT_EQ(s2, stirl2(n - 1, k - 1) + k * stirl2(n - 1, k)) << n << ' ' << k; }
        }
}

TEST(combin, stirlingbranchesagree) {
    // both sides of the switch to Eulerian numbers, through the recurrence that joins them
    for (double m : {1, 5, 30}) {
        const double k = std::floor(1e6 / m), n = k + 1 + m;
        EXPECT_LT(referror(stirl2(n, k + 1), stirl2(n - 1, k) + (k + 1) * stirl2(n - 1, k + 1)), 1e-13) << m;
        EXPECT_LT(referror(stirl1(n, k + 1), stirl1(n - 1, k) - (n - 1) * stirl1(n - 1, k + 1)), 1e-13) << m;
    }
}

TEST(combin, multinomialsandparity) {
    const double k[] = {2, 3, 0, 5}, big[] = {300, 300, 300, 300, 300}, bad[] = {1, 2.5};
    EXPECT_EQ(mulcoef(k, 4), 2520);
    EXPECT_EQ(mulcoef(k, 0), 1);
    spfaultclear();
    EXPECT_EQ(mulcoef(big, 5), MAXPOS);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "MULCOEF"));
    spfaultclear();
    EXPECT_EQ(mulcoef(bad, 2), 0);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "MULCOEF"));

    std::mt19937 random(9);
    std::vector<double> p(12);
    std::iota(p.begin(), p.end(), 1);
    double sign = 1;
    for (int i = 0; i < 200; i++) {
        spfaultclear();
        EXPECT_EQ(parity(p.data(), 12), sign);
        EXPECT_EQ(spfaults.count, 0);
        const size_t a = random() % 12, b = random() % 12; // an exchange turns the sign
        std::swap(p[a], p[b]);
        if (a != b) sign = -sign;
    }
    p[3] = p[4];
    EXPECT_EQ(parity(p.data(), 12), 0);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "PARITY"));
}

TEST(combin, faults) {
    const auto check = [](const char* name, double value, double result) {
        EXPECT_EQ(result, value) << name;
        EXPECT_TRUE(notedonly(SPRANGEWARN, name)) << name << ' ' << value;
        spfaultclear();
    };
    spfaultclear();
    check("FACT", 0, fact(-3));
    check("FACT", MAXPOS, fact(171));
    check("BINCOEF", MAXPOS, bincoef(1100, 550));
    check("BINCOEF", 0, bincoef(-3, 0.5));
    check("STIRL1", 0, stirl1(-1, 0));
    check("STIRL1", MAXNEG, stirl1(300, 3));
    check("STIRL2", 0, stirl2(3, 1.5));
    check("STIRL2", MAXPOS, stirl2(1e15, 1e14));
    check("CATNUM", 0, catnum(-1));
    check("CATNUM", MAXPOS, catnum(520));
    check("BERNUM", 0, bernum(0.5));
    check("BERNUM", MAXPOS, bernum(262));
    check("BERNUM", MAXNEG, bernum(260));
    check("EULNUM", 0, eulnum(-2));
    check("EULNUM", MAXPOS, eulnum(188));
    check("PARTU", 0, partu(-1));
    check("PARTU", MAXPOS, partu(1e9));
    check("PARTD", 0, partd(2.5));
    check("PARTD", MAXPOS, partd(MAXPOS));
    check("HARNUM", 0, harnum(-1));
}

TEST(primes, countsandlistsagree) {
    std::vector<double> list(static_cast<size_t>(primecount(3e5)));
    primesto(3e5, list.data());
    EXPECT_EQ(list.size(), 25997u); // pi(300000)
    EXPECT_EQ(list.back(), 299993);
    for (size_t k = 0; k < list.size(); k += k < 100 ? 1 : 997) EXPECT_EQ(nprime(double(k + 1)), list[k]);
    for (double n = 1; n < 200; n++)
        EXPECT_EQ(primecount(n), std::upper_bound(list.begin(), list.end(), n) - list.begin()) << n;
}

TEST(primes, knowncounts) {
    // J. C. Lagarias, V. S. Miller, A. M. Odlyzko, Math. Comp. 44 (1985) 537, table
    EXPECT_EQ(primecount(1e6), 78498);
    EXPECT_EQ(primecount(1e8), 5761455);
    EXPECT_EQ(primecount(1e9), 50847534);
    EXPECT_EQ(primecount(4294967294.0), 203280221);
    EXPECT_EQ(nprime(1e6), 15485863);
    EXPECT_EQ(nprime(5e7), 982451653);
    const double last = nprime(0x1p27 - 2);
    EXPECT_EQ(primecount(last), 0x1p27 - 2);
    EXPECT_EQ(primecount(last - 1), 0x1p27 - 3);
}

TEST(primes, factorsmultiplyback) {
    std::mt19937_64 random(10);
    for (int i = 0; i < 300; i++) {
        const double n = double(random() >> (11 + random() % 40)) + 1;
        if (n >= 0x1p53 - 1) continue;
        const std::vector<double> f = factorfn(n);
        double product = 1;
        for (double p : f) {
            product *= p;
            if (p < 4e9) { EXPECT_EQ(primecount(p) - primecount(std::fmax(1, p - 1)), 1) << p; }
        }
        EXPECT_EQ(product, n);
        EXPECT_TRUE(std::is_sorted(f.begin(), f.end()));
    }
    EXPECT_EQ(factorfn(94906249.0 * 94906249.0), (std::vector<double>{94906249, 94906249}));
    EXPECT_EQ(factorfn(9007199254740881.0), std::vector<double>{9007199254740881.0});
    EXPECT_EQ(factorfn(360), (std::vector<double>{2, 2, 2, 3, 3, 5}));
    EXPECT_TRUE(factorfn(1).empty());
}

TEST(primes, faults) {
    spfaultclear();
    for (double n : {0.0, -7.0, 2.5, 0x1p53 - 1, std::nan("")}) EXPECT_TRUE(factorfn(n).empty());
    EXPECT_EQ(spfaults.count, 1); // repeats of a text are not counted
    EXPECT_STREQ(spfaults.at[0].text, "FACTOR: argument must be a positive integer < 2^53 -1");
    spfaultclear();
    EXPECT_EQ(primecount(0x1p32 - 1), 0);
    EXPECT_TRUE(notedonly(SPERR, "PRIMES: argument must be a positive integer less than 2^32-1"));
    spfaultclear();
    EXPECT_EQ(nprime(0x1p27 - 1), 0);
    EXPECT_TRUE(notedonly(SPERR, "NPRIME: argument must be a positive integer less than 2^27-1"));
}

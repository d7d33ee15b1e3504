// Series: Fourier transforms of any length, lags, histograms; interpolation in tables and grids.
#include "funcs/dft.h"
#include "unit/funcs/session.h"

#include <cmath>

namespace {

using cvec = std::vector<std::complex<double>>;

cvec series(size_t n) {
    cvec x(n);
    for (size_t k = 0; k < n; k++) x[k] = {std::cos(double(k * k)), std::sin(3.0 * double(k) + 1)};
    return x;
}

TEST(dft, agreesWithTheSum) {
    for (size_t n = 1; n <= 150; n++) {
        const cvec x = series(n);
        cvec f = x;
        dft(f, -1);
        for (size_t k = 0; k < n; k++) {
            std::complex<double> sum = 0;
            for (size_t j = 0; j < n; j++)
                sum += x[j] * std::polar(1.0, -2 * M_PI * double(j * k % n) / double(n));
            ASSERT_NEAR(std::abs(f[k] - sum), 0, 2e-13) << n << ", " << k;
        }
    }
}

TEST(dft, aRealSeriesHasTheTransformOfTheComplexOne) {
    for (const size_t n : {1, 2, 3, 4, 9, 10, 61, 122, 360, 1009, 1 << 12}) {
        const cvec x = series(n);
        std::vector<double> real(3 * n);
        cvec f(n), half(n / 2 + 1);
        for (size_t k = 0; k < n; k++) f[k] = real[3 * k + 1] = x[k].real();
        dft(f, -1);
        realdft(&real[1], 3, n, half.data());
        for (size_t k = 0; k <= n / 2; k++)
            ASSERT_NEAR(std::abs(half[k] - f[k]), 0, 1e-15 * double(n)) << n << ", " << k;
    }
}

TEST(dft, theInverseBringsItBack) {
    for (const size_t n : {1024, 4096, 1000, 6561, 15625, 3 * 5 * 7 * 11, 10007, 1 << 16, 65537}) {
        const cvec x = series(n);
        cvec f = x;
        dft(f, -1);
        dft(f, 1);
        double worst = 0;
        for (size_t k = 0; k < n; k++) worst = std::max(worst, std::abs(f[k] / double(n) - x[k]));
        EXPECT_LT(worst, 3e-15) << n;
    }
}

using matrixseriestest = funcstest;

int column(const std::vector<double>& x) { return matrix(uint32_t(x.size()), 1, x); }

TEST_F(matrixseriestest, transforms) {
    EXPECT_EQ(result("DFT", {column({1, 0, 0, 0})}), "4x2: 1 0 1 0 1 0 1 0");
    EXPECT_EQ(result("DFT", {column({1, 2, 3, 4})}), "4x2: 10 0 -2 2 -2 0 -2 -2");
    EXPECT_EQ(result("IDFT", {matrix(4, 2, {10, 0, -2, 2, -2, 0, -2, -2})}), "4x2: 1 0 2 0 3 0 4 0");
    EXPECT_EQ(result("DFT", {matrix(2, 3, {0, 1, 0, 0.5, 3, 0})}), "2x3: 0 4 0 1 -2 0");
    EXPECT_EQ(result("DFT", {matrix(2, 4, {1, 0, 0, 1, 3, 0, 0, 5})}), "2x4: 4 0 0 6 -2 0 0 -4");
    EXPECT_EQ(result("RDFT", {column({1, 2, 3, 4})}), "3x2: 10 0 -2 2 -2 0");
    EXPECT_EQ(result("DFT", {matrix(2, 5, {0})}),
              "##Error: DFT functions require a 1, 2, 3, or 4 column matrix\n");
}

TEST_F(matrixseriestest, lags) {
    EXPECT_EQ(result("CROSSCOV", {column({1, 2, 3}), column({1, 2, 3})}),
              "7x2: -3 0 -2 -0.333333333333333 -1 0 0 0.666666666666667 1 0 2 -0.333333333333333 3 0");
    EXPECT_EQ(result("CROSSCORR", {column({0, 1, 0}), column({1, 0, 0})}).substr(0, 24),
              "7x2: -3 0 -2 0.166666666");
    EXPECT_EQ(result("CROSSCORR", {column({1, 2}), column({1, 2, 3})}),
              "##Error: Incorrect row/col shape of an argument of CROSSCORR\n\n");
    EXPECT_EQ(result("CORR", {matrix(3, 2, {1, -2, 2, -4, 3, -6})}), "2x2: 1 -1 -1 1");
    EXPECT_EQ(result("CORR", {matrix(3, 2, {1e200, -2e-200, 2e200, -4e-200, 3e200, -6e-200})}),
              "2x2: 1 -1 -1 1");
    EXPECT_EQ(result("DECONV", {column({1, 3, 5, 7}), column({1, 1})}), "4x1: 1 2 3 4");
    EXPECT_EQ(result("DECONV", {column({1}), column({0, 1})}), "##Error: diagonal must not be zero\n");
    EXPECT_EQ(result("DECONV", {column({1, 1, 1}), column({1e-300, 1e300})}),
              "##Error: DECONV: singular toeplitz matrix\n");
}

// The long way round by transforms gives the plain sums.
TEST_F(matrixseriestest, longSeriesAgreeWithPlainSums) {
    std::vector<double> x(700), y(700);
    double mx = 0, my = 0;
    for (size_t k = 0; k < 700; k++) {
        mx += (x[k] = std::sin(double(k * k))) / 700;
        my += (y[k] = std::cos(0.1 * double(k)) + double(k % 7)) / 700;
    }
    polpush(symtablookup("CROSSCOV"));
    polpush(column(x));
    polpush(column(y));
    const harray* m = matrixof(valuebuiltinrow(-612)->call(callargs{0, 2, -612}));
    for (const int lag : {-700, -699, -300, -1, 0, 1, 17, 500, 699, 700}) {
        double sum = 0;
        for (int t = 0; t < 700; t++)
            if (t + lag >= 0 && t + lag < 700) sum += (x[size_t(t + lag)] - mx) * (y[size_t(t)] - my);
        EXPECT_EQ(at(m, size_t(lag + 701), 1), lag);
        EXPECT_NEAR(at(m, size_t(lag + 701), 2), sum / 700, 1e-13) << lag;
    }
}

TEST_F(matrixseriestest, histograms) {
    const auto x = [] { return column({1, 2, 2, 3, 5}); };
    EXPECT_EQ(result("HISTO", {x(), scalar(4)}), "4x2: 1.5 1 2.5 2 3.5 1 4.5 1");
    EXPECT_EQ(result("HISTO", {x(), column({5, 1, 2})}), "2x2: 1.5 1 3.5 4");
    EXPECT_EQ(result("HISTO", {x(), column({2, 3})}), "1x2: 2.5 3") << "what lies outside is not counted";
    EXPECT_EQ(result("HISTO", {x(), matrix(0, 1, {0})}),
              "##Error: HISTO: bucket matrix must have positive size\n");
    EXPECT_EQ(result("HISTO", {x(), scalar(0)}), "##Error: HISTO: argument out of range\n");
    EXPECT_EQ(result("BARGRAPH", {matrix(2, 2, {1, 3, 2, 5})}),
              "8x2: 0.5 0 0.5 3 1.5 3 1.5 0 1.5 0 1.5 5 2.5 5 2.5 0");
    EXPECT_EQ(result("BARGRAPH", {column({4}), scalar(0.5)}), "4x2: 0.75 0 0.75 4 1.25 4 1.25 0");
}

TEST_F(matrixseriestest, commonDivisors) {
    EXPECT_EQ(result("EGCD", {scalar(240), scalar(46)}), "3x1: 2 -9 47");
    EXPECT_EQ(result("EGCD", {column({6, 10, 15})}), "4x1: 1 -14 7 1");
    EXPECT_EQ(result("EGCD", {scalar(-7)}), "2x1: 7 -1");
    EXPECT_EQ(result("EGCD", {scalar(0), scalar(0)}), "3x1: 0 0 0");
    EXPECT_EQ(result("EGCD", {scalar(1.5)}), "##Error: EGCD: argument out of range\n");
}

// Squares: what reproduces a parabola must do so; the natural spline and PCHIP by scipy.interpolate.
TEST_F(matrixseriestest, tables) {
    const auto t = [] { return matrix(5, 2, {4, 16, 0, 0, 1, 1, 2, 4, 3, 9}); };
    const auto x = [] { return column({0.5, 1.5, 3.7, 2}); };
    EXPECT_EQ(result("INTERP", {t(), x()}), "4x1: 0.5 2.5 13.9 4");
    EXPECT_EQ(result("INTERP", {t(), x(), scalar(2)}), "4x1: 0.25 2.25 13.69 4");
    EXPECT_EQ(result("INTERPOLATE", {t(), x()}), "4x1: 0.25 2.25 13.69 4");
    EXPECT_EQ(result("SPLINE", {t(), x(), scalar(1)}), "4x1: 0.25 2.25 13.69 4");
    EXPECT_EQ(result("SPLINE", {t(), x()}), "4x1: 0.339285714285714 2.23214285714286 13.783 4");
    EXPECT_EQ(result("INTERP3", {t(), x()}), "4x1: 0.3125 2.21875 13.6795 4");
    EXPECT_EQ(result("INTERP3", {t(), scalar(2), scalar(1)}), "1x1: 3.75");
    EXPECT_EQ(result("SPLINE", {matrix(2, 2, {0, 1, 0, 2}), x()}), "##Error: SPLINE: argument out of range\n")
        << "an abscissa stands twice";
    EXPECT_EQ(result("SPLINE", {matrix(1, 2, {0, 1}), x()}),
              "##Error: Incorrect row/col shape of an argument of SPLINE\n\n");
    EXPECT_EQ(result("INTERP", {t(), x(), scalar(5)}), "##Error: INTERP: argument out of range\n");
}

TEST_F(matrixseriestest, grids) {
    const auto g = [] { return matrix(4, 4, {0, 0, 1, 2, 0, 0, 1, 2, 1, 1, 2, 3, 2, 2, 3, 4}); }; // x + y
    for (const char* name : {"INTERP2", "INTERPOLATE2"}) {
        EXPECT_EQ(result(name, {g(), column({0.5, 1.5}), column({0.25, 2})}), "2x1: 0.75 3.5") << name;
        EXPECT_EQ(result(name, {g(), matrix(1, 2, {0.5, 1})}), "1x1: 1.5") << name;
    }
    EXPECT_EQ(result("INTERP2", {g(), column({1, 2}), scalar(1)}),
              "##Error: Incorrect row/col shape of an argument of INTERP2\n\n");
}

TEST_F(matrixseriestest, complexMatricesAndRoots) {
    EXPECT_EQ(result("PROOT", {column({1, -6, 11, -6})}), "3x2: 1 0 2 0 3 0");
    EXPECT_EQ(result("PROOT", {column({1, 0, 0})}), "2x2: 0 0 0 0");
    EXPECT_EQ(result("ZROOT", {matrix(3, 2, {1, 0, 0, 0, 0, -2})}), "2x2: -1 -1 1 1");
    EXPECT_EQ(result("PROOT", {column({0, 1})}),
              "##Error: zero degree or highest coefficient equal to zero not allowed\n");
    EXPECT_EQ(result("CINV", {matrix(1, 2, {0, 2})}), "1x2: 0 -0.5");
    EXPECT_EQ(result("CLINEQ", {matrix(2, 4, {1, 0, 0, 1, 0, 0, 2, 0}), matrix(2, 2, {1, 1, 2, 0})}),
              "2x2: 1 0 1 0");
    EXPECT_EQ(result("CINV", {matrix(2, 4, {0})}), "##Error: CINV: numerically singular matrix\n");
    polpush(symtablookup("PROOT")); // a threefold root
    polpush(column({1, -3, 3, -1}));
    const harray* m = matrixof(valuebuiltinrow(-678)->call(callargs{parser.poltop - 1, 1, -678}));
    for (uint32_t k = 1; k <= 3; k++) EXPECT_NEAR(at(m, k, 1), 1, 1e-15);
}

} // namespace

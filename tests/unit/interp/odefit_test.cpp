// Fits of differential equations: several sets of parameters integrated together against each by itself,
// whole fits against least squares of SciPy, and what must be integrated apart.
#include "solvers/fitbind.h"
#include "support/livesession.h"

#include <cmath>

namespace {

struct OdeFit : StartedSession {
    std::vector<double> differencesat(const struct odefit& row, const char* errfac);
};

struct odefit {
    const char* name;
    const char* model; // statements; the data of all pairs stand in D
    std::vector<const char*> functions, parameters;
    bool together; // whether one integration serves all points
    const char* switches = "";
};

void bindfit(fitbinding& b, const odefit& model) {
    for (const char* f : model.functions) b.pairs.push_back({symtablookup("D"), symtablookup(f), 0});
    for (const char* p : model.parameters) b.parms.push_back(symtablookup(p));
    fitbind(b);
}

// Both sides of the differences by each parameter.
std::vector<double> sidesof(const std::vector<double>& p) {
    std::vector<double> points;
    for (size_t j = 0; j < p.size(); j++)
        for (double side : {1.01, 0.99}) {
            points.insert(points.end(), p.begin(), p.end());
            points[points.size() - p.size() + j] *= side;
        }
    return points;
}

constexpr const char* chain =
    "FUNCTION A'T(T) = -K1*A; FUNCTION B'T(T) = K1*A-K2*B; INITIAL A(0) = 1; INITIAL "
    "B(0) = 0; K1 = 0.8; K2 = 0.3\n";
constexpr const char* lotka = "FUNCTION X'T(T) = A*X-B*X*Y; FUNCTION Y'T(T) = -C*Y+E*X*Y; INITIAL X(0) = X0; "
                              "INITIAL Y(0) = 1; A = 1.1; B = 0.4; C = 0.9; E = 0.3; X0 = 2\n";
constexpr const char* robertson =
    "FUNCTION A'T(T) = -K1*A+K3*B*C; FUNCTION B'T(T) = K1*A-K3*B*C-K2*B^2; FUNCTION C'T(T) = K2*B^2\n"
    "INITIAL A(0) = 1; INITIAL B(0) = 0; INITIAL C(0) = 0; K1 = 0.04; K2 = 3E7; K3 = 1E4\n";

const odefit models[] = {
    {"linear chain", chain, {"B"}, {"K1", "K2"}, true},
    {"one parameter", chain, {"A"}, {"K1"}, true},
    {"start value as parameter", lotka, {"X", "Y"}, {"A", "X0"}, true},
    {"five parameters", lotka, {"X", "Y"}, {"A", "B", "C", "X0"}, true},
    {"value of a derivative", lotka, {"X", ".X.T"}, {"A", "B", "C"}, true},
    {"functions of the solution",
     "FUNCTION S'T(T) = -V*S/(K+S); INITIAL S(0) = 3*K; FUNCTION Q(T) = V*SQRT(S); FUNCTION R(T) = S*T; "
     "FUNCTION "
     "U(T) = K*T\nV = 0.7; K = 0.6\n",
     {"Q", "U", "R", "S"},
     {"V", "K"},
     true},
    {"second order",
     "FUNCTION M''T(T) = -W^2*M-2*G*M'T; INITIAL M(0) = 1; INITIAL M'T(0) = V0; W = 2; G = 0.1; V0 = 0.5\n",
     {"M", ".M.T"},
     {"W", "G", "V0"},
     true},
    {"conditions on the time",
     "FUNCTION M'T(T) = (IF T < 2 THEN R ELSE 0.1*R)-K*M; INITIAL M(0) = 0; R = 1; K = 0.5\n",
     {"M"},
     {"R", "K"},
     true},
    {"conditions on the solution",
     "FUNCTION M'T(T) = IF M > 0.5 THEN -K*M ELSE -R*M; INITIAL M(0) = 1; R = 1; K = 0.5\n",
     {"M"},
     {"R", "K"},
     false},
    {"stiff", robertson, {"A", "B"}, {"K1", "K2", "K3"}, true},
    {"stiff from the start", robertson, {"A", ".B.T"}, {"K1", "K2", "K3"}, true, "METHOD = 2"},
    {"another stiff formula", robertson, {"A", "C"}, {"K1", "K3"}, true, "METHOD = 3"},
    {"stiff with differences", robertson, {"A"}, {"K1", "K3"}, false, "JACSW = 0"},
    {"one side overflows", "FUNCTION M'T(T) = K*M^2; INITIAL M(0) = 1; K = 0.1995\n", {"M"}, {"K"}, false},
    {"a matrix of parameters",
     "FUNCTION M'T(T) = -P(1)*M; INITIAL M(0) = P(2); P = 0.5&2\n",
     {"M"},
     {"P"},
     false},
    {"a delay", "FUNCTION M'T(T) = -K*M(T-1); INITIAL M(0) = 1; K = 0.5\n", {"M"}, {"K"}, false},
    {"a root in the start value",
     "FUNCTION M'T(T) = -K*M; INITIAL M(0) = ROOT(Z,0,9,Z^2-K); K = 0.5\n",
     {"M"},
     {"K"},
     false},
};

// What one integration gives for all points is what each has by itself, to the tolerance of both.
TEST_F(OdeFit, SidesTogetherAgreeWithSidesApart) {
    for (const odefit& row : models) {
        run(std::string("DELETEALL\nMETHOD = 0; JACSW = 1; ERRFAC = 1E-9; D = (0:5!11) &' (0:5!11)\n") +
            row.model + row.switches);
        fitbinding b;
        bindfit(b, row);
        const fitmodel model = fitmodelof(b);
        const std::vector<double> points = sidesof(fitparameters(b));
        const size_t n = row.parameters.size(), m = b.m;
        std::vector<double> together(2 * n * m, -1), apart(m);
        const bool done =
            model.several && model.several(model.context, points.data(), int(2 * n), together.data());
        EXPECT_EQ(done, row.together) << row.name;
        for (size_t l = 0; done && l < 2 * n; l++) {
            ASSERT_TRUE(model.values(model.context, &points[l * n], apart.data())) << row.name;
            for (size_t i = 0; i < m; i++)
                EXPECT_NEAR(together[l * m + i], apart[i], 1e-7 * std::max(1.0, std::fabs(apart[i])))
                    << row.name << " lane " << l << " row " << i;
        }
    }
}

// Central differences by each parameter, column by column, with a tolerance.
std::vector<double> OdeFit::differencesat(const odefit& row, const char* errfac) {
    run(std::string("DELETEALL\nMETHOD = 0; JACSW = 1; D = (0:5!11) &' (0:5!11); ERRFAC = ") + errfac + "\n" +
        row.model + row.switches);
    fitbinding b;
    bindfit(b, row);
    const fitmodel model = fitmodelof(b);
    const std::vector<double> p = fitparameters(b), points = sidesof(p);
    std::vector<double> sides(2 * p.size() * b.m), columns;
    EXPECT_TRUE(model.several(model.context, points.data(), int(2 * p.size()), sides.data())) << row.name;
    for (size_t j = 0; j < p.size(); j++)
        for (size_t i = 0; i < b.m; i++)
            columns.push_back((sides[2 * j * b.m + i] - sides[(2 * j + 1) * b.m + i]) / (0.02 * p[j]));
    return columns;
}

// Both sides have the same steps: their errors are nearly the same and leave the difference. Solutions that
// may be off by 50 ERRFAC would otherwise make differences over two hundredths off by a quarter.
TEST_F(OdeFit, DifferencesAreBetterThanTheTolerance) {
    for (const odefit& row : models) {
        if (!row.together) continue;
        const std::vector<double> coarse = differencesat(row, "1E-4"), fine = differencesat(row, "1E-10");
        const size_t m = fine.size() / row.parameters.size();
        for (size_t j = 0; j < row.parameters.size(); j++) {
            double largest = 0, off = 0;
            for (size_t i = j * m; i < (j + 1) * m; i++) {
                largest = std::max(largest, std::fabs(fine[i]));
                off = std::max(off, std::fabs(coarse[i] - fine[i]));
            }
            EXPECT_LE(off, 5e-3 * largest) << row.name << " " << row.parameters[j];
        }
    }
}

// After a refusal a fit goes on with integrations of one set each: the same answer as when that never was
// tried, and the same words.
TEST_F(OdeFit, RefusedModelsAreFittedAllTheSame) {
    run(std::string(robertson) +
        "JACSW = 0; S = POINTS(A,(1&10&100&1000)); ERRFAC = 1E-8; K1 = 0.05; K3 = 8E3; LSQRPT = 0\n");
    EXPECT_EQ(run("FIT (K1,K3), A TO S"), "");
    EXPECT_NEAR(scalar("K1"), 0.04, 1e-6);
    EXPECT_NEAR(scalar("K3"), 1e4, 1);
    const std::string said =
        run("DELETEALL\nFUNCTION M'T(T) = K*M^2; INITIAL M(0) = 1; K = 0.1995; LSQRPT = 0\n"
            "D = (0:5!11) &' (1/(1-0.1*(0:5!11))); FIT (K), M TO D; TYPE 1+1");
    EXPECT_NE(said.find("terminating deq solution\n"), std::string::npos);
    EXPECT_EQ(said.substr(said.size() - 8), "    = 2\n");
    EXPECT_NEAR(scalar("K"), 0.1, 1e-6);
}

struct fittedvalue {
    const char* expression;
    double value, off; // off: relative
};
struct wholefit {
    const char *statements, *fit;
    std::vector<fittedvalue> expected;
};

/* scipy.optimize.least_squares (SciPy 1.10) on solutions by DOP853 with a relative tolerance of 3E-14. Errors
 * come from differences over a hundredth of the parameter, so they agree to three digits; and so do the
 * parameters, to a hundredth of their errors. */
const wholefit wholefits[] = {
    {"FUNCTION A'T(T) = -K1*A; FUNCTION B'T(T) = K1*A-K2*B+K3*C; FUNCTION C'T(T) = K2*B-K3*C\n"
     "INITIAL A(0) = 1; INITIAL B(0) = 0; INITIAL C(0) = 0; K1 = 0.8; K2 = 0.3; K3 = 0.1\n"
     "D = POINTS(B,0.5:10:0.5); D = (D COL 1) &' ((D COL 2)+NOISE); K1 = 0.5; K2 = 0.5; K3 = 0.2\n",
     "FIT (K1,K2,K3), B TO D",
     {{"K1", 0.772574937, 1e-5},
      {"K2", 0.301597051, 1e-5},
      {"K3", 0.102348254, 1e-5},
      {"SOSQ", 0.00048750941, 1e-7},
      {"STDEST(1)", 0.00852658, 1e-3},
      {"STDEST(2)", 0.003597603, 1e-3},
      {"STDEST(3)", 0.003177928, 1e-3},
      {"COVP(1,2)", 1.329213e-05, 3e-3}}},
    {"FUNCTION X'T(T) = A*X-B*X*Y; FUNCTION Y'T(T) = -C*Y+E*X*Y; INITIAL X(0) = 2; INITIAL Y(0) = 1\n"
     "A = 1.1; B = 0.4; C = 0.9; E = 0.3; XY = INTEGRATE(X,Y,0.5:10:0.5)\n"
     "DX = (XY COL 1) &' ((XY COL 2)+NOISE); DY = (XY COL 1) &' ((XY COL 4)-NOISE); A = 1; B = 0.5; C = 1; E "
     "= "
     "0.25\n",
     "FIT (A,B,C,E), X TO DX, Y TO DY",
     {{"A", 1.09926873, 1e-5},
      {"B", 0.399468069, 1e-5},
      {"C", 0.900812287, 1e-5},
      {"E", 0.300417172, 1e-5},
      {"SOSQ", 0.00131879735, 1e-6},
      {"STDEST(1)", 0.0005467228, 5e-3},
      {"STDEST(2)", 0.0002694193, 5e-3},
      {"STDEST(3)", 0.0005343961, 5e-3},
      {"STDEST(4)", 0.0001701251, 5e-3},
      {"COVP(1,2)", 1.324378e-07, 1e-2}}},
    {"FUNCTION S'T(T) = -V*S/(K+S); INITIAL S(0) = S0; FUNCTION Q(T) = SQRT(S); V = 0.7; K = 0.6; S0 = 3\n"
     "R = INTEGRATE(S,Q,0.5:10:0.5); T = R COL 1; DS = T &' ((R COL 2)+NOISE); DV = T &' ((R COL "
     "3)+0.5*NOISE)\n"
     "DQ = T &' ((R COL 4)+0.2*NOISE); V = 0.68; K = 0.65; S0 = 2.9\n",
     "FIT (V,K,S0), S TO DS, S'T TO DV, Q TO DQ",
     {{"V", 0.706727438, 1e-5},
      {"K", 0.620304677, 1e-5},
      {"S0", 2.9968093, 1e-5},
      {"SOSQ", 0.000767921902, 1e-6},
      {"STDEST(1)", 0.002314025, 2e-3},
      {"STDEST(2)", 0.005196167, 2e-3},
      {"STDEST(3)", 0.002474899, 2e-3},
      {"COVP(1,2)", 1.14168e-05, 5e-3}}},
};

TEST_F(OdeFit, WholeFits) {
    for (const wholefit& f : wholefits) {
        run("DELETEALL\nERRFAC = 1E-9; LSQRPT = 0; TOLSOS = 1E-12; NOISE = "
            "0.01*APPLY(SIN,37*(0.5:10:0.5))\n" +
            std::string(f.statements));
        EXPECT_EQ(run(f.fit), "") << f.fit;
        for (const fittedvalue& v : f.expected) {
            run("ANSWER = " + std::string(v.expression));
            EXPECT_NEAR(scalar("ANSWER"), v.value, v.off * std::fabs(v.value))
                << f.fit << " " << v.expression;
        }
    }
}

int keytopress, pollsleft; // the key comes at a later look at the keyboard

// A key ends a fit or turns reports on at any place, also while several sets are integrated together.
TEST_F(OdeFit, KeysAreHeard) {
    console.getkey = [](bool) { return pollsleft-- == 0 ? keytopress : -1; };
    const char* fit = "K1 = 0.8; K2 = 0.3; D = POINTS(B,0.5:5:0.5); K1 = 0.5; K2 = 0.5; FIT (K1,K2), B TO D";
    run(std::string(chain) + "LSQRPT = 0\n");
    pollsleft = 1 << 30;
    run(fit);
    const int polls = (1 << 30) - pollsleft;
    for (int part = 1; part < 40; part++) {
        pollsleft = polls * part / 40;
        keytopress = 'Q';
        EXPECT_NE(run(fit).find(" INTERRUPTED BY Q\n"), std::string::npos) << part;
        pollsleft = polls * part / 40;
        keytopress = 'R';
        run(fit);
        EXPECT_NEAR(scalar("K1"), 0.8, 1e-6) << part;
        EXPECT_NEAR(scalar("K2"), 0.3, 1e-6) << part;
        EXPECT_EQ(run("TYPE 1+1"), "    = 2\n");
    }
}

} // namespace

// Differential equations: the usual test problems against reference values, the forms of a system, every
// message, and sessions that stay whole.
#include "solvers/odesetup.h"
#include "support/datarows.h"
#include "support/livesession.h"

#include <cmath>

namespace {

using Ode = StartedSession;

struct problemstate {
    std::string name, start;
    double end, largest;
    std::string rhs;
};

struct odeproblem {
    std::string name, end;
    bool stiff;
    std::vector<problemstate> states;
};

std::vector<odeproblem> odeproblems() {
    std::vector<odeproblem> problems;
    for (const std::string& line : datarows("odeproblems.txt")) {
        std::istringstream cells(line);
        std::string cell;
        odeproblem p;
        std::getline(cells, p.name, '|');
        p.name.pop_back();
        std::getline(cells, cell, '|');
        p.stiff = std::stoi(cell) != 0;
        std::getline(cells, p.end, '|');
        while (std::getline(cells, cell, '|')) {
            std::istringstream words(cell);
            problemstate s;
            words >> s.name >> s.start >> s.end >> s.largest >> std::ws;
            std::getline(words, s.rhs);
            p.states.push_back(s);
        }
        problems.push_back(p);
    }
    return problems;
}

// How far an answer may be off, in units of ERRFAC times the largest size of the state. Solutions beside the
// Arenstorf orbit part from it by a factor of 2.1E6 in its period: no method keeps 50 there (LSODA: 42000).
double mostoff(const odeproblem& p) { return p.name == "Arenstorf orbit" ? 5000 : 50; }

// The jumps of these need steps below the floor that goes with so wide a tolerance: it is raised on the way.
bool mayraisetolerance(const odeproblem& p, const char* errfac) {
    return (p.name == "Stiff F1" || p.name == "van der Pol 1000") && std::string(errfac) == "1E-3";
}

std::string statenames(const odeproblem& p) {
    std::string list;
    for (const problemstate& s : p.states) list += (list.empty() ? "" : ",") + s.name;
    return list;
}

std::string definitions(const odeproblem& p) {
    std::string text = "DELETEALL\n";
    for (const problemstate& s : p.states)
        text += "FUNCTION " + s.name + "'T(T) = " + s.rhs + "\nINITIAL " + s.name + "(0) = " + s.start + "\n";
    return text;
}

// Every mode, three tolerances; an integration that fails its tolerance says so.
TEST_F(Ode, TestProblemsReachTheirReferenceValues) {
    for (const odeproblem& p : odeproblems()) {
        run(definitions(p));
        const std::vector<int> methods = p.stiff ? std::vector<int>{0, 2, 3} : std::vector<int>{0, 1};
        for (int method : methods)
            for (const char* errfac : {"1E-3", "1E-6", "1E-9"}) {
                const std::string what = p.name + " METHOD " + std::to_string(method) + " ERRFAC " + errfac;
                const std::string said = run("METHOD = " + std::to_string(method) + "; ERRFAC = " + errfac +
                                             "; SOLN = INTEGRATE(" + statenames(p) + ",0:" + p.end + "!11)");
                if (!mayraisetolerance(p, errfac)) { EXPECT_EQ(said, "") << what; }
                for (size_t i = 0; i < p.states.size(); i++) {
                    const problemstate& s = p.states[i];
                    run("ANSWER = SOLN(11," + std::to_string(2 * i + 2) + ")");
                    EXPECT_LE(std::fabs(scalar("ANSWER") - s.end) / s.largest / std::stod(errfac), mostoff(p))
                        << what << " " << s.name;
                }
            }
    }
}

// A tolerance that no number can hold, a start far from 0: each mode ends, in silence, with what is possible.
TEST_F(Ode, HardTolerancesAndPlacesEnd) {
    const struct {
        const char *errfac, *start;
        double off; // relative error at the end
    } rows[] = {{"1E-14", "0", 1E-9},  {"1E-16", "0", 1E-9},      {"1E-300", "0", 1E-9},
                {"1E-9", "1E3", 1E-6}, {"1E-9", "2451545", 1E-6}, {"1E-9", "-1E6", 1E-6},
                {"1E-6", "1E10", 1E-3}};
    for (const auto& row : rows)
        for (int method = 0; method <= 3; method++) {
            const std::string said =
                run(std::string("DELETEALL\nFUNCTION M'T(T) = -M; INITIAL M(") + row.start +
                    ") = 1; ERRFAC = " + row.errfac + "; METHOD = " + std::to_string(method) +
                    "; V = " + row.start + "+(0:2); S = INTEGRATE(M,V); LAST = S(3,2)");
            EXPECT_EQ(said, "") << row.errfac << " " << row.start << " METHOD " << method;
            EXPECT_NEAR(scalar("LAST") * std::exp(2), 1, row.off)
                << row.errfac << " " << row.start << " METHOD " << method;
        }
}

constexpr char decay[] = "FUNCTION M'T(T) = -M; INITIAL M(0) = 1\n";

TEST_F(Ode, FormsAndMessages) {
    const struct {
        const char *what, *statements, *output;
    } rows[] = {
        {"no system", "FUNCTION F(T) = T; S = INTEGRATE(F,0:1)",
         "##Error: INTEGRATE: no system of odes found\n"},
        {"tolerance", "ERRFAC = 0; FUNCTION M'T(T) = -M; INITIAL M(0) = 1; S = INTEGRATE(M,0:1)",
         "##Error: ERRFAC must be positive.\n"},
        {"cubes of steps below all doubles",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; S = INTEGRATE(M,0:1E-110:1E-111)",
         "##Error: INTEGRATE: all times lie within 1e-110 of the start; measure time in a smaller unit\n"},
        {"no derivative", "INITIAL M(0) = 1; S = INTEGRATE(M,0:1)",
         "##Error: derivative or initial of M with respect to ? is not defined \n\n"},
        {"lower start missing", "FUNCTION M''T(T) = -M; INITIAL M'T(0) = 1; S = INTEGRATE(M'T,0:1)",
         "##Error: Lower order initial missing in case of higher order derivative\n"},
        {"start points",
         "FUNCTION M'T(T) = -M; FUNCTION N'T(T) = M; INITIAL M(0) = 1; INITIAL N(1) = 1; S = "
         "INTEGRATE(M,N,0:1)",
         "##Error: All initials do NOT have the same starting point\n"},
        {"higher derivative missing", "INITIAL M(0) = 1; INITIAL M'T(0) = 1; S = INTEGRATE(M,0:1)",
         "##Error: Higher order derivative missing\n"},
        {"no such derivative", "S = INTEGRATE(GG'T,0:1)",
         "##Error: derivative of GG wrt T cannot be computed\n\n"},
        {"no function", "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; S = INTEGRATE(M,5,0:1)",
         "##Error: trying to evaluate illegal function\n\n"},
        {"function of two arguments over points",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; FUNCTION F(A,B) = M; S = POINTS(M,F,0:1)",
         "##Error: incorrect number of arguments of a function\n\n"},
        {"builtin of two arguments over points",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; S = POINTS(M,ATAN2,0:1)",
         "##Error: incorrect number of arguments of a function\n\n"},
        {"points of two columns",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; D = POINTS(SQRT,0:1); S = POINTS(M,D)",
         "##Error: Incorrect row/col shape of an argument of POINTS\n\n"},
        {"long names",
         "FUNCTION ABCDEFGHIJKL'T(T) = -ABCDEFGHIJKL; INITIAL ABCDEFGHIJKL(0) = 1; S = "
         "INTEGRATE(ABCDEFGHIJKL,0:1); R = ABS(S(2,2)-EXP(-1)) < 1E-7; TYPE R",
         "Warning: jacobian derivative name is too long.\n  R = 1\n"},
        {"no derivative of a builtin", "FUNCTION M'T(T) = -MAXV(M); INITIAL M(0) = 1; S = INTEGRATE(M,0:1)",
         "##Error: DIFF: MAXV is not a differentiable builtin function\n"},
        {"arguments", "FUNCTION M'T(T,U) = -M; INITIAL M(0) = 1; S = INTEGRATE(M,0:1)",
         "##Error: The ode function M'T does not have exactly one independent variable\n\n"},
        {"start at a string", "A = \"x\"; FUNCTION M'T(T) = -M; INITIAL M(A) = 1; S = INTEGRATE(M,0:1)",
         "##Error: INITIAL: an expression is of the wrong type\n"},
        {"iterate", "FUNCTION F(N) = N; S = ITERATE(F,3)",
         "##Error: bad functions or missing initials in ITERATE\n"},
        {"difference equations",
         "FUNCTION A'N(N) = A+B; FUNCTION B'N(N) = A; INITIAL A(1) = 1; INITIAL B(1) = 0\nS = "
         "ITERATE(A'N,B'N,6); NAMESW = 0; TYPE S",
         "1  1  0\n2  1  1\n3  2  1\n4  3  2\n5  5  3\n6  8  5\n\n"},
        {"order of columns",
         "FUNCTION X''T(T) = -X; INITIAL X(0) = 1; INITIAL X'T(0) = 0; S = INTEGRATE(X,0:1); TYPE ODESTR",
         "     ODESTR = T  X'T  X'T'T  X  X'T  \n"},
        {"undefined name", "FUNCTION M'T(T) = -ZZ*M; INITIAL M(0) = 1; S = INTEGRATE(M,0:1)",
         "##Error: ZZ is not a matrix, function, initial, constant or scalar\n"},
        {"times at the start",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 7; S = INTEGRATE(M,0^^3); NAMESW = 0; TYPE S",
         "0  7  -7\n0  7  -7\n0  7  -7\n\n"},
        {"there and back",
         "FUNCTION M'T(T) = 1; INITIAL M(0) = 0; S = INTEGRATE(M,1&2&1); NAMESW = 0; TYPE S",
         "switching directions during integration\n1  1  1\n2  2  1\n1  1  1\n\n"},
        {"backwards",
         "FUNCTION M'T(T) = 2*T; INITIAL M(0) = 0; S = INTEGRATE(M,0:-2); R = ABS(S(3,2)-4) < 1E-6; TYPE R",
         "  R = 1\n"},
        {"functions of the solution",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; FUNCTION F(T) = 10*M; FUNCTION G(T) = T^2; S = "
         "INTEGRATE(M,F,G,0:2)\nR = ABS(S(3,4)-10*S(3,2)) < 1E-12 AND S(3,5) = 4; TYPE R",
         "  R = 1\n"},
        {"a start value from another",
         "FUNCTION M'T(T) = -M; FUNCTION N'T(T) = -N; INITIAL N(0) = 2*M; INITIAL M(0) = 3; S = "
         "INTEGRATE(N,M,0:1); R = S(1,2); TYPE R",
         "  R = 6\n"},
        {"a solution in an expression",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; R = ABS(M(1)-EXP(-1)) < 1E-6; TYPE R", "  R = 1\n"},
        {"points of a solution",
         "FUNCTION M'T(T) = -M; INITIAL M(0) = 1; S = POINTS(M,2&1&0); R = ABS(S(1,2)-EXP(-2)) < 1E-6 AND "
         "S(3,2) = 1; TYPE R",
         "  R = 1\n"},
        // y' = y(t - 1), y = 1 before 0: y(2) = 1 + 2 + (2 - 1)^2/2
        {"a delay",
         "FUNCTION M'T(T) = M(T-1); INITIAL M(0) = 1; S = INTEGRATE(M,0:2:0.01); R = ABS(S(201,2)-3.5) < "
         "1E-3; TYPE R",
         "  R = 1\n"},
    };
    for (const auto& row : rows) {
        run("DELETEALL\nERRFAC = 1E-9; METHOD = 0; NAMESW = 1; MFORMAT = \"10 1 2 0 0 0 1 1\"");
        EXPECT_EQ(fixedwords(run(row.statements)), row.output) << row.what;
        EXPECT_EQ(run("NAMESW = 1; TYPE 1+1"), "    = 2\n") << row.what;
    }
}

TEST_F(Ode, DisastersAreTreatedAsTheirSwitchTells) {
    // a pole at T = 1
    const std::string pole = "FUNCTION P'T(T) = P^2; INITIAL P(0) = 1; ERRFAC = 1E-6\n";
    const struct {
        int sw;
        const char *says, *not_;
        bool past;
    } rows[] = {{0, "terminating deq solution\n", "lipshitz", false},
                {2, "terminating deq solution\n", "lipshitz", false},
                {1, "solution forced with constant stepsize\n", "terminating", true},
                {3, "solution forced with constant stepsize\n", "terminating", true},
                {-2, "", "solution", true},
                {5, "", "solution", true},
                {6, "truncation error = ", "terminating", true}};
    for (const auto& row : rows) {
        run("DELETEALL\n" + pole);
        const std::string said =
            run("DISASTERSW = " + std::to_string(row.sw) + "; S = INTEGRATE(P,0:2:0.25)");
        EXPECT_NE(said.find(row.says), std::string::npos) << row.sw << said;
        EXPECT_EQ(said.find(row.not_), std::string::npos) << row.sw << said;
        run("LASTT = S(9,1); FIRST = S(3,2)");
        EXPECT_EQ(scalar("LASTT"), row.past ? 2 : 0) << "rows behind an early end stay unset " << row.sw;
        EXPECT_NEAR(scalar("FIRST"), 2, 1e-3) << row.sw;
    }
    run("DELETEALL\nDISASTERSW = 4; FUNCTION M'T(T) = -M; INITIAL M(0) = 1; S = INTEGRATE(M,0:2); R = "
        "S(3,2)");
    EXPECT_NEAR(scalar("R"), std::exp(-2), 1e-6) << "a constant step from the outset";
}

TEST_F(Ode, ReportsTellWhatIsDone) {
    run(decay);
    const struct {
        const char *switches, *says;
    } rows[] = {
        {"ODERPT = 1; METHOD = 1", "t: 0 step #: 0 step: 1e-12 adams\n"},
        {"ODERPT = 1; METHOD = 2", "t:0 jacobian evaluation:1\nt: 0 step #: 0 step: 1e-12 gear-shrager\n"},
        {"ODERPT = 1; METHOD = 3", " gear-tu\n"},
        {"ODERPT = 2; METHOD = 1", "y, dy [1]: 1, -1\nstoring for t = 0\n"},
        {"ODERPT = 3; METHOD = 1", "t = 1, # steps = "},
        {"ODERPT = 3; METHOD = 1", "\n # system derivative evaluations = "},
        {"ODERPT = 3; METHOD = 1", ", # jacobian evaluations = 0\n"},
    };
    for (const auto& row : rows) {
        const std::string said =
            run(std::string("ERRFAC = 1E-6; ") + row.switches + "; S = INTEGRATE(M,0:1)");
        EXPECT_NE(said.find(row.says), std::string::npos) << row.switches << "\n" << said;
    }
    EXPECT_EQ(run("ODERPT = 0; S = INTEGRATE(M,0:1)"), "");
}

// MANDSW lands on the output times: the value there is no interpolation across a jump of the derivative.
TEST_F(Ode, OutputTimesMayBeMandatory) {
    run("FUNCTION M'T(T) = IF T <= 1 THEN 1 ELSE -1; INITIAL M(0) = 0; MANDSW = 1; ERRFAC = 1E-6");
    run("S = INTEGRATE(M,0:2); TOP = S(2,2); END = S(3,2)");
    EXPECT_NEAR(scalar("TOP"), 1, 1e-9);
    EXPECT_NEAR(scalar("END"), 0, 1e-5);
}

TEST_F(Ode, TablesHaveBounds) {
    std::string chain = "DELETEALL\nFUNCTION Y0'T(T) = -Y0; INITIAL Y0(0) = 1\n";
    for (int k = 1; k <= 500; k++) {
        const std::string here = "Y" + std::to_string(k), last = "Y" + std::to_string(k - 1);
        chain += "FUNCTION " + here + "'T(T) = " + last + "-" + here + "; INITIAL " + here + "(0) = 0\n";
    }
    run(chain);
    EXPECT_EQ(run("S = INTEGRATE(Y500,0:1)"), "##Error: too many initials\n");
    EXPECT_EQ(run("METHOD = 1; S = INTEGRATE(Y499,0:1); R = NCOLS(S); TYPE R"), "  R = 1001\n");
}

// What a list of names covers, and whether each can be called with so many scalars.
TEST_F(Ode, DeductionTellsWhatIsCovered) {
    run("FUNCTION A'T(T) = -A+B; FUNCTION B'T(T) = A; INITIAL A(0) = 1; INITIAL B(0) = 0");
    run("FUNCTION F(T) = A; FUNCTION G(X) = X^2; FUNCTION H(X,Y) = X*Y; FUNCTION F2(X,Y) = A*X");
    const struct {
        std::vector<const char*> names;
        int covers;
    } rows[] = {{{"G"}, 0},           {{"A", ".B.T"}, 1}, {{"A"}, 2},
                {{"A", "B", "G"}, 3}, {{"F", "A"}, 4},    {{"F"}, 0}};
    for (const auto& row : rows) {
        std::vector<int> list;
        for (const char* name : row.names) list.push_back(symtablookup(name));
        EXPECT_EQ(odecoverage(odededuce(list, 0), list), row.covers) << row.names[0];
        EXPECT_EQ(odededuce(list, 1).active(), row.names[0] != std::string("G"));
    }
    const auto refused = [](const char* name, int nargs) {
        try {
            odededuce({symtablookup(name)}, nargs);
        } catch (const recoveryjump&) { return true; }
        return false;
    };
    EXPECT_TRUE(refused("H", 1));
    EXPECT_FALSE(refused("H", 2));
    EXPECT_TRUE(refused("F2", 2)) << "a system has one variable";
    EXPECT_TRUE(refused("INV", 1));
    EXPECT_FALSE(refused("SQRT", 1));
}

// Right-hand sides beyond the range of numbers end too, and what is no number has one look.
TEST_F(Ode, OverflowsEnd) {
    for (int method : {0, 2, 3}) {
        run("DELETEALL\nFUNCTION W'T(T) = -1E300*W; INITIAL W(0) = 1; METHOD = " + std::to_string(method));
        const std::string said = run("S = INTEGRATE(W,0:1:0.5)");
        EXPECT_NE(said.find("error = nan\n"), std::string::npos) << method;
        EXPECT_EQ(said.find("-nan"), std::string::npos) << method;
        EXPECT_EQ(run("TYPE 1+1"), "    = 2\n");
    }
}

TEST_F(Ode, FailuresLeaveTheSessionWhole) {
    run(decay);
    run("FUNCTION B'T(T) = IF T > 0.5 THEN UNSET*B ELSE -B; INITIAL B(0) = 1; S = 5");
    EXPECT_NE(run("S = INTEGRATE(B,0:1:0.1)").find("##Error"), std::string::npos);
    EXPECT_EQ(scalar("S"), 5);
    run("R = INTEGRATE(M,0:1); E1 = R(2,2)");
    EXPECT_NEAR(scalar("E1"), std::exp(-1), 1e-7);
    live.key = 'Q';
    EXPECT_NE(run("R = INTEGRATE(M,0:1:0.01)").find("INTEGRATE INTERRUPTED BY Q\n"), std::string::npos);
    run("R = INTEGRATE(M,0:1); E1 = R(2,2)");
    EXPECT_NEAR(scalar("E1"), std::exp(-1), 1e-7);
}

// A solution, a root and a sum inside one another: each keeps its own state.
TEST_F(Ode, SolversNest) {
    run(decay);
    run("FUNCTION HALF(A) = ROOT(X,0,5,M(X)-A); FUNCTION S(N) = SUM(K,1,N,HALF(1/K)); R = S(3)");
    EXPECT_NEAR(scalar("R"), std::log(2) + std::log(3), 1e-6);
}

} // namespace

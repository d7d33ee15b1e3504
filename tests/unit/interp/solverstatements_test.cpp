// CONSTRAINTS, FIT, MINIMIZE, NMSIMPLEX and LINPROG as statements: forms, refusals, what they leave behind.
#include "interp/base/parser.h"
#include "support/livesession.h"

#include <cmath>

namespace {

class SolverStatements : public StartedSession {
protected:
    struct row {
        const char *what, *statements, *output;
    };
    // Each row in a session without the last one's names; the next statement always runs.
    template <size_t n> void compare(const row (&rows)[n], const std::string& first = "") {
        for (const row& r : rows) {
            run("DELETEALL\nNAMESW = 1; LSQRPT = 0; REPTSW = 0; MAXITER = 1000; WARNSW = 1\n" + first);
            EXPECT_EQ(fixedwords(run(r.statements)), r.output) << r.what;
            EXPECT_EQ(run("TYPE 1+1"), "    = 2\n") << r.what;
        }
    }
};

TEST_F(SolverStatements, ConstraintSets) {
    const row rows[] = {
        {"two rows", "CONSTRAINTS C = { A + B < 1, 2 * A > B }; TYPE C",
         "constraints C =\n     { A+B < 1,\n       2*A-B > 0 }\n"},
        {"a chain", "CONSTRAINTS C = { 0 < X < 1 }; TYPE C",
         "constraints C =\n     { X > 0,\n       X < 1 }\n"},
        {"a chain with two names in the middle", "CONSTRAINTS C = { 1 < X + Y < 3 }; TYPE C",
         "constraints C =\n     { X+Y > 1,\n       X+Y < 3 }\n"},
        {"a chain between names", "CONSTRAINTS C = { A < X + 2 < B }; TYPE C",
         "constraints C =\n     {-A+X > -2,\n       X-B < -2 }\n"},
        {"a chain of equalities", "CONSTRAINTS C = { X = Y = 3 }; TYPE C",
         "constraints C =\n     {-X+Y = 0,\n       Y = 3 }\n"},
        {"a long chain", "CONSTRAINTS C = { 0 < X < Y < 2 }; TYPE C",
         "constraints C =\n     { X > 0,\n      -X+Y > 0,\n       Y < 2 }\n"},
        {"brackets", "CONSTRAINTS C = { X < (3), Y > 1 }",
         "##Error: invalid character in CONSTRAINT statement\n"},
        {"the last number counts", "CONSTRAINTS C = { 2*3*X < 1 }; TYPE C",
         "constraints C =\n     { 3*X < 1 }\n"},
        {"a name twice", "CONSTRAINTS C = { X + X < 1 }; TYPE C", "constraints C =\n     { X < 1 }\n"},
        {"division", "CONSTRAINTS C = { X/2/4 - Y = -3 }; TYPE C",
         "constraints C =\n     { 0.125*X-Y = -3 }\n"},
        {"both sides", "CONSTRAINTS C = { 1 + X >= 2*Y + 3 }; TYPE C",
         "constraints C =\n     { X-2*Y > 2 }\n"},
        {"over lines", "CONSTRAINTS C = { X < 1, \\\n  Y < 2 }; TYPE C",
         "constraints C =\n     { X < 1,\n       Y < 2 }\n"},
        {"a line end inside", "CONSTRAINTS C = { X < 1,\n Y < 2 }",
         "##Error: invalid character in CONSTRAINT statement\n"},
        {"division by a name", "CONSTRAINTS C = { 1/X < 2 }",
         "##Error: only linear constraints are permitted\n"},
        {"a product", "CONSTRAINTS C = { X*Y < 1 }", "##Error: only linear constraints are permitted\n"},
        {"no brace", "CONSTRAINTS C = X < 1",
         "##Error: CONSTRAINTS: failure to use { to begin constraint list\n"},
        {"a power", "CONSTRAINTS C = { X^2 < 1 }", "##Error: invalid character in CONSTRAINT statement\n"},
        {"no relation", "CONSTRAINTS C = { X }", "##Error: bad relational operator in constraint\n"},
        {"a matrix stays", "M = 1:3; CONSTRAINTS M = { X < 1 }",
         "##Error: CONSTRAINTS: cannot assign to existing name M\n"},
        {"no set", "FUNCTION F(X) = A*X; A = 1; D = 1 &' 2; FIT A, F TO D CONSTRAINTS A",
         "##Error: name: A in CONSTRAINTS is not a CONSET\n"},
        {"no scalar",
         "FUNCTION F(X) = A*X; A = 1; D = 1 &' 2; CONSTRAINTS C = { A + ZZ < 1 }; FIT A, F TO D CONSTRAINTS "
         "C",
         "##Error: Non-Scalar parameter in constraints.\n"},
    };
    compare(rows);
    std::string many = "CONSTRAINTS C = { ";
    for (int k = 0; k < 45; k++) many += (k ? ", V" : "V") + std::to_string(k) + " < 1";
    EXPECT_EQ(run(many + " }"), "##Error: CONSTRAINTS: more than 40 rows in a set\n");
    run("CONSTRAINTS C = { A + B < 1, 2 * A > B }; SAVEOVER C IN \"set\"; DELETE C; USE \"set\"");
    EXPECT_EQ(run("TYPE C"), "constraints C =\n     { A+B < 1,\n       2*A-B > 0 }\n");
}

constexpr char line[] = "FUNCTION F(X) = A + B*X; A = 0; B = 0; D = (0&1&2&3) &' (1&3&5&7)\n";

TEST_F(SolverStatements, FitForms) {
    const row rows[] = {
        {"scalars", "FIT (A,B), F TO D; TYPE A; TYPE B", "  A = 1\n  B = 2\n"},
        {"a list without brackets", "FIT A, B, F TO D; TYPE B", "  B = 2\n"},
        {"two pairs", "FUNCTION G(X) = B*X; E = (1&2) &' (2&4); FIT (A,B), F TO D, G TO E; TYPE B",
         "  B = 2\n"},
        {"weights",
         "W = 1&1&1&0; D(4,2) = 99; FIT (A,B), F TO D WITH WEIGHT W; R = ABS(A-1) < 1E-9 AND ABS(B-2) < "
         "1E-9; TYPE R",
         "  R = 1\n"},
        {"a weight function",
         "FUNCTION W(M,I) = I < 4; D(4,2) = 99; FIT (A,B), F TO D WITH WEIGHT W; R = ABS(B-2) < 1E-9; TYPE R",
         "  R = 1\n"},
        {"a matrix of parameters",
         "P = 0&0; FUNCTION G(X) = P(1)+P(2)*X; FIT P, G TO D; R = ABS(P(1)-1) < 1E-8 AND ABS(P(2)-2) < "
         "1E-8; TYPE R",
         "  R = 1\n"},
        {"constraints", "CONSTRAINTS C = { B < 1.5 }; FIT (A,B), F TO D CONSTRAINTS C; TYPE B",
         "Warning: FIT: parameter B stands on a constraint, its error does not hold\n  B = 1.5\n"},
        {"a constraint matrix", "CM = 0&'1&'-1&'1.5; FIT (A,B), F TO D CONSTRAINTS CM; TYPE B",
         "Warning: FIT: parameter B stands on a constraint, its error does not hold\n  B = 1.5\n"},
        {"results",
         "FIT (A,B), F TO D; R = "
         "NROWS(COVP)+10*NROWS(STDEST)+100*NROWS(DEPVALS)+1000*(SOSQ<1E-20)+10000*RSQUARED; TYPE R",
         "  R = 11222\n"},
        {"residuals",
         "RESIDSW = 1; D(1,2) = 2; FIT (A,B), F TO D; R = ABS(RESID(1)+RESID(2)+RESID(3)+RESID(4)) < 1E-9 "
         "AND RESID(1) > 0; TYPE R; RESIDSW = 0",
         "  R = 1\n"},
        {"no iteration", "MAXITER = 0; FIT (A,B), F TO D; TYPE A",
         "Warning: FIT: MAXITER is 0, the parameters were not changed\n  A = 0\n"},
        {"no effect", "Z = 5; FIT (A,B,Z), F TO D; R = STDEST(3) > 1E300; TYPE R; TYPE Z",
         "Warning: FIT: parameter Z has no effect on the model\n  R = 1\n  Z = 5\n"},
        {"constraints that contradict each other",
         "CONSTRAINTS C = { A > 2, B < 1, A < 1 }; FIT (A,B), F TO D CONSTRAINTS C",
         "##Error: FIT: no parameters meet all constraints: number 3 contradicts those before it\n"},
        {"nothing to fit", "FIT", "##Error: fit dialog not working yet\n"},
        {"no data", "FIT (A,B)", "##Error: FIT: no data to fit to: FIT (A,B), F TO M\n"},
        {"data", "FIT (A,B), F TO A", "##Error: FIT: fit data must be a matrix\n"},
        {"function", "FIT (A,B), A TO D",
         "##Error: FIT: FIT (A,B), F TO M, F must be a function or differential equation\n"},
        {"columns", "FIT (A,B), F TO (1:3)",
         "##Error: #function args = 1 must be (#matrix cols = 1)-1 in FIT\n"},
        {"weight size", "W = 1:3; FIT (A,B), F TO D WITH WEIGHT W", "##Error: FIT: bad weight matrix size\n"},
        {"weight shape", "FIT (A,B), F TO D WITH WEIGHT D",
         "##Error: Incorrect row/col shape of an argument of WEIGHT clause\n\n"},
        {"weight kind", "FIT (A,B), F TO D WITH WEIGHT A", "##Error: WEIGHT: must be matrix or function\n"},
        {"parameter", "FIT (A,F), F TO D", "##Error: fitop: an expression is of the wrong type\n"},
        {"the model fails",
         "FUNCTION F(X) = A + NOSUCH*X; SYMDSW = 0; FIT A, F TO D", // the redefinition is told first
         "Redefining F \n##Error: NOSUCH is not a matrix, function, initial, constant or scalar\n"},
    };
    compare(rows, line);
}

TEST_F(SolverStatements, FitReport) {
    run(line);
    const std::string said = run("LINEARSW = 1; LSQRPT = 8; D(1,2) = 1.5; FIT (A,B), F TO D");
    for (const char* text :
         {"final parameter values\n      value               error                dependency    parameter\n",
          "           1.35        0.1620185175          0.6428571429   A\n", " iterations\nCONVERGED\n",
          "best weighted sum of squares = 7.500000e-02\n", "weighted root mean square error = 1.936492e-01\n",
          "weighted deviation fraction = ", "R squared = 9.956364e-01\n"})
        EXPECT_NE(said.find(text), std::string::npos) << text << "in\n" << said;
    EXPECT_EQ(run("LSQRPT = 1; MAXITER = 1; FIT (A,B), F TO D").substr(0, 16), "Begin iteration ");
}

// What a report says at the edges, and what it leaves out.
TEST_F(SolverStatements, FitEdges) {
    const struct {
        const char *what, *statements;
        std::vector<const char*> says, saysnot;
    } rows[] = {
        {"MAXITER 0",
         "MAXITER = 0; FIT (A,B), F TO D",
         {"\n0 iterations\nCONVERGED\nbest weighted sum of squares = 8.400000e+01\n",
          "Warning: FIT: MAXITER is 0, the parameters were not changed\n"},
         {}},
        {"MAXITER 0 where the start breaks a constraint",
         "MAXITER = 0; A = 5; CONSTRAINTS C = { A < 2 }; FIT (A,B), F TO D CONSTRAINTS C",
         {"              2   ", "the parameters were moved to where they meet the constraints\n"},
         {}},
        {"a perfect fit",
         "FIT (A,B), F TO D",
         {"CONVERGED\nbest weighted sum of squares = 0.000000e+00\nweighted root mean square error = "
          "0.000000e+00\n"
          "weighted deviation fraction = 0.000000e+00\nR squared = 1.000000e+00\n"},
         {"NOT", "Warning"}},
        {"no more rows than parameters",
         "FIT (A,B), F TO (D ROW 2); Q = SOSQ; TYPE Q",
         {"  Q = 0\n", "depends on"},
         {}},
        {"one row too few: one degree of freedom",
         "D(2,2) = 4; FIT A, F TO (D ROW 2); Q = STDEST(1); TYPE Q",
         {"root mean square error = 0.000000e+00\n", "  Q = 0\n"},
         {}},
        {"a bound at the best point",
         "CONSTRAINTS C = { B < 1.5 }; FIT (A,B), F TO D CONSTRAINTS C",
         {"lagrange multiplier[1] = 2.5\n",
          "Warning: FIT: parameter B stands on a constraint, its error does not hold\n"},
         {"R squared", "no active", "lagrange multiplier[2]"}},
        {"the same from that point",
         "CONSTRAINTS C = { A < 100, B < 1.5 }; WARNSW = 0; FIT (A,B), F TO D CONSTRAINTS C; TYPE \"again\"; "
         "A = A; "
         "FIT (A,B), F TO D CONSTRAINTS C",
         {"lagrange multiplier[2] = 2.5\n"},
         {"R squared", "no active"}},
        {"a bound that does not matter",
         "CONSTRAINTS C = { B < 5 }; FIT (A,B), F TO D CONSTRAINTS C",
         {"R squared = 1.000000e+00\nno active constraints\n"},
         {"Warning"}},
        {"a row without parameters that does not hold",
         "Z = 2; CONSTRAINTS C = { Z < 1, B < 5 }; FIT (A,B), F TO D CONSTRAINTS C",
         {"Warning: constraint 1 of C does not hold and has no parameter\n", "no active constraints\n"},
         {}},
        {"only such rows",
         "Z = 0; CONSTRAINTS C = { Z < 1 }; FIT (A,B), F TO D CONSTRAINTS C",
         {"R squared"},
         {"active"}},
        {"a name that is not fitted has its value at the start",
         "Z = 1.5; CONSTRAINTS C = { B < Z }; FIT (A,B), F TO D CONSTRAINTS C; Q = B; TYPE Q",
         {"  Q = 1.5\n"},
         {}},
        {"a constraint matrix with a matrix of parameters",
         "P = 0&0; FUNCTION G(X) = P(1)+P(2)*X; CM = 1&'0&'0&'2; FIT P, G TO D CONSTRAINTS CM; Q = "
         "P(1)+P(2); TYPE Q",
         {"Warning: FIT: a constraint matrix is read with one coefficient for all cells of a matrix of "
          "parameters\n",
          "  Q = 2\n"},
         {}},
        {"all weights 0",
         "W = 0*(1:4); FIT (A,B), F TO D WITH WEIGHT W",
         {"A has no effect", "B has no effect"},
         {}},
        {"a missing value",
         "D(3,2) = 1E308*10; FIT (A,B), F TO D",
         {"Warning: FIT: row 3, column 2 of the data has no value; COMPRESS leaves rows out\n"},
         {}},
        {"without weight it does not matter",
         "D(3,2) = 1E308*10; W = 1&1&0&1; FIT (A,B), F TO D WITH WEIGHT W; Q = B; TYPE Q",
         {"  Q = 2\n"},
         {"Warning"}},
        {"a parameter that has an argument's name",
         "FUNCTION G(A) = A+B*A; FIT (A,B), G TO D; Q = ROUND(1E6*B); TYPE Q",
         {"A has no effect", "  Q = 1428571\n"}, // B+1 = sum of xy over sum of squares = 34/14
         {}},
        {"a model that makes its data grow",
         "FUNCTION G(X) = A+B*X+0*(D(NROWS(D)+1,1) _ 1); FIT (A,B), G TO D; Q = B; TYPE Q",
         {"  Q = 2\n"},
         {}},
        {"switches out of range", "LSQRPT = 1E30; MAXITER = 1E30; FIT (A,B), F TO D", {"CONVERGED\n"}, {}},
    };
    for (const auto& r : rows) {
        run("DELETEALL\nNAMESW = 1; LSQRPT = 8; LINEARSW = 1; MAXITER = 1000; WARNSW = 1\n" +
            std::string(line));
        const std::string said = run(r.statements);
        for (const char* text : r.says)
            EXPECT_NE(said.find(text), std::string::npos) << r.what << ":\n" << text << said;
        const size_t from = said.find("again") == std::string::npos ? 0 : said.find("again");
        for (const char* text : r.saysnot)
            EXPECT_EQ(said.find(text, from), std::string::npos) << r.what << ":\n" << text << said;
    }
}

// What was named stays as it was when a FIT is refused, or when its model fails before a first value.
TEST_F(SolverStatements, ARefusedFitChangesNothing) {
    for (const char* text :
         {"CONSTRAINTS C = { A > 2, A < 1 }; FIT (A,B), F TO D CONSTRAINTS C",
          "CONSTRAINTS C = { A + NOSUCH > 2 }; FIT (A,B), F TO D CONSTRAINTS C",
          "FIT (A,B), F TO D WITH WEIGHT (1:3)", "FIT (A,B), F TO D WITH WEIGHT 0-(1:4)", "FIT (A,A), F TO D",
          "FIT (A,B), F TO (1:3)", "FITNORM = 0-1; FIT (A,B), F TO D", "FIT (A,B), F TO D CONSTRAINTS D",
          "FUNCTION G(X) = A + NOSUCH*X; FIT (A,B), G TO D",
          "FUNCTION W(M) = 1; FIT (A,B), F TO D WITH WEIGHT W"}) {
        run("DELETEALL\nNAMESW = 1; LSQRPT = 0; WARNSW = 1; MAXITER = 1000; FITNORM = 2\n" +
            std::string(line) + "A = 7; B = 8; SOSQ = 3; COVP = 1:2; STDEST = 4; RESID = 5; RESIDSW = 1");
        EXPECT_NE(run(text).find("##Error"), std::string::npos) << text;
        EXPECT_EQ(run("TYPE A; TYPE B; TYPE SOSQ; TYPE NROWS(COVP); TYPE STDEST; TYPE RESID"),
                  "  A = 7\n  B = 8\n  SOSQ = 3\n    = 2\n  STDEST = 4\n  RESID = 5\n")
            << text;
    }
}

// A model with known rates and noise: found again within its own errors, and the covariance of the linear
// theory.
TEST_F(SolverStatements, FitToASolution) {
    run("FUNCTION M'T(T) = -K*M; INITIAL M(0) = M0; K = 0.3; M0 = 10; S = POINTS(M,0.5:10:0.5); D = S\n"
        "FOR I = 1:NROWS(D) { D(I,2) = S(I,2) + 0.05*SIN(37*I*I) }\n"
        "K = 0.1; M0 = 5; LSQRPT = 0; FIT (K,M0), M TO D; E1 = STDEST(1); E2 = STDEST(2)");
    EXPECT_LT(std::fabs(scalar("K") - 0.3), 4 * scalar("E1"));
    EXPECT_LT(std::fabs(scalar("M0") - 10), 4 * scalar("E2"));
    const double k = scalar("K"), m0 = scalar("M0"), e1 = scalar("E1");
    // the same model in closed form, with symbolic derivatives
    run("FUNCTION G(T) = M0*EXP(-K*T); K = 0.1; M0 = 5; FIT (K,M0), G TO D; E1 = STDEST(1)");
    EXPECT_NEAR(scalar("K"), k, 1e-5);
    EXPECT_NEAR(scalar("M0"), m0, 1e-4);
    EXPECT_NEAR(scalar("E1"), e1, 1e-3 * e1);
}

TEST_F(SolverStatements, Minimize) {
    const row rows[] = {
        {"two scalars",
         "X = 0; Y = 0; Q = MINIMIZE(F,X,Y); R = ABS(X-1) < 1E-5 AND ABS(Y-3) < 1E-5 AND Q < 1E-10; TYPE R",
         "  R = 1\n"},
        {"the other sense",
         "FUNCTION G(X) = 3-(X-2)^2; X = 0; Q = MAXIMIZE(G,X); R = ABS(Q-3) < 1E-9 AND ABS(X-2) < 1E-4; TYPE "
         "R",
         "  R = 1\n"},
        {"a matrix",
         "V = 0&0; FUNCTION G(M) = (M(1)-1)^2+(M(2)-5)^2; Q = MINIMIZE(G,V); R = ABS(V(2)-5) < 1E-4; TYPE R",
         "  R = 1\n"},
        {"a variable that is no argument",
         "P = 0; FUNCTION G(X) = (X-P)^2+(P-2)^2; X = 9; Q = MINIMIZE(G,X,P); R = ABS(P-2) < 1E-4 AND "
         "ABS(X-2) < 1E-4; TYPE R",
         "  R = 1\n"},
        {"constraints",
         "CONSTRAINTS C = { X + Y < 2, X > 0 }; X = 0; Y = 0; Q = MINIMIZE(F,X,Y,C); R = ABS(X) < 1E-6 AND "
         "ABS(Y-2) < 1E-6; TYPE R",
         "  R = 1\n"},
        {"a constraint matrix",
         "CM = 1&'1&'-1&'2; X = 0; Y = 0; Q = MINIMIZE(F,X,Y,CM); R = ABS(X+Y-2) < 1E-6; TYPE R",
         "  R = 1\n"},
        {"keeping the Hessian",
         "KEEPHESS = 2; X = 0; Y = 0; Q = MINIMIZE(F,X,Y); R = ABS(HESSIAN(1,1)-10) < 1E-3 AND "
         "ABS(HESSIAN(1,2)-8) < 1E-3; TYPE R",
         "A hessian at the current point is computed.\n  R = 1\n"},
        {"the inverse Hessian under a constraint",
         "KEEPHESS = 1; CONSTRAINTS C = { X + Y < 2 }; X = 0; Y = 0; Q = MINIMIZE(F,X,Y,C); P = "
         "HESSIAN*((10&8)&'(8&10)); R = ABS(P(1,1)-1)+ABS(P(1,2))+ABS(P(2,1))+ABS(P(2,2)-1) < 1E-5; TYPE R; "
         "KEEPHESS = 0",
         "A hessian at the current point is computed.\n  R = 1\n"},
        {"the Hessian of a maximum",
         "KEEPHESS = 2; FUNCTION G(X) = 3-(X-2)^2; X = 0; Q = MAXIMIZE(G,X); R = ABS(HESSIAN(1,1)+2) < 1E-5; "
         "TYPE R; "
         "KEEPHESS = 0",
         "A hessian at the current point is computed.\n  R = 1\n"},
        {"its name among the variables",
         "KEEPHESS = 1; HESSIAN = 3; Y = 1; Q = MINIMIZE(F,HESSIAN,Y); TYPE HESSIAN; "
         "KEEPHESS = 0",
         "##Error: MINIMIZE: the name HESSIAN is in use, KEEPHESS cannot take it\n"},
        {"its name a function",
         "KEEPHESS = 1; FUNCTION HESSIAN(X,Y) = X^2+Y^2; X = 1; Y = 1; Q = MINIMIZE(HESSIAN,X,Y)",
         "##Error: MINIMIZE: the name HESSIAN is in use, KEEPHESS cannot take it\n"},
        {"a variable twice", "X = 0; Q = MINIMIZE(F,X,X)", "##Error: MINIMIZE: variable X is named twice\n"},
        {"a start that is a maximum", "FUNCTION G(X) = COS(X); X = 0; Q = MINIMIZE(G,X); TYPE Q",
         "Warning: MINIMIZE: the function is flat where the search began, which need not be an extremum\n  Q "
         "= 1\n"},
        {"a start far out in a tail", "FUNCTION G(X) = EXP(-X^2); X = 10; Q = MAXIMIZE(G,X); TYPE X > 9",
         "Warning: MINIMIZE: the function is flat where the search began, which need not be an extremum\n    "
         "= 1\n"},
        {"a start at the minimum", "X = 1; Y = 3; Q = MINIMIZE(F,X,Y); R = Q < 1E-20; TYPE R", "  R = 1\n"},
        {"a start outside the domain",
         "FUNCTION G(X) = IF X < 5 THEN 1.7E308 ELSE X^2; X = 0; Q = MINIMIZE(G,X); TYPE X",
         "Warning: MINIMIZE: the function has no value at the start; try another one\n  X = 0\n"},
        // a logarithm of nothing is MAXNEG: to a maximum that is no place to go
        {"a likelihood with a domain",
         "FUNCTION G(X) = LOG(X)-X/3; X = 8; Q = MAXIMIZE(G,X); R = ABS(X-3) < 1E-4; TYPE R",
         "matherr: domain error in log\n  R = 1\n"},
        {"a failure on the way gives the start back",
         "FUNCTION G(X) = IF X < .5 THEN (X-1)^2 ELSE NOSUCH+X; X = 0; Q = MINIMIZE(G,X)",
         "##Error: NOSUCH is not a matrix, function, initial, constant or scalar\n"},
        {"no function", "X = 0; Q = MINIMIZE(X,X)",
         "##Error: minimize: an expression is of the wrong type\n"},
        {"no variable", "Q = MINIMIZE(F,\"A\",\"B\")",
         "##Error: minimize: an expression is of the wrong type\n"},
        {"the function fails", "FUNCTION G(X) = NOSUCH+X; X = 0; SYMDSW = 0; Q = MINIMIZE(G,X)",
         "##Error: NOSUCH is not a matrix, function, initial, constant or scalar\n"},
    };
    compare(rows, "FUNCTION F(X,Y) = (X+2*Y-7)^2+(2*X+Y-5)^2\n");
    run("REPTSW = 512; FUNCTION F(X,Y) = X^2+Y^2; X = 5; Y = 5; CONSTRAINTS C = { X = 2, Y = 3 }");
    EXPECT_NE(run("Q = MINIMIZE(F,X,Y,C)")
                  .find("Converged.\nnumber of constraints is equal to the number of variables\n"
                        "Solution point is on the boundary of the constraints.\n"),
              std::string::npos);
    run("CONSTRAINTS C = { X > 2, X < 1 }");
    EXPECT_NE(run("Q = MINIMIZE(F,X,Y,C)")
                  .find("Exit due to lack of a feasible region\nCheck your constraint set\n"),
              std::string::npos);
}

// Q ends a search with its full report at the best point, R turns the report.
TEST_F(SolverStatements, KeysOfASearch) {
    const std::string first = "FUNCTION F(X,Y) = 100*(Y-X^2)^2+(1-X)^2; X = -1.2; Y = 1";
    run("REPTSW = 512; " + first);
    live.key = 'Q';
    std::string said = run("Q = MINIMIZE(F,X,Y)");
    EXPECT_EQ(said.find("MINIMIZE INTERRUPTED BY Q\n\nThe function value is: "), 0u) << said;
    EXPECT_NE(said.find("ecode = 7, \n"), std::string::npos) << said;
    EXPECT_EQ(said.find("Converged"), std::string::npos) << said;
    EXPECT_EQ(run("TYPE 1+1"), "    = 2\n");
    run("X = -1.2; Y = 1");
    live.key = 'R';
    said = run("Q = MINIMIZE(F,X,Y)");
    EXPECT_NE(said.find("\nbegin iteration 1\nx: "), std::string::npos) << said;
    EXPECT_NE(said.find("BFGS-updating inverse Hessian.\n"), std::string::npos) << said;
    run("MAXITER = 1000");
    live.key = 'R';
    said = run("S = NMSIMPLEX(F)");
    EXPECT_EQ(said.find("1:  0.000000, 0.000000,  = 1.000000\nSIMPLEX: "), 0u) << said;
    live.key = 'q';
    said = run("S = NMSIMPLEX(F); TYPE S(1)");
    EXPECT_EQ(said.find("SIMPLEX interrupted by Q\nSIMPLEX: 3 function evaluations\n"), 0u) << said;
    EXPECT_EQ(run("TYPE 1+1"), "    = 2\n");
}

// Solutions of differential equations are searched too; a run that ends early has no value in either sense.
TEST_F(SolverStatements, MinimaOfSolutions) {
    run("REPTSW = 0; FUNCTION M'T(T) = -K*M; INITIAL M(0) = M0; K = 0.3; M0 = 10; S = POINTS(M,0.5:10:0.5)\n"
        "FUNCTION MISS() = SUM(I,1,20,(M(S(I,1))-S(I,2))^2); K = 0.1; M0 = 5; Q = MINIMIZE(MISS,K,M0)");
    EXPECT_NEAR(scalar("K"), 0.3, 1e-5);
    EXPECT_NEAR(scalar("M0"), 10, 1e-4);
    // y' = y^2 from 1 goes to infinity at 1: the greatest value of y - 9t lies before
    run("FUNCTION Y'T(T) = Y^2; INITIAL Y(0) = 1; FUNCTION G(T) = 9*T-Y(T); T0 = 0.2; Q = MAXIMIZE(G,T0)");
    EXPECT_NEAR(scalar("T0"), 2.0 / 3, 1e-3);
    EXPECT_NEAR(scalar("Q"), 3, 1e-5);
}

TEST_F(SolverStatements, SimplexAndLinearPrograms) {
    const row rows[] = {
        {"polytope",
         "FUNCTION F(X,Y) = (X-3)^2+(Y+1)^2; S = NMSIMPLEX(F); R = ABS(S(2)-3) < 1E-5 AND ABS(S(3)+1) < "
         "1E-5; TYPE R",
         nullptr},
        {"no evaluations left", "MAXITER = 0; FUNCTION F(X) = X^2; S = NMSIMPLEX(F); TYPE S(1)",
         "Warning: MAXITER exceeded in SIMPLEX\nSIMPLEX: 2 function evaluations\n    = 0\n"},
        {"a bad start", "FUNCTION F(X,Y) = X+Y; S = NMSIMPLEX(F,1:5)",
         "##Error: NMSIMPLEX: argument out of range\n"},
        {"zero at the best vertex is no end",
         "MAXITER = 50; FUNCTION F(X,Y) = X+Y; S = NMSIMPLEX(F); TYPE S(1) < -1000",
         "Warning: MAXITER exceeded in SIMPLEX\nSIMPLEX: 51 function evaluations\n    = 1\n"},
        {"vertices on a line",
         "FUNCTION F(X,Y) = X^2+(Y-4)^2; S = NMSIMPLEX(F,(0&1&2)&'(0&1&2)); R = ABS(S(1)-8) < 1E-6; TYPE R",
         nullptr},
        {"no value anywhere", "BIG = 1.7E308; FUNCTION F(X) = BIG; S = NMSIMPLEX(F); TYPE S(2)",
         "Warning: NMSIMPLEX: the function has no value at the vertices; try others\nSIMPLEX: 2 function "
         "evaluations\n    = 1\n"},
        {"product mix",
         "S = LINPROG(3&5,(1&'0&'-1&'4)&(0&'2&'-1&'12)&(3&'2&'-1&'18)); R = S(1)+10*S(2)+100*S(3); TYPE R",
         "  R = 3662\n"},
        {"by names",
         "FUNCTION F(X,Y) = 3*X+5*Y; CONSTRAINTS C = { X < 4, 2*Y < Z, 3*X+2*Y < 18 }; Z = 12; S = "
         "LINPROG(F,C); TYPE S(3)",
         "    = 36\n"},
        {"any sign", "S = LINPROG(-1&0,(1&'0&'1&'-5)&(0&'1&'-1&'2),1); TYPE S(1)", "    = -5\n"},
        {"a function that is not linear",
         "FUNCTION F(X,Y) = X*Y; CONSTRAINTS C = { X < 4, Y < 1 }; S = LINPROG(F,C); TYPE S(3)",
         "Warning: LINPROG: the function is not linear; its values at the unit vectors are taken\n    = 0\n"},
        {"infeasible", "S = LINPROG(1&1,(1&'1&'-1&'1)&(1&'1&'1&'2))",
         "##Error: LINPROG: no feasible solution\n\n"},
        {"unbounded", "S = LINPROG(1&1,1&'-1&'-1&'1)", "##Error: LINPROG: solution unbounded\n\n"},
        {"shapes", "S = LINPROG(1&1&1,1&'-1&'-1&'1)",
         "##Error: Incorrect row/col shape of an argument of LINPROG\n\n"},
    };
    for (const row& r : rows) {
        run("DELETEALL\nMAXITER = 2000; TOLSOS = 1E-14");
        const std::string said = run(r.statements);
        if (r.output)
            EXPECT_EQ(fixedwords(said), r.output) << r.what;
        else
            EXPECT_NE(said.find("  R = 1\n"), std::string::npos) << r.what << said;
        EXPECT_EQ(run("TYPE 1+1"), "    = 2\n") << r.what;
    }
}

} // namespace

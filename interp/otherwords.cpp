#include "interp/otherwords.h"

#include "interp/base/report.h"

namespace {

constexpr struct {
    const char *word, *here;
} words[] = {
    {"arange", "0:10:2 counts from 0 to 10 in steps of 2"},
    {"array", "LIST(1,2,3) makes a column of numbers"},
    {"bye", "EXIT ends the session"},
    {"cd", "FILEDIR = \"folder/\" changes the directory of files"},
    {"csvread", "READCSV(\"name.csv\") reads a table"},
    {"def", "FUNCTION F(X) = A*X defines a function"},
    {"disp", "TYPE shows a value"},
    {"dlmread", "READCSV(\"name.csv\") reads a table"},
    {"echo", "TYPE shows a value"},
    {"eig", "EIGEN(A) gives eigenvalues and eigenvectors"},
    {"eye", "DIAG(1^^3) is the unit matrix of 3 rows"},
    {"fabs", "ABS(X) is the absolute value"},
    {"false", "0 is false and 1 is true"},
    {"figure", "DRAW makes curves, PLOT writes the picture to a file"},
    {"fminsearch", "MINIMIZE(F, X, Y) finds a minimum"},
    {"fprintf", "TYPE shows a value, PRINT writes it to a file"},
    {"fsolve", "ROOT(X, A, B, expression) in the body of a function finds a root"},
    {"fzero", "ROOT(X, A, B, expression) in the body of a function finds a root"},
    {"inf", "MAXPOS is the largest number"},
    {"lambda", "FUNCTION F(X) = A*X defines a function"},
    {"len", "NELEMS counts elements, NROWS rows"},
    {"linspace", "0:1!5 is five points from 0 to 1"},
    {"ln", "LOG is the natural logarithm, LOG10 the decimal one"},
    {"lm", "FIT (A, B), F TO M fits F to the data M"},
    {"load", "READCSV(\"name.csv\") reads a table, USE \"name\" a save file"},
    {"loadtxt", "READ(\"name\", 1000, 2) reads numbers, READCSV(\"name.csv\") a table"},
    {"ls", "TYPE DIR lists files, TYPE SYMBOLS objects"},
    {"lsqcurvefit", "FIT (A, B), F TO M fits F to the data M"},
    {"man", "HELP lists the chapters, HELP with a word tells about it"},
    {"na", "MAXPOS stands for a number that is missing"},
    {"nan", "MAXPOS stands for a number that is missing"},
    {"ncol", "NCOLS(M) counts columns"},
    {"nls", "FIT (A, B), F TO M fits F to the data M"},
    {"nrow", "NROWS(M) counts rows"},
    {"numel", "NELEMS(M) counts elements"},
    {"ode45", "FUNCTION Y'T(T) = ..., INITIAL Y(0) = ..., INTEGRATE(Y, 0:10)"},
    {"odeint", "FUNCTION Y'T(T) = ..., INITIAL Y(0) = ..., INTEGRATE(Y, 0:10)"},
    {"ones", "1^^3 is a column of three, 1^^3^^'2 three rows of two"},
    {"optim", "MINIMIZE(F, X, Y) finds a minimum"},
    {"pow", "X^Y is a power"},
    {"printf", "TYPE shows a value, PRINT writes it to a file"},
    {"prod", "PRODV(M) multiplies all elements"},
    {"pwd", "TYPE FILEDIR shows the directory of files"},
    {"quad", "INTEGRAL(X, A, B, expression) stands in the body of a function"},
    {"quit", "EXIT ends the session"},
    {"rand", "RAN(1) is a random number between 0 and 1"},
    {"read.csv", "READCSV(\"name.csv\") reads a table"},
    {"read.table", "READCSV(\"name.csv\") reads a table"},
    {"readmatrix", "READCSV(\"name.csv\") reads a table"},
    {"rep", "A^^3 is three copies of A under each other"},
    {"repmat", "A^^3^^'2 is copies of A, three down and two across"},
    {"reshape", "SHAPE(R, C, M) has R rows and C columns"},
    {"rm", "DELETE removes objects, DELETE FILE a file"},
    {"sd", "STDDEV(M) is the standard deviation"},
    {"seq", "0:10:2 counts from 0 to 10 in steps of 2"},
    {"solve", "LINEQ(A, B) solves linear equations, ROOT others"},
    {"source", "DO \"name\" runs the statements of name.do"},
    {"std", "STDDEV(M) is the standard deviation"},
    {"subplot", "each window has its FRAME: see HELP FRAME"},
    {"true", "1 is true and 0 is false"},
    {"uniroot", "ROOT(X, A, B, expression) in the body of a function finds a root"},
    {"while", "FOR I = 1:N { ... } is the loop; RETURN leaves it"},
    {"who", "TYPE SYMBOLS lists all objects, TYPE MATRICES and TYPE FUNCTIONS some"},
    {"whos", "TYPE SYMBOLS lists all objects, TYPE MATRICES and TYPE FUNCTIONS some"},
    {"xlabel", "TITLE BOTTOM, \"text\" writes below the x axis"},
    {"xlim", "WINDOW 0 TO 10, 0 TO 5 sets the limits"},
    {"ylabel", "TITLE LEFT, \"text\" writes beside the y axis"},
    {"ylim", "WINDOW 0 TO 10, 0 TO 5 sets the limits"},
    {"zeros", "0^^3 is a column of three, 0^^3^^'2 three rows of two"},
};

} // namespace

std::string otherword(const std::string& name) {
    const std::string small = lowered(name);
    for (const auto& row : words)
        if (small == row.word) return row.here;
    return "";
}

/* tests/unit/special/reftable.h - reference values from text files, for all tests of the special functions.
 * Owns:    the reading of tests/data/special/NAME.txt, the comparison, the report of a row that fails.
 * Callers: tests. A row of a file is `fname arg1 .. argn value tol`; # begins a comment.
 * Never:   passes a file without rows, a row of an unknown function, or a call that noted a fault. */
#pragma once

#include "special/fault.h"
#include "support/datarows.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

// A function under its name in the file, called with the row's arguments.
struct reffunction {
    std::string name;
    int arity;
    std::function<double(const double*)> call;

    reffunction(const char* n, double (*f)(double))
        : name(n), arity(1), call([f](const double* a) { return f(a[0]); }) {}
    reffunction(const char* n, double (*f)(double, double))
        : name(n), arity(2), call([f](const double* a) { return f(a[0], a[1]); }) {}
    reffunction(const char* n, double (*f)(double, double, double))
        : name(n), arity(3), call([f](const double* a) { return f(a[0], a[1], a[2]); }) {}
    reffunction(const char* n, double (*f)(double, double, double, double))
        : name(n), arity(4), call([f](const double* a) { return f(a[0], a[1], a[2], a[3]); }) {}
    // Any other shape (a complex part, an integer order): a lambda on the row's arguments.
    reffunction(const char* n, int k, std::function<double(const double*)> f)
        : name(n), arity(k), call(std::move(f)) {}
};

// |got - want| as a share of |want|; absolute where want is 0; infinite for a result that is no number.
inline double referror(double got, double want) {
    if (got == want) return 0;
    const double e = want == 0 ? std::fabs(got) : std::fabs(got - want) / std::fabs(want);
    return std::isfinite(e) ? e : HUGE_VAL;
}

inline void checkrefrow(const reffunction& f, const std::vector<double>& cells, const std::string& line) {
    ASSERT_EQ(cells.size(), size_t(f.arity) + 2) << "bad row: " << line;
    spfaultclear();
    const double got = f.call(cells.data());
    const double want = cells[f.arity], tol = cells[f.arity + 1];
    EXPECT_LE(referror(got, want), tol)
        << line << "\n  got " << ::testing::PrintToString(got) << ", relative error " << referror(got, want);
    EXPECT_EQ(spfaults.count, 0) << line << "\n  noted: " << spfaults.at[0].text;
}

// Runs every row of tests/data/special/FILE against the functions given; each function must have twenty rows.
inline void runreftable(const char* file, const std::vector<reffunction>& functions) {
    std::vector<int> rows(functions.size());
    for (const std::string& line : datarows(std::string("special/") + file)) {
        std::istringstream words(line);
        std::string name, word;
        words >> name;
        std::vector<double> cells; // strtod, for it also reads subnormal numbers
        while (words >> word) cells.push_back(std::strtod(word.c_str(), nullptr));
        size_t k = 0;
        while (k < functions.size() && functions[k].name != name) k++;
        ASSERT_LT(k, functions.size()) << "no function for " << line;
        rows[k]++;
        checkrefrow(functions[k], cells, line);
    }
    for (size_t k = 0; k < functions.size(); k++)
        EXPECT_GE(rows[k], 20) << "few rows of " << functions[k].name;
}

// True if the last call noted exactly one fault, of this kind and text.
inline bool notedonly(spfaultkind kind, const std::string& text) {
    return spfaults.count == 1 && spfaults.at[0].kind == kind && text == spfaults.at[0].text;
}

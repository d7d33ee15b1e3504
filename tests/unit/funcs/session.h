// A bare session for tests of this room: symbols, matrices, and the builtins that data/TOKEN.FIL names.
#pragma once

#include "funcs/builtin.h"
#include "interp/base/fpfault.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/harray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

struct vocabularyline {
    std::string name;
    int code = 0;
    std::vector<int> argd;
};

// The lines of TOKEN.FIL that name a builtin.
inline std::vector<vocabularyline> builtinlines() {
    std::ifstream in(TESTDATADIR "/../../data/TOKEN.FIL");
    std::vector<vocabularyline> found;
    for (std::string line; std::getline(in, line);) {
        const auto field = [&](const char* key) {
            const size_t at = line.find(key);
            if (at == std::string::npos) return std::string();
            const size_t from = at + std::string(key).size();
            return line.substr(from, line.find_first_of(" \t\r", from) - from);
        };
        if (line.empty() || line[0] == '/' || field("argd:").empty()) continue;
        vocabularyline v{field("name:"), std::atoi(field("type:").c_str()), {}};
        const std::string argd = field("argd:");
        for (size_t k = 0; k < argd.size(); k = std::min(argd.find(',', k), argd.size() - 1) + 1)
            v.argd.push_back(std::atoi(argd.c_str() + k));
        found.push_back(v);
    }
    return found;
}

inline void entervocabulary() {
    for (const vocabularyline& v : builtinlines()) {
        symbol& s = sym(symtabenter(v.name.c_str()));
        s.type = int16_t(v.code);
        for (size_t k = 0; k < v.argd.size() && k < 8; k++)
            s.val.argd[k] = static_cast<signed char>(v.argd[k]);
    }
}

struct funcstest : testing::Test {
    std::string out;
    void SetUp() override {
        symtabstart();
        valuesstart();
        parserreset();
        symtabconstants();
        fp = fpstate{};
        fp.limit = 5;
        spfaultclear();
        report = reportstate{};
        report.recoveryset = true;
        report.capture = &out;
        entervocabulary();
        builtinreset();
    }
    void TearDown() override {
        report = reportstate{};
        symtabsweep();
        symtabstart();
    }

    // What f prints; the error it ends in is printed too.
    std::string textof(const std::function<void()>& f) {
        out.clear();
        try {
            f();
        } catch (const recoveryjump&) { parserreset(); }
        return out;
    }
};

inline int scalar(double x) { return symtabtempscalar(0, 0, x); }
inline int named(const char* name, int type, double x = 0) {
    const int idx = symtabenter(name);
    sym(idx).type = int16_t(type);
    sym(idx).val.rval = x;
    return idx;
}
inline harrayptr filled(uint32_t rows, uint32_t cols, const std::vector<double>& x) {
    harrayptr m(harraynew(rows, cols));
    for (size_t k = 0; k < harraycount(m.get()); k++) cells(m.get())[k + 1] = x[k % x.size()];
    return m;
}
inline int matrix(uint32_t rows, uint32_t cols, const std::vector<double>& x) {
    return symtabmatrix(0, 0, filled(rows, cols, x));
}
inline harray* matrixof(int idx) { return static_cast<harray*>(sym(idx).val.ptr); }

// A value as text, to be compared whole: "2x2: 1 2 3 4", or a number.
inline std::string shown(int idx) {
    const auto number = [](double x) {
        char text[32];
        snprintf(text, sizeof text, "%.15g", x);
        return std::string(text);
    };
    if (sym(idx).type != MATRIX) return number(sym(idx).val.rval);
    const harray* m = matrixof(idx);
    std::string text = std::to_string(m->rows) + "x" + std::to_string(m->cols) + ":";
    for (size_t k = 1; k <= harraycount(m); k++) text += " " + number(cells(m)[k]);
    return text;
}

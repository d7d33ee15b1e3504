// A bare session for tests of this room: symbols, matrices, and the builtins that data/TOKEN.FIL names.
#pragma once

#include "funcs/builtin.h"
#include "funcs/calls.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "support/printed.h"
#include "values/harray.h"

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

// A value as text, to be compared whole: "2x2: 1 2 3 4", a string, or a number.
inline std::string shown(int idx) {
    const auto number = [](double x) {
        char text[32];
        snprintf(text, sizeof text, "%.15g", x);
        return std::string(text);
    };
    if (sym(idx).type == TEMPSTRING) return static_cast<char*>(sym(idx).val.ptr);
    if (sym(idx).type != MATRIX) return number(sym(idx).val.rval);
    const harray* m = matrixof(idx);
    std::string text = std::to_string(m->rows) + "x" + std::to_string(m->cols) + ":";
    for (size_t k = 1; k <= harraycount(m); k++) text += " " + number(cells(m)[k]);
    return text;
}

struct funcstest : printingtest {
    void SetUp() override {
        printingtest::SetUp();
        valuesstart();
        symtabconstants();
        fp.limit = 5;
        spfaultclear();
        entervocabulary();
        trinodestart();
        evalstart();
        funcsstart();
    }
    void TearDown() override {
        printingtest::TearDown();
        symtabstart();
    }
    // NAME(args...), laid out as the parser does it at a closing bracket: the index of its result, to be
    // freed by the sweep; 0 if it ended in an error.
    int call(int callee, const std::vector<int>& args) {
        parserreset();
        polpush(callee);
        parser.argcount[++parser.argptr] = int16_t(args.size());
        for (const int a : args) polpush(a);
        int idx = 0;
        textof([&] {
            builtincall();
            EXPECT_EQ(parser.poltop, 0);
            EXPECT_EQ(parser.argcount[parser.argptr], 1);
            idx = polpop();
        });
        return idx;
    }
    int call(const char* name, const std::vector<int>& args) { return call(symtabenter(name), args); }
    // What that prints, and the result as text.
    template <class Callee> std::string result(Callee callee, const std::vector<int>& args) {
        const auto own = std::count_if(args.begin(), args.end(), [](int a) { return istemporary(a); });
        const long others = temporaries() - own;
        std::string text;
        if (const int idx = call(callee, args)) {
            text = shown(idx);
            tempfree(idx);
            EXPECT_EQ(temporaries(), others) << "temporaries left";
        }
        return fixedwords(out) + text;
    }
    static int temporaries() {
        int n = 0;
        for (int i = 1; i < SYMTABSIZE; i++) n += istemporary(i);
        return n;
    }
};

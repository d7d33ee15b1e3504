/* tests/unit/funcs/defined.h - functions that are defined as a user does, for tests of the evaluator.
 * Owns:    a session of statements without solvers and plots around it, and what is printed. */
#pragma once

#include "funcs/flatcode.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "support/harness.h"
#include "support/printed.h"
#include "values/harray.h"

#include <algorithm>
#include <string>
#include <vector>

struct FuncsTest : printingtest {
    void SetUp() override {
        harnessstart();
        evalstart(size_t(4) << 20);
        flatstart();
        fp.limit = 0;
        catchprinted();
    }
    static int builtin(const char* name, int code, std::vector<int> slots) {
        const int idx = symtabenter(name);
        sym(idx).type = int16_t(code);
        sym(idx).val.argd[0] = static_cast<signed char>(slots.size());
        for (size_t k = 0; k < slots.size(); k++)
            sym(idx).val.argd[k + 1] = static_cast<signed char>(slots[k]);
        return idx;
    }
    void define(const std::string& text) {
        out.clear();
        harnessrun("FUNCTION " + text);
        EXPECT_EQ(out.find("Error"), std::string::npos) << text << "\n" << out;
    }
    static int set(const char* name, double x) {
        const int idx = symtabenter(name);
        sym(idx).type = SCALAR;
        sym(idx).val.rval = x;
        return idx;
    }
    static harray* matrix(const char* name, uint32_t rows, uint32_t cols, std::vector<double> x) {
        const int idx = symtabenter(name);
        harray* m = harraynew(rows, cols);
        std::copy(x.begin(), x.end(), cells(m) + 1);
        sym(idx).type = MATRIX;
        sym(idx).val.ptr = m;
        return m;
    }
    static double call(const char* f, std::vector<double> args) {
        return callvalue(symtablookup(f), args.data(), int(args.size()));
    }
    // The error that calling f gives; the stacks and modes are put back as after any failed statement.
    std::string failure(const char* f, std::vector<double> args) {
        return failing([&] { call(f, args); });
    }
    template <class Action> std::string failing(Action&& action) {
        const std::string error = errorof(action);
        if (error.empty()) return "no error";
        symtabsweep();
        if (parser.treegarbage) trireclaim();
        parser.treegarbage = false;
        eval.flat = true;
        return error;
    }
};

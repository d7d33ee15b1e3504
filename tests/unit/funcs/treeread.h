/* tests/unit/funcs/treeread.h - definitions from text, for tests of this room.
 * A reader by recursive descent that hands its reductions to funcprocess in the order in which the parser
 * does. */
#pragma once

#include "funcs/builtin.h"
#include "funcs/define.h"
#include "funcs/flatcode.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "values/harray.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

struct treereader {
    const char* at;

    void blanks() { at += strspn(at, " "); }
    bool take(const char* word) {
        blanks();
        const size_t n = strlen(word);
        if (strncmp(at, word, n) != 0) return false;
        if (isalpha(word[0]) && (isalnum(at[n]) || at[n] == '.')) return false;
        at += n;
        return true;
    }
    static void reduce(int token) { funcprocess(token); }
    std::string name() {
        blanks();
        const char* from = at;
        while (isalnum(*at) || *at == '.') at++;
        return {from, at};
    }

    void primary() {
        blanks();
        if (take("(")) {
            expression();
            if (!take(")")) ADD_FAILURE() << "no ) at " << at;
        } else if (isdigit(*at) || *at == '.') {
            char* end;
            polpush(symtabconst(strtod(at, &end)));
            at = end;
        } else if (isalpha(*at)) {
            polpush(symtabenter(name().c_str()));
        } else {
            ADD_FAILURE() << "no operand at " << at;
        }
    }
    void postfix() {
        primary();
        int primes = 0;
        while (take("'")) {
            while (take("'")) primes++;
            primary();
            parser.opstack[++parser.oplevel] = TOKDERIVATIVE;
            for (; primes > 0; primes--) parser.opstack[++parser.oplevel] = TOKDERIVATIVE;
            parser.oplevel--; // the reduced one is taken off first
            reduce(TOKDERIVATIVE);
            parser.oplevel = 0;
        }
        while (take("(")) {
            parser.argcount[++parser.argptr] = 1;
            if (take(")")) {
                parser.argcount[parser.argptr] = 0;
            } else {
                for (expression(); take(","); reduce(TOKCOMMA)) expression();
                if (!take(")")) ADD_FAILURE() << "no ) at " << at;
            }
            reduce(TOKCALL);
            parser.argptr--;
        }
    }
    void power() {
        postfix();
        while (take("^")) {
            if (take("-")) {
                postfix();
                reduce(TOKUNARYMINUS);
            } else {
                postfix();
            }
            reduce(TOKPOWER);
        }
    }
    void sign() {
        if (take("-")) {
            sign();
            reduce(TOKUNARYMINUS);
        } else {
            power();
        }
    }
    void product() {
        sign();
        for (;;) {
            const int token = take("*") ? TOKTIMES : take("/") ? TOKDIVIDE : 0;
            if (!token) return;
            sign();
            reduce(token);
        }
    }
    void sum() {
        product();
        for (;;) {
            const int token = take("+") ? TOKPLUS : take("-") ? TOKMINUS : 0;
            if (!token) return;
            product();
            reduce(token);
        }
    }
    void relation() {
        sum();
        for (;;) {
            const int token = take("<=")   ? TOKLESSEQUAL
                              : take(">=") ? TOKGREATEREQUAL
                              : take("<")  ? TOKLESS
                              : take(">")  ? TOKGREATER
                              : take("=")  ? TOKEQUAL
                                           : 0;
            if (!token) return;
            sum();
            parser.oplevel = 1; // below stands the = of the definition
            reduce(token);
            parser.oplevel = 0;
        }
    }
    void negation() {
        if (!take("NOT")) return relation();
        negation();
        reduce(TOKNOT);
    }
    void conjunction() {
        for (negation(); take("AND"); reduce(TOKAND)) negation();
    }
    void disjunction() {
        for (conjunction(); take("OR"); reduce(TOKOR)) conjunction();
    }
    void expression() {
        if (take("IF")) {
            expression();
            reduce(TOKIF);
            if (!take("THEN")) ADD_FAILURE() << "no THEN at " << at;
            expression();
            reduce(TOKTHEN);
            if (!take("ELSE")) ADD_FAILURE() << "no ELSE at " << at;
            expression();
            reduce(TOKELSE);
            return;
        }
        disjunction();
        if (take("_")) {
            expression();
            parser.oplevel = 1;
            reduce(TOKUNDERSCORE);
            parser.oplevel = 0;
        }
    }
    void definition() {
        definitionbegin(take("INITIAL") ? 1 : (take("FUNCTION"), -1));
        postfix();
        if (!take("=")) ADD_FAILURE() << "no = at " << at;
        expression();
        blanks();
        parser.token = *at ? TOKCOMMA : TOKEND;
        reduce(TOKEQUAL);
        parserreset();
        if (parser.treegarbage) trireclaim();
        parser.treegarbage = false;
    }
};

// A session of this room alone, with what it prints.
struct FuncsTest : testing::Test {
    std::string printed;
    void SetUp() override {
        hooksreset();
        symtabstart();
        parserreset();
        parser.treegarbage = false;
        fpclear();
        fp.limit = 0;
        valuesstart();
        trinodestart();
        symtabconstants();
        funcsstart();
        definestart();
        evalstart(size_t(4) << 20);
        flatstart();
        report.recoveryset = true;
        report.capture = &printed;
        builtins();
    }
    void TearDown() override {
        report.capture = nullptr;
        symtabsweep();
        symtabstart();
    }

    static int builtin(const char* name, int code, std::vector<int> slots) {
        const int idx = symtabenter(name);
        sym(idx).type = int16_t(code);
        sym(idx).val.argd[0] = static_cast<signed char>(slots.empty() ? -100 : int(slots.size()));
        for (size_t k = 0; k < slots.size(); k++)
            sym(idx).val.argd[k + 1] = static_cast<signed char>(slots[k]);
        return idx;
    }
    static void builtins() {
        builtin("EXP", -1, {4});
        builtin("LOG", -2, {4, -4});
        builtin("SQRT", -4, {4});
        builtin("SIN", -5, {4});
        builtin("COS", -7, {4});
        builtin("ABS", -23, {22});
        builtin("ATAN2", -19, {4, 4});
        builtin("FLOOR", -18, {4});
        builtin("MAX", -205, {});
        builtin("INTEGRAL", -500, {24, 20, 20, 20});
        builtin("EVAL", -501, {24, 20, 20});
        builtin("SUM", -502, {24, 20, 20, 20});
        builtin("ROOT", -503, {24, 20, 20, 20});
        builtin("PRODUCT", -504, {24, 20, 20, 20});
        builtin("NROWS", -401, {6});
        builtin("MAXV", -406, {6});
    }
    static void define(const std::string& text) { treereader{text.c_str()}.definition(); }
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
        printed.clear();
        try {
            action();
        } catch (const recoveryjump&) {
            parserreset();
            symtabsweep();
            if (parser.treegarbage) trireclaim();
            parser.treegarbage = false;
            eval.flat = true;
            return printed;
        }
        return "no error";
    }
};

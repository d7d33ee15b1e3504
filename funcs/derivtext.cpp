#include "funcs/derivtext.h"

#include "funcs/derivbuild.h"
#include "funcs/trinode.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr char letters[] = "uvwst";

struct formulareader {
    const char* at;
    const int* args;
    int nargs;
    const char* bad = nullptr; // first place that cannot be read

    int fail() {
        if (!bad) bad = at;
        return treenumber(1);
    }
    bool take(char c) {
        while (*at == ' ') at++;
        if (*at != c) return false;
        at++;
        return true;
    }

    int comparison() {
        const int a = sum();
        return take('=') ? treeequals(a, sum()) : a;
    }
    int sum() {
        int a = product();
        for (;;) {
            if (take('+'))
                a = treeadd(a, product());
            else if (take('-'))
                a = treesub(a, product());
            else
                return a;
        }
    }
    int product() {
        int a = sign();
        for (;;) {
            if (take('*'))
                a = treemul(a, sign());
            else if (take('/'))
                a = treediv(a, sign());
            else
                return a;
        }
    }
    int sign() { return take('-') ? treeneg(sign()) : power(); }
    int power() {
        const int a = primary();
        if (!take('^')) return a;
        const int b = sign();
        return treeis(b, 2) ? treesqr(a) : treepow(a, b);
    }
    int primary() {
        if (take('(')) {
            const int a = comparison();
            return take(')') ? a : fail();
        }
        if (isdigit(static_cast<unsigned char>(*at))) {
            char* end;
            const double x = std::strtod(at, &end);
            at = end;
            return treenumber(x);
        }
        if (isupper(static_cast<unsigned char>(*at))) return call();
        const char* letter = *at ? strchr(letters, *at) : nullptr;
        if (!letter || letter - letters >= nargs) return fail();
        at++;
        return args[letter - letters];
    }
    int call() {
        const char* start = at;
        while (isalnum(static_cast<unsigned char>(*at))) at++;
        const std::string name(start, at);
        const int callee = symtablookup(name.c_str());
        if (callee <= 0 || sym(callee).type >= 0) {
            at = start;
            return fail();
        }
        if (!take('(')) return fail();
        std::vector<int> given;
        do given.push_back(comparison());
        while (!bad && take(','));
        if (!take(')')) return fail();
        return tricall(callee, given);
    }
};

} // namespace

int derivformula(const char* formula, const int* args, int nargs) {
    formulareader reader{formula, args, nargs};
    const int tree = reader.comparison();
    if (reader.bad || *reader.at) tarnerror("DIFF: bad function structure");
    return tree;
}

const char* derivformulacheck(const char* formula) {
    int args[5]; // different ones: a formula may divide by their difference
    for (int k = 0; k < 5; k++) args[k] = symtabenter(std::string(1, "XYZST"[k]).c_str());
    formulareader reader{formula, args, 5};
    reader.comparison();
    if (reader.bad) return reader.bad;
    return *reader.at ? reader.at : nullptr;
}

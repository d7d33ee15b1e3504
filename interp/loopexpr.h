/* interp/loopexpr.h - the expressions of a loop body to flat code.
 * Owns:    the body being compiled, and the form of an operand on the way.
 * Callers: loopcompile.cpp, which knows the statements.
 * Never:   keeps anything: what it makes goes into the code of the loop. */
#pragma once

#include "interp/loopimpl.h"
#include "interp/tokenstream.h"

struct looprefused {}; // there is no code for this statement

struct loopoperand {
    enum kind { value, name, element, range } what = value;
    const double* p = nullptr; // value
    double* result = nullptr;  // value: the place, when it is a result on the way
    int index = 0;             // symbol of a name or of a value; matrix of an element; inner loop of a range
    const double *row = nullptr, *col = nullptr;
};

struct loopcompiler {
    const tokenstream& body;
    loopcode& out;
    size_t at = 0;          // token where the statement begins
    bool callsuser = false; // the statement calls a user function, which may change any variable
    int nested = 0;         // IFs and loops around the statement
    std::vector<size_t>* leaves = nullptr; // the RETURNs of the inner loop around the statement
};

inline loopinstr& loopemit(loopcompiler& c, loopop op) {
    loopinstr& i = c.out.code.emplace_back();
    i.op = op;
    i.at = int32_t(c.at);
    return i;
}

// The place of a value; anything else is refused.
const double* loopplace(const loopoperand& o);

// Tokens from..to, with `under` waiting below them, up to the token `end`; what is left are its operands.
std::vector<loopoperand> loopexpression(loopcompiler& c, std::vector<int> under, size_t from, size_t to,
                                        int end);

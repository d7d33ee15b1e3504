/* interp/loopimpl.h - what compiled loop bodies are made of.
 * Owns:    the form of an instruction.
 * Callers: loopcompile.cpp and looprun.cpp alone.
 * Never:   outlives its loop. */
#pragma once

#include "funcs/builtin.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/loopcode.h"
#include "values/harray.h"

#include <deque>
#include <string>
#include <vector>

// Operands are addresses: of the value of a symbol, of a constant, of a place for results on the way.
enum loopop : uint8_t {
    LOOPMOVE,
    LOOPADD, // d = a op b
    LOOPSUB,
    LOOPMUL,
    LOOPDIV,
    LOOPPOW,
    LOOPLESS,
    LOOPLESSEQ,
    LOOPGREATER,
    LOOPGREATEREQ,
    LOOPEQUAL,
    LOOPAND,
    LOOPOR,
    LOOPELEMENT, // d = matrix(a,b)
    LOOPSTORE,   // matrix(a,b) = d
    LOOPDEFINE,  // d = a, and the symbol becomes a scalar
    LOOPCALL1,   // d = function(a)
    LOOPCALL,    // d = function of n arguments
    LOOPUSER,    // d = user function of n arguments
    LOOPJUMP,
    LOOPJUMPZERO, // when a is 0
    LOOPEND,      // of a statement
    LOOPFOR,      // begins a loop inside
    LOOPNEXT,     // its next pass, at the target; else goes on
    LOOPLEAVE,    // RETURN: ends the running loop
    LOOPPASS,     // the end of the body
    LOOPPARSE     // a statement without code
};

struct loopinstr {
    loopop op;
    int16_t n = 0;      // arguments; the number of an inner loop; LOOPCALL1: the code
    int32_t at = 0;     // token from which the statement, or the one to be parsed, begins
    int32_t target = 0; // of a jump
    double* d = nullptr;
    const double *a = nullptr, *b = nullptr;
    union {
        symbol* matrix = nullptr;
        double (*f1)(double);
        int32_t index; // LOOPCALL: code of the builtin, LOOPUSER: the function's symbol
    };
    const double* const* args = nullptr; // LOOPCALL, LOOPUSER
};

// What the values of an inner FOR come from.
struct innerloop {
    int16_t var = 0, matrix = 0; // symbols; matrix 0: a range, or a scalar
    int operands = 1;            // 1 a scalar, 2 a:b, 3 a:b:c
    bool counted = false;        // a:b!c
    const double* operand[3] = {};
    harrayptr range; // the values, while the loop runs
    size_t index = 0;
};

struct loopguard {
    int16_t index, type; // the code holds while the symbol has this type
    std::string name;    // and this name
};

struct loopcode {
    std::vector<loopinstr> code;
    std::vector<int32_t> entry; // by token: the instruction where a statement begins, -1 where none does
    std::vector<loopguard> guards;
    std::deque<double> constants;
    std::deque<double> results;
    std::deque<std::vector<const double*>> arguments;
    std::vector<innerloop> inner;
    bool covers = false;   // there is code for at least one statement
    bool complete = false; // and for all
    size_t madeat = 0;     // pass
};

// Makes code for the body with the symbols as they are now.
loopcodeptr loopcompile(const tokenstream& body);
bool loopholds(const loopcode& code);

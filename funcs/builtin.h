/* funcs/builtin.h - the table of builtins: one row a code, beside its routine.
 * Owns:    the map from a builtin's code to its routine; the calling conventions.
 * Callers: each room exports its rows at start (builtinadd...); the call path and the evaluator look up.
 * Never:   knows a name: TOKEN.FIL gives names and signatures, and a test holds the two together. */
#pragma once

#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "special/fault.h"

#include <cstddef>
#include <cstdint>

// Codes -1..-399: scalar functions of up to seven scalars. A missing argument takes its default (argument 2
// is 0, 3 is 1, 4 and 5 are 0, 6 is 1, 7 is 0); the signature in TOKEN.FIL says which may be missing. PURE:
// same arguments, same result, no effect (may be evaluated in blocks, in any order, or once). COUNTED: the
// routine wants the number of arguments given: it gets it as `double n` in front.
inline constexpr double SCALARABSENT[7] = {0, 0, 1, 0, 0, 1, 0}; // the defaults, by place
enum scalarflags { PURE = 0, IMPURE = 1, COUNTED = 2 };
struct scalarrow {
    int16_t code;
    int8_t arity;
    int8_t flags;
    union {
        double (*f0)();
        double (*f1)(double);
        double (*f2)(double, double);
        double (*f3)(double, double, double);
        double (*f4)(double, double, double, double);
        double (*f5)(double, double, double, double, double);
        double (*f6)(double, double, double, double, double, double);
        double (*f7)(double, double, double, double, double, double, double);
        double (*fn)(const double* args, int count); // arity -1: any number of arguments
    };
    using d = double;
    constexpr scalarrow() : code(0), arity(0), flags(0), f0(nullptr) {}
    constexpr scalarrow(int c, d (*f)(), int fl = 0) : code(int16_t(c)), arity(0), flags(int8_t(fl)), f0(f) {}
    constexpr scalarrow(int c, d (*f)(d), int fl = 0)
        : code(int16_t(c)), arity(1), flags(int8_t(fl)), f1(f) {}
    constexpr scalarrow(int c, d (*f)(d, d), int fl = 0)
        : code(int16_t(c)), arity(2), flags(int8_t(fl)), f2(f) {}
    constexpr scalarrow(int c, d (*f)(d, d, d), int fl = 0)
        : code(int16_t(c)), arity(3), flags(int8_t(fl)), f3(f) {}
    constexpr scalarrow(int c, d (*f)(d, d, d, d), int fl = 0)
        : code(int16_t(c)), arity(4), flags(int8_t(fl)), f4(f) {}
    constexpr scalarrow(int c, d (*f)(d, d, d, d, d), int fl = 0)
        : code(int16_t(c)), arity(5), flags(int8_t(fl)), f5(f) {}
    constexpr scalarrow(int c, d (*f)(d, d, d, d, d, d), int fl = 0)
        : code(int16_t(c)), arity(6), flags(int8_t(fl)), f6(f) {}
    constexpr scalarrow(int c, d (*f)(d, d, d, d, d, d, d), int fl = 0)
        : code(int16_t(c)), arity(7), flags(int8_t(fl)), f7(f) {}
    constexpr scalarrow(int c, d (*f)(const d*, int), int fl = 0)
        : code(int16_t(c)), arity(-1), flags(int8_t(fl)), fn(f) {}
};

// The routine on n arguments, none missing; what it yields is not checked.
inline double scalarrowcall(const scalarrow& row, const double* x, int n) {
    switch (row.arity) {
    case 0: return row.f0();
    case 1: return row.f1(x[0]);
    case 2: return row.f2(x[0], x[1]);
    case 3: return row.f3(x[0], x[1], x[2]);
    case 4: return row.f4(x[0], x[1], x[2], x[3]);
    case 5: return row.f5(x[0], x[1], x[2], x[3], x[4]);
    case 6: return row.f6(x[0], x[1], x[2], x[3], x[4], x[5]);
    case 7: return row.f7(x[0], x[1], x[2], x[3], x[4], x[5], x[6]);
    default: return row.fn(x, n);
    }
}

// The arguments of one call, on polstack behind the callee.
struct callargs {
    int p; // polstack position of the callee
    int n; // arguments given
    int code;
    int operator[](int k) const {
        return k <= n ? parser.polstack[p + k] : 0;
    } // argument k from 1; 0 when not given
    const char* name() const { return sym(parser.polstack[p]).name; }
    // Value of scalar argument k, which may stand on the scalar stack; `absent` when not given.
    double scalar(int k, double absent = 0) const;
};

// Codes -400..-505: a number from matrices and other arguments; usable in bodies.
struct numberrow {
    int16_t code;
    double (*call)(const callargs& a);
};
// Codes -600..-790 and -900..-911: any value; statement level only. Returns the index of a new temporary; the
// dispatch frees the arguments afterwards.
struct valuerow {
    int16_t code;
    int (*call)(const callargs& a);
};

// A scalar function of one number on a column of them, with the same bits as its routine. It tells nothing:
// where there is something to tell, its result is not finite.
using columnroutine = void (*)(const double* x, double* y, size_t n);
struct columnrow {
    int16_t code;
    columnroutine run;
};

void funcsstart(); // empties the table and enters the rows of this room and of special/
void builtinreset();
void builtinadd(const scalarrow* rows, int count);
void builtinadd(const numberrow* rows, int count);
void builtinadd(const valuerow* rows, int count);
void builtinadd(const columnrow* rows, int count);
const scalarrow* scalarbuiltinrow(int code); // null: no routine
columnroutine scalarbuiltincolumn(int code); // null: one at a time
const numberrow* numberbuiltinrow(int code);
const valuerow* valuebuiltinrow(int code);

// The scalar function of that code on n arguments, args[0] the first: defaults, faults and their words as at
// a call. A code without a routine warns and gives 0.
double scalarbuiltin(int code, const double* args, int n);

// Prints what the routines of special/ noted in the last call and clears the record; an error among it
// throws. A warning of the range names the builtin of that code, whichever routine behind it noted it.
[[gnu::cold]] void spfaultreport(int code);
inline double spchecked(double result, int code) {
    if (spfaults.count != 0) [[unlikely]]
        spfaultreport(code);
    return result;
}

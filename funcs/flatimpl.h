/* funcs/flatimpl.h - what the compiler and the runners of flat code share.
 * Owns:    the shape of compiled code.
 * Callers: funcs/flat*.cpp and value.cpp alone.
 * Never:   included elsewhere: users see funcs/flatcode.h. */
#pragma once

#include "funcs/builtin.h"
#include "funcs/flatcode.h"

#include <cstddef>
#include <cstdint>
#include <vector>

struct harray;

/* Only code without effects is compiled. A run that meets anything to be told of (a floating-point fault, a
 * warning, an error) is given up without a trace; the walk then does the evaluation again and tells it. So
 * instructions need not stand in the order of the tree: common subexpressions are computed once, and what
 * does not change in a loop before it. A non-finite number passes on through sums, products, quotients' upper
 * sides and signs; an instruction checks its result (flag FLATCHECKED) where the result meets an operation
 * that could hide it. */
enum flatopcode : uint8_t {
    FLATMOVE, // dst = a
    FLATADD,  // dst = a op b; each is followed by its checking form
    FLATADDCHECK,
    FLATSUB,
    FLATSUBCHECK,
    FLATMUL,
    FLATMULCHECK,
    FLATDIV,
    FLATDIVCHECK,
    FLATCHECK, // gives up unless a is finite
    FLATPOW,   // these and all below give finite results
    FLATNEG,
    FLATEQ,
    FLATLT,
    FLATLE,
    FLATAND,
    FLATOR,
    FLATNOT,
    FLATJUMP,    // to dst
    FLATJUMPNOT, // to dst if a is 0
    FLATJUMPNE,  // to dst unless a = b
    FLATJUMPNLT, // to dst unless a < b
    FLATJUMPNLE, // to dst unless a <= b
    FLATCALL1,   // dst = row b of a
    FLATCALL2,   // dst = row of a and b; data: row
    FLATCALLN,   // dst = row a of b arguments; data: three arguments each
    FLATELEM,    // dst = matrix of row a and column b; data: matrix
    FLATROWS,    // dst = rows of matrix a
    FLATCOLS,    // dst = columns of matrix a
    FLATNUMBER,  // dst = number call a
    FLATSTORE,   // value of symbol dst = a
    FLATUSER,    // dst = routine a of b arguments; data: cells of polstack and scalar stack; data: three
                 // arguments each
    FLATRETURN,  // a
    FLATLOOP,    // loop dst from a
    FLATNEXT,    // round of loop dst done
    FLATSEGMENT, // dst = root or integral, number a, from b; its body follows
    FLATSEGMENTEND,
    FLATDATA,
    FLATEND
};

struct flatop {
    uint16_t op, dst, a, b;
};

// SUM and PRODUCT. Registers, and places in the code.
struct flatloop {
    bool product;
    int dummy, high, accumulator, term;
    int body, next, end;       // first instruction of the body, its FLATNEXT, what follows
    bool blocks;               // the body can be run on a block of values of the dummy
    std::vector<uint8_t> vary; // by register: changes with the dummy
};

// ROOT and INTEGRAL.
struct flatsegment {
    bool root;
    int dummy, high, value;
    int body, end;
};

struct flatnumbercall {
    const numberrow* row;
    int callee;
    std::vector<int> arg; // register, or -1 - matrix
};

/* One function's code. Registers of a frame: the image (constants and globals), the arguments, the rest. */
struct flatroutine {
    std::vector<flatop> code;
    std::vector<double> image;
    int function = 0; // its value is set on return
    int nargs = 0, nregs = 0;
    int polcells = 0, scalarcells = 0; // the most that the walk of this body has in use above its frame
    std::vector<flatloop> loops;
    std::vector<flatsegment> segments;
    std::vector<flatnumbercall> numbercalls;
    std::vector<int> firstset, lastuse; // by register: the instructions where it is first set and last read
};

struct flatglobal {
    int16_t symbol;
    uint16_t routine, slot; // where an image keeps its value
};
struct flatguard {
    int16_t symbol, type, index; // as it was when the code was made
};
struct flatmatrix {
    int symbol; // or minus the argument of the entry that it is
    const harray* m;
};

struct flatunit {
    std::vector<flatroutine> routines; // [0] is the entry
    std::vector<int> outputs;          // registers of its results
    std::vector<flatglobal> globals;
    std::vector<flatguard> guards;
    std::vector<flatmatrix> matrices;
    std::vector<const scalarrow*> rows;
    std::vector<columnroutine> columns; // of the same functions; null where there is none
    std::vector<int16_t> stored;        // functions whose last value a run sets
    std::vector<double> saved;          // and what it was before
    mutable std::vector<int> storedrow; // and the last row of the block that has set it
    std::vector<int16_t> dummies;       // names that the operators with a dummy bind
    uint32_t sweeps = 0;                // trinodes.sweeps when it was made
    bool odedependent = false, odeactive = false;
    bool blocks = false;       // the entry can be run on blocks of rows
    bool straight = false;     // and has no branches: rows keep their places
    std::vector<uint8_t> vary; // by register, for the arguments that vary as below
    std::vector<uint8_t> varyargs;
    int varying = 0; // registers that vary
};

// What is to be compiled: functions of nargs arguments, the bits of matrixargs telling which are matrices.
inline constexpr int MOSTFLATARGS = 31;
struct flatsource {
    std::vector<int> functions;
    int nargs;
    uint32_t matrixargs;
    std::vector<int> symbols; // take their values from further arguments
};
bool flatbuild(const flatsource& source, flatunit& unit); // false: it must be walked
void flatvarying(const flatroutine& routine, int from, int to,
                 std::vector<uint8_t>& vary); // what depends on what varies

// ---- running

inline constexpr int FLATBLOCK = 256;

struct flatcells {
    int pol, scalar; // in use, by the walk's reckoning
};

// Where a routine goes on when the one that it called returns.
struct flatcall {
    const flatop* pc;
    const flatroutine* routine;
    double* frame;
    flatcells cells;
    uint16_t dst;
};

struct flatmachine {
    std::vector<double> stack;   // frames of the scalar runner
    std::vector<double> block;   // registers of the block runner
    std::vector<flatcall> calls; // routines that wait
    uint32_t rounds = 0;         // of loops, for the break key
};
extern flatmachine flat;

enum flatresult { FLATDONE, FLATGIVENUP };

/* Runs code on a frame that holds its image and arguments, from instruction `pc` to FLATEND, FLATSEGMENTEND
 * or the return of the routine; memory for further frames begins at `top`. False: given up. */
bool flatexecute(flatunit& unit, const flatroutine& routine, int pc, double* frame, flatcells cells);

/* Instructions from..to on n rows. A register that varies has its rows at block + FLATBLOCK * its number,
 * another its value in the frame. The rows may end in another order: order tells the row of each place. */
flatresult flatexecuteblock(const flatunit& unit, const flatroutine& routine, int from, int to,
                            const uint8_t* vary, double* frame, double* block, uint16_t* order, int n);
/* The entry on points side by side, `used` of them wanted. The frame holds its image and arguments. Lanes
 * that would take different branches give it up. */
struct alignas(64) flatlane {
    double x[FLATLANES];
};
flatresult flatexecutelanes(const flatunit& unit, flatlane* frame, int used);

flatresult flatloopblocks(const flatunit& unit, const flatroutine& routine, const flatloop& loop,
                          double* frame, double low);

// ---- for the evaluator

enum flatoutcome {
    FLATNOCODE,
    FLATVALUE,
    FLATREPEAT
}; // walk this body; done; walk the body and all that it calls
flatoutcome flatvalue(int p, int f, int nargs, double& result);

/* funcs/flatcompile.h - the working state of the compiler of flat code.
 * Owns:    virtual registers, stretches of code, what names stand for in the body being written.
 * Callers: funcs/flatcompile.cpp (expressions), flatcalls.cpp (calls), flatassemble.cpp (the finished
 * routine). Never:   included elsewhere. */
#pragma once

#include "funcs/flatimpl.h"
#include "funcs/trinode.h"

#include <initializer_list>
#include <map>
#include <set>
#include <vector>

struct flatrefused {}; // thrown: this tree must be walked

enum flatkind { FLATNUMERIC, FLATMATRIXVALUE, FLATFUNCTIONVALUE };
struct flatval {
    flatkind kind;
    int ref; // virtual register, matrix number, or a function's symbol
};

/* Registers are virtual until the routine is complete: how many constants it has is not known before. */
struct flatreg {
    int level;    // the stretch in which it is made
    bool finite;  // known to be, or checked where it is made
    bool checked; // the making instruction is to check
    bool used;
    std::vector<int> from; // of a copy or a sign: the registers that decide
};

// An instruction or a word of data. kinds tells what each field holds: 'r' register, 'l' label, 'n' number.
struct flatproto {
    int op;
    const char* kinds;
    int field[3];
};
inline constexpr int FLATLABEL = -1; // as op: the place of label field[0]

using flatvaluekey = std::vector<int>;

/* A stretch of code that may run another number of times than what surrounds it. What does not depend on a
 * loop is put before it, but nothing is taken out of a branch. */
struct flatscope {
    bool loop;
    std::vector<flatproto> code;
    std::map<flatvaluekey, flatval> known; // values that have been computed
};

// A body being written: what its formals stand for.
struct flatenv {
    int function;
    std::vector<flatval> formals;
    int serial;
};

struct flatdummy {
    int symbol, reg;
};

// What virtual registers and labels are in the end.
struct flatplacement {
    std::vector<int> reg, label;
};

struct flatcompiler;

struct flatroutinekey {
    int function;
    std::vector<int> binding; // by formal: 0 a number, 1 + matrix, or minus a function's symbol
    bool operator==(const flatroutinekey&) const = default;
};

struct flatunitcompiler {
    flatunit& unit;
    const flatsource& source;
    std::vector<flatroutinekey> keys; // [k] is routines[k]; [0] the entry
    std::set<int> read, calleeread;   // globals read in all, and by other routines than the entry
    std::set<int> dummies, stored;
    std::vector<int8_t> calling; // by node: 1 holds calls of user functions, -1 does not, 0 not known
    int visits = 0;

    bool callsfunctions(int ref);
    void guard(int idx);
    int matrix(int symbolorarg);
    int row(const scalarrow* r);
    int routine(const flatroutinekey& key);
    void compilefunction(flatcompiler& c, flatroutine& made, const flatroutinekey& key);
    void compileentry(flatcompiler& c);
    void compileroutine(int k);
    void compile();
    void complete();
};

struct flatcompiler {
    flatunitcompiler& unit;
    flatroutine& out;
    const int number;
    std::vector<flatreg> regs;
    std::vector<flatscope> scopes;
    std::vector<flatenv> envs;
    std::vector<flatdummy> dummies;
    std::vector<int> imageregs, argregs;
    std::map<uint64_t, int> constants;    // bits to register
    std::map<int, double> constantvalues; // register to value
    std::map<int, int> globals, inputs;   // symbol to register
    int labels = 0, serials = 0, dummyserial = 0;
    flatcells cells{0, 0}; // in use by the walk at this place

    flatcompiler(flatunitcompiler& u, flatroutine& r, int k);

    // registers and instructions
    int here() const { return int(scopes.size()) - 1; }
    int newreg(int level, bool finite);
    flatval nextargument(); // of the routine, in a register
    void needfinite(int r);
    void use(int r, int level);
    void put(int level, int op, const char* kinds, int x, int y = 0, int z = 0);
    void put(int op, const char* kinds, int x, int y = 0, int z = 0) { put(here(), op, kinds, x, y, z); }
    void label(int l) { put(FLATLABEL, "", l); }
    const flatval* known(const flatvaluekey& key) const;
    int levelfor(const std::vector<int>& inputs) const; // the outermost stretch where they are all known
    int emit(int op, int a, int b, bool finite);
    void openscope(bool loop) { scopes.push_back({loop, {}, {}}); }
    std::vector<flatproto> closescope();
    void append(const std::vector<flatproto>& code);
    void reserve(int pol, int scalar);
    int constant(double x);
    int global(int idx);
    void arguments(const std::vector<int>& args, int level); // words of data

    // expressions
    flatval symbolvalue(int idx);
    flatval expression(int ref);
    int numeric(int ref);
    int finite(int ref);
    flatval nodevalue(int ref);
    int binary(int op, int left, int right);
    int conditional(const trinode& n);
    void jumpunless(int condition, int target);

    // calls
    flatval call(int ref);
    int scalarcall(int callee, int ref);
    int element(int m, int ref);
    int numbercall(int callee, int ref);
    int operatorcall(int code, int ref);
    int sumloop(bool product, int dummy, int low, int high, int body);
    int segment(bool root, int dummy, int low, int high, int body);
    int usercall(int callee, int ref);
    int inlined(int callee, const std::vector<flatval>& args);
    int routinecall(int callee, const std::vector<flatval>& args, flatcells at);

    void finish(); // the routine from what has been put
    flatplacement place() const;
    void writecode(const flatplacement& to);
    void finduses(const std::vector<int>& kept);
};

std::vector<int> flatargumentrefs(int call);

/* funcs/precisevalue.h - the value and the gradient of a user function at about 32 digits.
 * Owns:    the record of one evaluation, from which the gradient is read backwards.
 * Callers: FIT, for the last digits of a result.
 * Never:   has effects or tells of anything: what it does not know, and what has no value, is "false". */
#pragma once

#include "interp/base/symtab.h"
#include "special/doubledouble.h"

#include <vector>

/* The number that was written: of a double to which a decimal of 15 digits or fewer is read, that decimal,
 * which the double only carries rounded; of others the double. */
dd precisedecimal(double x);

// A name that the gradient is taken by: a scalar, or a cell of a matrix (element from 1).
struct preciseparameter {
    int symbol = 0, element = 0;
};

/* A function with its parameters. Numbers and names in its body keep the values that they have when they are
 * first met, so an evaluator serves while nothing is assigned. */
class preciseevaluator {
public:
    explicit preciseevaluator(std::vector<preciseparameter> parameters);
    /* f at args, parameters p. gradient: as many as there are parameters. Knows arithmetic, powers,
     * comparisons, IF, calls of user functions, SUM, PRODUCT, EVAL and the elementary functions. */
    bool run(int f, const std::vector<dd>& args, const dd* p, dd& value, dd* gradient);
    long work() const { return worked; } // of the last run, in products of numbers of this length

private:
    // A number on the way; `at` is its place on the record, -1 where no parameter comes into it.
    struct number {
        dd v;
        int at = -1;
    };
    struct step { // of the record: what the number depends on, and how
        int a, b;
        dd da, db;
    };
    struct scope {
        std::vector<number> formals;
    };
    number record(dd v, const number& a, dd da);
    number record(dd v, const number& a, dd da, const number& b, dd db);
    number eval(int ref, const scope& s);
    number symbolvalue(int idx);
    number node(int ref, const scope& s);
    number binary(int op, const number& a, const number& b);
    number power(const number& a, const number& b);
    number call(int ref, const scope& s);
    number builtin(int code, const std::vector<number>& args);
    number bounded(int code, int ref, const scope& s);
    number userfunction(int f, scope& inner);
    number element(int matrix, const std::vector<number>& subscripts);

    std::vector<preciseparameter> parameters;
    std::vector<int> firstof; // by symbol: its first parameter, -1
    std::vector<char> met;    // by symbol: its value is in `held`
    std::vector<dd> held;
    std::vector<std::pair<int, number>> dummies; // bound by SUM and its like, the innermost last
    const dd* point = nullptr;
    std::vector<step> steps; // the parameters first
    std::vector<dd> adjoint;
    int depth = 0;
    long worked = 0;
};

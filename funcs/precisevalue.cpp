#include "funcs/precisevalue.h"

#include "funcs/preciseelementary.h"
#include "funcs/trinode.h"
#include "interp/base/operand.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct preciserefused {}; // caught by run alone

constexpr int CODEEVAL = -501, CODESUM = -502, CODEPRODUCT = -504, CODEMAX = -205, CODEMIN = -206;
constexpr int MOSTDEPTH = 400, FUNCTIONWORK = 40;
constexpr long MOSTWORK = 200000; // of one evaluation
constexpr double MOSTWHOLE = 1000;

[[noreturn]] void refuse() { throw preciserefused{}; }

bool whole(dd x) { return x.lo == 0 && x.hi == std::trunc(x.hi) && std::fabs(x.hi) <= MOSTWHOLE; }

dd wholepower(dd x, int n) {
    if (n < 0) return dd(1) / wholepower(x, -n);
    dd result = 1;
    for (; n > 0; n >>= 1, x = n > 0 ? x * x : x)
        if (n & 1) result = result * x;
    return result;
}

} // namespace

dd precisedecimal(double x) {
    constexpr double exact = 9007199254740992; // 2^53
    if (x == std::trunc(x) || !(std::fabs(x) > 1e-40 && std::fabs(x) < 1e15)) return x;
    char text[40];
    snprintf(text, sizeof text, "%.14e", std::fabs(x));
    double digits = text[0] - '0';
    for (const char* c = text + 2; *c != 'e'; c++) digits = digits * 10 + (*c - '0');
    int exponent = std::atoi(std::strchr(text, 'e') + 1) - 14;
    for (; std::fmod(digits, 10) == 0; exponent++) digits /= 10;
    const dd power = wholepower(10, std::abs(exponent));
    const dd decimal = exponent < 0 ? dd(digits) / power : dd(digits) * power;
    bool written = decimal.hi == std::fabs(x);
    for (; !written && digits <= exact; digits *= 10, exponent--) // zeros at the end count in reading
        written = digits * powi(10, exponent) == std::fabs(x);
    return !written ? dd(x) : x < 0 ? -decimal : decimal;
}

preciseevaluator::preciseevaluator(std::vector<preciseparameter> names)
    : parameters(std::move(names)), firstof(SYMTABSIZE, -1), met(SYMTABSIZE), held(SYMTABSIZE) {
    for (size_t j = parameters.size(); j-- > 0;) firstof[size_t(parameters[j].symbol)] = int(j);
}

bool preciseevaluator::run(int f, const std::vector<dd>& args, const dd* p, dd& value, dd* gradient) {
    const size_t n = parameters.size();
    point = p;
    steps.assign(n, {-1, -1, 0, 0});
    dummies.clear();
    worked = depth = 0;
    number result;
    try {
        scope s;
        for (dd x : args) s.formals.push_back({x, -1});
        result = userfunction(f, s);
    } catch (const preciserefused&) { return false; }
    value = result.v;
    adjoint.assign(steps.size(), dd(0));
    if (result.at >= 0) adjoint[size_t(result.at)] = 1;
    for (size_t k = steps.size(); k-- > n;) {
        const step& s = steps[k];
        const dd whole = adjoint[k];
        if (whole.hi == 0) continue;
        if (s.a >= 0) adjoint[size_t(s.a)] += s.da * whole;
        if (s.b >= 0) adjoint[size_t(s.b)] += s.db * whole;
    }
    std::copy_n(adjoint.begin(), n, gradient);
    return std::isfinite(value.hi) &&
           std::all_of(gradient, gradient + n, [](dd g) { return std::isfinite(g.hi); });
}

preciseevaluator::number preciseevaluator::record(dd v, const number& a, dd da) {
    return record(v, a, da, {}, dd(0));
}

preciseevaluator::number preciseevaluator::record(dd v, const number& a, dd da, const number& b, dd db) {
    if (++worked > MOSTWORK) refuse();
    if (a.at < 0 && b.at < 0) return {v, -1};
    steps.push_back({a.at, b.at, da, db});
    return {v, int(steps.size()) - 1};
}

preciseevaluator::number preciseevaluator::eval(int ref, const scope& s) {
    if (isnoderef(ref)) return node(ref, s);
    if (issymbolref(ref)) return symbolvalue(ref);
    const size_t k = size_t(ref - FORMALBASE - 1);
    if (!isformalref(ref) || k >= s.formals.size()) refuse();
    return s.formals[k];
}

preciseevaluator::number preciseevaluator::symbolvalue(int idx) {
    for (size_t k = dummies.size(); k-- > 0;)
        if (dummies[k].first == idx) return dummies[k].second;
    const int type = sym(idx).type, parameter = firstof[size_t(idx)];
    if (type != SCALAR && type != CONSTANT) refuse();
    if (parameter >= 0) return {point[parameter], parameter};
    if (!met[size_t(idx)]) {
        const double x = sym(idx).val.rval;
        if (x == UNDEFINEDMARK) refuse();
        held[size_t(idx)] = precisedecimal(x);
        met[size_t(idx)] = 1;
    }
    return {held[size_t(idx)], -1};
}

preciseevaluator::number preciseevaluator::node(int ref, const scope& s) {
    if (++depth > MOSTDEPTH || ++worked > MOSTWORK) refuse();
    const trinode n = tri(ref);
    number result;
    switch (n.op) {
    case TREEIF: {
        const trinode branches = tri(n.right);
        result = eval(eval(n.left, s).v.hi != 0 ? branches.left : branches.right, s);
        break;
    }
    case TREEIDENTITY: result = eval(n.left, s); break;
    case TREENEGATE: {
        const number a = eval(n.left, s);
        result = record(-a.v, a, -1);
        break;
    }
    case TREENOT: result = {eval(n.left, s).v.hi == 0, -1}; break;
    case TREECALL: result = call(ref, s); break;
    case TREEASSIGN: refuse();
    default: {
        const number a = eval(n.left, s);
        result = binary(n.op, a, eval(n.right, s));
    }
    }
    depth--;
    return result;
}

preciseevaluator::number preciseevaluator::binary(int op, const number& a, const number& b) {
    switch (op) {
    case TREEPOWER: return power(a, b);
    case TREETIMES: return record(a.v * b.v, a, b.v, b, a.v);
    case TREEDIVIDE: {
        if (b.v.hi == 0) refuse();
        const dd v = a.v / b.v;
        if (a.at < 0 && b.at < 0) return {v, -1};
        const dd inverse = dd(1) / b.v;
        worked += 4;
        return record(v, a, inverse, b, -v * inverse);
    }
    case TREEPLUS: return record(a.v + b.v, a, 1, b, 1);
    case TREEMINUS: return record(a.v - b.v, a, 1, b, -1);
    case TREEEQUAL: return {!(a.v < b.v) && !(b.v < a.v), -1};
    case TREELESS: return {a.v < b.v, -1};
    case TREELESSEQ: return {!(b.v < a.v), -1};
    case TREEGREATEREQ: return {!(a.v < b.v), -1};
    case TREEGREATER: return {b.v < a.v, -1};
    case TREEAND: return {a.v.hi != 0 && b.v.hi != 0, -1};
    case TREEOR: return {a.v.hi != 0 || b.v.hi != 0, -1};
    default: refuse();
    }
}

preciseevaluator::number preciseevaluator::power(const number& a, const number& b) {
    if (b.at < 0 && whole(b.v)) {
        const int n = int(b.v.hi);
        if (n == 0) return {1, -1};
        if (n < 0 && a.v.hi == 0) refuse();
        worked += 8;
        const dd below = wholepower(a.v, n - 1);
        return record(below * a.v, a, below * double(n));
    }
    if (!(a.v.hi > 0)) refuse();
    worked += 2 * FUNCTIONWORK;
    const dd logarithm = ddlog(a.v), v = ddexp(b.v * logarithm);
    return record(v, a, b.v * v / a.v, b, v * logarithm);
}

preciseevaluator::number preciseevaluator::call(int ref, const scope& s) {
    const trinode n = tri(ref);
    if (!issymbolref(n.right)) refuse();
    const int callee = n.right, type = sym(callee).type;
    if (type == CODEEVAL || type == CODESUM || type == CODEPRODUCT) return bounded(type, ref, s);
    scope inner;
    for (int cell = n.left; cell < 0; cell = tri(cell).left)
        inner.formals.push_back(eval(tri(cell).right, s));
    if (type == MATRIX) return element(callee, inner.formals);
    if (type == USERFUNCTION) return userfunction(callee, inner);
    return builtin(type, inner.formals);
}

preciseevaluator::number preciseevaluator::userfunction(int f, scope& inner) {
    if (sym(f).type != USERFUNCTION || funcheader(f) >= 0 || formalcount(f) != int(inner.formals.size()))
        refuse();
    return eval(funcbody(f), inner);
}

preciseevaluator::number preciseevaluator::element(int matrix, const std::vector<number>& subscripts) {
    if (subscripts.empty() || subscripts.size() > 2) refuse();
    const harray* m = matrixof(matrix);
    const double row = std::trunc(subscripts[0].v.hi),
                 col = subscripts.size() > 1 ? std::trunc(subscripts[1].v.hi) : 1;
    if (!(row >= 1 && row <= m->rows && col >= 1 && col <= m->cols)) refuse();
    const size_t cell = (size_t(row) - 1) * m->cols + size_t(col);
    const int first = firstof[size_t(matrix)];
    if (first < 0) return {precisedecimal(cells(m)[cell]), -1};
    const int parameter = first + int(cell) - 1;
    return {point[parameter], parameter};
}

preciseevaluator::number preciseevaluator::builtin(int code, const std::vector<number>& args) {
    if (args.empty()) refuse();
    if (code == CODEMAX || code == CODEMIN) {
        number best = args[0];
        for (const number& x : args)
            if (code == CODEMAX ? best.v < x.v : x.v < best.v) best = x;
        return best;
    }
    dd v, slope;
    worked += FUNCTIONWORK;
    if (args.size() != 1 || !preciseelementary(code, args[0].v, v, slope)) refuse();
    return record(v, args[0], slope);
}

// SUM and PRODUCT over a dummy, EVAL at a value of it.
preciseevaluator::number preciseevaluator::bounded(int code, int ref, const scope& s) {
    std::vector<int> arg;
    for (int cell = tri(ref).left; cell < 0; cell = tri(cell).left) arg.push_back(tri(cell).right);
    if (arg.size() != (code == CODEEVAL ? 3U : 4U) || !issymbolref(arg[0])) refuse();
    number result = eval(arg[1], s);
    if (code == CODEEVAL) {
        dummies.emplace_back(arg[0], result);
        result = eval(arg[2], s);
        dummies.pop_back();
        return result;
    }
    const double low = result.v.hi, high = eval(arg[2], s).v.hi;
    if (!(high - low < MOSTWHOLE)) refuse();
    result = {code == CODESUM ? 0.0 : 1.0, -1};
    for (double x = low; x <= high; x += 1) {
        dummies.emplace_back(arg[0], number{x, -1});
        const number term = eval(arg[3], s);
        dummies.pop_back();
        result = binary(code == CODESUM ? TREEPLUS : TREETIMES, result, term);
    }
    return result;
}

#include "solvers/fitbind.h"

#include "funcs/deriv.h"
#include "funcs/precisevalue.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/machine.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <algorithm>
#include <cmath>

namespace {

// ---- parameters

void expandparameters(fitbinding& b) {
    for (size_t k = 0; k < b.parms.size(); k++) {
        if (!ismatrix(b.parms[k])) {
            b.slots.push_back({b.parms[k], 0, int(k)});
            continue;
        }
        b.hasmatrix = true;
        const size_t count = harraycount(matrixof(b.parms[k]));
        for (size_t e = 1; e <= count; e++) b.slots.push_back({b.parms[k], int(e), int(k)});
    }
}

// ---- observations

void checkweight(double w, size_t row) {
    if (!(w >= 0)) tarnerror("FIT: weight %ld is negative", long(row));
}

const harray* weightmatrix(const fitpair& pair) {
    if (!pair.weight || !ismatrix(pair.weight)) return nullptr;
    const harray* w = matrixof(pair.weight);
    if (w->rows != matrixof(pair.data)->rows)
        tarnerror(further("%s, %s", describe(pair.weight).c_str(), describe(pair.data).c_str()),
                  "FIT: bad weight matrix size");
    for (size_t i = 1; i <= w->rows; i++) checkweight(at(w, i, 1), i);
    return w;
}

// Equal times keep the order of the pairs and of their rows.
void mergepair(fitbinding& b, size_t k) {
    const harray* data = matrixof(b.pairs[k].data);
    const harray* w = weightmatrix(b.pairs[k]);
    for (size_t i = 1; i <= data->rows; i++)
        b.merged.push_back({at(data, i, 1), at(data, i, 2), w ? at(w, i, 1) : 1.0, int(k), int(i)});
}

void mergesolutions(fitbinding& b) {
    for (size_t k = 0; k < b.pairs.size(); k++)
        if (odepair(b, k)) mergepair(b, k);
    std::stable_sort(b.merged.begin(), b.merged.end(),
                     [](const mergedrow& a, const mergedrow& c) { return a.time < c.time; });
    for (const mergedrow& row : b.merged) b.times.push_back(row.time);
    if (b.merged.empty()) return;
    odeinit(b.ode);
    b.ensemble.parms = b.parms;
    b.odeout.reset(harraynew(uint32_t(b.times.size()), uint32_t(odecolumns(b.ode.system))));
}

void plainpair(fitbinding& b, size_t k) {
    const harray* data = matrixof(b.pairs[k].data);
    const harray* w = weightmatrix(b.pairs[k]);
    double *y = b.y + b.offset[k], *w0 = b.w0 + b.offset[k];
    b.rows[k] = data->rows;
    b.columns[k].reset(harrayraw(data->cols - 1, data->rows));
    for (size_t i = 1; i <= data->rows; i++) {
        for (size_t j = 1; j < data->cols; j++) at(b.columns[k].get(), j, i) = at(data, i, j);
        y[i - 1] = at(data, i, data->cols);
        w0[i - 1] = w ? at(w, i, 1) : 1.0;
    }
}

// The merged rows first, then the plain pairs.
void observations(fitbinding& b) {
    b.m = b.merged.size();
    b.rows.assign(b.pairs.size(), 0);
    b.firstrows = matrixof(b.pairs[0].data)->rows;
    for (size_t k = 0; k < b.pairs.size(); k++) {
        b.offset[k] = b.m;
        if (!odepair(b, k)) b.m += matrixof(b.pairs[k].data)->rows;
    }
    b.memory.reset(harrayraw(2, uint32_t(b.m)));
    b.y = cells(b.memory.get()) + 1;
    b.w0 = b.y + b.m;
    for (size_t i = 0; i < b.merged.size(); i++) b.y[i] = b.merged[i].y, b.w0[i] = b.merged[i].w;
    for (size_t k = 0; k < b.pairs.size(); k++)
        if (!odepair(b, k)) plainpair(b, k);
}

/* A parameter whose name is that of an argument does not matter to the function; a derivative by that name is
 * the one by the argument. */
bool namesargument(const fitbinding& b) {
    for (const fitpair& pair : b.pairs)
        for (int k = 1; k <= formalcount(pair.func); k++)
            if (std::find(b.parms.begin(), b.parms.end(), formalref(pair.func, k)) != b.parms.end())
                return true;
    return false;
}

// ---- compiled programs

flatptr compilepair(const fitbinding& b, size_t k, const std::vector<int>& functions) {
    flatrequest request;
    request.functions = functions;
    request.nargs = int(matrixof(b.pairs[k].data)->cols) - 1;
    if (!b.hasmatrix) request.symbols = b.parms;
    return flatcompile(request);
}

void compilepairs(fitbinding& b) {
    b.values.resize(b.pairs.size());
    b.derivs.resize(b.pairs.size());
    b.both.resize(b.pairs.size());
    for (size_t k = 0; k < b.pairs.size(); k++) {
        if (odepair(b, k)) continue;
        if (b.symbolic) {
            std::vector<int> functions;
            for (int parm : b.parms) functions.push_back(makederiv(b.pairs[k].func, parm));
            b.derivs[k] = compilepair(b, k, functions);
            functions.insert(functions.begin(), b.pairs[k].func);
            b.both[k] = compilepair(b, k, functions);
        }
        b.values[k] = compilepair(b, k, {b.pairs[k].func});
    }
}

// Inputs of a pair's program: its columns row by row, the parameters the same for all rows.
struct blockinputs {
    std::vector<const double*> in;
    std::vector<size_t> stride;
};

blockinputs inputsof(const fitbinding& b, size_t k, const double* p) {
    blockinputs inputs;
    for (size_t j = 1; j <= b.columns[k]->rows; j++) {
        inputs.in.push_back(&at(b.columns[k].get(), j, 1));
        inputs.stride.push_back(1);
    }
    if (b.hasmatrix) return inputs;
    for (size_t j = 0; j < b.slots.size(); j++) {
        inputs.in.push_back(p + j);
        inputs.stride.push_back(0);
    }
    return inputs;
}

void pairvalues(fitbinding& b, size_t k, const double* p, double* f) {
    const size_t rows = b.rows[k];
    const blockinputs inputs = inputsof(b, k, p);
    double* const out[] = {f};
    const size_t stride[] = {1};
    flatrunblock(*b.values[k], rows, inputs.in.data(), inputs.stride.data(), out, stride);
}

bool solutionvalues(fitbinding& b, double* f) {
    if (b.merged.empty()) return true;
    if (!oderunover(b.ode, b.times.data(), long(b.times.size()), b.odeout.get())) return false;
    for (size_t i = 0; i < b.merged.size(); i++)
        f[i] = at(b.odeout.get(), i + 1, size_t(odecolumn(b.ode.system, size_t(b.merged[i].pair))) + 1);
    return true;
}

void movesymbols(fitbinding& b, const double* p) {
    fitstore(b, p);
    b.lastp.assign(p, p + b.slots.size());
}

void plainvalues(fitbinding& b, const double* p, double* f) {
    for (size_t k = 0; k < b.pairs.size(); k++)
        if (!odepair(b, k)) pairvalues(b, k, p, f + b.offset[k]);
}

bool modelvalues(void* context, const double* p, double* f) {
    fitbinding& b = *static_cast<fitbinding*>(context);
    movesymbols(b, p);
    if (!solutionvalues(b, f)) return false;
    plainvalues(b, p, f);
    return true;
}

static_assert(FITTOGETHER == FLATLANES);

// Solutions by one integration of all points.
bool modelseveral(void* context, const double* points, int count, double* f) {
    fitbinding& b = *static_cast<fitbinding*>(context);
    if (!odeensemblerun(b.ensemble, b.ode, points, count, b.times.data(), long(b.times.size()))) return false;
    for (int l = 0; l < count; l++, f += b.m) {
        const double* p = points + size_t(l) * b.slots.size();
        movesymbols(b, p);
        for (size_t i = 0; i < b.merged.size(); i++)
            f[i] = odeensemblevalue(b.ensemble, b.ode.system, i,
                                    odecolumn(b.ode.system, size_t(b.merged[i].pair)), l);
        plainvalues(b, p, f);
    }
    return true;
}

bool modelboth(void* context, const double* p, double* f, double* jac) {
    fitbinding& b = *static_cast<fitbinding*>(context);
    movesymbols(b, p);
    const size_t n = b.slots.size(), m = b.m;
    std::vector<double*> out(n + 1);
    const std::vector<size_t> stride(n + 1, 1);
    for (size_t k = 0; k < b.pairs.size(); k++) {
        const blockinputs inputs = inputsof(b, k, p);
        out[0] = f + b.offset[k];
        for (size_t j = 0; j < n; j++) out[j + 1] = jac + j * m + b.offset[k];
        if (!flattryblock(*b.both[k], b.rows[k], inputs.in.data(), inputs.stride.data(), out.data(),
                          stride.data()))
            return false;
    }
    return true;
}

// Where the symbols stand: at the last point that was evaluated.
void modeljacobian(void* context, double* jac) {
    fitbinding& b = *static_cast<fitbinding*>(context);
    const size_t n = b.slots.size(), m = b.m;
    std::vector<double*> out(n);
    const std::vector<size_t> stride(n, 1);
    for (size_t k = 0; k < b.pairs.size(); k++) {
        const size_t rows = b.rows[k];
        const blockinputs inputs = inputsof(b, k, b.lastp.data());
        for (size_t j = 0; j < n; j++) out[j] = jac + j * m + b.offset[k];
        flatrunblock(*b.derivs[k], rows, inputs.in.data(), inputs.stride.data(), out.data(), stride.data());
    }
}

/* At twice the precision, by a walk of the trees; given up where that would take longer than a reader of the
 * result would like. */
bool modelprecise(void* context, const dd* p, dd* resid, dd* jac) {
    constexpr double mostwork = 2e5; // some 10 ms
    const fitbinding& b = *static_cast<fitbinding*>(context);
    std::vector<preciseparameter> parameters;
    for (const fitslot& slot : b.slots) parameters.push_back({slot.symbol, slot.element});
    preciseevaluator evaluator(std::move(parameters));
    std::vector<dd> gradient(b.slots.size());
    double work = 0;
    for (size_t k = 0; k < b.pairs.size(); k++) {
        const harray* columns = b.columns[k].get();
        std::vector<dd> args(columns->rows);
        for (size_t i = 0; i < b.rows[k]; i++) {
            const size_t row = b.offset[k] + i;
            for (size_t j = 0; j < args.size(); j++) args[j] = precisedecimal(at(columns, j + 1, i + 1));
            dd f;
            if (!evaluator.run(b.pairs[k].func, args, p, f, gradient.data())) return false;
            resid[row] = precisedecimal(b.y[row]) - f;
            for (size_t j = 0; j < gradient.size(); j++) jac[j * b.m + row] = gradient[j];
            if (i == 0) work += double(evaluator.work()) * double(b.rows[k]);
            if (work > mostwork) return false;
        }
    }
    return true;
}

// ---- weight functions: W(M, i)

double weightvalue(const fitpair& pair, size_t row) {
    const int p = parser.poltop + 1, mark = parser.scalartop;
    polpush(pair.weight);
    polpush(pair.data);
    polpush(scalarpush(double(row)));
    const double w = value(p);
    checkweight(w, row);
    parser.scalartop = mark;
    parser.poltop = p - 1;
    return w;
}

bool isweightfunction(const fitpair& pair) { return pair.weight && !ismatrix(pair.weight); }

/* The rows of plain pairs are counted by the first pair's data, and their weights fill on from the merged
 * rows over the pairs that have a weight function. */
void modelweights(void* context, const double* p, double* w0) {
    fitbinding& b = *static_cast<fitbinding*>(context);
    fitstore(b, p);
    for (size_t i = 0; i < b.merged.size(); i++) {
        const fitpair& pair = b.pairs[size_t(b.merged[i].pair)];
        if (isweightfunction(pair)) w0[i] = weightvalue(pair, size_t(b.merged[i].row));
    }
    size_t place = b.merged.size();
    for (size_t k = 0; k < b.pairs.size(); k++) {
        if (odepair(b, k) || !isweightfunction(b.pairs[k])) continue;
        for (size_t i = 1; i <= b.firstrows && place < b.m; i++) w0[place++] = weightvalue(b.pairs[k], i);
    }
}

void printparameters(void* context, const double* p) {
    const fitbinding& b = *static_cast<fitbinding*>(context);
    for (size_t j = 0; j < b.slots.size(); j++) {
        const fitslot& slot = b.slots[j];
        if (slot.element)
            tarnprint("%le   %s[%hd]\n", p[j], sym(slot.symbol).name, short(slot.element));
        else
            tarnprint("%le   %s\n", p[j], sym(slot.symbol).name);
    }
}

} // namespace

bool odepair(const fitbinding& b, size_t k) {
    if (!b.ode.system.active()) return false;
    const int code = b.ode.system.code[k];
    return code != 0 && code <= b.ode.system.ndependent;
}

void fitbind(fitbinding& b) {
    std::vector<int> names;
    for (const fitpair& pair : b.pairs) names.push_back(pair.func);
    b.ode.system = odededuce(names, 0);
    expandparameters(b);
    if (b.ode.system.active() || b.hasmatrix || namesargument(b)) b.symbolic = false;
    b.offset.assign(b.pairs.size(), 0);
    b.columns.resize(b.pairs.size());
    if (b.ode.system.active()) mergesolutions(b);
    observations(b);
    compilepairs(b);
    b.lastp = fitparameters(b);
}

fitmodel fitmodelof(fitbinding& b) {
    fitmodel model;
    model.context = &b;
    model.values = modelvalues;
    if (!b.merged.empty() && !b.hasmatrix) model.several = modelseveral;
    if (!b.ode.system.active()) model.precise = modelprecise;
    if (b.symbolic) model.jacobian = modeljacobian, model.both = modelboth;
    if (std::any_of(b.pairs.begin(), b.pairs.end(), isweightfunction)) model.weights = modelweights;
    model.printparms = printparameters;
    return model;
}

std::vector<double> fitparameters(const fitbinding& b) {
    std::vector<double> p;
    for (const fitslot& slot : b.slots)
        p.push_back(slot.element ? cells(matrixof(slot.symbol))[slot.element] : sym(slot.symbol).val.rval);
    return p;
}

void fitstore(const fitbinding& b, const double* p) {
    for (size_t j = 0; j < b.slots.size(); j++) {
        const fitslot& slot = b.slots[j];
        if (slot.element)
            cells(matrixof(slot.symbol))[slot.element] = p[j];
        else
            sym(slot.symbol).val.rval = p[j];
    }
}

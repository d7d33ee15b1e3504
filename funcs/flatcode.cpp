#include "funcs/flatcode.h"

#include "funcs/value.h"
#include "interp/base/symtab.h"

struct flatprogram {
    flatrequest request;
};

namespace {

void walkpoint(const flatrequest& request, const double* in, double* out) {
    for (size_t k = 0; k < request.symbols.size(); k++) {
        symbol& s = sym(request.symbols[k]);
        if (s.type == UNKNOWN) s.type = SCALAR;
        s.val.rval = in[size_t(request.nargs) + k];
    }
    for (size_t k = 0; k < request.functions.size(); k++)
        out[k] = callvalue(request.functions[k], in, request.nargs);
}

} // namespace

void flatdelete::operator()(flatprogram* program) const { delete program; }

flatptr flatcompile(const flatrequest& request) { return flatptr(new flatprogram{request}); }

bool flatisfast(const flatprogram&) { return false; }

void flatrun(flatprogram& program, const double* in, double* out) { walkpoint(program.request, in, out); }

void flatrunblock(flatprogram& program, size_t n, const double* const* in, const size_t* instride,
                  double* const* out, const size_t* outstride) {
    const size_t inputs = size_t(program.request.nargs) + program.request.symbols.size();
    std::vector<double> x(inputs), y(program.request.functions.size());
    for (size_t i = 0; i < n; i++) {
        for (size_t k = 0; k < inputs; k++) x[k] = in[k][i * instride[k]];
        walkpoint(program.request, x.data(), y.data());
        for (size_t k = 0; k < y.size(); k++) out[k][i * outstride[k]] = y[k];
    }
}

void flatrows(int f, size_t nrows, size_t ncols, const double* x, double* y, size_t ystride) {
    for (size_t i = 0; i < nrows; i++) y[i * ystride] = callvalue(f, x + i * ncols, int(ncols));
}

void flatstart() {}

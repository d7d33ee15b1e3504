#include "funcs/matrixoperand.h"

#include "funcs/pending.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"

double scalaroperand(int entry) {
    if (entry < 0) return parser.scalar[-entry];
    const symbol& s = sym(entry);
    if (!isscalartype(s.type)) tarnerror("%s is not a scalar type as expected", s.name);
    if (s.val.rval == UNDEFINEDMARK) tarnerror("scalar %s has not yet been defined", s.name);
    return s.val.rval;
}

void tellundefined(int entry) {
    if (entry > 0 && sym(entry).type == UNKNOWN) tarnwarn("%s has no value", sym(entry).name);
}

matrixoperand::matrixoperand(int entry) {
    m = nullptr;
    if (entry == 0) return;
    if (entry > 0 && ismatrix(entry)) {
        if (!sym(entry).val.ptr) pendingfinish();
        m = static_cast<harray*>(sym(entry).val.ptr);
        return;
    }
    if (entry > 0 && !isscalar(entry)) tarnerror("expected scalar or matrix type");
    one[1] = scalaroperand(entry);
    m = reinterpret_cast<harray*>(one);
    m->rows = m->cols = 1;
}

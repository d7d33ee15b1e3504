#include "funcs/matrixoperand.h"

#include "funcs/pending.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"

double scalaroperand(int entry) {
    if (entry < 0) return parser.scalar[-entry];
    const symbol& s = sym(entry);
    if (!isscalartype(s.type))
        tarnerror(furtherline{describe(entry)}, "%s is not a scalar type as expected",
                  nametext(entry).c_str());
    if (s.val.rval == UNDEFINEDMARK)
        tarnerror(
            s.type == USERFUNCTION
                ? further("%s is a function: without arguments it means its last value, and it has none yet",
                          nametext(entry).c_str())
                : furtherline{},
            "scalar %s has not yet been defined", nametext(entry).c_str());
    return s.val.rval;
}

void tellundefined(int entry) {
    if (entry > 0 && sym(entry).type == UNKNOWN) tarnwarn("%s", describe(entry).c_str());
}

matrixoperand::matrixoperand(int entry) {
    m = nullptr;
    if (entry == 0) return;
    if (entry > 0 && ismatrix(entry)) {
        if (!sym(entry).val.ptr) pendingfinish();
        m = matrixof(entry);
        return;
    }
    if (entry > 0 && !isscalar(entry))
        tarnerror(furtherline{describe(entry)}, "expected scalar or matrix type");
    one[1] = scalaroperand(entry);
    m = reinterpret_cast<harray*>(one);
    m->rows = m->cols = 1;
}

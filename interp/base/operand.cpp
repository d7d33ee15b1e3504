#include "interp/base/operand.h"

#include "interp/base/report.h"

#include <algorithm>

operandhooks operandfns;

bool isscalartype(int type) {
    return type == CONSTANT || type == SCALAR || type == USERFUNCTION || type == INITIALVALUE;
}

const char* stringval(int idx) {
    const char* text = static_cast<const char*>(sym(idx).val.ptr);
    return text ? text : "";
}

double scalarval(int idx) {
    const symbol& s = sym(idx);
    if (isscalartype(s.type)) return s.val.rval;
    if (s.type == MATRIX) return operandfns.first(static_cast<const harray*>(s.val.ptr));
    const char* const refusal = "%s is not a scalar type as expected";
    if (isstringtype(idx))
        tarnerrorhint("it is the text \"" + std::string(stringval(idx)) + "\"", refusal, s.name);
    if (s.type == UNKNOWN) tarnerrorhint(s.name + std::string(" has no value"), refusal, s.name);
    tarnerror(refusal, s.name);
}

int16_t shortval(int idx) {
    return int16_t(std::clamp(scalarval(idx), double(INT16_MIN), double(INT16_MAX)));
}

harray* matrixval(int idx, int& temp) {
    temp = 0;
    if (sym(idx).type == MATRIX) return static_cast<harray*>(sym(idx).val.ptr);
    if (!isscalar(idx)) tarnerror("expected scalar or matrix type");
    harray* m = operandfns.onebyone(sym(idx).val.rval);
    temp = symtabtemp(0, 0, m, MATRIX, 0);
    return m;
}

int scalartemp(int idx) {
    if (!isscalar(idx)) tarnerror("illegal use of non-scalar");
    return symtabtemp(0, 0, operandfns.onebyone(sym(idx).val.rval), MATRIX, 0);
}

#include "interp/base/operand.h"

#include "interp/base/hooks.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cstdio>

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
    tarnerror(furtherline{describe(idx)}, "%s is not a scalar type as expected",
              istemporary(idx) ? "the expression" : s.name);
}

int16_t shortval(int idx) {
    return int16_t(std::clamp(scalarval(idx), double(INT16_MIN), double(INT16_MAX)));
}

harray* matrixval(int idx, int& temp) {
    temp = 0;
    if (sym(idx).type == MATRIX) return static_cast<harray*>(sym(idx).val.ptr);
    if (!isscalar(idx)) tarnerror(furtherline{describe(idx)}, "expected scalar or matrix type");
    harray* m = operandfns.onebyone(sym(idx).val.rval);
    temp = symtabtemp(0, 0, m, MATRIX, 0);
    return m;
}

int scalartemp(int idx) {
    if (!isscalar(idx)) tarnerror(furtherline{describe(idx)}, "illegal use of non-scalar");
    return symtabtemp(0, 0, operandfns.onebyone(sym(idx).val.rval), MATRIX, 0);
}

namespace {

// By type code, from EMPTY to STRINGMATRIX; matrices have their shape instead.
constexpr const char* kindwords[] = {"undefined",
                                     "undefined",
                                     "a constant",
                                     "a word of the language",
                                     "a scalar",
                                     "a function",
                                     "a matrix",
                                     "an initial value",
                                     "a part of a matrix",
                                     "a string",
                                     "a string",
                                     "a window",
                                     "a curve",
                                     "a title",
                                     "a constraint set",
                                     "a three-dimensional curve",
                                     "a string matrix"};

// As much of a text as is easily recognised.
std::string quoted(const std::string& text) {
    constexpr size_t MOST = 40;
    if (text.size() <= MOST) return '"' + text + '"';
    size_t end = MOST;
    while ((text[end] & 0xC0) == 0x80) end--; // not within a letter
    return '"' + text.substr(0, end) + "...\"";
}

} // namespace

std::string nametext(int entry) {
    if (entry > 0 && !istemporary(entry) && sym(entry).name[0] != '#') return upper.nametext(sym(entry).name);
    if (entry > 0 && sym(entry).type == TEMPSTRING) return quoted(stringval(entry));
    if (entry < 0 || sym(entry).type != CONSTANT) return "the expression";
    char digits[32];
    snprintf(digits, sizeof digits, "%.15g", sym(entry).val.rval);
    return digits;
}

std::string kindtext(int entry) {
    if (entry < 0) return "a scalar";
    const symbol& s = sym(entry);
    if (s.type < 0) return "a builtin function";
    if (s.type == UNKNOWN && s.name[0] == '.') return "a derivative: it has a value with arguments behind it";
    if (s.type > STRINGMATRIX) return "a three-dimensional window";
    if (s.type == CONSTANT && istemporary(entry)) return "a number";
    const bool shaped = (s.type == MATRIX || s.type == STRINGMATRIX) && s.val.ptr && operandfns.shape;
    if (!shaped) return kindwords[s.type];
    return "a " + operandfns.shape(s) + (s.type == MATRIX ? " matrix" : " string matrix");
}

std::string describe(int entry) {
    const std::string text = nametext(entry) + " is " + kindtext(entry);
    if (entry < 0 || report.quiet || sym(entry).type != UNKNOWN) return text;
    const int meant =
        symtabnearest(sym(entry).name, [](const symbol& s) { return s.type < 0 || s.type > UNKNOWN; });
    return meant ? text + "; is " + sym(meant).name + " meant?" : text;
}

#include "interp/assign.h"

#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/numtext.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/matrixtext.h"
#include "plot/plotobj.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

assignstate assigns;

namespace {

enum effects : uint8_t {
    NOEFFECT,
    ECHOEFFECT,
    STEPEFFECT,
    COLOUREFFECT,
    ROUNDEFFECT,
    NFORMATEFFECT,
    MFORMATEFFECT,
    DISPLAYEFFECT,
    FILEDIREFFECT
};

constexpr struct {
    const char* name;
    effects effect;
} variables[] = {{"ECHODO", ECHOEFFECT},     {"DOSTEP", STEPEFFECT},     {"INCOLOR", COLOUREFFECT},
                 {"OUTCOLOR", COLOUREFFECT}, {"ROUNDSW", ROUNDEFFECT},   {"NFORMAT", NFORMATEFFECT},
                 {"MFORMAT", MFORMATEFFECT}, {"DISPLAY", DISPLAYEFFECT}, {"FILEDIR", FILEDIREFFECT}};

int wholevalue(double x) { return int(std::clamp(x, -2147483648.0, 2147483647.0)); }

void scalareffect(const symbol& s, int effect) {
    switch (effect) {
    case ECHOEFFECT: dofiles.echodo = wholevalue(s.val.rval); break;
    case STEPEFFECT: dofiles.dostep = wholevalue(s.val.rval); break;
    case COLOUREFFECT:
        console.colour(consolecolour(symtabscalar("INCOLOR", 1)), consolecolour(symtabscalar("OUTCOLOR", 1)));
        break;
    case ROUNDEFFECT: fpinit(); break;
    }
}

void newfiledir(const char* text) {
    while (*text == ' ') text++;
    std::error_code failed;
    if (*text && !std::filesystem::exists(bindname(text, nullptr, nullptr), failed))
        tarnerror("FILEDIR directory %s does not exist", text);
    report.filedir = text;
}

void stringeffect(const char* text, int effect) {
    switch (effect) {
    case NFORMATEFFECT: parsenformat(text); break;
    case MFORMATEFFECT: parsemformat(text); break;
    case DISPLAYEFFECT: upper.displayselect(text); break;
    case FILEDIREFFECT: newfiledir(text); break;
    }
}

// The matrix of the right side, which passes to the caller: moved out of a temporary, copied from a name.
harray* takematrix(int rhs) {
    symbol& s = sym(rhs);
    harray* m = static_cast<harray*>(s.val.ptr);
    if (!istemporary(rhs)) return harraydup(m);
    s.type = SCALAR; // so that its release frees nothing
    return m;
}

StringArray* takestrings(int rhs) {
    symbol& s = sym(rhs);
    StringArray* a = static_cast<StringArray*>(s.val.ptr);
    if (!istemporary(rhs)) {
        StringArray* copy = StringArrayCopy(a);
        if (!copy) tarnerror("StringArrayCopy failed at grabmatrix:");
        return copy;
    }
    s.type = SCALAR;
    return a;
}

char* taketext(int rhs) {
    if (!istemporary(rhs)) return xstrdup(stringval(rhs));
    char* text = sym(rhs).val.ptr ? static_cast<char*>(sym(rhs).val.ptr) : xstrdup("");
    sym(rhs).type = SCALAR;
    return text;
}

// A new kind of value for a name that had none.
void setobject(symbol& s, int type, void* object) {
    s.type = int16_t(type);
    s.index = 0;
    s.val.ptr = object;
}

void assignnew(int rhs, int lhs) {
    symbol& l = sym(lhs);
    switch (sym(rhs).type) {
    case CONSTANT:
    case SCALAR:
        l.type = SCALAR;
        l.val.rval = sym(rhs).val.rval;
        break;
    case STRINGTYPE:
    case TEMPSTRING: setobject(l, STRINGTYPE, taketext(rhs)); break;
    case MATRIX: setobject(l, MATRIX, takematrix(rhs)); break;
    case STRINGMATRIX: setobject(l, STRINGMATRIX, takestrings(rhs)); break;
    case WINDOWTYPE: copywindow(rhs, lhs); break;
    default: tarnerror("bad RHS type in assignment");
    }
}

bool isnumber(int type) { return type == CONSTANT || type == SCALAR || type == USERFUNCTION; }

// A function keeps its definition; the value is what recursive definitions read as the previous one.
void assignfunction(int rhs, int lhs) {
    if (!isnumber(sym(rhs).type)) tarnerror("illegal assignment to function previous value");
    sym(lhs).val.rval = sym(rhs).val.rval;
}

void assignscalar(int rhs, int lhs) {
    symbol& l = sym(lhs);
    const int type = sym(rhs).type;
    if (isnumber(type)) {
        l.val.rval = sym(rhs).val.rval;
        variablechanged(lhs);
    } else if (type == MATRIX) {
        tarnwarn("? assigning a matrix to a scalar LHS may be wrong");
        l.val.rval = scalarval(rhs);
    } else if (isstringtype(rhs)) {
        tarnerror("can't assign string to a scalar");
    } else {
        tarnerror("bad type of RHS of scalar assignment");
    }
}

void assignmatrix(int rhs, int lhs) {
    symbol& l = sym(lhs);
    harray* old = static_cast<harray*>(l.val.ptr);
    if (isnumber(sym(rhs).type)) {
        std::fill_n(cells(old) + 1, harraycount(old), sym(rhs).val.rval);
    } else if (sym(rhs).type != MATRIX) {
        tarnerror("RHS of matrix assignment invalid");
    } else if (rhs != lhs) {
        l.val.ptr = takematrix(rhs);
        harrayfree(old);
    }
}

void assignstring(int rhs, int lhs) {
    if (!isstringtype(rhs)) tarnerror("RHS of string assignment is not a string");
    if (rhs != lhs) {
        char* text = taketext(rhs);
        xfree(sym(lhs).val.ptr);
        sym(lhs).val.ptr = text;
    }
    variablechanged(lhs);
}

void fillstrings(StringArray* a, const char* text) {
    for (long i = 1; i <= long(a->rows); i++)
        for (long j = 1; j <= long(a->cols); j++)
            if (!StringArrayStrPut(a, i, j, text)) tarnerror("StringArrayPtrStr failed in assignop()");
}

void assignstringmatrix(int rhs, int lhs) {
    symbol& l = sym(lhs);
    StringArray* old = static_cast<StringArray*>(l.val.ptr);
    if (isstringtype(rhs)) {
        fillstrings(old, stringval(rhs));
    } else if (sym(rhs).type != STRINGMATRIX) {
        tarnerror("RHS of matrix assignment invalid");
    } else if (rhs != lhs) {
        l.val.ptr = takestrings(rhs);
        StringArrayFree(old);
    }
}

} // namespace

int consolecolour(double colour) {
    // BLACK WHITE RED GREEN BLUE YELLOW ORANGE VIOLET PINK CHARTREUSE AQUA BROWN ROSE TURQUOISE GREY
    static constexpr int numbers[] = {0, 15, 4, 2, 1, 14, 12, 5, 12, 10, 9, 6, 12, 11, 8};
    return colour >= 0 && colour < double(std::size(numbers)) ? numbers[int(colour)] : 15;
}

void assignstart() {
    memset(assigns.effect, 0, sizeof assigns.effect);
    for (const auto& v : variables) assigns.effect[symtabenter(v.name)] = v.effect;
}

void variablechanged(int idx) {
    const int effect = assigns.effect[idx];
    if (effect == NOEFFECT) return;
    if (sym(idx).type == SCALAR) scalareffect(sym(idx), effect);
    if (isstringtype(idx)) stringeffect(stringval(idx), effect);
}

void assignop(int rhs, int lhs) {
    if (sym(rhs).type == UNKNOWN) tarnerror("RHS of assignment invalid");
    const int type = sym(lhs).type;
    if (istemporary(lhs) && type != SUBMTX) tarnsyntax(43, "illegal assignment LHS");
    switch (type) {
    case UNKNOWN: assignnew(rhs, lhs); break;
    case SCALAR: assignscalar(rhs, lhs); break;
    case USERFUNCTION: assignfunction(rhs, lhs); break;
    case MATRIX: assignmatrix(rhs, lhs); break;
    case SUBMTX: return assignpart(rhs, lhs);
    case STRINGTYPE: assignstring(rhs, lhs); break;
    case STRINGMATRIX: assignstringmatrix(rhs, lhs); break;
    default: tarnerror("LHS type for assignment invalid");
    }
    tempfree(rhs);
}

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
        tarnerror(further("files are still looked for in %s",
                          report.filedir.empty() ? "the working directory" : report.filedir.c_str()),
                  "FILEDIR directory %s does not exist", text);
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

// What the right side is and what the left one holds, which do not go together.
furtherline kinds(int rhs, int lhs) {
    return further("%s, and %s", describe(rhs).c_str(), describe(lhs).c_str());
}

// The same for a left side that keeps its kind until it is deleted, or for ever.
furtherline kindstays(int rhs, int lhs) {
    const std::string what = describe(rhs) + ", and " + describe(lhs);
    const int type = sym(lhs).type;
    if (type < 0 || type == CONSTANT) return further("%s: take another name", describe(lhs).c_str());
    if (sym(rhs).type < 0)
        return further("%s: it has a value with arguments behind it", describe(rhs).c_str());
    if (symtabprotected(lhs)) return {what + ", which it stays"};
    return further("%s: DELETE %s first, if it shall become another kind of object", what.c_str(),
                   nametext(lhs).c_str());
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
        if (!copy) tarnerror(nomemory(), "StringArrayCopy failed at grabmatrix:");
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
    default: tarnerror(furtherline{describe(rhs)}, "bad RHS type in assignment");
    }
}

bool isnumber(int type) { return type == CONSTANT || type == SCALAR || type == USERFUNCTION; }

// A function keeps its definition; the value is what recursive definitions read as the previous one.
void assignfunction(int rhs, int lhs) {
    if (!isnumber(sym(rhs).type)) tarnerror(kinds(rhs, lhs), "illegal assignment to function previous value");
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
        const std::string name = nametext(lhs), given = istemporary(rhs) ? kindtext(rhs) : nametext(rhs);
        const std::string more =
            symtabprotected(lhs) ? ", and stays a scalar" : "; DELETE " + name + " first to make it a matrix";
        tarnwarn("%s takes the first element of %s%s", name.c_str(), given.c_str(), more.c_str());
    } else if (isstringtype(rhs)) {
        tarnerror(kindstays(rhs, lhs), "can't assign string to a scalar");
    } else {
        tarnerror(kindstays(rhs, lhs), "bad type of RHS of scalar assignment");
    }
}

void assignmatrix(int rhs, int lhs) {
    symbol& l = sym(lhs);
    harray* old = static_cast<harray*>(l.val.ptr);
    if (isnumber(sym(rhs).type)) {
        std::fill_n(cells(old) + 1, harraycount(old), sym(rhs).val.rval);
    } else if (sym(rhs).type != MATRIX) {
        tarnerror(kindstays(rhs, lhs), "RHS of matrix assignment invalid");
    } else if (rhs != lhs) {
        l.val.ptr = takematrix(rhs);
        harrayfree(old);
    }
}

void assignstring(int rhs, int lhs) {
    if (!isstringtype(rhs)) tarnerror(kindstays(rhs, lhs), "RHS of string assignment is not a string");
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
            if (!StringArrayStrPut(a, i, j, text))
                tarnerror(nomemory(), "StringArrayPtrStr failed in assignop()");
}

void assignstringmatrix(int rhs, int lhs) {
    symbol& l = sym(lhs);
    StringArray* old = static_cast<StringArray*>(l.val.ptr);
    if (isstringtype(rhs)) {
        fillstrings(old, stringval(rhs));
    } else if (sym(rhs).type != STRINGMATRIX) {
        tarnerror(kindstays(rhs, lhs), "RHS of matrix assignment invalid");
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
    if (sym(rhs).type == UNKNOWN) tarnerror(furtherline{describe(rhs)}, "RHS of assignment invalid");
    if (sym(rhs).type == USERFUNCTION && sym(rhs).val.rval == UNDEFINEDMARK)
        tarnerror(further("%s is a function: without arguments it means its last value, and it has none yet",
                          nametext(rhs).c_str()),
                  "RHS of assignment invalid");
    const int type = sym(lhs).type;
    if (istemporary(lhs) && type != SUBMTX)
        tarnsyntax(further("a name or a part of a matrix stands before the =, and here it is %s",
                           type == CONSTANT ? nametext(lhs).c_str() : "an expression"),
                   43, "illegal assignment LHS");
    switch (type) {
    case UNKNOWN: assignnew(rhs, lhs); break;
    case SCALAR: assignscalar(rhs, lhs); break;
    case USERFUNCTION: assignfunction(rhs, lhs); break;
    case MATRIX: assignmatrix(rhs, lhs); break;
    case SUBMTX: return assignpart(rhs, lhs);
    case STRINGTYPE: assignstring(rhs, lhs); break;
    case STRINGMATRIX: assignstringmatrix(rhs, lhs); break;
    default: tarnerror(kindstays(rhs, lhs), "LHS type for assignment invalid");
    }
    tempfree(rhs);
}

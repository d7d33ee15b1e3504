#include "interp/listing.h"

#include "funcs/deriv.h"
#include "funcs/funcprint.h"
#include "interp/base/hooks.h"
#include "interp/base/listrows.h"
#include "interp/base/numtext.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/filelist.h"
#include "interp/matrixtext.h"
#include "interp/otherwords.h"
#include "values/stringarray.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

bool shownames() { return symtabscalar("NAMESW", 1) != 0; }

// The predefined words whose TYPE lists objects; the value of each says which. 0: all.
const char* const listwords[] = {"SYMBOLS",  "CONSTANTS", "SCALARS",       "FUNCTIONS", "MATRICES",
                                 "INITIALS", "STRINGS",   "WINDOWS",       "CURVES",    "TITLES",
                                 "CONSETS",  "AXES",      "STRINGMATRICES"};

bool islistword(const char* name) {
    return std::any_of(std::begin(listwords), std::end(listwords),
                       [&](const char* w) { return !strcmp(w, name); });
}

bool isaxis(int idx) {
    const listingrow* row = listingfind(sym(idx).type);
    return row && row->isaxis && row->isaxis(idx);
}

// What stands in the lists at all: named objects of the user or the system.
bool islistable(const symbol& s) {
    return s.type > UNKNOWN && s.type != OPERATOR && s.name[0] && !strchr("@ #", s.name[0]);
}

bool belongs(int idx, int code) {
    int type = sym(idx).type;
    if (code == 0) return type != CONSTANT;
    if (type == CURVE3D) type = CURVETYPE;
    if (type == WINDOW3D) type = WINDOWTYPE;
    if (type != std::abs(code)) return false;
    return type != CURVETYPE || isaxis(idx) == (code < 0);
}

const char* typelabel(int type) {
    static const char* const labels[] = {"EMPTY",      "UNKNOWN",     "CONSTANT", "OPERATOR",  "SCALAR",
                                         "FUNCTION",   "MATRIX",      "INITIAL",  "SUBMATRIX", "STRING",
                                         "TEMPSTRING", "WINDOW",      "CURVE",    "TITLE",     "CONSET",
                                         "CURVE",      "STRINGMATRIX"};
    return type < int(std::size(labels)) ? labels[type] : "WINDOW";
}

// The window whose ring a curve or title stands in; null if the ring holds none.
const char* windowname(int member) {
    int k = member;
    for (int steps = 0; steps < SYMTABSIZE && k > 0 && k < SYMTABSIZE; steps++, k = sym(k).index)
        if (sym(k).type == WINDOWTYPE || sym(k).type == WINDOW3D) return sym(k).name;
    return nullptr;
}

std::string shapetext(const symbol& s) {
    long rows = 0, cols = 0;
    if (s.type == MATRIX && s.val.ptr) {
        rows = long(static_cast<const harray*>(s.val.ptr)->rows);
        cols = long(static_cast<const harray*>(s.val.ptr)->cols);
    } else if (s.type == STRINGMATRIX && s.val.ptr) {
        rows = long(static_cast<const StringArray*>(s.val.ptr)->rows);
        cols = long(static_cast<const StringArray*>(s.val.ptr)->cols);
    }
    return " " + std::to_string(rows) + " by " + std::to_string(cols);
}

std::string listline(int idx, const std::string& name, bool withtype) {
    const symbol& s = sym(idx);
    std::string line = "   " + name;
    if (s.type == MATRIX || s.type == STRINGMATRIX) line += shapetext(s);
    if (s.type == CURVETYPE || s.type == TITLETYPE || s.type == CURVE3D)
        if (const char* window = windowname(idx)) line += std::string(" in ") + window;
    if (withtype) line += std::string(", ") + typelabel(s.type);
    return line + "\n";
}

void listobjects(const symbol& word) {
    const int code = int(word.val.rval);
    std::vector<std::pair<std::string, int>> found; // printed names, which tell the order
    for (int i = 1; i < SYMTABSIZE; i++)
        if (islistable(sym(i)) && belongs(i, code)) found.emplace_back(derivtext(sym(i).name), i);
    std::sort(found.begin(), found.end());
    std::string text = std::string("currently defined ") + word.name + "\n";
    for (const auto& [name, idx] : found) text += listline(idx, name, code == 0);
    if (found.empty()) text += "   none\n";
    tarnprinttext(text.data(), text.size());
}

void shownumber(const char* blanks, const symbol& s, bool named) {
    std::string line;
    if (named) line = std::string(blanks) + s.name + " = ";
    line += numstring(s.val.rval) + "\n";
    tarnprinttext(line.data(), line.size());
}

void showconstant(int idx) {
    const symbol& s = sym(idx);
    if (islistword(s.name)) return listobjects(s);
    shownumber("    ", s, shownames() && s.name[0] != '0' && s.name[0] != '#');
}

void showscalar(int idx) { shownumber("  ", sym(idx), shownames()); }

void showmatrix(int idx) {
    if (const auto* m = matrixof(idx)) matrixprint(sym(idx).name, m, matrixlooknow());
}

void showfunction(int idx) {
    char text[FUNCPRINTSIZE];
    funcprint(idx, text, sizeof text);
    tarnprint("%s\n", text);
}

void showunknown(int idx) {
    const symbol& s = sym(idx);
    if (s.name[0] == '.') derivfind(idx, false);
    if (s.type != UNKNOWN) return typeop(idx);
    tarnprint("   value = unknown\n");
    if (const std::string meant = otherword(s.name); !meant.empty()) return tarnwarn("%s", meant.c_str());
    const std::string more = describe(idx);
    if (more.ends_with("?")) tarnwarn("%s", more.c_str()); // another name is near
}

void showstring(int idx) {
    std::string line = "     ";
    if (sym(idx).type == STRINGTYPE) line = shownames() ? line + sym(idx).name + " = " : "";
    line += std::string(stringval(idx)) + "\n";
    tarnprinttext(line.data(), line.size());
}

void showstringmatrix(int idx) {
    const auto* a = static_cast<const StringArray*>(sym(idx).val.ptr);
    if (!a) return;
    if (shownames())
        tarnprint("\n   %s: a  %ld by %ld string matrix\n\n", sym(idx).name, long(a->rows), long(a->cols));
    const char* const* cell = stringcells(a);
    std::string out;
    for (uint32_t i = 1; i <= a->rows; i++) {
        out += "  " + std::to_string(i) + ": ";
        for (uint32_t j = 1; j <= a->cols; j++, cell++)
            out += (*cell ? *cell : std::string("(null)")) + std::string(" ");
        out += '\n';
    }
    tarnprinttext(out.data(), out.size());
}

// Its help, where there is a help file.
void showbuiltin(int idx) {
    if (!console.help(sym(idx).name)) tarnprint("   %s: builtin function\n", sym(idx).name);
}

[[noreturn]] void showbad(int idx) {
    symtabprint(idx);
    tarnerror("bad type in symbol table");
}

constexpr listingrow rows[] = {{UNKNOWN, showunknown, nullptr},
                               {CONSTANT, showconstant, nullptr},
                               {SCALAR, showscalar, nullptr},
                               {USERFUNCTION, showfunction, nullptr},
                               {MATRIX, showmatrix, nullptr},
                               {INITIALVALUE, showfunction, nullptr},
                               {STRINGTYPE, showstring, nullptr},
                               {TEMPSTRING, showstring, nullptr},
                               {STRINGMATRIX, showstringmatrix, nullptr}};

std::string operandtext(int idx) {
    if (idx == 0) return "";
    return isstringtype(idx) ? stringval(idx) : sym(idx).name;
}

bool isquoted(int idx) { return idx != 0 && isstringtype(idx); }

// FORMAT (a,b,c,d,e,f): the fields of the number format for labels.
void formatop(const processop&) {
    constexpr int FIELDS = 6;
    if (!parser.closed || argnumber() != FIELDS || parser.poltop + 1 < FIELDS)
        tarnerror(further("as in FORMAT (-3,8,0,0,2,0)"), "FORMAT needs 6 scalars");
    const int16_t* operand = &parser.polstack[parser.poltop - FIELDS + 1];
    if (!std::all_of(operand, operand + FIELDS, [](int idx) { return isscalar(idx); }))
        tarnerror(further("as in FORMAT (-3,8,0,0,2,0)"), "FORMAT needs 6 scalars");
    for (int k = FIELDS - 1; k >= 0; k--) {
        const int idx = polpop();
        clause.format[k] = shortval(idx);
        tempfree(idx);
    }
}

constexpr listingrow builtinrow[] = {{LISTBUILTIN, showbuiltin, nullptr}};
constexpr processrow formatrow[] = {{53, formatop}};

} // namespace

void typeop(int idx) {
    if (clause.fileflag == 1) return typefile(operandtext(idx), isquoted(idx));
    if (clause.fileflag == 2) return typedirectory(operandtext(idx), isquoted(idx));
    if (idx == 0) return;
    const listingrow* row = listingfind(sym(idx).type);
    if (row) return row->show(idx);
    showbad(idx);
}

void listingstart() {
    nformat = {};
    mformat = {};
    listingadd(rows, int(std::size(rows)));
    if (!listingfind(LISTBUILTIN)) listingadd(builtinrow, 1);
    processadd(formatrow, 1);
}

void listingformats() {
    parsenformat(symtabstring("NFORMAT", ""));
    const char* layout = symtabstring("MFORMAT", "");
    if (*layout) parsemformat(layout);
}

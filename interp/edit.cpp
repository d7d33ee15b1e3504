#include "interp/edit.h"

#include "funcs/funcprint.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/source.h"
#include "plot/titleop.h"
#include "solvers/conset.h"

#include <strings.h>

editstate editing;

namespace {

std::string quoted(const char* text) {
    std::string result = "\"";
    for (const char* c = text; *c; c++) result.append(*c == '"' ? 2 : 1, *c);
    return result + '"';
}

std::string edittext(int symbol) {
    const std::string name = sym(symbol).name;
    switch (sym(symbol).type) {
    case USERFUNCTION:
    case INITIALVALUE: return functext(symbol, true);
    case STRINGTYPE: return "     " + name + " = " + quoted(stringval(symbol));
    case TITLETYPE: return titletoedit(symbol);
    case CONSETTYPE: return constraints2text(symbol, true);
    case UNKNOWN: tarnerror(furtherline{describe(symbol)}, "illegal EDIT argument");
    default:
        tarnerror(furtherline{describe(symbol)},
                  "Only a FUNCTION, INITIAL, STRING, TITLE, FILE or CONSTRAINT may be edited");
    }
}

// Where a file lies that EDIT FILE names, and under which name.
std::string editpath(int symbol) {
    if (symbol == 0) {
        if (!editing.name.empty()) return editing.name;
        tarnprint("No file name given, editing TEMP.do\n");
        return bindname("TEMP", dofiledirectory(), "do");
    }
    const bool text = isstringtype(symbol);
    std::string name = text ? stringval(symbol) : sym(symbol).name;
    const size_t period = name.rfind('.');
    if (period == std::string::npos) return bindname(name.c_str(), dofiledirectory(), "do");
    const bool dofilename = name.size() - period == 3 && strcasecmp(name.c_str() + period, ".do") == 0;
    if (period + 1 == name.size()) name.pop_back();
    return bindname(name.c_str(), dofilename ? dofiledirectory() : report.filedir.c_str(), nullptr);
}

} // namespace

void edit(int symbol) {
    line.lastline = symbol ? edittext(symbol) : line.prevline;
    throw recoveryjump{-1};
}

void fileedit(int symbol) {
    editing.name = findfile(editpath(symbol));
    if (!console.editfile(editing.name.c_str()))
        tarnwarn("the editor could not be started on %s", editing.name.c_str());
}

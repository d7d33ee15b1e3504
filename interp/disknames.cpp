#include "interp/disknames.h"

#include "funcs/define.h"
#include "funcs/funcprint.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

bool isnamechar(char c) { return isalnum(static_cast<unsigned char>(c)) || c == '.'; }

const char* openingword(int type) { return type == INITIALVALUE ? "INITIAL " : "FUNCTION "; }

// Is the definition, with its numbers short, longer than the buffer it is printed to?
bool toolong(int idx) { return functext(idx, false).size() > size_t(FUNCPRINTSIZE - 11); }

} // namespace

std::string diskpath(int name, const char* directory) {
    const char* text = isstringtype(name) ? stringval(name) : sym(name).name;
    return *text && *text != ' ' ? bindname(text, directory, "SAV") : "";
}

bool worthsaving(int idx) {
    const symbol& s = sym(idx);
    derivparts parts;
    if (s.type != USERFUNCTION || !derivsplit(s.name, parts)) return true;
    const int base = symtablookup(parts.function.c_str());
    return base < 0 || sym(base).type != USERFUNCTION || !toolong(idx);
}

bool isobjectname(const std::string& name, int type) {
    if (name.empty() || name.size() > MAXNAME || !std::all_of(name.begin(), name.end(), isnamechar))
        return false;
    if (name[0] == '.') return type == USERFUNCTION || type == INITIALVALUE;
    return isalpha(static_cast<unsigned char>(name[0]));
}

std::string definitiontosave(int idx) {
    if (!toolong(idx)) return functext(idx, true);
    char buffer[FUNCPRINTSIZE];
    funcprint(idx, buffer, FUNCPRINTSIZE);
    tarnwarn("SAVE: the definition of %s is too long, it can not be read back", sym(idx).name);
    return buffer;
}

bool isdefinition(const std::string& text, int type, const std::string& name) {
    const std::string head = openingword(type) + derivtext(name.c_str()) + "(";
    if (text.compare(0, head.size(), head) != 0 || text.find("/*") != std::string::npos) return false;
    if (std::count(text.begin(), text.end(), '"') % 2 != 0) return false;
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) >= ' ' && c != ';'; });
}

std::string definitionrenamed(const std::string& text, const std::string& from, const std::string& to) {
    const size_t headstart = text.find(' ') + 1;
    const size_t headend = headstart + derivtext(from.c_str()).size();
    std::string renamed = text.substr(0, headstart) + derivtext(to.c_str());
    if (from[0] == '.') return renamed + text.substr(headend); // a body does not call its own derivative
    for (size_t k = headend; k < text.size();) {
        size_t end = k;
        while (end < text.size() && isnamechar(text[end])) end++;
        if (end == k) {
            renamed += text[k++];
            continue;
        }
        const std::string word = text.substr(k, end - k);
        renamed += word == from ? to : word;
        k = end;
    }
    return renamed;
}

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

// Where the name of the function ends that a derivative is of; the end of any other name.
size_t baseend(const std::string& name) {
    return std::min(name.find('.', name.find_first_not_of('.')), name.size());
}

std::string basename(const std::string& name) {
    const size_t dots = name.find_first_not_of('.');
    return name.substr(dots, baseend(name) - dots);
}

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

std::string nextname(const std::string& name) {
    std::string next = name;
    return next.insert(baseend(name), "A");
}

std::string trialname(const std::string& name) {
    const size_t dots = name.find_first_not_of('.');
    std::string trial = name.substr(0, dots) + "Q" + name.substr(baseend(name));
    while (symtablookup(trial.c_str()) > 0) trial = nextname(trial);
    return trial;
}

std::string definitionrenamed(const std::string& text, const std::string& from, const std::string& to) {
    const std::string old = basename(from), now = basename(to);
    std::string renamed;
    for (size_t k = 0; k < text.size();) {
        size_t end = k;
        while (end < text.size() && isnamechar(text[end])) end++;
        if (end == k) {
            renamed += text[k++];
            continue;
        }
        const std::string word = text.substr(k, end - k);
        renamed += word == old ? now : word;
        k = end;
    }
    return renamed;
}

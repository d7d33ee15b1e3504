#include "interp/tokenfil.h"

#include "interp/base/symtab.h"
#include "values/harray.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

tokentablestate tokentables;

namespace {

constexpr size_t LINEMAX = 98; // with its end

enum linekind { PLAIN, BUILTIN, KEYWORD, NUMBER, DELIMITER, TEXT };

// The fields stay in force from line to line; the kind is new on each.
struct fields {
    std::string name, text;
    int type = 0, code = 0, tokennum = 0, row = 0, col = 0, pcase = 0;
    double number = 0;
    std::vector<int> argd;
    linekind kind = PLAIN;
};

bool blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

bool readwhole(const char* path, std::string& text) {
    FILE* f = std::fopen(path, "rb");
    if (!f) return false;
    char block[65536];
    for (size_t n; (n = std::fread(block, 1, sizeof block, f)) > 0;) text.append(block, n);
    std::fclose(f);
    return true;
}

bool parseint(std::string_view value, int& out) {
    char* end;
    const std::string digits(value);
    const long n = std::strtol(digits.c_str(), &end, 10);
    if (digits.empty() || *end || n < INT16_MIN || n > INT16_MAX) return false;
    out = int(n);
    return true;
}

bool parseargd(std::string_view value, std::vector<int>& out) {
    out.clear();
    while (!value.empty()) {
        const size_t comma = value.find(',');
        int d;
        if (!parseint(value.substr(0, comma), d) || d < INT8_MIN || d > INT8_MAX) return false;
        out.push_back(d);
        value = comma == value.npos ? std::string_view() : value.substr(comma + 1);
    }
    return !out.empty() && (out[0] < 0 || (out[0] <= 7 && out.size() > size_t(out[0])));
}

void setvalue(std::string_view value, fields& f) {
    const bool numeric = value.front() == '-' || (value.front() >= '0' && value.front() <= '9');
    if (numeric) {
        f.number = std::strtod(std::string(value).c_str(), nullptr);
        f.kind = NUMBER;
    } else {
        f.text = value;
        f.kind = TEXT;
    }
}

// One key with its value; false for what no vocabulary holds.
bool setfield(std::string_view key, std::string_view value, fields& f) {
    static constexpr std::string_view initials = "acinoprtv";
    if (key.empty() || initials.find(key[0]) == initials.npos) return false;
    if (value.empty()) return false;
    int unused;
    if (key == "name") return f.name = value, value.size() <= MAXNAME;
    if (key == "type") return parseint(value, f.type);
    if (key == "value") return setvalue(value, f), true;
    if (key == "code") return f.kind = KEYWORD, parseint(value, f.code);
    if (key == "argd") return f.kind = BUILTIN, parseargd(value, f.argd);
    if (key == "op") return f.kind = DELIMITER, true;
    if (key == "tokennum") return parseint(value, f.tokennum);
    if (key == "row") return parseint(value, f.row);
    if (key == "col") return parseint(value, f.col);
    if (key == "pcase") return parseint(value, f.pcase);
    if (key == "index") return parseint(value, unused);
    return true;
}

bool parseline(std::string_view text, fields& f) {
    size_t at = 0;
    const auto skipblanks = [&] {
        while (at < text.size() && blank(text[at])) at++;
    };
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') at++;
    skipblanks();
    f.kind = PLAIN;
    while (at < text.size()) {
        const size_t colon = text.find(':', at);
        if (colon == text.npos) return false;
        const std::string_view key = text.substr(at, colon - at);
        at = colon + 1;
        skipblanks();
        const size_t start = at;
        while (at < text.size() && !blank(text[at])) at++;
        if (!setfield(key, text.substr(start, at - start), f)) return false;
        skipblanks();
    }
    return true;
}

bool settables(int token, const fields& f) {
    if (token < 1 || token > MAXTOKEN || f.row > 33 || f.col < 0 || f.col > 28) return false;
    tokentables.row[token] = int16_t(f.row);
    tokentables.col[token] = int16_t(f.col);
    tokentables.pcase[token] = int16_t(f.pcase);
    return true;
}

void setsignature(symbol& s, const std::vector<int>& argd) {
    memset(s.val.argd, 0, sizeof s.val.argd);
    const int n = argd[0] < 0 ? 0 : argd[0];
    for (int k = 0; k <= n; k++) s.val.argd[k] = static_cast<signed char>(argd[size_t(k)]);
}

// Does what the finished line says.
bool applyline(const fields& f) {
    if (f.kind == DELIMITER) return settables(f.tokennum, f);
    if (f.name.empty()) return false;
    symbol& s = sym(symtabenter(f.name.c_str()));
    s.type = int16_t(f.type);
    switch (f.kind) {
    case BUILTIN: setsignature(s, f.argd); break;
    case KEYWORD: s.val.token = int16_t(f.code); return settables(f.code, f);
    case NUMBER: s.val.rval = f.number; break;
    case TEXT: s.val.ptr = xstrdup(f.text.c_str()); break;
    default: break;
    }
    return true;
}

} // namespace

bool symtabinit(const char* path, std::string& failure) {
    tokentables = tokentablestate{};
    std::string text;
    if (!readwhole(path, text)) return failure = std::string("Cannot open file: ") + path + "\n", false;
    const size_t header = text.find('\n');
    if (text.empty()) return failure = std::string("Illegal ") + path + "!\n", false;
    fields f;
    int number = 1;
    for (size_t at = header; at != text.npos && at + 1 < text.size();) {
        const size_t end = text.find('\n', at + 1);
        std::string_view row(text.data() + at + 1, (end == text.npos ? text.size() : end) - at - 1);
        at = end;
        number++;
        while (!row.empty() && blank(row.front())) row.remove_prefix(1);
        while (!row.empty() && blank(row.back())) row.remove_suffix(1);
        if (row.empty() || row[0] == '/') continue;
        if (row.size() < LINEMAX && parseline(row, f) && applyline(f)) continue;
        failure = "bad TOKEN.FIL file\nline " + std::to_string(number) + "\n";
        return false;
    }
    return true;
}

const char* tokenword(int token) {
    static constexpr struct {
        int token;
        const char* text;
    } signs[] = {{TOKPOWER, "^"},       {TOKTIMES, "*"},      {TOKDIVIDE, "/"},        {TOKPLUS, "+"},
                 {TOKMINUS, "-"},       {TOKUNARYMINUS, "-"}, {TOKEQUAL, "="},         {TOKLESS, "<"},
                 {TOKLESSEQUAL, "<="},  {TOKGREATER, ">"},    {TOKGREATEREQUAL, ">="}, {TOKCOMMA, ","},
                 {TOKCLOSE, ")"},       {TOKOPEN, "("},       {TOKCALL, "("},          {TOKCOLON, ":"},
                 {TOKSECONDCOLON, ":"}, {TOKCOUNT, "!"},      {TOKUNDERSCORE, "_"},    {TOKCELLTIMES, "*'"},
                 {TOKCELLDIVIDE, "/'"}, {TOKKRONECKER, "#"},  {TOKSTACK, "&"},         {TOKBESIDE, "&'"},
                 {TOKPRIME, "'"},       {TOKDERIVATIVE, "'"}, {TOKREPEAT, "^^"},       {TOKREPEATBY, "^^'"}};
    for (const auto& s : signs)
        if (s.token == token) return s.text;
    for (int i = 1; i < SYMTABSIZE; i++)
        if (sym(i).type == OPERATOR && sym(i).val.token == token) return sym(i).name;
    return "";
}

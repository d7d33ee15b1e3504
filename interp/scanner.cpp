#include "interp/scanner.h"

#include "interp/base/fpfault.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/mistakes.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <algorithm>
#include <array>
#include <cstring>

scannerstate scanner;
linestate line;

namespace {

enum charclass : uint8_t {
    OTHER = 0,
    LETTER = 1,
    DIGIT = 2,
    PERIOD = 4,
    DELIM = 8,
    NAMECHAR = LETTER | DIGIT | PERIOD
};

struct chartables {
    std::array<uint8_t, 256> kind{};
    std::array<uint8_t, 256> token{}; // of a delimiter alone
};

constexpr chartables makechartables() {
    chartables t;
    for (int c = '0'; c <= '9'; c++) t.kind[size_t(c)] = DIGIT;
    for (int c = 'A'; c <= 'Z'; c++) t.kind[size_t(c)] = t.kind[size_t(c - 'A' + 'a')] = LETTER;
    t.kind['.'] = PERIOD;
    constexpr struct {
        char c;
        uint8_t token;
    } delimiters[] = {{'+', TOKPLUS},      {'-', TOKMINUS},   {'*', TOKTIMES},      {'/', TOKDIVIDE},
                      {'^', TOKPOWER},     {'=', TOKEQUAL},   {',', TOKCOMMA},      {'(', TOKOPEN},
                      {')', TOKCLOSE},     {'[', TOKOPEN},    {']', TOKCLOSE},      {':', TOKCOLON},
                      {'<', TOKLESS},      {'>', TOKGREATER}, {'_', TOKUNDERSCORE}, {'&', TOKSTACK},
                      {';', TOKEND},       {'{', TOKOPEN},    {'}', TOKCLOSE},      {'\'', TOKPRIME},
                      {'#', TOKKRONECKER}, {'!', TOKCOUNT},   {'?', TOKHELP}};
    for (const auto& d : delimiters) {
        t.kind[size_t(d.c)] = DELIM;
        t.token[size_t(d.c)] = d.token;
    }
    return t;
}
constexpr chartables chars = makechartables();

uint8_t kindof(char c) { return chars.kind[static_cast<unsigned char>(c)]; }
char upper(char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; }

// The character at the cursor, without going for more text: each line ends with a carriage return, which no
// token but a string or a comment reaches over.
char here() { return line.cursor < line.text.size() ? line.text[line.cursor] : '\0'; }

} // namespace

char peekch() {
    while (line.cursor >= line.text.size()) {
        getline();
        if (scanner.stream) tarnerror("the text ended inside a string or a comment");
    }
    return line.text[line.cursor];
}

char getch() {
    const char c = peekch();
    line.cursor++;
    return c;
}

double getnumber(int& status) {
    double m = 0;
    int digits = 0, fraction = 0;
    bool nonzero = false;
    for (; kindof(here()) == DIGIT; line.cursor++, digits++) m = 10 * m + (here() - '0');
    const double whole = m;
    if (here() == '.') {
        for (line.cursor++; kindof(here()) == DIGIT; line.cursor++, fraction++) {
            m = 10 * m + (here() - '0');
            nonzero |= here() != '0';
        }
    }
    status = digits + fraction > 0 ? 0 : -2;
    if (status) return 0;
    if (!nonzero) {
        fraction = 0;
        m = whole;
    }
    int e = 0;
    if (upper(here()) == 'E') {
        line.cursor++;
        const char sign = here();
        if (sign == '+' || sign == '-') line.cursor++;
        if (kindof(here()) != DIGIT) status = -1;
        for (; kindof(here()) == DIGIT; line.cursor++) e = std::min(10 * e + (here() - '0'), int(INT16_MAX));
        if (sign == '-') e = -e;
    }
    const int n = e - fraction;
    if (m == 0 || n == 0) return fpcheck(m);
    m = fpcheck(m);
    if (n >= -322) return fpcheck(powi(10, n) * m);
    // A typed number never underflows to zero.
    const double x = m / powi(10, -323 - n) * powi(10, -323);
    return x > 0 ? x : 4.9406564584124654e-324;
}

namespace {

int numbertoken() {
    int status;
    const double x = getnumber(status);
    if (status == -1) tarnerror(marked("digits are missing behind the E"), "illegal exponent in number");
    if (status == -2) tarnerror(marked("digits are missing before the E"), "mal-formed number");
    if (scanner.record) scanner.record->tokens.push_back({TOKNUMBER, 0, -1, x});
    return symtabconst(x);
}

[[noreturn]] void nametoolong() {
    const std::string name = line.text.substr(scanner.start, line.cursor - scanner.start);
    tarnerror(further("it begins with %s", name.c_str()),
              "name too long: maximum name length is %hd characters", short(MAXNAME));
}

// Collects a name at the cursor as typed; limit is the length that is refused. Returns its length.
size_t collectname(char* name, size_t limit) {
    size_t n = 0;
    for (; kindof(here()) & NAMECHAR; line.cursor++) {
        if (n + 1 >= limit) nametoolong();
        name[n++] = here();
    }
    name[n] = 0;
    return n;
}

void foldupper(char* to, const char* from) {
    do *to++ = upper(*from);
    while (*from++);
}

// Generated names of curves, axes and titles: a letter of C, A, T and a decimal number.
bool generatedname(const char* name) {
    if (!strchr("CAT", name[0]) || !name[1]) return false;
    return strspn(name + 1, "0123456789") == strlen(name + 1);
}

// With the case of letters kept, does the upper-case entry stand for the name all the same?
bool takesupper(int idx, const char* name) {
    const int type = sym(idx).type;
    if (type < 0 || type == OPERATOR || type == CONSTANT) return true;
    if (type == WINDOWTYPE && (!strcmp(name, "W") || !strcmp(name, "W3"))) return true;
    if (!strcmp(name, "W.XAXIS") || !strcmp(name, "W.YAXIS")) return true;
    if ((type == CURVETYPE || type == TITLETYPE || type == CURVE3D) && generatedname(name)) return true;
    return symtabprotectedname(name) > 0;
}

int casedname(char* name) {
    char folded[MAXNAME + 1];
    foldupper(folded, name);
    const int idx = symtablookup(folded);
    if (idx > 0 && takesupper(idx, folded)) return idx;
    const char* period = strchr(folded, '.');
    if (idx < 0 && period && period[1] && !strcmp(period + 2, "AXIS"))
        strcpy(name + (period - folded), period);
    return symtabenter(name);
}

int nametoken(int& index) {
    char name[MAXNAME + 1];
    if (parser.casesw == 0) {
        collectname(name, MAXNAME + 1);
        foldupper(name, name);
        index = symtabenter(name);
    } else {
        collectname(name, MAXNAME);
        index = casedname(name);
    }
    const symbol& s = sym(index);
    const int token = s.type == OPERATOR ? s.val.token : int(TOKNAME);
    if (tokenstream* r = scanner.record) {
        r->tokens.push_back({int16_t(token), int16_t(index), int32_t(r->texts.size()), 0});
        r->texts.emplace_back(s.name);
    }
    return token;
}

// Bytes of the letter in UTF-8 at that place; 1 for what is none.
size_t letterlength(size_t at) {
    const auto lead = static_cast<unsigned char>(line.text[at]);
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    for (size_t k = 1; k < length; k++)
        if (at + k >= line.text.size() || (line.text[at + k] & 0xC0) != 0x80) return 1;
    return length;
}

// What other languages and word processors write with a character, and how it is written here.
furtherline meantby(size_t at) {
    static constexpr struct {
        const char *letter, *meant;
    } letters[] = {{"%", "a comment stands between /* and */; MOD(A,B) is the remainder"},
                   {"\\", "a backslash continues a line, at its very end; LINEQ solves equations"},
                   {"|", "OR joins two conditions, ABS(X) is the absolute value"},
                   {"~", "NOT turns a condition, NOT (A = B) compares"},
                   {"$", "names are made of letters, digits and periods"},
                   {"@", "names are made of letters, digits and periods"},
                   {"`", "text stands in double quotes"},
                   {".", "a period begins neither a name nor an operator; A*'B multiplies elements"},
                   {"\xE2\x80\x9C", "text stands in plain double quotes"},
                   {"\xE2\x80\x9D", "text stands in plain double quotes"},
                   {"\xE2\x80\x98", "the prime is the plain one"},
                   {"\xE2\x80\x99", "the prime is the plain one"},
                   {"\xE2\x88\x92", "the minus is the plain hyphen"},
                   {"\xE2\x80\x93", "the minus is the plain hyphen"},
                   {"\xC3\x97", "products are written with *"},
                   {"\xC2\xB7", "products are written with *"},
                   {"\xC2\xB2", "powers are written with ^"},
                   {"\xC2\xB3", "powers are written with ^"},
                   {"\xC2\xA0", "it is a blank that does not break; type a plain one"}};
    const std::string letter = line.text.substr(at, letterlength(at));
    for (const auto& row : letters)
        if (letter == row.letter) return {row.meant};
    if (letter.size() > 1)
        return further("%s can stand in texts and comments; names are made of A to Z, digits and periods",
                       letter.c_str());
    if (static_cast<unsigned char>(letter[0]) < ' ')
        return {"it is a control character, which no text holds"};
    if (letter[0] & 0x80) return {"the byte is part of no letter in UTF-8: is the text in another code?"};
    return {};
}

[[noreturn]] void illegalcharacter() {
    const size_t at = line.cursor, from = at < 40 ? 0 : at - 40;
    std::string text = line.text.substr(from, at - from);
    text.erase(0, text.rfind('\r') + 1); // what stands on lines before
    text += '_';
    text += line.text.substr(at + letterlength(at), 30);
    text.erase(std::min(text.find('\r'), text.size()));
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    tarnprint("\nError line:");
    tarnprint("%s\n", text.c_str());
    const unsigned c = static_cast<unsigned char>(line.text[at]);
    const furtherline more = meantby(at);
    if (c < ' ' || c > '~')
        tarnerror(more, "illegal character in command: hex: %hx", static_cast<unsigned short>(c));
    tarnerror(more, "illegal character in command: hex: %hx (%c)", static_cast<unsigned short>(c), int(c));
}

int stringsymbol(std::string_view text) { return symtabtext(0, 0, text); }

// The cursor stands behind the opening quote.
int stringtoken() {
    const openpart part("a string");
    std::string text;
    for (;;) {
        const char c = peekch();
        if (c == 0) illegalcharacter();
        line.cursor++;
        if (c == '"') {
            if (here() != '"' || text.empty()) break;
            line.cursor++;
        }
        text += c;
        if (c != '\r') continue;
        text += '\n';
        line.prompt = "> ";
    }
    if (tokenstream* r = scanner.record) {
        r->tokens.push_back({TOKSTRING, 0, int32_t(r->texts.size()), 0});
        r->texts.push_back(text);
    }
    return stringsymbol(text);
}

// The cursor stands behind the opening of a comment.
void skipcomment() {
    const openpart part("a comment");
    for (;;) {
        const char c = getch();
        if (c == '*' && here() == '/') break;
        if (c == '\r') line.prompt = "> ";
    }
    line.cursor++;
}

void skipspaces() {
    while (here() == ' ') line.cursor++;
}

// The token of the pair cd, or 0.
int pairtoken(char c, char d) {
    switch (d) {
    case '=': return c == '>' ? TOKGREATEREQUAL : c == '<' ? TOKLESSEQUAL : 0;
    case '<': return c == '=' ? TOKLESSEQUAL : 0;
    case '>': return c == '=' ? TOKGREATEREQUAL : 0;
    case '*': return c == '*' ? TOKPOWER : 0;
    case '^': return c == '^' ? TOKREPEAT : 0;
    case '\'': return c == '&' ? TOKBESIDE : c == '*' ? TOKCELLTIMES : c == '/' ? TOKCELLDIVIDE : 0;
    default: return 0;
    }
}

// c has been read. Blanks behind it are skipped in any case. 0: it opened a comment, which is skipped.
int delimitertoken(char c) {
    skipspaces();
    const char d = here();
    if (c == '/' && d == '*') {
        line.cursor++;
        skipcomment();
        return 0;
    }
    int token = pairtoken(c, d);
    if (token) {
        line.cursor++;
        if (token == TOKREPEAT) {
            skipspaces();
            if (here() == '\'') {
                line.cursor++;
                token = TOKREPEATBY;
            }
        }
    } else {
        token = chars.token[static_cast<unsigned char>(c)];
        if (token == TOKOPEN || token == TOKCLOSE) scanner.bracket = c;
    }
    if (scanner.record) scanner.record->tokens.push_back({int16_t(token), int16_t(c), -1, 0});
    return token;
}

// One token of line.text, which is known to hold a character; false when there was only a comment.
bool scantoken(int& number, int& index) {
    scanner.start = line.cursor;
    const char c = line.text[line.cursor];
    const uint8_t kind = kindof(c);
    if (kind == DIGIT) {
        number = TOKNUMBER;
        index = numbertoken();
    } else if (kind == LETTER) {
        number = nametoken(index);
    } else if (kind == DELIM) {
        line.cursor++;
        number = delimitertoken(c);
        return number != 0;
    } else if (c == '\r' || c == 26) {
        line.cursor++;
        number = TOKEND;
        if (scanner.record) scanner.record->tokens.push_back({TOKEND, 0, -1, 0});
    } else if (c == '"') {
        line.cursor++;
        number = TOKSTRING;
        index = stringtoken();
    } else if (kind == PERIOD && line.cursor + 1 < line.text.size() &&
               (kindof(line.text[line.cursor + 1]) == DIGIT || upper(line.text[line.cursor + 1]) == 'E')) {
        number = TOKNUMBER;
        index = numbertoken();
    } else {
        illegalcharacter();
    }
    return true;
}

} // namespace

void scannerreset() { scanner.pushnumber = -1; }

void newtoken(int& number, int& index) {
    if (scanner.pushnumber >= 0) {
        number = scanner.pushnumber;
        index = scanner.pushindex;
        scanner.pushnumber = -1;
        return;
    }
    index = 0;
    for (;;) {
        if (tokenstream* s = scanner.stream) {
            if (streamready(*s)) return streamtoken(*s, number, index);
            getline();
        } else {
            while (here() == ' ' || here() == '\t') line.cursor++;
            if (line.cursor >= line.text.size())
                getline();
            else if (scantoken(number, index))
                return;
        }
    }
}

void pushtoken(int number, int index) {
    scanner.pushnumber = number;
    scanner.pushindex = index;
}

int skimtoken() {
    tokenstream* s = scanner.stream;
    if (s && streamready(*s)) {
        scanner.start = s->next;
        return s->tokens[s->next++].number;
    }
    int number, index;
    newtoken(number, index);
    if (number == TOKNUMBER || number == TOKSTRING) tempfree(index);
    return number;
}

size_t scanposition() { return scanner.stream ? scanner.stream->next : line.cursor; }

void scanseek(size_t position) {
    scannerreset();
    if (!scanner.stream) {
        line.cursor = position;
        return;
    }
    streamseek(*scanner.stream, position);
}

void scancut(size_t from, size_t to) {
    if (!scanner.stream) {
        line.text.erase(from, to - from);
        if (line.cursor > from) line.cursor = line.cursor >= to ? line.cursor - (to - from) : from;
        return;
    }
    streamcut(*scanner.stream, from, to);
}

void scanblank(size_t position) {
    if (scanner.stream)
        scancut(position, position + 1);
    else
        line.text[position] = ' ';
}

void skiplineend() {
    if (const tokenstream* s = scanner.stream) {
        const bool lineend =
            s->next < s->stop && s->tokens[s->next].number == TOKEND && s->tokens[s->next].index == 0;
        return scanseek(s->next + lineend);
    }
    while (here() == ' ' || here() == '\t') line.cursor++;
    if (here() == '\r') line.cursor++;
}

void scanforget() {
    if (scanner.stream) streamforget(*scanner.stream);
}

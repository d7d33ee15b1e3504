#include "interp/mistakes.h"

#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "interp/otherwords.h"
#include "interp/scanner.h"
#include "interp/tokenfil.h"

#include <algorithm>
#include <cstdio>

namespace {

// ---- the place ----

// A line of statement text and the byte of it that is meant.
struct textplace {
    std::string text;
    size_t at = 0;
};

textplace textline() {
    const std::string& text = line.text;
    const size_t at = std::min(scanner.start, text.size());
    const size_t before = at > 0 ? text.rfind('\r', at - 1) : std::string::npos;
    const size_t from = before == std::string::npos ? 0 : before + 1;
    const size_t to = std::min(text.find('\r', at), text.size());
    return {text.substr(from, to - from), at - from};
}

std::string spelled(const tokenstream& s, const tokenrecord& t) {
    if (t.number == TOKSTRING) return '"' + s.texts[size_t(t.text)] + '"';
    if (t.text >= 0) return s.texts[size_t(t.text)];
    if (t.number == TOKOPEN || t.number == TOKCLOSE) return {1, char(t.index)};
    if (t.number != TOKNUMBER) return tokenword(t.number);
    char digits[32];
    snprintf(digits, sizeof digits, "%.15g", t.value);
    return digits;
}

// The statement of a FOR body, put together from its tokens.
textplace streamline() {
    const tokenstream& s = *scanner.stream;
    const auto isend = [&](size_t k) { return s.tokens[k].number == TOKEND; };
    const size_t at = std::min(scanner.start, s.tokens.size() - 1);
    size_t from = at, to = at;
    while (from > 0 && !isend(from - 1)) from--;
    while (to < s.tokens.size() && !isend(to)) to++;
    textplace place;
    for (size_t k = from; k < to; k++) {
        if (k > from) place.text += ' ';
        if (k == at) place.at = place.text.size();
        place.text += spelled(s, s.tokens[k]);
    }
    if (at == to) place.at = place.text.size();
    return place;
}

bool continuesletter(char c) { return (c & 0xC0) == 0x80; } // a later byte of one in UTF-8

// As much of the line around the place as is easily read.
void cutaround(textplace& place) {
    constexpr size_t BEFORE = 56, BEHIND = 16;
    if (place.text.size() > place.at + BEHIND + 3) {
        size_t end = place.at + BEHIND;
        while (end < place.text.size() && continuesletter(place.text[end])) end++;
        place.text.replace(end, std::string::npos, "...");
    }
    if (place.at <= BEFORE) return;
    size_t start = place.at - BEFORE;
    while (start < place.at && continuesletter(place.text[start])) start++;
    place.text.replace(0, start, "...");
    place.at += 3 - start;
}

// ---- what stands there ----

// The current token as it was typed.
std::string typed(int token) {
    if (token == TOKEND) return "the end of the statement";
    if (token == TOKCLOSE) return std::string("\"") + scanner.bracket + '"';
    return std::string("\"") + tokenword(token) + '"';
}

bool waits(int token) {
    const int16_t* const begin = parser.opstack + 1;
    const int16_t* const end = begin + parser.oplevel;
    return std::find(begin, end, token) != end;
}

bool bracketwaits() { return waits(TOKOPEN) || waits(TOKCALL); }

int waiting() { return parser.opstack[parser.oplevel]; }

// Groups of tokens, by their rows and columns in the pairing table; see data/TOKEN.FIL.
bool isunit(int token) { return token >= TOKFRACT && token <= TOKIFRACT; }
bool isrelation(int token) { return token >= TOKLESS && token <= TOKGREATER; }
bool isstatement(int token) {
    const int row = tokentables.row[token];
    return (row == 28 && token != TOKPTSIZE) || (row == 31 && !isunit(token)) || token == TOKCONSTRAINTS ||
           token == TOKIF;
}

constexpr struct {
    int token;
    const char* form;
} forms[] = {
    {TOKTYPE, "TYPE A, B or TYPE FILE \"NAME\""},
    {TOKPRINT, "PRINT A, B IN \"FILE\""},
    {TOKDELETE, "DELETE A, B"},
    {TOKSAVE, "SAVE A, B IN \"FILE\""},
    {TOKSAVEOVER, "SAVEOVER A, B IN \"FILE\""},
    {TOKSAVEALL, "SAVEALL IN \"FILE\""},
    {TOKSAVEALLOVER, "SAVEALLOVER IN \"FILE\""},
    {TOKUSE, "USE \"FILE\""},
    {TOKUSEOVER, "USEOVER \"FILE\""},
    {TOKDO, "DO \"FILE\""},
    {TOKFOR, "FOR I = 1:10 { ... }"},
    {TOKIF, "IF X > 0 THEN { ... } ELSE { ... }"},
    {TOKTHEN, "IF X > 0 THEN { ... } ELSE { ... }"},
    {TOKELSE, "IF X > 0 THEN { ... } ELSE { ... }"},
    {TOKFIT, "FIT (A, B), F TO M"},
    {TOKCONSTRAINTS, "CONSTRAINTS C = { A > 0, A + B <= 1 }"},
    {TOKFUNCTION, "FUNCTION F(X) = A*X"},
    {TOKINITIAL, "INITIAL Y(0) = 1"},
    {TOKDRAW, "DRAW C = M"},
    {TOKBLANK, "BLANK C"},
    {TOKUNBLANK, "UNBLANK C"},
    {TOKWINDOW, "WINDOW 0 TO 10, 0 TO 5"},
    {TOKFRAME, "FRAME 0 TO 1, 0 TO 1"},
    {TOKIMAGE, "IMAGE 0.1 TO 0.9, 0.1 TO 0.9"},
    {TOKEDIT, "EDIT F"},
    {TOKLIST, "LIST(1, 2, 3)"},
    {TOKROW, "M ROW 1:2"},
    {TOKCOL, "M COL 1:2"},
    {TOKON, "F ON M"},
    {TOKNOT, "NOT X"},
    {TOKAT, "AT (0.5, 0.5)"},
    {TOKOFFSET, "OFFSET (0.1, 0.1)"},
    {TOKTO, "FIT A, F TO M"},
    {TOKIN, "IN NAME"},
};

std::string exampleof(int token) {
    for (const auto& f : forms)
        if (f.token == token) return f.form;
    return "";
}

// What a bracket, IF or THEN still waits for when the statement ends.
const char* unfinished() {
    for (int k = parser.oplevel; k > 0; k--) {
        const int token = parser.opstack[k];
        if (token == TOKOPEN || token == TOKCALL) return "a bracket is not closed";
        if (token == TOKIF) return "IF is without THEN";
        if (token == TOKTHEN) return "an IF between values needs ELSE";
    }
    return nullptr;
}

// The words for a token that the table refuses behind what waits.
std::string refusal(int token) {
    const std::string what = typed(token);
    if (token == TOKEND)
        if (const char* open = unfinished()) return open;
    if (token == TOKCLOSE && !bracketwaits()) return what + " closes a bracket that was never opened";
    if (token == TOKCLOSE && waits(TOKIF)) return "IF is without THEN";
    if (token == TOKTHEN) return waits(TOKIF) ? "THEN cannot stand here" : "THEN is without IF";
    if (token == TOKELSE) return waits(TOKTHEN) ? "ELSE cannot stand here" : "ELSE is without IF and THEN";
    if (isrelation(token) && tokentables.row[waiting()] == 16)
        return "a range stands in brackets before " + what + ", as in (1:3) < 2";
    if (bracketwaits() && (isclause(token) || isunit(token) || isstatement(token)))
        return what + " cannot stand inside a bracket: is one not closed?";
    if (isunit(token)) return what + " is a unit: it stands behind AT, SIZE, OFFSET and the like";
    if (isclause(token)) return what + " belongs to a statement word, such as DRAW or TITLE, in front of it";
    if (token == TOKPRIME)
        return "a prime stands behind a matrix or a function; text stands in double quotes";
    if (token == TOKTO) return "TO belongs to FIT, WINDOW, FRAME or IMAGE";
    if (isstatement(token))
        return what + " begins a statement: it stands on a line of its own, or behind a semicolon";
    if (tokentables.col[token] == 26) return what + " cannot stand right behind a value";
    return what + " cannot stand here";
}

// Pairs that are operators in other languages.
constexpr struct {
    int before, token;
    const char* words;
} foreign[] = {
    {TOKEQUAL, TOKEQUAL, "a single = assigns and compares"},
    {TOKLESS, TOKGREATER, "unequal is written NOT (A = B)"},
    {TOKCOUNT, TOKEQUAL, "unequal is written NOT (A = B)"},
    {TOKSTACK, TOKSTACK, "two conditions are joined by AND"},
    {TOKPLUS, TOKEQUAL, "X = X + 1 adds to X"},
    {TOKMINUS, TOKEQUAL, "X = X - 1 subtracts from X"},
    {TOKTIMES, TOKEQUAL, "X = X*2 multiplies X"},
    {TOKDIVIDE, TOKEQUAL, "X = X/2 divides X"},
};

bool isword(int token) { return isalpha(static_cast<unsigned char>(*tokenword(token))); }

} // namespace

bool isclause(int token) { return tokentables.col[token] == 14 && token != TOKCONSTRAINTS; }

furtherline marked(const std::string& what) {
    if (report.quiet) return {what};
    textplace place = scanner.stream ? streamline() : textline();
    for (char& c : place.text)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    while (!place.text.empty() && place.text.back() == ' ' && place.text.size() > place.at)
        place.text.pop_back();
    cutaround(place);
    const auto end = place.text.begin() + ptrdiff_t(std::min(place.at, place.text.size()));
    const auto column =
        size_t(std::count_if(place.text.begin(), end, [](char c) { return !continuesletter(c); }));
    return {what + "\n    " + place.text + "\n    " + std::string(column, ' ') + "^"};
}

furtherline misplaced(int token) { return marked(refusal(token)); }

furtherline nothingbefore(int token) {
    const int before = waiting();
    if (token == TOKCLOSE && !bracketwaits()) return misplaced(token);
    if ((token == TOKTHEN && !waits(TOKIF)) || (token == TOKELSE && !waits(TOKTHEN))) return misplaced(token);
    if ((token == TOKEQUAL || token == TOKUNDERSCORE) && isword(before))
        return marked(std::string(tokenword(before)) + " is a word of the language, it cannot be a name");
    for (const auto& f : foreign)
        if (f.before == before && f.token == token) return marked(f.words);
    if (token == TOKCOLON && (before == TOKCALL || before == TOKCOMMA))
        return marked(
            "a value is missing before \":\"; whole rows are written M ROW 2, whole columns M COL 2");
    return marked("a value is missing before " + typed(token));
}

furtherline nothingbehind() {
    const int before = waiting();
    const std::string example = exampleof(before);
    if (before == TOKOPEN || before == TOKCALL) return marked(unfinished());
    if (isunit(before)) return misplaced(before);
    if (!example.empty()) return marked(std::string(tokenword(before)) + " needs more, as in " + example);
    return marked(std::string("a value is missing behind \"") + tokenword(before) + '"');
}

furtherline noseparator(int idx) {
    const int before = parser.poltop >= 0 ? parser.polstack[parser.poltop] : 0;
    if (parser.poltop == 0 && parser.oplevel == 0 && before > 0 && sym(before).type == UNKNOWN) {
        const std::string name = nametext(before);
        const std::string ours = otherword(name);
        if (!ours.empty()) return marked(name + " is no word of the language: " + ours);
        const int meant = symtabnearest(name.c_str(), [](const symbol& s) { return s.type == OPERATOR; });
        return marked(name + " is no word of the language" +
                      (meant ? "; is " + std::string(sym(meant).name) + " meant?" : ""));
    }
    const auto name = [](int k) {
        return k > 0 && isstringtype(k) && istemporary(k) ? "a string" : nametext(k);
    };
    return marked("an operator or a comma is missing between " + name(before) + " and " + name(idx) +
                  (waiting() == TOKOPEN ? "; LIST(1,2,3) makes a matrix" : ""));
}

furtherline nothingtouse(int token) {
    const std::string example = exampleof(token), word = tokenword(token);
    return marked(example.empty() ? "a value is missing beside \"" + word + '"'
                                  : word + " needs more, as in " + example);
}

furtherline leftover() {
    const int count = parser.poltop + 1;
    return further(
        "%d values stand side by side where one is due; LIST(1,2,3) makes a matrix of values, TYPE A, B "
        "shows several",
        count);
}

furtherline statementform(int token) {
    const std::string example = exampleof(token);
    return example.empty() ? furtherline{} : furtherline{"as in " + example};
}

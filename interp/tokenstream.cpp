#include "interp/tokenstream.h"

#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/scanner.h"
#include "values/stringarray.h"

#include <cstring>

namespace {

// The next place where delivery has to stop and look.
void findstop(tokenstream& s) {
    s.stop = s.tokens.size();
    for (const auto& c : s.cuts)
        if (c.from >= s.next && c.from < s.stop) s.stop = c.from;
}

int streamname(tokenrecord& t, const tokenstream& s) {
    const char* name = s.texts[size_t(t.text)].c_str();
    if (strcmp(sym(t.index).name, name) != 0) t.index = int16_t(symtabenter(name));
    return t.index;
}

void recordagain(tokenrecord t, const tokenstream& from, tokenstream& to) {
    if (t.text >= 0) {
        to.texts.push_back(from.texts[size_t(t.text)]);
        t.text = int32_t(to.texts.size() - 1);
    }
    to.tokens.push_back(t);
}

} // namespace

bool streampasscuts(tokenstream& s) {
    for (bool moved = true; moved;) {
        moved = false;
        for (const auto& c : s.cuts)
            if (s.next >= c.from && s.next < c.to) {
                s.next = c.to;
                moved = true;
            }
    }
    findstop(s);
    return s.next < s.tokens.size();
}

void streamtoken(tokenstream& s, int& number, int& index) {
    scanner.start = s.next;
    tokenrecord& t = s.tokens[s.next++];
    number = t.number;
    if (number == TOKNUMBER)
        index = symtabconst(t.value);
    else if (number == TOKSTRING)
        index = symtabtext(0, 0, s.texts[size_t(t.text)]);
    else if (t.text >= 0)
        index = streamname(t, s);
    else if (number == TOKOPEN || number == TOKCLOSE)
        scanner.bracket = char(t.index);
    if (scanner.record) recordagain(t, s, *scanner.record);
}

void streamseek(tokenstream& s, size_t next) {
    s.next = next;
    findstop(s);
}

void streamcut(tokenstream& s, size_t from, size_t to) {
    s.cuts.push_back({from, to});
    findstop(s);
}

void streamforget(tokenstream& s) {
    std::erase_if(s.cuts, [&s](const tokenstream::cut& c) { return c.to <= s.next; });
}

void streamrewind(tokenstream& s) {
    s.next = 0;
    s.cuts.clear();
    s.stop = s.tokens.size();
}

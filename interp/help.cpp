#include "interp/help.h"

#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/otherwords.h"
#include "interp/scanner.h"
#include "interp/tokenfil.h"

#include <cstdio>
#include <string>

namespace {

// The subject that the next token names; the token is released.
std::string subject(int token, int index) {
    if (token == TOKEND) return "top";
    if (token == TOKSTRING) {
        const char* const held = static_cast<const char*>(sym(index).val.ptr);
        const std::string text = held ? held : "";
        tempfree(index);
        return text;
    }
    if (token == TOKNAME) return sym(index).name;
    if (token == TOKNUMBER) {
        char text[32];
        snprintf(text, sizeof text, "%.15g", sym(index).val.rval);
        tempfree(index);
        return text;
    }
    const std::string word = tokenword(token);
    if (!isalpha(static_cast<unsigned char>(word[0])))
        tarnerror(further("as in HELP \"%s\"", word.c_str()), "use a quoted string for the help subject");
    return word;
}

void helphandler(const processop&) {
    int token, index;
    newtoken(token, index);
    const std::string topic = subject(token, index);
    while (token != TOKEND) {
        newtoken(token, index);
        if (token == TOKSTRING || token == TOKNUMBER) tempfree(index);
    }
    const int known = symtablookup(topic.c_str());
    const bool builtin = known > 0 && sym(known).type < 0;
    const std::string meant = builtin ? "" : otherword(topic);
    if (!meant.empty()) return tarnprint("%s\n", meant.c_str());
    if (!console.help(topic.c_str()))
        tarnerror(further("TARN.HLP should stand in %s", report.tarnpath.c_str()), "cannot open help file");
}

constexpr processrow rows[] = {{61, helphandler}};

} // namespace

void helprows() { processadd(rows, 1); }

#include "shell/hooks.h"

#include "interp/base/hooks.h"
#include "interp/base/report.h"
#include "shell/console.h"
#include "shell/helpview.h"
#include "shell/lineinput.h"
#include "shell/platform.h"

#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

int hookgetkey(bool wait) {
    if (!con.screen) return wait ? int(KEYENTER) : int(KEYNONE);
    for (;;) {
        const int key = conkey(wait);
        if (key == KEYBREAK) throw recoveryjump{6};
        if (key == KEYEND) return KEYENTER;
        if (key != KEYRESIZED) return key;
    }
}

const char* attributeof(int colour) {
    static const char* const attributes[16] = {"30", "34", "32", "36", "31", "35", "33", "37",
                                               "90", "94", "92", "96", "91", "95", "93", "97"};
    return attributes[colour & 15];
}

// Until the user assigns a colour, text has the colours of the terminal itself, which suit its background.
void hookcolour(int in, int out) {
    if (con.colours && report.recoveryset) inputcolours(attributeof(in), attributeof(out));
}

// Each choice has the first of its letters that no choice before it has.
char choicekey(const char* const* choices, int n) {
    for (const char* c = choices[n]; *c; c++) {
        bool taken = !isalnum(static_cast<unsigned char>(*c));
        for (int k = 0; k < n && !taken; k++) taken = choicekey(choices, k) == toupper(*c);
        if (!taken) return char(toupper(*c));
    }
    return char('1' + n);
}

int hookquestion(const char* title, const char* message, const char* const* choices, int nchoices) {
    if (!con.screen) return 0;
    conout("\n##%s: %s", title, message);
    for (;;) {
        conout("\n  [");
        for (int k = 0; k < nchoices; k++)
            conout("%s%c:%s", k ? ", " : "", choicekey(choices, k), choices[k]);
        conout("]: ");
        const int key = hookgetkey(true);
        for (int k = 0; k < nchoices; k++) {
            if (key >= 256 || toupper(key) != choicekey(choices, k)) continue;
            conout("%c\n", key);
            return k;
        }
    }
}

void hookerrortext(const char* text) {
    conflush();
    fputs(text, stderr);
}

bool hookeditfile(const char* path) { return coneditor(path); }
bool hookprintfile(const char* path) { return conprint(path); }

} // namespace

void consolehooksset() {
    console.write = conwrite;
    console.getkey = hookgetkey;
    console.breakpending = conbreak;
    console.colour = hookcolour;
    console.question = hookquestion;
    console.readline = lineinput;
    console.lineedit = lineeditor;
    console.errortext = hookerrortext;
    console.editfile = hookeditfile;
    console.printfile = hookprintfile;
    console.help = helpbrowse;
    console.largeblock = largepages;
}

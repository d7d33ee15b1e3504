#include "plot/askuser.h"

#include "interp/base/report.h"

#include <cctype>

namespace {

int choiceof(const userchoice* choices, int count, int key) {
    for (int k = 0; k < count; k++)
        if (choices[k].key != '*' && key < 256 && toupper(key) == toupper(choices[k].key)) return k;
    for (int k = 0; k < count; k++)
        if (choices[k].key == '*') return k;
    return 0;
}

} // namespace

int askuser(const char* title, const char* text, const userchoice* choices, int count) {
    constexpr int NOKEY = 0x1000;
    if (report.batch) return choiceof(choices, count, NOKEY);
    conout("\n##%s: %s\n", title, text);
    for (int k = 0; k < count; k++)
        conout(k + 1 < count ? "%c:%s, " : "%c:%s", choices[k].key, choices[k].answer);
    conout(" ");
    const int key = getkey(true);
    conout("\n");
    return choiceof(choices, count, key < 0 ? NOKEY : key);
}

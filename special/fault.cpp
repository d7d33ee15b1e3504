#include "special/fault.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

spfaultlist spfaults;

void spnote(spfaultkind kind, const char* format, ...) {
    char text[sizeof spfaults.at[0].text];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    const int kept = spfaults.count < spfaultlist::room ? spfaults.count : spfaultlist::room;
    for (int k = 0; k < kept; k++)
        if (spfaults.at[k].kind == kind && strcmp(spfaults.at[k].text, text) == 0) return;
    if (kept < spfaultlist::room) {
        spfaults.at[kept].kind = kind;
        memcpy(spfaults.at[kept].text, text, sizeof text);
    }
    spfaults.count++;
}

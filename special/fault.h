/* special/fault.h - how a mathematical function tells that an argument was out of its domain.
 * Owns:    the record of the faults met since the last spfaultclear; a routine returns its default value and
 * notes why. Callers: the routines of special/ and stats/ note; the builtin dispatch reads, prints the words
 * and clears. Never:   prints, throws, or changes a result. */
#pragma once

enum spfaultkind {
    SPNONE = 0,
    SPRANGEWARN, // warning "function: %s. argument out of range"; text is the function's name
    SPWARN,      // warning with the text as it stands
    SPRANGEERR,  // error "%s: argument out of range"; text is the function's name
    SPTYPEERR,   // error "%s: an expression is of the wrong type"
    SPSHAPEERR,  // error "Incorrect row/col shape of an argument of %s\n"
    SPERR        // error with the text as it stands
};

/* The faults of one call, in the order they came. Repeats of a text and what comes after the last
 * place are only counted. An error ends the statement, a warning does not. */
struct spfaultlist {
    static constexpr int room = 4;
    int count = 0; // noted in all
    struct {
        spfaultkind kind;
        char text[100];
    } at[room];
};
extern spfaultlist spfaults;

// Clears the record; the caller's duty before a call whose faults it will read.
inline void spfaultclear() { spfaults.count = 0; }
// Notes a fault; `format` is printf's. The routine goes on to return its default.
void spnote(spfaultkind kind, const char* format, ...) __attribute__((format(printf, 2, 3)));
inline void rangewarn(const char* name) { spnote(SPRANGEWARN, "%s", name); }
inline void rangeerr(const char* name) { spnote(SPRANGEERR, "%s", name); }

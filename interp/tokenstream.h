/* interp/tokenstream.h - tokens recorded once and delivered again at each pass of a FOR loop, in place of its
 * text.
 * Owns:    what is left out of the running pass.
 * Callers: the scanner, which delivers them as if they were read; loops, which record and rewind them.
 * Never:   parses, or knows the text they came from. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct tokenrecord {
    int16_t number;
    int16_t index; // name, keyword: the symbol; bracket, semicolon: its character
    int32_t text;  // place in texts of a string, or of a name, to find it anew if it was deleted; else -1
    double value;  // of a number
};
struct tokenstream {
    std::vector<tokenrecord> tokens;
    std::vector<std::string> texts;
    size_t next = 0; // the token to be delivered
    size_t stop = 0; // where delivery has to look at cuts: the start of the nearest one, or the end
    struct cut {
        size_t from, to;
    };
    std::vector<cut> cuts; // parts left out of this pass (the branch of an IF that is not taken)
};

bool streampasscuts(tokenstream& s); // goes on behind a cut; false at the end
inline bool streamready(tokenstream& s) { return s.next < s.stop || streampasscuts(s); }
void streamtoken(tokenstream& s, int& number, int& index); // the next token, as newtoken gives it
void streamseek(tokenstream& s, size_t next);
void streamcut(tokenstream& s, size_t from, size_t to); // leaves tokens from..to out of this pass
void streamforget(tokenstream& s);                      // nothing before the next token is read again
void streamrewind(tokenstream& s);                      // to the start of a pass, with no cuts

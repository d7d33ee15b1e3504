// What was printed, less what errors tell beyond their fixed words: the warning right behind an error, with
// the lines that are indented below it. Tests of one room go by the fixed words; tests/data/mistakes.txt has
// the whole texts.
#pragma once

#include <string>

inline std::string fixedwords(const std::string& printed) {
    std::string kept;
    bool error = false,
         further = false; // the line before was an error's; it belongs to the warning behind one
    for (size_t at = 0; at < printed.size();) {
        const size_t feed = printed.find('\n', at);
        const std::string row = printed.substr(at, feed == std::string::npos ? feed : feed - at + 1);
        at += row.size();
        further = further ? row.starts_with("    ") : error && row.starts_with("Warning: ");
        if (further) {
            error = false;
            continue;
        }
        error = row.starts_with("##") || (error && row == "\n"); // some fixed words end in a line feed
        kept += row;
    }
    return kept;
}

/* interp/diskfiles.h - a file that is written beside the one it is to replace.
 * Owns:    the file being written, until it is kept or dropped.
 * Callers: SAVE.
 * Never:   leaves a half-written file under the name that was asked for. */
#pragma once

#include <cstdio>
#include <string>

struct newfile {
    std::string target;   // the file to be made, links followed
    std::string beside;   // what is written; empty when target is no ordinary file and is written itself
    FILE* file = nullptr; // open for binary writing

    newfile() = default;
    newfile(const newfile&) = delete;
    newfile& operator=(const newfile&) = delete;
    ~newfile(); // drops what was not kept
};

bool newfileopen(newfile& f,
                 const std::string& path); // false: no file can be made there, or it may not be replaced
bool newfilekeep(
    newfile& f); // puts it in place; false if a byte could not be written: then the old one stands

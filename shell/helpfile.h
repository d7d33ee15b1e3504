/* shell/helpfile.h - the help file TARN.HLP: an index of topics, each with its text and a menu.
 * Owns:    the bytes of the file and its index while a helpbook lives.
 * Callers: the help viewer.
 * Never:   prints or reads a key. A damaged file gives fewer topics or shorter ones, nothing else. */
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

struct helpbook {
    std::string bytes;
    std::vector<std::pair<std::string, size_t>> index; // name in small letters, offset; ascending names
};

struct helpchoice {
    std::string text, target;
};

struct helptopic {
    std::vector<std::string> lines;
    std::vector<helpchoice> menu;
    int columns = 2; // of the menu
};

bool helpopen(helpbook& book, const std::string& path);

// The topic's place in the file; a name that is not there gives minus its place in the index, less 1. "#" is
// "number sign" in the index, which such a line would end.
long helpfind(const helpbook& book, const std::string& name);
helptopic helpread(const helpbook& book, size_t offset);
// For a name that is not there: the topics that begin like it, from helpfind's place forwards, then
// backwards.
helptopic helpnear(const helpbook& book, const std::string& name);

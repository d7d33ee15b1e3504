// The words of other systems: none is one of ours, what they are answered by is.
#include "interp/otherwords.h"

#include "interp/base/symtab.h"
#include "support/harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <vector>

namespace {

struct OtherWords : testing::Test {
    void SetUp() override { harnessstart(); }
};

bool known(std::string name) {
    for (char& c : name) c = char(toupper(static_cast<unsigned char>(c)));
    const int idx = symtablookup(name.c_str());
    return idx >= 0 && sym(idx).type != UNKNOWN;
}

// The words of capitals in a text, of three letters and more.
std::vector<std::string> capitals(const std::string& text) {
    std::vector<std::string> found;
    std::string word;
    for (const char c : text + " ") {
        if (isalnum(static_cast<unsigned char>(c))) {
            word += c;
            continue;
        }
        const bool capital =
            std::all_of(word.begin(), word.end(), [](char l) { return isupper(l) || isdigit(l); });
        if (word.size() >= 3 && capital && isalpha(word[0])) found.push_back(word);
        word.clear();
    }
    return found;
}

TEST_F(OtherWords, AreAnsweredByOurs) {
    for (const char* word :
         {"quit", "ZEROS", "linspace", "ln", "std", "load", "ode45", "fminsearch", "printf", "eye", "rand",
          "who", "subplot", "pow", "sd", "solve", "read.csv", "true"}) {
        EXPECT_NE(otherword(word), "") << word;
        EXPECT_FALSE(known(word)) << word;
        for (const std::string& ours : capitals(otherword(word)))
            EXPECT_TRUE(known(ours)) << word << ": " << ours;
    }
    EXPECT_EQ(otherword("SQRT"), "");
    EXPECT_EQ(otherword(""), "");
}

TEST_F(OtherWords, AreToldWhereTheyMeanNothing) {
    EXPECT_EQ(harnessrun("quit"), "   value = unknown\nWarning: EXIT ends the session\n");
    EXPECT_EQ(harnessrun("QUIT = 3; QUIT"), "  QUIT = 3\n");
    EXPECT_EQ(harnessrun("HELP linspace"), "0:1!5 is five points from 0 to 1\n");
    EXPECT_EQ(harnessrun("WARNSW = 0; ls"), "   value = unknown\n");
}

} // namespace

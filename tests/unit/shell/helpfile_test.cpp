#include "shell/helpfile.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

struct HelpFile : testing::Test {
    std::string path = testing::TempDir() + "help" + std::to_string(getpid()) + ".HLP";
    helpbook book;
    void write(const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
    void TearDown() override { remove(path.c_str()); }
};

const std::string good = "3\r\nalpha:51\r\nalpine:51\r\nbeta:90\r\n# no more\r\n\r\n"
                         "# head\r\n# head\r\nfirst line\r\n\r\n{3\r\nB#beta\r\n}\r\nlast\r\n{2\r\n}\r\n";

TEST_F(HelpFile, TopicsMenusAndNeighbours) {
    write(good);
    ASSERT_TRUE(helpopen(book, path));
    ASSERT_EQ(book.index.size(), 3u);
    EXPECT_EQ(helpfind(book, "ALPHA"), 51);
    EXPECT_EQ(helpfind(book, "aa"), -1);
    EXPECT_EQ(helpfind(book, "alpi"), -2);
    EXPECT_EQ(helpfind(book, "z"), -4);
    write("1\r\nnumber sign:40\r\n" + std::string(40, ' '));
    ASSERT_TRUE(helpopen(book, path));
    EXPECT_EQ(helpfind(book, "#"), 40) << "the index cannot spell it";
    write(good);
    ASSERT_TRUE(helpopen(book, path));
    const helptopic near = helpnear(book, "ALPS");
    EXPECT_EQ(near.lines[0], "Choice <ALPS> not found in helpfile. ");
    ASSERT_EQ(near.menu.size(), 2u);
    EXPECT_EQ(near.menu[0].target, "alpine");
    EXPECT_TRUE(helpnear(book, "zz").menu.empty());
}

TEST_F(HelpFile, ATopicEndsAtItsMenu) {
    write(good);
    ASSERT_TRUE(helpopen(book, path));
    const helptopic t = helpread(book, size_t(good.find("# head")));
    EXPECT_EQ(t.lines, (std::vector<std::string>{"first line", ""}));
    EXPECT_EQ(t.columns, 3);
    ASSERT_EQ(t.menu.size(), 1u);
    EXPECT_EQ(t.menu[0].target, "beta");
}

// What is damaged is left out; nothing is read beyond the end.
TEST_F(HelpFile, DamagedFiles) {
    EXPECT_FALSE(helpopen(book, path + ".missing"));
    const char* const damaged[] = {
        "", "x", "999999999999\r\n", "2\r\nalpha\r\nbeta:-5\r\n", "1\r\na:999999\r\n", "-3\r\na:1\r\n"};
    for (const char* text : damaged) {
        write(text);
        ASSERT_TRUE(helpopen(book, path)) << text;
        EXPECT_TRUE(book.index.empty()) << text;
        EXPECT_EQ(helpfind(book, "a"), -1) << text;
    }
    write("1\r\na:8\r\n{9\r\nno mark\r\n#nothing\r\nB#b");
    ASSERT_TRUE(helpopen(book, path));
    const helptopic t = helpread(book, 8);
    EXPECT_EQ(t.columns, 4);
    ASSERT_EQ(t.menu.size(), 1u);
    EXPECT_TRUE(helpread(book, book.bytes.size()).lines.empty());
}

} // namespace

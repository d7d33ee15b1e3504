// Text under edit, key by key, and the view of the log.
#include "shell/console.h"
#include "shell/linebuffer.h"
#include "shell/logview.h"

#include <gtest/gtest.h>

namespace {

// Keys as a string: characters stand for themselves, < > for the arrows, ^ v for up and down, [ ] for Home
// and End, B for Backspace, D for Delete, I for Insert. The cursor is shown as |.
std::string edited(linebuffer b, const char* keys, editresult* last = nullptr) {
    for (const char* k = keys; *k; k++) {
        int key = static_cast<unsigned char>(*k);
        switch (*k) {
        case '<': key = KEYLEFT; break;
        case '>': key = KEYRIGHT; break;
        case '^': key = KEYUP; break;
        case 'v': key = KEYDOWN; break;
        case '[': key = KEYHOME; break;
        case ']': key = KEYENDKEY; break;
        case 'B': key = '\b'; break;
        case 'D': key = KEYDELETE; break;
        case 'I': key = KEYINSERT; break;
        }
        const editresult result = editorkey(b, key);
        if (last) *last = result;
    }
    return b.text.substr(0, b.pos) + "|" + b.text.substr(b.pos);
}

linebuffer with(const char* text, size_t pos) {
    linebuffer b;
    b.text = text;
    b.pos = pos;
    return b;
}

TEST(LineEditor, Keys) {
    const struct {
        const char* text;
        size_t pos;
        const char *keys, *expected;
    } rows[] = {
        {"X=3", 3, "4", "X=34|"},
        {"X=3", 0, "<", "|X=3"},
        {"X=3", 3, ">>", "X=3  |"}, // Right past the end adds a blank
        {"X=3", 3, "[Y", "Y|X=3"},
        {"X=3", 0, "]B", "X=|"},
        {"X=3", 0, "B", "|X=3"},
        {"X=3", 3, "D", "X=3|"},
        {"X=3", 1, "D", "X|3"},
        {"X=3", 0, "IY", "Y|=3"},
        {"X=3", 0, "IIY", "Y|X=3"},
        {"X=3", 3, "IY", "X=3Y|"},
        {"X=3", 2, "\t", "X= |3"},
        {"caf\xc3\xa9", 5, "B", "caf|"},            // whole characters go
        {"caf\xc3\xa9s", 6, "<<", "caf|\xc3\xa9s"}, //
        {"\xc3\xa9t", 0, "Ie", "e|t"},
        {"t", 0, "I\xc3\xa9", "\xc3\xa9|"},
        {"X=3", 1, "^", "X|=3"}, // one row only
        {"X=3", 1, "v", "X|=3"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(edited(with(row.text, row.pos), row.keys), row.expected) << row.text << " " << row.keys;
}

TEST(LineEditor, RowsAreSeventyNineColumns) {
    const std::string text = std::string(79, 'a') + std::string(79, 'b') + "ccc";
    EXPECT_EQ(edited(with(text.c_str(), 5), "v").find('|'), 84u);
    EXPECT_EQ(edited(with(text.c_str(), 84), "^").find('|'), 5u);
    EXPECT_EQ(edited(with(text.c_str(), 100), "v").find('|'), text.size()); // the last row is shorter
    EXPECT_EQ(edited(with(text.c_str(), 5), "vvv").find('|'), text.size());
}

TEST(LineEditor, EndsOfEditing) {
    editresult last;
    EXPECT_EQ(edited(with("X=3", 1), "\r", &last), "X|=3");
    EXPECT_EQ(last, editresult::done);
    EXPECT_EQ(edited(with("X=3", 1), "\x1b", &last), "|");
    EXPECT_EQ(last, editresult::dropped);
    EXPECT_EQ(edited(with("X=3", 1), "\x07", &last), "X|=3");
    EXPECT_EQ(last, editresult::ignored);
}

TEST(LineInput, ControlKeys) {
    const struct {
        size_t pos;
        int key;
        const char* expected;
    } rows[] = {{4, 1, "|X = 35"},     {4, 5, "X = 35|"},   {4, 2, "X =| 35"},       {4, 6, "X = 3|5"},
                {4, 11, "X = |"},      {4, 21, "|35"},      {4, 23, "X |35"},        {6, 27, "|"},
                {6, '\t', "X = 35 |"}, {2, '\b', "X|= 35"}, {6, KEYRIGHT, "X = 35|"}};
    for (const auto& row : rows) {
        linebuffer b = with("X = 35", row.pos);
        inputkey(b, row.key);
        EXPECT_EQ(b.text.substr(0, b.pos) + "|" + b.text.substr(b.pos), row.expected) << row.key;
    }
    linebuffer b;
    EXPECT_EQ(inputkey(b, KEYENTER), editresult::done);
    EXPECT_EQ(inputkey(b, KEYF1), editresult::ignored);
}

TEST(LineInput, BytesOfACharacterAreWaitedFor) {
    linebuffer b;
    const char* bytes = "\xe2\x82\xac";
    const bool whole[] = {false, false, true};
    for (int k = 0; k < 3; k++) {
        inputkey(b, static_cast<unsigned char>(bytes[k]));
        EXPECT_EQ(wholecharacters(b), whole[k]);
    }
}

TEST(LineInput, PlaceOnTheScreen) {
    const struct {
        const char* text;
        size_t pos;
        int start, width, row, column;
    } rows[] = {
        {"abc", 3, 2, 10, 0, 5},
        {"abcdefgh", 8, 2, 10, 1, 0},
        {"abcdefghi", 9, 2, 10, 1, 1},
        {"", 0, 2, 10, 0, 2},
        {"\xc3\xa9x", 2, 0, 10, 0, 1},
        {"\xe4\xb8\xad", 3, 0, 10, 0, 2},
        {"abcdefghi\xe4\xb8\xad", 12, 0, 10, 1, 2}, // a wide character does not straddle the edge
    };
    for (const auto& row : rows) {
        const textplace at = placeof(row.text, row.pos, row.start, row.width);
        EXPECT_EQ(at.row, row.row) << row.text;
        EXPECT_EQ(at.column, row.column) << row.text;
    }
}

logview viewof(int lines) {
    std::string log;
    for (int k = 1; k <= lines; k++) log += "line " + std::to_string(k) + "\n";
    return logviewmake(log + "* X = ");
}

TEST(LogView, LongLinesCountAsSeveral) {
    const logview v = logviewmake("a\n" + std::string(170, 'x') + "\r\n\n* ");
    ASSERT_EQ(v.lines.size(), 6u);
    EXPECT_EQ(v.lines[1].size(), 80u);
    EXPECT_EQ(v.lines[3].size(), 10u);
    EXPECT_EQ(v.lines[4], "");
    EXPECT_EQ(v.at, 5u);
    EXPECT_EQ(logviewmake("").lines.size(), 1u);
}

TEST(LogView, KeysMoveAndLeave) {
    const struct {
        size_t from;
        int key;
        viewresult result;
        size_t to;
    } rows[] = {
        {100, KEYUP, viewresult::going, 99},    {0, KEYUP, viewresult::going, 0},
        {5, KEYDOWN, viewresult::going, 6},     {100, KEYDOWN, viewresult::leave, 100},
        {100, KEYPGUP, viewresult::going, 78},  {10, KEYPGUP, viewresult::going, 0},
        {10, KEYPGDN, viewresult::going, 38},   {74, KEYPGDN, viewresult::going, 100},
        {75, KEYPGDN, viewresult::leave, 75},   {60, KEYHOME, viewresult::going, 0},
        {60, KEYENDKEY, viewresult::leave, 60}, {60, KEYENTER, viewresult::leave, 60},
        {60, 'Q', viewresult::leavekey, 60},    {60, KEYINSERT, viewresult::take, 60},
    };
    for (const auto& row : rows) {
        logview v = viewof(100);
        v.at = row.from;
        EXPECT_EQ(logviewkey(v, row.key), row.result) << row.from << " " << row.key;
        EXPECT_EQ(v.at, row.to) << row.from << " " << row.key;
    }
    logview v = viewof(3);
    logviewkey(v, KEYLEFT);
    EXPECT_EQ(v.column, 1);
    for (int k = 0; k < 100; k++) logviewkey(v, KEYRIGHT);
    EXPECT_EQ(v.column, 80);
}

TEST(LogView, TakenLinesLoseTheirPrompt) {
    const struct {
        const char *line, *taken;
    } rows[] = {{"* X = 3", "X = 3"},        {"> + 4", "+ 4"}, {": + 4", "+ 4"},
                {"  X = 3", "  X = 3"},      {"*X", "*X"},     {"", ""},
                {"Warning: x", "Warning: x"}};
    for (const auto& row : rows) EXPECT_EQ(logviewline(logviewmake(row.line)), row.taken);
    EXPECT_EQ(logviewline(logviewmake(std::string(80, 'x'))).size(), 78u);
}

TEST(LogView, TheCursorStaysInSight) {
    logview v = viewof(100);
    v.at = 50;
    EXPECT_EQ(logviewtop(v, 77, 24), 50u);
    EXPECT_EQ(logviewtop(v, 10, 24), 27u);
    EXPECT_EQ(logviewtop(v, 40, 24), 40u);
}

} // namespace

// Calls of builtins that are refused: every builtin by its signature, and tests/data/badcalls.txt by family.
// Whatever is refused, the objects of the session stay as they are and the next statement runs.
#include "funcs/builtin.h"
#include "support/livesession.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int UNCHECKED = -100;
constexpr const char* OBJECTS =
    "X = 0.5; M = 3&1&2; SQ = (1&'2)&(3&'4); S = \"abc\"; T = \"one\"&\"two\"\n"
    "FUNCTION F(U) = U^2\nFUNCTION F2(U,V) = U+V\nFUNCTION Y'T(T) = -Y\nINITIAL Y(0) = 1\n"
    "CONSTRAINTS Q = {A + B <= 3}\nDRAW C = 1:3\nTITLE NOTE = \"hi\"\n";
constexpr const char* ALL = "TYPE X, M, SQ, S, T, F, F2, Y, Q, C, NOTE; GETDATA(C); GETWINDOW(W)\n";

struct BadCalls : LiveSession {
    std::string was;
    void SetUp() override {
        LiveSession::SetUp();
        start();
        run(OBJECTS);
        was = run(ALL);
        ASSERT_EQ(was.find("##"), std::string::npos) << was;
    }
    void TearDown() override {
        EXPECT_EQ(run(ALL), was) << "the objects have changed";
        EXPECT_EQ(run("TYPE 1+1"), "    = 2\n");
        LiveSession::TearDown();
    }
};

// What a slot of a signature takes, and something that it does not.
struct slotrow {
    int kind;
    const char *good, *bad, *words;
};
constexpr slotrow slots[] = {
    {4, "X", "S", "scalar\nWarning: S is a string"},
    {22, "X", "F2'V",
     "scalar or matrix\nWarning: F2'V is a derivative: it has a value with arguments behind it"},
    {5, "F", "X", "function\nWarning: X is a scalar"},
    {6, "M", "X", "matrix\nWarning: X is a scalar"},
    {9, "S", "M", "string\nWarning: M is a 3 by 1 matrix"},
    {13, "NOTE", "W", "title\nWarning: W is a window"},
    {20, "X", nullptr, ""},
    {24, "K", "S", "scalar, unknown or formal\nWarning: S is a string"},
    {25, "F", "T", "function or matrix\nWarning: T is a 2 by 1 string matrix"},
    {26, "Q", "C", "constraints or matrix\nWarning: C is a curve"},
    {27, "M", "Q", "matrix or stringmatrix\nWarning: Q is a constraint set"},
    {28, "S", "SIN", "string or string matrix\nWarning: SIN is a builtin function"},
};
const slotrow& slotof(int kind) {
    for (const slotrow& row : slots)
        if (row.kind == std::abs(kind)) return row;
    ADD_FAILURE() << "a slot of kind " << kind;
    return slots[0];
}

struct builtin {
    std::string name;
    std::vector<int> slots;
    int mandatory = 0;
    std::string call(size_t count, size_t wrong = 99) const {
        std::string list;
        for (size_t k = 0; k < count; k++) {
            const slotrow& row = slotof(k < slots.size() ? slots[k] : 4);
            list += (k ? "," : "") + std::string(k == wrong ? row.bad : row.good);
        }
        return "TYPE " + name + "(" + list + ")";
    }
};

std::vector<builtin> checkedbuiltins() {
    std::vector<builtin> found;
    for (const symbol& s : symtab.at) {
        const bool present = scalarbuiltinrow(s.type) || numberbuiltinrow(s.type) || valuebuiltinrow(s.type);
        if (s.type >= 0 || !present || s.val.argd[0] == UNCHECKED) continue;
        builtin b{s.name, {}, 0};
        for (int k = 1; k <= s.val.argd[0]; k++) {
            b.slots.push_back(s.val.argd[k]);
            b.mandatory += s.val.argd[k] > 0;
        }
        found.push_back(b);
    }
    return found;
}

TEST_F(BadCalls, CountsOfArguments) {
    const auto all = checkedbuiltins();
    EXPECT_GT(all.size(), 200u);
    for (const builtin& b : all) {
        const std::string words = "##Error: function " + b.name + " takes " + std::to_string(b.slots.size()) +
                                  " arguments; " + std::to_string(b.mandatory) + " are mandatory\n";
        EXPECT_EQ(run(b.call(b.slots.size() + 1)), words);
        if (b.mandatory > 0) { EXPECT_EQ(run(b.call(size_t(b.mandatory) - 1)), words); }
    }
}

TEST_F(BadCalls, KindsOfArguments) {
    for (const builtin& b : checkedbuiltins())
        for (size_t k = 0; k < b.slots.size(); k++) {
            const slotrow& row = slotof(b.slots[k]);
            if (!row.bad) continue;
            const size_t count = std::max(k + 1, size_t(b.mandatory));
            EXPECT_EQ(run(b.call(count, k)), "##Error: function " + b.name + " argument " +
                                                 std::to_string(k + 1) + ": expected " + row.words + "\n");
        }
}

// A call stands on a line of its own, what it prints behind it, indented; "## " begins a family.
TEST_F(BadCalls, Families) {
    std::ifstream in(TESTDATADIR "/badcalls.txt");
    std::string call, wanted;
    int calls = 0;
    const auto check = [&] {
        if (call.empty()) return;
        std::string got = run("TYPE " + call), lines;
        std::erase(got, '\r');
        for (size_t at = 0, end; at < got.size(); at = end + 1) {
            end = std::min(got.find('\n', at), got.size());
            if (end > at) lines += "  " + got.substr(at, end - at) + "\n";
        }
        EXPECT_EQ(lines, wanted) << call;
        calls++;
    };
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == ' ') {
            wanted += line + "\n";
            continue;
        }
        check();
        call = line;
        wanted.clear();
    }
    check();
    EXPECT_GT(calls, 150);
}

} // namespace

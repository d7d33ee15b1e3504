// Every builtin that the vocabulary names has a routine, and every routine a name.
// tests/data/builtins_awaited.txt lists the names that have none yet; a name that has got one must leave the
// list.
#include "funcs/builtin.h"
#include "support/livesession.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

namespace {

std::set<std::string> awaited() {
    std::ifstream in(TESTDATADIR "/builtins_awaited.txt");
    std::set<std::string> names;
    for (std::string name; in >> name;) names.insert(name);
    return names;
}

// The operators of function bodies live in the evaluator.
bool isbodyoperator(int code) { return code <= -500 && code >= -504; }

bool hasroutine(int code) {
    return scalarbuiltinrow(code) || numberbuiltinrow(code) || valuebuiltinrow(code) || isbodyoperator(code);
}

using Builtins = LiveSession;

TEST_F(Builtins, NamesAndRoutinesMatch) {
    start();
    const std::set<std::string> pending = awaited();
    std::set<int> named;
    for (const symbol& s : symtab.at) {
        if (s.type >= 0) continue;
        named.insert(s.type);
        const bool listed = pending.count(s.name) != 0;
        EXPECT_NE(hasroutine(s.type), listed)
            << s.name << (listed ? " has a routine now: take it off the list" : " has no routine");
    }
    for (const std::string& name : pending)
        EXPECT_GT(symtablookup(name.c_str()), 0) << name << " is no builtin";
    for (int code = -1; code > -1000; code--)
        EXPECT_TRUE(!hasroutine(code) || named.count(code)) << code << " has no name";
}

} // namespace

// The node store: the order of numbers, growth, the limit, and what the sweep gives back.
#include "funcs/trinode.h"

#include "interp/base/parser.h"
#include "interp/base/report.h"

#include <gtest/gtest.h>

namespace {

struct TrinodeTest : testing::Test {
    void SetUp() override {
        symtabstart();
        parserreset();
        trinodestart();
    }
    // A function whose body is a chain of `links` sums over symbol x.
    int chain(const char* name, int x, int links) {
        int body = trialloc(TREEIDENTITY, x, 0);
        for (int k = 1; k < links; k++) body = trialloc(TREEPLUS, body, x);
        const int f = symtabenter(name);
        sym(f).type = USERFUNCTION;
        sym(f).index = int16_t(trialloc(TREEHEADER, trialloc(TREEFORMAL, 0, x), body));
        return f;
    }
};

TEST_F(TrinodeTest, NodesComeInAscendingOrder) {
    EXPECT_EQ(trialloc(TREEPLUS, 5, FORMALBASE + 1), -1);
    EXPECT_EQ(trialloc(TREEPLUS, -1, 7), -2);
    EXPECT_EQ(tri(-1).left, 5);
    EXPECT_EQ(tri(-1).right, FORMALBASE + 1);
    trifree(-1);
    EXPECT_EQ(trialloc(TREENOT, 5, 0), -1);
}

TEST_F(TrinodeTest, GrowsOnceThenRefusesAndStaysUsable) {
    for (int n = 1; n < TRINODEMOST; n++) ASSERT_EQ(trialloc(TREEPLUS, 1, 2), -n);
    EXPECT_THROW(trialloc(TREEPLUS, 1, 2), recoveryjump);
    trireclaim(); // nothing holds the nodes
    EXPECT_EQ(trifreecount(), TRINODEMOST - 1);
    EXPECT_EQ(trialloc(TREEPLUS, 1, 2), -1);
}

TEST_F(TrinodeTest, SweepKeepsWhatFunctionsReach) {
    const int x = symtabenter("X");
    const int f = chain("F", x, 10000),
              g = chain("G", x, 3); // a chain deeper than a recursive walk should go
    const int shared = funcbody(f);
    trimutable(sym(g).index).right = int16_t(trialloc(TREETIMES, shared, shared)); // G's old body is lost
    const int before = trifreecount();
    trireclaim();
    EXPECT_EQ(trifreecount(), before + 3);
    EXPECT_EQ(tri(funcbody(g)).left, shared);
    EXPECT_EQ(tri(shared).op, TREEPLUS);
    sym(f).type = UNKNOWN; // the body lives on in G; header and formal go
    trireclaim();
    EXPECT_EQ(trifreecount(), before + 5);
    sym(g).type = UNKNOWN;
    trireclaim();
    EXPECT_EQ(trifreecount(), TRINODEFIRST - 1);
}

TEST_F(TrinodeTest, UsesSeesSharedTreesOnce) {
    const int x = symtabenter("X"), y = symtabenter("Y"), z = symtabenter("Z");
    int ref = trialloc(TREEPLUS, x, y);
    for (int k = 0; k < 60; k++) ref = trialloc(TREETIMES, ref, ref); // 2^60 paths
    EXPECT_TRUE(treeuses(ref, x));
    EXPECT_FALSE(treeuses(ref, z));
    const int call = tricall(z, {x, ref, FORMALBASE + 2});
    EXPECT_TRUE(treeuses(call, z));
    EXPECT_EQ(tri(tri(tri(tri(call).left).left).left).right, FORMALBASE + 2);
}

TEST_F(TrinodeTest, FormalsAreFoundByNumber) {
    const int f = chain("F", symtabenter("X"), 2);
    EXPECT_EQ(formalcount(f), 1);
    EXPECT_EQ(formalref(f, 1), symtablookup("X"));
    EXPECT_EQ(formalref(f, 2), 0);
    EXPECT_TRUE(symtabused(symtablookup("X")));
}

} // namespace

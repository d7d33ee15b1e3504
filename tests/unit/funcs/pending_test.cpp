// Operators that wait and run in one pass give what they give one by one: every bit, every count, every
// message.
#include "funcs/pending.h"

#include "funcs/elementwise.h"
#include "funcs/operators.h"
#include "unit/funcs/session.h"

#include <cstring>
#include <random>

namespace {

struct pendingtest : funcstest {
    void SetUp() override {
        funcstest::SetUp();
        pendingreset();
        fp.limit = 3;
    }
    std::mt19937 random{4};
    int names = 0; // given so far
    int pick(int n) { return int(random() % unsigned(n)); }

    harrayptr large(bool faulty) {
        harrayptr m(harraynew(80, 70));
        for (size_t k = 1; k <= harraycount(m.get()); k++) cells(m.get())[k] = 1 + pick(50) * 0.125;
        if (faulty) cells(m.get())[1 + size_t(pick(5600))] = pick(2) ? 0 : 1e300;
        return m;
    }

    /* One random expression, evaluated as the parser would, and at once beside it. Leaves are named and
     * temporary matrices and numbers; `depth` operators deep. */
    struct pair {
        int idx;         // the operand of the road that waits
        harrayptr value; // what it is at once
    };
    pair leaf(bool faulty) {
        const int kind = pick(4);
        if (kind == 0) {
            const double x = pick(9) - 2;
            return {scalar(x), filled(1, 1, {x})};
        }
        harrayptr m = large(faulty), copy(harraydup(m.get()));
        if (kind == 1) return {symtabmatrix(0, 0, std::move(m)), std::move(copy)};
        const std::string name = "M" + std::to_string(++names);
        const int idx = named(name.c_str(), MATRIX);
        sym(idx).val.ptr = m.release();
        return {idx, std::move(copy)};
    }
    pair expression(int depth, bool faulty) {
        if (depth == 0) return leaf(faulty);
        static const int ops[] = {TOKPLUS,         TOKMINUS, TOKCELLTIMES, TOKCELLDIVIDE,
                                  TOKDIVIDE,       TOKLESS,  TOKLESSEQUAL, TOKGREATER,
                                  TOKGREATEREQUAL, TOKAND,   TOKOR,        TOKEQUAL};
        const int op = ops[size_t(pick(12))];
        pair a = expression(depth - 1, faulty), b = expression(pick(depth), faulty);
        binop(op, a.idx, b.idx);
        harrayptr value;
        quiet([&] { value = elementwise(op, a.value.get(), b.value.get()); });
        return {polpop(), std::move(value)};
    }
    // The reference keeps its own account of faults and messages.
    fpstate referencefaults;
    std::string referencetext;
    void quiet(const std::function<void()>& f) {
        const fpstate kept = fp;
        std::string* const sink = report.capture;
        fp = referencefaults;
        report.capture = &referencetext;
        f();
        referencefaults = fp;
        fp = kept;
        report.capture = sink;
    }
    void roundof(bool faulty) {
        parserreset();
        out.clear();
        referencetext.clear();
        fpclear();
        referencefaults = fp;
        pair r = expression(1 + pick(4), faulty);
        pendingfinish();
        EXPECT_EQ(out, referencetext);
        EXPECT_EQ(fp.total, referencefaults.total);
        EXPECT_EQ(fp.overflow, referencefaults.overflow);
        EXPECT_EQ(fp.divzero, referencefaults.divzero);
        if (sym(r.idx).type != MATRIX) {
            EXPECT_EQ(sym(r.idx).val.rval, cells(r.value.get())[1]);
        } else {
            const harray* m = matrixof(r.idx);
            ASSERT_EQ(harraycount(m), harraycount(r.value.get()));
            EXPECT_EQ(memcmp(cells(m) + 1, cells(r.value.get()) + 1, harraycount(m) * sizeof(double)), 0);
        }
        tempfree(r.idx);
        int left = 0;
        for (int i = 1; i < SYMTABSIZE; i++) left += istemporary(i);
        EXPECT_EQ(left, 0);
    }
};

TEST_F(pendingtest, bothRoadsAgree) {
    for (int k = 0; k < 300; k++) roundof(false);
}
TEST_F(pendingtest, bothRoadsAgreeWhenCellsFault) {
    for (int k = 0; k < 300; k++) roundof(true);
}

TEST_F(pendingtest, largeOperandsWaitAndSmallOnesDoNot) {
    const int a = symtabmatrix(0, 0, large(false));
    binop(TOKPLUS, a, scalar(1));
    EXPECT_EQ(pending.count, 1);
    binop(TOKPLUS, matrix(2, 2, {1}), scalar(1));
    EXPECT_EQ(pending.count, 0) << "the order of faults: what waited was finished first";
    EXPECT_NE(matrixof(parser.polstack[0]), nullptr);
}

// An error between sweeps the temporaries; what waited then is forgotten, whoever has its place now.
TEST_F(pendingtest, anErrorDropsWhatWaited) {
    binop(TOKPLUS, symtabmatrix(0, 0, large(false)), symtabmatrix(0, 0, large(false)));
    EXPECT_EQ(pending.count, 1);
    symtabsweep();
    parserreset();
    const int reused = matrix(1, 2, {5, 6});
    pendingfinish();
    EXPECT_EQ(shown(reused), "1x2: 5 6");
    EXPECT_EQ(pending.count, 0);
}

// Many expressions side by side, as a list of arguments might leave them.
TEST_F(pendingtest, moreThanWaitAtOnce) {
    std::vector<int> results;
    for (int k = 0; k < 9; k++) {
        binop(TOKCELLTIMES, scalar(k), symtabmatrix(0, 0, filled(70, 70, {1})));
        results.push_back(polpop());
    }
    pendingfinish();
    for (int k = 0; k < 9; k++) EXPECT_EQ(cells(matrixof(results[size_t(k)]))[4900], k);
}

} // namespace

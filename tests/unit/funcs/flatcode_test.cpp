// Compiled code against the walk of the tree: the same bits, the same faults, the same words, the same last
// values.
#include "unit/funcs/bodywriter.h"
#include "unit/funcs/treeread.h"

#include <bit>
#include <cmath>
#include <random>

namespace {

// What a run leaves behind, as far as anyone can tell.
struct traces {
    std::vector<double> results;
    std::string printed;
    unsigned total, overflow, divzero, zerodivzero;
    std::vector<double> lastvalues;
    bool operator==(const traces& other) const {
        const auto same = [](const std::vector<double>& a, const std::vector<double>& b) {
            if (a.size() != b.size()) return false;
            for (size_t k = 0; k < a.size(); k++)
                if (std::bit_cast<uint64_t>(a[k]) != std::bit_cast<uint64_t>(b[k])) return false;
            return true;
        };
        return same(results, other.results) && same(lastvalues, other.lastvalues) &&
               printed == other.printed && total == other.total && overflow == other.overflow &&
               divzero == other.divzero && zerodivzero == other.zerodivzero;
    }
};
std::ostream& operator<<(std::ostream& out, const traces& t) {
    out << t.total << " faults, printed \"" << t.printed << "\" results";
    for (size_t k = 0; k < t.results.size() && k < 12; k++) out << ' ' << t.results[k];
    out << " last";
    for (double x : t.lastvalues) out << ' ' << x;
    return out;
}

struct FlatTest : FuncsTest {
    bodywriter writer{std::mt19937(20251201), 0, true};

    void SetUp() override {
        FuncsTest::SetUp();
        set("A", 1.75);
        set("Z", 0);
        set("I", 11);
        set("J", -4);
        matrix("M", 3, 2, {1, 2, 3, 4, 5, 6});
    }
    std::vector<double> points(size_t n) {
        static const double hard[] = {0, 1, -1, 2, 3, 0.5, -2.25, 1e200, -1e200, 1e-200, 700, 1e308};
        std::vector<double> x(n);
        const bool easy = writer.pick(2);
        for (size_t k = 0; k < n; k++)
            x[k] = easy || writer.pick(9) ? double(writer.pick(400)) / 80 : hard[writer.pick(12)];
        return x;
    }
    // Runs the action with compiled code on or off, from the same state.
    template <class Action> traces observe(bool flatcode, Action&& action) {
        for (int f = 0; f < writer.functions; f++)
            sym(symtablookup(("P" + std::to_string(f)).c_str())).val.rval = UNDEFINEDMARK;
        set("I", 11);
        set("J", -4);
        fpclear();
        fp.limit = 4;
        eval.flat = flatcode;
        traces t;
        t.printed = failing([&] { action(t.results); });
        if (t.printed == "no error") t.printed = printed;
        parserreset();
        eval.flat = true;
        t.total = fp.total;
        t.overflow = fp.overflow;
        t.divzero = fp.divzero;
        t.zerodivzero = fp.zerodivzero;
        for (int f = 0; f < writer.functions; f++)
            t.lastvalues.push_back(sym(symtablookup(("P" + std::to_string(f)).c_str())).val.rval);
        return t;
    }
};

TEST_F(FlatTest, RandomBodiesAgreeWithTheWalk) {
    for (int round = 0; round < 3000; round++) {
        if (writer.functions == 12) {
            for (int f = 0; f < 12; f++) symtabdelete(symtablookup(("P" + std::to_string(f)).c_str()));
            trireclaim();
            writer.functions = 0;
        }
        const std::string name = "P" + std::to_string(writer.functions);
        const std::string text = name + "(X,Y) = " + writer.body(4, "X");
        define(text);
        writer.functions++;
        const int f = symtablookup(name.c_str());
        const size_t n = round % 3 == 0 ? 300 : 7;
        const std::vector<double> x = points(2 * n);
        const auto single = [&](std::vector<double>& results) {
            for (size_t k = 0; k < 5; k++) results.push_back(callvalue(f, &x[2 * k], 2));
        };
        ASSERT_EQ(observe(true, single), observe(false, single))
            << text << " at single points, round " << round;
        const auto byrows = [&](std::vector<double>& results) {
            results.assign(2 * n, 77);
            flatrows(f, n, 2, x.data(), results.data() + 1, 2);
        };
        ASSERT_EQ(observe(true, byrows), observe(false, byrows)) << text << " over rows, round " << round;
    }
}

} // namespace

// Compiled code against the walk of the tree: the same bits, the same faults, the same words, the same last
// values.
#include "unit/funcs/treeread.h"

#include <bit>
#include <cmath>
#include <random>

namespace {

// Random bodies over two formals, globals, matrices, earlier functions and the operators with a dummy.
struct bodywriter {
    std::mt19937 random;
    int functions = 0; // P0, P1... may be called
    bool calls = true;

    int pick(int n) { return int(random() % unsigned(n)); }
    std::string number() {
        static const char* const numbers[] = {"0", "1", "2", "3", "0.5", "1e300", "7", "2.5", "1e-300"};
        return numbers[pick(9)];
    }
    std::string leaf(const std::string& dummy) {
        switch (pick(8)) {
        case 0: return number();
        case 1: return "A";
        case 2: return "Z";
        case 3: return dummy;
        case 4:
        case 5: return "Y";
        default: return "X";
        }
    }
    std::string binary(int depth, const std::string& dummy) {
        static const char* const operators[] = {
            "+", "-", "*", "/", "^", "<", "<=", ">", ">=", "=", "*", " AND ", " OR ", "+"};
        return "(" + body(depth - 1, dummy) + operators[pick(14)] + body(depth - 1, dummy) + ")";
    }
    std::string builtin(int depth, const std::string& dummy) {
        static const char* const one[] = {"EXP", "LOG", "SQRT", "SIN", "COS", "ABS", "FLOOR"};
        switch (pick(6)) {
        case 0: return "ATAN2(" + body(depth - 1, dummy) + "," + body(depth - 1, dummy) + ")";
        case 1: return "MAX(" + body(depth - 1, dummy) + "," + leaf(dummy) + "," + leaf(dummy) + ",2)";
        case 2: return "LOG(" + body(depth - 1, dummy) + "," + leaf(dummy) + ")";
        default: return std::string(one[pick(7)]) + "(" + body(depth - 1, dummy) + ")";
        }
    }
    std::string operation(int depth, const std::string& outer) {
        const std::string dummy = pick(2) ? "I" : "J";
        switch (pick(6)) {
        case 0: return "SUM(" + dummy + "," + leaf(outer) + ",6," + body(depth - 1, dummy) + ")";
        case 1: return "SUM(" + dummy + ",1,40," + body(depth - 1, dummy) + ")";
        case 2: return "PRODUCT(" + dummy + ",0.5,4," + body(depth - 1, dummy) + ")";
        case 3: return "ROOT(" + dummy + ",0,3," + dummy + "-" + body(1, dummy) + ")";
        case 4: return "INTEGRAL(" + dummy + ",0,1," + dummy + "*" + leaf(dummy) + ")";
        default: return "EVAL(" + dummy + "," + body(depth - 1, outer) + "," + body(depth - 1, dummy) + ")";
        }
    }
    std::string body(int depth, const std::string& dummy) {
        if (depth <= 0) return leaf(dummy);
        switch (pick(12)) {
        case 0:
            return "(IF " + body(depth - 1, dummy) + " THEN " + body(depth - 1, dummy) + " ELSE " +
                   body(depth - 1, dummy) + ")";
        case 1:
            if (functions == 0 || !calls) return leaf(dummy);
            return "P" + std::to_string(pick(functions)) + "(" + body(depth - 1, dummy) + "," + leaf(dummy) +
                   ")";
        case 2: return builtin(depth, dummy);
        case 3:
            return pick(2) ? "-(" + body(depth - 1, dummy) + ")" : "(NOT (" + body(depth - 1, dummy) + "))";
        case 4: return pick(3) ? builtin(depth, dummy) : "M(" + leaf(dummy) + "," + leaf(dummy) + ")";
        case 5: return pick(3) ? binary(depth, dummy) : operation(std::min(depth, 2), dummy);
        default: return binary(depth, dummy);
        }
    }
};

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

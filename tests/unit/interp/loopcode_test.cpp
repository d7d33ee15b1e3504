// Random loops against the same statements written out one after the other: to the bit, with all that is
// printed.
#include "support/livesession.h"
#include "values/harray.h"

#include <cstring>

namespace {

// A text as a loop, and with every loop in it written out.
struct twoforms {
    std::string loop, writtenout;
    void add(const twoforms& more, const char* between) {
        loop += between + more.loop;
        writtenout += between + more.writtenout;
    }
};

struct generator {
    uint64_t state;
    unsigned below(unsigned n) {
        state = state * 6364136223846793005u + 1442695040888963407u; // Knuth's linear congruential generator
        return unsigned(state >> 33) % n;
    }
    std::string expression(int depth) {
        static const char* const leaves[] = {"I", "J", "S", "T", "U", "1", "2.5", "0", "K", "A(2)", "B(1,3)"};
        static const char* const operators[] = {"+",  "-", "*",  "/", "^",     "<",
                                                "<=", ">", ">=", "=", " AND ", " OR "};
        if (depth == 0 || below(4) == 0) return leaves[below(11)];
        switch (below(8)) {
        case 0: return "(" + expression(depth - 1) + ")";
        case 1: return "-" + expression(depth - 1);
        case 2: return "(NOT " + expression(depth - 1) + ")";
        case 3: return (below(2) ? "F(" : "SIN(") + expression(depth - 1) + ")";
        default: return expression(depth - 1) + operators[below(12)] + expression(depth - 1);
        }
    }
    twoforms branches(int depth) {
        const std::string condition = "IF " + expression(2) + " THEN ";
        twoforms all{condition, condition};
        all.add(list(depth - 1), "{\n");
        all.add(list(depth - 1), "\n} ELSE {\n");
        all.add({}, "\n}");
        return all;
    }
    twoforms inner(int depth) {
        const unsigned passes = 1 + below(3);
        const twoforms body = list(depth - 1);
        twoforms all{"FOR J = 1:" + std::to_string(passes) + " {\n" + body.loop + "\n}", ""};
        for (unsigned k = 1; k <= passes; k++)
            all.writtenout += "J = " + std::to_string(k) + "\n" + body.writtenout + "\n";
        return all;
    }
    twoforms statement(int depth) {
        static const char* const targets[] = {"S", "T", "U", "A(3)", "B(2,2)", "A(J)", "NEW"};
        switch (depth == 0 ? 9 : below(8)) {
        case 0: return branches(depth);
        case 1: return inner(depth);
        case 2: return {"TYPE S", "TYPE S"};
        default: {
            const std::string text = std::string(targets[below(7)]) + " = " + expression(3);
            return {text, text};
        }
        }
    }
    twoforms list(int depth) {
        twoforms all = statement(depth);
        for (unsigned n = below(3); n > 0; n--) all.add(statement(depth), "\n");
        return all;
    }
};

std::string bits(double x) {
    char text[40];
    snprintf(text, sizeof text, "%a ", x);
    return text;
}

std::string values() {
    std::string all;
    for (const char* name : {"I", "J", "K", "S", "T", "U", "NEW", "A", "B"}) {
        const int idx = symtablookup(name);
        const int type = idx > 0 ? sym(idx).type : int(UNKNOWN);
        all += name + std::string(" ");
        if (type == SCALAR) all += bits(sym(idx).val.rval);
        if (type != MATRIX) continue;
        const harray* m = matrixof(idx);
        for (size_t k = 1; k <= harraycount(m); k++) all += bits(cells(m)[k]);
    }
    return all;
}

using LoopCode = StartedSession;

TEST_F(LoopCode, RandomLoopsDoWhatTheirStatementsDo) {
    run("FUNCTION F(X) = X*X + K");
    for (uint64_t seed = 1; seed <= 3000; seed++) {
        generator g{seed};
        const std::string setting =
            "A = 1:5; B = A*A'; K = 0.5; J = 1; S = 0; T = 2; U = 3; NEW = 0; DELETE NEW\n";
        const twoforms body = g.list(2);
        std::string writtenout = setting;
        for (const char* x : {"0", "0.5", "1", "1.5", "2"})
            writtenout += std::string("I = ") + x + "\n" + body.writtenout + "\n";
        const std::string loop = setting + "FOR I = 0:2:0.5 {\n" + body.loop + "\n}\n";
        const std::string looped = run(loop), loopvalues = values();
        ASSERT_EQ(looped, run(writtenout)) << loop;
        ASSERT_EQ(loopvalues, values()) << loop;
    }
}

} // namespace

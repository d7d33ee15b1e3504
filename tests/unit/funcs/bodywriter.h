// tests/unit/funcs/bodywriter.h - random bodies of functions, as text, from a seed.
#pragma once

#include <algorithm>
#include <random>
#include <string>

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
        switch (pick(7)) {
        case 6: return pick(2) ? "MAXV(M)" : "NROWS(M)";
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

// Any bytes as numbers in free text, in two pieces, and as a delimited table.
#include "interp/base/fpfault.h"
#include "interp/base/symtab.h"
#include "interp/delimited.h"
#include "values/numread.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct scan {
    std::vector<double> numbers;
    numberresult end = NUMBEREND;
};

scan scanall(const std::string& text) {
    numbertext in = numbertextstart(text.c_str(), text.size());
    scan s;
    double x;
    while ((s.end = readnumber(in, x)) == NUMBERREAD) s.numbers.push_back(x);
    return s;
}

// A cut must not change what is read.
scan scanpieces(const std::string& text, size_t cut) {
    const std::string head = text.substr(0, cut);
    numbertext in = numbertextstart(head.c_str(), head.size());
    scan s;
    for (;;) {
        double x;
        s.end = readnumber(in, x);
        if (in.p >= in.end) break;
        if (s.end != NUMBERREAD) return s;
        s.numbers.push_back(x);
    }
    const scan rest = scanall(text.substr(size_t(in.mark - head.c_str())));
    s.numbers.insert(s.numbers.end(), rest.numbers.begin(), rest.numbers.end());
    s.end = rest.end;
    return s;
}

void check(bool holds) {
    if (!holds) abort();
}

void table(const std::string& text, char delimiter) {
    delimitedtable t;
    t.bytes = text;
    delimitedsplit(t, delimiter);
    if (!t.fault.empty()) return;
    check(t.fields.size() == t.lines.size() * t.cols);
    for (const std::string_view field : t.fields) {
        double x = 0;
        if (delimitednumber(field, x) != FIELDTEXT) check(fpfinite(x));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool started = (symtabstart(), true);
    if (!started || size == 0) return 0;
    fp.limit = 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const scan whole = scanall(text), pieces = scanpieces(text, data[0] % (text.size() + 1));
    check(whole.end == pieces.end && whole.numbers == pieces.numbers);
    for (const double x : whole.numbers) check(fpfinite(x));
    table(text, 0);
    table(text, ',');
    return 0;
}

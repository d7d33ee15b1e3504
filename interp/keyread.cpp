// KREAD and KREADS: numbers and texts from the keyboard.
#include "funcs/builtin.h"
#include "interp/base/hooks.h"
#include "interp/base/machine.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/datafiles.h"
#include "interp/source.h"
#include "values/harray.h"
#include "values/numread.h"
#include "values/stringarray.h"

#include <cmath>
#include <iterator>
#include <vector>

namespace {

constexpr size_t NUMBERLINE = 100, TEXTLINE = 80; // characters in a line of KREAD and of KREADS

bool isblankline(const std::string& line) { return line.find_first_not_of(" \t\r") == std::string::npos; }

// The numbers of a line; false if one cannot be read, or there is none and the line is not blank.
bool parseline(const std::string& line, std::vector<double>& numbers) {
    numbers.clear();
    if (line.size() > NUMBERLINE) return false;
    numbertext in = numbertextstart(line.c_str(), line.size());
    for (;;) {
        double x;
        const numberresult result = readnumber(in, x);
        if (result == NUMBERBAD) return false;
        if (result == NUMBEREND) return !numbers.empty() || isblankline(line);
        numbers.push_back(x);
    }
}

// One line of numbers, asked for until it can be read; false at the end of the input.
bool askline(const char* prompt, std::vector<double>& numbers) {
    std::string line;
    while (console.readline(prompt, line)) {
        logout("%s\n", line.c_str());
        if (parseline(line, numbers)) return true;
        tarnprint("KREAD: syntactically illegal number typed\n");
    }
    return false;
}

double asknumber(const char* prompt) {
    std::vector<double> numbers;
    return askline(prompt, numbers) && !numbers.empty() ? numbers[0] : MAXPOS;
}

harrayptr askmatrix(const char* prompt, uint32_t rows, uint32_t cols) {
    harrayptr m(harraynew(rows, cols));
    const size_t count = harraycount(m.get());
    size_t k = 0;
    std::vector<double> numbers;
    while (k < count && askline(prompt, numbers))
        for (size_t j = 0; j < numbers.size() && k < count; j++) cells(m.get())[++k] = numbers[j];
    const uint32_t filled = uint32_t((k + cols - 1) / cols);
    if (filled == rows) return m;
    harrayptr part(harraynew(filled, cols)); // the input has ended
    for (size_t j = 1; j <= k; j++) cells(part.get())[j] = cells(m.get())[j];
    return part;
}

double kreadnumber() {
    tarnprint("  Type in number and <Enter>\n");
    return asknumber(line.prompt);
}

// KREAD(n), KREAD(rows, cols), KREAD(prompt), KREAD(prompt, rows, cols)
int kread(const callargs& a) {
    if (a.n == 0) return symtabtempscalar(0, 0, kreadnumber());
    const bool prompted = isstringtype(a[1]);
    if (!prompted && !isscalar(a[1])) argtype("KREAD");
    const std::string prompt = prompted ? stringval(a[1]) : line.prompt;
    const int first = prompted ? 2 : 1;
    if (prompted && a.n == 1) {
        harrayptr m(harraynew(1, 1));
        cells(m.get())[1] = asknumber(prompt.c_str());
        return symtabmatrix(0, 0, std::move(m));
    }
    const double rows = std::trunc(a.scalar(first)), cols = std::trunc(a.scalar(first + 1, 1));
    if (!(rows >= 1 && cols >= 1)) {
        getkey(true);
        return symtabmatrix(0, 0, harrayptr(harraynew(0, 0)));
    }
    if (rows * cols > 2147483647) argrange("KREAD");
    if (!prompted) tarnprint("  Type in numbers for KREAD.  End lines with <Enter>\n");
    return symtabmatrix(0, 0, askmatrix(prompt.c_str(), uint32_t(rows), uint32_t(cols)));
}

// KREADS(), KREADS(prompt): a line of text; one that ends in a backslash goes on in the next.
int kreads(const callargs& a) {
    const std::string prompt = a.n ? stringval(a[1]) : line.prompt;
    std::string text, piece;
    bool more = console.readline(prompt.c_str(), piece);
    while (more) {
        piece = piece.substr(0, TEXTLINE);
        logout("%s\n", piece.c_str());
        more = !piece.empty() && piece.back() == '\\';
        if (more) piece.pop_back();
        text += piece;
        if (more) more = console.readline(": ", piece);
    }
    return symtabtext(0, 0, text);
}

const scalarrow numberrows[] = {{-78, kreadnumber, IMPURE}};
constexpr valuerow rows[] = {{-78, kread}, {-912, kreads}};

} // namespace

void keyreadrows() {
    builtinadd(numberrows, int(std::size(numberrows)));
    builtinadd(rows, int(std::size(rows)));
}

#include "funcs/stringops.h"

#include "interp/base/numtext.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <string>

namespace {

constexpr size_t LONGEST = 0x3FFFFFFE; // characters that fit in one block of the allocator

// The text of a string or of a scalar.
std::string textof(int idx) {
    if (isstringtype(idx)) return stringval(idx);
    if (!isscalar(idx))
        tarnerror(further("%s, and a string or a scalar is due", describe(idx).c_str()),
                  "illegal string expression");
    char buf[128];
    numtext(buf, scalarval(idx), -1, 8, 0, 0, 2, 0);
    return buf;
}

std::string repeated(const std::string& text, double count) {
    std::string all;
    if (count < 1 || text.empty()) return all;
    if (count * double(text.size()) > double(LONGEST)) tarnerror("Too many elements requested in 'xalloc()'");
    const size_t n = size_t(count);
    all.reserve(n * text.size());
    for (size_t k = 0; k < n; k++) all += text;
    return all;
}

bool compared(int op, int order) {
    switch (op) {
    case 8: return order == 0;
    case 9: return order < 0;
    case 10: return order <= 0;
    case 11: return order >= 0;
    default: return order > 0;
    }
}

std::string clocktext() {
    const time_t now = time(nullptr);
    const tm* local = localtime(&now);
    char text[26];
    // Always in English, whatever the locale: Fri Nov 21 03:10:00 2025
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    snprintf(text, sizeof text, "%s %s %2d %02d:%02d:%02d %4d", days[local->tm_wday], months[local->tm_mon],
             local->tm_mday % 100, local->tm_hour % 100, local->tm_min % 100, local->tm_sec % 100,
             (local->tm_year + 1900) % 10000);
    return text;
}

int datetext(const callargs&) {
    const std::string clock = clocktext();
    return symtabtext(0, 0, clock.substr(4, 7) + clock.substr(20, 4));
}

int timetext(const callargs&) { return symtabtext(0, 0, clocktext().substr(11, 9)); }

// A string's text, or the name of any other operand, as a path below FILEDIR.
std::string filepath(int idx) {
    return bindname(isstringtype(idx) ? stringval(idx) : sym(idx).name, report.filedir.c_str(), nullptr);
}

int filename(const callargs& a) { return symtabtext(0, 0, filepath(a[1])); }

// One character an index; index 0 stands for none.
int substring(const callargs& a) {
    const std::string text = stringval(a[1]);
    int temp = 0;
    const harray* indices = matrixval(a[2], temp);
    std::string part;
    for (size_t k = 1; k <= harraycount(indices); k++) {
        const double index = cells(indices)[k];
        if (!(index >= 0 && index <= double(text.size()))) tarnerror("bad substring index");
        if (index >= 1) part += text[size_t(index) - 1];
    }
    tempfree(temp);
    return symtabtext(0, 0, part);
}

int fromcode(const callargs& a) {
    const double code = std::trunc(a.scalar(1));
    if (!(code >= 0 && code <= 255)) argrange("ASCII");
    return symtabtext(0, 0, std::string(code < 1 ? 0 : 1, char(static_cast<unsigned char>(code))));
}

int emptytext(const callargs&) { return symtabtext(0, 0, ""); }

int reversed(const callargs& a) {
    std::string text = stringval(a[1]);
    std::reverse(text.begin(), text.end());
    return symtabtext(0, 0, text);
}

int withoutlead(const callargs& a) {
    const char* text = stringval(a[1]);
    return symtabtext(0, 0, text + strspn(text, " \t"));
}

// An existing file is never replaced. Gives the new name.
int renamefile(const callargs& a) {
    namespace fs = std::filesystem;
    const std::string from = filepath(a[1]), to = filepath(a[2]);
    std::error_code fault;
    if (fs::exists(fs::symlink_status(to, fault))) {
        tarnwarn("RENAME: file %s already exists", to.c_str());
        tarnerror("can not rename");
    }
    fs::rename(from, to, fault);
    if (fault) tarnerror("can not rename");
    return symtabtext(0, 0, stringval(a[2]));
}

constexpr valuerow rows[] = {
    {-900, datetext},  {-901, timetext}, {-902, filename},    {-905, substring},  {-906, fromcode},
    {-907, emptytext}, {-909, reversed}, {-910, withoutlead}, {-911, renamefile},
};

} // namespace

void stringbinop(int op, int a, int b) {
    switch (op) {
    case 3:
        if (!isstringtype(a) || !isscalar(b))
            tarnerror(further("a power repeats a string, as in \"AB\"^3; here %s and %s", describe(a).c_str(),
                              describe(b).c_str()),
                      "illegal string expression");
        return polpush(symtabtext(a, b, repeated(stringval(a), scalarval(b))));
    case 6: {
        const std::string text = textof(a) + textof(b);
        return polpush(symtabtext(a, b, text));
    }
    case 8:
    case 9:
    case 10:
    case 11:
    case 12: {
        const int order = textof(a).compare(textof(b));
        return polpush(symtabtempscalar(a, b, compared(op, order)));
    }
    default:
        tarnerror(further("%s, and %s", describe(a).c_str(), describe(b).c_str()),
                  "the only string binary operators are +,^,=,<,<=,>,>=");
    }
}

void stringopsstart() { builtinadd(rows, int(std::size(rows))); }

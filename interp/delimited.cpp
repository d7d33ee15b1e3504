#include "interp/delimited.h"

#include "interp/base/fpfault.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>

namespace {

constexpr size_t SAMPLE = 20; // records looked at for the delimiter

bool isblank(char c, char delimiter) { return (c == ' ' || c == '\t') && c != delimiter; }

// Reads one record after the other. The text is followed by a zero byte.
struct splitter {
    char* p;
    char* end;
    char delimiter;
    long line = 1;
    std::string fault;
    splitter(std::string& text, char delimiter_)
        : p(text.data()), end(text.data() + text.size()), delimiter(delimiter_) {}
};

void complain(splitter& s, const std::string& what) {
    s.fault = "line " + std::to_string(s.line) + " " + what;
}

// Passes the end of the line at p.
void passline(splitter& s) {
    if (s.p < s.end && *s.p == '\r') s.p++;
    if (s.p < s.end && *s.p == '\n') s.p++;
    s.line++;
}

bool endsline(const splitter& s) {
    return s.p >= s.end || *s.p == '\n' || (*s.p == '\r' && (s.p + 1 >= s.end || s.p[1] == '\n'));
}

// A field in quotes, whose doubled quotes are undone in place.
std::string_view quotedfield(splitter& s) {
    char* const from = ++s.p;
    char* to = from;
    const long opened = s.line;
    for (; s.p < s.end; *to++ = *s.p++) {
        if (*s.p == '\n') s.line++;
        if (*s.p != '"') continue;
        if (s.p[1] != '"') break;
        s.p++;
    }
    if (s.p >= s.end) {
        s.line = opened;
        complain(s, "opens a quote that is never closed");
        return {};
    }
    s.p++;
    while (s.p < s.end && isblank(*s.p, s.delimiter)) s.p++;
    if (!endsline(s) && *s.p != s.delimiter) complain(s, "has text behind a closing quote");
    return {from, size_t(to - from)};
}

std::string_view plainfield(splitter& s) {
    char* const from = s.p;
    while (*s.p != s.delimiter && !endsline(s)) s.p++;
    char* to = s.p;
    while (to > from && isblank(to[-1], s.delimiter)) to--;
    return {from, size_t(to - from)};
}

// Appends the fields of the record at p and passes its line end.
void record(splitter& s, std::vector<std::string_view>& fields) {
    for (;; s.p++) {
        while (s.p < s.end && isblank(*s.p, s.delimiter)) s.p++;
        fields.push_back(s.p < s.end && *s.p == '"' ? quotedfield(s) : plainfield(s));
        if (!s.fault.empty() || endsline(s)) break;
    }
    passline(s);
}

bool isempty(const std::vector<std::string_view>& fields, size_t from) {
    return fields.size() == from + 1 && fields[from].empty();
}

// How many fields the first records have with this delimiter: of the first one, and whether all have as many.
struct parting {
    size_t fields = 0;
    bool even = true;
};

parting trial(std::string_view text, char delimiter) {
    std::string copy(text);
    splitter s(copy, delimiter);
    parting found;
    std::vector<std::string_view> fields;
    for (size_t k = 0; k < SAMPLE && s.p < s.end; k++) {
        fields.clear();
        record(s, fields);
        if (!s.fault.empty()) break;
        if (isempty(fields, 0)) continue;
        if (found.fields == 0) found.fields = fields.size();
        found.even &= fields.size() == found.fields;
    }
    return found;
}

// The first lines of a text, about as many as are looked at.
std::string_view sampleof(const std::string& bytes) {
    size_t end = 0;
    for (size_t k = 0; k < SAMPLE && end < bytes.size(); k++) {
        const size_t feed = bytes.find('\n', end);
        end = feed == std::string::npos ? bytes.size() : feed + 1;
    }
    return std::string_view(bytes).substr(0, end);
}

char guessdelimiter(const std::string& bytes) {
    const std::string_view sample = sampleof(bytes);
    char best = ',';
    size_t most = 1;
    for (char c : {'\t', ';', ','}) {
        const parting found = trial(sample, c);
        if (found.even && found.fields > 1) return c;
        if (found.fields > most) best = c, most = found.fields;
    }
    return best;
}

bool sameword(std::string_view field, std::string_view word) {
    return field.size() == word.size() &&
           std::equal(field.begin(), field.end(), word.begin(),
                      [](char a, char b) { return toupper(static_cast<unsigned char>(a)) == b; });
}

bool hasheader(const delimitedtable& t) {
    double x;
    for (size_t j = 0; j < t.fields.size() && j < t.cols; j++)
        if (delimitednumber(t.fields[j], x) == FIELDTEXT) return true;
    return false;
}

// Empty lines at the end of a table of one column are no fields of it.
void dropemptyend(delimitedtable& t) {
    while (t.cols == 1 && !t.fields.empty() && t.fields.back().empty()) {
        t.fields.pop_back();
        t.lines.pop_back();
    }
}

// 10 to how many is a number written in decimal digits? Only its size counts: is it above 1 or below?
bool islarge(std::string_view digits) {
    const size_t e = digits.find_first_of("eE");
    const std::string_view mantissa = digits.substr(0, e);
    long exponent = 0;
    if (e != std::string_view::npos) {
        const std::string_view text = digits.substr(e + 1 + (digits[e + 1] == '+'));
        if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec != std::errc())
            return text[0] != '-';
    }
    const size_t point = std::min(mantissa.find('.'), mantissa.size()),
                 first = mantissa.find_first_of("123456789");
    return exponent + long(point) - long(first) > 0;
}

bool startsnumber(std::string_view digits) {
    return !digits.empty() && (isdigit(static_cast<unsigned char>(digits[0])) || digits[0] == '.');
}

} // namespace

void delimitedsplit(delimitedtable& t, char delimiter) {
    if (t.bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) t.bytes.erase(0, 3);
    splitter s(t.bytes, delimiter ? delimiter : guessdelimiter(t.bytes));
    while (s.p < s.end && s.fault.empty()) {
        const long line = s.line;
        const size_t from = t.fields.size();
        record(s, t.fields);
        const size_t count = t.fields.size() - from;
        if (isempty(t.fields, from) && t.cols != 1) {
            t.fields.pop_back();
            continue;
        }
        if (t.cols == 0) t.cols = count;
        if (count != t.cols && s.fault.empty()) {
            s.line = line;
            complain(s, "has " + std::to_string(count) + " fields instead of " + std::to_string(t.cols));
        }
        t.lines.push_back(line);
    }
    t.fault = s.fault;
    dropemptyend(t);
    t.header = hasheader(t);
}

fieldkind delimitednumber(std::string_view field, double& x) {
    std::string_view digits = field;
    const bool minus = !digits.empty() && digits[0] == '-';
    if (minus || (!digits.empty() && digits[0] == '+')) digits.remove_prefix(1);
    if (startsnumber(digits)) {
        const char* const end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, x);
        if (stop != end || error == std::errc::invalid_argument) return FIELDTEXT;
        if (error == std::errc::result_out_of_range) x = islarge(digits) ? fpfault(FPOVERFLOW, false) : 0;
        if (minus) x = -x;
        return FIELDNUMBER;
    }
    if (sameword(digits, "INF") || sameword(digits, "INFINITY")) {
        x = minus ? MAXNEG : MAXPOS;
        return FIELDNUMBER;
    }
    x = MAXPOS;
    for (const char* word : {"", "NA", "NAN", "N/A", "NULL"})
        if (sameword(field, word)) return FIELDMISSING;
    return FIELDTEXT;
}

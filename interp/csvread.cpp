// READCSV, CSVNAMES and CSVTEXT: tables in delimited text.
#include "funcs/builtin.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/datafiles.h"
#include "interp/delimited.h"
#include "interp/dofiles.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <cmath>
#include <filesystem>
#include <iterator>
#include <numeric>

namespace {

std::string text(std::string_view view) { return std::string(view); }

// A table and the file that it stands in.
struct csvtable : delimitedtable {
    std::string path;
};

// The character that a text means as a delimiter; 0 if it can be none.
char delimitercalled(const std::string& word) {
    if (word == "tab" || word == "TAB") return '\t';
    const bool other = word.size() != 1 || isalnum(static_cast<unsigned char>(word[0]));
    return other || word.find_first_of("\"\r\n.+-") == 0 ? 0 : word[0];
}

// The character that a delimiter argument means; 0 when it is not given (argument 0, or beyond the last).
char delimiterof(const callargs& a, int argument) {
    if (argument == 0 || argument > a.n) return 0;
    const std::string word = stringval(a[argument]);
    const char delimiter = delimitercalled(word);
    if (delimiter == 0)
        tarnerror(further("a delimiter is one sign, such as \";\", or \"tab\""), "%s: \"%s\" is no delimiter",
                  a.name(), word.c_str());
    return delimiter;
}

void readtable(const callargs& a, csvtable& t, char delimiter) {
    if (!namesfile(a[1])) argtype(a.name());
    const std::string path = datapath(a[1], "csv");
    std::error_code fault;
    if (std::filesystem::is_character_file(path, fault) || !readwhole(path.c_str(), t.bytes))
        tarnerror(notreadable(path), "%s: couldn't open input file %.199s\n", a.name(), path.c_str());
    delimitedsplit(t, delimiter);
    if (!t.fault.empty()) tarnerror("%s: %s, %s", a.name(), path.c_str(), t.fault.c_str());
    t.path = path;
}

// A column as it is called in messages.
std::string columnname(const csvtable& t, size_t j) {
    return t.header ? text(delimitedfield(t, 0, j)) : std::to_string(j + 1);
}

// The columns that there are, by their names or by their number.
furtherline columnsof(const csvtable& t) {
    if (!t.header) return further("it has %zu columns without names", t.cols);
    std::string names;
    for (size_t j = 0; j < t.cols && names.size() < 60; j++)
        names += (j ? ", " : "") + columnname(t, j) + (names.size() > 50 ? "..." : "");
    return further("its columns are %s", names.c_str());
}

size_t columncalled(const callargs& a, const csvtable& t, std::string_view name) {
    for (size_t j = 0; j < t.cols && t.header; j++)
        if (delimitedfield(t, 0, j) == name) return j;
    tarnerror(columnsof(t), "%s: %s has no column %s", a.name(), t.path.c_str(), text(name).c_str());
}

size_t columnnumbered(const callargs& a, const csvtable& t, double number) {
    const double j = std::trunc(number);
    if (!(j >= 1 && j <= double(t.cols)))
        tarnerror(columnsof(t), "%s: %s has no column %.0f", a.name(), t.path.c_str(), j);
    return size_t(j) - 1;
}

// The columns that an argument chooses, by number or by name; all of them when it is not given.
std::vector<size_t> chosencolumns(const callargs& a, int argument, const csvtable& t) {
    std::vector<size_t> columns(argument ? 0 : t.cols);
    std::iota(columns.begin(), columns.end(), size_t(0));
    if (!argument) return columns;
    const symbol& s = sym(a[argument]);
    if (isstringtype(a[argument])) return {columncalled(a, t, stringval(a[argument]))};
    if (s.type == STRINGMATRIX) {
        const auto* names = static_cast<const StringArray*>(s.val.ptr);
        for (size_t k = 0; k < stringcount(names); k++) {
            const char* name = stringcells(names)[k];
            columns.push_back(columncalled(a, t, name ? name : ""));
        }
        return columns;
    }
    int temp = 0;
    const harray* numbers = matrixval(a[argument], temp);
    for (size_t k = 1; k <= harraycount(numbers); k++)
        columns.push_back(columnnumbered(a, t, cells(numbers)[k]));
    tempfree(temp);
    return columns;
}

// A field that is no number, and what may have been meant.
[[noreturn]] void notnumber(const callargs& a, const csvtable& t, size_t i, size_t j) {
    const std::string field = text(delimitedfield(t, i, j).substr(0, 40));
    const size_t comma = field.find(',');
    const bool decimal =
        comma != std::string::npos && field.find_first_not_of("0123456789,+-eE") == field.npos;
    tarnerror(decimal ? further("decimals are written with a point: %s.%s", field.substr(0, comma).c_str(),
                                field.substr(comma + 1).c_str())
                      : further("the columns that hold numbers can be chosen, as in %s(\"%s\", LIST(1,3))",
                                a.name(), t.path.c_str()),
              "%s: %s, line %ld, column %s: \"%s\" is not a number", a.name(), t.path.c_str(), t.lines[i],
              columnname(t, j).c_str(), field.c_str());
}

/* READCSV(file [, columns] [, delimiter]): the numbers of a table; missing ones are MAXPOS. columns: numbers
 * from 1, a name, or a string matrix of names; in either order with the delimiter, a string that is no name.
 */
int readcsv(const callargs& a) {
    int delimiter = 0, columnarg = 0;
    for (int k = 2; k <= a.n; k++)
        (isstringtype(a[k]) && delimitercalled(stringval(a[k])) ? delimiter : columnarg) = k;
    csvtable t;
    readtable(a, t, delimiterof(a, delimiter));
    const std::vector<size_t> columns = chosencolumns(a, columnarg, t);
    const size_t first = t.header, rows = t.lines.size() - first;
    if (rows > UINT32_MAX || rows * columns.size() > 2147483647)
        tarnerror(
            further("%s has %zu rows, and %zu columns are asked for", t.path.c_str(), rows, columns.size()),
            "%s: rows*cols exceeds 2^^31-1 (implementation limit)", a.name());
    harrayptr m(harrayraw(uint32_t(rows), uint32_t(columns.size())));
    double* x = cells(m.get());
    for (size_t i = first; i < t.lines.size(); i++)
        for (const size_t j : columns) {
            if (delimitednumber(delimitedfield(t, i, j), *++x) == FIELDTEXT) notnumber(a, t, i, j);
        }
    return symtabmatrix(0, 0, std::move(m));
}

// Records first up to the last, as strings.
int strings(const callargs& a, const csvtable& t, size_t first, size_t last) {
    const size_t rows = last - first;
    stringarrayptr s(rows <= UINT32_MAX ? StringArrayAlloc(uint32_t(rows), uint32_t(t.cols)) : nullptr);
    if (!s) tarnerror(nomemory(), "StringArrayAlloc failed in %s", a.name());
    for (size_t i = 0; i < rows; i++)
        for (size_t j = 0; j < t.cols; j++)
            if (!StringArrayStrPut(s.get(), long(i) + 1, long(j) + 1, delimitedfield(t, first + i, j)))
                tarnerror(nomemory(), "StringArrayStrPut failed in %s", a.name());
    return symtabstringmatrix(0, 0, std::move(s));
}

// CSVNAMES(file [, delimiter]): the names of the columns, a row of strings.
int csvnames(const callargs& a) {
    csvtable t;
    readtable(a, t, delimiterof(a, 2));
    if (!t.header) tarnerror("%s: the first line of %s is no line of names", a.name(), t.path.c_str());
    return strings(a, t, 0, 1);
}

// CSVTEXT(file [, delimiter]): all fields as strings, the line of names among them.
int csvtext(const callargs& a) {
    csvtable t;
    readtable(a, t, delimiterof(a, 2));
    return strings(a, t, 0, t.lines.size());
}

constexpr valuerow rows[] = {{-710, readcsv}, {-711, csvnames}, {-712, csvtext}};

} // namespace

void csvrows() { builtinadd(rows, int(std::size(rows))); }

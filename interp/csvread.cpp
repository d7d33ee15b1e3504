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

// The character that a delimiter argument means; 0 when it is not given (argument 0, or beyond the last).
char delimiterof(const callargs& a, int argument) {
    if (argument == 0 || argument > a.n) return 0;
    const std::string word = stringval(a[argument]);
    if (word == "tab" || word == "TAB") return '\t';
    if (word.size() != 1 || isalnum(static_cast<unsigned char>(word[0])) ||
        word.find_first_of("\"\r\n.+-") == 0)
        tarnerror("%s: \"%s\" is no delimiter", a.name(), word.c_str());
    return word[0];
}

void readtable(const callargs& a, delimitedtable& t, char delimiter) {
    const std::string path = datapath(a[1], "csv");
    std::error_code fault;
    if (std::filesystem::is_character_file(path, fault) || !readwhole(path.c_str(), t.bytes))
        tarnerror("%s: couldn't open input file %.199s\n", a.name(), path.c_str());
    delimitedsplit(t, delimiter);
    if (!t.fault.empty()) tarnerror("%s: %s", a.name(), t.fault.c_str());
}

// A column as it is called in messages.
std::string columnname(const delimitedtable& t, size_t j) {
    return t.header ? text(delimitedfield(t, 0, j)) : std::to_string(j + 1);
}

size_t columncalled(const callargs& a, const delimitedtable& t, std::string_view name) {
    for (size_t j = 0; j < t.cols && t.header; j++)
        if (delimitedfield(t, 0, j) == name) return j;
    tarnerror("%s: there is no column %s", a.name(), text(name).c_str());
}

size_t columnnumbered(const callargs& a, const delimitedtable& t, double number) {
    const double j = std::trunc(number);
    if (!(j >= 1 && j <= double(t.cols))) tarnerror("%s: there is no column %.0f", a.name(), j);
    return size_t(j) - 1;
}

// The columns that an argument chooses, by number or by name; all of them when it is not given.
std::vector<size_t> chosencolumns(const callargs& a, int argument, const delimitedtable& t) {
    std::vector<size_t> columns(argument ? 0 : t.cols);
    std::iota(columns.begin(), columns.end(), size_t(0));
    if (!argument) return columns;
    const symbol& s = sym(a[argument]);
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

/* READCSV(file [, columns] [, delimiter]): the numbers of a table; missing ones are MAXPOS. columns: numbers
 * from 1, or a string matrix of names; in either order with the delimiter, which is a string. */
int readcsv(const callargs& a) {
    int delimiter = 0, columnarg = 0;
    for (int k = 2; k <= a.n; k++) (isstringtype(a[k]) ? delimiter : columnarg) = k;
    delimitedtable t;
    readtable(a, t, delimiterof(a, delimiter));
    const std::vector<size_t> columns = chosencolumns(a, columnarg, t);
    const size_t first = t.header, rows = t.lines.size() - first;
    if (rows > UINT32_MAX || rows * columns.size() > 2147483647)
        tarnerror("%s: rows*cols exceeds 2^^31-1 (implementation limit)", a.name());
    harrayptr m(harrayraw(uint32_t(rows), uint32_t(columns.size())));
    double* x = cells(m.get());
    for (size_t i = first; i < t.lines.size(); i++)
        for (const size_t j : columns) {
            const std::string_view field = delimitedfield(t, i, j);
            if (delimitednumber(field, *++x) == FIELDTEXT)
                tarnerror("%s: line %ld, column %s: \"%s\" is not a number", a.name(), t.lines[i],
                          columnname(t, j).c_str(), text(field.substr(0, 40)).c_str());
        }
    return symtabmatrix(0, 0, std::move(m));
}

// Records first up to the last, as strings.
int strings(const callargs& a, const delimitedtable& t, size_t first, size_t last) {
    const size_t rows = last - first;
    stringarrayptr s(rows <= UINT32_MAX ? StringArrayAlloc(uint32_t(rows), uint32_t(t.cols)) : nullptr);
    if (!s) tarnerror("StringArrayAlloc failed in %s", a.name());
    for (size_t i = 0; i < rows; i++)
        for (size_t j = 0; j < t.cols; j++)
            if (!StringArrayStrPut(s.get(), long(i) + 1, long(j) + 1, delimitedfield(t, first + i, j)))
                tarnerror("StringArrayStrPut failed in %s", a.name());
    return symtabstringmatrix(0, 0, std::move(s));
}

// CSVNAMES(file [, delimiter]): the names of the columns, a row of strings.
int csvnames(const callargs& a) {
    delimitedtable t;
    readtable(a, t, delimiterof(a, 2));
    if (!t.header) tarnerror("%s: the first line is no line of names", a.name());
    return strings(a, t, 0, 1);
}

// CSVTEXT(file [, delimiter]): all fields as strings, the line of names among them.
int csvtext(const callargs& a) {
    delimitedtable t;
    readtable(a, t, delimiterof(a, 2));
    return strings(a, t, 0, t.lines.size());
}

constexpr valuerow rows[] = {{-710, readcsv}, {-711, csvnames}, {-712, csvtext}};

} // namespace

void csvrows() { builtinadd(rows, int(std::size(rows))); }

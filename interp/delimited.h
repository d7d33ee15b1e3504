/* interp/delimited.h - tables in delimited text: comma, semicolon or tab separated values.
 * Owns:    the splitting of a text into records and fields by RFC 4180, the guess of the delimiter, what a
 * field means as a number. Callers: the builtins that read such files. Never:   opens a file; reports: the
 * first thing wrong is told with its line. */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct delimitedtable {
    std::string bytes;                    // the text; the fields stand in it, quotes undone
    std::vector<std::string_view> fields; // record by record
    std::vector<long> lines;              // line of the text in which each record begins, from 1
    size_t cols = 0;
    bool header =
        false;         // the first record names the columns: it has a field that is no number and not missing
    std::string fault; // what is wrong; empty if nothing is
};

inline size_t delimitedrows(const delimitedtable& t) { return t.cols ? t.fields.size() / t.cols : 0; }
inline std::string_view delimitedfield(const delimitedtable& t, size_t i, size_t j) {
    return t.fields[i * t.cols + j];
}

/* Splits t.bytes. A byte order mark is skipped; a line ends in LF or CR LF; a field in quotes may hold
 * delimiters, line ends and doubled quotes; blanks around a field do not count. Lines with nothing in them
 * are skipped, but in the middle of a table of one column, where they are empty fields. Every record must
 * have as many fields as the first. delimiter 0: the first of tab, semicolon, comma that parts all of the
 * first records alike, or else parts the first one most. */
void delimitedsplit(delimitedtable& t, char delimiter);

enum fieldkind { FIELDNUMBER, FIELDMISSING, FIELDTEXT };
/* The number that a field holds, to the nearest double. Missing (MAXPOS): nothing, NA, N/A, NaN, NULL; Inf is
 * the largest number of its sign. A number too large for a double is repaired and counted as an overflow. */
fieldkind delimitednumber(std::string_view field, double& x);

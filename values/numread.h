/* values/numread.h - numbers out of free text.
 * Owns:    the tolerant scanner of data files and typed data, and its arithmetic.
 * Callers: the readers of data files and of the keyboard.
 * Never:   opens, refills or reports: it works on bytes in memory and gives a result code. */
#pragma once

#include <cstddef>

enum numberresult {
    NUMBERREAD = 0,
    NUMBERBAD = 1, // an unreadable character, or an exponent without digits
    NUMBEREND = 2
};

/* A text being scanned: p moves on to end, where a zero byte must stand. A scan that comes to end may have
 * stopped inside a number or a quoted text: when more text is to come, the caller puts it behind the old,
 * takes p back to mark and scans again, whatever the result was. */
struct numbertext {
    const char* p;
    const char* end;
    const double* tens; // powers of ten, tens[0] is 1
    const char* mark;   // start of what was scanned last
    bool marks = false; // a word was skipped that stands for a missing number: NA, NaN, Inf
};

numbertext numbertextstart(const char* text, size_t length); // text[length] must be zero

/* The next number. Skipped: blanks, control characters that space text, "..." (a doubled quote inside goes
 * on), a / and the rest of its line, and any other character that starts no number. A number is an optional
 * sign, then a digit or a period with a digit behind it, and what readfloat takes. Control-Z ends the text. A
 * result beyond the largest double is counted and told of as an overflow. */
numberresult readnumber(numbertext& in, double& out);

/* An unsigned number at p, which it passes: digits, a period, digits, E with an optional sign and digits. The
 * digits are gathered in a double, m = 10m + digit, and the value is powi(10, n)*m with n the exponent less
 * the number of fraction digits; a fraction of zeros alone is dropped. 0: good, -1: no digits, -2: no
 * exponent digits. */
int readfloat(const char*& p, const double* tens, double& out);

/* The floor of reading: one block, digits as integers, one division a number. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
    FILE* f = fopen("read.dat", "rb");
    if (!f) return 1;
    fseek(f, 0, SEEK_END);
    const long size = ftell(f);
    rewind(f);
    char* text = malloc((size_t)size + 1);
    double* x = malloc(1000000 * sizeof *x);
    if (!text || !x || fread(text, 1, (size_t)size, f) != (size_t)size) return 1;
    text[size] = 0;
    long n = 0;
    for (const char* p = text; *p && n < 1000000; p++) {
        uint64_t m = 0;
        double scale = 1;
        for (; *p >= '0' && *p <= '9'; p++) m = 10 * m + (uint64_t)(*p - '0');
        if (*p == '.')
            for (p++; *p >= '0' && *p <= '9'; p++, scale *= 10) m = 10 * m + (uint64_t)(*p - '0');
        x[n++] = (double)m / scale;
    }
    return n != 1000000 || x[0] < 0;
}

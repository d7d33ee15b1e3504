/* The same curve: computed, scaled and written as the path operators of PostScript. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

static char *digits(char *p, int v) {
    char buf[12];
    int n = 0;
    if (v < 0) *p++ = '-', v = -v;
    do buf[n++] = (char)('0' + v % 10); while (v /= 10);
    while (n) *p++ = buf[--n];
    return p;
}

int main(void) {
    enum { N = 200000 };
    char *text = malloc(16 * N + 1000), *p = text;
    FILE *f = fopen("plot.eps", "w");
    if (!text || !f) return 1;
    p += sprintf(p, "%%!PS-Adobe-3.0 EPSF-3.0\n%%%%BoundingBox: 0 0 750 550\n0.24 0.24 scale\nnewpath\n");
    for (int i = 0; i < N; i++) {
        const double x = i / (N - 1.0), y = sin(40 * x) * exp(-2 * x) + 0.05 * sin(9000 * x);
        p = digits(p, (int)(400 + 2300 * x + 0.5));
        *p++ = ' ';
        p = digits(p, (int)(1200 + 900 * y + 0.5));
        p = (*p = ' ', p + 1);
        p = (*p = i ? 'L' : 'M', p + 1);
        *p++ = '\n';
        if (i % 400 == 399) { /* printers bound the length of a path */
            p += sprintf(p, "E\nB %d %d M\n", (int)(400 + 2300 * x + 0.5), (int)(1200 + 900 * y + 0.5));
        }
    }
    p += sprintf(p, "stroke\nshowpage\n");
    fwrite(text, 1, (size_t)(p - text), f);
    return fclose(f);
}

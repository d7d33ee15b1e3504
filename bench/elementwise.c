/* The floor: each assignment one pass over new memory, as a compiled program does it. */
#include <stdlib.h>
enum { N = 1000000 };
int main(void) {
    double *a = malloc(8 * N), *b = malloc(8 * N), *c = malloc(8 * N), *d = malloc(8 * N), *e = malloc(8 * N),
           *f = malloc(8 * N);
    for (int k = 0; k < N; k++) a[k] = k % 1000 + 1, b[k] = k % 999 + 1;
    double sum = 0;
    for (int i = 0; i < 10; i++) {
        for (int k = 0; k < N; k++) c[k] = a[k] + b[k];
        for (int k = 0; k < N; k++) d[k] = c[k] * a[k];
        for (int k = 0; k < N; k++) e[k] = d[k] / b[k] - 2 * a[k];
        for (int k = 0; k < N; k++) f[k] = (e[k] > a[k]) * e[k] + 1;
        sum += f[i];
    }
    return sum == 0;
}

/* The floor: one conversion a number by the C library. */
#include <stdio.h>
#include <stdlib.h>
int main(void) {
    static double a[1000000];
    for (int k = 0; k < 1000000; k++) a[k] = (k + 1) / 7.0;
    for (int i = 0; i < 100000; i++) {
        printf("%3d: ", i + 1);
        for (int j = 0; j < 10; j++) printf("%14.8g", a[10 * i + j]);
        putchar('\n');
    }
    return 0;
}

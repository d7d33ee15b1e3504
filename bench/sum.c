#include <stdlib.h>
int main(int argc, char** argv) {
    double s = 0, n = argc > 1 ? atof(argv[1]) : 1000000;
    for (double i = 1; i <= n; i++) s += 1 / (i * i);
    return s == 0;
}

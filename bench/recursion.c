#include <stdlib.h>
static double fib(double n) { return n < 2 ? n : fib(n - 1) + fib(n - 2); }
int main(int argc, char** argv) { return argc > 1 ? (int)fib(atof(argv[1])) : fib(24) == 0; }

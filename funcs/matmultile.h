/* funcs/matmultile.h - the body of one tile; included once for each processor, inside a namespace of its own,
 * with LANES numbers in a vector register, ROWS lines and VECTORS registers a line set there. No include
 * guard. */
using vec [[gnu::vector_size(LANES * 8), gnu::aligned(8), gnu::may_alias]] = double;

void run(size_t depth, const double* a, const double* b, double* tile) {
    vec sum[ROWS][VECTORS];
    vec* cell = reinterpret_cast<vec*>(tile);
#pragma GCC unroll 16
    for (int i = 0; i < ROWS; i++)
#pragma GCC unroll 16
        for (int v = 0; v < VECTORS; v++) sum[i][v] = cell[i * VECTORS + v];
    for (size_t k = 0; k < depth; k++, a += ROWS, b += LANES * VECTORS) {
        const vec* line = reinterpret_cast<const vec*>(b);
#pragma GCC unroll 16
        for (int i = 0; i < ROWS; i++)
#pragma GCC unroll 16
            for (int v = 0; v < VECTORS; v++) sum[i][v] += a[i] * line[v];
    }
#pragma GCC unroll 16
    for (int i = 0; i < ROWS; i++)
#pragma GCC unroll 16
        for (int v = 0; v < VECTORS; v++) cell[i * VECTORS + v] = sum[i][v];
}

const matmultiles kind = {ROWS, size_t(LANES) * VECTORS, run};

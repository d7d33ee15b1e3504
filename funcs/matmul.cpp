#include "funcs/matmul.h"

#include "funcs/matmultiles.h"
#include "interp/base/fpfault.h"

#include <algorithm>
#include <cfenv>
#include <vector>

namespace {

/* Blocks: DEPTH terms of the sums at a time, so that a tile's two panels stay in the first cache; WIDTH
 * columns at a time, so that the packed block of b stays in the second. A sum goes on from the result's cell
 * at the next block, so its order never changes. */
constexpr size_t DEPTH = 256, WIDTH = 384, PLAINLIMIT = 2048;
constexpr int FAULTS = FE_OVERFLOW | FE_DIVBYZERO | FE_INVALID;

struct view {
    const double* cell;
    size_t rowstride, colstride;
    double operator()(size_t i, size_t j) const { return cell[i * rowstride + j * colstride]; }
};

struct target {
    double* cell;
    size_t rowstride, colstride;
    double& operator()(size_t i, size_t j) const { return cell[i * rowstride + j * colstride]; }
};

void plainproduct(view a, view b, target c, size_t m, size_t n, size_t depth) {
    for (size_t i = 0; i < m; i++)
        for (size_t j = 0; j < n; j++) {
            double sum = 0;
            for (size_t k = 0; k < depth; k++) sum += a(i, k) * b(k, j);
            c(i, j) = sum;
        }
}

// `count` lines of `depth` numbers side by side: panel[k * width + i], with zeros for the lines that are
// missing.
void packpanel(double* panel, const double* from, size_t linestride, size_t depthstride, size_t count,
               size_t width, size_t depth) {
    for (size_t k = 0; k < depth; k++, from += depthstride, panel += width) {
        for (size_t i = 0; i < count; i++) panel[i] = from[i * linestride];
        std::fill(panel + count, panel + width, 0.0);
    }
}

struct packer {
    const matmultiles& kind;
    std::vector<double> b, a, tile;
    explicit packer(const matmultiles& k)
        : kind(k), b(DEPTH * ((WIDTH + k.cols - 1) / k.cols) * k.cols), a(DEPTH * k.rows),
          tile(k.rows * k.cols) {}
};

// One tile: the sums of the cells at (i, j) go on by `depth` terms.
void updatetile(packer& p, target c, size_t i, size_t j, size_t m, size_t n, size_t depth,
                const double* bpanel, bool first) {
    const size_t rows = std::min(p.kind.rows, m - i), cols = std::min(p.kind.cols, n - j);
    double* tile = p.tile.data();
    if (first) std::fill(p.tile.begin(), p.tile.end(), 0.0);
    for (size_t r = 0; r < rows && !first; r++)
        for (size_t s = 0; s < cols; s++) tile[r * p.kind.cols + s] = c(i + r, j + s);
    p.kind.run(depth, p.a.data(), bpanel, tile);
    for (size_t r = 0; r < rows; r++)
        for (size_t s = 0; s < cols; s++) c(i + r, j + s) = tile[r * p.kind.cols + s];
}

void tiledproduct(view a, view b, target c, size_t m, size_t n, size_t depth) {
    packer p(matmulbesttiles());
    const size_t mr = p.kind.rows, nr = p.kind.cols;
    for (size_t jc = 0; jc < n; jc += WIDTH) {
        const size_t width = std::min(WIDTH, n - jc);
        for (size_t kc = 0; kc < depth; kc += DEPTH) {
            const size_t terms = std::min(DEPTH, depth - kc);
            for (size_t j = 0; j < width; j += nr)
                packpanel(&p.b[j * terms], &b.cell[kc * b.rowstride + (jc + j) * b.colstride], b.colstride,
                          b.rowstride, std::min(nr, width - j), nr, terms);
            for (size_t i = 0; i < m; i += mr) {
                packpanel(p.a.data(), &a.cell[i * a.rowstride + kc * a.colstride], a.rowstride, a.colstride,
                          std::min(mr, m - i), mr, terms);
                for (size_t j = 0; j < width; j += nr)
                    updatetile(p, c, i, jc + j, m, jc + width, terms, &p.b[j * terms], kc == 0);
            }
        }
    }
}

// A cell is finite unless a product or a sum on its way was not, so only cells that are not need the careful
// sum.
[[gnu::cold]] void repaircells(view a, view b, target c, size_t m, size_t n, size_t depth) {
    for (size_t i = 0; i < m; i++)
        for (size_t j = 0; j < n; j++) {
            if (fpfinite(c(i, j))) continue;
            double sum = 0;
            for (size_t k = 0; k < depth; k++) sum = fpcheck(sum + fpcheck(a(i, k) * b(k, j)));
            c(i, j) = sum;
        }
    std::feclearexcept(FAULTS);
}

} // namespace

harrayptr matmul(const harray* a, const harray* b) {
    const size_t m = a->rows, n = b->cols, depth = a->cols;
    harrayptr result(harrayraw(a->rows, b->cols));
    const view x{cells(a) + 1, depth, 1}, y{cells(b) + 1, n, 1};
    const target c{cells(result.get()) + 1, n, 1};
    std::feclearexcept(FAULTS);
    if (m * n <= PLAINLIMIT / (depth + 1))
        plainproduct(x, y, c, m, n, depth);
    else if (depth == 0)
        harrayzero(result.get());
    else if (n < m &&
             n < matmulbesttiles().cols) // few columns: the product of the transposes fills the tiles
        tiledproduct({y.cell, 1, n}, {x.cell, 1, depth}, {c.cell, 1, n}, n, m, depth);
    else
        tiledproduct(x, y, c, m, n, depth);
    if (std::fetestexcept(FAULTS)) repaircells(x, y, c, m, n, depth);
    return result;
}

#include "funcs/elementwise.h"

#include "funcs/cellkernels.h"
#include "interp/base/fpfault.h"
#include "interp/base/tokens.h"

#include <algorithm>
#include <cfenv>
#include <cstring>

namespace {

constexpr size_t BLOCK = 1024;

// One operand, handed out block by block as a run of cells that matches the cells of the result.
class cellsource {
public:
    cellsource(const harray* m, uint32_t rows, uint32_t cols) : matrix(m), resultcols(cols) {
        straight = m->rows == rows && m->cols == cols;
        const size_t count = harraycount(m);
        constant = !straight && count <= 1;
        if (constant)
            std::fill(buffer, buffer + BLOCK, count ? cells(m)[1] : 0.0); // an empty matrix reads as 0
    }

    // Cells first .. first + n - 1 of the result, from 0; called in ascending order.
    const double* take(size_t first, size_t n) {
        if (straight) return cells(matrix) + 1 + first;
        if (!constant) recycle(n);
        return buffer;
    }

private:
    // Runs that neither leave a line of the matrix nor a row of the result.
    void recycle(size_t n) {
        for (size_t k = 0; k < n;) {
            const double* line = cells(matrix) + 1 + size_t(row) * matrix->cols;
            const size_t left = std::min<size_t>(n - k, resultcols - col);
            const size_t run = matrix->cols == 1 ? left : std::min<size_t>(left, matrix->cols - wrapped);
            if (matrix->cols == 1)
                std::fill_n(buffer + k, run, *line);
            else
                std::copy_n(line + wrapped, run, buffer + k);
            k += run;
            advance(uint32_t(run));
        }
    }
    void advance(uint32_t run) {
        col += run;
        wrapped = matrix->cols == 1 ? 0 : (wrapped + run) % matrix->cols;
        if (col < resultcols) return;
        col = wrapped = 0;
        if (++row == matrix->rows) row = 0;
    }

    const harray* matrix;
    uint32_t resultcols, col = 0;  // column of the next cell of the result
    uint32_t row = 0, wrapped = 0; // its row and column in this matrix, from 0
    bool straight, constant;
    double buffer[BLOCK];
};

[[gnu::cold]] void repairblock(int op, double* r, const double* a, const double* b, size_t n) {
    const bool quotient = op == TOKDIVIDE || op == TOKCELLDIVIDE;
    for (size_t k = 0; k < n; k++)
        if (!fpfinite(r[k])) r[k] = quotient ? fprepairdiv(a[k], b[k]) : fprepair(r[k]);
    std::feclearexcept(CELLFAULTS);
}

} // namespace

harrayptr elementwise(int op, const harray* a, const harray* b, harray* room) {
    const uint32_t rows = std::max(a->rows, b->rows), cols = std::max(a->cols, b->cols);
    cellsource left(a, rows, cols), right(b, rows, cols);
    const cellkernel run = cellkernelof(op);
    const bool watched = cellopfaults(op);
    if (watched) std::feclearexcept(CELLFAULTS);
    harrayptr fresh(room ? nullptr : harrayraw(rows, cols));
    double* result = cells(room ? room : fresh.get()) + 1;
    double buffer[BLOCK]; // a block whose cells are an operand's is finished here, for the repair needs both
    const size_t count = size_t(rows) * cols;
    for (size_t first = 0; first < count; first += BLOCK) {
        const size_t n = std::min(BLOCK, count - first);
        const double* x = left.take(first, n);
        const double* y = right.take(first, n);
        double* r = room ? buffer : result + first;
        run(r, x, y, n);
        if (watched && std::fetestexcept(CELLFAULTS)) repairblock(op, r, x, y, n);
        if (room) memcpy(result + first, buffer, n * sizeof(double));
    }
    return room ? harrayptr(room) : std::move(fresh);
}

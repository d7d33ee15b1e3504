#include "funcs/matrixresult.h"

#include "interp/base/fpfault.h"

harrayptr matrixfrom(size_t rows, size_t cols, const double* x) {
    harrayptr result(harrayraw(uint32_t(rows), uint32_t(cols)));
    double* cell = cells(result.get()) + 1;
    for (size_t k = 0; k < rows * cols; k++) cell[k] = fpcheck(x[k]);
    return result;
}

int matrixresult(size_t rows, size_t cols, const std::vector<double>& x) {
    return symtabmatrix(0, 0, matrixfrom(rows, cols, x.data()));
}

std::vector<double> columnof(const matrixoperand& m, size_t j) {
    std::vector<double> x(m.rows());
    for (size_t i = 0; i < m.rows(); i++) x[i] = m.cell()[1 + i * m.cols() + j];
    return x;
}

/* funcs/eigenimpl.h - what the stages of EIGEN hand on.
 * Owns:    nothing: it names the matrix on its way. Callers: eigencore.cpp, eigenvectors.cpp alone. */
#pragma once

#include <cstddef>
#include <vector>

/* h is reduced in place to Hessenberg and then to quasi-triangular form; row j of zt is column j of the
 * transformation, so that both sides of a similarity run along rows. */
struct eigenwork {
    size_t n;
    std::vector<double>& h;
    std::vector<double> zt, scale;
    double* row(size_t i) { return &h[i * n]; }
    double& at(size_t i, size_t j) { return h[i * n + j]; }
};

// The vectors of the quasi-triangular form with these eigenvalues, taken back to the matrix as it was given:
// the columns of vr and vi, each of unit length.
void eigenvectors(eigenwork& w, double norm, const std::vector<double>& wr, const std::vector<double>& wi,
                  std::vector<double>& vr, std::vector<double>& vi);

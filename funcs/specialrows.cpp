/* The rows of the mathematical functions of special/. */
#include "funcs/builtin.h"
#include "funcs/rows.h"
#include "special/airy.h"
#include "special/bessel.h"
#include "special/beta.h"
#include "special/cbessel.h"
#include "special/combin.h"
#include "special/elliptic.h"
#include "special/errorfn.h"
#include "special/expint.h"
#include "special/gamma.h"
#include "special/hypergeo.h"
#include "special/incgamma.h"
#include "special/orthopoly.h"
#include "special/physint.h"
#include "special/primes.h"
#include "special/struve.h"
#include "special/zeta.h"

namespace {

constexpr scalarrow gammarows[] = {
    {-70, gammafn},  {-17, loggamma}, {-69, digamma}, {-202, pgamma}, {-52, betafn},
    {-264, logbeta}, {-53, igamma},   {-203, jgamma}, {-42, ibeta},   {-204, jbeta},
    {-137, poch},    {-265, poch1},   {-228, rfact},
};
constexpr scalarrow errorrows[] = {
    {-21, erffn},    {-24, erfcfn},   {-239, erfinv}, {-266, erfcinv}, {-252, ierfc},
    {-71, expint},   {-60, expintn},  {-72, logint},  {-61, sinint},   {-62, cosint},
    {-268, sinhint}, {-267, coshint}, {-269, logrel},
};
constexpr scalarrow zetarows[] = {
    {-255, zeta}, {-257, lambdafn}, {-256, betacat}, {-235, dilog}, {-251, clausen},
};
constexpr scalarrow besselrows[] = {
    {-26, bessj},   {-27, bessy},   {-28, bessi},   {-29, bessk},   {-274, abessj},  {-275, abessy},
    {-276, abessi}, {-277, abessk}, {-278, beskes}, {-279, besks},  {-270, spbj},    {-271, spby},
    {-272, spbi},   {-273, spbk},   {-229, bairy},  {-240, kelvin}, {-254, ibessi0}, {-280, ibessjoxi},
};

constexpr scalarrow combinrows[] = {
    {-122, fact},  {-63, bincoef}, {-101, stirl1}, {-102, stirl2}, {-284, catnum}, {-73, bernum},
    {-84, eulnum}, {-120, partu},  {-121, partd},  {-124, harnum}, {-209, nprime},
};
constexpr scalarrow integralrows[] = {{-253, sievert}, {-258, abram}};

// ELLIPE(m) complete, ELLIPE(phi, m) incomplete; ELLIPPI(n, m) and ELLIPPI(n, phi, m) likewise.
double ellipeof(double n, double x, double y) { return n < 2 ? ellipe(x) : ellipeinc(x, y); }
double ellippiof(double n, double x, double y, double z) {
    return n < 3 ? ellippi(x, y) : ellippiinc(x, y, z);
}

constexpr scalarrow ellipticrows[] = {
    {-32, ellipf},
    {-33, ellipk},
    {-35, ellipeof, COUNTED},
    {-38, ellippiof, COUNTED},
    {-39, jacobisn},
    {-40, jacobicn},
    {-41, jacobidn},
    {-55, jacobiam},
    {-150, jacobins},
    {-151, jacobinc},
    {-152, jacobind},
    {-153, jacobisc},
    {-154, jacobisd},
    {-155, jacobics},
    {-156, jacobicd},
    {-157, jacobids},
    {-158, jacobidc},
    {-159, jacobielf},
    {-161, theta},
    {-230, jzeta},
};
constexpr scalarrow polynomialrows[] = {
    {-31, leg},      {-30, aleg},      {-138, jacobi1},   {-139, jacobi2}, {-140, gegenp},   {-141, cheb1},
    {-142, cheb2},   {-143, laguerre}, {-144, alaguerre}, {-145, hermite}, {-146, hermite2}, {-147, charlier},
    {-148, bernpol}, {-281, plem},     {-282, plemder},   {-283, peqder},
};
constexpr scalarrow hypergeometricrows[] = {
    {-243, hgeof}, {-244, ghgeof}, {-246, chu}, {-309, chm}, {-241, struved}, {-242, struveld},
};

template <int count> void add(const scalarrow (&rows)[count]) { builtinadd(rows, count); }

} // namespace

void specialrows() {
    add(gammarows);
    add(errorrows);
    add(zetarows);
    add(besselrows);
    add(ellipticrows);
    add(polynomialrows);
    add(hypergeometricrows);
    add(combinrows);
    add(integralrows);
}

/* The rows of the mathematical functions of special/. */
#include "funcs/builtin.h"
#include "funcs/rows.h"
#include "special/airy.h"
#include "special/bessel.h"
#include "special/gamma.h"
#include "special/zeta.h"

#include <iterator>

namespace {

constexpr scalarrow rows[] = {
    // gamma and its relatives
    {-70, gammafn},
    {-17, loggamma},
    {-69, digamma},
    {-202, pgamma},
    // zeta functions
    {-255, zeta},
    {-257, lambdafn},
    {-256, betacat},
    {-235, dilog},
    {-251, clausen},
    // Bessel functions
    {-26, bessj},
    {-27, bessy},
    {-28, bessi},
    {-29, bessk},
    {-274, abessj},
    {-275, abessy},
    {-276, abessi},
    {-277, abessk},
    {-278, beskes},
    {-279, besks},
    {-270, spbj},
    {-271, spby},
    {-272, spbi},
    {-273, spbk},
    {-254, ibessi0},
    {-280, ibessjoxi},
    {-229, bairy},
};

} // namespace

void specialrows() { builtinadd(rows, int(std::size(rows))); }

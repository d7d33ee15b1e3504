/* Statistics of columns, and indices of information and diversity of a set of counts or shares. */
#include "funcs/builtin.h"
#include "funcs/matrixoperand.h"
#include "funcs/matrixresult.h"
#include "funcs/rows.h"
#include "interp/base/fpfault.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace {

using vec = std::vector<double>;

double mean(const vec& x) {
    double sum = 0, rest = 0;
    for (const double t : x) sum += t;
    const double m = sum / double(x.size());
    if (!fpfinite(m)) { // the sum is beyond the range, the mean is not
        double share = 0;
        for (const double t : x) share += t / double(x.size());
        return fpcheck(share);
    }
    for (const double t : x) rest += t - m; // what the sum has lost
    return m + rest / double(x.size());
}

// The central moment of order k over n, the deviations from the mean.
double centralmoment(const vec& x, double k) {
    const double m = mean(x);
    double sum = 0;
    for (const double t : x) {
        const double d = t - m;
        sum += k == 2 ? d * d : k == 3 ? d * d * d : k == 4 ? d * d * d * d : std::pow(d, k);
    }
    return fpcheck(sum / double(x.size()));
}

// With n - 1 below, and the correction for the rounding of the mean (T. F. Chan and others, Amer. Statist. 37
// (1983) 242).
double variance(const vec& x) {
    if (x.size() < 2) return 0;
    const double m = mean(x), n = double(x.size());
    double sum = 0, rest = 0;
    for (const double t : x) {
        sum += (t - m) * (t - m);
        rest += t - m;
    }
    return fpcheck((sum - rest * rest / n) / (n - 1));
}
double deviation(const vec& x) { return std::sqrt(variance(x)); }
double absolutedeviation(const vec& x) {
    const double m = mean(x);
    double sum = 0;
    for (const double t : x) sum += std::fabs(t - m);
    return fpcheck(sum / double(x.size()));
}
double skewness(const vec& x) {
    const double m2 = centralmoment(x, 2);
    return fpdiv(centralmoment(x, 3), m2 * std::sqrt(m2));
}
double kurtosis(const vec& x) {
    const double m2 = centralmoment(x, 2);
    return fpdiv(centralmoment(x, 4), m2 * m2) - 3;
}

/* The quantile p of sorted or unsorted x: between the order statistics around 1 + p (n - 1), in proportion
 * (definition 7 of R. J. Hyndman, Y. Fan, Amer. Statist. 50 (1996) 361). Orders x in part. */
double quantile(vec& x, double p) {
    const double place = p * double(x.size() - 1);
    const size_t low = size_t(place);
    std::nth_element(x.begin(), x.begin() + long(low), x.end());
    const double below = x[low], part = place - double(low);
    if (part == 0) return below;
    const double above = *std::min_element(x.begin() + long(low) + 1, x.end());
    const double gap = above - below;
    return fpfinite(gap) ? below + part * gap : (1 - part) * below + part * above;
}
double median(const vec& x) {
    vec copy = x;
    return quantile(copy, 0.5);
}

double probability(const callargs& a, double p) {
    if (!(p >= 0 && p <= 1)) argrange(a.name());
    return p;
}
double momentorder(const callargs& a, double k) {
    if (!(k >= 0 && k == std::trunc(k))) argrange(a.name());
    return k;
}

// A statistic by its code, on one column, which must not be empty.
double evaluated(const callargs& a, const vec& x) {
    if (x.empty()) argshape(a.name());
    switch (a.code) {
    case -420:
    case -667: return mean(x);
    case -419:
    case -668: return median(x);
    case -418:
    case -669: return variance(x);
    case -417:
    case -670: return deviation(x);
    case -416:
    case -671: return absolutedeviation(x);
    case -415: return skewness(x);
    case -414: return kurtosis(x);
    case -413: {
        vec copy = x;
        return quantile(copy, probability(a, a.scalar(2)));
    }
    default: return centralmoment(x, momentorder(a, a.scalar(2)));
    }
}

double ofcolumn(const callargs& a) { return evaluated(a, columnof(matrixoperand(a[1]), 0)); }

// Of each column, as a row.
int ofcolumns(const callargs& a) {
    const matrixoperand m(a[1]);
    if (m.count() == 0) argshape(a.name());
    vec row(m.cols());
    for (size_t j = 0; j < m.cols(); j++) row[j] = evaluated(a, columnof(m, j));
    return matrixresult(1, m.cols(), row);
}

// MOMENT has no other form in the call path: a matrix of several columns is taken as one column.
double moment(const callargs& a) {
    const matrixoperand m(a[1]);
    return evaluated(a, vec(m.cell() + 1, m.cell() + 1 + m.count()));
}

// MQUANTILE(M, Q): a row for each probability in Q, a column for each of M.
int mquantile(const callargs& a) {
    const matrixoperand m(a[1]), q(a[2]);
    if (m.count() == 0) argshape(a.name());
    vec x, result(q.count() * m.cols());
    for (size_t j = 0; j < m.cols(); j++) {
        x = columnof(m, j);
        for (size_t k = 0; k < q.count(); k++)
            result[k * m.cols() + j] = quantile(x, probability(a, q.cell()[k + 1]));
    }
    return matrixresult(q.count(), m.cols(), result);
}

int sumsq(const callargs& a) {
    const matrixoperand m(a[1]);
    double sum = 0;
    for (size_t k = 1; k <= m.count(); k++) sum += m.cell()[k] * m.cell()[k];
    return symtabtempscalar(0, 0, fpcheck(sum));
}

// Counts or shares, none negative and not all 0, divided by their sum; those of 0 are left out.
vec shares(const callargs& a) {
    const matrixoperand m(a[1]);
    vec p;
    double most = 0, sum = 0;
    for (size_t k = 1; k <= m.count(); k++) {
        if (m.cell()[k] < 0) argrange(a.name());
        most = std::max(most, m.cell()[k]);
    }
    if (most == 0) argrange(a.name());
    for (size_t k = 1; k <= m.count(); k++) sum += m.cell()[k] / most;
    for (size_t k = 1; k <= m.count(); k++)
        if (m.cell()[k] > 0) p.push_back(m.cell()[k] / most / sum);
    return p;
}
double shannon(const vec& p) {
    double h = 0;
    for (const double x : p) h -= x > 0 ? x * std::log(x) : 0;
    return h;
}
double entropy(const callargs& a) { return shannon(shares(a)); }
// (C. E. Shannon's entropy for q = 1, the limit for MAXPOS.)
double renyi(const callargs& a) {
    const vec p = shares(a);
    const double q = a.scalar(2, 2);
    if (!(q >= 0)) argrange(a.name());
    if (q == 1) return shannon(p);
    const double most = *std::max_element(p.begin(), p.end());
    if (q >= MAXPOS) return -std::log(most);
    double sum = 0;
    for (const double x : p) sum += std::pow(x / most, q);
    return (q * std::log(most) + std::log(sum)) / (1 - q);
}
// The chance that two drawn with replacement differ.
double simpson(const callargs& a) {
    double sum = 0;
    for (const double x : shares(a)) sum += x * x;
    return 1 - sum;
}
// Entropy over its greatest value for that number of kinds; 1 for a single kind.
double evenness(const callargs& a) {
    const vec p = shares(a);
    return p.size() < 2 ? 1 : shannon(p) / std::log(double(p.size()));
}
// Half the mean difference of two elements over the mean.
double gini(const callargs& a) {
    const matrixoperand m(a[1]);
    const vec p = shares(a);
    vec x(m.count() - p.size(), 0.0); // those of 0 count here
    x.insert(x.end(), p.begin(), p.end());
    std::sort(x.begin(), x.end());
    const double n = double(x.size());
    double sum = 0;
    for (size_t i = 0; i < x.size(); i++) sum += (2 * double(i) + 1 - n) * x[i];
    return sum / n;
}

constexpr numberrow numbers[] = {{-420, ofcolumn}, {-419, ofcolumn}, {-418, ofcolumn}, {-417, ofcolumn},
                                 {-416, ofcolumn}, {-415, ofcolumn}, {-414, ofcolumn}, {-413, ofcolumn},
                                 {-441, moment},   {-433, entropy},  {-432, renyi},    {-431, simpson},
                                 {-430, evenness}, {-429, gini}};
constexpr valuerow values[] = {{-420, ofcolumns}, {-419, ofcolumns}, {-418, ofcolumns}, {-417, ofcolumns},
                               {-416, ofcolumns}, {-415, ofcolumns}, {-414, ofcolumns}, {-413, ofcolumns},
                               {-667, ofcolumns}, {-668, ofcolumns}, {-669, ofcolumns}, {-670, ofcolumns},
                               {-671, ofcolumns}, {-774, mquantile}, {-717, sumsq}};

} // namespace

void columnstatsrows() {
    builtinadd(numbers, int(std::size(numbers)));
    builtinadd(values, int(std::size(values)));
}

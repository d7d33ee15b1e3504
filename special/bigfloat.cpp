// The classical algorithms, Knuth, TAOCP 2, 4.3.1.
#include "special/bigfloat.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>

namespace {

using digits = std::vector<uint32_t>;

// Takes zeros off both ends and what is beyond the width off the low one.
void settle(bigfloat& a, size_t width) {
    digits& d = a.digit;
    while (!d.empty() && d.back() == 0) d.pop_back();
    size_t low = d.size() > width ? d.size() - width : 0;
    while (low < d.size() && d[low] == 0) low++;
    d.erase(d.begin(), d.begin() + static_cast<std::ptrdiff_t>(low));
    a.exponent += static_cast<int64_t>(low);
    if (d.empty()) a = bigfloat();
}

// -1, 0, 1 as |a| is below, at or above |b|.
int compare(const bigfloat& a, const bigfloat& b) {
    const int64_t ta = a.exponent + static_cast<int64_t>(a.digit.size());
    const int64_t tb = b.exponent + static_cast<int64_t>(b.digit.size());
    if (ta != tb) return ta < tb ? -1 : 1;
    const size_t n = std::max(a.digit.size(), b.digit.size());
    for (size_t k = 1; k <= n; k++) {
        const uint32_t da = k <= a.digit.size() ? a.digit[a.digit.size() - k] : 0;
        const uint32_t db = k <= b.digit.size() ? b.digit[b.digit.size() - k] : 0;
        if (da != db) return da < db ? -1 : 1;
    }
    return 0;
}

// The digit of weight 2^(32 place).
uint32_t at(const bigfloat& a, int64_t place) {
    const int64_t k = place - a.exponent;
    return k >= 0 && k < static_cast<int64_t>(a.digit.size()) ? a.digit[static_cast<size_t>(k)] : 0;
}

} // namespace

bigfloat::bigfloat(double x) {
    if (x == 0) return;
    int e;
    const double m = std::frexp(std::fabs(x), &e); // |x| = m 2^e, m in [1/2, 1)
    const auto whole = static_cast<uint64_t>(std::ldexp(m, 53));
    e -= 53;
    const int64_t place = e >= 0 ? e / 32 : -((31 - e) / 32);
    const int shift = static_cast<int>(e - place * 32); // 0..31
    const uint64_t low = whole << shift, high = shift == 0 ? 0 : whole >> (64 - shift);
    negative = x < 0;
    exponent = place;
    digit = {static_cast<uint32_t>(low), static_cast<uint32_t>(low >> 32), static_cast<uint32_t>(high)};
    settle(*this, 3);
}

bigfloat::bigfloat(dd x) { *this = bigadd(bigfloat(x.hi), bigfloat(x.lo), 70); }

dd bigfloat::value(int64_t* power) const {
    *power = 0;
    if (zero()) return 0;
    dd r = 0;
    const size_t n = digit.size(), used = std::min<size_t>(n, 5);
    for (size_t k = 1; k <= used; k++) r = r * 4294967296.0 + dd(digit[n - k]);
    *power = 32 * (exponent + static_cast<int64_t>(n - used));
    return negative ? -r : r;
}

int64_t bigfloat::magnitude() const {
    if (zero()) return LLONG_MIN;
    return 32 * (exponent + static_cast<int64_t>(digit.size())) - 1 - std::countl_zero(digit.back());
}

bigfloat bigadd(const bigfloat& a, const bigfloat& b, size_t width) {
    if (a.zero()) return b;
    if (b.zero()) return a;
    const int order = compare(a, b);
    const bigfloat& big = order >= 0 ? a : b;
    const bigfloat& small = order >= 0 ? b : a;
    const bool subtract = a.negative != b.negative;
    if (order == 0 && subtract) return {};
    const int64_t top = big.exponent + static_cast<int64_t>(big.digit.size());
    const int64_t bottom = std::max(std::min(a.exponent, b.exponent), top - static_cast<int64_t>(width) - 2);
    bigfloat r;
    r.negative = big.negative;
    r.exponent = bottom;
    int64_t carry = 0;
    for (int64_t place = bottom; place < top; place++) {
        carry += at(big, place);
        carry += subtract ? -static_cast<int64_t>(at(small, place)) : static_cast<int64_t>(at(small, place));
        r.digit.push_back(static_cast<uint32_t>(carry));
        carry >>= 32; // arithmetic: -1 for a borrow
    }
    if (carry > 0) r.digit.push_back(static_cast<uint32_t>(carry));
    settle(r, width);
    return r;
}

bigfloat bigmul(const bigfloat& a, const bigfloat& b, size_t width) {
    if (a.zero() || b.zero()) return {};
    bigfloat r;
    r.negative = a.negative != b.negative;
    r.exponent = a.exponent + b.exponent;
    r.digit.assign(a.digit.size() + b.digit.size(), 0);
    for (size_t i = 0; i < a.digit.size(); i++) {
        uint64_t carry = 0;
        for (size_t j = 0; j < b.digit.size(); j++) {
            carry += static_cast<uint64_t>(a.digit[i]) * b.digit[j] + r.digit[i + j];
            r.digit[i + j] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
        r.digit[i + b.digit.size()] = static_cast<uint32_t>(carry);
    }
    settle(r, width);
    return r;
}

namespace {

// One digit of the quotient: n[k .. k+v.size()] by v, whose top bit is set; the remainder stays in n.
uint32_t quotientdigit(digits& n, size_t k, const digits& v) {
    const size_t m = v.size();
    const uint64_t top = (static_cast<uint64_t>(n[k + m]) << 32) | n[k + m - 1];
    uint64_t q = top / v[m - 1], rest = top % v[m - 1];
    while (q > UINT32_MAX || (m > 1 && q * v[m - 2] > ((rest << 32) | n[k + m - 2]))) {
        q--;
        rest += v[m - 1];
        if (rest > UINT32_MAX) break;
    }
    int64_t borrow = 0;
    uint64_t carry = 0;
    for (size_t i = 0; i < m; i++) {
        carry += q * v[i];
        borrow += static_cast<int64_t>(n[k + i]) - static_cast<int64_t>(static_cast<uint32_t>(carry));
        n[k + i] = static_cast<uint32_t>(borrow);
        borrow >>= 32;
        carry >>= 32;
    }
    borrow += static_cast<int64_t>(n[k + m]) - static_cast<int64_t>(carry);
    n[k + m] = static_cast<uint32_t>(borrow);
    if (borrow >= 0) return static_cast<uint32_t>(q);
    carry = 0; // one too much: add the divisor back
    for (size_t i = 0; i < m; i++) {
        carry += static_cast<uint64_t>(n[k + i]) + v[i];
        n[k + i] = static_cast<uint32_t>(carry);
        carry >>= 32;
    }
    n[k + m] += static_cast<uint32_t>(carry);
    return static_cast<uint32_t>(q - 1);
}

digits shiftedleft(const digits& d, int shift, size_t zerosbelow) {
    digits r(zerosbelow, 0);
    uint64_t carry = 0;
    for (uint32_t x : d) {
        carry |= static_cast<uint64_t>(x) << shift;
        r.push_back(static_cast<uint32_t>(carry));
        carry >>= 32;
    }
    r.push_back(static_cast<uint32_t>(carry));
    return r;
}

} // namespace

bigfloat bigdiv(const bigfloat& a, const bigfloat& b, size_t width) {
    if (a.zero()) return {};
    const int shift = std::countl_zero(b.digit.back());
    digits v = shiftedleft(b.digit, shift, 0);
    v.pop_back(); // the top digit that the shift did not need
    const size_t wanted = width + 1 + v.size();
    const size_t below = wanted > a.digit.size() ? wanted - a.digit.size() : 0;
    digits n = shiftedleft(a.digit, shift, below);
    bigfloat r;
    r.negative = a.negative != b.negative;
    r.exponent = a.exponent - static_cast<int64_t>(below) - b.exponent;
    r.digit.assign(n.size() - v.size(), 0);
    for (size_t k = r.digit.size(); k-- > 0;) r.digit[k] = quotientdigit(n, k, v);
    settle(r, width);
    return r;
}

bigfloat bigscale(bigfloat a, int64_t power) {
    if (a.zero()) return a;
    const int64_t whole = power >= 0 ? power / 32 : -((31 - power) / 32);
    a = bigmul(a, bigfloat(std::ldexp(1.0, static_cast<int>(power - 32 * whole))), a.digit.size() + 2);
    a.exponent += whole;
    return a;
}

/* funcs/eachprocessor.h - compiles the file that PROCESSORBODY names once for each kind of processor.
 * Owns:    the kinds: anyprocessor, avx2, avx512, each a namespace that holds what the file defines, and how
 *          many doubles a register has.
 * Callers: files whose inner loops gain by wider registers; included inside their unnamed namespace.
 * Never:   includes anything else: a header's inline code must not be compiled for a processor that may not
 * be there. */
namespace anyprocessor {
[[maybe_unused]] constexpr int REGISTERDOUBLES = 2;
#include PROCESSORBODY
} // namespace anyprocessor

#pragma GCC push_options
#pragma GCC target("avx2")
namespace avx2 {
[[maybe_unused]] constexpr int REGISTERDOUBLES = 4;
#include PROCESSORBODY
} // namespace avx2
#pragma GCC pop_options

#pragma GCC push_options
#pragma GCC target("avx512f")
namespace avx512 {
[[maybe_unused]] constexpr int REGISTERDOUBLES = 8;
#include PROCESSORBODY
} // namespace avx512
#pragma GCC pop_options

// The best that this processor has.
template <class T> const T& bestprocessor(const T& any, const T& on2, const T& on512) {
    if (__builtin_cpu_supports("avx512f")) return on512;
    return __builtin_cpu_supports("avx2") ? on2 : any;
}

#include "funcs/matmultiles.h"

namespace {

namespace sse2 {
constexpr int LANES = 2, ROWS = 4, VECTORS = 2;
#include "funcs/matmultile.h"
} // namespace sse2

#pragma GCC push_options
#pragma GCC target("avx2")
namespace avx2 {
constexpr int LANES = 4, ROWS = 4, VECTORS = 2;
#include "funcs/matmultile.h"
} // namespace avx2
#pragma GCC pop_options

#pragma GCC push_options
#pragma GCC target("avx512f")
namespace avx512 {
constexpr int LANES = 8, ROWS = 8, VECTORS = 3;
#include "funcs/matmultile.h"
} // namespace avx512
#pragma GCC pop_options

} // namespace

const matmultiles* matmulkinds(int k) {
    const struct {
        bool here;
        const matmultiles* kind;
    } kinds[] = {{bool(__builtin_cpu_supports("avx512f")), &avx512::kind},
                 {bool(__builtin_cpu_supports("avx2")), &avx2::kind},
                 {true, &sse2::kind}};
    for (const auto& row : kinds)
        if (row.here && k-- == 0) return row.kind;
    return nullptr;
}

const matmultiles& matmulbesttiles() {
    static const matmultiles& best = *matmulkinds(0);
    return best;
}

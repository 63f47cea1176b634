// In-place Shell sorts with companion arrays, swaps, and the smallest or
// largest value of an array.
#include <numeric>
#include <tuple>
#include <utility>

#include "core/error.hpp"
#include "knotwork/numeric.h"

using namespace kw;

namespace {

// Sorts a(0..n) ascending; each companion array is permuted alongside.
// Gaps shrink as gap = (5 gap - 1) / 11 from n + 1 down to 1; within a gap
// chain an element moves right only past smaller ones, so equal values keep
// the order in which the chain meets them.
template <class K, class... C>
void shell_sort(K *a, int32_t n, C *...companion) noexcept {
    int32_t gap = n + 1;
    while (gap > 1) {
        gap = gap >= 5 ? (5 * gap - 1) / 11 : 1;
        for (int32_t i = n - gap; i >= 0; --i) {
            const K t = a[i];
            const auto held = std::make_tuple(companion[i]...);
            int32_t j = i + gap;
            for (; j <= n && t > a[j]; j += gap) {
                a[j - gap] = a[j];
                ((companion[j - gap] = companion[j]), ...);
            }
            a[j - gap] = t;
            std::apply([&](const auto &...h) { ((companion[j - gap] = h), ...); }, held);
        }
    }
}

// The smallest (which = 1) or largest (which = 2) of rows 0..n, columns
// 0..m; code 14 and a zero for another which or a negative count.
template <class T>
T extreme(const T *const *a, int32_t n, int32_t m, int16_t which, char *name) noexcept {
    if (n < 0 || m < 0 || (which != 1 && which != 2)) {
        fail(KW_EARG, name);
        return T{};
    }
    T best = a[0][0];
    for (int32_t i = 0; i <= n; ++i)
        for (int32_t j = 0; j <= m; ++j)
            if (which == 1 ? a[i][j] < best : a[i][j] > best) best = a[i][j];
    return best;
}

// Sorts a and returns the sorting permutation in idx.
template <class K>
void shell_sort_indexed(K *a, int32_t n, int32_t *idx) noexcept {
    if (n >= 0) std::iota(idx, idx + n + 1, 0);
    shell_sort(a, n, idx);
}

}  // namespace

void M_rshell(double *a, int32_t n) { shell_sort(a, n); }
void M_ishell(int32_t *a, int32_t n) { shell_sort(a, n); }
void M_rishel(double *a, int32_t *b, int32_t n) { shell_sort(a, n, b); }
void M_rrshel(double *a, double *b, int32_t n) { shell_sort(a, n, b); }
void M_rshel2(double *a, int32_t n, int32_t *idx) { shell_sort_indexed(a, n, idx); }
void M_ishel2(int32_t *a, int32_t n, int32_t *idx) { shell_sort_indexed(a, n, idx); }

void M_reswap(double *a, double *b) { std::swap(*a, *b); }
void M_inswap(int32_t *a, int32_t *b) { std::swap(*a, *b); }
void M_poswap(Point *a, Point *b) { std::swap(*a, *b); }
void M_cpswap(ControlPoint *a, ControlPoint *b) { std::swap(*a, *b); }

double M_r1mima(const double *a, int32_t n, int16_t which) {
    static char name[] = "M_R1MIMA";
    return extreme(&a, 0, n, which, name);
}
double M_r2mima(double *const *a, int32_t n, int32_t m, int16_t which) {
    static char name[] = "M_R2MIMA";
    return extreme<double>(a, n, m, which, name);
}
int32_t M_i1mima(const int32_t *a, int32_t n, int16_t which) {
    static char name[] = "M_I1MIMA";
    return extreme(&a, 0, n, which, name);
}
int32_t M_i2mima(int32_t *const *a, int32_t n, int32_t m, int16_t which) {
    static char name[] = "M_I2MIMA";
    return extreme<int32_t>(a, n, m, which, name);
}

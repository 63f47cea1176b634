// Pieces the LU, SVD and least-squares solvers share.
#pragma once

#include <algorithm>

#include "numeric/elements.hpp"
#include "numeric/matrix.hpp"

namespace kw {

// Row access to the factors of a square full or banded matrix.
struct FullRows {
    double *const *a;
    double &operator()(int32_t i, int32_t j) const noexcept { return a[i][j]; }
};
struct BandRows {
    double *const *a;
    int32_t h;
    double &operator()(int32_t i, int32_t j) const noexcept { return a[i][j - i + h]; }
};

// f(rows, below, above) with the layout of A and the diagonals it keeps
// below and above the main one (all of them for a full matrix).
template <class F>
auto with_rows(const RealMatrix &A, F f) {
    if (A.type == KW_BANDED) return f(BandRows{A.a, band_below(A.w)}, band_below(A.w), band_above(A.w));
    return f(FullRows{A.a}, A.n, A.n);
}

// v times s, the markers of a ControlPoint kept.
constexpr double times(double v, double s) noexcept { return v * s; }
constexpr Point times(const Point &v, double s) noexcept { return s * v; }
constexpr ControlPoint times(const ControlPoint &v, double s) noexcept { return scale(s, v); }

// Forward pass y := L^-1 b with the unit lower factor, then back pass
// x := U^-1 y, over the stored part of each row, each row's division one
// reciprocal of its diagonal entry. y may be x, and either b.
template <class T, class Rows>
void substitute(Rows a, int32_t n, int32_t below, int32_t above, const T *b, T *y, T *x) noexcept {
    for (int32_t i = 0; i <= n; ++i) {
        Combination<T> s;
        s.add(1.0, b[i]);
        for (int32_t p = std::max(i - below, 0); p < i; ++p) s.add(-a(i, p), y[p]);
        y[i] = s.value();
    }
    for (int32_t i = n; i >= 0; --i) {
        Combination<T> s;
        s.add(1.0, y[i]);
        for (int32_t p = i + 1; p <= std::min(i + above, n); ++p) s.add(-a(i, p), x[p]);
        x[i] = times(s.value(), 1.0 / a(i, i));
    }
}

// The inverse column by column: e is set to unit column k, solve(e, k)
// replaces it by column k of the inverse, which is copied into inv.
template <class Solve>
int16_t inverse_columns(int32_t n, double *e, double *const *inv, Solve solve) {
    for (int32_t k = 0; k <= n; ++k) {
        std::fill_n(e, n + 1, 0.0);
        e[k] = 1.0;
        if (solve(e, k)) return 1;
        for (int32_t i = 0; i <= n; ++i) inv[i][k] = e[i];
    }
    return 0;
}

}  // namespace kw

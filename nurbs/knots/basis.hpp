// The innermost numerical steps of every evaluator: span search, the
// non-zero B-spline basis functions, their derivatives, and the derivatives
// of rational basis functions. Inline and allocation-free, with fixed tables
// as wide as the greatest degree; callers have checked their inputs.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "knotwork/types.h"

namespace kw {

// Width of the fixed tables: the p + 1 basis functions of the greatest degree.
inline constexpr int kTable = KW_MAX_DEGREE + 1;
// Rows of the fixed derivative tables: orders 0 to KW_MAX_ORDER.
inline constexpr int kOrders = KW_MAX_ORDER + 1;

// The hot kernels are inlined into their callers whatever the heuristics
// say: a call costs as much as a low-degree basis.
#define KW_HOT inline __attribute__((always_inline))

// A degree as the kernels take it: an int, or std::integral_constant for the
// common low degrees, so that one body serves both and the compiler unrolls
// the fixed ones.
template <int P>
using Degree = std::integral_constant<int, P>;

// f(p) with p as a compile-time degree where it is one of the common ones.
template <class F>
KW_HOT decltype(auto) with_degree(int p, F &&f) {
    switch (p) {
    case 1: return f(Degree<1>{});
    case 2: return f(Degree<2>{});
    case 3: return f(Degree<3>{});
    case 4: return f(Degree<4>{});
    case 5: return f(Degree<5>{});
    default: return f(p);
    }
}

// Whether u lies in the knot interval [U[a], U[b]) from the right (side 1)
// or (U[a], U[b]] from the left (any other side).
inline bool in_interval(const double *U, int32_t a, int32_t b, double u, int16_t side) noexcept {
    return side == KW_LEFT ? U[a] < u && u <= U[b] : U[a] <= u && u < U[b];
}

// The span i of u in a knot vector U[0..m] of degree p: U[i] <= u < U[i+1]
// from the right, U[i] < u <= U[i+1] from the left (side 2; any other side
// counts as the right). The domain end U[m-p] belongs to the last span from
// the right, the start U[p] to the first from the left. The bisection keeps
// U[low] <= u < U[low+len] (U[low] < u <= U[low+len]) and ends after
// log2(m) steps whatever the knots hold; a u outside [U[p], U[m-p]] takes
// the nearer end span.
KW_HOT int32_t find_span(const double *U, int32_t m, int p, double u, int16_t side) noexcept {
    // Whether u lies past knot i, in a span that starts at i or later.
    const bool from_left = side == KW_LEFT;
    auto past = [=](int32_t i) { return from_left ? U[i] < u : U[i] <= u; };
    // Branch-free halving of [low, low + len): each step costs one load and a
    // conditional move, whatever the order in which parameters come.
    int32_t low = p, len = m - 2 * p;
    if (past(low + len)) return low + len - 1;
    if (!past(low)) return low;
    while (len > 1) {
        const int32_t half = len / 2;
        low = past(low + half) ? low + half : low;
        len -= half;
    }
    return low;
}

// The denominators of the Cox-de Boor triangle are knot differences of the
// span alone, U[span+r+1] - U[span+1-j+r] in round j = 1..p, r = 0..j-1:
// their reciprocals can be taken at once (independent divisions, which
// pipeline) and shared by every evaluation in the span. inverse(j, r)
// receives each.
template <class Deg, class Inverse>
KW_HOT void span_inverses(const double *U, int32_t span, Deg p, Inverse inverse) noexcept {
    for (int j = 1; j <= p; ++j)
        for (int r = 0; r < j; ++r) inverse(j, r) = 1.0 / (U[span + r + 1] - U[span + 1 - j + r]);
}

// The Cox-de Boor triangle over those reciprocals: value(r, j) is the
// function N[span-j+r, j](u) of degree j. One body serves the rolling row of
// the point evaluators (value(r, j) = N[r] for every j) and the full table of
// the derivatives (value(r, j) = ndu[r][j]).
template <class Deg, class Inverse, class Value>
KW_HOT void cox_de_boor(const double *U, int32_t span, Deg p, double u, double *left, double *right,
                        Inverse inverse, Value value) noexcept {
    value(0, 0) = 1.0;
    for (int j = 1; j <= p; ++j) {
        left[j] = u - U[span + 1 - j];
        right[j] = U[span + j] - u;
        double saved = 0.0;
        for (int r = 0; r < j; ++r) {
            const double temp = value(r, j - 1) * inverse(j, r);
            value(r, j) = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        }
        value(j, j) = saved;
    }
}

inline constexpr int kTriangle = KW_MAX_DEGREE * (KW_MAX_DEGREE + 1) / 2;

// N[r] := N[span-p+r, p](u), r = 0..p.
template <class Deg>
KW_HOT void basis_funs(const double *U, int32_t span, Deg p, double u, double *N) noexcept {
    double inv[kTriangle], left[kTable], right[kTable];
    auto inverse = [&inv](int j, int r) -> double & { return inv[j * (j - 1) / 2 + r]; };
    span_inverses(U, span, p, inverse);
    cox_de_boor(U, span, p, u, left, right, inverse, [N](int r, int) -> double & { return N[r]; });
}

// The non-zero basis functions at u, N[0..p], and their span. At the end
// knots the end function is exactly 1 from either side; elsewhere the side
// chooses the span.
template <class Deg>
KW_HOT int32_t nonzero_basis(const double *U, int32_t m, Deg p, double u, int16_t side,
                             double *N) noexcept {
    if (u == U[m - p]) {
        std::fill_n(N, int(p), 0.0);
        N[p] = 1.0;
        return m - p - 1;
    }
    if (u == U[p]) {
        N[0] = 1.0;
        std::fill_n(N + 1, int(p), 0.0);
        return p;
    }
    const int32_t span = find_span(U, m, p, u, side);
    basis_funs(U, span, p, u, N);
    return span;
}

// The single function N[i, p](u) by the local triangle over its own knots
// U[i..i+p+1]; N is a work array of p + 1 doubles. The end knots are the
// caller's business.
inline double one_basis(const double *U, int32_t i, int p, double u, int16_t side,
                        double *N) noexcept {
    for (int j = 0; j <= p; ++j) N[j] = in_interval(U, i + j, i + j + 1, u, side) ? 1.0 : 0.0;
    for (int k = 1; k <= p; ++k) {
        double saved = N[0] == 0.0 ? 0.0 : (u - U[i]) * N[0] / (U[i + k] - U[i]);
        for (int j = 0; j <= p - k; ++j) {
            const double Uleft = U[i + j + 1], Uright = U[i + j + k + 1];
            if (N[j + 1] == 0.0) {
                N[j] = saved;
                saved = 0.0;
            } else {
                const double temp = N[j + 1] / (Uright - Uleft);
                N[j] = saved + (Uright - u) * temp;
                saved = (u - Uleft) * temp;
            }
        }
    }
    return N[0];
}

// ders[k][r] := the k-th derivative of N[span-p+r, p](u), k = 0..du (du <= p).
// Work tables: ndu (p+1) x (p+1), whose lower triangle holds the
// reciprocal knot differences (ndu[j][r] that of round j, index r) and upper
// triangle the functions of rising degree; a 2 x (p+1) with alternating
// rows; left and right of p+1. Every division is one of the reciprocals,
// taken at once before the recursions. Table is a row-pointer array or a
// fixed 2-D array, so one body serves the allocated and the local form.
template <class Table, class Out, class Deg>
KW_HOT void basis_ders(const double *U, int32_t span, Deg p, double u, int du, Table ndu,
                       double *left, double *right, Table a, Out ders) noexcept {
    // The lower triangle holds the reciprocals, the upper the functions.
    auto inverse = [ndu](int j, int r) -> double & { return ndu[j][r]; };
    span_inverses(U, span, p, inverse);
    cox_de_boor(U, span, p, u, left, right, inverse, [ndu](int r, int j) -> double & { return ndu[r][j]; });
    for (int j = 0; j <= p; ++j) ders[0][j] = ndu[j][p];
    for (int r = 0; r <= p; ++r) {
        int s1 = 0, s2 = 1;
        a[0][0] = 1.0;
        for (int k = 1; k <= du; ++k) {
            double d = 0.0;
            const int rk = r - k, pk = p - k;
            if (r >= k) {
                a[s2][0] = a[s1][0] * ndu[pk + 1][rk];
                d = a[s2][0] * ndu[rk][pk];
            }
            const int j1 = rk >= -1 ? 1 : -rk;
            const int j2 = r - 1 <= pk ? k - 1 : p - r;
            for (int j = j1; j <= j2; ++j) {
                a[s2][j] = (a[s1][j] - a[s1][j - 1]) * ndu[pk + 1][rk + j];
                d += a[s2][j] * ndu[rk + j][pk];
            }
            if (r <= pk) {
                a[s2][k] = -a[s1][k - 1] * ndu[pk + 1][r];
                d += a[s2][k] * ndu[r][pk];
            }
            ders[k][r] = d;
            std::swap(s1, s2);
        }
    }
    double f = p;
    for (int k = 1; k <= du; ++k) {
        for (int j = 0; j <= p; ++j) ders[k][j] *= f;
        f *= p - k;
    }
}

// Binomial coefficients of the orders the evaluators accept, by Pascal's
// rule.
struct Binomials {
    double c[kOrders][kOrders] = {};
};
constexpr Binomials make_binomials() noexcept {
    Binomials b;
    for (int d = 0; d < kOrders; ++d) {
        b.c[d][0] = b.c[d][d] = 1.0;
        for (int i = 1; i <= d / 2; ++i) b.c[d][i] = b.c[d][d - i] = b.c[d - 1][i - 1] + b.c[d - 1][i];
    }
    return b;
}
inline constexpr Binomials kBinomial = make_binomials();

// Turns ders[0..k][0..p], derivatives of the basis functions, in place into
// those of the rational basis functions R[j] = w[j] N[j] / W with
// W = sum w[j] N[j]: R^(d) = (w ders^(d) - sum_i Bin(d, i) W^(i) R^(d-i)) / W,
// rising in d so that the lower orders are already rational. k <= KW_MAX_ORDER;
// w is anything that gives the weights as w[j].
template <class Rows, class Weights, class Deg>
KW_HOT void rational_ders(Rows ders, const Weights &w, int k, Deg p) noexcept {
    double W[kOrders];
    for (int d = 0; d <= k; ++d) {
        W[d] = 0.0;
        for (int j = 0; j <= p; ++j) W[d] += ders[d][j] * w[j];
    }
    for (int j = 0; j <= p; ++j) {
        for (int d = 0; d <= k; ++d) {
            double v = w[j] * ders[d][j];
            for (int i = 1; i <= d; ++i) v -= kBinomial.c[d][i] * W[i] * ders[d - i][j];
            ders[d][j] = v / W[0];
        }
    }
}

}  // namespace kw

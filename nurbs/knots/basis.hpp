// The innermost numerical steps of every evaluator: span search, the
// non-zero B-spline basis functions, their derivatives, and the derivatives
// of rational basis functions. Inline and allocation-free, with fixed tables
// as wide as the degree where it is fixed at compile time and as the
// greatest degree otherwise; callers have checked their inputs.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "knotwork/types.h"

namespace kw {

// Width of the fixed tables: the p + 1 basis functions of the greatest degree.
inline constexpr int kTable = KW_MAX_DEGREE + 1;
// Rows of the fixed derivative tables: orders 0 to KW_MAX_ORDER.
inline constexpr int kOrders = KW_MAX_ORDER + 1;

// The hot kernels are inlined into their callers whatever the heuristics
// say: a call costs as much as a low-degree basis. KW_INLINE does the same
// for the lambdas that with_degree instantiates.
#define KW_HOT inline __attribute__((always_inline))
#define KW_INLINE __attribute__((always_inline))

// A degree as the kernels take it: an int, or std::integral_constant for the
// common low degrees, so that one body serves both and the compiler unrolls
// the fixed ones.
template <int P>
using Degree = std::integral_constant<int, P>;

// The width of a table of p + 1 entries: exact for a fixed degree, the
// greatest one otherwise.
template <class Deg>
inline constexpr int kWidth = kTable;
template <int P>
inline constexpr int kWidth<Degree<P>> = P + 1;

template <class T>
inline constexpr bool kConstant = false;
template <int P>
inline constexpr bool kConstant<Degree<P>> = true;

// f(a...) of degrees, orders, indices and counts: a constant where all of
// them are.
template <auto f, class... A>
constexpr auto constant_if(A... a) noexcept {
    if constexpr ((kConstant<A> && ...)) return Degree<f(A::value...)>{};
    else return f(int(a)...);
}
template <class A, class B>
constexpr auto minus(A a, B b) noexcept {
    return constant_if<[](int x, int y) { return x - y; }>(a, b);
}
template <class A, class B>
constexpr auto smaller(A a, B b) noexcept {
    return constant_if<[](int x, int y) { return x < y ? x : y; }>(a, b);
}
template <class A, class B>
constexpr auto larger(A a, B b) noexcept {
    return constant_if<[](int x, int y) { return y < x ? x : y; }>(a, b);
}
template <class I>
constexpr auto less(I i) noexcept {
    return minus(i, Degree<1>{});
}

// f(i) for i = first..last. Where both bounds are constants the loop is laid
// out at compile time with each i a constant, so that loops nested inside,
// bounded by i, are laid out too (-O2 unrolls none of them by itself).
template <class First, class Last, class F>
KW_HOT void upto(First first, Last last, F &&f) {
    if constexpr (kConstant<First> && kConstant<Last>) {
        constexpr int count = Last::value - First::value + 1;
        [&]<int... I>(std::integer_sequence<int, I...>) KW_INLINE {
            (f(Degree<First::value + I>{}), ...);
        }(std::make_integer_sequence<int, (count > 0 ? count : 0)>{});
    } else {
        for (int i = first; i <= last; ++i) f(i);
    }
}

// f(k) with a derivative order k fixed at compile time where it is one of
// the common ones.
template <class F>
KW_HOT decltype(auto) with_order(int k, F &&f) {
    switch (k) {
    case 1: return f(Degree<1>{});
    case 2: return f(Degree<2>{});
    default: return f(k);
    }
}

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

// f(p, q) with both degrees fixed at compile time where they are equal and
// common (bicubic patches and their like); other pairs take the general
// body, which keeps them as ints.
template <class F>
KW_HOT decltype(auto) with_degrees(int p, int q, F &&f) {
    if (p != q) return f(p, q);
    return with_degree(p, [&](auto P) KW_INLINE { return f(P, P); });
}

// f(ku, kv) with both orders fixed at compile time where they are equal
// and low (tangent planes, curvatures); other pairs stay ints.
template <class F>
KW_HOT decltype(auto) with_orders(int ku, int kv, F &&f) {
    if (ku != kv) return f(ku, kv);
    return with_order(ku, [&](auto K) KW_INLINE { return f(K, K); });
}

// Whether u lies in the knot interval [U[a], U[b]) from the right (side 1)
// or (U[a], U[b]] from the left (any other side).
inline bool in_interval(const double *U, int32_t a, int32_t b, double u, int16_t side) noexcept {
    return side == KW_LEFT ? U[a] < u && u <= U[b] : U[a] <= u && u < U[b];
}

// The largest double below a finite u: U[i] < u exactly when U[i] <= below(u).
inline double below(double u) noexcept {
    if (u == 0.0) return -std::numeric_limits<double>::denorm_min();
    const auto bits = std::bit_cast<uint64_t>(u);
    return std::bit_cast<double>(u > 0.0 ? bits - 1 : bits + 1);
}

// The key that locates u from a side: U[i] <= key exactly when u lies past
// knot i, in a span that starts at i or later. From the left (side 2) the
// comparison is strict, U[i] < u; any other side counts as the right.
inline double span_key(double u, int16_t side) noexcept { return side == KW_LEFT ? below(u) : u; }

// The bits of a double as an integer that orders like the double: the bits
// themselves for a non-negative one, the magnitude bits turned over for a
// negative one. -0.0 comes just below +0.0, which only a key could tell
// apart: keys are taken of x + 0.0, which is +0.0 for -0.0.
inline int64_t ordered(double x) noexcept {
    const auto bits = std::bit_cast<int64_t>(x);
    return bits ^ ((bits >> 63) & INT64_MAX);
}

// The largest i in [low, low + len) with U[i] <= key, given U[low] <= key <
// U[low + len]; key is ordered(x + 0.0). The knots are compared as integers,
// which load and compare faster than doubles; non-negative ones (Signed
// false: the domain starts at or above 0) need not be turned over, -0.0
// among them reading as the least integer, which is below every key as
// -0.0 is. Two halvings a step: the first is a branch, which costs a
// misprediction now and then on parameters in random order but lets sorted
// ones run ahead; the second selects between the two knots it may ask for,
// both loaded already, without a branch.
template <bool Signed>
KW_HOT int32_t bisect(const double *U, int32_t low, int32_t len, int64_t key) noexcept {
    auto at = [U](int32_t i) {
        int64_t bits;
        std::memcpy(&bits, U + i, sizeof bits);
        return Signed ? bits ^ ((bits >> 63) & INT64_MAX) : bits;
    };
    while (len > 3) {
        const int32_t h1 = len / 2, h2 = (len - h1) / 2;
        const int64_t mid = at(low + h1), far = at(low + h1 + h2), near = at(low + h2);
        const bool past = mid <= key;
        const int64_t next = near ^ ((far ^ near) & -int64_t(past));
        low += (past ? h1 : 0) + (next <= key ? h2 : 0);
        len -= h1 + h2;
    }
    while (len > 1) {
        const int32_t half = len / 2;
        low += at(low + half) <= key ? half : 0;
        len -= half;
    }
    return low;
}

// The span of a key in a knot vector U[0..m] of degree p: the largest i in
// p..n (n = m - p - 1) with U[i] <= key, or p when there is none. So
// U[i] <= u < U[i+1] from the right, U[i] < u <= U[i+1] from the left; the
// domain end U[m-p] belongs to the last span from the right, the start U[p]
// to the first from the left, and a u outside [U[p], U[m-p]] takes the
// nearer end span. The search takes log2(m) halvings whatever the knots hold.
KW_HOT int32_t search_span(const double *U, int32_t m, int p, double key) noexcept {
    const int32_t len = m - 2 * p;
    if (U[p + len] <= key) return p + len - 1;
    if (!(U[p] <= key)) return p;
    if (U[p] >= 0.0) return bisect<false>(U, p, len, std::bit_cast<int64_t>(key + 0.0));
    return bisect<true>(U, p, len, ordered(key + 0.0));
}

// The span i of u from a side (see span_key and search_span).
KW_HOT int32_t find_span(const double *U, int32_t m, int p, double u, int16_t side) noexcept {
    return search_span(U, m, p, span_key(u, side));
}

// search_span given the span of a neighbouring parameter, p <= last <= n:
// that span and the next are tried first, which a sorted sweep nearly always
// hits; the same answer as search_span either way.
KW_HOT int32_t next_span(const double *U, int32_t m, int p, double key, int32_t last) noexcept {
    const int32_t n = m - p - 1;
    auto holds = [&](int32_t i) {
        return (i == p || U[i] <= key) && (i == n || !(U[i + 1] <= key));
    };
    if (holds(last)) return last;
    if (last < n && holds(last + 1)) return last + 1;
    return search_span(U, m, p, key);
}

// The span of the parameter before, a hint for the next one. Sorted
// parameters nearly always stay in it or pass to the next span; random ones
// nearly never do, and there a hint costs more than the search it may spare
// (the branches it mispredicts, and the span's data kept that the next
// parameter cannot use). So the hint is tried only after two parameters in a
// row that it would have served. The span is search_span's either way.
struct SpanHint {
    int32_t span = -1;
    int32_t served = 0;  // parameters in a row that the hint would have served, at most 2

    // Moves to the span of key; true unless it is known to be the span
    // before, when whatever is kept of that span must be made anew (also,
    // unasked, when it is the same: that test would cost more).
    KW_HOT bool move(const double *U, int32_t m, int p, double key) noexcept {
        const int32_t last = span;
        const bool hinted = served >= 2;
        span = hinted ? next_span(U, m, p, key, last) : search_span(U, m, p, key);
        const bool near = uint32_t(span - last) <= 1;  // span is last or last + 1
        served = near ? served + (served < 2) : 0;
        return !hinted || span != last;
    }
};

// x[0..2 last + 1] := their reciprocals, two to a division, which the
// machine does in one instruction where it divides pairs of doubles (the
// quotients are the same): divisions are the dearest step of an evaluation.
template <class Last>
KW_HOT void reciprocals(double *x, Last last) noexcept {
    using Pair = double __attribute__((vector_size(16)));
    upto(Degree<0>{}, last, [&](auto i) KW_INLINE {
        Pair d;
        std::memcpy(&d, x + 2 * i, sizeof d);
        d = 1.0 / d;
        std::memcpy(x + 2 * i, &d, sizeof d);
    });
}

// The index of the last pair of count values.
template <class Count>
constexpr auto last_pair(Count count) noexcept {
    return constant_if<[](int c) { return (c + 1) / 2 - 1; }>(count);
}

// The denominators of the Cox-de Boor triangle are knot differences of the
// span alone, U[span+r+1] - U[span+1-j+r] in round j = 1..p, r = 0..j-1:
// their reciprocals are taken at once, in pairs, shared by every evaluation
// in the span and read as inverse(j, r).
template <class Deg>
struct Inverses {
    static constexpr int w = kWidth<Deg>;
    double inv[w * (w - 1) / 2 + 1];  // one more, for an odd count of pairs

    KW_HOT double operator()(int j, int r) const noexcept { return inv[j * (j - 1) / 2 + r]; }

    KW_HOT void fill(const double *U, int32_t span, Deg p) noexcept {
        upto(Degree<1>{}, p, [&](auto j) KW_INLINE {
            upto(Degree<0>{}, less(j), [&](auto r) KW_INLINE {
                inv[j * (j - 1) / 2 + r] = U[span + r + 1] - U[span + 1 - j + r];
            });
        });
        const auto count = constant_if<[](int q) { return q * (q + 1) / 2; }>(p);
        inv[count] = 1.0;
        reciprocals(inv, last_pair(count));
    }
};

// The Cox-de Boor triangle over those reciprocals: value(r, j) is the
// function N[span-j+r, j](u) of degree j. One body serves the rolling row of
// the point evaluators (value(r, j) = N[r] for every j) and the full table of
// the derivatives (value(r, j) = ndu[r][j]).
template <class Deg, class Inverse, class Value>
KW_HOT void cox_de_boor(const double *U, int32_t span, Deg p, double u, double *left, double *right,
                        const Inverse &inverse, Value &&value) noexcept {
    value(0, 0) = 1.0;
    upto(Degree<1>{}, p, [&](auto j) KW_INLINE {
        left[j] = u - U[span + 1 - j];
        right[j] = U[span + j] - u;
        double saved = 0.0;
        upto(Degree<0>{}, less(j), [&](auto r) KW_INLINE {
            const double temp = value(r, j - 1) * inverse(j, r);
            value(r, j) = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        });
        value(j, j) = saved;
    });
}

// N[r] := N[span-p+r, p](u), r = 0..p, from the span's reciprocals.
template <class Deg>
KW_HOT void basis_funs(const double *U, int32_t span, Deg p, const Inverses<Deg> &inverse, double u,
                       double *N) noexcept {
    constexpr int w = kWidth<Deg>;
    double left[w], right[w];
    cox_de_boor(U, span, p, u, left, right, inverse, [N](int r, int) -> double & { return N[r]; });
}

// At the end knots the end function is exactly 1 from either side: N[0..p]
// and the span there, or -1 elsewhere.
template <class Deg>
KW_HOT int32_t end_basis(const double *U, int32_t m, Deg p, double u, double *N) noexcept {
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
    return -1;
}

// The span of the last parameter located and its reciprocals, kept from
// one parameter to the next: a fresh one serves a single parameter, one
// kept over many saves the search and the divisions while they stay in one
// span, with the same results.
template <class Deg>
struct SpanBasis {
    SpanHint hint;
    Inverses<Deg> inverse;

    // The span of key and its reciprocals.
    KW_HOT int32_t locate(const double *U, int32_t m, Deg p, double key) noexcept {
        if (hint.move(U, m, p, key)) inverse.fill(U, hint.span, p);
        return hint.span;
    }
    // The non-zero basis functions at u, N[0..p], and their span; away from
    // the end knots the side chooses the span.
    KW_HOT int32_t basis(const double *U, int32_t m, Deg p, double u, int16_t side, double *N) noexcept {
        const int32_t end = end_basis(U, m, p, u, N);
        if (end >= 0) return end;
        const int32_t s = locate(U, m, p, span_key(u, side));
        basis_funs(U, s, p, inverse, u, N);
        return s;
    }
};

template <class Deg>
KW_HOT int32_t nonzero_basis(const double *U, int32_t m, Deg p, double u, int16_t side,
                             double *N) noexcept {
    SpanBasis<Deg> fresh;  // not value-initialised: nothing is read before it is filled
    return fresh.basis(U, m, p, u, side, N);
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

// ders[k][r] := the k-th derivative of N[span-p+r, p](u), k = 0..du (du <= p),
// given the span's reciprocals inverse(j, r). value(r, j) is a table for the
// triangle of functions of rising degree (N[span-j+r, j] at r, j), left and
// right work arrays of p + 1. Order k starts from the functions of degree
// p - k and rises through the degrees l = p-k+1..p by
// N'[i,l] = l (N[i,l-1] / (U[i+l] - U[i]) - N[i+1,l-1] / (U[i+l+1] - U[i+1])),
// whose denominators are those of the triangle's round l: a term taken from
// entry r goes to r with a minus and to r + 1 with a plus, as the triangle
// hands its temp on. All orders rise together, degree by degree, each in its
// own output row; the factors l are gathered at the end.
template <class Deg, class Ord, class Inverse, class Value, class Out>
KW_HOT void basis_ders(const double *U, int32_t span, Deg p, double u, Ord du, const Inverse &inverse,
                       Value &&value, double *left, double *right, Out &&ders) noexcept {
    cox_de_boor(U, span, p, u, left, right, inverse, value);
    upto(Degree<0>{}, du, [&](auto k) KW_INLINE {
        upto(Degree<0>{}, minus(p, k), [&](auto r) KW_INLINE { ders[k][r] = value(r, minus(p, k)); });
    });
    upto(Degree<1>{}, p, [&](auto l) KW_INLINE {
        upto(larger(Degree<1>{}, minus(p, less(l))), du, [&](auto k) KW_INLINE {
            double saved = 0.0;
            upto(Degree<0>{}, less(l), [&](auto r) KW_INLINE {
                const double temp = ders[k][r] * inverse(l, r);
                ders[k][r] = saved - temp;
                saved = temp;
            });
            ders[k][l] = saved;
        });
    });
    double f = p;
    upto(Degree<1>{}, du, [&](auto k) KW_INLINE {
        upto(Degree<0>{}, p, [&](auto j) KW_INLINE { ders[k][j] *= f; });
        f *= p - k;
    });
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
// rising in d so that the lower orders are already rational; the division
// by W is one reciprocal. k <= KW_MAX_ORDER; w is anything that gives the
// weights as w[j].
template <class Rows, class Weights, class Ord, class Deg>
KW_HOT void rational_ders(Rows &&ders, const Weights &w, Ord k, Deg p) noexcept {
    double W[kOrders];
    upto(Degree<0>{}, k, [&](auto d) KW_INLINE {
        double sum = 0.0;
        upto(Degree<0>{}, p, [&](auto j) KW_INLINE { sum += ders[d][j] * w[j]; });
        W[d] = sum;
    });
    const double inverse = 1.0 / W[0];
    upto(Degree<0>{}, p, [&](auto j) KW_INLINE {
        upto(Degree<0>{}, k, [&](auto d) KW_INLINE {
            double v = w[j] * ders[d][j];
            upto(Degree<1>{}, d, [&](auto i) KW_INLINE { v -= kBinomial.c[d][i] * W[i] * ders[d - i][j]; });
            ders[d][j] = v * inverse;
        });
    });
}

}  // namespace kw

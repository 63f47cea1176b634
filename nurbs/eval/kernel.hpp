// The evaluation kernels over the basis kernels: accumulation of control
// points with the markers, the point of a curve, and its derivatives from
// those of the (rational) basis functions. Inline and allocation-free; the
// callers have checked the curve, the parameter and the order.
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/arith.hpp"
#include "nurbs/knots/basis.hpp"

namespace kw {

// sum c[j] E[j], j = 0..last, over values without markers (doubles, Points).
template <class T, class Last>
KW_HOT T accumulate(const double *c, const T *E, Last last) noexcept {
    T sum{};
    upto(Degree<0>{}, last, [&](auto j) KW_INLINE { sum = sum + c[j] * E[j]; });
    return sum;
}

// sum N[j] P[j], j = 0..last, over homogeneous control points: a planar z in
// any term makes the sum's z the planar marker, a non-rational w its w the
// non-rational marker. Every coordinate is summed alike, without a branch,
// and a marked sum replaced at the end.
template <class Last>
KW_HOT ControlPoint accumulate(const double *N, const ControlPoint *P, Last last) noexcept {
    double x = 0.0, y = 0.0, z = 0.0, w = 0.0;
    bool flat = false, plain = false;
    upto(Degree<0>{}, last, [&](auto j) KW_INLINE {
        x += N[j] * P[j].x;
        y += N[j] * P[j].y;
        z += N[j] * P[j].z;
        w += N[j] * P[j].w;
        flat |= planar(P[j].z);
        plain |= nonrational(P[j].w);
    });
    return ControlPoint{x, y, flat ? kPlanar : z, plain ? kNonRational : w};
}

// The weights of control points, read in place.
struct WeightsOf {
    const ControlPoint *P;
    double operator[](int j) const noexcept { return P[j].w; }
};

// The value at u of a B-spline with coefficients c[0..n] (ControlPoints:
// the homogeneous point; doubles: the function value).
template <class C>
KW_HOT C spline_point(const double *U, int32_t m, int p, const C *c, double u,
                      int16_t side) noexcept {
    return with_degree(p, [&](auto P) KW_INLINE {
        double N[kWidth<decltype(P)>];
        const int32_t span = nonzero_basis(U, m, P, u, side, N);
        return accumulate(N, c + span - P, P);
    });
}

// What the derivatives at u take from u's span alone: the span's reciprocal
// knot differences and its control points P[0..p] in Cartesian form E.
// N_curder fills it for its one parameter; the batch evaluator keeps it while
// its parameters stay in one span.
template <class Deg>
struct CurveSpan {
    int32_t span = -1;
    const ControlPoint *P = nullptr;
    Inverses<Deg> inverse;
    Point E[kWidth<Deg>];

    KW_HOT void enter(const double *U, Deg p, const ControlPoint *Pw, int32_t s) noexcept {
        span = s;
        P = Pw + s - p;
        inverse.fill(U, s, p);
        upto(Degree<0>{}, p, [&](auto j) KW_INLINE { E[j] = euclid(P[j]); });
    }
    // Enters the span of key unless it is this one.
    KW_HOT void locate(const double *U, int32_t m, Deg p, const ControlPoint *Pw, double key) noexcept {
        const int32_t s = next_span(U, m, p, key, span);
        if (s != span) enter(U, p, Pw, s);
    }
};

// CK[0..k] := the point of the curve (U, p, Pw) at u in the span c and its
// derivatives up to k: the derivatives of the basis functions, made rational
// for a rational curve, applied to the Cartesian control points. Orders
// above p vanish for a polynomial curve.
template <class Deg, class Ord>
KW_HOT void curve_ders(const double *U, Deg p, const CurveSpan<Deg> &c, bool rational_curve, double u,
                       Ord k, Point *CK) noexcept {
    constexpr int w = kWidth<Deg>;
    double ndu[w][w], left[w], right[w], ders[kOrders][w];
    const auto du = smaller(k, p);
    basis_ders(U, c.span, p, u, du, c.inverse, [&ndu](int r, int j) -> double & { return ndu[r][j]; }, left,
               right, ders);
    for (int d = du + 1; d <= k; ++d) std::fill_n(ders[d], p + 1, 0.0);
    if (rational_curve) rational_ders(ders, WeightsOf{c.P}, k, p);
    upto(Degree<0>{}, k, [&](auto d) KW_INLINE { CK[d] = accumulate(ders[d], c.E, p); });
}

// curve_ders at u in span, for any degree and order.
inline void curve_ders(const double *U, int p, const ControlPoint *Pw, int32_t span, double u, int k,
                       Point *CK) noexcept {
    with_degree(p, [&](auto P) KW_INLINE {
        const bool weighted = rational(Pw[0]);
        CurveSpan<decltype(P)> c;
        c.enter(U, P, Pw, span);
        with_order(k, [&](auto K) KW_INLINE { curve_ders(U, P, c, weighted, u, K, CK); });
    });
}

}  // namespace kw

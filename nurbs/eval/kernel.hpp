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
    for (int j = 0; j <= last; ++j) sum = sum + c[j] * E[j];
    return sum;
}

// sum N[j] P[j], j = 0..last, over homogeneous control points: a planar z in
// any term makes the sum's z the planar marker, a non-rational w its w the
// non-rational marker.
template <class Last>
KW_HOT ControlPoint accumulate(const double *N, const ControlPoint *P, Last last) noexcept {
    double x = 0.0, y = 0.0, z = 0.0, w = 0.0;
    bool flat = false, plain = false;
    for (int j = 0; j <= last; ++j) {
        x += N[j] * P[j].x;
        y += N[j] * P[j].y;
        if (planar(P[j].z)) flat = true;
        else z += N[j] * P[j].z;
        if (nonrational(P[j].w)) plain = true;
        else w += N[j] * P[j].w;
    }
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
    return with_degree(p, [&](auto P) {
        double N[kTable];
        const int32_t span = nonzero_basis(U, m, P, u, side, N);
        return accumulate(N, c + span - P, P);
    });
}

// CK[0..k] := the point of the curve (U, p, Pw) at u in span and its
// derivatives up to k: the derivatives of the basis functions, made rational
// for a rational curve, applied to the Cartesian control points. Orders
// above p vanish for a polynomial curve.
template <class Deg>
KW_HOT void curve_ders(const double *U, Deg p, const ControlPoint *Pw, int32_t span, double u,
                       int k, Point *CK) noexcept {
    double ndu[kTable][kTable], a[2][kTable], left[kTable], right[kTable];
    double ders[kOrders][kTable];
    const int du = std::min(k, int(p));
    basis_ders(U, span, p, u, du, ndu, left, right, a, ders);
    for (int d = du + 1; d <= k; ++d) std::fill_n(ders[d], p + 1, 0.0);
    const ControlPoint *P = Pw + span - p;
    if (rational(Pw[0])) rational_ders(ders, WeightsOf{P}, k, p);
    Point E[kTable];
    for (int j = 0; j <= p; ++j) E[j] = euclid(P[j]);
    for (int d = 0; d <= k; ++d) CK[d] = accumulate(ders[d], E, p);
}

// curve_ders with the common degrees fixed at compile time.
inline void curve_ders(const double *U, int p, const ControlPoint *Pw, int32_t span, double u,
                       int k, Point *CK) noexcept {
    with_degree(p, [&](auto P) { curve_ders<decltype(P)>(U, P, Pw, span, u, k, CK); });
}

}  // namespace kw

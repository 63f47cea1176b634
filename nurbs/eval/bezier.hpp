// The Bezier pieces of B-spline curves and surfaces: control points of one
// knot span by blossoming, and de Casteljau steps on them. Homogeneous
// points here are plain numbers: a planar z reads 0 and a missing weight 1,
// so that one body serves every kind of control point.
#pragma once

#include <cstdint>

#include "core/arith.hpp"
#include "nurbs/knots/basis.hpp"

namespace kw {

struct Hom {
    double x, y, z, w;
    constexpr double operator[](int c) const noexcept {
        return c == 0 ? x : c == 1 ? y : c == 2 ? z : w;
    }
    // The Cartesian coordinate c.
    constexpr double cartesian(int c) const noexcept { return (*this)[c] / w; }
};

constexpr Hom homogeneous(const ControlPoint &P) noexcept {
    return Hom{P.x, P.y, planar(P) ? 0.0 : P.z, rational(P) ? P.w : 1.0};
}

// (1 - a) P + a Q.
constexpr Hom lerp(const Hom &P, const Hom &Q, double a) noexcept {
    const double b = 1.0 - a;
    return Hom{b * P.x + a * Q.x, b * P.y + a * Q.y, b * P.z + a * Q.z, b * P.w + a * Q.w};
}

constexpr double mid(double a, double b) noexcept { return 0.5 * (a + b); }
constexpr Hom mid(const Hom &a, const Hom &b) noexcept { return lerp(a, b, 0.5); }

// Q[0..p] := the Bezier control points over the span [U[span], U[span+1]]
// (not empty) of the B-spline of degree p whose control points around the
// span are P(0..p) = Pw[span-p..span]: Q[k] is the blossom at k copies of
// U[span+1] and p - k copies of U[span], by de Boor's triangle with a
// parameter of its own in each round.
template <class Points>
void bezier_piece(const double *U, int p, int32_t span, Points P, Hom *Q) noexcept {
    const double a = U[span], b = U[span + 1];
    Hom d[kTable];
    for (int k = 0; k <= p; ++k) {
        for (int j = 0; j <= p; ++j) d[j] = P(j);
        for (int r = 1; r <= p; ++r) {
            const double t = r <= k ? b : a;
            for (int j = p; j >= r; --j) {
                const double left = U[span - p + j];
                d[j] = lerp(d[j - 1], d[j], (t - left) / (U[span + 1 + j - r] - left));
            }
        }
        Q[k] = d[p];
    }
}

// f(span, a, b) for each span [a, b] = [U[span], U[span+1]] of non-zero
// length of a B-spline of degree p with coefficients 0..n.
template <class F>
void each_span(const double *U, int p, int32_t n, F f) noexcept {
    for (int32_t s = p; s <= n; ++s)
        if (U[s] < U[s + 1]) f(s, U[s], U[s + 1]);
}

// Q[0..p] := the Bezier piece of a curve over its span [U[span], U[span+1]].
inline void curve_piece(const Curve *cur, int32_t span, Hom *Q) noexcept {
    const ControlPoint *Pw = cur->pol->Pw + span - cur->p;
    bezier_piece(
        cur->knt->U, cur->p, span, [Pw](int j) { return homogeneous(Pw[j]); }, Q);
}

// The halves over [0, 1/2] and [1/2, 1] of the Bezier values c[0..d] taken
// with a stride: left[k], right[k] at the same stride. c may be left.
template <class T>
void split_half(const T *c, int d, int32_t stride, T *left, T *right) noexcept {
    T t[2 * kTable];
    for (int k = 0; k <= d; ++k) t[k] = c[k * stride];
    for (int r = 1; r <= d; ++r) {
        left[(r - 1) * stride] = t[0];
        right[(d - r + 1) * stride] = t[d - r + 1];
        for (int k = 0; k <= d - r; ++k) t[k] = mid(t[k], t[k + 1]);
    }
    left[d * stride] = t[0];
    right[0] = t[0];
}

}  // namespace kw

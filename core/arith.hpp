// Point and control-point arithmetic with the planar and non-rational markers.
// Inline so that the evaluators' inner loops pay nothing for the calls.
#pragma once

#include <cfloat>
#include <cmath>

#include "knotwork/types.h"

namespace kw {

inline constexpr double kPlanar = DBL_MAX;
inline constexpr double kNonRational = -DBL_MAX;

constexpr bool planar(double z) noexcept { return z == kPlanar; }
constexpr bool nonrational(double w) noexcept { return w == kNonRational; }
constexpr bool planar(const ControlPoint &P) noexcept { return P.z == kPlanar; }
constexpr bool rational(const ControlPoint &P) noexcept { return P.w != kNonRational; }

// A planar z counts as no coordinate: the combination of several z terms is
// the sum of the terms that exist, and the marker only when none does.
struct ZSum {
    double z = 0.0;
    bool any = false;
    constexpr void add(double s, double zi) noexcept {
        if (planar(zi)) return;
        z += s * zi;
        any = true;
    }
    constexpr double value() const noexcept { return any ? z : kPlanar; }
};

// A weight sum is the marker as soon as one operand lacks a weight.
struct WSum {
    double w = 0.0;
    bool missing = false;
    constexpr void add(double s, double wi) noexcept {
        if (nonrational(wi)) missing = true;
        else w += s * wi;
    }
    constexpr double value() const noexcept { return missing ? kNonRational : w; }
};

// sum of s[i] * P[i] over ControlPoints with the marker rules.
template <int N>
constexpr ControlPoint combine(const double (&s)[N], const ControlPoint (&P)[N]) noexcept {
    double x = 0.0, y = 0.0;
    ZSum z;
    WSum w;
    for (int i = 0; i < N; ++i) {
        x += s[i] * P[i].x;
        y += s[i] * P[i].y;
        z.add(s[i], P[i].z);
        w.add(s[i], P[i].w);
    }
    return ControlPoint{x, y, z.value(), w.value()};
}

constexpr Point operator+(Point a, Point b) noexcept { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
constexpr Point operator-(Point a, Point b) noexcept { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
constexpr Point operator*(double s, Point a) noexcept { return {s * a.x, s * a.y, s * a.z}; }
constexpr double dot(Point a, Point b) noexcept { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline double norm(Point a) noexcept { return std::sqrt(dot(a, a)); }

// Sum and difference: x, y add; z and w by the marker rules.
constexpr ControlPoint sum(const ControlPoint &a, const ControlPoint &b) noexcept {
    return combine<2>({1.0, 1.0}, {a, b});
}
// When only one z exists the result takes it as it stands, also as the
// subtrahend: the mixed case is a 2-D point met by a 3-D one, not arithmetic.
constexpr ControlPoint difference(const ControlPoint &a, const ControlPoint &b) noexcept {
    double z = a.z - b.z;
    if (planar(a.z) || planar(b.z)) z = planar(a.z) ? b.z : a.z;
    const double w = nonrational(a.w) || nonrational(b.w) ? kNonRational : a.w - b.w;
    return ControlPoint{a.x - b.x, a.y - b.y, z, w};
}

// s times x and y, z unless planar, w unless non-rational.
constexpr ControlPoint scale(double s, const ControlPoint &P) noexcept {
    return ControlPoint{s * P.x, s * P.y, planar(P.z) ? P.z : s * P.z,
                        nonrational(P.w) ? P.w : s * P.w};
}

// The Cartesian point: a planar z reads 0.0; divided by w when rational.
constexpr Point euclid(const ControlPoint &P) noexcept {
    const double z = planar(P.z) ? 0.0 : P.z;
    if (nonrational(P.w)) return Point{P.x, P.y, z};
    return Point{P.x / P.w, P.y / P.w, z / P.w};
}

// Cartesian coordinates with weight w -> homogeneous form.
constexpr ControlPoint weight(const ControlPoint &P) noexcept {
    if (nonrational(P.w)) return P;
    return ControlPoint{P.x * P.w, P.y * P.w, planar(P.z) ? P.z : P.z * P.w, P.w};
}

// The Cartesian form, non-rational, keeping a planar marker.
constexpr ControlPoint euclid_cp(const ControlPoint &P) noexcept {
    const Point E = euclid(P);
    return ControlPoint{E.x, E.y, planar(P.z) ? kPlanar : E.z, kNonRational};
}

constexpr double dot(const ControlPoint &a, const ControlPoint &b) noexcept {
    double d = a.x * b.x + a.y * b.y;
    if (!planar(a.z) && !planar(b.z)) d += a.z * b.z;
    // One missing weight counts as 1; two missing count as nothing, so that
    // the magnitude of a non-rational point is its Euclidean length.
    const bool ra = rational(a), rb = rational(b);
    if (ra && rb) d += a.w * b.w;
    else if (ra) d += a.w;
    else if (rb) d += b.w;
    return d;
}

inline double magnitude(const ControlPoint &a) noexcept { return std::sqrt(dot(a, a)); }

}  // namespace kw

// Shared pieces of the elementary geometry: vector helpers on Points, line
// extents, and point sources that let one body serve Point arrays, control
// polygons and nets alike.
#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "knotwork/geom.h"
#include "knotwork/numeric.h"

namespace kw {

inline constexpr double kPi = 3.141592653589793;

constexpr Point cross(Point u, Point v) noexcept {
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}
constexpr Point operator-(Point a) noexcept { return {-a.x, -a.y, -a.z}; }
constexpr double norm2(Point a) noexcept { return dot(a, a); }
inline double distance(Point a, Point b) noexcept { return norm(a - b); }

// V / |V| into *u and |V| into *r, unless 1 / |V| fails the overflow guard.
inline bool normalise(Point V, Point *u, double *r) noexcept {
    const double len = norm(V);
    if (M_chkfop(1.0, len, 4)) return false;
    const double inv = 1.0 / len;
    *u = inv * V;
    *r = len;
    return true;
}

// A direction for a routine that needs one: false for a zero vector even
// when the overflow guard is switched off.
inline bool direction(Point V, Point *u) noexcept {
    double r = 0.0;
    return norm2(V) > 0.0 && normalise(V, u, &r);
}

// |u x v| <= U_tolzer |u| |v|: the sine of the angle is negligible.
inline bool parallel(Point u, Point v) noexcept {
    return norm(cross(u, v)) <= U_tolzer * norm(u) * norm(v);
}

// Distance from P to the circle with centre C, unit axis n and radius r.
inline double circle_distance(Point P, Point C, Point n, double r) noexcept {
    const Point v = P - C;
    const double h = dot(v, n);
    return std::hypot(h, norm(v - h * n) - r);
}

// ---- Line extents -----------------------------------------------------------

inline int16_t extent(const Line *line) noexcept {
    if (line->flag == KW_LINE_RAY || line->flag == KW_LINE_SEGMENT) return line->flag;
    return KW_LINE_INFINITE;
}
// The parameter range of the line's points.
inline double lower(const Line *line) noexcept {
    return extent(line) == KW_LINE_INFINITE ? -DBL_MAX : 0.0;
}
inline double upper(const Line *line) noexcept {
    return extent(line) == KW_LINE_SEGMENT ? 1.0 : DBL_MAX;
}
inline bool within(const Line *line, double t) noexcept {
    return t >= lower(line) && t <= upper(line);
}
inline double clamp(const Line *line, double t) noexcept {
    return std::clamp(t, lower(line), upper(line));
}
inline Point at(const Line *line, double t) noexcept {
    return line->point + t * line->direction;
}

// The parameter of the point of the line's points nearest P; false for a
// zero direction.
inline bool nearest(const Line *line, Point P, double *t) noexcept {
    const double dd = norm2(line->direction);
    if (!(dd > 0.0)) return false;
    *t = clamp(line, dot(P - line->point, line->direction) / dd);
    return true;
}

// ---- Point sources --------------------------------------------------------------
// A point source has count() points, 0..count()-1, read as Cartesian Points.

struct Points {
    const Point *P;
    int32_t n;
    int32_t count() const noexcept { return n + 1; }
    Point operator[](int32_t i) const noexcept { return P[i]; }
};

struct ControlPoints {
    const ControlPoint *Pw;
    int32_t n;
    int32_t count() const noexcept { return n + 1; }
    Point operator[](int32_t i) const noexcept { return euclid(Pw[i]); }
};

// A net read row by row.
struct NetPoints {
    const ControlNet *net;
    int32_t count() const noexcept { return (net->n + 1) * (net->m + 1); }
    Point operator[](int32_t k) const noexcept {
        return euclid(net->Pw[k / (net->m + 1)][k % (net->m + 1)]);
    }
};

template <class Src>
Point centroid(const Src &src, double w) noexcept {
    Point c{0.0, 0.0, 0.0};
    for (int32_t i = 0; i < src.count(); ++i) c = c + src[i];
    return w * c;
}

template <class Src>
Box box_of(const Src &src) noexcept {
    Box b{DBL_MAX, -DBL_MAX, DBL_MAX, -DBL_MAX, DBL_MAX, -DBL_MAX};
    for (int32_t i = 0; i < src.count(); ++i) {
        const Point P = src[i];
        b.xmin = std::min(b.xmin, P.x);
        b.xmax = std::max(b.xmax, P.x);
        b.ymin = std::min(b.ymin, P.y);
        b.ymax = std::max(b.ymax, P.y);
        b.zmin = std::min(b.zmin, P.z);
        b.zmax = std::max(b.zmax, P.z);
    }
    return b;
}

// The mean (the sum times 1 / count) and the greatest of dist(P) over the
// source's points, the greatest starting from -1 and replaced only by a
// strictly greater value.
template <class Src, class Dist>
void spread(const Src &src, Dist dist, double *mean, double *max) noexcept {
    double sum = 0.0, big = -1.0;
    for (int32_t i = 0; i < src.count(); ++i) {
        const double d = dist(src[i]);
        sum += d;
        if (d > big) big = d;
    }
    *mean = sum * (1.0 / src.count());
    *max = big;
}

// The vector area of the closed polygon through the source's points, summed
// about the first point so that a polygon far from the origin loses nothing
// to cancellation.
template <class Src>
Point vector_area(const Src &src) noexcept {
    Point S{0.0, 0.0, 0.0};
    const Point O = src[0];
    for (int32_t i = 1; i + 1 < src.count(); ++i) S = S + cross(src[i] - O, src[i + 1] - O);
    return 0.5 * S;
}

}  // namespace kw

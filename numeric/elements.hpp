// The right-hand sides the solvers work on: doubles, Points and
// ControlPoints, combined linearly. ControlPoints keep the planar and
// non-rational markers, so a 2-D or non-rational right side gives a 2-D or
// non-rational solution.
#pragma once

#include "core/arith.hpp"

namespace kw {

// sum of c * v over the terms added; like(v) gives an empty sum v's markers.
template <class T>
struct Combination;

template <>
struct Combination<double> {
    double s = 0.0;
    void add(double c, double v) noexcept { s += c * v; }
    void like(double) noexcept {}
    double value() const noexcept { return s; }
};

template <>
struct Combination<Point> {
    Point s{0.0, 0.0, 0.0};
    void add(double c, const Point &v) noexcept {
        s.x += c * v.x;
        s.y += c * v.y;
        s.z += c * v.z;
    }
    void like(const Point &) noexcept {}
    Point value() const noexcept { return s; }
};

template <>
struct Combination<ControlPoint> {
    double x = 0.0, y = 0.0;
    ZSum z;
    WSum w;
    void add(double c, const ControlPoint &v) noexcept {
        x += c * v.x;
        y += c * v.y;
        z.add(c, v.z);
        w.add(c, v.w);
    }
    // Takes v's markers without adding anything, so that a sum of no terms
    // is the zero of the operands' kind.
    void like(const ControlPoint &v) noexcept {
        if (!planar(v.z)) z.add(0.0, 0.0);
        if (nonrational(v.w)) w.add(0.0, v.w);
    }
    ControlPoint value() const noexcept { return ControlPoint{x, y, z.value(), w.value()}; }
};

// v / d, component by component; markers stay.
constexpr double divided(double v, double d) noexcept { return v / d; }
constexpr Point divided(const Point &v, double d) noexcept { return {v.x / d, v.y / d, v.z / d}; }
constexpr ControlPoint divided(const ControlPoint &v, double d) noexcept {
    return ControlPoint{v.x / d, v.y / d, planar(v.z) ? v.z : v.z / d,
                        nonrational(v.w) ? v.w : v.w / d};
}

// The zero of v's kind; a ControlPoint keeps v's markers.
constexpr double zero_like(double) noexcept { return 0.0; }
constexpr Point zero_like(const Point &) noexcept { return {0.0, 0.0, 0.0}; }
constexpr ControlPoint zero_like(const ControlPoint &v) noexcept {
    return ControlPoint{0.0, 0.0, planar(v.z) ? v.z : 0.0, nonrational(v.w) ? v.w : 0.0};
}

}  // namespace kw

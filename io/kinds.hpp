// The four kinds of control points that files distinguish, by dimension and
// rationality, and how a control point of each kind is laid out as numbers.
#pragma once

#include <cstdint>

#include "core/arith.hpp"

namespace kw::io {

// 1: 2-D non-rational (x y), 2: 3-D non-rational (x y z), 3: 2-D rational
// (x y w), 4: 3-D rational (x y z w). 0 for anything else.
constexpr int point_kind(int64_t rational, int64_t dimension) noexcept {
    if ((rational != 0 && rational != 1) || (dimension != 2 && dimension != 3)) return 0;
    return 1 + static_cast<int>(dimension - 2) + 2 * static_cast<int>(rational);
}
constexpr int point_kind(const ControlPoint &P) noexcept {
    return point_kind(rational(P) ? 1 : 0, planar(P) ? 2 : 3);
}
constexpr bool kind_rational(int kind) noexcept { return kind >= 3; }
constexpr bool kind_3d(int kind) noexcept { return kind == 2 || kind == 4; }
// Numbers per control point.
constexpr int kind_width(int kind) noexcept { return 2 + kind_3d(kind) + kind_rational(kind); }

// The stored values of P that a kind keeps, in file order; returns how many.
constexpr int pack(const ControlPoint &P, int kind, double v[4]) noexcept {
    int k = 0;
    v[k++] = P.x;
    v[k++] = P.y;
    if (kind_3d(kind)) v[k++] = P.z;
    if (kind_rational(kind)) v[k++] = P.w;
    return k;
}

// The control point of a kind from its values in file order, the values a
// kind leaves out filled with the markers.
constexpr ControlPoint unpack(const double v[4], int kind) noexcept {
    const bool three = kind_3d(kind);
    return ControlPoint{v[0], v[1], three ? v[2] : kPlanar,
                        kind_rational(kind) ? v[three ? 3 : 2] : kNonRational};
}

}  // namespace kw::io

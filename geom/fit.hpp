// The line fit over any point source, shared by G_lsqdln and the shape
// predicates of curves and point arrays.
#pragma once

#include "geom/geom.hpp"

namespace kw {

// Every point within tol of the centroid.
template <class Src>
bool point_like(const Src &src, double tol) noexcept {
    const Point c = centroid(src, 1.0 / src.count());
    for (int32_t i = 0; i < src.count(); ++i)
        if (!(distance(src[i], c) <= tol)) return false;
    return true;
}

// The best-fit line of G_lsqdln: the centroid, and the mean of the offsets
// turned to the side of the farthest point. Failures are recorded under
// name, except the zero direction, which G_vecnip records.
template <class Src>
int16_t fit_line(const Src &src, Point *C, Point *V, double *mean, double *max,
                 char *name) noexcept {
    const int32_t count = src.count();
    if (M_chkfop(1.0, count, 4)) return fail(KW_ESINGULAR, name);
    if (count < 1) return fail(KW_EARG, name);
    const double w = 1.0 / count;
    const Point c = centroid(src, w);
    double big = -1.0;
    Point d0{};
    for (int32_t i = 0; i < count; ++i) {
        const double d = norm2(src[i] - c);
        if (d > big) {
            big = d;
            d0 = src[i] - c;
        }
    }
    Point sum{0.0, 0.0, 0.0};
    for (int32_t i = 0; i < count; ++i) {
        const Point v = src[i] - c;
        sum = sum + (dot(v, d0) < 0.0 ? -v : v);
    }
    Point direction = w * sum;
    if (G_vecnip(&direction)) return 1;
    spread(src, [&](Point P) { return norm(cross(P - c, direction)); }, mean, max);
    *C = c;
    *V = direction;
    return 0;
}

}  // namespace kw

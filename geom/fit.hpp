// The line and plane fits over any point source, shared by the exported
// fits and the shape predicates of curves, surfaces and point arrays.
#pragma once

#include "core/storage.hpp"
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

// w := 1 / the number of points: 11 when the division fails the overflow
// guard (no points), 14 for a count below that.
template <class Src>
int16_t averaging(const Src &src, double *w, char *name) noexcept {
    const int32_t count = src.count();
    if (M_chkfop(1.0, count, 4)) return fail(KW_ESINGULAR, name);
    if (count < 1) return fail(KW_EARG, name);
    *w = 1.0 / count;
    return 0;
}

// The best-fit line of G_lsqdln: the centroid, and the mean of the offsets
// turned to the side of the farthest point. Failures are recorded under
// name, except the zero direction, which G_vecnip records.
template <class Src>
int16_t fit_line(const Src &src, Point *C, Point *V, double *mean, double *max,
                 char *name) noexcept {
    double w = 0.0;
    if (averaging(src, &w, name)) return 1;
    const int32_t count = src.count();
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

// The eigenvalues d (ascending) and unit eigenvectors axis of the scatter
// matrix A^T A, where row i of A is the source's point i less c, scaled by
// root[i] when root is given. Scratch on a private context; 1 with the
// matrix routines' error recorded.
template <class Src>
int16_t scatter_axes(const Src &src, Point c, const double *root, double d[3],
                     Point axis[3]) noexcept {
    LocalStacks local;
    StorageStacks *stk = local.get();
    RealMatrix A, T, M, V;
    M_inirma(&A);
    M_inirma(&T);
    M_inirma(&M);
    M_inirma(&V);
    const int32_t n = src.count() - 1;
    if (M_getrma(&A, n, 2, KW_FULL, n + 1, stk)) return 1;
    for (int32_t i = 0; i <= n; ++i) {
        const Point v = (root ? root[i] : 1.0) * (src[i] - c);
        A.a[i][0] = v.x;
        A.a[i][1] = v.y;
        A.a[i][2] = v.z;
    }
    if (M_rmatrp(&A, &T, stk) || M_rmamul(&T, &A, &M, stk) || M_rmaevv(&M, d, &V, stk)) return 1;
    for (int k = 0; k < 3; ++k) axis[k] = Point{V.a[0][k], V.a[1][k], V.a[2][k]};
    return 0;
}

// The plane of G_lsqdpl: through the centroid, normal to the scatter's axis
// of least eigenvalue (the first strictly least, scanning from DBL_MAX).
template <class Src>
int16_t fit_plane(const Src &src, Point *C, Point *N, double *mean, double *max,
                  char *name) noexcept {
    double w = 0.0;
    if (averaging(src, &w, name)) return 1;
    const Point c = centroid(src, w);
    double d[3];
    Point axis[3];
    if (scatter_axes(src, c, nullptr, d, axis)) return 1;
    double least = DBL_MAX;
    Point normal = axis[0];
    for (int k = 0; k < 3; ++k)
        if (d[k] < least) {
            least = d[k];
            normal = axis[k];
        }
    spread(src, [&](Point P) { return std::fabs(dot(P - c, normal)); }, mean, max);
    *C = c;
    *N = normal;
    return 0;
}

}  // namespace kw

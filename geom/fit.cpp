// Best-fit lines, planes, circles and spheres.
#include <cmath>

#include "geom/fit.hpp"

using namespace kw;

int16_t G_lsqdln(const Point *P, int32_t n, Point *C, Point *V, double *mean, double *max) {
    static char name[] = "G_LSQDLN";
    return fit_line(Points{P, n}, C, V, mean, max, name);
}

// The direction of the orthogonal regression line in the plane is the
// principal axis of the 2 x 2 scatter matrix, at half the angle of
// (Sxx - Syy, 2 Sxy).
int16_t G_lsqln2(const Point *P, int32_t n, Line *line, double *mean, double *max) {
    static char name[] = "G_LSQLN2";
    if (n < 1) return fail(KW_EARG, name);
    const Points src{P, n};
    const Point c = centroid(src, 1.0 / src.count());
    double sxx = 0.0, sxy = 0.0, syy = 0.0;
    for (int32_t i = 0; i <= n; ++i) {
        const double x = P[i].x - c.x, y = P[i].y - c.y;
        sxx += x * x;
        sxy += x * y;
        syy += y * y;
    }
    if (!(sxx + syy > 0.0)) return fail(KW_EZEROVEC, name);
    const double theta = 0.5 * std::atan2(2.0 * sxy, sxx - syy);
    const Point d{std::cos(theta), std::sin(theta), 0.0}, o{c.x, c.y, 0.0};
    spread(src, [&](Point X) { return std::fabs(cross(Point{X.x, X.y, 0.0} - o, d).z); }, mean,
           max);
    *line = Line{o, d, KW_LINE_INFINITE};
    return 0;
}

// ---- Planes -----------------------------------------------------------------

int16_t G_lsqdpl(const Point *P, int32_t n, Point *C, Point *N, double *mean, double *max) {
    static char name[] = "G_LSQDPL";
    return fit_plane(Points{P, n}, C, N, mean, max, name);
}

int16_t G_lsqpln(const ControlPoint *Pw, int32_t n, Plane *pln, double *mean, double *max) {
    static char name[] = "G_LSQPLN";
    if (n < 2) return fail(KW_EARG, name);
    Point C{}, N{};
    if (fit_plane(ControlPoints{Pw, n}, &C, &N, mean, max, name)) return 1;
    *pln = Plane{C, N};
    return 0;
}

int16_t G_lsqln3(const Point *P, int32_t n, Line *line, double *mean, double *max) {
    static char name[] = "G_LSQLN3";
    if (n < 1) return fail(KW_EARG, name);
    const Points src{P, n};
    const Point c = centroid(src, 1.0 / src.count());
    double d[3];
    Point axis[3];
    if (scatter_axes(src, c, nullptr, d, axis)) return 1;
    int greatest = 0;
    for (int k = 1; k < 3; ++k)
        if (d[k] > d[greatest]) greatest = k;
    if (!(d[greatest] > 0.0)) return fail(KW_EZEROVEC, name);
    const Point D = axis[greatest];
    spread(src, [&](Point X) { return norm(cross(X - c, D)); }, mean, max);
    *line = Line{c, D, KW_LINE_INFINITE};
    return 0;
}

namespace {

// The half width of the slab of the points between two planes of normal N
// (a unit vector), and its mid plane.
double half_width(const Point *P, int32_t n, Point N, Plane *mid) noexcept {
    double lo = DBL_MAX, hi = -DBL_MAX;
    for (int32_t i = 0; i <= n; ++i) {
        lo = std::min(lo, dot(P[i], N));
        hi = std::max(hi, dot(P[i], N));
    }
    *mid = Plane{(0.5 * (lo + hi)) * N, N};
    return 0.5 * (hi - lo);
}

// The narrowest slab touches the points' hull face to vertex or edge to
// edge, so its normal is the cross product of two joins of its support
// points. Tries every pair of joins among the kHeavy points of greatest
// weight and keeps a slab narrower than *upper.
void narrowest_slab(const Point *P, int32_t n, const double *w, Plane *best,
                    double *upper) noexcept {
    constexpr int kHeavy = 12;
    int32_t S[kHeavy];
    int k = 0;
    for (int32_t i = 0; i <= n; ++i) {
        int at = k < kHeavy ? k++ : kHeavy;
        while (at > 0 && w[S[at - 1]] < w[i]) {
            if (at < kHeavy) S[at] = S[at - 1];
            --at;
        }
        if (at < kHeavy) S[at] = i;
    }
    for (int a = 0; a < k; ++a)
        for (int b = a + 1; b < k; ++b)
            for (int c = a; c < k; ++c)
                for (int d = c + 1; d < k; ++d) {
                    Point N{};
                    Plane mid{};
                    if (!direction(cross(P[S[b]] - P[S[a]], P[S[d]] - P[S[c]]), &N)) continue;
                    const double h = half_width(P, n, N, &mid);
                    if (h < *upper) {
                        *upper = h;
                        *best = mid;
                    }
                }
}

}  // namespace

// Lawson's reweighting: each sweep solves a weighted least-squares plane and
// multiplies every weight by its point's distance. The weighted residual
// sqrt(sum w r^2) (weights summing to 1) bounds the least greatest distance
// from below; the best plane met bounds it from above. The weights soon pick
// out the support points, among which the exact slab is then sought; the
// sweeps stop when the bounds are within U_tolpoi, or when that search has
// found nothing narrower kSteady times running.
int16_t G_mxapln(const Point *P, int32_t n, Plane *pln, double *max) {
    static char name[] = "G_MXAPLN";
    constexpr int kSweeps = 1000, kSearch = 8, kSteady = 3;
    if (n < 2) return fail(KW_EARG, name);
    LocalStacks local;
    double *w = get1d<double>(n, local.get()), *root = get1d<double>(n, local.get());
    if (!w || !root) return 1;
    const Points src{P, n};
    std::fill_n(w, n + 1, 1.0 / (n + 1));
    Plane best{};
    double upper = DBL_MAX;
    int steady = 0;
    for (int sweep = 0; sweep < kSweeps; ++sweep) {
        Point c{0.0, 0.0, 0.0};
        for (int32_t i = 0; i <= n; ++i) {
            c = c + w[i] * P[i];
            root[i] = std::sqrt(w[i]);
        }
        double d[3];
        Point axis[3];
        if (scatter_axes(src, c, root, d, axis)) return 1;
        const double lower = std::sqrt(std::max(d[0], 0.0));
        double big = 0.0, sum = 0.0;
        for (int32_t i = 0; i <= n; ++i) {
            const double r = std::fabs(dot(P[i] - c, axis[0]));
            big = std::max(big, r);
            w[i] *= r;
            sum += w[i];
        }
        if (big < upper) {
            upper = big;
            best = Plane{c, axis[0]};
        }
        if (sweep % kSearch == kSearch - 1) {
            const double before = upper;
            narrowest_slab(P, n, w, &best, &upper);
            steady = upper == before ? steady + 1 : 0;
        }
        if (upper - lower <= U_tolpoi || !(sum > 0.0) || steady == kSteady) {
            *pln = best;
            *max = upper;
            return 0;
        }
        for (int32_t i = 0; i <= n; ++i) w[i] /= sum;
    }
    return fail(KW_ENOCONV, name);
}

// ---- Circles and spheres ---------------------------------------------------------

namespace {

// Gauss-Newton steps on the geometric fit of a circle (Dim 2: q in the xy
// plane) or a sphere (Dim 3), residuals |q_i - m| - r, each step halved
// until the squared sum does not grow. Needs more points than unknowns; with
// fewer the seed stands. A singular step ends the iteration successfully
// with the last iterate and the error state cleared.
template <int Dim>
int16_t refine(const Point *q, int32_t n, Point *m, double *r, StorageStacks *stk) noexcept {
    if (n <= Dim) return 0;
    RealMatrix J;
    M_inirma(&J);
    if (M_getrma(&J, n, Dim, KW_FULL, n + 1, stk)) return 1;
    double *f = get1d<double>(n, stk);
    if (!f) return 1;
    auto cost = [&](Point c, double rad) {
        double s = 0.0;
        for (int32_t i = 0; i <= n; ++i) s += (distance(q[i], c) - rad) * (distance(q[i], c) - rad);
        return s;
    };
    double current = cost(*m, *r);
    for (int32_t iteration = 0; iteration < N_itenew; ++iteration) {
        for (int32_t i = 0; i <= n; ++i) {
            const Point v = q[i] - *m;
            const double rho = norm(v);
            const Point u = rho > 0.0 ? (-1.0 / rho) * v : Point{0.0, 0.0, 0.0};
            const double row[3] = {u.x, u.y, u.z};
            for (int k = 0; k < Dim; ++k) J.a[i][k] = row[k];
            J.a[i][Dim] = -1.0;
            f[i] = *r - rho;
        }
        double delta[Dim + 1];
        if (M_lsslsy(&J, f, delta)) {
            if (E_errtyp() != KW_ESINGULAR) return 1;
            E_clrerr();
            return 0;
        }
        const Point dm{delta[0], delta[1], Dim == 3 ? delta[2] : 0.0};
        double step = 1.0, next = DBL_MAX;
        for (int halving = 0; halving < 30; ++halving, step *= 0.5)
            if ((next = cost(*m + step * dm, *r + step * delta[Dim])) <= current) break;
        if (!(next <= current)) return 0;
        *m = *m + step * dm;
        *r += step * delta[Dim];
        current = next;
        if (step * std::sqrt(norm2(dm) + delta[Dim] * delta[Dim]) <= U_tolzer * std::fabs(*r))
            return 0;
    }
    return 0;
}

}  // namespace

// The plane comes first; in it, the circle through the points at either end
// of the best-fit line and the point farthest from the chord between them
// seeds the refinement.
int16_t G_lsqcir(const Point *P, int32_t n, Point *C, Point *N, double *r, double *mean,
                 double *max) {
    static char name[] = "G_LSQCIR";
    if (n < 2) return fail(KW_EARG, name);
    const Points src{P, n};
    Point c0{}, normal{}, c1{}, D{}, e1{};
    double m0 = 0.0, m1 = 0.0;
    if (fit_plane(src, &c0, &normal, &m0, &m1, name)) return 1;
    if (fit_line(src, &c1, &D, &m0, &m1, name) || !direction(D - dot(D, normal) * normal, &e1))
        return fail(KW_ESINGULAR, name);
    const Point e2 = cross(normal, e1);
    LocalStacks local;
    Point *q = get1d<Point>(n, local.get());
    if (!q) return 1;
    int32_t lo = 0, hi = 0, far = 0;
    for (int32_t i = 0; i <= n; ++i) {
        q[i] = Point{dot(P[i] - c0, e1), dot(P[i] - c0, e2), 0.0};
        if (q[i].x < q[lo].x) lo = i;
        if (q[i].x > q[hi].x) hi = i;
    }
    const Point chord = q[hi] - q[lo];
    for (int32_t i = 0; i <= n; ++i)
        if (std::fabs(cross(chord, q[i] - q[lo]).z) > std::fabs(cross(chord, q[far] - q[lo]).z))
            far = i;
    Point m{}, axis{};
    double rad = 0.0;
    if (G_circer(q[lo], q[hi], q[far], &m, &axis, &rad)) return fail(KW_ESINGULAR, name);
    if (refine<2>(q, n, &m, &rad, local.get())) return 1;
    const Point centre = c0 + m.x * e1 + m.y * e2;
    spread(src, [&](Point X) { return circle_distance(X, centre, normal, rad); }, mean, max);
    *C = centre;
    *N = normal;
    *r = rad;
    return 0;
}

// The algebraic fit |q|^2 = 2 q . m + k (k = r^2 - |m|^2), about the
// centroid, seeds the refinement; four points give the sphere through them.
int16_t G_lsqsph(const Point *P, int32_t n, Point *C, double *r, double *mean, double *max) {
    static char name[] = "G_LSQSPH";
    if (n < 3) return fail(KW_EARG, name);
    const Points src{P, n};
    const Point c0 = centroid(src, 1.0 / src.count());
    LocalStacks local;
    StorageStacks *stk = local.get();
    Point *q = get1d<Point>(n, stk);
    double *b = get1d<double>(n, stk);
    RealMatrix A;
    M_inirma(&A);
    if (!q || !b || M_getrma(&A, n, 3, KW_FULL, n + 1, stk)) return 1;
    for (int32_t i = 0; i <= n; ++i) {
        q[i] = P[i] - c0;
        A.a[i][0] = 2.0 * q[i].x;
        A.a[i][1] = 2.0 * q[i].y;
        A.a[i][2] = 2.0 * q[i].z;
        A.a[i][3] = 1.0;
        b[i] = norm2(q[i]);
    }
    Point m{};
    double rad = 0.0, x[4];
    if (n == 3) {
        if (G_sphcer(q[0], q[1], q[2], q[3], &m, &rad)) return fail(KW_ESINGULAR, name);
    } else {
        if (M_lsslsy(&A, b, x)) return E_errtyp() == KW_ESINGULAR ? fail(KW_ESINGULAR, name) : 1;
        m = Point{x[0], x[1], x[2]};
        const double rr = x[3] + norm2(m);
        if (!(rr > 0.0)) return fail(KW_ESINGULAR, name);
        rad = std::sqrt(rr);
        if (refine<3>(q, n, &m, &rad, stk)) return 1;
    }
    const Point centre = c0 + m;
    spread(src, [&](Point X) { return std::fabs(distance(X, centre) - rad); }, mean, max);
    *C = centre;
    *r = rad;
    return 0;
}

// Polygon offsets and planes, cleaning and ordering of point sets,
// reflections, barycentric weights and circles through points.
#include <cmath>

#include "geom/geom.hpp"

using namespace kw;

namespace {

// Unit xy direction of the leg from A to B; false for a zero leg.
bool leg(Point A, Point B, Point *t) noexcept {
    return direction(Point{B.x - A.x, B.y - A.y, 0.0}, t);
}

Point left(Point t) noexcept { return Point{-t.y, t.x, 0.0}; }

}  // namespace

int16_t G_poloff(const Point *P, int32_t n, double d, Point *Q) {
    static char name[] = "G_POLOFF";
    if (n < 1) return fail(KW_EARG, name);
    for (int32_t i = 0; i < n; ++i) {
        Point t{}, s{};
        if (!leg(P[i], P[i + 1], &t)) return fail(KW_EZEROVEC, name);
        if (i > 0 && leg(P[i - 1], P[i], &s) && parallel(s, t) && dot(s, t) < 0.0)
            return fail(KW_ESINGULAR, name);
    }
    // A corner moves along the bisector of the two leg normals, to where the
    // offset legs meet: d (m0 + m1) / (1 + t0 . t1).
    Point prev{};
    leg(P[0], P[1], &prev);
    Q[0] = P[0] + d * left(prev);
    Q[0].z = 0.0;
    for (int32_t i = 1; i < n; ++i) {
        Point t{};
        leg(P[i], P[i + 1], &t);
        Q[i] = P[i] + (d / (1.0 + dot(prev, t))) * (left(prev) + left(t));
        Q[i].z = 0.0;
        prev = t;
    }
    Q[n] = P[n] + d * left(prev);
    Q[n].z = 0.0;
    return 0;
}

int16_t G_polpln(const ControlPolygon *pol, Plane *pln) {
    static char name[] = "G_POLPLN";
    const ControlPoints src{pol->Pw, pol->n};
    Point N{};
    if (!direction(vector_area(src), &N)) return fail(KW_EZEROVEC, name);
    *pln = Plane{centroid(src, 1.0 / src.count()), N};
    return 0;
}

void G_poicln(const Point *P, int32_t n, double tol, Point *Q, int32_t *k) {
    int32_t kept = -1;
    for (int32_t i = 0; i <= n; ++i)
        if (kept < 0 || !(distance(P[i], Q[kept]) < tol)) Q[++kept] = P[i];
    *k = kept;
}

void G_poiord(Point *P, int32_t n, Point V) {
    if (n < 1) return;
    std::sort(P, P + n + 1, [V](const Point &a, const Point &b) {
        const double da = dot(a, V), db = dot(b, V);
        if (da != db) return da < db;
        if (a.x != b.x) return a.x < b.x;
        if (a.y != b.y) return a.y < b.y;
        return a.z < b.z;
    });
}

int16_t G_poirct(Point P, const Rectangle *rct) {
    return rct->a <= P.x && P.x <= rct->b && rct->c <= P.y && P.y <= rct->d;
}

int16_t G_reflcp(ControlPoint Pw, const Plane *pln, ControlPoint *Q) {
    static char name[] = "G_REFLCP";
    Point n{};
    if (!direction(pln->normal, &n)) return fail(KW_EZEROVEC, name);
    const Point E = euclid(Pw);
    const Point R = E - (2.0 * dot(E - pln->point, n)) * n;
    *Q = weight(ControlPoint{R.x, R.y, planar(Pw) ? kPlanar : R.z, Pw.w});
    return 0;
}

int16_t G_gweabc(Point P, Point A, Point B, Point C, double *a, double *b, double *c) {
    static char name[] = "G_GWEABC";
    const Point v0 = B - A, v1 = C - A, v2 = P - A;
    if (!(norm2(v0) > 0.0) || !(norm2(v1) > 0.0) || parallel(v0, v1))
        return fail(KW_ESINGULAR, name);
    const double d00 = dot(v0, v0), d01 = dot(v0, v1), d11 = dot(v1, v1);
    const double d20 = dot(v2, v0), d21 = dot(v2, v1);
    const double den = d00 * d11 - d01 * d01;
    const double wb = (d11 * d20 - d01 * d21) / den, wc = (d00 * d21 - d01 * d20) / den;
    *a = 1.0 - wb - wc;
    *b = wb;
    *c = wc;
    return 0;
}

// ---- Circles and spheres through points ------------------------------------------

int16_t G_circer(Point A, Point B, Point C, Point *M, Point *N, double *r) {
    static char name[] = "G_CIRCER";
    const Point a = A - C, b = B - C, axb = cross(a, b);
    if (!(norm2(a) > 0.0) || !(norm2(b) > 0.0) || parallel(a, b)) return fail(KW_ESINGULAR, name);
    const double q = 2.0 * norm2(axb);
    const Point centre = C + (1.0 / q) * cross(norm2(a) * b - norm2(b) * a, axb);
    Point axis{};
    direction(axb, &axis);
    *M = centre;
    *N = axis;
    *r = distance(centre, A);
    return 0;
}

int16_t G_sphcer(Point A, Point B, Point C, Point D, Point *M, double *r) {
    static char name[] = "G_SPHCER";
    const Point b = B - A, c = C - A, d = D - A;
    const double det = dot(b, cross(c, d));
    if (!(std::fabs(det) > U_tolzer * norm(b) * norm(c) * norm(d))) return fail(KW_ESINGULAR, name);
    const Point m =
        (0.5 / det) * (norm2(b) * cross(c, d) + norm2(c) * cross(d, b) + norm2(d) * cross(b, c));
    *M = A + m;
    *r = norm(m);
    return 0;
}

int16_t G_cirder(Point P, Point D1, Point D2, Point *M, Point *N, double *r) {
    static char name[] = "G_CIRDER";
    if (!(norm2(D1) > 0.0)) return fail(KW_EZEROVEC, name);
    const Point b = cross(D1, D2);
    if (!(norm2(D2) > 0.0) || parallel(D1, D2)) return fail(KW_ESINGULAR, name);
    Point axis{}, towards{};
    direction(b, &axis);
    direction(cross(b, D1), &towards);
    const double radius = std::pow(norm(D1), 3) / norm(b);
    *M = P + radius * towards;
    *N = axis;
    *r = radius;
    return 0;
}

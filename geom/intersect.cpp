// Intersections of lines, planes, segments, spheres and polygons, and
// projections onto lines and planes.
#include <cmath>

#include "geom/geom.hpp"

using namespace kw;

namespace {

// Twice the signed area of the triangle ABC in the xy plane.
double orient(Point A, Point B, Point C) noexcept {
    return (B.x - A.x) * (C.y - A.y) - (B.y - A.y) * (C.x - A.x);
}

// C lies in the xy bounding box of AB (for a C collinear with AB).
bool on_span(Point A, Point B, Point C) noexcept {
    return std::min(A.x, B.x) <= C.x && C.x <= std::max(A.x, B.x) && std::min(A.y, B.y) <= C.y &&
           C.y <= std::max(A.y, B.y);
}

bool segments_meet(Point A, Point B, Point C, Point D) noexcept {
    const double o1 = orient(A, B, C), o2 = orient(A, B, D);
    const double o3 = orient(C, D, A), o4 = orient(C, D, B);
    if (((o1 > 0.0 && o2 < 0.0) || (o1 < 0.0 && o2 > 0.0)) &&
        ((o3 > 0.0 && o4 < 0.0) || (o3 < 0.0 && o4 > 0.0)))
        return true;
    return (o1 == 0.0 && on_span(A, B, C)) || (o2 == 0.0 && on_span(A, B, D)) ||
           (o3 == 0.0 && on_span(C, D, A)) || (o4 == 0.0 && on_span(C, D, B));
}

// Even-odd rule with a ray towards +x.
bool inside_polygon(Point P, const PointPolyline *A) noexcept {
    bool in = false;
    const int32_t k = A->n + 1;
    for (int32_t i = 0, j = k - 1; i < k; j = i++) {
        const Point a = A->P[i], b = A->P[j];
        if ((a.y > P.y) != (b.y > P.y) && P.x < (b.x - a.x) * (P.y - a.y) / (b.y - a.y) + a.x)
            in = !in;
    }
    return in;
}

bool edges_meet(const PointPolyline *A, const PointPolyline *B) noexcept {
    const int32_t ka = A->n + 1, kb = B->n + 1;
    for (int32_t i = 0; i < ka; ++i)
        for (int32_t j = 0; j < kb; ++j)
            if (segments_meet(A->P[i], A->P[(i + 1) % ka], B->P[j], B->P[(j + 1) % kb]))
                return true;
    return false;
}

bool near_boundary(Point P, const PointPolyline *A) noexcept {
    const int32_t k = A->n + 1;
    for (int32_t i = 0; i < k; ++i) {
        double d = 0.0;
        const Point a{A->P[i].x, A->P[i].y, 0.0}, b{A->P[(i + 1) % k].x, A->P[(i + 1) % k].y, 0.0};
        G_dispab(Point{P.x, P.y, 0.0}, a, b, &d);
        if (d <= U_tolpoi) return true;
    }
    return false;
}

// P projected onto the plane through O with unit normal n.
Point onto_plane(Point P, Point O, Point n) noexcept { return P - dot(P - O, n) * n; }

}  // namespace

// ---- Intersections ---------------------------------------------------------------

int16_t G_intlnl(const Line *L1, const Line *L2, Point *X, double *s, double *t) {
    static char name[] = "G_INTLNL";
    const Point d1 = L1->direction, d2 = L2->direction;
    if (!(norm2(d1) > 0.0) || !(norm2(d2) > 0.0)) return fail(KW_EZEROVEC, name);
    if (parallel(d1, d2)) return fail(KW_ESINGULAR, name);
    const Point w = L1->point - L2->point;
    const double a = dot(d1, d1), b = dot(d1, d2), c = dot(d2, d2);
    const double d = dot(d1, w), e = dot(d2, w);
    const double den = a * c - b * b;
    const double s1 = (b * e - c * d) / den, t2 = (a * e - b * d) / den;
    *X = at(L1, s1);
    *s = s1;
    *t = t2;
    const bool meet = distance(*X, at(L2, t2)) < U_tolpoi;
    return meet && within(L1, s1) && within(L2, t2) ? 0 : 2;
}

int16_t G_intlnp(const Line *line, const Plane *pln, Point *X, double *t) {
    static char name[] = "G_INTLNP";
    const Point d = line->direction, n = pln->normal;
    if (!(norm2(d) > 0.0) || !(norm2(n) > 0.0)) return fail(KW_EZEROVEC, name);
    const double nd = dot(n, d);
    if (std::fabs(nd) <= U_tolzer * norm(n) * norm(d)) return fail(KW_ESINGULAR, name);
    const double t1 = dot(n, pln->point - line->point) / nd;
    *X = at(line, t1);
    *t = t1;
    return within(line, t1) ? 0 : 2;
}

int16_t G_intplp(const Plane *A, const Plane *B, Line *line) {
    static char name[] = "G_INTPLP";
    const Point n1 = A->normal, n2 = B->normal;
    if (!(norm2(n1) > 0.0) || !(norm2(n2) > 0.0)) return fail(KW_EZEROVEC, name);
    if (parallel(n1, n2)) return fail(KW_ESINGULAR, name);
    // The nearest point to A's point: X = A.point + alpha n1 + beta n2 on both planes.
    const Point d = cross(n1, n2);
    const double det = norm2(d), g = dot(n2, B->point - A->point), k = dot(n1, n2);
    const double alpha = -k * g / det, beta = norm2(n1) * g / det;
    Point u{};
    if (!direction(d, &u)) return fail(KW_ESINGULAR, name);
    *line = Line{A->point + alpha * n1 + beta * n2, u, KW_LINE_INFINITE};
    return 0;
}

int16_t G_intcpl(const ControlPolygon *pol, const Plane *pln, Point *X, int32_t *k) {
    static char name[] = "G_INTCPL";
    Point n{};
    if (!direction(pln->normal, &n)) return fail(KW_EZEROVEC, name);
    int32_t count = -1;
    Point prev{};
    double sprev = 0.0;
    for (int32_t i = 0; i <= pol->n; ++i) {
        const Point Q = euclid(pol->Pw[i]);
        const double s = dot(Q - pln->point, n);
        const bool on = std::fabs(s) <= U_tolpoi;
        if (i > 0 && !on && std::fabs(sprev) > U_tolpoi && (s > 0.0) != (sprev > 0.0))
            X[++count] = prev + (sprev / (sprev - s)) * (Q - prev);
        if (on) X[++count] = Q;
        prev = Q;
        sprev = s;
    }
    *k = count;
    return 0;
}

int16_t G_intlsg(Point A, Point B, Point C, Point D, Point *X, double *s, double *t) {
    static char name[] = "G_INTLSG";
    const Point r{B.x - A.x, B.y - A.y, 0.0}, q{D.x - C.x, D.y - C.y, 0.0};
    if (!(norm2(r) > 0.0) || !(norm2(q) > 0.0)) return fail(KW_EZEROVEC, name);
    if (parallel(r, q)) return fail(KW_ESINGULAR, name);
    const Point w{C.x - A.x, C.y - A.y, 0.0};
    const double den = r.x * q.y - r.y * q.x;
    const double s1 = (w.x * q.y - w.y * q.x) / den, t1 = (w.x * r.y - w.y * r.x) / den;
    *X = Point{A.x + s1 * r.x, A.y + s1 * r.y, 0.0};
    *s = s1;
    *t = t1;
    return s1 >= 0.0 && s1 <= 1.0 && t1 >= 0.0 && t1 <= 1.0 ? 0 : 2;
}

int16_t G_isntlc(const Line *line, Point C, double r, int16_t *k, Point *X0, Point *X1) {
    static char name[] = "G_ISNTLC";
    const Point d = line->direction;
    const double a = norm2(d);
    if (!(a > 0.0)) return fail(KW_EZEROVEC, name);
    if (!(r >= 0.0)) return fail(KW_EARG, name);
    const double t0 = dot(C - line->point, d) / a;
    const double h = distance(C, at(line, t0));
    double ts[2];
    int count = 0;
    if (std::fabs(h - r) <= U_tolpoi) {
        ts[count++] = t0;
    } else if (h < r) {
        const double delta = std::sqrt((r - h) * (r + h) / a);
        ts[count++] = t0 - delta;
        ts[count++] = t0 + delta;
    }
    int16_t kept = 0;
    Point *out[2] = {X0, X1};
    for (int i = 0; i < count; ++i)
        if (within(line, ts[i])) *out[kept++] = at(line, ts[i]);
    *k = kept;
    return 0;
}

int16_t G_ispgpg(const PointPolyline *A, const PointPolyline *B) {
    return edges_meet(A, B) || inside_polygon(A->P[0], B) || inside_polygon(B->P[0], A);
}

int16_t G_ispgpl(const PointPolyline *A, const Plane *pln) {
    Point n{};
    if (!direction(pln->normal, &n)) return 0;
    bool above = false, below = false;
    for (int32_t i = 0; i <= A->n; ++i) {
        const double s = dot(A->P[i] - pln->point, n);
        if (std::fabs(s) <= U_tolpoi) return 1;
        (s > 0.0 ? above : below) = true;
    }
    return above && below;
}

int16_t G_ispppl(Point P, const PointPolyline *A) {
    return near_boundary(P, A) || inside_polygon(P, A);
}

int16_t G_dolsin(Point A, Point B, Point C, Point D) { return segments_meet(A, B, C, D); }

// ---- Projections ---------------------------------------------------------------

int16_t G_prjpab(const Point *P, int32_t n, const Plane *pln, Point *Q) {
    static char name[] = "G_PRJPAB";
    Point u{};
    if (!direction(pln->normal, &u)) return fail(KW_EZEROVEC, name);
    for (int32_t i = 0; i <= n; ++i) Q[i] = onto_plane(P[i], pln->point, u);
    return 0;
}

int16_t G_prjphp(Point P, double a, double b, double c, double d, Point *Q) {
    static char name[] = "G_PRJPHP";
    const Point N{a, b, c};
    const double nn = norm2(N);
    if (!(nn > 0.0)) return fail(KW_EZEROVEC, name);
    *Q = P - ((dot(N, P) + d) / nn) * N;
    return 0;
}

int16_t G_prjpln(Point P, const Line *line, Point *Q, double *t) {
    static char name[] = "G_PRJPLN";
    double t1 = 0.0;
    if (!nearest(line, P, &t1)) return fail(KW_EZEROVEC, name);
    *Q = at(line, t1);
    *t = t1;
    return 0;
}

int16_t G_prjppl(Point P, const Plane *pln, Point *Q) {
    static char name[] = "G_PRJPPL";
    Point u{};
    if (!direction(pln->normal, &u)) return fail(KW_EZEROVEC, name);
    *Q = onto_plane(P, pln->point, u);
    return 0;
}

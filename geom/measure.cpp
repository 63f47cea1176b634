// Distances, lengths, boxes and side tests.
#include "geom/geom.hpp"

using namespace kw;

namespace {

// The parameter of the point of segment AB nearest P (0 when A = B).
double segment_parameter(Point P, Point A, Point B) noexcept {
    const Point d = B - A;
    const double dd = norm2(d);
    if (!(dd > 0.0)) return 0.0;
    return std::clamp(dot(P - A, d) / dd, 0.0, 1.0);
}

Point segment_point(Point P, Point A, Point B) noexcept {
    return A + segment_parameter(P, A, B) * (B - A);
}

template <class Src>
double polyline_length(const Src &src) noexcept {
    double len = 0.0;
    for (int32_t i = 1; i < src.count(); ++i) len += distance(src[i - 1], src[i]);
    return len;
}

double diagonal(const Box &b) noexcept {
    return distance(Point{b.xmin, b.ymin, b.zmin}, Point{b.xmax, b.ymax, b.zmax});
}

// The Box of a PointNet's points.
struct PointNetPoints {
    const PointNet *net;
    int32_t count() const noexcept { return (net->n + 1) * (net->m + 1); }
    Point operator[](int32_t k) const noexcept {
        return net->P[k / (net->m + 1)][k % (net->m + 1)];
    }
};

// A coordinate range of a line: from a over every t of the extent.
void reach(double a, double d, const Line *line, double *lo, double *hi) noexcept {
    const double t0 = lower(line), t1 = upper(line);
    auto end = [&](double t) {
        if (d == 0.0) return a;
        if (t == DBL_MAX || t == -DBL_MAX) return (d > 0.0) == (t > 0.0) ? DBL_MAX : -DBL_MAX;
        return a + t * d;
    };
    *lo = std::min(end(t0), end(t1));
    *hi = std::max(end(t0), end(t1));
}

}  // namespace

void G_dispop(Point P, Point Q, double *d) { *d = distance(P, Q); }
void G_disqpp(Point P, Point Q, double *d) { *d = norm2(P - Q); }
void G_dispp2(Point P, Point Q, double *d) { *d = std::hypot(P.x - Q.x, P.y - Q.y); }
void G_disqp2(Point P, Point Q, double *d) {
    *d = (P.x - Q.x) * (P.x - Q.x) + (P.y - Q.y) * (P.y - Q.y);
}
void G_discpp(ControlPoint A, ControlPoint B, double *d) { *d = distance(euclid(A), euclid(B)); }
void G_discpo(ControlPoint Pw, Point P, double *d) { *d = distance(euclid(Pw), P); }
void G_discpw(ControlPoint A, ControlPoint B, double *d) { *d = magnitude(difference(A, B)); }
void G_dispnp(double a, double b, double c, double d, Point P, double *s) {
    *s = a * P.x + b * P.y + c * P.z + d;
}
void G_dispnl(double a, double b, double c, Point P, double *s) { *s = a * P.x + b * P.y + c; }
void G_dispab(Point P, Point A, Point B, double *d) { *d = distance(P, segment_point(P, A, B)); }
void G_disqab(Point P, Point A, Point B, double *d) { *d = norm2(P - segment_point(P, A, B)); }

int16_t G_displn(Point P, const Line *line, double *d) {
    static char name[] = "G_DISPLN";
    double t = 0.0;
    if (!nearest(line, P, &t)) return fail(KW_EZEROVEC, name);
    *d = distance(P, at(line, t));
    return 0;
}

int16_t G_disppl(Point P, const Plane *pln, double *d) {
    static char name[] = "G_DISPPL";
    Point n{};
    if (!direction(pln->normal, &n)) return fail(KW_EZEROVEC, name);
    *d = dot(P - pln->point, n);
    return 0;
}

int16_t G_dispca(Point P, Point C, Point N, double r, double *d) {
    static char name[] = "G_DISPCA";
    Point n{};
    if (!direction(N, &n)) return fail(KW_EZEROVEC, name);
    if (!(r >= 0.0)) return fail(KW_EARG, name);
    *d = circle_distance(P, C, n, r);
    return 0;
}

// Distance to a sphere is convex along a line, so over a bounded piece the
// farthest point is an end, and the nearest is the projection of C.
int16_t G_dislci(const Line *line, Point C, double r, double *d) {
    static char name[] = "G_DISLCI";
    double t = 0.0;
    if (!nearest(line, C, &t)) return fail(KW_EZEROVEC, name);
    if (!(r >= 0.0)) return fail(KW_EARG, name);
    const double dmin = distance(C, at(line, t));
    double dmax = DBL_MAX;
    if (extent(line) == KW_LINE_SEGMENT)
        dmax = std::max(distance(C, at(line, 0.0)), distance(C, at(line, 1.0)));
    if (dmin >= r) *d = dmin - r;
    else if (dmax <= r) *d = r - dmax;
    else *d = 0.0;
    return 0;
}

void G_dispol(const PointPolyline *ppl, double *len) {
    *len = polyline_length(Points{ppl->P, ppl->n});
}
void G_discpl(const ControlPolygon *pol, double *len) {
    *len = polyline_length(ControlPoints{pol->Pw, pol->n});
}

void G_boxcen(const Box *box, Point *C) {
    *C = 0.5 * Point{box->xmin, box->ymin, box->zmin} + 0.5 * Point{box->xmax, box->ymax, box->zmax};
}
void G_boxdia(const Box *box, double *d) { *d = diagonal(*box); }
void G_boxdim(const Box *box, double *dx, double *dy, double *dz) {
    *dx = box->xmax - box->xmin;
    *dy = box->ymax - box->ymin;
    *dz = box->zmax - box->zmin;
}
int16_t G_bx2ovl(const Box *A, const Box *B) {
    return A->xmin <= B->xmax && B->xmin <= A->xmax && A->ymin <= B->ymax && B->ymin <= A->ymax;
}
void G_po1box(const PointPolyline *ppl, Box *box) { *box = box_of(Points{ppl->P, ppl->n}); }
void G_po2box(const PointNet *net, Box *box) { *box = box_of(PointNetPoints{net}); }
void G_po1ext(const PointPolyline *ppl, double *d) {
    *d = diagonal(box_of(Points{ppl->P, ppl->n}));
}
void G_po2ext(const PointNet *net, double *d) { *d = diagonal(box_of(PointNetPoints{net})); }
void G_polbox(const ControlPolygon *pol, Box *box) {
    *box = box_of(ControlPoints{pol->Pw, pol->n});
}
void G_netbox(const ControlNet *net, Box *box) { *box = box_of(NetPoints{net}); }
void G_linbox(const Line *line, Box *box) {
    const Point P = line->point, V = line->direction;
    reach(P.x, V.x, line, &box->xmin, &box->xmax);
    reach(P.y, V.y, line, &box->ymin, &box->ymax);
    reach(P.z, V.z, line, &box->zmin, &box->zmax);
}

int16_t G_lipost(const Line *line, Point P) {
    const Point c = cross(line->direction, P - line->point);
    return c.z >= 0.0 ? 1 : 2;
}
int16_t G_plpost(const Plane *pln, Point P) {
    return dot(pln->normal, P - pln->point) >= 0.0 ? 2 : 1;
}

int16_t G_ispplc(const PointPolyline *ppl) {
    return distance(ppl->P[0], ppl->P[ppl->n]) < U_tolpoi;
}

void G_polleg(const ControlPolygon *pol, double *lmax) {
    double big = 0.0;
    for (int32_t i = 1; i <= pol->n; ++i)
        big = std::max(big, distance(euclid(pol->Pw[i - 1]), euclid(pol->Pw[i])));
    *lmax = big;
}

void G_netleg(const ControlNet *net, double *lu, double *lv) {
    double bu = 0.0, bv = 0.0;
    for (int32_t i = 0; i <= net->n; ++i)
        for (int32_t j = 0; j <= net->m; ++j) {
            const Point P = euclid(net->Pw[i][j]);
            if (i < net->n) bu = std::max(bu, distance(P, euclid(net->Pw[i + 1][j])));
            if (j < net->m) bv = std::max(bv, distance(P, euclid(net->Pw[i][j + 1])));
        }
    *lu = bu;
    *lv = bv;
}

void G_polppr(Point P, const PointPolyline *ppl, Point *Q, int32_t *i, double *t) {
    const Point *X = ppl->P;
    int32_t best_leg = 0;
    double best_t = 0.0, best = norm2(P - X[0]);
    for (int32_t k = 0; k < ppl->n; ++k) {
        const double s = segment_parameter(P, X[k], X[k + 1]);
        const double d = norm2(P - (X[k] + s * (X[k + 1] - X[k])));
        if (k == 0 || d < best) {
            best = d;
            best_leg = k;
            best_t = s;
        }
    }
    const int32_t next = ppl->n > 0 ? best_leg + 1 : 0;
    *Q = X[best_leg] + best_t * (X[next] - X[best_leg]);
    *i = best_leg;
    *t = best_t;
}

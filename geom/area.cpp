// Areas of triangles and polygons, and implicit forms of lines and planes.
#include <cmath>

#include "geom/geom.hpp"

using namespace kw;

namespace {

// Points (x[i], y[i], 0) of two coordinate arrays.
struct CoordinatePoints {
    const double *x, *y;
    int32_t n;
    int32_t count() const noexcept { return n + 1; }
    Point operator[](int32_t i) const noexcept { return Point{x[i], y[i], 0.0}; }
};

}  // namespace

void G_aretrl(Point A, Point B, Point C, double *area) { *area = 0.5 * norm(cross(B - A, C - A)); }

void G_pyarea(const double *x, const double *y, int32_t n, double *area) {
    *area = vector_area(CoordinatePoints{x, y, n}).z;
}

void G_araspl(const PointPolyline *ppl, double *area) {
    // The z part of the vector area reads x and y only.
    *area = vector_area(Points{ppl->P, ppl->n}).z;
}

void G_araspt(const Point *P, int32_t n, Point *S, double *area) {
    const Point V = vector_area(Points{P, n});
    *S = V;
    *area = norm(V);
}

void G_arecpl(const ControlPolygon *pol, double *area) {
    *area = norm(vector_area(ControlPoints{pol->Pw, pol->n}));
}

int16_t G_impln2(double a, double b, double c, Line *line) {
    static char name[] = "G_IMPLN2";
    const double g = std::hypot(a, b);
    if (!(g > 0.0)) return fail(KW_ESINGULAR, name);
    *line = Line{Point{-c * a / (g * g), -c * b / (g * g), 0.0}, Point{b / g, -a / g, 0.0},
                 KW_LINE_INFINITE};
    return 0;
}

int16_t G_imppln(double a, double b, double c, double d, Plane *pln) {
    static char name[] = "G_IMPPLN";
    const Point N{a, b, c};
    const double nn = norm2(N);
    if (!(nn > 0.0)) return fail(KW_ESINGULAR, name);
    *pln = Plane{(-d / nn) * N, (1.0 / std::sqrt(nn)) * N};
    return 0;
}

int16_t G_ln2imp(const Line *line, double *a, double *b, double *c) {
    static char name[] = "G_LN2IMP";
    const Point V = line->direction;
    const double g = std::hypot(V.x, V.y);
    if (!(g > 0.0)) return fail(KW_EZEROVEC, name);
    *a = -V.y / g;
    *b = V.x / g;
    *c = -(*a * line->point.x + *b * line->point.y);
    return 0;
}

int16_t G_plnimp(const Plane *pln, double *a, double *b, double *c, double *d) {
    static char name[] = "G_PLNIMP";
    Point u{};
    if (!direction(pln->normal, &u)) return fail(KW_EZEROVEC, name);
    *a = u.x;
    *b = u.y;
    *c = u.z;
    *d = -dot(u, pln->point);
    return 0;
}

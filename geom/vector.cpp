// Vector arithmetic on Points, normalisation, cosines and angles.
#include <cmath>

#include "geom/geom.hpp"

using namespace kw;

void G_vecmak(double x, double y, double z, Point *V) { *V = Point{x, y, z}; }
void G_veccop(Point V, Point *W) { *W = V; }
void G_vecsum(Point U, Point V, Point *R) { *R = U + V; }
void G_vecdif(Point U, Point V, Point *R) { *R = U - V; }
void G_vecdir(Point P, Point Q, Point *R) { *R = Q - P; }
void G_vecdcp(ControlPoint A, ControlPoint B, Point *R) { *R = euclid(A) - euclid(B); }
void G_vecsca(Point V, double s, Point *R) { *R = s * V; }
void G_vecscp(const Point *V, double s, Point *R) { *R = s * *V; }
void G_veccmb(double a, Point U, double b, Point V, Point *R) { *R = a * U + b * V; }
void G_vecpfv(Point P, double t, Point V, Point *R) { *R = P + t * V; }
void G_vecrev(Point V, Point *R) { *R = -V; }
void G_vecrvp(Point *V) { *V = -*V; }
void G_vecrwp(Point U, Point *V) {
    if (dot(U, *V) < 0.0) *V = -*V;
}
void G_vecrwv(Point U, Point V, Point *R) { *R = dot(U, V) < 0.0 ? -V : V; }
void G_vecdot(Point U, Point V, double *d) { *d = dot(U, V); }
void G_vecdop(const Point *U, const Point *V, double *d) { *d = dot(*U, *V); }
void G_veccro(Point U, Point V, Point *R) { *R = cross(U, V); }
void G_veccrp(const Point *U, const Point *V, Point *R) { *R = cross(*U, *V); }
void G_vecmix(Point U, Point V, Point W, double *d) { *d = dot(cross(U, V), W); }
void G_vecmag(Point V, double *d) { *d = norm(V); }
void G_vecmap(const Point *V, double *d) { *d = norm(*V); }

int16_t G_vecnor(Point V, Point *U, double *r) {
    static char name[] = "G_VECNOR";
    if (!normalise(V, U, r)) return fail(KW_EZEROVEC, name);
    return 0;
}

int16_t G_vecnip(Point *V) {
    static char name[] = "G_VECNIP";
    double r = 0.0;
    if (!normalise(*V, V, &r)) return fail(KW_EZEROVEC, name);
    return 0;
}

int16_t G_veccos(Point U, Point V, double *c) {
    static char name[] = "G_VECCOS";
    const double numerator = dot(U, V), denominator = std::sqrt(dot(U, U) * dot(V, V));
    if (M_chkfop(numerator, denominator, 4)) return fail(KW_EZEROVEC, name);
    *c = std::clamp(numerator / denominator, -1.0, 1.0);
    return 0;
}

// atan2 of sine and cosine terms keeps small angles accurate, where the
// arc cosine of a rounded cosine would not.
int16_t G_vecang(Point U, Point V, double *deg) {
    static char name[] = "G_VECANG";
    if (!(norm2(U) > 0.0) || !(norm2(V) > 0.0)) return fail(KW_EZEROVEC, name);
    *deg = std::atan2(norm(cross(U, V)), dot(U, V)) * 180.0 / kPi;
    return 0;
}

int16_t G_vecdan(Point U, Point V, Point N, double *deg) {
    static char name[] = "G_VECDAN";
    Point n{};
    if (!(norm2(U) > 0.0) || !(norm2(V) > 0.0) || !direction(N, &n))
        return fail(KW_EZEROVEC, name);
    double a = std::atan2(dot(cross(U, V), n), dot(U, V)) * 180.0 / kPi;
    if (a < 0.0) a += 360.0;
    *deg = a < 360.0 ? a : 0.0;
    return 0;
}

void G_vecper(double x, double y, Point *V) { *V = Point{-y, x, 0.0}; }
int16_t G_arevps(Point U, Point V) { return dot(U, V) >= 0.0; }
int16_t G_arepos(Point P, Point Q) { return P.x == Q.x && P.y == Q.y && P.z == Q.z; }

// Shape predicates of curves, surfaces and point arrays, built on the fits.
#include "geom/fit.hpp"

using namespace kw;

namespace {

// Every point within tol of one line, the points not all within tol of one
// point (which has no line).
template <class Src>
bool straight(const Src &src, double tol) noexcept {
    static char name[] = "U_ISCURL";
    if (src.count() < 2 || point_like(src, tol)) return false;
    Point C{}, V{};
    double mean = 0.0, max = 0.0;
    if (fit_line(src, &C, &V, &mean, &max, name)) return false;
    return max <= tol;
}

// Every point within tol of the least-squares plane; *fitted tells whether
// the plane could be had at all.
template <class Src>
bool flat(const Src &src, double tol, Point *N, bool *fitted) noexcept {
    static char name[] = "U_ISSFLT";
    Point C{};
    double mean = 0.0, max = 0.0;
    *fitted = !fit_plane(src, &C, N, &mean, &max, name);
    return *fitted && max <= tol;
}

// Flat, and neither point-like nor straight, which leave the plane open.
template <class Src>
bool planar(const Src &src, double tol, Point *N) noexcept {
    Point normal{};
    bool fitted = false;
    if (src.count() < 3 || point_like(src, tol) || straight(src, tol)) return false;
    if (!flat(src, tol, &normal, &fitted)) return false;
    *N = normal;
    return true;
}

}  // namespace

int16_t U_iscurl(const Curve *cur, double tol) {
    return straight(ControlPoints{cur->pol->Pw, cur->pol->n}, tol);
}

int16_t U_isp1li(const Point *P, int32_t n, double tol) { return straight(Points{P, n}, tol); }

int16_t U_iscurf(const Curve *cur, double tol, Point *N) {
    const ControlPoints src{cur->pol->Pw, cur->pol->n};
    if (src.count() < 3 || U_iscurp(cur) || U_iscurl(cur, tol)) return 0;
    return planar(src, tol, N);
}

int16_t U_issurf(const Surface *sur, double tol, Point *N) {
    if (U_issurp(sur)) return 0;
    return planar(NetPoints{sur->net}, tol, N);
}

int16_t U_issflt(const Surface *sur, double tol) {
    Point N{};
    bool fitted = false;
    return flat(NetPoints{sur->net}, tol, &N, &fitted);
}

int16_t U_isp1pl(const Point *P, int32_t n, double tol) {
    Point N{};
    return planar(Points{P, n}, tol, &N);
}

int16_t U_isp1ci(const Point *P, int32_t n, double tol) {
    const Points src{P, n};
    if (src.count() < 3 || point_like(src, tol) || straight(src, tol)) return 0;
    Point C{}, N{};
    double r = 0.0, mean = 0.0, max = 0.0;
    return !G_lsqcir(P, n, &C, &N, &r, &mean, &max) && max <= tol;
}

int16_t U_isp1sp(const Point *P, int32_t n, double tol) {
    Point N{};
    bool fitted = false;
    if (n < 3 || flat(Points{P, n}, tol, &N, &fitted) || !fitted) return 0;
    Point C{};
    double r = 0.0, mean = 0.0, max = 0.0;
    return !G_lsqsph(P, n, &C, &r, &mean, &max) && max <= tol;
}

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

}  // namespace

int16_t U_iscurl(const Curve *cur, double tol) {
    return straight(ControlPoints{cur->pol->Pw, cur->pol->n}, tol);
}

int16_t U_isp1li(const Point *P, int32_t n, double tol) { return straight(Points{P, n}, tol); }

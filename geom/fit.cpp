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

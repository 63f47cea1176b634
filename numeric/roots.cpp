// Real roots of quadratics and a safeguarded Newton iteration on power-basis
// polynomials.
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/error.hpp"
#include "knotwork/numeric.h"

using namespace kw;

namespace {

// A discriminant down to this much below zero counts as zero: a double root
// that rounding pushed apart.
constexpr double kDiscriminantZero = -1e-8;

}  // namespace

int16_t M_quades(double a, double b, double c, double *x1, double *x2, int16_t *count) {
    static char name[] = "M_QUADES";
    auto zeroed = [](double v) { return std::fabs(v) < U_tolzer ? 0.0 : v; };
    a = zeroed(a);
    b = zeroed(b);
    c = zeroed(c);
    *count = 0;
    auto roots = [&](double r1, double r2, int16_t k) -> int16_t {
        *x1 = std::min(r1, r2);
        *x2 = std::max(r1, r2);
        *count = k;
        return 0;
    };
    if (a == 0.0 && b == 0.0) return 0;
    if (a == 0.0) {
        if (M_chkfop(c, b, 4)) return fail(KW_ESINGULAR, name);
        return roots(-c / b, -c / b, 1);
    }
    if (b == 0.0) {
        if (M_chkfop(c, a, 4)) return fail(KW_ESINGULAR, name);
        const double r = -c / a;
        if (r < 0.0) return 0;
        if (r == 0.0) return roots(0.0, 0.0, 1);
        return roots(-std::sqrt(r), std::sqrt(r), 2);
    }
    if (c == 0.0) {
        if (M_chkfop(b, a, 4)) return fail(KW_ESINGULAR, name);
        return roots(0.0, -b / a, 2);
    }
    const double disc = b * b - 4.0 * a * c;
    if (disc < kDiscriminantZero) return 0;
    if (disc <= 0.0) {
        if (M_chkfop(b, 2.0 * a, 4)) return fail(KW_ESINGULAR, name);
        return roots(-b / (2.0 * a), -b / (2.0 * a), 1);
    }
    // q has the sign of -b, so neither root loses digits to cancellation.
    const double q = -0.5 * (b + std::copysign(std::sqrt(disc), b));
    if (M_chkfop(q, a, 4) || M_chkfop(c, q, 4)) return fail(KW_ESINGULAR, name);
    return roots(q / a, c / q, 2);
}

int16_t M_polder(const double *poly, int16_t degree, double x, int16_t d, double *ders) {
    static char name[] = "M_POLDER";
    if (degree < 0 || d < 0) return fail(KW_EARG, name);
    // Horner's scheme carried through the derivatives: ders[k] collects
    // p^(k)(x) / k!, scaled by k! at the end.
    std::fill_n(ders, d + 1, 0.0);
    ders[0] = poly[degree];
    for (int32_t i = degree - 1; i >= 0; --i) {
        for (int32_t k = std::min<int32_t>(d, degree - i); k >= 1; --k) ders[k] = ders[k] * x + ders[k - 1];
        ders[0] = ders[0] * x + poly[i];
    }
    double factorial = 1.0;
    for (int32_t k = 2; k <= d; ++k) {
        factorial *= k;
        ders[k] *= factorial;
    }
    return 0;
}

int16_t M_polnew(const double *poly, int16_t degree, double x0, double lo, double hi, double tol,
                 double *x) {
    static char name[] = "M_POLNEW";
    if (degree < 0 || !(lo <= hi)) return fail(KW_EARG, name);
    double ders[2];
    *x = x0;
    for (int32_t it = 0; it < N_itenew; ++it) {
        M_polder(poly, degree, *x, 1, ders);
        if (std::fabs(ders[0]) < tol) return 0;
        if (M_chkfop(ders[0], ders[1], 4)) return fail(KW_ESINGULAR, name);
        *x = std::clamp(*x - ders[0] / ders[1], lo, hi);
    }
    M_polder(poly, degree, *x, 1, ders);
    if (std::fabs(ders[0]) < tol) return 0;
    return fail(KW_ENOCONV, name);
}

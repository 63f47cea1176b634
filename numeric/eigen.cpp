// Eigenvalues and eigenvectors of a real symmetric matrix by cyclic Jacobi
// rotations.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

#include "numeric/matrix.hpp"

using namespace kw;

namespace {

double stored_or_zero(const RealMatrix &A, int32_t i, int32_t j) noexcept {
    const Span cols = row_span(A, i);
    return j >= cols.lo && j <= cols.hi ? entry(A, i, j) : 0.0;
}

double off_diagonal(double *const *a, int32_t n) noexcept {
    double sum = 0.0;
    for (int32_t p = 0; p < n; ++p)
        for (int32_t q = p + 1; q <= n; ++q) sum += a[p][q] * a[p][q];
    return sum;
}

// Columns p and q of a (rows 0..n) turned by the rotation (c, s).
void turn_columns(double *const *a, int32_t n, int32_t p, int32_t q, double c, double s) noexcept {
    for (int32_t k = 0; k <= n; ++k) {
        const double akp = a[k][p], akq = a[k][q];
        a[k][p] = c * akp - s * akq;
        a[k][q] = s * akp + c * akq;
    }
}

// One Jacobi rotation J^T a J that makes a(p, q) zero; V accumulates J.
void annihilate(double *const *a, double *const *V, int32_t n, int32_t p, int32_t q) noexcept {
    // t = tan of the angle, the smaller root of t^2 + 2 theta t - 1 = 0.
    const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
    double t = 1.0 / (std::fabs(theta) + std::hypot(theta, 1.0));
    if (theta < 0.0) t = -t;
    const double c = 1.0 / std::sqrt(t * t + 1.0), s = t * c;
    turn_columns(a, n, p, q, c, s);
    for (int32_t k = 0; k <= n; ++k) {
        const double apk = a[p][k], aqk = a[q][k];
        a[p][k] = c * apk - s * aqk;
        a[q][k] = s * apk + c * aqk;
    }
    a[p][q] = a[q][p] = 0.0;
    turn_columns(V, n, p, q, c, s);
}

}  // namespace

int16_t M_rmaevv(const RealMatrix *A, double *d, RealMatrix *V, StorageStacks *stk) {
    static char name[] = "M_RMAEVV";
    if (!usable(A)) return fail(KW_EARG, name);
    if (A->n != A->m) return fail(KW_ESIZE, name);
    if (shares_rows(V, A)) return fail(KW_EARG, name);
    const int32_t n = A->n;
    LocalStacks local;
    double **a = S_getr2d(n, n, local.get());
    if (!a) return 1;
    // The symmetric part, scaled to a largest entry of 1 so that the sums of
    // squares below can neither overflow nor underflow.
    double amax = 0.0;
    for (int32_t i = 0; i <= n; ++i) {
        for (int32_t j = 0; j <= n; ++j) {
            a[i][j] = 0.5 * (stored_or_zero(*A, i, j) + stored_or_zero(*A, j, i));
            if (!std::isfinite(a[i][j])) return fail(KW_ESINGULAR, name);
            amax = std::max(amax, std::fabs(a[i][j]));
        }
    }
    if (M_rmachk(V, n, n, KW_FULL, n + 1, name, stk)) return 1;
    for (int32_t i = 0; i <= n; ++i) {
        std::fill_n(V->a[i], n + 1, 0.0);
        V->a[i][i] = 1.0;
        if (amax > 0.0) std::transform(a[i], a[i] + n + 1, a[i], [amax](double x) { return x / amax; });
    }
    // Rotations keep the sum of all squares; stop when the off-diagonal part
    // is down to rounding of it.
    double total = 0.0;
    for (int32_t i = 0; i <= n; ++i)
        for (int32_t j = 0; j <= n; ++j) total += a[i][j] * a[i][j];
    for (int32_t sweep = 0; off_diagonal(a, n) > DBL_EPSILON * DBL_EPSILON * total; ++sweep) {
        if (sweep == M_iteevv) return fail(KW_ENOCONV, name);
        for (int32_t p = 0; p < n; ++p)
            for (int32_t q = p + 1; q <= n; ++q)
                if (a[p][q] != 0.0) annihilate(a, V->a, n, p, q);
    }
    for (int32_t i = 0; i <= n; ++i) d[i] = a[i][i] * amax;
    // Ascending eigenvalues, each vector moving with its value.
    for (int32_t i = 0; i < n; ++i) {
        const int32_t k = static_cast<int32_t>(std::min_element(d + i, d + n + 1) - d);
        if (k == i) continue;
        std::swap(d[i], d[k]);
        for (int32_t r = 0; r <= n; ++r) std::swap(V->a[r][i], V->a[r][k]);
    }
    return 0;
}

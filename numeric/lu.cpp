// LU decomposition without pivoting (full and banded) and with scaled partial
// pivoting, their substitutions, the inverses built on them and normal-
// equation least squares.
#include <cmath>
#include <cstdint>
#include <utility>

#include "numeric/solvers.hpp"

using namespace kw;

namespace {

// Doolittle in place: the unit lower factor below the diagonal, the upper
// factor on and above it. Each sum runs over the p where both factors have
// stored entries. The pivot test stands where a division follows, once for
// the column below it, whose entries are all multiplied by the pivot's
// reciprocal; so the last diagonal entry is left to the substitution's
// guard.
template <class Rows>
int16_t doolittle(Rows a, int32_t n, int32_t below, int32_t above, char *name) noexcept {
    for (int32_t k = 0; k <= n; ++k) {
        for (int32_t j = k; j <= std::min(k + above, n); ++j) {
            double sum = a(k, j);
            for (int32_t p = std::max({j - above, k - below, 0}); p < k; ++p) sum -= a(k, p) * a(p, j);
            a(k, j) = sum;
        }
        const int32_t deepest = std::min(k + below, n);
        if (deepest == k) continue;
        if (std::fabs(a(k, k)) < M_tolpiv) return fail(KW_ESINGULAR, name);
        const double inverse = 1.0 / a(k, k);
        for (int32_t i = k + 1; i <= deepest; ++i) {
            double sum = a(i, k);
            for (int32_t p = std::max({i - below, k - above, 0}); p < k; ++p) sum -= a(i, p) * a(p, k);
            a(i, k) = sum * inverse;
        }
    }
    return 0;
}

// Whether every division by a diagonal entry of U is safe by the overflow
// guard; asked before the substitution starts, so that a refused system
// leaves the solution arrays as they were.
template <class Rows>
bool divisions_safe(Rows a, int32_t n) noexcept {
    for (int32_t i = 0; i <= n; ++i)
        if (M_chkfop(1.0, a(i, i), 4)) return false;
    return true;
}

void copy_stored(const RealMatrix &from, const RealMatrix &to) noexcept {
    const int32_t last = matrix_columns(from.m, from.type, from.w);
    for (int32_t i = 0; i <= from.n; ++i) std::copy_n(from.a[i], last + 1, to.a[i]);
}

}  // namespace

int16_t M_ludcmp(RealMatrix *A) {
    static char name[] = "M_LUDCMP";
    if (square_input(A, true, name)) return 1;
    return with_rows(*A, [&](auto a, int32_t below, int32_t above) {
        return doolittle(a, A->n, below, above, name);
    });
}

int16_t M_rafoba(const RealMatrix *LU, const double *b, double *x) {
    static char name[] = "M_RAFOBA";
    if (square_input(LU, true, name)) return 1;
    const int32_t n = LU->n;
    return with_rows(*LU, [&](auto a, int32_t below, int32_t above) -> int16_t {
        if (!divisions_safe(a, n)) return fail(KW_ESINGULAR, name);
        substitute<double>(a, n, below, above, b, x, x);
        return 0;
    });
}

int16_t M_forbac(const RealMatrix *LU, const void *rhs, int16_t kind, ControlPoint *out,
                 StorageStacks *stk) {
    static char name[] = "M_FORBAC";
    if (square_input(LU, true, name)) return 1;
    if (kind != 1 && kind != 2) return fail(KW_EARG, name);
    const int32_t n = LU->n;
    if (kind == 1 && n > (INT32_MAX - 1) / 2) return fail(KW_EARG, name);
    return with_rows(*LU, [&](auto a, int32_t below, int32_t above) -> int16_t {
        if (!divisions_safe(a, n)) return fail(KW_ESINGULAR, name);
        if (kind == 1) {
            // Forward values in the first half, backward ones in the second.
            Point *y = S_getp1d(2 * n + 1, stk);
            if (!y) return 1;
            const Point *x = y + n + 1;
            substitute(a, n, below, above, static_cast<const Point *>(rhs), y, y + n + 1);
            for (int32_t i = 0; i <= n; ++i) out[i] = ControlPoint{x[i].x, x[i].y, x[i].z, 1.0};
            kill1d(y, stk);
        } else {
            ControlPoint *y = S_getc1d(n, stk);
            if (!y) return 1;
            substitute(a, n, below, above, static_cast<const ControlPoint *>(rhs), y, out);
            kill1d(y, stk);
        }
        return 0;
    });
}

int16_t M_ludpiv(RealMatrix *A, int32_t *piv) {
    static char name[] = "M_LUDPIV";
    if (square_input(A, false, name)) return 1;
    const int32_t n = A->n;
    double *const *a = A->a;
    LocalStacks local;
    double *s = S_getr1d(n, local.get());
    if (!s) return 1;
    for (int32_t i = 0; i <= n; ++i) {
        double big = 0.0;
        for (int32_t j = 0; j <= n; ++j) big = std::max(big, std::fabs(a[i][j]));
        if (big < M_tolpiv) return fail(KW_ESINGULAR, name);
        s[i] = 1.0 / big;
    }
    for (int32_t j = 0; j <= n; ++j) {
        for (int32_t i = 0; i < j; ++i) {
            double sum = a[i][j];
            for (int32_t p = 0; p < i; ++p) sum -= a[i][p] * a[p][j];
            a[i][j] = sum;
        }
        double big = 0.0;
        int32_t imax = j;
        for (int32_t i = j; i <= n; ++i) {
            double sum = a[i][j];
            for (int32_t p = 0; p < j; ++p) sum -= a[i][p] * a[p][j];
            a[i][j] = sum;
            if (s[i] * std::fabs(sum) >= big) {
                big = s[i] * std::fabs(sum);
                imax = i;
            }
        }
        if (imax != j) {
            // Values, not row pointers: row 0 also owns the matrix's block.
            std::swap_ranges(a[imax], a[imax] + n + 1, a[j]);
            s[imax] = s[j];
        }
        piv[j] = imax;
        if (std::fabs(a[j][j]) < M_tolpiv) return fail(KW_ESINGULAR, name);
        for (int32_t i = j + 1; i <= n; ++i) a[i][j] /= a[j][j];
    }
    return 0;
}

int16_t M_rafbpv(const RealMatrix *LU, const int32_t *piv, double *b) {
    static char name[] = "M_RAFBPV";
    if (square_input(LU, false, name)) return 1;
    const int32_t n = LU->n;
    for (int32_t i = 0; i <= n; ++i)
        if (piv[i] < i || piv[i] > n) return fail(KW_ESIZE, name);
    for (int32_t i = 0; i <= n; ++i)
        if (std::fabs(LU->a[i][i]) < M_tolpiv) return fail(KW_ESINGULAR, name);
    for (int32_t i = 0; i <= n; ++i) std::swap(b[i], b[piv[i]]);
    substitute<double>(FullRows{LU->a}, n, n, n, b, b, b);
    return 0;
}

int16_t M_rmainv(RealMatrix *A, int16_t factored, RealMatrix *Ainv, StorageStacks *stk) {
    static char name[] = "M_RMAINV";
    if (square_input(A, true, name)) return 1;
    if (shares_rows(Ainv, A)) return fail(KW_EARG, name);
    const int32_t n = A->n;
    if (!factored && M_ludcmp(A)) return 1;
    LocalStacks local;
    double *e = S_getr1d(n, local.get());
    if (!e) return 1;
    if (M_rmachk(Ainv, n, n, KW_FULL, n + 1, name, stk)) return 1;
    return inverse_columns(n, e, Ainv->a, [&](double *col, int32_t) { return M_rafoba(A, col, col); });
}

int16_t M_rmaivp(const RealMatrix *A, RealMatrix *Ainv, StorageStacks *stk) {
    static char name[] = "M_RMAIVP";
    if (square_input(A, false, name)) return 1;
    if (shares_rows(Ainv, A)) return fail(KW_EARG, name);
    const int32_t n = A->n;
    LocalStacks local;
    RealMatrix LU;
    M_inirma(&LU);
    if (M_getrma(&LU, n, n, KW_FULL, n + 1, local.get())) return 1;
    int32_t *piv = S_geti1d(n, local.get());
    double *e = piv ? S_getr1d(n, local.get()) : nullptr;
    if (!e) return 1;
    copy_stored(*A, LU);
    if (M_ludpiv(&LU, piv)) return 1;
    if (M_rmachk(Ainv, n, n, KW_FULL, n + 1, name, stk)) return 1;
    return inverse_columns(n, e, Ainv->a, [&](double *col, int32_t) { return M_rafbpv(&LU, piv, col); });
}

int16_t M_lsslsy(const RealMatrix *A, const double *b, double *x) {
    static char name[] = "M_LSSLSY";
    if (!usable(A)) return fail(KW_EARG, name);
    const int32_t n = A->n, m = A->m;
    if (n <= m) return fail(KW_ESIZE, name);
    LocalStacks local;
    RealMatrix T, N;
    M_inirma(&T);
    M_inirma(&N);
    if (M_rmatrp(A, &T, local.get()) || M_rmamul(&T, A, &N, local.get())) return 1;
    // The right side A^T b, solved in scratch so that x changes only on success.
    double *Atb = S_getr1d(m, local.get());
    int32_t *piv = Atb ? S_geti1d(m, local.get()) : nullptr;
    if (!piv) return 1;
    for (int32_t j = 0; j <= m; ++j) {
        const Span rows = col_span(*A, j);
        double sum = 0.0;
        for (int32_t i = rows.lo; i <= rows.hi; ++i) sum += entry(*A, i, j) * b[i];
        Atb[j] = sum;
    }
    if (M_ludpiv(&N, piv) || M_rafbpv(&N, piv, Atb)) return 1;
    std::copy_n(Atb, m + 1, x);
    return 0;
}

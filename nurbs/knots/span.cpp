// Spans, multiplicities and the other facts of a knot vector.
#include "knotwork/knots.h"
#include "nurbs/knots/basis.hpp"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

// U[i+1] + ... + U[i+p], the numerator of a Greville abscissa.
double knot_sum(const double *U, int32_t i, int16_t p) noexcept {
    double sum = 0.0;
    for (int k = 1; k <= p; ++k) sum += U[i + k];
    return sum;
}

// Degree 0 has no knots between: its node is the middle of the span.
double midpoint(const double *U, int32_t i) noexcept { return 0.5 * (U[i] + U[i + 1]); }

}  // namespace

int16_t N_kntfsp(const KnotVector *knt, int16_t p, double u, int16_t side, int32_t *span) {
    static char name[] = "N_KNTFSP";
    return locate(knt, p, u, side, name, span);
}

int16_t N_kntfsm(const KnotVector *knt, int16_t p, double u, int16_t side, int32_t *span,
                 int32_t *s) {
    static char name[] = "N_KNTFSM";
    int32_t k;
    if (locate(knt, p, u, side, name, &k)) return 1;
    const double *U = knt->U;
    const int32_t m = knt->m;
    // The walk leaves out the end knot that the side's span excludes; that
    // knot is an end run of p + 1.
    int32_t mult = 0;
    if (side == KW_RIGHT) {
        if (u == U[m - p]) mult = p + 1;
        else
            for (int32_t i = k; i >= 0 && U[i] == u; --i) ++mult;
    } else {
        if (u == U[p]) mult = p + 1;
        else
            for (int32_t i = k + 1; i <= m && U[i] == u; ++i) ++mult;
    }
    *span = k;
    *s = mult;
    return 0;
}

void N_kntnsp(const KnotVector *knt, int16_t p, int32_t *count) {
    int32_t c = 0;
    if (p >= 0)
        for (int32_t i = p; i <= knt->m - p - 1; ++i)
            if (knt->U[i] != knt->U[i + 1]) ++c;
    *count = c;
}

int16_t N_kntcnd(const KnotVector *knt, int16_t p, int32_t i, double *t) {
    static char name[] = "N_KNTCND";
    if (check_knots(knt, p, name)) return 1;
    const double *U = knt->U;
    const int32_t m = knt->m, n = m - p - 1;
    if (i < 0 || i > n) return fail(KW_ESIZE, name);
    if (i == 0) *t = U[0];
    else if (i == n) *t = U[m];
    else *t = p == 0 ? midpoint(U, i) : knot_sum(U, i, p) / p;
    return 0;
}

void N_kntand(const KnotVector *knt, int16_t p, double *t) {
    if (p < 0 || !knt || knt->m < 2 * p + 1) return;
    const double *U = knt->U;
    const int32_t m = knt->m, n = m - p - 1;
    const double scale = p == 0 ? 0.0 : 1.0 / p;
    for (int32_t i = 1; i < n; ++i) t[i] = p == 0 ? midpoint(U, i) : knot_sum(U, i, p) * scale;
    if (n > 0) t[n] = U[m];
    t[0] = U[0];
}

int16_t N_kntdkm(const KnotVector *knt, double **values, int32_t **mult, int32_t *k,
                 StorageStacks *stk) {
    static char name[] = "N_KNTDKM";
    if (!knt || !knt->U || knt->m < 0) return fail(KW_EKNOTS, name);
    const double *U = knt->U;
    const int32_t m = knt->m;
    int32_t breaks = 0;
    for (int32_t i = 1; i <= m; ++i)
        if (U[i] != U[i - 1]) ++breaks;
    double *v = S_getr1d(breaks, stk);
    if (!v) return 1;
    int32_t *s = S_geti1d(breaks, stk);
    if (!s) {
        U_kilr1d(v, stk);
        return 1;
    }
    int32_t top = 0;
    v[0] = U[0];
    s[0] = 1;
    for (int32_t i = 1; i <= m && top <= breaks; ++i) {
        if (U[i] == U[i - 1]) {
            ++s[top];
        } else if (++top <= breaks) {
            v[top] = U[i];
            s[top] = 1;
        }
    }
    if (top != breaks) {
        U_kili1d(s, stk);
        U_kilr1d(v, stk);
        return fail(KW_ESIZE, name);
    }
    *values = v;
    *mult = s;
    *k = top;
    return 0;
}

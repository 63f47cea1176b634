// Derivatives of basis functions with respect to one knot: the knot counts
// twice in an extended vector, and the derivative is a difference of degree-p
// basis functions on that vector.
#include <algorithm>

#include "core/arith.hpp"
#include "knotwork/knots.h"
#include "nurbs/knots/basis.hpp"
#include "nurbs/knots/routine.hpp"

using namespace kw;

int16_t N_kntbdk(const KnotVector *knt, int32_t i, int32_t j, int16_t p, double u, int16_t kside,
                 int16_t side, double *d, StorageStacks *stk) {
    static char name[] = "N_KNTBDK";
    if (check_knots(knt, p, name) || check_param(knt, u, name)) return 1;
    const double *U = knt->U;
    const int32_t m = knt->m, n = m - p - 1;
    if (i < 0 || i > n || j < p + 1 || j > n) return fail(KW_ESIZE, name);
    if (!valid_side(kside) || !valid_side(side)) return fail(KW_ECASE, name);

    // U[j] must open its run (knot side 1) or close it (2); s is the run.
    int32_t s = 1;
    if (kside == KW_RIGHT) {
        if (U[j] == U[j - 1]) return fail(KW_EARG, name);
        while (j + s <= m && U[j + s] == U[j]) ++s;
    } else {
        if (U[j] == U[j + 1]) return fail(KW_EARG, name);
        while (j - s >= 0 && U[j - s] == U[j]) ++s;
    }
    if (s >= p) return fail(KW_EMULT, name);

    // The extended vector repeats U[j] after its run (side 1) or right after
    // it (side 2).
    Scratch scratch(stk);
    double *E = scratch.reals(m + 1);
    if (!E) return 1;
    const int32_t at = kside == KW_RIGHT ? j + s : j + 1;
    std::copy_n(U, at, E);
    E[at] = U[j];
    std::copy(U + at, U + m + 1, E + at + 1);
    KnotVector ext;
    U_makknt(&ext, E, m + 1);

    // M(k): basis function k of degree p on the extended vector.
    double a = 0.0, b = 0.0;
    auto M = [&](int32_t k, double *value) { return N_kntbas(&ext, k, p, u, side, value, stk); };
    double value = 0.0;
    if (i == j - p - 1) {
        if (M(j - p, &a)) return 1;
        value = a / (U[j] - U[j - p]);
    } else if (i >= j - p && i <= j - 1) {
        if (M(i + 1, &a) || M(i, &b)) return 1;
        value = a / (U[i + p + 1] - U[i + 1]) - b / (U[i + p] - U[i]);
    } else if (i == j) {
        if (M(j, &a)) return 1;
        value = -a / (U[j + p] - U[j]);
    }
    *d = value;
    return 0;
}

int16_t N_kntadk(const KnotVector *knt, int32_t j, int16_t p, double u, int16_t kside,
                 int16_t side, double *d, StorageStacks *stk) {
    static char name[] = "N_KNTADK";
    if (check_knots(knt, p, name)) return 1;
    double dk[KW_MAX_DEGREE + 2];
    for (int32_t i = j - p - 1; i <= j; ++i)
        if (N_kntbdk(knt, i, j, p, u, kside, side, &dk[i - j + p + 1], stk)) return 1;
    std::copy_n(dk, p + 2, d);
    return 0;
}

int16_t N_kntakr(const Curve *cur, int32_t j, double u, int16_t kside, int16_t side, double *dR,
                 StorageStacks *stk) {
    static char name[] = "N_KNTAKR";
    if (check_shape(cur, name)) return 1;
    const KnotVector *knt = cur->knt;
    const int16_t p = cur->p;
    const int32_t n = cur->pol->n;
    const ControlPoint *Pw = cur->pol->Pw;
    double dN[KW_MAX_DEGREE + 2];
    if (N_kntadk(knt, j, p, u, kside, side, dN, stk)) return 1;
    double N[kTable];
    const int32_t span = nonzero_basis(knt->U, knt->m, p, u, side, N);

    // R[i] = N[i] w[i] / W, so dR[i] = (dN[i] w[i] - R[i] dW) / W.
    auto w = [Pw](int32_t i) { return rational(Pw[i]) ? Pw[i].w : 1.0; };
    const int32_t first = j - p - 1;
    double W = 0.0, dW = 0.0;
    for (int r = 0; r <= p; ++r) W += N[r] * w(span - p + r);
    for (int r = 0; r <= p + 1; ++r) dW += dN[r] * w(first + r);
    std::fill_n(dR, n + 1, 0.0);
    for (int r = 0; r <= p + 1; ++r) dR[first + r] = dN[r] * w(first + r) / W;
    for (int r = 0; r <= p; ++r) dR[span - p + r] -= N[r] * w(span - p + r) / W * dW / W;
    return 0;
}

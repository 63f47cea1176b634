// B-spline basis functions and their derivatives, single and all non-zero,
// and the (rational) basis functions of curves and surfaces.
#include "nurbs/knots/basis.hpp"

#include <algorithm>

#include "core/arith.hpp"
#include "knotwork/knots.h"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

// A missing weight counts as 1, so that a non-rational object's rational
// basis is its plain one.
double weight_of(const ControlPoint &P) noexcept { return rational(P) ? P.w : 1.0; }

// The value at r of a table of the p + 1 functions of a span, or 0 when r
// names a function that vanishes there.
double entry(const double *N, int32_t r, int p) noexcept { return r >= 0 && r <= p ? N[r] : 0.0; }

// A curve's basis function i at u, rational when forced or when the curve
// is; a missing weight counts as 1.
int16_t curve_basis(const Curve *cur, int32_t i, double u, int16_t side, bool force_weights,
                    double *R, char *name) noexcept {
    if (check_shape(cur, name)) return 1;
    const ControlPoint *Pw = cur->pol->Pw;
    return basis_at(cur, i, u, side, force_weights || rational(Pw[0]),
                    [Pw](int32_t k) { return weight_of(Pw[k]); }, R, name);
}

// The same for a surface: the product N[i,p](u) N[j,q](v), weighted like a
// curve's.
int16_t surface_basis(const Surface *sur, int32_t i, int32_t j, double u, double v, int16_t sideu,
                      int16_t sidev, bool force_weights, double *R, char *name) noexcept {
    if (check_shape(sur, name) || check_param(sur->knu, u, name) || check_param(sur->knv, v, name))
        return 1;
    const int16_t p = sur->p, q = sur->q;
    ControlPoint *const *Pw = sur->net->Pw;
    if (i < 0 || i > sur->net->n || j < 0 || j > sur->net->m) return fail(KW_ESIZE, name);
    if (!valid_side(sideu) || !valid_side(sidev)) return fail(KW_ECASE, name);
    double Nu[kTable], Nv[kTable];
    const int32_t su = nonzero_basis(sur->knu->U, sur->knu->m, p, u, sideu, Nu);
    const int32_t sv = nonzero_basis(sur->knv->U, sur->knv->m, q, v, sidev, Nv);
    double value = entry(Nu, i - su + p, p) * entry(Nv, j - sv + q, q);
    if (value != 0.0 && (force_weights || rational(Pw[0][0]))) {
        double W = 0.0;
        for (int k = 0; k <= p; ++k)
            for (int l = 0; l <= q; ++l) W += Nu[k] * Nv[l] * weight_of(Pw[su - p + k][sv - q + l]);
        value = value * weight_of(Pw[i][j]) / W;
    }
    *R = value;
    return 0;
}

}  // namespace

int16_t N_kntbas(const KnotVector *knt, int32_t i, int16_t p, double u, int16_t side, double *N,
                 StorageStacks *stk) {
    static char name[] = "N_KNTBAS";
    if (check_knots(knt, p, name) || check_param(knt, u, name)) return 1;
    const double *U = knt->U;
    const int32_t m = knt->m, n = m - p - 1;
    if (i < 0 || i > n) return fail(KW_ESIZE, name);
    if (!valid_side(side)) return fail(KW_ECASE, name);
    // The end knots first, exactly; then outside the support.
    if (u == U[p]) {
        *N = i == 0 ? 1.0 : 0.0;
        return 0;
    }
    if (u == U[m - p]) {
        *N = i == n ? 1.0 : 0.0;
        return 0;
    }
    if (!in_interval(U, i, i + p + 1, u, side)) {
        *N = 0.0;
        return 0;
    }
    Scratch scratch(stk);
    double *work = scratch.reals(p);
    if (!work) return 1;
    *N = one_basis(U, i, p, u, side, work);
    return 0;
}

int16_t N_kntalb(const KnotVector *knt, int16_t p, double u, int16_t side, double *N,
                 int32_t *span) {
    static char name[] = "N_KNTALB";
    if (check_knots(knt, p, name) || check_param(knt, u, name)) return 1;
    note_side(knt, p, u, side);
    *span = with_degree(p, [&](auto P) { return nonzero_basis(knt->U, knt->m, P, u, side, N); });
    return 0;
}

int16_t N_kntadb(const KnotVector *knt, int16_t p, double u, int16_t side, int16_t k,
                 double **ders, int32_t *span, StorageStacks *stk) {
    static char name[] = "N_KNTADB";
    if (k < 0) return fail(KW_EARG, name);
    int32_t s;
    if (N_kntfsp(knt, p, u, side, &s)) return 1;
    *span = s;
    const int du = std::min<int>(k, p);
    for (int d = du + 1; d <= k; ++d) std::fill_n(ders[d], p + 1, 0.0);
    Scratch scratch(stk);
    double **ndu = scratch.reals(p, p);
    double *left = ndu ? scratch.reals(p) : nullptr;
    double *right = left ? scratch.reals(p) : nullptr;
    double **a = right ? scratch.reals(1, p) : nullptr;
    if (!a) return 1;
    basis_ders(knt->U, s, p, u, du, ndu, left, right, a, ders);
    return 0;
}

int16_t N_kntbad(const KnotVector *knt, int32_t i, int16_t p, double u, int16_t side, int16_t k,
                 double *ders, StorageStacks *stk) {
    static char name[] = "N_KNTBAD";
    if (check_knots(knt, p, name) || check_param(knt, u, name)) return 1;
    if (i < 0 || i > knt->m - p - 1) return fail(KW_ESIZE, name);
    if (!valid_side(side)) return fail(KW_ECASE, name);
    if (k < 0) return fail(KW_EARG, name);
    Scratch scratch(stk);
    double **all = scratch.reals(k, p);
    int32_t span;
    if (!all || N_kntadb(knt, p, u, side, k, all, &span, stk)) return 1;
    for (int d = 0; d <= k; ++d) ders[d] = entry(all[d], i - span + p, p);
    return 0;
}

int16_t N_kntcbf(const Curve *cur, int32_t i, double u, int16_t side, double *R) {
    static char name[] = "N_KNTCBF";
    return curve_basis(cur, i, u, side, false, R, name);
}

int16_t N_kntrcb(const Curve *cur, int32_t i, double u, int16_t side, double *R) {
    static char name[] = "N_KNTRCB";
    return curve_basis(cur, i, u, side, true, R, name);
}

int16_t N_kntsbf(const Surface *sur, int32_t i, int32_t j, double u, double v, int16_t sideu,
                 int16_t sidev, double *R) {
    static char name[] = "N_KNTSBF";
    return surface_basis(sur, i, j, u, v, sideu, sidev, false, R, name);
}

int16_t N_kntrsb(const Surface *sur, int32_t i, int32_t j, double u, double v, int16_t sideu,
                 int16_t sidev, double *R) {
    static char name[] = "N_KNTRSB";
    return surface_basis(sur, i, j, u, v, sideu, sidev, true, R, name);
}

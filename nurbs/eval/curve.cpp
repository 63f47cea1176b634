// Points and derivatives of curves and curve functions. Both are B-splines
// of one parameter and share every step; they differ in their coefficients
// (homogeneous control points or values) and in that a rational curve
// divides by its weight.
#include "core/arith.hpp"
#include "knotwork/eval.h"
#include "knotwork/knots.h"
#include "nurbs/eval/kernel.hpp"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

template <class R>
auto *coefficients(const R *r) noexcept {
    return coefs(*holder(*r));
}

// The record agrees with itself and u lies in its knot range.
template <class R>
int16_t check_eval(const R *r, double u, char *name) noexcept {
    return check_shape(r, name) || check_param(r->knt, u, name);
}

template <class R>
auto point_at(const R *r, double u, int16_t side) noexcept {
    note_side(r->knt, r->p, u, side);
    return spline_point(r->knt->U, r->knt->m, r->p, coefficients(r), u, side);
}

// out[0..k] := the derivatives of sum N[i](u) c[i] with the coefficients as
// they are stored (homogeneous for a curve), from N_kntadb's table.
template <class R, class C>
int16_t stored_ders(const R *r, double u, int16_t side, int16_t k, C *out, char *name,
                    StorageStacks *stk) noexcept {
    if (check_eval(r, u, name)) return 1;
    if (k < 0 || k > KW_MAX_ORDER) return fail(KW_EORDER, name);
    const int16_t p = r->p;
    Scratch scratch(stk);
    double **ders = scratch.reals(k, p);
    int32_t span;
    if (!ders || N_kntadb(r->knt, p, u, side, k, ders, &span, stk)) return 1;
    const C *c = coefficients(r) + span - p;
    for (int d = 0; d <= k; ++d) out[d] = accumulate(ders[d], c, p);
    return 0;
}

// Coefficients in the space where knot derivatives combine linearly.
Point cartesian(const ControlPoint &P) noexcept { return euclid(P); }
double cartesian(double f) noexcept { return f; }

// *out := sum over the functions that depend on U[j] of their knot
// derivatives times the coefficients.
template <class R, class T>
int16_t knot_ders(const R *r, int32_t j, double u, int16_t kside, int16_t side, T *out,
                  StorageStacks *stk) noexcept {
    double d[KW_MAX_DEGREE + 2];
    if (N_kntadk(r->knt, j, r->p, u, kside, side, d, stk)) return 1;
    const auto *c = coefficients(r) + j - r->p - 1;
    T sum{};
    for (int t = 0; t <= r->p + 1; ++t) sum = sum + d[t] * cartesian(c[t]);
    *out = sum;
    return 0;
}

}  // namespace

// ---- Curves -------------------------------------------------------------------

int16_t N_curevn(const Curve *cur, double u, int16_t side, Point *C) {
    static char name[] = "N_CUREVN";
    if (check_eval(cur, u, name)) return 1;
    *C = euclid(point_at(cur, u, side));
    return 0;
}

int16_t N_curevr(const Curve *cur, double u, int16_t side, ControlPoint *Cw) {
    static char name[] = "N_CUREVR";
    if (check_eval(cur, u, name)) return 1;
    *Cw = point_at(cur, u, side);
    return 0;
}

int16_t N_curder(const Curve *cur, double u, int16_t side, int16_t k, Point *CK) {
    static char name[] = "N_CURDER";
    if (check_eval(cur, u, name)) return 1;
    if (k < 0 || k > KW_MAX_ORDER) return fail(KW_EORDER, name);
    // The span search's own checks have passed but the side's; a bad side
    // is its to record.
    int32_t span;
    if (!valid_side(side)) return N_kntfsp(cur->knt, cur->p, u, side, &span);
    span = find_span(cur->knt->U, cur->knt->m, cur->p, u, side);
    curve_ders(cur->knt->U, cur->p, cur->pol->Pw, span, u, k, CK);
    return 0;
}

int16_t N_currdr(const Curve *cur, double u, int16_t side, int16_t k, ControlPoint *CKw,
                 StorageStacks *stk) {
    static char name[] = "N_CURRDR";
    return stored_ders(cur, u, side, k, CKw, name, stk);
}

int16_t N_curdrk(const Curve *cur, int32_t j, double u, int16_t kside, int16_t side, Point *dC,
                 StorageStacks *stk) {
    static char name[] = "N_CURDRK";
    if (check_eval(cur, u, name)) return 1;
    const ControlPoint *Pw = cur->pol->Pw;
    if (!rational(Pw[0])) return knot_ders(cur, j, u, kside, side, dC, stk);
    // A rational curve moves with all its rational basis functions, those
    // that depend on U[j] and those that share their denominator.
    const int32_t n = cur->pol->n;
    Scratch scratch(stk);
    double *dR = scratch.reals(n);
    if (!dR || N_kntakr(cur, j, u, kside, side, dR, stk)) return 1;
    Point sum{};
    for (int32_t i = 0; i <= n; ++i)
        if (dR[i] != 0.0) sum = sum + dR[i] * euclid(Pw[i]);
    *dC = sum;
    return 0;
}

// ---- Curve functions ----------------------------------------------------------

int16_t N_cfnevn(const CurveFunction *cfn, double u, int16_t side, double *f) {
    static char name[] = "N_CFNEVN";
    if (check_eval(cfn, u, name)) return 1;
    *f = point_at(cfn, u, side);
    return 0;
}

int16_t N_cfnder(const CurveFunction *cfn, double u, int16_t side, int16_t k, double *f,
                 StorageStacks *stk) {
    static char name[] = "N_CFNDER";
    return stored_ders(cfn, u, side, k, f, name, stk);
}

int16_t N_cfndrk(const CurveFunction *cfn, int32_t j, double u, int16_t kside, int16_t side,
                 double *df, StorageStacks *stk) {
    static char name[] = "N_CFNDRK";
    if (check_eval(cfn, u, name)) return 1;
    return knot_ders(cfn, j, u, kside, side, df, stk);
}

int16_t N_cfnrbf(const CurveFunction *cfn, int32_t i, double u, int16_t side, double *R) {
    static char name[] = "N_CFNRBF";
    if (check_shape(cfn, name)) return 1;
    const double *f = cfn->cvl->v;
    return basis_at(cfn, i, u, side, true, [f](int32_t k) { return f[k]; }, R, name);
}

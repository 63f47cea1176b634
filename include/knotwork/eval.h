/* Knotwork: points, derivatives and normals of curves, surfaces and functions.

   u must lie in [U[0], U[m]] (6, under the evaluator's name). side is
   KW_RIGHT (1) or KW_LEFT (2), passed to the span search, which records 13
   under "N_KNTFSP" for another value. k is a derivative order, 0..KW_MAX_ORDER
   (20 otherwise); derivative results are arrays of k + 1 elements, index 0
   the point itself. A curve or function whose parts do not agree records 1
   (m != n + p + 1), 3 (degree outside 0..KW_MAX_DEGREE) or 4 (fewer than
   p + 1 coefficients). Scratch arrays come from stk and are killed before
   return (15 under the allocator's name when one cannot be had). Outputs are
   written only on success. */
#ifndef KNOTWORK_EVAL_H
#define KNOTWORK_EVAL_H

#include "geom.h"
#include "types.h"

KW_BEGIN_DECLS

/* ---- Curves ----------------------------------------------------------- */

/* *C := the Cartesian point C(u); a planar curve gives z = 0. Allocates
   nothing. A bad side records 13 but the point is that from the right and
   the status 0. */
KW_API int16_t N_curevn(const Curve *cur, double u, int16_t side, Point *C);
/* *Cw := the homogeneous point Cw(u), not divided by its weight; the planar
   and non-rational markers are kept. Side as N_curevn. */
KW_API int16_t N_curevr(const Curve *cur, double u, int16_t side, ControlPoint *Cw);
/* CK[0..k] := C(u) and its derivatives; rational curves through the
   derivatives of their rational basis functions. Allocates nothing. */
KW_API int16_t N_curder(const Curve *cur, double u, int16_t side, int16_t k, Point *CK);
/* CKw[0..k] := the derivatives of the homogeneous curve Cw(u), with the
   markers kept. */
KW_API int16_t N_currdr(const Curve *cur, double u, int16_t side, int16_t k, ControlPoint *CKw,
                        StorageStacks *stk);
/* *dC := the derivative of C(u) with respect to the interior knot U[j],
   taken as the first of its run (kside 1) or the last (kside 2). Codes of
   N_kntbdk (7, 13, 14, 21) under "N_KNTBDK". */
KW_API int16_t N_curdrk(const Curve *cur, int32_t j, double u, int16_t kside, int16_t side,
                        Point *dC, StorageStacks *stk);

/* ---- Curves at many parameters ------------------------------------------

   For u[0..n] these give, bit for bit, what N_curevn and N_curder give at
   each u[i] from the same side, in less time: where neighbouring parameters
   fall in one knot span the span search, the span's reciprocal knot
   differences and (derivatives) its Cartesian control points are reused, so
   sorted parameters gain most; any order is accepted. Everything is checked
   before anything is written: the curve (1, 3, 4), n >= 0 and non-null
   arrays (14), side KW_RIGHT or KW_LEFT (13, under the routine's own name;
   the point is not taken from the right as N_curevn takes it), every u[i]
   in the knot range (6). Allocate nothing. */

/* C[i] := C(u[i]), i = 0..n. */
KW_API int16_t N_curevm(const Curve *cur, int32_t n, const double *u, int16_t side, Point *C);
/* CK[i (k + 1) + d] := the d-th derivative at u[i], d = 0..k, i = 0..n;
   k above KW_MAX_ORDER records 20. */
KW_API int16_t N_curdrm(const Curve *cur, int32_t n, const double *u, int16_t side, int16_t k,
                        Point *CK);

/* ---- Curve functions: f(u) = sum N[i](u) f[i] --------------------------- */

/* *f := f(u). Allocates nothing; side as N_curevn. */
KW_API int16_t N_cfnevn(const CurveFunction *cfn, double u, int16_t side, double *f);
/* f[0..k] := f(u) and its derivatives. */
KW_API int16_t N_cfnder(const CurveFunction *cfn, double u, int16_t side, int16_t k, double *f,
                        StorageStacks *stk);
/* *df := the derivative of f(u) with respect to the interior knot U[j];
   codes as N_curdrk. */
KW_API int16_t N_cfndrk(const CurveFunction *cfn, int32_t j, double u, int16_t kside,
                        int16_t side, double *df, StorageStacks *stk);
/* *R := N[i](u) f[i] / f(u), the rational basis function with the
   function's values as weights. Allocates nothing. 7 unless 0 <= i <= n;
   13; 11 when f(u) = 0. */
KW_API int16_t N_cfnrbf(const CurveFunction *cfn, int32_t i, double u, int16_t side, double *R);

/* ---- Surfaces ---------------------------------------------------------

   (u, v) must lie in the knot ranges of the two directions (6); sideu and
   sidev are the sides of the two span searches. A surface whose parts do
   not agree records 2 (r != n + p + 1 or s != m + q + 1), 3 or 4 as a curve
   does. */

/* *S := the Cartesian point S(u, v). Allocates nothing; sides as
   N_curevn. */
KW_API int16_t N_surevn(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev,
                        Point *S);
/* SKL->a[k][l] := the partial derivative of order k in u and l in v: for
   k + l <= ku when mode is 1 and ku == kv (the other entries untouched),
   else for the whole rectangle 0..ku by 0..kv. SKL must be a non-banded
   matrix of at least ku + 1 rows and kv + 1 columns (14 when it has no
   data or is banded, 9 when it is too small); its counts are left as they
   are. Rational surfaces through the derivatives of their rational basis
   functions (N_kntasd). 20 unless 0 <= ku, kv <= KW_MAX_ORDER; 13 under
   "N_KNTFSP" for a bad side; the work table comes from the general heap
   (15 under "N_SURDER"). */
KW_API int16_t N_surder(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev,
                        int16_t mode, int16_t ku, int16_t kv, PointMatrix *SKL);
/* *S := S(u, v), *Su and *Sv := the unit tangents along u and v, *N := the
   unit normal Su x Sv, from N_surder's first partials in a 2 x 2 matrix
   taken from stk and killed before return. 17 when a tangent is no longer
   than 0.001 * U_tolpoi or the cross product of the unit tangents no longer
   than U_tolzer (a collapsed edge, a cusp): no fallback to higher
   derivatives. Codes of N_surder. */
KW_API int16_t N_surnor(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev,
                        Point *S, Point *Su, Point *Sv, Point *N, StorageStacks *stk);

/* ---- Surfaces at many parameter pairs -----------------------------------

   For the pairs (u[i], v[i]), i = 0..n, these give bit for bit what
   N_surevn and N_surder give at each pair, in less time: the span work of
   each direction is kept while its parameters stay in one span, and its
   basis functions while its parameter repeats, so that a grid taken row by
   row (u constant along a row, v sorted) gains most. Checks and codes as
   the curve forms (2, 3, 4 for the surface). */

/* S[i] := S(u[i], v[i]). Allocates nothing. */
KW_API int16_t N_surevm(const Surface *sur, int32_t n, const double *u, const double *v, int16_t sideu,
                        int16_t sidev, Point *S);
/* SKL[i (ku + 1)(kv + 1) + k (kv + 1) + l] := the partial derivative of
   order k in u and l in v at (u[i], v[i]): for k + l <= ku when mode is 1
   and ku == kv (the other entries untouched), else for the whole rectangle
   0..ku by 0..kv, as N_surder; orders above KW_MAX_ORDER record 20. A
   rational surface takes one work table for all the pairs from the general
   heap (15 under "N_SURDRM"). */
KW_API int16_t N_surdrm(const Surface *sur, int32_t n, const double *u, const double *v, int16_t sideu,
                        int16_t sidev, int16_t mode, int16_t ku, int16_t kv, Point *SKL);

/* ---- Boxes -------------------------------------------------------------- */

/* *box := the extreme coordinates of the curve itself (not of its control
   polygon), exact to rounding: in each Bezier piece the ends and the zeros
   of each coordinate's derivative (of X'W - XW' for a rational piece) are
   evaluated with N_curevn. A 2-D curve has zmin = zmax = 0. Allocates
   nothing. 14 for a null box; the codes of E_curinp (1, 3, 4, 5). */
KW_API int16_t N_curbox(const Curve *cur, Box *box);
/* *box := the extreme coordinates of the surface: it encloses the surface,
   and each side lies within 1e-12 of the extent of its coordinate (plus
   rounding) of the surface's extreme. Each Bezier patch is halved, across
   the direction in which the side's coordinate bends most, until the
   control points bound the side that closely above a point of the surface
   (at most 60 halvings deep and 20000 subpatches a side, after which the
   control bound stands). Scratch on a private context. 14 for a null box;
   the codes of E_surinp (2, 3, 4, 5); 15 under the allocator's name. */
KW_API int16_t N_surbox(const Surface *sur, Box *box);

KW_END_DECLS

#endif

/* Knotwork: span search, basis functions and knot-vector facts.

   knt holds the knots U[0..m] of a clamped vector for degree p, so that
   n = m - p - 1 is the highest basis-function index and [U[0], U[m]] the
   parameter range. side is KW_RIGHT (1) to evaluate from the right or
   KW_LEFT (2) from the left; it matters only at interior knots. N[i] names
   the basis function N[i,p].

   Every routine that takes a parameter u records 6 when u lies outside
   [U[0], U[m]] (compared exactly), 3 for a degree outside 0..KW_MAX_DEGREE
   and 4 for a knot vector of fewer than 2p + 2 knots. Scratch arrays come
   from stk and are killed before return; an allocation failure records 15
   under the allocator's name. Outputs are written only on success. */
#ifndef KNOTWORK_KNOTS_H
#define KNOTWORK_KNOTS_H

#include "types.h"

KW_BEGIN_DECLS

/* ---- Spans ----------------------------------------------------------- */

/* The span of u: *span := i with U[i] <= u < U[i+1] (side 1; u = U[m-p]
   gives n) or U[i] < u <= U[i+1] (side 2; u = U[p] gives p). 13 for another
   side. */
KW_API int16_t N_kntfsp(const KnotVector *knt, int16_t p, double u, int16_t side, int32_t *span);
/* The span of u and its multiplicity *s as a knot (0 when u is no knot,
   p + 1 at the end knot that the side leaves out of the count). 13. */
KW_API int16_t N_kntfsm(const KnotVector *knt, int16_t p, double u, int16_t side, int32_t *span,
                        int32_t *s);
/* *count := the number of spans of non-zero length in [U[p], U[m-p]].
   Cannot fail: a negative degree counts none. */
KW_API void N_kntnsp(const KnotVector *knt, int16_t p, int32_t *count);

/* ---- Basis functions --------------------------------------------------- */

/* *N := N[i](u) by the local triangle over U[i..i+p+1]; a work array of
   p + 1 doubles from stk. 7 unless 0 <= i <= n; 13. */
KW_API int16_t N_kntbas(const KnotVector *knt, int32_t i, int16_t p, double u, int16_t side,
                        double *N, StorageStacks *stk);
/* N[0..p] := the non-zero basis functions N[span-p+r](u) and *span their
   span; the end knots give the end function 1 from either side. Allocates
   nothing. Leaves the side unchecked: a bad one records 13 under "N_KNTFSP"
   and the result is that of side 1, with status 0. */
KW_API int16_t N_kntalb(const KnotVector *knt, int16_t p, double u, int16_t side, double *N,
                        int32_t *span);
/* ders[d][r] := the d-th derivative of N[span-p+r](u), d = 0..k, r = 0..p
   (ders: k + 1 row pointers to rows of p + 1 doubles; rows above p are
   zero) and *span. The span and the zero rows are written before the work
   tables are taken from stk. 6 and 13 under "N_KNTFSP"; 14 for k < 0. */
KW_API int16_t N_kntadb(const KnotVector *knt, int16_t p, double u, int16_t side, int16_t k,
                        double **ders, int32_t *span, StorageStacks *stk);
/* ders[0..k] := derivatives 0..k of the single function N[i] at u (zero
   where it vanishes on the side's span). 7 unless 0 <= i <= n; 13; 14 for
   k < 0. */
KW_API int16_t N_kntbad(const KnotVector *knt, int32_t i, int16_t p, double u, int16_t side,
                        int16_t k, double *ders, StorageStacks *stk);

/* ---- Derivatives with respect to a knot --------------------------------- */

/* *d := the derivative of N[i](u) with respect to the interior knot U[j],
   taken as the first of its run (kside 1) or the last (kside 2); the
   extended knots come from stk. 7 unless 0 <= i <= n and p < j <= n; 13 for
   either side; 14 when U[j] is not at that end of its run; 21 when its
   multiplicity is not below p. */
KW_API int16_t N_kntbdk(const KnotVector *knt, int32_t i, int32_t j, int16_t p, double u,
                        int16_t kside, int16_t side, double *d, StorageStacks *stk);
/* d[0..p+1] := the derivatives with respect to U[j] of N[j-p-1..j](u), the
   functions that depend on it, each by N_kntbdk; stops at its first
   failure. */
KW_API int16_t N_kntadk(const KnotVector *knt, int32_t j, int16_t p, double u, int16_t kside,
                        int16_t side, double *d, StorageStacks *stk);
/* dR[0..n] := the derivatives with respect to the knot U[j] of the curve's
   rational basis functions R[i](u) = N[i](u) w[i] / sum N[k](u) w[k] (unit
   weights for a non-rational curve). Codes as N_kntbdk, 1 and 3 for a curve
   whose parts do not agree. */
KW_API int16_t N_kntakr(const Curve *cur, int32_t j, double u, int16_t kside, int16_t side,
                        double *dR, StorageStacks *stk);

/* ---- Basis functions of curves and surfaces ------------------------------ */

/* *R := N[i](u) of a polynomial curve, R[i](u) of a rational one. Allocates
   nothing. 1 and 3 for a curve whose parts do not agree; 7 unless
   0 <= i <= n; 13. */
KW_API int16_t N_kntcbf(const Curve *cur, int32_t i, double u, int16_t side, double *R);
/* *R := the rational basis function N[i](u) w[i] / sum N[k](u) w[k]; unit
   weights for a non-rational curve. Codes as N_kntcbf, and 11 when the sum
   vanishes (weights that are not positive). */
KW_API int16_t N_kntrcb(const Curve *cur, int32_t i, double u, int16_t side, double *R);
/* *R := N[i,p](u) N[j,q](v) of a polynomial surface, the rational basis
   function of a rational one. Allocates nothing. 2 and 3 for a surface
   whose parts do not agree; 6 for u or v; 7 unless 0 <= i <= n and
   0 <= j <= m; 13 for either side. */
KW_API int16_t N_kntsbf(const Surface *sur, int32_t i, int32_t j, double u, double v,
                        int16_t sideu, int16_t sidev, double *R);
/* *R := N[i,p](u) N[j,q](v) w[i][j] / sum N[k,p](u) N[l,q](v) w[k][l]; unit
   weights for a non-rational surface. Codes as N_kntsbf. */
KW_API int16_t N_kntrsb(const Surface *sur, int32_t i, int32_t j, double u, double v,
                        int16_t sideu, int16_t sidev, double *R);

/* ---- Knot-vector facts -------------------------------------------------- */

/* *t := the Greville abscissa of control point i: U[0] for i = 0, U[m] for
   i = n, else (U[i+1] + ... + U[i+p]) / p (the midpoint of [U[i], U[i+1]]
   for p = 0). 3, 4; 7 unless 0 <= i <= n. */
KW_API int16_t N_kntcnd(const KnotVector *knt, int16_t p, int32_t i, double *t);
/* t[0..n] := every Greville abscissa, the sums scaled by 1/p computed once
   (so a node may differ from N_kntcnd's in the last bit). Cannot fail: an
   impossible degree writes nothing. */
KW_API void N_kntand(const KnotVector *knt, int16_t p, double *t);
/* The distinct knots: *values and *mult, new arrays of *k + 1 elements on
   stk, hold each distinct knot and its multiplicity, rising. 4 for a knot
   vector without knots; 7 when the two counting passes disagree. */
KW_API int16_t N_kntdkm(const KnotVector *knt, double **values, int32_t **mult, int32_t *k,
                        StorageStacks *stk);

/* ---- Derivatives of surface basis functions ------------------------------

   D is a table D[k][l][i][j] for k = 0..ku, l = 0..kv, i = 0..p, j = 0..q
   (S_getr4d(ku, kv, p, q, stk) makes one) and receives the derivative of
   order k in u and l in v of the basis function of control point
   Pw[su-p+i][sv-q+j]; *su and *sv are the spans of u and v. Orders above a
   degree give zero rows of that direction's derivatives. 6 for u or v; 13
   for either side; 20 unless 0 <= ku, kv <= KW_MAX_ORDER. Allocate
   nothing. */

/* The polynomial basis: products of the derivatives of N[i,p](u) and
   N[j,q](v). 3 and 4 for either knot vector. */
KW_API int16_t N_kntabd(const KnotVector *knu, const KnotVector *knv, int16_t p, int16_t q,
                        double u, double v, int16_t sideu, int16_t sidev, int16_t ku, int16_t kv,
                        double ****D, int32_t *su, int32_t *sv);
/* The surface's rational basis N[i](u) N[j](v) w[i][j] / sum N N w, so
   that D applies to the Cartesian control points; the products of
   N_kntabd for a non-rational surface. 2, 3 and 4 for a surface whose parts
   do not agree. */
KW_API int16_t N_kntasd(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev,
                        int16_t ku, int16_t kv, double ****D, int32_t *su, int32_t *sv);

KW_END_DECLS

#endif

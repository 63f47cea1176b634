/* Knotwork: making, taking apart, checking, copying and converting records.

   Argument order: the record, then its fields in record order, then the
   storage context. Make, break, accessor and predicate routines do no
   checking and cannot fail. Routines that allocate return 0, or 1 when the
   context could not supply storage (code 15, recorded by the allocator). */
#ifndef KNOTWORK_RECORDS_H
#define KNOTWORK_RECORDS_H

#include "types.h"

KW_BEGIN_DECLS

/* ---- Make ------------------------------------------------------------ */

KW_API void U_makknt(KnotVector *knt, double *U, int32_t m);
KW_API void U_makpl1(ControlPolygon *pol, ControlPoint *Pw, int32_t n);
/* Polygon around a new array of n+1 control points taken from stk and
   filled from four coordinate arrays. */
KW_API int16_t U_makpl2(ControlPolygon *pol, const double *wx, const double *wy, const double *wz,
                        const double *w, int32_t n, StorageStacks *stk);
KW_API void U_maknt1(ControlNet *net, ControlPoint **Pw, int32_t n, int32_t m);
/* Net around a new (n+1) x (m+1) array taken from stk and filled from four
   2-D coordinate arrays. */
KW_API int16_t U_maknt2(ControlNet *net, double *const *wx, double *const *wy, double *const *wz,
                        double *const *w, int32_t n, int32_t m, StorageStacks *stk);
KW_API void U_makcu1(Curve *cur, ControlPolygon *pol, int16_t p, KnotVector *knt);
/* Polygon and knot records from stk around the caller's arrays Pw and U. */
KW_API int16_t U_makcu2(Curve *cur, ControlPoint *Pw, int32_t n, int16_t p, double *U, int32_t m,
                        StorageStacks *stk);
/* As U_makcu2, with the control points built on stk from coordinate arrays. */
KW_API int16_t U_makcu3(Curve *cur, const double *wx, const double *wy, const double *wz,
                        const double *w, int32_t n, int16_t p, double *U, int32_t m,
                        StorageStacks *stk);
/* A degree-1 curve on a polygon of two control points with knots
   (u0, u1, u2, u3) taken from stk. Code 14 when the polygon's n is not 1. */
KW_API int16_t U_makcpl(Curve *cur, ControlPolygon *pol, double u0, double u1, double u2, double u3,
                        StorageStacks *stk);
KW_API void U_maksu1(Surface *sur, ControlNet *net, int16_t p, int16_t q, KnotVector *knu,
                     KnotVector *knv);
/* Net and two knot records from stk around the caller's arrays. */
KW_API int16_t U_maksu2(Surface *sur, ControlPoint **Pw, int32_t n, int32_t m, int16_t p, int16_t q,
                        double *U, double *V, int32_t r, int32_t s, StorageStacks *stk);
/* A bilinear surface on a 2 x 2 net over [a, b] x [c, d]: knots (a, a, b, b)
   and (c, c, d, d) taken from stk. Code 14 when the net is not 2 x 2. */
KW_API int16_t U_makspl(Surface *sur, ControlNet *net, double a, double b, double c, double d,
                        StorageStacks *stk);
KW_API void U_makcvl(ValueVector *cvl, double *v, int32_t n);
KW_API void U_maksvl(ValueGrid *svl, double **v, int32_t n, int32_t m);
KW_API void U_makcf1(CurveFunction *cfn, ValueVector *cvl, int16_t p, KnotVector *knt);
KW_API int16_t U_makcf2(CurveFunction *cfn, double *v, int32_t n, int16_t p, double *U, int32_t m,
                        StorageStacks *stk);
KW_API void U_maksf1(SurfaceFunction *sfn, ValueGrid *svl, int16_t p, int16_t q, KnotVector *knu,
                     KnotVector *knv);
KW_API int16_t U_maksf2(SurfaceFunction *sfn, double **v, int32_t n, int32_t m, int16_t p, int16_t q,
                        double *U, double *V, int32_t r, int32_t s, StorageStacks *stk);

/* ---- Break ----------------------------------------------------------- */

KW_API void U_curbre(const Curve *cur, int32_t *n, ControlPoint **Pw, int16_t *p, int32_t *m,
                     double **U);
KW_API void U_surbre(const Surface *sur, int32_t *n, int32_t *m, ControlPoint ***Pw, int16_t *p,
                     int16_t *q, int32_t *r, int32_t *s, double **U, double **V);
KW_API void U_kntbre(const KnotVector *knt, int32_t *m, double **U);
KW_API void U_polbre(const ControlPolygon *pol, int32_t *n, ControlPoint **Pw);
KW_API void U_netbre(const ControlNet *net, int32_t *n, int32_t *m, ControlPoint ***Pw);
KW_API void U_cfnbre(const CurveFunction *cfn, int32_t *n, double **v, int16_t *p, int32_t *m,
                     double **U);
KW_API void U_sfnbre(const SurfaceFunction *sfn, int32_t *n, int32_t *m, double ***v, int16_t *p,
                     int16_t *q, int32_t *r, int32_t *s, double **U, double **V);

/* ---- Accessors ------------------------------------------------------- */

KW_API void U_curind(const Curve *cur, int32_t *n, int32_t *m);
KW_API void U_curdeg(const Curve *cur, int16_t *p);
KW_API void U_curknt(const Curve *cur, int32_t *m, double **U);
KW_API void U_curknp(const Curve *cur, KnotVector **knt);
KW_API void U_curpol(const Curve *cur, int32_t *n, ControlPoint **Pw);
KW_API void U_curppk(const Curve *cur, ControlPolygon **pol, int16_t *p, KnotVector **knt);
KW_API void U_curpwu(const Curve *cur, ControlPoint **Pw, double **U);
KW_API void U_curpku(const Curve *cur, ControlPoint **Pw, KnotVector **knt, double **U);
KW_API void U_curpar(const Curve *cur, double *u0, double *um);
KW_API void U_curspu(Curve *cur, ControlPoint *Pw, double *U);

KW_API void U_surind(const Surface *sur, int32_t *n, int32_t *m, int32_t *r, int32_t *s);
KW_API void U_surdeg(const Surface *sur, int16_t *p, int16_t *q);
KW_API void U_surknt(const Surface *sur, int32_t *r, double **U, int32_t *s, double **V);
KW_API void U_surknp(const Surface *sur, KnotVector **knu, KnotVector **knv);
KW_API void U_surnet(const Surface *sur, int32_t *n, int32_t *m, ControlPoint ***Pw);
KW_API void U_surnpk(const Surface *sur, ControlNet **net, int16_t *p, int16_t *q, KnotVector **knu,
                     KnotVector **knv);
KW_API void U_surpku(const Surface *sur, ControlPoint ***Pw, KnotVector **knu, double **U,
                     KnotVector **knv, double **V);
KW_API void U_surpwu(const Surface *sur, ControlPoint ***Pw, double **U, double **V);
KW_API void U_surpar(const Surface *sur, double *u0, double *ur, double *v0, double *vs);
KW_API void U_surspu(Surface *sur, ControlPoint **Pw, double *U, double *V);

KW_API void U_cfnind(const CurveFunction *cfn, int32_t *n, int32_t *m);
KW_API void U_cfndeg(const CurveFunction *cfn, int16_t *p);
KW_API void U_cfnknt(const CurveFunction *cfn, int32_t *m, double **U);
KW_API void U_cfnknp(const CurveFunction *cfn, KnotVector **knt);
KW_API void U_cfncvl(const CurveFunction *cfn, int32_t *n, double **v);
KW_API void U_cfncpk(const CurveFunction *cfn, ValueVector **cvl, int16_t *p, KnotVector **knt);
KW_API void U_cfnfuu(const CurveFunction *cfn, double **v, double **U);

KW_API void U_sfnind(const SurfaceFunction *sfn, int32_t *n, int32_t *m, int32_t *r, int32_t *s);
KW_API void U_sfndeg(const SurfaceFunction *sfn, int16_t *p, int16_t *q);
KW_API void U_sfnknt(const SurfaceFunction *sfn, int32_t *r, double **U, int32_t *s, double **V);
KW_API void U_sfnknp(const SurfaceFunction *sfn, KnotVector **knu, KnotVector **knv);
KW_API void U_sfnsvl(const SurfaceFunction *sfn, int32_t *n, int32_t *m, double ***v);
KW_API void U_sfnspk(const SurfaceFunction *sfn, ValueGrid **svl, int16_t *p, int16_t *q,
                     KnotVector **knu, KnotVector **knv);

/* ---- Initialise: mark a caller's record empty ------------------------ */

KW_API void U_inicur(Curve *cur);
KW_API void U_inisur(Surface *sur);
KW_API void U_inicfn(CurveFunction *cfn);
KW_API void U_inisfn(SurfaceFunction *sfn);
/* A grid of control points: n := m := -1, Pw := NULL. */
KW_API void U_inigcp(ControlNet *net);

/* ---- Redefine counts without reallocating ---------------------------- */

KW_API void U_defcur(Curve *cur, int32_t n, int16_t p, int32_t m);
KW_API void U_defsur(Surface *sur, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s);
KW_API void U_defknt(KnotVector *knt, int32_t m);
KW_API void U_defcfn(CurveFunction *cfn, int32_t n, int16_t p, int32_t m);
KW_API void U_defsfn(SurfaceFunction *sfn, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                     int32_t s);

/* ---- Get: allocate the parts of a caller's record -------------------- */

KW_API int16_t U_getcur(Curve *cur, int32_t n, int16_t p, int32_t m, StorageStacks *stk);
KW_API int16_t U_getsur(Surface *sur, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                        int32_t s, StorageStacks *stk);
KW_API int16_t U_getcfn(CurveFunction *cfn, int32_t n, int16_t p, int32_t m, StorageStacks *stk);
KW_API int16_t U_getsfn(SurfaceFunction *sfn, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                        int32_t s, StorageStacks *stk);

/* ---- Empty predicates: no polygon, degree -1, or no knots ------------ */

KW_API int16_t U_iscurn(const Curve *cur);
KW_API int16_t U_issurn(const Surface *sur);
KW_API int16_t U_iscfnn(const CurveFunction *cfn);
KW_API int16_t U_issfnn(const SurfaceFunction *sfn);

/* ---- Output checks ----------------------------------------------------
   An empty record is allocated on stk; an existing one must be large enough
   (else code 9 under name) and is redefined to the wanted counts. */

KW_API int16_t U_curchk(Curve *cur, int32_t n, int16_t p, int32_t m, char *name, StorageStacks *stk);
KW_API int16_t U_surchk(Surface *sur, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                        int32_t s, char *name, StorageStacks *stk);
KW_API int16_t U_cfnchk(CurveFunction *cfn, int32_t n, int16_t p, int32_t m, char *name,
                        StorageStacks *stk);
KW_API int16_t U_sfnchk(SurfaceFunction *sfn, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                        int32_t s, char *name, StorageStacks *stk);
/* *knt NULL is allocated on stk; otherwise it must hold m (code 9). */
KW_API int16_t U_kntchk(KnotVector **knt, int32_t m, char *name, StorageStacks *stk);

/* ---- Copy: output check on dst, then every element -------------------- */

KW_API int16_t U_curcop(const Curve *src, Curve *dst, StorageStacks *stk);
KW_API int16_t U_surcop(const Surface *src, Surface *dst, StorageStacks *stk);
KW_API int16_t U_cfncop(const CurveFunction *src, CurveFunction *dst, StorageStacks *stk);
KW_API int16_t U_sfncop(const SurfaceFunction *src, SurfaceFunction *dst, StorageStacks *stk);
KW_API int16_t U_kntcop(const KnotVector *src, KnotVector **dst, StorageStacks *stk);

/* ---- Compact: shrink the arrays to what the counts need -------------- */

KW_API int16_t U_curcmp(Curve *cur, StorageStacks *stk);
KW_API int16_t U_surcmp(Surface *sur, StorageStacks *stk);
KW_API int16_t U_cfncmp(CurveFunction *cfn, StorageStacks *stk);
KW_API int16_t U_sfncmp(SurfaceFunction *sfn, StorageStacks *stk);

/* ---- Knot reparametrisation -------------------------------------------
   Maps the knots linearly onto [a, b] (and [c, d] in v). Unchanged when the
   interval is the current one; code 14 unless a < b (and c < d) and the
   knots span an interval. */

KW_API int16_t U_curkts(Curve *cur, double a, double b);
KW_API int16_t U_surkts(Surface *sur, double a, double b, double c, double d);
KW_API int16_t U_cfnkts(CurveFunction *cfn, double a, double b);
KW_API int16_t U_sfnkts(SurfaceFunction *sfn, double a, double b, double c, double d);

/* ---- Conversions in place --------------------------------------------- */

/* Every z := the planar marker. */
KW_API void U_cur3t2(Curve *cur);
/* The planar marker in z := 0.0. */
KW_API void U_cur2t3(Curve *cur);
/* A non-rational curve gets unit weights; a rational one is unchanged. */
KW_API void U_curnrr(Curve *cur);
/* Every w := the non-rational marker; x, y, z untouched. */
KW_API void U_currnr(Curve *cur);
/* Every control point := its Euclidean form (non-rational). */
KW_API void U_cureuc(Curve *cur);
KW_API void U_surnrr(Surface *sur);
KW_API void U_surrnr(Surface *sur);
KW_API void U_sureuc(Surface *sur);
/* Curves 0..k made alike: all rational when one is, all 3-D when one is. */
KW_API void U_makcco(Curve **cur, int32_t k);
/* Surfaces 0..k made rational when one is. */
KW_API void U_maksco(Surface **sur, int32_t k);

/* ---- Shape predicates (nonzero for true) ------------------------------ */

/* Control point 0 is not planar. */
KW_API int16_t U_iscur3(const Curve *cur);
/* Control point 0 has a weight. */
KW_API int16_t U_iscurr(const Curve *cur);
/* First and last Cartesian control points closer than U_tolpoi. */
KW_API int16_t U_iscurc(const Curve *cur);
/* Every control point within U_tolpoi of the centroid. */
KW_API int16_t U_iscurp(const Curve *cur);
/* Every control point's stored z is 0.0. */
KW_API int16_t U_iscuz0(const Curve *cur);
KW_API int16_t U_issurr(const Surface *sur);
/* Closed in u (dir 1: rows 0 and n agree) or in v (dir 2: columns 0 and m). */
KW_API int16_t U_issurc(const Surface *sur, int16_t dir);
KW_API int16_t U_issurp(const Surface *sur);
/* a holds Points (kind 1) or ControlPoints (kind 2, compared as Cartesian
   points): true when elements 0 and n are closer than tol. */
KW_API int16_t U_isp1dc(const void *a, int32_t n, int16_t kind, double tol);
/* The same for the boundary rows (dir 1: rows 0 and n) or columns (dir 2:
   columns 0 and m) of a 2-D array; every pair must be closer than tol. */
KW_API int16_t U_isp2dc(const void *const *a, int32_t n, int32_t m, int16_t kind, int16_t dir,
                        double tol);

KW_END_DECLS

#endif

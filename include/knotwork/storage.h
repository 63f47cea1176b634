/* Knotwork: storage contexts.

   Everything the library allocates lives on a StorageStacks the caller owns,
   one list per object kind. Allocators return the new block, or NULL after
   recording code 15 under their own name; kills unlink and free one block
   (an address the list does not hold is ignored); N_enurbs frees all.
   Counts are highest indices: S_getr1d(n) gives n+1 doubles. */
#ifndef KNOTWORK_STORAGE_H
#define KNOTWORK_STORAGE_H

#include "types.h"

KW_BEGIN_DECLS

/* The lists of a context, in the order N_enurbs empties them. */
enum {
    KW_LIST_F1D, KW_LIST_F2D, KW_LIST_I1D, KW_LIST_I2D, KW_LIST_I3D,
    KW_LIST_R1D, KW_LIST_R2D, KW_LIST_R3D, KW_LIST_R4D,
    KW_LIST_P1D, KW_LIST_P2D, KW_LIST_P3D,
    KW_LIST_C1D, KW_LIST_C2D, KW_LIST_C3D,
    KW_LIST_CUR, KW_LIST_CU2, KW_LIST_CU3, KW_LIST_CU4,
    KW_LIST_SUR, KW_LIST_SU2, KW_LIST_SU3,
    KW_LIST_POL, KW_LIST_NET, KW_LIST_KNT, KW_LIST_KN2,
    KW_LIST_CVL, KW_LIST_SVL,
    KW_LIST_CFN, KW_LIST_CF2, KW_LIST_SFN, KW_LIST_SF2, KW_LIST_SF3,
    KW_LIST_IMA, KW_LIST_RMA, KW_LIST_PMA, KW_LIST_CMA
};

/* ---- Context -------------------------------------------------------- */

/* Sets every list head to NULL. A context must pass through it first. */
KW_API void N_inurbs(StorageStacks *stk);
/* Frees everything, list by list in slot order; the context is reusable. */
KW_API void N_enurbs(StorageStacks *stk);
/* Prints each labelled list as its label, one '*' per node and "|". */
KW_API void U_shwstk(const StorageStacks *stk);

/* ---- One-dimensional arrays of n+1 elements ------------------------- */

KW_API int16_t *S_getf1d(int32_t n, StorageStacks *stk);
KW_API int32_t *S_geti1d(int32_t n, StorageStacks *stk);
KW_API double *S_getr1d(int32_t n, StorageStacks *stk);
KW_API Point *S_getp1d(int32_t n, StorageStacks *stk);
KW_API ControlPoint *S_getc1d(int32_t n, StorageStacks *stk);

/* ---- Two-dimensional arrays: n+1 row pointers into one block ---------- */

KW_API int16_t **S_getf2d(int32_t n, int32_t m, StorageStacks *stk);
KW_API int32_t **S_geti2d(int32_t n, int32_t m, StorageStacks *stk);
KW_API double **S_getr2d(int32_t n, int32_t m, StorageStacks *stk);
KW_API Point **S_getp2d(int32_t n, int32_t m, StorageStacks *stk);
KW_API ControlPoint **S_getc2d(int32_t n, int32_t m, StorageStacks *stk);

/* ---- Arrays of n+1 pointers to rows owned elsewhere ------------------ */

KW_API int16_t **S_getf1p(int32_t n, StorageStacks *stk);
KW_API int32_t **S_geti1p(int32_t n, StorageStacks *stk);
KW_API double **S_getr1p(int32_t n, StorageStacks *stk);
KW_API Point **S_getp1p(int32_t n, StorageStacks *stk);
KW_API ControlPoint **S_getc1p(int32_t n, StorageStacks *stk);

/* ---- (n+1) x (m+1) arrays of such pointers ---------------------------- */

KW_API int32_t ***S_geti2p(int32_t n, int32_t m, StorageStacks *stk);
KW_API double ***S_getr2p(int32_t n, int32_t m, StorageStacks *stk);
KW_API Point ***S_getp2p(int32_t n, int32_t m, StorageStacks *stk);
KW_API ControlPoint ***S_getc2p(int32_t n, int32_t m, StorageStacks *stk);

/* ---- Arrays of reals of higher rank ---------------------------------- */

/* (n+1)(m+1)(k+1) doubles addressed a[i][j][l]. */
KW_API double ***S_getr3d(int32_t n, int32_t m, int32_t k, StorageStacks *stk);
/* (n+1)(m+1)(k+1)(l+1) doubles addressed a[i][j][g][h]. */
KW_API double ****S_getr4d(int32_t n, int32_t m, int32_t k, int32_t l, StorageStacks *stk);
/* n+1 pointers to two-dimensional real arrays. */
KW_API double ***S_getr12(int32_t n, StorageStacks *stk);
/* A ragged 2-D Point array: row i holds len[i]+1 Points (len[i] >= 0).
   The rows share one block, so U_kilp2d frees it. */
KW_API Point **S_getp2v(int32_t n, const int32_t *len, StorageStacks *stk);

/* ---- Empty records --------------------------------------------------- */

KW_API Curve *S_getcus(StorageStacks *stk);
KW_API Surface *S_getsus(StorageStacks *stk);
KW_API ControlPolygon *S_getpos(StorageStacks *stk);
KW_API ControlNet *S_getnes(StorageStacks *stk);
KW_API KnotVector *S_getkns(StorageStacks *stk);
KW_API ValueVector *S_getcvl(StorageStacks *stk);
KW_API ValueGrid *S_getsvl(StorageStacks *stk);
KW_API CurveFunction *S_getcfs(StorageStacks *stk);
KW_API SurfaceFunction *S_getsfs(StorageStacks *stk);

/* ---- Arrays of record pointers --------------------------------------- */

/* n+1 Curve pointers, left unset. */
KW_API Curve **S_getcua(int32_t n, StorageStacks *stk);
/* n+1 Curve pointers, each to a new Curve record; flag 1 also empties each
   record with U_inicur. */
KW_API Curve **S_getcu1(int32_t n, int16_t flag, StorageStacks *stk);
/* n+1 Curve pointers on the lists of 2-D curve arrays and of further ones. */
KW_API Curve **S_getcub(int32_t n, StorageStacks *stk);
KW_API Curve **S_getcuc(int32_t n, StorageStacks *stk);
/* n+1 Surface pointers, each to a new empty record (U_inisur). */
KW_API Surface **S_getsu1(int32_t n, StorageStacks *stk);
/* n+1 Surface pointers, left unset. */
KW_API Surface **S_getsua(int32_t n, StorageStacks *stk);
/* n+1 KnotVector pointers, left unset. */
KW_API KnotVector **S_getkpa(int32_t n, StorageStacks *stk);

/* ---- Complete objects ------------------------------------------------ */

KW_API KnotVector *S_getknt(int32_t m, StorageStacks *stk);
KW_API ControlPolygon *S_getpol(int32_t n, StorageStacks *stk);
KW_API ControlNet *S_getnet(int32_t n, int32_t m, StorageStacks *stk);
KW_API Curve *S_getcur(int32_t n, int16_t p, int32_t m, StorageStacks *stk);
KW_API Surface *S_getsur(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                         StorageStacks *stk);
KW_API ValueVector *S_getcvs(int32_t n, StorageStacks *stk);
KW_API ValueGrid *S_getsvs(int32_t n, int32_t m, StorageStacks *stk);
KW_API CurveFunction *S_getcfn(int32_t n, int16_t p, int32_t m, StorageStacks *stk);
KW_API SurfaceFunction *S_getsfn(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                                 StorageStacks *stk);

/* k+1 new curves (or surfaces, functions, knot vectors) of equal sizes. */
KW_API Curve **S_getcu2(int32_t n, int16_t p, int32_t m, int32_t k, StorageStacks *stk);
KW_API Surface **S_getsu3(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                          int32_t k, StorageStacks *stk);
KW_API CurveFunction **S_getcf2(int32_t n, int16_t p, int32_t m, int32_t k, StorageStacks *stk);
KW_API KnotVector **S_getkn2(int32_t m, int32_t k, StorageStacks *stk);
/* (k+1) x (l+1) new curves (surfaces, surface functions), addressed a[i][j]. */
KW_API Curve ***S_getcs3(int32_t n, int16_t p, int32_t m, int32_t k, int32_t l, StorageStacks *stk);
KW_API Surface ***S_getss3(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                           int32_t k, int32_t l, StorageStacks *stk);
KW_API SurfaceFunction ***S_getsf3(int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                                   int32_t s, int32_t k, int32_t l, StorageStacks *stk);

/* A matrix record with storage for rows 0..n and columns 0..m; a banded one
   (type KW_BANDED) keeps w values per row. */
KW_API RealMatrix *S_getrma(int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk);
KW_API IntegerMatrix *S_getima(int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk);
KW_API PointMatrix *S_getpma(int32_t n, int32_t m, int32_t type, int32_t w, StorageStacks *stk);
KW_API ControlPointMatrix *S_getcma(int32_t n, int32_t m, int32_t type, int32_t w,
                                    StorageStacks *stk);

/* Arrays filled from separate coordinate arrays. */
KW_API ControlPoint *S_getcpa(const double *wx, const double *wy, const double *wz,
                              const double *w, int32_t n, StorageStacks *stk);
KW_API Point *S_getpoa(const double *x, const double *y, const double *z, int32_t n,
                       StorageStacks *stk);
KW_API Point **S_getpom(double *const *x, double *const *y, double *const *z, int32_t n, int32_t m,
                        StorageStacks *stk);
KW_API ControlPoint **S_getcpm(double *const *wx, double *const *wy, double *const *wz,
                               double *const *w, int32_t n, int32_t m, StorageStacks *stk);

/* ---- Kills ----------------------------------------------------------- */

KW_API void U_kilf1d(int16_t *a, StorageStacks *stk);
KW_API void U_kilf2d(int16_t **a, StorageStacks *stk);
KW_API void U_kili1d(int32_t *a, StorageStacks *stk);
KW_API void U_kili1p(int32_t **a, StorageStacks *stk);
KW_API void U_kili2d(int32_t **a, StorageStacks *stk);
KW_API void U_kili2p(int32_t ***a, StorageStacks *stk);
KW_API void U_kilr1d(double *a, StorageStacks *stk);
KW_API void U_kilr2d(double **a, StorageStacks *stk);
KW_API void U_kilr3d(double ***a, StorageStacks *stk);
KW_API void U_kilp1d(Point *a, StorageStacks *stk);
KW_API void U_kilp2d(Point **a, StorageStacks *stk);
KW_API void U_kilc1d(ControlPoint *a, StorageStacks *stk);
KW_API void U_kilc2d(ControlPoint **a, StorageStacks *stk);
/* A record kill also kills the record's arrays. */
KW_API void U_kilknt(KnotVector *knt, StorageStacks *stk);
KW_API void U_kilpol(ControlPolygon *pol, StorageStacks *stk);
KW_API void U_kilnet(ControlNet *net, StorageStacks *stk);
KW_API void U_kilcvl(ValueVector *cvl, StorageStacks *stk);
KW_API void U_kilsvl(ValueGrid *svl, StorageStacks *stk);
/* Kills the parts (polygon, control points, knot record, knots); the Curve
   record itself stays on its list until N_enurbs. Likewise for the others. */
KW_API void U_kilcur(Curve *cur, StorageStacks *stk);
KW_API void U_kilsur(Surface *sur, StorageStacks *stk);
KW_API void U_kilcfn(CurveFunction *cfn, StorageStacks *stk);
KW_API void U_kilsfn(SurfaceFunction *sfn, StorageStacks *stk);

/* ---- Resizes --------------------------------------------------------- */

/* *a := a new array of newn, holding elements 0..min(oldn, newn); the old
   array is killed. Returns 1 (and leaves *a alone) when allocation fails. */
KW_API int16_t U_ralf1d(int16_t **a, int32_t oldn, int32_t newn, StorageStacks *stk);
KW_API int16_t U_rali1d(int32_t **a, int32_t oldn, int32_t newn, StorageStacks *stk);
KW_API int16_t U_rali1p(int32_t ***a, int32_t oldn, int32_t newn, StorageStacks *stk);
KW_API int16_t U_ralr1d(double **a, int32_t oldn, int32_t newn, StorageStacks *stk);
KW_API int16_t U_ralp1d(Point **a, int32_t oldn, int32_t newn, StorageStacks *stk);
KW_API int16_t U_ralc1d(ControlPoint **a, int32_t oldn, int32_t newn, StorageStacks *stk);
/* The same for 2-D arrays: element [i][j] is kept for i <= min(oldn, newn)
   and j <= min(oldm, newm). */
KW_API int16_t U_ralf2d(int16_t ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                        StorageStacks *stk);
KW_API int16_t U_rali2d(int32_t ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                        StorageStacks *stk);
KW_API int16_t U_rali2p(int32_t ****a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                        StorageStacks *stk);
KW_API int16_t U_ralr2d(double ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                        StorageStacks *stk);
KW_API int16_t U_ralp2d(Point ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                        StorageStacks *stk);
KW_API int16_t U_ralc2d(ControlPoint ***a, int32_t oldn, int32_t oldm, int32_t newn, int32_t newm,
                        StorageStacks *stk);

KW_END_DECLS

#endif

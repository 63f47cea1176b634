/* Knotwork: matrices, linear solvers, sorting and roots.

   Matrices are records of highest row and column indices, row pointers, a
   storage type (KW_FULL, KW_LOWERLEFT, KW_UPPERRIGHT, KW_BANDED) and a band
   width. A banded matrix of width w keeps w values per row, (i, j) at column
   j - i + w/2. Routines that produce a matrix pass their result through the
   matrix check (M_rmachk and its siblings): an empty record is allocated on
   the storage context, an existing one is reused when large enough. */
#ifndef KNOTWORK_NUMERIC_H
#define KNOTWORK_NUMERIC_H

#include "types.h"

KW_BEGIN_DECLS

/* ---- Overflow guard ----------------------------------------------------- */

/* While flag > 0, M_chkfop reports every operation as safe. */
KW_API void M_NoErrChk(int16_t flag);
/* 1 when a op b (op 1 +, 2 -, 3 *, 4 /) has no finite result: it would
   overflow the largest double or divide by zero (or an operand is not
   finite); 1 also when op is not 1..4; 0 otherwise. */
KW_API int16_t M_chkfop(double a, double b, int16_t op);

/* ---- Real matrices ---------------------------------------------------- */

/* Empty: last indices -1, no data, band width 0. */
KW_API void M_inirma(RealMatrix *mat);
KW_API void M_makrma(RealMatrix *mat, int32_t n, int32_t m, double **a, int32_t type, int32_t w);
KW_API void M_rmabre(const RealMatrix *mat, int32_t *n, int32_t *m, double ***a, int32_t *type,
                     int32_t *w);
/* Sets the counts, type and band width, keeping the data. */
KW_API void M_rmadef(RealMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w);
KW_API void M_rmaind(const RealMatrix *mat, int32_t *n, int32_t *m);
KW_API void M_rmarmp(const RealMatrix *mat, double ***a);
/* Allocates rows 0..n (w values per row when banded; two for w = 1) on stk;
   code 14 for an unknown type or w < 1. */
KW_API int16_t M_getrma(RealMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w,
                        StorageStacks *stk);
/* 1 unless both last indices are at least 0, the data is set and w > 0. */
KW_API int16_t M_isrman(const RealMatrix *mat);
/* Empty: allocated; existing: must hold the size wanted (code 9 under name),
   then redefined. Code 14 for an unknown type or w < 1. */
KW_API int16_t M_rmachk(RealMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                        StorageStacks *stk);

/* ---- Integer matrices ------------------------------------------------- */

/* Empty: last indices -1, no data, band width 0. */
KW_API void M_iniima(IntegerMatrix *mat);
KW_API void M_makima(IntegerMatrix *mat, int32_t n, int32_t m, int32_t **a, int32_t type, int32_t w);
KW_API void M_imabre(const IntegerMatrix *mat, int32_t *n, int32_t *m, int32_t ***a, int32_t *type,
                     int32_t *w);
/* Sets the counts, type and band width, keeping the data. */
KW_API void M_imadef(IntegerMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w);
KW_API void M_imaind(const IntegerMatrix *mat, int32_t *n, int32_t *m);
KW_API void M_imaimp(const IntegerMatrix *mat, int32_t ***a);
/* Allocates rows 0..n (w values per row when banded; two for w = 1) on stk;
   code 14 for an unknown type or w < 1. */
KW_API int16_t M_getima(IntegerMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w,
                        StorageStacks *stk);
/* 1 unless both last indices are at least 0, the data is set and w > 0. */
KW_API int16_t M_isiman(const IntegerMatrix *mat);
/* Empty: allocated; existing: must hold the size wanted (code 9 under name),
   then redefined. Code 14 for an unknown type or w < 1. */
KW_API int16_t M_imachk(IntegerMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                        StorageStacks *stk);

/* ---- Point matrices --------------------------------------------------- */

/* Empty: last indices -1, no data, band width 0. */
KW_API void M_inipma(PointMatrix *mat);
KW_API void M_makpma(PointMatrix *mat, int32_t n, int32_t m, Point **a, int32_t type, int32_t w);
KW_API void M_pmabre(const PointMatrix *mat, int32_t *n, int32_t *m, Point ***a, int32_t *type,
                     int32_t *w);
/* Sets the counts, type and band width, keeping the data. */
KW_API void M_pmadef(PointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w);
KW_API void M_pmaind(const PointMatrix *mat, int32_t *n, int32_t *m);
KW_API void M_pmapmp(const PointMatrix *mat, Point ***a);
/* Allocates rows 0..n (w values per row when banded; two for w = 1) on stk;
   code 14 for an unknown type or w < 1. */
KW_API int16_t M_getpma(PointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w,
                        StorageStacks *stk);
/* 1 unless both last indices are at least 0, the data is set and w > 0. */
KW_API int16_t M_ispman(const PointMatrix *mat);
/* Empty: allocated; existing: must hold the size wanted (code 9 under name),
   then redefined. Code 14 for an unknown type or w < 1. */
KW_API int16_t M_pmachk(PointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                        StorageStacks *stk);

/* ---- ControlPoint matrices -------------------------------------------- */

/* Empty: last indices -1, no data, band width 0. */
KW_API void M_inicma(ControlPointMatrix *mat);
KW_API void M_makcma(ControlPointMatrix *mat, int32_t n, int32_t m, ControlPoint **a, int32_t type, int32_t w);
KW_API void M_cmabre(const ControlPointMatrix *mat, int32_t *n, int32_t *m, ControlPoint ***a, int32_t *type,
                     int32_t *w);
/* Sets the counts, type and band width, keeping the data. */
KW_API void M_cmadef(ControlPointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w);
KW_API void M_cmaind(const ControlPointMatrix *mat, int32_t *n, int32_t *m);
KW_API void M_cmacmp(const ControlPointMatrix *mat, ControlPoint ***a);
/* Allocates rows 0..n (w values per row when banded; two for w = 1) on stk;
   code 14 for an unknown type or w < 1. */
KW_API int16_t M_getcma(ControlPointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w,
                        StorageStacks *stk);
/* 1 unless both last indices are at least 0, the data is set and w > 0. */
KW_API int16_t M_iscman(const ControlPointMatrix *mat);
/* Empty: allocated; existing: must hold the size wanted (code 9 under name),
   then redefined. Code 14 for an unknown type or w < 1. */
KW_API int16_t M_cmachk(ControlPointMatrix *mat, int32_t n, int32_t m, int32_t type, int32_t w, char *name,
                        StorageStacks *stk);

KW_END_DECLS

#endif

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

/* ---- Products and transposes ------------------------------------------

   Sums run only over the entries both factors store: zeros outside a
   triangle or band are never read. Results pass through M_rmachk under the
   routine's name; a result must not share its rows with a factor (code 14).
   Every stored value of a result is written, zeros where its shape has
   none. */

/* C = A B. Code 7 unless columns of A = rows of B; code 14 for a banded
   factor. C is lower-left when both are, upper-right when both are, else
   full. */
KW_API int16_t M_rmamul(const RealMatrix *A, const RealMatrix *B, RealMatrix *C, StorageStacks *stk);
/* C = A B^T. Code 7 unless A and B have as many columns; code 14 for a
   banded factor. C is lower-left for lower-left A and upper-right B,
   upper-right for the opposite pair, else full. */
KW_API int16_t M_rmamtr(const RealMatrix *A, const RealMatrix *B, RealMatrix *C, StorageStacks *stk);
/* C = A A^T, full; code 14 for a banded A. */
KW_API int16_t M_rmamtm(const RealMatrix *A, RealMatrix *C, StorageStacks *stk);
/* T = A^T: lower-left and upper-right swap, full and banded stay (an even
   band width becomes the next odd one, which holds the turned band). */
KW_API int16_t M_rmatrp(const RealMatrix *A, RealMatrix *T, StorageStacks *stk);
/* Q[i] = sum over the stored j of A(i, j) P[j]: P has m+1 Points, Q n+1
   (not overlapping P). Any storage type; code 14 for an unusable A. */
KW_API int16_t M_rmapoi(const RealMatrix *A, const Point *P, Point *Q);
/* The same for ControlPoints, component by component in homogeneous form;
   planar and non-rational markers carry over as in A_sumcpt. */
KW_API int16_t M_rmacpt(const RealMatrix *A, const ControlPoint *P, ControlPoint *Q);
/* A real matrix times a ControlPoint matrix (a net, full type), into the
   full ControlPoint matrix Q: side 1, Q = A P (code 7 unless columns of A =
   rows of P); side 2, Q = P A^T (code 7 unless P and A have as many
   columns), so that A P B^T is two calls. A of any storage type; code 14 for
   another side, a P that is not full, or a Q sharing P's rows. */
KW_API int16_t M_rmcprm(const RealMatrix *A, const ControlPointMatrix *P, int16_t side,
                        ControlPointMatrix *Q, StorageStacks *stk);
/* Prints to standard output "n m", the type word ("full      ",
   "lowerleft ", "upperright", "banded    "), the band width, then each row's
   stored values with "%lf ": columns 0..m, 0..i, i..m, or the band's w.
   Code 14 for an unknown type. */
KW_API int16_t M_prtrma(const RealMatrix *A);

/* ---- Linear solvers ------------------------------------------------------

   The square solvers refuse a matrix with no data or an unknown type (code
   14), one that is not square (code 7) and a type they do not take (code
   14). A band of width w keeps w/2 diagonals below the main one and
   w - 1 - w/2 above it. A failure inside a routine that one of these calls
   is passed up as that routine recorded it. */

/* LU decomposition without pivoting of a full or banded A, in place: the
   unit lower factor below the diagonal, the upper one on and above. Code
   11 when a pivot a(k,k) that is divided by is below M_tolpiv (the last one
   is left to the substitution). */
KW_API int16_t M_ludcmp(RealMatrix *A);
/* x = (LU)^-1 b with factors from M_ludcmp; x may be b. Code 11, before
   anything is written, when M_chkfop refuses a division by a diagonal
   entry. */
KW_API int16_t M_rafoba(const RealMatrix *LU, const double *b, double *x);
/* The same substitution on n+1 Points (kind 1) or ControlPoints (kind 2,
   markers kept) into n+1 ControlPoints; a Point result gets weight 1.0.
   Scratch from stk is given back. Code 14 for another kind, 11 as
   M_rafoba. */
KW_API int16_t M_forbac(const RealMatrix *LU, const void *rhs, int16_t kind, ControlPoint *out,
                        StorageStacks *stk);
/* LU decomposition of a full A with implicit (scaled) partial pivoting,
   Crout order, in place; piv[j] (n+1 of them) is the row exchanged with row
   j. Code 11 for a row whose largest value, or a pivot, is below M_tolpiv. */
KW_API int16_t M_ludpiv(RealMatrix *A, int32_t *piv);
/* b := (LU)^-1 b with factors and exchanges from M_ludpiv. Checked before
   b is touched: code 7 for an exchange outside j..n, 11 for a diagonal
   entry below M_tolpiv. */
KW_API int16_t M_rafbpv(const RealMatrix *LU, const int32_t *piv, double *b);
/* The inverse of a full or banded A as a full matrix, column by column with
   M_rafoba; unless factored, A is first decomposed in place by M_ludcmp. */
KW_API int16_t M_rmainv(RealMatrix *A, int16_t factored, RealMatrix *Ainv, StorageStacks *stk);
/* The inverse of a full A (left unchanged) with M_ludpiv and M_rafbpv. */
KW_API int16_t M_rmaivp(const RealMatrix *A, RealMatrix *Ainv, StorageStacks *stk);
/* The inverse of a full A (left unchanged) with M_svdinv. */
KW_API int16_t M_rmaivs(const RealMatrix *A, RealMatrix *Ainv, StorageStacks *stk);
/* The least-squares solution x (m+1) of A x = b (n+1 rows) by the normal
   equations A^T A x = A^T b, solved with M_ludpiv and M_rafbpv; code 7
   unless n > m. A full or triangular A (M_rmamul refuses a banded one).
   Scratch on a private context; x is written only on success. */
KW_API int16_t M_lsslsy(const RealMatrix *A, const double *b, double *x);

/* ---- Singular value decomposition ------------------------------------- */

/* A = U diag(w) V^T for a, rows 0..m and columns 0..n (n <= m, else code
   14): a is replaced by U, w gets the n+1 singular values in descending
   order, v (n+1 x n+1) gets V. Code 12 when a value needs more than
   M_itesvd QR iterations. */
KW_API int16_t M_svdcpf(double **a, double *w, double **v, int32_t m, int32_t n);
/* x (n+1) = V diag(1/w) U^T b (m+1) for b and x of Points (kind 1),
   ControlPoints (kind 2) or doubles (kind 3); x may be b. With first = 1
   the values w <= m * max(w) * M_tolsvd are first set to 0 in w, for this
   and later calls (code 11 when max(w) <= M_tolsvd); zeroed values drop
   out, which gives the minimum-norm solution. Code 14 for n > m or another
   kind. */
KW_API int16_t M_svdsbf(double *const *u, double *w, double *const *v, int32_t m, int32_t n,
                        const void *b, int16_t kind, int16_t first, void *x);
/* ainv = a^-1 for (n+1) x (n+1) arrays, by M_svdcpf on a copy and M_svdsbf
   for each unit column (a singular a gives its pseudo-inverse). */
KW_API int16_t M_svdinv(double *const *a, int32_t n, double **ainv);

/* ---- Eigen-analysis ----------------------------------------------------- */

/* Eigenvalues d (n+1, ascending) and unit eigenvectors (the columns of the
   full result V) of the symmetric part (A + A^T)/2 of a square A of any
   storage type, by cyclic Jacobi rotations: for a symmetric A these are A's
   own; a non-symmetric A's own eigenvalues are not computed. Code 7 when A
   is not square, 11 for a value that is not finite, 12 when M_iteevv sweeps
   do not converge. */
KW_API int16_t M_rmaevv(const RealMatrix *A, double *d, RealMatrix *V, StorageStacks *stk);

/* ---- Smallest and largest values ------------------------------------------

   which = 1 the smallest, 2 the largest; another which or a negative count
   records code 14 and gives 0. */

KW_API double M_r1mima(const double *a, int32_t n, int16_t which);
KW_API double M_r2mima(double *const *a, int32_t n, int32_t m, int16_t which);
KW_API int32_t M_i1mima(const int32_t *a, int32_t n, int16_t which);
KW_API int32_t M_i2mima(int32_t *const *a, int32_t n, int32_t m, int16_t which);

/* ---- Sorting ---------------------------------------------------------------

   Shell sorts of a(0..n), ascending, in place, with the gaps
   gap = (5 gap - 1) / 11 from n + 1 down to 1. Within each pass an element
   moves only past smaller ones, so equal values keep their order in each
   gap chain (and overall in a sort of at most four values, or of an input
   already sorted). Nothing happens for n < 1. */

KW_API void M_rshell(double *a, int32_t n);
KW_API void M_ishell(int32_t *a, int32_t n);
/* Sorts a; b (n+1 integers) is permuted alongside. */
KW_API void M_rishel(double *a, int32_t *b, int32_t n);
/* Sorts a; b (n+1 doubles) is permuted alongside. */
KW_API void M_rrshel(double *a, double *b, int32_t n);
/* Sorts a; idx is set to 0..n and permuted alongside: a_sorted[k] is
   a_old[idx[k]]. */
KW_API void M_rshel2(double *a, int32_t n, int32_t *idx);
KW_API void M_ishel2(int32_t *a, int32_t n, int32_t *idx);

KW_API void M_reswap(double *a, double *b);
KW_API void M_inswap(int32_t *a, int32_t *b);
KW_API void M_poswap(Point *a, Point *b);
KW_API void M_cpswap(ControlPoint *a, ControlPoint *b);

/* ---- Hash table of reals ----------------------------------------------------

   n+1 buckets, each NULL or an array on stk of its values ended by DBL_MAX.
   A value goes to bucket mix(bits) mod (n + 1), where bits is its 64-bit
   pattern (-0.0 taken as 0.0) and mix the SplitMix64 finaliser: the same
   table every run. A table holds each value once (exact equality). */

/* *table := n+1 empty buckets on stk; code 14 for n < 0. */
KW_API int16_t M_inrhas(double ***table, int32_t n, StorageStacks *stk);
/* Adds value to its bucket unless it is there already; the bucket's array
   is replaced by one a value longer. Code 14 for DBL_MAX or NaN. */
KW_API int16_t M_uprhas(double **table, int32_t n, double value, StorageStacks *stk);
/* Copies every value, bucket by bucket and in stored order within a bucket,
   into out (NULL: count only); *k := the highest index written, -1 for an
   empty table. */
KW_API void M_rerhas(double *const *table, int32_t n, double *out, int32_t *k);

/* ---- Pseudo-random numbers -------------------------------------------------- */

/* seed := seed * 1103515245 + 12345 (mod 2^32); gives (seed >> 16) mod 32767,
   in 0..32766. The seed is 7 at start-up, so runs repeat. */
KW_API int32_t M_inrand(void);
/* Restarts the sequence of M_inrand from seed. */
KW_API void M_serand(uint32_t seed);
/* 1 or 2: the low bit of M_inrand, plus one. */
KW_API int16_t M_fliflo(void);

/* ---- Binomial coefficients --------------------------------------------------- */

/* Turns row n-1 of Pascal's triangle, in row, into row n (n+1 values); code
   14 unless 0 <= n <= 33, the last row that fits 32 bits. */
KW_API int16_t M_pascal(int32_t *row, int32_t n);
/* bin[i][j] := i over j for 0 <= j <= i <= n, 0 for j > i (rows and columns
   0..n); code 14 unless 0 <= n <= 33. */
KW_API int16_t M_pastri(int32_t **bin, int32_t n);

/* ---- Roots ------------------------------------------------------------------- */

/* Real roots of a x^2 + b x + c, coefficients below U_tolzer in magnitude
   taken as zero: *count := 0, 1 or 2, with x1 <= x2 (x1 = x2 for a single or
   double root; untouched for none). a = b = 0 has none; a = 0 the root
   -c/b; a discriminant in [-1e-8, 0] counts as zero (one double root).
   Code 11 when M_chkfop refuses a division. */
KW_API int16_t M_quades(double a, double b, double c, double *x1, double *x2, int16_t *count);
/* ders[k] := the k-th derivative at x, k = 0..d, of the polynomial
   sum poly[i] x^i, i = 0..degree; code 14 for a negative degree or d. */
KW_API int16_t M_polder(const double *poly, int16_t degree, double x, int16_t d, double *ders);
/* A root of sum poly[i] x^i by Newton's method from x0, each step clamped to
   [lo, hi]: 0 once |p(x)| < tol. After N_itenew steps without that, code
   12; code 11 when M_chkfop refuses p/p'; code 14 for lo > hi or a negative
   degree. *x holds the last iterate in every case but code 14. */
KW_API int16_t M_polnew(const double *poly, int16_t degree, double x0, double lo, double hi,
                        double tol, double *x);

KW_END_DECLS

#endif

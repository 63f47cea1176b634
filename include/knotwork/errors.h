/* Knotwork: the error state and the input validators.

   A routine that fails returns 1 after recording a code (types.h, KW_E...)
   and its own upper-case name ("N_CUREVN"). A successful call does not clear
   the state: clear it with E_clrerr before a call whose code you inspect.
   Validators return 0 when the check passes and 1 when it fails, recording
   the code under the name the caller passed. They change nothing. */
#ifndef KNOTWORK_ERRORS_H
#define KNOTWORK_ERRORS_H

#include "types.h"

KW_BEGIN_DECLS

/* Records code and routine name; returns the code. */
KW_API int32_t E_seterr(int32_t code, char *name);
/* The recorded code, 0 when none. */
KW_API int32_t E_errtyp(void);
/* Code := 0, routine := " ". */
KW_API void E_clrerr(void);
/* The name of the routine that recorded the code (" " when none). */
KW_API const char *E_errnam(void);

/* m = n + p + 1 (1); 0 <= p <= U_maxdeg (3); every control point has the
   dimension and rationality of control point 0 (1). An empty or unallocated
   curve fails with 1. */
KW_API int16_t E_curdef(const Curve *cur, char *name);
/* r = n + p + 1 and s = m + q + 1 (2); 0 <= p, q <= U_maxdeg (3); every
   control point has the rationality of Pw[0][0] (2). */
KW_API int16_t E_surdef(const Surface *sur, char *name);
/* End runs of multiplicity exactly p + 1, knots non-decreasing, interior
   multiplicities at most p, every knot finite (4). Knots compare exactly. */
KW_API int16_t E_kntdef(const KnotVector *knt, int16_t p, char *name);
/* Every weight of a rational curve in [U_minwei, U_maxwei] (5). */
KW_API int16_t E_curwei(const Curve *cur, char *name);
/* Every weight of a rational surface in [U_minwei, U_maxwei] (5). */
KW_API int16_t E_surwei(const Surface *sur, char *name);
/* E_curdef, E_curwei, E_kntdef in turn; stops at the first failure. */
KW_API int16_t E_curinp(const Curve *cur, char *name);
/* E_surdef, E_surwei, E_kntdef on the u and then the v knots. */
KW_API int16_t E_surinp(const Surface *sur, char *name);
/* U[0] <= u <= U[m] (6). */
KW_API int16_t E_parval(const KnotVector *knt, double u, char *name);
/* U[0] < u < U[m] (6): the end parameters are refused. */
KW_API int16_t E_endpar(const KnotVector *knt, double u, char *name);

/* Output storage is large enough: each current count at least the one
   given (9). */
KW_API int16_t E_cursto(const Curve *cur, int32_t n, int32_t m, char *name);
KW_API int16_t E_sursto(const Surface *sur, int32_t n, int32_t m, int32_t r, int32_t s, char *name);
KW_API int16_t E_cfnsto(const CurveFunction *cfn, int32_t n, int32_t m, char *name);
KW_API int16_t E_sfnsto(const SurfaceFunction *sfn, int32_t n, int32_t m, int32_t r, int32_t s,
                        char *name);
KW_API int16_t E_rmasto(const RealMatrix *mat, int32_t n, int32_t m, char *name);
KW_API int16_t E_imasto(const IntegerMatrix *mat, int32_t n, int32_t m, char *name);
KW_API int16_t E_pmasto(const PointMatrix *mat, int32_t n, int32_t m, char *name);
KW_API int16_t E_cmasto(const ControlPointMatrix *mat, int32_t n, int32_t m, char *name);

/* Consecutive control points distinct: at the first i whose difference from
   control point i-1 (four components) is shorter than tol, or not a number,
   writes i to *i and returns 1. Records no error. */
KW_API int16_t E_curcpd(const Curve *cur, double tol, int32_t *i);
/* The same along the rows and then the columns of the net; writes the
   indices of the second point of the pair. */
KW_API int16_t E_surcpd(const Surface *sur, double tol, int32_t *i, int32_t *j);

KW_END_DECLS

#endif

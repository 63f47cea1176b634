/* Knotwork: knot insertion and splitting.

   Both keep the curve's shape exactly: they work on the homogeneous control
   points, so rational curves, 2-D and 3-D, are refined without change. A
   result record is either empty (U_inicur), and then allocated, or large
   enough, and then overwritten (9 otherwise, under the routine's name).
   Failures before the result is sized leave every record untouched. */
#ifndef KNOTWORK_TOOLS_H
#define KNOTWORK_TOOLS_H

#include "types.h"

KW_BEGIN_DECLS

/* Inserts u, strictly inside the knot range, r times into cur's knots and
   writes the refined curve (n + r, p, m + r) to out, sized on stkout. out
   may be cur: then cur gets new storage on stkcur and its old arrays are
   killed there (r = 0 leaves it as it is). 6 for u at or beyond an end, for
   r < 0 or when u would exceed multiplicity p; 1, 3, 4 for a curve whose
   parts do not agree. */
KW_API int16_t N_toocki(Curve *cur, double u, int32_t r, Curve *out, StorageStacks *stkcur,
                        StorageStacks *stkout);
/* Splits cur at u, strictly inside its knot range, into left over
   [U[0], u] and right over [u, U[m]], each with end knots of multiplicity
   p + 1 and sized on stk; they share the point C(u). 6 for u at or beyond
   an end; 14 unless left, right and cur are three different records; 1, 3,
   4 as N_toocki. */
KW_API int16_t N_toocsp(const Curve *cur, double u, Curve *left, Curve *right, StorageStacks *stk);

KW_END_DECLS

#endif

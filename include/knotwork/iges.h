/* Knotwork: IGES files: writers, reader and entity converters.

   An IGES file is read by U_inpigs, which hands the parameters of each
   entity it knows to that entity's converter (N_igs110, N_igs124, N_igs126,
   N_igs128). A converter takes the entity's numeric parameters as an array
   par[0..np]: the fields of its Parameter Data in order, starting after the
   entity type number, empty fields read as 0. It checks what it reads, builds
   its result through the output check (U_curchk, U_surchk, M_rmachk: codes 9,
   15) and records its codes under its own name; the helpers record code 14
   under theirs. A converter that fails has written nothing into its result. */
#ifndef KNOTWORK_IGES_H
#define KNOTWORK_IGES_H

#include "types.h"

KW_BEGIN_DECLS

/* ---- Writers -------------------------------------------------------------

   Each writes one IGES file in fixed 80-column records: two Start records,
   five Global records (among them the last 30 characters of the file name,
   the minimum resolution, and as the greatest coordinate value 1.001 times
   the largest absolute coordinate of the boxes of what is written, curves
   and surfaces by N_curbox and N_surbox), two Directory Entry records per
   entity (for entity i = 0, 1, ...: level 4, colour (i + 2) mod 8, label
   "NURBSURF", subscript i + 1), the Parameter Data and the Terminate record.

   A curve is a 126 entity of 3 + (m div 3 + 1) + (n div 4 + 1) + (n + 1)
   Parameter records: flags planar (1, with the normal (0, 0, 1), for a 2-D
   curve that is not straight within the tolerance; otherwise 0 and
   (0, 0, 0)), closed (U_iscurc), polynomial (1 unless a weight differs
   from 1.0), periodic 0; then the knots, the weights, the Cartesian control
   points (z 0.0 for a 2-D curve) and the range U[0], U[m]. A surface is a
   128 entity, flags closed in u and in v (U_issurc), polynomial, periodic 0
   and 0; weights and control points run with i (along u) fastest. Knots
   and coordinates are written with 12 decimals in 19 columns, so each must
   lie in (-100000, 1000000); weights with 7 decimals (so that a weight
   such as 1/sqrt(2) comes back rounded to 1e-7), or as 1.0 when all are
   1.0.

   Everything is checked before the file is opened, and nothing is written
   unless all is well: objects by E_curinp and E_surinp (codes 1 to 5); 14
   for a null array or object, a count out of range, a tolerance that is
   not positive, or a number too wide for its columns; 15 from N_surbox; 18
   when the file cannot be opened or written. The writer records its codes
   under its own name. */

/* Curves cur[0..k] as 126 entities; tol is the minimum resolution and the
   tolerance of the straightness test. */
KW_API int16_t U_cutigs(Curve *const *cur, int32_t k, double tol, const char *file);
/* Surfaces sur[0..k] as 128 entities; tol is the minimum resolution. */
KW_API int16_t U_sutigs(Surface *const *sur, int32_t k, double tol, const char *file);
/* Lines, curves and surfaces in one file, in that order: the lines from
   lin[2i] to lin[2i+1], i = 0..nl, as 110 entities, the curves cur[0..nc]
   and the surfaces sur[0..ns] as above. A count of -1 leaves its kind out
   (its array may then be NULL); not all three may be -1. */
KW_API int16_t U_lcsigs(const Point *lin, int32_t nl, Curve *const *cur, int32_t nc,
                        Surface *const *sur, int32_t ns, double tol, const char *file);
/* Points P[0..n]: mode 1, each a point entity (116); mode 2, the polyline
   through them as one copious-data entity (106, form 12; n >= 1). The
   minimum resolution is U_tolpoi. */
KW_API int16_t U_p1digs(const Point *P, int32_t n, int16_t mode, const char *file);
/* The control polygon of each curve cur[0..k] as a 126 entity of degree 1
   through its Cartesian control points, on the knots 0, 0, 1, .., n - 1,
   n, n, with the curve's planar and closed flags (straightness within
   U_tolpoi, the minimum resolution). */
KW_API int16_t U_cpligs(Curve *const *cur, int32_t k, const char *file);
/* The control net of each surface sur[0..k] as polylines of the same kind:
   its rows Pw[i][0..m] for i = 0..n, then its columns Pw[0..n][j] for
   j = 0..m; each 3-D, closed when its end points meet. */
KW_API int16_t U_spligs(Surface *const *sur, int32_t k, const char *file);

/* ---- Reader --------------------------------------------------------------

   Reads the IGES file `file` (fixed 80-column records, lines ended by "\n"
   or "\r\n", or none at all): the Start, Global, Directory Entry, Parameter
   Data and Terminate sections, with the parameter and record delimiters
   that the Global section names (default "," and ";"), Hollerith strings,
   and numbers in free format with E or D exponents. Every entity of type
   110 (line) and 126 (rational B-spline curve) becomes a new curve in
   (*cur)[0..*nc], every 128 (rational B-spline surface) a new surface in
   (*sur)[0..*ns], in the order of the Directory; other entity types are
   passed over. A curve or surface whose Directory entry names a
   transformation matrix (124) is transformed by it, and by the matrices
   that matrix names in turn, so that the results are in model space.
   The 124 matrices themselves, as stored, are stacked in mat: matrix k is
   rows 4k..4k+3 of a (4 (*nm + 1)) x 4 matrix, [R T; 0 0 0 1]; mat may be
   NULL when they are not wanted, and is left alone when there are none.
   A count of -1 comes with a NULL array.

   Codes: 18 when the file cannot be read or is not well formed (a record
   of another length, sections out of order, a Terminate record that does
   not count the sections, a malformed field, a Parameter Data record that
   belongs to another entry or starts with another type); 14 when a
   Directory entry points beyond the file, an output is NULL, or a
   transformation chain loops or points to a non-matrix; 9 and 15 from the
   output checks; the converters' codes. Nothing is written to the outputs
   unless the whole file has been read. */
KW_API int16_t U_inpigs(Curve ***cur, int32_t *nc, Surface ***sur, int32_t *ns, RealMatrix *mat,
                        int32_t *nm, const char *file, StorageStacks *stk);

/* ---- Converters ----------------------------------------------------------- */

/* 110 line, par = X1 Y1 Z1 X2 Y2 Z2: the 3-D non-rational degree-1 curve
   from (X1, Y1, Z1) to (X2, Y2, Z2) on the knots 0, 0, 1, 1. Code 14 when
   fewer than six parameters. */
KW_API int16_t N_igs110(const double *par, int32_t np, Curve *cur, StorageStacks *stk);

/* 124 transformation matrix, par = R11 R12 R13 T1 R21 R22 R23 T2 R31 R32 R33
   T3: *mat := the 4 x 4 full matrix [R T; 0 0 0 1]. Code 14 for fewer than
   twelve parameters or one that is not finite; 11 when R is singular (|det R|
   not above U_tolzer times the cube of its largest entry). */
KW_API int16_t N_igs124(const double *par, int32_t np, RealMatrix *mat, StorageStacks *stk);

/* 126 rational B-spline curve, par = K M PROP1 PROP2 PROP3 PROP4, the knots
   T[0..A] with A = K + M + 1, the weights W[0..K], the control points
   X0 Y0 Z0 .. XK YK ZK, the parameter range V0 V1 (then the unit normal,
   not used). The curve has control points 0..K and degree M. Codes 14 (a
   count that is not a whole number, K < M, or too few parameters), 3 (M
   outside 1..U_maxdeg), 4 (N_igsvkb), 5 (a weight not positive and finite,
   or weights whose ratio no common factor brings into [U_minwei,
   U_maxwei]). Weights that all agree give a non-rational curve; otherwise
   they are scaled by a common factor only when needed to fit the weight
   bounds, which leaves the curve unchanged. PROP1 = 1 with every Z equal to
   0.0 gives a 2-D curve. The knots are compacted with N_igscsk. */
KW_API int16_t N_igs126(const double *par, int32_t np, Curve *cur, StorageStacks *stk);

/* 128 rational B-spline surface, par = K1 K2 M1 M2 PROP1 .. PROP5, the u
   knots S[0..A1] (A1 = K1 + M1 + 1), the v knots T[0..A2] (A2 = K2 + M2 + 1),
   the weights W(i, j) and then the control points X Y Z(i, j), each with i
   (in u, 0..K1) running fastest, and the ranges U0 U1 V0 V1. The surface
   has net[i][j], degrees M1, M2, and is 3-D. Codes and weights as for 126. */
KW_API int16_t N_igs128(const double *par, int32_t np, Surface *sur, StorageStacks *stk);

/* ---- Parameter helpers ---------------------------------------------------- */

/* *v := par[i] as a whole number. Code 14 when i is outside 0..np or the
   value is not a whole number in the 32-bit range. */
KW_API int16_t N_igspsn(const double *par, int32_t np, int32_t i, int32_t *v);
/* Whether par[0..np] holds count parameters from index first on. Code 14
   otherwise (or for a negative first or count). */
KW_API int16_t N_igspnc(int32_t np, int32_t first, int32_t count);
/* *A := K + M + 1, the highest knot index of a B-spline entity with control
   points 0..K and degree M. Code 14 when M < 0, K < M (fewer than M + 1
   control points) or the sum overflows. */
KW_API int16_t N_igspnk(int32_t K, int16_t M, int32_t *A);

/* ---- Knots and control points of B-spline entities ---------------------------
   Knots compare within U_tolzer times the largest of 1, |T[0]| and |T[A]|,
   so that the rounding in a file does not break a multiplicity. */

/* Validates knots T[0..A] for degree M with parameter range [v0, v1]: every
   value finite, non-decreasing, end runs of exactly M + 1 equal knots,
   interior runs of at most M, and [v0, v1] the knots' own range (a narrower
   range would need the curve split). Code 4. */
KW_API int16_t N_igsvkb(const double *T, int32_t A, int16_t M, double v0, double v1);
/* Control points Pw[0..K] from weights W[0..K] and Cartesian coordinates
   X[0..3K+2] (x, y, z per point), of a kind: 1 2-D, 2 3-D, 3 2-D rational,
   4 3-D rational (homogeneous: w x, w y, w z, w). A 2-D kind drops z for the
   planar marker; a non-rational one ignores W. Code 13 for another kind,
   14 for a rational kind without weights. */
KW_API int16_t N_igsccp(const double *W, const double *X, int32_t K, int16_t kind,
                        ControlPoint *Pw);
/* The same for a net Pw[0..K1][0..K2] from W and X with i running fastest. */
KW_API int16_t N_igsscp(const double *W, const double *X, int32_t K1, int32_t K2, int16_t kind,
                        ControlPoint **Pw);
/* U[0..A] := T[0..A] with each run of equal knots made exactly equal (to
   its first knot). */
KW_API void N_igscsk(const double *T, int32_t A, double *U);
/* The same for the u knots S[0..A1] into U and the v knots T[0..A2] into V. */
KW_API void N_igsssk(const double *S, int32_t A1, const double *T, int32_t A2, double *U,
                     double *V);

KW_END_DECLS

#endif

/* Knotwork: text files, printers and pictures.

   The text format is line-oriented, one item per line: counts, degrees and
   flags as whole numbers, coordinates and knots as "%18.16f" (16 decimals,
   so a double read back may differ from the one written in its last bits).
   Numbers are written and read in the "C" form whatever locale the host has
   set.

   Curve:   n / p / rational flag (1, 0) / dimension (3, 2), one per line;
            n+1 control points, one per line, with the values that the kind
            keeps, as stored: "x y" (2-D), "x y z" (3-D), "x y w" (2-D
            rational), "x y z w" (3-D rational; homogeneous); then the
            n+p+2 knots, one per line.
   Surface: "n m" / "p q" / rational flag; (n+1)(m+1) control points, rows
            of u first, "x y z" or "x y z w"; the n+p+2 u knots; the m+q+2
            v knots.
   Points:  n; n+1 lines "x y z".
   Grid:    "n m"; (n+1)(m+1) lines "x y z", row 0 first.
   Curves:  k; then k+1 curves.

   Every routine comes in two forms: one that opens a named file and one that
   works on a stream the caller opened (U_outcur / U_outcup, U_outp1d /
   U_outp1s). Writers record their codes under their own names. A file-form
   reader records under its own name what concerns the file (it cannot be
   opened, or holds more than the object, code 18) and the codes of the
   reading itself under the stream form's name ("U_INPCUP" for a curve read
   by U_inpcur).

   Writers check the object first (E_curdef, E_surdef: codes 1, 2, 3; a null
   object or a negative count 14) and write nothing when it fails; 18 when
   the stream reports an error.

   Readers never trust the file. They record 18 for a file that ends early,
   holds something other than a number where one is due, or (file forms)
   holds anything after the object; 13 for a rational flag other than 0 or 1
   or a dimension other than 2 or 3; 14 for a null output, a negative count
   or degree, one whose sums overflow, or one that the rest of the file is
   too short to hold. Every number must be followed by a blank or a line end, as the
   writers leave them. An object is read completely (and checked, when
   asked) before the caller's outputs are touched: on failure they are left
   as they were and nothing is left on stk except what a failed output check
   leaves there. The control points that a kind leaves out get the markers:
   z := KW_PLANAR for a 2-D curve, w := KW_NONRATIONAL for a non-rational
   one. Results go through the output checks (codes 9, 15). */
#ifndef KNOTWORK_IO_H
#define KNOTWORK_IO_H

#include "types.h"

KW_BEGIN_DECLS

/* ---- Writers ------------------------------------------------------------ */

KW_API int16_t U_outcur(const Curve *cur, const char *file);
KW_API int16_t U_outcup(const Curve *cur, FILE *f);
KW_API int16_t U_outsur(const Surface *sur, const char *file);
KW_API int16_t U_outsup(const Surface *sur, FILE *f);
/* Points P[0..n]. */
KW_API int16_t U_outp1d(const Point *P, int32_t n, const char *file);
KW_API int16_t U_outp1s(const Point *P, int32_t n, FILE *f);
/* Points P[0..n][0..m]. */
KW_API int16_t U_outp2d(Point *const *P, int32_t n, int32_t m, const char *file);
KW_API int16_t U_outp2s(Point *const *P, int32_t n, int32_t m, FILE *f);
/* Curves cur[0..k]; all are checked before anything is written. */
KW_API int16_t U_outcua(Curve *const *cur, int32_t k, const char *file);
KW_API int16_t U_outcas(Curve *const *cur, int32_t k, FILE *f);

/* ---- Readers ------------------------------------------------------------
   check 1: the object is validated (E_curinp, E_surinp: their codes) and
   reduced: a rational one whose weights agree becomes non-rational, and a
   curve whose z are all 0.0 becomes 2-D (U_currpr). Any other value reads
   the object as it stands. */

KW_API int16_t U_inpcur(Curve *cur, const char *file, int16_t check, StorageStacks *stk);
KW_API int16_t U_inpcup(Curve *cur, FILE *f, int16_t check, StorageStacks *stk);
KW_API int16_t U_inpsur(Surface *sur, const char *file, int16_t check, StorageStacks *stk);
KW_API int16_t U_inpsup(Surface *sur, FILE *f, int16_t check, StorageStacks *stk);
/* *P := a new array of *n + 1 Points on stk. */
KW_API int16_t U_inpp1d(Point **P, int32_t *n, const char *file, StorageStacks *stk);
KW_API int16_t U_inpp1s(Point **P, int32_t *n, FILE *f, StorageStacks *stk);
/* *P := a new (*n + 1) x (*m + 1) array of Points on stk. */
KW_API int16_t U_inpp2d(Point ***P, int32_t *n, int32_t *m, const char *file, StorageStacks *stk);
KW_API int16_t U_inpp2s(Point ***P, int32_t *n, int32_t *m, FILE *f, StorageStacks *stk);
/* *cur := a new array of *k + 1 new curves on stk. */
KW_API int16_t U_inpcua(Curve ***cur, int32_t *k, const char *file, int16_t check,
                        StorageStacks *stk);
KW_API int16_t U_inpcas(Curve ***cur, int32_t *k, FILE *f, int16_t check, StorageStacks *stk);

/* ---- Reductions ------------------------------------------------------- */

/* True for a rational curve whose greatest and smallest weights differ by
   less than 0.001. */
KW_API int16_t U_arecwe(const Curve *cur);
/* A curve for which U_arecwe holds becomes non-rational (U_cureuc); with
   flag 1, a curve whose z are all 0.0 then also becomes 2-D (U_cur3t2). */
KW_API void U_currpr(Curve *cur, int16_t flag);

/* ---- Console printers --------------------------------------------------
   The layouts of the files on standard output, with two blanks between
   numbers. A knot vector prints as m and its knots; a curve function as n,
   p, the n+1 values and the knots; a surface function as "n m", "p q", the
   values row by row and the two knot vectors. A record that is null or not
   allocated records code 14.

   The library never reads the console: a printer does not wait for a key.
   When the host has installed a pause routine with U_prtpau, each printer
   ends by writing "Hit any key to continue...\n", flushing standard output
   and calling it; without one (the default) it simply returns. */

KW_API int16_t U_prtcur(const Curve *cur);
KW_API int16_t U_prtsur(const Surface *sur);
KW_API int16_t U_prtknt(const KnotVector *knt);
KW_API int16_t U_prtcfn(const CurveFunction *cfn);
KW_API int16_t U_prtsfn(const SurfaceFunction *sfn);
/* Installs the routine the printers call to pause; NULL removes it. */
KW_API void U_prtpau(void (*pause)(void));

/* ---- Pictures ------------------------------------------------------------
   SVG pictures of curves and surfaces, to look at them: a white page 800
   pixels wide and at most 800 high, what is drawn fitted into it with a
   margin of 20 pixels (curves by the boxes of their projections, N_curbox),
   and no legend. view: 1 the xy plane (x to the right, y up), 2 the xz plane,
   3 the yz plane, 4 the isometric view with z up (x towards the lower
   left, y towards the lower right). Each object gets a colour of its own,
   in turn from a palette of eight. A polynomial curve of degree 3 or less
   is drawn as its Bezier pieces, which the projection keeps; other curves
   as polylines within 0.1 pixel of the curve. With poly 1 the control
   polygons or nets come too, as thin dashed grey lines with a dot at every
   control point; with poly 0 only the geometry.

   Codes: the codes of E_curinp and E_surinp for an object that fails them;
   14 for a null array or object, a negative count, or a view, poly or div
   out of range; 18 when the file cannot be opened or written; 15 under the
   allocator's name (U_sursvg). Objects and arguments are checked before the
   file is opened. */

/* The curves cur[0..k]. Allocates nothing. */
KW_API int16_t U_cursvg(Curve *const *cur, int32_t k, int16_t view, int16_t poly, const char *file);
/* The surfaces sur[0..k] by their isoparametric curves in both directions:
   at every distinct knot, and div - 1 more evenly between each two (div at
   least 1). Scratch on a private context. */
KW_API int16_t U_sursvg(Surface *const *sur, int32_t k, int16_t view, int16_t poly, int32_t div,
                        const char *file);

KW_END_DECLS

#endif

/* Knotwork: elementary geometry: vectors, lines, planes, boxes, transforms and fits.

   Vectors are Points (three doubles) passed by value; results go through the
   last pointer. Routines whose names end in "p" (G_vecdop, G_vecmap,
   G_veccrp, G_vecscp, G_vecrvp, G_vecnip) take their vectors by address.
   Routines that can fail return 0, or 1 after recording a code under their
   own name, leaving their outputs untouched:
     11  parallel, coincident or otherwise singular input,
     14  an invalid count or argument,
     17  a zero vector where a direction is needed.
   Parallelism is judged by the sine of the angle against U_tolzer; points
   closer than U_tolpoi coincide. A few routines also return 2, documented
   where they do. No routine allocates except those given a storage context
   and the fits, which work on a private one. */
#ifndef KNOTWORK_GEOM_H
#define KNOTWORK_GEOM_H

#include "types.h"

KW_BEGIN_DECLS

/* ---- Records -------------------------------------------------------------- */

/* The points point + t direction. The flag says which t belong to the line:
   every t (KW_LINE_INFINITE), t >= 0 (KW_LINE_RAY) or 0 <= t <= 1
   (KW_LINE_SEGMENT, from point to point + direction). Any other flag reads
   as KW_LINE_INFINITE. Distances, projections, intersections and boxes of a
   line honour its extent. */
typedef struct Line {
    Point point;
    Point direction;
    int16_t flag;
} Line;

enum {
    KW_LINE_INFINITE = 0,
    KW_LINE_RAY = 1,
    KW_LINE_SEGMENT = 2
};

typedef struct Plane {
    Point point;
    Point normal;
} Plane;

typedef struct Box {
    double xmin, xmax, ymin, ymax, zmin, zmax;
} Box;

typedef struct Interval {
    double a, b;
} Interval;

/* The u interval (a, b), then the v interval (c, d). */
typedef struct Rectangle {
    double a, b, c, d;
} Rectangle;

typedef struct PointPolyline {
    int32_t n; /* highest index */
    Point *P;  /* n+1 points */
} PointPolyline;

typedef struct PointNet {
    int32_t n, m; /* highest indices */
    Point **P;    /* (n+1) x (m+1) points, P[i][j] */
} PointNet;

/* ---- Constructors and accessors (no checks) ------------------------------ */

KW_API void G_makln2(Line *line, Point P, Point V, int16_t flag);
/* The line through P with direction Q - P (with KW_LINE_SEGMENT: from P to Q). */
KW_API void G_makln1(Line *line, Point P, Point Q, int16_t flag);
KW_API void G_linbre(const Line *line, Point *P, Point *V, int16_t *flag);
KW_API void G_lindir(const Line *line, Point *V);
KW_API void G_linsfl(Line *line, int16_t flag);
KW_API void G_makpln(Plane *pln, Point P, Point N);
KW_API void G_plnbre(const Plane *pln, Point *P, Point *N);
KW_API void G_plnnor(const Plane *pln, Point *N);
KW_API void G_boxdef(Box *box, double xmin, double xmax, double ymin, double ymax, double zmin,
                     double zmax);
KW_API void G_boxbre(const Box *box, double *xmin, double *xmax, double *ymin, double *ymax,
                     double *zmin, double *zmax);
KW_API void G_makitv(Interval *itv, double a, double b);
KW_API void G_itvbre(const Interval *itv, double *a, double *b);
KW_API void G_makrct(Rectangle *rct, double a, double b, double c, double d);
KW_API void G_rctbre(const Rectangle *rct, double *a, double *b, double *c, double *d);
KW_API void G_rctitv(const Rectangle *rct, Interval *u, Interval *v);
KW_API void G_makppl(PointPolyline *ppl, int32_t n, Point *P);
KW_API void G_pplbre(const PointPolyline *ppl, int32_t *n, Point **P);
KW_API void G_makntl(PointNet *net, int32_t n, int32_t m, Point **P);
KW_API void G_ntlbre(const PointNet *net, int32_t *n, int32_t *m, Point ***P);
KW_API void G_defppl(PointPolyline *ppl, int32_t n);

/* ---- Vectors --------------------------------------------------------------- */

KW_API void G_vecmak(double x, double y, double z, Point *V);
KW_API void G_veccop(Point V, Point *W);
/* U + V */
KW_API void G_vecsum(Point U, Point V, Point *R);
/* U - V */
KW_API void G_vecdif(Point U, Point V, Point *R);
/* Q - P: the direction from P to Q (the reverse operand order of G_vecdif). */
KW_API void G_vecdir(Point P, Point Q, Point *R);
/* Cartesian point of A minus Cartesian point of B. */
KW_API void G_vecdcp(ControlPoint A, ControlPoint B, Point *R);
/* s V: the factor comes last (A_scapoi takes it first). */
KW_API void G_vecsca(Point V, double s, Point *R);
KW_API void G_vecscp(const Point *V, double s, Point *R);
/* a U + b V */
KW_API void G_veccmb(double a, Point U, double b, Point V, Point *R);
/* P + t V */
KW_API void G_vecpfv(Point P, double t, Point V, Point *R);
/* -V */
KW_API void G_vecrev(Point V, Point *R);
/* V := -V */
KW_API void G_vecrvp(Point *V);
/* V := -V when U . V < 0. */
KW_API void G_vecrwp(Point U, Point *V);
/* R := V, or -V when U . V < 0: V turned to U's side. */
KW_API void G_vecrwv(Point U, Point V, Point *R);
KW_API void G_vecdot(Point U, Point V, double *d);
KW_API void G_vecdop(const Point *U, const Point *V, double *d);
/* U x V */
KW_API void G_veccro(Point U, Point V, Point *R);
KW_API void G_veccrp(const Point *U, const Point *V, Point *R);
/* (U x V) . W */
KW_API void G_vecmix(Point U, Point V, Point W, double *d);
KW_API void G_vecmag(Point V, double *d);
KW_API void G_vecmap(const Point *V, double *d);
/* U := V / |V| and r := |V|; 17 when 1 / |V| fails the overflow guard
   (M_chkfop), U and r untouched. */
KW_API int16_t G_vecnor(Point V, Point *U, double *r);
/* V := V / |V| in place; 17 as G_vecnor, V untouched. */
KW_API int16_t G_vecnip(Point *V);
/* The cosine of the angle between U and V, clamped to [-1, 1] exactly;
   17 when the division fails the overflow guard. */
KW_API int16_t G_veccos(Point U, Point V, double *c);
/* The angle between U and V in degrees, 0..180; 17 for a zero vector. */
KW_API int16_t G_vecang(Point U, Point V, double *deg);
/* The angle turning U to V counter-clockwise about the axis N, in degrees,
   0 <= deg < 360; 17 for a zero vector. */
KW_API int16_t G_vecdan(Point U, Point V, Point N, double *deg);
/* The perpendicular (-y, x, 0) of the planar vector (x, y). */
KW_API void G_vecper(double x, double y, Point *V);
/* 1 when U . V >= 0 (the vectors point the same way). */
KW_API int16_t G_arevps(Point U, Point V);
/* 1 when all three coordinates are exactly equal. */
KW_API int16_t G_arepos(Point P, Point Q);

/* ---- Distances and measures ------------------------------------------------ */

KW_API void G_dispop(Point P, Point Q, double *d);
KW_API void G_disqpp(Point P, Point Q, double *d);
/* Distance and squared distance in x and y only. */
KW_API void G_dispp2(Point P, Point Q, double *d);
KW_API void G_disqp2(Point P, Point Q, double *d);
/* Distance between the Cartesian points of A and B. */
KW_API void G_discpp(ControlPoint A, ControlPoint B, double *d);
/* Distance between the Cartesian point of Pw and P. */
KW_API void G_discpo(ControlPoint Pw, Point P, double *d);
/* Length of A - B as a four-component vector with the marker rules
   (A_magcpt of the difference): weights count, markers do not. */
KW_API void G_discpw(ControlPoint A, ControlPoint B, double *d);
/* a x + b y + c z + d: the signed distance when (a, b, c) is a unit vector. */
KW_API void G_dispnp(double a, double b, double c, double d, Point P, double *s);
/* a x + b y + c for the planar line a x + b y + c = 0. */
KW_API void G_dispnl(double a, double b, double c, Point P, double *s);
/* Distance from P to the segment AB (to A when A = B). */
KW_API void G_dispab(Point P, Point A, Point B, double *d);
KW_API void G_disqab(Point P, Point A, Point B, double *d);
/* Distance from P to the line's points (its extent honoured); 17 for a zero
   direction. */
KW_API int16_t G_displn(Point P, const Line *line, double *d);
/* Signed distance from P to the plane, positive on the normal's side; 17 for
   a zero normal. */
KW_API int16_t G_disppl(Point P, const Plane *pln, double *d);
/* Distance from P to the circle with centre C, axis N and radius r; 17 for a
   zero axis, 14 for r < 0. */
KW_API int16_t G_dispca(Point P, Point C, Point N, double r, double *d);
/* Distance between the line's points (its extent honoured) and the sphere of
   centre C and radius r; for a line in the plane of a circle, the distance
   to the circle. 0 when they meet; 17 for a zero direction, 14 for r < 0. */
KW_API int16_t G_dislci(const Line *line, Point C, double r, double *d);
/* Length of the polyline through points 0..n. */
KW_API void G_dispol(const PointPolyline *ppl, double *len);
/* Length of a control polygon between its Cartesian points. */
KW_API void G_discpl(const ControlPolygon *pol, double *len);

/* ---- Boxes ----------------------------------------------------------------- */

/* 0.5 (min corner) + 0.5 (max corner). */
KW_API void G_boxcen(const Box *box, Point *C);
/* Distance between the min and max corners. */
KW_API void G_boxdia(const Box *box, double *d);
/* xmax - xmin, ymax - ymin, zmax - zmin. */
KW_API void G_boxdim(const Box *box, double *dx, double *dy, double *dz);
/* 1 when the boxes overlap in x and y (z ignored); touching counts. */
KW_API int16_t G_bx2ovl(const Box *A, const Box *B);
/* The Box of a polyline's or net's points. */
KW_API void G_po1box(const PointPolyline *ppl, Box *box);
KW_API void G_po2box(const PointNet *net, Box *box);
/* The diagonal of that Box: the extent of the point set. */
KW_API void G_po1ext(const PointPolyline *ppl, double *d);
KW_API void G_po2ext(const PointNet *net, double *d);
/* The Box of a control polygon's or net's Cartesian points. */
KW_API void G_polbox(const ControlPolygon *pol, Box *box);
KW_API void G_netbox(const ControlNet *net, Box *box);
/* The Box of the line's points: a ray or an infinite line reaches -DBL_MAX or
   DBL_MAX in every coordinate along which its direction is not zero. */
KW_API void G_linbox(const Line *line, Box *box);

/* ---- Side tests (deliberately asymmetric) ---------------------------------- */

/* With c := direction x (P - point): 1 when c.z >= 0, else 2. A point on the
   line gets 1. */
KW_API int16_t G_lipost(const Line *line, Point P);
/* With d := P - point: 2 when normal . d >= 0, else 1. A point on the plane
   gets 2. */
KW_API int16_t G_plpost(const Plane *pln, Point P);

/* ---- Planar transforms of Point arrays --------------------------------------
   Points 0..n of P into Q (which may be P); every z of Q becomes 0.0. */

/* x + dx, y + dy */
KW_API void G_tratr2(const Point *P, int32_t n, double dx, double dy, Point *Q);
/* Scaling by sx, sy about (cx, cy). */
KW_API void G_trasc2(const Point *P, int32_t n, double cx, double cy, double sx, double sy,
                     Point *Q);
/* x + a y, y + b x */
KW_API void G_trash2(const Point *P, int32_t n, double a, double b, Point *Q);
/* Rotation about (cx, cy) by angle degrees, counter-clockwise. */
KW_API void G_traro2(const Point *P, int32_t n, double cx, double cy, double angle, Point *Q);

/* ---- Spatial transforms -------------------------------------------------------
   A transform is a 4 x 4 full RealMatrix applied as A_trapoi does. The
   builders pass T through M_rmachk first (an empty record is allocated on
   stk, an existing one must hold 4 x 4: code 9). */

/* The translation taking P to Q. */
KW_API int16_t G_tratrl(Point P, Point Q, RealMatrix *T, StorageStacks *stk);
/* The planar motion taking A to B and the unit direction a to b; row 2 is
   zero, so every image lies in z = 0. */
KW_API int16_t G_travec(Point A, Point a, Point B, Point b, RealMatrix *T, StorageStacks *stk);
/* The rotation by angle degrees about the axis through C along n
   (right-handed); 17 (recorded by G_vecnip) for a zero axis. */
KW_API int16_t G_tragnr(Point C, Point n, double angle, RealMatrix *T, StorageStacks *stk);
/* The rigid motion into the frame with origin O, x axis along X and y axis
   in the half-plane of X and Y: images are the frame's coordinates. 17 for
   a zero X, 11 when Y is parallel to X. */
KW_API int16_t G_traort(Point O, Point X, Point Y, RealMatrix *T, StorageStacks *stk);
/* Q := T applied to points 0..n of P (Q may be P). 7 unless T is 4 x 4,
   14 unless it is full, 11 when a point's divisor fails the overflow
   guard; Q untouched on failure. */
KW_API int16_t G_traxyz(const Point *P, int32_t n, const RealMatrix *T, Point *Q);
/* Deforms P along a coordinate axis (1 x, 2 y, 3 z): f := the function's
   value at that coordinate of P; of the other two coordinates, taken in
   cyclic order (y, z for x), mode 1 scales the first by factor f, mode 2
   the second, mode 3 both; mode 4 turns them about the axis by
   3.141592653589793 factor f radians. 13 for another axis or mode, 3 or 1
   for a function of bad degree or counts, 6 when the coordinate lies
   outside the function's knot range. */
KW_API int16_t G_traaxl(Point P, const CurveFunction *cfn, int16_t axis, int16_t mode,
                        double factor, Point *Q);

/* ---- Intersections ------------------------------------------------------------ */

/* The nearest points L1(s) and L2(t) of the two lines; X := L1(s). 0 when
   they meet (closer than U_tolpoi) within both extents, 2 when they miss
   (skew, or meeting outside an extent); 11 for parallel lines, 17 for a zero
   direction. */
KW_API int16_t G_intlnl(const Line *L1, const Line *L2, Point *X, double *s, double *t);
/* X := line(t) on the plane: 0 within the line's extent, 2 outside it; 11
   when the line is parallel to the plane, 17 for a zero direction or
   normal. */
KW_API int16_t G_intlnp(const Line *line, const Plane *pln, Point *X, double *t);
/* The infinite line where two planes meet, its point nearest A's point and
   its direction A.normal x B.normal, normalised. 11 for parallel planes, 17
   for a zero normal. */
KW_API int16_t G_intplp(const Plane *A, const Plane *B, Line *line);
/* The points where the legs of a control polygon (Cartesian points) meet
   the plane, in polygon order: a vertex on the plane (within U_tolpoi) once,
   a leg crossing it at the crossing. X must hold n+1 Points; *k := highest
   index written (-1 for none). 17 for a zero normal. */
KW_API int16_t G_intcpl(const ControlPolygon *pol, const Plane *pln, Point *X, int32_t *k);
/* Segments AB and CD in the xy plane: X := A + s (B - A) = C + t (D - C),
   z = 0.0. 0 when 0 <= s, t <= 1, 2 when the carrier lines meet outside;
   11 for parallel segments, 17 for a segment of zero length. */
KW_API int16_t G_intlsg(Point A, Point B, Point C, Point D, Point *X, double *s, double *t);
/* The line meets the sphere of centre C and radius r (for a line in a
   circle's plane: the circle) in *k points, 0, 1 (touching) or 2, written to
   X0 and X1 in the order of the line's parameter; points outside the
   line's extent are left out. 17 for a zero direction, 14 for r < 0. */
KW_API int16_t G_isntlc(const Line *line, Point C, double r, int16_t *k, Point *X0, Point *X1);
/* 1 when two closed polygons (last point joined to the first) overlap in
   the xy plane: their edges meet or one lies inside the other. */
KW_API int16_t G_ispgpg(const PointPolyline *A, const PointPolyline *B);
/* 1 when the polygon's points lie on both sides of the plane or one lies on
   it (within U_tolpoi); 0 for a zero normal. */
KW_API int16_t G_ispgpl(const PointPolyline *A, const Plane *pln);
/* 1 when P lies inside the closed polygon in the xy plane or within
   U_tolpoi of its boundary. */
KW_API int16_t G_ispppl(Point P, const PointPolyline *A);
/* 1 when the segments AB and CD meet in the xy plane, touching included. */
KW_API int16_t G_dolsin(Point A, Point B, Point C, Point D);

/* ---- Projections -------------------------------------------------------------- */

/* Points 0..n of P projected onto the plane into Q (which may be P); 17 for
   a zero normal, Q untouched. */
KW_API int16_t G_prjpab(const Point *P, int32_t n, const Plane *pln, Point *Q);
/* P projected onto the plane a x + b y + c z + d = 0; 17 when (a, b, c) is
   zero. */
KW_API int16_t G_prjphp(Point P, double a, double b, double c, double d, Point *Q);
/* The point line(t) of the line's points nearest P (t clamped to the
   extent); 17 for a zero direction. */
KW_API int16_t G_prjpln(Point P, const Line *line, Point *Q, double *t);
/* P projected onto the plane; 17 for a zero normal. */
KW_API int16_t G_prjppl(Point P, const Plane *pln, Point *Q);
/* The point Q of the polyline nearest P, on leg i (from point i to i+1) at
   parameter t in [0, 1]; the first of equally near legs wins. A single
   point gives i = 0, t = 0. */
KW_API void G_polppr(Point P, const PointPolyline *ppl, Point *Q, int32_t *i, double *t);

/* ---- Fits and circles ------------------------------------------------------------
   The fits return the mean and greatest distance of the points from the
   result. */

/* The line through the centroid C along the mean of the offsets turned to
   the farthest point's side; 11 when n = -1, 14 when n < -1, 17 (recorded
   by G_vecnip) when the points coincide. */
KW_API int16_t G_lsqdln(const Point *P, int32_t n, Point *C, Point *V, double *mean, double *max);
/* The plane through the centroid C whose normal N is the scatter matrix's
   eigenvector of least eigenvalue; 11 when n = -1, 14 when n < -1, and the
   matrix routines' codes. */
KW_API int16_t G_lsqdpl(const Point *P, int32_t n, Point *C, Point *N, double *mean, double *max);
/* The orthogonal regression line of the points in the xy plane (z = 0.0,
   an infinite line with unit direction); 14 when n < 1, 17 when the points
   coincide. */
KW_API int16_t G_lsqln2(const Point *P, int32_t n, Line *line, double *mean, double *max);
/* The orthogonal regression line in space: the scatter matrix's axis of
   greatest eigenvalue through the centroid; 14 when n < 1, 17 when the
   points coincide, and the matrix routines' codes. */
KW_API int16_t G_lsqln3(const Point *P, int32_t n, Line *line, double *mean, double *max);
/* The least-squares plane of control points 0..n, taken as Cartesian
   points (unit normal); 14 when n < 2, and G_lsqdpl's codes. */
KW_API int16_t G_lsqpln(const ControlPoint *Pw, int32_t n, Plane *pln, double *mean,
                        double *max);
/* The plane that minimises the greatest distance of the points (the mid
   plane of their narrowest slab): reweighted least squares picks out the
   support points, among which the slab touching their hull face to vertex
   or edge to edge is sought, until the weighted lower bound is within
   U_tolpoi of it or three searches running find nothing narrower. 14 when
   n < 2, 12 when neither happens within 1000 sweeps. */
KW_API int16_t G_mxapln(const Point *P, int32_t n, Plane *pln, double *max);
/* The least-squares circle in space: centre C, unit axis N, radius r, in
   the least-squares plane. The circle through the points at either end of
   the best-fit line (G_lsqdln) and the point farthest from their chord
   seeds Gauss-Newton steps, which end with the last iterate, the error
   state cleared, when a step's system is singular. 14 when n < 2, 11 when
   the points are collinear. */
KW_API int16_t G_lsqcir(const Point *P, int32_t n, Point *C, Point *N, double *r, double *mean,
                        double *max);
/* The least-squares sphere: centre C and radius r, refined from the
   algebraic fit by Gauss-Newton steps as G_lsqcir; 14 when n < 3, 11 when
   the points are coplanar. */
KW_API int16_t G_lsqsph(const Point *P, int32_t n, Point *C, double *r, double *mean,
                        double *max);
/* The circle through A, B and C: centre M, unit axis N (along
   (B - A) x (C - A)) and radius r; 11 when the points are collinear. */
KW_API int16_t G_circer(Point A, Point B, Point C, Point *M, Point *N, double *r);
/* The sphere through A, B, C and D: centre M and radius r; 11 when the
   points are coplanar. */
KW_API int16_t G_sphcer(Point A, Point B, Point C, Point D, Point *M, double *r);
/* The circle of curvature at P of a curve with first and second
   derivatives D1 and D2: centre M, unit axis N (along D1 x D2), radius r;
   17 for a zero D1, 11 where the curvature is zero. */
KW_API int16_t G_cirder(Point P, Point D1, Point D2, Point *M, Point *N, double *r);

/* ---- Areas ---------------------------------------------------------------------- */

/* Area of the triangle ABC. */
KW_API void G_aretrl(Point A, Point B, Point C, double *area);
/* Signed area of the closed polygon through (x[i], y[i]), i = 0..n,
   positive when counter-clockwise. */
KW_API void G_pyarea(const double *x, const double *y, int32_t n, double *area);
/* The same for a closed PointPolyline in the xy plane. */
KW_API void G_araspl(const PointPolyline *ppl, double *area);
/* A closed polygon in space: its vector area S (half the sum of P[i] x
   P[i+1]; normal to a planar polygon, right-handed with its order) and the
   area |S|. */
KW_API void G_araspt(const Point *P, int32_t n, Point *S, double *area);
/* The area |S| of a control polygon's Cartesian points as G_araspt. */
KW_API void G_arecpl(const ControlPolygon *pol, double *area);

/* ---- Implicit forms -------------------------------------------------------------- */

/* The infinite planar line a x + b y + c = 0: its point nearest the origin
   and the unit direction (b, -a, 0), which has the positive side on its
   left; 11 when a = b = 0. */
KW_API int16_t G_impln2(double a, double b, double c, Line *line);
/* The plane a x + b y + c z + d = 0: its point nearest the origin and the
   unit normal (a, b, c) / |(a, b, c)|; 11 when a = b = c = 0. */
KW_API int16_t G_imppln(double a, double b, double c, double d, Plane *pln);
/* The implicit form of the line's carrier in the xy plane, (a, b) a unit
   vector to the left of the direction; 17 when the direction has no xy
   part. */
KW_API int16_t G_ln2imp(const Line *line, double *a, double *b, double *c);
/* The implicit form of the plane with (a, b, c) the unit normal; 17 for a
   zero normal. */
KW_API int16_t G_plnimp(const Plane *pln, double *a, double *b, double *c, double *d);

/* ---- Polygons and point sets ------------------------------------------------------ */

/* The longest leg of a control polygon between Cartesian points (0 for one
   point). */
KW_API void G_polleg(const ControlPolygon *pol, double *lmax);
/* The longest leg of a control net in u (Pw[i][j] to Pw[i+1][j]) and in v
   (Pw[i][j] to Pw[i][j+1]). */
KW_API void G_netleg(const ControlNet *net, double *lu, double *lv);
/* The open polyline 0..n of the xy plane offset by d to the left of its
   legs into Q (z = 0.0), inner corners where the offset legs meet. 14 when
   n < 1, 17 for a leg of zero length, 11 where a leg turns back on the
   previous one; Q untouched. */
KW_API int16_t G_poloff(const Point *P, int32_t n, double d, Point *Q);
/* The plane of a control polygon's Cartesian points: their centroid and the
   unit normal of the polygon's vector area (Newell's normal); 17 when that
   normal is zero (collinear points). */
KW_API int16_t G_polpln(const ControlPolygon *pol, Plane *pln);
/* Q := points 0..n of P with every point closer than tol to the last
   one kept left out (Q may be P); *k := highest index kept. */
KW_API void G_poicln(const Point *P, int32_t n, double tol, Point *Q, int32_t *k);
/* Sorts points 0..n in place by their position along V (P . V), ties by x,
   then y, then z. */
KW_API void G_poiord(Point *P, int32_t n, Point V);
/* 1 when (P.x, P.y) lies in the closed rectangle [a, b] x [c, d]. */
KW_API int16_t G_poirct(Point P, const Rectangle *rct);
/* The control point mirrored in the plane (weight kept; a 2-D one keeps its
   marker, its z read as 0.0); 17 for a zero normal. */
KW_API int16_t G_reflcp(ControlPoint Pw, const Plane *pln, ControlPoint *Q);
/* Barycentric weights: P (projected onto the triangle's plane) = a A + b B
   + c C with a + b + c = 1; 11 for a degenerate triangle. */
KW_API int16_t G_gweabc(Point P, Point A, Point B, Point C, double *a, double *b, double *c);
/* 1 when the first and last points are closer than U_tolpoi. */
KW_API int16_t G_ispplc(const PointPolyline *ppl);

/* ---- Shape predicates of curves, surfaces and point arrays ------------------------
   Nonzero for true; built on the fits above, applied to Cartesian control
   points (the convex hull keeps a curve or surface within tol of a line or
   plane that its control points are within tol of). Scratch comes from a
   private context: should it be refused, the answer is 0 with code 15
   recorded. */

/* Every control point within tol of one straight line; a curve whose
   control points lie within tol of one point is not a line. */
KW_API int16_t U_iscurl(const Curve *cur, double tol);
/* Every control point within tol of one plane, which needs n >= 2 and a
   curve neither point-like (U_iscurp) nor straight (U_iscurl): then the
   plane's unit normal goes to N (untouched otherwise). */
KW_API int16_t U_iscurf(const Curve *cur, double tol, Point *N);
/* The same for a surface's net: planar within tol, neither point-like nor
   straight, with the unit normal to N. */
KW_API int16_t U_issurf(const Surface *sur, double tol, Point *N);
/* Every control point within tol of the net's least-squares plane; a net
   that collapses to a line or a point is flat too. */
KW_API int16_t U_issflt(const Surface *sur, double tol);
/* Points 0..n within tol of one line (n >= 1, not all within tol of one
   point). */
KW_API int16_t U_isp1li(const Point *P, int32_t n, double tol);
/* Within tol of one plane (n >= 2, not all within tol of one line). */
KW_API int16_t U_isp1pl(const Point *P, int32_t n, double tol);
/* Within tol of one circle (n >= 2, not all within tol of one line). */
KW_API int16_t U_isp1ci(const Point *P, int32_t n, double tol);
/* Within tol of one sphere (n >= 3, not all within tol of one plane). */
KW_API int16_t U_isp1sp(const Point *P, int32_t n, double tol);

KW_END_DECLS

#endif

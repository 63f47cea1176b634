/* Knotwork: arithmetic on Points and ControlPoints.

   Operands by value, the result through the last pointer. Nothing fails,
   allocates or records an error. The two markers are carried, never
   computed with:
   - a planar z (KW_PLANAR) stays in a result when the operand, or both
     operands, carry it; when only one of two does, the other's z is taken;
   - a non-rational w (KW_NONRATIONAL) is set in a sum or difference when
     either operand carries it, and kept by a scaling. */
#ifndef KNOTWORK_ARITH_H
#define KNOTWORK_ARITH_H

#include "types.h"

KW_BEGIN_DECLS

/* ---- Construction and access ------------------------------------------ */

KW_API void A_initpo(double x, double y, double z, Point *P);
KW_API void A_initcp(double x, double y, double z, double w, ControlPoint *Pw);
KW_API void A_getpoi(Point P, double *x, double *y, double *z);
KW_API void A_getcpt(ControlPoint Pw, double *x, double *y, double *z, double *w);
KW_API void A_setcpx(double x, ControlPoint *Pw);
KW_API void A_setcpy(double y, ControlPoint *Pw);
KW_API void A_setcpz(double z, ControlPoint *Pw);
KW_API void A_setcpw(double w, ControlPoint *Pw);
/* The four stored values, markers included. */
KW_API void A_extcpc(ControlPoint Pw, double *x, double *y, double *z, double *w);
KW_API void A_extpoc(Point P, double *x, double *y, double *z);
KW_API void A_extwei(ControlPoint Pw, double *w);
KW_API void A_extzco(ControlPoint Pw, double *z);

/* ---- Homogeneous and Cartesian forms ---------------------------------- */

/* Cartesian coordinates: a planar z reads 0.0; divided by w when rational. */
KW_API void A_exteco(ControlPoint Pw, double *x, double *y, double *z);
/* The Cartesian Point of a control point. */
KW_API void A_euclid(ControlPoint Pw, Point *P);
/* The Cartesian form as a non-rational ControlPoint (planar marker kept). */
KW_API void A_euccpt(ControlPoint Pw, ControlPoint *Q);
/* Cartesian x, y, z with weight w -> homogeneous form (a non-rational w
   leaves x, y, z as they are). */
KW_API void A_weight(ControlPoint P, ControlPoint *Pw);
/* The same Cartesian point with a new weight. */
KW_API void A_rewecp(ControlPoint Pw, double w, ControlPoint *Q);
KW_API void A_mapcpt(ControlPoint Pw, Point *P, double *w);
/* x, y, z without division; a planar z reads 0.0. */
KW_API void A_cptpoi(ControlPoint Pw, Point *P);
/* A non-rational ControlPoint with the Point's coordinates. */
KW_API void A_poicpt(Point P, ControlPoint *Pw);

/* ---- Sums, differences, scalings -------------------------------------- */

KW_API void A_sumpoi(Point P, Point Q, Point *R);
KW_API void A_difpoi(Point P, Point Q, Point *R);
KW_API void A_sumcpt(ControlPoint P, ControlPoint Q, ControlPoint *R);
KW_API void A_difcpt(ControlPoint P, ControlPoint Q, ControlPoint *R);
KW_API void A_sumpcp(Point P, ControlPoint Q, ControlPoint *R);
KW_API void A_difpcp(Point P, ControlPoint Q, ControlPoint *R);
KW_API void A_scapoi(double s, Point P, Point *R);
/* s times x and y, z unless planar, w unless non-rational. */
KW_API void A_scacpt(double s, ControlPoint P, ControlPoint *R);
/* The scaling of A_scacpt with a Point result (a planar z reads 0.0). */
KW_API void A_scacpo(double s, ControlPoint P, Point *R);
/* Scales the Cartesian point about centre C by sx, sy, sz (sz ignored for a
   planar point); the weight is kept. */
KW_API void A_sclcpt(double sx, double sy, double sz, Point C, ControlPoint P, ControlPoint *R);

/* ---- Products and magnitudes ------------------------------------------- */

KW_API void A_dotpoi(Point P, Point Q, double *d);
/* x x' + y y' (+ z z' unless either is planar) + the weight term: w w' when
   both are present, the one present weight when only one is, nothing when
   both are absent. */
KW_API void A_dotcpt(ControlPoint P, ControlPoint Q, double *d);
/* The x, y, z dot product (z left out when either is planar) and the
   combined weight: w w', the one weight present, or the marker. */
KW_API void A_dotcpo(ControlPoint P, ControlPoint Q, double *d, double *w);
KW_API void A_magpoi(Point P, double *d);
KW_API void A_magcpt(ControlPoint P, double *d);
/* Cross product of x, y, z (a planar z reads 0.0); the result's w is w w'
   with a single missing weight read as 1.0, or the marker when both miss. */
KW_API void A_crocpo(ControlPoint P, ControlPoint Q, ControlPoint *R);

/* ---- Fixed combinations ----------------------------------------------- */

/* a P + b Q */
KW_API void A_compoi(double a, Point P, double b, Point Q, Point *R);
KW_API void A_comcpt(double a, ControlPoint P, double b, ControlPoint Q, ControlPoint *R);
/* a P + b Q + c R + d S */
KW_API void A_bilpoi(double a, Point P, double b, Point Q, double c, Point R, double d, Point S,
                     Point *T);
KW_API void A_bilcpt(double a, ControlPoint P, double b, ControlPoint Q, double c, ControlPoint R,
                     double d, ControlPoint S, ControlPoint *T);
/* C + a U + b V */
KW_API void A_cirpoi(Point C, double a, Point U, double b, Point V, Point *R);
KW_API void A_circpt(ControlPoint C, double a, ControlPoint U, double b, ControlPoint V,
                     ControlPoint *R);
/* Componentwise A B + C D */
KW_API void A_vcopoi(Point A, Point B, Point C, Point D, Point *R);
KW_API void A_vcocpt(ControlPoint A, ControlPoint B, ControlPoint C, ControlPoint D,
                     ControlPoint *R);
/* P := P + s V */
KW_API void A_updpoi(double s, Point V, Point *P);
KW_API void A_updcpt(double s, ControlPoint V, ControlPoint *P);

/* ---- Transforms --------------------------------------------------------- */

/* Projective transform by the rows R0..R3 of a 4 x 4 full matrix:
   x' = R0.(x,y,z,1) / R3.(x,y,z,1), and so on; the division is always made. */
KW_API void A_trapoi(double x, double y, double z, const RealMatrix *T, Point *P);
/* The same transform of a control point: a rational one is transformed in
   homogeneous form (its weight becomes R3.(wx,wy,wz,w)); a non-rational one
   as a Point; a planar one keeps the marker, its z read as 0.0. */
KW_API void A_tracpt(ControlPoint Pw, const RealMatrix *T, ControlPoint *Q);
/* Translates the Cartesian point by (dx, dy, dz) (dz not for a planar one),
   keeping the weight. */
KW_API void A_trlcpt(ControlPoint Pw, double dx, double dy, double dz, ControlPoint *Q);
/* The first derivative of a rational point C = A / w from the homogeneous
   point Cw = (A, w) and its derivative dCw = (A', w'): (A' - w' C) / w. A
   non-rational Cw gives A'; a planar one z = 0.0. */
KW_API void A_ratder(ControlPoint Cw, ControlPoint dCw, Point *d);

KW_END_DECLS

#endif

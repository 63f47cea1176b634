// The exported point arithmetic, over the inline kernels of arith.hpp.
#include "core/arith.hpp"

#include "knotwork/arith.h"

using namespace kw;

namespace {

// A planar z as the coordinate it stands for.
constexpr double z_or_zero(double z) noexcept { return planar(z) ? 0.0 : z; }

}  // namespace

void A_initpo(double x, double y, double z, Point *P) { *P = Point{x, y, z}; }
void A_initcp(double x, double y, double z, double w, ControlPoint *Pw) {
    *Pw = ControlPoint{x, y, z, w};
}
void A_getpoi(Point P, double *x, double *y, double *z) {
    *x = P.x;
    *y = P.y;
    *z = P.z;
}
void A_getcpt(ControlPoint Pw, double *x, double *y, double *z, double *w) {
    *x = Pw.x;
    *y = Pw.y;
    *z = Pw.z;
    *w = Pw.w;
}
void A_setcpx(double x, ControlPoint *Pw) { Pw->x = x; }
void A_setcpy(double y, ControlPoint *Pw) { Pw->y = y; }
void A_setcpz(double z, ControlPoint *Pw) { Pw->z = z; }
void A_setcpw(double w, ControlPoint *Pw) { Pw->w = w; }
void A_extcpc(ControlPoint Pw, double *x, double *y, double *z, double *w) {
    A_getcpt(Pw, x, y, z, w);
}
void A_extpoc(Point P, double *x, double *y, double *z) { A_getpoi(P, x, y, z); }
void A_extwei(ControlPoint Pw, double *w) { *w = Pw.w; }
void A_extzco(ControlPoint Pw, double *z) { *z = Pw.z; }

void A_exteco(ControlPoint Pw, double *x, double *y, double *z) {
    const Point P = euclid(Pw);
    A_getpoi(P, x, y, z);
}
void A_euclid(ControlPoint Pw, Point *P) { *P = euclid(Pw); }
void A_euccpt(ControlPoint Pw, ControlPoint *Q) { *Q = euclid_cp(Pw); }
void A_weight(ControlPoint P, ControlPoint *Pw) { *Pw = weight(P); }
void A_rewecp(ControlPoint Pw, double w, ControlPoint *Q) {
    const Point P = euclid(Pw);
    *Q = weight(ControlPoint{P.x, P.y, planar(Pw.z) ? kPlanar : P.z, w});
}
void A_mapcpt(ControlPoint Pw, Point *P, double *w) {
    *P = euclid(Pw);
    *w = Pw.w;
}
void A_cptpoi(ControlPoint Pw, Point *P) { *P = Point{Pw.x, Pw.y, z_or_zero(Pw.z)}; }
void A_poicpt(Point P, ControlPoint *Pw) { *Pw = ControlPoint{P.x, P.y, P.z, kNonRational}; }

void A_sumpoi(Point P, Point Q, Point *R) { *R = P + Q; }
void A_difpoi(Point P, Point Q, Point *R) { *R = P - Q; }
void A_sumcpt(ControlPoint P, ControlPoint Q, ControlPoint *R) { *R = sum(P, Q); }
void A_difcpt(ControlPoint P, ControlPoint Q, ControlPoint *R) { *R = difference(P, Q); }
// A Point has no weight: it enters as a non-rational ControlPoint.
void A_sumpcp(Point P, ControlPoint Q, ControlPoint *R) {
    *R = sum(ControlPoint{P.x, P.y, P.z, kNonRational}, Q);
}
void A_difpcp(Point P, ControlPoint Q, ControlPoint *R) {
    *R = difference(ControlPoint{P.x, P.y, P.z, kNonRational}, Q);
}
void A_scapoi(double s, Point P, Point *R) { *R = s * P; }
void A_scacpt(double s, ControlPoint P, ControlPoint *R) { *R = scale(s, P); }
void A_scacpo(double s, ControlPoint P, Point *R) {
    const ControlPoint S = scale(s, P);
    *R = Point{S.x, S.y, z_or_zero(S.z)};
}
void A_sclcpt(double sx, double sy, double sz, Point C, ControlPoint P, ControlPoint *R) {
    const Point E = euclid(P);
    const double z = planar(P.z) ? kPlanar : C.z + sz * (E.z - C.z);
    *R = weight(ControlPoint{C.x + sx * (E.x - C.x), C.y + sy * (E.y - C.y), z, P.w});
}

void A_dotpoi(Point P, Point Q, double *d) { *d = dot(P, Q); }
void A_dotcpt(ControlPoint P, ControlPoint Q, double *d) { *d = dot(P, Q); }
void A_dotcpo(ControlPoint P, ControlPoint Q, double *d, double *w) {
    *d = P.x * Q.x + P.y * Q.y + (planar(P.z) || planar(Q.z) ? 0.0 : P.z * Q.z);
    if (rational(P) && rational(Q)) *w = P.w * Q.w;
    else if (rational(P)) *w = P.w;
    else *w = Q.w;  // Q's weight, or the marker when both lack one
}
void A_magpoi(Point P, double *d) { *d = norm(P); }
void A_magcpt(ControlPoint P, double *d) { *d = magnitude(P); }
void A_crocpo(ControlPoint P, ControlPoint Q, ControlPoint *R) {
    const Point a{P.x, P.y, z_or_zero(P.z)}, b{Q.x, Q.y, z_or_zero(Q.z)};
    double w = kNonRational;
    if (rational(P) || rational(Q)) w = (rational(P) ? P.w : 1.0) * (rational(Q) ? Q.w : 1.0);
    *R = ControlPoint{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x, w};
}

void A_compoi(double a, Point P, double b, Point Q, Point *R) { *R = a * P + b * Q; }
void A_comcpt(double a, ControlPoint P, double b, ControlPoint Q, ControlPoint *R) {
    *R = combine<2>({a, b}, {P, Q});
}
void A_bilpoi(double a, Point P, double b, Point Q, double c, Point R, double d, Point S,
              Point *T) {
    *T = a * P + b * Q + c * R + d * S;
}
void A_bilcpt(double a, ControlPoint P, double b, ControlPoint Q, double c, ControlPoint R,
              double d, ControlPoint S, ControlPoint *T) {
    *T = combine<4>({a, b, c, d}, {P, Q, R, S});
}
void A_cirpoi(Point C, double a, Point U, double b, Point V, Point *R) { *R = C + a * U + b * V; }
void A_circpt(ControlPoint C, double a, ControlPoint U, double b, ControlPoint V,
              ControlPoint *R) {
    *R = combine<3>({1.0, a, b}, {C, U, V});
}
void A_vcopoi(Point A, Point B, Point C, Point D, Point *R) {
    *R = Point{A.x * B.x + C.x * D.x, A.y * B.y + C.y * D.y, A.z * B.z + C.z * D.z};
}
void A_vcocpt(ControlPoint A, ControlPoint B, ControlPoint C, ControlPoint D, ControlPoint *R) {
    // Each product term exists in z (w) only when both its factors do.
    ZSum z;
    WSum w;
    if (!planar(A.z) && !planar(B.z)) z.add(A.z, B.z);
    if (!planar(C.z) && !planar(D.z)) z.add(C.z, D.z);
    if (rational(A) && rational(B)) w.add(A.w, B.w);
    else w.add(1.0, kNonRational);
    if (rational(C) && rational(D)) w.add(C.w, D.w);
    else w.add(1.0, kNonRational);
    *R = ControlPoint{A.x * B.x + C.x * D.x, A.y * B.y + C.y * D.y, z.value(), w.value()};
}
void A_updpoi(double s, Point V, Point *P) { *P = *P + s * V; }
void A_updcpt(double s, ControlPoint V, ControlPoint *P) {
    *P = combine<2>({1.0, s}, {*P, V});
}

void A_trapoi(double x, double y, double z, const RealMatrix *T, Point *P) {
    double *const *R = T->a;
    const double h = 1.0 / (R[3][0] * x + R[3][1] * y + R[3][2] * z + R[3][3]);
    *P = Point{(R[0][0] * x + R[0][1] * y + R[0][2] * z + R[0][3]) * h,
               (R[1][0] * x + R[1][1] * y + R[1][2] * z + R[1][3]) * h,
               (R[2][0] * x + R[2][1] * y + R[2][2] * z + R[2][3]) * h};
}

void A_tracpt(ControlPoint Pw, const RealMatrix *T, ControlPoint *Q) {
    const bool flat = planar(Pw.z);
    if (!rational(Pw)) {
        Point P;
        A_trapoi(Pw.x, Pw.y, z_or_zero(Pw.z), T, &P);
        *Q = ControlPoint{P.x, P.y, flat ? kPlanar : P.z, kNonRational};
        return;
    }
    // Homogeneous coordinates transform linearly; row 3 gives the new weight.
    double *const *R = T->a;
    const double h[4] = {Pw.x, Pw.y, z_or_zero(Pw.z), Pw.w};
    double r[4];
    for (int i = 0; i < 4; ++i) r[i] = R[i][0] * h[0] + R[i][1] * h[1] + R[i][2] * h[2] + R[i][3] * h[3];
    *Q = ControlPoint{r[0], r[1], flat ? kPlanar : r[2], r[3]};
}

void A_trlcpt(ControlPoint Pw, double dx, double dy, double dz, ControlPoint *Q) {
    const Point E = euclid(Pw);
    const double z = planar(Pw.z) ? kPlanar : E.z + dz;
    *Q = weight(ControlPoint{E.x + dx, E.y + dy, z, Pw.w});
}

void A_ratder(ControlPoint Cw, ControlPoint dCw, Point *d) {
    const double dz = z_or_zero(dCw.z);
    if (!rational(Cw)) {
        *d = Point{dCw.x, dCw.y, dz};
        return;
    }
    const Point C = euclid(Cw);
    const double w = Cw.w, dw = dCw.w;
    *d = Point{(dCw.x - dw * C.x) / w, (dCw.y - dw * C.y) / w, (dz - dw * C.z) / w};
}

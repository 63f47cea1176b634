// Planar transforms of Point arrays, transformation matrices and the axial
// deformation driven by a scalar function.
#include <cmath>

#include "geom/geom.hpp"
#include "knotwork/arith.h"
#include "knotwork/errors.h"
#include "knotwork/eval.h"

using namespace kw;

namespace {

// Q[i] := (f(x, y), 0.0) for points 0..n; Q may be P.
template <class F>
void planar_map(const Point *P, int32_t n, Point *Q, F f) noexcept {
    for (int32_t i = 0; i <= n; ++i) {
        const Point X = P[i];
        Q[i] = f(X.x, X.y);
    }
}

// Rows 0..3 into a 4 x 4 matrix that has passed the output check.
int16_t matrix4(RealMatrix *T, const double (&rows)[4][4]) noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) T->a[i][j] = rows[i][j];
    return 0;
}
int16_t check4(RealMatrix *T, char *name, StorageStacks *stk) noexcept {
    return M_rmachk(T, 3, 3, KW_FULL, 4, name, stk);
}

double &coordinate(Point &P, int k) noexcept { return k == 0 ? P.x : k == 1 ? P.y : P.z; }

}  // namespace

// ---- Planar transforms ---------------------------------------------------------

void G_tratr2(const Point *P, int32_t n, double dx, double dy, Point *Q) {
    planar_map(P, n, Q, [=](double x, double y) { return Point{x + dx, y + dy, 0.0}; });
}

void G_trasc2(const Point *P, int32_t n, double cx, double cy, double sx, double sy, Point *Q) {
    planar_map(P, n, Q, [=](double x, double y) {
        return Point{sx * x + (1.0 - sx) * cx, sy * y + (1.0 - sy) * cy, 0.0};
    });
}

void G_trash2(const Point *P, int32_t n, double a, double b, Point *Q) {
    planar_map(P, n, Q, [=](double x, double y) { return Point{x + a * y, y + b * x, 0.0}; });
}

void G_traro2(const Point *P, int32_t n, double cx, double cy, double angle, Point *Q) {
    const double t = angle * 3.141592653589793 / 180.0;
    const double c = std::cos(t), s = std::sin(t);
    planar_map(P, n, Q, [=](double x, double y) {
        return Point{c * x - s * y + (1.0 - c) * cx + s * cy,
                     s * x + c * y + (1.0 - c) * cy - s * cx, 0.0};
    });
}

// ---- Transformation matrices ------------------------------------------------------

int16_t G_tratrl(Point P, Point Q, RealMatrix *T, StorageStacks *stk) {
    static char name[] = "G_TRATRL";
    if (check4(T, name, stk)) return 1;
    return matrix4(T, {{1.0, 0.0, 0.0, Q.x - P.x},
                       {0.0, 1.0, 0.0, Q.y - P.y},
                       {0.0, 0.0, 1.0, Q.z - P.z},
                       {0.0, 0.0, 0.0, 1.0}});
}

int16_t G_travec(Point A, Point a, Point B, Point b, RealMatrix *T, StorageStacks *stk) {
    static char name[] = "G_TRAVEC";
    if (check4(T, name, stk)) return 1;
    const double c = a.x * b.x + a.y * b.y;
    const double s = a.y * b.x - a.x * b.y;
    const double tx = -c * A.x - s * A.y + B.x;
    const double ty = s * A.x - c * A.y + B.y;
    // Row 2 stays zero: the motion flattens every point into z = 0.
    return matrix4(T, {{c, s, 0.0, tx}, {-s, c, 0.0, ty}, {0.0, 0.0, 0.0, 0.0}, {0.0, 0.0, 0.0, 1.0}});
}

int16_t G_tragnr(Point C, Point n, double angle, RealMatrix *T, StorageStacks *stk) {
    static char name[] = "G_TRAGNR";
    if (check4(T, name, stk)) return 1;
    if (G_vecnip(&n)) return 1;
    const double t = angle / 180.0 * 3.141592653589793;
    const double c = std::cos(t), s = std::sin(t), k = 1.0 - c;
    const double R[3][3] = {
        {n.x * n.x + (1.0 - n.x * n.x) * c, n.x * n.y * k - n.z * s, n.z * n.x * k + n.y * s},
        {n.x * n.y * k + n.z * s, n.y * n.y + (1.0 - n.y * n.y) * c, n.y * n.z * k - n.x * s},
        {n.z * n.x * k - n.y * s, n.y * n.z * k + n.x * s, n.z * n.z + (1.0 - n.z * n.z) * c}};
    auto row = [&](int i, double Ci) {
        return Ci - (R[i][0] * C.x + R[i][1] * C.y + R[i][2] * C.z);
    };
    return matrix4(T, {{R[0][0], R[0][1], R[0][2], row(0, C.x)},
                       {R[1][0], R[1][1], R[1][2], row(1, C.y)},
                       {R[2][0], R[2][1], R[2][2], row(2, C.z)},
                       {0.0, 0.0, 0.0, 1.0}});
}

int16_t G_traort(Point O, Point X, Point Y, RealMatrix *T, StorageStacks *stk) {
    static char name[] = "G_TRAORT";
    Point e1{}, e2{};
    if (!direction(X, &e1)) return fail(KW_EZEROVEC, name);
    if (parallel(X, Y) || !direction(Y - dot(Y, e1) * e1, &e2)) return fail(KW_ESINGULAR, name);
    const Point e3 = cross(e1, e2);
    if (check4(T, name, stk)) return 1;
    return matrix4(T, {{e1.x, e1.y, e1.z, -dot(e1, O)},
                       {e2.x, e2.y, e2.z, -dot(e2, O)},
                       {e3.x, e3.y, e3.z, -dot(e3, O)},
                       {0.0, 0.0, 0.0, 1.0}});
}

int16_t G_traxyz(const Point *P, int32_t n, const RealMatrix *T, Point *Q) {
    static char name[] = "G_TRAXYZ";
    if (T->n != 3 || T->m != 3 || !T->a) return fail(KW_ESIZE, name);
    if (T->type != KW_FULL) return fail(KW_EARG, name);
    const double *R3 = T->a[3];
    for (int32_t i = 0; i <= n; ++i) {
        const double h = R3[0] * P[i].x + R3[1] * P[i].y + R3[2] * P[i].z + R3[3];
        if (M_chkfop(1.0, h, 4)) return fail(KW_ESINGULAR, name);
    }
    for (int32_t i = 0; i <= n; ++i) A_trapoi(P[i].x, P[i].y, P[i].z, T, &Q[i]);
    return 0;
}

int16_t G_traaxl(Point P, const CurveFunction *cfn, int16_t axis, int16_t mode, double factor,
                 Point *Q) {
    static char name[] = "G_TRAAXL";
    if (axis < 1 || axis > 3 || mode < 1 || mode > 4) return fail(KW_ECASE, name);
    const int16_t p = cfn->p;
    if (p < 0 || p > U_maxdeg) return fail(KW_EDEGREE, name);
    if (cfn->knt->m != cfn->cvl->n + p + 1) return fail(KW_ECURVE, name);
    if (E_kntdef(cfn->knt, p, name)) return 1;
    const int a = axis - 1, b = axis % 3, c = (axis + 1) % 3;
    Point R = P;
    const double u = coordinate(R, a);
    double value = 0.0;
    if (E_parval(cfn->knt, u, name) || N_cfnevn(cfn, u, KW_RIGHT, &value)) return 1;
    const double f = factor * value;
    double &y = coordinate(R, b), &z = coordinate(R, c);
    if (mode == 4) {
        const double t = kPi * f, cs = std::cos(t), sn = std::sin(t);
        const double y0 = y, z0 = z;
        y = cs * y0 - sn * z0;
        z = sn * y0 + cs * z0;
    } else {
        if (mode != 2) y *= f;
        if (mode != 1) z *= f;
    }
    *Q = R;
    return 0;
}

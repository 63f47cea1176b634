// Points, partial derivatives and normals of surfaces: the curve machinery
// in both directions of the control net.
#include "core/arith.hpp"
#include "geom/geom.hpp"
#include "knotwork/errors.h"
#include "knotwork/eval.h"
#include "knotwork/knots.h"
#include "knotwork/numeric.h"
#include "knotwork/storage.h"
#include "nurbs/eval/surface.hpp"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

// The surface agrees with itself and (u, v) lies in its knot ranges.
KW_HOT int16_t check_eval(const Surface *sur, double u, double v, char *name) noexcept {
    return check_shape(sur, name) || check_param(sur->knu, u, name) || check_param(sur->knv, v, name);
}

// A bad side is the span search's to record (13, "N_KNTFSP"), as for curves.
int16_t check_sides(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev) noexcept {
    int32_t span;
    if (!valid_side(sideu)) return N_kntfsp(sur->knu, sur->p, u, sideu, &span);
    if (!valid_side(sidev)) return N_kntfsp(sur->knv, sur->q, v, sidev, &span);
    return 0;
}

// The homogeneous point: the basis functions of both directions, then the
// tensor sum.
KW_HOT ControlPoint surface_point(const Surface *sur, double u, double v, int16_t sideu,
                                  int16_t sidev) noexcept {
    const KnotVector *knu = sur->knu, *knv = sur->knv;
    return with_degrees(sur->p, sur->q, [&](auto p, auto q) KW_INLINE {
        double Nu[kWidth<decltype(p)>], Nv[kWidth<decltype(q)>];
        const int32_t su = nonzero_basis(knu->U, knu->m, p, u, sideu, Nu);
        const int32_t sv = nonzero_basis(knv->U, knv->m, q, v, sidev, Nv);
        ControlPoint *const *Pw = sur->net->Pw;
        return with_sum(Pw[0][0], [&](auto sum) KW_INLINE { return tensor_point(Nu, p, Nv, q, Pw + su - p, sv - q, sum); });
    });
}

}  // namespace

int16_t N_surevn(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev, Point *S) {
    static char name[] = "N_SUREVN";
    if (check_eval(sur, u, v, name)) return 1;
    note_side(sur->knu, sur->p, u, sideu);
    note_side(sur->knv, sur->q, v, sidev);
    *S = euclid(surface_point(sur, u, v, sideu, sidev));
    return 0;
}

int16_t N_surder(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev,
                 int16_t mode, int16_t ku, int16_t kv, PointMatrix *SKL) {
    static char name[] = "N_SURDER";
    if (check_eval(sur, u, v, name)) return 1;
    if (ku < 0 || ku > KW_MAX_ORDER || kv < 0 || kv > KW_MAX_ORDER) return fail(KW_EORDER, name);
    if (check_sides(sur, u, v, sideu, sidev)) return 1;
    if (!SKL || !SKL->a || SKL->type == KW_BANDED) return fail(KW_EARG, name);
    if (E_pmasto(SKL, ku, kv, name)) return 1;
    const int16_t p = sur->p, q = sur->q;

    // 1. The work table.
    DerivativeTable table(ku, kv, p, q);
    double ****D = table.get();
    if (!D) return fail(KW_ENOMEM, name);

    // 2. Derivatives of the basis functions, rational for a rational surface.
    ControlPoint *const *Pw = sur->net->Pw;
    int32_t su, sv;
    const int16_t status = rational(Pw[0][0])
                               ? N_kntasd(sur, u, v, sideu, sidev, ku, kv, D, &su, &sv)
                               : N_kntabd(sur->knu, sur->knv, p, q, u, v, sideu, sidev, ku, kv, D, &su, &sv);
    if (status) return 1;

    // A body of its own for each pair of degrees, not inlined: small enough
    // for the compiler to inline what it calls.
    with_degrees(p, q, [&](auto P, auto Q) {
        // 3. The Cartesian control points of the active block.
        Point E[kWidth<decltype(P)>][kWidth<decltype(Q)>];
        cartesian_block(Pw, su, sv, P, Q, rational(Pw[0][0]), E);
        // 4. SKL[k][l] = sum D[k][l][i][j] E[i][j], over the triangle
        // k + l <= ku or the rectangle.
        partials(D, E, P, Q, ku, kv, mode == 1 && ku == kv, [&](int k, int l) -> Point & { return SKL->a[k][l]; });
    });
    return 0;
}

int16_t N_surnor(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev, Point *S,
                 Point *Su, Point *Sv, Point *N, StorageStacks *stk) {
    static char name[] = "N_SURNOR";
    if (check_eval(sur, u, v, name)) return 1;
    Scratch scratch(stk);
    PointMatrix SKL;
    if (M_getpma(&SKL, 1, 1, KW_FULL, 1, stk)) return 1;
    scratch.keep<U_kilp2d>(SKL.a);
    if (N_surder(sur, u, v, sideu, sidev, 1, 1, 1, &SKL)) return 1;
    // Tangents no longer than a thousandth of the point tolerance, or unit
    // tangents all but parallel, give no direction.
    Point du = SKL.a[1][0], dv = SKL.a[0][1];
    const double least = 0.001 * U_tolpoi;
    if (!(norm(du) > least)) return fail(KW_EZEROVEC, name);
    if (G_vecnip(&du)) return 1;
    if (!(norm(dv) > least)) return fail(KW_EZEROVEC, name);
    if (G_vecnip(&dv)) return 1;
    Point normal = cross(du, dv);
    if (!(norm(normal) > U_tolzer)) return fail(KW_EZEROVEC, name);
    if (G_vecnip(&normal)) return 1;
    *S = SKL.a[0][0];
    *Su = du;
    *Sv = dv;
    *N = normal;
    return 0;
}

// Derivatives of the basis functions of surfaces, polynomial and rational,
// in both directions at once: what surface derivatives apply to the control
// net.
#include "nurbs/knots/surface_basis.hpp"

#include "core/arith.hpp"
#include "knotwork/knots.h"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

// The spans of u and v and D[k][l][i][j], the products of the two
// directions' derivatives, after the checks of both directions (3, 4, 6,
// 13) and of the orders (20).
int16_t product_table(const KnotVector *knu, const KnotVector *knv, int16_t p, int16_t q, double u,
                      double v, int16_t sideu, int16_t sidev, int16_t ku, int16_t kv, double ****D,
                      int32_t *su, int32_t *sv, char *name) noexcept {
    int32_t a, b;
    if (locate(knu, p, u, sideu, name, &a) || locate(knv, q, v, sidev, name, &b)) return 1;
    if (ku < 0 || ku > KW_MAX_ORDER || kv < 0 || kv > KW_MAX_ORDER) return fail(KW_EORDER, name);
    double Nu[kOrders][kTable], Nv[kOrders][kTable];
    basis_ders_to(knu->U, a, p, u, ku, Nu);
    basis_ders_to(knv->U, b, q, v, kv, Nv);
    product_ders(Nu, p, Nv, q, ku, kv, D);
    *su = a;
    *sv = b;
    return 0;
}

}  // namespace

int16_t N_kntabd(const KnotVector *knu, const KnotVector *knv, int16_t p, int16_t q, double u,
                 double v, int16_t sideu, int16_t sidev, int16_t ku, int16_t kv, double ****D,
                 int32_t *su, int32_t *sv) {
    static char name[] = "N_KNTABD";
    return product_table(knu, knv, p, q, u, v, sideu, sidev, ku, kv, D, su, sv, name);
}

int16_t N_kntasd(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev, int16_t ku,
                 int16_t kv, double ****D, int32_t *su, int32_t *sv) {
    static char name[] = "N_KNTASD";
    if (check_shape(sur, name)) return 1;
    const int16_t p = sur->p, q = sur->q;
    if (product_table(sur->knu, sur->knv, p, q, u, v, sideu, sidev, ku, kv, D, su, sv, name)) return 1;
    // A non-rational surface has unit weights: its products are rational
    // already.
    ControlPoint *const *Pw = sur->net->Pw;
    if (!rational(Pw[0][0])) return 0;
    const int32_t i0 = *su - p, j0 = *sv - q;
    rational_surface_ders(D, [=](int i, int j) { return Pw[i0 + i][j0 + j].w; }, ku, kv, p, q);
    return 0;
}

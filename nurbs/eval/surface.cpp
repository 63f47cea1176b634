// Points, partial derivatives and normals of surfaces: the curve machinery
// in both directions of the control net.
#include <cstddef>

#include "core/alloc.hpp"
#include "core/arith.hpp"
#include "geom/geom.hpp"
#include "knotwork/errors.h"
#include "knotwork/eval.h"
#include "knotwork/knots.h"
#include "knotwork/numeric.h"
#include "knotwork/storage.h"
#include "nurbs/eval/kernel.hpp"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

// The surface agrees with itself and (u, v) lies in its knot ranges.
int16_t check_eval(const Surface *sur, double u, double v, char *name) noexcept {
    return check_shape(sur, name) || check_param(sur->knu, u, name) || check_param(sur->knv, v, name);
}

// A bad side is the span search's to record (13, "N_KNTFSP"), as for curves.
int16_t check_sides(const Surface *sur, double u, double v, int16_t sideu, int16_t sidev) noexcept {
    int32_t span;
    if (!valid_side(sideu)) return N_kntfsp(sur->knu, sur->p, u, sideu, &span);
    if (!valid_side(sidev)) return N_kntfsp(sur->knv, sur->q, v, sidev, &span);
    return 0;
}

// The non-zero basis functions N[0..p] of one direction and their span.
int32_t basis_of(const KnotVector *knt, int p, double u, int16_t side, double *N) noexcept {
    return with_degree(p, [&](auto P) { return nonzero_basis(knt->U, knt->m, P, u, side, N); });
}

// The homogeneous point: each row of the active block summed along v, then
// the rows along u, the markers carried through both sums.
ControlPoint surface_point(const Surface *sur, double u, double v, int16_t sideu,
                           int16_t sidev) noexcept {
    const int p = sur->p;
    double Nu[kTable], Nv[kTable];
    const int32_t su = basis_of(sur->knu, p, u, sideu, Nu);
    const int32_t sv = basis_of(sur->knv, sur->q, v, sidev, Nv);
    ControlPoint *const *Pw = sur->net->Pw + su - p;
    ControlPoint rows[kTable];
    with_degree(sur->q, [&](auto Q) {
        for (int i = 0; i <= p; ++i) rows[i] = accumulate(Nv, Pw[i] + sv - Q, Q);
    });
    return accumulate(Nu, rows, p);
}

// The table D[k][l][i][j], k = 0..ku, l = 0..kv, i = 0..p, j = 0..q, on the
// general heap: pointers over the orders in u, over the orders in v and
// over the functions in u, then the values. Released with the object.
class DerivativeTable {
public:
    DerivativeTable(int ku, int kv, int p, int q) noexcept {
        const std::size_t nk = ku + 1, nl = nk * (kv + 1), ni = nl * (p + 1);
        top_ = static_cast<double ****>(allocate(nk * sizeof(double ***)));
        planes_ = top_ ? static_cast<double ***>(allocate(nl * sizeof(double **))) : nullptr;
        rows_ = planes_ ? static_cast<double **>(allocate(ni * sizeof(double *))) : nullptr;
        values_ = rows_ ? static_cast<double *>(allocate(ni * (q + 1) * sizeof(double))) : nullptr;
        if (!values_) return;
        for (std::size_t k = 0; k < nk; ++k) top_[k] = planes_ + k * (kv + 1);
        for (std::size_t l = 0; l < nl; ++l) planes_[l] = rows_ + l * (p + 1);
        for (std::size_t i = 0; i < ni; ++i) rows_[i] = values_ + i * (q + 1);
    }
    ~DerivativeTable() {
        release(values_);
        release(rows_);
        release(planes_);
        release(top_);
    }
    DerivativeTable(const DerivativeTable &) = delete;
    DerivativeTable &operator=(const DerivativeTable &) = delete;

    // The table, or null when an allocation failed.
    double ****get() const noexcept { return values_ ? top_ : nullptr; }

private:
    double ****top_ = nullptr;
    double ***planes_ = nullptr;
    double **rows_ = nullptr;
    double *values_ = nullptr;
};

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

    // 3. The Cartesian control points of the active block.
    Point P[kTable][kTable];
    for (int i = 0; i <= p; ++i)
        for (int j = 0; j <= q; ++j) P[i][j] = euclid(Pw[su - p + i][sv - q + j]);

    // 4. SKL[k][l] = sum D[k][l][i][j] P[i][j], over the triangle k + l <= ku
    // or the rectangle.
    const bool triangle = mode == 1 && ku == kv;
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv && !(triangle && k + l > ku); ++l) {
            Point sum{};
            for (int i = 0; i <= p; ++i) sum = sum + accumulate(D[k][l][i], P[i], q);
            SKL->a[k][l] = sum;
        }
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

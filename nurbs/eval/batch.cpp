// Curves and surfaces evaluated at many parameters in one call: the steps of
// the single-point evaluators, in the same order and so with the same
// results, with the span's work (the search, the reciprocal knot
// differences, the Cartesian control points) kept while the parameters stay
// in one span, and a surface direction's basis functions while its
// parameter repeats.
#include "core/arith.hpp"
#include "knotwork/eval.h"
#include "nurbs/eval/surface.hpp"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

// The outputs, n >= 0 (14), the side (13) and every parameter (6), before
// anything is written.
int16_t check_many(const KnotVector *knt, int32_t n, const double *u, int16_t side, const void *out,
                   char *name) noexcept {
    if (n < 0 || !u || !out) return fail(KW_EARG, name);
    if (!valid_side(side)) return fail(KW_ECASE, name);
    for (int32_t i = 0; i <= n; ++i)
        if (check_param(knt, u[i], name)) return 1;
    return 0;
}

}  // namespace

int16_t N_curevm(const Curve *cur, int32_t n, const double *u, int16_t side, Point *C) {
    static char name[] = "N_CUREVM";
    if (check_shape(cur, name) || check_many(cur->knt, n, u, side, C, name)) return 1;
    const double *U = cur->knt->U;
    const int32_t m = cur->knt->m;
    const ControlPoint *Pw = cur->pol->Pw;
    with_degree(cur->p, [&](auto p) KW_INLINE {
        SpanBasis<decltype(p)> b;
        double N[kWidth<decltype(p)>];
        for (int32_t i = 0; i <= n; ++i) {
            const int32_t span = b.basis(U, m, p, u[i], side, N);
            C[i] = euclid(accumulate(N, Pw + span - p, p));
        }
    });
    return 0;
}

int16_t N_curdrm(const Curve *cur, int32_t n, const double *u, int16_t side, int16_t k, Point *CK) {
    static char name[] = "N_CURDRM";
    if (check_shape(cur, name)) return 1;
    if (k < 0 || k > KW_MAX_ORDER) return fail(KW_EORDER, name);
    if (check_many(cur->knt, n, u, side, CK, name)) return 1;
    const double *U = cur->knt->U;
    const int32_t m = cur->knt->m;
    const ControlPoint *Pw = cur->pol->Pw;
    const bool weighted = rational(Pw[0]);
    with_degree(cur->p, [&](auto p) KW_INLINE {
        CurveSpan<decltype(p)> c{};  // entered at the first parameter
        with_order(k, [&](auto K) KW_INLINE {
            for (int32_t i = 0; i <= n; ++i) {
                c.locate(U, m, p, Pw, span_key(u[i], side), weighted);
                curve_ders(U, p, c, weighted, u[i], K, CK + int64_t(i) * (k + 1));
            }
        });
    });
    return 0;
}

int16_t N_surevm(const Surface *sur, int32_t n, const double *u, const double *v, int16_t sideu, int16_t sidev,
                 Point *S) {
    static char name[] = "N_SUREVM";
    if (check_shape(sur, name) || check_many(sur->knu, n, u, sideu, S, name) ||
        check_many(sur->knv, n, v, sidev, S, name))
        return 1;
    ControlPoint *const *Pw = sur->net->Pw;
    with_degrees(sur->p, sur->q, [&](auto p, auto q) KW_INLINE {
        with_sum(Pw[0][0], [&](auto sum) KW_INLINE {
            Direction<decltype(p)> a;
            Direction<decltype(q)> b;
            for (int32_t i = 0; i <= n; ++i) {
                a.basis(sur->knu, p, u[i], sideu);
                b.basis(sur->knv, q, v[i], sidev);
                S[i] = euclid(tensor_point(a.N, p, b.N, q, Pw + a.span - p, b.span - q, sum));
            }
        });
    });
    return 0;
}

int16_t N_surdrm(const Surface *sur, int32_t n, const double *u, const double *v, int16_t sideu, int16_t sidev,
                 int16_t mode, int16_t ku, int16_t kv, Point *SKL) {
    static char name[] = "N_SURDRM";
    if (check_shape(sur, name)) return 1;
    if (ku < 0 || ku > KW_MAX_ORDER || kv < 0 || kv > KW_MAX_ORDER) return fail(KW_EORDER, name);
    if (check_many(sur->knu, n, u, sideu, SKL, name) || check_many(sur->knv, n, v, sidev, SKL, name)) return 1;
    ControlPoint *const *Pw = sur->net->Pw;
    const bool weighted = rational(Pw[0][0]), triangle = mode == 1 && ku == kv;
    // The rational basis functions are made in a table, as N_surder makes
    // them; a polynomial surface's products are taken as the sums need them.
    DerivativeTable table(weighted ? ku : -1, kv, sur->p, sur->q);
    double ****D = table.get();
    if (weighted && !D) return fail(KW_ENOMEM, name);
    const int top = triangle ? ku : ku + kv;
    const int64_t block = (ku + 1) * (kv + 1);
    with_degrees(sur->p, sur->q, [&](auto p, auto q) {
        with_orders(ku, kv, [&](auto KU, auto KV) KW_INLINE {
            Direction<decltype(p)> a;
            Direction<decltype(q)> b;
            Point E[kWidth<decltype(p)>][kWidth<decltype(q)>] = {};  // filled at the first pair
            int32_t su = -1, sv = -1;
            for (int32_t i = 0; i <= n; ++i) {
                a.derivatives(sur->knu, p, u[i], sideu, KU);
                b.derivatives(sur->knv, q, v[i], sidev, KV);
                if (a.span != su || b.span != sv) {
                    su = a.span;
                    sv = b.span;
                    cartesian_block(Pw, su, sv, p, q, weighted, E);
                }
                Point *at = SKL + i * block;
                auto out = [&](int k, int l) -> Point & { return at[k * (KV + 1) + l]; };
                if (!weighted) {
                    product_partials(a.ders, p, b.ders, q, E, KU, KV, triangle, out);
                    continue;
                }
                product_ders(a.ders, p, b.ders, q, ku, kv, top, D);
                ControlPoint *const *P = Pw + su - p;
                const int32_t j0 = sv - q;
                rational_surface_ders(D, [=](int r, int c) { return P[r][j0 + c].w; }, ku, kv, top, p, q);
                partials(D, E, p, q, ku, kv, triangle, out);
            }
        });
    });
    return 0;
}

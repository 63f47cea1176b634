// Curves evaluated at many parameters in one call: the steps of the
// single-point evaluators, in the same order and so with the same results,
// with the span's work (the search, the reciprocal knot differences, the
// Cartesian control points) kept while the parameters stay in one span.
#include "core/arith.hpp"
#include "knotwork/eval.h"
#include "nurbs/eval/kernel.hpp"
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
        CurveSpan<decltype(p)> c;
        c.enter(U, p, Pw, search_span(U, m, p, span_key(u[0], side)));
        with_order(k, [&](auto K) KW_INLINE {
            for (int32_t i = 0; i <= n; ++i) {
                c.locate(U, m, p, Pw, span_key(u[i], side));
                curve_ders(U, p, c, weighted, u[i], K, CK + int64_t(i) * (k + 1));
            }
        });
    });
    return 0;
}

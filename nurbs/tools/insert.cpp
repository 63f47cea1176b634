// Knot insertion and splitting of curves. Splitting is insertion to full
// multiplicity with the new polygon dealt out to two curves, so both run the
// same insertion rounds and differ only in where a new control point goes.
#include <algorithm>

#include "core/arith.hpp"
#include "knotwork/errors.h"
#include "knotwork/knots.h"
#include "knotwork/tools.h"
#include "nurbs/knots/routine.hpp"

using namespace kw;

namespace {

// The polygon Pw[0..n] of degree p with u inserted r times into the knots U,
// u in span k with multiplicity s (r <= p - s): put(g, P, count) receives
// control points g..g + count - 1 of the new polygon. Rw is a work array of
// p + 1 control points. Points that do not move are copied first, in two
// runs; each round replaces p - j - s + 1 of the affected points by
// homogeneous combinations, leaving one new point at either end of the
// affected range.
template <class Put>
void insert_rounds(const ControlPoint *Pw, int32_t n, int p, const double *U, double u, int32_t k,
                   int32_t s, int32_t r, ControlPoint *Rw, Put put) noexcept {
    std::copy_n(Pw + k - p, p - s + 1, Rw);
    put(0, Pw, k - p + 1);
    put(k - s + r, Pw + k - s, n - k + s + 1);
    int32_t L = k - p;
    for (int32_t j = 1; j <= r; ++j) {
        L = k - p + j;
        for (int32_t i = 0; i <= p - j - s; ++i) {
            const double alpha = (u - U[L + i]) / (U[i + k + 1] - U[L + i]);
            Rw[i] = combine<2>({alpha, 1.0 - alpha}, {Rw[i + 1], Rw[i]});
        }
        put(L, Rw, 1);
        put(k + r - j - s, Rw + p - j - s, 1);
    }
    if (L + 1 <= k - s - 1) put(L + 1, Rw + 1, k - s - 1 - L);
}

// A curve broken into its parts, with the span k of u and its multiplicity
// s, from the right.
struct Cut {
    int32_t n, m, k, s;
    ControlPoint *Pw;
    int16_t p;
    double *U;
};

// The inputs both routines check: a curve that agrees with itself and u
// strictly inside its knot range.
int16_t locate_cut(const Curve *cur, double u, Cut *c, char *name) noexcept {
    if (check_shape(cur, name) || E_endpar(cur->knt, u, name)) return 1;
    U_curbre(cur, &c->n, &c->Pw, &c->p, &c->m, &c->U);
    return N_kntfsm(cur->knt, c->p, u, KW_RIGHT, &c->k, &c->s);
}

}  // namespace

int16_t N_toocki(Curve *cur, double u, int32_t r, Curve *out, StorageStacks *stkcur,
                 StorageStacks *stkout) {
    static char name[] = "N_TOOCKI";
    LocalStacks local;
    Cut c;
    if (locate_cut(cur, u, &c, name)) return 1;
    const auto [n, m, k, s, Pw, p, U] = c;
    if (r < 0 || r > p - s) return fail(KW_EPARAM, name);
    const bool in_place = out == cur;
    if (in_place && r == 0) return 0;

    // The work array first, so that no failure leaves cur half rebuilt.
    ControlPoint *Rw = S_getc1d(p, local.get());
    if (!Rw) return 1;
    Curve old = *cur;  // in place: the old arrays stay readable here
    if (in_place ? U_getcur(cur, n + r, p, m + r, stkcur)
                 : U_curchk(out, n + r, p, m + r, name, stkout))
        return 1;

    ControlPoint *Qw = out->pol->Pw;
    insert_rounds(Pw, n, p, U, u, k, s, r, Rw,
                  [Qw](int32_t g, const ControlPoint *P, int32_t count) { std::copy_n(P, count, Qw + g); });
    double *UQ = out->knt->U;
    std::copy_n(U, k + 1, UQ);
    std::fill_n(UQ + k + 1, r, u);
    std::copy(U + k + 1, U + m + 1, UQ + k + 1 + r);

    if (in_place) U_kilcur(&old, stkcur);
    return 0;
}

int16_t N_toocsp(const Curve *cur, double u, Curve *left, Curve *right, StorageStacks *stk) {
    static char name[] = "N_TOOCSP";
    LocalStacks local;
    if (left == cur || right == cur || left == right) return fail(KW_EARG, name);
    Cut c;
    if (locate_cut(cur, u, &c, name)) return 1;
    const auto [n, m, k, s, Pw, p, U] = c;

    ControlPoint *Rw = S_getc1d(p, local.get());
    if (!Rw) return 1;
    // Inserting u to multiplicity p puts the curve point C(u) at index k - s
    // of the refined polygon: the cut.
    const int32_t cut = k - s;
    if (U_curchk(left, cut, p, cut + p + 1, name, stk) ||
        U_curchk(right, n + p - k, p, n - k + 2 * p + 1, name, stk))
        return 1;

    ControlPoint *Lw = left->pol->Pw, *Rq = right->pol->Pw;
    // The point at the cut goes to both pieces.
    insert_rounds(Pw, n, p, U, u, k, s, p - s, Rw, [=](int32_t g, const ControlPoint *P, int32_t count) {
        if (g <= cut) std::copy_n(P, std::min(count, cut - g + 1), Lw + g);
        if (g + count - 1 >= cut) {
            const int32_t from = std::max(g, cut);
            std::copy_n(P + from - g, g + count - from, Rq + from - cut);
        }
    });
    double *UL = left->knt->U, *UR = right->knt->U;
    std::copy_n(U, cut + 1, UL);
    std::fill_n(UL + cut + 1, p + 1, u);
    std::fill_n(UR, p + 1, u);
    std::copy(U + k + 1, U + m + 1, UR + p + 1);
    return 0;
}

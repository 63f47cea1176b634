// What the exported knot, evaluation and tool routines share around their
// numerical kernels: the input checks, each recording its code under the
// calling routine's name, and scratch arrays on the caller's context.
#pragma once

#include <cstdint>

#include "core/error.hpp"
#include "core/records.hpp"
#include "knotwork/knots.h"
#include "knotwork/storage.h"
#include "nurbs/knots/basis.hpp"

namespace kw {

inline bool valid_side(int16_t side) noexcept { return side == KW_RIGHT || side == KW_LEFT; }

// A degree that the fixed tables hold (3) and a knot vector with room for
// p + 1 basis functions (4). The evaluators cannot afford a full knot check
// on every call; this much keeps every index they form inside the arrays.
inline int16_t check_knots(const KnotVector *knt, int16_t p, char *name) noexcept {
    if (p < 0 || p > KW_MAX_DEGREE) return fail(KW_EDEGREE, name);
    if (!knt || !knt->U || knt->m < 2 * p + 1) return fail(KW_EKNOTS, name);
    return 0;
}

// U[0] <= u <= U[m], exactly; a NaN fails (6).
inline int16_t check_param(const KnotVector *knt, double u, char *name) noexcept {
    if (!(knt->U[0] <= u && u <= knt->U[knt->m])) return fail(KW_EPARAM, name);
    return 0;
}

// A curve or curve function whose parts exist and agree, m = n + p + 1 (1),
// then check_knots.
template <class R>
int16_t check_shape(const R *r, char *name) noexcept {
    auto *h = r ? holder(*r) : nullptr;
    if (!h || !coefs(*h) || !r->knt || r->knt->m != h->n + r->p + 1) return fail(KW_ECURVE, name);
    return check_knots(r->knt, r->p, name);
}

// A surface whose parts exist and agree, r = n + p + 1 and s = m + q + 1
// (2), then check_knots in each direction.
inline int16_t check_shape(const Surface *s, char *name) noexcept {
    if (!s || !s->net || !s->net->Pw || !s->knu || !s->knv || s->knu->m != s->net->n + s->p + 1 ||
        s->knv->m != s->net->m + s->q + 1)
        return fail(KW_ESURFACE, name);
    return check_knots(s->knu, s->p, name) || check_knots(s->knv, s->q, name);
}

// check_knots, check_param and the side (13), then the span of u.
inline int16_t locate(const KnotVector *knt, int16_t p, double u, int16_t side, char *name,
                      int32_t *span) noexcept {
    if (check_knots(knt, p, name) || check_param(knt, u, name)) return 1;
    if (!valid_side(side)) return fail(KW_ECASE, name);
    *span = find_span(knt->U, knt->m, p, u, side);
    return 0;
}

// Basis function i of a curve or curve function at u: N[i](u), or with a
// weight function w(k) the rational N[i] w(i) / sum N[k] w(k) (11 when the
// sum vanishes). 7 for i outside 0..n, 13 for the side.
template <class R, class Weight>
int16_t basis_at(const R *r, int32_t i, double u, int16_t side, bool weighted, Weight w,
                 double *value, char *name) noexcept {
    if (check_shape(r, name) || check_param(r->knt, u, name)) return 1;
    if (i < 0 || i > holder(*r)->n) return fail(KW_ESIZE, name);
    if (!valid_side(side)) return fail(KW_ECASE, name);
    const int p = r->p;
    double N[kTable], W = 0.0;
    const int32_t span = nonzero_basis(r->knt->U, r->knt->m, p, u, side, N);
    double v = i < span - p || i > span ? 0.0 : N[i - span + p];
    if (weighted) {
        for (int k = 0; k <= p; ++k) W += N[k] * w(span - p + k);
        if (W == 0.0) return fail(KW_ESINGULAR, name);
        v = v * w(i) / W;
    }
    *value = v;
    return 0;
}

// The innermost routines leave the side flag to their callers: where the
// span search runs (away from the end knots), a bad one is recorded as the
// span search records it (13, "N_KNTFSP"), and the result is computed from
// the right.
inline void note_side(const KnotVector *knt, int16_t p, double u, int16_t side) noexcept {
    if (valid_side(side) || u == knt->U[p] || u == knt->U[knt->m - p]) return;
    int32_t span;
    N_kntfsp(knt, p, u, side, &span);
}

// Scratch arrays taken from the caller's context, killed newest first when
// the routine returns, whichever way it does.
class Scratch {
public:
    explicit Scratch(StorageStacks *stk) noexcept : stk_(stk) {}
    ~Scratch() {
        for (int i = count_ - 1; i >= 0; --i) kill_[i](block_[i], stk_);
    }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;

    // Keeps a (it may be null, after the allocator recorded 15) for Kill.
    template <auto Kill, class T>
    T *keep(T *a) noexcept {
        if (a && count_ < kMax) {
            block_[count_] = a;
            kill_[count_++] = [](void *b, StorageStacks *s) { Kill(static_cast<T *>(b), s); };
        }
        return a;
    }
    double *reals(int32_t n) noexcept { return keep<U_kilr1d>(S_getr1d(n, stk_)); }
    double **reals(int32_t n, int32_t m) noexcept { return keep<U_kilr2d>(S_getr2d(n, m, stk_)); }

private:
    static constexpr int kMax = 8;
    StorageStacks *stk_;
    void *block_[kMax] = {};
    void (*kill_[kMax])(void *, StorageStacks *) = {};
    int count_ = 0;
};

}  // namespace kw

// The record families: curves and curve functions share one body, surfaces
// and surface functions another. A family member differs only in what its
// coefficients are (ControlPoints or doubles) and how they are held.
#pragma once

#include "core/storage.hpp"

namespace kw {

// ---- Coefficient holders ---------------------------------------------------

inline ControlPolygon *&holder(Curve &c) noexcept { return c.pol; }
inline ValueVector *&holder(CurveFunction &f) noexcept { return f.cvl; }
inline ControlNet *&holder(Surface &s) noexcept { return s.net; }
inline ValueGrid *&holder(SurfaceFunction &f) noexcept { return f.svl; }
inline ControlPolygon *holder(const Curve &c) noexcept { return c.pol; }
inline ValueVector *holder(const CurveFunction &f) noexcept { return f.cvl; }
inline ControlNet *holder(const Surface &s) noexcept { return s.net; }
inline ValueGrid *holder(const SurfaceFunction &f) noexcept { return f.svl; }

inline ControlPoint *&coefs(ControlPolygon &h) noexcept { return h.Pw; }
inline double *&coefs(ValueVector &h) noexcept { return h.v; }
inline ControlPoint **&coefs(ControlNet &h) noexcept { return h.Pw; }
inline double **&coefs(ValueGrid &h) noexcept { return h.v; }

// The knot vectors of a one-parameter object (knt) and of a two-parameter
// one (knu, knv).
inline KnotVector *&knots(Curve &c) noexcept { return c.knt; }
inline KnotVector *&knots(CurveFunction &f) noexcept { return f.knt; }

// Sub-record allocation and kills, by holder kind.
inline ControlPolygon *get_holder(ControlPolygon *, int32_t n, StorageStacks *stk) noexcept {
    return S_getpol(n, stk);
}
inline ValueVector *get_holder(ValueVector *, int32_t n, StorageStacks *stk) noexcept {
    return S_getcvs(n, stk);
}
inline ControlNet *get_holder(ControlNet *, int32_t n, int32_t m, StorageStacks *stk) noexcept {
    return S_getnet(n, m, stk);
}
inline ValueGrid *get_holder(ValueGrid *, int32_t n, int32_t m, StorageStacks *stk) noexcept {
    return S_getsvs(n, m, stk);
}

// ---- Visiting every control point ------------------------------------------

template <class F>
void each_point(const Curve *c, F f) {
    for (int32_t i = 0; i <= c->pol->n; ++i) f(c->pol->Pw[i]);
}

template <class F>
void each_point(const Surface *s, F f) {
    for (int32_t i = 0; i <= s->net->n; ++i)
        for (int32_t j = 0; j <= s->net->m; ++j) f(s->net->Pw[i][j]);
}

}  // namespace kw

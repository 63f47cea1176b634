// Input validators: each records its code under the caller's name and
// changes nothing.
#include <cmath>
#include <initializer_list>
#include <utility>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "core/records.hpp"
#include "knotwork/errors.h"

using namespace kw;

namespace {

bool allocated(const Curve *c) noexcept {
    return c && c->pol && c->pol->Pw && c->knt && c->knt->U && c->pol->n >= 0;
}
bool allocated(const Surface *s) noexcept {
    return s && s->net && s->net->Pw && s->knu && s->knu->U && s->knv && s->knv->U &&
           s->net->n >= 0 && s->net->m >= 0;
}

bool degree_ok(int16_t p) noexcept { return p >= 0 && p <= U_maxdeg && p <= KW_MAX_DEGREE; }

bool weight_ok(double w) noexcept { return w >= U_minwei && w <= U_maxwei; }

// The storage check shared by every record kind: each current count at
// least the wanted one.
int16_t at_least(std::initializer_list<std::pair<int32_t, int32_t>> have_want, char *name) {
    for (const auto &[have, want] : have_want)
        if (have < want) return fail(KW_ESTORAGE, name);
    return 0;
}

// Whether two control points differ by less than tol (or by NaN), as
// four-component vectors.
bool coincident(const ControlPoint &a, const ControlPoint &b, double tol) noexcept {
    return !(magnitude(difference(a, b)) >= tol);
}

}  // namespace

int16_t E_curdef(const Curve *cur, char *name) {
    if (!allocated(cur)) return fail(KW_ECURVE, name);
    const int32_t n = cur->pol->n, m = cur->knt->m;
    const int16_t p = cur->p;
    if (m != n + p + 1) return fail(KW_ECURVE, name);
    if (!degree_ok(p)) return fail(KW_EDEGREE, name);
    const ControlPoint *Pw = cur->pol->Pw;
    const bool flat = planar(Pw[0]), weighted = rational(Pw[0]);
    for (int32_t i = 1; i <= n; ++i)
        if (planar(Pw[i]) != flat || rational(Pw[i]) != weighted) return fail(KW_ECURVE, name);
    return 0;
}

int16_t E_surdef(const Surface *sur, char *name) {
    if (!allocated(sur)) return fail(KW_ESURFACE, name);
    const ControlNet *net = sur->net;
    if (sur->knu->m != net->n + sur->p + 1 || sur->knv->m != net->m + sur->q + 1)
        return fail(KW_ESURFACE, name);
    if (!degree_ok(sur->p) || !degree_ok(sur->q)) return fail(KW_EDEGREE, name);
    const bool weighted = rational(net->Pw[0][0]);
    for (int32_t i = 0; i <= net->n; ++i)
        for (int32_t j = 0; j <= net->m; ++j)
            if (rational(net->Pw[i][j]) != weighted) return fail(KW_ESURFACE, name);
    return 0;
}

int16_t E_kntdef(const KnotVector *knt, int16_t p, char *name) {
    if (!knt || !knt->U || p < 0 || knt->m < 2 * p + 1) return fail(KW_EKNOTS, name);
    const double *U = knt->U;
    const int32_t m = knt->m;
    // Non-finite knots would defeat every later comparison.
    for (int32_t i = 0; i <= m; ++i)
        if (!std::isfinite(U[i])) return fail(KW_EKNOTS, name);
    // 1. The run at the start has exactly p+1 equal knots.
    int32_t i = 0;
    while (i < m && U[i] == U[i + 1]) ++i;
    if (i != p) return fail(KW_EKNOTS, name);
    // 2. So has the run at the end.
    i = m;
    while (i > 0 && U[i] == U[i - 1]) --i;
    if (m - i != p) return fail(KW_EKNOTS, name);
    // 3. The interior never decreases and no knot repeats more than p times.
    int32_t j = p, k = p + 1;
    while (k <= m - p) {
        if (U[j] > U[k]) return fail(KW_EKNOTS, name);
        const int32_t start = k;
        while (k < m - p && U[k] == U[k + 1]) ++k;
        if (k - start + 1 > p) return fail(KW_EKNOTS, name);
        j = k;
        ++k;
    }
    return 0;
}

int16_t E_curwei(const Curve *cur, char *name) {
    if (!allocated(cur)) return fail(KW_ECURVE, name);
    if (!rational(cur->pol->Pw[0])) return 0;
    for (int32_t i = 0; i <= cur->pol->n; ++i)
        if (!weight_ok(cur->pol->Pw[i].w)) return fail(KW_EWEIGHT, name);
    return 0;
}

int16_t E_surwei(const Surface *sur, char *name) {
    if (!allocated(sur)) return fail(KW_ESURFACE, name);
    const ControlNet *net = sur->net;
    if (!rational(net->Pw[0][0])) return 0;
    for (int32_t i = 0; i <= net->n; ++i)
        for (int32_t j = 0; j <= net->m; ++j)
            if (!weight_ok(net->Pw[i][j].w)) return fail(KW_EWEIGHT, name);
    return 0;
}

int16_t E_curinp(const Curve *cur, char *name) {
    if (E_curdef(cur, name) || E_curwei(cur, name)) return 1;
    return E_kntdef(cur->knt, cur->p, name);
}

int16_t E_surinp(const Surface *sur, char *name) {
    if (E_surdef(sur, name) || E_surwei(sur, name)) return 1;
    if (E_kntdef(sur->knu, sur->p, name)) return 1;
    return E_kntdef(sur->knv, sur->q, name);
}

int16_t E_parval(const KnotVector *knt, double u, char *name) {
    if (!(knt->U[0] <= u && u <= knt->U[knt->m])) return fail(KW_EPARAM, name);
    return 0;
}

int16_t E_endpar(const KnotVector *knt, double u, char *name) {
    if (!(knt->U[0] < u && u < knt->U[knt->m])) return fail(KW_EPARAM, name);
    return 0;
}

int16_t E_cursto(const Curve *cur, int32_t n, int32_t m, char *name) {
    return at_least({{cur->pol->n, n}, {cur->knt->m, m}}, name);
}
int16_t E_sursto(const Surface *sur, int32_t n, int32_t m, int32_t r, int32_t s, char *name) {
    return at_least({{sur->net->n, n}, {sur->net->m, m}, {sur->knu->m, r}, {sur->knv->m, s}}, name);
}
int16_t E_cfnsto(const CurveFunction *cfn, int32_t n, int32_t m, char *name) {
    return at_least({{cfn->cvl->n, n}, {cfn->knt->m, m}}, name);
}
int16_t E_sfnsto(const SurfaceFunction *sfn, int32_t n, int32_t m, int32_t r, int32_t s,
                 char *name) {
    return at_least({{sfn->svl->n, n}, {sfn->svl->m, m}, {sfn->knu->m, r}, {sfn->knv->m, s}}, name);
}
int16_t E_rmasto(const RealMatrix *mat, int32_t n, int32_t m, char *name) {
    return at_least({{mat->n, n}, {mat->m, m}}, name);
}
int16_t E_imasto(const IntegerMatrix *mat, int32_t n, int32_t m, char *name) {
    return at_least({{mat->n, n}, {mat->m, m}}, name);
}
int16_t E_pmasto(const PointMatrix *mat, int32_t n, int32_t m, char *name) {
    return at_least({{mat->n, n}, {mat->m, m}}, name);
}
int16_t E_cmasto(const ControlPointMatrix *mat, int32_t n, int32_t m, char *name) {
    return at_least({{mat->n, n}, {mat->m, m}}, name);
}

int16_t E_curcpd(const Curve *cur, double tol, int32_t *i) {
    const ControlPoint *Pw = cur->pol->Pw;
    for (int32_t k = 1; k <= cur->pol->n; ++k) {
        if (coincident(Pw[k], Pw[k - 1], tol)) {
            *i = k;
            return 1;
        }
    }
    return 0;
}

int16_t E_surcpd(const Surface *sur, double tol, int32_t *i, int32_t *j) {
    const ControlNet *net = sur->net;
    for (int32_t a = 0; a <= net->n; ++a)
        for (int32_t b = 1; b <= net->m; ++b)
            if (coincident(net->Pw[a][b], net->Pw[a][b - 1], tol)) {
                *i = a;
                *j = b;
                return 1;
            }
    for (int32_t b = 0; b <= net->m; ++b)
        for (int32_t a = 1; a <= net->n; ++a)
            if (coincident(net->Pw[a][b], net->Pw[a - 1][b], tol)) {
                *i = a;
                *j = b;
                return 1;
            }
    return 0;
}

// Making, taking apart, checking, copying, compacting and converting records.
#include "core/records.hpp"

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "core/arith.hpp"
#include "knotwork/errors.h"

using namespace kw;

namespace {

template <class R>
using Holder =
    std::remove_pointer_t<std::remove_reference_t<decltype(holder(std::declval<R &>()))>>;
template <class H>
using Coef = std::remove_pointer_t<std::remove_reference_t<decltype(coefs(std::declval<H &>()))>>;

// Degree -1 marks an empty record; as unsigned 16 bits it reads 65535.
constexpr bool no_degree(int16_t p) noexcept { return static_cast<uint16_t>(p) > 65534; }

// ---- One-parameter objects: Curve, CurveFunction ---------------------------

template <class R>
bool empty1(const R *r) noexcept {
    return !holder(*r) || no_degree(r->p) || !r->knt;
}

template <class R>
void define1(R *r, int32_t n, int16_t p, int32_t m) noexcept {
    holder(*r)->n = n;
    r->p = p;
    r->knt->m = m;
}

template <class R>
int16_t get1(R *r, int32_t n, int16_t p, int32_t m, StorageStacks *stk) noexcept {
    Holder<R> *h = get_holder(static_cast<Holder<R> *>(nullptr), n, stk);
    if (!h) return 1;
    KnotVector *knt = S_getknt(m, stk);
    if (!knt) return 1;
    holder(*r) = h;
    r->p = p;
    r->knt = knt;
    return 0;
}

int16_t storage_ok(const Curve *c, int32_t n, int32_t m, char *name) {
    return E_cursto(c, n, m, name);
}
int16_t storage_ok(const CurveFunction *f, int32_t n, int32_t m, char *name) {
    return E_cfnsto(f, n, m, name);
}

// Empty: allocate; too small: code 9; large enough: redefine in place.
template <class R>
int16_t check1(R *r, int32_t n, int16_t p, int32_t m, char *name, StorageStacks *stk) noexcept {
    if (empty1(r)) return get1(r, n, p, m, stk);
    if (storage_ok(r, n, m, name)) return 1;
    define1(r, n, p, m);
    return 0;
}

template <class R>
int16_t copy1(const R *src, R *dst, char *name, StorageStacks *stk) noexcept {
    const int32_t n = holder(*src)->n, m = src->knt->m;
    const auto *from = coefs(*holder(*src));
    const double *U = src->knt->U;
    if (check1(dst, n, src->p, m, name, stk)) return 1;
    std::copy_n(from, n + 1, coefs(*holder(*dst)));
    std::copy_n(U, m + 1, dst->knt->U);
    return 0;
}

template <class R>
int16_t compact1(R *r, StorageStacks *stk) noexcept {
    using C = Coef<Holder<R>>;
    const int32_t n = holder(*r)->n, m = r->knt->m;
    C *Pw = get1d<C>(n, stk);
    if (!Pw) return 1;
    double *U = S_getr1d(m, stk);
    if (!U) {
        kill1d(Pw, stk);
        return 1;
    }
    C *old_Pw = coefs(*holder(*r));
    double *old_U = r->knt->U;
    std::copy_n(old_Pw, n + 1, Pw);
    std::copy_n(old_U, m + 1, U);
    coefs(*holder(*r)) = Pw;
    r->knt->U = U;
    kill1d(old_Pw, stk);
    U_kilr1d(old_U, stk);
    return 0;
}

// ---- Two-parameter objects: Surface, SurfaceFunction -----------------------

template <class R>
bool empty2(const R *r) noexcept {
    return !holder(*r) || no_degree(r->p) || no_degree(r->q) || !r->knu || !r->knv;
}

template <class R>
void define2(R *r, int32_t n, int32_t m, int16_t p, int16_t q, int32_t ru, int32_t sv) noexcept {
    holder(*r)->n = n;
    holder(*r)->m = m;
    r->p = p;
    r->q = q;
    r->knu->m = ru;
    r->knv->m = sv;
}

template <class R>
int16_t get2(R *r, int32_t n, int32_t m, int16_t p, int16_t q, int32_t ru, int32_t sv,
             StorageStacks *stk) noexcept {
    Holder<R> *h = get_holder(static_cast<Holder<R> *>(nullptr), n, m, stk);
    if (!h) return 1;
    KnotVector *knu = S_getknt(ru, stk);
    if (!knu) return 1;
    KnotVector *knv = S_getknt(sv, stk);
    if (!knv) return 1;
    holder(*r) = h;
    r->p = p;
    r->q = q;
    r->knu = knu;
    r->knv = knv;
    return 0;
}

int16_t storage_ok(const Surface *s, int32_t n, int32_t m, int32_t r, int32_t sv, char *name) {
    return E_sursto(s, n, m, r, sv, name);
}
int16_t storage_ok(const SurfaceFunction *f, int32_t n, int32_t m, int32_t r, int32_t sv,
                   char *name) {
    return E_sfnsto(f, n, m, r, sv, name);
}

template <class R>
int16_t check2(R *r, int32_t n, int32_t m, int16_t p, int16_t q, int32_t ru, int32_t sv, char *name,
               StorageStacks *stk) noexcept {
    if (empty2(r)) return get2(r, n, m, p, q, ru, sv, stk);
    if (storage_ok(r, n, m, ru, sv, name)) return 1;
    define2(r, n, m, p, q, ru, sv);
    return 0;
}

template <class R>
int16_t copy2(const R *src, R *dst, char *name, StorageStacks *stk) noexcept {
    const auto *h = holder(*src);
    const int32_t n = h->n, m = h->m, ru = src->knu->m, sv = src->knv->m;
    const auto *from = coefs(*holder(*src));
    const double *U = src->knu->U, *V = src->knv->U;
    if (check2(dst, n, m, src->p, src->q, ru, sv, name, stk)) return 1;
    auto **to = coefs(*holder(*dst));
    for (int32_t i = 0; i <= n; ++i) std::copy_n(from[i], m + 1, to[i]);
    std::copy_n(U, ru + 1, dst->knu->U);
    std::copy_n(V, sv + 1, dst->knv->U);
    return 0;
}

template <class R>
int16_t compact2(R *r, StorageStacks *stk) noexcept {
    using C = std::remove_pointer_t<Coef<Holder<R>>>;
    const int32_t n = holder(*r)->n, m = holder(*r)->m, ru = r->knu->m, sv = r->knv->m;
    C **Pw = get2d<C>(n, m, stk);
    if (!Pw) return 1;
    double *U = S_getr1d(ru, stk);
    double *V = U ? S_getr1d(sv, stk) : nullptr;
    if (!V) {
        U_kilr1d(U, stk);
        kill2d(Pw, stk);
        return 1;
    }
    C **old_Pw = coefs(*holder(*r));
    double *old_U = r->knu->U, *old_V = r->knv->U;
    for (int32_t i = 0; i <= n; ++i) std::copy_n(old_Pw[i], m + 1, Pw[i]);
    std::copy_n(old_U, ru + 1, U);
    std::copy_n(old_V, sv + 1, V);
    coefs(*holder(*r)) = Pw;
    r->knu->U = U;
    r->knv->U = V;
    kill2d(old_Pw, stk);
    U_kilr1d(old_U, stk);
    U_kilr1d(old_V, stk);
    return 0;
}

// ---- Knot reparametrisation -------------------------------------------------

// A knot vector whose ends coincide has no interval to map from.
bool degenerate(const KnotVector *knt) noexcept { return !(knt->U[0] < knt->U[knt->m]); }

bool same_interval(const KnotVector *knt, double a, double b) noexcept {
    return knt->U[0] == a && knt->U[knt->m] == b;
}

// End runs of p+1 knots become a and b; the interior maps linearly, with the
// scale taken from the old end knots before any knot changes.
void reparametrise(KnotVector *knt, int16_t p, double a, double b) noexcept {
    if (same_interval(knt, a, b)) return;
    double *U = knt->U;
    const int32_t m = knt->m;
    const double u0 = U[0], scale = (b - a) / (U[m] - u0);
    for (int32_t i = p + 1; i <= m - p - 1; ++i) U[i] = (U[i] - u0) * scale + a;
    for (int32_t i = 0; i <= p; ++i) {
        U[i] = a;
        U[m - i] = b;
    }
}

char kts_names[4][9] = {"U_CURKTS", "U_SURKTS", "U_CFNKTS", "U_SFNKTS"};

// ---- Predicates ------------------------------------------------------------

// Every point within U_tolpoi of the centroid of all.
template <class Obj>
int16_t point_like(Obj *obj, int32_t count) noexcept {
    Point c{0.0, 0.0, 0.0};
    each_point(obj, [&](const ControlPoint &P) { c = c + euclid(P); });
    c = (1.0 / count) * c;
    bool all = true;
    each_point(obj, [&](const ControlPoint &P) { all = all && norm(euclid(P) - c) < U_tolpoi; });
    return all;
}

template <class T>
Point cartesian(const T &a) noexcept;
template <>
Point cartesian<Point>(const Point &a) noexcept {
    return a;
}
template <>
Point cartesian<ControlPoint>(const ControlPoint &a) noexcept {
    return euclid(a);
}

template <class T>
bool close(const T &a, const T &b, double tol) noexcept {
    return norm(cartesian(a) - cartesian(b)) < tol;
}

template <class T>
int16_t ends_close2(const T *const *a, int32_t n, int32_t m, int16_t dir, double tol) noexcept {
    if (dir == 1) {
        for (int32_t j = 0; j <= m; ++j)
            if (!close(a[0][j], a[n][j], tol)) return 0;
        return 1;
    }
    if (dir == 2) {
        for (int32_t i = 0; i <= n; ++i)
            if (!close(a[i][0], a[i][m], tol)) return 0;
        return 1;
    }
    return 0;
}

}  // namespace

// ---- Make ---------------------------------------------------------------------

void U_makknt(KnotVector *knt, double *U, int32_t m) { *knt = KnotVector{m, U}; }
void U_makpl1(ControlPolygon *pol, ControlPoint *Pw, int32_t n) { *pol = ControlPolygon{n, Pw}; }

int16_t U_makpl2(ControlPolygon *pol, const double *wx, const double *wy, const double *wz,
                 const double *w, int32_t n, StorageStacks *stk) {
    ControlPoint *Pw = S_getcpa(wx, wy, wz, w, n, stk);
    if (!Pw) return 1;
    U_makpl1(pol, Pw, n);
    return 0;
}

void U_maknt1(ControlNet *net, ControlPoint **Pw, int32_t n, int32_t m) {
    *net = ControlNet{n, m, Pw};
}

int16_t U_maknt2(ControlNet *net, double *const *wx, double *const *wy, double *const *wz,
                 double *const *w, int32_t n, int32_t m, StorageStacks *stk) {
    ControlPoint **Pw = S_getcpm(wx, wy, wz, w, n, m, stk);
    if (!Pw) return 1;
    U_maknt1(net, Pw, n, m);
    return 0;
}

void U_makcu1(Curve *cur, ControlPolygon *pol, int16_t p, KnotVector *knt) {
    *cur = Curve{pol, p, knt};
}

int16_t U_makcu2(Curve *cur, ControlPoint *Pw, int32_t n, int16_t p, double *U, int32_t m,
                 StorageStacks *stk) {
    ControlPolygon *pol = S_getpos(stk);
    if (!pol) return 1;
    KnotVector *knt = S_getkns(stk);
    if (!knt) return 1;
    U_makpl1(pol, Pw, n);
    U_makknt(knt, U, m);
    U_makcu1(cur, pol, p, knt);
    return 0;
}

int16_t U_makcu3(Curve *cur, const double *wx, const double *wy, const double *wz, const double *w,
                 int32_t n, int16_t p, double *U, int32_t m, StorageStacks *stk) {
    ControlPoint *Pw = S_getcpa(wx, wy, wz, w, n, stk);
    if (!Pw) return 1;
    return U_makcu2(cur, Pw, n, p, U, m, stk);
}

int16_t U_makcpl(Curve *cur, ControlPolygon *pol, double u0, double u1, double u2, double u3,
                 StorageStacks *stk) {
    static char name[] = "U_MAKCPL";
    if (!pol || pol->n != 1) return fail(KW_EARG, name);
    KnotVector *knt = S_getknt(3, stk);
    if (!knt) return 1;
    knt->U[0] = u0;
    knt->U[1] = u1;
    knt->U[2] = u2;
    knt->U[3] = u3;
    U_makcu1(cur, pol, 1, knt);
    return 0;
}

void U_maksu1(Surface *sur, ControlNet *net, int16_t p, int16_t q, KnotVector *knu,
              KnotVector *knv) {
    *sur = Surface{net, p, q, knu, knv};
}

int16_t U_maksu2(Surface *sur, ControlPoint **Pw, int32_t n, int32_t m, int16_t p, int16_t q,
                 double *U, double *V, int32_t r, int32_t s, StorageStacks *stk) {
    ControlNet *net = S_getnes(stk);
    if (!net) return 1;
    KnotVector *knu = S_getkns(stk);
    if (!knu) return 1;
    KnotVector *knv = S_getkns(stk);
    if (!knv) return 1;
    U_maknt1(net, Pw, n, m);
    U_makknt(knu, U, r);
    U_makknt(knv, V, s);
    U_maksu1(sur, net, p, q, knu, knv);
    return 0;
}

int16_t U_makspl(Surface *sur, ControlNet *net, double a, double b, double c, double d,
                 StorageStacks *stk) {
    static char name[] = "U_MAKSPL";
    if (!net || net->n != 1 || net->m != 1) return fail(KW_EARG, name);
    KnotVector *knu = S_getknt(3, stk);
    if (!knu) return 1;
    KnotVector *knv = S_getknt(3, stk);
    if (!knv) return 1;
    std::fill_n(knu->U, 2, a);
    std::fill_n(knu->U + 2, 2, b);
    std::fill_n(knv->U, 2, c);
    std::fill_n(knv->U + 2, 2, d);
    U_maksu1(sur, net, 1, 1, knu, knv);
    return 0;
}

void U_makcvl(ValueVector *cvl, double *v, int32_t n) { *cvl = ValueVector{n, v}; }
void U_maksvl(ValueGrid *svl, double **v, int32_t n, int32_t m) { *svl = ValueGrid{n, m, v}; }
void U_makcf1(CurveFunction *cfn, ValueVector *cvl, int16_t p, KnotVector *knt) {
    *cfn = CurveFunction{cvl, p, knt};
}

int16_t U_makcf2(CurveFunction *cfn, double *v, int32_t n, int16_t p, double *U, int32_t m,
                 StorageStacks *stk) {
    ValueVector *cvl = S_getcvl(stk);
    if (!cvl) return 1;
    KnotVector *knt = S_getkns(stk);
    if (!knt) return 1;
    U_makcvl(cvl, v, n);
    U_makknt(knt, U, m);
    U_makcf1(cfn, cvl, p, knt);
    return 0;
}

void U_maksf1(SurfaceFunction *sfn, ValueGrid *svl, int16_t p, int16_t q, KnotVector *knu,
              KnotVector *knv) {
    *sfn = SurfaceFunction{svl, p, q, knu, knv};
}

int16_t U_maksf2(SurfaceFunction *sfn, double **v, int32_t n, int32_t m, int16_t p, int16_t q,
                 double *U, double *V, int32_t r, int32_t s, StorageStacks *stk) {
    ValueGrid *svl = S_getsvl(stk);
    if (!svl) return 1;
    KnotVector *knu = S_getkns(stk);
    if (!knu) return 1;
    KnotVector *knv = S_getkns(stk);
    if (!knv) return 1;
    U_maksvl(svl, v, n, m);
    U_makknt(knu, U, r);
    U_makknt(knv, V, s);
    U_maksf1(sfn, svl, p, q, knu, knv);
    return 0;
}

// ---- Break --------------------------------------------------------------------

void U_curbre(const Curve *cur, int32_t *n, ControlPoint **Pw, int16_t *p, int32_t *m, double **U) {
    *n = cur->pol->n;
    *Pw = cur->pol->Pw;
    *p = cur->p;
    *m = cur->knt->m;
    *U = cur->knt->U;
}

void U_surbre(const Surface *sur, int32_t *n, int32_t *m, ControlPoint ***Pw, int16_t *p,
              int16_t *q, int32_t *r, int32_t *s, double **U, double **V) {
    *n = sur->net->n;
    *m = sur->net->m;
    *Pw = sur->net->Pw;
    *p = sur->p;
    *q = sur->q;
    *r = sur->knu->m;
    *s = sur->knv->m;
    *U = sur->knu->U;
    *V = sur->knv->U;
}

void U_kntbre(const KnotVector *knt, int32_t *m, double **U) {
    *m = knt->m;
    *U = knt->U;
}

void U_polbre(const ControlPolygon *pol, int32_t *n, ControlPoint **Pw) {
    *n = pol->n;
    *Pw = pol->Pw;
}

void U_netbre(const ControlNet *net, int32_t *n, int32_t *m, ControlPoint ***Pw) {
    *n = net->n;
    *m = net->m;
    *Pw = net->Pw;
}

void U_cfnbre(const CurveFunction *cfn, int32_t *n, double **v, int16_t *p, int32_t *m,
              double **U) {
    *n = cfn->cvl->n;
    *v = cfn->cvl->v;
    *p = cfn->p;
    *m = cfn->knt->m;
    *U = cfn->knt->U;
}

void U_sfnbre(const SurfaceFunction *sfn, int32_t *n, int32_t *m, double ***v, int16_t *p,
              int16_t *q, int32_t *r, int32_t *s, double **U, double **V) {
    *n = sfn->svl->n;
    *m = sfn->svl->m;
    *v = sfn->svl->v;
    *p = sfn->p;
    *q = sfn->q;
    *r = sfn->knu->m;
    *s = sfn->knv->m;
    *U = sfn->knu->U;
    *V = sfn->knv->U;
}

// ---- Accessors ----------------------------------------------------------------

void U_curind(const Curve *cur, int32_t *n, int32_t *m) {
    *n = cur->pol->n;
    *m = cur->knt->m;
}
void U_curdeg(const Curve *cur, int16_t *p) { *p = cur->p; }
void U_curknt(const Curve *cur, int32_t *m, double **U) { U_kntbre(cur->knt, m, U); }
void U_curknp(const Curve *cur, KnotVector **knt) { *knt = cur->knt; }
void U_curpol(const Curve *cur, int32_t *n, ControlPoint **Pw) { U_polbre(cur->pol, n, Pw); }
void U_curppk(const Curve *cur, ControlPolygon **pol, int16_t *p, KnotVector **knt) {
    *pol = cur->pol;
    *p = cur->p;
    *knt = cur->knt;
}
void U_curpwu(const Curve *cur, ControlPoint **Pw, double **U) {
    *Pw = cur->pol->Pw;
    *U = cur->knt->U;
}
void U_curpku(const Curve *cur, ControlPoint **Pw, KnotVector **knt, double **U) {
    *Pw = cur->pol->Pw;
    *knt = cur->knt;
    *U = cur->knt->U;
}
void U_curpar(const Curve *cur, double *u0, double *um) {
    *u0 = cur->knt->U[0];
    *um = cur->knt->U[cur->knt->m];
}
void U_curspu(Curve *cur, ControlPoint *Pw, double *U) {
    cur->pol->Pw = Pw;
    cur->knt->U = U;
}

void U_surind(const Surface *sur, int32_t *n, int32_t *m, int32_t *r, int32_t *s) {
    *n = sur->net->n;
    *m = sur->net->m;
    *r = sur->knu->m;
    *s = sur->knv->m;
}
void U_surdeg(const Surface *sur, int16_t *p, int16_t *q) {
    *p = sur->p;
    *q = sur->q;
}
void U_surknt(const Surface *sur, int32_t *r, double **U, int32_t *s, double **V) {
    U_kntbre(sur->knu, r, U);
    U_kntbre(sur->knv, s, V);
}
void U_surknp(const Surface *sur, KnotVector **knu, KnotVector **knv) {
    *knu = sur->knu;
    *knv = sur->knv;
}
void U_surnet(const Surface *sur, int32_t *n, int32_t *m, ControlPoint ***Pw) {
    U_netbre(sur->net, n, m, Pw);
}
void U_surnpk(const Surface *sur, ControlNet **net, int16_t *p, int16_t *q, KnotVector **knu,
              KnotVector **knv) {
    *net = sur->net;
    U_surdeg(sur, p, q);
    U_surknp(sur, knu, knv);
}
void U_surpku(const Surface *sur, ControlPoint ***Pw, KnotVector **knu, double **U,
              KnotVector **knv, double **V) {
    *Pw = sur->net->Pw;
    *knu = sur->knu;
    *U = sur->knu->U;
    *knv = sur->knv;
    *V = sur->knv->U;
}
void U_surpwu(const Surface *sur, ControlPoint ***Pw, double **U, double **V) {
    *Pw = sur->net->Pw;
    *U = sur->knu->U;
    *V = sur->knv->U;
}
void U_surpar(const Surface *sur, double *u0, double *ur, double *v0, double *vs) {
    *u0 = sur->knu->U[0];
    *ur = sur->knu->U[sur->knu->m];
    *v0 = sur->knv->U[0];
    *vs = sur->knv->U[sur->knv->m];
}
void U_surspu(Surface *sur, ControlPoint **Pw, double *U, double *V) {
    sur->net->Pw = Pw;
    sur->knu->U = U;
    sur->knv->U = V;
}

void U_cfnind(const CurveFunction *cfn, int32_t *n, int32_t *m) {
    *n = cfn->cvl->n;
    *m = cfn->knt->m;
}
void U_cfndeg(const CurveFunction *cfn, int16_t *p) { *p = cfn->p; }
void U_cfnknt(const CurveFunction *cfn, int32_t *m, double **U) { U_kntbre(cfn->knt, m, U); }
void U_cfnknp(const CurveFunction *cfn, KnotVector **knt) { *knt = cfn->knt; }
void U_cfncvl(const CurveFunction *cfn, int32_t *n, double **v) {
    *n = cfn->cvl->n;
    *v = cfn->cvl->v;
}
void U_cfncpk(const CurveFunction *cfn, ValueVector **cvl, int16_t *p, KnotVector **knt) {
    *cvl = cfn->cvl;
    *p = cfn->p;
    *knt = cfn->knt;
}
void U_cfnfuu(const CurveFunction *cfn, double **v, double **U) {
    *v = cfn->cvl->v;
    *U = cfn->knt->U;
}

void U_sfnind(const SurfaceFunction *sfn, int32_t *n, int32_t *m, int32_t *r, int32_t *s) {
    *n = sfn->svl->n;
    *m = sfn->svl->m;
    *r = sfn->knu->m;
    *s = sfn->knv->m;
}
void U_sfndeg(const SurfaceFunction *sfn, int16_t *p, int16_t *q) {
    *p = sfn->p;
    *q = sfn->q;
}
void U_sfnknt(const SurfaceFunction *sfn, int32_t *r, double **U, int32_t *s, double **V) {
    U_kntbre(sfn->knu, r, U);
    U_kntbre(sfn->knv, s, V);
}
void U_sfnknp(const SurfaceFunction *sfn, KnotVector **knu, KnotVector **knv) {
    *knu = sfn->knu;
    *knv = sfn->knv;
}
void U_sfnsvl(const SurfaceFunction *sfn, int32_t *n, int32_t *m, double ***v) {
    *n = sfn->svl->n;
    *m = sfn->svl->m;
    *v = sfn->svl->v;
}
void U_sfnspk(const SurfaceFunction *sfn, ValueGrid **svl, int16_t *p, int16_t *q,
              KnotVector **knu, KnotVector **knv) {
    *svl = sfn->svl;
    U_sfndeg(sfn, p, q);
    U_sfnknp(sfn, knu, knv);
}

// ---- Initialise, redefine, get -------------------------------------------------

void U_inicur(Curve *cur) { *cur = Curve{nullptr, -1, nullptr}; }
void U_inisur(Surface *sur) { *sur = Surface{nullptr, -1, -1, nullptr, nullptr}; }
void U_inicfn(CurveFunction *cfn) { *cfn = CurveFunction{nullptr, -1, nullptr}; }
void U_inisfn(SurfaceFunction *sfn) { *sfn = SurfaceFunction{nullptr, -1, -1, nullptr, nullptr}; }
void U_inigcp(ControlNet *net) { *net = ControlNet{-1, -1, nullptr}; }

void U_defcur(Curve *cur, int32_t n, int16_t p, int32_t m) { define1(cur, n, p, m); }
void U_defsur(Surface *sur, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s) {
    define2(sur, n, m, p, q, r, s);
}
void U_defknt(KnotVector *knt, int32_t m) { knt->m = m; }
void U_defcfn(CurveFunction *cfn, int32_t n, int16_t p, int32_t m) { define1(cfn, n, p, m); }
void U_defsfn(SurfaceFunction *sfn, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
              int32_t s) {
    define2(sfn, n, m, p, q, r, s);
}

int16_t U_getcur(Curve *cur, int32_t n, int16_t p, int32_t m, StorageStacks *stk) {
    return get1(cur, n, p, m, stk);
}
int16_t U_getsur(Surface *sur, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                 StorageStacks *stk) {
    return get2(sur, n, m, p, q, r, s, stk);
}
int16_t U_getcfn(CurveFunction *cfn, int32_t n, int16_t p, int32_t m, StorageStacks *stk) {
    return get1(cfn, n, p, m, stk);
}
int16_t U_getsfn(SurfaceFunction *sfn, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                 int32_t s, StorageStacks *stk) {
    return get2(sfn, n, m, p, q, r, s, stk);
}

// ---- Empty predicates and output checks -----------------------------------------

int16_t U_iscurn(const Curve *cur) { return empty1(cur); }
int16_t U_issurn(const Surface *sur) { return empty2(sur); }
int16_t U_iscfnn(const CurveFunction *cfn) { return empty1(cfn); }
int16_t U_issfnn(const SurfaceFunction *sfn) { return empty2(sfn); }

int16_t U_curchk(Curve *cur, int32_t n, int16_t p, int32_t m, char *name, StorageStacks *stk) {
    return check1(cur, n, p, m, name, stk);
}
int16_t U_surchk(Surface *sur, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r, int32_t s,
                 char *name, StorageStacks *stk) {
    return check2(sur, n, m, p, q, r, s, name, stk);
}
int16_t U_cfnchk(CurveFunction *cfn, int32_t n, int16_t p, int32_t m, char *name,
                 StorageStacks *stk) {
    return check1(cfn, n, p, m, name, stk);
}
int16_t U_sfnchk(SurfaceFunction *sfn, int32_t n, int32_t m, int16_t p, int16_t q, int32_t r,
                 int32_t s, char *name, StorageStacks *stk) {
    return check2(sfn, n, m, p, q, r, s, name, stk);
}

int16_t U_kntchk(KnotVector **knt, int32_t m, char *name, StorageStacks *stk) {
    if (!*knt || !(*knt)->U) {
        KnotVector *fresh = S_getknt(m, stk);
        if (!fresh) return 1;
        *knt = fresh;
        return 0;
    }
    if ((*knt)->m < m) return fail(KW_ESTORAGE, name);
    U_defknt(*knt, m);
    return 0;
}

// ---- Copy and compact ------------------------------------------------------------

int16_t U_curcop(const Curve *src, Curve *dst, StorageStacks *stk) {
    static char name[] = "U_CURCOP";
    return copy1(src, dst, name, stk);
}
int16_t U_surcop(const Surface *src, Surface *dst, StorageStacks *stk) {
    static char name[] = "U_SURCOP";
    return copy2(src, dst, name, stk);
}
int16_t U_cfncop(const CurveFunction *src, CurveFunction *dst, StorageStacks *stk) {
    static char name[] = "U_CFNCOP";
    return copy1(src, dst, name, stk);
}
int16_t U_sfncop(const SurfaceFunction *src, SurfaceFunction *dst, StorageStacks *stk) {
    static char name[] = "U_SFNCOP";
    return copy2(src, dst, name, stk);
}
int16_t U_kntcop(const KnotVector *src, KnotVector **dst, StorageStacks *stk) {
    static char name[] = "U_KNTCOP";
    const int32_t m = src->m;
    const double *U = src->U;
    if (U_kntchk(dst, m, name, stk)) return 1;
    std::copy_n(U, m + 1, (*dst)->U);
    return 0;
}

int16_t U_curcmp(Curve *cur, StorageStacks *stk) { return compact1(cur, stk); }
int16_t U_surcmp(Surface *sur, StorageStacks *stk) { return compact2(sur, stk); }
int16_t U_cfncmp(CurveFunction *cfn, StorageStacks *stk) { return compact1(cfn, stk); }
int16_t U_sfncmp(SurfaceFunction *sfn, StorageStacks *stk) { return compact2(sfn, stk); }

// ---- Knot reparametrisation ---------------------------------------------------------

int16_t U_curkts(Curve *cur, double a, double b) {
    if (!(a < b) || degenerate(cur->knt)) return fail(KW_EARG, kts_names[0]);
    reparametrise(cur->knt, cur->p, a, b);
    return 0;
}
int16_t U_surkts(Surface *sur, double a, double b, double c, double d) {
    if (!(a < b) || !(c < d) || degenerate(sur->knu) || degenerate(sur->knv))
        return fail(KW_EARG, kts_names[1]);
    reparametrise(sur->knu, sur->p, a, b);
    reparametrise(sur->knv, sur->q, c, d);
    return 0;
}
int16_t U_cfnkts(CurveFunction *cfn, double a, double b) {
    if (!(a < b) || degenerate(cfn->knt)) return fail(KW_EARG, kts_names[2]);
    reparametrise(cfn->knt, cfn->p, a, b);
    return 0;
}
int16_t U_sfnkts(SurfaceFunction *sfn, double a, double b, double c, double d) {
    if (!(a < b) || !(c < d) || degenerate(sfn->knu) || degenerate(sfn->knv))
        return fail(KW_EARG, kts_names[3]);
    reparametrise(sfn->knu, sfn->p, a, b);
    reparametrise(sfn->knv, sfn->q, c, d);
    return 0;
}

// ---- Conversions in place ------------------------------------------------------------

void U_cur3t2(Curve *cur) {
    each_point(cur, [](ControlPoint &P) { P.z = kPlanar; });
}
void U_cur2t3(Curve *cur) {
    each_point(cur, [](ControlPoint &P) {
        if (planar(P.z)) P.z = 0.0;
    });
}
void U_curnrr(Curve *cur) {
    each_point(cur, [](ControlPoint &P) {
        if (!rational(P)) P.w = 1.0;
    });
}
void U_currnr(Curve *cur) {
    each_point(cur, [](ControlPoint &P) { P.w = kNonRational; });
}
void U_cureuc(Curve *cur) {
    each_point(cur, [](ControlPoint &P) { P = euclid_cp(P); });
}
void U_surnrr(Surface *sur) {
    each_point(sur, [](ControlPoint &P) {
        if (!rational(P)) P.w = 1.0;
    });
}
void U_surrnr(Surface *sur) {
    each_point(sur, [](ControlPoint &P) { P.w = kNonRational; });
}
void U_sureuc(Surface *sur) {
    each_point(sur, [](ControlPoint &P) { P = euclid_cp(P); });
}

void U_makcco(Curve **cur, int32_t k) {
    bool any_rational = false, any_3d = false;
    for (int32_t i = 0; i <= k; ++i) {
        any_rational = any_rational || U_iscurr(cur[i]);
        any_3d = any_3d || U_iscur3(cur[i]);
    }
    for (int32_t i = 0; i <= k; ++i) {
        if (any_rational && !U_iscurr(cur[i])) U_curnrr(cur[i]);
        if (any_3d && !U_iscur3(cur[i])) U_cur2t3(cur[i]);
    }
}

void U_maksco(Surface **sur, int32_t k) {
    bool any_rational = false;
    for (int32_t i = 0; i <= k; ++i) any_rational = any_rational || U_issurr(sur[i]);
    for (int32_t i = 0; i <= k && any_rational; ++i)
        if (!U_issurr(sur[i])) U_surnrr(sur[i]);
}

// ---- Shape predicates -------------------------------------------------------------------

int16_t U_iscur3(const Curve *cur) { return !planar(cur->pol->Pw[0].z); }
int16_t U_iscurr(const Curve *cur) { return rational(cur->pol->Pw[0]); }
int16_t U_iscurc(const Curve *cur) {
    const ControlPoint *Pw = cur->pol->Pw;
    return close(Pw[0], Pw[cur->pol->n], U_tolpoi);
}
int16_t U_iscurp(const Curve *cur) {
    return point_like(cur, cur->pol->n + 1);
}
int16_t U_iscuz0(const Curve *cur) {
    bool all = true;
    each_point(cur, [&](const ControlPoint &P) { all = all && P.z == 0.0; });
    return all;
}
int16_t U_issurr(const Surface *sur) { return rational(sur->net->Pw[0][0]); }
int16_t U_issurc(const Surface *sur, int16_t dir) {
    const ControlNet *net = sur->net;
    return ends_close2<ControlPoint>(net->Pw, net->n, net->m, dir, U_tolpoi);
}
int16_t U_issurp(const Surface *sur) {
    return point_like(sur, (sur->net->n + 1) * (sur->net->m + 1));
}

int16_t U_isp1dc(const void *a, int32_t n, int16_t kind, double tol) {
    if (kind == 1) {
        const auto *P = static_cast<const Point *>(a);
        return close(P[0], P[n], tol);
    }
    if (kind == 2) {
        const auto *P = static_cast<const ControlPoint *>(a);
        return close(P[0], P[n], tol);
    }
    return 0;
}

int16_t U_isp2dc(const void *const *a, int32_t n, int32_t m, int16_t kind, int16_t dir, double tol) {
    if (kind == 1)
        return ends_close2(reinterpret_cast<const Point *const *>(a), n, m, dir, tol);
    if (kind == 2)
        return ends_close2(reinterpret_cast<const ControlPoint *const *>(a), n, m, dir, tol);
    return 0;
}

// Converters from the parameter data of IGES entities to curves, surfaces
// and matrices, and the helpers they share.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "core/records.hpp"
#include "io/iges.hpp"
#include "io/kinds.hpp"
#include "knotwork/iges.h"
#include "knotwork/numeric.h"
#include "knotwork/records.h"

using namespace kw;

namespace {

constexpr int64_t kMaxIndex = std::numeric_limits<int32_t>::max();

char pnc_name[] = "N_IGSPNC";

// Whether par[0..np] holds count parameters from first on (code 14 under
// N_IGSPNC otherwise); the counts may come from sums that overflow 32 bits.
int16_t need(int32_t np, int64_t first, int64_t count) noexcept {
    if (first < 0 || count < 0 || first + count - 1 > np) return fail(KW_EARG, pnc_name);
    return 0;
}

// ---- Knots ------------------------------------------------------------------

double knot_tolerance(const double *T, int32_t A) noexcept {
    return U_tolzer * std::max({1.0, std::fabs(T[0]), std::fabs(T[A])});
}

// Calls run(first, last) for each run of knots within tol of its first knot;
// false at a knot more than tol below the start of its run.
template <class Run>
bool each_run(const double *T, int32_t A, double tol, Run run) noexcept {
    for (int32_t i = 0; i <= A;) {
        int32_t j = i;
        while (j < A && T[j + 1] - T[i] <= tol) {
            if (T[j + 1] < T[i] - tol) return false;
            ++j;
        }
        run(i, j);
        i = j + 1;
    }
    return true;
}

void compact_knots(const double *T, int32_t A, double *U) noexcept {
    each_run(T, A, knot_tolerance(T, A), [&](int32_t first, int32_t last) {
        std::fill(U + first, U + last + 1, T[first]);
    });
}

// ---- Weights ------------------------------------------------------------------

enum class Weights { invalid, equal, rational };

// Weights W[0..count-1] must be positive and finite. When they all agree the
// entity is non-rational; otherwise *s is the common factor nearest to 1
// that brings them into [U_minwei, U_maxwei], which leaves the geometry as
// it is.
Weights classify_weights(const double *W, int64_t count, double *s) noexcept {
    double lo = W[0], hi = W[0];
    for (int64_t i = 0; i < count; ++i) {
        if (!(std::isfinite(W[i]) && W[i] > 0.0)) return Weights::invalid;
        lo = std::min(lo, W[i]);
        hi = std::max(hi, W[i]);
    }
    if (lo == hi) return Weights::equal;
    const double least = U_minwei / lo, most = U_maxwei / hi;
    if (!(least <= most)) return Weights::invalid;
    *s = std::clamp(1.0, least, most);
    return Weights::rational;
}

template <class Obj>
void scale_weights(Obj *obj, double s) noexcept {
    if (s == 1.0) return;
    each_point(obj, [s](ControlPoint &P) { P = scale(s, P); });
}

// ---- Control points --------------------------------------------------------------

// A B-spline entity of degree 0 would be a set of points, not a curve; the
// library's knot check refuses it too.
bool entity_degree_ok(int32_t M) noexcept { return M >= 1 && M <= U_maxdeg; }

bool known_kind(int16_t kind) noexcept { return kind >= 1 && kind <= 4; }

// Control point i of coordinates X (x, y, z each) and weights W, of a kind.
ControlPoint control_point(const double *W, const double *X, int64_t i, int kind) noexcept {
    const double *x = X + 3 * i;
    return weight(ControlPoint{x[0], x[1], io::kind_3d(kind) ? x[2] : kPlanar,
                               io::kind_rational(kind) ? W[i] : kNonRational});
}

int16_t check_kind(const double *W, int16_t kind, char *name) noexcept {
    if (!known_kind(kind)) return fail(KW_ECASE, name);
    if (io::kind_rational(kind) && !W) return fail(KW_EARG, name);
    return 0;
}

char ccp_name[] = "N_IGSCCP";
char scp_name[] = "N_IGSSCP";

}  // namespace

// ---- Parameter helpers ---------------------------------------------------------------

int16_t N_igspsn(const double *par, int32_t np, int32_t i, int32_t *v) {
    static char name[] = "N_IGSPSN";
    if (!par || i < 0 || i > np) return fail(KW_EARG, name);
    const double x = par[i];
    if (!(std::isfinite(x) && x == std::trunc(x) && x >= std::numeric_limits<int32_t>::min() &&
          x <= std::numeric_limits<int32_t>::max()))
        return fail(KW_EARG, name);
    *v = static_cast<int32_t>(x);
    return 0;
}

int16_t N_igspnc(int32_t np, int32_t first, int32_t count) { return need(np, first, count); }

int16_t N_igspnk(int32_t K, int16_t M, int32_t *A) {
    static char name[] = "N_IGSPNK";
    const int64_t sum = static_cast<int64_t>(K) + M + 1;
    if (M < 0 || K < M || sum > kMaxIndex) return fail(KW_EARG, name);
    *A = static_cast<int32_t>(sum);
    return 0;
}

// ---- Knots and control points ------------------------------------------------------------

int16_t N_igsvkb(const double *T, int32_t A, int16_t M, double v0, double v1) {
    static char name[] = "N_IGSVKB";
    if (!T || M < 0 || A < 2 * M + 1) return fail(KW_EKNOTS, name);
    if (!std::all_of(T, T + A + 1, [](double t) { return std::isfinite(t); }))
        return fail(KW_EKNOTS, name);
    const double tol = knot_tolerance(T, A);
    int32_t runs = 0, first_run = 0, last_run = 0, last_start = 0, longest_inner = 0;
    const bool ordered = each_run(T, A, tol, [&](int32_t first, int32_t last) {
        const int32_t length = last - first + 1;
        if (runs >= 2) longest_inner = std::max(longest_inner, last_run);  // an interior run
        if (runs == 0) first_run = length;
        last_run = length;
        last_start = first;
        ++runs;
    });
    if (!ordered || runs < 2 || first_run != M + 1 || last_run != M + 1 || longest_inner > M)
        return fail(KW_EKNOTS, name);
    if (!(std::fabs(v0 - T[0]) <= tol && std::fabs(v1 - T[last_start]) <= tol))
        return fail(KW_EKNOTS, name);
    return 0;
}

int16_t N_igsccp(const double *W, const double *X, int32_t K, int16_t kind, ControlPoint *Pw) {
    if (check_kind(W, kind, ccp_name)) return 1;
    for (int32_t i = 0; i <= K; ++i) Pw[i] = control_point(W, X, i, kind);
    return 0;
}

int16_t N_igsscp(const double *W, const double *X, int32_t K1, int32_t K2, int16_t kind,
                 ControlPoint **Pw) {
    if (check_kind(W, kind, scp_name)) return 1;
    for (int32_t j = 0; j <= K2; ++j)
        for (int32_t i = 0; i <= K1; ++i)
            Pw[i][j] = control_point(W, X, static_cast<int64_t>(j) * (K1 + 1) + i, kind);
    return 0;
}

void N_igscsk(const double *T, int32_t A, double *U) { compact_knots(T, A, U); }

void N_igsssk(const double *S, int32_t A1, const double *T, int32_t A2, double *U, double *V) {
    compact_knots(S, A1, U);
    compact_knots(T, A2, V);
}

// ---- Converters ------------------------------------------------------------------------

int16_t N_igs110(const double *par, int32_t np, Curve *cur, StorageStacks *stk) {
    static char name[] = "N_IGS110";
    if (!par) return fail(KW_EARG, name);
    if (need(np, 0, 6)) return 1;
    if (U_curchk(cur, 1, 1, 3, name, stk)) return 1;
    cur->pol->Pw[0] = ControlPoint{par[0], par[1], par[2], kNonRational};
    cur->pol->Pw[1] = ControlPoint{par[3], par[4], par[5], kNonRational};
    double *U = cur->knt->U;
    U[0] = U[1] = 0.0;
    U[2] = U[3] = 1.0;
    return 0;
}

int16_t N_igs124(const double *par, int32_t np, RealMatrix *mat, StorageStacks *stk) {
    static char name[] = "N_IGS124";
    if (!par) return fail(KW_EARG, name);
    if (need(np, 0, 12)) return 1;
    if (!std::all_of(par, par + 12, [](double x) { return std::isfinite(x); }))
        return fail(KW_EARG, name);
    // Rows of [R T]: par[4r .. 4r+3].
    auto R = [par](int r, int c) { return par[4 * r + c]; };
    const double det = R(0, 0) * (R(1, 1) * R(2, 2) - R(1, 2) * R(2, 1)) -
                       R(0, 1) * (R(1, 0) * R(2, 2) - R(1, 2) * R(2, 0)) +
                       R(0, 2) * (R(1, 0) * R(2, 1) - R(1, 1) * R(2, 0));
    double big = 0.0;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) big = std::max(big, std::fabs(R(r, c)));
    if (!(std::fabs(det) > U_tolzer * big * big * big)) return fail(KW_ESINGULAR, name);
    if (M_rmachk(mat, 3, 3, KW_FULL, 1, name, stk)) return 1;
    for (int r = 0; r < 3; ++r) std::copy_n(par + 4 * r, 4, mat->a[r]);
    const double last[4] = {0.0, 0.0, 0.0, 1.0};
    std::copy_n(last, 4, mat->a[3]);
    return 0;
}

int16_t N_igs126(const double *par, int32_t np, Curve *cur, StorageStacks *stk) {
    static char name[] = "N_IGS126";
    int32_t K, M, planar_flag, A;
    if (N_igspsn(par, np, 0, &K) || N_igspsn(par, np, 1, &M) || N_igspsn(par, np, 2, &planar_flag))
        return 1;
    if (!entity_degree_ok(M)) return fail(KW_EDEGREE, name);
    if (N_igspnk(K, static_cast<int16_t>(M), &A)) return 1;
    // Where the knots, weights, coordinates and parameter range start.
    const int64_t t = 6, w = t + A + 1, x = w + K + 1, v = x + 3 * (static_cast<int64_t>(K) + 1);
    if (need(np, 0, v + 2)) return 1;
    if (N_igsvkb(par + t, A, static_cast<int16_t>(M), par[v], par[v + 1])) return 1;
    double s = 1.0;
    const Weights weights = classify_weights(par + w, K + 1, &s);
    if (weights == Weights::invalid) return fail(KW_EWEIGHT, name);
    bool flat = planar_flag == 1;
    for (int64_t i = 0; i <= K && flat; ++i) flat = par[x + 3 * i + 2] == 0.0;
    const int kind = io::point_kind(weights == Weights::rational ? 1 : 0, flat ? 2 : 3);
    if (U_curchk(cur, K, static_cast<int16_t>(M), A, name, stk)) return 1;
    N_igsccp(par + w, par + x, K, static_cast<int16_t>(kind), cur->pol->Pw);
    scale_weights(cur, s);
    N_igscsk(par + t, A, cur->knt->U);
    return 0;
}

int16_t N_igs128(const double *par, int32_t np, Surface *sur, StorageStacks *stk) {
    static char name[] = "N_IGS128";
    int32_t K1, K2, M1, M2, A1, A2;
    if (N_igspsn(par, np, 0, &K1) || N_igspsn(par, np, 1, &K2) || N_igspsn(par, np, 2, &M1) ||
        N_igspsn(par, np, 3, &M2))
        return 1;
    if (!entity_degree_ok(M1) || !entity_degree_ok(M2)) return fail(KW_EDEGREE, name);
    const auto p = static_cast<int16_t>(M1), q = static_cast<int16_t>(M2);
    if (N_igspnk(K1, p, &A1) || N_igspnk(K2, q, &A2)) return 1;
    const int64_t points = (static_cast<int64_t>(K1) + 1) * (static_cast<int64_t>(K2) + 1);
    const int64_t s = 9, t = s + A1 + 1, w = t + A2 + 1, x = w + points, r = x + 3 * points;
    if (need(np, 0, r + 4)) return 1;
    if (N_igsvkb(par + s, A1, p, par[r], par[r + 1]) ||
        N_igsvkb(par + t, A2, q, par[r + 2], par[r + 3]))
        return 1;
    double scale_factor = 1.0;
    const Weights weights = classify_weights(par + w, points, &scale_factor);
    if (weights == Weights::invalid) return fail(KW_EWEIGHT, name);
    const int kind = io::point_kind(weights == Weights::rational ? 1 : 0, 3);
    if (U_surchk(sur, K1, K2, p, q, A1, A2, name, stk)) return 1;
    N_igsscp(par + w, par + x, K1, K2, static_cast<int16_t>(kind), sur->net->Pw);
    scale_weights(sur, scale_factor);
    N_igsssk(par + s, A1, par + t, A2, sur->knu->U, sur->knv->U);
    return 0;
}

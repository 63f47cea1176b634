// Random clamped curves and independent reference evaluations for the knot,
// evaluation and tool tests. Seeded and platform-independent: the same
// curves on every run.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "core/alloc.hpp"
#include "core/arith.hpp"
#include "knotwork.h"

namespace kwtest {

using kw::operator+;
using kw::operator-;
using kw::operator*;

class Rng {
public:
    explicit Rng(uint64_t seed) : g_(seed) {}
    // Uniform in [a, b), from the raw 53 bits (std distributions vary by library).
    double uniform(double a, double b) { return a + (b - a) * (double(g_() >> 11) * 0x1p-53); }
    int integer(int a, int b) { return a + int(g_() % uint64_t(b - a + 1)); }
    bool coin() { return (g_() >> 63) != 0; }

private:
    std::mt19937_64 g_;
};

// A storage context emptied at the end of the scope.
class Context {
public:
    Context() { N_inurbs(&stk_); }
    ~Context() { N_enurbs(&stk_); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;
    StorageStacks *get() { return &stk_; }
    // Nodes on all lists: what a routine that kills its scratch must leave.
    int nodes() const {
        int c = 0;
        for (const StackNode *head : stk_.head)
            for (const StackNode *n = head; n; n = n->next) ++c;
        return c;
    }

private:
    StorageStacks stk_;
};

inline char *name(const char *s) {
    static char buffer[64];
    std::strncpy(buffer, s, sizeof buffer - 1);
    return buffer;
}

// Clamped knots for degree p and n + 1 control points on [a, b]: interior
// knots at distinct random places, each repeated 1..maxmult times.
inline std::vector<double> random_knots(Rng &rng, int p, int n, double a, double b, int maxmult) {
    std::vector<int> mult;
    for (int left = n - p; left > 0;) {
        const int s = std::min(left, rng.integer(1, std::max(1, maxmult)));
        mult.push_back(s);
        left -= s;
    }
    std::vector<double> gaps(mult.size() + 1);
    double total = 0.0;
    for (double &g : gaps) total += g = rng.uniform(0.2, 1.0);
    std::vector<double> U(p + 1, a);
    double at = 0.0;
    for (size_t i = 0; i < mult.size(); ++i) {
        at += gaps[i];
        U.insert(U.end(), mult[i], a + (b - a) * at / total);
    }
    U.insert(U.end(), p + 1, b);
    return U;
}

// A knot vector over its own storage.
struct Knots {
    std::vector<double> U;
    KnotVector knt;
    int p;
    int n() const { return knt.m - p - 1; }
};

inline Knots make_knots(std::vector<double> U, int p) {
    Knots k{std::move(U), {}, p};
    U_makknt(&k.knt, k.U.data(), int32_t(k.U.size()) - 1);
    return k;
}

// Random vectors of degrees 1..7 and 28 (every eighth) with interior knots
// of every multiplicity up to p, on [a, b].
inline std::vector<Knots> random_vectors(uint64_t seed, int count, double a = 0.0, double b = 1.0) {
    Rng rng(seed);
    std::vector<Knots> out;
    for (int t = 0; t < count; ++t) {
        const int p = t % 8 == 7 ? 28 : 1 + t % 7;
        out.push_back(make_knots(random_knots(rng, p, p + rng.integer(1, 14), a, b, p), p));
    }
    return out;
}

struct Shape {
    int p;
    int n;
    bool rational;
    bool planar;
    int maxmult;  // 0: up to p
};

// A curve on ctx with random control points in [-2, 2]^3 and, when
// rational, weights in [0.3, 3] (stored homogeneous).
inline Curve random_curve(Rng &rng, const Shape &sh, Context &ctx, double a = 0.0, double b = 1.0) {
    const std::vector<double> knots = random_knots(rng, sh.p, sh.n, a, b, sh.maxmult ? sh.maxmult : sh.p);
    Curve cur;
    U_inicur(&cur);
    const int32_t m = int32_t(knots.size()) - 1;
    EXPECT_EQ(U_curchk(&cur, sh.n, int16_t(sh.p), m, name("TEST"), ctx.get()), 0);
    std::copy(knots.begin(), knots.end(), cur.knt->U);
    for (int i = 0; i <= sh.n; ++i) {
        const double x = rng.uniform(-2, 2), y = rng.uniform(-2, 2), z = rng.uniform(-2, 2);
        const double w = sh.rational ? rng.uniform(0.3, 3.0) : KW_NONRATIONAL;
        ControlPoint P{x, y, sh.planar ? KW_PLANAR : z, w};
        A_weight(P, &cur.pol->Pw[i]);
    }
    return cur;
}

// The shapes the property tests sweep: degrees 1 to 7 and 28, 2-D and 3-D,
// rational and polynomial.
inline std::vector<Shape> shapes() {
    std::vector<Shape> out;
    for (int p : {1, 2, 3, 4, 5, 6, 7, 28})
        for (bool rational : {false, true})
            for (bool planar : {false, true}) out.push_back({p, p + (p == 28 ? 30 : 3 + 2 * p), rational, planar, 0});
    return out;
}

// Calls f(shape, curve, ctx, rng) on count random curves of every shape,
// each on a context of its own.
template <class F>
void each_curve(uint64_t seed, int count, F f) {
    Rng rng(seed);
    for (const Shape &sh : shapes())
        for (int c = 0; c < count; ++c) {
            Context ctx;
            Curve cur = random_curve(rng, sh, ctx);
            f(sh, cur, ctx, rng);
        }
}

// ---- Independent references ----------------------------------------------

// The span by a linear scan: the last non-empty span that starts at or
// before u (side 1), or the first that ends at or after it (side 2).
inline int ref_span(const double *U, int m, int p, double u, int side) {
    const int n = m - p - 1;
    if (side == 1) {
        int k = p;
        for (int i = p; i <= n; ++i)
            if (U[i] <= u && U[i] < U[i + 1]) k = i;
        return k;
    }
    for (int i = p; i <= n; ++i)
        if (U[i] < U[i + 1] && u <= U[i + 1]) return i;
    return n;
}

// De Boor's algorithm on the homogeneous polygon (missing weights 1, planar
// z 0), then the Cartesian point.
inline Point ref_point(const Curve &c, double u, int side) {
    const int p = c.p, m = c.knt->m;
    const double *U = c.knt->U;
    const int k = ref_span(U, m, p, u, side);
    std::vector<std::array<double, 4>> d(p + 1);
    for (int j = 0; j <= p; ++j) {
        const ControlPoint &P = c.pol->Pw[k - p + j];
        const double w = P.w == KW_NONRATIONAL ? 1.0 : P.w;
        const double z = P.z == KW_PLANAR ? 0.0 : P.z;
        d[j] = {P.x, P.y, z, w};  // already homogeneous, or unweighted with w = 1
    }
    for (int r = 1; r <= p; ++r)
        for (int j = p; j >= r; --j) {
            const double alpha = (u - U[j + k - p]) / (U[j + 1 + k - r] - U[j + k - p]);
            for (int t = 0; t < 4; ++t) d[j][t] = (1.0 - alpha) * d[j - 1][t] + alpha * d[j][t];
        }
    return Point{d[p][0] / d[p][3], d[p][1] / d[p][3], d[p][2] / d[p][3]};
}

// The derivatives up to k of a polynomial spline with coefficients c (each
// a vector of dim doubles) by differencing the polygon (the hodographs),
// each evaluated by de Boor's algorithm.
inline std::vector<std::vector<double>> ref_spline_ders(std::vector<double> U, int p,
                                                        std::vector<std::vector<double>> c, double u,
                                                        int side, int k) {
    const size_t dim = c[0].size();
    std::vector<std::vector<double>> out;
    for (int d = 0; d <= k; ++d) {
        if (p < 0 || c.empty()) {
            out.emplace_back(dim, 0.0);
            continue;
        }
        // Evaluate by de Boor on (U, p, c).
        const int m = int(U.size()) - 1;
        const int s = ref_span(U.data(), m, p, u, side);
        std::vector<std::vector<double>> b(p + 1);
        for (int j = 0; j <= p; ++j) b[j] = c[s - p + j];
        for (int r = 1; r <= p; ++r)
            for (int j = p; j >= r; --j) {
                const double den = U[j + 1 + s - r] - U[j + s - p];
                const double alpha = (u - U[j + s - p]) / den;
                for (size_t t = 0; t < dim; ++t) b[j][t] = (1.0 - alpha) * b[j - 1][t] + alpha * b[j][t];
            }
        out.push_back(b[p]);
        // The hodograph: degree p - 1 on U[1..m-1].
        std::vector<std::vector<double>> h;
        for (size_t i = 0; i + 1 < c.size(); ++i) {
            std::vector<double> q(dim);
            const double den = U[i + p + 1] - U[i + 1];
            for (size_t t = 0; t < dim; ++t) q[t] = den == 0.0 ? 0.0 : p * (c[i + 1][t] - c[i][t]) / den;
            h.push_back(q);
        }
        U = std::vector<double>(U.begin() + 1, U.end() - 1);
        c = h;
        --p;
    }
    return out;
}

// The Cartesian derivatives of a curve up to k: hodographs of the
// homogeneous curve and its weight, then the quotient rule.
inline std::vector<Point> ref_curve_ders(const Curve &cur, double u, int side, int k) {
    const int n = cur.pol->n;
    std::vector<std::vector<double>> c(n + 1);
    for (int i = 0; i <= n; ++i) {
        const ControlPoint &P = cur.pol->Pw[i];
        c[i] = {P.x, P.y, P.z == KW_PLANAR ? 0.0 : P.z, P.w == KW_NONRATIONAL ? 1.0 : P.w};
    }
    std::vector<double> U(cur.knt->U, cur.knt->U + cur.knt->m + 1);
    const auto A = ref_spline_ders(U, cur.p, c, u, side, k);
    std::vector<Point> C;
    for (int d = 0; d <= k; ++d) {
        double v[3] = {A[d][0], A[d][1], A[d][2]};
        double binom = 1.0;
        for (int i = 1; i <= d; ++i) {
            binom = binom * (d - i + 1) / i;
            v[0] -= binom * A[i][3] * C[d - i].x;
            v[1] -= binom * A[i][3] * C[d - i].y;
            v[2] -= binom * A[i][3] * C[d - i].z;
        }
        C.push_back(Point{v[0] / A[0][3], v[1] / A[0][3], v[2] / A[0][3]});
    }
    return C;
}

// ---- Finite differences ---------------------------------------------------------

// The second-order one-sided difference at 0 of f (doubles or Points)
// towards dir (-1 or +1).
template <class F>
auto one_sided(F f, double h, int dir) {
    return (dir / (2.0 * h)) * (-3.0 * f(0.0) + 4.0 * f(dir * h) - f(2.0 * dir * h));
}

// f() with knot j of knt moved by t, the knot restored afterwards.
template <class F>
auto knot_moved(KnotVector *knt, int j, double t, F f) {
    const double keep = knt->U[j];
    knt->U[j] = keep + t;
    const auto value = f();
    knt->U[j] = keep;
    return value;
}

// ---- Comparisons ------------------------------------------------------------

inline double dist(Point a, Point b) {
    return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) + (a.z - b.z) * (a.z - b.z));
}
inline double mag(Point a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }

// |a - b| within tol relative to the larger magnitude (and at least tol
// absolute).
#define EXPECT_POINT_NEAR(a, b, tol)                                                              \
    EXPECT_LE(::kwtest::dist((a), (b)),                                                           \
              (tol) * std::max({1.0, ::kwtest::mag(a), ::kwtest::mag(b)}))                         \
        << "(" << (a).x << ", " << (a).y << ", " << (a).z << ") vs (" << (b).x << ", " << (b).y    \
        << ", " << (b).z << ")"

// ---- Fault injection ----------------------------------------------------------

// Runs op(stk) with the k-th allocation failing, for k = 1, 2, ... until it
// succeeds without the fault firing. Every failing run must return 1 with
// code 15 from an allocator; setup(ctx) prepares fresh inputs outside the
// fault. Returns how many allocation points there were.
template <class Setup, class Op>
int sweep_allocations(Setup setup, Op op) {
    for (int k = 1; k < 10000; ++k) {
        Context ctx;
        auto in = setup(ctx);
        E_clrerr();
        kw::fault::fail_at(k);
        const int16_t status = op(in, ctx);
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        if (!fired) {
            EXPECT_EQ(status, 0) << "unfaulted run failed, code " << E_errtyp() << " in " << E_errnam();
            return k - 1;
        }
        EXPECT_EQ(status, 1) << "allocation " << k;
        EXPECT_EQ(E_errtyp(), KW_ENOMEM) << "allocation " << k;
        EXPECT_EQ(std::strncmp(E_errnam(), "S_GET", 5), 0) << E_errnam();
    }
    ADD_FAILURE() << "no end to the allocations";
    return 0;
}

}  // namespace kwtest

// Random clamped curves and the helpers that the knot, evaluation and tool
// tests share. Seeded and platform-independent: the same curves every run.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "core/arith.hpp"
#include "core/fault_sweep.hpp"
#include "knotwork.h"

namespace kwtest {

using kw::operator+;
using kw::operator-;
using kw::operator*;

struct Rng {
    std::mt19937_64 g;
    // From the raw bits: the std distributions differ between libraries.
    double uniform(double a, double b) { return a + (b - a) * (double(g() >> 11) * 0x1p-53); }
    int integer(int a, int b) { return a + int(g() % uint64_t(b - a + 1)); }
};

inline char *name() {
    static char s[] = "TEST";
    return s;
}

// A curve of degree p with n + 1 control points in [-2, 2]^3 (weights in
// [0.3, 3] when rational) on clamped knots over [0, 1] whose interior knots
// repeat 1..maxmult times.
inline Curve random_curve(Rng &rng, int p, int n, bool rational, bool planar, int maxmult, StorageStacks *stk) {
    std::vector<double> U(p + 1, 0.0);
    while (int(U.size()) < n + 1) {
        const double at = U.back() + rng.uniform(0.2, 1.0);
        U.insert(U.end(), std::min(n + 1 - int(U.size()), rng.integer(1, maxmult)), at);
    }
    const double end = U.back() + rng.uniform(0.2, 1.0);
    for (double &u : U) u /= end;
    U.insert(U.end(), p + 1, 1.0);
    Curve cur;
    U_inicur(&cur);
    EXPECT_EQ(U_curchk(&cur, n, int16_t(p), n + p + 1, name(), stk), 0);
    std::copy(U.begin(), U.end(), cur.knt->U);
    for (int i = 0; i <= n; ++i) {
        const ControlPoint P{rng.uniform(-2, 2), rng.uniform(-2, 2), planar ? KW_PLANAR : rng.uniform(-2, 2),
                             rational ? rng.uniform(0.3, 3.0) : KW_NONRATIONAL};
        A_weight(P, &cur.pol->Pw[i]);
    }
    return cur;
}
inline Curve random_curve(Rng &rng, int p, int n, bool rational, bool planar, int maxmult, Context &ctx) {
    return random_curve(rng, p, n, rational, planar, maxmult, ctx.get());
}

// f(curve, ctx, rng) on count curves of every shape: degrees 1 to 7 and 28,
// polynomial and rational, 3-D and 2-D, interior knots of every
// multiplicity up to p.
template <class F>
void each_curve(uint64_t seed, int count, F f) {
    Rng rng{std::mt19937_64(seed)};
    for (int p : {1, 2, 3, 4, 5, 6, 7, 28})
        for (int shape = 0; shape < 4 * count; ++shape) {
            Context ctx;
            Curve cur = random_curve(rng, p, p + (p == 28 ? 30 : 3 + 2 * p), shape % 2, shape / 2 % 2, p, ctx);
            f(cur, ctx, rng);
        }
}

inline double dist(Point a, Point b) { return std::sqrt(kw::dot(a - b, a - b)); }
inline double mag(Point a) { return std::sqrt(kw::dot(a, a)); }
inline Point cartesian(ControlPoint P) { return kw::euclid(P); }

// |a - b| within tol relative to the larger magnitude (at least 1).
#define EXPECT_CLOSE(a, b, tol) \
    EXPECT_LE(::kwtest::dist(a, b), (tol) * std::max({1.0, ::kwtest::mag(a), ::kwtest::mag(b)}))

// A call that failed with code under name.
inline void expect_failure(int16_t status, int code, const char *name) {
    EXPECT_EQ(status, 1) << name << " " << code;
    EXPECT_EQ(E_errtyp(), code) << name;
    EXPECT_STREQ(E_errnam(), name);
}

// The second-order one-sided difference at 0 of f towards dir (+1 or -1).
template <class F>
auto one_sided(F f, double h, int dir) {
    return (dir / (2.0 * h)) * (-3.0 * f(0.0) + 4.0 * f(dir * h) - f(2.0 * dir * h));
}

// A sweep of op(input, stk) on what setup(stk) made with no fault armed;
// where op kills its scratch, every run must leave the context as setup
// left it. The number of allocations is sweep(...).size().
template <class Setup, class Op>
FaultCase swept(Setup setup, Op op, bool kills = true) {
    return {"", [=](StorageStacks *stk) {
                auto in = setup(stk);
                const Census held = census(stk);
                return std::function<int()>([=]() mutable {
                    const int status = op(in, stk);
                    if (kills) EXPECT_EQ(census(stk), held);
                    return status;
                });
            }};
}

}  // namespace kwtest

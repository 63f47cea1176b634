// Random curves and surfaces of every shape the peers also take, the
// measure of agreement, and a description that reproduces a failing object.
#pragma once

#include <gtest/gtest.h>

#include <cinttypes>
#include <cmath>
#include <string>
#include <vector>

#include "differential/peers.hpp"
#include "nurbs/knots/testkit.hpp"

namespace difft {

using kwtest::Context;
using kwtest::Rng;

// Agreement is measured per coordinate against a scale:
//   |ours - theirs|_max <= tol * max(1, |theirs|_max, drift),
// 1e-12 for points and 1e-9 for derivatives. drift is how far the value moves
// when the parameter moves by its own size: |U|_max |C^(d+1)|_max for the
// d-th derivative of a curve (the sum over both directions for a surface).
// Each library rounds the distances of a parameter to the knots its own way,
// in the last place of the larger of them, and weights from the whole
// allowed range make a curve rush through parts of a span, where that
// rounding shows in the point; the drift term scales it back.
constexpr double kPoint = 1e-12, kDerivative = 1e-9;

inline double magnitude(const double *a, int dim) {
    double size = 0.0;
    for (int i = 0; i < dim; ++i) size = std::max(size, std::fabs(a[i]));
    return size;
}

inline double relative(const double *a, const double *b, int dim, double drift = 0.0) {
    double diff = 0.0, size = std::max(1.0, drift);
    for (int i = 0; i < dim; ++i) {
        diff = std::max(diff, std::fabs(a[i] - b[i]));
        size = std::max(size, std::fabs(b[i]));
    }
    return diff / size;
}

inline double log_uniform(Rng &rng, double a, double b) {
    return std::exp(rng.uniform(std::log(a), std::log(b)));
}

// Clamped knots of degree p for n + 1 coefficients over [a, a + length] of a
// random start and length, interior knots repeated 1 to p times.
inline std::vector<double> random_knots(Rng &rng, int p, int n) {
    const double a = rng.integer(0, 1) ? 0.0 : rng.uniform(-5, 5), length = log_uniform(rng, 0.1, 10);
    std::vector<double> U(p + 1, 0.0);
    while (int(U.size()) < n + 1) {
        const double at = U.back() + rng.uniform(0.05, 1.0);
        U.insert(U.end(), std::min(n + 1 - int(U.size()), rng.integer(1, p)), at);
    }
    const double end = U.back() + rng.uniform(0.05, 1.0);
    for (double &u : U) u = a + length * (u / end);
    U.insert(U.end(), p + 1, a + length);
    return U;
}

// A control point in [-10, 10]^3 (z the planar marker in 2-D), homogeneous
// with a weight drawn log-uniformly from the whole allowed range.
inline ControlPoint random_point(Rng &rng, bool rational, bool planar) {
    const double w = rational ? log_uniform(rng, U_minwei, U_maxwei) : 1.0;
    ControlPoint P{rng.uniform(-10, 10), rng.uniform(-10, 10), planar ? KW_PLANAR : rng.uniform(-10, 10),
                   rational ? w : KW_NONRATIONAL};
    A_weight(P, &P);
    return P;
}

inline Curve random_curve(Rng &rng, int p, bool rational, bool planar, Context &ctx) {
    static char name[] = "TEST";
    const int n = p + rng.integer(0, 12);
    const std::vector<double> U = random_knots(rng, p, n);
    Curve cur;
    U_inicur(&cur);
    EXPECT_EQ(U_curchk(&cur, n, int16_t(p), n + p + 1, name, ctx.get()), 0);
    std::copy(U.begin(), U.end(), cur.knt->U);
    for (int i = 0; i <= n; ++i) cur.pol->Pw[i] = random_point(rng, rational, planar);
    return cur;
}

inline Surface random_surface(Rng &rng, int p, int q, bool rational, bool planar, Context &ctx) {
    static char name[] = "TEST";
    const int n = p + rng.integer(0, 6), m = q + rng.integer(0, 6);
    const std::vector<double> U = random_knots(rng, p, n), V = random_knots(rng, q, m);
    Surface s;
    U_inisur(&s);
    EXPECT_EQ(U_surchk(&s, n, m, int16_t(p), int16_t(q), n + p + 1, m + q + 1, name, ctx.get()), 0);
    std::copy(U.begin(), U.end(), s.knu->U);
    std::copy(V.begin(), V.end(), s.knv->U);
    for (int i = 0; i <= n; ++i)
        for (int j = 0; j <= m; ++j) s.net->Pw[i][j] = random_point(rng, rational, planar);
    return s;
}

// Parameters: the knots, random ones and the domain's ends.
inline std::vector<double> parameters(const KnotVector &k, Rng &rng, int count) {
    std::vector<double> u(k.U, k.U + k.m + 1);
    for (int i = 0; i < count; ++i) u.push_back(rng.uniform(k.U[0], k.U[k.m]));
    return u;
}

inline bool is_knot(const KnotVector &k, double u) { return std::find(k.U, k.U + k.m + 1, u) != k.U + k.m + 1; }

// Every number of an object exactly (hexadecimal), to rebuild it.
inline std::string hex(const double *v, int count, int stride = 1) {
    std::string s;
    char buf[40];
    for (int i = 0; i < count; ++i) {
        std::snprintf(buf, sizeof buf, "%a ", v[i * stride]);
        s += buf;
    }
    return s;
}

inline std::string describe(const Curve &c) {
    std::string s = "curve p " + std::to_string(c.p) + " n " + std::to_string(c.pol->n) + "\n knots " +
                    hex(c.knt->U, c.knt->m + 1) + "\n control points (wx wy wz w)";
    for (int i = 0; i <= c.pol->n; ++i) s += "\n  " + hex(&c.pol->Pw[i].x, 4);
    return s;
}

inline std::string describe(const Surface &sf) {
    std::string s = "surface p " + std::to_string(sf.p) + " q " + std::to_string(sf.q) + " n " +
                    std::to_string(sf.net->n) + " m " + std::to_string(sf.net->m) + "\n u knots " +
                    hex(sf.knu->U, sf.knu->m + 1) + "\n v knots " + hex(sf.knv->U, sf.knv->m + 1) +
                    "\n control points (wx wy wz w), rows of u";
    for (int i = 0; i <= sf.net->n; ++i)
        for (int j = 0; j <= sf.net->m; ++j) s += "\n  " + hex(&sf.net->Pw[i][j].x, 4);
    return s;
}

}  // namespace difft

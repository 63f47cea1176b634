// Shapes for tests: a circle whose extremes lie inside its pieces and a
// wavy surface; and a surface point.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "core/arith.hpp"
#include "knotwork.h"

namespace kwtest {

// The 2-D circle of radius 1 about (cx, cy) in three rational arcs of 120
// degrees, starting at angle 0.
inline void three_arc_circle(Curve *c, double cx, double cy, StorageStacks *stk) {
    U_inicur(c);
    ASSERT_EQ(U_curchk(c, 6, 2, 9, const_cast<char *>("TEST"), stk), 0);
    const double r3 = std::sqrt(3.0), U[10] = {0, 0, 0, 1. / 3, 1. / 3, 2. / 3, 2. / 3, 1, 1, 1};
    const double P[7][3] = {{1, 0, 1},           {1, r3, 0.5}, {-0.5, r3 / 2, 1}, {-2, 0, 0.5},
                            {-0.5, -r3 / 2, 1}, {1, -r3, 0.5}, {1, 0, 1}};
    for (int i = 0; i < 7; ++i)
        A_weight(ControlPoint{cx + P[i][0], cy + P[i][1], KW_PLANAR, P[i][2]}, &c->pol->Pw[i]);
    std::copy_n(U, 10, c->knt->U);
}

inline Point surface_point(const Surface &s, double u, double v) {
    Point S;
    EXPECT_EQ(N_surevn(&s, u, v, KW_RIGHT, KW_RIGHT, &S), 0);
    return S;
}

// A surface over (1.5 i, -2 j, sin(i + 0.7 j)) on clamped uniform knots over
// [0, 1], with weights in 0.5, 0.75, .., 1.5 when rational.
inline Surface *wavy_surface(bool rational, int32_t n, int32_t m, int16_t p, int16_t q,
                             StorageStacks *stk) {
    Surface *s = S_getsus(stk);
    U_inisur(s);
    EXPECT_EQ(U_surchk(s, n, m, p, q, n + p + 1, m + q + 1, const_cast<char *>("TEST"), stk), 0);
    for (int32_t i = 0; i <= n; ++i)
        for (int32_t j = 0; j <= m; ++j)
            A_weight(ControlPoint{1.5 * i, -2.0 * j, std::sin(i + 0.7 * j),
                                  rational ? 0.25 * (2 + (i + 2 * j) % 5) : KW_NONRATIONAL},
                     &s->net->Pw[i][j]);
    for (auto [U, count, deg] : {std::tuple{s->knu->U, n, p}, std::tuple{s->knv->U, m, q}})
        for (int32_t k = 0; k <= count + deg + 1; ++k)
            U[k] = std::clamp(double(k - deg) / (count - deg + 1), 0.0, 1.0);
    return s;
}

}  // namespace kwtest

// Curves, surfaces and points, and one file of them from each IGES writer,
// for the tests that read the files back. Weights are multiples of 1/4, which
// the files' seven decimals hold exactly.
#pragma once

#include <vector>

#include "nurbs/eval/shapes.hpp"
#include "support.hpp"

namespace kwt {

// A curve of a kind (as random_curve) with the weights 0.5, 0.75, .., 1.5.
inline Curve *quarter_weighted(int kind, int32_t n, int16_t p, std::mt19937_64 &rng, StorageStacks *stk) {
    Curve *c = S_getcus(stk);
    random_curve(c, kind, n, p, rng, stk);
    for (int32_t i = 0; kind >= 3 && i <= n; ++i) {
        ControlPoint E;
        A_euccpt(c->pol->Pw[i], &E);
        E.w = 0.25 * (2 + i % 5);
        A_weight(E, &c->pol->Pw[i]);
    }
    return c;
}

struct Written {
    Context stk;
    std::vector<Curve *> cur;  // every kind of degrees 1, 2, 3, 5
    std::vector<Surface *> sur;  // polynomial and rational
    const Point lin[4] = {{0, 0, 0}, {1, 2, 3}, {-4, 5.5, 0.25}, {7, 8, -9}};
    // The curves; the surfaces; the lines lin[0] to lin[1] and lin[2] to
    // lin[3] with the first two curves and the last surface; the control
    // polygons and nets; the four points as points and as a polyline.
    TempFile curves, surfaces, mixed, polygons, nets, points, path;

    Written() {
        std::mt19937_64 rng(17);
        for (int kind = 1; kind <= 4; ++kind)
            for (int16_t p : {1, 2, 3, 5}) cur.push_back(quarter_weighted(kind, p + 4, p, rng, stk.get()));
        sur = {kwtest::wavy_surface(false, 3, 4, 3, 2, stk.get()), kwtest::wavy_surface(true, 4, 3, 2, 3, stk.get())};
        const auto nc = static_cast<int32_t>(cur.size()) - 1;
        EXPECT_EQ(U_cutigs(cur.data(), nc, 1e-7, curves.path()), 0);
        EXPECT_EQ(U_sutigs(sur.data(), 1, 1e-7, surfaces.path()), 0);
        EXPECT_EQ(U_lcsigs(lin, 1, cur.data(), 1, sur.data() + 1, 0, 1e-7, mixed.path()), 0);
        EXPECT_EQ(U_cpligs(cur.data(), nc, polygons.path()), 0);
        EXPECT_EQ(U_spligs(sur.data(), 1, nets.path()), 0);
        EXPECT_EQ(U_p1digs(lin, 3, 1, points.path()), 0);
        EXPECT_EQ(U_p1digs(lin, 3, 2, path.path()), 0);
    }
    // Control point k of row (surface s, along v: i) or column (along u: j)
    // r of the polylines of the nets, in file order, and its count.
    template <class F>
    void each_net_line(F f) const {
        for (const Surface *s : sur) {
            const ControlNet *net = s->net;
            for (int32_t i = 0; i <= net->n; ++i) f([=](int32_t k) { return net->Pw[i][k]; }, net->m);
            for (int32_t j = 0; j <= net->m; ++j) f([=](int32_t k) { return net->Pw[k][j]; }, net->n);
        }
    }
};

}  // namespace kwt

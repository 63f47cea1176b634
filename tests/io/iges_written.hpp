// One file from each IGES writer, of the same curves, surfaces and points,
// for the tests that read them back.
#pragma once

#include <vector>

#include "support.hpp"

namespace kwt {

struct Written {
    // curves, surfaces; the lines lin[0] to lin[1] and lin[2] to lin[3] with
    // the first two curves and the last surface; the control polygons and
    // nets; the four points as points and as a polyline.
    TempFile curves, surfaces, mixed, polygons, nets, points, path;
    Written(const std::vector<Curve *> &cur, const std::vector<Surface *> &sur, const Point lin[4]) {
        const auto nc = static_cast<int32_t>(cur.size()) - 1, ns = static_cast<int32_t>(sur.size()) - 1;
        EXPECT_EQ(U_cutigs(cur.data(), nc, 1e-7, curves.path()), 0);
        EXPECT_EQ(U_sutigs(sur.data(), ns, 1e-7, surfaces.path()), 0);
        EXPECT_EQ(U_lcsigs(lin, 1, cur.data(), 1, sur.data() + ns, 0, 1e-7, mixed.path()), 0);
        EXPECT_EQ(U_cpligs(cur.data(), nc, polygons.path()), 0);
        EXPECT_EQ(U_spligs(sur.data(), ns, nets.path()), 0);
        EXPECT_EQ(U_p1digs(lin, 3, 1, points.path()), 0);
        EXPECT_EQ(U_p1digs(lin, 3, 2, path.path()), 0);
    }
};

}  // namespace kwt

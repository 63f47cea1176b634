// Helpers shared by the geometry tests.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "core/support.hpp"

namespace geomtest {

using kwtest::Context;
using kwtest::result;

inline Point P3(double x, double y, double z) { return Point{x, y, z}; }

inline double dist(Point a, Point b) { return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z); }

#define EXPECT_POINT_NEAR(a, b, tol) EXPECT_LT(geomtest::dist((a), (b)), (tol))
#define EXPECT_POINT_EQ(a, b) EXPECT_EQ(geomtest::dist((a), (b)), 0.0)
// Deterministic random points in a cube of half-width s.
struct Random {
    std::mt19937 gen{12345};
    double uniform(double a, double b) { return std::uniform_real_distribution<double>(a, b)(gen); }
    Point point(double s = 1.0) { return Point{uniform(-s, s), uniform(-s, s), uniform(-s, s)}; }
};


}  // namespace geomtest

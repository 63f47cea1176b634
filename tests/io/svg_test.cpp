// SVG pictures: well-formed pages of the right elements, fitted to the
// page, curves drawn within the flatness, refusals and allocation failures.
#include <regex>
#include <vector>

#include "core/fault_sweep.hpp"
#include "nurbs/eval/shapes.hpp"
#include "support.hpp"

using namespace kwt;

namespace {

int count(const std::string &s, const std::string &what) {
    int n = 0;
    for (std::size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) ++n;
    return n;
}

// Every "x y" pair of the drawing's coordinates, in order.
std::vector<std::pair<double, double>> pairs(const std::string &s) {
    std::vector<std::pair<double, double>> v;
    const std::regex pair(R"(([0-9]+\.[0-9]{2}) ([0-9]+\.[0-9]{2}))");
    for (std::sregex_iterator it(s.begin(), s.end(), pair), end; it != end; ++it)
        v.emplace_back(std::stod((*it)[1]), std::stod((*it)[2]));
    return v;
}

}  // namespace

TEST(Svg, CurvesFitThePageAndStayWithinTheFlatness) {
    Context stk;
    std::mt19937_64 rng(3);
    Curve ring, cubic;
    kwtest::three_arc_circle(&ring, 0, 0, stk.get());
    random_curve(&cubic, 2, 5, 3, rng, stk.get());
    Curve *cur[] = {&ring, &cubic};
    for (int16_t view = 1; view <= 4; ++view) {
        TempFile file;
        ASSERT_EQ(U_cursvg(cur, 1, view, 1, file.path()), 0);
        const std::string svg = file.read();
        EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
        EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
        EXPECT_EQ(count(svg, "<g "), count(svg, "</g>"));
        EXPECT_EQ(count(svg, "<path "), 2);
        EXPECT_EQ(count(svg, "<polyline "), 2);
        EXPECT_EQ(count(svg, "<circle "), 7 + 6);
        EXPECT_EQ(count(svg, " C "), 3);  // the cubic's three pieces, exact
        std::smatch h;
        ASSERT_TRUE(std::regex_search(svg, h, std::regex("height=\"([0-9]+)\" viewBox=\"0 0 800 ([0-9]+)\"")));
        EXPECT_EQ(h[1], h[2]);
        const double height = std::stod(h[1]);
        double lo[2] = {800, 800}, hi[2] = {0, 0};
        for (auto [x, y] : pairs(svg)) {
            EXPECT_TRUE(x >= 0 && x <= 800 && y >= 0 && y <= height);
            lo[0] = std::min(lo[0], x), hi[0] = std::max(hi[0], x);
            lo[1] = std::min(lo[1], y), hi[1] = std::max(hi[1], y);
        }
        // Fitted: the drawing reaches the margins across or up the page.
        EXPECT_TRUE((lo[0] == 20 && hi[0] == 780) || (lo[1] == 20 && hi[1] == height - 20)) << view;
    }
    // The circle alone in the xy plane fills 760 pixels: every vertex lies on
    // it and every chord within 0.1 pixel of it.
    TempFile file;
    ASSERT_EQ(U_cursvg(cur, 0, 1, 0, file.path()), 0);
    const auto v = pairs(file.read());
    ASSERT_GT(v.size(), 50u);
    for (std::size_t i = 0; i < v.size(); ++i) {
        const auto [x, y] = v[i];
        EXPECT_NEAR(std::hypot(x - 400, y - 400), 380, 0.01);
        if (i > 0) EXPECT_GE(std::hypot(0.5 * (x + v[i - 1].first) - 400, 0.5 * (y + v[i - 1].second) - 400), 380 - 0.11);
    }
}

// Iso-curves across each span and its subdivisions, the net's rows and
// columns and its points; the picture under every allocation failure.
TEST(Svg, SurfacesByIsoCurvesAndNets) {
    Context stk;
    Surface *sur[] = {kwtest::wavy_surface(true, 3, 2, 2, 2, stk.get()), kwtest::wavy_surface(false, 3, 2, 2, 2, stk.get())};
    TempFile file;
    ASSERT_EQ(U_sursvg(sur, 1, 4, 1, 3, file.path()), 0);
    const std::string svg = file.read();
    EXPECT_EQ(count(svg, "<path "), 2 * ((1 * 3 + 1) + (2 * 3 + 1)));
    EXPECT_EQ(count(svg, "<polyline "), 2 * (4 + 3));
    EXPECT_EQ(count(svg, "<circle "), 2 * 12);
    EXPECT_FALSE(kwtest::sweep({"U_sursvg", [&](StorageStacks *) {
        return std::function<int()>([&] { return U_sursvg(sur, 1, 2, 0, 1, file.path()); });
    }}).empty());
}

TEST(Svg, Refusals) {
    Context stk;
    Curve ring;
    kwtest::three_arc_circle(&ring, 0, 0, stk.get());
    Curve *cur[] = {&ring};
    Surface *none[] = {nullptr};
    TempFile file("before");
    for (int16_t st : {U_cursvg(cur, 0, 5, 0, file.path()), U_cursvg(cur, 0, 1, 2, file.path()),
                       U_cursvg(cur, -1, 1, 0, file.path()), U_sursvg(none, 0, 1, 0, 1, file.path())}) {
        EXPECT_EQ(st, 1);
        EXPECT_EQ(E_errtyp(), KW_EARG);
    }
    ring.knt->U[3] = 0.9;
    EXPECT_FAILURE(U_cursvg(cur, 0, 1, 0, file.path()), KW_EKNOTS, "U_CURSVG");
    EXPECT_EQ(file.read(), "before");
    ring.knt->U[3] = 1.0 / 3;
    EXPECT_FAILURE(U_cursvg(cur, 0, 1, 0, "/nonexistent/dir/x.svg"), KW_EFILE, "U_CURSVG");
}

// The batch evaluators give bit for bit what the single-point ones give, on
// curves of every shape, for parameters in any order, from both sides; they
// check everything before they write and allocate nothing.
#include "nurbs/knots/testkit.hpp"

using namespace kwtest;

namespace {

// The knots, random parameters and their neighbours, shuffled or sorted.
std::vector<double> parameters(const Curve &cur, Rng &rng, bool sorted) {
    std::vector<double> u(cur.knt->U, cur.knt->U + cur.knt->m + 1);
    for (int t = 0; t < 40; ++t) u.push_back(rng.uniform(0, 1));
    for (size_t i = 0, n = u.size(); i < n; ++i) u.push_back(std::nextafter(u[i], u[i] < 0.5 ? 1.0 : 0.0));
    if (sorted) std::sort(u.begin(), u.end());
    else std::shuffle(u.begin(), u.end(), rng.g);
    return u;
}

}  // namespace

TEST(Batch, CurvesGiveTheSinglePointResultsBitForBit) {
    each_curve(31, 1, [](Curve &cur, Context &, Rng &rng) {
        for (bool sorted : {false, true})
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                const std::vector<double> u = parameters(cur, rng, sorted);
                const int32_t n = int32_t(u.size()) - 1;
                std::vector<Point> C(u.size()), CK(6 * u.size());
                ASSERT_EQ(N_curevm(&cur, n, u.data(), side, C.data()), 0);
                for (int16_t k : {0, 2, 5}) {
                    ASSERT_EQ(N_curdrm(&cur, n, u.data(), side, k, CK.data()), 0);
                    for (size_t i = 0; i < u.size(); ++i) {
                        Point one[6];
                        ASSERT_EQ(N_curder(&cur, u[i], side, k, one), 0);
                        ASSERT_EQ(std::memcmp(one, &CK[i * (k + 1)], (k + 1) * sizeof(Point)), 0)
                            << "p " << cur.p << " k " << k << " u " << u[i] << " side " << side;
                    }
                }
                for (size_t i = 0; i < u.size(); ++i) {
                    Point one;
                    ASSERT_EQ(N_curevn(&cur, u[i], side, &one), 0);
                    ASSERT_EQ(std::memcmp(&one, &C[i], sizeof one), 0) << "p " << cur.p << " u " << u[i];
                }
            }
    });
}

TEST(Batch, RefusalsWriteNothingAndNothingIsAllocated) {
    Context ctx;
    Rng rng{std::mt19937_64(32)};
    Curve cur = random_curve(rng, 3, 9, true, false, 2, ctx), empty;
    U_inicur(&empty);
    const double u[] = {0.25, 0.5, 1.0, std::nextafter(1.0, 2.0)};
    Point C[4] = {{7, 7, 7}}, CK[24] = {{7, 7, 7}};
    expect_failure(N_curevm(&cur, 3, u, KW_RIGHT, C), KW_EPARAM, "N_CUREVM");
    expect_failure(N_curdrm(&cur, 3, u, KW_LEFT, 2, CK), KW_EPARAM, "N_CURDRM");
    expect_failure(N_curevm(&cur, 2, u, 3, C), KW_ECASE, "N_CUREVM");
    expect_failure(N_curdrm(&cur, 2, u, KW_RIGHT, 6, CK), KW_EORDER, "N_CURDRM");
    expect_failure(N_curevm(&cur, -1, u, KW_RIGHT, C), KW_EARG, "N_CUREVM");
    expect_failure(N_curdrm(&cur, 2, nullptr, KW_RIGHT, 1, CK), KW_EARG, "N_CURDRM");
    expect_failure(N_curevm(&empty, 2, u, KW_RIGHT, C), KW_ECURVE, "N_CUREVM");
    EXPECT_EQ(C[0].x + CK[0].x, 14.0);
    kw::fault::fail_at(1, true);
    EXPECT_EQ(N_curevm(&cur, 2, u, KW_RIGHT, C) + N_curdrm(&cur, 2, u, KW_LEFT, 5, CK), 0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
}

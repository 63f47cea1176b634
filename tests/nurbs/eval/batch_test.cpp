// The batch evaluators give bit for bit what the single-point ones give, on
// curves and surfaces of every shape, for parameters in any order, from both
// sides; they check everything before they write, and allocate nothing but
// the surface derivatives' one table.
#include "nurbs/eval/kernel.hpp"
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

// A surface on the knots of two random curves: degrees p and q, the
// curves' kinds, the v curve's control points shifted along the rows.
Surface surface_of(Rng &rng, int p, int q, bool rational, bool planar, Context &ctx) {
    const Curve cu = random_curve(rng, p, p + 2, rational, planar, p, ctx);
    const Curve cv = random_curve(rng, q, q + 3, rational, planar, q, ctx);
    Surface s;
    U_inisur(&s);
    EXPECT_EQ(U_surchk(&s, p + 2, q + 3, p, q, cu.knt->m, cv.knt->m, name(), ctx.get()), 0);
    std::copy_n(cu.knt->U, cu.knt->m + 1, s.knu->U);
    std::copy_n(cv.knt->U, cv.knt->m + 1, s.knv->U);
    for (int i = 0; i <= p + 2; ++i)
        for (int j = 0; j <= q + 3; ++j) {
            const ControlPoint &A = cu.pol->Pw[i], &B = cv.pol->Pw[j];
            s.net->Pw[i][j] = ControlPoint{A.x + B.x, A.y - B.y, planar ? KW_PLANAR : A.z * B.z,
                                           rational ? A.w * B.w : KW_NONRATIONAL};
        }
    return s;
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

TEST(Batch, SurfacesGiveTheSinglePointResultsBitForBit) {
    Rng rng{std::mt19937_64(33)};
    for (auto [p, q] : {std::pair{1, 1}, {2, 2}, {3, 3}, {5, 5}, {3, 1}, {2, 4}, {7, 7}})
        for (int shape = 0; shape < 4; ++shape) {
            Context ctx;
            const Surface s = surface_of(rng, p, q, shape % 2, shape / 2 % 2, ctx);
            // Rows of a grid over the knots and random values, then shuffled.
            std::vector<double> gu, gv, tu, tv;
            tu.assign(s.knu->U, s.knu->U + s.knu->m + 1);
            tv.assign(s.knv->U, s.knv->U + s.knv->m + 1);
            for (int t = 0; t < 4; ++t) tu.push_back(rng.uniform(0, 1)), tv.push_back(rng.uniform(0, 1));
            for (double a : tu)
                for (double b : tv) gu.push_back(a), gv.push_back(b);
            for (bool shuffled : {false, true}) {
                if (shuffled)
                    for (size_t i = gu.size() - 1; i > 0; --i) {
                        const size_t j = rng.integer(0, int(i));
                        std::swap(gu[i], gu[j]), std::swap(gv[i], gv[j]);
                    }
                const int32_t n = int32_t(gu.size()) - 1;
                const int16_t side = shuffled ? KW_LEFT : KW_RIGHT;
                // The rectangle to order 2, or the triangle to order 1 (mode 1).
                const int16_t mode = shuffled, k = 2 - mode;
                std::vector<Point> S(gu.size()), D(9 * gu.size(), Point{7, 7, 7});
                ASSERT_EQ(N_surevm(&s, n, gu.data(), gv.data(), side, side, S.data()), 0);
                ASSERT_EQ(N_surdrm(&s, n, gu.data(), gv.data(), side, side, mode, k, k, D.data()), 0);
                for (size_t i = 0; i < gu.size(); ++i) {
                    Point one, d[3][3], *rows[3] = {d[0], d[1], d[2]};
                    std::fill_n(d[0], 9, Point{7, 7, 7});
                    PointMatrix SKL{2, 2, rows, KW_FULL, 1};
                    ASSERT_EQ(N_surevn(&s, gu[i], gv[i], side, side, &one), 0);
                    ASSERT_EQ(N_surder(&s, gu[i], gv[i], side, side, mode, k, k, &SKL), 0);
                    ASSERT_EQ(std::memcmp(&one, &S[i], sizeof one), 0) << p << " " << q << " at " << gu[i] << " " << gv[i];
                    // Points without weights are summed without them, to
                    // the bits of the sum that honours every marker.
                    double Nu[kw::kTable], Nv[kw::kTable];
                    const int32_t su = kw::nonzero_basis(s.knu->U, s.knu->m, p, gu[i], side, Nu);
                    const int32_t sv = kw::nonzero_basis(s.knv->U, s.knv->m, q, gv[i], side, Nv);
                    const Point marked = kw::euclid(kw::tensor_point(Nu, p, Nv, q, s.net->Pw + su - p, sv - q, kw::MarkedSum{}));
                    ASSERT_EQ(std::memcmp(&one, &marked, sizeof one), 0) << p << " " << q << " at " << gu[i] << " " << gv[i];
                    for (int a = 0; a <= k; ++a)
                        ASSERT_EQ(std::memcmp(d[a], &D[(k + 1) * (k + 1) * i + (k + 1) * a], (k + 1) * sizeof(Point)), 0)
                            << p << " " << q << " at " << gu[i] << " " << gv[i];
                }
            }
        }
    // Control points that disagree with the first one still give an answer,
    // the same from both.
    Context ctx;
    Surface s = surface_of(rng, 3, 3, false, false, ctx);
    s.net->Pw[2][3].w = 2.0;
    s.net->Pw[3][2].z = KW_PLANAR;
    const double u[] = {0.3, 0.5, 0.7};
    Point S[3], one;
    ASSERT_EQ(N_surevm(&s, 2, u, u, KW_RIGHT, KW_RIGHT, S), 0);
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(N_surevn(&s, u[i], u[i], KW_RIGHT, KW_RIGHT, &one), 0);
        EXPECT_EQ(std::memcmp(&one, &S[i], sizeof one), 0);
    }
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
    const Surface s = surface_of(rng, 2, 3, true, false, ctx);
    Surface broken = s;
    broken.q = 2;
    expect_failure(N_surevm(&s, 3, u, u, KW_RIGHT, KW_LEFT, C), KW_EPARAM, "N_SUREVM");
    expect_failure(N_surdrm(&s, 2, u, u, KW_RIGHT, 0, 0, 1, 1, CK), KW_ECASE, "N_SURDRM");
    expect_failure(N_surdrm(&s, 2, u, u, KW_RIGHT, KW_RIGHT, 0, 1, 6, CK), KW_EORDER, "N_SURDRM");
    expect_failure(N_surevm(&s, 2, u, nullptr, KW_RIGHT, KW_RIGHT, C), KW_EARG, "N_SUREVM");
    expect_failure(N_surevm(&broken, 2, u, u, KW_RIGHT, KW_RIGHT, C), KW_ESURFACE, "N_SUREVM");
    EXPECT_EQ(C[0].x + CK[0].x, 14.0);
    const Surface plain = surface_of(rng, 3, 3, false, false, ctx);
    kw::fault::fail_at(1, true);
    EXPECT_EQ(N_curevm(&cur, 2, u, KW_RIGHT, C) + N_curdrm(&cur, 2, u, KW_LEFT, 5, CK) +
                  N_surevm(&s, 2, u, u, KW_RIGHT, KW_LEFT, C) + N_surdrm(&plain, 2, u, u, KW_LEFT, KW_LEFT, 0, 1, 1, CK),
              0);
    EXPECT_FALSE(kw::fault::fired());
    kw::fault::fail_at(0);
    // The rational surface derivatives' table: one for all the pairs,
    // failing cleanly.
    for (int k = 1;; ++k) {
        kw::fault::fail_at(k);
        const int16_t status = N_surdrm(&s, 2, u, u, KW_LEFT, KW_RIGHT, 0, 1, 2, CK);
        const bool fired = kw::fault::fired();
        kw::fault::fail_at(0);
        if (!fired) {
            EXPECT_EQ(status + k, 5);
            break;
        }
        expect_failure(status, KW_ENOMEM, "N_SURDRM");
    }
}

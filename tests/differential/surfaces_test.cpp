// Our surfaces against OpenCASCADE's and SISL's, over random surfaces of
// degrees 1 to 9 in each direction, 3-D and planar, polynomial and rational:
// points and partial derivatives to order 2 in each direction from either
// side, and unit normals.
#include <Geom_BSplineSurface.hxx>

#include "differential/support.hpp"

using namespace difft;

namespace {

constexpr int kOrder = 2;  // compared; ours go one further, for the drift

// Our partials, the rectangle 0..kOrder + 1 in each direction.
struct Partials {
    Point d[kOrder + 2][kOrder + 2], *rows[kOrder + 2];
    PointMatrix SKL{kOrder + 1, kOrder + 1, rows, KW_FULL, 1};
    Partials() {
        for (int k = 0; k <= kOrder + 1; ++k) rows[k] = d[k];
    }
    const double *at(int k, int l) const { return &d[k][l].x; }
};

double size_of(const KnotVector &k) { return std::max(std::fabs(k.U[0]), std::fabs(k.U[k.m])); }

// OpenCASCADE's condition on a rational surface, as for curves: the block's
// largest weight over the weight function at (u, v).
double weight_swing(const Surface &s, double u, double v) {
    double Nu[KW_MAX_DEGREE + 1], Nv[KW_MAX_DEGREE + 1], W = 0.0, top = 0.0;
    int32_t su, sv;
    if (!peer::rational(s.net->Pw[0][0]) || N_kntalb(s.knu, s.p, u, KW_RIGHT, Nu, &su) ||
        N_kntalb(s.knv, s.q, v, KW_RIGHT, Nv, &sv))
        return 1.0;
    for (int i = 0; i <= s.p; ++i)
        for (int j = 0; j <= s.q; ++j) {
            const double w = s.net->Pw[su - s.p + i][sv - s.q + j].w;
            W += Nu[i] * Nv[j] * w;
            top = std::max(top, w);
        }
    return std::max(1.0, top / W);
}

// The partial (k, l) of ours against a peer's, with the drift of both
// directions and the peer's condition.
bool agree(const Partials &ours, int k, int l, const double *theirs, const char *who, double u, double v,
           int side, const Surface &s, double condition = 1.0) {
    const double drift = size_of(*s.knu) * magnitude(ours.at(k + 1, l), 3) +
                         size_of(*s.knv) * magnitude(ours.at(k, l + 1), 3);
    const double e = relative(ours.at(k, l), theirs, 3, drift) / condition;
    if (e <= (k + l ? kDerivative : kPoint)) return true;
    ADD_FAILURE() << who << ": partial (" << k << ", " << l << ") differs by " << e << " at " << std::hexfloat << u
                  << " " << v << std::defaultfloat << " side " << side << "\n"
                  << describe(s);
    return false;
}

gp_Vec unit(const gp_Vec &n) { return n.Magnitude() > 0 ? n.Normalized() : n; }

}  // namespace

TEST(Differential, SurfacePointsPartialsAndNormalsAgreeWithBothPeers) {
    Rng rng{std::mt19937_64(51)};
    for (int t = 0; t < 1200; ++t) {
        Context ctx;
        const Surface s = random_surface(rng, rng.integer(1, 9), rng.integer(1, 9), t % 2, t / 2 % 4 == 0, ctx);
        const Handle(Geom_BSplineSurface) occt = peer::occt_surface(s);
        const peer::SislSurf sisl = peer::sisl_surface(s);
        // Pairs inside the spans, and on knot lines of either direction.
        const KnotVector &ku = *s.knu, &kv = *s.knv;
        for (int pair = 0; pair < 8; ++pair) {
            const double u = pair % 4 == 1 ? ku.U[rng.integer(0, ku.m)] : rng.uniform(ku.U[0], ku.U[ku.m]);
            const double v = pair % 4 == 2 ? kv.U[rng.integer(0, kv.m)] : rng.uniform(kv.U[0], kv.U[kv.m]);
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                Partials ours;
                ASSERT_EQ(N_surder(&s, u, v, side, side, 0, kOrder + 1, kOrder + 1, &ours.SKL), 0);
                double uv[2] = {u, v}, eder[(kOrder + 1) * (kOrder + 1) * 3];
                int left1 = 0, left2 = 0, stat = 0;
                const int iside = side == KW_RIGHT ? 1 : -1;
                s1425(sisl.get(), kOrder, kOrder, iside, iside, uv, &left1, &left2, eder, &stat);
                ASSERT_GE(stat, 0) << describe(s);
                for (int k = 0; k <= kOrder; ++k)
                    for (int l = 0; l <= kOrder; ++l)
                        if (!agree(ours, k, l, eder + 3 * (l * (kOrder + 1) + k), "SISL", u, v, side, s)) return;
                // OpenCASCADE takes its own side on a knot line: there only
                // the point, which is continuous.
                if (side == KW_LEFT) continue;
                gp_Pnt P;
                gp_Vec D[5];  // Su, Sv, Suu, Svv, Suv
                occt->D2(u, v, P, D[0], D[1], D[2], D[3], D[4]);
                const double swing = weight_swing(s, u, v), point[3] = {P.X(), P.Y(), P.Z()};
                if (!agree(ours, 0, 0, point, "OpenCASCADE", u, v, side, s, swing)) return;
                if (is_knot(*s.knu, u) || is_knot(*s.knv, v)) continue;
                const int kl[5][2] = {{1, 0}, {0, 1}, {2, 0}, {0, 2}, {1, 1}};
                for (int d = 0; d < 5; ++d) {
                    const double c[3] = {D[d].X(), D[d].Y(), D[d].Z()};
                    if (!agree(ours, kl[d][0], kl[d][1], c, "OpenCASCADE", u, v, side, s, swing)) return;
                }
                // Unit normals where the tangents span a plane well: the
                // direction's error is the tangents' relative error over the
                // sine of their angle.
                Point S, Su, Sv, N;
                if (N_surnor(&s, u, v, side, side, &S, &Su, &Sv, &N, ctx.get())) continue;
                const gp_Vec tu(ours.d[1][0].x, ours.d[1][0].y, ours.d[1][0].z),
                    tv(ours.d[0][1].x, ours.d[0][1].y, ours.d[0][1].z);
                const double sine = tu.Crossed(tv).Magnitude() / (tu.Magnitude() * tv.Magnitude());
                if (sine < 1e-3) continue;
                const double spread =
                    (size_of(*s.knu) * (magnitude(ours.at(2, 0), 3) + magnitude(ours.at(1, 1), 3)) / tu.Magnitude() +
                     size_of(*s.knv) * (magnitude(ours.at(1, 1), 3) + magnitude(ours.at(0, 2), 3)) / tv.Magnitude() + 1) /
                    sine;
                double normal[3];
                s1421(sisl.get(), 1, uv, &left1, &left2, eder, normal, &stat);
                const gp_Vec theirs[2] = {unit(gp_Vec(normal[0], normal[1], normal[2])), unit(D[0].Crossed(D[1]))};
                for (const gp_Vec &n : theirs) {
                    const double a[3] = {N.x, N.y, N.z}, b[3] = {n.X(), n.Y(), n.Z()};
                    ASSERT_LE(relative(a, b, 3) / spread, kDerivative)
                        << "normal at " << std::hexfloat << u << " " << v << "\n"
                        << describe(s);
                }
            }
        }
    }
}

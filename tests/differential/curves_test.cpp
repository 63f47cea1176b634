// Our curves against OpenCASCADE's and SISL's, over a few thousand random
// curves of degrees 1 to 9, 2-D and 3-D, polynomial and rational: points and
// derivatives to order 3 from either side, knot insertion, and the pieces of
// a split.
#include <Geom2d_BSplineCurve.hxx>
#include <Geom_BSplineCurve.hxx>

#include "differential/support.hpp"

using namespace difft;

// OpenCASCADE keeps some process-wide objects until exit; they are not ours.
extern "C" __attribute__((visibility("default"), used)) const char *__lsan_default_suppressions() {
    return "leak:libTK\n";
}

namespace {

constexpr int kOrder = 3;

// The same curve in both peers, and its derivatives 0..3 there as rows of
// dim coordinates.
struct Peers {
    bool flat;
    int dim;
    Handle(Geom_BSplineCurve) occt;
    Handle(Geom2d_BSplineCurve) occt2d;
    peer::SislCurve sisl;

    explicit Peers(const Curve &c)
        : flat(peer::planar(c.pol->Pw[0])), dim(flat ? 2 : 3), sisl(peer::sisl_curve(c)) {
        if (flat) occt2d = peer::occt_curve2d(c);
        else occt = peer::occt_curve(c);
    }
    // SISL from the right (s1221) or the left (s1227).
    bool sisl_ders(double u, int16_t side, double *out) const {
        int left = 0, stat = 0;
        (side == KW_RIGHT ? s1221 : s1227)(sisl.get(), kOrder, u, &left, out, &stat);
        return stat >= 0;
    }
    void occt_ders(double u, double *out) const {
        if (flat) {
            gp_Pnt2d P;
            gp_Vec2d D[kOrder];
            occt2d->D3(u, P, D[0], D[1], D[2]);
            out[0] = P.X(), out[1] = P.Y();
            for (int d = 0; d < kOrder; ++d) out[2 * d + 2] = D[d].X(), out[2 * d + 3] = D[d].Y();
        } else {
            gp_Pnt P;
            gp_Vec D[kOrder];
            occt->D3(u, P, D[0], D[1], D[2]);
            for (int i = 0; i < 3; ++i) out[i] = P.Coord(i + 1);
            for (int d = 0; d < kOrder; ++d)
                for (int i = 0; i < 3; ++i) out[3 * d + 3 + i] = D[d].Coord(i + 1);
        }
    }
};

// Ours as rows of dim coordinates, orders 0..kOrder + 1 (the last for the
// drift).
void rows(const Point *D, int dim, double *out) {
    for (int d = 0; d <= kOrder + 1; ++d) {
        const double c[3] = {D[d].x, D[d].y, D[d].z};
        std::copy_n(c, dim, out + d * dim);
    }
}

// Derivatives 0..k of ours against a peer's: 0 as points, the rest as
// derivatives, each with the drift from the next order of ours and the
// peer's own condition (see weight_swing). Returns false after a failure.
bool agree(const double *ours, const double *theirs, int dim, const char *who, double u, int side,
           const Curve &cur, int k = kOrder, double condition = 1.0) {
    const double size = std::max(std::fabs(cur.knt->U[0]), std::fabs(cur.knt->U[cur.knt->m]));
    for (int d = 0; d <= k; ++d) {
        const double e =
            relative(ours + d * dim, theirs + d * dim, dim, size * magnitude(ours + (d + 1) * dim, dim)) / condition;
        if (e > (d ? kDerivative : kPoint)) {
            ADD_FAILURE() << who << ": order " << d << " differs by " << e << " at u " << u << " (" << std::hexfloat
                          << u << std::defaultfloat << ") side " << side << "\n"
                          << describe(cur);
            return false;
        }
    }
    return true;
}

// f(cur, rng) on count curves of each degree 1..9 and each shape.
template <class F>
void each_curve(uint64_t seed, int count, F f) {
    Rng rng{std::mt19937_64(seed)};
    for (int p = 1; p <= 9; ++p)
        for (int shape = 0; shape < 4 * count; ++shape) {
            Context ctx;
            Curve cur = random_curve(rng, p, shape % 2, shape / 2 % 2, ctx);
            f(cur, ctx, rng);
        }
}

// u strictly inside the domain: an interior knot now and then, else random.
double interior(const Curve &c, Rng &rng) {
    const int32_t m = c.knt->m, p = c.p;
    const double *U = c.knt->U;
    if (m > 2 * p + 1 && rng.integer(0, 2) == 0) return U[rng.integer(p + 1, m - p - 1)];
    const double u = rng.uniform(U[0], U[m]);
    return u > U[0] && u < U[m] ? u : 0.5 * (U[0] + U[m]);
}

gp_Pnt in_space(const gp_Pnt &P) { return P; }
gp_Pnt in_space(const gp_Pnt2d &P) { return gp_Pnt(P.X(), P.Y(), 0.0); }

// OpenCASCADE evaluates a rational curve through polynomial forms of its
// homogeneous coordinates in the span, whose terms are as large as the
// span's largest weight; where the weight function W(u) is much smaller (the
// span's weights range over the whole allowed interval) their sum cancels
// and loses max w / W(u) in precision, which scales its agreement. SISL and
// we sum the weighted control points directly and agree without it.
double weight_swing(const Curve &cur, double u) {
    double N[KW_MAX_DEGREE + 1], W = 0.0, top = 0.0;
    int32_t span;
    if (!peer::rational(cur.pol->Pw[0]) || N_kntalb(cur.knt, cur.p, u, KW_RIGHT, N, &span)) return 1.0;
    for (int j = 0; j <= cur.p; ++j) {
        const double w = cur.pol->Pw[span - cur.p + j].w;
        W += N[j] * w;
        top = std::max(top, w);
    }
    return std::max(1.0, top / W);
}

}  // namespace

TEST(Differential, CurvePointsAndDerivativesAgreeWithBothPeers) {
    each_curve(41, 60, [](Curve &cur, Context &, Rng &rng) {
        const Peers peers(cur);
        const int dim = peers.dim;
        for (double u : parameters(*cur.knt, rng, 10))
            for (int16_t side : {KW_RIGHT, KW_LEFT}) {
                Point D[kOrder + 2], C;
                double ours[5 * 3], theirs[4 * 3];
                ASSERT_EQ(N_curder(&cur, u, side, kOrder + 1, D) + N_curevn(&cur, u, side, &C), 0);
                rows(D, dim, ours);
                ASSERT_TRUE(peers.sisl_ders(u, side, theirs)) << describe(cur);
                if (!agree(ours, theirs, dim, "SISL", u, side, cur)) return;
                double point[6] = {C.x, C.y, C.z};
                std::copy_n(ours + dim, dim, point + dim);
                if (!agree(point, theirs, dim, "SISL (N_curevn)", u, side, cur, 0)) return;
                // OpenCASCADE's side at a knot is its own: there only the
                // point, which is continuous, is compared.
                if (side == KW_LEFT) continue;
                peers.occt_ders(u, theirs);
                const int k = is_knot(*cur.knt, u) ? 0 : kOrder;
                if (!agree(ours, theirs, dim, "OpenCASCADE", u, side, cur, k, weight_swing(cur, u))) return;
            }
    });
}

TEST(Differential, KnotInsertionGivesOpenCascadesPolygonAndKnots) {
    each_curve(42, 25, [](Curve &cur, Context &ctx, Rng &rng) {
        const double u = interior(cur, rng);
        int32_t span, s;
        ASSERT_EQ(N_kntfsm(cur.knt, cur.p, u, KW_RIGHT, &span, &s), 0);
        if (s >= cur.p) return;
        const int r = rng.integer(1, cur.p - s);
        Curve out;
        U_inicur(&out);
        ASSERT_EQ(N_toocki(&cur, u, r, &out, ctx.get(), ctx.get()), 0);
        // OpenCASCADE's refined curve, as poles, weights and the flat knots.
        std::vector<gp_Pnt> poles;
        std::vector<double> weights, knots;
        auto take = [&](const auto &c) {
            // InsertKnots, which says whether to add to a multiplicity: the
            // plane curve's InsertKnot sets it.
            TColStd_Array1OfReal at(1, 1);
            TColStd_Array1OfInteger times(1, 1);
            at(1) = u, times(1) = r;
            c->InsertKnots(at, times, 0.0, true);
            for (int i = 1; i <= c->NbPoles(); ++i) {
                poles.push_back(in_space(c->Pole(i)));
                weights.push_back(c->Weight(i));
            }
            for (int i = 1; i <= c->NbKnots(); ++i) knots.insert(knots.end(), c->Multiplicity(i), c->Knot(i));
        };
        if (peer::planar(cur.pol->Pw[0])) take(peer::occt_curve2d(cur));
        else take(peer::occt_curve(cur));
        ASSERT_EQ(int(poles.size()), out.pol->n + 1) << describe(cur);
        ASSERT_EQ(std::vector<double>(out.knt->U, out.knt->U + out.knt->m + 1), knots) << describe(cur);
        for (int i = 0; i <= out.pol->n; ++i) {
            const gp_Pnt Q = peer::cartesian(out.pol->Pw[i]);
            const double a[4] = {Q.X(), Q.Y(), Q.Z(), peer::rational(out.pol->Pw[i]) ? out.pol->Pw[i].w : 1.0},
                         b[4] = {poles[i].X(), poles[i].Y(), poles[i].Z(), weights[i]};
            ASSERT_LE(relative(a, b, 4), kPoint) << "control point " << i << " after inserting " << std::hexfloat << u
                                                 << " " << r << " times\n"
                                                 << describe(cur);
        }
    });
}

TEST(Differential, SplitPiecesEvaluateLikeTheWholeCurve) {
    each_curve(43, 25, [](Curve &cur, Context &ctx, Rng &rng) {
        const double u = interior(cur, rng);
        Curve left, right;
        U_inicur(&left);
        U_inicur(&right);
        ASSERT_EQ(N_toocsp(&cur, u, &left, &right, ctx.get()), 0);
        const Peers whole(cur);
        const int dim = whole.dim;
        for (const Curve *piece : {&left, &right})
            for (double t : parameters(*piece->knt, rng, 5)) {
                Point D[kOrder + 2];
                double ours[5 * 3], theirs[4 * 3];
                ASSERT_EQ(N_curder(piece, t, KW_RIGHT, kOrder + 1, D), 0);
                rows(D, dim, ours);
                whole.occt_ders(t, theirs);
                // At knots only the point: the derivatives may jump there.
                const int k = is_knot(*piece->knt, t) || is_knot(*cur.knt, t) ? 0 : 1;
                if (!agree(ours, theirs, dim, piece == &left ? "left piece" : "right piece", t, KW_RIGHT, cur, k,
                           weight_swing(cur, t)))
                    return;
            }
    });
}

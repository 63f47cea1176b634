// Boxes of curves and surfaces: the extreme coordinates of the geometry
// itself, not of the control points.
#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>

#include "core/error.hpp"
#include "core/storage.hpp"
#include "knotwork/errors.h"
#include "knotwork/eval.h"
#include "nurbs/eval/bezier.hpp"

using namespace kw;

namespace {

// ---- Zeros of a polynomial in Bernstein form ------------------------------------

// The derivative's numerator X'W - XW' of a rational piece of degree p has
// degree 2p - 1.
constexpr int kBernstein = 2 * KW_MAX_DEGREE;

constexpr auto kBinomial = [] {
    std::array<std::array<double, kBernstein + 1>, kBernstein + 1> c{};
    for (int n = 0; n <= kBernstein; ++n) {
        c[n][0] = c[n][n] = 1.0;
        for (int k = 1; k < n; ++k) c[n][k] = c[n - 1][k - 1] + c[n - 1][k];
    }
    return c;
}();

// Subdivision stops at this depth: an interval of 2^-44 of a piece gives a
// parameter that good to rounding.
constexpr int kRootDepth = 44;

double bernstein_value(const double *b, int d, double t) noexcept {
    double c[kBernstein + 1];
    std::copy_n(b, d + 1, c);
    for (int r = 1; r <= d; ++r)
        for (int k = 0; k <= d - r; ++k) c[k] = (1.0 - t) * c[k] + t * c[k + 1];
    return c[0];
}

// Sign changes of b[0..d], coefficients within `zero` of 0 passed over.
int sign_changes(const double *b, int d, double zero) noexcept {
    int changes = 0, last = 0;
    for (int k = 0; k <= d; ++k) {
        const int s = b[k] > zero ? 1 : b[k] < -zero ? -1 : 0;
        if (s != 0 && last != 0 && s != last) ++changes;
        if (s != 0) last = s;
    }
    return changes;
}

struct Polynomial {
    const double *D;  // Bernstein coefficients over the whole piece
    int d;
    double zero;  // coefficients this small are rounding noise
};

// The zero of D in [lo, hi], where D changes sign once, by bisection to the
// last bit; D(lo) has the sign of `negative`.
double bisect(const Polynomial &f, double lo, double hi, bool negative) noexcept {
    for (;;) {
        const double m = mid(lo, hi);
        if (m <= lo || m >= hi) return m;
        const double v = bernstein_value(f.D, f.d, m);
        if (v == 0.0) return m;
        (v < 0.0) == negative ? lo = m : hi = m;
    }
}

// Calls found(t) for each zero of f in (t0, t1), over which b[0..d] are its
// coefficients: an interval whose coefficients change sign once holds one
// zero, found by bisection; others are halved, and where halving reaches
// its depth the middle stands for the zeros inside.
template <class Found>
void zeros(const Polynomial &f, const double *b, double t0, double t1, int depth,
           Found &found) noexcept {
    const int d = f.d, changes = sign_changes(b, d, f.zero);
    if (changes == 0) return;
    if (changes == 1 && std::fabs(b[0]) > f.zero && std::fabs(b[d]) > f.zero) {
        found(bisect(f, t0, t1, b[0] < 0.0));
        return;
    }
    const double tm = mid(t0, t1);
    if (depth == kRootDepth) {
        found(tm);
        return;
    }
    double left[kBernstein + 1], right[kBernstein + 1];
    split_half(b, d, 1, left, right);
    if (std::fabs(right[0]) <= f.zero) found(tm);
    zeros(f, left, t0, tm, depth + 1, found);
    zeros(f, right, tm, t1, depth + 1, found);
}

// D[0..] := the coefficients of the numerator of the derivative of
// coordinate c over the Bezier piece Q[0..p]: X' for a polynomial piece,
// X'W - XW' for a rational one. Returns its degree and sets *zero to the
// rounding noise of the terms that make it.
int derivative_numerator(const Hom *Q, int p, int c, bool weighted, double *D,
                         double *zero) noexcept {
    double dX[kTable], dW[kTable], X = 0.0, W = 0.0, DX = 0.0, DW = 0.0;
    for (int i = 0; i < p; ++i) {
        dX[i] = p * (Q[i + 1][c] - Q[i][c]);
        dW[i] = p * (Q[i + 1].w - Q[i].w);
        DX = std::max(DX, std::fabs(dX[i]));
        DW = std::max(DW, std::fabs(dW[i]));
    }
    for (int i = 0; i <= p; ++i) {
        X = std::max(X, std::fabs(Q[i][c]));
        W = std::max(W, std::fabs(Q[i].w));
    }
    constexpr double kNoise = 1e-13;
    if (!weighted) {
        std::copy_n(dX, p, D);
        *zero = kNoise * p * X;
        return p - 1;
    }
    const int d = 2 * p - 1;
    std::fill_n(D, d + 1, 0.0);
    for (int i = 0; i < p; ++i)
        for (int j = 0; j <= p; ++j) {
            const double s = kBinomial[p - 1][i] * kBinomial[p][j] / kBinomial[d][i + j];
            D[i + j] += s * dX[i] * Q[j].w;
            D[j + i] -= s * Q[j][c] * dW[i];
        }
    *zero = kNoise * (DX * W + X * DW);
    return d;
}

// ---- Curves ----------------------------------------------------------------

struct Extremes {
    double lo[3] = {DBL_MAX, DBL_MAX, DBL_MAX}, hi[3] = {-DBL_MAX, -DBL_MAX, -DBL_MAX};
    void add(const Point &P) noexcept {
        const double v[3] = {P.x, P.y, P.z};
        for (int c = 0; c < 3; ++c) {
            lo[c] = std::min(lo[c], v[c]);
            hi[c] = std::max(hi[c], v[c]);
        }
    }
    void put(Box *box) const noexcept { *box = Box{lo[0], hi[0], lo[1], hi[1], lo[2], hi[2]}; }
};

void curve_box(const Curve *cur, Box *box) noexcept {
    const int p = cur->p;
    const bool weighted = rational(cur->pol->Pw[0]);
    const int dims = planar(cur->pol->Pw[0]) ? 2 : 3;
    Extremes e;
    auto take = [&](double u, int16_t side) {
        Point C;
        N_curevn(cur, u, side, &C);
        e.add(C);
    };
    each_span(cur->knt->U, p, cur->pol->n, [&](int32_t s, double a, double b) {
        take(a, KW_RIGHT);
        take(b, KW_LEFT);
        // A piece of degree 1 is monotone in every coordinate.
        if (p < 2) return;
        Hom Q[kTable];
        curve_piece(cur, s, Q);
        auto found = [&](double t) { take(std::min(b, a + t * (b - a)), KW_RIGHT); };
        for (int c = 0; c < dims; ++c) {
            double D[kBernstein + 1];
            Polynomial f{D, 0, 0.0};
            f.d = derivative_numerator(Q, p, c, weighted, D, &f.zero);
            zeros(f, D, 0.0, 1.0, 0, found);
        }
    });
    e.put(box);
    if (dims == 2) box->zmin = box->zmax = 0.0;
}

// ---- Surfaces ----------------------------------------------------------------

// Subdivision of one patch ends at this depth or after this many subpatches,
// whichever comes first; the control bound of what remains then stands.
constexpr int kPatchDepth = 60;
constexpr int kPatchBudget = 20000;
// Each side comes within this much of the extent of its coordinate.
constexpr double kRelative = 1e-12;

// A Bezier patch of (p+1) x (q+1) homogeneous points, P[i (q+1) + j] with i
// along u.
struct Patch {
    int p, q;
    int32_t cells() const noexcept { return (p + 1) * (q + 1); }
    int32_t at(int i, int j) const noexcept { return i * (q + 1) + j; }
};

// The side of the box that objective k (0..5) pushes out: coordinate k / 2,
// its minimum for even k (as the maximum of -x).
struct Side {
    int c;
    double sign;
    explicit Side(int k) noexcept : c(k / 2), sign(k % 2 == 0 ? -1.0 : 1.0) {}
    double operator()(const Hom &h) const noexcept { return sign * h.cartesian(c); }
};

// The largest second difference of the side's values along u (dir 0) or v.
double bend(const Patch &P, const Hom *h, const Side &g, int dir) noexcept {
    double most = 0.0;
    const int di = dir == 0, dj = dir != 0;
    for (int i = di; i + di <= P.p; ++i)
        for (int j = dj; j + dj <= P.q; ++j)
            most = std::max(most, std::fabs(g(h[P.at(i + di, j + dj)]) - 2.0 * g(h[P.at(i, j)]) +
                                            g(h[P.at(i - di, j - dj)])));
    return most;
}

// The spread of the side's values along u (dir 0) or v.
double spread(const Patch &P, const Hom *h, const Side &g, int dir) noexcept {
    double most = 0.0;
    for (int a = 0; a <= (dir == 0 ? P.q : P.p); ++a) {
        double lo = DBL_MAX, hi = -DBL_MAX;
        for (int b = 0; b <= (dir == 0 ? P.p : P.q); ++b) {
            const double v = g(h[dir == 0 ? P.at(b, a) : P.at(a, b)]);
            lo = std::min(lo, v);
            hi = std::max(hi, v);
        }
        most = std::max(most, hi - lo);
    }
    return most;
}

// Splits h at the middle of u (dir 0) or v into left and right (left may be h).
void split(const Patch &P, const Hom *h, int dir, Hom *left, Hom *right) noexcept {
    if (dir == 0) {
        for (int j = 0; j <= P.q; ++j) split_half(h + j, P.p, P.q + 1, left + j, right + j);
    } else {
        for (int i = 0; i <= P.p; ++i)
            split_half(h + P.at(i, 0), P.q, 1, left + P.at(i, 0), right + P.at(i, 0));
    }
}

// The greatest value of the side over the patch h, raised into *best (the
// greatest value met at a point of the surface) and *bound (the greatest
// control bound of the subpatches given up on). Subpatches whose bound
// exceeds *best by more than tol are halved across the direction in which
// the values bend most. slots holds kPatchDepth + 2 patches.
void push_side(const Patch &P, const Hom *h, const Side &g, double tol, Hom *slots, double *best,
               double *bound) noexcept {
    const int32_t cells = P.cells();
    int depth[kPatchDepth + 2];
    std::copy_n(h, cells, slots);
    depth[0] = 0;
    int top = 1, visited = 0;
    const int32_t corners[4] = {0, P.at(0, P.q), P.at(P.p, 0), P.at(P.p, P.q)};
    while (top > 0) {
        Hom *cur = slots + static_cast<int64_t>(top - 1) * cells;
        const int d = depth[top - 1];
        for (int32_t k : corners) *best = std::max(*best, g(cur[k]));
        double most = -DBL_MAX;
        for (int32_t k = 0; k < cells; ++k) most = std::max(most, g(cur[k]));
        if (most <= *best + tol || d == kPatchDepth || ++visited > kPatchBudget) {
            *bound = std::max(*bound, most);
            --top;
            continue;
        }
        const double bu = bend(P, cur, g, 0), bv = bend(P, cur, g, 1);
        const int dir = bu > bv                                        ? 0
                        : bv > bu                                      ? 1
                        : spread(P, cur, g, 0) >= spread(P, cur, g, 1) ? 0
                                                                       : 1;
        split(P, cur, dir, cur, cur + cells);
        depth[top - 1] = depth[top] = d + 1;
        ++top;
    }
}

int16_t surface_box(const Surface *sur, Box *box) noexcept {
    const Patch P{sur->p, sur->q};
    const int32_t cells = P.cells(), n = sur->net->n, m = sur->net->m;
    ControlPoint **Pw = sur->net->Pw;
    const double *U = sur->knu->U, *V = sur->knv->U;
    LocalStacks scratch;
    // The patch, a work patch, and the subdivision's stack.
    const int64_t patches = kPatchDepth + 4;
    double *block = S_getr1d(static_cast<int32_t>(4 * cells * patches - 1), scratch.get());
    if (!block) return 1;
    Hom *patch = reinterpret_cast<Hom *>(block), *work = patch + cells, *slots = work + cells;

    double lo[3] = {DBL_MAX, DBL_MAX, DBL_MAX}, hi[3] = {-DBL_MAX, -DBL_MAX, -DBL_MAX};
    for (int32_t i = 0; i <= n; ++i)
        for (int32_t j = 0; j <= m; ++j) {
            const Hom h = homogeneous(Pw[i][j]);
            for (int c = 0; c < 3; ++c) {
                lo[c] = std::min(lo[c], h.cartesian(c));
                hi[c] = std::max(hi[c], h.cartesian(c));
            }
        }
    double tol[3], best[6], bound[6];
    for (int c = 0; c < 3; ++c)
        tol[c] = kRelative * (hi[c] - lo[c]) +
                 8.0 * (P.p + P.q + 2) * DBL_EPSILON * std::max(std::fabs(lo[c]), std::fabs(hi[c]));
    std::fill_n(best, 6, -DBL_MAX);
    std::fill_n(bound, 6, -DBL_MAX);

    each_span(U, P.p, n, [&](int32_t su, double, double) {
        each_span(V, P.q, m, [&](int32_t sv, double, double) {
            // Along u in each column of the block, then along v in each row.
            for (int j = 0; j <= P.q; ++j) {
                Hom Q[kTable];
                auto column = [&](int i) { return homogeneous(Pw[su - P.p + i][sv - P.q + j]); };
                bezier_piece(U, P.p, su, column, Q);
                for (int i = 0; i <= P.p; ++i) work[P.at(i, j)] = Q[i];
            }
            for (int i = 0; i <= P.p; ++i) {
                auto row = [&](int j) { return work[P.at(i, j)]; };
                bezier_piece(V, P.q, sv, row, patch + P.at(i, 0));
            }
            for (int k = 0; k < 6; ++k)
                push_side(P, patch, Side(k), tol[k / 2], slots, &best[k], &bound[k]);
        });
    });
    double ext[6];
    for (int k = 0; k < 6; ++k) {
        const double v = std::max(best[k], bound[k]);
        ext[k] = k % 2 == 0 ? -v : v;
    }
    *box = Box{ext[0], ext[1], ext[2], ext[3], ext[4], ext[5]};
    return 0;
}

}  // namespace

int16_t N_curbox(const Curve *cur, Box *box) {
    static char name[] = "N_CURBOX";
    if (E_curinp(cur, name)) return 1;
    if (!box) return fail(KW_EARG, name);
    curve_box(cur, box);
    return 0;
}

int16_t N_surbox(const Surface *sur, Box *box) {
    static char name[] = "N_SURBOX";
    if (E_surinp(sur, name)) return 1;
    if (!box) return fail(KW_EARG, name);
    return surface_box(sur, box);
}

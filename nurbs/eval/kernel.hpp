// The evaluation kernels over the basis kernels: accumulation of control
// points with the markers, the point of a curve, and its derivatives from
// those of the (rational) basis functions. Inline and allocation-free; the
// callers have checked the curve, the parameter and the order.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/arith.hpp"
#include "nurbs/knots/basis.hpp"

namespace kw {

// sum c[j] E[j], j = 0..last, over values without markers (doubles, Points).
template <class T, class Last>
KW_HOT T accumulate(const double *c, const T *E, Last last) noexcept {
    T sum{};
    upto(Degree<0>{}, last, [&](auto j) KW_INLINE { sum = sum + c[j] * E[j]; });
    return sum;
}

// The same over Points, x and y two at a time (the same sums).
template <class Last>
KW_HOT Point accumulate(const double *c, const Point *E, Last last) noexcept {
    using Pair = double __attribute__((vector_size(16)));
    Pair xy = {0.0, 0.0};
    double z = 0.0;
    upto(Degree<0>{}, last, [&](auto j) KW_INLINE {
        Pair a;
        std::memcpy(&a, &E[j].x, sizeof a);
        xy += c[j] * a;
        z += c[j] * E[j].z;
    });
    return Point{xy[0], xy[1], z};
}

// A sum of multiples of homogeneous control points: a planar z in any term
// makes the sum's z the planar marker, a non-rational w its w the
// non-rational marker. Every coordinate is summed alike, without a branch,
// two at a time, the markers met are noted two at a time too, and a marked
// sum is replaced once, at the end; sums of sums (the rows of a surface's
// block) carry their marks along.
class MarkedSum {
    using Pair = double __attribute__((vector_size(16)));
    using Marks = int64_t __attribute__((vector_size(16)));
    Pair xy_ = {0.0, 0.0}, zw_ = {0.0, 0.0};
    Marks marked_ = {0, 0};

public:
    KW_HOT void add(double N, const ControlPoint &P) noexcept {
        const Pair markers = {kPlanar, kNonRational};
        Pair a, b;
        std::memcpy(&a, &P.x, sizeof a);
        std::memcpy(&b, &P.z, sizeof b);
        xy_ += N * a;
        zw_ += N * b;
        marked_ |= b == markers;
    }
    KW_HOT void add(double N, const MarkedSum &S) noexcept {
        xy_ += N * S.xy_;
        zw_ += N * S.zw_;
        marked_ |= S.marked_;
    }
    KW_HOT ControlPoint value() const noexcept {
        return ControlPoint{xy_[0], xy_[1], marked_[0] ? kPlanar : zw_[0], marked_[1] ? kNonRational : zw_[1]};
    }
};

// The same sums over control points without weights (and, Flat, without z:
// planar): the products and sums MarkedSum takes of x, y and z, so the same
// bits wherever every point is non-rational (and planar, when Flat).
template <bool Flat>
class PlainSum {
    using Pair = double __attribute__((vector_size(16)));
    Pair xy_ = {0.0, 0.0};
    double z_ = 0.0;

public:
    KW_HOT void add(double N, const ControlPoint &P) noexcept {
        Pair a;
        std::memcpy(&a, &P.x, sizeof a);
        xy_ += N * a;
        if (!Flat) z_ += N * P.z;
    }
    KW_HOT void add(double N, const PlainSum &S) noexcept {
        xy_ += N * S.xy_;
        if (!Flat) z_ += N * S.z_;
    }
    KW_HOT ControlPoint value() const noexcept {
        return ControlPoint{xy_[0], xy_[1], Flat ? kPlanar : z_, kNonRational};
    }
};

// f(sum), an empty sum fit for the control points of a curve or surface
// whose first control point is P: that point tells what they all carry (a
// valid curve's or surface's points agree), so that non-rational ones are
// summed without weights. Points that disagree with the first still get a
// defined sum, not the marker-honouring one.
template <class F>
KW_HOT decltype(auto) with_sum(const ControlPoint &P, F &&f) {
    if (rational(P)) return f(MarkedSum{});
    if (planar(P)) return f(PlainSum<true>{});
    return f(PlainSum<false>{});
}

// sum N[j] P[j], j = 0..last, over homogeneous control points.
template <class Last>
KW_HOT ControlPoint accumulate(const double *N, const ControlPoint *P, Last last) noexcept {
    MarkedSum sum;
    upto(Degree<0>{}, last, [&](auto j) KW_INLINE { sum.add(N[j], P[j]); });
    return sum.value();
}

// sum over i, j of Nu[i] Nv[j] P[i][j], the active block P[0..p][0..q]
// given by its rows and the column of its first point: each row summed
// along v, then the rows along u, in sums like the empty one given.
template <class Sum, class DegU, class DegV>
KW_HOT ControlPoint tensor_point(const double *Nu, DegU p, const double *Nv, DegV q, ControlPoint *const *P,
                                 int32_t column, Sum sum) noexcept {
    upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
        Sum row;
        upto(Degree<0>{}, q, [&](auto j) KW_INLINE { row.add(Nv[j], P[i][column + j]); });
        sum.add(Nu[i], row);
    });
    return sum.value();
}

// The weights of control points, read in place.
struct WeightsOf {
    const ControlPoint *P;
    double operator[](int j) const noexcept { return P[j].w; }
};

// The value at u of a B-spline with coefficients c[0..n] (ControlPoints:
// the homogeneous point; doubles: the function value).
template <class C>
KW_HOT C spline_point(const double *U, int32_t m, int p, const C *c, double u,
                      int16_t side) noexcept {
    return with_degree(p, [&](auto P) KW_INLINE {
        double N[kWidth<decltype(P)>];
        const int32_t span = nonzero_basis(U, m, P, u, side, N);
        return accumulate(N, c + span - P, P);
    });
}

// E[j] := euclid(P[j]), j = 0..last, for weighted control points: the same
// quotients, two to a division (x and y of one point, then z of two),
// which the machine does in one instruction; a missing weight divides by 1,
// exactly.
template <class Last>
KW_HOT void euclid_weighted(const ControlPoint *P, Last last, Point *E) noexcept {
    using Pair = double __attribute__((vector_size(16)));
    auto weight = [&](int j) { return j > last || nonrational(P[j].w) ? 1.0 : P[j].w; };
    auto z = [&](int j) { return j > last || planar(P[j].z) ? 0.0 : P[j].z; };
    upto(Degree<0>{}, last, [&](auto j) KW_INLINE {
        const Pair xy = Pair{P[j].x, P[j].y} / weight(j);
        E[j].x = xy[0];
        E[j].y = xy[1];
    });
    upto(Degree<0>{}, constant_if<[](int l) { return l / 2; }>(last), [&](auto h) KW_INLINE {
        const Pair zz = Pair{z(2 * h), z(2 * h + 1)} / Pair{weight(2 * h), weight(2 * h + 1)};
        E[2 * h].z = zz[0];
        if (2 * h + 1 <= last) E[2 * h + 1].z = zz[1];
    });
}

// What the derivatives at u take from u's span alone: the span's reciprocal
// knot differences and its control points P[0..p] in Cartesian form E.
// N_curder fills it for its one parameter; the batch evaluator keeps it while
// its parameters stay in one span.
template <class Deg>
struct CurveSpan {
    SpanHint hint;
    int32_t span = -1;
    const ControlPoint *P = nullptr;
    Inverses<Deg> inverse;
    Point E[kWidth<Deg>];

    KW_HOT void enter(const double *U, Deg p, const ControlPoint *Pw, int32_t s, bool weighted) noexcept {
        span = s;
        P = Pw + s - p;
        inverse.fill(U, s, p);
        if (weighted) euclid_weighted(P, p, E);
        else upto(Degree<0>{}, p, [&](auto j) KW_INLINE { E[j] = euclid(P[j]); });
    }
    // Enters the span of key unless it is known to be this one.
    KW_HOT void locate(const double *U, int32_t m, Deg p, const ControlPoint *Pw, double key,
                       bool weighted) noexcept {
        if (hint.move(U, m, p, key)) enter(U, p, Pw, hint.span, weighted);
    }
};

// CK[0..k] := the point of the curve (U, p, Pw) at u in the span c and its
// derivatives up to k: the derivatives of the basis functions, made rational
// for a rational curve, applied to the Cartesian control points. Orders
// above p vanish for a polynomial curve.
template <class Deg, class Ord>
KW_HOT void curve_ders(const double *U, Deg p, const CurveSpan<Deg> &c, bool rational_curve, double u,
                       Ord k, Point *CK) noexcept {
    constexpr int w = kWidth<Deg>;
    double ndu[w][w], left[w], right[w], ders[kOrders][w];
    const auto du = smaller(k, p);
    basis_ders(U, c.span, p, u, du, c.inverse, [&ndu](int r, int j) -> double & { return ndu[r][j]; }, left,
               right, ders);
    for (int d = du + 1; d <= k; ++d) std::fill_n(ders[d], p + 1, 0.0);
    if (rational_curve) rational_ders(ders, WeightsOf{c.P}, k, p);
    upto(Degree<0>{}, k, [&](auto d) KW_INLINE { CK[d] = accumulate(ders[d], c.E, p); });
}

// curve_ders at u in span, for any degree and order.
inline void curve_ders(const double *U, int p, const ControlPoint *Pw, int32_t span, double u, int k,
                       Point *CK) noexcept {
    with_degree(p, [&](auto P) KW_INLINE {
        const bool weighted = rational(Pw[0]);
        CurveSpan<decltype(P)> c;
        c.enter(U, P, Pw, span, weighted);
        with_order(k, [&](auto K) KW_INLINE { curve_ders(U, P, c, weighted, u, K, CK); });
    });
}

}  // namespace kw

// The steps of surface evaluation that the single-point evaluators and the
// batch evaluators share, so that both give the same results bit for bit:
// the tensor sum of a point, the work table of the partial derivatives, the
// Cartesian block and the sums that make the partials; and what one
// direction's evaluation keeps from one parameter to the next.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "core/alloc.hpp"
#include "core/arith.hpp"
#include "nurbs/eval/kernel.hpp"
#include "nurbs/knots/surface_basis.hpp"

namespace kw {

// The table D[k][l][i][j], k = 0..ku, l = 0..kv, i = 0..p, j = 0..q, on the
// general heap: pointers over the orders in u, over the orders in v and
// over the functions in u, then the values. Released with the object. A
// negative ku asks for none.
class DerivativeTable {
public:
    DerivativeTable(int ku, int kv, int p, int q) noexcept {
        if (ku < 0) return;
        const std::size_t nk = ku + 1, nl = nk * (kv + 1), ni = nl * (p + 1);
        top_ = static_cast<double ****>(allocate(nk * sizeof(double ***)));
        planes_ = top_ ? static_cast<double ***>(allocate(nl * sizeof(double **))) : nullptr;
        rows_ = planes_ ? static_cast<double **>(allocate(ni * sizeof(double *))) : nullptr;
        values_ = rows_ ? static_cast<double *>(allocate(ni * (q + 1) * sizeof(double))) : nullptr;
        if (!values_) return;
        for (std::size_t k = 0; k < nk; ++k) top_[k] = planes_ + k * (kv + 1);
        for (std::size_t l = 0; l < nl; ++l) planes_[l] = rows_ + l * (p + 1);
        for (std::size_t i = 0; i < ni; ++i) rows_[i] = values_ + i * (q + 1);
    }
    ~DerivativeTable() {
        release(values_);
        release(rows_);
        release(planes_);
        release(top_);
    }
    DerivativeTable(const DerivativeTable &) = delete;
    DerivativeTable &operator=(const DerivativeTable &) = delete;

    // The table, or null when an allocation failed.
    double ****get() const noexcept { return values_ ? top_ : nullptr; }

private:
    double ****top_ = nullptr;
    double ***planes_ = nullptr;
    double **rows_ = nullptr;
    double *values_ = nullptr;
};

// The Cartesian points E[0..p][0..q] of the active block whose first
// control point is Pw[su - p][sv - q], of a weighted surface or not.
template <class DegU, class DegV>
KW_HOT void cartesian_block(ControlPoint *const *Pw, int32_t su, int32_t sv, DegU p, DegV q, bool weighted,
                            Point (*E)[kWidth<DegV>]) noexcept {
    upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
        const ControlPoint *row = Pw[su - p + i] + sv - q;
        if (weighted) euclid_weighted(row, q, E[i]);
        else upto(Degree<0>{}, q, [&](auto j) KW_INLINE { E[i][j] = euclid(row[j]); });
    });
}

// out(k, l) := sum over i, j of D[k][l][i][j] E[i][j], over the rectangle
// 0..ku by 0..kv, or its triangle k + l <= ku.
template <class DegU, class DegV, class Out>
KW_HOT void partials(double ****D, const Point (*E)[kWidth<DegV>], DegU p, DegV q, int ku, int kv, bool triangle,
                     Out out) noexcept {
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv && !(triangle && k + l > ku); ++l) {
            Point sum{};
            upto(Degree<0>{}, p, [&](auto i) KW_INLINE { sum = sum + accumulate(D[k][l][i], E[i], q); });
            out(k, l) = sum;
        }
}

// partials of a polynomial surface from the two directions' derivatives,
// each product D[k][l][i][j] = Nu[k][i] Nv[l][j] taken where the sum needs
// it: the same products and sums as through the table.
template <class DegU, class DegV, class OrdU, class OrdV, class Out>
KW_HOT void product_partials(const double (*Nu)[kTable], DegU p, const double (*Nv)[kTable], DegV q,
                             const Point (*E)[kWidth<DegV>], OrdU ku, OrdV kv, bool triangle, Out out) noexcept {
    upto(Degree<0>{}, ku, [&](auto k) KW_INLINE {
        upto(Degree<0>{}, kv, [&](auto l) KW_INLINE {
            if (triangle && k + l > ku) return;
            Point sum{};
            upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
                double D[kWidth<DegV>];
                upto(Degree<0>{}, q, [&](auto j) KW_INLINE { D[j] = Nu[k][i] * Nv[l][j]; });
                sum = sum + accumulate(D, E[i], q);
            });
            out(k, l) = sum;
        });
    });
}

// Whether two parameters are the same double, bit for bit (a kept result is
// reused only then: -0.0 and 0.0 may take different sides of a sum).
inline bool same(double a, double b) noexcept { return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b); }

// One direction of a surface at the parameters given one after another: the
// span and its reciprocals kept while they stay in it, the basis functions
// (N) or their derivatives to order k (ders) while the parameter repeats, as
// on a grid's rows.
template <class Deg>
struct Direction {
    SpanBasis<Deg> spans;
    double at = std::numeric_limits<double>::quiet_NaN();
    int32_t span = -1;
    double N[kWidth<Deg>] = {};  // filled at the first parameter
    double ders[kOrders][kTable] = {};

    KW_HOT void basis(const KnotVector *knt, Deg p, double u, int16_t side) noexcept {
        if (same(u, at)) return;
        at = u;
        span = spans.basis(knt->U, knt->m, p, u, side, N);
    }
    template <class Ord>
    KW_HOT void derivatives(const KnotVector *knt, Deg p, double u, int16_t side, Ord k) noexcept {
        if (same(u, at)) return;
        at = u;
        span = spans.locate(knt->U, knt->m, p, span_key(u, side));
        direction_ders(knt->U, span, p, spans.inverse, u, k, ders);
    }
};

}  // namespace kw

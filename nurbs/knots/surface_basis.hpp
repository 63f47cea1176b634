// The derivatives of a surface's basis functions: products of the two
// directions' derivatives, made rational for a rational surface. Inline and
// allocation-free but for the caller's table; the callers have checked their
// inputs.
#pragma once

#include <algorithm>
#include <cstdint>

#include "nurbs/knots/basis.hpp"

namespace kw {

// ders[d][r] := the d-th derivative of N[span-p+r, p](u), d = 0..k
// (k <= KW_MAX_ORDER), the orders above p zero, from the span's reciprocals.
template <class Deg, class Ord>
KW_HOT void direction_ders(const double *U, int32_t span, Deg p, const Inverses<Deg> &inverse, double u, Ord k,
                           double (*ders)[kTable]) noexcept {
    constexpr int w = kWidth<Deg>;
    double ndu[w][w], left[w], right[w];
    const auto du = smaller(k, p);
    basis_ders(U, span, p, u, du, inverse, [&ndu](int r, int j) -> double & { return ndu[r][j]; }, left, right,
               ders);
    for (int d = du + 1; d <= k; ++d) std::fill_n(ders[d], p + 1, 0.0);
}

// direction_ders for any degree, the reciprocals taken here.
inline void basis_ders_to(const double *U, int32_t span, int p, double u, int k,
                          double (*ders)[kTable]) noexcept {
    with_degree(p, [&](auto P) KW_INLINE {
        Inverses<decltype(P)> inverse;
        inverse.fill(U, span, P);
        direction_ders(U, span, P, inverse, u, k, ders);
    });
}

// D[k][l][i][j] := Nu[k][i] Nv[l][j], the derivative of order k in u and l
// in v of N[su-p+i](u) N[sv-q+j](v), for k = 0..ku, l = 0..kv, k + l <= top
// (ku + kv: all of them).
template <class DegU, class DegV>
KW_HOT void product_ders(const double (*Nu)[kTable], DegU p, const double (*Nv)[kTable], DegV q, int ku, int kv,
                         int top, double ****D) noexcept {
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv && k + l <= top; ++l) {
            double **Dkl = D[k][l];
            upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
                upto(Degree<0>{}, q, [&](auto j) KW_INLINE { Dkl[i][j] = Nu[k][i] * Nv[l][j]; });
            });
        }
}

// Turns the products D[0..ku][0..kv] in place into the derivatives of the
// rational basis functions R[i][j] = w(i, j) N[i] N[j] / W with
// W = sum w N N:
//   R^(k,l) = (w D^(k,l) - sum over (a, b) != (0, 0) of
//              Bin(k, a) Bin(l, b) W^(a,b) R^(k-a,l-b)) / W,
// in rising (k, l) so that every lower order is rational already; the
// division by W is one reciprocal. Orders with k + l > top are left alone:
// no lower order needs them.
template <class Weights, class DegU, class DegV>
KW_HOT void rational_surface_ders(double ****D, const Weights &w, int ku, int kv, int top, DegU p,
                                  DegV q) noexcept {
    double W[kOrders][kOrders];
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv && k + l <= top; ++l) {
            double sum = 0.0;
            double **Dkl = D[k][l];
            upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
                upto(Degree<0>{}, q, [&](auto j) KW_INLINE {
                    Dkl[i][j] *= w(i, j);
                    sum += Dkl[i][j];
                });
            });
            W[k][l] = sum;
        }
    const double inverse = 1.0 / W[0][0];
    double r[kWidth<DegU>][kWidth<DegV>];
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv && k + l <= top; ++l) {
            double **Dkl = D[k][l];
            upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
                upto(Degree<0>{}, q, [&](auto j) KW_INLINE { r[i][j] = Dkl[i][j]; });
            });
            for (int a = 0; a <= k; ++a)
                for (int b = a == 0 ? 1 : 0; b <= l; ++b) {
                    const double c = kBinomial.c[k][a] * kBinomial.c[l][b] * W[a][b];
                    double **R = D[k - a][l - b];
                    upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
                        upto(Degree<0>{}, q, [&](auto j) KW_INLINE { r[i][j] -= c * R[i][j]; });
                    });
                }
            upto(Degree<0>{}, p, [&](auto i) KW_INLINE {
                upto(Degree<0>{}, q, [&](auto j) KW_INLINE { Dkl[i][j] = r[i][j] * inverse; });
            });
        }
}

}  // namespace kw

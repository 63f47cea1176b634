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
// (k <= KW_MAX_ORDER), the orders above p zero. Fixed local work tables.
inline void basis_ders_to(const double *U, int32_t span, int p, double u, int k,
                          double (*ders)[kTable]) noexcept {
    with_degree(p, [&](auto P) {
        double ndu[kTable][kTable], a[2][kTable], left[kTable], right[kTable];
        const int du = std::min(k, int(P));
        basis_ders(U, span, P, u, du, ndu, left, right, a, ders);
        for (int d = du + 1; d <= k; ++d) std::fill_n(ders[d], P + 1, 0.0);
    });
}

// D[k][l][i][j] := Nu[k][i] Nv[l][j], the derivative of order k in u and l
// in v of N[su-p+i](u) N[sv-q+j](v), for k = 0..ku, l = 0..kv.
inline void product_ders(const double (*Nu)[kTable], int p, const double (*Nv)[kTable], int q,
                         int ku, int kv, double ****D) noexcept {
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv; ++l)
            for (int i = 0; i <= p; ++i)
                for (int j = 0; j <= q; ++j) D[k][l][i][j] = Nu[k][i] * Nv[l][j];
}

// Turns the products D[0..ku][0..kv] in place into the derivatives of the
// rational basis functions R[i][j] = w(i, j) N[i] N[j] / W with
// W = sum w N N:
//   R^(k,l) = (w D^(k,l) - sum over (a, b) != (0, 0) of
//              Bin(k, a) Bin(l, b) W^(a,b) R^(k-a,l-b)) / W,
// in rising (k, l) so that every lower order is rational already.
template <class Weights>
void rational_surface_ders(double ****D, const Weights &w, int ku, int kv, int p, int q) noexcept {
    double W[kOrders][kOrders];
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv; ++l) {
            W[k][l] = 0.0;
            for (int i = 0; i <= p; ++i)
                for (int j = 0; j <= q; ++j) {
                    D[k][l][i][j] *= w(i, j);
                    W[k][l] += D[k][l][i][j];
                }
        }
    for (int k = 0; k <= ku; ++k)
        for (int l = 0; l <= kv; ++l)
            for (int i = 0; i <= p; ++i)
                for (int j = 0; j <= q; ++j) {
                    double r = D[k][l][i][j];
                    for (int a = 0; a <= k; ++a)
                        for (int b = a == 0 ? 1 : 0; b <= l; ++b)
                            r -= kBinomial.c[k][a] * kBinomial.c[l][b] * W[a][b] * D[k - a][l - b][i][j];
                    D[k][l][i][j] = r / W[0][0];
                }
}

}  // namespace kw

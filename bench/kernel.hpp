// Our minimal kernel: what the machine does with the library's arithmetic
// when nothing is checked. Degree, order and dimension are fixed at compile
// time and every loop is laid out (kw::upto, the library's loop expander, is
// all it borrows), control points are plain 3-D (homogeneous when
// rational), no markers, no dispatch, no error state. Written apart from the
// library so that it marks the machine rather than the library's habits:
// the library's routines should stay within 1.3 times its time.
#pragma once

#include <bit>
#include <cstdint>

#include "knotwork.h"
#include "nurbs/knots/basis.hpp"

namespace kernel {

using kw::Degree;
using kw::upto;

// The largest i in [P, n] with U[i] <= u, for knots and u in [0, 1]: their
// bits compare as integers, faster than doubles; branch-free halving, two
// levels a round so that the three knots the two halvings may ask for load
// together.
template <int P>
inline int span(const double *U, int n, double u) {
    const auto key = std::bit_cast<int64_t>(u);
    auto at = [U](int i) { return std::bit_cast<int64_t>(U[i]); };
    int low = P, len = n + 1 - P;
    for (; len > 3; len = (len - len / 2) - (len - len / 2) / 2) {
        const int a = len / 2, b = (len - a) / 2;
        const bool right = at(low + a) <= key;
        const int64_t next = right ? at(low + a + b) : at(low + b);
        low += (right ? a : 0) + (next <= key ? b : 0);
    }
    for (; len > 1; len -= len / 2) low += at(low + len / 2) <= key ? len / 2 : 0;
    return low;
}

// x[i] := 1 / x[i], i < N, in pairs: one division instruction for two.
template <int N>
inline void invert(double *x) {
    using Pair = double __attribute__((vector_size(16)));
    upto(Degree<0>{}, Degree<(N + 1) / 2 - 1>{}, [&](auto i) KW_INLINE {
        Pair v = {x[2 * i], 2 * i + 1 < N ? x[2 * i + 1] : 1.0};
        v = 1.0 / v;
        x[2 * i] = v[0];
        if (2 * i + 1 < N) x[2 * i + 1] = v[1];
    });
}

// The basis functions of every degree l = 0..P over span s, B[l][r] that of
// N[s-l+r, l], and the reciprocal knot differences inv[l][r] =
// 1 / (U[s+r+1] - U[s+1-l+r]), which the recursion and the derivatives share.
template <int P>
struct Triangle {
    double B[P + 1][P + 1], inv[P + 1][P + 1];
    Triangle(const double *U, int s, double u) {
        double d[P * (P + 1) / 2];
        int at = 0;
        upto(Degree<1>{}, Degree<P>{}, [&](auto l) KW_INLINE {
            upto(Degree<0>{}, Degree<l - 1>{}, [&](auto r) KW_INLINE { d[at++] = U[s + r + 1] - U[s + 1 - l + r]; });
        });
        invert<P * (P + 1) / 2>(d);
        at = 0;
        upto(Degree<1>{}, Degree<P>{}, [&](auto l) KW_INLINE {
            upto(Degree<0>{}, Degree<l - 1>{}, [&](auto r) KW_INLINE { inv[l][r] = d[at++]; });
        });
        B[0][0] = 1.0;
        upto(Degree<1>{}, Degree<P>{}, [&](auto l) KW_INLINE {
            B[l][0] = 0.0;
            upto(Degree<0>{}, Degree<l - 1>{}, [&](auto r) KW_INLINE {
                const double t = B[l - 1][r] * inv[l][r];
                B[l][r] += (U[s + r + 1] - u) * t;
                B[l][r + 1] = (u - U[s + 1 - l + r]) * t;
            });
        });
    }
    // D[k][r] := the k-th derivative of N[s-P+r, P], k = 0..K <= P: k steps
    // of N' = l (N[i, l-1] / (U[i+l] - U[i]) - N[i+1, l-1] / (U[i+l+1] - U[i+1]))
    // from the functions of degree P - k.
    template <int K>
    void derivatives(double (&D)[K + 1][P + 1]) const {
        upto(Degree<0>{}, Degree<K>{}, [&](auto k) KW_INLINE {
            double E[P + 2] = {};  // E[r + 1] holds entry r, E[0] and E[l + 1] stay 0
            upto(Degree<0>{}, Degree<P - k>{}, [&](auto r) KW_INLINE { E[r + 1] = B[P - k][r]; });
            upto(Degree<P - k + 1>{}, Degree<P>{}, [&](auto l) KW_INLINE {
                double next[P + 2] = {};
                upto(Degree<0>{}, l, [&](auto r) KW_INLINE {
                    const double a = r > 0 ? E[r] * inv[l][r - 1] : 0.0;
                    const double b = r < l ? E[r + 1] * inv[l][r] : 0.0;
                    next[r + 1] = l * (a - b);
                });
                upto(Degree<0>{}, l, [&](auto r) KW_INLINE { E[r + 1] = next[r + 1]; });
            });
            upto(Degree<0>{}, Degree<P>{}, [&](auto r) KW_INLINE { D[k][r] = E[r + 1]; });
        });
    }
};

template <int P, bool Rational>
inline Point curve_point(const double *U, int n, const ControlPoint *Pw, double u) {
    const int s = span<P>(U, n, u);
    const Triangle<P> t(U, s, u);
    double x = 0.0, y = 0.0, z = 0.0, w = 0.0;
    upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
        const ControlPoint &Q = Pw[s - P + j];
        const double N = t.B[P][j];
        x += N * Q.x;
        y += N * Q.y;
        z += N * Q.z;
        if (Rational) w += N * Q.w;
    });
    if (!Rational) return Point{x, y, z};
    return Point{x / w, y / w, z / w};
}

// CK[0..K]: derivatives of the rational basis functions (those of a
// polynomial curve as they are) applied to the Cartesian control points.
template <int P, int K, bool Rational>
inline void curve_ders(const double *U, int n, const ControlPoint *Pw, double u, Point *CK) {
    const int s = span<P>(U, n, u);
    const Triangle<P> t(U, s, u);
    double D[K + 1][P + 1];
    t.template derivatives<K>(D);
    const ControlPoint *Q = Pw + s - P;
    Point E[P + 1];
    upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
        E[j] = Rational ? Point{Q[j].x / Q[j].w, Q[j].y / Q[j].w, Q[j].z / Q[j].w} : Point{Q[j].x, Q[j].y, Q[j].z};
    });
    if (Rational) {
        constexpr double bin[3][3] = {{1, 0, 0}, {1, 1, 0}, {1, 2, 1}};
        static_assert(K <= 2);
        double W[K + 1] = {};
        upto(Degree<0>{}, Degree<K>{}, [&](auto k) KW_INLINE {
            upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE { W[k] += D[k][j] * Q[j].w; });
        });
        const double inv = 1.0 / W[0];
        upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
            upto(Degree<0>{}, Degree<K>{}, [&](auto k) KW_INLINE {
                double v = Q[j].w * D[k][j];
                upto(Degree<1>{}, k, [&](auto i) KW_INLINE { v -= bin[k][i] * W[i] * D[k - i][j]; });
                D[k][j] = v * inv;
            });
        });
    }
    upto(Degree<0>{}, Degree<K>{}, [&](auto k) KW_INLINE {
        Point C{0.0, 0.0, 0.0};
        upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
            C.x += D[k][j] * E[j].x;
            C.y += D[k][j] * E[j].y;
            C.z += D[k][j] * E[j].z;
        });
        CK[k] = C;
    });
}

// The point of a surface: the rows of the active block summed along v, then
// along u.
template <int P, bool Rational>
inline Point surface_point(const double *U, int n, const double *V, int m, ControlPoint *const *Pw, double u,
                           double v) {
    const int su = span<P>(U, n, u), sv = span<P>(V, m, v);
    const Triangle<P> tu(U, su, u), tv(V, sv, v);
    double x = 0.0, y = 0.0, z = 0.0, w = 0.0;
    upto(Degree<0>{}, Degree<P>{}, [&](auto i) KW_INLINE {
        const ControlPoint *row = Pw[su - P + i] + sv - P;
        double rx = 0.0, ry = 0.0, rz = 0.0, rw = 0.0;
        upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
            const double N = tv.B[P][j];
            rx += N * row[j].x;
            ry += N * row[j].y;
            rz += N * row[j].z;
            if (Rational) rw += N * row[j].w;
        });
        const double N = tu.B[P][i];
        x += N * rx;
        y += N * ry;
        z += N * rz;
        if (Rational) w += N * rw;
    });
    if (!Rational) return Point{x, y, z};
    return Point{x / w, y / w, z / w};
}

// S, Su, Sv: products of the two directions' basis derivatives, made
// rational for a rational surface, applied to the Cartesian control points.
template <int P, bool Rational>
inline void surface_ders(const double *U, int n, const double *V, int m, ControlPoint *const *Pw, double u,
                         double v, Point *S) {
    const int su = span<P>(U, n, u), sv = span<P>(V, m, v);
    double Du[2][P + 1], Dv[2][P + 1];
    Triangle<P>(U, su, u).template derivatives<1>(Du);
    Triangle<P>(V, sv, v).template derivatives<1>(Dv);
    constexpr int kl[3][2] = {{0, 0}, {1, 0}, {0, 1}};
    double R[3][P + 1][P + 1], W[3] = {};
    Point E[P + 1][P + 1];
    upto(Degree<0>{}, Degree<P>{}, [&](auto i) KW_INLINE {
        upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
            const ControlPoint &Q = Pw[su - P + i][sv - P + j];
            const double w = Rational ? Q.w : 1.0;
            E[i][j] = Rational ? Point{Q.x / w, Q.y / w, Q.z / w} : Point{Q.x, Q.y, Q.z};
            upto(Degree<0>{}, Degree<2>{}, [&](auto d) KW_INLINE {
                R[d][i][j] = w * Du[kl[d][0]][i] * Dv[kl[d][1]][j];
                W[d] += R[d][i][j];
            });
        });
    });
    if (Rational) {
        const double inv = 1.0 / W[0];
        upto(Degree<0>{}, Degree<P>{}, [&](auto i) KW_INLINE {
            upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
                R[0][i][j] *= inv;
                R[1][i][j] = (R[1][i][j] - W[1] * R[0][i][j]) * inv;
                R[2][i][j] = (R[2][i][j] - W[2] * R[0][i][j]) * inv;
            });
        });
    }
    upto(Degree<0>{}, Degree<2>{}, [&](auto d) KW_INLINE {
        Point C{0.0, 0.0, 0.0};
        upto(Degree<0>{}, Degree<P>{}, [&](auto i) KW_INLINE {
            upto(Degree<0>{}, Degree<P>{}, [&](auto j) KW_INLINE {
                C.x += R[d][i][j] * E[i][j].x;
                C.y += R[d][i][j] * E[i][j].y;
                C.z += R[d][i][j] * E[i][j].z;
            });
        });
        S[d] = C;
    });
}

}  // namespace kernel

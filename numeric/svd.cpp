// Singular value decomposition by Householder bidiagonalisation and
// implicitly shifted QR, its back substitution and the inverses built on it.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

#include "numeric/solvers.hpp"

using namespace kw;

namespace {

// Negligible next to the matrix's norm.
bool negligible(double x, double anorm) noexcept { return std::fabs(x) <= DBL_EPSILON * anorm; }

// A Householder reflection of x(lo..hi), read and written through at(k):
// x is divided by scale, the sum of its magnitudes (against overflow), and
// x(lo) becomes f - g, so that x is the reflection's vector, with
// h = f g - |x|^2 and g the value the reflection leaves at lo (times scale).
struct Reflector {
    double scale = 0.0, g = 0.0, h = 0.0;
};
template <class At>
Reflector reflector(At at, int32_t lo, int32_t hi) noexcept {
    Reflector r;
    for (int32_t k = lo; k <= hi; ++k) r.scale += std::fabs(at(k));
    if (r.scale == 0.0) return r;
    double s = 0.0;
    for (int32_t k = lo; k <= hi; ++k) {
        at(k) /= r.scale;
        s += at(k) * at(k);
    }
    const double f = at(lo);
    r.g = -std::copysign(std::sqrt(s), f);
    r.h = f * r.g - s;
    at(lo) = f - r.g;
    return r;
}

// Householder reflections from the left (columns) and right (rows) reduce
// a, rows 0..m and columns 0..n, to bidiagonal form: diagonal in w,
// superdiagonal in e (e[i] couples i-1 and i; e[0] = 0). The reflection
// vectors stay in a. Returns the norm estimate used for negligibility.
double bidiagonalise(double *const *a, double *w, double *e, int32_t m, int32_t n) noexcept {
    double anorm = 0.0;
    Reflector right;
    for (int32_t i = 0; i <= n; ++i) {
        const int32_t l = i + 1;
        e[i] = right.scale * right.g;
        const Reflector left = reflector([a, i](int32_t k) -> double & { return a[k][i]; }, i, m);
        if (left.scale != 0.0) {
            for (int32_t j = l; j <= n; ++j) {
                double t = 0.0;
                for (int32_t k = i; k <= m; ++k) t += a[k][i] * a[k][j];
                const double c = t / left.h;
                for (int32_t k = i; k <= m; ++k) a[k][j] += c * a[k][i];
            }
            for (int32_t k = i; k <= m; ++k) a[k][i] *= left.scale;
        }
        w[i] = left.scale * left.g;
        right = Reflector{};
        if (i != n) right = reflector([a, i](int32_t k) -> double & { return a[i][k]; }, l, n);
        if (right.scale != 0.0) {
            for (int32_t k = l; k <= n; ++k) e[k] = a[i][k] / right.h;
            for (int32_t j = l; j <= m; ++j) {
                double t = 0.0;
                for (int32_t k = l; k <= n; ++k) t += a[j][k] * a[i][k];
                for (int32_t k = l; k <= n; ++k) a[j][k] += t * e[k];
            }
            for (int32_t k = l; k <= n; ++k) a[i][k] *= right.scale;
        }
        anorm = std::max(anorm, std::fabs(w[i]) + std::fabs(e[i]));
    }
    return anorm;
}

// V from the right reflections, which are read from the rows of a.
void accumulate_right(double *const *a, const double *e, double *const *v, int32_t n) noexcept {
    for (int32_t i = n; i >= 0; --i) {
        const int32_t l = i + 1;
        if (i < n) {
            const double g = e[l];
            if (g != 0.0) {
                // Two divisions, so that a tiny a[i][l] * g cannot underflow.
                for (int32_t j = l; j <= n; ++j) v[j][i] = (a[i][j] / a[i][l]) / g;
                for (int32_t j = l; j <= n; ++j) {
                    double s = 0.0;
                    for (int32_t k = l; k <= n; ++k) s += a[i][k] * v[k][j];
                    for (int32_t k = l; k <= n; ++k) v[k][j] += s * v[k][i];
                }
            }
            for (int32_t j = l; j <= n; ++j) v[i][j] = v[j][i] = 0.0;
        }
        v[i][i] = 1.0;
    }
}

// U, in place of a, from the left reflections.
void accumulate_left(double *const *a, const double *w, int32_t m, int32_t n) noexcept {
    for (int32_t i = n; i >= 0; --i) {
        const int32_t l = i + 1;
        for (int32_t j = l; j <= n; ++j) a[i][j] = 0.0;
        if (w[i] != 0.0) {
            const double g = 1.0 / w[i];
            for (int32_t j = l; j <= n; ++j) {
                double s = 0.0;
                for (int32_t k = l; k <= m; ++k) s += a[k][i] * a[k][j];
                const double f = (s / a[i][i]) * g;
                for (int32_t k = i; k <= m; ++k) a[k][j] += f * a[k][i];
            }
            for (int32_t j = i; j <= m; ++j) a[j][i] *= g;
        } else {
            for (int32_t j = i; j <= m; ++j) a[j][i] = 0.0;
        }
        a[i][i] += 1.0;
    }
}

// Columns p and q of x (rows 0..last) turned by the plane rotation (c, s).
void rotate(double *const *x, int32_t last, int32_t p, int32_t q, double c, double s) noexcept {
    for (int32_t r = 0; r <= last; ++r) {
        const double y = x[r][p], z = x[r][q];
        x[r][p] = y * c + z * s;
        x[r][q] = z * c - y * s;
    }
}

// Implicitly shifted QR on the bidiagonal (w, e), from the last singular
// value up, with the rotations applied to U (in a) and V. Each value gets
// at most M_itesvd iterations.
int16_t diagonalise(double *const *a, double *w, double *e, double *const *v, int32_t m, int32_t n,
                    double anorm, char *name) noexcept {
    for (int32_t k = n; k >= 0; --k) {
        for (int32_t its = 1;; ++its) {
            // Find the top l of the unreduced block ending at k; e[0] is 0,
            // so the search stops at l = 0 at the latest.
            int32_t l = k;
            bool split = false;
            for (; l >= 0; --l) {
                if (l == 0 || negligible(e[l], anorm)) break;
                if (negligible(w[l - 1], anorm)) {
                    split = true;
                    break;
                }
            }
            if (split) {
                // w[l-1] is zero: chase e[l] off the block with rotations.
                const int32_t nm = l - 1;
                double c = 0.0, s = 1.0;
                for (int32_t i = l; i <= k; ++i) {
                    const double f = s * e[i];
                    e[i] = c * e[i];
                    if (negligible(f, anorm)) break;
                    const double g = w[i], h = std::hypot(f, g);
                    w[i] = h;
                    c = g / h;
                    s = -f / h;
                    rotate(a, m, nm, i, c, s);
                }
            }
            const double z = w[k];
            if (l == k) {
                if (z < 0.0) {
                    w[k] = -z;
                    for (int32_t j = 0; j <= n; ++j) v[j][k] = -v[j][k];
                }
                break;
            }
            if (its > M_itesvd) return fail(KW_ENOCONV, name);
            // Shift from the trailing 2 x 2 block, then one QR sweep of
            // Givens rotations from l to k.
            double x = w[l];
            const double y0 = w[k - 1], g0 = e[k - 1], h0 = e[k];
            double f = ((y0 - z) * (y0 + z) + (g0 - h0) * (g0 + h0)) / (2.0 * h0 * y0);
            double g = std::hypot(f, 1.0);
            f = ((x - z) * (x + z) + h0 * ((y0 / (f + std::copysign(g, f))) - h0)) / x;
            double c = 1.0, s = 1.0;
            for (int32_t j = l; j < k; ++j) {
                const int32_t i = j + 1;
                g = e[i];
                double y = w[i], h = s * g;
                g = c * g;
                double r = std::hypot(f, h);
                e[j] = r;
                c = f / r;
                s = h / r;
                f = x * c + g * s;
                g = g * c - x * s;
                h = y * s;
                y *= c;
                rotate(v, n, j, i, c, s);
                r = std::hypot(f, h);
                w[j] = r;
                if (r != 0.0) {
                    c = f / r;
                    s = h / r;
                }
                f = c * g + s * y;
                x = c * y - s * g;
                rotate(a, m, j, i, c, s);
            }
            e[l] = 0.0;
            e[k] = f;
            w[k] = x;
        }
    }
    return 0;
}

// Singular values in descending order, the columns of U and V with them.
void sort_descending(double *const *a, double *w, double *const *v, int32_t m, int32_t n) noexcept {
    for (int32_t i = 0; i < n; ++i) {
        const int32_t k = static_cast<int32_t>(std::max_element(w + i, w + n + 1) - w);
        if (k == i) continue;
        std::swap(w[i], w[k]);
        for (int32_t r = 0; r <= m; ++r) std::swap(a[r][i], a[r][k]);
        for (int32_t r = 0; r <= n; ++r) std::swap(v[r][i], v[r][k]);
    }
}

// x = V diag(1/w) U^T b over the non-zero w; t holds U^T b / w.
template <class T>
void back_substitute(double *const *u, const double *w, double *const *v, int32_t m, int32_t n,
                     const T *b, T *t, T *x) noexcept {
    for (int32_t j = 0; j <= n; ++j) {
        Combination<T> s;
        for (int32_t i = 0; i <= m; ++i) s.add(u[i][j], b[i]);
        t[j] = w[j] != 0.0 ? divided(s.value(), w[j]) : zero_like(s.value());
    }
    for (int32_t i = 0; i <= n; ++i) {
        Combination<T> s;
        for (int32_t j = 0; j <= n; ++j) s.add(v[i][j], t[j]);
        x[i] = s.value();
    }
}

template <class T>
int16_t solve_kind(double *const *u, const double *w, double *const *v, int32_t m, int32_t n,
                   const void *b, void *x) noexcept {
    LocalStacks local;
    T *t = get1d<T>(n, local.get());
    if (!t) return 1;
    back_substitute(u, w, v, m, n, static_cast<const T *>(b), t, static_cast<T *>(x));
    return 0;
}

}  // namespace

int16_t M_svdcpf(double **a, double *w, double **v, int32_t m, int32_t n) {
    static char name[] = "M_SVDCPF";
    if (n < 0 || n > m) return fail(KW_EARG, name);
    LocalStacks local;
    double *e = S_getr1d(n, local.get());
    if (!e) return 1;
    const double anorm = bidiagonalise(a, w, e, m, n);
    accumulate_right(a, e, v, n);
    accumulate_left(a, w, m, n);
    if (diagonalise(a, w, e, v, m, n, anorm, name)) return 1;
    sort_descending(a, w, v, m, n);
    return 0;
}

int16_t M_svdsbf(double *const *u, double *w, double *const *v, int32_t m, int32_t n,
                 const void *b, int16_t kind, int16_t first, void *x) {
    static char name[] = "M_SVDSBF";
    if (n < 0 || n > m || kind < 1 || kind > 3) return fail(KW_EARG, name);
    if (first == 1) {
        const double wmax = *std::max_element(w, w + n + 1);
        if (wmax <= M_tolsvd) return fail(KW_ESINGULAR, name);
        const double small = m * wmax * M_tolsvd;
        std::replace_if(w, w + n + 1, [small](double wj) { return wj <= small; }, 0.0);
    }
    switch (kind) {
    case 1: return solve_kind<Point>(u, w, v, m, n, b, x);
    case 2: return solve_kind<ControlPoint>(u, w, v, m, n, b, x);
    default: return solve_kind<double>(u, w, v, m, n, b, x);
    }
}

int16_t M_svdinv(double *const *a, int32_t n, double **ainv) {
    static char name[] = "M_SVDINV";
    if (n < 0) return fail(KW_EARG, name);
    LocalStacks local;
    double **u = S_getr2d(n, n, local.get());
    double **v = u ? S_getr2d(n, n, local.get()) : nullptr;
    double *w = v ? S_getr1d(n, local.get()) : nullptr;
    double *e = w ? S_getr1d(n, local.get()) : nullptr;
    if (!e) return 1;
    for (int32_t i = 0; i <= n; ++i) std::copy_n(a[i], n + 1, u[i]);
    if (M_svdcpf(u, w, v, n, n)) return 1;
    return inverse_columns(n, e, ainv, [&](double *col, int32_t k) {
        return M_svdsbf(u, w, v, n, n, col, 3, k == 0 ? 1 : 0, col);
    });
}

int16_t M_rmaivs(const RealMatrix *A, RealMatrix *Ainv, StorageStacks *stk) {
    static char name[] = "M_RMAIVS";
    if (square_input(A, false, name)) return 1;
    if (shares_rows(Ainv, A)) return fail(KW_EARG, name);
    if (M_rmachk(Ainv, A->n, A->n, KW_FULL, A->n + 1, name, stk)) return 1;
    return M_svdinv(A->a, A->n, Ainv->a);
}

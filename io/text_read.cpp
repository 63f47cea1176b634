// Reading curves, surfaces, point arrays and curve arrays from text, and the
// reductions that a checked read applies.
//
// Each reader works in two steps. It first parses the whole object onto a
// private context, growing its arrays as the numbers arrive instead of
// trusting the counts in the file, and checks it when asked; only then does
// it commit the object to the caller's outputs. A file that fails anywhere
// therefore leaves the caller's records as they were.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "core/records.hpp"
#include "core/storage.hpp"
#include "io/kinds.hpp"
#include "io/text.hpp"
#include "knotwork/errors.h"
#include "knotwork/io.h"

using namespace kw;
using namespace kw::io;

namespace {

// Weights that differ by less than this make a rational object a
// non-rational one in disguise.
constexpr double kEqualWeights = 0.001;

constexpr int64_t kMaxIndex = std::numeric_limits<int32_t>::max();
constexpr int64_t kMaxDegree = std::numeric_limits<int16_t>::max();
// Arrays start this large and double as the numbers arrive.
constexpr int64_t kFirstChunk = 256;
// The fewest numbers a curve can take: four header lines, a point of two
// values and two knots.
constexpr int64_t kLeastCurveNumbers = 8;

bool highest_index_ok(int64_t n) noexcept { return n >= 0 && n <= kMaxIndex; }
bool degree_ok(int64_t p) noexcept { return p >= 0 && p <= kMaxDegree; }

template <class Obj>
bool weights_agree(const Obj *obj) noexcept {
    double lo = std::numeric_limits<double>::infinity(), hi = -lo;
    each_point(obj, [&](const ControlPoint &P) {
        lo = std::min(lo, P.w);
        hi = std::max(hi, P.w);
    });
    return std::fabs(hi - lo) < kEqualWeights;
}

// ---- Arrays that grow as the numbers arrive ------------------------------------

int16_t grow(ControlPoint **a, int32_t oldn, int32_t newn, StorageStacks *stk) noexcept {
    return U_ralc1d(a, oldn, newn, stk);
}
int16_t grow(double **a, int32_t oldn, int32_t newn, StorageStacks *stk) noexcept {
    return U_ralr1d(a, oldn, newn, stk);
}
int16_t grow(Point **a, int32_t oldn, int32_t newn, StorageStacks *stk) noexcept {
    return U_ralp1d(a, oldn, newn, stk);
}

// count elements (1 <= count <= 2^31), each read by read_one, into a new
// array on stk.
template <class T, class ReadOne>
int16_t read_array(int64_t count, ReadOne read_one, T **out, char *name,
                   StorageStacks *stk) noexcept {
    T *a = nullptr;
    int64_t held = 0;
    for (int64_t i = 0; i < count; ++i) {
        if (i == held) {
            const int64_t want = std::min(count, std::max(kFirstChunk, 2 * held));
            if (grow(&a, static_cast<int32_t>(held - 1), static_cast<int32_t>(want - 1), stk))
                return 1;
            held = want;
        }
        if (!read_one(&a[i])) return fail(KW_EFILE, name);
    }
    *out = a;
    return 0;
}

int16_t read_knots(Scanner &in, int64_t count, double **U, char *name,
                   StorageStacks *stk) noexcept {
    return read_array(count, [&](double *u) { return in.real(u); }, U, name, stk);
}

int16_t read_control_points(Scanner &in, int64_t count, int kind, ControlPoint **Pw, char *name,
                            StorageStacks *stk) noexcept {
    const int width = kind_width(kind);
    return read_array(
        count,
        [&](ControlPoint *P) {
            double v[4];
            for (int k = 0; k < width; ++k)
                if (!in.real(&v[k])) return false;
            *P = unpack(v, kind);
            return true;
        },
        Pw, name, stk);
}

int16_t read_points(Scanner &in, int64_t count, Point **P, char *name,
                    StorageStacks *stk) noexcept {
    return read_array(
        count, [&](Point *Q) { return in.real(&Q->x) && in.real(&Q->y) && in.real(&Q->z); }, P,
        name, stk);
}

// ---- Curves ------------------------------------------------------------------------

// A curve into *c, on stk.
int16_t parse_curve(Scanner &in, int16_t check, char *name, StorageStacks *stk, Curve *c) noexcept {
    int64_t n, p, rational_flag, dimension;
    if (!in.integer(&n) || !in.integer(&p) || !in.integer(&rational_flag) ||
        !in.integer(&dimension))
        return fail(KW_EFILE, name);
    if (!highest_index_ok(n) || !degree_ok(p) || !highest_index_ok(n + p + 1))
        return fail(KW_EARG, name);
    const int kind = point_kind(rational_flag, dimension);
    if (!kind) return fail(KW_ECASE, name);
    const int64_t m = n + p + 1;
    if (!in.can_hold((n + 1) * kind_width(kind) + m + 1)) return fail(KW_EARG, name);
    ControlPoint *Pw;
    double *U;
    if (read_control_points(in, n + 1, kind, &Pw, name, stk) || read_knots(in, m + 1, &U, name, stk))
        return 1;
    if (U_makcu2(c, Pw, static_cast<int32_t>(n), static_cast<int16_t>(p), U,
                 static_cast<int32_t>(m), stk))
        return 1;
    if (check == 1) {
        if (E_curinp(c, name)) return 1;
        U_currpr(c, 1);
    }
    return 0;
}

// The parsed curve src into the caller's dst through the output check.
int16_t commit_curve(const Curve *src, Curve *dst, char *name, StorageStacks *stk) noexcept {
    const int32_t n = src->pol->n, m = src->knt->m;
    if (U_curchk(dst, n, src->p, m, name, stk)) return 1;
    std::copy_n(src->pol->Pw, n + 1, dst->pol->Pw);
    std::copy_n(src->knt->U, m + 1, dst->knt->U);
    return 0;
}

struct CurveIn {
    Curve *out;
    int16_t check;
    Curve c{};
    bool outputs() const noexcept { return out; }
    int16_t parse(Scanner &in, char *name, StorageStacks *stk) noexcept {
        return parse_curve(in, check, name, stk, &c);
    }
    int16_t commit(char *name, StorageStacks *stk) noexcept { return commit_curve(&c, out, name, stk); }
};

// ---- Surfaces ----------------------------------------------------------------------

struct SurfaceIn {
    Surface *out;
    int16_t check;
    Surface s{};
    bool outputs() const noexcept { return out; }

    int16_t parse(Scanner &in, char *name, StorageStacks *stk) noexcept {
        int64_t n, m, p, q, rational_flag;
        if (!in.integer(&n) || !in.integer(&m) || !in.integer(&p) || !in.integer(&q) ||
            !in.integer(&rational_flag))
            return fail(KW_EFILE, name);
        if (!highest_index_ok(n) || !highest_index_ok(m) || !degree_ok(p) || !degree_ok(q) ||
            !highest_index_ok(n + p + 1) || !highest_index_ok(m + q + 1) ||
            !highest_index_ok((n + 1) * (m + 1) - 1))
            return fail(KW_EARG, name);
        const int kind = point_kind(rational_flag, 3);
        if (!kind) return fail(KW_ECASE, name);
        const int64_t r = n + p + 1, sv = m + q + 1, points = (n + 1) * (m + 1);
        if (!in.can_hold(points * kind_width(kind) + r + 1 + sv + 1)) return fail(KW_EARG, name);
        ControlPoint *flat;
        double *U, *V;
        if (read_control_points(in, points, kind, &flat, name, stk) ||
            read_knots(in, r + 1, &U, name, stk) || read_knots(in, sv + 1, &V, name, stk))
            return 1;
        ControlPoint **rows = S_getc1p(static_cast<int32_t>(n), stk);
        if (!rows) return 1;
        for (int64_t i = 0; i <= n; ++i) rows[i] = flat + i * (m + 1);
        if (U_maksu2(&s, rows, static_cast<int32_t>(n), static_cast<int32_t>(m),
                     static_cast<int16_t>(p), static_cast<int16_t>(q), U, V,
                     static_cast<int32_t>(r), static_cast<int32_t>(sv), stk))
            return 1;
        if (check == 1) {
            if (E_surinp(&s, name)) return 1;
            if (U_issurr(&s) && weights_agree(&s)) U_sureuc(&s);
        }
        return 0;
    }

    int16_t commit(char *name, StorageStacks *stk) noexcept {
        const int32_t n = s.net->n, m = s.net->m, r = s.knu->m, sv = s.knv->m;
        if (U_surchk(out, n, m, s.p, s.q, r, sv, name, stk)) return 1;
        for (int32_t i = 0; i <= n; ++i) std::copy_n(s.net->Pw[i], m + 1, out->net->Pw[i]);
        std::copy_n(s.knu->U, r + 1, out->knu->U);
        std::copy_n(s.knv->U, sv + 1, out->knv->U);
        return 0;
    }
};

// ---- Point arrays -------------------------------------------------------------------

struct PointsIn {
    Point **out;
    int32_t *n_out;
    Point *P = nullptr;
    int32_t n = -1;
    bool outputs() const noexcept { return out && n_out; }

    int16_t parse(Scanner &in, char *name, StorageStacks *stk) noexcept {
        int64_t count;
        if (!in.integer(&count)) return fail(KW_EFILE, name);
        if (!highest_index_ok(count) || !in.can_hold(3 * (count + 1))) return fail(KW_EARG, name);
        n = static_cast<int32_t>(count);
        return read_points(in, count + 1, &P, name, stk);
    }

    int16_t commit(char *, StorageStacks *stk) noexcept {
        Point *a = S_getp1d(n, stk);
        if (!a) return 1;
        std::copy_n(P, n + 1, a);
        *out = a;
        *n_out = n;
        return 0;
    }
};

struct GridIn {
    Point ***out;
    int32_t *n_out, *m_out;
    Point *P = nullptr;
    int32_t n = -1, m = -1;
    bool outputs() const noexcept { return out && n_out && m_out; }

    int16_t parse(Scanner &in, char *name, StorageStacks *stk) noexcept {
        int64_t rows, cols;
        if (!in.integer(&rows) || !in.integer(&cols)) return fail(KW_EFILE, name);
        if (!highest_index_ok(rows) || !highest_index_ok(cols) ||
            !highest_index_ok((rows + 1) * (cols + 1) - 1))
            return fail(KW_EARG, name);
        const int64_t points = (rows + 1) * (cols + 1);
        if (!in.can_hold(3 * points)) return fail(KW_EARG, name);
        n = static_cast<int32_t>(rows);
        m = static_cast<int32_t>(cols);
        return read_points(in, points, &P, name, stk);
    }

    int16_t commit(char *, StorageStacks *stk) noexcept {
        Point **a = S_getp2d(n, m, stk);
        if (!a) return 1;
        std::copy_n(P, static_cast<int64_t>(n + 1) * (m + 1), a[0]);
        *out = a;
        *n_out = n;
        *m_out = m;
        return 0;
    }
};

// ---- Curve arrays ------------------------------------------------------------------

struct CurvesIn {
    Curve ***out;
    int32_t *k_out;
    int16_t check;
    Curve **c = nullptr;
    int32_t k = -1;
    bool outputs() const noexcept { return out && k_out; }

    int16_t parse(Scanner &in, char *name, StorageStacks *stk) noexcept {
        int64_t count;
        if (!in.integer(&count)) return fail(KW_EFILE, name);
        if (!highest_index_ok(count) || !in.can_hold((count + 1) * kLeastCurveNumbers))
            return fail(KW_EARG, name);
        k = static_cast<int32_t>(count);
        if (!(c = S_getcu1(k, 1, stk))) return 1;
        for (int32_t i = 0; i <= k; ++i)
            if (parse_curve(in, check, name, stk, c[i])) return 1;
        return 0;
    }

    // A failure part-way kills the curves already committed and the array;
    // their records stay on stk until N_enurbs, as with any killed curve.
    int16_t commit(char *name, StorageStacks *stk) noexcept {
        Curve **a = S_getcu1(k, 1, stk);
        if (!a) return 1;
        for (int32_t i = 0; i <= k; ++i) {
            if (commit_curve(c[i], a[i], name, stk) == 0) continue;
            for (int32_t j = i - 1; j >= 0; --j) U_kilcur(a[j], stk);
            kill_block(a, KW_LIST_CU2, stk);
            return 1;
        }
        *out = a;
        *k_out = k;
        return 0;
    }
};

// ---- Streams and files ------------------------------------------------------------

template <class In>
int16_t read_stream(In &obj, FILE *f, char *name, StorageStacks *stk) noexcept {
    if (!obj.outputs()) return fail(KW_EARG, name);
    if (!f) return fail(KW_EFILE, name);
    LocalStacks scratch;
    Scanner in(f);
    if (obj.parse(in, name, scratch.get())) return 1;
    return obj.commit(name, stk);
}

// A named file must hold the object and nothing else.
template <class In>
int16_t read_file(In &obj, const char *file, char *stream_name, char *file_name,
                  StorageStacks *stk) noexcept {
    if (!obj.outputs()) return fail(KW_EARG, file_name);
    FILE *f = file ? std::fopen(file, "r") : nullptr;
    if (!f) return fail(KW_EFILE, file_name);
    LocalStacks scratch;
    Scanner in(f);
    int16_t status = obj.parse(in, stream_name, scratch.get());
    if (status == 0 && !in.at_end()) status = fail(KW_EFILE, file_name);
    std::fclose(f);
    return status ? status : obj.commit(stream_name, stk);
}

char inpcup[] = "U_INPCUP";
char inpsup[] = "U_INPSUP";
char inpp1s[] = "U_INPP1S";
char inpp2s[] = "U_INPP2S";
char inpcas[] = "U_INPCAS";

}  // namespace

// ---- Readers ------------------------------------------------------------------------

int16_t U_inpcur(Curve *cur, const char *file, int16_t check, StorageStacks *stk) {
    static char name[] = "U_INPCUR";
    CurveIn obj{cur, check};
    return read_file(obj, file, inpcup, name, stk);
}
int16_t U_inpcup(Curve *cur, FILE *f, int16_t check, StorageStacks *stk) {
    CurveIn obj{cur, check};
    return read_stream(obj, f, inpcup, stk);
}
int16_t U_inpsur(Surface *sur, const char *file, int16_t check, StorageStacks *stk) {
    static char name[] = "U_INPSUR";
    SurfaceIn obj{sur, check};
    return read_file(obj, file, inpsup, name, stk);
}
int16_t U_inpsup(Surface *sur, FILE *f, int16_t check, StorageStacks *stk) {
    SurfaceIn obj{sur, check};
    return read_stream(obj, f, inpsup, stk);
}
int16_t U_inpp1d(Point **P, int32_t *n, const char *file, StorageStacks *stk) {
    static char name[] = "U_INPP1D";
    PointsIn obj{P, n};
    return read_file(obj, file, inpp1s, name, stk);
}
int16_t U_inpp1s(Point **P, int32_t *n, FILE *f, StorageStacks *stk) {
    PointsIn obj{P, n};
    return read_stream(obj, f, inpp1s, stk);
}
int16_t U_inpp2d(Point ***P, int32_t *n, int32_t *m, const char *file, StorageStacks *stk) {
    static char name[] = "U_INPP2D";
    GridIn obj{P, n, m};
    return read_file(obj, file, inpp2s, name, stk);
}
int16_t U_inpp2s(Point ***P, int32_t *n, int32_t *m, FILE *f, StorageStacks *stk) {
    GridIn obj{P, n, m};
    return read_stream(obj, f, inpp2s, stk);
}
int16_t U_inpcua(Curve ***cur, int32_t *k, const char *file, int16_t check, StorageStacks *stk) {
    static char name[] = "U_INPCUA";
    CurvesIn obj{cur, k, check};
    return read_file(obj, file, inpcas, name, stk);
}
int16_t U_inpcas(Curve ***cur, int32_t *k, FILE *f, int16_t check, StorageStacks *stk) {
    CurvesIn obj{cur, k, check};
    return read_stream(obj, f, inpcas, stk);
}

// ---- Reductions ----------------------------------------------------------------------

int16_t U_arecwe(const Curve *cur) { return U_iscurr(cur) && weights_agree(cur); }

void U_currpr(Curve *cur, int16_t flag) {
    if (U_arecwe(cur)) U_cureuc(cur);
    if (flag == 1 && U_iscuz0(cur)) U_cur3t2(cur);
}

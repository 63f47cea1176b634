// Writing curves, surfaces, point arrays and curve arrays as text, to files
// and to the console.
#include <cstdio>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "io/kinds.hpp"
#include "io/text.hpp"
#include "knotwork/errors.h"
#include "knotwork/io.h"

using namespace kw;
using namespace kw::io;

namespace {

constexpr const char *kFileSep = " ";
constexpr const char *kConsoleSep = "  ";

// Each object that the text format holds: whether it may be written (a
// checked record), whether it may be printed (any record whose arrays exist),
// and its layout.

bool readable(const Curve *c) noexcept {
    return c && c->pol && c->pol->Pw && c->pol->n >= 0 && c->knt && c->knt->U && c->knt->m >= 0;
}
bool readable(const Surface *s) noexcept {
    return s && s->net && s->net->Pw && s->net->n >= 0 && s->net->m >= 0 && s->knu && s->knu->U &&
           s->knu->m >= 0 && s->knv && s->knv->U && s->knv->m >= 0;
}

void put_knots(Writer &out, const KnotVector *knt) noexcept {
    for (int32_t j = 0; j <= knt->m; ++j) out.reals(&knt->U[j], 1);
}

void put_points(Writer &out, const ControlPoint *Pw, int32_t count, int kind) noexcept {
    double v[4];
    for (int32_t i = 0; i < count; ++i) out.reals(v, pack(Pw[i], kind, v));
}

struct CurveText {
    const Curve *c;
    int16_t invalid(char *name) const noexcept {
        if (!c) return fail(KW_EARG, name);
        return E_curdef(c, name);
    }
    bool printable() const noexcept { return readable(c); }
    void put(Writer &out) const noexcept {
        const int kind = point_kind(c->pol->Pw[0]);
        out.integers({c->pol->n});
        out.integers({c->p});
        out.integers({kind_rational(kind) ? 1 : 0});
        out.integers({kind_3d(kind) ? 3 : 2});
        put_points(out, c->pol->Pw, c->pol->n + 1, kind);
        put_knots(out, c->knt);
    }
};

struct SurfaceText {
    const Surface *s;
    int16_t invalid(char *name) const noexcept {
        if (!s) return fail(KW_EARG, name);
        return E_surdef(s, name);
    }
    bool printable() const noexcept { return readable(s); }
    void put(Writer &out) const noexcept {
        const ControlNet *net = s->net;
        const bool weighted = rational(net->Pw[0][0]);
        out.integers({net->n, net->m});
        out.integers({s->p, s->q});
        out.integers({weighted ? 1 : 0});
        for (int32_t i = 0; i <= net->n; ++i)
            put_points(out, net->Pw[i], net->m + 1, point_kind(weighted ? 1 : 0, 3));
        put_knots(out, s->knu);
        put_knots(out, s->knv);
    }
};

void put_point(Writer &out, const Point &P) noexcept {
    const double v[3] = {P.x, P.y, P.z};
    out.reals(v, 3);
}

struct PointsText {
    const Point *P;
    int32_t n;
    int16_t invalid(char *name) const noexcept {
        return !P || n < 0 ? fail(KW_EARG, name) : 0;
    }
    void put(Writer &out) const noexcept {
        out.integers({n});
        for (int32_t i = 0; i <= n; ++i) put_point(out, P[i]);
    }
};

struct GridText {
    Point *const *P;
    int32_t n, m;
    int16_t invalid(char *name) const noexcept {
        return !P || n < 0 || m < 0 ? fail(KW_EARG, name) : 0;
    }
    void put(Writer &out) const noexcept {
        out.integers({n, m});
        for (int32_t i = 0; i <= n; ++i)
            for (int32_t j = 0; j <= m; ++j) put_point(out, P[i][j]);
    }
};

struct CurvesText {
    Curve *const *cur;
    int32_t k;
    int16_t invalid(char *name) const noexcept {
        if (!cur || k < 0) return fail(KW_EARG, name);
        for (int32_t i = 0; i <= k; ++i)
            if (CurveText{cur[i]}.invalid(name)) return 1;
        return 0;
    }
    void put(Writer &out) const noexcept {
        out.integers({k});
        for (int32_t i = 0; i <= k; ++i) CurveText{cur[i]}.put(out);
    }
};

struct KnotsText {
    const KnotVector *knt;
    bool printable() const noexcept { return knt && knt->U && knt->m >= 0; }
    void put(Writer &out) const noexcept {
        out.integers({knt->m});
        put_knots(out, knt);
    }
};

struct CurveFunctionText {
    const CurveFunction *f;
    bool printable() const noexcept {
        return f && f->cvl && f->cvl->v && f->cvl->n >= 0 && KnotsText{f->knt}.printable();
    }
    void put(Writer &out) const noexcept {
        out.integers({f->cvl->n});
        out.integers({f->p});
        for (int32_t i = 0; i <= f->cvl->n; ++i) out.reals(&f->cvl->v[i], 1);
        put_knots(out, f->knt);
    }
};

struct SurfaceFunctionText {
    const SurfaceFunction *f;
    bool printable() const noexcept {
        return f && f->svl && f->svl->v && f->svl->n >= 0 && f->svl->m >= 0 &&
               KnotsText{f->knu}.printable() && KnotsText{f->knv}.printable();
    }
    void put(Writer &out) const noexcept {
        const ValueGrid *svl = f->svl;
        out.integers({svl->n, svl->m});
        out.integers({f->p, f->q});
        for (int32_t i = 0; i <= svl->n; ++i)
            for (int32_t j = 0; j <= svl->m; ++j) out.reals(&svl->v[i][j], 1);
        put_knots(out, f->knu);
        put_knots(out, f->knv);
    }
};

// ---- Streams, files and the console -----------------------------------------

template <class Text>
int16_t write_stream(const Text &text, FILE *f, char *name) noexcept {
    if (text.invalid(name)) return 1;
    if (!f) return fail(KW_EFILE, name);
    Writer out(f, kFileSep);
    text.put(out);
    return out.ok() ? 0 : fail(KW_EFILE, name);
}

// The object is checked before the file is opened, so that a refused object
// leaves an existing file alone.
template <class Text>
int16_t write_file(const Text &text, const char *file, char *name) noexcept {
    if (text.invalid(name)) return 1;
    FILE *f = file ? std::fopen(file, "w") : nullptr;
    if (!f) return fail(KW_EFILE, name);
    Writer out(f, kFileSep);
    text.put(out);
    const bool ok = out.ok();
    if (std::fclose(f) != 0 || !ok) return fail(KW_EFILE, name);
    return 0;
}

void (*pause_routine)(void) = nullptr;

template <class Text>
int16_t print(const Text &text, char *name) noexcept {
    if (!text.printable()) return fail(KW_EARG, name);
    Writer out(stdout, kConsoleSep);
    text.put(out);
    if (pause_routine) {
        out.text("Hit any key to continue...\n");
        std::fflush(stdout);
        pause_routine();
    }
    return 0;
}

}  // namespace

// ---- Writers --------------------------------------------------------------------

int16_t U_outcur(const Curve *cur, const char *file) {
    static char name[] = "U_OUTCUR";
    return write_file(CurveText{cur}, file, name);
}
int16_t U_outcup(const Curve *cur, FILE *f) {
    static char name[] = "U_OUTCUP";
    return write_stream(CurveText{cur}, f, name);
}
int16_t U_outsur(const Surface *sur, const char *file) {
    static char name[] = "U_OUTSUR";
    return write_file(SurfaceText{sur}, file, name);
}
int16_t U_outsup(const Surface *sur, FILE *f) {
    static char name[] = "U_OUTSUP";
    return write_stream(SurfaceText{sur}, f, name);
}
int16_t U_outp1d(const Point *P, int32_t n, const char *file) {
    static char name[] = "U_OUTP1D";
    return write_file(PointsText{P, n}, file, name);
}
int16_t U_outp1s(const Point *P, int32_t n, FILE *f) {
    static char name[] = "U_OUTP1S";
    return write_stream(PointsText{P, n}, f, name);
}
int16_t U_outp2d(Point *const *P, int32_t n, int32_t m, const char *file) {
    static char name[] = "U_OUTP2D";
    return write_file(GridText{P, n, m}, file, name);
}
int16_t U_outp2s(Point *const *P, int32_t n, int32_t m, FILE *f) {
    static char name[] = "U_OUTP2S";
    return write_stream(GridText{P, n, m}, f, name);
}
int16_t U_outcua(Curve *const *cur, int32_t k, const char *file) {
    static char name[] = "U_OUTCUA";
    return write_file(CurvesText{cur, k}, file, name);
}
int16_t U_outcas(Curve *const *cur, int32_t k, FILE *f) {
    static char name[] = "U_OUTCAS";
    return write_stream(CurvesText{cur, k}, f, name);
}

// ---- Printers ---------------------------------------------------------------------

int16_t U_prtcur(const Curve *cur) {
    static char name[] = "U_PRTCUR";
    return print(CurveText{cur}, name);
}
int16_t U_prtsur(const Surface *sur) {
    static char name[] = "U_PRTSUR";
    return print(SurfaceText{sur}, name);
}
int16_t U_prtknt(const KnotVector *knt) {
    static char name[] = "U_PRTKNT";
    return print(KnotsText{knt}, name);
}
int16_t U_prtcfn(const CurveFunction *cfn) {
    static char name[] = "U_PRTCFN";
    return print(CurveFunctionText{cfn}, name);
}
int16_t U_prtsfn(const SurfaceFunction *sfn) {
    static char name[] = "U_PRTSFN";
    return print(SurfaceFunctionText{sfn}, name);
}
void U_prtpau(void (*pause)(void)) { pause_routine = pause; }

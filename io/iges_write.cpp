// Writing IGES files: the Start, Global, Directory Entry, Parameter Data and
// Terminate sections in fixed 80-column records, with B-spline curves (126)
// and surfaces (128), lines (110), points (116) and polylines (106) as the
// entities.
//
// Every file is laid out twice: once without writing, to be sure that each
// number fits its columns, and then into the file, which is opened only
// when the first pass has passed.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "io/iges.hpp"
#include "io/printf.hpp"
#include "knotwork/errors.h"
#include "knotwork/eval.h"
#include "knotwork/geom.h"
#include "knotwork/iges.h"
#include "knotwork/records.h"

using namespace kw;
using namespace kw::iges;
using io::Arg;

namespace {

// ---- Record formats ------------------------------------------------------------

constexpr const char *kStartCurves = "Nurbs curves written out using the%38sS%7d\n";
constexpr const char *kStartSurfaces = "Nurbs surfaces written out using the%36sS%7d\n";
constexpr const char *kStartMixed = "Nurbs lines/curves/surfaces written out using the%23sS%7d\n";
constexpr const char *kStartPoints = "Points written out using the%44sS%7d\n";
constexpr const char *kStartPolygons = "Control polygons written out using the%34sS%7d\n";
constexpr const char *kStartNets = "Control nets written out using the%38sS%7d\n";
constexpr const char *kStartSender = "Kest software from Tarnholt, Inc.   %36sS%7d\n";

constexpr const char *kGlobalSender = ",,8HKest 7.0,30H%30s,1H ,1H ,%17sG%7d\n";
constexpr const char *kGlobalSenderMixed = ",,8HKest 8.0,30H%30s,1H ,1H ,%17sG%7d\n";
constexpr const char *kGlobalNumbers = "%3d,%3d,%2d,%3d,%3d,1H , %1.1f,1,2HIN,%37sG%7d\n";
constexpr const char *kGlobalResolution = "1, %5.3f,13H             , %18.13lf,%26sG%7d\n";
constexpr const char *kGlobalCoordinate = "%22.10lf,1H ,1H ,%3d,0,%35sG%7d\n";
constexpr const char *kGlobalDate = "13H             ;%55sG%7d\n";

constexpr const char *kDirectory1 = "%8d%8d%8d%8d%8d%8d%8d%8d00000000D%7d\n";
constexpr const char *kDirectory2 = "%8d%8d%8d%8d%8d%8d%8dNURBSURF%8dD%7d\n";

constexpr const char *kCurveHeader = "%3d,%5d,%3d,%2d,%2d,%2d,%2d,%39s%7dP%7d\n";
constexpr const char *kSurfaceHeader = "%3d,%5d,%5d,%3d,%3d,%2d,%2d,%2d,%2d,%2d,%26s%7dP%7d\n";
constexpr const char *kTypeHeader = "%3d,%61s%7dP%7d\n";
constexpr const char *kPolylineHeader = "%3d,%2d,%7d,%50s%7dP%7d\n";
// Knots, coordinates and ranges: the last one, two or three of a list.
constexpr const char *kReals1 = "%19.12lf,%44s %7dP%7d\n";
constexpr const char *kReals2 = "%19.12lf , %19.12lf,%22s %7dP%7d\n";
constexpr const char *kReals3 = "%19.12lf , %19.12lf , %19.12lf, %7dP%7d\n";
constexpr const char *kPointEnd = "%19.12lf , %19.12lf , %19.12lf; %7dP%7d\n";
constexpr const char *kRangeEnd = "%19.12lf , %19.12lf;%22s %7dP%7d\n";
constexpr const char *kNormal = "%15lf , %15lf , %15lf;%12s %7dP%7d\n";
// Weights, one to four to a record: of a polynomial entity (all 1.0) and of
// a rational one.
constexpr const char *kUnitWeights[5] = {
    nullptr, "%13lf,%50s %7dP%7d\n", "%13lf , %13lf,%34s %7dP%7d\n",
    "%13lf , %13lf , %13lf,%18s %7dP%7d\n", "%13lf , %13lf , %13lf , %13lf,   %7dP%7d\n"};
constexpr const char *kWeights[5] = {nullptr, "%13.7lf,%50s %7dP%7d\n",
                                     "%13.7lf , %13.7lf,%34s %7dP%7d\n",
                                     "%13.7lf , %13.7lf , %13.7lf,%18s %7dP%7d\n",
                                     "%13.7lf , %13.7lf , %13.7lf , %13.7lf,   %7dP%7d\n"};

constexpr const char *kTerminateRecord = "S%7dG%7dD%7dP%7d%40sT%7d\n";

// Global values: bits of an integer, then magnitude and significant digits
// of single and double precision; version 9 of the format.
constexpr int kIntegerBits = 32, kSingleMagnitude = 38, kSingleDigits = 7;
constexpr int kDoubleMagnitude = 308, kDoubleDigits = 15, kVersion = 9;
constexpr double kLineWidth = 0.001;
constexpr double kCoordinateMargin = 1.001;
// The file name as a 30-character Hollerith string.
constexpr int kNameColumns = 30;
constexpr int kMaxArgs = 16;

// ---- Records --------------------------------------------------------------------

// Lays out the records of a file, each numbered in its section, and writes
// them when it has a stream.
class Records {
public:
    explicit Records(FILE *f) noexcept : f_(f) {}

    // A record of section s: fmt with args and the sequence number. One
    // that does not come to 80 columns (a number too wide for its field)
    // marks the file as one that cannot be written.
    void put(Section s, const char *fmt, const Arg *args, int count) noexcept {
        Arg all[kMaxArgs];
        std::copy_n(args, count, all);
        all[count] = Arg(++count_[s]);
        char line[kRecord + 2];
        const int len = io::format(line, sizeof line, fmt, all, count + 1);
        if (len != kRecord + 1 || line[kLetter] != kSectionLetter[s]) fits_ = false;
        else if (f_) std::fwrite(line, 1, static_cast<std::size_t>(len), f_);
    }
    void put(Section s, const char *fmt, std::initializer_list<Arg> args) noexcept {
        put(s, fmt, args.begin(), static_cast<int>(args.size()));
    }
    int64_t count(Section s) const noexcept { return count_[s]; }
    bool fits() const noexcept { return fits_; }

private:
    FILE *f_;
    int64_t count_[kSections] = {};
    bool fits_ = true;
};

// The Parameter Data records of one entity, each ending with the entity's
// Directory pointer.
class Params {
public:
    Params(Records &records, int32_t back) noexcept : records_(records), back_(back) {}

    void line(const char *fmt, std::initializer_list<Arg> args) noexcept {
        Arg all[kMaxArgs];
        std::copy(args.begin(), args.end(), all);
        all[args.size()] = Arg(back_);
        records_.put(kParameter, fmt, all, static_cast<int>(args.size()) + 1);
    }

    // v(0..last), three to a record, more data following.
    template <class V>
    void reals(int64_t last, V v) noexcept {
        int64_t j = 0;
        for (; j + 2 <= last; j += 3) line(kReals3, {v(j), v(j + 1), v(j + 2)});
        if (j == last) line(kReals1, {v(j), ""});
        if (j + 1 == last) line(kReals2, {v(j), v(j + 1), ""});
    }

    // w(0..last), four to a record, in the forms of unit or rational weights.
    template <class W>
    void weights(int64_t last, bool unit, W w) noexcept {
        const char *const *form = unit ? kUnitWeights : kWeights;
        for (int64_t j = 0; j <= last; j += 4) {
            const int64_t left = std::min<int64_t>(4, last - j + 1);
            if (left == 4) line(form[4], {w(j), w(j + 1), w(j + 2), w(j + 3)});
            if (left == 3) line(form[3], {w(j), w(j + 1), w(j + 2), ""});
            if (left == 2) line(form[2], {w(j), w(j + 1), ""});
            if (left == 1) line(form[1], {w(j), ""});
        }
    }

    void point(const Point &P, bool last) noexcept {
        line(last ? kPointEnd : kReals3, {P.x, P.y, P.z});
    }
    void range(double a, double b, bool last) noexcept {
        line(last ? kRangeEnd : kReals2, {a, b, ""});
    }

private:
    Records &records_;
    int32_t back_;
};

// The records that a list of count values takes, `per` to a record.
int64_t records_for(int64_t count, int per) noexcept { return (count - 1) / per + 1; }

// ---- Entities -------------------------------------------------------------------

// Control points in order: P[i] = flat[i], or rows[i][col] down a column of
// a net.
struct PointSeq {
    const ControlPoint *flat = nullptr;
    ControlPoint *const *rows = nullptr;
    int32_t col = 0;
    const ControlPoint &operator[](int64_t i) const noexcept {
        return flat ? flat[i] : rows[i][col];
    }
};

// First and last points closer than the point tolerance, as U_iscurc has it.
bool ends_meet(const PointSeq &P, int32_t n) noexcept {
    return norm(euclid(P[0]) - euclid(P[n])) < U_tolpoi;
}

// A B-spline curve as the 126 entity holds it: control points 0..n, degree
// p, knots U (or, when U is null, the knots 0, 0, 1, .., n - 1, n, n of the
// polyline through the control points) and the entity's flags.
struct CurveView {
    int32_t n = 0;
    int p = 1;
    const double *U = nullptr;
    PointSeq P;
    int planar = 0, closed = 0, polynomial = 1;

    int64_t m() const noexcept { return static_cast<int64_t>(n) + p + 1; }
    double knot(int64_t j) const noexcept {
        return U ? U[j] : static_cast<double>(std::clamp<int64_t>(j - 1, 0, n));
    }
    double weight(int64_t i) const noexcept { return polynomial ? 1.0 : P[i].w; }
};

// The polygon of the points, a polyline, with the flags of a 3-D curve.
CurveView polyline(PointSeq P, int32_t n) noexcept {
    CurveView v;
    v.n = n;
    v.P = P;
    v.closed = ends_meet(P, n);
    return v;
}

// A curve's entity flags: planar when 2-D and not straight, closed, and
// polynomial unless a weight differs from 1.0.
CurveView curve_view(const Curve *cur, double tol) noexcept {
    CurveView v;
    v.n = cur->pol->n;
    v.p = cur->p;
    v.U = cur->knt->U;
    v.P.flat = cur->pol->Pw;
    v.planar = !U_iscur3(cur) && !U_iscurl(cur, tol);
    v.closed = U_iscurc(cur) != 0;
    v.polynomial = 1;
    if (U_iscurr(cur))
        for (int32_t i = 0; i <= v.n; ++i) v.polynomial &= cur->pol->Pw[i].w == 1.0;
    return v;
}

// One entity of a file.
struct Entity {
    enum Kind { kCurve, kSurface, kLine, kPoint, kPolyline } kind;
    CurveView curve{};  // kCurve
    const Curve *source = nullptr;  // kCurve: the curve itself, when it is not a polyline
    const Surface *surface = nullptr;  // kSurface
    const Point *P = nullptr;  // kLine: P[0], P[1]; kPoint: P[0]; kPolyline: P[0..n]
    int32_t n = 0;
};

int32_t type_of(const Entity &e) noexcept {
    constexpr int32_t types[] = {kBSplineCurve, kBSplineSurface, kLine, kPoint, kCopiousData};
    return types[e.kind];
}

int32_t form_of(const Entity &e) noexcept {
    return e.kind == Entity::kPolyline ? kPolylineForm : 0;
}

int64_t lines_of(const Entity &e) noexcept {
    switch (e.kind) {
    case Entity::kCurve: {
        const CurveView &c = e.curve;
        return 3 + (c.m() / 3 + 1) + (c.n / 4 + 1) + (static_cast<int64_t>(c.n) + 1);
    }
    case Entity::kSurface: {
        const Surface *s = e.surface;
        const int64_t cells = (static_cast<int64_t>(s->net->n) + 1) * (s->net->m + 1);
        return 1 + records_for(s->knu->m + 1, 3) + records_for(s->knv->m + 1, 3) +
               records_for(cells, 4) + cells + 2;
    }
    case Entity::kLine: return 3;
    case Entity::kPoint: return 2;
    case Entity::kPolyline: return 1 + static_cast<int64_t>(e.n) + 1;
    }
    return 0;
}

void emit_curve(Params &out, const CurveView &c) noexcept {
    const int64_t m = c.m();
    out.line(kCurveHeader, {kBSplineCurve, c.n, c.p, c.planar, c.closed, c.polynomial, 0, ""});
    out.reals(m, [&c](int64_t j) { return c.knot(j); });
    out.weights(c.n, c.polynomial, [&c](int64_t i) { return c.weight(i); });
    for (int32_t i = 0; i <= c.n; ++i) out.point(euclid(c.P[i]), false);
    out.range(c.knot(0), c.knot(m), false);
    out.line(kNormal, {0.0, 0.0, c.planar ? 1.0 : 0.0, ""});
}

void emit_surface(Params &out, const Surface *s) noexcept {
    const ControlNet *net = s->net;
    const int32_t n = net->n, m = net->m;
    const int64_t last = (static_cast<int64_t>(n) + 1) * (m + 1) - 1;
    // Weights and points run with i (along u) fastest.
    auto at = [&](int64_t k) -> const ControlPoint & { return net->Pw[k % (n + 1)][k / (n + 1)]; };
    bool polynomial = true;
    if (U_issurr(s))
        for (int64_t k = 0; k <= last; ++k) polynomial &= at(k).w == 1.0;
    out.line(kSurfaceHeader, {kBSplineSurface, n, m, s->p, s->q, U_issurc(s, 1) != 0,
                              U_issurc(s, 2) != 0, polynomial ? 1 : 0, 0, 0, ""});
    out.reals(s->knu->m, [s](int64_t j) { return s->knu->U[j]; });
    out.reals(s->knv->m, [s](int64_t j) { return s->knv->U[j]; });
    out.weights(last, polynomial, [&](int64_t k) { return polynomial ? 1.0 : at(k).w; });
    for (int64_t k = 0; k <= last; ++k) out.point(euclid(at(k)), false);
    out.range(s->knu->U[0], s->knu->U[s->knu->m], false);
    out.range(s->knv->U[0], s->knv->U[s->knv->m], true);
}

void emit(Params &out, const Entity &e) noexcept {
    switch (e.kind) {
    case Entity::kCurve: emit_curve(out, e.curve); break;
    case Entity::kSurface: emit_surface(out, e.surface); break;
    case Entity::kLine:
        out.line(kTypeHeader, {kLine, ""});
        out.point(e.P[0], false);
        out.point(e.P[1], true);
        break;
    case Entity::kPoint:
        out.line(kTypeHeader, {kPoint, ""});
        out.point(e.P[0], true);
        break;
    case Entity::kPolyline:
        out.line(kPolylineHeader, {kCopiousData, 2, e.n + 1, ""});
        for (int32_t i = 0; i <= e.n; ++i) out.point(e.P[i], i == e.n);
        break;
    }
}

double greatest(std::initializer_list<double> v) noexcept {
    double g = 0.0;
    for (double x : v) g = std::max(g, std::fabs(x));
    return g;
}

double greatest(const Point &P) noexcept { return greatest({P.x, P.y, P.z}); }
double greatest(const Box &b) noexcept {
    return greatest({b.xmin, b.xmax, b.ymin, b.ymax, b.zmin, b.zmax});
}

// *g := the greatest absolute coordinate of the entity's geometry: of the
// box of a curve or surface, of the points of the others.
int16_t extent(const Entity &e, double *g) noexcept {
    Box box;
    *g = 0.0;
    switch (e.kind) {
    case Entity::kCurve:
        if (e.source) {
            if (N_curbox(e.source, &box)) return 1;
            *g = greatest(box);
        } else {
            for (int32_t i = 0; i <= e.curve.n; ++i)
                *g = std::max(*g, greatest(euclid(e.curve.P[i])));
        }
        return 0;
    case Entity::kSurface:
        if (N_surbox(e.surface, &box)) return 1;
        *g = greatest(box);
        return 0;
    case Entity::kLine: *g = std::max(greatest(e.P[0]), greatest(e.P[1])); return 0;
    case Entity::kPoint: *g = greatest(e.P[0]); return 0;
    case Entity::kPolyline:
        for (int32_t i = 0; i <= e.n; ++i) *g = std::max(*g, greatest(e.P[i]));
        return 0;
    }
    return 0;
}

// ---- Files ---------------------------------------------------------------------

// What a file says about itself besides its entities.
struct Header {
    const char *start;  // the first Start record
    const char *sender;  // the first Global record
    char name[kNameColumns + 1];
    double resolution;
    double coordinate;  // the greatest coordinate value
};

// The last 30 characters of the file name, control characters as blanks.
void hollerith_name(const char *file, char *name) noexcept {
    const std::size_t len = std::strlen(file);
    const char *from = file + (len > kNameColumns ? len - kNameColumns : 0);
    std::size_t k = 0;
    for (; from[k]; ++k) name[k] = from[k] >= ' ' && from[k] < 127 ? from[k] : ' ';
    name[k] = '\0';
}

template <class Model>
void lay_out(Records &r, const Model &model, const Header &h) noexcept {
    r.put(kStart, h.start, {""});
    r.put(kStart, kStartSender, {""});
    r.put(kGlobal, h.sender, {h.name, ""});
    r.put(
        kGlobal, kGlobalNumbers,
        {kIntegerBits, kSingleMagnitude, kSingleDigits, kDoubleMagnitude, kDoubleDigits, 1.0, ""});
    r.put(kGlobal, kGlobalResolution, {kLineWidth, h.resolution, ""});
    r.put(kGlobal, kGlobalCoordinate, {h.coordinate, kVersion, ""});
    r.put(kGlobal, kGlobalDate, {""});
    int64_t pointer = 1, i = 0;
    model.each([&](const Entity &e) {
        const int64_t lines = lines_of(e);
        r.put(kDirectory, kDirectory1, {type_of(e), pointer, 0, 1, 4, 0, 0, 0});
        r.put(kDirectory, kDirectory2,
              {type_of(e), 1, static_cast<int>((i + 2) % 8), lines, form_of(e), 0, 0, i + 1});
        pointer += lines;
        ++i;
    });
    i = 0;
    model.each([&](const Entity &e) {
        Params out(r, static_cast<int32_t>(2 * i + 1));
        emit(out, e);
        ++i;
    });
    r.put(kTerminate, kTerminateRecord,
          {r.count(kStart), r.count(kGlobal), r.count(kDirectory), r.count(kParameter), ""});
}

// Checks the model and the resolution, finds the greatest coordinate, lays
// the file out without writing, and only then writes it.
template <class Model>
int16_t write_iges(const Model &model, double resolution, const char *file, const char *start,
                   const char *sender, char *name) noexcept {
    if (model.invalid(name)) return 1;
    if (!(resolution > 0.0 && std::isfinite(resolution))) return fail(KW_EARG, name);
    if (!file) return fail(KW_EFILE, name);
    Header h{start, sender, {}, resolution, 0.0};
    hollerith_name(file, h.name);
    int16_t status = 0;
    model.each([&](const Entity &e) {
        double g = 0.0;
        if (!status) status = extent(e, &g);
        h.coordinate = std::max(h.coordinate, g);
    });
    if (status) return 1;
    h.coordinate *= kCoordinateMargin;
    Records dry(nullptr);
    lay_out(dry, model, h);
    if (!dry.fits()) return fail(KW_EARG, name);
    FILE *f = std::fopen(file, "w");
    if (!f) return fail(KW_EFILE, name);
    Records out(f);
    lay_out(out, model, h);
    const bool written = !std::ferror(f);
    if (std::fclose(f) != 0 || !written) return fail(KW_EFILE, name);
    return 0;
}

// ---- What each writer holds ------------------------------------------------------------

// A curve or surface that passes its input check (which refuses degree 0:
// its knots would need an end run of one knot).
int16_t invalid(const Curve *c, char *name) noexcept {
    return c ? E_curinp(c, name) : fail(KW_EARG, name);
}

int16_t invalid(const Surface *s, char *name) noexcept {
    return s ? E_surinp(s, name) : fail(KW_EARG, name);
}

// An array a[0..k] of objects, each checked; with `none`, k = -1 stands for
// no objects at all.
template <class T>
int16_t invalid(T *const *a, int32_t k, bool none, char *name) noexcept {
    if (k == -1 && none) return 0;
    if (!a || k < 0) return fail(KW_EARG, name);
    for (int32_t i = 0; i <= k; ++i)
        if (invalid(a[i], name)) return 1;
    return 0;
}

// Each writer's model: what it checks, and its entities in file order.

// The entities of a curve or surface: the object itself (Whole), or its
// control polygon or net as polylines (Control). A polygon has the curve's
// flags; a net gives its rows (along v), then its columns (along u).
struct Whole {};
struct Control {};

template <class F>
void entities(const Curve *c, double tol, Whole, F &f) noexcept {
    Entity e{Entity::kCurve};
    e.curve = curve_view(c, tol);
    e.source = c;
    f(e);
}

template <class F>
void entities(const Surface *s, double, Whole, F &f) noexcept {
    Entity e{Entity::kSurface};
    e.surface = s;
    f(e);
}

template <class F>
void entities(const Curve *c, double tol, Control, F &f) noexcept {
    Entity e{Entity::kCurve};
    e.curve = curve_view(c, tol);
    e.curve.U = nullptr;
    e.curve.p = 1;
    e.curve.polynomial = 1;
    f(e);
}

template <class F>
void entities(const Surface *s, double, Control, F &f) noexcept {
    const ControlNet *net = s->net;
    Entity e{Entity::kCurve};
    for (int32_t i = 0; i <= net->n; ++i) {
        e.curve = polyline(PointSeq{net->Pw[i]}, net->m);
        f(e);
    }
    for (int32_t j = 0; j <= net->m; ++j) {
        e.curve = polyline(PointSeq{nullptr, net->Pw, j}, net->n);
        f(e);
    }
}

// Curves or surfaces a[0..k], whole or as control polylines; with `none`,
// k = -1 stands for none at all.
template <class T, class Part = Whole>
struct Objects {
    T *const *a;
    int32_t k;
    double tol;
    bool none = false;
    int16_t invalid(char *name) const noexcept { return ::invalid(a, k, none, name); }
    template <class F>
    void each(F &&f) const noexcept {
        for (int32_t i = 0; i <= k; ++i) entities(a[i], tol, Part{}, f);
    }
};

// Lines lin[2i] to lin[2i+1], i = 0..nl, then curves, then surfaces; any
// of the three may be left out with a count of -1, not all of them.
struct Mixed {
    const Point *lin;
    int32_t nl;
    Objects<Curve> curves;
    Objects<Surface> surfaces;
    int16_t invalid(char *name) const noexcept {
        if (nl < -1 || (nl >= 0 && !lin) || (nl == -1 && curves.k == -1 && surfaces.k == -1))
            return fail(KW_EARG, name);
        return curves.invalid(name) || surfaces.invalid(name);
    }
    template <class F>
    void each(F &&f) const noexcept {
        for (int32_t i = 0; i <= nl; ++i) {
            Entity e{Entity::kLine};
            e.P = lin + 2 * static_cast<int64_t>(i);
            f(e);
        }
        curves.each(f);
        surfaces.each(f);
    }
};

// Points P[0..n], each a point entity (mode 1) or all one polyline (mode 2).
struct Points {
    const Point *P;
    int32_t n;
    int16_t mode;
    int16_t invalid(char *name) const noexcept {
        if (!P || n < 0 || (mode != 1 && mode != 2) || (mode == 2 && n < 1))
            return fail(KW_EARG, name);
        return 0;
    }
    template <class F>
    void each(F &&f) const noexcept {
        if (mode == 2) {
            Entity e{Entity::kPolyline};
            e.P = P;
            e.n = n;
            f(e);
            return;
        }
        for (int32_t i = 0; i <= n; ++i) {
            Entity e{Entity::kPoint};
            e.P = P + i;
            f(e);
        }
    }
};

}  // namespace

int16_t U_cutigs(Curve *const *cur, int32_t k, double tol, const char *file) {
    static char name[] = "U_CUTIGS";
    return write_iges(Objects<Curve>{cur, k, tol}, tol, file, kStartCurves, kGlobalSender, name);
}

int16_t U_sutigs(Surface *const *sur, int32_t k, double tol, const char *file) {
    static char name[] = "U_SUTIGS";
    return write_iges(Objects<Surface>{sur, k, tol}, tol, file, kStartSurfaces, kGlobalSender,
                      name);
}

int16_t U_lcsigs(const Point *lin, int32_t nl, Curve *const *cur, int32_t nc, Surface *const *sur,
                 int32_t ns, double tol, const char *file) {
    static char name[] = "U_LCSIGS";
    const Mixed model{lin, nl, {cur, nc, tol, true}, {sur, ns, tol, true}};
    return write_iges(model, tol, file, kStartMixed, kGlobalSenderMixed, name);
}

int16_t U_p1digs(const Point *P, int32_t n, int16_t mode, const char *file) {
    static char name[] = "U_P1DIGS";
    return write_iges(Points{P, n, mode}, U_tolpoi, file, kStartPoints, kGlobalSender, name);
}

int16_t U_cpligs(Curve *const *cur, int32_t k, const char *file) {
    static char name[] = "U_CPLIGS";
    return write_iges(Objects<Curve, Control>{cur, k, U_tolpoi}, U_tolpoi, file, kStartPolygons,
                      kGlobalSender, name);
}

int16_t U_spligs(Surface *const *sur, int32_t k, const char *file) {
    static char name[] = "U_SPLIGS";
    return write_iges(Objects<Surface, Control>{sur, k, U_tolpoi}, U_tolpoi, file, kStartNets,
                      kGlobalSender, name);
}

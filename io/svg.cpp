// Pictures of curves and surfaces as SVG files: a parallel projection on a
// plane of coordinates or an isometric view, scaled to fit the page.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "core/storage.hpp"
#include "io/numbers.hpp"
#include "knotwork/errors.h"
#include "knotwork/eval.h"
#include "knotwork/io.h"
#include "knotwork/knots.h"
#include "nurbs/eval/bezier.hpp"

using namespace kw;

namespace {

constexpr double kWidth = 800.0, kMaxHeight = 800.0, kMargin = 20.0;
// Sampled curves stay this close to the curve, in pixels.
constexpr double kFlatness = 0.1;
constexpr int kMinSplits = 3, kMaxSplits = 16;
constexpr const char *kPalette[] = {"#1f77b4", "#d62728", "#2ca02c", "#9467bd",
                                    "#ff7f0e", "#17becf", "#8c564b", "#e377c2"};
constexpr int kColours = sizeof kPalette / sizeof kPalette[0];
constexpr const char *kControlStyle =
    "<g fill=\"none\" stroke=\"#999999\" stroke-width=\"0.75\" stroke-dasharray=\"4 3\">\n";
constexpr const char *kGeometryStyle =
    "<g fill=\"none\" stroke-width=\"1.5\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";

// The screen's right and up directions in model space, by view: the xy,
// xz and yz planes, and the isometric view with z up.
constexpr double kS2 = 0.70710678118654752, kS6 = 0.40824829046386302;
constexpr Point kRight[4] = {{1, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-kS2, kS2, 0}};
constexpr Point kUp[4] = {{0, 1, 0}, {0, 0, 1}, {0, 0, 1}, {-kS6, -kS6, 2 * kS6}};

// The page: projected points (x, y) to pixels, and the SVG text.
class Page {
public:
    explicit Page(FILE *f) noexcept : f_(f) {}

    // Widens the drawing's bounds to hold (x, y).
    void hold(double x, double y) noexcept {
        lo_[0] = std::min(lo_[0], x);
        hi_[0] = std::max(hi_[0], x);
        lo_[1] = std::min(lo_[1], y);
        hi_[1] = std::max(hi_[1], y);
    }

    // Fixes the scale from the bounds and writes the page's head.
    void open() noexcept {
        const double ex = hi_[0] - lo_[0], ey = hi_[1] - lo_[1];
        const double room_x = kWidth - 2 * kMargin, room_y = kMaxHeight - 2 * kMargin;
        scale_ = ex > 0 || ey > 0
                     ? std::min(ex > 0 ? room_x / ex : DBL_MAX, ey > 0 ? room_y / ey : DBL_MAX)
                     : 1.0;
        height_ = std::ceil(ey * scale_ + 2 * kMargin - 1e-6);
        left_ = 0.5 * (kWidth - ex * scale_);
        text(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
            "width=\"");
        number(kWidth, 0);
        text("\" height=\"");
        number(height_, 0);
        text("\" viewBox=\"0 0 ");
        number(kWidth, 0);
        text(" ");
        number(height_, 0);
        text("\">\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n");
    }
    void close() noexcept { text("</svg>\n"); }

    // The pixel of a projected point, y down.
    Point pixel(const Point &P) const noexcept {
        return Point{left_ + (P.x - lo_[0]) * scale_, height_ - kMargin - (P.y - lo_[1]) * scale_,
                     0.0};
    }
    // A pixel's coordinates as "x y".
    void at(const Point &P) noexcept {
        const Point X = pixel(P);
        number(X.x, 2);
        text(" ");
        number(X.y, 2);
    }

    void text(const char *s) noexcept { std::fputs(s, f_); }
    void number(double v, int decimals) noexcept {
        char buf[io::kNumberRoom];
        std::fwrite(buf, 1, static_cast<std::size_t>(io::format_fixed(buf, v, 0, decimals)), f_);
    }
    bool ok() const noexcept { return !std::ferror(f_); }

private:
    FILE *f_;
    double lo_[2] = {DBL_MAX, DBL_MAX}, hi_[2] = {-DBL_MAX, -DBL_MAX};
    double scale_ = 1.0, height_ = 0.0, left_ = 0.0;
};

// ---- Projections ----------------------------------------------------------------

// The projection of a curve on the page's plane, a 2-D curve of the same
// degree, knots and weights: a parallel projection is linear in the
// homogeneous coordinates, so that it maps the curve exactly.
class Projection {
public:
    Projection(int16_t view, ControlPoint *Q) noexcept
        : right_(kRight[view - 1]), up_(kUp[view - 1]), Q_(Q) {}

    Point point(const ControlPoint &P) const noexcept {
        const Point E = euclid(P);
        return Point{dot(E, right_), dot(E, up_), 0.0};
    }

    const Curve *of(const Curve *cur) noexcept {
        for (int32_t i = 0; i <= cur->pol->n; ++i) {
            const ControlPoint &P = cur->pol->Pw[i];
            const Point h{P.x, P.y, planar(P) ? 0.0 : P.z};
            Q_[i] = ControlPoint{dot(h, right_), dot(h, up_), kPlanar, P.w};
        }
        U_makpl1(&pol_, Q_, cur->pol->n);
        U_makcu1(&curve_, &pol_, cur->p, cur->knt);
        return &curve_;
    }

    // Widens the page to hold the projected curve's box.
    void hold(Page &page, const Curve *cur) noexcept {
        Box box;
        N_curbox(of(cur), &box);
        page.hold(box.xmin, box.ymin);
        page.hold(box.xmax, box.ymax);
    }

private:
    Point right_, up_;
    ControlPoint *Q_;
    ControlPolygon pol_;
    Curve curve_;
};

// ---- Curves ----------------------------------------------------------------------

// The polyline of points P(0..n), or the points as dots.
template <class At>
void polyline(Page &page, At P, int32_t n) noexcept {
    page.text("<polyline points=\"");
    for (int32_t i = 0; i <= n; ++i) {
        if (i > 0) page.text(" ");
        page.at(P(i));
    }
    page.text("\"/>\n");
}

template <class At>
void dots(Page &page, At P, int32_t n) noexcept {
    for (int32_t i = 0; i <= n; ++i) {
        page.text("<circle r=\"2\" fill=\"#999999\" stroke=\"none\" cx=\"");
        const Point X = page.pixel(P(i));
        page.number(X.x, 2);
        page.text("\" cy=\"");
        page.number(X.y, 2);
        page.text("\"/>\n");
    }
}

// Line segments " L x y" from C(a) (drawn already) to C(b), halving until
// each middle lies within the flatness of its chord.
void sample(Page &page, const Curve *cur, double a, double b, const Point &A, const Point &B,
            int splits) noexcept {
    const double u = 0.5 * (a + b);
    Point M;
    N_curevn(cur, u, KW_RIGHT, &M);
    const Point pa = page.pixel(A), pb = page.pixel(B), pm = page.pixel(M);
    const Point chord = pb - pa, off = pm - pa;
    const double len = norm(chord);
    const double away = len > 0 ? std::fabs(chord.x * off.y - chord.y * off.x) / len : norm(off);
    if (splits >= kMaxSplits || (splits >= kMinSplits && away <= kFlatness)) {
        page.text(" L ");
        page.at(B);
        return;
    }
    sample(page, cur, a, u, A, M, splits + 1);
    sample(page, cur, u, b, M, B, splits + 1);
}

// The projected curve as one path: its Bezier pieces as they are for a
// polynomial curve of degree 3 or less, sampled otherwise.
void draw_curve(Page &page, const Curve *cur, const char *colour) noexcept {
    const ControlPoint *Pw = cur->pol->Pw;
    const int p = cur->p;
    const bool exact = !rational(Pw[0]) && p <= 3;
    constexpr const char *kind[4] = {"", " L", " Q", " C"};
    page.text("<path stroke=\"");
    page.text(colour);
    page.text("\" d=\"M ");
    page.at(euclid(Pw[0]));
    each_span(cur->knt->U, p, cur->pol->n, [&](int32_t s, double a, double b) {
        if (!exact) {
            Point A, B;
            N_curevn(cur, a, KW_RIGHT, &A);
            N_curevn(cur, b, KW_LEFT, &B);
            sample(page, cur, a, b, A, B, 0);
            return;
        }
        Hom Q[kTable];
        curve_piece(cur, s, Q);
        page.text(kind[p]);
        for (int j = 1; j <= p; ++j) {
            page.text(" ");
            page.at(Point{Q[j].x, Q[j].y, 0.0});
        }
    });
    page.text("\"/>\n");
}

// ---- What each picture holds -------------------------------------------------------

int16_t check_view(int16_t view, int16_t poly, char *name) noexcept {
    return view < 1 || view > 4 || (poly != 0 && poly != 1) ? fail(KW_EARG, name) : 0;
}

template <class T, class Check>
int16_t check_all(T *const *a, int32_t k, Check check, char *name) noexcept {
    if (!a || k < 0) return fail(KW_EARG, name);
    for (int32_t i = 0; i <= k; ++i)
        if (!a[i] ? fail(KW_EARG, name) : check(a[i], name)) return 1;
    return 0;
}

// Opens the file, fits the page to hold(page), writes body(page) and ends
// the page; 18 when the file cannot be written.
template <class Hold, class Body>
int16_t draw(const char *file, Hold hold, Body body, char *name) noexcept {
    FILE *f = file ? std::fopen(file, "w") : nullptr;
    if (!f) return fail(KW_EFILE, name);
    Page page(f);
    hold(page);
    page.open();
    body(page);
    page.close();
    const bool written = page.ok();
    if (std::fclose(f) != 0 || !written) return fail(KW_EFILE, name);
    return 0;
}

// The isoparametric curve of a surface at the parameter t of direction dir
// (1: v = t, a curve along u; 2: u = t, along v), into iso with its control
// points in Q.
void iso_curve(const Surface *s, int dir, double t, ControlPoint *Q, ControlPolygon *pol,
               Curve *iso) noexcept {
    const bool along_u = dir == 1;
    const KnotVector *across = along_u ? s->knv : s->knu;
    const int16_t deg = along_u ? s->q : s->p;
    double N[kTable];
    int32_t span;
    N_kntalb(across, deg, t, KW_RIGHT, N, &span);
    const int32_t count = along_u ? s->net->n : s->net->m;
    for (int32_t i = 0; i <= count; ++i) {
        double x = 0.0, y = 0.0;
        ZSum z;
        WSum w;
        for (int j = 0; j <= deg; ++j) {
            const ControlPoint &P =
                along_u ? s->net->Pw[i][span - deg + j] : s->net->Pw[span - deg + j][i];
            x += N[j] * P.x;
            y += N[j] * P.y;
            z.add(N[j], P.z);
            w.add(N[j], P.w);
        }
        Q[i] = ControlPoint{x, y, z.value(), w.value()};
    }
    U_makpl1(pol, Q, count);
    U_makcu1(iso, pol, along_u ? s->p : s->q, along_u ? s->knu : s->knv);
}

// f(iso) for the isoparametric curves of both directions: at every distinct
// knot of the other direction and div - 1 more evenly between each two.
template <class F>
void each_iso(const Surface *s, int32_t div, ControlPoint *Q, F f) noexcept {
    ControlPolygon pol;
    Curve iso;
    for (int dir : {1, 2}) {
        const KnotVector *knt = dir == 1 ? s->knv : s->knu;
        const int deg = dir == 1 ? s->q : s->p;
        each_span(knt->U, deg, knt->m - deg - 1, [&](int32_t, double a, double b) {
            for (int32_t d = 0; d < div; ++d) {
                iso_curve(s, dir, a + (b - a) * d / div, Q, &pol, &iso);
                f(&iso);
            }
        });
        iso_curve(s, dir, knt->U[knt->m], Q, &pol, &iso);
        f(&iso);
    }
}

// Control polygons and nets: dashed lines, then a dot at every point.
template <class Lines, class Dots>
void control(Page &page, Lines lines, Dots points) noexcept {
    page.text(kControlStyle);
    lines();
    page.text("</g>\n");
    points();
}

}  // namespace

int16_t U_cursvg(Curve *const *cur, int32_t k, int16_t view, int16_t poly, const char *file) {
    static char name[] = "U_CURSVG";
    if (check_all(cur, k, E_curinp, name) || check_view(view, poly, name)) return 1;
    int32_t most = 0;
    for (int32_t c = 0; c <= k; ++c) most = std::max(most, cur[c]->pol->n);
    LocalStacks scratch;
    ControlPoint *Q = S_getc1d(most, scratch.get());
    if (!Q) return 1;
    Projection proj(view, Q);
    auto point = [&](int32_t c) {
        return [&, c](int32_t i) { return proj.point(cur[c]->pol->Pw[i]); };
    };
    auto hold = [&](Page &page) {
        for (int32_t c = 0; c <= k; ++c) {
            proj.hold(page, cur[c]);
            for (int32_t i = 0; poly && i <= cur[c]->pol->n; ++i)
                page.hold(point(c)(i).x, point(c)(i).y);
        }
    };
    auto body = [&](Page &page) {
        auto lines = [&] {
            for (int32_t c = 0; c <= k; ++c) polyline(page, point(c), cur[c]->pol->n);
        };
        auto points = [&] {
            for (int32_t c = 0; c <= k; ++c) dots(page, point(c), cur[c]->pol->n);
        };
        if (poly) control(page, lines, points);
        page.text(kGeometryStyle);
        for (int32_t c = 0; c <= k; ++c) draw_curve(page, proj.of(cur[c]), kPalette[c % kColours]);
        page.text("</g>\n");
    };
    return draw(file, hold, body, name);
}

int16_t U_sursvg(Surface *const *sur, int32_t k, int16_t view, int16_t poly, int32_t div,
                 const char *file) {
    static char name[] = "U_SURSVG";
    if (check_all(sur, k, E_surinp, name) || check_view(view, poly, name)) return 1;
    if (div < 1) return fail(KW_EARG, name);
    int32_t most = 0;
    for (int32_t c = 0; c <= k; ++c) most = std::max({most, sur[c]->net->n, sur[c]->net->m});
    LocalStacks scratch;
    ControlPoint *Q = S_getc1d(most, scratch.get());
    ControlPoint *R = Q ? S_getc1d(most, scratch.get()) : nullptr;
    if (!R) return 1;
    Projection proj(view, R);
    auto net = [&](int32_t c) { return sur[c]->net; };
    auto point = [&](int32_t c, int32_t i, int32_t j) { return proj.point(net(c)->Pw[i][j]); };
    auto hold = [&](Page &page) {
        for (int32_t c = 0; c <= k; ++c) {
            each_iso(sur[c], div, Q, [&](const Curve *iso) { proj.hold(page, iso); });
            for (int32_t i = 0; poly && i <= net(c)->n; ++i)
                for (int32_t j = 0; j <= net(c)->m; ++j)
                    page.hold(point(c, i, j).x, point(c, i, j).y);
        }
    };
    auto body = [&](Page &page) {
        auto lines = [&] {
            for (int32_t c = 0; c <= k; ++c) {
                const int32_t n = net(c)->n, m = net(c)->m;
                for (int32_t i = 0; i <= n; ++i)
                    polyline(
                        page, [&](int32_t j) { return point(c, i, j); }, m);
                for (int32_t j = 0; j <= m; ++j)
                    polyline(
                        page, [&](int32_t i) { return point(c, i, j); }, n);
            }
        };
        auto points = [&] {
            for (int32_t c = 0; c <= k; ++c)
                for (int32_t i = 0; i <= net(c)->n; ++i)
                    dots(
                        page, [&](int32_t j) { return point(c, i, j); }, net(c)->m);
        };
        if (poly) control(page, lines, points);
        page.text(kGeometryStyle);
        for (int32_t c = 0; c <= k; ++c)
            each_iso(sur[c], div, Q, [&](const Curve *iso) {
                draw_curve(page, proj.of(iso), kPalette[c % kColours]);
            });
        page.text("</g>\n");
    };
    return draw(file, hold, body, name);
}

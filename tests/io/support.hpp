// Shared helpers of the text and IGES tests: files, streams, objects with
// known values, their values compared, and what the IGES reader gives back.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "core/alloc.hpp"
#include "core/arith.hpp"
#include "core/support.hpp"
#include "knotwork.h"

namespace kwt {

using kwtest::Context;

// A file in the working directory, removed at the end.
class TempFile {
public:
    explicit TempFile(const std::string &contents = "") {
        static int serial = 0;
        path_ = "kwt_" + std::to_string(getpid()) + "_" + std::to_string(serial++) + ".txt";
        if (!contents.empty()) write(contents);
    }
    ~TempFile() { std::remove(path_.c_str()); }
    TempFile(const TempFile &) = delete;
    TempFile &operator=(const TempFile &) = delete;

    const char *path() const { return path_.c_str(); }
    void write(const std::string &s) const {
        FILE *f = std::fopen(path_.c_str(), "wb");
        std::fwrite(s.data(), 1, s.size(), f);
        std::fclose(f);
    }
    std::string read() const {
        std::string s;
        FILE *f = std::fopen(path_.c_str(), "rb");
        if (!f) return s;
        char buf[4096];
        for (std::size_t got; (got = std::fread(buf, 1, sizeof buf, f)) > 0;) s.append(buf, got);
        std::fclose(f);
        return s;
    }

private:
    std::string path_;
};

// A stream holding bytes, closed at the end: seekable, or a pipe (which
// cannot tell its length).
class Stream {
public:
    explicit Stream(const std::string &s, bool pipe = false) {
        int fd[2];
        if (!pipe) {
            f_ = std::tmpfile();
            std::fwrite(s.data(), 1, s.size(), f_);
            std::rewind(f_);
        } else if (::pipe(fd) == 0 && ::write(fd[1], s.data(), s.size()) == static_cast<ssize_t>(s.size())) {
            ::close(fd[1]);
            f_ = fdopen(fd[0], "r");
        }
    }
    ~Stream() {
        if (f_) std::fclose(f_);
    }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    FILE *get() { return f_; }

private:
    FILE *f_ = nullptr;
};

// The value that "%18.16f" and a C-locale read give back for x.
inline double through_text(double x) {
    char buf[400];
    std::snprintf(buf, sizeof buf, "%18.16f", x);
    return std::strtod(buf, nullptr);
}

// Clamped knots 0 .. 1 of degree p over n+1 control points, interior ones
// uniform.
inline void uniform_knots(double *U, int32_t n, int16_t p) {
    const int32_t m = n + p + 1;
    for (int32_t i = 0; i <= m; ++i) U[i] = i <= p ? 0.0 : i >= m - p ? 1.0 : static_cast<double>(i - p) / (n - p + 1);
}

// A valid curve of a kind (1: 2-D, 2: 3-D, 3: 2-D rational, 4: 3-D
// rational), with coordinates in [-10, 10] and weights in [0.5, 2].
inline void random_curve(Curve *c, int kind, int32_t n, int16_t p, std::mt19937_64 &rng, StorageStacks *stk) {
    std::uniform_real_distribution<double> coord(-10.0, 10.0), weight(0.5, 2.0);
    U_inicur(c);
    ASSERT_EQ(U_curchk(c, n, p, n + p + 1, const_cast<char *>("TEST"), stk), 0);
    for (int32_t i = 0; i <= n; ++i) {
        const double w = kind >= 3 ? weight(rng) : KW_NONRATIONAL;
        const double z = kind % 2 == 0 ? coord(rng) : KW_PLANAR;
        ControlPoint P{coord(rng), coord(rng), z, w};
        A_weight(P, &c->pol->Pw[i]);
    }
    uniform_knots(c->knt->U, n, p);
}

// The counts of a curve or surface, then every stored value: control
// points as stored, markers included, then the knots.
inline std::vector<double> values(const Curve *c) {
    std::vector<double> v = {double(c->pol->n), double(c->p), double(c->knt->m)};
    for (int32_t i = 0; i <= c->pol->n; ++i) v.insert(v.end(), {c->pol->Pw[i].x, c->pol->Pw[i].y, c->pol->Pw[i].z, c->pol->Pw[i].w});
    v.insert(v.end(), c->knt->U, c->knt->U + c->knt->m + 1);
    return v;
}
inline std::vector<double> values(const Surface *s) {
    const ControlNet *net = s->net;
    std::vector<double> v = {double(net->n), double(net->m), double(s->p), double(s->q), double(s->knu->m), double(s->knv->m)};
    for (int32_t i = 0; i <= net->n; ++i)
        for (int32_t j = 0; j <= net->m; ++j) v.insert(v.end(), {net->Pw[i][j].x, net->Pw[i][j].y, net->Pw[i][j].z, net->Pw[i][j].w});
    v.insert(v.end(), s->knu->U, s->knu->U + s->knu->m + 1);
    v.insert(v.end(), s->knv->U, s->knv->U + s->knv->m + 1);
    return v;
}

// Every value of b is f of the value of a, bit for bit (markers pass
// unchanged).
// b holds a's values mapped by f, the markers as they are: bit for bit, or
// within tol when one is given.
template <class R, class F>
void expect_values(const R *a, const R *b, F f, double tol = 0.0) {
    const std::vector<double> va = values(a), vb = values(b);
    ASSERT_EQ(va.size(), vb.size());
    for (std::size_t i = 0; i < va.size(); ++i) {
        const double want = va[i] == KW_PLANAR || va[i] == KW_NONRATIONAL ? va[i] : f(va[i]);
        if (tol > 0.0) EXPECT_NEAR(vb[i], want, tol) << "value " << i;
        else EXPECT_EQ(kwtest::bits(vb[i]), kwtest::bits(want)) << "value " << i << ": " << vb[i] << ", not " << want;
    }
}
template <class R>
void expect_same(const R *a, const R *b, double tol = 0.0) {
    expect_values(a, b, [](double x) { return x; }, tol);
}

inline std::string error_name() { return E_errnam(); }

// What U_inpigs gives back, on a context of its own.
struct Import {
    Context stk;
    Curve **cur = nullptr;
    Surface **sur = nullptr;
    RealMatrix mat{-1, -1, nullptr, KW_FULL, 0};
    int32_t nc = -7, ns = -7, nm = -7;
    int16_t status = -1;

    explicit Import(const std::string &bytes) {
        TempFile f(bytes);
        E_clrerr();
        status = U_inpigs(&cur, &nc, &sur, &ns, &mat, &nm, f.path(), stk.get());
    }
    bool untouched() const { return !cur && !sur && nc == -7 && ns == -7 && nm == -7 && !mat.a && stk.nodes() == 0; }
    // Every object a valid one.
    bool valid() const {
        bool ok = true;
        for (int32_t c = 0; c <= nc; ++c) ok = ok && E_curinp(cur[c], const_cast<char *>("TEST")) == 0;
        for (int32_t s = 0; s <= ns; ++s) ok = ok && E_surinp(sur[s], const_cast<char *>("TEST")) == 0;
        return ok;
    }
    Point point(int32_t c, int32_t i) const { return kw::euclid(cur[c]->pol->Pw[i]); }
};

}  // namespace kwt

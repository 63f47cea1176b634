// Shared helpers of the text and IGES tests: contexts, files, streams and
// objects with known values.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "core/alloc.hpp"
#include "core/support.hpp"
#include "knotwork.h"

namespace kwt {

// A storage context for one test, emptied at the end.
class Stacks {
public:
    Stacks() { N_inurbs(&stk_); }
    ~Stacks() { N_enurbs(&stk_); }
    StorageStacks *get() { return &stk_; }
    // How many allocations the context holds.
    int nodes() const {
        int count = 0;
        for (const StackNode *head : stk_.head)
            for (const StackNode *node = head; node; node = node->next) ++count;
        return count;
    }
    bool empty() const { return nodes() == 0; }

private:
    StorageStacks stk_;
};

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

inline bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

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

// Every value of b is f of the value of a (markers pass unchanged).
template <class F>
void expect_curve(const Curve *a, const Curve *b, F f) {
    ASSERT_TRUE(a->pol->n == b->pol->n && a->p == b->p && a->knt->m == b->knt->m);
    auto g = [&](double x) { return x == KW_PLANAR || x == KW_NONRATIONAL ? x : f(x); };
    for (int32_t i = 0; i <= a->pol->n; ++i) {
        const ControlPoint &P = a->pol->Pw[i], &Q = b->pol->Pw[i];
        EXPECT_TRUE(same_bits(Q.x, g(P.x)) && same_bits(Q.y, g(P.y)) && same_bits(Q.z, g(P.z)) && same_bits(Q.w, g(P.w)))
            << "control point " << i;
    }
    for (int32_t j = 0; j <= a->knt->m; ++j) EXPECT_TRUE(same_bits(b->knt->U[j], g(a->knt->U[j]))) << "knot " << j;
}
// Every element of two curves agrees bit for bit.
inline void expect_same_curve(const Curve *a, const Curve *b) {
    expect_curve(a, b, [](double x) { return x; });
}
// Every value of b is what the text format makes of the value of a.
inline void expect_through_text(const Curve *a, const Curve *b) { expect_curve(a, b, through_text); }

inline std::string error_name() { return E_errnam(); }

// What U_inpigs gives back, on a context of its own.
struct Import {
    Stacks stk;
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
    Point point(int32_t c, int32_t i) const { return euclid(cur[c]->pol->Pw[i]); }
    static Point euclid(const ControlPoint &Pw) {
        Point P;
        A_euclid(Pw, &P);
        return P;
    }
};

}  // namespace kwt

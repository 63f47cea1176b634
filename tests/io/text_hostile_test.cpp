// Every text reader over truncated, corrupted and oversized-count variants of
// valid files, and under allocation failures: no crash, no leak, the right
// code, and the caller's outputs and context as they were.
#include <functional>

#include "support.hpp"

using namespace kwt;

namespace {

char test_name[] = "TEST";

// A reader run over some bytes with outputs that must stay as they were
// unless it succeeds.
using Run = std::function<int16_t(const std::string &bytes, StorageStacks *stk, bool *untouched)>;

struct Reader {
    std::string label;
    std::string valid;
    int header_lines;  // the lines that hold the counts sizing the object
    Run run;
};

// The outputs of each reader, in the state a caller passes them, read by
// the stream form or the file form.
struct CurveOut {
    Curve c;
    CurveOut() { U_inicur(&c); }
    int16_t read(FILE *f, StorageStacks *stk) { return U_inpcup(&c, f, 1, stk); }
    int16_t read(const char *file, StorageStacks *stk) { return U_inpcur(&c, file, 1, stk); }
    bool untouched() const { return U_iscurn(&c); }
};
struct SurfaceOut {
    Surface s;
    SurfaceOut() { U_inisur(&s); }
    int16_t read(FILE *f, StorageStacks *stk) { return U_inpsup(&s, f, 1, stk); }
    int16_t read(const char *file, StorageStacks *stk) { return U_inpsur(&s, file, 1, stk); }
    bool untouched() const { return U_issurn(&s); }
};
struct PointsOut {
    Point sentinel, *P = &sentinel;
    int32_t n = -7;
    int16_t read(FILE *f, StorageStacks *stk) { return U_inpp1s(&P, &n, f, stk); }
    int16_t read(const char *file, StorageStacks *stk) { return U_inpp1d(&P, &n, file, stk); }
    bool untouched() const { return P == &sentinel && n == -7; }
};
struct GridOut {
    Point sentinel, *row = &sentinel, **P = &row;
    int32_t n = -7, m = -7;
    int16_t read(FILE *f, StorageStacks *stk) { return U_inpp2s(&P, &n, &m, f, stk); }
    int16_t read(const char *file, StorageStacks *stk) { return U_inpp2d(&P, &n, &m, file, stk); }
    bool untouched() const { return P == &row && n == -7 && m == -7; }
};
struct CurvesOut {
    Curve **cs = nullptr;
    int32_t k = -7;
    int16_t read(FILE *f, StorageStacks *stk) { return U_inpcas(&cs, &k, f, 1, stk); }
    int16_t read(const char *file, StorageStacks *stk) { return U_inpcua(&cs, &k, file, 1, stk); }
    bool untouched() const { return !cs && k == -7; }
};

template <class Out>
Run through_stream() {
    return [](const std::string &bytes, StorageStacks *stk, bool *untouched) {
        Stream s(bytes);
        Out out;
        const int16_t status = out.read(s.get(), stk);
        *untouched = out.untouched();
        return status;
    };
}

template <class Out>
Run through_file() {
    return [](const std::string &bytes, StorageStacks *stk, bool *untouched) {
        TempFile f(bytes);
        Out out;
        const int16_t status = out.read(f.path(), stk);
        *untouched = out.untouched();
        return status;
    };
}

// Valid files written by the library's own writers.
struct Files {
    std::string curve, surface, points, grid, curves;
    Files() {
        Stacks stk;
        std::mt19937_64 rng(21);
        Curve a, b, *pair[2] = {&a, &b};
        random_curve(&a, 4, 4, 2, rng, stk.get());
        random_curve(&b, 1, 2, 1, rng, stk.get());
        Surface s;
        U_inisur(&s);
        U_surchk(&s, 1, 2, 1, 1, 3, 4, test_name, stk.get());
        for (int i = 0; i <= 1; ++i)
            for (int j = 0; j <= 2; ++j) s.net->Pw[i][j] = ControlPoint{1.0 * i, 1.0 * j, 0.5, 1.0 + j};
        uniform_knots(s.knu->U, 1, 1);
        uniform_knots(s.knv->U, 2, 1);
        Point P[3] = {{1, 2, 3}, {4, 5, 6}, {-7, 8.5, 9}};
        Point *rows[2] = {P, P + 1};
        TempFile f1, f2, f3, f4, f5;
        U_outcur(&a, f1.path());
        U_outsur(&s, f2.path());
        U_outp1d(P, 2, f3.path());
        U_outp2d(rows, 1, 1, f4.path());
        U_outcua(pair, 1, f5.path());
        curve = f1.read();
        surface = f2.read();
        points = f3.read();
        grid = f4.read();
        curves = f5.read();
    }
};

std::vector<Reader> readers() {
    static const Files files;
    return {
        {"curve stream", files.curve, 4, through_stream<CurveOut>()},
        {"curve file", files.curve, 4, through_file<CurveOut>()},
        {"surface stream", files.surface, 3, through_stream<SurfaceOut>()},
        {"surface file", files.surface, 3, through_file<SurfaceOut>()},
        {"points stream", files.points, 1, through_stream<PointsOut>()},
        {"points file", files.points, 1, through_file<PointsOut>()},
        {"grid stream", files.grid, 1, through_stream<GridOut>()},
        {"grid file", files.grid, 1, through_file<GridOut>()},
        {"curves stream", files.curves, 1, through_stream<CurvesOut>()},
        {"curves file", files.curves, 1, through_file<CurvesOut>()},
    };
}

std::size_t after_lines(const std::string &s, int lines) {
    std::size_t at = 0;
    for (int i = 0; i < lines; ++i) at = s.find('\n', at) + 1;
    return at;
}

// The bytes with line `line` replaced.
std::string with_line(const std::string &s, int line, const std::string &text) {
    const std::size_t from = after_lines(s, line), to = s.find('\n', from);
    return s.substr(0, from) + text + s.substr(to);
}

// Runs r over bytes on a fresh context: a refusal with code `code` (or
// either of two) that leaves the outputs and the context as they were.
void expect_refused(const Reader &r, const std::string &bytes, std::initializer_list<int32_t> codes,
                    const std::string &what) {
    Stacks stk;
    bool untouched = false;
    E_clrerr();
    ASSERT_EQ(r.run(bytes, stk.get(), &untouched), 1) << r.label << ": " << what;
    EXPECT_NE(std::find(codes.begin(), codes.end(), E_errtyp()), codes.end())
        << r.label << ": " << what << " gave code " << E_errtyp();
    EXPECT_TRUE(untouched) << r.label << ": " << what;
    EXPECT_TRUE(stk.empty()) << r.label << ": " << what;
}

}  // namespace

TEST(TextHostile, ValidFilesAreRead) {
    for (const Reader &r : readers()) {
        Stacks stk;
        bool untouched = true;
        EXPECT_EQ(r.run(r.valid, stk.get(), &untouched), 0) << r.label;
        EXPECT_FALSE(untouched) << r.label;
    }
}

TEST(TextHostile, EveryTruncationIsRefused) {
    for (const Reader &r : readers()) {
        const std::size_t header = after_lines(r.valid, r.header_lines);
        for (std::size_t length = 0; length < r.valid.size(); ++length) {
            const std::string what = "cut at " + std::to_string(length);
            if (length < header) expect_refused(r, r.valid.substr(0, length), {KW_EFILE}, what);
            else expect_refused(r, r.valid.substr(0, length), {KW_EARG, KW_EFILE}, what);
        }
    }
}

TEST(TextHostile, EveryCorruptedByteIsRefused) {
    for (const Reader &r : readers())
        for (char letter : {'q', 'X'})
            for (std::size_t at = 0; at < r.valid.size(); ++at) {
                std::string bytes = r.valid;
                bytes[at] = letter;
                expect_refused(r, bytes, {KW_EFILE}, "letter at " + std::to_string(at));
            }
}

TEST(TextHostile, CountsTheFileCannotHold) {
    const std::vector<Reader> all = readers();
    const Reader &curve = all[0], &surface = all[2], &points = all[4], &grid = all[6],
                 &curves = all[8];
    for (const char *n : {"-1", "2147483647", "2147483648", "1000000000", "99999999999999999999"})
        expect_refused(curve, with_line(curve.valid, 0, n), {KW_EARG}, n);
    expect_refused(curve, with_line(curve.valid, 0, "5"), {KW_EFILE}, "one point more");
    for (const char *p : {"-1", "32768"}) expect_refused(curve, with_line(curve.valid, 1, p), {KW_EARG}, p);
    expect_refused(curve, with_line(curve.valid, 2, "2"), {KW_ECASE}, "rational flag 2");
    expect_refused(curve, with_line(curve.valid, 3, "4"), {KW_ECASE}, "dimension 4");
    expect_refused(surface, with_line(surface.valid, 0, "100000 100000"), {KW_EARG}, "net");
    expect_refused(surface, with_line(surface.valid, 2, "-1"), {KW_ECASE}, "rational flag");
    expect_refused(points, with_line(points.valid, 0, "1000000000"), {KW_EARG}, "points");
    expect_refused(grid, with_line(grid.valid, 0, "65536 65536"), {KW_EARG}, "grid");
    expect_refused(curves, with_line(curves.valid, 0, "1000000"), {KW_EARG}, "curves");
    expect_refused(curves, with_line(curves.valid, 0, "2"), {KW_EFILE}, "one curve more");
    // A file named for one object must hold nothing more.
    expect_refused(all[1], curve.valid + "7\n", {KW_EFILE}, "trailing number");
}

// A pipe cannot tell its length: a count it cannot hold is found out as the
// numbers run short, without memory running ahead of them.
TEST(TextHostile, PipesAreReadAsTheyCome) {
    const Reader curve = readers()[0];
    const std::string huge = with_line(curve.valid, 0, "1000000000");
    Stacks stk;
    Curve c;
    U_inicur(&c);
    Pipe p(huge);
    ASSERT_NE(p.get(), nullptr);
    EXPECT_EQ(U_inpcup(&c, p.get(), 0, stk.get()), 1);
    EXPECT_EQ(E_errtyp(), KW_EFILE);
    EXPECT_TRUE(U_iscurn(&c));
    Pipe good(curve.valid);
    EXPECT_EQ(U_inpcup(&c, good.get(), 1, stk.get()), 0);
}

TEST(TextHostile, AllocationFailuresAtEveryStep) {
    for (const Reader &r : readers()) {
        for (long k = 1;; ++k) {
            Stacks stk;
            bool untouched = false;
            kw::fault::fail_at(k);
            const int16_t status = r.run(r.valid, stk.get(), &untouched);
            const bool fired = kw::fault::fired();
            kw::fault::fail_at(0);
            if (!fired) {
                EXPECT_EQ(status, 0) << r.label;
                break;
            }
            EXPECT_EQ(status, 1) << r.label << " k " << k;
            EXPECT_EQ(E_errtyp(), KW_ENOMEM) << r.label << " k " << k;
            EXPECT_EQ(error_name().substr(0, 5), "S_GET") << r.label << " k " << k;
            EXPECT_TRUE(untouched) << r.label << " k " << k;
        }
    }
}

// Every text reader over truncated, corrupted and oversized-count variants of
// valid files, and under allocation failures: no crash, no leak, the right
// code, and the caller's outputs and context as they were.
#include <functional>

#include "support.hpp"

using namespace kwt;

namespace {

char test_name[] = "TEST";

// The outputs of each reader, in the state a caller passes them, read by the
// stream form or the file form.
struct CurveOut {
    Curve c{nullptr, -1, nullptr};
    int16_t read(FILE *f, StorageStacks *stk) { return U_inpcup(&c, f, 1, stk); }
    int16_t read(const char *file, StorageStacks *stk) { return U_inpcur(&c, file, 1, stk); }
    bool untouched() const { return U_iscurn(&c); }
};
struct SurfaceOut {
    Surface s{nullptr, -1, -1, nullptr, nullptr};
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

// A reader run over some bytes: its status, and whether it left its outputs
// as they were.
using Run = std::function<int16_t(const std::string &bytes, StorageStacks *stk, bool *untouched)>;
struct Reader {
    std::string label, valid;
    int header_lines;  // the lines that hold the counts sizing the object
    Run run;
};

template <class Out, bool file>
Run reading() {
    return [](const std::string &bytes, StorageStacks *stk, bool *untouched) {
        Out out;
        int16_t status;
        if constexpr (file) {
            TempFile f(bytes);
            status = out.read(f.path(), stk);
        } else {
            Stream s(bytes);
            status = out.read(s.get(), stk);
        }
        *untouched = out.untouched();
        return status;
    };
}

// Valid files written by the library's own writers, each read both ways.
const std::vector<Reader> &readers() {
    static const std::vector<Reader> all = [] {
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
        Point P[3] = {{1, 2, 3}, {4, 5, 6}, {-7, 8.5, 9}}, *rows[2] = {P, P + 1};
        TempFile f1, f2, f3, f4, f5;
        U_outcur(&a, f1.path());
        U_outsur(&s, f2.path());
        U_outp1d(P, 2, f3.path());
        U_outp2d(rows, 1, 1, f4.path());
        U_outcua(pair, 1, f5.path());
        return std::vector<Reader>{
            {"curve stream", f1.read(), 4, reading<CurveOut, false>()},   {"curve file", f1.read(), 4, reading<CurveOut, true>()},
            {"surface stream", f2.read(), 3, reading<SurfaceOut, false>()}, {"surface file", f2.read(), 3, reading<SurfaceOut, true>()},
            {"points stream", f3.read(), 1, reading<PointsOut, false>()},  {"points file", f3.read(), 1, reading<PointsOut, true>()},
            {"grid stream", f4.read(), 1, reading<GridOut, false>()},      {"grid file", f4.read(), 1, reading<GridOut, true>()},
            {"curves stream", f5.read(), 1, reading<CurvesOut, false>()},  {"curves file", f5.read(), 1, reading<CurvesOut, true>()},
        };
    }();
    return all;
}

// The bytes with line `line` replaced; the offset after `lines` lines.
std::size_t after_lines(const std::string &s, int lines) {
    std::size_t at = 0;
    for (int i = 0; i < lines; ++i) at = s.find('\n', at) + 1;
    return at;
}
std::string with_line(const std::string &s, int line, const std::string &text) {
    const std::size_t from = after_lines(s, line);
    return s.substr(0, from) + text + s.substr(s.find('\n', from));
}

// A refusal with one of the codes that leaves the outputs and the context as
// they were.
void expect_refused(const Reader &r, const std::string &bytes, std::initializer_list<int32_t> codes, const std::string &what) {
    Stacks stk;
    bool untouched = false;
    E_clrerr();
    ASSERT_EQ(r.run(bytes, stk.get(), &untouched), 1) << r.label << ": " << what;
    EXPECT_NE(std::find(codes.begin(), codes.end(), E_errtyp()), codes.end()) << r.label << ": " << what << " gave code " << E_errtyp();
    EXPECT_TRUE(untouched && stk.empty()) << r.label << ": " << what;
}

}  // namespace

// Valid files are read; every truncation, and a letter at every byte, is
// refused (a cut within the counts as a file error, after them possibly as
// a count the file cannot hold).
TEST(TextHostile, TruncationsAndCorruptedBytes) {
    for (const Reader &r : readers()) {
        Stacks stk;
        bool untouched = true;
        EXPECT_EQ(r.run(r.valid, stk.get(), &untouched), 0) << r.label;
        EXPECT_FALSE(untouched) << r.label;
        const std::size_t header = after_lines(r.valid, r.header_lines);
        for (std::size_t length = 0; length < r.valid.size(); ++length) {
            if (length < header) expect_refused(r, r.valid.substr(0, length), {KW_EFILE}, "cut at " + std::to_string(length));
            else expect_refused(r, r.valid.substr(0, length), {KW_EARG, KW_EFILE}, "cut at " + std::to_string(length));
        }
        for (char letter : {'q', 'X'})
            for (std::size_t at = 0; at < r.valid.size(); ++at) {
                std::string bytes = r.valid;
                bytes[at] = letter;
                expect_refused(r, bytes, {KW_EFILE}, "letter at " + std::to_string(at));
            }
    }
}

TEST(TextHostile, CountsTheFileCannotHold) {
    const std::vector<Reader> &all = readers();
    const Reader &curve = all[0], &surface = all[2], &points = all[4], &grid = all[6], &curves = all[8];
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
    expect_refused(all[1], curve.valid + "7\n", {KW_EFILE}, "a named file holds nothing more");
    // A pipe cannot tell its length: a count it cannot hold is found out as
    // the numbers run short, without memory running ahead of them.
    Stacks stk;
    Curve c;
    U_inicur(&c);
    Stream huge(with_line(curve.valid, 0, "1000000000"), true), good(curve.valid, true);
    ASSERT_NE(huge.get(), nullptr);
    EXPECT_EQ(U_inpcup(&c, huge.get(), 0, stk.get()), 1);
    EXPECT_TRUE(E_errtyp() == KW_EFILE && U_iscurn(&c));
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
            EXPECT_TRUE(status == 1 && E_errtyp() == KW_ENOMEM && error_name().substr(0, 5) == "S_GET" && untouched) << r.label << " k " << k;
        }
    }
}

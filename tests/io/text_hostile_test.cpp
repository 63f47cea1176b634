// Every text reader over truncated, corrupted and oversized-count variants of
// valid files, and under allocation failures: no crash, no leak, the right
// code, and the caller's outputs and context as they were.
#include <functional>

#include "core/fault_sweep.hpp"
#include "support.hpp"

using namespace kwt;

namespace {

char test_name[] = "TEST";

// A reader run over some bytes, through a file (path) or a stream (f): its
// status, and whether it left its outputs (in the state a caller passes them)
// as they were.
using Run = std::function<int16_t(FILE *f, const char *path, StorageStacks *stk, bool *untouched)>;
struct Reader {
    std::string label, valid;
    int header_lines;  // the lines that hold the counts sizing the object
    Run run;
    int16_t operator()(const std::string &bytes, bool file, StorageStacks *stk, bool *untouched) const {
        if (file) {
            TempFile t;
            t.write(bytes);
            return run(nullptr, t.path(), stk, untouched);
        }
        Stream s(bytes);
        return run(s.get(), nullptr, stk, untouched);
    }
};

// Valid files written by the library's own writers, each read both ways.
const std::vector<Reader> &readers() {
    static const std::vector<Reader> all = [] {
        Context stk;
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
            {"curve", f1.read(), 4, [](FILE *f, const char *path, StorageStacks *stk, bool *untouched) {
                 Curve c{nullptr, -1, nullptr};
                 const int16_t st = path ? U_inpcur(&c, path, 1, stk) : U_inpcup(&c, f, 1, stk);
                 *untouched = U_iscurn(&c);
                 return st;
             }},
            {"surface", f2.read(), 3, [](FILE *f, const char *path, StorageStacks *stk, bool *untouched) {
                 Surface s{nullptr, -1, -1, nullptr, nullptr};
                 const int16_t st = path ? U_inpsur(&s, path, 1, stk) : U_inpsup(&s, f, 1, stk);
                 *untouched = U_issurn(&s);
                 return st;
             }},
            {"points", f3.read(), 1, [](FILE *f, const char *path, StorageStacks *stk, bool *untouched) {
                 Point sentinel, *P = &sentinel;
                 int32_t n = -7;
                 const int16_t st = path ? U_inpp1d(&P, &n, path, stk) : U_inpp1s(&P, &n, f, stk);
                 *untouched = P == &sentinel && n == -7;
                 return st;
             }},
            {"grid", f4.read(), 1, [](FILE *f, const char *path, StorageStacks *stk, bool *untouched) {
                 Point sentinel, *row = &sentinel, **P = &row;
                 int32_t n = -7, m = -7;
                 const int16_t st = path ? U_inpp2d(&P, &n, &m, path, stk) : U_inpp2s(&P, &n, &m, f, stk);
                 *untouched = P == &row && n == -7 && m == -7;
                 return st;
             }},
            {"curves", f5.read(), 1, [](FILE *f, const char *path, StorageStacks *stk, bool *untouched) {
                 Curve **cs = nullptr;
                 int32_t k = -7;
                 const int16_t st = path ? U_inpcua(&cs, &k, path, 1, stk) : U_inpcas(&cs, &k, f, 1, stk);
                 *untouched = !cs && k == -7;
                 return st;
             }},
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
    for (bool file : {false, true}) {
        Context stk;
        bool untouched = false;
        E_clrerr();
        ASSERT_EQ(r(bytes, file, stk.get(), &untouched), 1) << r.label << " " << file << ": " << what;
        EXPECT_NE(std::find(codes.begin(), codes.end(), E_errtyp()), codes.end()) << r.label << ": " << what << " gave code " << E_errtyp();
        EXPECT_TRUE(untouched && stk.nodes() == 0) << r.label << " " << file << ": " << what;
    }
}

}  // namespace

// Valid files are read; every truncation, and a letter at every byte, is
// refused (a cut within the counts as a file error, after them possibly as
// a count the file cannot hold).
TEST(TextHostile, TruncationsAndCorruptedBytes) {
    for (const Reader &r : readers()) {
        for (bool file : {false, true}) {
            Context stk;
            bool untouched = true;
            EXPECT_EQ(r(r.valid, file, stk.get(), &untouched), 0) << r.label;
            EXPECT_FALSE(untouched) << r.label;
        }
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
    const Reader &curve = all[0], &surface = all[1], &points = all[2], &grid = all[3], &curves = all[4];
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
    Context held;
    bool untouched = false;
    EXPECT_EQ(curve(curve.valid + "7\n", true, held.get(), &untouched), 1) << "a named file holds nothing more";
    EXPECT_TRUE(E_errtyp() == KW_EFILE && untouched && held.nodes() == 0);
    // A pipe cannot tell its length: a count it cannot hold is found out as
    // the numbers run short, without memory running ahead of them.
    Context stk;
    Curve c;
    U_inicur(&c);
    Stream huge(with_line(curve.valid, 0, "1000000000"), true), good(curve.valid, true);
    ASSERT_NE(huge.get(), nullptr);
    EXPECT_EQ(U_inpcup(&c, huge.get(), 0, stk.get()), 1);
    EXPECT_TRUE(E_errtyp() == KW_EFILE && U_iscurn(&c));
    EXPECT_EQ(U_inpcup(&c, good.get(), 1, stk.get()), 0);
}

// Failing at each allocation, through a file and a stream, leaves the
// outputs as they were and nothing on the context.
TEST(TextHostile, AllocationFailuresAtEveryStep) {
    for (const Reader &r : readers())
        for (bool file : {false, true})
            EXPECT_FALSE(kwtest::sweep({r.label, [&r, file](StorageStacks *stk) {
                                            return std::function<int()>([&r, file, stk] {
                                                bool untouched = false;
                                                const int16_t status = r(r.valid, file, stk, &untouched);
                                                if (status) EXPECT_TRUE(untouched);
                                                return status;
                                            });
                                        }}).empty());
}

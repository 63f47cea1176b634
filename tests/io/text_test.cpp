// Text files: round trips of every object kind, the layouts, checked reads,
// output records, writers that refuse, and the console printers.
#include <cfloat>
#include <sstream>

#include "io/numbers.hpp"
#include "nurbs/eval/shapes.hpp"
#include "support.hpp"

using namespace kwt;

namespace {

char test_name[] = "TEST";

std::vector<std::string> lines_of(const std::string &s) {
    std::vector<std::string> out;
    std::istringstream in(s);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

std::string printed(const std::function<int16_t()> &print) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(print(), 0);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST(TextNumbers, FormattingMatchesPrintfAndOnlyDecimalsAreRead) {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-320, 308);
    std::vector<double> values = {0.0, -0.0, 1.0, 0.5, DBL_MAX, -DBL_MAX, DBL_MIN, 1e-17, 5e-17, 0.00000762939453125, 123456789.123456789};
    for (int i = 0; i < 2000; ++i) values.push_back(std::ldexp(mantissa(rng), exponent(rng)));
    char ours[kw::io::kNumberRoom + 1], theirs[400];
    for (double v : values) {
        ours[kw::io::format_fixed(ours, v, 18, 16)] = '\0';
        std::snprintf(theirs, sizeof theirs, "%18.16f", v);
        ASSERT_STREQ(ours, theirs) << v;
    }
    double v;
    for (const char *good : {"-2.5", "+.5", "1.", "1.5E-3", "-nan"}) EXPECT_TRUE(kw::io::parse_real(good, true, &v)) << good;
    for (const char *bad : {".", "1e+", "0x10", "1,5", "1d5", "infinity", "1e999"}) EXPECT_FALSE(kw::io::parse_real(bad, true, &v)) << bad;
    int64_t k;
    EXPECT_TRUE(kw::io::parse_integer("99999999999999999999", &k) && k == INT64_MAX);
    EXPECT_FALSE(kw::io::parse_integer("4.0", &k));
}

// Every kind of curve, written and read back through a file and through a
// stream, holds the values that 16 decimals give, and writes the same file
// again; so do surfaces, point arrays and curve arrays, and several objects
// in one stream, each read leaving the stream at the next.
TEST(TextRoundTrip, EveryObjectKind) {
    std::mt19937_64 rng(11);
    for (int kind = 1; kind <= 4; ++kind) {
        for (auto [n, p] : {std::pair<int32_t, int16_t>{1, 1}, {3, 3}, {9, 2}, {40, 5}}) {
            Context stk;
            Curve c, back, again;
            random_curve(&c, kind, n, p, rng, stk.get());
            TempFile file, rewritten;
            U_inicur(&back);
            U_inicur(&again);
            ASSERT_EQ(U_outcur(&c, file.path()) + U_inpcur(&back, file.path(), 0, stk.get()), 0);
            expect_values(&c, &back, through_text);
            Stream stream(file.read());
            ASSERT_EQ(U_inpcup(&again, stream.get(), 1, stk.get()) + U_outcur(&again, rewritten.path()), 0);
            expect_same(&back, &again);
            EXPECT_EQ(rewritten.read(), file.read()) << "kind " << kind;
        }
    }
    Context stk;
    for (bool rational : {false, true}) {
        Surface *s = kwtest::wavy_surface(rational, 3, 2, 2, 1, stk.get()), back;
        U_inisur(&back);
        TempFile file;
        ASSERT_EQ(U_outsur(s, file.path()) + U_inpsur(&back, file.path(), 1, stk.get()), 0);
        expect_values(s, &back, through_text);
    }
    Point line[3] = {{1, 2, 3}, {0.1, -0.2, KW_PLANAR}, {1e-9, 7, -7}}, row0[2] = {{0, 0, 0}, {1, 0, 0}}, row1[2] = {{0, 1, 0}, {1, 1, 0.5}};
    Point *grid[2] = {row0, row1}, *P1, **P2, *Q;
    Curve a, b, *pair[2] = {&a, &b}, **cs, ra, rb;
    random_curve(&a, 1, 3, 2, rng, stk.get());
    random_curve(&b, 4, 5, 3, rng, stk.get());
    int32_t n1, n, m, k;
    TempFile f1, f2, f3;
    ASSERT_EQ(U_outp1d(line, 2, f1.path()) + U_outp2d(grid, 1, 1, f2.path()) + U_outcua(pair, 1, f3.path()), 0);
    ASSERT_EQ(U_inpp1d(&P1, &n1, f1.path(), stk.get()) + U_inpp2d(&P2, &n, &m, f2.path(), stk.get()), 0);
    EXPECT_TRUE(n1 == 2 && n == 1 && m == 1 && P1[1].y == through_text(-0.2) && P1[1].z == KW_PLANAR && P2[1][1].z == 0.5);
    ASSERT_EQ(U_inpcua(&cs, &k, f3.path(), 0, stk.get()), 0);
    ASSERT_EQ(k, 1);
    expect_values(&a, cs[0], through_text);
    expect_values(&b, cs[1], through_text);
    FILE *f = std::tmpfile();
    ASSERT_EQ(U_outcup(&b, f) + U_outp1s(line, 2, f) + U_outcup(&a, f), 0);
    std::rewind(f);
    U_inicur(&ra);
    U_inicur(&rb);
    EXPECT_EQ(U_inpcup(&ra, f, 0, stk.get()) + U_inpp1s(&Q, &n, f, stk.get()) + U_inpcup(&rb, f, 0, stk.get()), 0);
    std::fclose(f);
    expect_values(&b, &ra, through_text);
    expect_values(&a, &rb, through_text);
    EXPECT_TRUE(n == 2 && Q[2].z == -7.0);
}

// A 2-D non-rational cubic: four header lines, four lines of two numbers,
// eight knots; read back checked, it carries both markers. A checked read
// reduces (weights that agree within one thousandth, z = 0) and validates;
// an unchecked one keeps what the file says.
TEST(TextLayout, CubicCheckedReadsAndReductions) {
    Context stk;
    Curve c, back, raw, e;
    U_inicur(&c);
    ASSERT_EQ(U_curchk(&c, 3, 3, 7, test_name, stk.get()), 0);
    for (int32_t i = 0; i <= 3; ++i) c.pol->Pw[i] = ControlPoint{1.0 * i, 0.5 * i * i, KW_PLANAR, KW_NONRATIONAL};
    uniform_knots(c.knt->U, 3, 3);
    TempFile file;
    ASSERT_EQ(U_outcur(&c, file.path()), 0);
    const std::vector<std::string> lines = lines_of(file.read());
    ASSERT_EQ(lines.size(), 4u + 4u + 8u);
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 4), (std::vector<std::string>{"3", "3", "0", "2"}));
    EXPECT_EQ(lines[5], "1.0000000000000000 0.5000000000000000");
    EXPECT_EQ(lines[15], "1.0000000000000000");
    U_inicur(&back);
    ASSERT_EQ(U_inpcur(&back, file.path(), 1, stk.get()), 0);
    for (int32_t i = 0; i <= 3; ++i) EXPECT_TRUE(back.pol->Pw[i].z == KW_PLANAR && back.pol->Pw[i].w == KW_NONRATIONAL);
    const std::string unit_weights_flat = "1\n1\n1\n3\n1 2 0 1\n3 4 0 1\n0\n0\n1\n1\n";
    Stream s1(unit_weights_flat), s2(unit_weights_flat), s3("1\n1\n0\n2\n1 2\n3 4\n0\n0.5\n1\n1\n");
    U_inicur(&back);
    U_inicur(&raw);
    U_inicur(&e);
    ASSERT_EQ(U_inpcup(&back, s1.get(), 1, stk.get()) + U_inpcup(&raw, s2.get(), 0, stk.get()), 0);
    EXPECT_TRUE(!U_iscurr(&back) && !U_iscur3(&back) && back.pol->Pw[1].x == 3.0);
    EXPECT_TRUE(U_iscurr(&raw) && U_iscur3(&raw));
    EXPECT_EQ(U_inpcup(&e, s3.get(), 1, stk.get()), 1);  // the knots of a bad file are refused
    EXPECT_TRUE(E_errtyp() == KW_EKNOTS && error_name() == "U_INPCUP" && U_iscurn(&e));
    raw.pol->Pw[0] = ControlPoint{2.0, 4.0, 0.0, 2.0};
    raw.pol->Pw[1] = ControlPoint{2.0011, 0.0, 0.0, 2.0011};
    EXPECT_FALSE(U_arecwe(&raw));
    raw.pol->Pw[1] = ControlPoint{2.0009, 0.0, 0.0, 2.0009};
    EXPECT_TRUE(U_arecwe(&raw));
    U_currpr(&raw, 0);  // only flag 1 makes a curve with z = 0 2-D
    EXPECT_TRUE(!U_iscurr(&raw) && U_iscur3(&raw) && raw.pol->Pw[0].y == 2.0);
    U_currpr(&raw, 1);
    EXPECT_FALSE(U_iscur3(&raw));
}

// A read into a large enough curve reuses it; into a small one it is refused
// with code 9, leaving the curve alone. Writers refuse a bad curve or stream
// without touching the file.
TEST(TextLayout, OutputRecordsAndRefusals) {
    Context stk;
    std::mt19937_64 rng(3);
    Curve small, big, target, too_small;
    random_curve(&small, 2, 2, 1, rng, stk.get());
    random_curve(&big, 2, 6, 3, rng, stk.get());
    random_curve(&target, 2, 6, 3, rng, stk.get());
    random_curve(&too_small, 2, 2, 1, rng, stk.get());
    TempFile file, large, kept("keep me\n");
    ASSERT_EQ(U_outcur(&small, file.path()) + U_outcur(&big, large.path()), 0);
    ControlPoint *const Pw = target.pol->Pw;
    const int held = stk.nodes();
    ASSERT_EQ(U_inpcur(&target, file.path(), 0, stk.get()), 0);
    EXPECT_TRUE(stk.nodes() == held && target.pol->Pw == Pw && target.pol->n == 2 && target.knt->m == 4);
    const ControlPoint before = too_small.pol->Pw[0];
    EXPECT_FAILURE(U_inpcur(&too_small, large.path(), 0, stk.get()), KW_ESTORAGE, "U_INPCUP");
    EXPECT_TRUE(too_small.pol->n == 2 && too_small.pol->Pw[0].x == before.x);
    small.knt->m = 5;  // inconsistent with n + p + 1
    EXPECT_FAILURE(U_outcur(&small, kept.path()), KW_ECURVE, "U_OUTCUR");
    small.knt->m = 4;
    EXPECT_FAILURE(U_outcur(&small, "no/such/dir/curve.txt"), KW_EFILE, "U_OUTCUR");
    EXPECT_FAILURE(U_outcup(&small, nullptr), KW_EFILE, "U_OUTCUP");
    FILE *read_only = std::fopen(kept.path(), "r");
    EXPECT_FAILURE(U_outcup(&small, read_only), KW_EFILE, "U_OUTCUP");
    std::fclose(read_only);
    Curve *bad[2] = {&small, nullptr};
    EXPECT_EQ(U_outcua(bad, 1, kept.path()), 1);
    EXPECT_EQ(kept.read(), "keep me\n");
}

namespace {
int pauses = 0;
void count_pause() { ++pauses; }
}  // namespace

// The console layout has two blanks between numbers; an installed pause
// routine is announced and called after each object.
TEST(TextPrinters, ConsoleLayoutAndPause) {
    Context stk;
    ControlPoint P[2] = {{1, 2, 3, 1}, {-1, 0.5, 0, 2}};
    double U[4] = {0, 0, 1, 1}, f0[2] = {0.25, -4}, half[3] = {0.5, 0.5, 0.5}, g0[2] = {1, 2}, *g[1] = {g0};
    Curve c, empty;
    CurveFunction f;
    SurfaceFunction s;
    U_inicur(&empty);
    ASSERT_EQ(U_makcu2(&c, P, 1, 1, U, 3, stk.get()) + U_makcf2(&f, f0, 1, 0, half, 2, stk.get()) +
                  U_maksf2(&s, g, 0, 1, 0, 1, U + 1, U, 1, 3, stk.get()), 0);
    std::string out = printed([&] { return U_prtcur(&c); });
    EXPECT_EQ(lines_of(out)[4], "1.0000000000000000  2.0000000000000000  3.0000000000000000  1.0000000000000000");
    EXPECT_EQ(out.find("Hit any key"), std::string::npos);
    const std::vector<std::string> fn = lines_of(printed([&] { return U_prtcfn(&f) + U_prtsfn(&s); }));
    ASSERT_EQ(fn.size(), 7u + 2u + 2u + 2u + 4u);
    EXPECT_TRUE(fn[3] == "-4.0000000000000000" && fn[8] == "0  1" && fn[10] == "2.0000000000000000");
    U_prtpau(count_pause);
    out = printed([&] { return U_prtknt(c.knt); });
    U_prtpau(nullptr);
    EXPECT_EQ(out, "3\n0.0000000000000000\n0.0000000000000000\n1.0000000000000000\n1.0000000000000000\nHit any key to continue...\n");
    EXPECT_EQ(pauses, 1);
    EXPECT_FAILURE(U_prtcur(&empty), KW_EARG, "U_PRTCUR");
    EXPECT_EQ(U_prtsur(nullptr), 1);
}

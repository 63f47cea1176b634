// Text files: round trips of every object kind, the layouts, checked reads,
// output records, writers that refuse, and the console printers.
#include <algorithm>
#include <cfloat>
#include <sstream>

#include "io/numbers.hpp"
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

// Every value of b is what the text format makes of the value of a: the
// double nearest to a's 16-decimal rendering. Markers survive exactly.
void expect_through_text(const Curve *a, const Curve *b) {
    ASSERT_EQ(a->pol->n, b->pol->n);
    ASSERT_EQ(a->p, b->p);
    ASSERT_EQ(a->knt->m, b->knt->m);
    for (int32_t i = 0; i <= a->pol->n; ++i) {
        const ControlPoint &P = a->pol->Pw[i], &Q = b->pol->Pw[i];
        EXPECT_EQ(Q.x, through_text(P.x));
        EXPECT_EQ(Q.y, through_text(P.y));
        EXPECT_EQ(Q.z, P.z == KW_PLANAR ? KW_PLANAR : through_text(P.z));
        EXPECT_EQ(Q.w, P.w == KW_NONRATIONAL ? KW_NONRATIONAL : through_text(P.w));
    }
    for (int32_t j = 0; j <= a->knt->m; ++j) EXPECT_EQ(b->knt->U[j], through_text(a->knt->U[j]));
}

}  // namespace

TEST(TextNumbers, FormattingMatchesPrintfOverEveryMagnitude) {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-320, 308);
    std::vector<double> values = {0.0, -0.0, 1.0, 0.5, DBL_MAX, -DBL_MAX, DBL_MIN, 1e-17, 5e-17,
                                  0.00000762939453125, 123456789.123456789};
    for (int i = 0; i < 2000; ++i) values.push_back(std::ldexp(mantissa(rng), exponent(rng)));
    char ours[kw::io::kNumberRoom + 1], theirs[400];
    for (double v : values) {
        ours[kw::io::format_fixed(ours, v, 18, 16)] = '\0';
        std::snprintf(theirs, sizeof theirs, "%18.16f", v);
        ASSERT_STREQ(ours, theirs) << v;
    }
}

TEST(TextNumbers, OnlyDecimalNumbersAreRead) {
    double v;
    for (const char *good : {"-2.5", "+.5", "1.", "1.5E-3", "-nan"})
        EXPECT_TRUE(kw::io::parse_real(good, true, &v)) << good;
    for (const char *bad : {".", "1e+", "0x10", "1,5", "1d5", "infinity", "1e999"})
        EXPECT_FALSE(kw::io::parse_real(bad, true, &v)) << bad;
    int64_t k;
    EXPECT_TRUE(kw::io::parse_integer("99999999999999999999", &k) && k == INT64_MAX);
    EXPECT_FALSE(kw::io::parse_integer("4.0", &k));
}

// Every kind of curve, written and read back through a file and through a
// stream, holds the values that 16 decimals give, and writes the same file
// again.
TEST(TextRoundTrip, CurvesOfEveryKind) {
    std::mt19937_64 rng(11);
    for (int kind = 1; kind <= 4; ++kind) {
        for (auto [n, p] : {std::pair<int32_t, int16_t>{1, 1}, {3, 3}, {9, 2}, {40, 5}}) {
            Stacks stk;
            Curve c, back, again;
            random_curve(&c, kind, n, p, rng, stk.get());
            TempFile file;
            ASSERT_EQ(U_outcur(&c, file.path()), 0);
            U_inicur(&back);
            ASSERT_EQ(U_inpcur(&back, file.path(), 0, stk.get()), 0);
            expect_through_text(&c, &back);
            Stream stream(file.read());
            U_inicur(&again);
            ASSERT_EQ(U_inpcup(&again, stream.get(), 1, stk.get()), 0);
            expect_same_curve(&back, &again);
            TempFile rewritten;
            ASSERT_EQ(U_outcur(&again, rewritten.path()), 0);
            EXPECT_EQ(rewritten.read(), file.read()) << "kind " << kind;
        }
    }
}

TEST(TextRoundTrip, SurfacesPointArraysAndCurveArrays) {
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> coord(-3.0, 3.0), weight(0.5, 2.0);
    for (bool rational : {false, true}) {
        Stacks stk;
        Surface s, back;
        U_inisur(&s);
        ASSERT_EQ(U_surchk(&s, 3, 2, 2, 1, 6, 4, test_name, stk.get()), 0);
        for (int i = 0; i <= 3; ++i)
            for (int j = 0; j <= 2; ++j)
                s.net->Pw[i][j] = ControlPoint{coord(rng), coord(rng), coord(rng),
                                               rational ? weight(rng) : KW_NONRATIONAL};
        uniform_knots(s.knu->U, 3, 2);
        uniform_knots(s.knv->U, 2, 1);
        TempFile file;
        ASSERT_EQ(U_outsur(&s, file.path()), 0);
        U_inisur(&back);
        ASSERT_EQ(U_inpsur(&back, file.path(), 1, stk.get()), 0);
        EXPECT_EQ(back.net->n, 3);
        EXPECT_EQ(back.q, 1);
        for (int i = 0; i <= 3; ++i)
            for (int j = 0; j <= 2; ++j) {
                EXPECT_EQ(back.net->Pw[i][j].z, through_text(s.net->Pw[i][j].z));
                const double w = s.net->Pw[i][j].w;
                EXPECT_EQ(back.net->Pw[i][j].w, rational ? through_text(w) : KW_NONRATIONAL);
            }
        EXPECT_EQ(back.knv->U[2], through_text(s.knv->U[2]));
    }

    Stacks stk;
    Point line[3] = {{1, 2, 3}, {0.1, -0.2, KW_PLANAR}, {1e-9, 7, -7}};
    Point row0[2] = {{0, 0, 0}, {1, 0, 0}}, row1[2] = {{0, 1, 0}, {1, 1, 0.5}};
    Point *grid[2] = {row0, row1};
    TempFile f1, f2;
    ASSERT_EQ(U_outp1d(line, 2, f1.path()), 0);
    ASSERT_EQ(U_outp2d(grid, 1, 1, f2.path()), 0);
    Point *P1, **P2;
    int32_t n, m;
    ASSERT_EQ(U_inpp1d(&P1, &n, f1.path(), stk.get()), 0);
    ASSERT_EQ(n, 2);
    EXPECT_EQ(P1[1].y, through_text(-0.2));
    EXPECT_EQ(P1[1].z, KW_PLANAR);
    ASSERT_EQ(U_inpp2d(&P2, &n, &m, f2.path(), stk.get()), 0);
    ASSERT_EQ(n, 1);
    ASSERT_EQ(m, 1);
    EXPECT_EQ(P2[1][1].z, 0.5);

    Curve a, b, *pair[2] = {&a, &b};
    random_curve(&a, 1, 3, 2, rng, stk.get());
    random_curve(&b, 4, 5, 3, rng, stk.get());
    TempFile f3;
    ASSERT_EQ(U_outcua(pair, 1, f3.path()), 0);
    Curve **cs;
    int32_t k;
    ASSERT_EQ(U_inpcua(&cs, &k, f3.path(), 0, stk.get()), 0);
    ASSERT_EQ(k, 1);
    expect_through_text(&a, cs[0]);
    expect_through_text(&b, cs[1]);
}

// The stream forms leave the stream at the next object.
TEST(TextRoundTrip, SeveralObjectsInOneStream) {
    Stacks stk;
    std::mt19937_64 rng(8);
    Curve a, b, ra, rb;
    random_curve(&a, 3, 4, 2, rng, stk.get());
    random_curve(&b, 2, 2, 1, rng, stk.get());
    const Point P[2] = {{1, 2, 3}, {4, 5, 6}};
    FILE *f = std::tmpfile();
    ASSERT_EQ(U_outcup(&a, f) + U_outp1s(P, 1, f) + U_outcup(&b, f), 0);
    std::rewind(f);
    Point *Q;
    int32_t n;
    U_inicur(&ra);
    U_inicur(&rb);
    EXPECT_EQ(U_inpcup(&ra, f, 0, stk.get()), 0);
    EXPECT_EQ(U_inpp1s(&Q, &n, f, stk.get()), 0);
    EXPECT_EQ(U_inpcup(&rb, f, 0, stk.get()), 0);
    std::fclose(f);
    expect_through_text(&a, &ra);
    expect_through_text(&b, &rb);
    EXPECT_EQ(Q[1].z, 6.0);
}

TEST(TextLayout, TwoDimensionalCubicAndCheckedRead) {
    Stacks stk;
    Curve c, back;
    U_inicur(&c);
    ASSERT_EQ(U_curchk(&c, 3, 3, 7, test_name, stk.get()), 0);
    for (int32_t i = 0; i <= 3; ++i) c.pol->Pw[i] = ControlPoint{1.0 * i, 0.5 * i * i, KW_PLANAR, KW_NONRATIONAL};
    uniform_knots(c.knt->U, 3, 3);
    TempFile file;
    ASSERT_EQ(U_outcur(&c, file.path()), 0);
    const std::vector<std::string> lines = lines_of(file.read());
    ASSERT_EQ(lines.size(), 4u + 4u + 8u);
    EXPECT_EQ(lines[0], "3");
    EXPECT_EQ(lines[2], "0");
    EXPECT_EQ(lines[3], "2");
    EXPECT_EQ(lines[5], "1.0000000000000000 0.5000000000000000");
    EXPECT_EQ(lines[15], "1.0000000000000000");
    U_inicur(&back);
    ASSERT_EQ(U_inpcur(&back, file.path(), 1, stk.get()), 0);
    for (int32_t i = 0; i <= 3; ++i) {
        EXPECT_EQ(back.pol->Pw[i].z, KW_PLANAR);
        EXPECT_EQ(back.pol->Pw[i].w, KW_NONRATIONAL);
    }
}

TEST(TextLayout, CheckedReadReducesAndValidates) {
    const std::string unit_weights_flat = "1\n1\n1\n3\n1 2 0 1\n3 4 0 1\n0\n0\n1\n1\n";
    Stacks stk;
    Curve c;
    U_inicur(&c);
    Stream s1(unit_weights_flat);
    ASSERT_EQ(U_inpcup(&c, s1.get(), 1, stk.get()), 0);
    EXPECT_FALSE(U_iscurr(&c));
    EXPECT_FALSE(U_iscur3(&c));
    EXPECT_EQ(c.pol->Pw[1].x, 3.0);

    // Read unchecked, the same file keeps what it says.
    Curve raw;
    U_inicur(&raw);
    Stream s2(unit_weights_flat);
    ASSERT_EQ(U_inpcup(&raw, s2.get(), 0, stk.get()), 0);
    EXPECT_TRUE(U_iscurr(&raw));
    EXPECT_TRUE(U_iscur3(&raw));

    // The knots of a bad file are refused.
    Stream s4("1\n1\n0\n2\n1 2\n3 4\n0\n0.5\n1\n1\n");
    E_clrerr();
    Curve e;
    U_inicur(&e);
    EXPECT_EQ(U_inpcup(&e, s4.get(), 1, stk.get()), 1);
    EXPECT_EQ(E_errtyp(), KW_EKNOTS);
    EXPECT_EQ(error_name(), "U_INPCUP");
    EXPECT_TRUE(U_iscurn(&e));
}

TEST(TextReductions, WeightsAgreeWithinOneThousandth) {
    Stacks stk;
    Curve c;
    U_inicur(&c);
    ASSERT_EQ(U_curchk(&c, 1, 1, 3, test_name, stk.get()), 0);
    uniform_knots(c.knt->U, 1, 1);
    c.pol->Pw[0] = ControlPoint{2.0, 4.0, 0.0, 2.0};
    c.pol->Pw[1] = ControlPoint{2.0009, 0.0, 0.0, 2.0009};
    EXPECT_TRUE(U_arecwe(&c));
    U_currpr(&c, 0);
    EXPECT_FALSE(U_iscurr(&c));
    EXPECT_TRUE(U_iscur3(&c));
    EXPECT_EQ(c.pol->Pw[0].y, 2.0);
    U_currpr(&c, 1);
    EXPECT_FALSE(U_iscur3(&c));
    c.pol->Pw[0] = ControlPoint{2.0, 4.0, 0.0, 2.0};
    c.pol->Pw[1] = ControlPoint{2.0011, 0.0, 0.0, 2.0011};
    EXPECT_FALSE(U_arecwe(&c));
}

TEST(TextOutputRecords, ReusedWhenLargeEnoughRefusedWhenNot) {
    Stacks stk;
    std::mt19937_64 rng(3);
    Curve small, big, target;
    random_curve(&small, 2, 2, 1, rng, stk.get());
    random_curve(&big, 2, 6, 3, rng, stk.get());
    TempFile file;
    ASSERT_EQ(U_outcur(&small, file.path()), 0);

    random_curve(&target, 2, 6, 3, rng, stk.get());
    ControlPoint *const Pw = target.pol->Pw;
    const int held = stk.nodes();
    ASSERT_EQ(U_inpcur(&target, file.path(), 0, stk.get()), 0);
    EXPECT_EQ(stk.nodes(), held);
    EXPECT_EQ(target.pol->Pw, Pw);
    EXPECT_EQ(target.pol->n, 2);
    EXPECT_EQ(target.knt->m, 4);

    TempFile large;
    ASSERT_EQ(U_outcur(&big, large.path()), 0);
    Curve too_small;
    random_curve(&too_small, 2, 2, 1, rng, stk.get());
    const ControlPoint before = too_small.pol->Pw[0];
    EXPECT_EQ(U_inpcur(&too_small, large.path(), 0, stk.get()), 1);
    EXPECT_EQ(E_errtyp(), KW_ESTORAGE);
    EXPECT_EQ(error_name(), "U_INPCUP");
    EXPECT_EQ(too_small.pol->n, 2);
    EXPECT_EQ(too_small.pol->Pw[0].x, before.x);
}

TEST(TextWriters, RefuseWithoutTouchingTheFile) {
    Stacks stk;
    std::mt19937_64 rng(9);
    Curve c;
    random_curve(&c, 1, 3, 2, rng, stk.get());
    TempFile file("keep me\n");
    c.knt->m = 5;  // inconsistent with n + p + 1
    EXPECT_EQ(U_outcur(&c, file.path()), 1);
    EXPECT_EQ(E_errtyp(), KW_ECURVE);
    EXPECT_EQ(error_name(), "U_OUTCUR");
    EXPECT_EQ(file.read(), "keep me\n");
    c.knt->m = 6;
    EXPECT_EQ(U_outcur(&c, "no/such/dir/curve.txt"), 1);
    EXPECT_EQ(E_errtyp(), KW_EFILE);
    EXPECT_EQ(U_outcup(&c, nullptr), 1);
    EXPECT_EQ(E_errtyp(), KW_EFILE);
    FILE *read_only = std::fopen(file.path(), "r");
    EXPECT_EQ(U_outcup(&c, read_only), 1);
    EXPECT_EQ(E_errtyp(), KW_EFILE);
    EXPECT_EQ(error_name(), "U_OUTCUP");
    std::fclose(read_only);
    Curve *bad[2] = {&c, nullptr};
    EXPECT_EQ(U_outcua(bad, 1, file.path()), 1);
    EXPECT_EQ(file.read(), "keep me\n");
}

namespace {
int pauses = 0;
void count_pause() { ++pauses; }
}  // namespace

TEST(TextPrinters, ConsoleLayoutAndPause) {
    Stacks stk;
    Curve c;
    U_inicur(&c);
    ASSERT_EQ(U_curchk(&c, 1, 1, 3, test_name, stk.get()), 0);
    c.pol->Pw[0] = ControlPoint{1, 2, 3, 1};
    c.pol->Pw[1] = ControlPoint{-1, 0.5, 0, 2};
    uniform_knots(c.knt->U, 1, 1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(U_prtcur(&c), 0);
    std::fflush(stdout);
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(lines_of(out)[4], "1.0000000000000000  2.0000000000000000  3.0000000000000000  1.0000000000000000");
    EXPECT_EQ(out.find("Hit any key"), std::string::npos);

    U_prtpau(count_pause);
    testing::internal::CaptureStdout();
    EXPECT_EQ(U_prtknt(c.knt), 0);
    std::fflush(stdout);
    out = testing::internal::GetCapturedStdout();
    U_prtpau(nullptr);
    EXPECT_EQ(out, "3\n0.0000000000000000\n0.0000000000000000\n1.0000000000000000\n"
                   "1.0000000000000000\nHit any key to continue...\n");
    EXPECT_EQ(pauses, 1);

    Curve empty;
    U_inicur(&empty);
    EXPECT_EQ(U_prtcur(&empty), 1);
    EXPECT_EQ(E_errtyp(), KW_EARG);
    EXPECT_EQ(U_prtsur(nullptr), 1);
}

TEST(TextPrinters, FunctionsPrintTheirValuesAndKnots) {
    Stacks stk;
    CurveFunction f;
    SurfaceFunction g;
    U_inicfn(&f);
    U_inisfn(&g);
    ASSERT_EQ(U_cfnchk(&f, 1, 0, 2, test_name, stk.get()), 0);
    ASSERT_EQ(U_sfnchk(&g, 0, 1, 0, 1, 1, 3, test_name, stk.get()), 0);
    f.cvl->v[0] = 0.25;
    f.cvl->v[1] = -4;
    std::fill_n(f.knt->U, 3, 0.5);
    g.svl->v[0][0] = 1;
    g.svl->v[0][1] = 2;
    uniform_knots(g.knu->U, 0, 0);
    uniform_knots(g.knv->U, 1, 1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(U_prtcfn(&f), 0);
    EXPECT_EQ(U_prtsfn(&g), 0);
    std::fflush(stdout);
    const std::vector<std::string> out = lines_of(testing::internal::GetCapturedStdout());
    ASSERT_EQ(out.size(), 7u + 2u + 2u + 2u + 4u);
    EXPECT_EQ(out[3], "-4.0000000000000000");
    EXPECT_EQ(out[8], "0  1");
    EXPECT_EQ(out[10], "2.0000000000000000");
}

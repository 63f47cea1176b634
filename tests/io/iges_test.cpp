// IGES import: the reader over hand-written and generated files, the
// converters and their helpers, refusals with their codes, and hostile
// variants of valid files.
#include <cmath>
#include <functional>

#include "core/fault_sweep.hpp"
#include "iges_builder.hpp"
#include "support.hpp"

using namespace kwt;

namespace {

char test_name[] = "TEST";

// Written by hand: a line, a matrix (a quarter turn about z, then +10 in x),
// a circle (passed over), a quarter circle under that matrix, and a bilinear
// surface with one knot written with a D exponent.
const char *const kHandWritten = R"(hand-written test file                                                  S      1
1H,,1H;,4Htest,8Htest.igs,4Hnone,4Hnone,32,38,6,308,15,4Htest,1.,1,2HIN,G      1
1,0.001,13H000101.000000,1.E-07,100.,4Hnone,4Hnone,9,0;                 G      2
     110       1       0       0       0       0       0       000000000D      1
     110       0       0       1       0                               0D      2
     124       2       0       0       0       0       0       000000000D      3
     124       0       0       1       0                               0D      4
     100       3       0       0       0       0       0       000000000D      5
     100       0       0       1       0                               0D      6
     126       4       0       0       0       0       3       000000000D      7
     126       0       0       2       0                               0D      8
     128       6       0       0       0       0       0       000000000D      9
     128       0       0       2       0                               0D     10
110,0.,0.,0.,1.,2.,3.;                                                 1P      1
124,0.,-1.,0.,10.,1.,0.,0.,0.,0.,0.,1.,0.;                             3P      2
100,0.,0.,0.,1.,0.,1.,0.;                                              5P      3
126,2,2,0,0,0,0,0.,0.,0.,1.,1.,1.,1.,0.70710678118655,1.,1.,0.,        7P      4
0.,1.,1.,0.,0.,1.,0.,0.,1.,0.,0.,1.;                                   7P      5
128,1,1,1,1,0,0,1,0,0,0.,0.,1.,1.,0.,0.,1.,1.,1.,1.,1.,1.,0.,0.,       9P      6
0.,1.,0.,0.,0.,1.,0.,1.,1.,1.D0,0.,1.,0.,1.;                           9P      7
S      1G      2D     10P      7                                        T      1
)";

// A quadratic rational arc and a cubic, as 126 entities, and a bilinear patch.
const std::string kArc = curve_params(2, {0, 0, 0, 1, 1, 1}, {1, 0.5, 1}, {1, 0, 0, 1, 1, 0, 0, 1, 0});
const std::string kCubic = curve_params(3, {0, 0, 0, 0, 0.5, 1, 1, 1, 1}, {1, 1, 1, 1, 1}, {0, 0, 0, 1, 2, 0, 2, -1, 0, 3, 0.5, 0, 4, 0, 0}, 1);
const std::string kPatch = numbers({1, 1, 1, 1, 0, 0, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 1, 1, 2, 2, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 1, 0, 1, 0, 1});
const std::vector<double> kArcParameters = {2, 2, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 0.5, 1, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};

// N_igs126 on the arc's parameters changed by spoil, into an empty curve.
int16_t convert_arc(Curve *c, StorageStacks *stk, const std::function<void(std::vector<double> &)> &spoil) {
    std::vector<double> par = kArcParameters;
    spoil(par);
    U_inicur(c);
    E_clrerr();
    return N_igs126(par.data(), static_cast<int32_t>(par.size()) - 1, c, stk);
}

}  // namespace

// The hand-written file; the arc turned and moved by its matrix, its weights
// kept; the net addressed [i][j] with i in u; the matrices as stored.
TEST(IgesRead, HandWrittenFile) {
    Import in(kHandWritten);
    ASSERT_EQ(in.status, 0) << E_errtyp() << " " << error_name();
    ASSERT_TRUE(in.nc == 1 && in.ns == 0 && in.nm == 0 && in.valid());
    EXPECT_TRUE(kwtest::Near(in.point(0, 1), {1, 2, 3}, 1e-12) && in.cur[0]->p == 1);
    const Curve *arc = in.cur[1];
    EXPECT_TRUE(arc->p == 2 && U_iscurr(arc));
    EXPECT_TRUE(kwtest::Near(in.point(1, 0), {10, 1, 0}, 1e-12) && kwtest::Near(in.point(1, 1), {9, 1, 0}, 1e-12) && kwtest::Near(in.point(1, 2), {9, 0, 0}, 1e-12));
    EXPECT_DOUBLE_EQ(arc->pol->Pw[1].w, 0.70710678118655);
    const ControlNet *net = in.sur[0]->net;
    EXPECT_TRUE(!U_issurr(in.sur[0]) && net->Pw[1][1].z == 1.0 && net->Pw[1][0].x == 1.0 && net->Pw[0][1].y == 1.0);
    EXPECT_TRUE(in.mat.n == 3 && in.mat.a[0][1] == -1.0 && in.mat.a[0][3] == 10.0 && in.mat.a[3][3] == 1.0);
}

// Delimiters named in the Global section, Hollerith strings holding them and
// running over record ends, D exponents, line ends of every kind: the same
// curves come back. A matrix chain applies the named matrix first, then the
// one it names.
TEST(IgesRead, LayoutsOfTheSameContentAndMatrixChains) {
    const std::vector<Entity> entities = {{126, kArc}, {126, kCubic}, {128, kPatch}};
    const Import plain(iges_file(entities));
    ASSERT_EQ(plain.status, 0);
    Layout odd, crlf, none;
    odd.pd = '/';
    odd.rd = '#';
    odd.global = "1H//1H#/" + hollerith("a name with / and # and, and;") + "/" + hollerith(std::string(40, 'x')) + "/" +
                 hollerith(std::string(80, '#')) + "/32/38/6/308/15/1H /1.0D0/1/2HIN/1/0.001#";
    std::vector<Entity> translated = entities;
    for (Entity &e : translated) {
        for (char &c : e.params) c = c == ',' ? '/' : c == ';' ? '#' : c;
        if (const std::size_t at = e.params.find("0.5"); at != std::string::npos) e.params.replace(at, 3, "5.D-1");
    }
    crlf.line_end = "\r\n";
    none.line_end = "";
    for (const std::string &bytes : {iges_file(translated, odd), iges_file(entities, crlf), iges_file(entities, none), iges_file(entities) + "\n  \n"}) {
        const Import other(bytes);
        ASSERT_EQ(other.status, 0) << E_errtyp() << " " << error_name();
        ASSERT_EQ(other.nc, 1);
        for (int c = 0; c <= 1; ++c) expect_same(plain.cur[c], other.cur[c]);
        expect_same(plain.sur[0], other.sur[0]);
    }
    // A: scale x by 2; B: move by (0, 5, 0). The line names A, A names B.
    const std::string A = numbers({2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}), B = numbers({1, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1, 0});
    const Import in(iges_file({{124, A, 3}, {124, B}, {110, numbers({1, 1, 1, 2, 2, 2}), 1}, {126, kCubic, 1}}));
    ASSERT_EQ(in.status, 0) << E_errtyp() << " " << error_name();
    EXPECT_TRUE(kwtest::Near(in.point(0, 0), {2, 6, 1}, 1e-12) && kwtest::Near(in.point(0, 1), {4, 7, 2}, 1e-12) && kwtest::Near(in.point(1, 1), {2, 7, 0}, 1e-12));
    EXPECT_TRUE(U_iscur3(in.cur[1]));  // a 2-D curve moved by a matrix is 3-D
    EXPECT_TRUE(in.nm == 1 && in.mat.a[4 + 1][3] == 5.0);  // matrices as stored, not composed
}

// Equal weights, whatever PROP3 says, give a non-rational curve; weights
// beyond the bounds are brought in by a common factor (the Cartesian points
// and the ratios of the weights stay); knots a file rounded apart are made
// equal again; a planar entity in z = 0 is 2-D.
TEST(IgesConvert, CurvesFromTheirParameters) {
    Context stk;
    Curve c;
    ASSERT_EQ(convert_arc(&c, stk.get(), [](auto &p) { std::fill(p.begin() + 12, p.begin() + 15, 3.0); }), 0);
    EXPECT_TRUE(!U_iscurr(&c) && c.pol->Pw[1].x == 1.0);
    ASSERT_EQ(convert_arc(&c, stk.get(), [](auto &p) { p[12] = p[14] = 400, p[13] = 20; }), 0);
    EXPECT_EQ(c.pol->Pw[0].w, U_maxwei);
    EXPECT_DOUBLE_EQ(c.pol->Pw[1].w / c.pol->Pw[0].w, 20.0 / 400.0);
    EXPECT_TRUE(kwtest::Near(kw::euclid(c.pol->Pw[1]), {1, 1, 0}, 1e-12));
    ASSERT_EQ(convert_arc(&c, stk.get(), [](auto &p) { p[7] = 1e-14, p[10] = 1.0 - 1e-13; }), 0);
    EXPECT_TRUE(c.knt->U[1] == 0.0 && c.knt->U[4] == 1.0 && E_curinp(&c, test_name) == 0);
    ASSERT_EQ(convert_arc(&c, stk.get(), [](auto &p) { p[2] = 1; }), 0);
    EXPECT_FALSE(U_iscur3(&c));
}

TEST(IgesConvert, CurveRefusalsAndTheirCodes) {
    const std::tuple<const char *, std::function<void(std::vector<double> &)>, int32_t, const char *> cases[] = {
        {"K not whole", [](auto &p) { p[0] = 2.5; }, KW_EARG, "N_IGSPSN"},
        {"degree 29", [](auto &p) { p[1] = 29; }, KW_EDEGREE, "N_IGS126"},
        {"degree 0", [](auto &p) { p[1] = 0; }, KW_EDEGREE, "N_IGS126"},
        {"K below M", [](auto &p) { p[0] = 1; }, KW_EARG, "N_IGSPNK"},
        {"too few", [](auto &p) { p.resize(25); }, KW_EARG, "N_IGSPNC"},
        {"unclamped", [](auto &p) { p[6] = -1; }, KW_EKNOTS, "N_IGSVKB"},
        {"decreasing", [](auto &p) { p[9] = 2; }, KW_EKNOTS, "N_IGSVKB"},
        {"not finite", [](auto &p) { p[9] = NAN; }, KW_EKNOTS, "N_IGSVKB"},
        {"narrower range", [](auto &p) { p[25] = 0.5; }, KW_EKNOTS, "N_IGSVKB"},
        {"zero weight", [](auto &p) { p[13] = 0; }, KW_EWEIGHT, "N_IGS126"},
        {"weights apart", [](auto &p) { p[13] = 1e-6; }, KW_EWEIGHT, "N_IGS126"},
    };
    for (const auto &[what, spoil, code, name] : cases) {
        Context stk;
        Curve c;
        EXPECT_EQ(convert_arc(&c, stk.get(), spoil), 1) << what;
        EXPECT_TRUE(E_errtyp() == code && error_name() == name && U_iscurn(&c) && stk.nodes() == 0) << what;
    }
    // Whatever the converter accepts, from any one parameter changed to an
    // awkward value, is a valid curve.
    for (std::size_t i = 0; i < kArcParameters.size(); ++i)
        for (double x : {-1.0, 0.0, 0.25, 1.0, 2.0, 3.0, 1e10, -1e-300, double(NAN), double(INFINITY)}) {
            Context stk;
            Curve c;
            if (convert_arc(&c, stk.get(), [=](auto &p) { p[i] = x; }) == 0) EXPECT_EQ(E_curinp(&c, test_name), 0) << i << " := " << x;
            else EXPECT_TRUE(U_iscurn(&c)) << i << " := " << x;
        }
    // An existing result too small for the entity.
    Context stk;
    Curve small;
    U_inicur(&small);
    ASSERT_EQ(U_curchk(&small, 1, 1, 3, test_name, stk.get()), 0);
    EXPECT_EQ(N_igs126(kArcParameters.data(), 28, &small, stk.get()), 1);
    EXPECT_TRUE(E_errtyp() == KW_ESTORAGE && small.pol->n == 1);
}

TEST(IgesConvert, LinesMatricesSurfacesAndHelpers) {
    Context stk;
    Curve line;
    U_inicur(&line);
    const double ends[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_FAILURE(N_igs110(ends, 4, &line, stk.get()), KW_EARG, "N_IGSPNC");
    RealMatrix T;
    M_inirma(&T);
    double par[12] = {0, 0, 1, 7, 1, 0, 0, 8, 0, 0, 0, 0};  // row 2 of R zero: singular
    EXPECT_FAILURE(N_igs124(par, 11, &T, stk.get()), KW_ESINGULAR, "N_IGS124");
    par[0] = INFINITY;
    EXPECT_FAILURE(N_igs124(par, 11, &T, stk.get()), KW_EARG, "N_IGS124");
    // A surface's control points are listed with u running fastest.
    std::vector<double> patch = {1, 2, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0.5, 1, 1, 1, 2, 1, 1, 1, 2};
    for (int j = 0; j <= 2; ++j)
        for (int i = 0; i <= 1; ++i) patch.insert(patch.end(), {double(i), double(j), double(i + 10 * j)});
    patch.insert(patch.end(), {0, 1, 0, 1});
    Surface s, t;
    U_inisur(&s);
    U_inisur(&t);
    ASSERT_EQ(N_igs128(patch.data(), static_cast<int32_t>(patch.size()) - 1, &s, stk.get()), 0);
    ASSERT_TRUE(s.net->n == 1 && s.net->m == 2);
    EXPECT_TRUE(kwtest::Near(kw::euclid(s.net->Pw[1][2]), {1, 2, 21}, 1e-12) && s.net->Pw[1][2].w == 2.0 && E_surinp(&s, test_name) == 0);
    patch[3] = 3;  // v degree 3 with three control points
    EXPECT_FAILURE(N_igs128(patch.data(), static_cast<int32_t>(patch.size()) - 1, &t, stk.get()), KW_EARG, "N_IGSPNK");
    int32_t v;
    const double nums[2] = {-0.0, 1e10}, W[2] = {2, 4}, X[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(N_igspsn(nums, 1, 0, &v), 0);
    EXPECT_EQ(N_igspsn(nums, 1, 1, &v), 1);  // beyond 32 bits
    EXPECT_EQ(N_igspnc(10, 5, 7), 1);
    ControlPoint Pw[2];
    EXPECT_FAILURE(N_igsccp(W, X, 1, 5, Pw), KW_ECASE, "N_IGSCCP");
    EXPECT_EQ(N_igsccp(nullptr, X, 1, 4, Pw), 1);
    ASSERT_EQ(N_igsccp(W, X, 1, 3, Pw), 0);
    EXPECT_TRUE(Pw[1].x == 16.0 && Pw[1].z == KW_PLANAR && Pw[1].w == 4.0);
}

// Files that break the layout, each refused with its code and without
// touching the outputs or leaving anything on the context.
TEST(IgesHostile, MalformedFilesAndTheirCodes) {
    const std::vector<Entity> good = {{110, numbers({0, 0, 0, 1, 1, 1})}, {126, kArc}};
    const std::string valid = iges_file(good);
    auto replace = [&](const std::string &from, const std::string &to) {
        std::string s = valid;
        const std::size_t at = s.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return at == std::string::npos ? s : s.replace(at, from.size(), to);
    };
    // Directory record 2 is the 126 entry's first, record 3 its second.
    std::vector<Entity> looped = good, to_line = good, with_text = good;
    looped.push_back({124, numbers({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}), 5});
    looped[1].matrix = 5;
    to_line[1].matrix = 1;
    with_text[0].params = "0,0,0,1,1,2Hab;";
    Layout same, unclosed;
    same.global = "1H;;1H;;4Htest;";
    unclosed.global = "1H,,1H;,4Htest,";
    std::string huge_k = kArc;
    huge_k.replace(0, 1, "2000000000");
    const std::tuple<const char *, std::string, int32_t> cases[] = {
        {"empty", "", KW_EFILE},
        {"no Terminate", valid.substr(0, valid.rfind("S      1G")), KW_EFILE},
        {"Terminate miscounts", set_columns(valid, 'T', 0, 25, "      9"), KW_EFILE},
        {"short record", replace("small file for the tests", "\nsmall"), KW_EFILE},
        {"sections out of order", replace("S      1\n1H", "P      1\n1H"), KW_EFILE},
        {"pointer past the end", set_columns(valid, 'D', 2, 8, "       9"), KW_EARG},
        {"no lines", set_columns(valid, 'D', 3, 24, "       0"), KW_EARG},
        {"lines past the end", set_columns(valid, 'D', 3, 24, "99999999"), KW_EARG},
        {"types disagree", set_columns(valid, 'D', 3, 0, "     128"), KW_EFILE},
        {"field not a number", set_columns(valid, 'D', 2, 8, "      2x"), KW_EFILE},
        {"other back pointer", replace("      3P      2", "      1P      2"), KW_EFILE},
        {"other type in the data", replace("126,2,", "128,2,"), KW_EFILE},
        {"malformed number", replace("0.5,1", "0.5.1"), KW_EFILE},
        {"string in the data", iges_file(with_text), KW_EFILE},
        {"matrix chain loops", iges_file(looped), KW_EARG},
        {"matrix that is a line", iges_file(to_line), KW_EARG},
        {"equal delimiters", iges_file(good, same), KW_EFILE},
        {"Global never closed", iges_file(good, unclosed), KW_EFILE},
        {"K too large", iges_file({{126, huge_k}}), KW_EARG},
    };
    for (const auto &[what, bytes, code] : cases) {
        const Import in(bytes);
        EXPECT_TRUE(in.status == 1 && E_errtyp() == code && in.untouched()) << what << " gave " << E_errtyp();
    }
    Context stk;
    Curve **cur;
    Surface **sur;
    int32_t nc, ns, nm;
    EXPECT_FAILURE(U_inpigs(&cur, &nc, &sur, &ns, nullptr, &nm, "no/such/file.igs", stk.get()), KW_EFILE, "U_INPIGS");
    EXPECT_FAILURE(U_inpigs(&cur, nullptr, &sur, &ns, nullptr, &nm, "x", stk.get()), KW_EARG, "U_INPIGS");
}

// Every truncation is refused; a letter anywhere may be taken by comments
// and strings, not by numbers, counts and layout, and whatever is accepted
// is valid.
TEST(IgesHostile, TruncatedAndCorruptedFiles) {
    const std::string valid = iges_file({{110, numbers({0, 0, 0, 1, 1, 1})},
                                         {124, numbers({0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3})},
                                         {126, kArc, 3},
                                         {128, kPatch}});
    for (std::size_t length = 0; length + 1 < valid.size(); ++length) {
        const Import in(valid.substr(0, length));
        EXPECT_TRUE(in.status == 1 && E_errtyp() == KW_EFILE && in.untouched()) << length;
    }
    EXPECT_EQ(Import(valid.substr(0, valid.size() - 1)).status, 0);  // only the last line end
    int refused = 0;
    for (std::size_t at = 0; at < valid.size(); ++at) {
        std::string bytes = valid;
        bytes[at] = 'q';
        const Import in(bytes);
        const int32_t code = E_errtyp();
        if (in.status == 0) EXPECT_TRUE(in.valid()) << at;
        else EXPECT_TRUE(in.untouched() && (code == KW_EFILE || code == KW_EARG || code == KW_EDEGREE || code == KW_EKNOTS ||
                                            code == KW_EWEIGHT || code == KW_ESINGULAR)) << at << " gave " << code;
        refused += in.status != 0;
    }
    EXPECT_GT(refused, 0);
}

// Failing at each allocation leaves the outputs as they were.
TEST(IgesHostile, AllocationFailuresAtEveryStep) {
    TempFile f(iges_file({{124, numbers({1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0})}, {126, kArc, 1}, {128, kPatch}}));
    EXPECT_FALSE(kwtest::sweep({"U_inpigs", [&f](StorageStacks *stk) {
                                    return std::function<int()>([&f, stk] {
                                        Curve **cur = nullptr;
                                        Surface **sur = nullptr;
                                        RealMatrix mat;
                                        M_inirma(&mat);
                                        int32_t nc = -7, ns = -7, nm = -7;
                                        const int16_t status = U_inpigs(&cur, &nc, &sur, &ns, &mat, &nm, f.path(), stk);
                                        if (status) EXPECT_TRUE(!cur && !sur && nc == -7 && ns == -7 && nm == -7 && !mat.a);
                                        else EXPECT_EQ(nc + ns + nm, 0);
                                        return status;
                                    });
                                }}).empty());
}

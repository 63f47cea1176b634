// IGES export: a small file record by record, the record formats against
// printf, flags, colours and the greatest coordinate, round trips through
// the reader for every writer, refusals and allocation failures.
#include <cmath>
#include <vector>

#include "core/fault_sweep.hpp"
#include "io/printf.hpp"
#include "iges_written.hpp"
#include "support.hpp"

using namespace kwt;

namespace {

std::vector<std::string> records(const std::string &text) {
    std::vector<std::string> r;
    for (std::size_t at = 0; at < text.size(); at += 81) r.push_back(text.substr(at, 80));
    return r;
}

std::string printed(const char *fmt, double v) {
    char buf[400];
    std::snprintf(buf, sizeof buf, fmt, v);
    return buf;
}

const char *const kCubicFile = R"(Nurbs curves written out using the                                      S      1
Kest software from Tarnholt, Inc.                                       S      2
,,8HKest 7.0,30H@,1H ,1H ,                 G      1
 32, 38, 7,308, 15,1H , 1.0,1,2HIN,                                     G      2
1, 0.001,13H             ,    0.0000010000000,                          G      3
          4.0040000000,1H ,1H ,  9,0,                                   G      4
13H             ;                                                       G      5
     126       1       0       1       4       0       0       000000000D      1
     126       1       2      11       0       0       0NURBSURF       1D      2
126,    3,  3, 1, 0, 1, 0,                                             1P      1
     0.000000000000 ,      0.000000000000 ,      0.000000000000,       1P      2
     0.000000000000 ,      1.000000000000 ,      1.000000000000,       1P      3
     1.000000000000 ,      1.000000000000,                             1P      4
     1.000000 ,      1.000000 ,      1.000000 ,      1.000000,         1P      5
     0.000000000000 ,      0.000000000000 ,      0.000000000000,       1P      6
     1.000000000000 ,      2.000000000000 ,      0.000000000000,       1P      7
     3.000000000000 ,      2.000000000000 ,      0.000000000000,       1P      8
     4.000000000000 ,      0.000000000000 ,      0.000000000000,       1P      9
     0.000000000000 ,      1.000000000000,                             1P     10
       0.000000 ,        0.000000 ,        1.000000;                   1P     11
S      2G      5D      2P     11                                        T      1
)";

}  // namespace

// A 2-D cubic of four control points: 11 Parameter records, 2 Directory
// records, the planar flag with its normal, 1.001 times the box's 4.
TEST(IgesWrite, SmallCurveFileRecordByRecord) {
    Context stk;
    Curve c;
    const ControlPoint P[4] = {{0, 0, KW_PLANAR, KW_NONRATIONAL}, {1, 2, KW_PLANAR, KW_NONRATIONAL},
                               {3, 2, KW_PLANAR, KW_NONRATIONAL}, {4, 0, KW_PLANAR, KW_NONRATIONAL}};
    double U[8];
    uniform_knots(U, 3, 3);
    U_inicur(&c);
    ASSERT_EQ(U_makcu2(&c, const_cast<ControlPoint *>(P), 3, 3, U, 7, stk.get()), 0);
    TempFile file;
    Curve *cur[] = {&c};
    ASSERT_EQ(U_cutigs(cur, 0, 1e-6, file.path()), 0);
    std::string want = kCubicFile;
    char name[40];
    std::snprintf(name, sizeof name, "%30s", file.path());
    want.replace(want.find('@'), 1, name);
    EXPECT_EQ(file.read(), want);
}

TEST(IgesWrite, RecordFormatsLayOutAsPrintfDoes) {
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    for (const char *fmt : {"%19.12lf", "%13lf", "%13.7lf", "%15lf", "%22.10lf", "%18.13lf", "%5.3f", "%1.1f"})
        for (int i = 0; i < 2000; ++i) {
            const double v = i < 4 ? std::vector<double>{0.0, -0.0, 0.5e-12, 2.5e-7}[i]
                                   : mantissa(rng) * std::pow(10.0, i % 9 - 3);
            char buf[400];
            const int len = kw::io::format(buf, sizeof buf, fmt, {v});
            EXPECT_EQ(std::string(buf, len), printed(fmt, v)) << fmt;
        }
    char buf[200];
    const int len = kw::io::format(buf, sizeof buf, "%3d,%8d%30s|%%%7dP", {-12, 1234567, "name", 0});
    EXPECT_EQ(std::string(buf, len), "-12, 1234567                          name|%      0P");
    EXPECT_EQ(kw::io::format(buf, sizeof buf, "%19.12lf", {NAN}), -1);
    EXPECT_EQ(kw::io::format(buf, 10, "%19.12lf", {1.0}), -1);
}

// Colours cycle over the entities; unit weights make a rational curve
// polynomial in the file; a closed curve says so; the greatest coordinate is
// 1.001 times the largest box coordinate.
TEST(IgesWrite, FlagsColoursAndGreatestCoordinate) {
    Context stk;
    std::mt19937_64 rng(11);
    std::vector<Curve *> cur;
    for (int i = 0; i < 9; ++i) cur.push_back(quarter_weighted(1 + i % 4, 4, 3, rng, stk.get()));
    for (int i = 0; i <= 4; ++i) cur[3]->pol->Pw[i].w = 1.0;  // rational, all weights 1.0
    cur[4]->pol->Pw[4] = cur[4]->pol->Pw[0];                     // closed
    TempFile file;
    ASSERT_EQ(U_cutigs(cur.data(), 8, 1e-6, file.path()), 0);
    const std::vector<std::string> r = records(file.read());
    double greatest = 0;
    int32_t pointer = 1;
    for (int i = 0; i < 9; ++i) {
        const std::string &d2 = r[7 + 2 * i + 1];
        EXPECT_EQ(std::stoi(d2.substr(16, 8)), (i + 2) % 8);
        EXPECT_EQ(std::stoi(d2.substr(24, 8)), 3 + (8 / 3 + 1) + (4 / 4 + 1) + 5);
        const std::string &header = r[7 + 18 + pointer - 1];
        const bool rational = cur[i]->pol->Pw[0].w != KW_NONRATIONAL && i != 3;
        EXPECT_EQ(header.substr(0, 26), printed("126,    4,  3,%2.0f,", i % 2 == 0 ? 1.0 : 0.0) +
                                            (i == 4 ? " 1," : " 0,") + (rational ? " 0, 0," : " 1, 0,"));
        const std::string weights = r[7 + 18 + pointer - 1 + 4];
        EXPECT_EQ(weights.substr(0, 13), rational ? printed("%13.7lf", cur[i]->pol->Pw[0].w) : "     1.000000");
        pointer += 3 + 3 + 2 + 5;
        Box b;
        ASSERT_EQ(N_curbox(cur[i], &b), 0);
        for (double v : {b.xmin, b.xmax, b.ymin, b.ymax, b.zmin, b.zmax}) greatest = std::max(greatest, std::fabs(v));
    }
    EXPECT_EQ(r[5].substr(0, 22), printed("%22.10lf", 1.001 * greatest));
}

// Every writer's file reads back to its twelve decimals (the weights
// exactly):
// polygons and nets as polylines through the Cartesian points; points and
// polylines are entities the reader passes over.
TEST(IgesWrite, EveryWriterReadsBack) {
    const Written w;
    const std::vector<Curve *> &cur = w.cur;
    const int32_t nc = static_cast<int32_t>(cur.size()) - 1;
    const Import c(w.curves.read()), s(w.surfaces.read()), x(w.mixed.read()), pg(w.polygons.read()), nt(w.nets.read());
    ASSERT_TRUE(c.nc == nc && s.ns == 1 && x.nc == 3 && x.ns == 0 && pg.nc == nc && nt.nc == (4 + 5) + (5 + 4) - 1);
    for (int32_t i = 0; i <= nc; ++i) expect_same(cur[i], c.cur[i], 1e-12);
    for (int i = 0; i < 2; ++i) expect_same(w.sur[i], s.sur[i], 1e-12);
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(kwtest::Near(x.point(i / 2, i % 2), w.lin[i], 1e-12)) << i;
    expect_same(cur[0], x.cur[2], 1e-12);
    expect_same(cur[1], x.cur[3], 1e-12);
    expect_same(w.sur[1], x.sur[0], 1e-12);
    auto polyline = [](const Curve *c, auto point, int32_t n) {
        ASSERT_TRUE(c->p == 1 && c->pol->n == n);
        for (int32_t i = 0; i <= n; ++i) {
            const ControlPoint P = c->pol->Pw[i], Q = kw::euclid_cp(point(i));
            EXPECT_TRUE(kwtest::Near({P.x, P.y, P.z}, {Q.x, Q.y, Q.z}, 1.8e-12) && P.w == Q.w) << i;
        }
    };
    for (int32_t i = 0; i <= nc; ++i) polyline(pg.cur[i], [&](int32_t k) { return cur[i]->pol->Pw[k]; }, cur[i]->pol->n);
    int32_t at = 0;
    w.each_net_line([&](auto point, int32_t n) { polyline(nt.cur[at++], point, n); });
    for (const TempFile *f : {&w.points, &w.path}) {
        EXPECT_EQ(Import(f->read()).nc, -1);
        EXPECT_EQ(records(f->read()).size(), 2 + 5 + 1 + (f == &w.points ? 4 * 2 + 4 * 2 : 2 + 5));
    }
}

TEST(IgesWrite, RefusalsLeaveTheFileAlone) {
    Context stk;
    std::mt19937_64 rng(23);
    Curve *c = quarter_weighted(2, 4, 3, rng, stk.get());
    Surface *s = kwtest::wavy_surface(true, 2, 2, 2, 2, stk.get());
    TempFile file("before");
    auto refused = [&](int16_t status, int code, const char *name) {
        EXPECT_EQ(status, 1);
        EXPECT_EQ(E_errtyp(), code);
        EXPECT_EQ(error_name(), name);
        EXPECT_EQ(file.read(), "before");
    };
    refused(U_cutigs(&c, -1, 1e-6, file.path()), KW_EARG, "U_CUTIGS");
    refused(U_cutigs(&c, 0, 0.0, file.path()), KW_EARG, "U_CUTIGS");
    refused(U_sutigs(nullptr, 0, 1e-6, file.path()), KW_EARG, "U_SUTIGS");
    refused(U_lcsigs(nullptr, -1, nullptr, -1, nullptr, -1, 1e-6, file.path()), KW_EARG, "U_LCSIGS");
    refused(U_p1digs(nullptr, 0, 1, file.path()), KW_EARG, "U_P1DIGS");
    const Point P[2] = {{0, 0, 0}, {1, 1, 1}};
    refused(U_p1digs(P, 1, 3, file.path()), KW_EARG, "U_P1DIGS");
    refused(U_p1digs(P, 0, 2, file.path()), KW_EARG, "U_P1DIGS");
    // Numbers too wide for their columns.
    const Point far[2] = {{0, 0, 0}, {-100000.5, 1, 1}};
    refused(U_lcsigs(far, 0, nullptr, -1, nullptr, -1, 1e-6, file.path()), KW_EARG, "U_LCSIGS");
    refused(U_cutigs(&c, 0, 1e4, file.path()), KW_EARG, "U_CUTIGS");
    s->net->Pw[1][1].w = 1000.0;
    refused(U_spligs(&s, 0, file.path()), KW_EWEIGHT, "U_SPLIGS");
    c->knt->U[4] = 2.0;
    refused(U_cpligs(&c, 0, file.path()), KW_EKNOTS, "U_CPLIGS");
    EXPECT_EQ(U_p1digs(P, 1, 1, "/nonexistent/x.igs"), 1);
    EXPECT_EQ(E_errtyp(), KW_EFILE);
}

// The surface box takes scratch; a failure writes nothing.
TEST(IgesWrite, AllocationFailures) {
    TempFile file;
    auto prepare = [&](bool mixed) {
        return [&, mixed](StorageStacks *stk) {
            std::mt19937_64 rng(29);
            Surface *s = kwtest::wavy_surface(true, 2, 3, 2, 2, stk);
            Curve *c = quarter_weighted(4, 3, 2, rng, stk);
            std::remove(file.path());
            return std::function<int()>([=, &file] {
                Surface *sa[] = {s};
                Curve *ca[] = {c};
                const int16_t st = mixed ? U_lcsigs(nullptr, -1, ca, 0, sa, 0, 1e-6, file.path())
                                         : U_sutigs(sa, 0, 1e-6, file.path());
                if (st) EXPECT_EQ(file.read(), "");
                return st;
            });
        };
    };
    for (bool mixed : {false, true}) EXPECT_FALSE(kwtest::sweep({"writer", prepare(mixed)}).empty());
}

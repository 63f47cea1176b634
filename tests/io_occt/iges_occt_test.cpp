// IGES against OpenCASCADE: files that it writes come back with its control
// points, weights and knots; files laid out here are parsed by both readers
// alike; and its reader transfers every file our writers produce to curves
// and surfaces that evaluate to our points.
#include <Geom_BSplineCurve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Reader.hxx>
#include <IGESControl_Writer.hxx>
#include <IGESData_IGESModel.hxx>
#include <IGESData_TransfEntity.hxx>
#include <IGESGeom_BSplineCurve.hxx>
#include <IGESGeom_BSplineSurface.hxx>
#include <IGESGeom_CopiousData.hxx>
#include <IGESGeom_Line.hxx>
#include <IGESGeom_Point.hxx>
#include <IGESToBRep_BasicCurve.hxx>
#include <IGESToBRep_BasicSurface.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <gp_GTrsf.hxx>

#include <cmath>
#include <vector>

#include "io/iges_builder.hpp"
#include "io/iges_written.hpp"
#include "io/support.hpp"

// OpenCASCADE keeps some process-wide objects until exit; they are not ours.
// The sanitizer runtime looks this up in the executable: it must be visible.
extern "C" __attribute__((visibility("default"), used)) const char *__lsan_default_suppressions() {
    return "leak:libTK\n";
}

using namespace kwt;

namespace {

// The same text parsed twice agrees to rounding; OpenCASCADE writes nine
// significant digits, which bounds the agreement with what it was given;
// our files hold twelve decimals.
constexpr double kTol = 1e-12, kWritten = 1e-8, kOurs = 1e-9;

// A file as OpenCASCADE reads it: its entities of type T in file order, and
// how many shapes the transfer of its roots gave.
struct Occt {
    IGESControl_Reader reader;
    Handle(IGESData_IGESModel) model;
    int shapes = 0;
    explicit Occt(const char *path) {
        IGESControl_Controller::Init();
        EXPECT_EQ(reader.ReadFile(path), IFSelect_RetDone);
        model = reader.IGESModel();
        reader.TransferRoots();
        shapes = reader.NbShapes();
    }
    template <class T>
    std::vector<Handle(T)> all() const {
        std::vector<Handle(T)> v;
        for (Standard_Integer i = 1; i <= model->NbEntities(); ++i)
            if (auto e = Handle(T)::DownCast(model->Entity(i))) v.push_back(e);
        return v;
    }
};

void expect_close(const gp_Pnt &a, const Point &b, double tol) {
    const double c[3] = {b.x, b.y, b.z};
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(a.Coord(i + 1), c[i], tol * (1 + std::fabs(c[i])));
}

void expect_near(const ControlPoint &Pw, const gp_Pnt &P, double w, bool rational, double tol = kTol) {
    expect_close(P, kw::euclid(Pw), tol);
    if (rational) EXPECT_NEAR(Pw.w, w, tol);
}

// A pole moved by the entity's matrix and then by each matrix that the
// previous one names (OpenCASCADE's Location stops at the first).
gp_Pnt chained(const Handle(IGESData_IGESEntity) &e, gp_Pnt P) {
    gp_XYZ xyz = P.XYZ();
    for (Handle(IGESData_IGESEntity) at = e; at->HasTransf();) {
        const Handle(IGESData_TransfEntity) T = at->Transf();
        T->Value().Transforms(xyz);
        at = T;
    }
    return gp_Pnt(xyz);
}

// Our curve holds what OpenCASCADE parsed from the same entity (transformed
// by the entity's matrix, as ours is). Weights may differ by a common factor.
void expect_same(const Curve *c, const Handle(IGESGeom_BSplineCurve) &g) {
    ASSERT_TRUE(c->pol->n == g->UpperIndex() && c->p == g->Degree());
    const bool rational = U_iscurr(c);
    const double scale = rational ? c->pol->Pw[0].w / g->Weight(0) : 1.0;
    for (int32_t i = 0; i <= c->pol->n; ++i) expect_near(c->pol->Pw[i], chained(g, g->Pole(i)), scale * g->Weight(i), rational);
    for (int32_t j = 0; j <= c->knt->m; ++j) EXPECT_NEAR(c->knt->U[j], g->Knot(j - g->Degree()), kTol);
}

void expect_same(const Surface *s, const Handle(IGESGeom_BSplineSurface) &g) {
    ASSERT_TRUE(s->net->n == g->UpperIndexU() && s->net->m == g->UpperIndexV() && s->p == g->DegreeU() && s->q == g->DegreeV());
    const bool rational = U_issurr(s);
    const double scale = rational ? s->net->Pw[0][0].w / g->Weight(0, 0) : 1.0;
    for (int32_t i = 0; i <= s->net->n; ++i)
        for (int32_t j = 0; j <= s->net->m; ++j)
            expect_near(s->net->Pw[i][j], chained(g, g->Pole(i, j)), scale * g->Weight(i, j), rational);
    for (int32_t j = 0; j <= s->knu->m; ++j) EXPECT_NEAR(s->knu->U[j], g->KnotU(j - g->DegreeU()), kTol);
    for (int32_t j = 0; j <= s->knv->m; ++j) EXPECT_NEAR(s->knv->U[j], g->KnotV(j - g->DegreeV()), kTol);
}

// What both readers make of a file: the same entities, ncurves curves and
// nsurfaces surfaces.
void expect_read_alike(const TempFile &file, int ncurves, int nsurfaces) {
    const Import ours(file.read());
    ASSERT_EQ(ours.status, 0) << E_errtyp() << " " << E_errnam();
    const Occt theirs(file.path());
    const auto curves = theirs.all<IGESGeom_BSplineCurve>();
    const auto surfaces = theirs.all<IGESGeom_BSplineSurface>();
    ASSERT_TRUE(ours.nc + 1 == ncurves && int(curves.size()) == ncurves && ours.ns + 1 == nsurfaces && int(surfaces.size()) == nsurfaces);
    for (int c = 0; c < ncurves; ++c) expect_same(ours.cur[c], curves[c]);
    for (int s = 0; s < nsurfaces; ++s) expect_same(ours.sur[s], surfaces[s]);
}

template <class A>
A real_array(const std::vector<double> &v) {
    A a(1, static_cast<int>(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) a(static_cast<int>(i) + 1) = v[i];
    return a;
}

// Poles (x y z each), weights (none: non-rational), distinct knots and
// their multiplicities.
Handle(Geom_BSplineCurve) curve(const std::vector<double> &xyz, const std::vector<double> &w, const std::vector<double> &knots,
                                 const std::vector<int> &mult, int degree) {
    TColgp_Array1OfPnt poles(1, static_cast<int>(xyz.size() / 3));
    for (int i = 1; i <= poles.Length(); ++i) poles(i) = gp_Pnt(xyz[3 * i - 3], xyz[3 * i - 2], xyz[3 * i - 1]);
    TColStd_Array1OfInteger m(1, static_cast<int>(mult.size()));
    for (std::size_t i = 0; i < mult.size(); ++i) m(static_cast<int>(i) + 1) = mult[i];
    const auto U = real_array<TColStd_Array1OfReal>(knots);
    if (w.empty()) return new Geom_BSplineCurve(poles, U, m, degree);
    return new Geom_BSplineCurve(poles, real_array<TColStd_Array1OfReal>(w), U, m, degree);
}

// The transferred curve at eleven parameters across the range.
void expect_curve(const Handle(IGESGeom_BSplineCurve) &e, const Curve *c) {
    const Handle(Geom_Curve) g = IGESToBRep_BasicCurve().TransferBasicCurve(e);
    ASSERT_FALSE(g.IsNull());
    const double a = c->knt->U[0], b = c->knt->U[c->knt->m];
    for (int t = 0; t <= 10; ++t) {
        Point C;
        N_curevn(c, a + (b - a) * t / 10, KW_RIGHT, &C);
        expect_close(g->Value(a + (b - a) * t / 10), C, kOurs);
    }
}

void expect_surface(const Handle(IGESGeom_BSplineSurface) &e, const Surface *s) {
    const Handle(Geom_Surface) g = IGESToBRep_BasicSurface().TransferBasicSurface(e);
    ASSERT_FALSE(g.IsNull());
    for (int i = 0; i <= 6; ++i)
        for (int j = 0; j <= 6; ++j) {
            const double u = s->knu->U[0] + (s->knu->U[s->knu->m] - s->knu->U[0]) * i / 6;
            const double v = s->knv->U[0] + (s->knv->U[s->knv->m] - s->knv->U[0]) * j / 6;
            expect_close(g->Value(u, v), kwtest::surface_point(*s, u, v), kOurs);
        }
}

}  // namespace

// A cubic with a double knot, a rational quadratic half circle and a
// rational patch on [0, 1] x [-1, 3]: both readers agree, and the geometry
// is the one that was written.
TEST(IgesOcct, FilesWrittenByOpenCascade) {
    IGESControl_Controller::Init();
    IGESControl_Writer writer("MM", 0);
    const Handle(Geom_BSplineCurve) cubic = curve({0, 0, 0, 1, 2, 0.5, 2, -1, 1, 3.25, 0.5, 0, 4, 3, -2, 5, 0, 1}, {}, {0, 0.4, 2}, {4, 2, 4}, 3),
                                    arc = curve({1, 0, 0, 1, 1, 0, 0, 1, 0, -1, 1, 0, -1, 0, 0}, {1, M_SQRT1_2, 1, M_SQRT1_2, 1}, {0, 0.5, 1}, {3, 2, 3}, 2);
    TColgp_Array2OfPnt poles(1, 4, 1, 3);
    TColStd_Array2OfReal weights(1, 4, 1, 3);
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 3; ++j) {
            poles(i, j) = gp_Pnt(i, 2.0 * j, std::sin(i + 0.3 * j));
            weights(i, j) = 1.0 + 0.25 * ((i + j) % 3);
        }
    TColStd_Array1OfInteger um(1, 2), vm(1, 2);
    um(1) = um(2) = 4;
    vm(1) = vm(2) = 3;
    const Handle(Geom_BSplineSurface) patch = new Geom_BSplineSurface(
        poles, weights, real_array<TColStd_Array1OfReal>({0, 1}), real_array<TColStd_Array1OfReal>({-1, 3}), um, vm, 3, 2);
    writer.AddGeom(cubic);
    writer.AddGeom(arc);
    writer.AddGeom(patch);
    writer.ComputeModel();
    TempFile file;
    ASSERT_TRUE(writer.Write(file.path()));
    expect_read_alike(file, 2, 1);
    const Import ours(file.read());
    EXPECT_TRUE(!U_iscurr(ours.cur[0]) && U_iscurr(ours.cur[1]));
    // The weights as given, not rescaled.
    for (int i = 1; i <= arc->NbPoles(); ++i) expect_near(ours.cur[1]->pol->Pw[i - 1], arc->Pole(i), arc->Weight(i), true, kWritten);
}

// Matrix chains, a surface and a curve used twice: both readers agree on
// every value.
TEST(IgesOcct, FilesLaidOutHereReadAlike) {
    const std::string cubic = curve_params(3, {0, 0, 0, 0, 0.25, 0.5, 1, 1, 1, 1}, {1, 2, 0.5, 1, 1.5, 1},
                                           {0, 0, 0, 1, 2, 3, 2, -1, 0.5, 3, 3, 3, 4, 0, -1, 5, 1, 1});
    // K1 = 1, K2 = 3, degrees 1 and 2, v knots with one interior knot.
    std::vector<double> grid = {1, 3, 1, 2, 0, 0, 0, 0, 0, 0, 0, 3, 3, 0, 0, 0, 0.5, 1, 1, 1};
    for (int j = 0; j <= 3; ++j)
        for (int i = 0; i <= 1; ++i) grid.push_back(1.0 + 0.5 * ((i + j) % 2));
    for (int j = 0; j <= 3; ++j)
        for (int i = 0; i <= 1; ++i) grid.insert(grid.end(), {3.0 * i, 1.0 * j, double((i * j) % 3)});
    grid.insert(grid.end(), {0, 3, 0, 1});
    const std::string turn = numbers({0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3}), shift = numbers({1, 0, 0, 0, 0, 0, -1, 5, 0, 1, 0, -1});
    expect_read_alike(TempFile(iges_file({{124, turn, 3}, {124, shift}, {126, cubic, 1}, {128, numbers(grid), 3}, {126, cubic}})), 2, 1);
}

// Every writer's file: the shapes OpenCASCADE transfers, its curves and
// surfaces against our points, lines, points and polylines as written.
TEST(IgesWriteOcct, EveryFileTransfersToOurGeometry) {
    const Written w;
    const std::vector<Curve *> &cur = w.cur;
    const int32_t nc = static_cast<int32_t>(cur.size()) - 1;
    const Point *lin = w.lin;
    const Occt c(w.curves.path()), s(w.surfaces.path()), x(w.mixed.path()), pg(w.polygons.path()), nt(w.nets.path()),
        pt(w.points.path()), ph(w.path.path());
    EXPECT_TRUE(c.shapes == nc + 1 && s.shapes == 2 && x.shapes == 2 + 2 + 1 && pg.shapes == nc + 1 && nt.shapes == (4 + 5) + (5 + 4) &&
                pt.shapes == 4 && ph.shapes == 1);
    for (int32_t i = 0; i <= nc; ++i) expect_curve(c.all<IGESGeom_BSplineCurve>()[i], cur[i]);
    for (int i = 0; i < 2; ++i) expect_surface(s.all<IGESGeom_BSplineSurface>()[i], w.sur[i]);
    const auto lines = x.all<IGESGeom_Line>();
    ASSERT_EQ(lines.size(), 2u);
    for (int i = 0; i < 2; ++i) {
        expect_close(lines[i]->StartPoint(), lin[2 * i], kOurs);
        expect_close(lines[i]->EndPoint(), lin[2 * i + 1], kOurs);
        expect_curve(x.all<IGESGeom_BSplineCurve>()[i], cur[i]);
    }
    expect_surface(x.all<IGESGeom_BSplineSurface>()[0], w.sur[1]);
    const auto dots = pt.all<IGESGeom_Point>();
    const auto copious = ph.all<IGESGeom_CopiousData>();
    ASSERT_TRUE(dots.size() == 4u && copious.size() == 1u);
    const Handle(Geom_BSplineCurve) g = IGESToBRep_BasicCurve().TransferCopiousData(copious[0]);
    ASSERT_TRUE(!g.IsNull() && g->NbPoles() == 4);
    for (int i = 0; i < 4; ++i) {
        expect_close(dots[i]->Value(), lin[i], kOurs);
        expect_close(g->Pole(i + 1), lin[i], kOurs);
    }
}

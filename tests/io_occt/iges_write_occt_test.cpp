// IGES export against OpenCASCADE: its reader reads and transfers every file
// the writers produce, and the curves and surfaces it makes of them
// evaluate to our points.
#include <Geom_BSplineCurve.hxx>
#include <Geom_Curve.hxx>
#include <Geom_Surface.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Reader.hxx>
#include <IGESData_IGESModel.hxx>
#include <IGESGeom_BSplineCurve.hxx>
#include <IGESGeom_BSplineSurface.hxx>
#include <IGESGeom_CopiousData.hxx>
#include <IGESGeom_Line.hxx>
#include <IGESGeom_Point.hxx>
#include <IGESToBRep_BasicCurve.hxx>
#include <IGESToBRep_BasicSurface.hxx>

#include <cmath>
#include <vector>

#include "io/iges_written.hpp"
#include "io/support.hpp"
#include "nurbs/eval/shapes.hpp"

using namespace kwt;

namespace {

// The files hold twelve decimals; the weights are exact in seven.
constexpr double kRelative = 1e-9;

void expect_close(const gp_Pnt &a, const Point &b) {
    const double tol = kRelative * std::max({1.0, std::fabs(b.x), std::fabs(b.y), std::fabs(b.z)});
    EXPECT_NEAR(a.X(), b.x, tol);
    EXPECT_NEAR(a.Y(), b.y, tol);
    EXPECT_NEAR(a.Z(), b.z, tol);
}

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

// The transferred curve at eleven parameters across the range.
void expect_curve(const Handle(IGESGeom_BSplineCurve) &e, const Curve *c) {
    const Handle(Geom_Curve) g = IGESToBRep_BasicCurve().TransferBasicCurve(e);
    ASSERT_FALSE(g.IsNull());
    const double a = c->knt->U[0], b = c->knt->U[c->knt->m];
    for (int t = 0; t <= 10; ++t) {
        const double u = a + (b - a) * t / 10;
        Point C;
        N_curevn(c, u, KW_RIGHT, &C);
        expect_close(g->Value(u), C);
    }
}

void expect_surface(const Handle(IGESGeom_BSplineSurface) &e, const Surface *s) {
    const Handle(Geom_Surface) g = IGESToBRep_BasicSurface().TransferBasicSurface(e);
    ASSERT_FALSE(g.IsNull());
    for (int i = 0; i <= 6; ++i)
        for (int j = 0; j <= 6; ++j) {
            const double u = s->knu->U[0] + (s->knu->U[s->knu->m] - s->knu->U[0]) * i / 6;
            const double v = s->knv->U[0] + (s->knv->U[s->knv->m] - s->knv->U[0]) * j / 6;
            expect_close(g->Value(u, v), kwtest::surface_point(*s, u, v));
        }
}

}  // namespace

TEST(IgesWriteOcct, EveryFileTransfersToOurGeometry) {
    const Written w;
    const std::vector<Curve *> &cur = w.cur;
    const std::vector<Surface *> &sur = w.sur;
    const int32_t nc = static_cast<int32_t>(cur.size()) - 1;
    const Point *lin = w.lin;
    const Occt c(w.curves.path()), s(w.surfaces.path()), x(w.mixed.path()), pg(w.polygons.path()),
        nt(w.nets.path()), pt(w.points.path()), ph(w.path.path());
    EXPECT_EQ(c.shapes, nc + 1);
    for (int32_t i = 0; i <= nc; ++i) expect_curve(c.all<IGESGeom_BSplineCurve>()[i], cur[i]);
    EXPECT_EQ(s.shapes, 2);
    for (int i = 0; i < 2; ++i) expect_surface(s.all<IGESGeom_BSplineSurface>()[i], sur[i]);
    EXPECT_EQ(x.shapes, 2 + 2 + 1);
    const auto lines = x.all<IGESGeom_Line>();
    ASSERT_EQ(lines.size(), 2u);
    for (int i = 0; i < 2; ++i) {
        expect_close(lines[i]->StartPoint(), lin[2 * i]);
        expect_close(lines[i]->EndPoint(), lin[2 * i + 1]);
    }
    for (int i = 0; i < 2; ++i) expect_curve(x.all<IGESGeom_BSplineCurve>()[i], cur[i]);
    expect_surface(x.all<IGESGeom_BSplineSurface>()[0], sur[1]);

    // Control polygons and nets: polylines of the same entity type.
    EXPECT_EQ(pg.shapes, nc + 1);
    EXPECT_EQ(nt.shapes, (4 + 5) + (5 + 4));

    const auto dots = pt.all<IGESGeom_Point>();
    ASSERT_EQ(dots.size(), 4u);
    EXPECT_EQ(pt.shapes, 4);
    for (int i = 0; i < 4; ++i) expect_close(dots[i]->Value(), lin[i]);
    const auto copious = ph.all<IGESGeom_CopiousData>();
    ASSERT_EQ(copious.size(), 1u);
    EXPECT_EQ(ph.shapes, 1);
    const Handle(Geom_BSplineCurve) g = IGESToBRep_BasicCurve().TransferCopiousData(copious[0]);
    ASSERT_FALSE(g.IsNull());
    ASSERT_EQ(g->NbPoles(), 4);
    for (int i = 0; i < 4; ++i) expect_close(g->Pole(i + 1), lin[i]);
}

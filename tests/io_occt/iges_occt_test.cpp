// IGES import against OpenCASCADE: files that OpenCASCADE writes come back
// with its control points, weights and knots, and files laid out here are
// parsed by both readers alike.
#include <Geom_BSplineCurve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Reader.hxx>
#include <IGESControl_Writer.hxx>
#include <IGESData_IGESModel.hxx>
#include <IGESData_TransfEntity.hxx>
#include <gp_GTrsf.hxx>
#include <IGESGeom_BSplineCurve.hxx>
#include <IGESGeom_BSplineSurface.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TColgp_Array2OfPnt.hxx>

#include <cmath>
#include <vector>

#include "io/iges_builder.hpp"
#include "io/support.hpp"

// OpenCASCADE keeps some process-wide objects until exit; they are not ours.
// The sanitizer runtime looks this up in the executable: it must be visible.
extern "C" __attribute__((visibility("default"), used)) const char *__lsan_default_suppressions() {
    return "leak:libTK\n";
}

using namespace kwt;

namespace {

// The same text parsed twice agrees to rounding; OpenCASCADE writes nine
// significant digits, which bounds the agreement with what it was given.
constexpr double kTol = 1e-12;
constexpr double kWritten = 1e-8;

// The B-spline entities of a file as OpenCASCADE's reader parses them.
struct OcctModel {
    std::vector<Handle(IGESGeom_BSplineCurve)> curves;
    std::vector<Handle(IGESGeom_BSplineSurface)> surfaces;
    explicit OcctModel(const char *path) {
        IGESControl_Controller::Init();
        IGESControl_Reader reader;
        if (reader.ReadFile(path) != IFSelect_RetDone) return;
        const Handle(IGESData_IGESModel) model = reader.IGESModel();
        for (Standard_Integer i = 1; i <= model->NbEntities(); ++i) {
            const Handle(IGESData_IGESEntity) e = model->Entity(i);
            if (auto c = Handle(IGESGeom_BSplineCurve)::DownCast(e)) curves.push_back(c);
            if (auto s = Handle(IGESGeom_BSplineSurface)::DownCast(e)) surfaces.push_back(s);
        }
    }
};

void expect_near(const ControlPoint &Pw, const gp_Pnt &P, double w, bool rational,
                 double tol = kTol) {
    Point E;
    A_euclid(Pw, &E);
    EXPECT_NEAR(E.x, P.X(), tol * (1 + std::fabs(P.X())));
    EXPECT_NEAR(E.y, P.Y(), tol * (1 + std::fabs(P.Y())));
    EXPECT_NEAR(E.z, P.Z(), tol * (1 + std::fabs(P.Z())));
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
    ASSERT_EQ(c->pol->n, g->UpperIndex());
    ASSERT_EQ(c->p, g->Degree());
    const bool rational = U_iscurr(c);
    const double scale = rational ? c->pol->Pw[0].w / g->Weight(0) : 1.0;
    for (int32_t i = 0; i <= c->pol->n; ++i)
        expect_near(c->pol->Pw[i], chained(g, g->Pole(i)), scale * g->Weight(i), rational);
    for (int32_t j = 0; j <= c->knt->m; ++j)
        EXPECT_NEAR(c->knt->U[j], g->Knot(j - g->Degree()), kTol);
}

void expect_same(const Surface *s, const Handle(IGESGeom_BSplineSurface) &g) {
    ASSERT_EQ(s->net->n, g->UpperIndexU());
    ASSERT_EQ(s->net->m, g->UpperIndexV());
    ASSERT_EQ(s->p, g->DegreeU());
    ASSERT_EQ(s->q, g->DegreeV());
    const bool rational = U_issurr(s);
    const double scale = rational ? s->net->Pw[0][0].w / g->Weight(0, 0) : 1.0;
    for (int32_t i = 0; i <= s->net->n; ++i)
        for (int32_t j = 0; j <= s->net->m; ++j)
            expect_near(s->net->Pw[i][j], chained(g, g->Pole(i, j)), scale * g->Weight(i, j),
                        rational);
    for (int32_t j = 0; j <= s->knu->m; ++j) EXPECT_NEAR(s->knu->U[j], g->KnotU(j - g->DegreeU()), kTol);
    for (int32_t j = 0; j <= s->knv->m; ++j) EXPECT_NEAR(s->knv->U[j], g->KnotV(j - g->DegreeV()), kTol);
}

// Poles (x y z each), weights (none: non-rational), distinct knots and their
// multiplicities of a curve, and the same per direction of a surface.
template <class A>
A real_array(const std::vector<double> &v) {
    A a(1, static_cast<int>(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) a(static_cast<int>(i) + 1) = v[i];
    return a;
}

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

Handle(Geom_BSplineSurface) rational_patch() {
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
    return new Geom_BSplineSurface(poles, weights, real_array<TColStd_Array1OfReal>({0, 1}), real_array<TColStd_Array1OfReal>({-1, 3}),
                                   um, vm, 3, 2);
}

}  // namespace

TEST(IgesOcct, FilesWrittenByOpenCascade) {
    IGESControl_Controller::Init();
    IGESControl_Writer writer("MM", 0);
    // A cubic with a double knot and a rational quadratic half circle.
    const Handle(Geom_BSplineCurve) cubic = curve({0, 0, 0, 1, 2, 0.5, 2, -1, 1, 3.25, 0.5, 0, 4, 3, -2, 5, 0, 1}, {}, {0, 0.4, 2}, {4, 2, 4}, 3),
                                    arc = curve({1, 0, 0, 1, 1, 0, 0, 1, 0, -1, 1, 0, -1, 0, 0}, {1, M_SQRT1_2, 1, M_SQRT1_2, 1}, {0, 0.5, 1}, {3, 2, 3}, 2);
    const Handle(Geom_BSplineSurface) patch = rational_patch();
    writer.AddGeom(cubic);
    writer.AddGeom(arc);
    writer.AddGeom(patch);
    writer.ComputeModel();
    TempFile file;
    ASSERT_TRUE(writer.Write(file.path()));

    const Import ours(file.read());
    ASSERT_EQ(ours.status, 0) << E_errtyp() << " " << E_errnam();
    const OcctModel theirs(file.path());
    ASSERT_EQ(ours.nc + 1, static_cast<int32_t>(theirs.curves.size()));
    ASSERT_EQ(ours.ns + 1, static_cast<int32_t>(theirs.surfaces.size()));
    ASSERT_EQ(ours.nc, 1);
    for (int32_t c = 0; c <= ours.nc; ++c) expect_same(ours.cur[c], theirs.curves[c]);
    expect_same(ours.sur[0], theirs.surfaces[0]);

    // And the geometry is the one that was written.
    EXPECT_FALSE(U_iscurr(ours.cur[0]));
    EXPECT_TRUE(U_iscurr(ours.cur[1]));
    for (int i = 1; i <= cubic->NbPoles(); ++i)
        expect_near(ours.cur[0]->pol->Pw[i - 1], cubic->Pole(i), 1.0, false, kWritten);
    for (int j = 1; j <= cubic->KnotSequence().Length(); ++j)
        EXPECT_NEAR(ours.cur[0]->knt->U[j - 1], cubic->KnotSequence()(j), kWritten);
    for (int i = 1; i <= arc->NbPoles(); ++i)
        expect_near(ours.cur[1]->pol->Pw[i - 1], arc->Pole(i), arc->Weight(i), true, kWritten);
    for (int i = 1; i <= patch->NbUPoles(); ++i)
        for (int j = 1; j <= patch->NbVPoles(); ++j)
            expect_near(ours.sur[0]->net->Pw[i - 1][j - 1], patch->Pole(i, j), patch->Weight(i, j),
                        true, kWritten);
    EXPECT_EQ(ours.sur[0]->knv->U[0], -1.0);
}

// Files with named delimiters, Hollerith strings across records, D
// exponents and a chain of matrices: both readers agree on every value.
TEST(IgesOcct, FilesLaidOutHereReadAlike) {
    const std::string cubic = curve_params(3, {0, 0, 0, 0, 0.25, 0.5, 1, 1, 1, 1},
                                           {1, 2, 0.5, 1, 1.5, 1},
                                           {0, 0, 0, 1, 2, 3, 2, -1, 0.5, 3, 3, 3, 4, 0, -1, 5, 1, 1});
    // K1 = 1, K2 = 3, degrees 1 and 2, v knots with one interior knot.
    std::vector<double> grid = {1, 3, 1, 2, 0, 0, 0, 0, 0, 0, 0, 3, 3, 0, 0, 0, 0.5, 1, 1, 1};
    for (int j = 0; j <= 3; ++j)
        for (int i = 0; i <= 1; ++i) grid.push_back(1.0 + 0.5 * ((i + j) % 2));
    for (int j = 0; j <= 3; ++j)
        for (int i = 0; i <= 1; ++i) grid.insert(grid.end(), {3.0 * i, 1.0 * j, double((i * j) % 3)});
    grid.insert(grid.end(), {0, 3, 0, 1});
    const std::string patch = numbers(grid);
    const std::string turn = numbers({0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3});
    const std::string shift = numbers({1, 0, 0, 0, 0, 0, -1, 5, 0, 1, 0, -1});
    const std::vector<Entity> entities = {
        {124, turn, 3}, {124, shift}, {126, cubic, 1}, {128, patch, 3}, {126, cubic}};

    Layout odd;
    odd.pd = '/';
    odd.rd = '#';
    const std::string date = hollerith("20240101.120000");
    odd.global = "1H//1H#/" + hollerith("sender / with # marks") + "/" +
                 hollerith(std::string(90, 'n')) + "/4Hnone/4Hnone/32/38/6/308/15/1H /1.0D0/2/2HMM/1/" +
                 "0.001D0/" + date + "/1.E-07/100./1H /1H /11/0/" + date + "#";
    std::vector<Entity> translated = entities;
    for (Entity &e : translated)
        for (char &c : e.params) c = c == ',' ? '/' : c == ';' ? '#' : c;

    for (const std::string &bytes : {iges_file(entities), iges_file(translated, odd)}) {
        TempFile file(bytes);
        const Import ours(file.read());
        ASSERT_EQ(ours.status, 0) << E_errtyp() << " " << E_errnam();
        const OcctModel theirs(file.path());
        ASSERT_EQ(theirs.curves.size(), 2u);
        ASSERT_EQ(theirs.surfaces.size(), 1u);
        ASSERT_EQ(ours.nc, 1);
        ASSERT_EQ(ours.ns, 0);
        expect_same(ours.cur[0], theirs.curves[0]);
        expect_same(ours.cur[1], theirs.curves[1]);
        expect_same(ours.sur[0], theirs.surfaces[0]);
    }
}

// Lines, planes, boxes, intervals, rectangles and point arrays: constructors
// and accessors.
#include "geom/geom.hpp"

using namespace kw;

void G_makln2(Line *line, Point P, Point V, int16_t flag) { *line = Line{P, V, flag}; }
void G_makln1(Line *line, Point P, Point Q, int16_t flag) {
    *line = Line{P, Q - P, flag};
}
void G_linbre(const Line *line, Point *P, Point *V, int16_t *flag) {
    *P = line->point;
    *V = line->direction;
    *flag = line->flag;
}
void G_lindir(const Line *line, Point *V) { *V = line->direction; }
void G_linsfl(Line *line, int16_t flag) { line->flag = flag; }

void G_makpln(Plane *pln, Point P, Point N) { *pln = Plane{P, N}; }
void G_plnbre(const Plane *pln, Point *P, Point *N) {
    *P = pln->point;
    *N = pln->normal;
}
void G_plnnor(const Plane *pln, Point *N) { *N = pln->normal; }

void G_boxdef(Box *box, double xmin, double xmax, double ymin, double ymax, double zmin,
              double zmax) {
    *box = Box{xmin, xmax, ymin, ymax, zmin, zmax};
}
void G_boxbre(const Box *box, double *xmin, double *xmax, double *ymin, double *ymax,
              double *zmin, double *zmax) {
    *xmin = box->xmin;
    *xmax = box->xmax;
    *ymin = box->ymin;
    *ymax = box->ymax;
    *zmin = box->zmin;
    *zmax = box->zmax;
}

void G_makitv(Interval *itv, double a, double b) { *itv = Interval{a, b}; }
void G_itvbre(const Interval *itv, double *a, double *b) {
    *a = itv->a;
    *b = itv->b;
}
void G_makrct(Rectangle *rct, double a, double b, double c, double d) {
    *rct = Rectangle{a, b, c, d};
}
void G_rctbre(const Rectangle *rct, double *a, double *b, double *c, double *d) {
    *a = rct->a;
    *b = rct->b;
    *c = rct->c;
    *d = rct->d;
}
void G_rctitv(const Rectangle *rct, Interval *u, Interval *v) {
    *u = Interval{rct->a, rct->b};
    *v = Interval{rct->c, rct->d};
}

void G_makppl(PointPolyline *ppl, int32_t n, Point *P) { *ppl = PointPolyline{n, P}; }
void G_pplbre(const PointPolyline *ppl, int32_t *n, Point **P) {
    *n = ppl->n;
    *P = ppl->P;
}
void G_makntl(PointNet *net, int32_t n, int32_t m, Point **P) { *net = PointNet{n, m, P}; }
void G_ntlbre(const PointNet *net, int32_t *n, int32_t *m, Point ***P) {
    *n = net->n;
    *m = net->m;
    *P = net->P;
}
void G_defppl(PointPolyline *ppl, int32_t n) { ppl->n = n; }

/* A short tour of Knotwork for host developers: plain C99 against the shared
   library. Run it as `tour OUTDIR`; files it writes go to OUTDIR. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "knotwork.h"

static void report(const char *what, int16_t status) {
    if (status == 0) {
        printf("  %-48s ok\n", what);
    } else {
        printf("  %-48s failed: code %d in %s\n", what, (int)E_errtyp(), E_errnam());
        exit(1);
    }
}

/* A 3-D rational cubic with five control points and one interior knot. */
static int16_t make_curve(Curve *cur, StorageStacks *stk) {
    static const double P[5][4] = {
        {0.0, 0.0, 0.0, 1.0}, {1.0, 2.0, 0.5, 2.0}, {3.0, 2.5, 1.0, 0.5},
        {4.0, 0.5, 0.0, 1.5}, {5.0, 1.0, 2.0, 1.0}};
    static const double U[9] = {0.0, 0.0, 0.0, 0.0, 0.5, 1.0, 1.0, 1.0, 1.0};
    int32_t n, m, i;
    int16_t p;
    ControlPoint *Pw;
    double *knots;

    U_inicur(cur);
    if (U_curchk(cur, 4, 3, 8, "TOUR", stk)) return 1;
    U_curbre(cur, &n, &Pw, &p, &m, &knots);
    for (i = 0; i <= n; i++) {
        ControlPoint C;
        A_initcp(P[i][0], P[i][1], P[i][2], P[i][3], &C);
        A_weight(C, &Pw[i]); /* Cartesian point and weight -> homogeneous */
    }
    for (i = 0; i <= m; i++) knots[i] = U[i];
    return 0;
}

/* A bicubic patch over a 4 x 4 grid, non-rational. */
static int16_t make_surface(Surface *sur, StorageStacks *stk) {
    int32_t n, m, r, s, i, j;
    int16_t p, q;
    ControlPoint **Pw;
    double *U, *V;

    U_inisur(sur);
    if (U_surchk(sur, 3, 3, 3, 3, 7, 7, "TOUR", stk)) return 1;
    U_surbre(sur, &n, &m, &Pw, &p, &q, &r, &s, &U, &V);
    for (i = 0; i <= n; i++)
        for (j = 0; j <= m; j++)
            A_initcp((double)i, (double)j, (i == 1 || i == 2) && (j == 1 || j == 2) ? 1.5 : 0.0,
                     KW_NONRATIONAL, &Pw[i][j]);
    for (i = 0; i <= r; i++) U[i] = i < 4 ? 0.0 : 1.0;
    for (i = 0; i <= s; i++) V[i] = i < 4 ? 0.0 : 1.0;
    return 0;
}

static double distance(Point A, Point B) {
    return sqrt((A.x - B.x) * (A.x - B.x) + (A.y - B.y) * (A.y - B.y) + (A.z - B.z) * (A.z - B.z));
}

/* Evaluates the curve, inserts a knot, splits it, and checks that the
   refined curve and the two pieces trace the original. */
static void curve_tour(Curve *cur, StorageStacks *stk) {
    Curve fine, left, right;
    Point C, D[3];
    double worst = 0.0;
    int i;

    printf("\n2. Evaluating a rational curve\n");
    report("point and derivatives at u = 0.3", N_curder(cur, 0.3, KW_RIGHT, 2, D));
    N_curevn(cur, 0.3, KW_RIGHT, &C);
    printf("  C(0.3)   = (%.6f, %.6f, %.6f)\n", C.x, C.y, C.z);
    printf("  C'(0.3)  = (%.6f, %.6f, %.6f)\n", D[1].x, D[1].y, D[1].z);
    printf("  C''(0.3) = (%.6f, %.6f, %.6f)\n", D[2].x, D[2].y, D[2].z);

    U_inicur(&fine);
    U_inicur(&left);
    U_inicur(&right);
    report("insert u = 0.3 twice into a new curve", N_toocki(cur, 0.3, 2, &fine, stk, stk));
    report("split the curve at u = 0.7", N_toocsp(cur, 0.7, &left, &right, stk));
    printf("  %d control points -> %d after insertion; split into %d + %d\n", (int)cur->pol->n + 1,
           (int)fine.pol->n + 1, (int)left.pol->n + 1, (int)right.pol->n + 1);
    for (i = 0; i <= 1000; i++) {
        double u = i / 1000.0;
        Point A, B, S;
        N_curevn(cur, u, KW_RIGHT, &A);
        N_curevn(&fine, u, KW_RIGHT, &B);
        N_curevn(u <= 0.7 ? &left : &right, u, KW_RIGHT, &S);
        worst = fmax(worst, fmax(distance(A, B), distance(A, S)));
    }
    printf("  largest distance to the original over 1001 parameters: %.1e\n", worst);
}

/* A quarter cylinder of radius 2 and height 3: a rational quadratic arc in u
   swept along z in v. Its unit normal is the radial direction. */
static void surface_tour(Surface *sur, StorageStacks *stk) {
    const double arc[3][3] = {{2.0, 0.0, 1.0}, {2.0, 2.0, 0.7071067811865476}, {0.0, 2.0, 1.0}};
    static double U[6] = {0.0, 0.0, 0.0, 1.0, 1.0, 1.0}, V[4] = {0.0, 0.0, 1.0, 1.0};
    static ControlPoint net[3][2];
    ControlPoint *rows[3];
    Point d[2][2], *drows[2];
    PointMatrix SKL;
    int i, j;

    printf("\n3. A surface: points, first derivatives and normals\n");
    for (i = 0; i < 3; i++) {
        rows[i] = net[i];
        for (j = 0; j < 2; j++) {
            ControlPoint C;
            A_initcp(arc[i][0], arc[i][1], 3.0 * j, arc[i][2], &C);
            A_weight(C, &net[i][j]);
        }
    }
    drows[0] = d[0];
    drows[1] = d[1];
    report("wrap a quarter cylinder around a 3 x 2 net", U_maksu2(sur, rows, 2, 1, 2, 1, U, V, 5, 3, stk));
    report("validate it", E_surinp(sur, "TOUR"));
    M_makpma(&SKL, 1, 1, drows, KW_FULL, 1); /* caller's storage for the partials to (1, 1) */
    for (i = 0; i <= 2; i++) {
        const double u = 0.5 * i, v = 0.25;
        Point S, Su, Sv, N;
        /* mode 1 with ku == kv == 1: S, S_u and S_v */
        if (N_surevn(sur, u, v, KW_RIGHT, KW_RIGHT, &S) ||
            N_surder(sur, u, v, KW_RIGHT, KW_RIGHT, 1, 1, 1, &SKL) ||
            N_surnor(sur, u, v, KW_RIGHT, KW_RIGHT, &S, &Su, &Sv, &N, stk))
            report("evaluate the surface", 1);
        printf("  S(%.2f, %.2f) = (%.4f, %.4f, %.4f), distance from the axis %.12f\n", u, v,
               S.x + 0.0, S.y + 0.0, S.z + 0.0, sqrt(S.x * S.x + S.y * S.y));
        printf("    S_u = (%.4f, %.4f, %.4f)  S_v = (%.4f, %.4f, %.4f)\n", d[1][0].x + 0.0,
               d[1][0].y + 0.0, d[1][0].z + 0.0, d[0][1].x + 0.0, d[0][1].y + 0.0, d[0][1].z + 0.0);
        printf("    unit normal = (%.4f, %.4f, %.4f)\n", N.x + 0.0, N.y + 0.0, N.z + 0.0);
    }
}

/* The largest distance between two curves, and between two surfaces, over a
   grid of parameters on [0, 1] (the tour's objects are all on [0, 1]). */
static double curve_gap(const Curve *a, const Curve *b) {
    double worst = 0.0;
    int i;
    for (i = 0; i <= 1000; i++) {
        Point A, B;
        N_curevn(a, i / 1000.0, KW_RIGHT, &A);
        N_curevn(b, i / 1000.0, KW_RIGHT, &B);
        worst = fmax(worst, distance(A, B));
    }
    return worst;
}

static double surface_gap(const Surface *a, const Surface *b) {
    double worst = 0.0;
    int i, j;
    for (i = 0; i <= 50; i++)
        for (j = 0; j <= 50; j++) {
            Point A, B;
            N_surevn(a, i / 50.0, j / 50.0, KW_RIGHT, KW_RIGHT, &A);
            N_surevn(b, i / 50.0, j / 50.0, KW_RIGHT, KW_RIGHT, &B);
            worst = fmax(worst, distance(A, B));
        }
    return worst;
}

/* Writes the rational curve and the surface as text files, as one IGES file
   and as pictures; reads the files back and reports how far the read-back
   geometry lies from the original. */
static void exchange_tour(Curve *cur, Surface *sur, const char *dir, StorageStacks *stk) {
    char curtxt[1024], surtxt[1024], igs[1024], cursvg[1024], sursvg[1024];
    Curve txtcur, **back;
    Surface txtsur, **backs;
    int32_t nc, ns, nm;
    Box box;

    printf("\n4. Files\n");
    snprintf(curtxt, sizeof curtxt, "%s/curve.txt", dir);
    snprintf(surtxt, sizeof surtxt, "%s/surface.txt", dir);
    snprintf(igs, sizeof igs, "%s/tour.igs", dir);
    snprintf(cursvg, sizeof cursvg, "%s/curve.svg", dir);
    snprintf(sursvg, sizeof sursvg, "%s/surface.svg", dir);

    report("curve as a text file (U_outcur)", U_outcur(cur, curtxt));
    report("surface as a text file (U_outsur)", U_outsur(sur, surtxt));
    U_inicur(&txtcur);
    U_inisur(&txtsur);
    report("read both back, checked (U_inpcur, U_inpsur)",
           (int16_t)(U_inpcur(&txtcur, curtxt, 1, stk) || U_inpsur(&txtsur, surtxt, 1, stk)));
    printf("  largest difference after the text round trip: curve %.1e, surface %.1e\n",
           curve_gap(cur, &txtcur), surface_gap(sur, &txtsur));

    report("box of the curve (N_curbox)", N_curbox(cur, &box));
    printf("  x in [%.6f, %.6f], y in [%.6f, %.6f], z in [%.6f, %.6f]\n", box.xmin, box.xmax,
           box.ymin, box.ymax, box.zmin, box.zmax);
    report("curve and surface to one IGES file (U_lcsigs)",
           U_lcsigs(NULL, -1, &cur, 0, &sur, 0, 1e-6, igs));
    report("read the IGES file back (U_inpigs)",
           U_inpigs(&back, &nc, &backs, &ns, NULL, &nm, igs, stk));
    printf("  the file holds %d curve(s) and %d surface(s)\n", (int)nc + 1, (int)ns + 1);
    printf("  largest difference after the IGES round trip: curve %.1e, surface %.1e\n",
           curve_gap(cur, back[0]), surface_gap(sur, backs[0]));
    printf("  (coordinates and knots keep 12 decimals in IGES, weights 7)\n");

    report("picture of the curve, isometric (U_cursvg)", U_cursvg(&cur, 0, 4, 1, cursvg));
    report("picture of the surface, isometric (U_sursvg)", U_sursvg(&sur, 0, 4, 1, 4, sursvg));
    printf("\n  files written: %s\n                 %s\n                 %s\n"
           "                 %s\n                 %s\n", curtxt, surtxt, igs, cursvg, sursvg);
}

int main(int argc, char **argv) {
    StorageStacks stk;
    Curve cur, copy, big;
    Surface sur, surcopy, cylinder;
    int32_t n, m;
    const char *dir = argc > 1 ? argv[1] : ".";

    printf("Knotwork tour\n\n1. Records on a storage context\n");
    N_inurbs(&stk);
    report("make a rational cubic curve (5 points)", make_curve(&cur, &stk));
    report("validate it (definition, weights, knots)", E_curinp(&cur, "TOUR"));
    report("make a bicubic surface (4 x 4 points)", make_surface(&sur, &stk));
    report("validate it", E_surinp(&sur, "TOUR"));

    U_inicur(&copy);
    report("copy the curve into an empty record", U_curcop(&cur, &copy, &stk));
    U_inisur(&surcopy);
    report("copy the surface", U_surcop(&sur, &surcopy, &stk));

    /* A larger record is reused without allocation, then compacted. */
    U_inicur(&big);
    report("allocate a curve of 20 points", U_getcur(&big, 19, 3, 23, &stk));
    report("copy into it (reused, counts shrink)", U_curcop(&cur, &big, &stk));
    U_curind(&big, &n, &m);
    printf("  the copy now has n = %ld, m = %ld\n", (long)n, (long)m);
    report("compact it to what the counts need", U_curcmp(&big, &stk));

    E_clrerr();
    U_inicur(&copy);
    if (U_curchk(&big, 30, 3, 34, "TOUR", &stk) == 1)
        printf("  asking the compacted curve for 31 points: code %d in %s\n", (int)E_errtyp(),
               E_errnam());

    curve_tour(&cur, &stk);
    surface_tour(&cylinder, &stk);
    exchange_tour(&cur, &cylinder, dir, &stk);

    printf("\n5. What the context holds\n");
    U_shwstk(&stk);
    U_kilcur(&big, &stk);
    U_kilsur(&surcopy, &stk);
    printf("\nafter killing the big curve's and the surface copy's parts:\n");
    U_shwstk(&stk);

    N_enurbs(&stk);
    {
        int list, left = 0;
        for (list = 0; list < KW_STACK_LISTS; list++) left += stk.head[list] != NULL;
        printf("\nafter N_enurbs, %d of the %d lists hold anything\n", left, KW_STACK_LISTS);
    }
    return 0;
}

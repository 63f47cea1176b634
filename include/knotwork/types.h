/* Knotwork: the records that cross the interface, markers, error codes, limits and tolerances. */
#ifndef KNOTWORK_TYPES_H
#define KNOTWORK_TYPES_H

#include <float.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#if defined(_WIN32)
#  if defined(KW_BUILDING)
#    define KW_API __declspec(dllexport)
#  else
#    define KW_API __declspec(dllimport)
#  endif
#else
#  define KW_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#  define KW_BEGIN_DECLS extern "C" {
#  define KW_END_DECLS }
#else
#  define KW_BEGIN_DECLS
#  define KW_END_DECLS
#endif

KW_BEGIN_DECLS

/* Counting convention: every count stored in a record is the highest index,
   never the number of elements. A polygon with n has n+1 control points, a
   knot vector with m has m+1 knots, and a curve of degree p has m = n + p + 1. */

/* A z of KW_PLANAR marks a 2-D point; a w of KW_NONRATIONAL marks a control
   point without weight, whose x, y, z are stored unweighted. Both are exact
   bit patterns, compared for equality. */
#define KW_PLANAR DBL_MAX
#define KW_NONRATIONAL (-DBL_MAX)

typedef struct Point {
    double x, y, z;
} Point;

/* Homogeneous form: x, y, z hold w times the Cartesian coordinates. */
typedef struct ControlPoint {
    double x, y, z, w;
} ControlPoint;

typedef struct KnotVector {
    int32_t m;  /* highest knot index */
    double *U;  /* m+1 knots */
} KnotVector;

typedef struct ControlPolygon {
    int32_t n;         /* highest control-point index */
    ControlPoint *Pw;  /* n+1 control points */
} ControlPolygon;

typedef struct ControlNet {
    int32_t n, m;       /* highest indices in u and v */
    ControlPoint **Pw;  /* (n+1) x (m+1), addressed Pw[i][j] with i in u */
} ControlNet;

typedef struct Curve {
    ControlPolygon *pol;
    int16_t p;  /* degree; -1 marks an empty record */
    KnotVector *knt;
} Curve;

typedef struct Surface {
    ControlNet *net;
    int16_t p, q;     /* degrees in u and v */
    KnotVector *knu;  /* highest index r */
    KnotVector *knv;  /* highest index s */
} Surface;

typedef struct ValueVector {
    int32_t n;
    double *v;  /* n+1 coefficients */
} ValueVector;

typedef struct ValueGrid {
    int32_t n, m;
    double **v;  /* (n+1) x (m+1) coefficients */
} ValueGrid;

/* A scalar B-spline function of one parameter. */
typedef struct CurveFunction {
    ValueVector *cvl;
    int16_t p;
    KnotVector *knt;
} CurveFunction;

/* A scalar B-spline function of two parameters. */
typedef struct SurfaceFunction {
    ValueGrid *svl;
    int16_t p, q;
    KnotVector *knu, *knv;
} SurfaceFunction;

/* Matrix storage types. A banded matrix keeps w values per row, the
   diagonal in column w/2; the other types keep m+1 columns per row. */
enum {
    KW_FULL = 0,
    KW_LOWERLEFT = 1,
    KW_UPPERRIGHT = 2,
    KW_BANDED = 3
};

typedef struct RealMatrix {
    int32_t n, m;  /* highest row and column indices */
    double **a;    /* row pointers */
    int32_t type;  /* KW_FULL ... KW_BANDED */
    int32_t w;     /* band width; positive in every allocated matrix */
} RealMatrix;

typedef struct IntegerMatrix {
    int32_t n, m;
    int32_t **a;
    int32_t type;
    int32_t w;
} IntegerMatrix;

typedef struct PointMatrix {
    int32_t n, m;
    Point **a;
    int32_t type;
    int32_t w;
} PointMatrix;

typedef struct ControlPointMatrix {
    int32_t n, m;
    ControlPoint **a;
    int32_t type;
    int32_t w;
} ControlPointMatrix;

/* One allocation on a storage context: the block and the next older node. */
typedef struct StackNode {
    void *block;
    struct StackNode *next;
} StackNode;

#define KW_STACK_LISTS 37

/* The storage context: one list of allocations per object kind, newest
   first. Zero it with N_inurbs before first use. */
typedef struct StorageStacks {
    StackNode *head[KW_STACK_LISTS];
} StorageStacks;

/* Error codes recorded in the error state (errors.h). Code 10 is never used. */
enum {
    KW_OK = 0,
    KW_ECURVE = 1,     /* curve definition inconsistent */
    KW_ESURFACE = 2,   /* surface definition inconsistent */
    KW_EDEGREE = 3,    /* degree out of range or unsupported */
    KW_EKNOTS = 4,     /* knot vector invalid */
    KW_EWEIGHT = 5,    /* weight outside [U_minwei, U_maxwei] */
    KW_EPARAM = 6,     /* parameter outside the knot range */
    KW_ESIZE = 7,      /* sizes do not fit, or an index lies outside its range */
    KW_EKNOTDIV = 8,   /* division by a zero knot difference */
    KW_ESTORAGE = 9,   /* a caller's output object is too small */
    KW_ESINGULAR = 11, /* singular or degenerate */
    KW_ENOCONV = 12,   /* an iteration did not converge */
    KW_ECASE = 13,     /* a case the routine cannot handle */
    KW_EARG = 14,      /* an input argument is invalid */
    KW_ENOMEM = 15,    /* out of memory */
    KW_EFITINDEX = 16, /* an index left its array during fitting */
    KW_EZEROVEC = 17,  /* a zero vector where a direction is needed */
    KW_EFILE = 18,     /* a file could not be opened, read or written */
    KW_ETESS = 19,     /* tessellation produced two points or fewer */
    KW_EORDER = 20,    /* derivative order above 5 */
    KW_EMULT = 21      /* a multiplicity reached the limit set by the degree */
};

/* Evaluation side: 1 from the right, 2 from the left. */
enum {
    KW_RIGHT = 1,
    KW_LEFT = 2
};

/* The fixed evaluation tables hold the basis functions of this degree. */
#define KW_MAX_DEGREE 28
/* Derivative orders accepted by the evaluators. */
#define KW_MAX_ORDER 5

/* Library-wide tolerances and limits, writable by the host. */
KW_API extern double U_tolpoi;  /* point coincidence, 1e-7 */
KW_API extern double U_minwei;  /* least weight, 0.001 */
KW_API extern double U_maxwei;  /* greatest weight, 100.0 */
KW_API extern int16_t U_maxdeg; /* greatest degree, 28 (at most KW_MAX_DEGREE) */
KW_API extern double U_tolzer;  /* general zero, 1e-12 */
KW_API extern double M_tolpiv;  /* pivot tolerance, 1e-9 */
KW_API extern double M_tolsvd;  /* relative singular-value tolerance, 6e-08 */
KW_API extern int32_t M_itesvd; /* iterations per singular value, 30 */
KW_API extern int32_t M_iteevv; /* iterations of the eigen-analysis, 30 */
KW_API extern int32_t N_itenew; /* global Newton iteration limit, 50 */

KW_END_DECLS

#endif

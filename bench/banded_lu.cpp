// Banded LU decomposition without pivoting and the substitution of three
// right sides (x, y, z), on the collocation matrices of cubic interpolation
// through 100 and 1000 points: uniform parameters, averaged knots. Each
// operation factors a fresh copy of the matrix, built once beforehand.
#include <BSplCLib.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <math_Matrix.hxx>

#include <algorithm>
#include <cmath>

#include "fixtures.hpp"

namespace {

using namespace bench;

constexpr int kDegree = 3;

// The interpolation problem: parameters, averaged clamped knots, the data.
struct Problem {
    int n;  // highest index
    std::vector<double> t, U;
    std::vector<Point> data;
    explicit Problem(int count) : n(count - 1) {
        for (int i = 0; i <= n; ++i) t.push_back(double(i) / n);
        U.assign(kDegree + 1, 0.0);
        for (int j = 1; j <= n - kDegree; ++j) {
            double sum = 0.0;
            for (int i = j; i < j + kDegree; ++i) sum += t[i];
            U.push_back(sum / kDegree);
        }
        U.insert(U.end(), kDegree + 1, 1.0);
        for (int i = 0; i <= n; ++i) data.push_back(Point{std::cos(7.0 * t[i]), std::sin(5.0 * t[i]), t[i] * t[i]});
    }
    // row(i, first, N): the basis functions N[0..3] of row i, the first at
    // column first.
    template <class Row>
    void rows(Row row) const {
        KnotVector k{int32_t(U.size()) - 1, const_cast<double *>(U.data())};
        for (int i = 0; i <= n; ++i) {
            double N[kDegree + 1];
            int32_t span;
            N_kntalb(&k, kDegree, t[i], KW_RIGHT, N, &span);
            row(i, span - kDegree, N);
        }
    }
    // The half band: the farthest column of a non-zero entry from the diagonal.
    int half() const {
        int h = 0;
        rows([&](int i, int first, const double *N) {
            for (int j = 0; j <= kDegree; ++j)
                if (N[j] != 0.0) h = std::max(h, std::abs(first + j - i));
        });
        return h;
    }
};

// Our minimal kernel: Doolittle on a band of half width h stored row by
// row (entry (i, j) at a[i (2h + 1) + j - i + h]), then the substitutions.
void kernel_solve(std::vector<double> &a, int n, int h, Point *x) {
    const int w = 2 * h + 1;
    auto at = [&](int i, int j) -> double & { return a[i * w + j - i + h]; };
    for (int k = 0; k <= n; ++k) {
        const double inv = 1.0 / at(k, k);
        for (int i = k + 1; i <= std::min(k + h, n); ++i) {
            const double f = at(i, k) *= inv;
            for (int j = k + 1; j <= std::min(k + h, n); ++j) at(i, j) -= f * at(k, j);
        }
    }
    auto less = [](Point &y, double f, const Point &z) { y = Point{y.x - f * z.x, y.y - f * z.y, y.z - f * z.z}; };
    for (int i = 1; i <= n; ++i)
        for (int p = std::max(0, i - h); p < i; ++p) less(x[i], at(i, p), x[p]);
    for (int i = n; i >= 0; --i) {
        for (int p = i + 1; p <= std::min(i + h, n); ++p) less(x[i], at(i, p), x[p]);
        const double inv = 1.0 / at(i, i);
        x[i] = Point{x[i].x * inv, x[i].y * inv, x[i].z * inv};
    }
}

void banded_cases(int count) {
    const auto *problem = new Problem(count);  // for the life of the program
    const std::string group = "banded solve/" + std::to_string(count) + " points";
    const int n = problem->n, h = problem->half(), w = 2 * h + 1;
    // The band, entry (i, j) at [i w + j - i + h], as ours and the kernel
    // keep it.
    std::vector<double> band(size_t(n + 1) * w, 0.0);
    problem->rows([&](int i, int first, const double *N) {
        for (int j = 0; j <= kDegree; ++j)
            if (std::abs(first + j - i) <= h) band[size_t(i) * w + first + j - i + h] = N[j];
    });
    add(group, "M_ludcmp+M_forbac", [problem, band, n, w](benchmark::State &state) {
        StorageStacks *stk = stacks();
        RealMatrix LU;
        M_inirma(&LU);
        std::vector<ControlPoint> x(n + 1);
        if (M_getrma(&LU, n, n, KW_BANDED, w, stk)) {
            state.SkipWithError("no memory");
            return 0;
        }
        for (int rep = 0; rep < 10; ++rep) {
            std::copy(band.begin(), band.end(), LU.a[0]);
            M_ludcmp(&LU);
            M_forbac(&LU, problem->data.data(), 1, x.data(), stk);
            keep(x[n / 2]);
        }
        U_kilr2d(LU.a, stk);
        return 10;
    });
    add(group, "kernel", [problem, band, n, h](benchmark::State &) {
        std::vector<double> LU(band.size());
        std::vector<Point> x(n + 1);
        for (int rep = 0; rep < 10; ++rep) {
            std::copy(band.begin(), band.end(), LU.begin());
            std::copy(problem->data.begin(), problem->data.end(), x.begin());
            kernel_solve(LU, n, h, x.data());
            keep(x[n / 2]);
        }
        return 10;
    });
    add(group, "OCCT", [problem, band, n, h, w](benchmark::State &) {
        // OpenCASCADE's band: entry (i, j) at column j - i + h + 1, 1-based.
        math_Matrix A(1, n + 1, 1, w), LU(1, n + 1, 1, w);
        for (int i = 0; i <= n; ++i)
            for (int c = 0; c < w; ++c) A(i + 1, c + 1) = band[size_t(i) * w + c];
        TColgp_Array1OfPnt x(1, n + 1);
        for (int rep = 0; rep < 10; ++rep) {
            LU = A;
            for (int i = 0; i <= n; ++i) x(i + 1) = gp_Pnt(problem->data[i].x, problem->data[i].y, problem->data[i].z);
            int problem_row;
            BSplCLib::FactorBandedMatrix(LU, h, h, problem_row);
            BSplCLib::SolveBandedSystem(LU, h, h, x);
            keep(x(n / 2 + 1));
        }
        return 10;
    });
}

const int registered = [] {
    banded_cases(100);
    banded_cases(1000);
    return 0;
}();

}  // namespace

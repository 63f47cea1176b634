// Knotwork from C++: the same C API, with the storage context held by an
// owner that empties it on every exit path.
#include <cstdio>

#include "knotwork.h"

namespace {

class Context {
public:
    Context() { N_inurbs(&stk_); }
    ~Context() { N_enurbs(&stk_); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;
    StorageStacks *get() { return &stk_; }

private:
    StorageStacks stk_;
};

char host_name[] = "HOST";

}  // namespace

int main() {
    Context ctx;
    Curve *line = S_getcur(1, 1, 3, ctx.get());
    if (!line) {
        std::printf("out of memory: %s\n", E_errnam());
        return 1;
    }
    A_initcp(0.0, 0.0, KW_PLANAR, KW_NONRATIONAL, &line->pol->Pw[0]);
    A_initcp(3.0, 4.0, KW_PLANAR, KW_NONRATIONAL, &line->pol->Pw[1]);
    const double U[] = {0.0, 0.0, 1.0, 1.0};
    for (int i = 0; i < 4; ++i) line->knt->U[i] = U[i];
    if (E_curinp(line, host_name)) {
        std::printf("invalid line: code %d\n", E_errtyp());
        return 1;
    }
    double length = 0.0;
    ControlPoint d;
    A_difcpt(line->pol->Pw[1], line->pol->Pw[0], &d);
    A_magcpt(d, &length);
    std::printf("a planar line of length %g, %s, %s\n", length, U_iscur3(line) ? "3-D" : "2-D",
                U_iscurr(line) ? "rational" : "non-rational");
    return 0;
}

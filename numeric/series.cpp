// The real hash table, the pseudo-random generator and Pascal's triangle.
#include <cfloat>
#include <cmath>
#include <cstring>

#include "core/storage.hpp"
#include "knotwork/numeric.h"

using namespace kw;

namespace {

// The bucket of a value: its bit pattern (-0.0 read as 0.0, which it
// equals) through the SplitMix64 finaliser, modulo the n+1 buckets.
int32_t bucket(double value, int32_t n) noexcept {
    if (value == 0.0) value = 0.0;
    uint64_t x;
    std::memcpy(&x, &value, sizeof x);
    x ^= x >> 30;
    x *= 0xbf58476d1ce4e5b9ULL;
    x ^= x >> 27;
    x *= 0x94d049bb133111ebULL;
    x ^= x >> 31;
    return static_cast<int32_t>(x % static_cast<uint64_t>(n + 1));
}

constexpr double kEnd = DBL_MAX;  // ends every bucket's list

// Binomial coefficients of row 33 are the last that fit 32 bits.
constexpr int32_t kLastPascalRow = 33;

uint32_t seed = 7;

}  // namespace

// ---- Real hash table --------------------------------------------------------

int16_t M_inrhas(double ***table, int32_t n, StorageStacks *stk) {
    static char name[] = "M_INRHAS";
    if (n < 0) return fail(KW_EARG, name);
    double **lists = S_getr1p(n, stk);
    if (!lists) return 1;
    std::fill_n(lists, n + 1, nullptr);
    *table = lists;
    return 0;
}

int16_t M_uprhas(double **table, int32_t n, double value, StorageStacks *stk) {
    static char name[] = "M_UPRHAS";
    if (n < 0 || value == kEnd || std::isnan(value)) return fail(KW_EARG, name);
    double *&list = table[bucket(value, n)];
    int32_t length = 0;
    for (; list && list[length] != kEnd; ++length)
        if (list[length] == value) return 0;
    // The list grows by one: a new array, the old one given back.
    double *grown = S_getr1d(length + 1, stk);
    if (!grown) return 1;
    if (list) std::copy_n(list, length, grown);
    grown[length] = value;
    grown[length + 1] = kEnd;
    if (list) U_kilr1d(list, stk);
    list = grown;
    return 0;
}

void M_rerhas(double *const *table, int32_t n, double *out, int32_t *k) {
    int32_t count = 0;
    for (int32_t i = 0; i <= n; ++i)
        for (const double *v = table[i]; v && *v != kEnd; ++v) {
            if (out) out[count] = *v;
            ++count;
        }
    *k = count - 1;
}

// ---- Pseudo-random numbers ----------------------------------------------------

int32_t M_inrand(void) {
    seed = seed * 1103515245u + 12345u;
    return static_cast<int32_t>((seed >> 16) % 32767u);
}

void M_serand(uint32_t s) { seed = s; }

int16_t M_fliflo(void) { return static_cast<int16_t>((M_inrand() & 1) + 1); }

// ---- Binomial coefficients ------------------------------------------------

int16_t M_pascal(int32_t *row, int32_t n) {
    static char name[] = "M_PASCAL";
    if (n < 0 || n > kLastPascalRow) return fail(KW_EARG, name);
    row[0] = 1;
    if (n == 0) return 0;
    // Entry k of the new row is entry k plus entry k-1 of the old one; the
    // first half is enough, the second is its mirror image.
    int32_t left = row[0];
    for (int32_t k = 1; k <= n / 2; ++k) {
        const int32_t old = row[k];
        row[k] = old + left;
        row[n - k] = row[k];
        left = old;
    }
    row[n] = 1;
    return 0;
}

int16_t M_pastri(int32_t **bin, int32_t n) {
    static char name[] = "M_PASTRI";
    if (n < 0 || n > kLastPascalRow) return fail(KW_EARG, name);
    for (int32_t i = 0; i <= n; ++i) {
        if (i > 0) std::copy_n(bin[i - 1], i, bin[i]);
        M_pascal(bin[i], i);
        std::fill(bin[i] + i + 1, bin[i] + n + 1, 0);
    }
    return 0;
}

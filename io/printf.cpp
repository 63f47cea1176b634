// A locale-free subset of printf, enough for the record formats of files.
#include "io/printf.hpp"

#include <cmath>
#include <cstring>

#include "io/numbers.hpp"

namespace kw::io {

namespace {

// Appends len characters right-justified in width.
bool put(char *buf, int room, int *at, const char *s, int len, int width) noexcept {
    const int pad = width > len ? width - len : 0;
    if (*at + pad + len > room) return false;
    std::memset(buf + *at, ' ', static_cast<std::size_t>(pad));
    std::memcpy(buf + *at + pad, s, static_cast<std::size_t>(len));
    *at += pad + len;
    return true;
}

int number(const char **f) noexcept {
    int v = 0;
    while (**f >= '0' && **f <= '9') v = 10 * v + (*(*f)++ - '0');
    return v;
}

}  // namespace

int format(char *buf, int room, const char *fmt, const Arg *args, int count) noexcept {
    const Arg *arg = args, *end = args + count;
    int at = 0;
    char text[kNumberRoom];
    for (const char *f = fmt; *f;) {
        if (*f != '%') {
            if (!put(buf, room, &at, f++, 1, 0)) return -1;
            continue;
        }
        ++f;
        if (*f == '%') {
            if (!put(buf, room, &at, f++, 1, 0)) return -1;
            continue;
        }
        const int width = number(&f);
        int precision = -1;
        if (*f == '.') {
            ++f;
            precision = number(&f);
        }
        while (*f == 'l' || *f == 'h') ++f;
        const char conversion = *f++;
        if (arg == end) return -1;
        const Arg &a = *arg++;
        int len;
        if (conversion == 'd' && a.kind == Arg::kWhole) {
            len = format_integer(text, a.i);
        } else if (conversion == 'f' && a.kind == Arg::kReal && std::isfinite(a.d)) {
            len = format_fixed(text, a.d, 0, precision < 0 ? 6 : precision);
        } else if (conversion == 's' && a.kind == Arg::kText) {
            const std::size_t n = std::strlen(a.s);
            if (!put(buf, room, &at, a.s, static_cast<int>(n), width)) return -1;
            continue;
        } else {
            return -1;
        }
        if (!put(buf, room, &at, text, len, width)) return -1;
    }
    return arg == end ? at : -1;
}

}  // namespace kw::io

// The operations of kind 16 that glibc provides: reading a literal and scaling.
#include "host/quad.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <locale.h>

namespace quill {

Quad string_to_fp128(const char *literal) {
    // glibc's own "C" locale: nothing is allocated, so there is nothing to free.
    const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtof128_l(literal, nullptr, c_locale);
}

int _compare_fp(const Quad &a, const Quad &b, const int &less, const int &greater,
                const int &equal) {
    const __float128 x = a;
    const __float128 y = b;
    return (less != 0 && x < y) || (greater != 0 && x > y) || (equal != 0 && x == y) ? 1 : 0;
}

Quad ldexpq(Quad x, int n) { return ldexpf128(x, n); }

} // namespace quill

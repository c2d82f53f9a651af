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

Quad ldexpq(Quad x, int n) { return ldexpf128(x, n); }

} // namespace quill

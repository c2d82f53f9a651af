// FRACTION: X brought into 0.5 up to 1, with its sign; +0.0 of zeros.
#include "numeric/formats.h"

namespace quill {
namespace {

template <class Real> Real fraction(const void *address) {
    const Bits<Real> bits = bits_at<Real>(address);
    if (passes_zero_test(bits)) return Real(0.0);
    constexpr std::int32_t of_half = Format<Real>::bias - 1;
    return with_normalised(
        bits, [](Bits<Real> normal) { return real_of(with_exponent_field(normal, of_half)); });
}

} // namespace
} // namespace quill

extern "C" {

float f90_fraction4(const float *x) { return quill::returned(quill::fraction<quill::Real4>(x)); }
double f90_fraction8(const double *x) { return quill::returned(quill::fraction<quill::Real8>(x)); }
long double f90_fraction10(const long double *x) {
    return quill::returned(quill::fraction<quill::Real10>(x));
}
f90_Real16 f90_fraction16(const f90_Real16 *x) {
    return quill::returned(quill::fraction<quill::Quad>(x));
}

} // extern "C"

// NEAREST: X and the distance to its neighbour on the side that the sign of S tells. Beside
// zero that is the smallest normal number.
#include "numeric/formats.h"

#include <algorithm>

namespace quill {
namespace {

// The distance, positive, towards the sign of s: from a power of two towards zero it is half.
template <class Real>
[[gnu::always_inline]] inline Bits<Real> distance(const Bits<Real> &bits, const Bits<Real> &s) {
    constexpr std::int32_t digits = Format<Real>::digits;
    if (passes_zero_test(bits)) return power_of_two<Real>(1);
    const std::int32_t half = has_zero_fraction(bits) && sign(bits) != sign(s) ? 1 : 0;
    const std::int32_t field = exponent_field(bits) - (digits - 1) - half;
    if (field >= 1) return power_of_two<Real>(field);
    return fraction_bit<Real>(std::max(digits - 2 + field, 0));
}

template <class Real> Real nearest(const void *address, const void *s_address) {
    const Real x = real_at<Real>(address);
    const Bits<Real> s = bits_at<Real>(s_address);
    const Real step = real_of(with_sign(distance(bits_at<Real>(address), s), sign(s)));
    if constexpr (std::is_same_v<Real, Quad>)
        return x + step;
    else
        return static_cast<Real>(extended(x) + extended(step));
}

} // namespace
} // namespace quill

extern "C" {

float f90_nearest4(const float *x, const float *s) {
    return quill::returned(quill::nearest<quill::Real4>(x, s));
}
double f90_nearest8(const double *x, const double *s) {
    return quill::returned(quill::nearest<quill::Real8>(x, s));
}
long double f90_nearest10(const long double *x, const long double *s) {
    return quill::returned(quill::nearest<quill::Real10>(x, s));
}
f90_Real16 f90_nearest16(const f90_Real16 *x, const f90_Real16 *s) {
    return quill::returned(quill::nearest<quill::Quad>(x, s));
}

} // extern "C"

// SPACING: the distance from |X| to its neighbours, at least the smallest normal number.
// Infinities and NaNs are taken by their exponent field too.
#include "numeric/formats.h"

#include <algorithm>

namespace quill {
namespace {

template <class Real> Real spacing(const void *address) {
    const std::int32_t field = exponent_field(bits_at<Real>(address)) - (Format<Real>::digits - 1);
    return real_of(power_of_two<Real>(std::max(field, 1)));
}

} // namespace
} // namespace quill

extern "C" {

float f90_spacing4(const float *x) { return quill::returned(quill::spacing<quill::Real4>(x)); }
double f90_spacing8(const double *x) { return quill::returned(quill::spacing<quill::Real8>(x)); }
long double f90_spacing10(const long double *x) {
    return quill::returned(quill::spacing<quill::Real10>(x));
}
f90_Real16 f90_spacing16(const f90_Real16 *x) {
    return quill::returned(quill::spacing<quill::Quad>(x));
}

} // extern "C"

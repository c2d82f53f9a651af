// RRSPACING: |X| over the distance to its neighbours, if X were normal; +0.0 of zeros.
#include "numeric/formats.h"

namespace quill {
namespace {

template <class Real> Real rrspacing(const void *address) {
    const Bits<Real> bits = bits_at<Real>(address);
    if (passes_zero_test(bits)) return Real(0.0);
    constexpr std::int32_t of_greatest = Format<Real>::bias + Format<Real>::digits - 1;
    return with_normalised(bits, [](Bits<Real> normal) {
        return real_of(with_sign(with_exponent_field(normal, of_greatest), 0));
    });
}

} // namespace
} // namespace quill

extern "C" {

float f90_rrspacing4(const float *x) { return quill::returned(quill::rrspacing<quill::Real4>(x)); }
double f90_rrspacing8(const double *x) {
    return quill::returned(quill::rrspacing<quill::Real8>(x));
}
long double f90_rrspacing10(const long double *x) {
    return quill::returned(quill::rrspacing<quill::Real10>(x));
}
f90_Real16 f90_rrspacing16(const f90_Real16 *x) {
    return quill::returned(quill::rrspacing<quill::Quad>(x));
}

} // extern "C"

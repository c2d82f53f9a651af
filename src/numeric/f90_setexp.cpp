// SET_EXPONENT: the fraction of X with the exponent I. What becomes subnormal is rounded as by
// the C library, but truncated in kind 4.
#include "numeric/formats.h"

namespace quill {
namespace {

// A normal number with another exponent field.
template <class Real> Real with_field(const Bits<Real> &normal, std::int32_t field) {
    if (field >= 1) return real_of(with_exponent_field(normal, field));
    if constexpr (std::is_same_v<Real, Real4>)
        return real_of(truncated_to_subnormal(normal, field));
    else
        return scaled(real_of(with_exponent_field(normal, 1)), field - 1);
}

template <class Real> Real set_exponent(const void *address, const std::int32_t *exponent) {
    const Bits<Real> bits = bits_at<Real>(address);
    if (passes_zero_test(bits)) return real_of(bits);
    const std::int32_t field = within_reach(*exponent) + Format<Real>::bias - 1;
    if (field >= all_ones<Real>) return real_of(with_sign(infinity<Real>(), sign(bits)));
    return with_normalised(bits, [=](Bits<Real> normal) { return with_field(normal, field); });
}

} // namespace
} // namespace quill

extern "C" {

float f90_setexp4(const float *x, const std::int32_t *i) {
    return quill::returned(quill::set_exponent<quill::Real4>(x, i));
}
double f90_setexp8(const double *x, const std::int32_t *i) {
    return quill::returned(quill::set_exponent<quill::Real8>(x, i));
}
long double f90_setexp10(const long double *x, const std::int32_t *i) {
    return quill::returned(quill::set_exponent<quill::Real10>(x, i));
}
f90_Real16 f90_setexp16(const f90_Real16 *x, const std::int32_t *i) {
    return quill::returned(quill::set_exponent<quill::Quad>(x, i));
}

} // extern "C"

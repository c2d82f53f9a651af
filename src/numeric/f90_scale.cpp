// SCALE: X times 2 to the power I. What becomes subnormal is rounded as by the C library, but
// truncated in kind 4.
#include "numeric/formats.h"

namespace quill {
namespace {

// Of subnormal x the exponent field of a normal result counts from the top bit of the fraction.
Real4 scaled_subnormal(const Bits<Real4> &x, std::int32_t i) {
    const std::uint32_t fraction = x.upper & real4_fraction;
    const std::int32_t leading_zeros = __builtin_clz(fraction) - 9;
    const std::int32_t field = i - leading_zeros;
    if (field >= all_ones<Real4>) return real_of(with_sign(infinity<Real4>(), sign(x)));
    if (field >= 1) {
        const std::uint32_t rest = (fraction << (leading_zeros + 1)) & real4_fraction;
        return real_of<Real4>({sign(x) | in_exponent_field<Real4>(field) | rest, 0});
    }
    if (i >= 0) return real_of<Real4>({sign(x) | fraction << i, 0});
    if (field <= -24) return 0;
    return real_of<Real4>({sign(x) | fraction >> -i, 0});
}

// A result that is subnormal, or of a subnormal x.
template <class Real> Real scaled_beyond_normal(const Bits<Real> &bits, std::int32_t i) {
    const std::int32_t field = exponent_field(bits);
    if constexpr (!std::is_same_v<Real, Real4>)
        return scaled(real_of(bits), i);
    else if (field == 0)
        return scaled_subnormal(bits, i);
    else
        return real_of(truncated_to_subnormal(bits, field + i));
}

template <class Real> Real scale(const void *address, const std::int32_t *power) {
    const Bits<Real> bits = bits_at<Real>(address);
    const std::int32_t i = within_reach(*power);
    const std::int32_t field = exponent_field(bits);
    if (field == all_ones<Real> || i == 0 || passes_zero_test(bits)) return real_of(bits);
    if (field == 0 || field + i < 1) return scaled_beyond_normal(bits, i);
    if (field + i < all_ones<Real>) return real_of(with_exponent_field(bits, field + i));
    return real_of(with_sign(infinity<Real>(), sign(bits)));
}

} // namespace
} // namespace quill

extern "C" {

float f90_scale4(const float *x, const std::int32_t *i) {
    return quill::returned(quill::scale<quill::Real4>(x, i));
}
double f90_scale8(const double *x, const std::int32_t *i) {
    return quill::returned(quill::scale<quill::Real8>(x, i));
}
long double f90_scale10(const long double *x, const std::int32_t *i) {
    return quill::returned(quill::scale<quill::Real10>(x, i));
}
f90_Real16 f90_scale16(const f90_Real16 *x, const std::int32_t *i) {
    return quill::returned(quill::scale<quill::Quad>(x, i));
}

} // extern "C"

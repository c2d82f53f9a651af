// MODULO: the remainder with the sign of P. Of integers, and of reals of kinds 4 and 8.
#include "numeric/formats.h"

namespace quill {
namespace {

template <class Integer> Integer modulo(const void *a_address, const void *p_address) {
    using Stored = std::make_unsigned_t<Integer>;
    const auto a = static_cast<Integer>(load<Stored>(static_cast<ConstBytes>(a_address)));
    const auto p = static_cast<Integer>(load<Stored>(static_cast<ConstBytes>(p_address)));
    if (p == 0) return a;
    if (p == -1) return 0; // the quotient of the lowest integer does not exist
    const auto rest = static_cast<Integer>(a % p);
    const bool same_sign = (rest < 0) == (p < 0);
    return static_cast<Integer>(rest == 0 || same_sign ? rest : rest + p);
}

// The remainder with the sign of a, which is exact in every rounding mode. It is what the C
// library's fmod comes to after checks that are made below.
inline Real10 remainder(Real10 a, Real10 p) {
    constexpr std::uint16_t incomplete = 0x400;
    for (;;) {
        std::uint16_t status;
        asm("fprem\n\tfnstsw %1" : "+t"(a), "=a"(status) : "u"(p));
        if ((status & incomplete) == 0) return a;
    }
}

// P is a divisor if it is neither zero nor infinite nor a NaN.
template <class Real> Real real_modulo(const void *a_address, const void *p_address) {
    const Bits<Real> a = bits_at<Real>(a_address);
    const Bits<Real> p = bits_at<Real>(p_address);
    constexpr auto infinite = in_exponent_field<Real>(all_ones<Real>);
    constexpr auto quiet_nan = infinite | in_exponent_field<Real>(1) / 2;
    if (with_sign(p, 0).upper - 1 >= infinite - 1) return real_of(a);
    if (with_sign(a, 0).upper >= infinite) return real_of<Real>({sign(a) | quiet_nan, 0});
    const Real10 divisor = real_of(p);
    const Real10 rest = remainder(real_of(a), divisor);
    return static_cast<Real>(sign(a) == sign(p) || rest == 0 ? rest : rest + divisor);
}

} // namespace
} // namespace quill

extern "C" {

std::int8_t f90_moduloi1(const std::int8_t *a, const std::int8_t *p) {
    return quill::modulo<std::int8_t>(a, p);
}
std::int16_t f90_moduloi2(const std::int16_t *a, const std::int16_t *p) {
    return quill::modulo<std::int16_t>(a, p);
}
std::int32_t f90_moduloi4(const std::int32_t *a, const std::int32_t *p) {
    return quill::modulo<std::int32_t>(a, p);
}
std::int64_t f90_moduloi8(const std::int64_t *a, const std::int64_t *p) {
    return quill::modulo<std::int64_t>(a, p);
}
float f90_modulor4(const float *a, const float *p) { return quill::real_modulo<float>(a, p); }
double f90_modulor8(const double *a, const double *p) { return quill::real_modulo<double>(a, p); }

} // extern "C"

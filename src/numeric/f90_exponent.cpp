// EXPONENT: the exponent of X as a number of the model 0.1... x 2^e; 0 of zeros, and of NaNs but
// those of kind 16.
#include "numeric/formats.h"

namespace quill {
namespace {

template <class Real> std::int32_t exponent(const void *address) {
    const Bits<Real> bits = bits_at<Real>(address);
    if (passes_zero_test(bits)) return 0;
    constexpr std::int32_t of_half = Format<Real>::bias - 1;
    if (exponent_field(bits) != 0) return exponent_field(bits) - of_half;
    return exponent_field(magnified(bits)) - of_half - (Format<Real>::digits - 1);
}

} // namespace
} // namespace quill

extern "C" {

std::int32_t f90_exponent4(const float *x) { return quill::exponent<quill::Real4>(x); }
std::int32_t f90_exponent8(const double *x) { return quill::exponent<quill::Real8>(x); }
std::int32_t f90_exponent10(const long double *x) { return quill::exponent<quill::Real10>(x); }
std::int32_t f90_exponent16(const f90_Real16 *x) { return quill::exponent<quill::Quad>(x); }

} // extern "C"

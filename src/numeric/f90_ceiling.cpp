// CEILING: the least integer that is not less than X.
#include "numeric/rounding.h"

extern "C" {

std::int32_t f90_ceiling4(const float *x) { return quill::ceiling<std::int32_t, quill::Real4>(x); }
std::int32_t f90_ceiling8(const double *x) { return quill::ceiling<std::int32_t, quill::Real8>(x); }
std::int32_t f90_ceiling10(const long double *x) {
    return quill::ceiling<std::int32_t, quill::Real10>(x);
}
std::int32_t f90_ceiling16(const f90_Real16 *x) {
    return quill::ceiling<std::int32_t, quill::Quad>(x);
}

std::int64_t f90_ceilingk4(const float *x) { return quill::ceiling<std::int64_t, quill::Real4>(x); }
std::int64_t f90_ceilingk8(const double *x) {
    return quill::ceiling<std::int64_t, quill::Real8>(x);
}
std::int64_t f90_ceilingk10(const long double *x) {
    return quill::ceiling<std::int64_t, quill::Real10>(x);
}
std::int64_t f90_ceilingk16(const f90_Real16 *x) {
    return quill::ceiling<std::int64_t, quill::Quad>(x);
}

std::int16_t f90_ceilingh4(const float *x) { return quill::ceiling<std::int16_t, quill::Real4>(x); }
std::int16_t f90_ceilingh8(const double *x) {
    return quill::ceiling<std::int16_t, quill::Real8>(x);
}
std::int16_t f90_ceilingh10(const long double *x) {
    return quill::ceiling<std::int16_t, quill::Real10>(x);
}
std::int16_t f90_ceilingh16(const f90_Real16 *x) {
    return quill::ceiling<std::int16_t, quill::Quad>(x);
}

} // extern "C"

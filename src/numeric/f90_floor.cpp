// FLOOR: the greatest integer that is not greater than X.
#include "numeric/rounding.h"

extern "C" {

std::int32_t f90_floor4(const float *x) { return quill::floor<std::int32_t, quill::Real4>(x); }
std::int32_t f90_floor8(const double *x) { return quill::floor<std::int32_t, quill::Real8>(x); }
std::int32_t f90_floor10(const long double *x) {
    return quill::floor<std::int32_t, quill::Real10>(x);
}
std::int32_t f90_floor16(const f90_Real16 *x) { return quill::floor<std::int32_t, quill::Quad>(x); }

std::int64_t f90_floork4(const float *x) { return quill::floor<std::int64_t, quill::Real4>(x); }
std::int64_t f90_floork8(const double *x) { return quill::floor<std::int64_t, quill::Real8>(x); }
std::int64_t f90_floork10(const long double *x) {
    return quill::floor<std::int64_t, quill::Real10>(x);
}
std::int64_t f90_floork16(const f90_Real16 *x) {
    return quill::floor<std::int64_t, quill::Quad>(x);
}

std::int16_t f90_floorh4(const float *x) { return quill::floor<std::int16_t, quill::Real4>(x); }
std::int16_t f90_floorh8(const double *x) { return quill::floor<std::int16_t, quill::Real8>(x); }
std::int16_t f90_floorh10(const long double *x) {
    return quill::floor<std::int16_t, quill::Real10>(x);
}
std::int16_t f90_floorh16(const f90_Real16 *x) {
    return quill::floor<std::int16_t, quill::Quad>(x);
}

} // extern "C"

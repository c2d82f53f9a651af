// RANDOM_NUMBER of kinds 4 and 8.
#include "random/marsaglia.h"

extern "C" {

void f90_randnum4(float *harvest) { quill::random_number<quill::Real4>(harvest); }
void f90_randnum8(double *harvest) { quill::random_number<quill::Real8>(harvest); }
void f90_randnum4a(float *harvest, std::int32_t count) {
    quill::random_numbers<quill::Real4>(harvest, count);
}
void f90_randnum8a(double *harvest, std::int32_t count) {
    quill::random_numbers<quill::Real8>(harvest, count);
}

} // extern "C"

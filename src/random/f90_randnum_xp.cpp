// RANDOM_NUMBER of kinds 10 and 16.
#include "random/marsaglia.h"

extern "C" {

void f90_randnum10(long double *harvest) { quill::random_number<quill::Real10>(harvest); }
void f90_randnum16(f90_Real16 *harvest) { quill::random_number<quill::Real16>(harvest); }
void f90_randnum10a(long double *harvest, std::int32_t count) {
    quill::random_numbers<quill::Real10>(harvest, count);
}
void f90_randnum16a(f90_Real16 *harvest, std::int32_t count) {
    quill::random_numbers<quill::Real16>(harvest, count);
}

} // extern "C"

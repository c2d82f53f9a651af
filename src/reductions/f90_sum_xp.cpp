// SUM of the kinds wider than 8: the 80-bit extended format and kind 16.
#include "reductions/sum.h"

extern "C" {

void f90_sumr10(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Real10>>(list); }
void f90_sumr16(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Real16>>(list); }
void f90_sumc20(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Complex20>>(list); }
void f90_sumc32(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Complex32>>(list); }

} // extern "C"

// SUM of integers, reals and complex numbers up to kind 8; the wider kinds stand
// in f90_sum_xp.
#include "reductions/sum.h"

extern "C" {

void f90_sumi1(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Int1>>(list); }
void f90_sumi2(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Int2>>(list); }
void f90_sumi4(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Int4>>(list); }
void f90_sumi8(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Int8>>(list); }
void f90_sumr4(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Real4>>(list); }
void f90_sumr8(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Real8>>(list); }
void f90_sumc8(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Complex8>>(list); }
void f90_sumc16(f90_ArgList *list) { quill::numeric_reduction<quill::Sum<quill::Complex16>>(list); }

} // extern "C"

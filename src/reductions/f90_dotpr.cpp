// DOT_PRODUCT of integers, logicals, reals and complex numbers up to kind 8; the
// wider kinds stand in f90_dotpr_xp.
#include "reductions/dot_product.h"

extern "C" {

void f90_dotpri1(f90_ArgList *list) { quill::dot_product<quill::IntegerDot<quill::Int1>>(list); }
void f90_dotpri2(f90_ArgList *list) { quill::dot_product<quill::IntegerDot<quill::Int2>>(list); }
void f90_dotpri4(f90_ArgList *list) { quill::dot_product<quill::IntegerDot<quill::Int4>>(list); }
void f90_dotpri8(f90_ArgList *list) { quill::dot_product<quill::IntegerDot<quill::Int8>>(list); }
void f90_dotprl1(f90_ArgList *list) { quill::dot_product<quill::LogicalDot<quill::Int1>>(list); }
void f90_dotprl2(f90_ArgList *list) { quill::dot_product<quill::LogicalDot<quill::Int2>>(list); }
void f90_dotprl4(f90_ArgList *list) { quill::dot_product<quill::LogicalDot<quill::Int4>>(list); }
void f90_dotprl8(f90_ArgList *list) { quill::dot_product<quill::LogicalDot<quill::Int8>>(list); }
void f90_dotprr4(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Real4>>(list); }
void f90_dotprr8(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Real8>>(list); }
void f90_dotprc8(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Complex8>>(list); }
void f90_dotprc16(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Complex16>>(list); }

} // extern "C"

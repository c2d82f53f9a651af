// DOT_PRODUCT of the kinds wider than 8: the 80-bit extended format and kind 16.
#include "reductions/dot_product.h"

extern "C" {

void f90_dotprr10(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Real10>>(list); }
void f90_dotprr16(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Real16>>(list); }
void f90_dotprc20(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Complex20>>(list); }
void f90_dotprc32(f90_ArgList *list) { quill::dot_product<quill::RealDot<quill::Complex32>>(list); }

} // extern "C"

// PRODUCT of the kinds wider than 8: the 80-bit extended format and kind 16.
#include "reductions/product.h"

extern "C" {

void f90_prodr10(f90_ArgList *list) {
    quill::numeric_reduction<quill::Product<quill::Real10>>(list);
}
void f90_prodr16(f90_ArgList *list) {
    quill::numeric_reduction<quill::Product<quill::Real16>>(list);
}
void f90_prodc20(f90_ArgList *list) {
    quill::numeric_reduction<quill::Product<quill::Complex20>>(list);
}
void f90_prodc32(f90_ArgList *list) {
    quill::numeric_reduction<quill::Product<quill::Complex32>>(list);
}

} // extern "C"

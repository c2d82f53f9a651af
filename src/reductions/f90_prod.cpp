// PRODUCT of integers, reals and complex numbers up to kind 8; the wider kinds stand
// in f90_prod_xp.
#include "reductions/product.h"

extern "C" {

void f90_prodi1(f90_ArgList *list) { quill::numeric_reduction<quill::Product<quill::Int1>>(list); }
void f90_prodi2(f90_ArgList *list) { quill::numeric_reduction<quill::Product<quill::Int2>>(list); }
void f90_prodi4(f90_ArgList *list) { quill::numeric_reduction<quill::Product<quill::Int4>>(list); }
void f90_prodi8(f90_ArgList *list) { quill::numeric_reduction<quill::Product<quill::Int8>>(list); }
void f90_prodr4(f90_ArgList *list) { quill::numeric_reduction<quill::Product<quill::Real4>>(list); }
void f90_prodr8(f90_ArgList *list) { quill::numeric_reduction<quill::Product<quill::Real8>>(list); }
void f90_prodc8(f90_ArgList *list) {
    quill::numeric_reduction<quill::Product<quill::Complex8>>(list);
}
void f90_prodc16(f90_ArgList *list) {
    quill::numeric_reduction<quill::Product<quill::Complex16>>(list);
}

} // extern "C"

// MAXVAL of integers and reals up to kind 8; the wider kinds stand in f90_maxval_xp.
#include "reductions/extremum.h"

extern "C" {

void f90_maxvali1(f90_ArgList *list) { quill::extremum<quill::Maximum<std::int8_t>>(list); }
void f90_maxvali2(f90_ArgList *list) { quill::extremum<quill::Maximum<std::int16_t>>(list); }
void f90_maxvali4(f90_ArgList *list) { quill::extremum<quill::Maximum<std::int32_t>>(list); }
void f90_maxvali8(f90_ArgList *list) { quill::extremum<quill::Maximum<std::int64_t>>(list); }
void f90_maxvalr4(f90_ArgList *list) { quill::extremum<quill::Maximum<quill::Real4>>(list); }
void f90_maxvalr8(f90_ArgList *list) { quill::extremum<quill::Maximum<quill::Real8>>(list); }

} // extern "C"

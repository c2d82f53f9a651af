// MINVAL of integers and reals up to kind 8; the wider kinds stand in f90_minval_xp.
#include "reductions/extremum.h"

extern "C" {

void f90_minvali1(f90_ArgList *list) { quill::extremum<quill::Minimum<std::int8_t>>(list); }
void f90_minvali2(f90_ArgList *list) { quill::extremum<quill::Minimum<std::int16_t>>(list); }
void f90_minvali4(f90_ArgList *list) { quill::extremum<quill::Minimum<std::int32_t>>(list); }
void f90_minvali8(f90_ArgList *list) { quill::extremum<quill::Minimum<std::int64_t>>(list); }
void f90_minvalr4(f90_ArgList *list) { quill::extremum<quill::Minimum<quill::Real4>>(list); }
void f90_minvalr8(f90_ArgList *list) { quill::extremum<quill::Minimum<quill::Real8>>(list); }

} // extern "C"

// MINLOC of integers and reals up to kind 8, and KMINLOC, whose positions are 64-bit
// integers; the wider kinds stand in f90_minloc_xp.
#include "reductions/location.h"

extern "C" {

void f90_minloci1(f90_ArgList *list) { quill::location<quill::Minimum<std::int8_t>>(list, false); }
void f90_minloci2(f90_ArgList *list) { quill::location<quill::Minimum<std::int16_t>>(list, false); }
void f90_minloci4(f90_ArgList *list) { quill::location<quill::Minimum<std::int32_t>>(list, false); }
void f90_minloci8(f90_ArgList *list) { quill::location<quill::Minimum<std::int64_t>>(list, false); }
void f90_minlocr4(f90_ArgList *list) { quill::location<quill::Minimum<quill::Real4>>(list, false); }
void f90_minlocr8(f90_ArgList *list) { quill::location<quill::Minimum<quill::Real8>>(list, false); }
void f90_kminloci1(f90_ArgList *list) { quill::location<quill::Minimum<std::int8_t>>(list, true); }
void f90_kminloci2(f90_ArgList *list) { quill::location<quill::Minimum<std::int16_t>>(list, true); }
void f90_kminloci4(f90_ArgList *list) { quill::location<quill::Minimum<std::int32_t>>(list, true); }
void f90_kminloci8(f90_ArgList *list) { quill::location<quill::Minimum<std::int64_t>>(list, true); }
void f90_kminlocr4(f90_ArgList *list) { quill::location<quill::Minimum<quill::Real4>>(list, true); }
void f90_kminlocr8(f90_ArgList *list) { quill::location<quill::Minimum<quill::Real8>>(list, true); }

} // extern "C"

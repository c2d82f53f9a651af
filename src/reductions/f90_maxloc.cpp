// MAXLOC of integers and reals up to kind 8, and KMAXLOC, whose positions are 64-bit
// integers; the wider kinds stand in f90_maxloc_xp.
#include "reductions/location.h"

extern "C" {

void f90_maxloci1(f90_ArgList *list) { quill::location<quill::Maximum<std::int8_t>>(list, false); }
void f90_maxloci2(f90_ArgList *list) { quill::location<quill::Maximum<std::int16_t>>(list, false); }
void f90_maxloci4(f90_ArgList *list) { quill::location<quill::Maximum<std::int32_t>>(list, false); }
void f90_maxloci8(f90_ArgList *list) { quill::location<quill::Maximum<std::int64_t>>(list, false); }
void f90_maxlocr4(f90_ArgList *list) { quill::location<quill::Maximum<quill::Real4>>(list, false); }
void f90_maxlocr8(f90_ArgList *list) { quill::location<quill::Maximum<quill::Real8>>(list, false); }
void f90_kmaxloci1(f90_ArgList *list) { quill::location<quill::Maximum<std::int8_t>>(list, true); }
void f90_kmaxloci2(f90_ArgList *list) { quill::location<quill::Maximum<std::int16_t>>(list, true); }
void f90_kmaxloci4(f90_ArgList *list) { quill::location<quill::Maximum<std::int32_t>>(list, true); }
void f90_kmaxloci8(f90_ArgList *list) { quill::location<quill::Maximum<std::int64_t>>(list, true); }
void f90_kmaxlocr4(f90_ArgList *list) { quill::location<quill::Maximum<quill::Real4>>(list, true); }
void f90_kmaxlocr8(f90_ArgList *list) { quill::location<quill::Maximum<quill::Real8>>(list, true); }

} // extern "C"

// MINVAL of the kinds wider than 8: the 80-bit extended format and kind 16.
#include "reductions/extremum.h"

extern "C" {

void f90_minvalr10(f90_ArgList *list) { quill::extremum<quill::Minimum<quill::Real10>>(list); }
void f90_minvalr16(f90_ArgList *list) { quill::extremum<quill::Minimum<quill::Real16>>(list); }

} // extern "C"

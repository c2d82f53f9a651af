// MINLOC of the kinds wider than 8: the 80-bit extended format and kind 16.
#include "reductions/location.h"

extern "C" {

void f90_minlocr10(f90_ArgList *list) {
    quill::location<quill::Minimum<quill::Real10>>(list, false);
}
void f90_minlocr16(f90_ArgList *list) {
    quill::location<quill::Minimum<quill::Real16>>(list, false);
}

} // extern "C"

// NULL: the pointer at Result no longer points anywhere.
#include "frame/records.h"

extern "C" void f90_Null(f90_ArgList *list) {
    f90_ArrDesc &pointer = quill::descriptor(list->Result);
    pointer.ZERO = pointer.BASE = nullptr;
}

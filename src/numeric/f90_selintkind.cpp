// SELECTED_INT_KIND: the least kind whose integers have R decimal digits.
#include "frame/records.h"

extern "C" void f90_selintkind(f90_ArgList *list) {
    const std::int32_t digits = quill::value(list->Arg1);
    const int kind = digits <= 2 ? 1 : digits <= 4 ? 2 : digits <= 9 ? 4 : digits <= 18 ? 8 : -1;
    list->Result.Word0 = static_cast<std::uintptr_t>(kind);
}

// SELECTED_REAL_KIND: the least of the kinds 4, 8 and 16 with a precision P and a range R;
// kind 10 is never selected. R is read whenever there is no P.
#include "frame/records.h"

#include <algorithm>

namespace quill {
namespace {

constexpr std::int32_t no_kind = 99;

std::int32_t kind_of_precision(std::int32_t digits) {
    return digits <= 6 ? 4 : digits <= 15 ? 8 : digits <= 33 ? 16 : no_kind;
}

std::int32_t kind_of_range(std::int32_t exponent) {
    return exponent <= 37 ? 4 : exponent <= 307 ? 8 : exponent <= 4932 ? 16 : no_kind;
}

std::int32_t selected(std::int32_t kind, std::int32_t otherwise) {
    return kind == no_kind ? otherwise : kind;
}

std::int32_t selected_real_kind(const f90_ArgList &list) {
    const std::int32_t by_precision = kind_of_precision(value(list.Arg1));
    if (!argument_given(list, 1)) return selected(kind_of_range(value(list.Arg2)), -2);
    if (!argument_given(list, 2)) return selected(by_precision, -1);
    return selected(std::max(by_precision, kind_of_range(value(list.Arg2))), -3);
}

} // namespace
} // namespace quill

extern "C" void f90_selrealkind(f90_ArgList *list) {
    list->Result.Word0 = static_cast<std::uintptr_t>(quill::selected_real_kind(*list));
}

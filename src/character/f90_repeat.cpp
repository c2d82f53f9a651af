// REPEAT: NCOPIES of STRING, back to back. The length of the result wraps at 32 bits; storage
// for one that does is never had.
#include "character/strings.h"
#include "frame/creation.h"
#include "frame/moves.h"

namespace quill {
namespace {

void check(const f90_ArgList &list, std::int32_t copies, std::uint32_t total) {
    if (copies < 0) f90_ArrLibError("REPEAT", 1, copies);
    if (result_given(list) && total > list.Result.Word1)
        f90_ArrLibError("REPEAT", 2, static_cast<std::int32_t>(list.Result.Word1),
                        static_cast<std::int32_t>(total));
}

void repeat(f90_ArgList *list) {
    const String string = string_in(list->Arg1);
    const std::int32_t copies = value(list->Arg2);
    const auto wanted = static_cast<std::uint32_t>(std::max(copies, 0));
    const std::uint32_t total = wanted * string.length;
    if (checks_wanted(*list)) check(*list, copies, total);
    if (!result_given(*list))
        list->Result.Word0 =
            reinterpret_cast<std::uintptr_t>(f90_getspace(storage_size(wanted, string.length)));
    list->Result.Word1 = total;
    if (total == 0) return;
    const auto to = reinterpret_cast<Bytes>(list->Result.Word0);
    copy_bytes(to, reinterpret_cast<ConstBytes>(string.at), string.length);
    copy_on(to, string.length, total);
}

} // namespace
} // namespace quill

extern "C" void f90_repeat(f90_ArgList *list) { quill::repeat(list); }

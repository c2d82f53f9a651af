// VERIFY: the first or last position of STRING whose byte is not in SET.
#include "character/character_set.h"

namespace quill {
namespace {

std::uint32_t verify(const f90_ArgList *list) {
    const String string = string_in(list->Arg1);
    const String set = string_in(list->Arg2);
    return position_by_set<false>(string, CharacterSet(set), from_the_end(*list));
}

} // namespace
} // namespace quill

extern "C" {

void f90_verify(f90_ArgList *list) { quill::answer(list, quill::verify(list)); }
void f90_kverify(f90_ArgList *list) { quill::answer_wide(list, quill::verify(list)); }

} // extern "C"

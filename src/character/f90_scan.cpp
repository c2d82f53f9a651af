// SCAN: the first or last position of STRING whose byte is in SET.
#include "character/character_set.h"

namespace quill {
namespace {

std::uint32_t scan(const f90_ArgList *list) {
    const String string = string_in(list->Arg1);
    const String set = string_in(list->Arg2);
    return position_by_set<true>(string, CharacterSet(set), from_the_end(*list));
}

} // namespace
} // namespace quill

extern "C" {

void f90_scan(f90_ArgList *list) { quill::answer(list, quill::scan(list)); }
void f90_kscan(f90_ArgList *list) { quill::answer_wide(list, quill::scan(list)); }

} // extern "C"

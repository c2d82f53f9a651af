// INDEX: the first or last place of SUBSTRING in STRING. A place is looked at more closely
// where its first and last byte are right, which is asked for sixteen places at once.
#include "character/strings.h"

#include <cstring>

namespace quill {
namespace {

struct Occurrence {
    const Byte *string;
    const Byte *substring;
    std::uint32_t last; // distance of SUBSTRING's last byte from its first

    bool at(std::uint32_t p) const {
        const Byte *place = behind(string, p);
        return *place == *substring && std::memcmp(place, substring, last + 1) == 0;
    }
    std::uint32_t sixteen(std::uint32_t p) const {
        const SixteenCharacters firsts = sixteen_at(behind(string, p));
        const SixteenCharacters lasts = sixteen_at(behind(string, p + last));
        return bits_of((firsts == *substring) & (lasts == *behind(substring, last)));
    }
};

std::uint32_t index(const f90_ArgList *list) {
    const String string = string_in(list->Arg1);
    const String substring = string_in(list->Arg2);
    const bool back = from_the_end(*list);
    if (string.length < substring.length) return 0;
    const std::uint32_t places = string.length - substring.length + 1;
    if (substring.length == 0) return back ? places : 1;
    return position(Occurrence{string.at, substring.at, substring.length - 1}, places, back);
}

} // namespace
} // namespace quill

extern "C" {

void f90_index(f90_ArgList *list) { quill::answer(list, quill::index(list)); }
void f90_kindex(f90_ArgList *list) { quill::answer_wide(list, quill::index(list)); }

} // extern "C"

// INDEX: the first or last place of SUBSTRING in STRING. A place is looked at more closely
// where its first and last byte are right, which is asked for sixteen places at once.
#include "character/strings.h"

#include <cstring>

namespace quill {
namespace {

template <class T> bool have_same_ends(const Byte *a, const Byte *b, std::uint32_t length) {
    return std::memcmp(a, b, sizeof(T)) == 0 &&
           std::memcmp(a + length - sizeof(T), b + length - sizeof(T), sizeof(T)) == 0;
}

// Whether two strings of at least one byte are equal; up to 16 bytes their ends are all of them.
inline bool are_equal(const Byte *a, const Byte *b, std::uint32_t length) {
    if (length >= 8)
        return have_same_ends<std::uint64_t>(a, b, length) &&
               (length <= 16 || std::memcmp(a, b, length) == 0);
    if (length >= 4) return have_same_ends<std::uint32_t>(a, b, length);
    if (length >= 2) return have_same_ends<std::uint16_t>(a, b, length);
    return *a == *b;
}

struct Occurrence {
    const Byte *string;
    const Byte *substring;
    std::uint32_t last; // distance of SUBSTRING's last byte from its first

    bool at(std::uint32_t p) const { return are_equal(behind(string, p), substring, last + 1); }
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

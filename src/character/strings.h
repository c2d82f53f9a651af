// Strings as records hand them over, and the search for a position in one, from either end,
// sixteen positions at a time. Lengths have no sign, and no byte outside of a string is read.
#pragma once

#include "frame/lanes.h"

#include <algorithm>
#include <emmintrin.h>

namespace quill {

using Byte = std::uint8_t;
constexpr Byte blank = 0x20;

struct String {
    const Byte *at;
    std::uint32_t length;
};

inline String string_at(const char *at, std::uint32_t length) {
    return {reinterpret_cast<const Byte *>(at), length};
}

inline String string_in(const f90_Slot &slot) {
    return {reinterpret_cast<const Byte *>(slot.Word0), slot.Word1};
}

// The byte so far behind `at`: a distance may be more than the half of all addresses, and so not
// for the arithmetic of pointers.
template <class T> T *behind(T *at, std::uint32_t distance) {
    return reinterpret_cast<T *>(reinterpret_cast<std::uintptr_t>(at) + distance);
}

// An absent BACK is false, any word but 0 true.
inline bool from_the_end(const f90_ArgList &list) {
    return argument_given(list, 3) && list.Arg3.Word0 != 0;
}

// The position is the answer; of the forms with 64-bit results in both words.
inline void answer(f90_ArgList *list, std::uint32_t position) { list->Result.Word0 = position; }
inline void answer_wide(f90_ArgList *list, std::uint32_t position) { list->Result = {position, 0}; }

// ---- Sixteen bytes ----------------------------------------------------------------

constexpr std::uint32_t at_once = 16;
using SixteenCharacters = Lanes<Byte, at_once>;

inline SixteenCharacters sixteen_at(const Byte *at) {
    return load_lanes<SixteenCharacters>(reinterpret_cast<ConstBytes>(at));
}

// A bit for each true lane of a comparison.
template <class Truth> std::uint32_t bits_of(const Truth &truth) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(truth)));
}

// ---- The search -------------------------------------------------------------------

// Positions are counted from 1, and 0 is none of them. A Match says what is looked for:
//
//   at(p)        whether it is p bytes behind the start
//   sixteen(p)   a bit for each of 16 places from p on; where it is not, there is no match

template <class Match>
[[gnu::always_inline]] inline std::uint32_t first_position(const Match &match,
                                                           std::uint32_t places) {
    if (places < at_once) {
        for (std::uint32_t p = 0; p < places; ++p)
            if (match.at(p)) return p + 1;
        return 0;
    }
    for (std::uint32_t p = 0;; p = std::min(p + at_once, places - at_once)) {
        for (std::uint32_t bits = match.sixteen(p); bits != 0; bits &= bits - 1) {
            const std::uint32_t place = p + static_cast<std::uint32_t>(__builtin_ctz(bits));
            if (match.at(place)) return place + 1;
        }
        if (p == places - at_once) return 0;
    }
}

template <class Match>
[[gnu::always_inline]] inline std::uint32_t last_position(const Match &match,
                                                          std::uint32_t places) {
    if (places < at_once) {
        for (std::uint32_t p = places; p > 0; --p)
            if (match.at(p - 1)) return p;
        return 0;
    }
    for (std::uint32_t p = places - at_once;; p = std::max(p, at_once) - at_once) {
        for (std::uint32_t bits = match.sixteen(p); bits != 0;) {
            const auto highest = 31 - static_cast<std::uint32_t>(__builtin_clz(bits));
            if (match.at(p + highest)) return p + highest + 1;
            bits ^= 1U << highest;
        }
        if (p == 0) return 0;
    }
}

template <class Match>
[[gnu::always_inline]] inline std::uint32_t position(const Match &match, std::uint32_t places,
                                                     bool from_end) {
    return from_end ? last_position(match, places) : first_position(match, places);
}

// ---- Blanks -----------------------------------------------------------------------

struct NotBlank {
    const Byte *string;

    bool at(std::uint32_t p) const { return *behind(string, p) != blank; }
    std::uint32_t sixteen(std::uint32_t p) const {
        return bits_of(sixteen_at(behind(string, p)) == blank) ^ 0xFFFFU;
    }
};

// Whether 64 bytes are all blank, which is asked first where there may be many blanks.
inline bool are_blank(const Byte *at) {
    const auto truth = (sixteen_at(at) == blank) & (sixteen_at(at + 16) == blank) &
                       (sixteen_at(at + 32) == blank) & (sixteen_at(at + 48) == blank);
    return bits_of(truth) == 0xFFFF;
}

inline std::uint32_t length_without_trailing_blanks(const String &string) {
    std::uint32_t length = string.length;
    while (length >= 64 && are_blank(behind(string.at, length - 64))) length -= 64;
    return last_position(NotBlank{string.at}, length);
}

inline std::uint32_t leading_blanks(const String &string) {
    std::uint32_t blanks = 0;
    while (string.length - blanks >= 64 && are_blank(behind(string.at, blanks))) blanks += 64;
    const std::uint32_t rest = string.length - blanks;
    const std::uint32_t first = first_position(NotBlank{behind(string.at, blanks)}, rest);
    return first == 0 ? string.length : blanks + first - 1;
}

} // namespace quill

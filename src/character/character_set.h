// What SCAN and VERIFY share: SET as a table of bits, and the search for a byte that is in it,
// or for one that is not. Where the processor shuffles bytes, sixteen are looked up at once.
#pragma once

#include "character/strings.h"
#include "frame/isa.h"

namespace quill {

// Byte c belongs to the set if bit c / 16 % 8 is set in the row of c % 16, of the second
// table for c of 128 and more.
struct CharacterSet {
    alignas(16) Byte rows[2][16] = {};

    explicit CharacterSet(const String &set) {
        for (std::uint32_t i = 0; i < set.length; ++i) {
            const unsigned c = set.at[i];
            rows[c >> 7][c & 15] |= static_cast<Byte>(1U << (c >> 4 & 7));
        }
    }
    bool contains(unsigned c) const { return (rows[c >> 7][c & 15] >> (c >> 4 & 7) & 1) != 0; }
};

// A byte that is in the set, or that is not, as `wanted` says.
template <bool wanted, bool shuffles> struct Membership {
    const Byte *string;
    const CharacterSet &set;

    bool at(std::uint32_t p) const { return set.contains(string[p]) == wanted; }

    std::uint32_t sixteen(std::uint32_t p) const {
        if constexpr (shuffles) {
            const SixteenCharacters bytes = sixteen_at(string + p);
            const SixteenCharacters low = bytes & 15;
            const SixteenCharacters high = bytes >> 4;
            const auto table = [this](int i) { return sixteen_at(set.rows[i]); };
            const SixteenCharacters row =
                high > 7 ? __builtin_shuffle(table(1), low) : __builtin_shuffle(table(0), low);
            const auto bit = numbered_lanes<Byte, 16>([](int i) { return 1 << i % 8; });
            const auto found = bits_of((row & __builtin_shuffle(bit, high)) != 0);
            return wanted ? found : found ^ 0xFFFFU;
        } else {
            std::uint32_t bits = 0;
            for (std::uint32_t i = 0; i < at_once; ++i) bits |= unsigned{at(p + i)} << i;
            return bits;
        }
    }
};

template <bool wanted> struct SetSearch {
    template <int Width>
    static void run(std::uint32_t &found, const String &string, const CharacterSet &set,
                    bool back) {
        constexpr bool shuffles = Width > 16; // AVX2 has them, SSE2 has not
        found = position(Membership<wanted, shuffles>{string.at, set}, string.length, back);
    }
};

// The position of the first or last byte of string that is in set, or that is not.
template <bool wanted>
std::uint32_t position_by_set(const String &string, const CharacterSet &set, bool back) {
    if (string.length < at_once)
        return position(Membership<wanted, false>{string.at, set}, string.length, back);
    std::uint32_t found;
    run_vectorised<SetSearch<wanted>>(found, string, set, back);
    return found;
}

} // namespace quill

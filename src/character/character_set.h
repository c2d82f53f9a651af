// What SCAN and VERIFY share: SET as a table of bits, and the search for a byte that is in it,
// or for one that is not. Where the processor shuffles bytes, sixteen are looked up at once.
#pragma once

#include "character/strings.h"
#include "frame/isa.h"

#include <immintrin.h>

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

// A bit for each of sixteen bytes that is in the set. Half of the table rows are 0 in either
// shuffle: those of bytes whose top bit is set in the index.
[[gnu::target("avx2")]] inline std::uint32_t members(const CharacterSet &set, const Byte *at) {
    const auto load = [](const Byte *from) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
    };
    const __m128i bytes = load(at);
    const __m128i row = _mm_or_si128(
        _mm_shuffle_epi8(load(set.rows[0]), bytes),
        _mm_shuffle_epi8(load(set.rows[1]), _mm_xor_si128(bytes, _mm_set1_epi8(-128))));
    const __m128i powers = _mm_set1_epi64x(static_cast<std::int64_t>(0x80402010'08040201));
    const __m128i high = _mm_and_si128(_mm_srli_epi16(bytes, 4), _mm_set1_epi8(7));
    const __m128i found = _mm_and_si128(row, _mm_shuffle_epi8(powers, high));
    return bits_of(_mm_cmpeq_epi8(found, _mm_setzero_si128())) ^ 0xFFFFU;
}

// A byte that is in the set, or that is not, as `wanted` says.
template <bool wanted, bool shuffles> struct Membership {
    const Byte *string;
    const CharacterSet &set;

    bool at(std::uint32_t p) const { return set.contains(*behind(string, p)) == wanted; }

    std::uint32_t sixteen(std::uint32_t p) const {
        if constexpr (shuffles) {
            return members(set, behind(string, p)) ^ (wanted ? 0 : 0xFFFFU);
        } else {
            std::uint32_t bits = 0;
            for (std::uint32_t i = 0; i < at_once; ++i) bits |= std::uint32_t{at(p + i)} << i;
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

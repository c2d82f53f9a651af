// What PACK and UNPACK share: a MASK's words as bits, a block of them at a time. Loops over
// elements look at bits alone, however MASK lies, and know what is still to come.
#pragma once

#include "frame/cursor.h"
#include "frame/elements.h"

#include <algorithm>
#include <emmintrin.h>

namespace quill {

// A block of a MASK: position p is bit p % 32 of word p / 32. Bits behind the last are 0.
struct Truth {
    static constexpr std::int32_t most = 1024;
    std::int32_t positions;
    std::uint32_t words[most / 32];
};

// ---- From a MASK --------------------------------------------------------------------

// Which of 32 adjacent words are not 0.
inline std::uint32_t dense_bits(ConstBytes mask) {
    const __m128i zero = _mm_setzero_si128();
    const auto false_words = [&](int i) {
        return _mm_cmpeq_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i *>(mask) + i), zero);
    };
    const auto false_bits = [&](int i) {
        const __m128i low = _mm_packs_epi32(false_words(i), false_words(i + 1));
        const __m128i high = _mm_packs_epi32(false_words(i + 2), false_words(i + 3));
        return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
    };
    return ~(false_bits(4) << 16 | false_bits(0));
}

inline std::uint32_t strided_bits(ConstBytes mask, std::ptrdiff_t step, std::int32_t count) {
    std::uint32_t bits = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        bits |= static_cast<std::uint32_t>(load<Word>(mask) != 0) << i;
        mask += step;
    }
    return bits;
}

inline void read_truth(Truth &truth, const Cursor &mask, std::int32_t positions) {
    truth.positions = positions;
    ConstBytes from = mask.at;
    for (std::int32_t first = 0; first < positions; first += 32) {
        const std::int32_t count = std::min(positions - first, 32);
        const bool dense = mask.step() == sizeof(Word) && count == 32;
        truth.words[first / 32] = dense ? dense_bits(from) : strided_bits(from, mask.step(), count);
        from += 32 * mask.step();
    }
}

// ---- Positions ------------------------------------------------------------------------

// Calls visit(position) for every true position from `first` on.
template <class Visit>
[[gnu::always_inline]] inline void for_each_true(const Truth &truth, std::int32_t first,
                                                 Visit visit) {
    std::uint32_t wanted = ~0U << first % 32;
    for (std::int32_t w = first / 32; w * 32 < truth.positions; ++w) {
        for (std::uint32_t bits = truth.words[w] & wanted; bits != 0; bits &= bits - 1)
            visit(w * 32 + __builtin_ctz(bits));
        wanted = ~0U;
    }
}

inline std::int32_t count_true(const Truth &truth) {
    std::int32_t count = 0;
    for (std::int32_t w = 0; w * 32 < truth.positions; ++w)
        count += __builtin_popcount(truth.words[w]);
    return count;
}

} // namespace quill

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
    std::int32_t trues;
    std::uint32_t words[most / 32];
};

// Where this is so, loops go from true position to true position; otherwise they take every
// position, without a branch that nobody could predict.
inline bool is_sparse(const Truth &truth) { return truth.trues < truth.positions / 4; }

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
    for (mask += count * step; count > 0; --count) {
        mask -= step;
        bits = 2 * bits + (load<Word>(mask) != 0 ? 1U : 0U);
    }
    return bits;
}

// The baseline has no instruction for this, and the compiler's stand-in is a call.
inline std::int32_t count_bits(std::uint32_t bits) {
    bits -= (bits >> 1) & 0x55555555U;
    bits = (bits & 0x33333333U) + ((bits >> 2) & 0x33333333U);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0FU;
    return static_cast<std::int32_t>((bits * 0x01010101U) >> 24);
}

inline void read_truth(Truth &truth, const Cursor &mask, std::int32_t positions) {
    truth.positions = positions;
    truth.trues = 0;
    ConstBytes from = mask.at;
    for (std::int32_t first = 0; first < positions; first += 32) {
        const std::int32_t count = std::min(positions - first, 32);
        const bool dense = mask.step() == sizeof(Word) && count == 32;
        const std::uint32_t bits =
            dense ? dense_bits(from) : strided_bits(from, mask.step(), count);
        truth.words[first / 32] = bits;
        truth.trues += count_bits(bits);
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

// The position behind the last true one.
inline std::int32_t end_of_trues(const Truth &truth) {
    std::int32_t w = (truth.positions + 31) / 32;
    while (w > 0 && truth.words[w - 1] == 0) --w;
    return w == 0 ? 0 : w * 32 - __builtin_clz(truth.words[w - 1]);
}

// Calls visit for the positions first to end - 1: with all bits set for a true one, else with
// none.
template <class Visit>
[[gnu::always_inline]] inline void for_each_position(const Truth &truth, std::int32_t first,
                                                     std::int32_t end, Visit visit) {
    for (std::int32_t w = first / 32; w * 32 < end; ++w) {
        std::uint32_t bits = truth.words[w] >> first % 32;
        const std::int32_t behind = std::min(w * 32 + 32, end);
        for (; first + 4 <= behind; first += 4) {
            for (int i = 0; i < 4; ++i) visit(-((bits >> i) & 1U));
            bits >>= 4;
        }
        for (; first < behind; ++first, bits >>= 1) visit(-(bits & 1U));
    }
}

} // namespace quill

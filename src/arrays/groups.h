// The vectors of PACK and UNPACK, for AVX2: the elements of 8 positions, brought into another
// order by a table. A group is taken whole while at least as many true positions follow it as
// it has positions: then no load or store goes beyond elements that the call is about.
#pragma once

#include "arrays/truth.h"
#include "frame/isa.h"

#include <array>
#include <immintrin.h>

namespace quill {

// ---- Groups of positions ------------------------------------------------------------

constexpr std::int32_t group = 8;

// A group's bits are a byte of the words, which have their lowest byte first.
inline std::uint32_t group_bits(const Truth &truth, std::int32_t g) {
    return reinterpret_cast<const std::uint8_t *>(truth.words)[g];
}

// Short blocks are not worth the change to wide vectors.
inline bool take_rows(const Truth &truth) { return truth.positions >= 4 * group && has_avx2(); }

// How many of the first groups can be taken whole.
[[gnu::target("avx2")]] inline std::int32_t whole_groups(const Truth &truth) {
    std::int32_t g = truth.positions / group;
    int behind = g * group == truth.positions ? 0 : __builtin_popcount(group_bits(truth, g));
    while (g > 0 && behind < group) behind += __builtin_popcount(group_bits(truth, --g));
    return g;
}

// ---- Orders ---------------------------------------------------------------------------

// For every set of true positions in a group, which place each place is filled from.
using Order = std::array<std::uint8_t, group>;
using Orders = std::array<Order, 256>;

// The same for the 4-byte lanes of longer elements, of which a vector holds fewer.
template <std::int32_t Size> constexpr auto lane_orders(const Orders &orders) {
    constexpr std::size_t lanes = Size / 4;
    std::array<Order, 1U << (group / lanes)> lane_orders{};
    for (std::size_t set = 0; set < lane_orders.size(); ++set)
        for (std::size_t i = 0; i < group; ++i)
            lane_orders[set][i] =
                static_cast<std::uint8_t>(orders[set][i / lanes] * lanes + i % lanes);
    return lane_orders;
}

// The order of a vector of elements of Size bytes for a set of its positions.
template <const Orders &orders, std::int32_t Size> const Order &order_of(std::uint32_t set) {
    if constexpr (Size > 4) {
        static constexpr auto orders_of_lanes = lane_orders<Size>(orders);
        return orders_of_lanes[set];
    } else {
        return orders[set];
    }
}

// ---- Vectors --------------------------------------------------------------------------

// Elements of Size bytes side by side; `positions` of them go by one order.
template <std::int32_t Size> struct Row {
    typedef __m256i Vector;
    static constexpr std::int32_t positions = 32 / Size;

    [[gnu::target("avx2"), gnu::always_inline]] static Vector load(ConstBytes at) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i_u *>(at));
    }
    [[gnu::target("avx2"), gnu::always_inline]] static void store(Bytes at, Vector row) {
        _mm256_storeu_si256(reinterpret_cast<__m256i_u *>(at), row);
    }
    [[gnu::target("avx2"), gnu::always_inline]] static Vector ordered(Vector row,
                                                                      const Order &order) {
        const __m128i lanes = _mm_loadl_epi64(reinterpret_cast<const __m128i_u *>(&order));
        return _mm256_permutevar8x32_epi32(row, _mm256_cvtepu8_epi32(lanes));
    }
    // `row` in the positions of set, `other` elsewhere.
    [[gnu::target("avx2"), gnu::always_inline]] static Vector chosen(std::uint32_t set, Vector row,
                                                                     Vector other) {
        const __m256i bits = Size == 4   ? _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128)
                             : Size == 8 ? _mm256_setr_epi32(1, 1, 2, 2, 4, 4, 8, 8)
                                         : _mm256_setr_epi32(1, 1, 1, 1, 2, 2, 2, 2);
        const __m256i found = _mm256_and_si256(_mm256_set1_epi32(static_cast<int>(set)), bits);
        return _mm256_blendv_epi8(other, row, _mm256_cmpeq_epi32(found, bits));
    }
};

// Of 1 or 2 bytes: a group has 8 or 16 of them.
template <std::int32_t Size>
requires(Size <= 2) struct Row<Size> {
    typedef __m128i Vector;
    static constexpr std::int32_t positions = group;

    [[gnu::target("avx2"), gnu::always_inline]] static Vector load(ConstBytes at) {
        const auto *from = reinterpret_cast<const __m128i_u *>(at);
        return Size == 1 ? _mm_loadl_epi64(from) : _mm_loadu_si128(from);
    }
    [[gnu::target("avx2"), gnu::always_inline]] static void store(Bytes at, Vector row) {
        auto *to = reinterpret_cast<__m128i_u *>(at);
        Size == 1 ? _mm_storel_epi64(to, row) : _mm_storeu_si128(to, row);
    }
    [[gnu::target("avx2"), gnu::always_inline]] static Vector ordered(Vector row,
                                                                      const Order &order) {
        const __m128i lanes = _mm_loadl_epi64(reinterpret_cast<const __m128i_u *>(&order));
        const __m128i twice = _mm_add_epi8(lanes, lanes);
        const __m128i pairs = _mm_unpacklo_epi8(twice, _mm_add_epi8(twice, _mm_set1_epi8(1)));
        return _mm_shuffle_epi8(row, Size == 1 ? lanes : pairs);
    }
    [[gnu::target("avx2"), gnu::always_inline]] static Vector chosen(std::uint32_t set, Vector row,
                                                                     Vector other) {
        const __m128i ones = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 0, 0, 0, 0, 0, 0, 0, 0);
        const __m128i bits = Size == 1 ? ones : _mm_unpacklo_epi8(ones, ones);
        const __m128i found = _mm_and_si128(_mm_set1_epi8(static_cast<char>(set)), bits);
        return _mm_blendv_epi8(other, row, _mm_cmpeq_epi8(found, bits));
    }
};

template <std::int32_t Size>
constexpr bool has_rows = Size == 1 || Size == 2 || Size == 4 || Size == 8;

} // namespace quill

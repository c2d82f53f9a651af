// Vectors of elements, for kernels whose width is a template parameter. Plain
// vector arithmetic of the compiler; no vector is narrower than 16 bytes, since
// 8-byte ones would use the x87 registers.
#pragma once

#include "frame/records.h"

#include <cstring>
#include <type_traits>
#include <utility>

namespace quill {

template <class T, int Width> struct LanesOf {
    typedef T type __attribute__((vector_size(Width)));
};
// Width bytes of T.
template <class T, int Width> using Lanes = typename LanesOf<T, Width>::type;

// The integer that numbers or selects lanes of `Size` bytes.
template <int Size>
using SignedOfSize = std::conditional_t<
    Size == 1, std::int8_t,
    std::conditional_t<Size == 2, std::int16_t,
                       std::conditional_t<Size == 4, std::int32_t, std::int64_t>>>;

// The same bytes under another type of the same size.
template <class To, class From> To same_bits(const From &from) {
    static_assert(sizeof(To) == sizeof(From));
    To to;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

template <class V> V load_lanes(ConstBytes at) {
    V lanes;
    std::memcpy(&lanes, at, sizeof lanes);
    return lanes;
}

// A vector of value(0), value(1), and so on: a constant, since value is told each
// lane's number as a constant.
template <class T, int Width, class Value> Lanes<T, Width> numbered_lanes(Value value) {
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return Lanes<T, Width>{static_cast<T>(value(i))...};
    }
    (std::make_integer_sequence<int, Width / sizeof(T)>());
}

// The lanes rotated down by `distance`.
template <int distance, class V> V rotated(const V &lanes) {
    constexpr int count = sizeof(V) / sizeof(lanes[0]);
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return __builtin_shufflevector(lanes, lanes, (i + distance) % count...);
    }
    (std::make_integer_sequence<int, count>());
}

// Each pair of lanes filled with its first one, or with its second one.
template <int which, class V> V paired(const V &lanes) {
    constexpr int count = sizeof(V) / sizeof(lanes[0]);
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return __builtin_shufflevector(lanes, lanes, i / 2 * 2 + which...);
    }
    (std::make_integer_sequence<int, count>());
}

// Lanes of a and b by turns: of their lower halves, or of their upper ones.
template <int upper, class V> V interleaved(const V &a, const V &b) {
    constexpr int count = sizeof(V) / sizeof(a[0]);
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return __builtin_shufflevector(a, b, (upper * count + i) / 2 + i % 2 * count...);
    }
    (std::make_integer_sequence<int, count>());
}

// A square of elements, as many vectors as each has lanes (four of 4 bytes, or two or four
// of 8), transposed.
template <class V> void transpose(V (&rows)[2]) {
    const V first = __builtin_shufflevector(rows[0], rows[1], 0, 2);
    rows[1] = __builtin_shufflevector(rows[0], rows[1], 1, 3);
    rows[0] = first;
}
template <class V> void transpose(V (&rows)[4]) {
    constexpr bool halves = sizeof(V) == 32; // shuffles are cheap within 16 bytes
    constexpr int one = halves ? 2 : 1;
    constexpr int other = 3 - one;
    const V a = __builtin_shufflevector(rows[0], rows[1], 0, 4, one, 4 + one);
    const V b = __builtin_shufflevector(rows[0], rows[1], other, 4 + other, 3, 7);
    const V c = __builtin_shufflevector(rows[2], rows[3], 0, 4, one, 4 + one);
    const V d = __builtin_shufflevector(rows[2], rows[3], other, 4 + other, 3, 7);
    rows[0] = __builtin_shufflevector(a, c, 0, 1, 4, 5);
    rows[halves ? 2 : 1] = __builtin_shufflevector(a, c, 2, 3, 6, 7);
    rows[halves ? 1 : 2] = __builtin_shufflevector(b, d, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(b, d, 2, 3, 6, 7);
}

// All lanes folded into one by combine: halves down to 16 bytes, then the vector
// with itself rotated.
template <class T, int Width, int distance = Width / 2 / sizeof(T), class Combine>
T fold_lanes(const Lanes<T, Width> &lanes, Combine combine) {
    if constexpr (Width > 16) {
        Lanes<T, Width / 2> halves[2];
        std::memcpy(halves, &lanes, sizeof lanes);
        return fold_lanes<T, Width / 2>(combine(halves[0], halves[1]), combine);
    } else if constexpr (distance > 0) {
        return fold_lanes<T, Width, distance / 2>(combine(lanes, rotated<distance>(lanes)),
                                                  combine);
    } else {
        return lanes[0];
    }
}

// Whether any bit of any lane is set.
template <int Width, class V> bool any_bit(const V &lanes) {
    return fold_lanes<std::uint64_t, Width>(same_bits<Lanes<std::uint64_t, Width>>(lanes),
                                            [](const auto &a, const auto &b) { return a | b; }) !=
           0;
}

} // namespace quill

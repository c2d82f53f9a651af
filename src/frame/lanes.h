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

// The two lanes of each pair exchanged.
template <class V> V swapped(const V &lanes) {
    constexpr int count = sizeof(V) / sizeof(lanes[0]);
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return __builtin_shufflevector(lanes, lanes, (i ^ 1)...);
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

// The same within each 16 bytes, where shuffles are cheap.
template <int upper, class V> V interleaved_within(const V &a, const V &b) {
    constexpr int count = sizeof(V) / sizeof(a[0]);
    constexpr int part = 16 / sizeof(a[0]);
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return __builtin_shufflevector(
            a, b, i / part * part + (upper * part + i % part) / 2 + i % 2 * count...);
    }
    (std::make_integer_sequence<int, count>());
}

// A matrix of elements, a row in each vector, transposed, so that its columns follow each
// other. Of vectors of more than 16 bytes, these are that many matrices side by side.
template <class V, int count> void transpose_within(V (&rows)[count]) {
    for (int stage = 1; stage < count; stage *= 2) {
        V next[count];
        for (int i = 0; i < count / 2; ++i) {
            next[2 * i] = interleaved_within<0>(rows[i], rows[i + count / 2]);
            next[2 * i + 1] = interleaved_within<1>(rows[i], rows[i + count / 2]);
        }
        for (int i = 0; i < count; ++i) rows[i] = next[i];
    }
}

// A square of elements, as many vectors as each has lanes, transposed: in vectors of 16
// bytes, or of four elements of 8.
template <class V, int side> void transpose(V (&rows)[side]) {
    static_assert(sizeof(V) == side * sizeof(rows[0][0]) && (sizeof(V) == 16 || side == 4));
    if constexpr (sizeof(V) == 16) {
        transpose_within(rows);
    } else { // shuffles are cheap within 16 bytes
        const V even = __builtin_shufflevector(rows[0], rows[1], 0, 4, 2, 6);
        const V odd = __builtin_shufflevector(rows[0], rows[1], 1, 5, 3, 7);
        const V next_even = __builtin_shufflevector(rows[2], rows[3], 0, 4, 2, 6);
        const V next_odd = __builtin_shufflevector(rows[2], rows[3], 1, 5, 3, 7);
        rows[0] = __builtin_shufflevector(even, next_even, 0, 1, 4, 5);
        rows[1] = __builtin_shufflevector(odd, next_odd, 0, 1, 4, 5);
        rows[2] = __builtin_shufflevector(even, next_even, 2, 3, 6, 7);
        rows[3] = __builtin_shufflevector(odd, next_odd, 2, 3, 6, 7);
    }
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

// Vectors of elements, for kernels whose width is a template parameter. Plain
// vector arithmetic of the compiler; no vector is narrower than 16 bytes, since
// 8-byte ones would use the x87 registers.
#pragma once

#include "frame/records.h"

#include <cstring>

namespace quill {

template <class T, int Width> struct LanesOf {
    typedef T type __attribute__((vector_size(Width)));
};
// Width bytes of T.
template <class T, int Width> using Lanes = typename LanesOf<T, Width>::type;

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

// Folds all lanes into `total`: halves with combine(vector, vector) down to 16
// bytes, then lane by lane with step(total, lane).
template <class T, int Width, class Total, class Combine, class Step>
Total fold_lanes(Total total, const Lanes<T, Width> &lanes, Combine combine, Step step) {
    if constexpr (Width > 16) {
        Lanes<T, Width / 2> halves[2];
        std::memcpy(halves, &lanes, sizeof lanes);
        return fold_lanes<T, Width / 2>(total, combine(halves[0], halves[1]), combine, step);
    } else {
        for (int i = 0; i < static_cast<int>(Width / sizeof(T)); ++i) total = step(total, lanes[i]);
        return total;
    }
}

// Whether any bit of any lane is set.
template <int Width, class V> bool any_bit(const V &lanes) {
    using Words = std::uint64_t;
    const auto either = [](const auto &a, const auto &b) { return a | b; };
    return fold_lanes<Words, Width>(Words{0}, same_bits<Lanes<Words, Width>>(lanes), either,
                                    either) != 0;
}

} // namespace quill

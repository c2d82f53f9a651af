// The packers of MATMUL: operands brought into the layouts that the kernels read.
// Elements are moved whole.
#pragma once

#include "matmul/operands.h"

namespace quill {

template <class T> [[gnu::always_inline]] inline void move(Bytes to, ConstBytes from) {
    store(to, load<T>(from));
}

// f90_Trans2: rows x kc elements of A as rows of kp, those of even index first, zeros
// behind the kc.
template <class T> void trans2(Bytes to, const Matrix &a, int rows, int kc, int kp) {
    const std::ptrdiff_t odd = (rows + 1) / 2 * bytes<T>(kp);
    for (int i = 0; i < rows; ++i) {
        const Bytes row = to + i / 2 * bytes<T>(kp) + (i % 2 != 0 ? odd : 0);
        for (int k = 0; k < kc; ++k) move<T>(row + bytes<T>(k), a.element(i, k));
        for (int k = kc; k < kp; ++k) store(row + bytes<T>(k), T{});
    }
}

// f90_ConvertBlock: rows x kc elements of A in groups of R rows, k after k.
template <class T, int R> void convert_block(Bytes to, const Matrix &a, int rows, int kc) {
    for (int i = 0; i < rows; i += R)
        for (int k = 0; k < kc; ++k)
            for (int r = 0; r < R; ++r, to += bytes<T>(1)) move<T>(to, a.element(i + r, k));
}

// f90_CopyBlock: kc x columns elements of B, column after column.
template <class T> void copy_block(Bytes to, const Matrix &b, int kc, int columns) {
    for (int j = 0; j < columns; ++j)
        for (int k = 0; k < kc; ++k, to += bytes<T>(1)) move<T>(to, b.element(k, j));
}

// f90_CopyVector: elements `step` bytes apart.
template <class T> void copy_vector(Bytes to, ConstBytes from, int count, std::ptrdiff_t step) {
    for (int i = 0; i < count; ++i) move<T>(to + bytes<T>(i), from + i * step);
}

// The zero that is stored. That of kind 16 is read from its literal.
template <class T> T zero() {
    if constexpr (is_complex<T>)
        return {zero<decltype(T::re)>(), zero<decltype(T::im)>()};
    else
        return number<T>(0);
}

template <class T> void clear(const Matrix &c, int rows, int columns) {
    const T element = zero<T>();
    for (int j = 0; j < columns; ++j)
        for (int i = 0; i < rows; ++i) store(c.element(i, j), element);
}

} // namespace quill

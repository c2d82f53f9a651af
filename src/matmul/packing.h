// The packers of MATMUL: operands brought into the layouts that the kernels read.
// Elements are moved whole.
#pragma once

#include "frame/isa.h"
#include "frame/lanes.h"
#include "matmul/operands.h"

#include <algorithm>

namespace quill {

template <class T> [[gnu::always_inline]] inline void move(Bytes to, ConstBytes from) {
    store(to, load<T>(from));
}

// ---- Squares ----------------------------------------------------------------

// The side of the squares of elements that registers transpose, 1 where they don't.
template <class T> constexpr int square_side(int width) {
    constexpr int size = sizeof(T);
    return size == 8 && width > 16 ? 4 : size > 1 && size <= 8 ? 16 / size : 1;
}

// Reads Side rows at from(0), from(1) ... and writes its columns to to(0), to(1) ...
template <class T, int Side, class From, class To> void move_square(From from, To to) {
    using V = Lanes<SignedOfSize<sizeof(T)>, Side *static_cast<int>(sizeof(T))>;
    V square[Side];
    for (int i = 0; i < Side; ++i) square[i] = load_lanes<V>(from(i));
    transpose(square);
    for (int i = 0; i < Side; ++i) std::memcpy(to(i), &square[i], sizeof(V));
}

// ---- Packers ----------------------------------------------------------------

// Rows of a matrix, made dense along k, where its columns are.
template <class T> struct ColumnsToRows {
    template <int Width> static void run(const Halves &to, const Matrix &a, int rows, int kc) {
        constexpr int side = square_side<T>(Width);
        int i = 0;
        if constexpr (side > 1)
            for (; rows - i >= side; i += side) {
                int k = 0;
                for (; kc - k >= side; k += side)
                    move_square<T, side>([&](int q) { return a.element(i, k + q); },
                                         [&](int q) { return row_of(to, i + q) + bytes<T>(k); });
                for (; k < kc; ++k)
                    for (int q = 0; q < side; ++q)
                        move<T>(row_of(to, i + q) + bytes<T>(k), a.element(i + q, k));
            }
        for (; i < rows; ++i)
            for (int k = 0; k < kc; ++k) move<T>(row_of(to, i) + bytes<T>(k), a.element(i, k));
    }
};

// f90_Trans2: rows x kc elements of A as rows of kp, those of even index first, zeros
// behind the kc.
template <class T> void trans2(Bytes dest, const Matrix &a, int rows, int kc, int kp) {
    const Halves to{{dest, bytes<T>(kp), bytes<T>(1)}, (rows + 1) / 2 * bytes<T>(kp)};
    if (is_vectorisable<T> && a.step1 == bytes<T>(1))
        run_at_width<ColumnsToRows<T>>(std::min(widest_vectors(), 32), to, a, rows, kc);
    else
        for (int i = 0; i < rows; ++i)
            for (int k = 0; k < kc; ++k) move<T>(row_of(to, i) + bytes<T>(k), a.element(i, k));
    for (int i = 0; i < rows; ++i)
        for (int k = kc; k < kp; ++k) store(row_of(to, i) + bytes<T>(k), T{});
}

// f90_ConvertBlock: rows x kc elements of A in groups of R rows, k after k.
template <class T, int R> void convert_block(Bytes to, const Matrix &a, int rows, int kc) {
    for (int i = 0; i < rows; i += R)
        for (int k = 0; k < kc; ++k)
            for (int r = 0; r < R; ++r, to += bytes<T>(1)) move<T>(to, a.element(i + r, k));
}

// Columns of B, kc elements each, `pitch` elements apart; f90_CopyBlock has a pitch of kc.
template <class T> void copy_columns(Bytes to, const Matrix &b, int kc, int columns, int pitch) {
    if (is_vectorisable<T> && b.step2 == bytes<T>(1)) {
        const Matrix rows{to, bytes<T>(pitch), bytes<T>(1)};
        const Matrix transposed{b.at, b.step2, b.step1};
        run_at_width<ColumnsToRows<T>>(std::min(widest_vectors(), 32), alternating(rows),
                                       transposed, columns, kc);
        return;
    }
    for (int j = 0; j < columns; ++j, to += bytes<T>(pitch)) {
        if (is_vectorisable<T> && b.step1 == bytes<T>(1))
            std::memcpy(to, b.element(0, j), sizeof(T) * static_cast<std::size_t>(kc));
        else
            for (int k = 0; k < kc; ++k) move<T>(to + bytes<T>(k), b.element(k, j));
    }
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

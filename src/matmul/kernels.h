// The plain kernels of MATMUL, each a walk over tiles: a few running sums in registers
// while k advances. They serve the wider kinds and whoever calls them directly; the
// engines of the narrower types multiply by tile.h, to the same bits.
#pragma once

#include "matmul/operands.h"

namespace quill {

// ---- Tiles ------------------------------------------------------------------

// C = A x B, or that added to C, of Rows x Columns sums over kc.
template <class T, class Form, int Rows, int Columns>
[[gnu::always_inline]] inline void tile(bool add, int kc, Matrix a, Matrix b, const Matrix &c) {
    T sums[Rows][Columns] = {};
    for (; kc > 0; --kc, a.at += a.step2, b.at += b.step1) {
        T left[Rows];
        for (int i = 0; i < Rows; ++i) left[i] = load<T>(a.element(i, 0));
        for (int j = 0; j < Columns; ++j) {
            const T right = load<T>(b.element(0, j));
            for (int i = 0; i < Rows; ++i) Form::add(sums[i][j], left[i], right);
        }
    }
    for (int i = 0; i < Rows; ++i)
        for (int j = 0; j < Columns; ++j) deliver(add, sums[i][j], c.element(i, j));
}

// ---- Matrix x matrix --------------------------------------------------------

// f90_Vector: rows 2p and 2p + 1 by columns j and j + h, h being half the columns, rounded
// up; c_pair is the step from column j of C to column j + h.
template <class T>
void vector_kernel(bool add, int kc, int columns, int rows, const Halves &b, const Halves &a,
                   const Matrix &c, std::ptrdiff_t c_pair) {
    const int half = columns / 2; // an unpaired column lies behind the first half's others
    const auto pass = [&]<int Rows>(int i) {
        const Matrix left{a.first.element(i / 2, 0), a.second, a.first.step2};
        for (int j = 0; j < half; ++j)
            tile<T, OneByOne, Rows, 2>(add, kc, left,
                                       {b.first.element(0, j), b.first.step1, b.second},
                                       {c.element(i, j), c.step1, c_pair});
        if (columns % 2 != 0)
            tile<T, OneByOne, Rows, 1>(add, kc, left, b.first.from(0, half), c.from(i, half));
    };
    for (int i = 0; i + 1 < rows; i += 2) pass.template operator()<2>(i);
    if (rows % 2 != 0) pass.template operator()<1>(rows - 1);
}

// f90_Inner2x2: rows packed in groups of R, by columns that are dense along k.
template <class T, int R>
void inner_2x2(bool add, int rows, int columns, int kc, Bytes packed, const Matrix &b,
               const Matrix &c) {
    for (int j = 0; j < columns; ++j)
        for (int i = 0; i < rows; i += R)
            tile<T, OneByOne, R, 1>(add, kc, {packed + i * bytes<T>(kc), bytes<T>(1), bytes<T>(R)},
                                    b.from(0, j), c.from(i, j));
}

// f90_Epilogue2x2: any rows, any columns, any steps.
template <class T>
void epilogue_2x2(bool add, int rows, int columns, int kc, const Matrix &a, const Matrix &b,
                  const Matrix &c) {
    for (int j = 0; j < columns; ++j)
        for (int i = 0; i < rows; ++i)
            tile<T, Finished, 1, 1>(add, kc, a.from(i, 0), b.from(0, j), c.from(i, j));
}

// ---- Vector x matrix, matrix x vector ---------------------------------------

// f90_Inner1x2 and f90_Epilogue1x2, which differ in how complex products join: four
// columns at a time. v and c are rows.
template <class T, class Form>
void kernel_1x2(bool add, int columns, int kc, const Matrix &v, const Matrix &b, const Matrix &c) {
    int j = 0;
    for (; columns - j >= 4; j += 4) tile<T, Form, 1, 4>(add, kc, v, b.from(0, j), c.from(0, j));
    for (; j < columns; ++j) tile<T, Form, 1, 1>(add, kc, v, b.from(0, j), c.from(0, j));
}

// f90_Inner2x1 and f90_Epilogue2x1: Rows rows at a time. v and c are columns.
template <class T, class Form, int Rows>
void kernel_2x1(bool add, int rows, int kc, const Matrix &a, const Matrix &v, const Matrix &c) {
    int i = 0;
    for (; rows - i >= Rows; i += Rows)
        tile<T, Form, Rows, 1>(add, kc, a.from(i, 0), v, c.from(i, 0));
    for (; i < rows; ++i) tile<T, Form, 1, 1>(add, kc, a.from(i, 0), v, c.from(i, 0));
}

// f90_Inner2x1 of kind 16: in groups of four rows the products of two k are added to
// each other first; kc is even. It always adds.
inline void inner_2x1_by_pairs(int rows, int kc, const Matrix &a, const Matrix &v,
                               const Matrix &c) {
    using T = Real16;
    const int grouped = rows / 4 * 4;
    for (int i = 0; i < grouped; ++i) {
        T sum = 0;
        for (int k = 0; k < kc; k += 2)
            sum = sum + (load<T>(a.element(i, k)) * load<T>(v.element(k, 0)) +
                         load<T>(a.element(i, k + 1)) * load<T>(v.element(k + 1, 0)));
        deliver(true, sum, c.element(i, 0));
    }
    kernel_2x1<T, OneByOne, 1>(true, rows - grouped, kc, a.from(grouped, 0), v, c.from(grouped, 0));
}

} // namespace quill

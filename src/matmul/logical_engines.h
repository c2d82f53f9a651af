// MATMUL of logicals: an element of C is true when some k has both factors true. A search
// ends at the first such k, and what lies beyond is not read; where a column of B, or the
// vector, has no true element, A is not read at all.
#pragma once

#include "matmul/operands.h"

namespace quill {

using Log1 = Int1;
using Log2 = Int2;
using Log4 = Int4;
using Log8 = Int8;

// The first true element of a line of k elements, or k.
template <class T> int first_true(ConstBytes at, std::ptrdiff_t step, int k) {
    int first = 0;
    while (first < k && load<T>(at + first * step) == 0) ++first;
    return first;
}

// C(i) for every line of A: whether it and the line `with` are both true at some k from k0.
template <class T>
void match_lines(int lines, int k0, int k, ConstBytes a, std::ptrdiff_t line, std::ptrdiff_t a_step,
                 ConstBytes with, std::ptrdiff_t with_step, Bytes c, std::ptrdiff_t c_step) {
    for (int i = 0; i < lines; ++i, a += line, c += c_step) {
        int at = k0;
        while (at < k && !(load<T>(with + at * with_step) != 0 && load<T>(a + at * a_step) != 0))
            ++at;
        store(c, static_cast<T>(at < k));
    }
}

template <class T>
void logical_2x1(int m, int k, const Matrix &a, const Matrix &v, const Matrix &c) {
    const int k0 = first_true<T>(v.at, v.step1, k);
    match_lines<T>(m, k0, k, a.at, a.step1, a.step2, v.at, v.step1, c.at, c.step1);
}

template <class T>
void logical_1x2(int n, int k, const Matrix &v, const Matrix &b, const Matrix &c) {
    const int k0 = first_true<T>(v.at, v.step2, k);
    match_lines<T>(n, k0, k, b.at, b.step2, b.step1, v.at, v.step2, c.at, c.step2);
}

template <class T>
void logical_2x2(int m, int n, int k, const Matrix &a, const Matrix &b, const Matrix &c) {
    for (int j = 0; j < n; ++j) logical_2x1<T>(m, k, a, b.from(0, j), c.from(0, j));
}

} // namespace quill

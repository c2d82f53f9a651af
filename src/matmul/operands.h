// The operands of MATMUL below its entries: matrices by address and byte steps, and
// what one product does to a running sum. Every sum has the element's type, takes its
// products by ascending k, one at a time, and joins C once, when it is finished.
#pragma once

#include "frame/elements.h"

namespace quill {

// A matrix in storage; a vector is one with one row or one column, whose step along
// the other dimension nobody reads. Steps are in bytes and of either sign. An empty one may
// have no address, hence the arithmetic without pointers.
struct Matrix {
    Bytes at;
    std::ptrdiff_t step1; // from row to row
    std::ptrdiff_t step2; // from column to column

    Bytes element(int i, int j) const {
        const std::ptrdiff_t distance = i * step1 + j * step2;
        return reinterpret_cast<Bytes>(reinterpret_cast<std::uintptr_t>(at) +
                                       static_cast<std::uintptr_t>(distance));
    }
    Matrix from(int i, int j) const { return {element(i, j), step1, step2}; }
};

// A matrix in two halves of the same steps, the second so many bytes behind the first: its
// rows of even and of odd index, or its columns up to the middle and behind it.
struct Halves {
    Matrix first;
    std::ptrdiff_t second;
};

// Elements as bytes.
template <class T> std::ptrdiff_t bytes(int elements) {
    return elements * static_cast<std::ptrdiff_t>(sizeof(T));
}

inline Bytes address(void *element) { return static_cast<Bytes>(element); }

template <class T> Matrix matrix(void *first, int stride1, int stride2) {
    return {address(first), bytes<T>(stride1), bytes<T>(stride2)};
}
template <class T> Matrix row(void *first, int stride) { return matrix<T>(first, 0, stride); }
template <class T> Matrix column(void *first, int stride) { return matrix<T>(first, stride, 0); }

inline Halves halves(const Matrix &first, void *second) {
    return {first, address(second) - first.at};
}

inline Bytes row_of(const Halves &a, int i) {
    return a.first.element(i / 2, 0) + (i % 2 != 0 ? a.second : 0);
}

// Rows of even and of odd index.
inline Halves alternating(const Matrix &a) { return {{a.at, 2 * a.step1, a.step2}, a.step1}; }

// ---- Sums -------------------------------------------------------------------

// A complex product joins its sum in one of two ways, which round differently: its
// real products one by one, or added up first. Other types know one way.
struct OneByOne {
    template <class T> [[gnu::always_inline]] static void add(T &sum, const T &a, const T &b) {
        if constexpr (std::is_integral_v<T>)
            sum = static_cast<T>(sum + 1U * a * b); // unsigned, also of narrow integers
        else
            sum = sum + a * b;
    }
    template <class Part>
    [[gnu::always_inline]] static void add(Complex<Part> &sum, const Complex<Part> &a,
                                           const Complex<Part> &b) {
        sum.re = sum.re + a.re * b.re;
        sum.re = sum.re - a.im * b.im;
        sum.im = sum.im + a.re * b.im;
        sum.im = sum.im + a.im * b.re;
    }
};
struct Finished : OneByOne {
    using OneByOne::add;
    template <class Part>
    [[gnu::always_inline]] static void add(Complex<Part> &sum, const Complex<Part> &a,
                                           const Complex<Part> &b) {
        sum.re = sum.re + (a.re * b.re - a.im * b.im);
        sum.im = sum.im + (a.re * b.im + a.im * b.re);
    }
};

// What storing a finished sum does to C: the sum alone, or the sum + old C.
template <class T> T joined(const T &sum, const T &old) { return static_cast<T>(sum + old); }
template <class Part> Complex<Part> joined(const Complex<Part> &sum, const Complex<Part> &old) {
    return {sum.re + old.re, sum.im + old.im};
}

template <class T> [[gnu::always_inline]] inline void deliver(bool add, const T &sum, Bytes c) {
    store(c, add ? joined(sum, load<T>(c)) : sum);
}

template <class T> constexpr bool is_complex = false;
template <class Part> constexpr bool is_complex<Complex<Part>> = true;

// The real that a complex number is made of; of other types the type itself.
template <class T> struct PartOf { using type = T; };
template <class Part> struct PartOf<Complex<Part>> { using type = Part; };

} // namespace quill

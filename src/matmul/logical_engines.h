// MATMUL of logicals: an element of C is true when some k has both factors true. A search
// ends at the first such k, and what lies beyond is not read; where a column of B, or the
// vector, has no true element, A is not read at all.
#pragma once

#include "frame/isa.h"
#include "frame/lanes.h"
#include "matmul/operands.h"

namespace quill {

using Log1 = Int1;
using Log2 = Int2;
using Log4 = Int4;
using Log8 = Int8;

// Each line of A, from k0 on, beside one vector; c and the lines of A step by step1.
struct Search {
    int lines;
    int k0; // where the vector has its first true element
    int k;
    Matrix a;
    ConstBytes v;
    std::ptrdiff_t v_step;
    Matrix c;
};

template <class T> bool is_true(ConstBytes at) { return load<T>(at) != 0; }

template <class T> int first_true(ConstBytes at, std::ptrdiff_t step, int k) {
    int first = 0;
    while (first < k && !is_true<T>(at + first * step)) ++first;
    return first;
}

template <class T> void search_line(const Search &s, int line) {
    int k = s.k0;
    while (k < s.k && !(is_true<T>(s.v + k * s.v_step) && is_true<T>(s.a.element(line, k)))) ++k;
    store(s.c.element(line, 0), static_cast<T>(k < s.k));
}

// Lines that are neighbours in memory go through one k after the other side by side, until
// each has its hit. Lanes with a hit are read on beside those without, which nobody can
// notice where all lie in one page.
template <class T> struct AdjacentSearch {
    static constexpr int size = sizeof(T);

    template <int Width> static void run(const Search &s) {
        constexpr int lanes = Width / size;
        int line = 0;
        for (; s.lines - line >= lanes; line += lanes) search_lanes<Width>(s, line);
        for (; line < s.lines; ++line) search_line<T>(s, line);
    }

    template <int Width> static void search_lanes(const Search &s, int line) {
        using V = Lanes<T, Width>;
        V found{};
        bool complete = false;
        for (int k = s.k0; k < s.k && !complete; ++k) {
            if (!is_true<T>(s.v + k * s.v_step)) continue;
            add_elements<Width>(found, s.a.element(line, k));
            complete = !any_bit<Width>(found == 0);
        }
        const V result = same_bits<V>(found != 0) & 1;
        if (s.c.step1 == size) {
            std::memcpy(s.c.element(line, 0), &result, sizeof result);
        } else {
            for (int i = 0; i < Width / size; ++i) store<T>(s.c.element(line + i, 0), result[i]);
        }
    }

    template <int Width> static void add_elements(Lanes<T, Width> &found, ConstBytes a) {
        constexpr std::uintptr_t page = 4096;
        if (reinterpret_cast<std::uintptr_t>(a) % page <= page - Width) {
            found |= load_lanes<Lanes<T, Width>>(a);
            return;
        }
        for (int i = 0; i < Width / size; ++i)
            if (found[i] == 0) found[i] = load<T>(a + i * size);
    }
};

template <class T> void search(const Search &s) {
    if (s.a.step1 == sizeof(T) && s.lines >= 16) return run_vectorised<AdjacentSearch<T>>(s);
    for (int line = 0; line < s.lines; ++line) search_line<T>(s, line);
}

// ---- The engines ------------------------------------------------------------

template <class T>
void logical_2x1(int m, int k, const Matrix &a, const Matrix &v, const Matrix &c) {
    search<T>({m, first_true<T>(v.at, v.step1, k), k, a, v.at, v.step1, c});
}

template <class T>
void logical_1x2(int n, int k, const Matrix &v, const Matrix &b, const Matrix &c) {
    search<T>({n,
               first_true<T>(v.at, v.step2, k),
               k,
               {b.at, b.step2, b.step1},
               v.at,
               v.step2,
               {c.at, c.step2, 0}});
}

template <class T>
void logical_2x2(int m, int n, int k, const Matrix &a, const Matrix &b, const Matrix &c) {
    for (int j = 0; j < n; ++j) logical_2x1<T>(m, k, a, b.from(0, j), c.from(0, j));
}

} // namespace quill

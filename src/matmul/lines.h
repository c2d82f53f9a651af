// The vector kernels of the types that fit vectors: every line of a matrix (a row of A, a
// column of B) times one dense vector. Lanes lie across the lines, so each sum keeps its
// order of k; integers, whose order shows in nothing, have them along a dense line.
#pragma once

#include "frame/isa.h"
#include "frame/lanes.h"
#include "matmul/operands.h"

#include <algorithm>
#include <concepts>

namespace quill {

// c, or that added to c: kc products for each line. `a` steps from line to line and along
// k, and c from line to line, by step1.
struct LineProduct {
    bool add;
    int lines;
    int kc;
    Matrix a;
    ConstBytes v;
    Matrix c;
};

// ---- Lines side by side -----------------------------------------------------

// Neighbouring lines are neighbours in memory: sums of many lines wait in the nearest
// cache while a few k at a time pass over them, which reads memory in long runs.
template <class T> struct AdjacentLines {
    static constexpr int size = sizeof(T);
    static constexpr int sums_bytes = 8192;
    static constexpr int at_once = 4; // k

    template <int Width> static void run(const LineProduct &p) {
        constexpr int most = sums_bytes / size;
        alignas(64) std::byte sums[sums_bytes];
        for (int i = 0; i < p.lines; i += most) {
            const int lines = std::min(most, p.lines - i);
            std::memset(sums, 0, static_cast<std::size_t>(lines) * sizeof(T));
            int k = 0;
            for (; p.kc - k >= at_once; k += at_once)
                pass<Width, at_once>(sums, lines, p.a.from(i, k), p.v + bytes<T>(k));
            for (; k < p.kc; ++k) pass<Width, 1>(sums, lines, p.a.from(i, k), p.v + bytes<T>(k));
            for (int line = 0; line < lines; ++line)
                deliver(p.add, load<T>(sums + line * size), p.c.element(i + line, 0));
        }
    }

    template <int Width, int N>
    static void pass(Bytes sums, int lines, const Matrix &a, ConstBytes v) {
        using V = Lanes<T, Width>;
        constexpr int per_vector = Width / size;
        T factors[N];
        for (int k = 0; k < N; ++k) factors[k] = load<T>(v + k * size);
        int line = 0;
        for (; lines - line >= per_vector; line += per_vector) {
            V sum = load_lanes<V>(sums + line * size);
#pragma GCC unroll 8
            for (int k = 0; k < N; ++k)
                sum += load_lanes<V>(a.element(0, k) + line * size) * factors[k];
            std::memcpy(sums + line * size, &sum, sizeof sum);
        }
        for (; line < lines; ++line) {
            T sum = load<T>(sums + line * size);
            for (int k = 0; k < N; ++k)
                OneByOne::add(sum, load<T>(a.element(0, k) + line * size), factors[k]);
            store(sums + line * size, sum);
        }
    }
};

// ---- Dense lines ------------------------------------------------------------

// Reals: two k of as many lines as a vector has lanes are brought together in registers,
// with one shuffle for each.
template <class T> struct DenseLines {
    static constexpr int size = sizeof(T);
    template <int Width> using V = Lanes<T, Width>;

    template <int Width> static void run(const LineProduct &p) {
        across<size == 4 ? 16 : std::min(Width, 32), 3>(p, 0); // of four lines at the most
    }

    // N vectors of lines at a time, and the rest by fewer.
    template <int Width, int N> static void across(const LineProduct &p, int line) {
        constexpr int lines = N * Width / size;
        for (; p.lines - line >= lines; line += lines) sum<Width, N>(p, line);
        if constexpr (N > 1)
            across<Width, N - 1>(p, line);
        else
            for (; line < p.lines; ++line) finish(p, line, 0, T{});
    }

    template <int Width, int N> static void sum(const LineProduct &p, int line) {
        constexpr int per_vector = Width / size;
        V<Width> s0{};
        V<Width> s1{};
        V<Width> s2{};
        ConstBytes v = p.v;
        ConstBytes a0 = p.a.element(line, 0);
        ConstBytes a1 = p.a.element(line + per_vector, 0);
        ConstBytes a2 = p.a.element(line + 2 * per_vector, 0);
        int k = 0;
        for (; p.kc - k >= 2; k += 2) {
            const T factor = load<T>(v);
            const T next = load<T>(v + size);
            add_two<Width>(s0, a0, p.a.step1, factor, next);
            if constexpr (N > 1) add_two<Width>(s1, a1, p.a.step1, factor, next);
            if constexpr (N > 2) add_two<Width>(s2, a2, p.a.step1, factor, next);
            v += 2 * size;
            a0 += 2 * size;
            a1 += 2 * size;
            a2 += 2 * size;
        }
        T sums[3 * per_vector];
        std::memcpy(sums, &s0, sizeof s0);
        std::memcpy(sums + per_vector, &s1, sizeof s1);
        std::memcpy(sums + 2 * per_vector, &s2, sizeof s2);
        for (int i = 0; i < N * per_vector; ++i) finish(p, line + i, k, sums[i]);
    }

    template <int Width>
    static void add_two(V<Width> &sum, ConstBytes a, std::ptrdiff_t line, T factor, T next) {
        if constexpr (Width / size == 2) {
            const auto w = load_lanes<V<Width>>(a);
            const auto x = load_lanes<V<Width>>(a + line);
            sum += __builtin_shufflevector(w, x, 0, 2) * factor;
            sum += __builtin_shufflevector(w, x, 1, 3) * next;
        } else if constexpr (Width == 16) {
            const auto wx = two_and_two<Width>(a, a + line);
            const auto yz = two_and_two<Width>(a + 2 * line, a + 3 * line);
            sum += __builtin_shufflevector(wx, yz, 0, 2, 4, 6) * factor;
            sum += __builtin_shufflevector(wx, yz, 1, 3, 5, 7) * next;
        } else { // shuffles within each half of a vector
            const auto wy = two_and_two<Width>(a, a + 2 * line);
            const auto xz = two_and_two<Width>(a + line, a + 3 * line);
            sum += __builtin_shufflevector(wy, xz, 0, 4, 2, 6) * factor;
            sum += __builtin_shufflevector(wy, xz, 1, 5, 3, 7) * next;
        }
    }

    // Two elements from either address, moved as one each.
    template <int Width> static V<Width> two_and_two(ConstBytes first, ConstBytes second) {
        if constexpr (size == 4) {
            return same_bits<V<Width>>(
                Lanes<Real8, Width>{load<Real8>(first), load<Real8>(second)});
        } else {
            const auto low = load_lanes<V<Width / 2>>(first);
            const auto high = load_lanes<V<Width / 2>>(second);
            return __builtin_shufflevector(low, high, 0, 1, 2, 3);
        }
    }

    static void finish(const LineProduct &p, int line, int k, T sum) {
        for (; k < p.kc; ++k)
            OneByOne::add(sum, load<T>(p.a.element(line, k)), load<T>(p.v + k * size));
        deliver(p.add, sum, p.c.element(line, 0));
    }
};

// Integers: the compiler makes vectors of this loop.
template <std::integral T> struct DenseLines<T> {
    template <int> static void run(const LineProduct &p) {
        for (int line = 0; line < p.lines; ++line) {
            ConstBytes a = p.a.element(line, 0);
            T sum = 0;
            for (int k = 0; k < p.kc; ++k)
                OneByOne::add(sum, load<T>(a + bytes<T>(k)), load<T>(p.v + bytes<T>(k)));
            deliver(p.add, sum, p.c.element(line, 0));
        }
    }
};

// ---- Calls ------------------------------------------------------------------

// Whether the lines were of a kind that vectors serve, and are done.
template <class T> bool multiply_lines(const LineProduct &p) {
    constexpr int few = 8; // so small a product is quicker without vectors
    if constexpr (is_vectorisable<T> && !is_complex<T>) {
        if (p.lines < few || p.kc < few) return false;
        const int width = widest_vectors();
        if (p.a.step1 == bytes<T>(1)) {
            run_at_width<AdjacentLines<T>>(width, p);
            return true;
        }
        if (p.a.step2 == bytes<T>(1)) {
            run_at_width<DenseLines<T>>(std::min(width, 32), p);
            return true;
        }
    }
    return false;
}

} // namespace quill

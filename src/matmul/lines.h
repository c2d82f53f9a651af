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

// ---- Factors ----------------------------------------------------------------

// Which factor of a product the vector holds: the first of v x B, the second of A x v. The
// imaginary part of a complex product is summed in an order that tells them apart.
enum class Place { First, Second };
template <class T> constexpr Place place_for(Place vector) {
    return is_complex<T> ? vector : Place::First;
}

// An element of the vector as what lanes are multiplied by.
template <class T, int Width, Place place> struct Factor {
    T value;

    static Factor at(ConstBytes v) { return {load<T>(v)}; }
    template <class V> void add(V &sum, const V &elements) const { sum += elements * value; }
};

// Lanes hold real and imaginary parts by turns. What the real part loses is added to it
// negative, which gives the same bits.
template <class Part, int Width, Place place> struct Factor<Complex<Part>, Width, place> {
    using V = Lanes<Part, Width>;
    V first;
    V second;

    static V by_turns(Part re, Part im) {
        return numbered_lanes<Part, Width>([&](int i) { return i % 2 == 0 ? re : im; });
    }
    static Factor at(ConstBytes at) {
        const auto v = load<Complex<Part>>(at);
        if constexpr (place == Place::First)
            return {by_turns(v.re, v.re), by_turns(-v.im, v.im)};
        else
            return {by_turns(v.re, v.im), by_turns(-v.im, v.re)};
    }
    void add(V &sum, const V &elements) const {
        if constexpr (place == Place::First) {
            sum += elements * first;
            sum += swapped(elements) * second;
        } else {
            sum += paired<0>(elements) * first;
            sum += paired<1>(elements) * second;
        }
    }
};

template <Place place, class T> void add_product(T &sum, const T &vector, const T &matrix) {
    if constexpr (place == Place::First)
        OneByOne::add(sum, vector, matrix);
    else
        OneByOne::add(sum, matrix, vector);
}

// ---- Lines side by side -----------------------------------------------------

// Neighbouring lines are neighbours in memory: sums of many lines wait in the nearest
// cache while a few k at a time pass over them, which reads memory in long runs.
template <class T, Place place> struct AdjacentLines {
    static constexpr int size = sizeof(T);
    static constexpr int sums_bytes = 4096;
    static constexpr int at_once = is_complex<T> ? 2 : 8; // k
    static constexpr int few = at_once / 2;

    template <int Width> static void run(const LineProduct &p) {
        constexpr int most = sums_bytes / size;
        alignas(64) std::byte sums[sums_bytes];
        for (int i = 0; i < p.lines; i += most) {
            const int lines = std::min(most, p.lines - i);
            std::memset(sums, 0, static_cast<std::size_t>(lines) * sizeof(T));
            int k = 0;
            for (; p.kc - k >= at_once; k += at_once)
                pass<Width, at_once>(sums, lines, p.a.from(i, k), p.v + bytes<T>(k));
            for (; p.kc - k >= few; k += few)
                pass<Width, few>(sums, lines, p.a.from(i, k), p.v + bytes<T>(k));
            for (; k < p.kc; ++k) pass<Width, 1>(sums, lines, p.a.from(i, k), p.v + bytes<T>(k));
            for (int line = 0; line < lines; ++line)
                deliver(p.add, load<T>(sums + line * size), p.c.element(i + line, 0));
        }
    }

    template <int Width, int N>
    static void pass(Bytes sums, int lines, const Matrix &a, ConstBytes v) {
        using V = Lanes<typename PartOf<T>::type, Width>;
        constexpr int per_vector = Width / size;
        Factor<T, Width, place> factors[N];
        for (int k = 0; k < N; ++k) factors[k] = Factor<T, Width, place>::at(v + k * size);
        int line = 0;
        for (; lines - line >= per_vector; line += per_vector) {
            V sum = load_lanes<V>(sums + line * size);
#pragma GCC unroll 8
            for (int k = 0; k < N; ++k)
                factors[k].add(sum, load_lanes<V>(a.element(0, k) + line * size));
            std::memcpy(sums + line * size, &sum, sizeof sum);
        }
        for (; line < lines; ++line) {
            T sum = load<T>(sums + line * size);
            for (int k = 0; k < N; ++k)
                add_product<place>(sum, load<T>(v + k * size),
                                   load<T>(a.element(0, k) + line * size));
            store(sums + line * size, sum);
        }
    }
};

// ---- Dense lines ------------------------------------------------------------

// As many lines as a vector has lanes are brought together in registers: of reals two k at
// a time, with one shuffle for each.
template <class T, Place place> struct DenseLines {
    static constexpr int size = sizeof(T);
    static constexpr int at_once = is_complex<T> ? 1 : 2; // k
    template <int Width> using V = Lanes<typename PartOf<T>::type, Width>;

    // Four lines in a vector at the most.
    template <int Width> static void run(const LineProduct &p) {
        across<sizeof(typename PartOf<T>::type) == 4 ? 16 : std::min(Width, 32), 3>(p, 0);
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
        for (; p.kc - k >= at_once; k += at_once) {
            const auto factor = Factor<T, Width, place>::at(v);
            const auto next = Factor<T, Width, place>::at(v + (at_once - 1) * size);
            add<Width>(s0, a0, p.a.step1, factor, next);
            if constexpr (N > 1) add<Width>(s1, a1, p.a.step1, factor, next);
            if constexpr (N > 2) add<Width>(s2, a2, p.a.step1, factor, next);
            v += at_once * size;
            a0 += at_once * size;
            a1 += at_once * size;
            a2 += at_once * size;
        }
        T sums[3 * per_vector];
        std::memcpy(sums, &s0, sizeof s0);
        std::memcpy(sums + per_vector, &s1, sizeof s1);
        std::memcpy(sums + 2 * per_vector, &s2, sizeof s2);
        for (int i = 0; i < N * per_vector; ++i) finish(p, line + i, k, sums[i]);
    }

    template <int Width>
    static void add(V<Width> &sum, ConstBytes a, std::ptrdiff_t line,
                    const Factor<T, Width, place> &factor, const Factor<T, Width, place> &next) {
        constexpr int lines = Width / size;
        if constexpr (lines == 1) {
            factor.add(sum, load_lanes<V<Width>>(a));
        } else if constexpr (is_complex<T>) {
            factor.add(sum, halves<Width>(a, a + line));
        } else if constexpr (lines == 2) {
            const auto w = load_lanes<V<Width>>(a);
            const auto x = load_lanes<V<Width>>(a + line);
            factor.add(sum, __builtin_shufflevector(w, x, 0, 2));
            next.add(sum, __builtin_shufflevector(w, x, 1, 3));
        } else if constexpr (Width == 16) {
            const auto wx = halves<Width>(a, a + line);
            const auto yz = halves<Width>(a + 2 * line, a + 3 * line);
            factor.add(sum, __builtin_shufflevector(wx, yz, 0, 2, 4, 6));
            next.add(sum, __builtin_shufflevector(wx, yz, 1, 3, 5, 7));
        } else { // shuffles within each half
            const auto wy = halves<Width>(a, a + 2 * line);
            const auto xz = halves<Width>(a + line, a + 3 * line);
            factor.add(sum, __builtin_shufflevector(wy, xz, 0, 4, 2, 6));
            next.add(sum, __builtin_shufflevector(wy, xz, 1, 5, 3, 7));
        }
    }

    // A vector of half its bytes from either address: of 16 bytes, or of four doubles.
    template <int Width> static V<Width> halves(ConstBytes low, ConstBytes high) {
        if constexpr (Width == 16) {
            return same_bits<V<Width>>(Lanes<Real8, Width>{load<Real8>(low), load<Real8>(high)});
        } else {
            const auto first = load_lanes<V<Width / 2>>(low);
            const auto second = load_lanes<V<Width / 2>>(high);
            return __builtin_shufflevector(first, second, 0, 1, 2, 3);
        }
    }

    static void finish(const LineProduct &p, int line, int k, T sum) {
        for (; k < p.kc; ++k)
            add_product<place>(sum, load<T>(p.v + k * size), load<T>(p.a.element(line, k)));
        deliver(p.add, sum, p.c.element(line, 0));
    }
};

// Integers: the compiler makes vectors of this loop.
template <std::integral T, Place place> struct DenseLines<T, place> {
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
template <class T, Place vector> bool multiply_lines(const LineProduct &p) {
    constexpr int few = 8; // so small a product is quicker without vectors
    if constexpr (is_vectorisable<T>) {
        if (p.lines < few || p.kc < few) return false;
        constexpr Place place = place_for<T>(vector);
        const int width = widest_vectors();
        if (p.a.step1 == bytes<T>(1)) {
            run_at_width<AdjacentLines<T, place>>(width, p);
            return true;
        }
        if (p.a.step2 == bytes<T>(1)) {
            run_at_width<DenseLines<T, place>>(std::min(width, 32), p);
            return true;
        }
    }
    return false;
}

} // namespace quill

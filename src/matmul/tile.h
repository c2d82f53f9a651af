// The kernel of the types that fit vectors: a tile is one vector of rows by up to six
// columns (two of complex numbers), for which A lies in tile order and B is broadcast,
// element by element, along k. Lanes are elements of C, so each sum keeps its order and
// every width of vector gives the same bits. Only eight registers exist: the sums are
// named, since an array of them would live in memory.
#pragma once

#include "frame/isa.h"
#include "frame/lanes.h"
#include "matmul/packing.h"

#include <algorithm>

namespace quill {

// ---- Tile order -------------------------------------------------------------

// What a lane holds: an element or a part of one. Bytes are multiplied in lanes of 16
// bits, whose low halves come out right, whatever the high ones hold.
template <class T> struct LaneOf : PartOf<T> {};
template <> struct LaneOf<Int1> { using type = Int2; };
template <class T> using Lane = typename LaneOf<T>::type;

// Vectors per k: the real parts of complex numbers, then their imaginary parts.
template <class T> constexpr int planes = is_complex<T> ? 2 : 1;

template <class T> constexpr int rows_of_tile(int width) {
    return width / static_cast<int>(sizeof(Lane<T>));
}
template <class T> constexpr std::ptrdiff_t tile_bytes(int width, int kc) {
    return static_cast<std::ptrdiff_t>(kc) * planes<T> * width;
}

// The width of vectors for so many rows: the widest, or half of it where that holds all, or
// where there is room for no more.
template <class T> int tile_width(int rows, int room) {
    const int widest = widest_vectors();
    const bool halved = rows <= rows_of_tile<T>(32) || room < rows_of_tile<T>(64);
    return widest == 64 && halved ? 32 : widest;
}

// Rows of A in tile order: tile after tile, in it k after k a vector of rows, or one for
// each part. Lanes behind the last row repeat it: what is computed there is not stored, but
// must raise no floating-point exception of its own.
template <class T> struct TilePacker {
    template <int Width> static void run(Bytes to, const Halves &a, int rows, int kc) {
        constexpr int tile_rows = rows_of_tile<T>(Width);
        const bool dense = a.second == bytes<T>(1) && a.first.step1 == bytes<T>(2);
        for (int i = 0; i < rows; i += tile_rows, to += tile_bytes<T>(Width, kc)) {
            const int here = std::min(tile_rows, rows - i);
            const Matrix first = a.first.from(i / 2, 0);
            if (dense && here == tile_rows)
                pack_columns<Width>(to, first, kc);
            else
                pack<Width>(to, {first, a.second}, here, kc);
        }
    }

    template <int Width> static void pack_columns(Bytes to, Matrix a, int kc) {
        for (; kc > 0; --kc, a.at += a.step2, to += tile_bytes<T>(Width, 1))
            for (int lane = 0; lane < rows_of_tile<T>(Width); ++lane)
                put<Width>(to + bytes<Lane<T>>(lane), load<T>(a.at + bytes<T>(lane)));
    }

    // Some k of every row at a time, so that what is written stays in the nearest cache.
    template <int Width> static void pack(Bytes to, const Halves &a, int rows, int kc) {
        constexpr int piece = 32;
        constexpr int side = std::is_same_v<T, Lane<T>> ? square_side<T>(std::min(Width, 32)) : 1;
        const int squares = side > 1 && a.first.step2 == bytes<T>(1) ? rows / side * side : 0;
        for (int k = 0; k < kc; k += piece, to += tile_bytes<T>(Width, piece)) {
            const Halves here{a.first.from(0, k), a.second};
            const int last = std::min(piece, kc - k);
            for (int lane = 0; lane < squares; lane += side)
                pack_lanes<Width, side>(to + bytes<T>(lane), here, lane, last);
            for (int lane = squares; lane < rows_of_tile<T>(Width); ++lane)
                pack_lane<Width>(to + bytes<Lane<T>>(lane), here, std::min(lane, rows - 1), 0,
                                 last);
        }
    }

    template <int Width, int Side>
    static void pack_lanes(Bytes to, const Halves &a, int row, int kc) {
        int k = 0;
        if constexpr (Side > 1)
            for (; kc - k >= Side; k += Side)
                move_square<T, Side>([&](int i) { return row_of(a, row + i) + bytes<T>(k); },
                                     [&](int i) { return to + tile_bytes<T>(Width, k + i); });
        for (int i = 0; i < Side; ++i) pack_lane<Width>(to + bytes<T>(i), a, row + i, k, kc);
    }

    template <int Width>
    static void pack_lane(Bytes to, const Halves &a, int row, int first, int last) {
        Bytes from = row_of(a, row);
        for (int k = first; k < last; ++k)
            put<Width>(to + tile_bytes<T>(Width, k), load<T>(from + k * a.first.step2));
    }

    template <int Width> static void put(Bytes to, const T &element) {
        if constexpr (is_complex<T>) {
            store(to, element.re);
            store(to + Width, element.im);
        } else {
            store(to, static_cast<Lane<T>>(element));
        }
    }
};

// ---- Sums -------------------------------------------------------------------

// What will be read next, columns of memory that are brought near while a product is
// computed: every so many k some cache lines. Beyond the last column nothing is harmed.
struct Upcoming {
    static constexpr int line = 64;
    static constexpr int interval = 64; // k

    ConstBytes at;
    ConstBytes column_end;
    std::ptrdiff_t column; // from column to column
    std::ptrdiff_t length; // of a column
    int lines;             // at a time

    void fetch() {
        for (int i = 0; i < lines; ++i, at += line) {
            if (at >= column_end) {
                at += column - length;
                column_end += column;
            }
            __builtin_prefetch(at, 0, 2);
        }
    }
};

// C = A x B, or that added to C: A in tiles, `a_step` bytes from k to k and `a_tile` from
// tile to tile; B dense along k.
struct TileProduct {
    bool add;
    int rows;
    int columns;
    int kc;
    ConstBytes a;
    std::ptrdiff_t a_step;
    std::ptrdiff_t a_tile;
    Matrix b;
    Matrix c;
    Upcoming upcoming;
};

template <class T, class Form> struct TileKernel {
    static constexpr int columns_at_once = is_complex<T> ? 2 : 6;

    template <int Width> static void run(TileProduct &p) {
        constexpr int tile_rows = rows_of_tile<T>(Width);
        ConstBytes a = p.a;
        for (int i = 0; i < p.rows; i += tile_rows, a += p.a_tile)
            across<Width, columns_at_once>(p, a, i, 0);
    }

    // A tile's rows by all columns from j on, N at a time (6, 3 or 1; 2 or 1), and the rest
    // by fewer.
    template <int Width, int N> static void across(TileProduct &p, ConstBytes a, int i, int j) {
        for (; p.columns - j >= N; j += N) {
            Lanes<Lane<T>, Width> sums[N * planes<T>];
            sum<Width, N>(p, a, p.b.element(0, j), sums);
            deliver_tile<Width, N>(p, sums, i, j);
        }
        if constexpr (N > 1) across<Width, N / 2>(p, a, i, j);
    }

    template <int Width, int N, class V>
    static void sum(TileProduct &p, ConstBytes a, ConstBytes b, V *sums) {
        if constexpr (is_complex<T>)
            sum_complex<Width, N>(p.kc, a, p.a_step, b, p.b.step2, sums);
        else
            sum_plain<Width, N>(p, a, b, sums);
    }

    template <int Width, int N, class V>
    static void sum_plain(TileProduct &p, ConstBytes a, ConstBytes b, V *sums) {
        V s0{}, s1{}, s2{}, s3{}, s4{}, s5{};
        const std::ptrdiff_t column = p.b.step2;
        const std::ptrdiff_t a_step = p.a_step;
        ConstBytes b3 = b + 3 * column;
        for (int left = p.kc; left > 0; left -= Upcoming::interval) {
            const int here = std::min(left, Upcoming::interval);
#pragma GCC unroll 4
            for (int k = 0; k < here; ++k) {
                const V lanes = load_lanes<V>(a);
                s0 += times<Width>(lanes, b);
                if constexpr (N >= 3) {
                    s1 += times<Width>(lanes, b + column);
                    s2 += times<Width>(lanes, b + 2 * column);
                }
                if constexpr (N == 6) {
                    s3 += times<Width>(lanes, b3);
                    s4 += times<Width>(lanes, b3 + column);
                    s5 += times<Width>(lanes, b3 + 2 * column);
                }
                a += a_step;
                b += sizeof(T);
                b3 += sizeof(T);
            }
            p.upcoming.fetch();
        }
        const V *const all[] = {&s0, &s1, &s2, &s3, &s4, &s5};
        for (int j = 0; j < N; ++j) sums[j] = *all[j];
    }

    template <int Width, class V> static V times(const V &left, ConstBytes right) {
        if constexpr (std::is_same_v<T, Lane<T>>)
            return left * load<T>(right);
        else
            return left * same_bits<V>(Lanes<T, Width>{} + load<T>(right));
    }

    // Each part of B serves two products, as a memory operand of both: `again` is b, which
    // the compiler is not to know, since it would keep the broadcast part in a register and
    // sums in memory.
    template <int Width, int N, class V>
    static void sum_complex(int kc, ConstBytes a, std::ptrdiff_t a_step, ConstBytes b,
                            std::ptrdiff_t column, V *sums) {
        Complex<V> s0{};
        Complex<V> s1{};
        ConstBytes again = b;
        asm("" : "+r"(again));
#pragma GCC unroll 2
        for (int k = 0; k < kc; ++k) {
            const Complex<V> left{load_lanes<V>(a), load_lanes<V>(a + Width)};
            add(s0, left, b, again);
            if constexpr (N > 1) add(s1, left, b + column, again + column);
            a += a_step;
            b += sizeof(T);
            again += sizeof(T);
        }
        sums[0] = s0.re;
        sums[1] = s0.im;
        if constexpr (N > 1) {
            sums[2] = s1.re;
            sums[3] = s1.im;
        }
    }

    template <class V>
    static void add(Complex<V> &sum, const Complex<V> &left, ConstBytes right, ConstBytes again) {
        using Part = Lane<T>;
        constexpr int im = sizeof(Part);
        if constexpr (std::is_same_v<Form, OneByOne>) {
            sum.re += left.re * load<Part>(right);
            sum.im += left.re * load<Part>(right + im);
            sum.re -= left.im * load<Part>(again + im);
            sum.im += left.im * load<Part>(again);
        } else {
            sum.re += left.re * load<Part>(right) - left.im * load<Part>(again + im);
            sum.im += left.re * load<Part>(right + im) + left.im * load<Part>(again);
        }
    }

    // ---- Delivery ------------------------------------------------------------

    template <int Width, int N, class V>
    static void deliver_tile(const TileProduct &p, const V *sums, int i, int j) {
        const int rows = std::min(rows_of_tile<T>(Width), p.rows - i);
        const bool whole = rows == rows_of_tile<T>(Width) && p.c.step1 == bytes<T>(1);
        for (int column = 0; column < N; ++column) {
            Bytes c = p.c.element(i, j + column);
            const V *const parts = sums + column * planes<T>;
            if (whole)
                deliver_whole<Width>(p.add, parts, c);
            else
                deliver_lanes<Width>(p.add, parts, c, p.c.step1, rows);
        }
    }

    template <int Width, class V> static void deliver_whole(bool add, const V *parts, Bytes c) {
        if constexpr (is_complex<T>) {
            deliver_vector(add, interleaved<0>(parts[0], parts[1]), c);
            deliver_vector(add, interleaved<1>(parts[0], parts[1]), c + Width);
        } else if constexpr (std::is_same_v<T, Lane<T>>) {
            deliver_vector(add, *parts, c);
        } else {
            deliver_lanes<Width>(add, parts, c, bytes<T>(1), rows_of_tile<T>(Width));
        }
    }

    template <class V> static void deliver_vector(bool add, const V &sum, Bytes c) {
        const V result = add ? sum + load_lanes<V>(c) : sum;
        std::memcpy(c, &result, sizeof result);
    }

    template <int Width, class V>
    static void deliver_lanes(bool add, const V *parts, Bytes c, std::ptrdiff_t step, int rows) {
        Lane<T> lanes[planes<T>][rows_of_tile<T>(Width)];
        std::memcpy(lanes, parts, sizeof lanes);
        for (int r = 0; r < rows; ++r, c += step) {
            if constexpr (is_complex<T>)
                deliver(add, T{lanes[0][r], lanes[1][r]}, c);
            else
                deliver(add, static_cast<T>(lanes[0][r]), c);
        }
    }
};

// ---- Calls ------------------------------------------------------------------

template <class T> void pack_tiles(int width, Bytes to, const Halves &a, int rows, int kc) {
    run_at_width<TilePacker<T>>(width, to, a, rows, kc);
}

// The product of packed rows.
template <class T, class Form>
void multiply_tiles(int width, bool add, int rows, int columns, int kc, ConstBytes a,
                    const Matrix &b, const Matrix &c, const Upcoming &upcoming = {}) {
    TileProduct product{
        add, rows, columns, kc, a, tile_bytes<T>(width, 1), tile_bytes<T>(width, kc),
        b,   c,    upcoming};
    using FormOfT = std::conditional_t<is_complex<T>, Form, OneByOne>; // others know one
    run_at_width<TileKernel<T, FormOfT>>(width, product);
}

} // namespace quill

// Moves that change which dimension varies fastest, for TRANSPOSE and RESHAPE with ORDER: row
// by row of the result, or, of dense elements of 1 to 4 bytes, in tiles transposed in
// registers; either way in parts that the nearest cache holds.
#pragma once

#include "frame/isa.h"
#include "frame/moves.h"

#include <algorithm>
#include <cstdlib>

namespace quill {

// ---- Tiles --------------------------------------------------------------------------

template <std::int32_t Size> constexpr bool has_tiles = Size == 1 || Size == 2 || Size == 4;

// Neighbours along its rows are adjacent at the source, neighbours along its columns in the
// result. A wide vector holds parts of two columns, which it makes parts of one row.
template <std::int32_t Size, int Width> struct Tile {
    using Element = SignedOfSize<Size>;
    static constexpr int parts = Size == 4 ? Width / 16 : 1;
    static constexpr std::int32_t rows = 16 / Size;
    static constexpr std::int32_t vectors = Size <= 2 ? 8 : rows;
    static constexpr std::int32_t columns = vectors * parts;
    using Vector = Lanes<Element, 16 * parts>;

    [[gnu::always_inline]] static Vector load(ConstBytes from, std::ptrdiff_t from_step) {
        if constexpr (parts == 1) {
            return load_lanes<Vector>(from);
        } else {
            using Part = Lanes<Element, 16>;
            const Part low = load_lanes<Part>(from);
            const Part high = load_lanes<Part>(from + vectors * from_step);
            return [&]<int... i>(std::integer_sequence<int, i...>) {
                return __builtin_shufflevector(low, high, i...);
            }
            (std::make_integer_sequence<int, sizeof(Vector) / sizeof(Element)>());
        }
    }

    [[gnu::always_inline]] static void move(Bytes to, std::ptrdiff_t to_step, ConstBytes from,
                                            std::ptrdiff_t from_step) {
        constexpr std::size_t row = columns * Size;
        Vector tile[vectors];
        for (std::int32_t j = 0; j < vectors; ++j) tile[j] = load(from + j * from_step, from_step);
        transpose_within(tile);
        for (std::int32_t i = 0; i < rows; ++i)
            std::memcpy(to + i * to_step, reinterpret_cast<ConstBytes>(tile) + i * row, row);
    }
};

// Moves a block of a matrix of at least one tile. Where the last tiles would stand out of the
// block they begin before the end of the others, or of the block before: what both hold is the
// same.
template <std::int32_t Size> struct MoveTiles {
    template <int Width>
    static void run(Bytes to, std::ptrdiff_t to_step, ConstBytes from, std::ptrdiff_t from_step,
                    std::int32_t rows, std::int32_t columns) {
        using Square = Tile<Size, Width>;
        const std::int32_t last = columns - Square::columns;
        for (std::int32_t row = 0; row < rows; row += Square::rows) {
            const std::int32_t i = std::min(row, rows - Square::rows);
            Bytes tile_to = to + i * to_step;
            ConstBytes tile_from = from + i * Size;
            for (std::int32_t j = 0; j <= last; j += Square::columns) {
                Square::move(tile_to, to_step, tile_from, from_step);
                tile_to += Square::columns * Size;
                tile_from += Square::columns * from_step;
            }
            if (columns % Square::columns != 0)
                Square::move(to + i * to_step + last * Size, to_step,
                             from + i * Size + last * from_step, from_step);
        }
    }
};

// ---- Rows ---------------------------------------------------------------------------

// Moves a small matrix along its longer side, without a call for each line.
template <std::int32_t Size>
void move_small(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
                ConstBytes from) {
    const Run<2> &inner = rows.count > columns.count ? rows : columns;
    const Run<2> &outer = rows.count > columns.count ? columns : rows;
    const std::ptrdiff_t to_step = inner.step.by[0];
    const std::ptrdiff_t from_step = inner.step.by[1];
    for (std::int32_t i = 0; i < outer.count; ++i) {
        Bytes next_to = to + i * outer.step.by[0];
        ConstBytes next_from = from + i * outer.step.by[1];
        for (std::int32_t j = inner.count; j > 0; --j) {
            move_element<Size>(next_to, next_from, elsize);
            next_to += to_step;
            next_from += from_step;
        }
    }
}

// Rows of dense elements of 8 bytes that begin in the same cache line of a column.
constexpr std::int32_t rows_of_line = 8;

// Fetches a share of the cache lines in which the row lies that is so many rows further on.
inline void fetch_share(std::int32_t row, const Run<2> &columns, ConstBytes from) {
    const std::int32_t share = columns.count / rows_of_line + 1;
    const std::int32_t first = row % rows_of_line * share;
    const std::int32_t last = std::min(first + share, columns.count);
    for (std::int32_t j = first; j < last; ++j)
        __builtin_prefetch(from + rows_of_line * 8 + j * columns.step.by[1]);
}

// Moves a matrix one row of the result after the other, so that all is written in one stream:
// in bands of columns whose cache lines of the source, each for several rows, stay in the
// nearest cache. Dense elements of 8 bytes leave time to fetch the lines to come.
template <std::int32_t Size>
void move_rows(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
               ConstBytes from) {
    constexpr std::int32_t band = Size == 8 || Size == 32 ? 256 : 512;
    for (std::int32_t j = 0; j < columns.count; j += band) {
        const Run<2> part = {std::min(band, columns.count - j), columns.step};
        Bytes row_to = to + j * columns.step.by[0];
        ConstBytes row_from = from + j * columns.step.by[1];
        for (std::int32_t i = 0; i < rows.count; ++i) {
            if (Size == 8 && rows.step.by[1] == Size && i < rows.count - rows_of_line)
                fetch_share(i, part, row_from);
            move_strided<Size>(elsize, row_to, part.step.by[0], row_from, part.step.by[1],
                               part.count);
            row_to += rows.step.by[0];
            row_from += rows.step.by[1];
        }
    }
}

// Moves a matrix of few columns, one after the other, as many rows at a time as the nearest
// cache holds.
template <std::int32_t Size>
void move_columns(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
                  ConstBytes from) {
    constexpr std::int32_t side = 128;
    for (std::int32_t i = 0; i < rows.count; i += side) {
        const std::int32_t height = std::min(side, rows.count - i);
        for (std::int32_t j = 0; j < columns.count; ++j) {
            move_strided<Size>(elsize, to + i * rows.step.by[0] + j * columns.step.by[0],
                               rows.step.by[0], from + i * rows.step.by[1] + j * columns.step.by[1],
                               rows.step.by[1], height);
        }
    }
}

// ---- Matrices -------------------------------------------------------------------------

// Whether tiles of any width can move a matrix.
template <std::int32_t Size> bool fits_tiles(const Run<2> &rows, const Run<2> &columns) {
    using Widest = Tile<Size, 32>;
    return rows.step.by[1] == Size && columns.step.by[0] == Size && rows.count >= Widest::rows &&
           columns.count >= Widest::columns;
}

template <std::int32_t Size>
void move_by_tiles(const Run<2> &rows, const Run<2> &columns, Bytes to, ConstBytes from) {
    constexpr std::int32_t side = 128; // of a block
    for (std::int32_t j = 0; j < columns.count; j += side) {
        for (std::int32_t i = 0; i < rows.count; i += side) {
            run_vectorised<MoveTiles<Size>>(to + i * rows.step.by[0] + j * Size, rows.step.by[0],
                                            from + i * Size + j * columns.step.by[1],
                                            columns.step.by[1], std::min(side, rows.count - i),
                                            std::min(side, columns.count - j));
        }
    }
}

// Moves a matrix: its rows are the faster dimension at the source, its columns in the result.
using MoveMatrix = void(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
                        ConstBytes from);

template <std::int32_t Size>
void move_matrix(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
                 ConstBytes from) {
    if constexpr (has_tiles<Size>)
        if (fits_tiles<Size>(rows, columns)) return move_by_tiles<Size>(rows, columns, to, from);
    constexpr std::int32_t few = 8;
    if (columns.count < few && rows.count < few)
        move_small<Size>(elsize, rows, columns, to, from);
    else if (columns.count < few)
        move_columns<Size>(elsize, rows, columns, to, from);
    else
        move_rows<Size>(elsize, rows, columns, to, from);
}

inline MoveMatrix *move_matrix_of(std::int32_t size) {
    switch (size) {
    case 1:
        return move_matrix<1>;
    case 2:
        return move_matrix<2>;
    case 4:
        return move_matrix<4>;
    case 8:
        return move_matrix<8>;
    case 10:
        return move_matrix<10>;
    case 12:
        return move_matrix<12>;
    case 16:
        return move_matrix<16>;
    case 20:
        return move_matrix<20>;
    case 24:
        return move_matrix<24>;
    case 32:
        return move_matrix<32>;
    default:
        return move_matrix<any_size>;
    }
}

// ---- Any number of dimensions -----------------------------------------------------------

// The level whose neighbours lie closest to each other in an operand.
inline int closest_level(const Moves &moves, int operand) {
    int closest = 0;
    for (int l = 1; l < moves.depth; ++l)
        if (std::abs(moves.levels[l].step.by[operand]) <
            std::abs(moves.levels[closest].step.by[operand]))
            closest = l;
    return closest;
}

inline void move_permuted(const Elements &elements, const Moves &moves, Bytes to, Bytes from) {
    const int columns = closest_level(moves, 0);
    const int rows = closest_level(moves, 1);
    if (rows == columns) return move_section(elements, moves, to, from);
    MoveMatrix *const move = move_matrix_of(elements.elsize);
    const auto move_one = [&](Bytes matrix_to, Bytes matrix_from) {
        move(elements.elsize, moves.levels[rows], moves.levels[columns], matrix_to, matrix_from);
    };
    if (moves.depth == 2) return move_one(to, from);
    Moves others;
    for (int l = 0; l < moves.depth; ++l)
        if (l != rows && l != columns) add_dimension(others, moves.levels[l]);
    for_each_run(others, {{to, from}}, [&](const Positions<2> &start, const Run<2> &run) {
        for (std::int32_t n = 0; n < run.count; ++n)
            move_one(start.at[0] + n * run.step.by[0], start.at[1] + n * run.step.by[1]);
        return true;
    });
}

} // namespace quill

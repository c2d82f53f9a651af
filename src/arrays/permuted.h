// Moves that change which dimension varies fastest, for TRANSPOSE and RESHAPE with ORDER:
// in blocks that the nearest caches hold on both sides, and within them, where the processor
// has vectors of the elements, in tiles transposed in registers.
#pragma once

#include "frame/isa.h"
#include "frame/moves.h"

#include <algorithm>
#include <cstdlib>

namespace quill {

// ---- Tiles --------------------------------------------------------------------------

template <std::int32_t Size>
constexpr bool has_tiles = Size == 1 || Size == 2 || Size == 4 || Size == 8 || Size == 16;

// Neighbours along its rows are adjacent at the source, neighbours along its columns in the
// result. A wide vector holds parts of two columns, which it makes parts of one row.
template <std::int32_t Size, int Width> struct Tile {
    using Element = SignedOfSize<Size>;
    static constexpr int parts = Size == 4 || Size == 8 ? Width / 16 : 1;
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

// ---- Matrices -------------------------------------------------------------------------

// A block element by element, along its longer side.
template <std::int32_t Size>
void move_block(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
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

// Whether tiles of any width can move a matrix.
template <std::int32_t Size> bool fits_tiles(const Run<2> &rows, const Run<2> &columns) {
    if constexpr (has_tiles<Size>) {
        using Widest = Tile<Size, 32>;
        return rows.step.by[1] == Size && columns.step.by[0] == Size &&
               rows.count >= Widest::rows && columns.count >= Widest::columns;
    } else {
        return false;
    }
}

// Moves a matrix: its rows are the faster dimension at the source, its columns in the result.
using MoveMatrix = void(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
                        ConstBytes from);

template <std::int32_t Size>
void move_matrix(std::int32_t elsize, const Run<2> &rows, const Run<2> &columns, Bytes to,
                 ConstBytes from) {
    constexpr std::int32_t side = Size < 16 ? 128 : 64; // of a block
    const bool by_tiles = fits_tiles<Size>(rows, columns);
    if (!by_tiles && rows.count <= side && columns.count <= side)
        return move_block<Size>(elsize, rows, columns, to, from);
    for (std::int32_t j = 0; j < columns.count; j += side) {
        const std::int32_t width = std::min(side, columns.count - j);
        for (std::int32_t i = 0; i < rows.count; i += side) {
            const std::int32_t height = std::min(side, rows.count - i);
            Bytes block_to = to + i * rows.step.by[0] + j * columns.step.by[0];
            ConstBytes block_from = from + i * rows.step.by[1] + j * columns.step.by[1];
            if constexpr (has_tiles<Size>) {
                if (by_tiles) {
                    run_vectorised<MoveTiles<Size>>(block_to, rows.step.by[0], block_from,
                                                    columns.step.by[1], height, width);
                    continue;
                }
            }
            move_block<Size>(elsize, {height, rows.step}, {width, columns.step}, block_to,
                             block_from);
        }
    }
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

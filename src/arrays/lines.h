// What CSHIFT and EOSHIFT share. Both make every line of the result, along one dimension, of
// two pieces: one of the same line of ARRAY, and one that fills the room it leaves. A family
// says how a SHIFT divides a line, and where the filling comes from.
#pragma once

#include "frame/checks.h"
#include "frame/elements.h"
#include "frame/moves.h"

#include <algorithm>

namespace quill {

// ---- Checks -----------------------------------------------------------------------

inline void check_result(const char *name, const f90_ArgList &list, const f90_ArrDesc &array) {
    const f90_ArrDesc &result = descriptor(list.Result);
    if (result_given(list) && !conforms<extent>(result, array, array.RANK))
        f90_ArrLibError(name, 2, &result, &array);
}

// Whether an argument has one value for all lines of ARRAY, or one for each.
inline bool is_per_line(const f90_ArrDesc &argument, const f90_ArrDesc &array) {
    return array.RANK > 1 && argument.RANK != 0;
}

// Its own rank is not compared.
inline void check_per_line(const char *name, int number, const f90_ArrDesc &argument,
                           const f90_ArrDesc &array, const ShapeVector &expected) {
    if (!is_per_line(argument, array)) return;
    for (int i = 0; i < expected.count; ++i)
        if (extent(argument.Dim[i]) != expected.extents[i])
            f90_ArrLibError(name, number, &argument, report(expected));
}

// ---- Operands ---------------------------------------------------------------------

// An operand as lines go through it: its first element, and how it steps along ARRAY's
// dimensions.
struct Operand {
    Bytes first;
    const f90_ArrDesc *array; // null: by the same step along all of them
    std::int32_t left_out;    // the dimension of ARRAY that the operand does not have
    std::int32_t same_step;
};

inline std::ptrdiff_t step(const Operand &operand, int i) {
    if (operand.array == nullptr) return operand.same_step;
    if (i == operand.left_out) return 0;
    return byte_step(*operand.array, i < operand.left_out ? i : i - 1);
}

// ARRAY or the result. A dense one of a single dimension goes by size, whatever its Stride.
inline Operand element_by_element(const f90_ArrDesc &array, std::int32_t elsize) {
    const bool dense_line = array.RANK < 2 && array.NONCONTIG == 0;
    return {base(array), dense_line ? nullptr : &array, f90_MaxRank, elsize};
}

// SHIFT or BOUNDARY.
inline Operand line_by_line(const f90_ArrDesc &argument, const f90_ArrDesc &array, int along) {
    return {base(argument), is_per_line(argument, array) ? &argument : nullptr, along, 0};
}

inline std::int32_t line_length(const f90_ArrDesc &array, int along) {
    return array.RANK > 1 ? extent(array.Dim[along]) : array.EXTENT;
}

// ---- Lines ------------------------------------------------------------------------

// Elements of a line, by their numbers from 0: count of them go from `from` to `to`.
struct Piece {
    std::int32_t count;
    std::int32_t from;
    std::int32_t to;
};

struct Division {
    Piece kept;    // from ARRAY
    Piece filling; // from what fills
};

// What a shift makes of a line of this length, which is at least 1. Part of the walks below: a
// call would cost short lines as much as their moves.
using Divide = Division(std::int32_t shift, std::int32_t length);

struct Lines {
    const f90_ArrDesc &array;
    int along; // this dimension, from 0
    std::int32_t length;
    Operand to;
    Operand from;
    Operand filling;
    Operand shift;
    bool circular; // ARRAY itself fills
    bool dense;    // ARRAY and result, and filling is ARRAY or a single element
};

// ---- A SHIFT for each line ----------------------------------------------------------

inline std::int32_t shift_at(ConstBytes at) { return static_cast<std::int32_t>(load<Word>(at)); }

// `at` and `step` are of the result, of ARRAY and of what fills.
inline void move_line(const Elements &elements, const Division &parts, const Positions<4> &at,
                      const Steps<3> &step) {
    const auto &[kept, filling] = parts;
    move_run(elements, at.at[0] + kept.to * step.by[0], step.by[0],
             at.at[1] + kept.from * step.by[1], step.by[1], kept.count);
    move_run(elements, at.at[0] + filling.to * step.by[0], step.by[0],
             at.at[2] + filling.from * step.by[2], step.by[2], filling.count);
}

// What of a piece goes to the positions begin to end - 1.
inline Piece within(std::int32_t begin, std::int32_t end, const Piece &piece) {
    const std::int32_t first = std::max(begin, piece.to);
    const std::int32_t count = std::min(end, piece.to + piece.count) - first;
    return {std::max(count, 0), first - piece.to + piece.from, first};
}

// The positions that lines pass through together: a cache line of the result for each fits the
// nearest cache.
constexpr std::int32_t window = 256;

// Lines whose elements lie far apart: those that have cache lines in common go together,
// through a few positions at a time.
template <Divide divide>
void move_bands(const Elements &elements, const Lines &lines, const Positions<4> &first,
                const Run<4> &run, const Steps<3> &step) {
    const std::int32_t band = std::max(1, 256 / std::max(1, elements.elsize));
    for (std::int32_t n = 0; n < run.count; n += band) {
        const std::int32_t behind = std::min(n + band, run.count);
        for (std::int32_t begin = 0; begin < lines.length; begin += window) {
            for (std::int32_t i = n; i < behind; ++i) {
                const Positions<4> at = advanced(first, run.step, i);
                const Division parts = divide(shift_at(at.at[3]), lines.length);
                move_line(elements,
                          {within(begin, begin + window, parts.kept),
                           within(begin, begin + window, parts.filling)},
                          at, step);
            }
        }
    }
}

template <Divide divide> void move_each_line(const Elements &elements, const Lines &lines) {
    const int along = lines.along;
    const Steps<3> line_step = {
        {step(lines.to, along), step(lines.from, along), step(lines.filling, along)}};
    Nest<4> nest;
    for (int r = 0; r < lines.array.RANK - 1; ++r) {
        const int i = kept_dimension(r, along);
        add_dimension(nest, {extent(lines.array.Dim[i]),
                             {{step(lines.to, i), step(lines.from, i), step(lines.filling, i),
                               step(lines.shift, i)}}});
    }
    const Positions<4> first = {
        {lines.to.first, lines.from.first, lines.filling.first, lines.shift.first}};
    for_each_run(nest, first, [&](const Positions<4> &start, const Run<4> &run) {
        if (along > 0 && lines.length > window) {
            move_bands<divide>(elements, lines, start, run, line_step);
            return true;
        }
        for (std::int32_t n = 0; n < run.count; ++n) {
            const Positions<4> at = advanced(start, run.step, n);
            move_line(elements, divide(shift_at(at.at[3]), lines.length), at, line_step);
        }
        return true;
    });
}

// ---- One SHIFT for all lines --------------------------------------------------------

// The same piece, a run of elements, of all slabs of a run: one of fewer elements than there
// are slabs goes across them, element by element.
inline void move_pieces(const Elements &elements, const Run<2> &piece, Bytes to, Bytes from,
                        const Run<2> &slabs) {
    const Run<2> &inner = piece.count < slabs.count ? slabs : piece;
    const Run<2> &outer = piece.count < slabs.count ? piece : slabs;
    for (std::int32_t i = 0; i < outer.count; ++i)
        move_run(elements, to + i * outer.step.by[0], inner.step.by[0], from + i * outer.step.by[1],
                 inner.step.by[1], inner.count);
}

inline std::int32_t elements_of(const f90_ArrDesc &array, int first_dim, int end_dim) {
    std::int32_t elements = 1;
    for (int i = first_dim; i < end_dim; ++i) elements *= extent(array.Dim[i]);
    return elements;
}

// Of dense operands, with one boundary. A slab is a line with the dimensions below it, which
// have `row` bytes at each position. Where little is filled, the kept pieces of some slabs are
// moved as one, with the room between them, which is filled while the cache holds it.
template <Divide divide> void move_dense_slabs(const Elements &elements, const Lines &lines) {
    const auto [kept, filling] = divide(shift_at(lines.shift.first), lines.length);
    constexpr std::size_t little = 256;   // bytes that take no longer than a call for them
    constexpr std::size_t cached = 16384; // bytes of ARRAY, beside as many of the result
    const std::int32_t below = elements_of(lines.array, 0, lines.along);
    const std::size_t row = bytes_of(below, elements.elsize);
    const std::size_t slab = bytes_of(lines.length, row);
    const std::size_t room = bytes_of(filling.count, row);
    const Run<2> piece = {filling.count * below,
                          {{elements.elsize, lines.circular ? elements.elsize : 0}}};
    Bytes to = lines.to.first;
    Bytes from = lines.from.first;
    std::int32_t left = elements_of(lines.array, lines.along + 1, lines.array.RANK);
    const std::size_t together =
        left > 1 && slab > 0 && room < little ? std::max<std::size_t>(1, cached / slab) : 1;
    while (left > 0) {
        const std::int32_t count = std::min(left, static_cast<std::int32_t>(together));
        const std::size_t bytes = bytes_of(count, slab);
        if (kept.count > 0)
            copy_bytes(to + bytes_of(kept.to, row), from + bytes_of(kept.from, row), bytes - room);
        const auto to_step = static_cast<std::ptrdiff_t>(slab);
        move_pieces(elements, piece, to + bytes_of(filling.to, row),
                    lines.circular ? from + bytes_of(filling.from, row) : lines.filling.first,
                    {count, {{to_step, lines.circular ? to_step : 0}}});
        to += bytes;
        from += bytes;
        left -= count;
    }
}

// What a piece of a line means for a slab, whatever the steps.
inline Moves moves_of_slab(const Lines &lines, const Piece &piece, const Operand &from) {
    Moves moves;
    for (int i = 0; i < lines.along; ++i)
        add_dimension(moves, {extent(lines.array.Dim[i]), {{step(lines.to, i), step(from, i)}}});
    add_dimension(moves, {piece.count, {{step(lines.to, lines.along), step(from, lines.along)}}});
    return moves;
}

template <Divide divide> void move_slabs(const Elements &elements, const Lines &lines) {
    const int along = lines.along;
    const Division parts = divide(shift_at(lines.shift.first), lines.length);
    const Moves keep = moves_of_slab(lines, parts.kept, lines.from);
    const Moves fill = moves_of_slab(lines, parts.filling, lines.filling);
    Nest<3> above;
    for (int i = along + 1; i < lines.array.RANK; ++i)
        add_dimension(above, {extent(lines.array.Dim[i]),
                              {{step(lines.to, i), step(lines.from, i), step(lines.filling, i)}}});
    const Positions<3> first = {{lines.to.first, lines.from.first, lines.filling.first}};
    for_each_run(above, first, [&](const Positions<3> &start, const Run<3> &run) {
        for (std::int32_t n = 0; n < run.count; ++n) {
            const Positions<3> at = advanced(start, run.step, n);
            move_section(elements, keep, at.at[0] + parts.kept.to * step(lines.to, along),
                         at.at[1] + parts.kept.from * step(lines.from, along));
            move_section(elements, fill, at.at[0] + parts.filling.to * step(lines.to, along),
                         at.at[2] + parts.filling.from * step(lines.filling, along));
        }
        return true;
    });
}

template <Divide divide> void move_lines(const Elements &elements, const Lines &lines) {
    if (lines.shift.array != nullptr)
        move_each_line<divide>(elements, lines);
    else if (lines.dense)
        move_dense_slabs<divide>(elements, lines);
    else
        move_slabs<divide>(elements, lines);
}

} // namespace quill

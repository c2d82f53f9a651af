// What CSHIFT and EOSHIFT share. Both make every line of the result, along one dimension, of
// two pieces: one of the same line of ARRAY, and one that fills the room it leaves. A family
// says how a SHIFT divides a line, and where the filling comes from.
#pragma once

#include "frame/checks.h"
#include "frame/creation.h"
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

// An operand as the lines go through it: its first element, and its step along each of
// ARRAY's dimensions.
struct Operand {
    Bytes first;
    std::ptrdiff_t step[f90_MaxRank];
};

// ARRAY or the result. A dense one of a single dimension goes by size, whatever its Stride.
inline Operand element_by_element(const f90_ArrDesc &array, std::int32_t elsize) {
    Operand operand = {base(array), {elsize}};
    if (array.RANK > 1 || array.NONCONTIG != 0)
        for (int i = 0; i < array.RANK; ++i) operand.step[i] = byte_step(array, i);
    return operand;
}

// The length of lines of an ARRAY with elements.
inline std::int32_t line_length(const f90_ArrDesc &array, int along) {
    return array.RANK > 1 ? extent(array.Dim[along]) : array.EXTENT;
}

// SHIFT or BOUNDARY.
inline Operand line_by_line(const f90_ArrDesc &argument, const f90_ArrDesc &array, int along) {
    Operand operand = {base(argument), {}};
    if (is_per_line(argument, array))
        for (int r = 0; r < array.RANK - 1; ++r)
            operand.step[kept_dimension(r, along)] = byte_step(argument, r);
    return operand;
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

// What a shift makes of a line of this length, which is at least 1.
using Divide = Division(std::int32_t shift, std::int32_t length);

struct Lines {
    const f90_ArrDesc &array;
    int along; // this dimension, from 0
    std::int32_t length;
    Operand to;
    Operand from;
    Operand filling;
    Operand shift;
    bool shift_varies; // from line to line
    Divide *divide;
};

inline std::int32_t shift_at(ConstBytes at) { return static_cast<std::int32_t>(load<Word>(at)); }

// Moves what the positions begin to end - 1 of a line take from a piece.
inline void move_within(std::int32_t begin, std::int32_t end, const Elements &elements,
                        const Piece &piece, Bytes to, std::ptrdiff_t to_step, Bytes from,
                        std::ptrdiff_t from_step) {
    const std::int32_t first = std::max(begin, piece.to);
    const std::int32_t count = std::min(end, piece.to + piece.count) - first;
    if (count > 0)
        elements.move_run(elements.elsize, to + first * to_step, to_step,
                          from + (first - piece.to + piece.from) * from_step, from_step, count);
}

// The same of count neighbouring lines and of both pieces.
inline void move_band(std::int32_t begin, std::int32_t end, const Elements &elements,
                      const Lines &lines, Positions<4> at, const Steps<4> &step,
                      std::int32_t count) {
    const int along = lines.along;
    for (; count > 0; --count, advance(at, step, 1)) {
        const auto [kept, filling] = lines.divide(shift_at(at.at[3]), lines.length);
        move_within(begin, end, elements, kept, at.at[0], lines.to.step[along], at.at[1],
                    lines.from.step[along]);
        move_within(begin, end, elements, filling, at.at[0], lines.to.step[along], at.at[2],
                    lines.filling.step[along]);
    }
}

// Each line by its own SHIFT. Along the first dimension a line goes as a whole. Otherwise its
// elements lie far apart, and lines that have cache lines in common go together, through a
// few positions at a time.
inline void move_each_line(const Elements &elements, const Lines &lines) {
    const int along = lines.along;
    const std::int32_t window = along == 0 ? lines.length : 64;
    const std::int32_t band = along == 0 ? 1 : std::max(1, 128 / std::max(1, elements.elsize));
    Nest<4> nest;
    for (int r = 0; r < lines.array.RANK - 1; ++r) {
        const int i = kept_dimension(r, along);
        add_dimension(nest, {extent(lines.array.Dim[i]),
                             {{lines.to.step[i], lines.from.step[i], lines.filling.step[i],
                               lines.shift.step[i]}}});
    }
    const Positions<4> first = {
        {lines.to.first, lines.from.first, lines.filling.first, lines.shift.first}};
    for_each_run(nest, first, [&](Positions<4> at, const Run<4> &run) {
        for (std::int32_t n = 0; n < run.count; n += band, advance(at, run.step, band))
            for (std::int32_t begin = 0; begin < lines.length; begin += window)
                move_band(begin, std::min(begin + window, lines.length), elements, lines, at,
                          run.step, std::min(band, run.count - n));
        return true;
    });
}

// The moves that a piece of one line means for the dimensions below lines, too.
inline Moves moves_below(const Lines &lines, const Piece &piece, const Operand &from) {
    Moves moves;
    for (int i = 0; i < lines.along; ++i)
        add_dimension(moves, {extent(lines.array.Dim[i]), {{lines.to.step[i], from.step[i]}}});
    add_dimension(moves, {piece.count, {{lines.to.step[lines.along], from.step[lines.along]}}});
    return moves;
}

// All lines by one SHIFT, with the dimensions below them at once.
inline void move_together(const Elements &elements, const Lines &lines, const Division &parts) {
    const int along = lines.along;
    const Moves keep = moves_below(lines, parts.kept, lines.from);
    const Moves fill = moves_below(lines, parts.filling, lines.filling);
    Nest<3> above;
    for (int i = along + 1; i < lines.array.RANK; ++i)
        add_dimension(above, {extent(lines.array.Dim[i]),
                              {{lines.to.step[i], lines.from.step[i], lines.filling.step[i]}}});
    const Positions<3> first = {{lines.to.first, lines.from.first, lines.filling.first}};
    for_each_run(above, first, [&](Positions<3> at, const Run<3> &run) {
        for (std::int32_t n = 0; n < run.count; ++n, advance(at, run.step, 1)) {
            move_section(elements, keep, at.at[0] + parts.kept.to * lines.to.step[along],
                         at.at[1] + parts.kept.from * lines.from.step[along]);
            move_section(elements, fill, at.at[0] + parts.filling.to * lines.to.step[along],
                         at.at[2] + parts.filling.from * lines.filling.step[along]);
        }
        return true;
    });
}

// Along the first dimension lines go one by one, since what they consist of is adjacent.
inline void move_lines(const Elements &elements, const Lines &lines) {
    if (lines.along == 0 || lines.shift_varies)
        move_each_line(elements, lines);
    else
        move_together(elements, lines, lines.divide(shift_at(lines.shift.first), lines.length));
}

} // namespace quill

// The walk over one operand that its user drives, for operands that go side by side though
// their shapes may differ: each hands out its own runs, and what all of them have left is
// done at once. Behind the last element a walk starts over.
#pragma once

#include "frame/walk.h"

namespace quill {

struct Cursor {
    Bytes at;          // the next element
    std::int32_t left; // elements from there to the end of the run; 0 of an empty operand
    Nest<1> nest;      // at least one level
    std::int32_t remaining[most_levels]; // steps left at each level but the first

    std::ptrdiff_t step() const { return nest.levels[0].step.by[0]; }
};

// A single run of count elements.
inline Cursor walk_along(Bytes first, std::ptrdiff_t step, std::int32_t count) {
    Cursor cursor;
    append_level(cursor.nest, {count, {{step}}});
    cursor.at = first;
    cursor.left = count;
    return cursor;
}

// To the first element, of a nest that is complete but for its least level.
[[gnu::always_inline]] inline void start(Cursor &cursor, Bytes first) {
    if (cursor.nest.depth == 0) append_level(cursor.nest, {1, {{0}}});
    for (int l = 1; l < cursor.nest.depth; ++l)
        cursor.remaining[l] = cursor.nest.levels[l].count - 1;
    cursor.at = first;
    cursor.left = cursor.nest.empty ? 0 : cursor.nest.levels[0].count;
}

// The elements of array in their order, by its own steps; of each the parts that `within`
// tells.
inline Cursor walk_over(const f90_ArrDesc &array, const Run<1> &within = {1, {}}) {
    Cursor cursor;
    add_dimension(cursor.nest, within);
    for (int i = 0; i < array.RANK; ++i)
        add_dimension(cursor.nest, {extent(array.Dim[i]), {{byte_step(array, i)}}});
    start(cursor, base(array));
    return cursor;
}

// By the array's own steps, or as a run of adjacent elements of `size` bytes. Part of its
// caller, so that small calls do not pass a cursor through memory.
[[gnu::always_inline]] inline Cursor walk(const f90_ArrDesc &array, bool by_steps,
                                          std::int32_t size) {
    return by_steps ? walk_over(array) : walk_along(base(array), size, array.EXTENT);
}

// From the end of a run to the next one.
inline void start_next_run(Cursor &cursor) {
    const Run<1> *levels = cursor.nest.levels;
    cursor.left = levels[0].count;
    cursor.at -= levels[0].step.by[0] * levels[0].count;
    for (int l = 1; l < cursor.nest.depth; ++l) {
        if (cursor.remaining[l] > 0) {
            --cursor.remaining[l];
            cursor.at += levels[l].step.by[0];
            return;
        }
        cursor.remaining[l] = levels[l].count - 1;
        cursor.at -= levels[l].step.by[0] * cursor.remaining[l];
    }
}

// Passes over count elements, at most as many as are left.
inline void advance(Cursor &cursor, std::int32_t count) {
    cursor.at += cursor.step() * count;
    cursor.left -= count;
    if (cursor.left == 0) start_next_run(cursor);
}

} // namespace quill

// The odometer that every walk over more than one dimension shares. A family
// adds its dimensions, fastest first, and is handed runs along the innermost one;
// dimensions that continue each other in every operand become one longer run.
#pragma once

#include "frame/records.h"

namespace quill {

// Positions of one element in each operand, or distances between two elements.
template <int Operands> struct Positions { Bytes at[Operands]; };
template <int Operands> struct Steps { std::ptrdiff_t by[Operands]; };

// One dimension of a walk: how many elements, and how far apart in each operand.
template <int Operands> struct Run {
    std::int32_t count;
    Steps<Operands> step;
};

// The dimensions of an array, and one more within its elements or between them.
constexpr int most_levels = f90_MaxRank + 1;

template <int Operands> struct Nest {
    // `depth` of them are set, each of at least two elements, the fastest first;
    // none at all is a single element.
    Run<Operands> levels[most_levels];
    int depth = 0;
    bool empty = false;
};

// Whether dimension goes on where inner ends, in every operand.
template <int Operands> bool continues(const Run<Operands> &inner, const Run<Operands> &dimension) {
    for (int o = 0; o < Operands; ++o)
        if (dimension.step.by[o] != inner.step.by[o] * inner.count) return false;
    return true;
}

// Field by field: a wide copy would wait for the narrow stores that made the record.
template <int Operands>
[[gnu::always_inline]] inline void append_level(Nest<Operands> &nest,
                                                const Run<Operands> &dimension) {
    Run<Operands> &level = nest.levels[nest.depth++];
    level.count = dimension.count;
    for (int o = 0; o < Operands; ++o) level.step.by[o] = dimension.step.by[o];
}

// Adds a dimension outside of those that nest has. Part of its caller, so that
// the dimension is never put together in memory first.
template <int Operands>
[[gnu::always_inline]] inline void add_dimension(Nest<Operands> &nest,
                                                 const Run<Operands> &dimension) {
    if (dimension.count <= 0) nest.empty = true;
    if (dimension.count <= 1) return;
    if (nest.depth > 0 && continues(nest.levels[nest.depth - 1], dimension))
        nest.levels[nest.depth - 1].count *= dimension.count;
    else
        append_level(nest, dimension);
}

template <int Operands>
void advance(Positions<Operands> &positions, const Steps<Operands> &step, std::ptrdiff_t times) {
    for (int o = 0; o < Operands; ++o) positions.at[o] += step.by[o] * times;
}

// Field by field, as above.
template <int Operands>
[[gnu::always_inline]] inline Positions<Operands>
advanced(const Positions<Operands> &positions, const Steps<Operands> &step, std::ptrdiff_t times) {
    Positions<Operands> there;
    for (int o = 0; o < Operands; ++o) there.at[o] = positions.at[o] + step.by[o] * times;
    return there;
}

// The walk over any number of levels; for_each_run below is the way in.
template <int Operands, class Visit>
void for_each_outer(const Nest<Operands> &nest, Positions<Operands> positions, Visit visit) {
    const Run<Operands> single_element = {1, {}};
    const Run<Operands> &run = nest.depth == 0 ? single_element : nest.levels[0];
    std::int32_t remaining[most_levels];
    for (int l = 1; l < nest.depth; ++l) remaining[l] = nest.levels[l].count - 1;
    while (visit(positions, run)) {
        int l = 1;
        for (; l < nest.depth && remaining[l] == 0; ++l) {
            remaining[l] = nest.levels[l].count - 1;
            advance(positions, nest.levels[l].step, -static_cast<std::ptrdiff_t>(remaining[l]));
        }
        if (l >= nest.depth) return;
        --remaining[l];
        advance(positions, nest.levels[l].step, 1);
    }
}

// Calls visit(positions, run) for every run of nest, in array element order, from
// the operands' first elements. visit returns whether to go on.
template <int Operands, class Visit>
[[gnu::always_inline]] inline void for_each_run(const Nest<Operands> &nest,
                                                const Positions<Operands> &first, Visit visit) {
    if (nest.empty) return;
    if (nest.depth == 1)
        visit(first, nest.levels[0]);
    else
        for_each_outer(nest, first, visit);
}

} // namespace quill

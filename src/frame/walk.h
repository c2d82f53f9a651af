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

template <int Operands> struct Nest {
    // Level 0 is the run handed to the family; the others have at least two elements.
    Run<Operands> levels[f90_MaxRank] = {{1, {}}};
    int depth = 1;
    bool empty = false;
};

// Adds a dimension outside of those that nest has.
template <int Operands> void add_dimension(Nest<Operands> &nest, const Run<Operands> &dimension) {
    if (dimension.count <= 0) nest.empty = true;
    if (dimension.count <= 1) return;
    Run<Operands> &inner = nest.levels[nest.depth - 1];
    if (inner.count == 1) { // nothing there yet
        inner = dimension;
        return;
    }
    for (int o = 0; o < Operands; ++o) {
        if (dimension.step.by[o] != inner.step.by[o] * inner.count) {
            nest.levels[nest.depth++] = dimension;
            return;
        }
    }
    inner.count *= dimension.count;
}

template <int Operands>
void advance(Positions<Operands> &positions, const Steps<Operands> &step, std::ptrdiff_t times) {
    for (int o = 0; o < Operands; ++o) positions.at[o] += step.by[o] * times;
}

// Calls visit(positions, run) for every run of nest, in array element order, from
// the operands' first elements. visit returns whether to go on.
template <int Operands, class Visit>
void for_each_run(const Nest<Operands> &nest, Positions<Operands> positions, Visit visit) {
    if (nest.empty) return;
    const Run<Operands> &run = nest.levels[0];
    if (nest.depth == 1) {
        visit(positions, run);
        return;
    }
    std::int32_t remaining[f90_MaxRank];
    for (int l = 1; l < nest.depth; ++l) remaining[l] = nest.levels[l].count - 1;
    while (visit(positions, run)) {
        int l = 1;
        while (remaining[l] == 0) {
            const Run<Operands> &level = nest.levels[l];
            remaining[l] = level.count - 1;
            advance(positions, level.step, -static_cast<std::ptrdiff_t>(remaining[l]));
            if (++l == nest.depth) return;
        }
        --remaining[l];
        advance(positions, nest.levels[l].step, 1);
    }
}

} // namespace quill

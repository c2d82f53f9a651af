// RESHAPE: the elements of SOURCE, and behind them those of PAD over and over, go to the
// elements of the result in the order that ORDER gives its dimensions. The validation is
// exported too; of what it would refuse the result's rest without PAD is left as it was.
#include "arrays/permuted.h"
#include "frame/creation.h"
#include "frame/elements.h"

namespace quill {
namespace {

// ---- SHAPE and ORDER ----------------------------------------------------------------------

// Of an integer of 64 bits the low word counts.
std::int32_t element(const f90_ArrDesc &vector, std::int32_t i) {
    const std::int32_t subscript = vector.Dim[0].Lower + i;
    return static_cast<std::int32_t>(
        load<Word>(from_origin(vector, subscript_offset(vector, &subscript, 1))));
}

ShapeVector shape_told(const f90_ArrDesc &shape) {
    ShapeVector told = {shape.EXTENT, {}};
    for (std::int32_t i = 0; i < told.count; ++i) told.extents[i] = element(shape, i);
    return told;
}

const f90_ArrDesc *order_in_use(const f90_ArgList &list) {
    return argument_given(list, 4) ? &descriptor(list.Arg4) : nullptr;
}

const f90_ArrDesc *pad_in_use(const f90_ArgList &list) {
    if (!argument_given(list, 3)) return nullptr;
    const f90_ArrDesc &pad = descriptor(list.Arg3);
    return pad.EXTENT == 0 ? nullptr : &pad;
}

// ---- Validation -----------------------------------------------------------------------------

// The result and the elements of SHAPE, one by one; returns their product, in 32 bits.
std::int32_t check_shape(const char *name, const f90_ArgList &list, const f90_ArrDesc &shape) {
    const f90_ArrDesc &result = descriptor(list.Result);
    const std::int32_t rank = shape.EXTENT;
    if (rank < 1 || rank > f90_MaxRank) f90_ArrLibError(name, 1, rank);
    if (result_given(list) && result.RANK != rank)
        f90_ArrLibError(name, 3, static_cast<std::int32_t>(result.RANK), rank);
    std::uint32_t product = 1;
    for (std::int32_t i = 0; i < rank; ++i) {
        const std::int32_t wanted = element(shape, i);
        if (wanted < 0) f90_ArrLibError(name, 2, &shape);
        if (result_given(list) && extent(result.Dim[i]) != wanted)
            f90_ArrLibError(name, 4, &result, &shape);
        product *= static_cast<std::uint32_t>(wanted);
    }
    return static_cast<std::int32_t>(product);
}

bool is_permutation(const f90_ArrDesc &order) {
    for (std::int32_t i = 0; i < order.EXTENT; ++i) {
        const std::int32_t dim = element(order, i);
        if (dim < 1 || dim > order.EXTENT) return false;
        for (std::int32_t j = i + 1; j < order.EXTENT; ++j)
            if (element(order, j) == dim) return false;
    }
    return true;
}

void validate(const f90_ArgList &list, const char *name) {
    const f90_ArrDesc &source = descriptor(list.Arg1);
    const f90_ArrDesc &shape = descriptor(list.Arg2);
    const std::int32_t product = check_shape(name, list, shape);
    if (pad_in_use(list) == nullptr && source.EXTENT < product)
        f90_ArrLibError(name, 5, product, source.EXTENT);
    const f90_ArrDesc *order = order_in_use(list);
    if (order == nullptr) return;
    if (order->RANK != shape.RANK || order->EXTENT != shape.EXTENT)
        f90_ArrLibError(name, 6, &shape, order);
    if (!is_permutation(*order)) f90_ArrLibError(name, 7, shape.EXTENT, order);
}

// ---- Walks ------------------------------------------------------------------------------

// Over the result, dimension ORDER(1) varying fastest.
Cursor walk_in_order(const f90_ArrDesc &result, const f90_ArrDesc &order) {
    Cursor cursor;
    for (std::int32_t i = 0; i < order.EXTENT; ++i) {
        const int along = element(order, i) - 1;
        add_dimension(cursor.nest, {extent(result.Dim[along]), {{byte_step(result, along)}}});
    }
    start(cursor, base(result));
    return cursor;
}

// Pairs the levels of two walks, splitting those that do not end together: as far as the
// first `turns` at the outermost level of `to`. False where they cannot be split so.
bool pair_levels(Moves &pairs, const Nest<1> &to, std::int32_t turns, const Nest<1> &from) {
    int f = 0;
    std::int32_t used = 1; // of from's level f, in steps of it
    for (int t = 0; t < to.depth; ++t) {
        std::int32_t left = t == to.depth - 1 ? turns : to.levels[t].count;
        std::ptrdiff_t to_step = to.levels[t].step.by[0];
        while (left > 1) {
            const Run<1> &level = from.levels[f];
            const bool outermost = f == from.depth - 1; // goes on as far as it is needed
            const std::int32_t take = outermost ? left : std::min(left, level.count / used);
            const bool fits = outermost || (left % take == 0 && level.count % (used * take) == 0);
            if (!fits || pairs.depth == most_levels) return false;
            add_dimension(pairs, {take, {{to_step, level.step.by[0] * used}}});
            to_step *= take;
            left = outermost ? 1 : left / take;
            used *= take;
            if (!outermost && used == level.count) {
                used = 1;
                ++f;
            }
        }
    }
    return true;
}

void pass_over(Cursor &cursor, std::int32_t count) {
    while (const std::int32_t part = std::min(count, cursor.left)) {
        advance(cursor, part);
        count -= part;
    }
}

// ---- Moving -------------------------------------------------------------------------------

// Moves what fills whole turns of the result's outermost dimension, of the first `count`
// elements; returns how many elements. `total` are the result's.
std::int32_t move_turns(const Elements &elements, Cursor &to, Cursor &from, std::int32_t count,
                        std::int32_t total) {
    const int outermost = to.nest.depth - 1;
    const Run<1> &level = to.nest.levels[outermost];
    std::int32_t turns = level.count;
    std::int32_t moved = total;
    if (count < total) { // the division takes its time
        const std::int32_t in_turn = total / level.count;
        turns = count / in_turn;
        moved = turns * in_turn;
    }
    Moves moves;
    if (turns == 0 || !pair_levels(moves, to.nest, turns, from.nest)) return 0;
    move_permuted(elements, moves, to.at, from.at);
    if (count < total) {
        to.at += turns * level.step.by[0];
        to.remaining[outermost] -= turns;
        pass_over(from, moved);
    }
    return moved;
}

// PAD's cursor starts over by itself; in a result without gaps what stands is copied on.
void fill_from_pad(const Elements &elements, Cursor &to, const f90_ArrDesc &pad,
                   std::int32_t count) {
    const std::int32_t size = elements.elsize;
    Cursor from =
        pad.EXTENT == 1 ? walk_along(base(pad), 0, count) : walk(pad, pad.NONCONTIG != 0, size);
    if (to.nest.depth > 1 || to.step() != size || pad.EXTENT == 1)
        return move_stream(elements, to, from, count);
    Bytes first = to.at;
    move_stream(elements, to, from, std::min(count, pad.EXTENT));
    copy_on(first, bytes_of(pad.EXTENT, size), bytes_of(count, size));
}

void reshape(const f90_ArgList *list, std::int32_t name_size, const char *name) {
    const f90_ArrDesc &source = descriptor(list->Arg1);
    f90_ArrDesc &result = descriptor(list->Result);
    if (checks_wanted(*list)) validate(*list, name);
    const std::int32_t size = name_size == any_size ? source.ELSIZE : name_size;
    if (!result_given(*list)) create(result, shape_told(descriptor(list->Arg2)), size);
    const std::int32_t total = result.EXTENT;
    if (total == 0) return;

    const Elements elements = elements_of(size);
    const f90_ArrDesc *order = order_in_use(*list);
    Cursor to = order != nullptr ? walk_in_order(result, *order)
                                 : walk(result, result.NONCONTIG != 0, size);
    Cursor from = walk(source, source.NONCONTIG != 0, size);
    const std::int32_t count = std::min(total, source.EXTENT);
    std::int32_t moved = 0;
    if (count > 0) {
        if (to.nest.depth > 1) moved = move_turns(elements, to, from, count, total);
        move_stream(elements, to, from, count - moved);
    }
    const f90_ArrDesc *pad = pad_in_use(*list);
    if (count < total && pad != nullptr) fill_from_pad(elements, to, *pad, total - count);
}

void reshape(const f90_ArgList *list, std::int32_t size) { reshape(list, size, "RESHAPE"); }
void kreshape(const f90_ArgList *list, std::int32_t size) { reshape(list, size, "KRESHAPE"); }

} // namespace
} // namespace quill

extern "C" {

void f90_Reshape_Validation(f90_ArgList *list) { quill::validate(*list, "RESHAPE"); }
void f90_kReshape_Validation(f90_ArgList *list) { quill::validate(*list, "KRESHAPE"); }

void f90_reshape1(f90_ArgList *list) { quill::reshape(list, 1); }
void f90_reshape2(f90_ArgList *list) { quill::reshape(list, 2); }
void f90_reshape4(f90_ArgList *list) { quill::reshape(list, 4); }
void f90_reshape8(f90_ArgList *list) { quill::reshape(list, 8); }
void f90_reshape10(f90_ArgList *list) { quill::reshape(list, 10); }
void f90_reshape16(f90_ArgList *list) { quill::reshape(list, 16); }
void f90_reshape20(f90_ArgList *list) { quill::reshape(list, 20); }
void f90_reshape32(f90_ArgList *list) { quill::reshape(list, 32); }
void f90_reshapen(f90_ArgList *list) { quill::reshape(list, quill::any_size); }

void f90_kreshape1(f90_ArgList *list) { quill::kreshape(list, 1); }
void f90_kreshape2(f90_ArgList *list) { quill::kreshape(list, 2); }
void f90_kreshape4(f90_ArgList *list) { quill::kreshape(list, 4); }
void f90_kreshape8(f90_ArgList *list) { quill::kreshape(list, 8); }
void f90_kreshape10(f90_ArgList *list) { quill::kreshape(list, 10); }
void f90_kreshape16(f90_ArgList *list) { quill::kreshape(list, 16); }
void f90_kreshape20(f90_ArgList *list) { quill::kreshape(list, 20); }
void f90_kreshape32(f90_ArgList *list) { quill::kreshape(list, 32); }
void f90_kreshapen(f90_ArgList *list) { quill::kreshape(list, quill::any_size); }

} // extern "C"

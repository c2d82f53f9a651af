// PACK: the elements of ARRAY that MASK selects, in array element order, and behind them what
// VECTOR has there. A result of unknown size is packed into storage for all of ARRAY and then
// moved into its own: only the checks count MASK beforehand.
#include "arrays/groups.h"
#include "frame/creation.h"
#include "frame/moves.h"

namespace quill {
namespace {

// ---- Blocks -----------------------------------------------------------------------------

// Moves the elements that a block selects.
using PackBlock = void(const Truth &truth, std::int32_t elsize, Bytes to, std::ptrdiff_t to_step,
                       ConstBytes from, std::ptrdiff_t from_step);

// Which position of a group each packed element comes from.
constexpr Orders pack_orders = [] {
    Orders orders{};
    for (unsigned set = 0; set < orders.size(); ++set)
        for (unsigned from = 0, to = 0; from < group; ++from)
            if ((set >> from & 1U) != 0) orders[set][to++] = static_cast<std::uint8_t>(from);
    return orders;
}();

// Packs `groups` whole groups of dense elements; returns how many elements.
template <std::int32_t Size>
[[gnu::target("avx2")]] std::int32_t pack_groups(const Truth &truth, std::int32_t groups, Bytes to,
                                                 ConstBytes from) {
    constexpr std::int32_t positions = Row<Size>::positions;
    Bytes next = to;
    for (std::int32_t g = 0; g < groups; ++g) {
        std::uint32_t sets = group_bits(truth, g);
        for (std::int32_t part = 0; part < group; part += positions) {
            const std::uint32_t set = sets & ((1U << positions) - 1U);
            const Order &order = order_of<pack_orders, Size>(set);
            Row<Size>::store(next, Row<Size>::ordered(Row<Size>::load(from), order));
            next += __builtin_popcount(set) * Size;
            from += positions * Size;
            sets >>= positions;
        }
    }
    return (next - to) / Size;
}

// Packs a block, or the rest of it from position `first` on.
template <std::int32_t Size>
[[gnu::always_inline]] inline void
pack_positions(const Truth &truth, std::int32_t first, std::int32_t elsize, Bytes to,
               std::ptrdiff_t to_step, ConstBytes from, std::ptrdiff_t from_step) {
    if (is_sparse(truth)) {
        for_each_true(truth, first, [&](std::int32_t position) {
            move_element<Size>(to, from + position * from_step, elsize);
            to += to_step;
        });
    } else { // what is not selected is overwritten by what is, up to the last selected one
        from += first * from_step;
        for_each_position(truth, first, end_of_trues(truth), [&](std::uint32_t selected) {
            move_element<Size>(to, from, elsize);
            to += to_step & static_cast<std::ptrdiff_t>(selected);
            from += from_step;
        });
    }
}

template <std::int32_t Size>
void pack_block(const Truth &truth, std::int32_t elsize, Bytes to, std::ptrdiff_t to_step,
                ConstBytes from, std::ptrdiff_t from_step) {
    if constexpr (has_rows<Size>) {
        if (to_step == Size && from_step == Size && take_rows(truth)) {
            const std::int32_t groups = whole_groups(truth);
            to += pack_groups<Size>(truth, groups, to, from) * Size;
            return pack_positions<Size>(truth, groups * group, elsize, to, Size, from, Size);
        }
    }
    if (Size != any_size && to_step == Size && from_step == Size)
        return pack_positions<Size>(truth, 0, elsize, to, Size, from, Size);
    pack_positions<Size>(truth, 0, elsize, to, to_step, from, from_step);
}

// ---- The call ---------------------------------------------------------------------------

struct Packing {
    const f90_ArrDesc &array;
    const f90_ArrDesc &mask;
    const f90_ArrDesc *vector; // null: absent, or without elements
    const f90_ArrDesc &result;
    bool walked; // all by their steps, one of them not being dense
};

const f90_ArrDesc *vector_in_use(const f90_ArgList &list) {
    if (!argument_given(list, 3)) return nullptr;
    const f90_ArrDesc &vector = descriptor(list.Arg3);
    return vector.EXTENT == 0 ? nullptr : &vector;
}

bool selects_all(const f90_ArrDesc &scalar_mask) { return load<Word>(base(scalar_mask)) != 0; }

std::ptrdiff_t step(const Packing &packing, const f90_ArrDesc &rank_1_operand) {
    return packing.walked ? byte_step(rank_1_operand, 0) : packing.array.ELSIZE;
}

// ---- Checks -----------------------------------------------------------------------------

std::int32_t count_selected(const Packing &packing) {
    Truth truth;
    std::int32_t selected = 0;
    Cursor mask = walk(packing.mask, packing.walked, sizeof(Word));
    std::int32_t ahead = packing.mask.EXTENT;
    while (const std::int32_t count = std::min({ahead, mask.left, Truth::most})) {
        read_truth(truth, mask, count);
        selected += truth.trues;
        advance(mask, count);
        ahead -= count;
    }
    return selected;
}

void check(const Packing &packing) {
    const auto &[array, mask, vector, result, walked] = packing;
    if (vector != nullptr && result.EXTENT != vector->EXTENT)
        f90_ArrLibError("PACK", 3, result.EXTENT, vector->EXTENT);
    if (mask.RANK == 0) {
        if (selects_all(mask) && result.EXTENT < array.EXTENT)
            f90_ArrLibError("PACK", 3, result.EXTENT, array.EXTENT);
        return;
    }
    if (mask.RANK != array.RANK || mask.EXTENT != array.EXTENT ||
        !conforms<clamped_span>(array, mask, array.RANK))
        f90_ArrLibError("PACK", 1, &array, &mask);
    const std::int32_t selected = count_selected(packing);
    if (vector != nullptr && vector->EXTENT < selected)
        f90_ArrLibError("PACK", 2, vector->EXTENT, selected);
    if (vector == nullptr && result.EXTENT < selected)
        f90_ArrLibError("PACK", 3, result.EXTENT, selected);
}

// ---- Packing ----------------------------------------------------------------------------

std::int32_t pack_all(const Packing &packing, MoveRun *move_run) {
    const std::int32_t elsize = packing.array.ELSIZE;
    Cursor array = walk(packing.array, packing.walked, elsize);
    Bytes to = base(packing.result);
    std::int32_t ahead = packing.array.EXTENT;
    while (const std::int32_t count = std::min(ahead, array.left)) {
        move_run(elsize, to, step(packing, packing.result), array.at, array.step(), count);
        to += count * step(packing, packing.result);
        advance(array, count);
        ahead -= count;
    }
    return packing.array.EXTENT;
}

std::int32_t pack_selected(const Packing &packing, PackBlock *pack_block) {
    const std::int32_t elsize = packing.array.ELSIZE;
    const std::ptrdiff_t to_step = step(packing, packing.result);
    Cursor mask = walk(packing.mask, packing.walked, sizeof(Word));
    Cursor array = walk(packing.array, packing.walked, elsize);
    Truth truth;
    std::int32_t packed = 0;
    std::int32_t ahead = packing.mask.EXTENT;
    while (const std::int32_t count = std::min({ahead, mask.left, array.left, Truth::most})) {
        read_truth(truth, mask, count);
        pack_block(truth, elsize, base(packing.result) + packed * to_step, to_step, array.at,
                   array.step());
        packed += truth.trues;
        advance(mask, count);
        advance(array, count);
        ahead -= count;
    }
    return packed;
}

// Fills the result behind what was packed with the last of VECTOR's elements, so that it has
// `size` of them in all.
void fill_from_vector(const Packing &packing, std::int32_t packed, std::int32_t size,
                      MoveRun *move_run) {
    const f90_ArrDesc &vector = *packing.vector;
    const std::int32_t count = size - packed;
    const std::ptrdiff_t to_step = step(packing, packing.result);
    const std::ptrdiff_t from_step = step(packing, vector);
    if (count > 0)
        move_run(packing.array.ELSIZE, base(packing.result) + packed * to_step, to_step,
                 base(vector) + (vector.EXTENT - count) * from_step, from_step, count);
}

// Gives a provisional result its final size, in storage of its own.
void finish(f90_ArrDesc &result, std::int32_t size) {
    Bytes provisional = base(result);
    result.Dim[0].Upper = size;
    f90_CreateArrayM(&result);
    copy_bytes(base(result), provisional, bytes_of(size, result.ELSIZE));
    f90_freespace(provisional);
}

void pack(const f90_ArgList *list, MoveRun *move_run, PackBlock *pack_block) {
    const f90_ArrDesc &array = descriptor(list->Arg1);
    const f90_ArrDesc &mask = descriptor(list->Arg2);
    const f90_ArrDesc *vector = vector_in_use(*list);
    f90_ArrDesc &result = descriptor(list->Result);
    const bool created = !result_given(*list);
    if (created)
        create(result, {1, {vector != nullptr ? vector->EXTENT : array.EXTENT}}, array.ELSIZE);
    if (result.EXTENT == 0) return;

    const bool scalar_mask = mask.RANK == 0;
    const bool walked = result.NONCONTIG != 0 || array.NONCONTIG != 0 ||
                        (!scalar_mask && mask.NONCONTIG != 0) ||
                        (vector != nullptr && vector->NONCONTIG != 0);
    const Packing packing = {array, mask, vector, result, walked};
    if (checks_wanted(*list)) check(packing);
    std::int32_t packed = 0;
    if (scalar_mask && selects_all(mask))
        packed = pack_all(packing, move_run);
    else if (!scalar_mask)
        packed = pack_selected(packing, pack_block);

    const bool counted = !scalar_mask && mask.EXTENT != 0;
    if (vector != nullptr)
        fill_from_vector(packing, packed, counted ? result.EXTENT : vector->EXTENT, move_run);
    else if (created)
        finish(result, packed);
}

template <std::int32_t Size> void pack(const f90_ArgList *list) {
    pack(list, move_run<Size>, pack_block<Size>);
}

} // namespace
} // namespace quill

extern "C" {

void f90_pack1(f90_ArgList *list) { quill::pack<1>(list); }
void f90_pack2(f90_ArgList *list) { quill::pack<2>(list); }
void f90_pack4(f90_ArgList *list) { quill::pack<4>(list); }
void f90_pack8(f90_ArgList *list) { quill::pack<8>(list); }
void f90_pack10(f90_ArgList *list) { quill::pack<10>(list); }
void f90_pack16(f90_ArgList *list) { quill::pack<16>(list); }
void f90_pack20(f90_ArgList *list) { quill::pack<20>(list); }
void f90_pack32(f90_ArgList *list) { quill::pack<32>(list); }
void f90_packn(f90_ArgList *list) { quill::pack<quill::any_size>(list); }

} // extern "C"

// UNPACK: an array of MASK's shape, the next element of VECTOR where MASK is true and FIELD's
// where it is false, in array element order. Operands of different shapes, which only the
// checks rule out, go side by side in their own orders until MASK or the result ends.
#include "arrays/groups.h"
#include "frame/creation.h"
#include "frame/moves.h"

namespace quill {
namespace {

// ---- Blocks -----------------------------------------------------------------------------

// Where elements are taken from: the next one, and the step to the one behind it.
struct Source {
    ConstBytes at;
    std::ptrdiff_t step;
};

// Makes the part of the result that belongs to a block.
using UnpackBlock = void(const Truth &truth, std::int32_t elsize, Bytes to, std::ptrdiff_t to_step,
                         Source vector, const Source &field);

// Which of the packed elements each position of a group takes, if it is true.
constexpr Orders unpack_orders = [] {
    Orders orders{};
    for (unsigned set = 0; set < orders.size(); ++set)
        for (unsigned to = 0, from = 0; to < group; from += set >> to++ & 1U)
            orders[set][to] = static_cast<std::uint8_t>(from);
    return orders;
}();

// Unpacks `groups` whole groups of dense elements; returns how many elements of vector. From
// one group of field to the next are field_step bytes.
template <std::int32_t Size>
[[gnu::target("avx2")]] std::int32_t unpack_groups(const Truth &truth, std::int32_t groups,
                                                   Bytes to, ConstBytes vector, ConstBytes field,
                                                   std::ptrdiff_t field_step) {
    constexpr std::int32_t positions = Row<Size>::positions;
    ConstBytes next = vector;
    for (std::int32_t g = 0; g < groups; ++g) {
        std::uint32_t sets = group_bits(truth, g);
        for (std::int32_t part = 0; part < group; part += positions) {
            const std::uint32_t set = sets & ((1U << positions) - 1U);
            const Order &order = order_of<unpack_orders, Size>(set);
            Row<Size>::store(to, Row<Size>::chosen(set,
                                                   Row<Size>::ordered(Row<Size>::load(next), order),
                                                   Row<Size>::load(field + part * Size)));
            next += __builtin_popcount(set) * Size;
            to += positions * Size;
            sets >>= positions;
        }
        field += field_step;
    }
    return (next - vector) / Size;
}

// Unpacks a block, or the rest of it from position `first` on; to and field are those of the
// block, vector has the next element.
template <std::int32_t Size>
[[gnu::always_inline]] inline void
unpack_positions(const Truth &truth, std::int32_t first, std::int32_t elsize, Bytes to,
                 std::ptrdiff_t to_step, Source vector, Source field) {
    if (is_sparse(truth)) { // field all over, and vector on it
        move_run<Size>(elsize, to + first * to_step, to_step, field.at + first * field.step,
                       field.step, truth.positions - first);
        for_each_true(truth, first, [&](std::int32_t position) {
            move_element<Size>(to + position * to_step, vector.at, elsize);
            vector.at += vector.step;
        });
    } else {
        to += first * to_step;
        field.at += first * field.step;
        for_each_position(truth, first, truth.positions, [&](std::uint32_t wanted) {
            const auto chosen = static_cast<std::ptrdiff_t>(wanted);
            move_element<Size>(to, field.at + ((vector.at - field.at) & chosen), elsize);
            to += to_step;
            vector.at += vector.step & chosen;
            field.at += field.step;
        });
    }
}

// Few of 16 bytes are found faster one by one.
template <std::int32_t Size>
void unpack_block(const Truth &truth, std::int32_t elsize, Bytes to, std::ptrdiff_t to_step,
                  Source vector, const Source &field) {
    std::int32_t first = 0;
    if constexpr (has_rows<Size> || Size == 16) {
        if (to_step == Size && vector.step == Size && (field.step == Size || field.step == 0) &&
            take_rows(truth) && (Size < 16 || !is_sparse(truth))) {
            std::byte repeated[group * Size];
            for (std::int32_t i = 0; i < group; ++i)
                move_element<Size>(repeated + i * Size, field.at, elsize);
            const std::int32_t groups = whole_groups(truth);
            vector.at += Size * unpack_groups<Size>(truth, groups, to, vector.at,
                                                    field.step == 0 ? repeated : field.at,
                                                    field.step * group);
            first = groups * group;
        }
    }
    if (Size != any_size && to_step == Size && vector.step == Size && field.step == Size)
        return unpack_positions<Size>(truth, first, elsize, to, Size, {vector.at, Size},
                                      {field.at, Size});
    unpack_positions<Size>(truth, first, elsize, to, to_step, vector, field);
}

// ---- The call ---------------------------------------------------------------------------

struct Unpacking {
    const f90_ArrDesc &vector;
    const f90_ArrDesc &mask;
    const f90_ArrDesc &field;
    const f90_ArrDesc &result;
    std::int32_t positions;
    bool walked; // all by their steps, one of them not being dense
};

// A FIELD of one element goes on and on.
Cursor walk_field(const Unpacking &unpacking) {
    if (unpacking.field.RANK == 0) return walk_along(base(unpacking.field), 0, unpacking.positions);
    return walk(unpacking.field, unpacking.walked, unpacking.vector.ELSIZE);
}

// ---- Checks -----------------------------------------------------------------------------

// Of a MASK that is not dense, the lowest bit of each word counts.
std::int32_t count_wanted(const Unpacking &unpacking) {
    std::int32_t count = 0;
    Cursor mask = walk(unpacking.mask, unpacking.walked, sizeof(Word));
    std::int32_t ahead = unpacking.positions;
    while (const std::int32_t run = std::min(ahead, mask.left)) {
        for (std::int32_t i = 0; i < run; ++i) {
            const Word word = load<Word>(mask.at + i * mask.step());
            count += unpacking.mask.NONCONTIG != 0 ? (word & 1U) != 0 : word != 0;
        }
        advance(mask, run);
        ahead -= run;
    }
    return count;
}

void check(const Unpacking &unpacking) {
    const f90_ArrDesc &mask = unpacking.mask;
    if (!conforms<extent>(unpacking.result, mask, unpacking.result.RANK))
        f90_ArrLibError("UNPACK", 1, &unpacking.result, &mask);
    if (!conforms<extent>(unpacking.field, mask, unpacking.field.RANK))
        f90_ArrLibError("UNPACK", 2, &mask, &unpacking.field);
    const std::int32_t wanted = count_wanted(unpacking);
    if (unpacking.vector.EXTENT < wanted)
        f90_ArrLibError("UNPACK", 3, unpacking.vector.EXTENT, wanted);
}

// ---- Unpacking --------------------------------------------------------------------------

void unpack_all(const Unpacking &unpacking, UnpackBlock *unpack_block) {
    const std::int32_t elsize = unpacking.vector.ELSIZE;
    Cursor result = walk(unpacking.result, unpacking.walked, elsize);
    Cursor mask = walk(unpacking.mask, unpacking.walked, sizeof(Word));
    Cursor field = walk_field(unpacking);
    Source vector = {base(unpacking.vector),
                     unpacking.walked ? byte_step(unpacking.vector, 0) : elsize};
    Truth truth;
    std::int32_t ahead = unpacking.positions;
    while (const std::int32_t count =
               std::min({ahead, result.left, mask.left, field.left, Truth::most})) {
        read_truth(truth, mask, count);
        unpack_block(truth, elsize, result.at, result.step(), vector, {field.at, field.step()});
        vector.at += truth.trues * vector.step;
        advance(result, count);
        advance(mask, count);
        advance(field, count);
        ahead -= count;
    }
}

void unpack(const f90_ArgList *list, UnpackBlock *unpack_block) {
    const f90_ArrDesc &vector = descriptor(list->Arg1);
    const f90_ArrDesc &mask = descriptor(list->Arg2);
    const f90_ArrDesc &field = descriptor(list->Arg3);
    f90_ArrDesc &result = descriptor(list->Result);
    if (!result_given(*list)) create(result, shape_of(mask), vector.ELSIZE);
    const bool walked = result.NONCONTIG != 0 || vector.NONCONTIG != 0 || mask.NONCONTIG != 0 ||
                        (field.RANK != 0 && field.NONCONTIG != 0);
    const Unpacking unpacking = {vector, mask, field, result, std::min(mask.EXTENT, result.EXTENT),
                                 walked};
    if (checks_wanted(*list)) check(unpacking);
    unpack_all(unpacking, unpack_block);
}

} // namespace
} // namespace quill

extern "C" {

void f90_unpack1(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<1>); }
void f90_unpack2(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<2>); }
void f90_unpack4(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<4>); }
void f90_unpack8(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<8>); }
void f90_unpack10(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<10>); }
void f90_unpack16(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<16>); }
void f90_unpack20(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<20>); }
void f90_unpack32(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<32>); }
void f90_unpackn(f90_ArgList *list) { quill::unpack(list, quill::unpack_block<quill::any_size>); }

} // extern "C"

// TRANSFER: the bytes of SOURCE's elements, as a stream, become those of the result's, whose
// size need not divide theirs. Of a result that SIZE makes longer the rest is zeros. SIZE has
// 64 bits in the k members, and every count here does.
#include "frame/creation.h"
#include "frame/moves.h"

#include <algorithm>
#include <numeric>

namespace quill {
namespace {

struct Form {
    const char *name;
    bool wide; // SIZE has 64 bits, and a scalar SOURCE as many elements as its EXTENT tells
};
constexpr Form plain_form = {"TRANSFER", false};
constexpr Form k_form = {"KTRANSFER", true};

// The elements of a stream of bytes.
struct Stream {
    const f90_ArrDesc &array;
    std::int64_t count;
    bool gapless;

    std::int64_t bytes() const { return count * array.ELSIZE; }
};

bool size_given(const f90_ArgList &list) { return argument_given(list, 3); }

std::int64_t size_told(const f90_ArgList &list, const Form &form) {
    if (!form.wide) return value(list.Arg3);
    return static_cast<std::int64_t>(std::uint64_t{list.Arg3.Word1} << 32 | list.Arg3.Word0);
}

// Of elements without bytes there is no number that would do.
std::int64_t elements_for(std::int64_t bytes, std::int32_t elsize) {
    return elsize == 0 ? 0 : (bytes + elsize - 1) / elsize;
}

void check(const f90_ArgList &list, const Form &form, std::int64_t count) {
    const f90_ArrDesc &result = descriptor(list.Result);
    const f90_ArrDesc &mold = descriptor(list.Arg2);
    const auto low_word = static_cast<std::int32_t>(count);
    if (size_given(list) && count < 0) f90_ArrLibError(form.name, 1, low_word);
    if (!result_given(list) || (!size_given(list) && mold.RANK == 0)) return;
    if (result.EXTENT != (size_given(list) ? low_word : count))
        f90_ArrLibError(form.name, 2, result.EXTENT, low_word);
}

void create_result(const f90_ArgList &list, std::int64_t count) {
    f90_ArrDesc &result = descriptor(list.Result);
    const f90_ArrDesc &mold = descriptor(list.Arg2);
    if (mold.ELSIZE > 0) result.ELSIZE = mold.ELSIZE;
    result.RANK = static_cast<std::int8_t>(mold.RANK != 0 || size_given(list));
    result.Dim[0].Lower = 1;
    result.Dim[0].Upper = static_cast<std::int32_t>(count);
    f90_CreateArrayM(&result);
}

// The walk over a stream by units of bytes, into which its elements divide unless it is
// gapless: such a one may end within a unit, and the walk stays there.
Cursor walk_units(const Stream &stream, std::int32_t unit) {
    if (stream.gapless)
        return walk_along(base(stream.array), unit,
                          static_cast<std::int32_t>(stream.bytes() / unit + 1));
    return walk_over(stream.array, {stream.array.ELSIZE / unit, {{unit}}});
}

// Moves the first `bytes` bytes, more than none. Elements of one size go whole, as many bytes
// of each as the name of the entry says.
void move_stream(const Stream &to, const Stream &from, std::int64_t bytes, MoveRun *move_same) {
    if (to.gapless && from.gapless)
        return copy_bytes(base(to.array), base(from.array), static_cast<std::size_t>(bytes));
    const std::int32_t to_size = to.array.ELSIZE;
    const std::int32_t from_size = from.array.ELSIZE;
    const std::int32_t unit = to.gapless     ? from_size
                              : from.gapless ? to_size
                                             : std::gcd(to_size, from_size);
    const bool same = !to.gapless && to_size == from_size;
    const Elements elements = {unit, same ? move_same : move_run_of(unit)};
    Cursor into = walk_units(to, unit);
    Cursor out_of = walk_units(from, unit);
    move_stream(elements, into, out_of, static_cast<std::int32_t>(bytes / unit));
    copy_bytes(into.at, out_of.at, static_cast<std::size_t>(bytes % unit));
}

// Zeros from byte number `first` on.
void clear(const Stream &stream, std::int64_t first) {
    const std::int32_t size = stream.array.ELSIZE;
    Bytes at = base(stream.array);
    if (stream.gapless) {
        std::memset(at + first, 0, static_cast<std::size_t>(stream.bytes() - first));
        return;
    }
    const auto element = static_cast<std::int32_t>(first / size);
    std::int32_t part = static_cast<std::int32_t>(first % size);
    for (std::int32_t i = element; i < stream.count; ++i, part = 0)
        std::memset(at + i * byte_step(stream.array, 0) + part, 0,
                    static_cast<std::size_t>(size - part));
}

void transfer(const f90_ArgList *list, MoveRun *move_same, const Form &form) {
    const f90_ArrDesc &source = descriptor(list->Arg1);
    const f90_ArrDesc &mold = descriptor(list->Arg2);
    const bool scalar = mold.RANK == 0 && !size_given(*list);
    const Stream from = {source, source.RANK == 0 && !form.wide ? 1 : source.EXTENT,
                         source.NONCONTIG == 0};
    const std::int64_t count = size_given(*list) ? size_told(*list, form)
                               : scalar          ? 1
                                                 : elements_for(from.bytes(), mold.ELSIZE);
    if (checks_wanted(*list)) check(*list, form, count);
    if (!result_given(*list)) create_result(*list, count);

    const f90_ArrDesc &result = descriptor(list->Result);
    const Stream to = {result, count, scalar || result.NONCONTIG == 0};
    const std::int64_t moved = std::min(from.bytes(), to.bytes());
    if (moved > 0) move_stream(to, from, moved, move_same);
    if (size_given(*list) && moved < to.bytes()) clear(to, moved);
}

void transfer(const f90_ArgList *list, MoveRun *move_same) {
    transfer(list, move_same, plain_form);
}
void ktransfer(const f90_ArgList *list, MoveRun *move_same) { transfer(list, move_same, k_form); }

} // namespace
} // namespace quill

extern "C" {

void f90_transfer1(f90_ArgList *list) { quill::transfer(list, quill::move_run<1>); }
void f90_transfer2(f90_ArgList *list) { quill::transfer(list, quill::move_run<2>); }
void f90_transfer4(f90_ArgList *list) { quill::transfer(list, quill::move_run<4>); }
void f90_transfer8(f90_ArgList *list) { quill::transfer(list, quill::move_run<8>); }
void f90_transfer10(f90_ArgList *list) { quill::transfer(list, quill::move_run<10>); }
void f90_transfer16(f90_ArgList *list) { quill::transfer(list, quill::move_run<16>); }
void f90_transfer20(f90_ArgList *list) { quill::transfer(list, quill::move_run<20>); }
void f90_transfer32(f90_ArgList *list) { quill::transfer(list, quill::move_run<32>); }
void f90_transfern(f90_ArgList *list) { quill::transfer(list, quill::move_run<quill::any_size>); }

void f90_ktransfer1(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<1>); }
void f90_ktransfer2(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<2>); }
void f90_ktransfer4(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<4>); }
void f90_ktransfer8(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<8>); }
void f90_ktransfer10(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<10>); }
void f90_ktransfer16(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<16>); }
void f90_ktransfer20(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<20>); }
void f90_ktransfer32(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<32>); }
void f90_ktransfern(f90_ArgList *list) { quill::ktransfer(list, quill::move_run<quill::any_size>); }

} // extern "C"

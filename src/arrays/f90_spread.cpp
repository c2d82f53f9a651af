// SPREAD: NCOPIES of SOURCE along a new dimension DIM. Created results come before the checks.
#include "frame/creation.h"
#include "frame/moves.h"

#include <algorithm>

namespace quill {
namespace {

struct Spreading {
    const f90_ArrDesc &source;
    std::int32_t dim;
    int along; // DIM - 1
    std::int32_t copies;
};

// A DIM that names no dimension leaves the last one empty; its report follows.
ShapeVector expected_shape(const Spreading &call) {
    ShapeVector shape = {call.source.RANK + 1, {}};
    for (int i = 0, next = 0; i < shape.count; ++i) {
        if (i == call.along)
            shape.extents[i] = call.copies;
        else if (next < call.source.RANK)
            shape.extents[i] = extent(call.source.Dim[next++]);
    }
    return shape;
}

// Along DIM the result may be longer.
void check(const Spreading &call, const f90_ArrDesc &result) {
    const std::int32_t rank = call.source.RANK + 1;
    if (call.along < 0 || call.along >= rank) f90_ArrLibError("SPREAD", 1, call.dim, rank);
    const ShapeVector expected = expected_shape(call);
    for (int i = 0; i < rank; ++i) {
        const std::int32_t there = extent(result.Dim[i]);
        if (i == call.along ? there < expected.extents[i] : there != expected.extents[i])
            f90_ArrLibError("SPREAD", 2, &result, report(expected));
    }
}

// Copies a run of `bytes` to adjacent places. A long one goes by chunks, each to all places
// while it is in the nearest cache.
void copy_run(Bytes to, ConstBytes from, std::size_t bytes, std::int32_t copies) {
    constexpr std::size_t chunk = 3600;
    if (bytes <= chunk) {
        copy_bytes(to, from, bytes);
        return copy_on(to, bytes, bytes_of(copies, bytes));
    }
    for (std::size_t done = 0; done < bytes; done += chunk) {
        const std::size_t part = std::min(chunk, bytes - done);
        for (std::int32_t k = 0; k < copies; ++k)
            copy_bytes(to + bytes_of(k, bytes) + done, from + done, part);
    }
}

// Makes of each of `count` adjacent elements a run of copies, one run every `distance` bytes.
using RepeatEach = void(std::int32_t elsize, Bytes to, std::ptrdiff_t distance, ConstBytes from,
                        std::int32_t count, std::int32_t copies);

template <std::int32_t Size>
void repeat_each(std::int32_t elsize, Bytes to, std::ptrdiff_t distance, ConstBytes from,
                 std::int32_t count, std::int32_t copies) {
    constexpr std::int32_t few = 4; // the copies in turn, across the runs
    if (copies <= few) {
        for (std::int32_t k = 0; k < copies; ++k)
            move_run<Size>(elsize, to + k * elsize, distance, from, elsize, count);
        return;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        move_run<Size>(elsize, to, elsize, from, 0, copies);
        to += distance;
        from += elsize;
    }
}

// What lies below DIM in SOURCE is a run, repeated unchanged.
void spread_dense(const Spreading &call, const f90_ArrDesc &result, RepeatEach *repeat_each) {
    const f90_ArrDesc &source = call.source;
    std::int32_t length = 1;
    for (int i = 0; i < call.along; ++i) length *= extent(source.Dim[i]);
    const std::size_t bytes = bytes_of(length, source.ELSIZE);
    const auto distance =
        static_cast<std::ptrdiff_t>(bytes_of(extent(result.Dim[call.along]), bytes));
    Bytes to = base(result);
    Bytes from = base(source);
    if (length == 1)
        return repeat_each(source.ELSIZE, to, distance, from, source.EXTENT, call.copies);
    for (std::int32_t r = source.EXTENT / length; r > 0; --r) {
        copy_run(to, from, bytes, call.copies);
        to += distance;
        from += bytes;
    }
}

// The walk over the result, which stands still in SOURCE along DIM.
void spread_walked(const Elements &elements, const Spreading &call, const f90_ArrDesc &result) {
    Moves moves;
    for (int i = 0, next = 0; i <= call.source.RANK; ++i) {
        if (i == call.along) {
            add_dimension(moves, {call.copies, {{byte_step(result, i), 0}}});
        } else {
            add_dimension(moves, {extent(call.source.Dim[next]),
                                  {{byte_step(result, i), byte_step(call.source, next)}}});
            ++next;
        }
    }
    move_section(elements, moves, base(result), base(call.source));
}

void spread(const f90_ArgList *list, MoveRun *move_run, RepeatEach *repeat_each) {
    const f90_ArrDesc &source = descriptor(list->Arg1);
    f90_ArrDesc &result = descriptor(list->Result);
    const std::int32_t dim = value(list->Arg2);
    const Spreading call = {source, dim, dim - 1, std::max(value(list->Arg3), 0)};
    if (!result_given(*list)) create(result, expected_shape(call), source.ELSIZE);
    if (checks_wanted(*list)) check(call, result);
    if ((source.EXTENT == 0 && source.RANK > 0) || call.copies == 0) return;

    const Elements elements = {source.ELSIZE, move_run};
    if (source.RANK == 0)
        quill::move_run(elements, base(result), byte_step(result, 0), base(source), 0, call.copies);
    else if (source.NONCONTIG == 0 && result.NONCONTIG == 0)
        spread_dense(call, result, repeat_each);
    else
        spread_walked(elements, call, result);
}

template <std::int32_t Size> void spread(const f90_ArgList *list) {
    spread(list, move_run<Size>, repeat_each<Size>);
}

} // namespace
} // namespace quill

extern "C" {

void f90_spread1(f90_ArgList *list) { quill::spread<1>(list); }
void f90_spread2(f90_ArgList *list) { quill::spread<2>(list); }
void f90_spread4(f90_ArgList *list) { quill::spread<4>(list); }
void f90_spread8(f90_ArgList *list) { quill::spread<8>(list); }
void f90_spread10(f90_ArgList *list) { quill::spread<10>(list); }
void f90_spread16(f90_ArgList *list) { quill::spread<16>(list); }
void f90_spread20(f90_ArgList *list) { quill::spread<20>(list); }
void f90_spread32(f90_ArgList *list) { quill::spread<32>(list); }
void f90_spreadn(f90_ArgList *list) { quill::spread<quill::any_size>(list); }

} // extern "C"

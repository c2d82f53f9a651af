// EOSHIFT: the lines of ARRAY along DIM moved by SHIFT, with BOUNDARY in the room that they
// leave. Without BOUNDARY zero bytes fill it; in the n member blanks, which take storage for
// the time of a call. DIM too is checked only where Flags asks for it.
#include "arrays/lines.h"
#include "frame/creation.h"

namespace quill {
namespace {

// An ARRAY of rank 0 has no dimension that DIM could miss, and DIM is not looked at.
void check(const f90_ArgList &list, const f90_ArrDesc &array, std::int32_t dim) {
    const std::int32_t rank = array.RANK;
    if (rank != 0 && (dim < 1 || dim > rank)) f90_ArrLibError("EOSHIFT", 1, dim, rank);
    const ShapeVector lines = shape_without(array, rank, dim - 1);
    check_result("EOSHIFT", list, array);
    check_per_line("EOSHIFT", 4, descriptor(list.Arg2), array, lines);
    if (argument_given(list, 3)) check_per_line("EOSHIFT", 3, descriptor(list.Arg3), array, lines);
}

// A shift beyond either end leaves the boundary alone.
Division shifted(std::int32_t shift, std::int32_t length) {
    if (shift > length || shift < -length) shift = length;
    if (shift >= 0) return {{length - shift, shift, 0}, {shift, 0, length - shift}};
    return {{length + shift, 0, -shift}, {-shift, 0, 0}};
}

// ---- The default boundary -----------------------------------------------------------

enum class Default { Zeros, Blanks };

// One element; give_back_default ends its life.
Operand default_boundary(Default bytes, std::int32_t elsize) {
    static constexpr std::byte zeros[32] = {}; // as long as the longest sized element
    if (bytes == Default::Zeros) return {const_cast<Bytes>(zeros), nullptr, 0, 0}; // moves read it
    const auto size = static_cast<std::size_t>(elsize);
    return {static_cast<Bytes>(std::memset(f90_getspace(size), ' ', size)), nullptr, 0, 0};
}

void give_back_default(Default bytes, const Operand &boundary) {
    if (bytes == Default::Blanks) f90_freespace(boundary.first);
}

// -------------------------------------------------------------------------------------

void shift_within(const Operand &boundary, const f90_ArgList &list, std::int32_t dim,
                  MoveRun *move_run) {
    const f90_ArrDesc &array = descriptor(list.Arg1);
    const f90_ArrDesc &shift = descriptor(list.Arg2);
    f90_ArrDesc &result = descriptor(list.Result);
    if (checks_wanted(list)) check(list, array, dim);
    if (!result_given(list)) create(result, shape_of(array), array.ELSIZE);
    if (array.EXTENT == 0) return;
    const int along = dim - 1;
    move_lines<shifted>(
        {array.ELSIZE, move_run},
        {.array = array,
         .along = along,
         .length = line_length(array, along),
         .to = element_by_element(result, array.ELSIZE),
         .from = element_by_element(array, array.ELSIZE),
         .filling = boundary,
         .shift = line_by_line(shift, array, along),
         .circular = false,
         .dense = array.NONCONTIG == 0 && result.NONCONTIG == 0 && boundary.array == nullptr});
}

void eoshift(const f90_ArgList *list, MoveRun *move_run, Default bytes = Default::Zeros) {
    const f90_ArrDesc &array = descriptor(list->Arg1);
    const std::int32_t dim = array.RANK != 0 && argument_given(*list, 4) ? value(list->Arg4) : 1;
    if (argument_given(*list, 3)) {
        const Operand boundary = line_by_line(descriptor(list->Arg3), array, dim - 1);
        return shift_within(boundary, *list, dim, move_run);
    }
    const Operand boundary = default_boundary(bytes, array.ELSIZE);
    shift_within(boundary, *list, dim, move_run);
    give_back_default(bytes, boundary);
}

} // namespace
} // namespace quill

extern "C" {

void f90_eoshift1(f90_ArgList *list) { quill::eoshift(list, quill::move_run<1>); }
void f90_eoshift2(f90_ArgList *list) { quill::eoshift(list, quill::move_run<2>); }
void f90_eoshift4(f90_ArgList *list) { quill::eoshift(list, quill::move_run<4>); }
void f90_eoshift8(f90_ArgList *list) { quill::eoshift(list, quill::move_run<8>); }
void f90_eoshift10(f90_ArgList *list) { quill::eoshift(list, quill::move_run<10>); }
void f90_eoshift16(f90_ArgList *list) { quill::eoshift(list, quill::move_run<16>); }
void f90_eoshift20(f90_ArgList *list) { quill::eoshift(list, quill::move_run<20>); }
void f90_eoshift32(f90_ArgList *list) { quill::eoshift(list, quill::move_run<32>); }
void f90_eoshiftn(f90_ArgList *list) {
    quill::eoshift(list, quill::move_run<quill::any_size>, quill::Default::Blanks);
}

} // extern "C"

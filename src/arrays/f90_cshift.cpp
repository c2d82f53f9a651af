// CSHIFT: the lines of ARRAY along DIM turned by SHIFT, so that element i goes to position
// i - SHIFT modulo the length of the line. What is left free is filled from the line's other
// end. No storage is taken.
#include "arrays/lines.h"
#include "frame/creation.h"

namespace quill {
namespace {

// DIM is checked whatever Flags says.
std::int32_t checked_dim(const f90_ArgList &list, const f90_ArrDesc &array) {
    if (!argument_given(list, 3)) return 1;
    const std::int32_t dim = value(list.Arg3);
    const std::int32_t rank = array.RANK;
    if (dim < 1 || dim > rank) f90_ArrLibError("CSHIFT", 1, dim, rank);
    return dim;
}

void check(const f90_ArgList &list, const f90_ArrDesc &array, std::int32_t dim) {
    check_result("CSHIFT", list, array);
    check_per_line("CSHIFT", 3, descriptor(list.Arg2), array,
                   shape_without(array, array.RANK, dim - 1));
}

// The shift comes within the line by its length added or taken away; from far off the
// remainder is near.
Division turned(std::int32_t shift, std::int32_t length) {
    if (shift / 4 >= length || shift / 4 <= -length) shift %= length;
    while (shift < 0) shift += length;
    while (shift >= length) shift -= length;
    const Piece straight = {length - shift, shift, 0};
    const Piece round = {shift, 0, length - shift};
    return shift <= length / 2 ? Division{straight, round} : Division{round, straight};
}

void cshift(const f90_ArgList *list, MoveRun *move_run) {
    const f90_ArrDesc &array = descriptor(list->Arg1);
    const f90_ArrDesc &shift = descriptor(list->Arg2);
    f90_ArrDesc &result = descriptor(list->Result);
    const std::int32_t dim = checked_dim(*list, array);
    if (checks_wanted(*list)) check(*list, array, dim);
    if (!result_given(*list)) create(result, shape_of(array), array.ELSIZE);
    if (array.EXTENT == 0) return;
    const int along = dim - 1;
    move_lines<turned>({array.ELSIZE, move_run},
                       {.array = array,
                        .along = along,
                        .length = line_length(array, along),
                        .to = element_by_element(result, array.ELSIZE),
                        .from = element_by_element(array, array.ELSIZE),
                        .filling = element_by_element(array, array.ELSIZE),
                        .shift = line_by_line(shift, array, along),
                        .circular = true,
                        .dense = array.NONCONTIG == 0 && result.NONCONTIG == 0});
}

} // namespace
} // namespace quill

extern "C" {

void f90_cshift1(f90_ArgList *list) { quill::cshift(list, quill::move_run<1>); }
void f90_cshift2(f90_ArgList *list) { quill::cshift(list, quill::move_run<2>); }
void f90_cshift4(f90_ArgList *list) { quill::cshift(list, quill::move_run<4>); }
void f90_cshift8(f90_ArgList *list) { quill::cshift(list, quill::move_run<8>); }
void f90_cshift10(f90_ArgList *list) { quill::cshift(list, quill::move_run<10>); }
void f90_cshift16(f90_ArgList *list) { quill::cshift(list, quill::move_run<16>); }
void f90_cshift20(f90_ArgList *list) { quill::cshift(list, quill::move_run<20>); }
void f90_cshift32(f90_ArgList *list) { quill::cshift(list, quill::move_run<32>); }
void f90_cshiftn(f90_ArgList *list) { quill::cshift(list, quill::move_run<quill::any_size>); }

} // extern "C"

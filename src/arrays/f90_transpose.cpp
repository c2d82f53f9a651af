// TRANSPOSE: element (i, j) of MATRIX goes to (j, i). Between elements the members of a size
// step as many bytes as their name says, the n member SCALEFACTOR.
#include "arrays/permuted.h"
#include "frame/creation.h"

namespace quill {
namespace {

void check(const f90_ArrDesc &result, const ShapeVector &expected) {
    if (extent(result.Dim[0]) != expected.extents[0] ||
        extent(result.Dim[1]) != expected.extents[1])
        f90_ArrLibError("TRANSPOSE", 1, &result, report(expected));
}

template <std::int32_t Size> std::ptrdiff_t step(const f90_ArrDesc &array, int i) {
    return Size == any_size ? byte_step(array, i) : byte_step(array, i, Size);
}

template <std::int32_t Size> void transpose_matrix(const f90_ArgList *list) {
    const f90_ArrDesc &matrix = descriptor(list->Arg1);
    f90_ArrDesc &result = descriptor(list->Result);
    const std::int32_t rows = extent(matrix.Dim[0]);
    const std::int32_t columns = extent(matrix.Dim[1]);
    if (checks_wanted(*list) && result_given(*list)) check(result, {2, {columns, rows}});
    if (!result_given(*list)) create(result, {2, {columns, rows}}, matrix.ELSIZE);
    if (rows == 0 || columns == 0) return;
    MoveMatrix *const move = Size == any_size ? move_matrix_of(matrix.ELSIZE) : move_matrix<Size>;
    move(matrix.ELSIZE, {rows, {{step<Size>(result, 1), step<Size>(matrix, 0)}}},
         {columns, {{step<Size>(result, 0), step<Size>(matrix, 1)}}}, base(result), base(matrix));
}

} // namespace
} // namespace quill

extern "C" {

void f90_transpose1(f90_ArgList *list) { quill::transpose_matrix<1>(list); }
void f90_transpose2(f90_ArgList *list) { quill::transpose_matrix<2>(list); }
void f90_transpose4(f90_ArgList *list) { quill::transpose_matrix<4>(list); }
void f90_transpose8(f90_ArgList *list) { quill::transpose_matrix<8>(list); }
void f90_transpose10(f90_ArgList *list) { quill::transpose_matrix<10>(list); }
void f90_transpose16(f90_ArgList *list) { quill::transpose_matrix<16>(list); }
void f90_transpose20(f90_ArgList *list) { quill::transpose_matrix<20>(list); }
void f90_transpose32(f90_ArgList *list) { quill::transpose_matrix<32>(list); }
void f90_transposen(f90_ArgList *list) { quill::transpose_matrix<quill::any_size>(list); }

} // extern "C"

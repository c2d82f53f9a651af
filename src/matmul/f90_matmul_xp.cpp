// MATMUL of the kinds wider than 8: the 80-bit extended format and kind 16. Their engines
// and kernels are exported under names that carry the parameter types.
#include "matmul/members.h"

// clang-format off
extern "C" {

void f90_matmulr10(f90_ArgList *list) { quill::matmul<quill::FixedEngines<quill::Real10>>(list); }
void f90_matmulr16(f90_ArgList *list) { quill::matmul<quill::AdaptiveEngines<quill::Real16>>(list); }
void f90_matmulc20(f90_ArgList *list) { quill::matmul<quill::FixedEngines<quill::Complex20>>(list); }
void f90_matmulc32(f90_ArgList *list) { quill::matmul<quill::FixedEngines<quill::Complex32>>(list); }

} // extern "C"

MATRIX_ENGINE(Real10, long double, quill::fixed_product)
MATRIX_ENGINE(Complex20, f90_Complex20, quill::fixed_product)
MATRIX_ENGINE(Complex32, f90_Complex32, quill::fixed_product)

ADAPTIVE_ENGINE(Real16, __float128)

BLOCK_KERNELS(Real10, long double)
BLOCK_KERNELS(Real16, __float128)
BLOCK_KERNELS(Complex20, f90_Complex20)
BLOCK_KERNELS(Complex32, f90_Complex32)

VECTOR_ENGINES(Real10, long double, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Real16, __float128, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Complex20, f90_Complex20, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Complex32, f90_Complex32, quill::engine_1x2, quill::engine_2x1)

VECTOR_KERNELS(Real10, long double)
VECTOR_KERNELS(Real16, __float128)
VECTOR_KERNELS(Complex20, f90_Complex20)
VECTOR_KERNELS(Complex32, f90_Complex32)

COLUMN_KERNELS(Real10, long double)
COLUMN_KERNELS(Complex20, f90_Complex20)
COLUMN_KERNELS(Complex32, f90_Complex32)
ADDING_COLUMN_KERNELS(Real16, __float128)
// clang-format on

// MATMUL of integers, logicals, reals and complex numbers up to kind 8, and the engines
// and kernels of these types; the wider kinds stand in f90_matmul_xp.
#include "matmul/members.h"

extern "C" {

// clang-format off
void f90_matmuli1(f90_ArgList *list) { quill::matmul<quill::FixedEngines<quill::Int1>>(list); }
void f90_matmuli2(f90_ArgList *list) { quill::matmul<quill::AdaptiveEngines<quill::Int2>>(list); }
void f90_matmuli4(f90_ArgList *list) { quill::matmul<quill::FixedEngines<quill::Int4>>(list); }
void f90_matmuli8(f90_ArgList *list) { quill::matmul<quill::FixedEngines<quill::Int8>>(list); }
void f90_matmull1(f90_ArgList *list) { quill::matmul<quill::LogicalEngines<quill::Log1>>(list); }
void f90_matmull2(f90_ArgList *list) { quill::matmul<quill::LogicalEngines<quill::Log2>>(list); }
void f90_matmull4(f90_ArgList *list) { quill::matmul<quill::LogicalEngines<quill::Log4>>(list); }
void f90_matmull8(f90_ArgList *list) { quill::matmul<quill::LogicalEngines<quill::Log8>>(list); }
void f90_matmulr4(f90_ArgList *list) { quill::matmul<quill::AdaptiveEngines<quill::Real4>>(list); }
void f90_matmulr8(f90_ArgList *list) { quill::matmul<quill::AdaptiveEngines<quill::Real8>>(list); }
void f90_matmulc8(f90_ArgList *list) { quill::matmul<quill::EnginesOfComplex8>(list); }
void f90_matmulc16(f90_ArgList *list) { quill::matmul<quill::EnginesOfComplex16>(list); }

MATRIX_ENGINE(Int1, std::int8_t, quill::fixed_product)
MATRIX_ENGINE(Int4, std::int32_t, quill::fixed_product)
MATRIX_ENGINE(Int8, std::int64_t, quill::fixed_product)
MATRIX_ENGINE(Complex16, f90_Complex16, quill::fixed_product)
MATRIX_ENGINE(Log1, std::int8_t, quill::logical_2x2)
MATRIX_ENGINE(Log2, std::int16_t, quill::logical_2x2)
MATRIX_ENGINE(Log4, std::int32_t, quill::logical_2x2)
MATRIX_ENGINE(Log8, std::int64_t, quill::logical_2x2)

ADAPTIVE_ENGINE(Int2, std::int16_t)
ADAPTIVE_ENGINE(Real4, float)
ADAPTIVE_ENGINE(Real8, double)
ADAPTIVE_ENGINE(Complex8, f90_Complex8)

BLOCK_KERNELS(Int1, std::int8_t)
BLOCK_KERNELS(Int2, std::int16_t)
BLOCK_KERNELS(Int4, std::int32_t)
BLOCK_KERNELS(Int8, std::int64_t)
BLOCK_KERNELS(Real4, float)
BLOCK_KERNELS(Real8, double)
BLOCK_KERNELS(Complex8, f90_Complex8)
BLOCK_KERNELS(Complex16, f90_Complex16)

VECTOR_ENGINES(Int1, std::int8_t, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Int2, std::int16_t, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Int4, std::int32_t, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Int8, std::int64_t, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Real4, float, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Real8, double, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Complex16, f90_Complex16, quill::engine_1x2, quill::engine_2x1)
VECTOR_ENGINES(Log1, std::int8_t, quill::logical_1x2, quill::logical_2x1)
VECTOR_ENGINES(Log2, std::int16_t, quill::logical_1x2, quill::logical_2x1)
VECTOR_ENGINES(Log4, std::int32_t, quill::logical_1x2, quill::logical_2x1)
VECTOR_ENGINES(Log8, std::int64_t, quill::logical_1x2, quill::logical_2x1)
COMPLEX_VECTOR_ENGINES(Complex8, f90_Complex8)
COMPLEX_VECTOR_ENGINES(Complex16, f90_Complex16)

VECTOR_KERNELS(Int1, std::int8_t)
VECTOR_KERNELS(Int2, std::int16_t)
VECTOR_KERNELS(Int4, std::int32_t)
VECTOR_KERNELS(Int8, std::int64_t)
VECTOR_KERNELS(Real4, float)
VECTOR_KERNELS(Real8, double)
VECTOR_KERNELS(Complex16, f90_Complex16)

COLUMN_KERNELS(Int1, std::int8_t)
COLUMN_KERNELS(Int4, std::int32_t)
COLUMN_KERNELS(Int8, std::int64_t)
COLUMN_KERNELS(Complex16, f90_Complex16)
ADDING_COLUMN_KERNELS(Int2, std::int16_t)
ADDING_COLUMN_KERNELS(Real4, float)
ADDING_COLUMN_KERNELS(Real8, double)
// clang-format on

} // extern "C"

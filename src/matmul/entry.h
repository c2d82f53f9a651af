// The MATMUL entries: the ranks of the operands name the case, the descriptors become
// addresses and element strides, and the type's engine does the arithmetic. An entry
// writes no element but a zero.
#pragma once

#include "frame/creation.h"
#include "matmul/operands.h"
#include "matmul/packing.h"

namespace quill {

enum class Case { MatrixMatrix, VectorMatrix, MatrixVector };

inline Case classify(const f90_ArrDesc &a, const f90_ArrDesc &b) {
    if (a.RANK == 2 && b.RANK == 2) return Case::MatrixMatrix;
    if (a.RANK == 1 && b.RANK == 2) return Case::VectorMatrix;
    if (a.RANK == 2 && b.RANK == 1) return Case::MatrixVector;
    f90_ArrLibError("MATMUL", 1);
}

// The shape that the result should have.
inline ShapeVector wanted_shape(Case which, const f90_ArrDesc &a, const f90_ArrDesc &b) {
    switch (which) {
    case Case::MatrixMatrix:
        return {2, {extent(a.Dim[0]), extent(b.Dim[1])}};
    case Case::VectorMatrix:
        return {1, {extent(b.Dim[1])}};
    default:
        return {1, {extent(a.Dim[0])}};
    }
}

inline void check(const f90_ArrDesc &result, const ShapeVector &shape, std::int32_t k,
                  const f90_ArrDesc &b) {
    if (k != extent(b.Dim[0])) f90_ArrLibError("MATMUL", 2, k, extent(b.Dim[0]));
    for (int i = 0; i < shape.count; ++i)
        if (extent(result.Dim[i]) != shape.extents[i])
            f90_ArrLibError("MATMUL", 3, &result, report(shape));
}

// What an entry needs to know of a type: Engines names its Element, and its engines
// matrix_matrix(m, n, k, a, b, c), vector_matrix(n, k, v, b, c) and matrix_vector(m, k, a,
// v, c). With entry_sees_to_empty operands the entry sees to empty ones, so that m, n and k
// are at least 1 in the engine, and first elements are at BASE; otherwise the engine sees to
// them, and first elements are found from ZERO. Strides count elements, whatever
// SCALEFACTOR says.
template <class Engines> Bytes first_element(const f90_ArrDesc &array, int rank) {
    if constexpr (Engines::entry_sees_to_empty) return base(array);
    std::size_t offset = 0;
    for (int i = 0; i < rank; ++i)
        offset += static_cast<std::size_t>(array.Dim[i].Lower) *
                  static_cast<std::size_t>(array.Dim[i].Stride);
    return reinterpret_cast<Bytes>(reinterpret_cast<std::uintptr_t>(array.ZERO) +
                                   offset * sizeof(typename Engines::Element));
}

template <class Engines> Matrix operand(const f90_ArrDesc &array) {
    constexpr std::int32_t size = sizeof(typename Engines::Element);
    return {first_element<Engines>(array, 2), byte_step(array, 0, size), byte_step(array, 1, size)};
}
template <class Engines> Matrix row_operand(const f90_ArrDesc &array) {
    constexpr std::int32_t size = sizeof(typename Engines::Element);
    return {first_element<Engines>(array, 1), 0, byte_step(array, 0, size)};
}
template <class Engines> Matrix column_operand(const f90_ArrDesc &array) {
    constexpr std::int32_t size = sizeof(typename Engines::Element);
    return {first_element<Engines>(array, 1), byte_step(array, 0, size), 0};
}

// Whether the entry is done, there being nothing to multiply.
template <class Engines> bool without_products(int m, int n, int k, const Matrix &c) {
    if (!Engines::entry_sees_to_empty || (m > 0 && n > 0 && k > 0)) return false;
    clear<typename Engines::Element>(c, m, n);
    return true;
}

template <class Engines> void matmul(f90_ArgList *list) {
    f90_ArrDesc &result = descriptor(list->Result);
    const f90_ArrDesc &a = descriptor(list->Arg1);
    const f90_ArrDesc &b = descriptor(list->Arg2);
    const Case which = classify(a, b);
    const ShapeVector shape = wanted_shape(which, a, b);
    const int k = extent(a.Dim[which == Case::VectorMatrix ? 0 : 1]);
    if (!result_given(*list)) create(result, shape, sizeof(typename Engines::Element));
    if (checks_wanted(*list)) check(result, shape, k, b);
    const int first = shape.extents[0];
    const int second = shape.extents[1];
    if (which == Case::MatrixMatrix) {
        const Matrix c = operand<Engines>(result);
        if (without_products<Engines>(first, second, k, c)) return;
        Engines::matrix_matrix(first, second, k, operand<Engines>(a), operand<Engines>(b), c);
    } else if (which == Case::VectorMatrix) {
        const Matrix c = row_operand<Engines>(result);
        if (without_products<Engines>(1, first, k, c)) return;
        Engines::vector_matrix(first, k, row_operand<Engines>(a), operand<Engines>(b), c);
    } else {
        const Matrix c = column_operand<Engines>(result);
        if (without_products<Engines>(first, 1, k, c)) return;
        Engines::matrix_vector(first, k, operand<Engines>(a), column_operand<Engines>(b), c);
    }
}

} // namespace quill

// Creation of results: what a family writes into the descriptor before
// f90_CreateArrayM completes it.
#pragma once

#include "frame/checks.h"

#include <limits>

namespace quill {

inline std::uint64_t saturating_product(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product;
    return __builtin_mul_overflow(a, b, &product) ? std::numeric_limits<std::uint64_t>::max()
                                                  : product;
}

// The request for `elements` elements, as one that no storage satisfies when it
// does not fit an address.
inline std::size_t storage_size(std::uint64_t elements, std::uint32_t elsize) {
    const std::uint64_t bytes = saturating_product(elements, elsize);
    constexpr std::size_t refused = std::numeric_limits<std::size_t>::max();
    return bytes < refused ? static_cast<std::size_t>(bytes) : refused;
}

// Creates a result of this shape, lower bounds 1.
inline void create(f90_ArrDesc &result, const ShapeVector &shape, std::int32_t elsize) {
    result.RANK = static_cast<std::int8_t>(shape.count);
    result.ELSIZE = elsize;
    for (int i = 0; i < shape.count; ++i) {
        result.Dim[i].Lower = 1;
        result.Dim[i].Upper = shape.extents[i];
    }
    f90_CreateArrayM(&result);
}

// Creates the result of a reduction along dimension `left_out` of the first
// `rank` dimensions of array, lower bounds 1. A left_out that names no dimension
// creates the first rank - 1; its report follows.
inline void create_without(f90_ArrDesc &result, const f90_ArrDesc &array, int rank, int left_out,
                           std::int32_t elsize) {
    result.RANK = static_cast<std::int8_t>(rank - 1);
    result.ELSIZE = elsize;
    for (int i = 0; i < rank - 1; ++i) {
        result.Dim[i].Lower = 1;
        result.Dim[i].Upper = extent(array.Dim[left_out < 0 ? i : kept_dimension(i, left_out)]);
    }
    f90_CreateArrayM(&result);
}

// Creates the rank 0 result of a reduction without DIM.
inline void create_single(f90_ArrDesc &result, std::int32_t elsize) {
    result.RANK = 0;
    result.ELSIZE = elsize;
    result.Dim[0].Lower = result.Dim[0].Upper = 0;
    f90_CreateArrayM(&result);
}

} // namespace quill

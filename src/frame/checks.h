// Shape checks that families share, and the vector of expected extents that a
// report of a wrong shape carries. Which checks run, in which order and under
// which number stays with each family.
#pragma once

#include "frame/records.h"

namespace quill {

// A count and that many extents, as the reporter prints an expected shape.
struct ShapeVector {
    std::int32_t count;
    std::int32_t extents[f90_MaxRank];
};

inline ShapeVector shape_of(const f90_ArrDesc &array) {
    ShapeVector shape{array.RANK, {}};
    for (int i = 0; i < array.RANK; ++i) shape.extents[i] = extent(array.Dim[i]);
    return shape;
}

// The shape of the first `rank` dimensions of array without dimension `left_out`.
inline ShapeVector shape_without(const f90_ArrDesc &array, int rank, int left_out) {
    ShapeVector shape{rank - 1, {}};
    for (int i = 0; i < rank - 1; ++i)
        shape.extents[i] = extent(array.Dim[kept_dimension(i, left_out)]);
    return shape;
}

inline const std::int32_t *report(const ShapeVector &shape) { return &shape.count; }

// Upper - Lower, 0 for an empty dimension: by this measure extents 0 and 1 are
// equal, which the numeric reductions promise their callers.
inline std::int32_t clamped_span(const f90_DimInfo &dim) {
    const std::int32_t elements = extent(dim);
    return elements == 0 ? 0 : elements - 1;
}

using Measure = std::int32_t(const f90_DimInfo &);

// Whether every dimension of result measures what it should in a reduction of
// the first `rank` dimensions of array along dimension `left_out`.
template <Measure measure>
bool conforms_without(const f90_ArrDesc &result, const f90_ArrDesc &array, int rank, int left_out) {
    for (int i = 0; i < rank - 1; ++i)
        if (measure(result.Dim[i]) != measure(array.Dim[kept_dimension(i, left_out)])) return false;
    return true;
}

// Whether the first `rank` dimensions of a and b measure the same.
template <Measure measure> bool conforms(const f90_ArrDesc &a, const f90_ArrDesc &b, int rank) {
    for (int i = 0; i < rank; ++i)
        if (measure(a.Dim[i]) != measure(b.Dim[i])) return false;
    return true;
}

} // namespace quill

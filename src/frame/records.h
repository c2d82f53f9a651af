// The argument record and the array descriptor as the families read them: the
// pinned layout, access to arguments, extents and steps. Upper - Lower is taken
// without sign, so that no bounds, however far apart, overflow.
#pragma once

#include "quillfn/quillfn.h"

#include <cstddef>
#include <cstdint>

namespace quill {

static_assert(sizeof(void *) == 4, "the layout below is that of 32-bit addresses");
static_assert(sizeof(f90_DimInfo) == 12);
static_assert(offsetof(f90_DimInfo, Lower) == 0);
static_assert(offsetof(f90_DimInfo, Upper) == 4);
static_assert(offsetof(f90_DimInfo, Stride) == 8);
static_assert(sizeof(f90_ArrDesc) == 108);
static_assert(offsetof(f90_ArrDesc, ZERO) == 0);
static_assert(offsetof(f90_ArrDesc, BASE) == 4);
static_assert(offsetof(f90_ArrDesc, EXTENT) == 8);
static_assert(offsetof(f90_ArrDesc, ELSIZE) == 12);
static_assert(offsetof(f90_ArrDesc, SCALEFACTOR) == 16);
static_assert(offsetof(f90_ArrDesc, RANK) == 20);
static_assert(offsetof(f90_ArrDesc, NONCONTIG) == 21);
static_assert(offsetof(f90_ArrDesc, Reserved) == 22);
static_assert(offsetof(f90_ArrDesc, Dim) == 24);
static_assert(sizeof(f90_Slot) == 8);
static_assert(offsetof(f90_Slot, Word0) == 0);
static_assert(offsetof(f90_Slot, Word1) == 4);
static_assert(sizeof(f90_ArgList) == 48);
static_assert(offsetof(f90_ArgList, Shape) == 0);
static_assert(offsetof(f90_ArgList, Presence) == 2);
static_assert(offsetof(f90_ArgList, Flags) == 4);
static_assert(offsetof(f90_ArgList, Result) == 8);
static_assert(offsetof(f90_ArgList, Arg1) == 16);
static_assert(offsetof(f90_ArgList, Arg2) == 24);
static_assert(offsetof(f90_ArgList, Arg3) == 32);
static_assert(offsetof(f90_ArgList, Arg4) == 40);
static_assert(sizeof(f90_SectionDim) == 16);
static_assert(offsetof(f90_SectionDim, Kind) == 0);
static_assert(offsetof(f90_SectionDim, Lower) == 4);
static_assert(offsetof(f90_SectionDim, Upper) == 8);
static_assert(offsetof(f90_SectionDim, Stride) == 12);

// Byte positions and distances in operands.
using Bytes = std::byte *;
using ConstBytes = const std::byte *;

// ---- Arguments --------------------------------------------------------------

inline bool result_given(const f90_ArgList &list) { return (list.Presence & 1U) != 0; }

// Whether Arg1 to Arg4 was passed, by its number.
inline bool argument_given(const f90_ArgList &list, int number) {
    return ((list.Presence >> number) & 1) != 0;
}

inline bool checks_wanted(const f90_ArgList &list) { return (list.Flags & 1U) != 0; }

inline f90_ArrDesc &descriptor(const f90_Slot &slot) {
    return *reinterpret_cast<f90_ArrDesc *>(slot.Word0);
}

inline std::int32_t value(const f90_Slot &slot) { return static_cast<std::int32_t>(slot.Word0); }

// ---- Descriptors ------------------------------------------------------------

inline Bytes base(const f90_ArrDesc &array) { return static_cast<Bytes>(array.BASE); }

inline std::int32_t extent(const f90_DimInfo &dim) {
    if (dim.Upper < dim.Lower) return 0;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(dim.Upper) -
                                     static_cast<std::uint32_t>(dim.Lower) + 1U);
}

// Distance in bytes between neighbours along dimension i, Stride counting `unit` bytes.
inline std::ptrdiff_t byte_step(const f90_ArrDesc &array, int i, std::int32_t unit) {
    return static_cast<std::ptrdiff_t>(static_cast<std::size_t>(array.Dim[i].Stride) *
                                       static_cast<std::size_t>(unit));
}

inline std::ptrdiff_t byte_step(const f90_ArrDesc &array, int i) {
    return byte_step(array, i, array.SCALEFACTOR);
}

// Sum of subscript x Stride over the first `rank` dimensions, wrapping as the
// 32-bit words of the contract do.
inline std::int32_t subscript_offset(const f90_ArrDesc &array, const std::int32_t *subscripts,
                                     int rank) {
    std::uint32_t offset = 0;
    for (int i = 0; i < rank; ++i)
        offset += static_cast<std::uint32_t>(subscripts[i]) *
                  static_cast<std::uint32_t>(array.Dim[i].Stride);
    return static_cast<std::int32_t>(offset);
}

// ZERO + distance units of SCALEFACTOR bytes. ZERO itself may lie outside of all
// storage, hence the arithmetic of addresses.
inline Bytes from_origin(const f90_ArrDesc &array, std::int32_t distance) {
    return reinterpret_cast<Bytes>(reinterpret_cast<std::uintptr_t>(array.ZERO) +
                                   static_cast<std::uintptr_t>(distance) *
                                       static_cast<std::uintptr_t>(array.SCALEFACTOR));
}

// The array dimension that dimension i of a result without dimension `left_out`
// stands for.
inline int kept_dimension(int i, int left_out) { return i < left_out ? i : i + 1; }

} // namespace quill

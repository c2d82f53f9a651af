// Creation of arrays, sections of arrays, addresses of elements, the walk over
// all elements, and the debug prints. The walk is the one piece of state: a
// single record for the whole process.
#include "frame/creation.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

std::int32_t f90_SubscriptChecking = 0;

namespace quill {
namespace {

// ---- Subscript checking -----------------------------------------------------

// The two words ahead of a descriptor while subscript checking is on.
struct SubscriptRange {
    std::int32_t SubscriptMin; // lowest valid sum of subscript x Stride
    std::int32_t SubscriptEnd; // one more than the highest
};
static_assert(sizeof(SubscriptRange) == 8);

SubscriptRange &subscript_range(f90_ArrDesc &array) {
    return reinterpret_cast<SubscriptRange *>(&array)[-1];
}

const SubscriptRange &subscript_range(const f90_ArrDesc &array) {
    return reinterpret_cast<const SubscriptRange *>(&array)[-1];
}

// The offsets that the bounds of a non-empty array span.
SubscriptRange spanned_range(const f90_ArrDesc &array) {
    std::uint32_t lowest = 0;
    std::uint32_t highest = 0;
    for (int i = 0; i < array.RANK; ++i) {
        const f90_DimInfo &dim = array.Dim[i];
        const auto stride = static_cast<std::uint32_t>(dim.Stride);
        const std::uint32_t at_lower = static_cast<std::uint32_t>(dim.Lower) * stride;
        const std::uint32_t at_upper = static_cast<std::uint32_t>(dim.Upper) * stride;
        lowest += dim.Stride > 0 ? at_lower : at_upper;
        highest += dim.Stride > 0 ? at_upper : at_lower;
    }
    return {static_cast<std::int32_t>(lowest), static_cast<std::int32_t>(highest + 1)};
}

void record_subscript_range(f90_ArrDesc &array) {
    if (f90_SubscriptChecking == 0) return;
    subscript_range(array) = array.EXTENT < 1 ? SubscriptRange{0, 0} : spanned_range(array);
}

// ---- Creation ---------------------------------------------------------------

// Sets Stride of each dimension and EXTENT; returns the number of elements
// unwrapped.
std::uint64_t lay_out_densely(f90_ArrDesc &array) {
    std::uint64_t elements = 1;
    for (int i = 0; i < array.RANK; ++i) {
        f90_DimInfo &dim = array.Dim[i];
        dim.Stride = static_cast<std::int32_t>(elements);
        const std::int32_t length = extent(dim);
        if (length == 0)
            dim.Upper = static_cast<std::int32_t>(static_cast<std::uint32_t>(dim.Lower) - 1U);
        elements = saturating_product(elements, static_cast<std::uint32_t>(length));
    }
    array.EXTENT = static_cast<std::int32_t>(elements);
    return elements;
}

// ---- Sections ---------------------------------------------------------------

// The subscripts that a record takes of its dimension: defaults replaced, ends
// clipped to members within the parent's bounds. Wider than the record, so that no
// clipping overflows.
struct Progression {
    bool is_triplet;
    std::int64_t lower;
    std::int64_t upper;
    std::int64_t stride;
};

Progression normalised(const f90_SectionDim &record, const f90_DimInfo &bounds) {
    if (record.Kind == 1) return {false, record.Lower, record.Upper, record.Stride};
    const std::int64_t lo = bounds.Lower;
    const std::int64_t hi = bounds.Upper;
    const auto given = [](std::int32_t field, std::int64_t otherwise) {
        return field == f90_DefaultBound ? otherwise : field;
    };
    std::int64_t lower = given(record.Lower, lo);
    std::int64_t upper = given(record.Upper, hi);
    const std::int64_t stride = given(record.Stride, 1);
    const auto steps = [stride](std::int64_t distance) { return stride * (distance / stride); };
    if (stride > 0) {
        if (lower < lo) lower += steps(lo - lower);
        if (lower < lo) lower += stride;
        if (upper > hi) upper = hi;
        upper = upper >= lower ? lower + steps(upper - lower) : lower - stride;
    } else {
        if (lower > hi) lower += steps(hi - lower);
        if (lower > hi) lower += stride;
        if (upper < lo) upper = lo;
        upper = upper <= lower ? lower + steps(upper - lower) : lower - stride;
    }
    return {true, lower, upper, stride};
}

bool within(std::int64_t subscript, const f90_DimInfo &bounds) {
    return bounds.Lower <= subscript && subscript <= bounds.Upper;
}

// ---- The walk ---------------------------------------------------------------

struct Walk {
    const f90_ArrDesc *array; // null when no walk is open
    std::int32_t subscripts[f90_MaxRank];
};

Walk IterData;

void *checked_address(const f90_ArrDesc &array, const std::int32_t *subscripts) {
    const std::int32_t offset = subscript_offset(array, subscripts, array.RANK);
    if (f90_SubscriptChecking != 0) {
        const SubscriptRange &range = subscript_range(array);
        if (offset < range.SubscriptMin || offset >= range.SubscriptEnd) {
            std::fputs("f90_ElemAddr: Bad subscript.\n", stderr);
            std::fflush(stderr);
            std::exit(EXIT_FAILURE);
        }
    }
    return from_origin(array, offset);
}

// Address of the walk's current element; a null address closes the walk.
void *current_element() {
    void *address = checked_address(*IterData.array, IterData.subscripts);
    if (address == nullptr) IterData.array = nullptr;
    return address;
}

} // namespace
} // namespace quill

extern "C" {

void f90_CreateArrayM(f90_ArrDesc *array) {
    const std::uint64_t elements = quill::lay_out_densely(*array);
    array->BASE =
        f90_getspace(quill::storage_size(elements, static_cast<std::uint32_t>(array->ELSIZE)));
    array->SCALEFACTOR = array->ELSIZE;
    array->NONCONTIG = 0;
    array->Reserved[0] = array->Reserved[1] = 0;
    array->ZERO = array->BASE;
    if (array->EXTENT > 0) {
        std::int32_t lowest[f90_MaxRank];
        for (int i = 0; i < array->RANK; ++i) lowest[i] = array->Dim[i].Lower;
        const auto offset =
            static_cast<std::uint32_t>(quill::subscript_offset(*array, lowest, array->RANK));
        array->ZERO = quill::from_origin(*array, static_cast<std::int32_t>(0U - offset));
    }
    quill::record_subscript_range(*array);
}

void f90_CreateArray(std::int32_t rank, const std::int32_t *bounds, std::int32_t elsize,
                     f90_ArrDesc *array) {
    array->RANK = static_cast<std::int8_t>(rank);
    for (std::int32_t i = 0; i < rank; ++i) {
        const std::int32_t lower = bounds[2 * i];
        array->Dim[i].Lower = lower == f90_DefaultBound ? 1 : lower;
        array->Dim[i].Upper = bounds[2 * i + 1];
    }
    array->ELSIZE = elsize;
    f90_CreateArrayM(array);
}

void f90_CreateSection(const f90_ArrDesc *parent, const f90_SectionDim *subscripts,
                       f90_ArrDesc *section) {
    const int parent_rank = parent->RANK;
    const std::int32_t elsize = parent->ELSIZE;
    std::uint32_t multiplier = 1; // distance in elements along the parent's dimension
    std::uint32_t first = 0;      // of the section's first element from the parent's
    std::uint32_t origin = 0;     // of the section's origin from its first element
    std::uint32_t elements = 1;
    bool in_bounds = true;
    int rank = 0;
    for (int i = 0; i < parent_rank; ++i) {
        const f90_DimInfo bounds = parent->Dim[i];
        const quill::Progression taken = quill::normalised(subscripts[i], bounds);
        first += static_cast<std::uint32_t>(taken.lower - bounds.Lower) * multiplier;
        if (taken.is_triplet) {
            const std::uint32_t stride = multiplier * static_cast<std::uint32_t>(taken.stride);
            const std::int64_t last = (taken.upper - taken.lower) / taken.stride + 1;
            section->Dim[rank++] = {1, static_cast<std::int32_t>(last),
                                    static_cast<std::int32_t>(stride)};
            origin += stride;
            elements *= static_cast<std::uint32_t>(last);
        } else if (!quill::within(taken.lower, bounds)) {
            in_bounds = false;
        }
        multiplier *=
            static_cast<std::uint32_t>(bounds.Upper) - static_cast<std::uint32_t>(bounds.Lower) + 1;
    }
    section->RANK = static_cast<std::int8_t>(rank);
    section->EXTENT = in_bounds ? static_cast<std::int32_t>(elements) : 0;
    section->ELSIZE = section->SCALEFACTOR = elsize;
    section->NONCONTIG = 1;
    section->Reserved[0] = section->Reserved[1] = 0;
    if (section->EXTENT == 0) {
        section->BASE = section->ZERO = nullptr;
    } else {
        section->ZERO = parent->BASE;
        section->BASE = quill::from_origin(*section, static_cast<std::int32_t>(first));
        section->ZERO = quill::from_origin(*section, static_cast<std::int32_t>(first - origin));
    }
    quill::record_subscript_range(*section);
}

void *f90_ElemAddr(const f90_ArrDesc *array, ...) {
    std::int32_t subscripts[f90_MaxRank];
    std::va_list given;
    va_start(given, array);
    for (int i = 0; i < array->RANK; ++i) subscripts[i] = va_arg(given, std::int32_t);
    va_end(given);
    return quill::checked_address(*array, subscripts);
}

void *f90_ElemAddrContig(const f90_ArrDesc *array, std::int32_t index) {
    return quill::base(*array) + static_cast<std::ptrdiff_t>(array->ELSIZE) * index;
}

void *f90_FirstElemAddr(const f90_ArrDesc *array) {
    quill::IterData.array = nullptr;
    if (array->EXTENT == 0) return nullptr;
    quill::IterData.array = array;
    for (int i = 0; i < array->RANK; ++i) quill::IterData.subscripts[i] = array->Dim[i].Lower;
    return quill::current_element();
}

void *f90_NextElemAddr(void) {
    quill::Walk &walk = quill::IterData;
    if (walk.array == nullptr) return nullptr;
    for (int i = 0; i < walk.array->RANK; ++i) {
        if (walk.subscripts[i] < walk.array->Dim[i].Upper) {
            ++walk.subscripts[i];
            return quill::current_element();
        }
        walk.subscripts[i] = walk.array->Dim[i].Lower;
    }
    walk.array = nullptr;
    return nullptr;
}

void f90_PrintArgList(const f90_ArgList *list) {
    const auto print_slot = [](const char *format, const f90_Slot &slot) {
        std::printf(format, slot.Word0, slot.Word1);
    };
    std::printf("- ARGUMENT LIST -      Presence:%04x    Shape:%04x   Flags:%08x\n",
                static_cast<std::int16_t>(list->Presence), static_cast<std::int16_t>(list->Shape),
                list->Flags);
    print_slot("- Result:  %08x %08x\n", list->Result);
    print_slot("- ARG 1:   %08x %08x  ", list->Arg1);
    print_slot("  ARG 2:   %08x %08x\n", list->Arg2);
    print_slot("- ARG 3:   %08x %08x  ", list->Arg3);
    print_slot("  ARG 4:   %08x %08x\n", list->Arg4);
}

void f90_PrintArrDesc(const f90_ArrDesc *array) {
    // The zero flag pads the address to eight digits where it is shorter.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
    std::printf("- ARRAY DESCRIPTOR     %08p\n", static_cast<const void *>(array));
#pragma GCC diagnostic pop
    std::printf("- ZERO:%08x  BASE:%08x --> ", reinterpret_cast<std::uintptr_t>(array->ZERO),
                reinterpret_cast<std::uintptr_t>(array->BASE));
    if (array->BASE == nullptr) {
        std::printf(" NOT PRESENT");
    } else {
        for (int i = 0; i < 32; ++i)
            std::printf("%02x", static_cast<const signed char *>(array->BASE)[i]);
    }
    std::printf("\n- EXTENT:%d     ELSIZE:%d    SCALEFACTOR:%d\n", array->EXTENT, array->ELSIZE,
                array->SCALEFACTOR);
    std::printf("- RANK:%1d  NONCONTIG:%1d  ", array->RANK, array->NONCONTIG);
    for (int i = 0; i < array->RANK; ++i) {
        const f90_DimInfo &dim = array->Dim[i];
        std::printf("%d(%d %d %d) ", i + 1, dim.Lower, dim.Upper, dim.Stride);
    }
    std::printf("\n-\n");
}

} // extern "C"

// What the reductions with ARRAY, DIM and MASK have in common: the record as they
// read it, and the layout of a call (whole array or along DIM, dense or by strides)
// over which the folds run. Checks and creation differ and stay with each family.
#pragma once

#include "frame/checks.h"
#include "frame/creation.h"
#include "reductions/fold_along.h"

namespace quill {

// ---- The call ---------------------------------------------------------------

struct MaskedCall {
    const f90_ArrDesc &array;
    f90_ArrDesc &result;
    const f90_ArrDesc *mask; // null when every element counts
    int rank;
    bool has_dim;
    std::int32_t dim;      // from 1
    bool nothing_selected; // by a false scalar MASK

    bool along_dim() const { return has_dim && rank != 1; }
    bool dense_mask() const { return mask == nullptr || mask->NONCONTIG == 0; }
    bool dense_operands() const { return array.NONCONTIG == 0 && dense_mask(); }
    bool dense() const { return array.NONCONTIG == 0 && result.NONCONTIG == 0 && dense_mask(); }
    Bytes mask_base() const { return mask == nullptr ? nullptr : base(*mask); }
    std::ptrdiff_t mask_step(int i) const { return mask == nullptr ? 0 : byte_step(*mask, i); }
};

inline MaskedCall read_masked_call(const f90_ArgList &list) {
    const f90_ArrDesc &array = descriptor(list.Arg1);
    const bool has_dim = argument_given(list, 2);
    return {array,
            descriptor(list.Result),
            argument_given(list, 3) ? &descriptor(list.Arg3) : nullptr,
            array.RANK,
            has_dim,
            has_dim ? value(list.Arg2) : 0,
            false};
}

// A scalar MASK selects everything or nothing.
inline void resolve_scalar_mask(MaskedCall &call) {
    if (call.mask != nullptr && call.mask->RANK == 0) [[unlikely]] {
        call.nothing_selected = load<Word>(base(*call.mask)) == 0;
        call.mask = nullptr;
    }
}

// ---- The whole array --------------------------------------------------------

[[gnu::noinline]] inline Nest<2> whole_array(const MaskedCall &call) {
    Nest<2> nest;
    for (int i = 0; i < call.rank; ++i)
        add_dimension(nest,
                      {extent(call.array.Dim[i]), {{byte_step(call.array, i), call.mask_step(i)}}});
    return nest;
}

// Under a MASK, or by strides.
template <class Fold>
[[gnu::noinline]] void walk_whole(typename Fold::Accumulator &accumulator, const MaskedCall &call,
                                  bool dense) {
    const Positions<2> first = {{base(call.array), call.mask_base()}};
    if (dense)
        return fold_masked_run<Fold>(accumulator, first,
                                     {call.array.EXTENT, {{element_size<Fold>, sizeof(Word)}}});
    for_each_run(whole_array(call), first, [&](const Positions<2> &from, const Run<2> &run) {
        fold_masked_or_not<Fold>(accumulator, from, run, call.mask != nullptr);
        return true;
    });
}

// Where `dense`, adjacent elements whatever Stride says.
template <class Fold>
void fold_whole(typename Fold::Accumulator &accumulator, const MaskedCall &call, bool dense) {
    const f90_ArrDesc &array = call.array;
    if (call.mask == nullptr && dense)
        fold_run<Fold>(accumulator, base(array), element_size<Fold>, array.EXTENT);
    else if (call.mask == nullptr && call.rank == 1)
        fold_run<Fold>(accumulator, base(array), byte_step(array, 0), extent(array.Dim[0]));
    else
        walk_whole<Fold>(accumulator, call, dense);
}

// ---- Along DIM --------------------------------------------------------------

// The run along DIM, and the walk over the kept dimensions.
struct AlongDim {
    Run<2> run;
    Nest<3> kept;
};

[[gnu::noinline]] inline bool is_empty_below_dim(const MaskedCall &call) {
    for (int i = 0; i < call.dim - 1; ++i)
        if (extent(call.array.Dim[i]) == 0) return true;
    return false;
}

// In a dense array the kept dimensions are neighbours below DIM and blocks above
// it. Stride of the reduced dimension says how many neighbours there are, as long as
// no dimension below DIM is empty.
inline void lay_out_dense(const MaskedCall &call, std::ptrdiff_t size, AlongDim &along) {
    const std::ptrdiff_t mask_size = call.mask == nullptr ? 0 : sizeof(Word);
    const std::ptrdiff_t neighbours = call.array.Dim[call.dim - 1].Stride;
    const std::ptrdiff_t block = along.run.count * neighbours;
    std::int32_t blocks = 1;
    for (int i = call.dim; i < call.rank; ++i) blocks *= extent(call.array.Dim[i]);
    along.run.step = {{neighbours * size, neighbours * mask_size}};
    along.kept.empty = neighbours < 1 || blocks < 1;
    if (neighbours > 1)
        append_level(along.kept,
                     {static_cast<std::int32_t>(neighbours), {{size, mask_size, size}}});
    if (blocks > 1)
        append_level(along.kept, {blocks, {{block * size, block * mask_size, neighbours * size}}});
}

inline void lay_out_spaced(const MaskedCall &call, AlongDim &along) {
    const int reduced = call.dim - 1;
    along.run.step = {{byte_step(call.array, reduced), call.mask_step(reduced)}};
    for (int r = 0; r < call.rank - 1; ++r) {
        const int i = kept_dimension(r, reduced);
        add_dimension(along.kept,
                      {extent(call.array.Dim[i]),
                       {{byte_step(call.array, i), call.mask_step(i), byte_step(call.result, r)}}});
    }
}

[[gnu::noinline]] inline void lay_out_along_dim(const MaskedCall &call, std::ptrdiff_t size,
                                                AlongDim &along) {
    along.run.count = call.nothing_selected ? 0 : extent(call.array.Dim[call.dim - 1]);
    if (call.dense())
        lay_out_dense(call, size, along);
    else
        lay_out_spaced(call, along);
}

template <class Fold>
void fold_along_dim(const typename Fold::Accumulator &start, const MaskedCall &call) {
    if (call.array.EXTENT == 0 && is_empty_below_dim(call)) return;
    AlongDim along;
    lay_out_along_dim(call, element_size<Fold>, along);
    fold_along<Fold>(start, along.kept, {{base(call.array), call.mask_base(), base(call.result)}},
                     along.run, call.mask != nullptr);
}

// Stores value in every element that the nest visits.
template <class T> void fill(const Nest<1> &elements, Bytes first, const T &value) {
    for_each_run(elements, {{first}}, [&](const Positions<1> &from, const Run<1> &run) {
        for (std::int32_t i = 0; i < run.count; ++i)
            store<T>(from.at[0] + i * run.step.by[0], value);
        return true;
    });
}

} // namespace quill

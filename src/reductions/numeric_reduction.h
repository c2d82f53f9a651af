// SUM and PRODUCT: one template over a Fold. It reads the record, creates and
// checks, classifies the call once (whole array or along DIM, dense or by
// strides) and leaves the elements to the folds.
#pragma once

#include "frame/checks.h"
#include "frame/creation.h"
#include "reductions/folds.h"

namespace quill {

// Kinds 4 and 8 accumulate in double.
template <class Element> struct AccumulatorOf { using type = Element; };
template <> struct AccumulatorOf<Real4> { using type = Real8; };
template <> struct AccumulatorOf<Complex8> { using type = Complex16; };

// What SUM and PRODUCT have in common as folds. The literals of kind 16 are read
// at every call.
template <class ElementType> struct NumericFold {
    using Element = ElementType;
    using Accumulator = typename AccumulatorOf<Element>::type;
    using Result = Element;
    static constexpr bool reorderable = std::is_integral_v<Element>;
    static constexpr bool ends_early = false;
    static constexpr bool takes_mask = true;
    static constexpr std::int32_t lane_rounds = std::numeric_limits<std::int32_t>::max();
};

template <class T> T number(int small) { return static_cast<T>(small); }
template <> inline Real16 number<Real16>(int small) {
    return string_to_fp128(small == 0 ? "0.0L" : "1.0L");
}

// ---- The call ---------------------------------------------------------------

struct NumericCall {
    const f90_ArrDesc &array;
    f90_ArrDesc &result;
    const f90_ArrDesc *mask; // null when every element counts
    int rank;
    bool has_dim;
    std::int32_t dim;      // from 1
    bool nothing_selected; // a false scalar MASK along DIM

    bool along_dim() const { return has_dim && rank != 1; }
    bool dense() const {
        return array.NONCONTIG == 0 && result.NONCONTIG == 0 &&
               (mask == nullptr || mask->NONCONTIG == 0);
    }
    Bytes mask_base() const { return mask == nullptr ? nullptr : base(*mask); }
    std::ptrdiff_t mask_step(int i) const { return mask == nullptr ? 0 : byte_step(*mask, i); }
};

inline NumericCall read_numeric_call(const f90_ArgList &list) {
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

inline void check_numeric_call(const char *name, const NumericCall &call) {
    if (call.has_dim) {
        if (call.dim < 1 || call.dim > call.rank) f90_ArrLibError(name, 1, call.dim, call.rank);
        if (!conforms_without<clamped_span>(call.result, call.array, call.rank, call.dim - 1)) {
            const ShapeVector expected = shape_without(call.array, call.rank, call.dim - 1);
            f90_ArrLibError(name, 2, &call.result, report(expected));
        }
    }
    if (call.mask != nullptr && call.mask->RANK != 0 &&
        !conforms<clamped_span>(call.array, *call.mask, call.rank))
        f90_ArrLibError(name, 3, &call.array, call.mask);
}

// ---- Walks ------------------------------------------------------------------

template <class Fold>
typename Fold::Accumulator fold_whole_run(const typename Fold::Accumulator &accumulator,
                                          const NumericCall &call, const Positions<2> &from,
                                          const Run<2> &run) {
    if (call.mask != nullptr) return fold_masked_run<Fold>(accumulator, from, run);
    return fold_run<Fold>(accumulator, from.at[Array], run.step.by[Array], run.count);
}

template <class Fold>
typename Fold::Accumulator fold_whole(const typename Fold::Accumulator &start,
                                      const NumericCall &call) {
    const Positions<2> first = {{base(call.array), call.mask_base()}};
    if (call.dense())
        return fold_whole_run<Fold>(start, call, first,
                                    {call.array.EXTENT, {{element_size<Fold>, sizeof(Word)}}});
    Nest<2> nest;
    for (int i = 0; i < call.rank; ++i)
        add_dimension(nest,
                      {extent(call.array.Dim[i]), {{byte_step(call.array, i), call.mask_step(i)}}});
    auto accumulator = start;
    for_each_run(nest, first, [&](const Positions<2> &from, const Run<2> &run) {
        accumulator = fold_whole_run<Fold>(accumulator, call, from, run);
        return true;
    });
    return accumulator;
}

// The kept dimensions of a dense array: neighbours below DIM, blocks above it.
// Stride of the reduced dimension says how many neighbours there are.
template <class Fold> Nest<3> dense_kept_dimensions(const NumericCall &call, std::int32_t length) {
    constexpr std::ptrdiff_t size = element_size<Fold>;
    const int reduced = call.dim - 1;
    const std::ptrdiff_t neighbours = call.array.Dim[reduced].Stride;
    std::int32_t blocks = 1;
    Nest<3> kept;
    for (int i = 0; i < call.rank; ++i) {
        const std::int32_t elements = extent(call.array.Dim[i]);
        if (i != reduced && elements == 0) kept.empty = true;
        if (i > reduced) blocks *= elements;
    }
    if (kept.empty) return kept;
    const std::ptrdiff_t mask_size = call.mask == nullptr ? 0 : sizeof(Word);
    const std::ptrdiff_t block = length * neighbours;
    add_dimension(kept, {static_cast<std::int32_t>(neighbours), {{size, mask_size, size}}});
    add_dimension(kept, {blocks, {{block * size, block * mask_size, neighbours * size}}});
    return kept;
}

inline Nest<3> spaced_kept_dimensions(const NumericCall &call) {
    Nest<3> kept;
    for (int r = 0; r < call.rank - 1; ++r) {
        const int i = kept_dimension(r, call.dim - 1);
        add_dimension(kept,
                      {extent(call.array.Dim[i]),
                       {{byte_step(call.array, i), call.mask_step(i), byte_step(call.result, r)}}});
    }
    return kept;
}

template <class Fold>
void fold_along_dim(const typename Fold::Accumulator &start, const NumericCall &call) {
    const int reduced = call.dim - 1;
    const std::int32_t length = call.nothing_selected ? 0 : extent(call.array.Dim[reduced]);
    const std::ptrdiff_t stride = call.array.Dim[reduced].Stride;
    const bool dense = call.dense();
    const Run<2> run =
        dense ? Run<2>{length, {{stride * element_size<Fold>, stride * ptrdiff_t{sizeof(Word)}}}}
              : Run<2>{length, {{byte_step(call.array, reduced), call.mask_step(reduced)}}};
    fold_along<Fold>(
        start, dense ? dense_kept_dimensions<Fold>(call, length) : spaced_kept_dimensions(call),
        {{base(call.array), call.mask_base(), base(call.result)}}, run, call.mask != nullptr);
}

template <class Fold> void numeric_reduction(const f90_ArgList *list) {
    NumericCall call = read_numeric_call(*list);
    if (call.has_dim && !result_given(*list))
        create_without(call.result, call.array, call.rank, call.dim - 1, call.array.ELSIZE);
    if (checks_wanted(*list)) check_numeric_call(Fold::name, call);
    const auto start = Fold::start();
    if (call.mask != nullptr && call.mask->RANK == 0) {
        const bool selected = load<Word>(base(*call.mask)) != 0;
        call.mask = nullptr;
        if (!selected && !call.along_dim())
            return store(base(call.result), converted<typename Fold::Result>(start));
        call.nothing_selected = !selected;
    }
    if (call.along_dim()) return fold_along_dim<Fold>(start, call);
    store(base(call.result), converted<typename Fold::Result>(fold_whole<Fold>(start, call)));
}

} // namespace quill

// ALL, ANY and COUNT: one template over a Fold. Without DIM, or for a rank 1
// MASK whatever DIM says, the result goes through BASE unseen; along DIM the walk
// always goes by strides, whatever NONCONTIG says.
#pragma once

#include "frame/checks.h"
#include "frame/creation.h"
#include "reductions/fold_along.h"

namespace quill {

// What the three have in common as folds: an element is true when any of its
// bits is set.
template <class ElementType> struct LogicalFold {
    using Element = ElementType;
    static constexpr bool reorderable = true;
    static constexpr bool watches = false;
    static constexpr bool starts_at_first = false;
    static constexpr bool takes_mask = false;
};

template <class Fold>
void fold_whole_mask(typename Fold::Accumulator &accumulator, const f90_ArrDesc &mask) {
    const int rank = mask.RANK;
    if (mask.NONCONTIG == 0 || rank == 1)
        return fold_run<Fold>(accumulator, base(mask),
                              rank == 1 ? byte_step(mask, 0) : std::ptrdiff_t{mask.ELSIZE},
                              mask.EXTENT);
    Nest<1> nest;
    for (int i = 0; i < rank; ++i)
        add_dimension(nest, {extent(mask.Dim[i]), {{byte_step(mask, i)}}});
    for_each_run(nest, {{base(mask)}}, [&](const Positions<1> &from, const Run<1> &run) {
        fold_run<Fold>(accumulator, from.at[0], run.step.by[0], run.count);
        if constexpr (Fold::ends_early) return !Fold::decided(accumulator);
        return true;
    });
}

template <class Fold>
void fold_mask_along(const f90_ArrDesc &mask, int reduced, const f90_ArrDesc &result) {
    Nest<3> kept;
    for (int r = 0; r < mask.RANK - 1; ++r) {
        const int i = kept_dimension(r, reduced);
        add_dimension(kept, {extent(mask.Dim[i]), {{byte_step(mask, i), 0, byte_step(result, r)}}});
    }
    fold_along<Fold>(Fold::start(), kept, {{base(mask), nullptr, base(result)}},
                     {extent(mask.Dim[reduced]), {{byte_step(mask, reduced), 0}}}, false);
}

// Checks DIM, whatever Flags says; creates the result or checks the one given.
[[gnu::noinline]] inline void prepare_along_dim(const char *name, const f90_ArgList &list,
                                                std::int32_t result_size) {
    const f90_ArrDesc &mask = descriptor(list.Arg1);
    f90_ArrDesc &result = descriptor(list.Result);
    const int rank = mask.RANK;
    const std::int32_t dim = value(list.Arg2);
    if (dim < 1 || dim > rank) f90_ArrLibError(name, 1, dim, rank);
    if (!result_given(list)) {
        create_without(result, mask, rank, dim - 1, result_size);
    } else if (checks_wanted(list) && !conforms_without<extent>(result, mask, rank, dim - 1)) {
        const ShapeVector expected = shape_without(mask, rank, dim - 1);
        f90_ArrLibError(name, 2, &result, report(expected));
    }
}

template <class Fold> void logical_reduction(const f90_ArgList *list) {
    const f90_ArrDesc &mask = descriptor(list->Arg1);
    const f90_ArrDesc &result = descriptor(list->Result);
    if (argument_given(*list, 2) && mask.RANK != 1) {
        prepare_along_dim(Fold::name, *list, sizeof(typename Fold::Result));
        return fold_mask_along<Fold>(mask, value(list->Arg2) - 1, result);
    }
    auto accumulator = Fold::start();
    fold_whole_mask<Fold>(accumulator, mask);
    store(base(result), converted<typename Fold::Result>(accumulator));
}

} // namespace quill

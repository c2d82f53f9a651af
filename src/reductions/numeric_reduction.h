// SUM and PRODUCT: one template over a Fold. It reads the record, creates and
// checks, and leaves the elements to the folds.
#pragma once

#include "reductions/masked_reduction.h"

namespace quill {

// Kinds 4 and 8 accumulate in double.
template <class Element> struct AccumulatorOf { using type = Element; };
template <> struct AccumulatorOf<Real4> { using type = Real8; };
template <class Part> struct AccumulatorOf<Complex<Part>> {
    using type = Complex<typename AccumulatorOf<Part>::type>;
};

// What SUM and PRODUCT have in common as folds.
template <class ElementType> struct NumericFold {
    using Element = ElementType;
    using Accumulator = typename AccumulatorOf<Element>::type;
    using Result = Element;
    static constexpr bool reorderable = std::is_integral_v<Element>;
    static constexpr bool watches = false;
    static constexpr bool starts_at_first = false;
    static constexpr bool ends_early = false;
    static constexpr bool takes_mask = true;
    static constexpr std::int32_t lane_rounds = std::numeric_limits<std::int32_t>::max();
};

// Creates the result where the caller left that to the library, and then checks.
[[gnu::noinline]] inline void prepare_numeric_call(const char *name, const f90_ArgList &list,
                                                   const MaskedCall &call) {
    if (call.has_dim && !result_given(list))
        create_without(call.result, call.array, call.rank, call.dim - 1, call.array.ELSIZE);
    if (!checks_wanted(list)) return;
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

// ---- The family -------------------------------------------------------------

template <class Fold> void numeric_reduction(const f90_ArgList *list) {
    MaskedCall call = read_masked_call(*list);
    if (!result_given(*list) || checks_wanted(*list)) prepare_numeric_call(Fold::name, *list, call);
    resolve_scalar_mask(call);
    auto accumulator = Fold::start();
    if (call.along_dim()) return fold_along_dim<Fold>(accumulator, call);
    if (!call.nothing_selected) fold_whole<Fold>(accumulator, call, call.dense());
    store(base(call.result), converted<typename Fold::Result>(accumulator));
}

} // namespace quill

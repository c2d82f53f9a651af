// MAXVAL and MINVAL: one template over a Fold of one of the two orders. What is
// peculiar is where a fold starts, which decides what infinities and unordered
// elements give: at the first element of a dense array without MASK and of a run
// along DIM, at the start value of the order everywhere else.
#pragma once

#include "reductions/extreme.h"
#include "reductions/masked_reduction.h"

namespace quill {

// ---- The folds --------------------------------------------------------------

template <class Order> struct ExtremumFold {
    using Element = typename Order::Element;
    using Accumulator = Element;
    using Result = Element;
    static constexpr const char *name = Order::value_name;
    static constexpr bool reorderable = false;
    static constexpr bool watches = false;
    static constexpr bool starts_at_first = true;
    static constexpr bool ends_early = false;
    static constexpr bool takes_mask = true;

    static Element start() { return Order::start(); }
    // Always part of its caller, as a load is.
    [[gnu::always_inline]] static Element step(const Element &best, const Element &element) {
        return Order::replaces(element, best) ? element : best;
    }
};

template <class Order> struct Extremum : ExtremumFold<Order> {};

// A search as a kernel of a fold.
template <class Search> struct SearchKernel {
    static constexpr bool uses_avx512 = Search::uses_avx512;

    template <int Width, class... Arguments>
    static void run(typename Search::Element &value, Arguments... arguments) {
        Best<typename Search::Element> best = {value, 0};
        Search::template run<Width>(best, arguments..., 0);
        value = best.value;
    }
};

// Reals that vectors hold.
template <class Order>
requires std::is_floating_point_v<typename Order::Element> &&
    is_vectorisable<typename Order::Element>
struct Extremum<Order> : ExtremumFold<Order> {
    struct Kernels {
        using Dense = SearchKernel<DenseSearch<Order, false>>;
        using Masked = SearchKernel<MaskedSearch<Order, false>>;
    };
};

// Integers: no element lies beyond the start value, so that it makes no difference.
template <class Order>
requires std::is_integral_v<typename Order::Element>
struct Extremum<Order> : ExtremumFold<Order>, OrderedLanes<Order> {
    using Element = typename Order::Element;
    static constexpr bool reorderable = true;
    static constexpr bool starts_at_first = false;
    static constexpr bool uses_avx512 = profits_from_avx512<Order>;
    struct Kernels {
        using Dense = DenseFold<Extremum, 1>;
        using Masked = SearchKernel<MaskedSearch<Order, false>>;
    };

    template <int Width> static void absorb(Element &best, const Lanes<Element, Width> &lanes) {
        absorb_lanes<Extremum, Width>(best, lanes);
    }
};

// ---- The checks -------------------------------------------------------------

[[gnu::noinline]] inline void check_extremum(const char *name, const f90_ArgList &list,
                                             const MaskedCall &call) {
    if (call.has_dim && (call.dim < 1 || call.dim > call.rank))
        f90_ArrLibError(name, 1, call.dim, call.rank);
    if (call.mask != nullptr && call.mask->RANK != 0 &&
        !conforms<clamped_span>(*call.mask, call.array, call.rank))
        f90_ArrLibError(name, 2, &call.array, call.mask);
    if (call.has_dim && result_given(list) &&
        !conforms_without<clamped_span>(call.result, call.array, call.rank, call.dim - 1)) {
        const ShapeVector expected = shape_without(call.array, call.rank, call.dim - 1);
        f90_ArrLibError(name, 3, &call.result, report(expected));
    }
}

// ---- The two walks ----------------------------------------------------------

template <class Fold> void extremum_of_whole(const f90_ArgList &list, const MaskedCall &call) {
    using Element = typename Fold::Element;
    if (!result_given(list)) create_single(call.result, sizeof(Element));
    const bool dense = call.dense_operands();
    const bool at_first = !call.nothing_selected && dense && call.mask == nullptr;
    Element best = at_first ? load<Element>(base(call.array)) : Fold::start();
    if (!call.nothing_selected) fold_whole<Fold>(best, call, dense);
    store(base(call.result), best);
}

// The result's own extents count here: they may be 1 where those of ARRAY are 0.
[[gnu::noinline]] inline Nest<1> whole_result(const f90_ArrDesc &result, std::ptrdiff_t size) {
    Nest<1> nest;
    if (result.NONCONTIG == 0)
        add_dimension(nest, {result.EXTENT, {{size}}});
    else
        for (int i = 0; i < result.RANK; ++i)
            add_dimension(nest, {extent(result.Dim[i]), {{byte_step(result, i)}}});
    return nest;
}

template <class Fold> void extremum_along_dim(const f90_ArgList &list, const MaskedCall &call) {
    using Element = typename Fold::Element;
    if (!result_given(list))
        create_without(call.result, call.array, call.rank, call.dim - 1, sizeof(Element));
    if (call.result.EXTENT == 0) return;
    if (call.nothing_selected)
        return fill(whole_result(call.result, sizeof(Element)), base(call.result), Fold::start());
    const bool may_need_start = !Fold::starts_at_first || call.mask != nullptr;
    fold_along_dim<Fold>(may_need_start ? Fold::start() : Element{}, call);
}

// ---- The family -------------------------------------------------------------

template <class Order> void extremum(const f90_ArgList *list) {
    using Fold = Extremum<Order>;
    MaskedCall call = read_masked_call(*list);
    if (checks_wanted(*list)) check_extremum(Fold::name, *list, call);
    resolve_scalar_mask(call);
    if (call.array.EXTENT == 0) call.nothing_selected = true;
    if (call.along_dim() && call.dim > 0)
        extremum_along_dim<Fold>(*list, call);
    else
        extremum_of_whole<Fold>(*list, call);
}

} // namespace quill

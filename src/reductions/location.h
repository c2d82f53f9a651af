// MAXLOC and MINLOC, and their k forms: one template over one of the two orders. A
// search keeps the best element so far and its number; positions are worked out from
// the number at the end. The plain and the k forms differ in where a search starts
// and in how they turn Stride into bytes.
#pragma once

#include "reductions/extreme.h"
#include "reductions/masked_reduction.h"

namespace quill {

// ---- The call ---------------------------------------------------------------

struct LocationCall : MaskedCall {
    bool wide; // a k form
    std::int32_t element_size;

    std::int32_t result_size() const { return wide ? 8 : 4; }
    // The plain forms step by the size of what they read or write.
    std::ptrdiff_t step(const f90_ArrDesc &operand, int i, std::int32_t size) const {
        return byte_step(operand, i, wide ? operand.SCALEFACTOR : size);
    }
    std::ptrdiff_t array_step(int i) const { return step(array, i, element_size); }
    std::ptrdiff_t mask_step(int i) const {
        return mask == nullptr ? 0 : step(*mask, i, sizeof(Word));
    }
    std::ptrdiff_t result_step(int i) const { return step(result, i, result_size()); }
};

constexpr std::int32_t no_place = -1;

inline void store_position(Bytes at, std::int32_t position, bool wide) {
    if (wide)
        store<std::int64_t>(at, position);
    else
        store(at, position);
}

// ---- The checks, and creation -----------------------------------------------

[[gnu::noinline]] inline void check_location(const char *name, const f90_ArgList &list,
                                             const LocationCall &call) {
    if (call.has_dim && (call.dim < 1 || call.dim > call.rank))
        f90_ArrLibError(name, 4, call.dim, call.rank);
    if (call.mask != nullptr && call.mask->RANK != 0 &&
        !conforms<clamped_span>(call.array, *call.mask, call.rank))
        f90_ArrLibError(name, 3, &call.array, call.mask);
    if (!result_given(list)) return;
    if (call.along_dim()) {
        if (conforms_without<clamped_span>(call.result, call.array, call.rank, call.dim - 1))
            return;
        const ShapeVector expected = shape_without(call.array, call.rank, call.dim - 1);
        f90_ArrLibError(name, 2, &call.result, report(expected));
    }
    if (call.result.EXTENT != call.rank) f90_ArrLibError(name, 1, call.result.EXTENT, call.rank);
    if (call.result.RANK != 1) {
        const ShapeVector expected = {1, {call.rank}};
        f90_ArrLibError(name, 2, &call.result, report(expected));
    }
}

[[gnu::noinline]] inline void create_positions(const LocationCall &call) {
    if (call.along_dim())
        return create_without(call.result, call.array, call.rank, call.dim - 1, call.result_size());
    call.result.RANK = 1;
    call.result.ELSIZE = call.result_size();
    call.result.Dim[0].Lower = 1;
    call.result.Dim[0].Upper = call.rank;
    f90_CreateArrayM(&call.result);
}

// ---- One run ----------------------------------------------------------------

// A search under way. One that awaits its first element takes the first that MASK
// selects, whatever its value.
template <class Order> struct Search {
    Best<typename Order::Element> best;
    bool awaits_first;
};

template <class Order>
[[gnu::always_inline]] inline void search_run(Search<Order> &search, const Positions<2> &from,
                                              const Run<2> &run, std::int32_t number) {
    constexpr std::ptrdiff_t size = sizeof(typename Order::Element);
    constexpr std::int32_t short_run = 16;
    if constexpr (is_vectorisable<typename Order::Element>)
        if (run.step.by[0] == size && run.count > short_run)
            return run_vectorised<DenseSearch<Order, true>>(search.best, from.at[0], run.count,
                                                            number);
    search_spaced<Order>(search.best, from.at[0], run.step.by[0], run.count, number);
}

template <class Order>
void search_masked_run(Search<Order> &search, Positions<2> from, const Run<2> &run,
                       std::int32_t number) {
    using Element = typename Order::Element;
    std::int32_t i = 0;
    if (search.awaits_first) {
        while (i < run.count && load<Word>(from.at[1] + i * run.step.by[1]) == 0) ++i;
        if (i == run.count) return;
        advance(from, run.step, i);
        search = {{load<Element>(from.at[0]), number + i}, false};
    }
    if constexpr (is_vectorisable<Element>)
        if (run.step.by[0] == sizeof(Element) && run.step.by[1] == sizeof(Word))
            return run_vectorised<MaskedSearch<Order, true>>(search.best, from.at[0], from.at[1],
                                                             run.count - i, number + i);
    search_masked_spaced<Order>(search.best, from.at[0], from.at[1], run.step, run.count - i,
                                number + i);
}

// ---- The whole array --------------------------------------------------------

[[gnu::noinline]] inline Nest<2> spaced_elements(const LocationCall &call) {
    Nest<2> nest;
    for (int i = 0; i < call.rank; ++i) {
        std::ptrdiff_t step = call.array_step(i);
        // The one place where a plain form looks at SCALEFACTOR.
        if (!call.wide && i == 0 && call.mask == nullptr)
            step *= call.array.SCALEFACTOR / call.array.ELSIZE;
        add_dimension(nest, {extent(call.array.Dim[i]), {{step, call.mask_step(i)}}});
    }
    return nest;
}

template <class Order> void search_whole(Search<Order> &search, const LocationCall &call) {
    const Positions<2> first = {{base(call.array), call.mask_base()}};
    if (call.dense_operands()) {
        const Run<2> all = {call.array.EXTENT, {{call.element_size, sizeof(Word)}}};
        if (call.mask == nullptr) return search_run(search, first, all, 0);
        return search_masked_run(search, first, all, 0);
    }
    std::int32_t number = 0;
    for_each_run(spaced_elements(call), first, [&](const Positions<2> &from, const Run<2> &run) {
        if (call.mask == nullptr)
            search_run(search, from, run, number);
        else
            search_masked_run(search, from, run, number);
        number += run.count;
        return true;
    });
}

// Elements of a dense array are numbered by distance, others by count.
inline void store_positions(const LocationCall &call, std::int32_t place) {
    std::int32_t weights[f90_MaxRank];
    std::int32_t elements = 1;
    for (int i = 0; i < call.rank; ++i) {
        weights[i] = std::max(call.dense_operands() ? call.array.Dim[i].Stride : elements, 1);
        elements *= extent(call.array.Dim[i]);
    }
    for (int i = call.rank - 1; i >= 0; --i) {
        std::int32_t position = i == 0 ? 0 : 1; // where nothing was found
        if (place != no_place) {
            position = place / weights[i] + 1;
            place %= weights[i];
        }
        store_position(base(call.result) + i * call.result_step(0), position, call.wide);
    }
}

template <class Order> void locate_in_whole(const LocationCall &call) {
    using Element = typename Order::Element;
    Search<Order> search = {{Element{}, no_place}, false};
    if (!call.nothing_selected) {
        if (call.wide)
            search.best.value = Order::start();
        else if (call.mask == nullptr)
            search.best = {load<Element>(base(call.array)), 0};
        else
            search.awaits_first = true;
        search_whole(search, call);
    }
    store_positions(call, search.best.place);
}

// ---- Along DIM --------------------------------------------------------------

// Runs of equal length, each for one position.
struct LocationBatch {
    const LocationCall &call;
    RunBatch runs;

    void store_place(std::int32_t i, std::int32_t place) const {
        store_position(runs.first.at[Result] + i * runs.runs.step.by[Result], place + 1, call.wide);
    }
};

// How the search of one run starts. Under a MASK that does not select the first element
// a plain form awaits its first element, a k form has to beat the start value.
template <class Order>
Search<Order> start_search(const Positions<2> &from, bool masked, bool wide) {
    if (!masked || load<Word>(from.at[Mask]) != 0)
        return {{load<typename Order::Element>(from.at[Array]), 0}, false};
    if (wide) return {{Order::start(), no_place}, false};
    return {{{}, no_place}, true};
}

// Neighbouring runs side by side: element k of each, then element k + 1.
template <class Order, bool masked> struct AdjacentSearch {
    using Element = typename Order::Element;

    // A place equal to `awaiting` is taken by the next element that counts.
    template <int>
    static void run(Element *best, std::int32_t *place, std::int32_t width,
                    const Positions<2> &from, const Run<2> &run, std::int32_t awaiting) {
        for (std::int32_t k = 0; k < run.count; ++k) {
            ConstBytes row = from.at[Array] + k * run.step.by[Array];
            ConstBytes mask = from.at[Mask] + k * run.step.by[Mask];
            for (std::int32_t j = 0; j < width; ++j) {
                const auto element = load<Element>(row + j * static_cast<int>(sizeof(Element)));
                bool better = Order::replaces(element, best[j]);
                if constexpr (masked)
                    better = (better | (place[j] == awaiting)) &
                             (load<Word>(mask + j * static_cast<int>(sizeof(Word))) != 0);
                best[j] = better ? element : best[j];
                place[j] = better ? k : place[j];
            }
        }
    }
};

template <class Order, bool masked> void search_adjacent_runs(const LocationBatch &batch) {
    using Element = typename Order::Element;
    constexpr std::int32_t block = 256;
    constexpr std::int32_t never = std::numeric_limits<std::int32_t>::max();
    Element best[block];
    std::int32_t place[block];
    for (std::int32_t done = 0; done < batch.runs.runs.count; done += block) {
        const std::int32_t width = std::min(block, batch.runs.runs.count - done);
        for (std::int32_t j = 0; j < width; ++j) {
            const auto search =
                start_search<Order>(batch.runs.start_of(done + j), masked, batch.call.wide);
            best[j] = search.best.value;
            place[j] = search.best.place;
        }
        run_vectorised<AdjacentSearch<Order, masked>>(best, place, width, batch.runs.start_of(done),
                                                      batch.runs.run,
                                                      batch.call.wide ? never : no_place);
        for (std::int32_t j = 0; j < width; ++j) batch.store_place(done + j, place[j]);
    }
}

// Runs of adjacent elements, one after the other.
template <class Order> struct DenseSearches {
    static constexpr bool uses_avx512 = profits_from_avx512<Order>;

    template <int Width> static void run(const LocationBatch &batch) {
        for (std::int32_t i = 0; i < batch.runs.runs.count; ++i) {
            const Positions<2> from = batch.runs.start_of(i);
            auto search = start_search<Order>(from, false, batch.call.wide);
            DenseSearch<Order, true>::template run<Width>(search.best, from.at[Array],
                                                          batch.runs.run.count, 0);
            batch.store_place(i, search.best.place);
        }
    }
};

template <class Order> void search_single_runs(const LocationBatch &batch) {
    const RunBatch &runs = batch.runs;
    for (std::int32_t i = 0; i < runs.runs.count; ++i) {
        const Positions<2> from = runs.start_of(i);
        auto search = start_search<Order>(from, runs.masked, batch.call.wide);
        if (runs.masked)
            search_masked_run(search, from, runs.run, 0);
        else
            search_spaced<Order>(search.best, from.at[Array], runs.run.step.by[Array],
                                 runs.run.count, 0);
        batch.store_place(i, search.best.place);
    }
}

// Few and short runs without MASK, in the plainest loop.
template <class Order>
void search_short_runs(const Positions<3> &first, const Run<3> &runs, const Run<2> &run,
                       bool wide) {
    Bytes array = first.at[Array];
    Bytes result = first.at[Result];
    for (std::int32_t i = runs.count; i > 0; --i) {
        Best<typename Order::Element> best = {load<typename Order::Element>(array), 0};
        search_spaced<Order>(best, array, run.step.by[Array], run.count, 0);
        store_position(result, best.place + 1, wide);
        array += runs.step.by[Array];
        result += runs.step.by[Result];
    }
}

// Chooses how a batch of longer or many runs is searched.
template <class Order> [[gnu::noinline]] void search_batch(const LocationBatch &batch) {
    constexpr std::ptrdiff_t size = sizeof(typename Order::Element);
    const RunBatch &runs = batch.runs;
    if constexpr (is_vectorisable<typename Order::Element>) {
        if (runs.runs.count >= few && runs.runs.step.by[Array] == size) {
            if (!runs.masked) return search_adjacent_runs<Order, false>(batch);
            if (runs.runs.step.by[Mask] == sizeof(Word))
                return search_adjacent_runs<Order, true>(batch);
        }
        if (!runs.masked && runs.run.step.by[Array] == size && runs.run.count > few)
            return run_vectorised<DenseSearches<Order>>(batch);
    }
    search_single_runs<Order>(batch);
}

[[gnu::noinline]] inline void zero_positions(const LocationCall &call) {
    Nest<1> nest;
    for (int i = 0; i < call.result.RANK; ++i)
        add_dimension(nest, {extent(call.result.Dim[i]), {{call.result_step(i)}}});
    if (call.wide)
        fill<std::int64_t>(nest, base(call.result), 0);
    else
        fill<std::int32_t>(nest, base(call.result), 0);
}

template <class Order> void locate_along_dim(const LocationCall &call) {
    if (call.result.EXTENT == 0) return;
    if (call.nothing_selected) return zero_positions(call);
    const int along = call.dim - 1;
    const Run<2> run = {extent(call.array.Dim[along]),
                        {{call.array_step(along), call.mask_step(along)}}};
    Nest<3> kept;
    for (int r = 0; r < call.rank - 1; ++r) {
        const int i = kept_dimension(r, along);
        add_dimension(kept, {extent(call.array.Dim[i]),
                             {{call.array_step(i), call.mask_step(i), call.result_step(r)}}});
    }
    for_each_run(kept, {{base(call.array), call.mask_base(), base(call.result)}},
                 [&](const Positions<3> &first, const Run<3> &runs) {
                     if (run.count <= few && runs.count < few && call.mask == nullptr)
                         search_short_runs<Order>(first, runs, run, call.wide);
                     else
                         search_batch<Order>({call, {first, runs, run, call.mask != nullptr}});
                     return true;
                 });
}

// ---- The family -------------------------------------------------------------

template <class Order> void location(const f90_ArgList *list, bool wide) {
    LocationCall call = {read_masked_call(*list), wide, sizeof(typename Order::Element)};
    if (checks_wanted(*list))
        check_location(wide ? Order::wide_place_name : Order::place_name, *list, call);
    if (!result_given(*list)) create_positions(call);
    resolve_scalar_mask(call);
    if (call.array.EXTENT == 0) call.nothing_selected = true;
    if (call.along_dim())
        locate_along_dim<Order>(call);
    else
        locate_in_whole<Order>(call);
}

} // namespace quill

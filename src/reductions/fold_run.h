// How a reduction runs over elements: one run of them, or one run under a MASK.
// fold_along.h has many runs side by side. A Fold says what a reduction is:
//
//   Element, Accumulator, Result   types of an element, in a run, of the result
//   start()                        where a run begins
//   step(accumulator, element)     one element more
//   starts_at_first                a run along a dimension begins at its first element,
//                                  and at start() only where MASK does not select that
//   reorderable                    elements may be taken in any order; then also
//     neutral()                    an element that changes nothing
//     lane_start, lane_step        the same for a vector of elements, at most
//     lane_rounds                  this many rounds of four vectors before
//     absorb(accumulator, lanes)   the vectors go into the accumulator
//     watches, note                lanes of elements that vectors cannot fold are noted
//     uses_avx512                  where it helps the lanes
//   Kernels                        Dense and Masked: kernels of its own for dense runs,
//                                  of a fold that is reorderable but for rare elements
//   ends_early, decided(acc)       further elements change nothing
//   takes_mask                     the intrinsic has a MASK argument
//
// Any other fold takes its elements one by one, in order, into one accumulator;
// speed comes from several runs side by side.
#pragma once

#include "frame/elements.h"
#include "frame/isa.h"
#include "frame/lanes.h"
#include "frame/walk.h"

#include <algorithm>
#include <limits>

namespace quill {

template <class Fold> constexpr std::ptrdiff_t element_size = sizeof(typename Fold::Element);

// Accumulators go by reference: by value, a double would return through the x87.

// ---- One run ----------------------------------------------------------------

// Elements `step` bytes apart, one by one. Always part of its caller, which may
// know the step.
template <class Fold>
[[gnu::always_inline]] inline void fold_spaced(typename Fold::Accumulator &accumulator,
                                               ConstBytes array, std::ptrdiff_t step,
                                               std::int32_t count) {
    auto running = accumulator;
#pragma GCC unroll 8
    for (std::int32_t i = 0; i < count; ++i) {
        running = Fold::step(running, load<typename Fold::Element>(array + i * step));
        if constexpr (Fold::ends_early)
            if (Fold::decided(running)) break;
    }
    accumulator = running;
}

// Elements of a reorderable fold in vectors of Width bytes, four at a time; fewer
// than fill one vector go to the next narrower width. Of `spread` adjacent
// elements the first counts: with 2, every other one.
template <class Fold, int spread> struct DenseFold {
    static constexpr bool uses_avx512 = requires { requires Fold::uses_avx512; };
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;
    static constexpr std::int32_t step = spread * sizeof(Element);

    using Number = SignedOfSize<sizeof(Element)>;

    // The lanes of elements that count, the others as they started.
    template <class V> static V counting_lanes(const V &lanes) {
        if constexpr (spread == 1) return lanes;
        const auto which =
            numbered_lanes<Number, sizeof(V)>([](int i) { return i % spread == 0 ? -1 : 0; });
        return which ? lanes : Fold::template lane_start<V>();
    }

    // The last `count` elements before `end`, fewer than a vector's, loaded with
    // elements in front of them that have been taken already.
    template <class V> static V last_lanes(ConstBytes end, std::int32_t count) {
        constexpr int lanes = sizeof(V) / sizeof(Element);
        const auto number = numbered_lanes<Number, sizeof(V)>([](int i) { return i; });
        const auto which = number >= static_cast<Number>(lanes - count);
        return which ? load_lanes<V>(end - sizeof(V)) : V{} + Fold::neutral();
    }

    template <int Width>
    static void run(Accumulator &accumulator, ConstBytes array, std::int32_t count) {
        using V = Lanes<Element, Width>;
        constexpr std::int32_t per_vector = Width / step;
        constexpr std::int32_t gap = spread - 1; // no vector reaches behind the last element
        if (count - gap < per_vector) {
            if constexpr (Width > 16) return run<Width / 2>(accumulator, array, count);
            return fold_spaced<Fold>(accumulator, array, step, count);
        }
        do {
            const std::int32_t rounds =
                std::min((count - gap) / (4 * per_vector), Fold::lane_rounds);
            count -= rounds * 4 * per_vector;
            V first = Fold::template lane_start<V>();
            V second = first;
            V third = first;
            V fourth = first;
            Lanes<Number, Width> noted{};
            const auto take = [&](V &lanes, const V &elements) {
                lanes = Fold::lane_step(lanes, elements);
                if constexpr (Fold::watches) noted |= Fold::watch(elements);
            };
            for (ConstBytes end = array + rounds * 4 * Width; array != end; array += 4 * Width) {
                take(first, load_lanes<V>(array));
                take(second, load_lanes<V>(array + Width));
                take(third, load_lanes<V>(array + 2 * Width));
                take(fourth, load_lanes<V>(array + 3 * Width));
            }
            if (count - gap < 4 * per_vector) {
                for (; count - gap >= per_vector; count -= per_vector, array += Width)
                    take(first, load_lanes<V>(array));
                if (spread == 1 && count > 0) {
                    take(second, last_lanes<V>(array + count * step, count));
                    count = 0;
                }
            }
            if constexpr (Fold::watches) Fold::note(accumulator, any_bit<Width>(noted));
            Fold::template absorb<Width>(
                accumulator, counting_lanes(Fold::lane_combine(Fold::lane_combine(first, second),
                                                               Fold::lane_combine(third, fourth))));
            if constexpr (Fold::ends_early)
                if (Fold::decided(accumulator)) return;
        } while (count - gap >= per_vector);
        fold_spaced<Fold>(accumulator, array, step, count);
    }
};

// Takes all lanes of a vector, as far as it has come, into an accumulator.
template <class Fold, int Width>
void absorb_lanes(typename Fold::Accumulator &accumulator,
                  const Lanes<typename Fold::Element, Width> &lanes) {
    accumulator = Fold::step(accumulator, fold_lanes<typename Fold::Element, Width>(
                                              lanes, [](const auto &a, const auto &b) {
                                                  return Fold::lane_combine(a, b);
                                              }));
}

// fold_spaced for long runs of what SSE registers hold. Under AVX2 it is the encoding
// that counts: SSE code is slowed down by what AVX code of the caller leaves in them.
template <class Fold> struct SpacedFold {
    template <int>
    static void run(typename Fold::Accumulator &accumulator, ConstBytes array, std::ptrdiff_t step,
                    std::int32_t count) {
        if (step == element_size<Fold>)
            fold_spaced<Fold>(accumulator, array, element_size<Fold>, count);
        else
            fold_spaced<Fold>(accumulator, array, step, count);
    }
};

// Adjacent elements of a reorderable fold beside adjacent MASK words: an element
// that does not count is replaced by the neutral one.
template <class Fold> struct DenseMaskedFold {
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;

    template <int>
    static void run(Accumulator &accumulator, ConstBytes array, ConstBytes mask,
                    std::int32_t count) {
        const Element neutral = Fold::neutral();
        Accumulator running = accumulator;
        for (std::int32_t i = 0; i < count; ++i) {
            const bool counts = load<Word>(mask + i * static_cast<int>(sizeof(Word))) != 0;
            const auto element = load<Element>(array + i * element_size<Fold>);
            running = Fold::step(running, counts ? element : neutral);
        }
        accumulator = running;
    }
};

// The kernels for dense runs: those of any reorderable fold, or the fold's own.
template <class Fold> struct KernelsOf {
    using Dense = DenseFold<Fold, 1>;
    using Masked = DenseMaskedFold<Fold>;
};
template <class Fold>
requires requires { typename Fold::Kernels; }
struct KernelsOf<Fold> : Fold::Kernels {};

template <class Fold> constexpr bool has_kernels = Fold::reorderable || requires {
    typename Fold::Kernels;
};

template <class Fold>
[[gnu::always_inline]] inline void fold_run(typename Fold::Accumulator &accumulator,
                                            ConstBytes array, std::ptrdiff_t step,
                                            std::int32_t count) {
    constexpr std::ptrdiff_t size = element_size<Fold>;
    constexpr std::int32_t short_run = 16;
    if (count <= short_run) return fold_spaced<Fold>(accumulator, array, step, count);
    if constexpr (Fold::reorderable) {
        if (step < 0) {
            array += (count - 1) * step;
            step = -step;
        }
        if (step == 2 * size) return run_vectorised<DenseFold<Fold, 2>>(accumulator, array, count);
    }
    if constexpr (has_kernels<Fold>)
        if (step == size)
            return run_vectorised<typename KernelsOf<Fold>::Dense>(accumulator, array, count);
    if constexpr (is_vectorisable<typename Fold::Accumulator>)
        run_vectorised<SpacedFold<Fold>>(accumulator, array, step, count);
    else
        fold_spaced<Fold>(accumulator, array, step, count);
}

// ---- One run under a MASK ---------------------------------------------------

// The selected elements are first packed, without a branch, and then folded: the
// fold waits for no element that does not count.
template <class Fold>
void fold_masked_run(typename Fold::Accumulator &accumulator, const Positions<2> &from,
                     const Run<2> &run) {
    using Element = typename Fold::Element;
    constexpr std::ptrdiff_t size = element_size<Fold>;
    ConstBytes array = from.at[0];
    ConstBytes mask = from.at[1];
    const std::ptrdiff_t step = run.step.by[0];
    const std::ptrdiff_t mask_step = run.step.by[1];
    if constexpr (has_kernels<Fold>)
        if (step == size && mask_step == sizeof(Word))
            return run_vectorised<typename KernelsOf<Fold>::Masked>(accumulator, array, mask,
                                                                    run.count);
    constexpr std::int32_t chunk = 64;
    std::byte selected[chunk * size];
    for (std::int32_t left = run.count; left > 0;) {
        std::int32_t here = std::min(left, chunk);
        left -= here;
        Bytes end = selected;
        for (; here > 0; --here, array += step, mask += mask_step) {
            store(end, load<Element>(array));
            end += load<Word>(mask) != 0 ? size : 0;
        }
        fold_spaced<Fold>(accumulator, selected, size, (end - selected) / size);
    }
}

// A run of array, and where `masked` of MASK, by their steps in that order.
template <class Fold>
void fold_masked_or_not(typename Fold::Accumulator &accumulator, const Positions<2> &from,
                        const Run<2> &run, bool masked) {
    if constexpr (Fold::takes_mask)
        if (masked) return fold_masked_run<Fold>(accumulator, from, run);
    fold_run<Fold>(accumulator, from.at[0], run.step.by[0], run.count);
}

} // namespace quill

// How a reduction runs over elements: one run, one run under a MASK, many runs
// side by side. A Fold says what a reduction is:
//
//   Element, Accumulator, Result   types of an element, in a run, of the result
//   start()                        where a run begins
//   step(accumulator, element)     one element more
//   reorderable                    elements may be taken in any order; then also
//     lane_start, lane_step        the same for a vector of elements, at most
//     lane_rounds                  this many rounds of four vectors before
//     absorb(accumulator, lanes)   the vectors' sum goes into the accumulator
//   ends_early, decided(acc)       further elements change nothing
//   takes_mask                     the intrinsic has a MASK argument
//
// A fold that is not reorderable takes its elements one by one, in order, into
// one accumulator; speed comes from several runs side by side.
#pragma once

#include "frame/elements.h"
#include "frame/isa.h"
#include "frame/lanes.h"
#include "frame/walk.h"

#include <algorithm>
#include <limits>

namespace quill {

template <class Fold> constexpr std::ptrdiff_t element_size = sizeof(typename Fold::Element);

// Takes all lanes of a vector, as far as it has come, into an accumulator.
template <class Fold, int Width>
typename Fold::Accumulator absorb_lanes(typename Fold::Accumulator accumulator,
                                        const Lanes<typename Fold::Element, Width> &lanes) {
    return fold_lanes<typename Fold::Element, Width>(
        accumulator, lanes, [](const auto &a, const auto &b) { return Fold::lane_combine(a, b); },
        Fold::step);
}

// ---- One run ----------------------------------------------------------------

// Adjacent elements of a reorderable fold, in vectors of Width bytes, four at a
// time; what is left goes to the next narrower width.
template <class Fold> struct DenseFold {
    static constexpr Isa widest = Isa::Avx512;
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;

    template <int Width>
    static Accumulator run(Accumulator accumulator, ConstBytes array, std::int32_t count) {
        using V = Lanes<Element, Width>;
        constexpr std::int32_t per_round = 4 * Width / sizeof(Element);
        while (count >= per_round) {
            const std::int32_t rounds = std::min(count / per_round, Fold::lane_rounds);
            V first = Fold::template lane_start<V>();
            V second = first;
            V third = first;
            V fourth = first;
            for (std::int32_t i = 0; i < rounds; ++i, array += 4 * Width) {
                first = Fold::lane_step(first, load_lanes<V>(array));
                second = Fold::lane_step(second, load_lanes<V>(array + Width));
                third = Fold::lane_step(third, load_lanes<V>(array + 2 * Width));
                fourth = Fold::lane_step(fourth, load_lanes<V>(array + 3 * Width));
            }
            count -= rounds * per_round;
            accumulator = Fold::template absorb<Width>(
                accumulator, Fold::lane_combine(Fold::lane_combine(first, second),
                                                Fold::lane_combine(third, fourth)));
            if constexpr (Fold::ends_early)
                if (Fold::decided(accumulator)) return accumulator;
        }
        if constexpr (Width > 16) {
            return run<Width / 2>(accumulator, array, count);
        } else {
            for (; count > 0; --count, array += sizeof(Element))
                accumulator = Fold::step(accumulator, load<Element>(array));
            return accumulator;
        }
    }
};

// Elements `step` bytes apart into one accumulator.
template <class Fold>
typename Fold::Accumulator fold_spaced(typename Fold::Accumulator accumulator, ConstBytes array,
                                       std::ptrdiff_t step, std::int32_t count) {
    using Element = typename Fold::Element;
    for (std::int32_t i = 0; i < count; ++i) {
        accumulator = Fold::step(accumulator, load<Element>(array + i * step));
        if constexpr (Fold::ends_early)
            if (Fold::decided(accumulator)) break;
    }
    return accumulator;
}

template <class Fold>
typename Fold::Accumulator fold_run(typename Fold::Accumulator accumulator, ConstBytes array,
                                    std::ptrdiff_t step, std::int32_t count) {
    constexpr std::ptrdiff_t size = element_size<Fold>;
    if (step != size) return fold_spaced<Fold>(accumulator, array, step, count);
    if constexpr (Fold::reorderable) {
        constexpr std::int32_t few = 64 / size;
        if (count > few) return run_vectorised<DenseFold<Fold>>(accumulator, array, count);
    }
    return fold_spaced<Fold>(accumulator, array, size, count);
}

// ---- One run under a MASK ---------------------------------------------------

// Adjacent elements of a reorderable fold beside adjacent MASK words: an element
// that does not count is replaced by the start value.
template <class Fold> struct DenseMaskedFold {
    static constexpr Isa widest = Isa::Avx512;
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;

    template <int Width>
    static Accumulator run(Accumulator accumulator, ConstBytes array, ConstBytes mask,
                           std::int32_t count) {
        const Element neutral = Fold::start();
        for (std::int32_t i = 0; i < count; ++i) {
            const bool counts = load<Word>(mask + i * static_cast<int>(sizeof(Word))) != 0;
            const auto element = load<Element>(array + i * element_size<Fold>);
            accumulator = Fold::step(accumulator, counts ? element : neutral);
        }
        return accumulator;
    }
};

// The selected elements are first packed, without a branch, and then folded: the
// fold waits for no element that does not count.
template <class Fold>
typename Fold::Accumulator fold_masked_run(typename Fold::Accumulator accumulator,
                                           const Positions<2> &from, const Run<2> &run) {
    using Element = typename Fold::Element;
    constexpr std::ptrdiff_t size = element_size<Fold>;
    ConstBytes array = from.at[0];
    ConstBytes mask = from.at[1];
    const std::ptrdiff_t step = run.step.by[0];
    const std::ptrdiff_t mask_step = run.step.by[1];
    if constexpr (Fold::reorderable) {
        if (step == size && mask_step == sizeof(Word))
            return run_vectorised<DenseMaskedFold<Fold>>(accumulator, array, mask, run.count);
    }
    constexpr std::int32_t chunk = 64;
    std::byte selected[chunk * size];
    for (std::int32_t done = 0; done < run.count;) {
        const std::int32_t end = std::min(run.count, done + chunk);
        std::int32_t count = 0;
        for (; done < end; ++done) {
            store(selected + count * size, load<Element>(array + done * step));
            count += load<Word>(mask + done * mask_step) != 0 ? 1 : 0;
        }
        accumulator = fold_spaced<Fold>(accumulator, selected, size, count);
    }
    return accumulator;
}

// ---- Many runs --------------------------------------------------------------

// The operands of a reduction along a dimension, in the order of a walk's steps.
enum Operand { Array, Mask, Result };

// Runs of equal length, each for one result element: what one step of the walk
// over the kept dimensions does.
struct RunBatch {
    Positions<3> first;
    Run<3> runs; // from one run and its result element to the next
    Run<2> run;  // along the reduced dimension
    bool masked;

    Positions<2> start_of(std::int32_t i) const {
        return {
            {first.at[Array] + i * runs.step.by[Array], first.at[Mask] + i * runs.step.by[Mask]}};
    }
    template <class Fold>
    void store_result(std::int32_t i, const typename Fold::Accumulator &accumulator) const {
        store<typename Fold::Result>(first.at[Result] + i * runs.step.by[Result],
                                     converted<typename Fold::Result>(accumulator));
    }
};

// Runs whose elements are neighbours: `width` accumulators advance together, in
// vectors as wide as the compiler makes them, each in its own order. Not beyond
// AVX2: AVX-512 has multiply-add of its own, into which GCC fuses the products of
// complex numbers even where contraction is off.
template <class Fold, bool masked> struct AdjacentFold {
    static constexpr Isa widest = Isa::Avx2;
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;

    template <int>
    static void run(Accumulator *accumulators, std::int32_t width, const Positions<2> *from,
                    const Run<2> *run) {
        constexpr std::ptrdiff_t size = element_size<Fold>;
        const std::ptrdiff_t step = run->step.by[Array];
        const std::ptrdiff_t mask_step = run->step.by[Mask];
        std::int32_t k = 0;
        if constexpr (!masked) {
            for (; k + 4 <= run->count; k += 4) {
                ConstBytes row = from->at[Array] + k * step;
                for (std::int32_t j = 0; j < width; ++j) {
                    Accumulator accumulator = accumulators[j];
                    for (int r = 0; r < 4; ++r)
                        accumulator =
                            Fold::step(accumulator, load<Element>(row + r * step + j * size));
                    accumulators[j] = accumulator;
                }
            }
        }
        for (; k < run->count; ++k) {
            ConstBytes row = from->at[Array] + k * step;
            ConstBytes mask = from->at[Mask] + k * mask_step;
            for (std::int32_t j = 0; j < width; ++j) {
                const Accumulator next = Fold::step(accumulators[j], load<Element>(row + j * size));
                if constexpr (masked) {
                    const auto word = load<Word>(mask + j * static_cast<int>(sizeof(Word)));
                    accumulators[j] = word != 0 ? next : accumulators[j];
                } else {
                    accumulators[j] = next;
                }
            }
        }
    }
};

template <class Fold, bool masked>
void fold_adjacent_runs(const typename Fold::Accumulator &start, const RunBatch &batch) {
    constexpr std::int32_t block = 256;
    constexpr std::int32_t rows_between_tests = 64;
    typename Fold::Accumulator accumulators[block];
    for (std::int32_t done = 0; done < batch.runs.count; done += block) {
        const std::int32_t width = std::min(block, batch.runs.count - done);
        std::fill_n(accumulators, width, start);
        Positions<2> from = batch.start_of(done);
        Run<2> rows = batch.run;
        for (std::int32_t left = batch.run.count; left > 0; left -= rows.count) {
            rows.count = Fold::ends_early ? std::min(left, rows_between_tests) : left;
            run_vectorised<AdjacentFold<Fold, masked>>(&accumulators[0], width, &from, &rows);
            if constexpr (Fold::ends_early) {
                if (std::all_of(accumulators, accumulators + width, Fold::decided)) break;
                advance(from, rows.step, left > rows.count ? rows.count : 0);
            }
        }
        for (std::int32_t j = 0; j < width; ++j)
            batch.store_result<Fold>(done + j, accumulators[j]);
    }
}

// Four runs side by side, which hides the latency of one accumulator's steps.
template <class Fold>
void fold_four_runs(const typename Fold::Accumulator &start, const RunBatch &batch,
                    std::int32_t number) {
    using Element = typename Fold::Element;
    ConstBytes a = batch.start_of(number).at[Array];
    ConstBytes b = batch.start_of(number + 1).at[Array];
    ConstBytes c = batch.start_of(number + 2).at[Array];
    ConstBytes d = batch.start_of(number + 3).at[Array];
    auto fold_a = start;
    auto fold_b = start;
    auto fold_c = start;
    auto fold_d = start;
    const std::ptrdiff_t step = batch.run.step.by[Array];
    for (std::int32_t k = 0; k < batch.run.count; ++k) {
        const std::ptrdiff_t at = k * step;
        fold_a = Fold::step(fold_a, load<Element>(a + at));
        fold_b = Fold::step(fold_b, load<Element>(b + at));
        fold_c = Fold::step(fold_c, load<Element>(c + at));
        fold_d = Fold::step(fold_d, load<Element>(d + at));
    }
    batch.store_result<Fold>(number, fold_a);
    batch.store_result<Fold>(number + 1, fold_b);
    batch.store_result<Fold>(number + 2, fold_c);
    batch.store_result<Fold>(number + 3, fold_d);
}

template <class Fold>
void fold_batch(const typename Fold::Accumulator &start, const RunBatch &batch) {
    constexpr std::int32_t few = 8;
    if constexpr (is_vectorisable<typename Fold::Accumulator>) {
        const bool adjacent =
            batch.runs.step.by[Array] == element_size<Fold> && batch.runs.count >= few;
        if (adjacent && !batch.masked) return fold_adjacent_runs<Fold, false>(start, batch);
        if constexpr (Fold::takes_mask) {
            if (adjacent && batch.runs.step.by[Mask] == sizeof(Word))
                return fold_adjacent_runs<Fold, true>(start, batch);
        }
    }
    std::int32_t i = 0;
    if constexpr (!Fold::ends_early) {
        const bool vectors_along =
            Fold::reorderable && batch.run.step.by[Array] == element_size<Fold>;
        if (!batch.masked && !vectors_along)
            for (; i + 4 <= batch.runs.count; i += 4) fold_four_runs<Fold>(start, batch, i);
    }
    for (; i < batch.runs.count; ++i) {
        const Positions<2> from = batch.start_of(i);
        if constexpr (Fold::takes_mask) {
            if (batch.masked) {
                batch.store_result<Fold>(i, fold_masked_run<Fold>(start, from, batch.run));
                continue;
            }
        }
        batch.store_result<Fold>(
            i, fold_run<Fold>(start, from.at[Array], batch.run.step.by[Array], batch.run.count));
    }
}

// Folds along `run` for every position of the kept dimensions. Where runs are
// empty, their operands need no storage, so the walk does not move in them.
template <class Fold>
void fold_along(const typename Fold::Accumulator &start, Nest<3> kept, const Positions<3> &first,
                const Run<2> &run, bool masked) {
    if (run.count == 0)
        for (Run<3> &level : kept.levels) level.step.by[Array] = level.step.by[Mask] = 0;
    for_each_run(kept, first, [&](const Positions<3> &positions, const Run<3> &runs) {
        fold_batch<Fold>(start, {positions, runs, run, masked});
        return true;
    });
}

} // namespace quill

// Reductions along a dimension: many runs of equal length, each for one result
// element. Runs are independent of each other, so several advance side by side,
// each in its own order.
#pragma once

#include "reductions/fold_run.h"

namespace quill {

// ---- A batch of runs --------------------------------------------------------

// The operands of a reduction along a dimension, in the order of a walk's steps.
enum Operand { Array, Mask, Result };

// Runs of equal length, each for one result element: what one step of the walk
// over the kept dimensions does.
struct RunBatch {
    const Positions<3> &first;
    const Run<3> &runs; // from one run and its result element to the next
    const Run<2> &run;  // along the reduced dimension
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

// What a run that lies at `from` folds from.
template <class Fold>
[[gnu::always_inline]] inline typename Fold::Accumulator
start_of_run(const typename Fold::Accumulator &start, const Positions<2> &from, bool masked) {
    if constexpr (Fold::starts_at_first)
        if (!masked || load<Word>(from.at[Mask]) != 0)
            return load<typename Fold::Element>(from.at[Array]);
    return start;
}

// ---- Ways of folding a batch ------------------------------------------------

// Runs whose elements are neighbours: `width` accumulators advance together, in
// vectors as wide as the compiler makes them, each in its own order.
template <class Fold, bool masked> struct AdjacentFold {
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;

    template <int>
    static void run(Accumulator *accumulators, std::int32_t width, const Positions<2> &from,
                    const Run<2> &run) {
        constexpr std::ptrdiff_t size = element_size<Fold>;
        const std::ptrdiff_t step = run.step.by[Array];
        const std::ptrdiff_t mask_step = run.step.by[Mask];
        std::int32_t k = 0;
        if constexpr (!masked) {
            for (; k + 4 <= run.count; k += 4) {
                ConstBytes row = from.at[Array] + k * step;
                for (std::int32_t j = 0; j < width; ++j) {
                    Accumulator accumulator = accumulators[j];
                    for (int r = 0; r < 4; ++r)
                        accumulator =
                            Fold::step(accumulator, load<Element>(row + r * step + j * size));
                    accumulators[j] = accumulator;
                }
            }
        }
        for (; k < run.count; ++k) {
            ConstBytes row = from.at[Array] + k * step;
            ConstBytes mask = from.at[Mask] + k * mask_step;
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
    using Accumulator = typename Fold::Accumulator;
    constexpr std::int32_t block = 256;
    constexpr std::int32_t rows_between_tests = 64;
    Accumulator accumulators[block];
    for (std::int32_t done = 0; done < batch.runs.count; done += block) {
        const std::int32_t width = std::min(block, batch.runs.count - done);
        for (std::int32_t j = 0; j < width; ++j)
            accumulators[j] = start_of_run<Fold>(start, batch.start_of(done + j), masked);
        Positions<2> from = batch.start_of(done);
        Run<2> rows = batch.run;
        for (std::int32_t left = batch.run.count; left > 0; left -= rows.count) {
            rows.count = Fold::ends_early ? std::min(left, rows_between_tests) : left;
            run_vectorised<AdjacentFold<Fold, masked>>(accumulators, width, from, rows);
            if constexpr (Fold::ends_early) {
                if (std::all_of(accumulators, accumulators + width, Fold::decided)) break;
                advance(from, rows.step, left > rows.count ? rows.count : 0);
            }
        }
        for (std::int32_t j = 0; j < width; ++j)
            batch.store_result<Fold>(done + j, accumulators[j]);
    }
}

// Runs of adjacent elements, one after the other.
template <class Fold> struct DenseRuns {
    static constexpr bool uses_avx512 = requires { requires KernelsOf<Fold>::Dense::uses_avx512; };

    template <int Width>
    static void run(const typename Fold::Accumulator &start, const RunBatch &batch) {
        for (std::int32_t i = 0; i < batch.runs.count; ++i) {
            const Positions<2> from = batch.start_of(i);
            auto accumulator = start_of_run<Fold>(start, from, false);
            KernelsOf<Fold>::Dense::template run<Width>(accumulator, from.at[Array],
                                                        batch.run.count);
            batch.store_result<Fold>(i, accumulator);
        }
    }
};

// Four runs of adjacent reals side by side: four elements of each are transposed
// into vectors of one element from each run, which the four accumulators take in
// order.
template <class Fold> struct FourDenseRuns {
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;
    using Four = Lanes<Element, 4 * sizeof(Element)>;
    using Accumulators = Lanes<Accumulator, 4 * sizeof(Accumulator)>;

    static Accumulators next(const Accumulators &accumulators, const Four &elements) {
        return Fold::lane_step(accumulators, __builtin_convertvector(elements, Accumulators));
    }

    template <int>
    static void run(const typename Fold::Accumulator &start, const RunBatch &batch,
                    std::int32_t number) {
        ConstBytes a = batch.start_of(number).at[Array];
        ConstBytes b = batch.start_of(number + 1).at[Array];
        ConstBytes c = batch.start_of(number + 2).at[Array];
        ConstBytes d = batch.start_of(number + 3).at[Array];
        Accumulators sums = {start, start, start, start};
        std::int32_t k = 0;
        for (; k + 4 <= batch.run.count; k += 4) {
            const std::ptrdiff_t at = k * element_size<Fold>;
            const Four ab_even = __builtin_shufflevector(load_lanes<Four>(a + at),
                                                         load_lanes<Four>(b + at), 0, 4, 2, 6);
            const Four ab_odd = __builtin_shufflevector(load_lanes<Four>(a + at),
                                                        load_lanes<Four>(b + at), 1, 5, 3, 7);
            const Four cd_even = __builtin_shufflevector(load_lanes<Four>(c + at),
                                                         load_lanes<Four>(d + at), 0, 4, 2, 6);
            const Four cd_odd = __builtin_shufflevector(load_lanes<Four>(c + at),
                                                        load_lanes<Four>(d + at), 1, 5, 3, 7);
            sums = next(sums, __builtin_shufflevector(ab_even, cd_even, 0, 1, 4, 5));
            sums = next(sums, __builtin_shufflevector(ab_odd, cd_odd, 0, 1, 4, 5));
            sums = next(sums, __builtin_shufflevector(ab_even, cd_even, 2, 3, 6, 7));
            sums = next(sums, __builtin_shufflevector(ab_odd, cd_odd, 2, 3, 6, 7));
        }
        for (; k < batch.run.count; ++k) {
            const std::ptrdiff_t at = k * element_size<Fold>;
            sums = next(sums, Four{load<Element>(a + at), load<Element>(b + at),
                                   load<Element>(c + at), load<Element>(d + at)});
        }
        for (int i = 0; i < 4; ++i) batch.store_result<Fold>(number + i, sums[i]);
    }
};

// Four runs side by side, one element of each at a time, which hides the latency
// of one accumulator's steps.
template <class Fold>
void fold_four_runs(const typename Fold::Accumulator &start, const RunBatch &batch,
                    std::int32_t number) {
    using Element = typename Fold::Element;
    const Positions<2> from_a = batch.start_of(number);
    const Positions<2> from_b = batch.start_of(number + 1);
    const Positions<2> from_c = batch.start_of(number + 2);
    const Positions<2> from_d = batch.start_of(number + 3);
    auto fold_a = start_of_run<Fold>(start, from_a, false);
    auto fold_b = start_of_run<Fold>(start, from_b, false);
    auto fold_c = start_of_run<Fold>(start, from_c, false);
    auto fold_d = start_of_run<Fold>(start, from_d, false);
    const std::ptrdiff_t step = batch.run.step.by[Array];
    for (std::int32_t k = 0; k < batch.run.count; ++k) {
        const std::ptrdiff_t at = k * step;
        fold_a = Fold::step(fold_a, load<Element>(from_a.at[Array] + at));
        fold_b = Fold::step(fold_b, load<Element>(from_b.at[Array] + at));
        fold_c = Fold::step(fold_c, load<Element>(from_c.at[Array] + at));
        fold_d = Fold::step(fold_d, load<Element>(from_d.at[Array] + at));
    }
    batch.store_result<Fold>(number, fold_a);
    batch.store_result<Fold>(number + 1, fold_b);
    batch.store_result<Fold>(number + 2, fold_c);
    batch.store_result<Fold>(number + 3, fold_d);
}

// The runs from number `i` on, one after the other.
template <class Fold>
void fold_single_runs(const typename Fold::Accumulator &start, const RunBatch &batch,
                      std::int32_t i) {
    for (; i < batch.runs.count; ++i) {
        const Positions<2> from = batch.start_of(i);
        auto accumulator = start_of_run<Fold>(start, from, batch.masked);
        fold_masked_or_not<Fold>(accumulator, from, batch.run, batch.masked);
        batch.store_result<Fold>(i, accumulator);
    }
}

// Few and short runs, in the plainest loop.
template <class Fold>
void fold_short_runs(const typename Fold::Accumulator &start, const Positions<3> &first,
                     const Run<3> &runs, const Run<2> &run) {
    Bytes array = first.at[Array];
    Bytes result = first.at[Result];
    const std::ptrdiff_t step = run.step.by[Array];
    for (std::int32_t i = runs.count; i > 0; --i) {
        auto accumulator = start_of_run<Fold>(start, {{array, nullptr}}, false);
        ConstBytes element = array;
        for (std::int32_t k = run.count; k > 0; --k, element += step)
            accumulator = Fold::step(accumulator, load<typename Fold::Element>(element));
        store<typename Fold::Result>(result, converted<typename Fold::Result>(accumulator));
        array += runs.step.by[Array];
        result += runs.step.by[Result];
    }
}

// ---- The choice -------------------------------------------------------------

constexpr std::int32_t few = 8;

// Chooses how a batch of longer or many runs is folded.
template <class Fold>
[[gnu::noinline]] void fold_batch(const typename Fold::Accumulator &start, const RunBatch &batch) {
    constexpr std::ptrdiff_t size = element_size<Fold>;
    if constexpr (is_vectorisable<typename Fold::Accumulator>) {
        if (batch.runs.count >= few && batch.runs.step.by[Array] == size) {
            if (!batch.masked) return fold_adjacent_runs<Fold, false>(start, batch);
            if constexpr (Fold::takes_mask)
                if (batch.runs.step.by[Mask] == sizeof(Word))
                    return fold_adjacent_runs<Fold, true>(start, batch);
        }
    }
    std::int32_t i = 0;
    if (!batch.masked) {
        const bool dense = batch.run.step.by[Array] == size;
        if constexpr (has_kernels<Fold>) {
            if (dense) return run_vectorised<DenseRuns<Fold>>(start, batch);
        } else if constexpr (std::is_floating_point_v<typename Fold::Element> &&
                             is_vectorisable<typename Fold::Element>) {
            if (dense)
                for (; i + 4 <= batch.runs.count; i += 4)
                    run_vectorised<FourDenseRuns<Fold>>(start, batch, i);
        }
        if constexpr (!Fold::ends_early)
            for (; i + 4 <= batch.runs.count; i += 4) fold_four_runs<Fold>(start, batch, i);
    }
    fold_single_runs<Fold>(start, batch, i);
}

// Folds along `run` for every position of the kept dimensions. Where runs are
// empty, their operands need no storage, so the walk does not move in them.
template <class Fold>
void fold_along(const typename Fold::Accumulator &start, Nest<3> &kept, const Positions<3> &first,
                const Run<2> &run, bool masked) {
    if (run.count == 0)
        for (int l = 0; l < kept.depth; ++l)
            kept.levels[l].step.by[Array] = kept.levels[l].step.by[Mask] = 0;
    for_each_run(kept, first, [&](const Positions<3> &positions, const Run<3> &runs) {
        if (run.count <= few && runs.count < few && !masked)
            fold_short_runs<Fold>(start, positions, runs, run);
        else
            fold_batch<Fold>(start, {positions, runs, run, masked});
        return true;
    });
}

} // namespace quill

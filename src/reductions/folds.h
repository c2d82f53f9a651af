// How a reduction runs over elements: one run, one run under a MASK, many runs
// side by side. A Fold says what a reduction is:
//
//   Element, Accumulator, Result   types of an element, in a run, of the result
//   start()                        where a run begins
//   step(accumulator, element)     one element more
//   reorderable                    elements may be taken in any order; then also
//     neutral()                    an element that changes nothing
//     lane_start, lane_step        the same for a vector of elements, at most
//     lane_rounds                  this many rounds of four vectors before
//     absorb(accumulator, lanes)   the vectors go into the accumulator
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
    using Element = typename Fold::Element;
    using Accumulator = typename Fold::Accumulator;
    static constexpr std::int32_t step = spread * sizeof(Element);

    template <class V> static V select(const V &which, const V &lanes, const V &others) {
        return (lanes & which) | (others & ~which);
    }

    // The lanes of elements that count, the others as they started.
    template <class V> static V counting_lanes(const V &lanes) {
        if constexpr (spread == 1) return lanes;
        const V which =
            numbered_lanes<Element, sizeof(V)>([](int i) { return i % spread == 0 ? -1 : 0; });
        return select(which, lanes, Fold::template lane_start<V>());
    }

    // The last `count` elements before `end`, fewer than a vector's, loaded with
    // elements in front of them that have been taken already.
    template <class V> static V last_lanes(ConstBytes end, std::int32_t count) {
        constexpr int lanes = sizeof(V) / sizeof(Element);
        const V number = numbered_lanes<Element, sizeof(V)>([](int i) { return i; });
        const V taken = V{} + static_cast<Element>(lanes - count);
        return select(reinterpret_cast<V>(number >= taken), load_lanes<V>(end - sizeof(V)),
                      V{} + Fold::neutral());
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
            for (ConstBytes end = array + rounds * 4 * Width; array != end; array += 4 * Width) {
                first = Fold::lane_step(first, load_lanes<V>(array));
                second = Fold::lane_step(second, load_lanes<V>(array + Width));
                third = Fold::lane_step(third, load_lanes<V>(array + 2 * Width));
                fourth = Fold::lane_step(fourth, load_lanes<V>(array + 3 * Width));
            }
            if (count - gap < 4 * per_vector) {
                for (; count - gap >= per_vector; count -= per_vector, array += Width)
                    first = Fold::lane_step(first, load_lanes<V>(array));
                if (spread == 1 && count > 0) {
                    second = Fold::lane_step(second, last_lanes<V>(array + count * step, count));
                    count = 0;
                }
            }
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

// fold_spaced for long runs. Under AVX2 it is the encoding that counts: SSE code is
// slowed down by what AVX code of the caller leaves in the registers.
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

template <class Fold>
[[gnu::always_inline]] inline void fold_run(typename Fold::Accumulator &accumulator,
                                            ConstBytes array, std::ptrdiff_t step,
                                            std::int32_t count) {
    constexpr std::ptrdiff_t size = element_size<Fold>;
    constexpr std::int32_t few = 16;
    if (count <= few) return fold_spaced<Fold>(accumulator, array, step, count);
    if constexpr (Fold::reorderable) {
        if (step < 0) {
            array += (count - 1) * step;
            step = -step;
        }
        if (step == size) return run_vectorised<DenseFold<Fold, 1>>(accumulator, array, count);
        if (step == 2 * size) return run_vectorised<DenseFold<Fold, 2>>(accumulator, array, count);
    }
    run_vectorised<SpacedFold<Fold>>(accumulator, array, step, count);
}

// ---- One run under a MASK ---------------------------------------------------

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
    if constexpr (Fold::reorderable) {
        if (step == size && mask_step == sizeof(Word))
            return run_vectorised<DenseMaskedFold<Fold>>(accumulator, array, mask, run.count);
    }
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

// ---- Many runs --------------------------------------------------------------

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
        std::fill_n(accumulators, width, start);
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

// Runs of adjacent elements of a reorderable fold.
template <class Fold> struct DenseRuns {
    template <int Width>
    static void run(const typename Fold::Accumulator &start, const RunBatch &batch) {
        for (std::int32_t i = 0; i < batch.runs.count; ++i) {
            auto accumulator = start;
            DenseFold<Fold, 1>::template run<Width>(accumulator, batch.start_of(i).at[Array],
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

// The runs from number `i` on, one after the other.
template <class Fold>
void fold_single_runs(const typename Fold::Accumulator &start, const RunBatch &batch,
                      std::int32_t i) {
    for (; i < batch.runs.count; ++i) {
        const Positions<2> from = batch.start_of(i);
        auto accumulator = start;
        bool done = false;
        if constexpr (Fold::takes_mask)
            if (batch.masked) {
                fold_masked_run<Fold>(accumulator, from, batch.run);
                done = true;
            }
        if (!done)
            fold_run<Fold>(accumulator, from.at[Array], batch.run.step.by[Array], batch.run.count);
        batch.store_result<Fold>(i, accumulator);
    }
}

// Few and short runs, in the plainest loop.
template <class Fold>
void fold_short_runs(const typename Fold::Accumulator &start, const Positions<3> &first,
                     const Run<3> &runs, const Run<2> &run) {
    ConstBytes array = first.at[Array];
    Bytes result = first.at[Result];
    const std::ptrdiff_t step = run.step.by[Array];
    for (std::int32_t i = runs.count; i > 0; --i) {
        auto accumulator = start;
        ConstBytes element = array;
        for (std::int32_t k = run.count; k > 0; --k, element += step)
            accumulator = Fold::step(accumulator, load<typename Fold::Element>(element));
        store<typename Fold::Result>(result, converted<typename Fold::Result>(accumulator));
        array += runs.step.by[Array];
        result += runs.step.by[Result];
    }
}

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
        if constexpr (Fold::reorderable) {
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

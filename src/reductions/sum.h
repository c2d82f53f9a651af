// SUM as a fold, for the units f90_sum and f90_sum_xp.
#pragma once

#include "reductions/numeric_reduction.h"

namespace quill {

template <class Element> struct Sum : NumericFold<Element> {
    using Accumulator = typename NumericFold<Element>::Accumulator;
    static constexpr const char *name = "SUM";

    static Accumulator start() { return number<Accumulator>(0); }
    static Element neutral() { return 0; }
    static Accumulator step(Accumulator sum, const Element &element) {
        return static_cast<Accumulator>(sum + element);
    }

    template <class V> static V lane_start() { return V{}; }
    template <class V> static V lane_step(const V &sums, const V &elements) {
        return sums + elements;
    }
    template <class V> static V lane_combine(const V &a, const V &b) { return a + b; }
    template <int Width> static void absorb(Accumulator &sum, const Lanes<Element, Width> &sums) {
        absorb_lanes<Sum, Width>(sum, sums);
    }
};

template <class Part> struct Sum<Complex<Part>> : NumericFold<Complex<Part>> {
    using Accumulator = typename NumericFold<Complex<Part>>::Accumulator;
    static constexpr const char *name = "SUM";

    static Accumulator start() { return {Sum<Part>::start(), Sum<Part>::start()}; }
    static Accumulator step(const Accumulator &sum, const Complex<Part> &element) {
        return {Sum<Part>::step(sum.re, element.re), Sum<Part>::step(sum.im, element.im)};
    }
};

} // namespace quill

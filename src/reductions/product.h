// PRODUCT as a fold, for the units f90_prod and f90_prod_xp.
#pragma once

#include "reductions/numeric_reduction.h"

namespace quill {

template <class Element> struct Product : NumericFold<Element> {
    using Accumulator = typename NumericFold<Element>::Accumulator;
    static constexpr const char *name = "PRODUCT";

    static Accumulator start() { return number<Accumulator>(1); }
    static Element neutral() { return 1; }
    static Accumulator step(Accumulator product, const Element &element) {
        // The leading one keeps narrow integers unsigned.
        if constexpr (std::is_integral_v<Element>)
            return static_cast<Accumulator>(1U * product * element);
        else
            return product * element;
    }

    template <class V> static V lane_start() { return V{} + 1; }
    template <class V> static V lane_step(const V &products, const V &elements) {
        return products * elements;
    }
    template <class V> static V lane_combine(const V &a, const V &b) { return a * b; }
    template <int Width>
    static void absorb(Accumulator &product, const Lanes<Element, Width> &products) {
        absorb_lanes<Product, Width>(product, products);
    }
};

template <class Part> struct Product<Complex<Part>> : NumericFold<Complex<Part>> {
    using Accumulator = typename NumericFold<Complex<Part>>::Accumulator;
    static constexpr const char *name = "PRODUCT";

    static Accumulator start() {
        using AccumulatorPart = typename AccumulatorOf<Part>::type;
        return {number<AccumulatorPart>(1), number<AccumulatorPart>(0)};
    }
    static Accumulator step(const Accumulator &product, const Complex<Part> &element) {
        const auto [a, b] = product;
        return {a * element.re - b * element.im, a * element.im + b * element.re};
    }
};

} // namespace quill

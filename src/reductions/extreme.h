// What MAXVAL, MINVAL, MAXLOC and MINLOC have in common: the order of elements, and
// the search of adjacent ones in vectors. A region of them is first taken out of
// order; where that could hide what the order of elements decides (an unordered
// element, the first of equal ones), the region is looked at once more.
#pragma once

#include "reductions/fold_run.h"

namespace quill {

// ---- The two orders ---------------------------------------------------------

// Elements are held signed: nothing is computed with them.
//
//   start()               what a fold starts from that does not start at an element:
//                         of a real the outermost finite number, not infinity
//   neutral()             an element that beats none
//   beats(a, b)           a is the more extreme one; an unordered pair beats nothing
//   replaces(element, b)  the element takes the place of the best so far
//   unordered_replaces    it also does when the two are unordered
template <class ElementType> struct Maximum {
    using Element = ElementType;
    static constexpr const char *value_name = "MAXVAL";
    static constexpr const char *place_name = "MAXLOC";
    static constexpr const char *wide_place_name = "KMAXLOC";
    static constexpr bool unordered_replaces = false;

    static Element start() { return std::numeric_limits<Element>::lowest(); }
    static Element neutral() {
        using Limits = std::numeric_limits<Element>;
        return Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    }
    static bool beats(const Element &a, const Element &b) { return a > b; }
    static bool replaces(const Element &element, const Element &best) { return element > best; }
    template <class V> static V lane_step(const V &best, const V &elements) {
        return elements > best ? elements : best;
    }
};

template <class ElementType> struct Minimum {
    using Element = ElementType;
    static constexpr const char *value_name = "MINVAL";
    static constexpr const char *place_name = "MINLOC";
    static constexpr const char *wide_place_name = "KMINLOC";
    static constexpr bool unordered_replaces = std::is_floating_point_v<Element>;

    static Element start() { return std::numeric_limits<Element>::max(); }
    static Element neutral() {
        using Limits = std::numeric_limits<Element>;
        return Limits::has_infinity ? Limits::infinity() : Limits::max();
    }
    static bool beats(const Element &a, const Element &b) { return a < b; }
    static bool replaces(const Element &element, const Element &best) { return !(element >= best); }
    template <class V> static V lane_step(const V &best, const V &elements) {
        return elements < best ? elements : best;
    }
};

// Of kind 16 an unordered pair is neither less nor greater, in both orders.
template <> inline Real16 Maximum<Real16>::start() {
    return string_to_fp128("-1.1897314953572317650857593266280070162E+4932L");
}
template <> inline bool Maximum<Real16>::replaces(const Real16 &element, const Real16 &best) {
    return _compare_fp(element, best, 0, 1, 0) != 0;
}
template <> inline Real16 Minimum<Real16>::start() {
    return string_to_fp128("1.1897314953572317650857593266280070162E+4932L");
}
template <> inline bool Minimum<Real16>::replaces(const Real16 &element, const Real16 &best) {
    return _compare_fp(element, best, 1, 0, 0) != 0;
}

// AVX-512 compares lanes of 64-bit integers and chooses between them at once.
template <class Order>
constexpr bool profits_from_avx512 = std::is_same_v<typename Order::Element, std::int64_t>;

// Whether an element, or which lanes, are unordered: they differ from themselves.
template <class T> auto is_unordered(const T &elements) {
    const T &themselves = elements;
    return elements != themselves;
}

// The best element so far, and its number in the search, from 0.
template <class Element> struct Best {
    Element value;
    std::int32_t place;
};

// ---- In order ---------------------------------------------------------------

template <class Order>
[[gnu::always_inline]] inline void search_spaced(Best<typename Order::Element> &best,
                                                 ConstBytes array, std::ptrdiff_t step,
                                                 std::int32_t count, std::int32_t number) {
    for (std::int32_t i = 0; i < count; ++i) {
        const auto element = load<typename Order::Element>(array + i * step);
        if (Order::replaces(element, best.value)) best = {element, number + i};
    }
}

template <class Order>
void search_masked_spaced(Best<typename Order::Element> &best, ConstBytes array, ConstBytes mask,
                          const Steps<2> &step, std::int32_t count, std::int32_t number) {
    for (std::int32_t i = 0; i < count; ++i) {
        if (load<Word>(mask + i * step.by[1]) == 0) continue;
        const auto element = load<typename Order::Element>(array + i * step.by[0]);
        if (Order::replaces(element, best.value)) best = {element, number + i};
    }
}

// ---- By regions -------------------------------------------------------------

// What a fold of either order does to vectors.
template <class Order> struct OrderedLanes {
    static constexpr std::int32_t lane_rounds = std::numeric_limits<std::int32_t>::max();

    static typename Order::Element neutral() { return Order::neutral(); }
    template <class V> static V lane_start() { return V{} + neutral(); }
    template <class V> static V lane_step(const V &best, const V &elements) {
        return Order::lane_step(best, elements);
    }
    template <class V> static V lane_combine(const V &a, const V &b) {
        return Order::lane_step(a, b);
    }
};

// The extreme value of the ordered elements of a region.
template <class Element> struct Region {
    Element value;
    bool has_unordered; // of elements that would replace
};

template <class Order> struct RegionFold : OrderedLanes<Order> {
    using Element = typename Order::Element;
    using Accumulator = Region<Element>;
    static constexpr bool reorderable = true;
    static constexpr bool watches = Order::unordered_replaces;
    static constexpr bool ends_early = false;

    static Accumulator step(const Accumulator &region, const Element &element) {
        return {Order::beats(element, region.value) ? element : region.value,
                region.has_unordered || (watches && is_unordered(element))};
    }
    template <class V> static auto watch(const V &elements) { return is_unordered(elements); }
    static void note(Accumulator &region, bool unordered) { region.has_unordered |= unordered; }
    template <int Width>
    static void absorb(Accumulator &region, const Lanes<Element, Width> &lanes) {
        absorb_lanes<RegionFold, Width>(region, lanes);
    }
};

// Number of the first of `count` elements that equals `wanted`: there is one.
template <int Width, class Element>
std::int32_t first_equal(ConstBytes array, const Element &wanted, std::int32_t count) {
    using V = Lanes<Element, Width>;
    constexpr std::int32_t size = sizeof(Element);
    constexpr std::int32_t at_once = 4 * Width / size;
    std::int32_t i = 0;
    for (; count - i >= at_once; i += at_once) {
        ConstBytes at = array + i * size;
        const auto found = (load_lanes<V>(at) == wanted) | (load_lanes<V>(at + Width) == wanted) |
                           (load_lanes<V>(at + 2 * Width) == wanted) |
                           (load_lanes<V>(at + 3 * Width) == wanted);
        if (any_bit<Width>(found)) break;
    }
    while (load<Element>(array + i * size) != wanted) ++i;
    return i;
}

// Number of the last of the elements, one of which is, that is unordered.
template <class Element> std::int32_t last_unordered(ConstBytes array, std::int32_t count) {
    do --count;
    while (!is_unordered(load<Element>(array + count * static_cast<int>(sizeof(Element)))));
    return count;
}

// How a region bears on the best so far.
enum class Bearing { None, Better, Unordered };

// Sets best.value alone, to a value of the region, where that is better.
template <class Order, int Width>
Bearing take_region(Best<typename Order::Element> &best, ConstBytes array, std::int32_t count) {
    if (is_unordered(best.value))
        return Order::unordered_replaces ? Bearing::Unordered : Bearing::None;
    Region<typename Order::Element> region = {Order::neutral(), false};
    DenseFold<RegionFold<Order>, 1>::template run<Width>(region, array, count);
    if (region.has_unordered) return Bearing::Unordered;
    if (!Order::beats(region.value, best.value)) return Bearing::None;
    best.value = region.value;
    return Bearing::Better;
}

// After take_region has found a better value: which of the equal ones came first. Where
// only values are wanted, that matters to the sign of a zero.
template <class Order, bool wants_place, int Width>
void place_in_region(Best<typename Order::Element> &best, ConstBytes array, std::int32_t count,
                     std::int32_t number) {
    using Element = typename Order::Element;
    if (!wants_place && best.value != 0) return;
    const std::int32_t i = first_equal<Width, Element>(array, best.value, count);
    best = {load<Element>(array + i * static_cast<int>(sizeof(Element))), number + i};
}

// Adjacent elements, the first of which has `number`. Where an unordered element
// replaces, nothing before the last of them counts, and the element behind it is the
// next best.
template <class Order, bool wants_place> struct DenseSearch {
    using Element = typename Order::Element;
    static constexpr bool uses_avx512 = profits_from_avx512<Order>;

    template <int Width>
    static void run(Best<Element> &best, ConstBytes array, std::int32_t count,
                    std::int32_t number) {
        constexpr std::int32_t size = sizeof(Element);
        constexpr std::int32_t region = 16384 / size; // stays in the first cache
        for (std::int32_t here; count > 0; count -= here, number += here) {
            here = std::min(count, region);
            if (Order::unordered_replaces && is_unordered(best.value))
                best = {load<Element>(array), number};
            const Bearing bearing = take_region<Order, Width>(best, array, here);
            if (bearing == Bearing::Better) {
                place_in_region<Order, wants_place, Width>(best, array, here, number);
            } else if (bearing == Bearing::Unordered) {
                const std::int32_t last = last_unordered<Element>(array, here);
                best = {load<Element>(array + last * size), number + last};
                here = last + 1;
            }
            array += here * size;
        }
    }
};

// The same beside adjacent MASK words. What does not count beats nothing.
template <class Order, bool wants_place> struct MaskedSearch {
    using Element = typename Order::Element;
    static constexpr bool uses_avx512 = profits_from_avx512<Order>;

    template <int Width>
    static void run(Best<Element> &best, ConstBytes array, ConstBytes mask, std::int32_t count,
                    std::int32_t number) {
        constexpr std::int32_t size = sizeof(Element);
        constexpr std::int32_t word = sizeof(Word);
        constexpr std::int32_t region = 2048 / size;
        const Element neutral = Order::neutral();
        Element counting[region];
        const auto elements = reinterpret_cast<ConstBytes>(counting);
        for (std::int32_t here; count > 0; count -= here, number += here) {
            here = std::min(count, region);
            for (std::int32_t i = 0; i < here; ++i)
                counting[i] =
                    load<Word>(mask + i * word) != 0 ? load<Element>(array + i * size) : neutral;
            const Bearing bearing = take_region<Order, Width>(best, elements, here);
            if (bearing == Bearing::Better)
                place_in_region<Order, wants_place, Width>(best, elements, here, number);
            else if (bearing == Bearing::Unordered)
                search_masked_spaced<Order>(best, array, mask, {{size, word}}, here, number);
            array += here * size;
            mask += here * word;
        }
    }
};

} // namespace quill

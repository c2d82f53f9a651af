// DOT_PRODUCT: one template over a Dot, which says what pairs of elements do to the
// accumulator. They are taken in element order, always by strides, whatever NONCONTIG
// says; integers and logicals, where the order shows in nothing, in vectors.
#pragma once

#include "frame/elements.h"
#include "frame/isa.h"
#include "frame/lanes.h"

#include <algorithm>

namespace quill {

// The elements of VECTOR_A and VECTOR_B that belong together.
struct Pairs {
    ConstBytes a;
    ConstBytes b;
    std::ptrdiff_t a_step;
    std::ptrdiff_t b_step;
    std::int32_t count;

    bool adjacent(std::ptrdiff_t size) const { return a_step == size && b_step == size; }
};

template <class Dot> void fold_pairs(typename Dot::Accumulator &sum, const Pairs &pairs) {
    using Element = typename Dot::Element;
    auto running = sum;
    for (std::int32_t i = 0; i < pairs.count; ++i)
        running = Dot::step(running, load<Element>(pairs.a + i * pairs.a_step),
                            load<Element>(pairs.b + i * pairs.b_step));
    sum = running;
}

// ---- Reals and complex numbers ----------------------------------------------

// Up to kind 10 summed in the 80-bit format, and rounded once, at the end.
template <class Part> struct WidestOf { using type = Real10; };
template <> struct WidestOf<Real16> { using type = Real16; };

template <class ElementType> struct RealDot {
    using Element = ElementType;
    using Accumulator = typename WidestOf<Element>::type;

    static Accumulator start() { return number<Accumulator>(0); }
    static Accumulator step(Accumulator sum, Accumulator a, Accumulator b) { return sum + a * b; }
    static void run(Accumulator &sum, const Pairs &pairs) { fold_pairs<RealDot>(sum, pairs); }
};

// VECTOR_A is conjugated.
template <class Part> struct RealDot<Complex<Part>> {
    using Element = Complex<Part>;
    using Wide = typename WidestOf<Part>::type;
    using Accumulator = Complex<Wide>;

    static Accumulator start() { return {number<Wide>(0), number<Wide>(0)}; }
    static Accumulator step(const Accumulator &sum, const Element &first, const Element &second) {
        const auto a = converted<Accumulator>(first);
        const auto b = converted<Accumulator>(second);
        return {(sum.re + a.re * b.re) + a.im * b.im, (sum.im + a.re * b.im) - a.im * b.re};
    }
    static void run(Accumulator &sum, const Pairs &pairs) { fold_pairs<RealDot>(sum, pairs); }
};

// ---- Integers ---------------------------------------------------------------

// The sum of products in lanes. Bytes are multiplied in lanes of 16 bits, whose low
// halves come out right: even ones in place, odd ones moved down.
template <class Element, int Width> struct ProductLanes {
    using V = Lanes<Element, Width>;
    V sum{};

    void add(const V &a, const V &b) { sum += a * b; }
    Element total() const {
        return fold_lanes<Element, Width>(sum, [](const auto &x, const auto &y) { return x + y; });
    }
};

template <int Width> struct ProductLanes<Int1, Width> {
    using V = Lanes<Int1, Width>;
    using Wide = Lanes<Int2, Width>;
    Wide sum{};

    void add(const V &a, const V &b) {
        const auto x = same_bits<Wide>(a);
        const auto y = same_bits<Wide>(b);
        sum += x * y + (x >> 8) * (y >> 8);
    }
    Int1 total() const {
        return static_cast<Int1>(
            fold_lanes<Int2, Width>(sum, [](const auto &x, const auto &y) { return x + y; }));
    }
};

template <class Element> struct IntegerDot;

template <class Element> struct AdjacentProducts {
    static constexpr bool uses_avx512 = sizeof(Element) == 8; // multiplies such lanes at once

    template <int Width>
    static void run(Element &sum, ConstBytes a, ConstBytes b, std::int32_t count) {
        using V = Lanes<Element, Width>;
        constexpr std::int32_t size = sizeof(Element);
        constexpr std::int32_t per_vector = Width / size;
        ProductLanes<Element, Width> first;
        ProductLanes<Element, Width> second;
        std::int32_t i = 0;
        for (; count - i >= 2 * per_vector; i += 2 * per_vector) {
            first.add(load_lanes<V>(a + i * size), load_lanes<V>(b + i * size));
            second.add(load_lanes<V>(a + i * size + Width), load_lanes<V>(b + i * size + Width));
        }
        first.sum += second.sum;
        sum = static_cast<Element>(sum + first.total());
        fold_pairs<IntegerDot<Element>>(sum, {a + i * size, b + i * size, size, size, count - i});
    }
};

template <class ElementType> struct IntegerDot {
    using Element = ElementType;
    using Accumulator = Element;

    static Accumulator start() { return 0; }
    static Accumulator step(Accumulator sum, Element a, Element b) {
        return static_cast<Accumulator>(sum + 1U * a * b); // unsigned, also of narrow integers
    }
    static void run(Accumulator &sum, const Pairs &pairs) {
        constexpr std::int32_t short_run = 16;
        if (pairs.adjacent(sizeof(Element)) && pairs.count > short_run)
            run_vectorised<AdjacentProducts<Element>>(sum, pairs.a, pairs.b, pairs.count);
        else
            fold_pairs<IntegerDot>(sum, pairs);
    }
};

// ---- Logicals ---------------------------------------------------------------

// Whether both elements of a pair are true. What stands beside a false element of
// VECTOR_A is not read, nor anything behind the first such pair.
template <class Element> bool any_pair(const Pairs &pairs) {
    for (std::int32_t i = 0; i < pairs.count; ++i)
        if (load<Element>(pairs.a + i * pairs.a_step) != 0 &&
            load<Element>(pairs.b + i * pairs.b_step) != 0)
            return true;
    return false;
}

// How many bytes from `at` on can be read where the first one can.
inline std::int32_t left_in_page(ConstBytes at) {
    constexpr std::uintptr_t page = 4096;
    return static_cast<std::int32_t>(page - reinterpret_cast<std::uintptr_t>(at) % page);
}

// Adjacent elements, by blocks that lie in one page: a block may be read ahead of a hit
// in it, since nobody can notice.
template <class Element> struct AdjacentPairs {
    static constexpr bool uses_avx512 = true; // loads lanes of any size under a mask
    static constexpr std::int32_t size = sizeof(Element);

    static bool any_true(ConstBytes a, std::int32_t count) {
        Element any = 0;
        for (std::int32_t i = 0; i < count; ++i) any |= load<Element>(a + i * size);
        return any != 0;
    }

    // The loop becomes loads under a mask: elements beside false ones stay unread. Also
    // tells whether VECTOR_A has true ones.
    static bool any_both(ConstBytes a, ConstBytes b, std::int32_t count, bool &any_in_a) {
        Element any = 0;
        Element both = 0;
        for (std::int32_t i = 0; i < count; ++i) {
            const auto element = load<Element>(a + i * size);
            any |= element;
            if (element != 0) both |= load<Element>(b + i * size);
        }
        any_in_a = any != 0;
        return both != 0;
    }

    // Where VECTOR_A is false for long, it alone is looked at.
    template <int> static void run(Element &found, ConstBytes a, ConstBytes b, std::int32_t count) {
        constexpr std::int32_t block_bytes = 1024;
        bool any_in_a = false;
        for (std::int32_t here; found == 0 && count > 0; count -= here) {
            here = std::min({block_bytes, left_in_page(a), left_in_page(b)}) / size;
            here = std::min(std::max(here, 1), count); // one element may lie in two pages
            if (here == 1)
                found = any_pair<Element>({a, b, size, size, 1});
            else if (any_in_a || any_true(a, here))
                found = any_both(a, b, here, any_in_a);
            a += here * size;
            b += here * size;
        }
    }
};

template <class ElementType> struct LogicalDot {
    using Element = ElementType;
    using Accumulator = Element; // 0 or 1

    static Accumulator start() { return 0; }
    static void run(Accumulator &found, const Pairs &pairs) {
        constexpr std::int32_t short_run = 16;
        if (pairs.adjacent(sizeof(Element)) && pairs.count > short_run)
            run_vectorised<AdjacentPairs<Element>>(found, pairs.a, pairs.b, pairs.count);
        else
            found = any_pair<Element>(pairs);
    }
};

// ---- The family -------------------------------------------------------------

// A result of at most 8 bytes stays in the slot.
template <class Dot> void dot_product(f90_ArgList *list) {
    using Element = typename Dot::Element;
    const f90_ArrDesc &a = descriptor(list->Arg1);
    const f90_ArrDesc &b = descriptor(list->Arg2);
    if (checks_wanted(*list) && a.EXTENT != b.EXTENT) f90_ArrLibError("DOT_PRODUCT", 1, &a, &b);
    auto sum = Dot::start();
    Dot::run(sum, {base(a), base(b), byte_step(a, 0), byte_step(b, 0), a.EXTENT});
    const auto result = sizeof(Element) <= sizeof(f90_Slot)
                            ? reinterpret_cast<Bytes>(&list->Result)
                            : reinterpret_cast<Bytes>(list->Result.Word0);
    store(result, converted<Element>(sum));
}

} // namespace quill

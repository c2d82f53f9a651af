// COUNT and KOUNT: how many elements of MASK are true. Both count in 32 bits;
// KOUNT sign-extends the count where it stores it.
#include "reductions/logical_reduction.h"

namespace quill {
namespace {

// Sum of lanes that each hold a count, none of which needs its top bit.
template <class Lane, int Width> std::uint32_t total_count(const Lanes<Lane, Width> &counts) {
    if constexpr (sizeof(Lane) < sizeof(std::uint32_t)) {
        using Wide = std::conditional_t<sizeof(Lane) == 1, std::uint16_t, std::uint32_t>;
        constexpr int bits = 8 * sizeof(Lane);
        const auto pairs = same_bits<Lanes<Wide, Width>>(counts);
        return total_count<Wide, Width>((pairs & ((1 << bits) - 1)) + (pairs >> bits));
    } else {
        // The high words of 64-bit counts are zero.
        return fold_lanes<std::uint32_t, Width>(same_bits<Lanes<std::uint32_t, Width>>(counts),
                                                [](const auto &a, const auto &b) { return a + b; });
    }
}

template <class ElementType, class ResultType> struct Count : LogicalFold<ElementType> {
    using Element = ElementType;
    using Accumulator = std::int32_t;
    using Result = ResultType;
    static constexpr const char *name = sizeof(Result) == 4 ? "COUNT" : "KOUNT";
    static constexpr bool ends_early = false;
    // The sum of four lanes, and of what is left after the rounds, must fit a lane.
    static constexpr std::int32_t lane_rounds = sizeof(Element) >= 4
                                                    ? std::numeric_limits<std::int32_t>::max()
                                                    : std::numeric_limits<Element>::max() / 4 - 1;

    static Accumulator start() { return 0; }
    static Element neutral() { return 0; }
    static Accumulator step(Accumulator count, Element element) {
        return count + (element != 0 ? 1 : 0);
    }

    template <class V> static V lane_start() { return V{}; }
    template <class V> static V lane_step(const V &counts, const V &elements) {
        return counts - reinterpret_cast<V>(elements != 0); // true lanes are all ones
    }
    template <class V> static V lane_combine(const V &a, const V &b) { return a + b; }
    template <int Width>
    static void absorb(Accumulator &count, const Lanes<Element, Width> &counts) {
        count += static_cast<Accumulator>(total_count<Element, Width>(counts));
    }
};

template <class Element> using Count32 = Count<Element, std::int32_t>;
template <class Element> using Count64 = Count<Element, std::int64_t>;

} // namespace
} // namespace quill

extern "C" {

void f90_count1(f90_ArgList *list) { quill::logical_reduction<quill::Count32<quill::Int1>>(list); }
void f90_count2(f90_ArgList *list) { quill::logical_reduction<quill::Count32<quill::Int2>>(list); }
void f90_count4(f90_ArgList *list) { quill::logical_reduction<quill::Count32<quill::Int4>>(list); }
void f90_count8(f90_ArgList *list) { quill::logical_reduction<quill::Count32<quill::Int8>>(list); }
void f90_kcount1(f90_ArgList *list) { quill::logical_reduction<quill::Count64<quill::Int1>>(list); }
void f90_kcount2(f90_ArgList *list) { quill::logical_reduction<quill::Count64<quill::Int2>>(list); }
void f90_kcount4(f90_ArgList *list) { quill::logical_reduction<quill::Count64<quill::Int4>>(list); }
void f90_kcount8(f90_ArgList *list) { quill::logical_reduction<quill::Count64<quill::Int8>>(list); }

} // extern "C"

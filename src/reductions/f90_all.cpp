// ALL: whether every element of MASK is true. Ends at the first false one.
#include "reductions/logical_reduction.h"

namespace quill {
namespace {

template <class ElementType> struct All : LogicalFold<ElementType> {
    using Element = ElementType;
    using Accumulator = Element; // 0 or 1
    using Result = Element;
    static constexpr const char *name = "ALL";
    static constexpr bool ends_early = true;
    static constexpr std::int32_t lane_rounds = 8;

    static Accumulator start() { return 1; }
    static Element neutral() { return 1; }
    static Accumulator step(Accumulator all, Element element) {
        return all & Element{element != 0};
    }
    static bool decided(Accumulator all) { return all == 0; }

    // Lanes gather what is false.
    template <class V> static V lane_start() { return V{}; }
    template <class V> static V lane_step(const V &found, const V &elements) {
        return found | reinterpret_cast<V>(elements == 0);
    }
    template <class V> static V lane_combine(const V &a, const V &b) { return a | b; }
    template <int Width> static void absorb(Accumulator &all, const Lanes<Element, Width> &found) {
        if (any_bit<Width>(found)) all = 0;
    }
};

} // namespace
} // namespace quill

extern "C" {

void f90_all1(f90_ArgList *list) { quill::logical_reduction<quill::All<quill::Int1>>(list); }
void f90_all2(f90_ArgList *list) { quill::logical_reduction<quill::All<quill::Int2>>(list); }
void f90_all4(f90_ArgList *list) { quill::logical_reduction<quill::All<quill::Int4>>(list); }
void f90_all8(f90_ArgList *list) { quill::logical_reduction<quill::All<quill::Int8>>(list); }

} // extern "C"

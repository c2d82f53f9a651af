// ANY: whether some element of MASK is true. Ends at the first true one.
#include "reductions/logical_reduction.h"

namespace quill {
namespace {

template <class ElementType> struct Any : LogicalFold<ElementType> {
    using Element = ElementType;
    using Accumulator = Element; // 0 or 1
    using Result = Element;
    static constexpr const char *name = "ANY";
    static constexpr bool ends_early = true;
    static constexpr std::int32_t lane_rounds = 8;

    static Accumulator start() { return 0; }
    static Element neutral() { return 0; }
    static Accumulator step(Accumulator any, Element element) {
        return any | Element{element != 0};
    }
    static bool decided(Accumulator any) { return any != 0; }

    // Lanes gather the bits that are set.
    template <class V> static V lane_start() { return V{}; }
    template <class V> static V lane_step(const V &found, const V &elements) {
        return found | elements;
    }
    template <class V> static V lane_combine(const V &a, const V &b) { return a | b; }
    template <int Width> static void absorb(Accumulator &any, const Lanes<Element, Width> &found) {
        if (any_bit<Width>(found)) any = 1;
    }
};

} // namespace
} // namespace quill

extern "C" {

void f90_any1(f90_ArgList *list) { quill::logical_reduction<quill::Any<quill::Int1>>(list); }
void f90_any2(f90_ArgList *list) { quill::logical_reduction<quill::Any<quill::Int2>>(list); }
void f90_any4(f90_ArgList *list) { quill::logical_reduction<quill::Any<quill::Int4>>(list); }
void f90_any8(f90_ArgList *list) { quill::logical_reduction<quill::Any<quill::Int8>>(list); }

} // extern "C"

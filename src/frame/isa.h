// Choice of the instruction set at run time. A kernel is written once, as a
// template over the width of its vectors, and compiled here for each set: it
// becomes part of the function that carries the set's target attribute, so no
// code beyond the baseline stands anywhere else.
#pragma once

#ifdef QUILLFN_SELECT_ISA
#include <cstdlib>
#include <cstring>
#endif

namespace quill {

enum class Isa { Sse2, Avx2, Avx512 };

// The widest set that the processor has. Builds for tests let the environment
// lower it; the shipped library does not look there.
inline Isa widest_isa() {
    Isa isa = Isa::Sse2;
    if (__builtin_cpu_supports("avx2")) isa = Isa::Avx2;
    if (__builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl"))
        isa = Isa::Avx512;
#ifdef QUILLFN_SELECT_ISA
    const char *wanted = std::getenv("QUILLFN_ISA");
    if (wanted != nullptr && std::strcmp(wanted, "sse2") == 0) return Isa::Sse2;
    if (wanted != nullptr && std::strcmp(wanted, "avx2") == 0 && isa == Isa::Avx512)
        return Isa::Avx2;
#endif
    return isa;
}

template <class Kernel, class... Arguments>
[[gnu::flatten]] void run_sse2(Arguments &&...arguments) {
    Kernel::template run<16>(arguments...);
}

template <class Kernel, class... Arguments>
[[gnu::target("avx2"), gnu::flatten]] void run_avx2(Arguments &&...arguments) {
    Kernel::template run<32>(arguments...);
}

template <class Kernel, class... Arguments>
[[gnu::target("avx512bw,avx512dq,avx512vl"), gnu::flatten]] auto
run_avx512(Arguments &&...arguments) {
    Kernel::template run<64>(arguments...);
}

// Kernel::run<width of a vector in bytes>(arguments...) with the widest set that
// the processor has and Kernel::widest allows.
template <class Kernel, class... Arguments> void run_vectorised(Arguments &&...arguments) {
    const Isa isa = widest_isa();
    if constexpr (Kernel::widest >= Isa::Avx512)
        if (isa >= Isa::Avx512) return run_avx512<Kernel>(arguments...);
    if (isa >= Isa::Avx2) return run_avx2<Kernel>(arguments...);
    return run_sse2<Kernel>(arguments...);
}

} // namespace quill

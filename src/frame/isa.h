// Choice of the instruction set at run time. A kernel is written once, as a
// template over the width of its vectors, and compiled here for each set: it
// becomes part of the function that carries the set's target attribute, so no
// code beyond the baseline stands anywhere else.
//
// AVX2 is the widest set so far. Folds are bound by loads, which 64-byte vectors
// do not speed up; and AVX-512 has multiply-add of its own, into which GCC fuses
// the products of complex numbers even where contraction is off.
#pragma once

#ifdef QUILLFN_SELECT_ISA
#include <cstdlib>
#include <cstring>
#endif

namespace quill {

// Builds for tests let the environment take AVX2 away; the shipped library does
// not look there.
inline bool has_avx2() {
#ifdef QUILLFN_SELECT_ISA
    const char *wanted = std::getenv("QUILLFN_ISA");
    if (wanted != nullptr && std::strcmp(wanted, "sse2") == 0) return false;
#endif
    return __builtin_cpu_supports("avx2");
}

template <class Kernel, class... Arguments>
[[gnu::flatten]] void run_sse2(Arguments &&...arguments) {
    Kernel::template run<16>(arguments...);
}

template <class Kernel, class... Arguments>
[[gnu::target("avx2"), gnu::flatten]] void run_avx2(Arguments &&...arguments) {
    Kernel::template run<32>(arguments...);
}

// Kernel::run<width of a vector in bytes>(arguments...) with the widest set that
// the processor has.
template <class Kernel, class... Arguments> void run_vectorised(Arguments &&...arguments) {
    if (has_avx2())
        run_avx2<Kernel>(arguments...);
    else
        run_sse2<Kernel>(arguments...);
}

} // namespace quill

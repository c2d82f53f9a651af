// Choice of the instruction set at run time. A kernel is written once, as a
// template over the width of its vectors, and compiled here for each set: it
// becomes part of the function that carries the set's target attribute, so no
// code beyond the baseline stands anywhere else.
//
// AVX-512 serves kernels that ask for it. Folds that do are of integers and logicals: it
// has multiply-add of its own, into which GCC fuses the loops of complex products even
// where contraction is off. Their vectors have 32 bytes here too, since folds are bound
// by loads, which 64-byte ones do not speed up. Kernels that name their width themselves
// are bound by arithmetic and written in vectors, which stay as they are written.
#pragma once

#ifdef QUILLFN_SELECT_ISA
#include <cstdlib>
#include <cstring>
#endif

namespace quill {

// Builds for tests let the environment name the widest set to use, sse2 or avx2;
// the shipped library does not look there.
inline bool is_widest([[maybe_unused]] const char *set) {
#ifdef QUILLFN_SELECT_ISA
    const char *named = std::getenv("QUILLFN_ISA");
    return named != nullptr && std::strcmp(named, set) == 0;
#else
    return false;
#endif
}

inline bool has_avx2() { return !is_widest("sse2") && __builtin_cpu_supports("avx2"); }

inline bool has_avx512() {
    return has_avx2() && !is_widest("avx2") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
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
[[gnu::target("avx512bw,avx512dq,avx512vl,prefer-vector-width=256"), gnu::flatten]] void
run_avx512(Arguments &&...arguments) {
    Kernel::template run<32>(arguments...);
}

// Kernel::run<width of a vector in bytes>(arguments...) with the widest set that
// the processor has and the kernel uses: AVX-512 where it is asked for by a member.
template <class Kernel, class... Arguments> void run_vectorised(Arguments &&...arguments) {
    if constexpr (requires { requires Kernel::uses_avx512; })
        if (has_avx512()) return run_avx512<Kernel>(arguments...);
    if (has_avx2())
        run_avx2<Kernel>(arguments...);
    else
        run_sse2<Kernel>(arguments...);
}

// ---- By width -------------------------------------------------------------------

// The bytes of the widest vectors that the processor has.
inline int widest_vectors() { return has_avx512() ? 64 : has_avx2() ? 32 : 16; }

template <class Kernel, class... Arguments>
[[gnu::target("avx512bw,avx512dq,avx512vl,prefer-vector-width=512"), gnu::flatten]] void
run_avx512_wide(Arguments &&...arguments) {
    Kernel::template run<64>(arguments...);
}

// Kernel::run<width>(arguments...), width being at most that of the widest vectors.
template <class Kernel, class... Arguments> void run_at_width(int width, Arguments &&...arguments) {
    if (width == 64)
        run_avx512_wide<Kernel>(arguments...);
    else if (width == 32)
        run_avx2<Kernel>(arguments...);
    else
        run_sse2<Kernel>(arguments...);
}

} // namespace quill

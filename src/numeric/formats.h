// The formats of the real kinds, and a real as its bits: the upper part holds the sign, the
// exponent field and what of the fraction stands beside them; kinds 10 and 16 have a lower part
// of 64 bits. Arithmetic on kinds 4 and 8 is done in the 80-bit format, where subnormal numbers
// count whatever the program has told its vector unit.
#pragma once

#include "frame/elements.h"
#include "frame/lanes.h"

#include <bit>
#include <cmath>

namespace quill {

// A real of kind 16 is a Quad here: the compiler's own type wants another alignment.
template <class Real> struct Format;

template <> struct Format<Real4> {
    using Upper = std::uint32_t;
    static constexpr int digits = 24;
    static constexpr long double normalising_factor = 0x1p23L;
    static constexpr int bias = 127;
    static constexpr int upper_fraction_bits = 23;
};
template <> struct Format<Real8> {
    using Upper = std::uint64_t;
    static constexpr int digits = 53;
    static constexpr long double normalising_factor = 0x1p52L;
    static constexpr int bias = 1023;
    static constexpr int upper_fraction_bits = 52;
};
template <> struct Format<Real10> {
    using Upper = std::uint16_t;
    static constexpr int digits = 64;
    static constexpr long double normalising_factor = 0x1p63L;
    static constexpr int bias = 16383;
    static constexpr int upper_fraction_bits = 0;
};
template <> struct Format<Quad> {
    using Upper = std::uint64_t;
    static constexpr int digits = 113;
    static constexpr long double normalising_factor = 0x1p112L;
    static constexpr int bias = 16383;
    static constexpr int upper_fraction_bits = 48;
};

template <class Real> constexpr bool has_lower_part = sizeof(Real) > 8;
// Kind 10 alone stores the bit in front of the fraction: the top one of the lower part.
template <class Real>
constexpr std::uint64_t integer_bit = std::is_same_v<Real, Real10> ? std::uint64_t{1} << 63 : 0;
// The exponent field of infinities and NaNs.
template <class Real> constexpr std::int32_t all_ones = 2 * Format<Real>::bias + 1;

template <class Real> struct Bits {
    using Upper = typename Format<Real>::Upper;
    Upper upper;
    std::uint64_t lower; // 0 of kinds 4 and 8
};

// ---- Loads and results --------------------------------------------------------------

template <class Real> [[gnu::always_inline]] inline Bits<Real> bits_at(const void *at) {
    const auto *bytes = static_cast<ConstBytes>(at);
    Bits<Real> bits{};
    if constexpr (has_lower_part<Real>) std::memcpy(&bits.lower, bytes, sizeof bits.lower);
    std::memcpy(&bits.upper, bytes + (has_lower_part<Real> ? sizeof bits.lower : 0),
                sizeof bits.upper);
    return bits;
}

template <class Real> [[gnu::always_inline]] inline Real real_at(const void *at) {
    if constexpr (std::is_same_v<Real, Quad>)
        return *static_cast<const Quad *>(at);
    else
        return load<Real>(static_cast<ConstBytes>(at));
}

template <class Real> [[gnu::always_inline]] inline Real real_of(const Bits<Real> &bits) {
    if constexpr (has_lower_part<Real>) {
        Real real;
        std::memcpy(&real, &bits.lower, sizeof bits.lower);
        std::memcpy(reinterpret_cast<Bytes>(&real) + 8, &bits.upper, sizeof bits.upper);
        return real;
    } else if constexpr (sizeof(Real) == 8) {
        // Put together in a register: what two stores have left would hold up the load.
        const auto low = static_cast<std::int32_t>(bits.upper);
        const auto high = static_cast<std::int32_t>(bits.upper >> 32);
        return same_bits<Lanes<Real8, 16>>(Lanes<std::int32_t, 16>{low, high, 0, 0})[0];
    } else {
        return std::bit_cast<Real>(bits.upper);
    }
}

// What an exported function of the kind returns.
template <class Real> [[gnu::always_inline]] inline auto returned(const Real &real) {
    if constexpr (std::is_same_v<Real, Quad>)
        return std::bit_cast<f90_Real16>(real);
    else
        return real;
}

// A number in an x87 register. The compiler sees it no further, or it would do what it can of
// such arithmetic in the vector unit.
template <class Real> [[gnu::always_inline]] inline long double extended(const Real &real) {
    long double wide = real;
    asm("" : "+t"(wide));
    return wide;
}

// ---- Fields -------------------------------------------------------------------------

template <class Real>
constexpr auto sign_bit = static_cast<typename Bits<Real>::Upper>(
    typename Bits<Real>::Upper{1} << (8 * sizeof(typename Bits<Real>::Upper) - 1));

template <class Real> typename Bits<Real>::Upper sign(const Bits<Real> &bits) {
    return bits.upper & sign_bit<Real>;
}

template <class Real> std::int32_t exponent_field(const Bits<Real> &bits) {
    return static_cast<std::int32_t>(bits.upper >> Format<Real>::upper_fraction_bits) &
           all_ones<Real>;
}

template <class Real> constexpr auto in_exponent_field(std::int32_t exponent) {
    using Upper = typename Bits<Real>::Upper;
    return static_cast<Upper>(static_cast<Upper>(exponent) << Format<Real>::upper_fraction_bits);
}

template <class Real>
Bits<Real> with_exponent_field(const Bits<Real> &bits, std::int32_t exponent) {
    using Upper = typename Bits<Real>::Upper;
    constexpr auto others = static_cast<Upper>(~in_exponent_field<Real>(all_ones<Real>));
    return {static_cast<Upper>((bits.upper & others) | in_exponent_field<Real>(exponent)),
            bits.lower};
}

template <class Real> Bits<Real> with_sign(Bits<Real> bits, typename Bits<Real>::Upper sign) {
    bits.upper = static_cast<typename Bits<Real>::Upper>((bits.upper & ~sign_bit<Real>) | sign);
    return bits;
}

template <class Real> bool has_zero_fraction(const Bits<Real> &bits) {
    return (bits.upper & (in_exponent_field<Real>(1) - 1)) == 0 &&
           (bits.lower & ~integer_bit<Real>) == 0;
}

// The positive number with this exponent field, not 0, and a zero fraction.
template <class Real> Bits<Real> power_of_two(std::int32_t exponent) {
    return {in_exponent_field<Real>(exponent), integer_bit<Real>};
}

template <class Real> Bits<Real> infinity() { return power_of_two<Real>(all_ones<Real>); }

// The positive subnormal number with this bit of the fraction alone.
template <class Real> Bits<Real> fraction_bit(std::int32_t position) {
    using Upper = typename Bits<Real>::Upper;
    if constexpr (has_lower_part<Real>)
        if (position < 64) return {0, std::uint64_t{1} << position};
    constexpr int below = has_lower_part<Real> ? 64 : 0;
    return {static_cast<Upper>(Upper{1} << (position - below)), 0};
}

// ---- Classes ------------------------------------------------------------------------

// Whether a number compares equal to zero, where an unordered pair counts as equal but in kind 16.
// In kind 10 a number whose integer bit should be set and is not is unordered too.
template <class Real> bool passes_zero_test(const Bits<Real> &bits) {
    const auto magnitude = with_sign(bits, 0).upper;
    if constexpr (std::is_same_v<Real, Quad>)
        return (magnitude | bits.lower) == 0;
    else if constexpr (!std::is_same_v<Real, Real10>)
        return magnitude - 1 >= infinity<Real>().upper;
    else if (magnitude == 0)
        return bits.lower == 0;
    else
        return bits.lower < integer_bit<Real> ||
               (magnitude == all_ones<Real> && !has_zero_fraction(bits));
}

// The bits of a number's product with the normalising factor. Not part of its callers, whose usual
// case needs no constant from memory.
template <class Real> [[gnu::noinline]] Bits<Real> magnified(Bits<Real> bits) {
    constexpr long double factor = Format<Real>::normalising_factor;
    Real product;
    if constexpr (std::is_same_v<Real, Quad>)
        product = real_of(bits) * static_cast<__float128>(factor);
    else
        product = static_cast<Real>(extended(real_of(bits)) * factor);
    return bits_at<Real>(&product);
}

// Calls take with these bits if a number's exponent field is 0, else with its own, which are
// normal as they are. Two calls: bits from either place would be passed through memory.
template <class Real, class Take> auto with_normalised(const Bits<Real> &bits, Take take) {
    if (exponent_field(bits) == 0) return take(magnified(bits));
    return take(bits);
}

// ---- Exponents from the caller ------------------------------------------------------

// An exponent as far off as any that changes a result: sums with it do not overflow.
inline std::int32_t within_reach(std::int32_t exponent) {
    constexpr std::int32_t far = 1 << 20;
    return exponent > far ? far : exponent < -far ? -far : exponent;
}

// ---- Results below the normal range -------------------------------------------------

constexpr std::uint32_t real4_fraction = in_exponent_field<Real4>(1) - 1;

// A normal number of kind 4 whose exponent field were to become `field`, less than 1: what the
// subnormal format does not hold is cut off.
inline Bits<Real4> truncated_to_subnormal(const Bits<Real4> &bits, std::int32_t field) {
    const std::uint32_t significand = (bits.upper & real4_fraction) | in_exponent_field<Real4>(1);
    const std::int32_t down = 1 - field;
    return {sign(bits) | (down < Format<Real4>::digits ? significand >> down : 0), 0};
}

// x times 2 to the power n, as the C library rounds it.
inline Real8 scaled(Real8 x, std::int32_t n) { return std::ldexp(x, n); }
inline Real10 scaled(Real10 x, std::int32_t n) { return std::ldexp(x, n); }
inline Quad scaled(const Quad &x, std::int32_t n) { return ldexpq(x, n); }

} // namespace quill

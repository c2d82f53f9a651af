// CEILING and FLOOR: a real becomes an integer of 16, 32 or 64 bits, the lowest one where it does
// not fit. The integer part is taken from the bits or by an instruction that truncates, so that
// no rounding mode plays a part and none is set.
#pragma once

#include "numeric/formats.h"

#include <limits>

namespace quill {

// ---- Limits -------------------------------------------------------------------------

// Whether x lies above the lowest integer and not above the highest one. Where the format does
// not hold that, the next number above it is out of the limits.
template <class Integer, class Real> [[gnu::always_inline]] inline bool fits(const Real &x) {
    using Limits = std::numeric_limits<Integer>;
    if constexpr (std::is_same_v<Real, Quad>) {
        const Quad lowest(static_cast<long long>(Limits::min()));
        const Quad highest(static_cast<long long>(Limits::max()));
        return _compare_fp(lowest, x, 1, 0, 0) != 0 && _compare_fp(x, highest, 1, 0, 1) != 0;
    } else {
        constexpr auto highest = static_cast<Real>(Limits::max());
        const bool below = Limits::digits > Format<Real>::digits ? x < highest : x <= highest;
        return x > static_cast<Real>(Limits::min()) && below;
    }
}

// ---- The integer part ---------------------------------------------------------------

// Of a number that fits; the highest integer where rounding has made it 2^63.
inline std::int64_t integer_part(std::uint64_t significand, std::int32_t exponent, bool negative) {
    if (exponent < 0) return 0;
    const std::uint64_t magnitude = significand >> (63 - exponent);
    if (negative) return static_cast<std::int64_t>(-magnitude);
    constexpr std::uint64_t highest = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(magnitude < highest ? magnitude : highest);
}

inline std::int64_t wide_truncated(Real8 x) {
    const Bits<Real8> bits = bits_at<Real8>(&x);
    const std::uint64_t significand = bits.upper << 11 | integer_bit<Real10>;
    return integer_part(significand, exponent_field(bits) - Format<Real8>::bias, sign(bits) != 0);
}

inline std::int64_t wide_truncated(const Real10 &x) {
    const Bits<Real10> bits = bits_at<Real10>(&x);
    return integer_part(bits.lower, exponent_field(bits) - Format<Real10>::bias, sign(bits) != 0);
}

// The nearest double, of two the even one, of a number within the 64-bit integers; one far below
// 1 becomes 0. The compiler's conversion would go by the rounding mode.
inline Real8 nearest_double(const Quad &x) {
    const Bits<Quad> bits = bits_at<Quad>(&x);
    const std::int32_t field = exponent_field(bits) - Format<Quad>::bias + Format<Real8>::bias;
    if (field < 1) return 0;
    const std::uint64_t fraction = (bits.upper & (in_exponent_field<Quad>(1) - 1)) << 4;
    const std::uint64_t cut =
        sign(bits) | in_exponent_field<Real8>(field) | fraction | bits.lower >> 60;
    const std::uint64_t rest = bits.lower << 4;
    const std::uint64_t half = std::uint64_t{1} << 63;
    const bool up = rest > half || (rest == half && (cut & 1) != 0);
    return std::bit_cast<Real8>(cut + (up ? 1 : 0));
}

template <class Integer, class Real>
[[gnu::always_inline]] inline Integer truncated(const Real &x) {
    if constexpr (std::is_same_v<Real, Quad>)
        return truncated<Integer>(nearest_double(x));
    else if constexpr (std::is_same_v<Real, Real10>)
        return static_cast<Integer>(wide_truncated(x));
    else if constexpr (sizeof(Integer) == 8)
        return wide_truncated(x);
    else
        return static_cast<Integer>(static_cast<std::int32_t>(x)); // truncates in any mode
}

// ---- CEILING and FLOOR --------------------------------------------------------------

template <class Integer, class Real> bool is_less(Integer part, const Real &x) {
    if constexpr (std::is_same_v<Real, Quad>)
        return _compare_fp(Quad(static_cast<long long>(part)), x, 1, 0, 0) != 0;
    else
        return static_cast<long double>(part) < extended(x);
}

template <class Integer, class Real> bool is_greater(Integer part, const Real &x) {
    if constexpr (std::is_same_v<Real, Quad>)
        return _compare_fp(Quad(static_cast<long long>(part)), x, 0, 1, 0) != 0;
    else
        return static_cast<long double>(part) > extended(x);
}

template <class Integer, class Real> Integer ceiling(const void *address) {
    const Real x = real_at<Real>(address);
    if (!fits<Integer>(x)) return std::numeric_limits<Integer>::min();
    const Integer part = truncated<Integer>(x);
    return static_cast<Integer>(part + (is_less(part, x) ? 1 : 0));
}

template <class Integer, class Real> Integer floor(const void *address) {
    const Real x = real_at<Real>(address);
    if (!fits<Integer>(x)) return std::numeric_limits<Integer>::min();
    const Integer part = truncated<Integer>(x);
    return static_cast<Integer>(part - (is_greater(part, x) ? 1 : 0));
}

} // namespace quill

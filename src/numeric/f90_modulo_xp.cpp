// MODULO of kinds 10 and 16, by a reduction that is promised step by step: quotients are cut to
// so many bits that, with the divisor in two parts, most products are exact.
#include "numeric/formats.h"

namespace quill {
namespace {

// What the reduction of a kind goes by: the number that a sum with rounds a quotient to an
// integer; the exponent that makes a subnormal divisor normal; and in bits of the lower part
// those that a quotient keeps, those that the high part of a divisor lacks, and whether it needs
// to be divided for these.
template <class Real> struct Reduction;

template <> struct Reduction<Real10> {
    static constexpr Real10 rounding = 0x1p63L;
    static constexpr std::int32_t subnormal = 64;
    static constexpr std::uint64_t kept = 0xFFFFFFFF'C0000000;
    static constexpr std::uint64_t low_part = 0x00000000'FFFFFFFF;
    static bool is_long(std::uint64_t low) { return low != 0; }
};
template <> struct Reduction<Quad> {
    static constexpr Real16 rounding = static_cast<Real16>(0x1p112L);
    static constexpr std::int32_t subnormal = 112;
    static constexpr std::uint64_t kept = 0xFE000000'00000000;
    static constexpr std::uint64_t low_part = 0x00FFFFFF'FFFFFFFF;
    static bool is_long(std::uint64_t low) { return low << 32 != 0 && low >> 32 != 0; }
};

// ---- Steps --------------------------------------------------------------------------

bool is_greater(Real10 a, Real10 b) { return a > b; }
bool is_greater(const Quad &a, const Quad &b) { return _compare_fp(a, b, 0, 1, 0) != 0; }
bool is_equal(Real10 a, Real10 b) { return a == b; }
bool is_equal(const Quad &a, const Quad &b) { return _compare_fp(a, b, 0, 0, 1) != 0; }

// x with these bits of its lower part alone.
template <class Real> Real masked(const Real &x, std::uint64_t lower) {
    Bits<Real> bits = bits_at<Real>(&x);
    bits.lower &= lower;
    return real_of(bits);
}

template <class Real> Real with_sign_of(const Real &x, typename Bits<Real>::Upper sign) {
    return real_of(with_sign(bits_at<Real>(&x), sign));
}

// The quotient as an integer, then without the bits that it does not keep.
template <class Real> Real partial_quotient(const Real &a, const Real &p) {
    using Kind = Reduction<Real>;
    const Real quotient = a / p;
    Real whole = (Kind::rounding + quotient) - Kind::rounding;
    if (is_greater(whole, quotient)) whole = whole - 1;
    return masked(whole, Kind::kept);
}

// Takes multiples of p from a as long as a is greater.
template <class Real> Real reduced(Real a, const Real &p) {
    using Kind = Reduction<Real>;
    const bool split = Kind::is_long(bits_at<Real>(&p).lower & Kind::low_part);
    const Real high = masked(p, ~Kind::low_part);
    while (is_greater(a, p)) {
        const Real quotient = partial_quotient(a, p);
        if (split)
            a = (a - quotient * high) - quotient * (p - high);
        else
            a = a - quotient * p;
    }
    return a;
}

// a modulo p, both positive and finite, as long as a remainder is left: a divisor that is
// subnormal, or much less than a, is first made greater. Equal numbers leave nothing.
template <class Real> bool leaves_remainder(Real &a, Real p) {
    constexpr std::int32_t far = 16383;
    constexpr std::int32_t subnormal = Reduction<Real>::subnormal;
    const auto field = [](const Real &x) { return exponent_field(bits_at<Real>(&x)); };
    std::int32_t greater_by = 0; // this power of 2
    const auto grow = [&](std::int32_t power) {
        p = scaled(p, power);
        greater_by += power;
    };
    if (field(p) == 0) grow(subnormal);
    if (field(a) - field(p) >= far) grow(far);
    for (;;) {
        a = reduced(a, p);
        if (is_equal(a, p)) return false;
        if (greater_by == 0) return true;
        grow(greater_by >= far ? -far : -subnormal);
    }
}

// ---- MODULO -------------------------------------------------------------------------

template <class Real> Real quiet_nan(typename Bits<Real>::Upper sign) {
    Bits<Real> nan = infinity<Real>();
    if constexpr (std::is_same_v<Real, Real10>)
        nan.lower |= integer_bit<Real> / 2;
    else
        nan.upper |= in_exponent_field<Real>(1) / 2;
    return real_of(with_sign(nan, sign));
}

template <class Real> bool is_finite(const Bits<Real> &bits) {
    return exponent_field(bits) != all_ones<Real>;
}

// A NaN of kind 10 passes for zero as a divisor, one of kind 16 does not.
template <class Real> Real modulo(const void *a_address, const void *p_address) {
    const Real a = real_at<Real>(a_address);
    const Real p = real_at<Real>(p_address);
    const Bits<Real> a_bits = bits_at<Real>(a_address);
    const Bits<Real> p_bits = bits_at<Real>(p_address);
    if (passes_zero_test(p_bits)) return a;
    if (!is_finite(p_bits) && has_zero_fraction(p_bits)) return a;
    if (!is_finite(p_bits) || !is_finite(a_bits)) return quiet_nan<Real>(sign(a_bits));
    if (passes_zero_test(a_bits)) return a;
    Real rest = with_sign_of<Real>(a, 0);
    const Real divisor = with_sign_of<Real>(p, 0);
    if (!leaves_remainder(rest, divisor)) return Real(0.0);
    if (sign(a_bits) != sign(p_bits) && !is_equal(rest, Real(0.0))) rest = divisor - rest;
    return with_sign_of<Real>(rest, sign(p_bits));
}

} // namespace
} // namespace quill

extern "C" {

long double f90_modulor10(const long double *a, const long double *p) {
    return quill::modulo<quill::Real10>(a, p);
}
f90_Real16 f90_modulor16(const f90_Real16 *a, const f90_Real16 *p) {
    return quill::returned(quill::modulo<quill::Quad>(a, p));
}

} // extern "C"

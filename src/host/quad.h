// Real kind 16: the storage record of a binary128 value and the operations that
// the families use on it. The arithmetic is the compiler's own, rounding to
// nearest; the record exists because the compiler's type demands an alignment
// that arrays of compiled code do not have.
#pragma once

#include <cstdint>
#include <cstring>

namespace quill {

// Four words, low first: the high one holds the sign in bit 31, the exponent in
// bits 30 to 16 and the top of the fraction.
struct [[gnu::packed, gnu::aligned(4), gnu::may_alias]] Quad {
    __float128 number;

    Quad() = default;
    Quad(__float128 value) : number(value) {}
    // Exact, as every value of these types is.
    explicit Quad(double value) : number(value) {}
    explicit Quad(long long value) : number(static_cast<__float128>(value)) {}
    explicit Quad(short value) : Quad(static_cast<double>(value)) {}
    explicit Quad(int value) : Quad(static_cast<double>(value)) {}
    explicit Quad(long value) : Quad(static_cast<double>(value)) {}

    operator __float128() const { return number; }
    // Rounded to nearest.
    explicit operator double() const { return static_cast<double>(number); }

    Quad &operator+=(const Quad &other) { return *this = number + other.number; }
    Quad &operator-=(const Quad &other) { return *this = number - other.number; }
    Quad &operator*=(const Quad &other) { return *this = number * other.number; }
    Quad &operator/=(const Quad &other) { return *this = number / other.number; }
};
static_assert(sizeof(Quad) == 16 && alignof(Quad) == 4);

// The value nearest to a decimal literal, which may end in the letter L. The
// program's locale plays no part.
Quad string_to_fp128(const char *literal);

// The bits of a value, in halves.
struct QuadBits {
    std::uint64_t low;
    std::uint64_t high;

    explicit QuadBits(const Quad &value) { std::memcpy(this, &value, sizeof value); }
    bool negative() const { return high >> 63 != 0; }
    std::uint64_t magnitude() const { return high & ~(std::uint64_t{1} << 63); }
    bool is_zero() const { return (magnitude() | low) == 0; }
    bool is_nan() const {
        constexpr std::uint64_t infinity = std::uint64_t{0x7FFF} << 48;
        return magnitude() + (low != 0 ? 1 : 0) > infinity;
    }
};

// Whether a < b and less, or a > b and greater, or a == b and equal; an
// unordered pair is none of the three. By bits, which is quicker than libgcc's
// comparison.
inline int _compare_fp(const Quad &a, const Quad &b, const int &less, const int &greater,
                       const int &equal) {
    const QuadBits x(a);
    const QuadBits y(b);
    if (x.is_nan() || y.is_nan()) return 0;
    if ((x.high == y.high && x.low == y.low) || (x.is_zero() && y.is_zero()))
        return equal != 0 ? 1 : 0;
    const bool further = x.high > y.high || (x.high == y.high && x.low > y.low); // from zero
    const bool is_less = x.negative() != y.negative() ? x.negative() : further == x.negative();
    return (is_less ? less : greater) != 0 ? 1 : 0;
}

// x times 2 to the power n, correctly rounded where the result is subnormal.
Quad ldexpq(Quad x, int n);

} // namespace quill

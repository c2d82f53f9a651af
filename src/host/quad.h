// Real kind 16: the storage record of a binary128 value and the operations that
// the families use on it. The arithmetic is the compiler's own, rounding to
// nearest; the record exists because the compiler's type demands an alignment
// that arrays of compiled code do not have.
#pragma once

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

// Whether a < b and less, or a > b and greater, or a == b and equal; an
// unordered pair is none of the three.
inline int _compare_fp(const Quad &a, const Quad &b, const int &less, const int &greater,
                       const int &equal) {
    return (less != 0 && a.number < b.number) || (greater != 0 && a.number > b.number) ||
                   (equal != 0 && a.number == b.number)
               ? 1
               : 0;
}

// x times 2 to the power n, correctly rounded where the result is subnormal.
Quad ldexpq(Quad x, int n);

} // namespace quill

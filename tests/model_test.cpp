// EXPONENT, FRACTION, NEAREST, RRSPACING, SCALE, SET_EXPONENT and SPACING, in this order, against
// the rules for their bits, the machine's Fortran compiler and, kind 4, arithmetic of doubles.
// Reals are carried as bits, since the x87 would make signalling NaNs quiet.
#include "support.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <gtest/gtest.h>
#include <xmmintrin.h>

void by_fortran(float *, float *, int *, float *) asm("fortran_model4_");
void by_fortran(double *, double *, int *, double *) asm("fortran_model8_");
void by_fortran(long double *, long double *, int *, long double *) asm("fortran_model10_");
void by_fortran(__float128 *, __float128 *, int *, __float128 *) asm("fortran_model16_");

namespace {

using namespace test;
using std::ldexp;
__float128 ldexp(__float128 x, int by) { return ldexpf128(x, by); }
using Bits = std::bitset<128>; // in storage words, the lowest first
Bits lowest(int count) { return ~Bits() >> (128 - count); }
template <class T> Bits bits_of(const T &stored) {
    Bits bits;
    write((std::byte *)(&bits), stored);
    return bits;
}
template <class R> R value(const Bits &bits) { return read<R>((const std::byte *)(&bits)); }
enum Function { Exponent, Fraction, Nearest, Rrspacing, Scale, SetExponent, Spacing };
using Results = std::array<Bits, 7>; // EXPONENT's as a real
template <class... T> Results listed(const T &...results) { return {bits_of(results)...}; }

// The rules. Kind 10 has an integer bit, which should be set where the exponent field is not 0;
// numbers without it compare as NaNs do.
template <class R> struct Rules {
    static constexpr int kind = used_bytes<R>, p = std::array{24, 53, 64, 113}[(kind - 1) / 4];
    static constexpr int bias = std::array{127, 1023, 16383, 16383}[(kind - 1) / 4];
    static constexpr int all_ones = 2 * bias + 1, field = p == 64 ? p : p - 1;
    Bits x, sign, fraction, y; // y: the fraction once normalised
    int E, e;                  // e: of the normalised number, as if the field had no lower end
    bool none, ordinary;       // none: passes the zero test

    explicit Rules(const Bits &bits) : x(bits), sign(x & Bits(1) << (8 * kind - 1)) {
        fraction = x & lowest(p - 1), y = x & lowest(field);
        e = E = int((x >> field & Bits(all_ones)).to_ulong());
        const bool nan = E == all_ones && fraction.any(), odd = p == 64 && x[63] == (E == 0);
        none = E == 0 ? y.none() : p != 113 && (nan || odd);
        ordinary = !none && !odd && E != all_ones;
        if (nan && p < 64) x.set(p - 2);
        if (E == 0 && !none)
            for (e = 1; !y[p - 1]; --e) y <<= 1;
        y.reset(p - 1);
    }
    static Bits made(const Bits &sign, std::int64_t exponent, const Bits &fraction) {
        const Bits explicit_bit = Bits(p == 64 && exponent != 0) << 63;
        if (exponent >= all_ones) return sign | Bits(all_ones) << field | explicit_bit;
        return sign | Bits(exponent) << field | fraction | explicit_bit;
    }
    Bits nearest(const Bits &s) const { // s: the sign alone
        using Wide = std::conditional_t<p == 113, R, long double>;
        const int at = none ? 1 : E - (p - 1) - (fraction.none() && sign != s);
        const Bits delta = at >= 1 ? made(s, at, {}) : s | Bits(1) << std::max(p - 2 + at, 0);
        return bits_of(static_cast<R>(Wide(value<R>(x)) + Wide(value<R>(delta))));
    }
    Bits scaled(int i) const {
        const std::int64_t t = std::int64_t{e} + i;
        if (E == all_ones || i == 0) return x;
        if (t >= 1 && (E != 0 || p == 24)) return made(sign, t, y);
        if (p != 24) return bits_of(ldexp(value<R>(x), i));
        if (E != 0) return sign | (y >> 1).set(22) >> std::size_t(-t);
        return i >= 0 ? sign | fraction << i : t <= -24 ? Bits() : sign | fraction >> -i;
    }
    Results results(const Bits &s, int i) const {
        const Bits spacing = made({}, std::max(E - (p - 1), 1), {}), near = nearest(s);
        if (none) return {Bits(), Bits(), near, Bits(), x, x, spacing};
        const Bits exponent = bits_of(R(e - (bias - 1))), rr = made({}, bias + p - 1, y);
        const Bits part = made(sign, bias - 1, y), set = Rules(part).scaled(i);
        return {exponent, part, near, rr, scaled(i), set, spacing};
    }
};

#define CALLS(K, P, R)                                                                             \
    Results calls(const P *x, const P *s, const int *i) {                                          \
        return listed(static_cast<R>(f90_exponent##K(x)), f90_fraction##K(x),                      \
                      f90_nearest##K(x, s), f90_rrspacing##K(x), f90_scale##K(x, i),               \
                      f90_setexp##K(x, i), f90_spacing##K(x));                                     \
    }
CALLS(4, float, float)
CALLS(8, double, double)
CALLS(10, long double, long double)
CALLS(16, f90_Real16, __float128)

unsigned control_bits() { // of the x87, and of MXCSR without the flags
    std::uint16_t word;
    asm volatile("fnstcw %0" : "=m"(word));
    return unsigned{word} << 16 | (_mm_getcsr() & 0xFFC0);
}
// x and s at addresses that are multiples of 4 only. `flush`: the bits of MXCSR by which SSE
// takes subnormal numbers as zeros, or 0.
template <class R> Results called(const Bits &x, const Bits &s, int i, unsigned flush) {
    using P = std::conditional_t<sizeof(R) == 16, f90_Real16, R>;
    const Bits noisy = x | ~lowest(8 * used_bytes<R>);
    alignas(16) std::array<int, 11> given = {}, before;
    std::memcpy(&given[1], &noisy, 16), std::memcpy(&given[5], &s, 16), given[9] = i;
    before = given;
    const unsigned csr = _mm_getcsr(), control = control_bits() | flush;
    _mm_setcsr(csr | flush);
    const Results all = calls((const P *)(&given[1]), (const P *)(&given[5]), &given[9]);
    EXPECT_TRUE(control_bits() == control && given == before);
    _mm_setcsr(csr);
    return all;
}

template <class R> struct Model : testing::Test {};
using Kinds = testing::Types<float, double, long double, __float128>;
TYPED_TEST_SUITE(Model, Kinds);

// All exponent fields, or","// A double's value",'''// All exponent fields, or many where they have
// 15 bits, then subnormal numbers of all lengths.
TYPED_TEST(Model, AgreesWithRulesAndFortran) {
    using R = TypeParam;
    constexpr int p = Rules<R>::p, bias = Rules<R>::bias, end = 2 * bias + 1;
    const int fields = std::min(end + 1, 2048), sizes = fields + p;
    const Bits sign = Bits(1) << (8 * used_bytes<R> - 1), top = Bits(1) << (p - 2);
    Random random(random_seed());
    const auto any = [&] { return bits_of(std::array{random(), random(), random(), random()}); };
    for (int n = random_rounds(20) * std::max(sizes, 1900); n--;) {
        const int at = n / 10 % sizes, zeros = at - fields, offset = pick(random, -2, 2);
        const int wide[] = {at, bias + at - 768, end - (at - 1024), pick(random, 0, end), 0};
        const int E = p < 64 ? at * (zeros < 0) : wide[at / 512];
        const Bits kinds[] = {{}, Bits(1), top, ~Bits(), any()},
                   part = kinds[n % 5] & lowest(p - 1);
        Bits x = Bits(E) << Rules<R>::field | (zeros < 0 ? part : (part | top) >> zeros);
        if (p == 64) x[63] = (E != 0) == (pick(random, 0, 7) != 0);
        if (n / 5 % 2 == 1) x |= sign;
        const Bits s = coin(random) ? any() : any() & sign;
        const Rules<R> rules(x);
        const int from = coin(random) ? rules.e : bias - 1, flush = coin(random) ? 0x8040 : 0;
        const int t[] = {1, end, 1 - p, 3 * end, -3 * end};
        const int far[] = {0, INT32_MIN + 2, INT32_MAX - 2, int(random()) / 2};
        int i = offset + (n % 3 ? t[pick(random, 0, 4)] - from : far[pick(random, 0, 3)]);
        const Results ours = called<R>(x, s, i, flush), right = rules.results(s & sign, i);
        R number = value<R>(x), direction = (s & sign).any() ? -1 : 1, theirs[7];
        if (rules.ordinary) by_fortran(&number, &direction, &i, theirs);
        for (int k = Exponent; k <= Spacing; ++k) {
            ASSERT_EQ(ours[k], right[k]) << k << x << ' ' << s << ' ' << i << ' ' << flush;
            const bool same = rules.ordinary && (p != 24 || Rules<R>(right[k]).E != 0);
            ASSERT_TRUE(!same || value<R>(right[k]) == theirs[k]) << k << x << ' ' << i;
        }
    }
}

TYPED_TEST(Model, KnowsTheEdges) {
    using R = TypeParam;
    constexpr int p = Rules<R>::p, bias = Rules<R>::bias;
    const R one = 1, least = ldexp(one, 2 - bias - p), tiny = ldexp(one, 1 - bias), zero = 0;
    const R gap = ldexp(one, -p), half = one / 2, part = 3 * one / 4,
            cut = R(p == 24 ? 1 : 2) * least;
    const R inf = R(HUGE_VAL), low = INT32_MIN, high = 0x7FFFFF80, of_lost = p == 24 ? zero : -zero;
    const R of_least = std::array{-148, -1073, -16444, -16493}[(used_bytes<R> - 1) / 4];
    const auto check = [](Function function, std::initializer_list<std::array<R, 3>> rows) {
        for (const auto &[x, s, result] : rows)
            EXPECT_EQ(called<R>(bits_of(x), bits_of(s), int(s), 0)[function], bits_of(result))
                << function << " of " << double(x) << ", " << double(s);
    };
    check(Exponent, {{least, 0, of_least}, {one, 0, one}, {half, 0, zero}, {-inf, 0, bias + 2}});
    check(Fraction, {{-zero, 0, zero}, {-3, 0, -part}, {least, 0, half}, {-inf, 0, -half}});
    check(Nearest,
          {{zero, -1, -tiny}, {1, -zero, 1 - gap}, {1, 0, 1 + 2 * gap}, {least, -1, zero}});
    check(Rrspacing, {{-1, 0, half / gap}, {-inf, 0, half / gap}, {least, 0, half / gap}});
    check(Scale, {{-zero, 5, -zero}, {-inf, low, -inf}, {tiny + 3 * least, -1, tiny / 2 + cut}});
    check(Scale, {{-least, -2, of_lost}, {-least, -1, -zero}, {-least, high, -inf}});
    check(SetExponent, {{-inf, 5, -16}, {-zero, high, -zero}, {-3, 0, -part}, {-3, low, -zero}});
    check(Spacing, {{zero, 0, tiny}, {-least, 0, tiny}, {-inf, 0, ldexp(one, bias + 2 - p)}});
}

// A double's value in kind 4, cut where it is below the normal range.
std::uint32_t cut(double x) {
    if (std::abs(x) >= 0x1p-126) return std::bit_cast<std::uint32_t>(static_cast<float>(x));
    return std::uint32_t{std::signbit(x)} << 31 | std::uint32_t(std::abs(x) * 0x1p149);
}
double power(int exponent) { return std::bit_cast<double>(std::uint64_t(1023 + exponent) << 52); }
bool is(float x, std::uint32_t bits) { return std::bit_cast<std::uint32_t>(x) == bits; }

// As doubles all numbers of kind 4 are normal, and as integers their neighbours are next to them.
bool is_right(const std::uint32_t bits) {
    const auto *const x = reinterpret_cast<const float *>(&bits);
    const std::uint32_t size = bits & 0x7FFFFFFF, sign = bits >> 31;
    const bool nan = size > 0x7F800000, none = nan || size == 0, same = none || size >> 23 == 255;
    const std::uint32_t self = nan ? bits | 0x00400000 : bits;
    const auto wide = std::bit_cast<std::uint64_t>(double(std::bit_cast<float>(bits)));
    const int e = std::min(int(wide >> 52 & 2047) - 1022, 129);
    const auto fraction = std::bit_cast<double>((wide & ~(2047ULL << 52)) | 1022ULL << 52);
    bool right = f90_exponent4(x) == (none ? 0 : e);
    right &= is(f90_fraction4(x), none ? 0 : cut(fraction));
    right &= is(f90_rrspacing4(x), none ? 0 : cut(std::abs(fraction) * 0x1p24));
    right &= is(f90_spacing4(x), std::uint32_t(std::max(e + 103, 1)) << 23);
    for (const std::uint32_t down : {0, 1}) {
        const float s = down ? -0.0F : 0.0F;
        const std::uint32_t next = down == sign ? bits + 1 : size == 1 ? 0 : bits - 1;
        right &= is(f90_nearest4(x, &s), size == 0 ? down << 31 | 1 << 23 : same ? self : next);
    }
    const int any = int(bits * 2654435761U >> 20), low = any / 16 % 32 - 156;
    for (const int i : {any % 512 - 256, any % 8 == 0 ? low : any % 64 - 32}) {
        const int by = any & 8 ? i - e : i; // low: about the least numbers
        const bool lost = size >> 23 == 0 && e + by <= -150 && by < 0;
        const double scaled = fraction * power(e) * power(by);
        right &= is(f90_scale4(x, &by), same || by == 0 ? self : lost ? 0 : cut(scaled));
        right &= is(f90_setexp4(x, &i), none ? self : cut(fraction * power(i)));
    }
    return right;
}
TEST(Model, EveryReal4) {
    const std::uint32_t step = step_through_all(1999);
    for (std::uint64_t bits = random_seed() % step; bits >> 32 == 0; bits += step)
        ASSERT_TRUE(is_right(std::uint32_t(bits))) << std::hex << bits;
}

} // namespace

// CEILING, FLOOR, MODULO, MVBITS, the kinds and NULL against exact comparison, the reduction that
// MODULO of kinds 10 and 16 is defined by, and the machine's Fortran compiler.
#include "support.h"

#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>

void by_fortran(__float128 *x) asm("fortran_reals_");
void by_fortran(std::int64_t *x, const int &, const int &, const int &) asm("fortran_integers_");

namespace {

using namespace test;
using std::ldexp, std::nextafter;
__float128 ldexp(__float128 x, int by) { return ldexpf128(x, by); }
__float128 nextafter(__float128 x, __float128 to) { return nextafterf128(x, to); }
template <class R> R beside(R x, int side) { return nextafter(x, x + side * greatest<R>); }
template <class R> bool minus(R x) { return __builtin_signbit(x) != 0; }
template <class R> R signed_as(R y, R x) { return minus(x) == minus(y) ? x : -x; }
template <class R> constexpr bool quad = sizeof(R) == 16;

// A value at an address that is a multiple of 4 only, noise on either side.
template <class T> struct alignas(16) Bits {
    std::uint32_t ahead = 0xA5A5A5A5, words[4] = {ahead, ahead, ahead, ahead};
    explicit Bits(const T &x) { write(bytes(), x); }
    std::byte *bytes() { return reinterpret_cast<std::byte *>(words); }
    auto at() { return reinterpret_cast<std::conditional_t<quad<T>, f90_Real16, T> *>(words); }
    T value() const { return read<T>(Bits(*this).bytes()); }
    Bits cut(unsigned low, unsigned high) { return words[0] &= low, words[1] &= high, *this; }
    bool operator==(const Bits &) const = default;
};

std::int64_t any_integer(Random &random) {
    return (std::int64_t{std::int32_t(random())} << 32 | random()) >> pick(random, 0, 63);
}

template <class R> Bits<R> any_real(Random &random, int exponent) {
    Bits<R> x(R{0});
    write_sort<R>(random, x.bytes(), "oooofcccs+-hlijn"[pick(random, 0, 15)], 0);
    if (exponent != 0) x = Bits<R>(ldexp(x.value(), exponent));
    if (sizeof(R) == 4 || coin(random)) return x;
    return x.cut(coin(random) ? ~0U : 0, coin(random) || sizeof(R) == 8 ? ~0U : 0xFF000000);
}

std::uint32_t control_bits() { // of the x87, and of MXCSR without the flags
    std::uint16_t word;
    asm volatile("fnstcw %0" : "=m"(word));
    return std::uint32_t{word} << 16 | (__builtin_ia32_stmxcsr() & 0xFFC0);
}

// What is calculated here is exact in all modes. Great numbers of kind 16 go by way of a double.
template <class R, auto... members> bool rounds(const Bits<R> &bits, double near) {
    using Exact = std::conditional_t<quad<R>, R, long double>;
    const Exact x = bits.value();
    bool floor = true;
    const auto right = [&]<class I, class P>(I (*member)(const P *)) {
        Bits<R> given = bits;
        const std::uint32_t control = control_bits();
        const I result = member(given.at());
        floor = !floor;
        if (control_bits() != control || given != bits) return false;
        if (!(x > least<I> && x <= greatest<I>)) return result == least<I>;
        if (quad<R> && sizeof(I) == 8 && std::abs(near) >= 0x1p53) {
            const std::int64_t t = near < 0x1p63 ? std::int64_t(near) : INT64_MAX;
            return result == (floor ? t - (t > x) : t + (t < x));
        }
        return floor ? result <= x && Exact(result) + 1 > x : result >= x && Exact(result) - 1 < x;
    };
    return (right(members) && ...);
}
const int modes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

template <class R, auto... members> void try_rounding() {
    const long double limits[] = {0,       32767,          32768,         INT32_MAX, 0x1p31L,
                                  0x1p53L, 0x1p63L - 1536, 0x1p63L - 512, INT64_MAX, 0x1p63L};
    Random random(random_seed());
    for (int i = random_rounds(20000); i--;) { // every mode for all that is about a limit
        const R limit = R(i / 3 % 2 ? limits[i / 6 % 10] : -limits[i / 6 % 10]);
        const R about = beside<R>(limit + R(i / 60 % 7 - 3) / 4, i % 3 - 1);
        const R whole = R(any_integer(random)) + R(pick(random, -3, 3)) / 4;
        for (const Bits<R> &bits : {Bits(about), Bits(beside(whole, pick(random, -1, 1))),
                                    any_real<R>(random, pick(random, 0, 1) * (i % 80 - 9))}) {
            const volatile double near =
                static_cast<double>(bits.value()); // before the mode changes
            std::fesetround(modes[i / 420 % 4]);
            const bool right = rounds<R, members...>(bits, near);
            std::fesetround(FE_TONEAREST);
            ASSERT_TRUE(right) << testing::PrintToString(bits) << " in mode " << i / 420 % 4;
        }
    }
}

// The reduction of kinds 10 and 16, of finite numbers that are no zeros.
template <class R> R reduced(R a, R p) {
    const unsigned high = quad<R> ? 0xFF000000 : ~0U, low = quad<R> ? 0 : 0xC0000000;
    const auto exponent = [](R x) { return Bits(x).words[quad<R> + 2] >> quad<R> * 16 & 0x7FFF; };
    const R T = quad<R> ? 0x1p112 : 0x1p63;
    const int s = quad<R> ? 112 : 64;
    R A = signed_as(T, a), P = signed_as(T, p);
    int c = exponent(P) == 0 ? s : 0;
    P = ldexp(P, c);
    if (exponent(A) >= exponent(P) + 16383) P = ldexp(P, 16383), c += 16383;
    for (;;) {
        const R H = Bits(P).cut(0, high).value();
        const bool split = Bits(P).words[0] != 0 && (!quad<R> || (Bits(P).words[1] & ~high) != 0);
        while (A > P) {
            const R q = A / P, rounded = (T + q) - T, whole = rounded > q ? rounded - 1 : rounded;
            const R t = Bits(whole).cut(low, quad<R> ? 0xFE000000 : ~0U).value();
            A = split ? (A - t * H) - t * (P - H) : A - t * P;
        }
        if (A == P) return 0;
        if (c == 0) return signed_as(p, minus(a) == minus(p) || A == 0 ? A : P - A);
        const int back = c >= 16383 ? 16383 : s;
        P = ldexp(P, -back), c -= back;
    }
}

template <class R> Bits<R> expected_modulo(const Bits<R> &a_bits, R a, R p) {
    Bits<R> same = a_bits; // kinds 4 and 8 come back by way of the x87
    if (sizeof(R) <= 8 && a != a) same.words[sizeof(R) / 8] |= sizeof(R) == 4 ? 1 << 22 : 1 << 19;
    if (p == 0 || (p == p && p - p != 0) || (p != p && !quad<R>)) return same;
    if (p != p || a - a != 0) return Bits<R>(signed_as(a, R(__builtin_nan(""))));
    if (a == 0) return same;
    if constexpr (sizeof(R) > 8) return Bits<R>(reduced(a, p));
    const long double r = std::fmod(static_cast<long double>(a), static_cast<long double>(p));
    return Bits<R>(r == 0 || minus(a) == minus(p) ? R(r) : R(r + p));
}

template <class R, auto modulo, auto ceiling, auto floor> void try_modulo() {
    const int bias = quad<R> ? 16383 : std::numeric_limits<R>::max_exponent - 1;
    Random random(random_seed());
    for (int i = random_rounds(25000); i--;) {
        const int low = pick(random, -bias - 40, coin(random) ? bias : -bias);
        const int few = i % 3 ? pick(random, -60, 60) : pick(random, 60, 250);
        const int high = low + (i % 256 == 3 ? pick(random, bias - 9, 2 * bias) : few);
        Bits<R> p = any_real<R>(random, i % 4 ? low : 0), a = any_real<R>(random, i % 4 ? high : 0);
        if (i % 4 == 1)
            a = Bits(beside(ldexp(p.value() * R(i % 11 - 5), few), pick(random, -1, 1)));
        if (i % 4 == 2) a = Bits(R(any_integer(random)) / 4), p = Bits(R(any_integer(random)));
        Bits<R> given_a = a, given_p = p, expected = expected_modulo(a, a.value(), p.value());
        const auto result = modulo(given_a.at(), given_p.at());
        ASSERT_EQ(std::memcmp(&result, expected.at(), used_bytes<R>), 0)
            << testing::PrintToString(a) << " by " << testing::PrintToString(p);
        ASSERT_TRUE(given_a == a && given_p == p);
        if (i % 4 != 2 || p.value() == 0) continue;
        __float128 numbers[] = {a.value(), p.value(), 0}; // small enough for an exact remainder
        by_fortran(numbers);
        ASSERT_TRUE(expected.value() == R(numbers[0]));
        if (std::abs(double(a.value())) > 0x1p52) continue;
        ASSERT_TRUE(ceiling(a.at()) == numbers[1] && floor(a.at()) == numbers[2]);
    }
}

#define MEMBERS(K)                                                                                 \
    f90_ceiling##K, f90_floor##K, f90_ceilingk##K, f90_floork##K, f90_ceilingh##K, f90_floorh##K
TEST(Conversions, EveryReal4) {
    const std::uint64_t step = step_through_all(2003);
    Bits<float> x(0);
    bool right = true;
    for (std::uint64_t bits = 0, n = 0; right && bits >> 32 == 0; bits += step, ++n) {
        if (n % 1024 == 0) std::fesetround(modes[n / 1024 % 4]);
        x.words[0] = std::uint32_t(bits);
        right = rounds<float, MEMBERS(4)>(x, 0);
    }
    std::fesetround(FE_TONEAREST);
    EXPECT_TRUE(right) << x.words[0];
}

template <class I, auto modulo, auto mvbits> void try_integers() {
    const int bits = 8 * sizeof(I);
    Random random(random_seed());
    const auto number = [&] { // or one about the ends
        const std::uint64_t any = any_integer(random), end = greatest<I>;
        return static_cast<I>(coin(random) ? any : end + pick(random, -3, 3));
    };
    for (int i = random_rounds(65536); i--;) {
        const I a = bits == 8 ? I(i >> 8) : number(), p = bits == 8 ? I(i) : number();
        const int length = pick(random, 0, bits);
        const int from = pick(random, 0, bits - length), to = pick(random, 0, bits - length);
        std::int64_t x[] = {a, p == 0 || p == -1 ? 1 : p, p};
        by_fortran(x, from, length, to);
        Bits<I> moved(p), at_a(a), at_p(p);
        ASSERT_EQ(modulo(at_a.at(), at_p.at()), p == 0 ? a : I(x[1])) << +a << " by " << +p;
        ASSERT_TRUE(at_a == Bits(a) && at_p == Bits(p));
        mvbits(a, from, length, moved.at(), to);
        ASSERT_TRUE(moved == Bits(I(x[2]))) << from << " " << length << " " << to;
        for (int b = -to; b < bits - to; ++b)
            ASSERT_EQ(moved.value() >> (to + b) & 1,
                      (b >= 0 && b < length ? a >> (from + b) : p >> (to + b)) & 1);
    }
    const int most = INT32_MAX, over = bits + 1;
    const int wrong[][11] = {{-1, 0, 1, over, most, 1, most, 0, 0, 0, 0},    // FROMPOS
                             {1, -1, bits, 0, 1, most, most, 0, bits, 0, 1}, // LEN
                             {-1, 0, 1, 0, 0, 0, 0, -1, 1, over, most}};     // TOPOS
    for (int i = 0; i < 11; ++i) {
        const int from = wrong[0][i], length = wrong[1][i], to = wrong[2][i];
        const bool of_to = from == 0 && length >= 0;
        char text[300];
        std::snprintf(text, sizeof text,
                      " Argument %s has the value %d and argument LEN has the value %d.\n"
                      " Both arguments should have nonnegative values and their sum should"
                      " be less than or equal to %d.\n",
                      of_to ? "TOPOS" : "FROMPOS", of_to ? to : from, length, bits);
        const auto call = [&] { mvbits(-1, from, length, Bits(I{0}).at(), to); };
        EXPECT_EQ(fatal_message(call), report("MVBITS", text));
    }
}

#define REAL(K, R)                                                                                 \
    try_rounding<R, MEMBERS(K)>(), try_modulo<R, f90_modulor##K, f90_ceilingk##K, f90_floork##K>()
TEST(Conversions, OfAllKinds) {
    REAL(4, float), REAL(8, double), REAL(10, long double), REAL(16, __float128);
    try_integers<std::int8_t, f90_moduloi1, f90_mvbits1>(); // all pairs
    try_integers<std::int16_t, f90_moduloi2, f90_mvbits2>();
    try_integers<std::int32_t, f90_moduloi4, f90_mvbits4>();
    try_integers<std::int64_t, f90_moduloi8, f90_mvbits8>();
}

TEST(Conversions, KindsAndNull) {
    for (int i = -12; i < 168; ++i)
        for (const int r : {INT32_MIN, -1, 0, 37, 38, 307, 308, 4932, 4933, INT32_MAX}) {
            const int p = i >= 164 ? INT32_MAX : i >= 160 ? INT32_MIN : i >> 2;
            const int by_p = p <= 6 ? 4 : p <= 15 ? 8 : p <= 33 ? 16 : -1;
            const int by_r = r <= 37 ? 4 : r <= 307 ? 8 : r <= 4932 ? 16 : -2;
            const int both = by_p < 0 || by_r < 0 ? -3 : std::max(by_p, by_r);
            const int of_integer = p <= 2 ? 1 : p <= 4 ? 2 : p <= 9 ? 4 : p <= 18 ? 8 : -1;
            Call call = Call().value(0, -77).value(1, p).value(2, r);
            call.list.Presence = std::uint16_t((i & 3) << 1 | (r % 2 ? 0xFFF9 : 0));
            call(f90_selrealkind);
            ASSERT_EQ(int(call.list.Result.Word0), (std::array{by_r, by_p, by_r, both}[i & 3]));
            call(f90_selintkind);
            ASSERT_EQ(int(call.list.Result.Word0), of_integer) << p;
        }
    std::array<int, 40> pointer, expected; // longer than a descriptor
    pointer.fill(-1), expected.fill(-1);
    expected[0] = expected[1] = 0;
    Call().slot(0, std::uintptr_t(pointer.data()))(f90_Null);
    EXPECT_EQ(pointer, expected);
}

} // namespace

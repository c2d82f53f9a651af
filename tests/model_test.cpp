// The floating-point model of all kinds, on numbers made from bits: against arithmetic in a wider
// type, against the machine's Fortran compiler on ordinary numbers, and against literal bits.
#include "support.h"

#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <xmmintrin.h>

using namespace test;

#define KIND(T, ELEMENT, K)                                                                        \
    extern "C" void fortran_model##K##_(T *numbers, int *i);                                       \
    template <> struct Calls<T> {                                                                  \
        using Element = ELEMENT;                                                                   \
        static constexpr auto exponent = f90_exponent##K;                                          \
        static constexpr auto fraction = f90_fraction##K, rrspacing = f90_rrspacing##K,            \
                              spacing = f90_spacing##K;                                            \
        static constexpr auto nearest = f90_nearest##K;                                            \
        static constexpr auto scale = f90_scale##K, setexp = f90_setexp##K;                        \
        static constexpr auto fortran = fortran_model##K##_;                                       \
    }
template <class T> struct Calls;
KIND(float, float, 4);
KIND(double, double, 8);
KIND(long double, long double, 10);
KIND(__float128, f90_Real16, 16);

namespace {

// ---- Formats ----------------------------------------------------------------

template <class T> constexpr int digits = std::numeric_limits<T>::digits;
template <> constexpr int digits<__float128> = 113;
template <class T> constexpr int bias = sizeof(T) == 4 ? 127 : sizeof(T) == 8 ? 1023 : 16383;
template <class T> constexpr int all_ones = 2 * bias<T> + 1;

// The fraction is the upper bits of a number of 128.
template <class T> T made(bool negative, unsigned field, std::uint64_t high, std::uint64_t low) {
    constexpr int stored = sizeof(T) == 4 ? 23 : sizeof(T) == 8 ? 52 : sizeof(T) == 12 ? 63 : 48;
    std::uint64_t words[2] = {high << 48 | low >> 16, high >> 16};
    if (sizeof(T) < 16) words[0] = high >> (64 - stored);
    if (sizeof(T) == 12) words[0] |= std::uint64_t{field != 0} << 63;
    const std::uint64_t upper = std::uint64_t{negative} << (sizeof(T) == 4   ? 31
                                                            : sizeof(T) == 8 ? 63
                                                                             : 15);
    const std::uint64_t ends = upper | std::uint64_t{field} << (sizeof(T) == 12 ? 0 : stored);
    if (sizeof(T) == 16) words[1] |= std::uint64_t{negative} << 63 | std::uint64_t{field} << 48;
    if (sizeof(T) == 12) words[1] = ends;
    if (sizeof(T) <= 8) words[0] |= ends;
    return read<T>(reinterpret_cast<std::byte *>(words));
}

// ---- The model, in arithmetic of a wider type ---------------------------------

template <class T> using Wide = std::conditional_t<sizeof(T) == 4, double, __float128>;
double split(double x, int *e) { return std::frexp(x, e); }
__float128 split(__float128 x, int *e) { return frexpf128(x, e); }
double times_power(double x, int n) { return std::ldexp(x, n); }
__float128 times_power(__float128 x, int n) { return ldexpf128(x, n); }
long double rounded(long double x, int n) { return std::ldexp(x, n); }
double rounded(double x, int n) { return std::ldexp(x, n); }
__float128 rounded(__float128 x, int n) { return ldexpf128(x, n); }

// x times 2 to the power n. Kind 4 cuts off what no subnormal number holds, and a subnormal
// number that leaves far below them loses its sign.
float rounded(float x, int n) {
    const double exact = std::ldexp(double{x}, n);
    if (std::abs(exact) >= 0x1p-126) return static_cast<float>(exact);
    return static_cast<float>(
        std::copysign(std::ldexp(std::trunc(std::ldexp(std::abs(exact), 149)), -149), exact));
}

template <class T> struct Model {
    using W = Wide<T>;
    T x;
    W wide = static_cast<W>(x);
    bool nan = !(x == x), zero = x == 0, infinite = !nan && !zero && wide - wide != 0;
    bool by_bits = nan && sizeof(T) == 16; // the only NaNs that do not pass for zero
    int e = 0;
    W f = nan || zero ? W{} : infinite ? W(x > 0 ? 0.5 : -0.5) : split(wide, &e);
    T tiny = static_cast<T>(times_power(W{1}, 1 - bias<T>));

    explicit Model(T number) : x(number) {}

    int exponent() const { return infinite || by_bits ? bias<T> + 2 : e; }
    T fraction() const { return static_cast<T>(f); }
    T rrspacing() const { return static_cast<T>(times_power(f < 0 ? -f : f, digits<T>)); }
    T spacing() const {
        if (nan || infinite) return static_cast<T>(times_power(W{1}, bias<T> + 2 - digits<T>));
        const T gap =
            zero ? T{0} : static_cast<T>(times_power(W{1}, std::max(e - digits<T>, -bias<T>)));
        return gap < tiny ? tiny : gap;
    }
    T nearest(bool down) const {
        if (nan || infinite) return x + x;
        const bool half = !zero && (x < 0) != down && (f == W(0.5) || f == W(-0.5));
        const int least = 2 - bias<T> - digits<T>;
        const W gap =
            zero ? static_cast<W>(tiny) : times_power(W{1}, std::max(e - digits<T> - half, least));
        return static_cast<T>(down ? wide - gap : wide + gap);
    }
    T scale(int i) const {
        if (nan || infinite || zero || i == 0) return x;
        const int n = std::clamp(i, -200000, 200000);
        if (sizeof(T) == 4 && e <= -bias<T> + 1 && n + e + bias<T> - 1 <= -24 && n < 0) return 0;
        return rounded(x, n);
    }
    T set_exponent(int i) const {
        if (nan || zero) return x;
        const auto beyond = static_cast<T>(x > 0 ? HUGE_VAL : -HUGE_VAL);
        return i > bias<T> + 1 ? beyond : rounded(fraction(), std::max(i, -200000));
    }
};

// ---- Calls at addresses that are aligned to 4 bytes ------------------------------

template <class T> struct Operand {
    alignas(16) std::byte storage[20];
    using Element = typename Calls<T>::Element;

    explicit Operand(T value) { write(storage + 4, value); }
    const Element *at() const { return reinterpret_cast<const Element *>(storage + 4); }
};

// Equal bits; NaNs of kinds 4 and 8, which the x87 makes quiet, by their sign alone.
template <class T, class Result> bool is(const Result &given, T right) {
    T result{};
    std::memcpy(static_cast<void *>(&result), &given, used_bytes<T>);
    if (sizeof(T) <= 8 && right != right)
        return result != result && std::signbit(double(result)) == std::signbit(double(right));
    return std::memcmp(&result, &right, used_bytes<T>) == 0;
}

template <class T> std::string digits_of(T x) {
    std::string text;
    for (int i = used_bytes<T>; i-- > 0;) {
        char digit[3];
        std::snprintf(digit, sizeof digit, "%02X", reinterpret_cast<const unsigned char *>(&x)[i]);
        text += digit;
    }
    return text;
}

// Which function of x is wrong; empty when none is.
template <class T> std::string wrong(T x, std::initializer_list<int> exponents) {
    using C = Calls<T>;
    const Operand<T> operand(x), up(T(0)), down(static_cast<T>(-T(0)));
    const auto *at = operand.at();
    const Model<T> model(x);
    if (C::exponent(at) != model.exponent()) return "exponent";
    if (!is(C::spacing(at), model.spacing())) return "spacing";
    if (!is(C::nearest(at, up.at()), model.nearest(false))) return "nearest, up";
    if (!is(C::nearest(at, down.at()), model.nearest(true))) return "nearest, down";
    for (const int i : exponents)
        if (!is(C::scale(at, &i), model.scale(i))) return "scale by " + std::to_string(i);
    if (model.by_bits) return "";
    if (!is(C::fraction(at), model.fraction())) return "fraction";
    if (!is(C::rrspacing(at), model.rrspacing())) return "rrspacing";
    for (const int i : exponents)
        if (!is(C::setexp(at, &i), model.set_exponent(i)))
            return "set_exponent to " + std::to_string(i);
    return "";
}

template <class T> std::string wrong_beside_fortran(T x, T s, int i) {
    using C = Calls<T>;
    const Operand<T> operand(x), side(s);
    alignas(16) T r[9] = {x, s};
    C::fortran(r, &i);
    if (static_cast<T>(C::exponent(operand.at())) != r[2]) return "exponent";
    if (!is(C::fraction(operand.at()), r[3])) return "fraction";
    if (!is(C::nearest(operand.at(), side.at()), r[4])) return "nearest";
    if (!is(C::rrspacing(operand.at()), r[5])) return "rrspacing";
    if (!is(C::scale(operand.at(), &i), r[6])) return "scale";
    if (!is(C::setexp(operand.at(), &i), r[7])) return "set_exponent";
    return is(C::spacing(operand.at()), r[8]) ? "" : "spacing";
}

// A fraction of one sort, and an exponent about a limit of x's or far off.
std::uint64_t any_fraction(Random &random, int sort) {
    const std::uint64_t any = std::uint64_t{random()} << 32 | random();
    const std::uint64_t sorts[] = {0, any, ~std::uint64_t{0},
                                   std::uint64_t{1} << pick(random, 0, 63),
                                   any >> pick(random, 0, 63)};
    return sorts[sort];
}

template <class T> int any_exponent(Random &random, int field) {
    const int about[] = {
        0,       -field,   all_ones<T> - field,  -field - digits<T>,
        bias<T>, -bias<T>, -bias<T> - digits<T>, pick(random, -3 * bias<T>, 3 * bias<T>)};
    const int far[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 16384, 1 << 21, -(1 << 21)};
    return pick(random, 0, 5) == 0 ? far[pick(random, 0, 5)]
                                   : about[pick(random, 0, 7)] + pick(random, -3, 3);
}

template <class T> void try_field(Random &random, unsigned field) {
    for (int sort = 0; sort < 10; ++sort) {
        const std::uint64_t high = any_fraction(random, sort % 5),
                            low = any_fraction(random, pick(random, 0, 4));
        const T x = made<T>(coin(random), field, high,
                            sort == 0                       ? 0
                            : sort % 5 == 3 && coin(random) ? 0
                                                            : low);
        const auto i = [&] { return any_exponent<T>(random, int(field)); };
        ASSERT_EQ(wrong(x, {0, i(), i(), i(), i()}), "") << digits_of(x);
        if (field < unsigned(digits<T>) + 9 || field > unsigned(all_ones<T>) - 9) continue;
        const int little = pick(random, -8, 8);
        ASSERT_EQ(wrong_beside_fortran(x, T(coin(random) ? 3 : -3), little), "") << digits_of(x);
    }
}

template <class T> void try_all_fields(Random &random, int rounds) {
    const bool few = bias<T> < 2000;
    for (int i = 0; i < (few ? all_ones<T> + 1 : rounds); ++i) {
        const int ends[] = {pick(random, 0, 130), all_ones<T> - pick(random, 0, 130),
                            pick(random, 0, all_ones<T>)};
        try_field<T>(random, few ? i : ends[i % 3]);
        if (i < 20) try_field<T>(random, i % 4 == 0 ? 0 : all_ones<T> - i % 4 + 1);
        if (::testing::Test::HasFatalFailure()) return;
    }
}

TEST(Model, OfEveryKind) {
    Random random(random_seed());
    try_all_fields<float>(random, 0);
    for (int i = 0; i < random_rounds(1); ++i) try_all_fields<double>(random, 0);
    try_all_fields<long double>(random, random_rounds(1500));
    try_all_fields<__float128>(random, random_rounds(700));
}

TEST(Model, EveryReal4) {
    const std::uint32_t step = step_through_all(20011);
    for (std::uint64_t bits = 0; bits < std::uint64_t{1} << 32; bits += step) {
        const int near = int(bits * 0x9E3779B9 >> 20 & 511) - 300;
        const auto x = std::bit_cast<float>(std::uint32_t(bits));
        const std::string function = wrong(x, {near, 1, -24});
        ASSERT_EQ(function, "") << digits_of(x) << ' ' << near;
    }
}

// ---- Literal bits ---------------------------------------------------------------

float real4(std::uint32_t bits) { return std::bit_cast<float>(bits); }
double real8(std::uint64_t bits) { return std::bit_cast<double>(bits); }

TEST(Model, OfNumbersThatAreNone) {
    const auto quad_nan = made<__float128>(true, 32767, 0x8000000000000001, 1 << 16);
    const Operand<__float128> nan(quad_nan);
    const int five = 5;
    EXPECT_TRUE(
        is(f90_fraction16(nan.at()), made<__float128>(true, 16382, 0x8000000000000001, 1 << 16)));
    EXPECT_TRUE(
        is(f90_rrspacing16(nan.at()), made<__float128>(false, 16495, 0x8000000000000001, 1 << 16)));
    EXPECT_TRUE(is(f90_setexp16(nan.at(), &five),
                   made<__float128>(true, 16387, 0x8000000000000001, 1 << 16)));

    // Of kind 10: an integer bit that is missing, and one that a subnormal number should not have.
    std::uint64_t words[2] = {0x7000000000000000, 0xC005};
    const Operand<long double> unnormal(read<long double>(reinterpret_cast<std::byte *>(words)));
    EXPECT_EQ(f90_exponent10(unnormal.at()), 0);
    EXPECT_TRUE(is(f90_fraction10(unnormal.at()), 0.0L) &&
                is(f90_rrspacing10(unnormal.at()), 0.0L));
    const long double unchanged[] = {f90_scale10(unnormal.at(), &five),
                                     f90_setexp10(unnormal.at(), &five)};
    for (const auto &same : unchanged) EXPECT_EQ(std::memcmp(&same, words, 10), 0);
    words[0] = 0xC000000000000000, words[1] = 0x8000;
    const Operand<long double> pseudo(read<long double>(reinterpret_cast<std::byte *>(words)));
    EXPECT_EQ(f90_exponent10(pseudo.at()), -16381);
    EXPECT_TRUE(is(f90_fraction10(pseudo.at()), -0.75L) &&
                is(f90_setexp10(pseudo.at(), &five), -24.0L));
    EXPECT_TRUE(is(f90_rrspacing10(pseudo.at()), 0x1.8p63L));
}

TEST(Model, OfSmallestNumbers) {
    const float least4 = real4(1), zero4 = real4(0x80000000), three4 = -3;
    const double least8 = real8(1), one8 = 1, below8 = -1;
    const int none = 0, five = 5;
    EXPECT_EQ(f90_exponent4(&least4), -148);
    EXPECT_EQ(f90_exponent8(&least8), -1073);
    EXPECT_EQ(f90_exponent10(Operand(made<long double>(false, 0, 2, 0)).at()), -16444);
    EXPECT_EQ(f90_exponent16(Operand(made<__float128>(false, 0, 0, 1 << 16)).at()), -16493);
    EXPECT_TRUE(is(f90_fraction4(&zero4), 0.0F) && is(f90_fraction4(&three4), -0.75F));
    EXPECT_TRUE(is(f90_fraction8(&least8), 0.5) && is(f90_setexp4(&three4, &none), -0.75F));
    EXPECT_TRUE(is(f90_spacing4(&zero4), real4(0x00800000)));
    EXPECT_TRUE(is(f90_spacing8(&least8), real8(0x0010000000000000)));
    EXPECT_TRUE(is(f90_nearest4(&zero4, &three4), real4(0x80800000)));
    EXPECT_TRUE(is(f90_nearest8(&one8, &below8), real8(0x3FEFFFFFFFFFFFFF)));
    EXPECT_TRUE(is(f90_nearest8(&one8, &one8), real8(0x3FF0000000000001)));
    EXPECT_TRUE(is(f90_nearest8(&least8, &below8), 0.0) && is(f90_scale4(&zero4, &five), zero4));
}

// ---- What the program has told its processor ---------------------------------------

template <class T> struct Subnormal {
    T x;
    int exponent;
    T fraction, nearest, scaled, set;
};
constexpr int little = -1;
template <class T> constexpr int beyond = -bias<T> - 4; // an exponent of subnormal numbers

// Neither of these is part of its caller, so that the model computes before modes are set.
template <class T> [[gnu::noinline]] std::vector<Subnormal<T>> subnormals() {
    std::vector<Subnormal<T>> cases;
    for (const int high : {1, 0x80, 0xFF}) {
        const Model<T> model(made<T>(true, 0, std::uint64_t(high) << 55, 0));
        cases.push_back({model.x, model.e, model.fraction(), model.nearest(true),
                         model.scale(little), model.set_exponent(beyond<T>)});
    }
    return cases;
}
template <class T> [[gnu::noinline]] bool are_right(const std::vector<Subnormal<T>> &cases) {
    using C = Calls<T>;
    const int set = beyond<T>;
    bool right = true;
    for (const Subnormal<T> &c : cases)
        right = right && C::exponent(&c.x) == c.exponent && is(C::fraction(&c.x), c.fraction) &&
                is(C::nearest(&c.x, &c.x), c.nearest) && is(C::scale(&c.x, &little), c.scaled) &&
                is(C::setexp(&c.x, &set), c.set);
    return right;
}

TEST(Model, KnowsSubnormalNumbersInEveryMode) {
    const auto of_kind4 = subnormals<float>();
    const auto of_kind8 = subnormals<double>();
    const unsigned usual = _mm_getcsr(), zeros = usual | 0x8040; // subnormal numbers are zeros
    std::fenv_t before, after;
    _mm_setcsr(zeros);
    std::fegetenv(&before);
    const bool right4 = are_right(of_kind4), right8 = are_right(of_kind8);
    std::fegetenv(&after);
    const unsigned left = _mm_getcsr();
    _mm_setcsr(usual);
    EXPECT_TRUE(right4);
    EXPECT_TRUE(right8);
    EXPECT_EQ(left & 0xFFC0, zeros & 0xFFC0);
    EXPECT_EQ(before.__control_word, after.__control_word);
}

} // namespace

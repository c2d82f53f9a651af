// DOT_PRODUCT of every type against walks written out here: one accumulator, first
// pair first, kinds 4 and 8 in the extended format. Storage ends with what they read.
#include "guarded.h"
#include "support.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace test;

// A type of the language: elements of one or two T; sums in two V, of logicals in bool.
template <class T, class V, int Parts, f90_Intrinsic *function> struct Type {
    static constexpr f90_Intrinsic *entry = function;
    static constexpr bool logical = std::is_same_v<V, bool>;
    static constexpr int part = sizeof(T), parts = Parts, size = parts * part;
    using Element = std::array<T, parts>;
    using Sum = std::array<V, 2>;

    // Of 64 logicals `share` are true, by one bit anywhere; so far do exponents range.
    static T random_part(Random &random, int share) {
        const std::uint64_t bits = std::uint64_t{random()} << 32 | random();
        if constexpr (logical)
            return T(std::uint64_t{bits >> 58 < unsigned(share)} << bits % (8 * part));
        if constexpr (std::is_integral_v<V>) return T(bits);
        if (share == 64 && pick(random, 0, 499) == 0) return coin(random) ? NAN : INFINITY;
        if (share == 64) share = part == 4 ? 127 : part == 8 ? 1023 : 8000;
        const V fraction = bits * V(0x1p-64L) + random() * V(0x1p-96L) + random() * V(0x1p-128L);
        const V power = std::ldexp(1.0L, pick(random, -share - share / 6, share));
        return T((coin(random) ? 1 + fraction : -1 - fraction) * power);
    }
    static void step(Sum &sum, const Element &a, const Element &b) {
        const V ar = a[0], br = b[0], ai = a[parts - 1], bi = b[parts - 1];
        sum[0] = sum[0] + br * ar;
        if constexpr (parts == 2) sum = {sum[0] + bi * ai, (sum[1] + bi * ar) - br * ai};
    }
};

using I1 = Type<std::uint8_t, std::uint64_t, 1, f90_dotpri1>;
using I2 = Type<std::uint16_t, std::uint64_t, 1, f90_dotpri2>;
using I4 = Type<std::uint32_t, std::uint64_t, 1, f90_dotpri4>;
using I8 = Type<std::uint64_t, std::uint64_t, 1, f90_dotpri8>;
using L1 = Type<std::uint8_t, bool, 1, f90_dotprl1>;
using L2 = Type<std::uint16_t, bool, 1, f90_dotprl2>;
using L4 = Type<std::uint32_t, bool, 1, f90_dotprl4>;
using L8 = Type<std::uint64_t, bool, 1, f90_dotprl8>;
using R4 = Type<float, long double, 1, f90_dotprr4>;
using R8 = Type<double, long double, 1, f90_dotprr8>;
using R10 = Type<long double, long double, 1, f90_dotprr10>;
using R16 = Type<__float128, __float128, 1, f90_dotprr16>;
using C8 = Type<float, long double, 2, f90_dotprc8>;
using C16 = Type<double, long double, 2, f90_dotprc16>;
using C20 = Type<long double, long double, 2, f90_dotprc20>;
using C32 = Type<__float128, __float128, 2, f90_dotprc32>;
template <class> class DotProduct : public testing::Test {};
using Types = testing::Types<I1, I2, I4, I8, L1, L2, L4, L8, R4, R8, R10, R16, C8, C16, C20, C32>;
TYPED_TEST_SUITE(DotProduct, Types);

// A vector of any layout, of which elements first to last can be read: on one side of
// them, or close by, storage ends. RANK, NONCONTIG and the bounds play no part.
template <class T>
f90_ArrDesc place(Random &random, const Guarded &pages, const std::vector<typename T::Element> &all,
                  int first, int last) {
    const int spaced = T::size * pick(random, 2, 3) + (T::size >= 8 && coin(random) ? 4 : 0);
    const int step = (coin(random) ? T::size : spaced) * (pick(random, 0, 2) == 0 ? -1 : 1);
    const int reach = (last - first) * step;
    const int slack = coin(random) ? 0 : pick(random, 0, 15) * (T::size < 4 ? T::size : 4);
    std::byte *base = coin(random) ? pages.begin() + slack - std::min(reach, 0)
                                   : pages.end() - slack - T::size - std::max(reach, 0);
    for (int i = first; i <= last; ++i) write(base + (i - first) * step, all[i]);
    f90_ArrDesc d = scalar(base - first * step, T::size);
    d.RANK = pick(random, 0, 7);
    d.NONCONTIG = coin(random);
    d.EXTENT = all.size();
    d.SCALEFACTOR = coin(random) && step % T::size == 0 ? T::size : T::size < 8 ? 1 : 4;
    d.Dim[0].Stride = step / d.SCALEFACTOR;
    return d;
}

// Whether a call gives the expected bits, a NaN for a NaN, and writes nothing else.
template <class T>
bool folds_to(f90_ArrDesc a, f90_ArrDesc b, const typename T::Sum &expected, unsigned flags = 0) {
    struct {
        Call call;
        std::byte wide[64];
    } frame, wanted;
    const auto result = [](auto &of) {
        return T::size > 8 ? of.wide + 12 : reinterpret_cast<std::byte *>(&of.call.list.Result);
    };
    std::memset(frame.wide, 0xA5, sizeof frame.wide);
    frame.call.array(1, a).array(2, b).slot(0, std::uintptr_t(frame.wide + 12)).list.Flags = flags;
    wanted = frame;
    frame.call(T::entry);
    typename T::Element got, right;
    std::memcpy(&got, result(frame), sizeof got);
    for (int p = 0; p < T::parts; ++p) {
        right[p] = expected[p];
        if (got[p] != got[p] && right[p] != right[p]) right[p] = got[p];
        std::memcpy(result(wanted) + p * T::part, &right[p], T::part == 12 ? 10 : T::part);
    }
    return std::memcmp(&frame, &wanted, sizeof frame) == 0;
}

// VECTOR_A may be zero from `cut` on; every other run of pairs may take back the run
// before, so that what is left tells how sums were rounded.
template <class T> bool try_random_call(Random &random, const Guarded &one, const Guarded &other) {
    const int share_a = 64 >> pick(random, 0, 7), share_b = 64 >> pick(random, 0, 7);
    const int n = pick(random, 0, 15) == 0 ? pick(random, 1000, 3000) : pick(random, 0, 300);
    const int cut = coin(random) ? n : pick(random, 0, n);
    const int run = coin(random) ? n + 1 : pick(random, 1, n / 2 + 1);
    std::vector<typename T::Element> a(n), b(n);
    for (int i = 0; i < n; ++i) {
        const bool back = i / run % 2 == 1;
        for (int p = 0; p < T::parts; ++p) {
            a[i][p] = back ? a[i - run][p] : T::random_part(random, i < cut ? share_a : 0);
            b[i][p] = back ? -b[i - run][p] : T::random_part(random, share_b);
        }
    }
    typename T::Sum sum = {};
    int read = 0, first = 0, last = -1; // VECTOR_A is read up to `read`, VECTOR_B from `first`
    for (; read < n && !(T::logical && sum[0] != 0); ++read) {
        if (T::logical && a[read][0] == 0) continue;
        if (last < 0) first = read;
        T::step(sum, a[read], b[last = read]);
    }
    if (coin(random)) b.resize(n + pick(random, 0, 9));
    return folds_to<T>(place<T>(random, one, a, 0, read - 1),
                       place<T>(random, other, b, first, last), sum,
                       random() << 1 | (n == int(b.size())));
}

TYPED_TEST(DotProduct, AgreesWithNaiveWalks) {
    Random random(random_seed());
    const Guarded one(3100 * (3 * TypeParam::size + 4)), other(one.size);
    for (int i = 0; i < random_rounds(TypeParam::part == 16 ? 200 : 2000); ++i)
        ASSERT_TRUE(try_random_call<TypeParam>(random, one, other)) << "round " << i;
}

TYPED_TEST(DotProduct, ComparesExtents) {
    EXPECT_TRUE(folds_to<TypeParam>(shaped({-1}, 4), shaped({-1}, 4), {}, 1));
    const auto misuse = [] { folds_to<TypeParam>(shaped({2, 3}, 4), shaped({7}, 4), {}, 1); };
    EXPECT_EQ(fatal_message(misuse),
              report("DOT_PRODUCT",
                     " Array arguments VECTOR_A and VECTOR_B should have the same shape.\n"
                     " The shape of argument VECTOR_A is: (2, 3).\n"
                     " The shape of argument VECTOR_B is: (7).\n"));
}

template <class T, class Elements = std::vector<typename T::Element>>
bool dot(const Elements &a, const Elements &b, const typename T::Sum &expected) {
    Random random(1);
    const Guarded one(1), other(1);
    return folds_to<T>(place<T>(random, one, a, 0, int(a.size()) - 1),
                       place<T>(random, other, b, 0, int(b.size()) - 1), expected);
}

TEST(DotProductValues, Literal) {
    EXPECT_TRUE(dot<I1>({{100}}, {{3}}, {44}));
    EXPECT_TRUE(dot<L4>({{2}}, {{2}}, {1}));
    EXPECT_TRUE(dot<L8>({{1ULL << 32}}, {{1ULL << 32}}, {1}));
    EXPECT_TRUE(dot<C8>({{0, 1}, {0, 1}}, {{0, 1}, {1, 0}}, {1, -1}));
    // Float would overflow; double, and a rounding to it, would lose the last bits.
    EXPECT_TRUE(dot<R4>({{1e30F}, {1e30F}, {1}}, {{1e30F}, {-1e30F}, {1}}, {1}));
    EXPECT_TRUE(dot<R4>({{1}, {0x1p-24F}, {0x1p-60F}}, {{1}, {1}, {1}}, {1 + 0x1p-23L}));
    EXPECT_TRUE(dot<R8>({{1 + 0x1p-30}, {1}}, {{1 + 0x1p-30}, {-1 - 0x1p-29}}, {0x1p-60L}));
}

} // namespace

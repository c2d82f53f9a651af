// SUM and PRODUCT of every type against folds written out here: one accumulator,
// elements in array element order, kind 4 in double.
#include "support.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

struct Sum {};
struct Product {};

// A type of the language: Value in arithmetic and its place in storage, where the
// first `used` bytes of each of its `parts` hold it.
template <class T, class Accumulator, f90_Intrinsic *sum, f90_Intrinsic *product> struct Plain {
    using Value = Accumulator;
    static constexpr int storage = sizeof(T), parts = 1, part = storage, used = used_bytes<T>;
    static f90_Intrinsic *entry(Sum) { return sum; }
    static f90_Intrinsic *entry(Product) { return product; }

    static Value get(const std::byte *at) { return static_cast<Value>(read<T>(at)); }
    static void put(std::byte *at, Value value) { write(at, static_cast<T>(value)); }
    static Value random(Random &random) {
        if constexpr (!is_real<T>) return static_cast<Value>(random());
        return static_cast<Value>(static_cast<T>(pick(random, 500, 1500)) /
                                  static_cast<T>(pick(random, 0, 1) == 0 ? 1000 : -1000));
    }
    static Value start(Sum) { return 0; }
    static Value start(Product) { return 1; }
    static Value step(Sum, Value a, Value x) { return static_cast<Value>(a + x); }
    static Value step(Product, Value a, Value x) { return static_cast<Value>(a * x); }
};

template <class Part, f90_Intrinsic *sum, f90_Intrinsic *product> struct Complex {
    struct Value {
        typename Part::Value re, im;
    };
    static constexpr int storage = 2 * Part::storage, parts = 2, part = Part::part,
                         used = Part::used;
    static f90_Intrinsic *entry(Sum) { return sum; }
    static f90_Intrinsic *entry(Product) { return product; }

    static Value get(const std::byte *at) { return {Part::get(at), Part::get(at + part)}; }
    static void put(std::byte *at, Value z) {
        Part::put(at, z.re);
        Part::put(at + part, z.im);
    }
    static Value random(Random &random) { return {Part::random(random), Part::random(random)}; }
    static Value start(Sum) { return {0, 0}; }
    static Value start(Product) { return {1, 0}; }
    static Value step(Sum, Value a, Value z) { return {a.re + z.re, a.im + z.im}; }
    static Value step(Product, Value a, Value z) {
        return {a.re * z.re - a.im * z.im, a.re * z.im + a.im * z.re};
    }
};

using I1 = Plain<std::uint8_t, std::uint32_t, f90_sumi1, f90_prodi1>;
using I2 = Plain<std::uint16_t, std::uint32_t, f90_sumi2, f90_prodi2>;
using I4 = Plain<std::uint32_t, std::uint32_t, f90_sumi4, f90_prodi4>;
using I8 = Plain<std::uint64_t, std::uint64_t, f90_sumi8, f90_prodi8>;
using R4 = Plain<float, double, f90_sumr4, f90_prodr4>;
using R8 = Plain<double, double, f90_sumr8, f90_prodr8>;
using R10 = Plain<long double, long double, f90_sumr10, f90_prodr10>;
using R16 = Plain<__float128, __float128, f90_sumr16, f90_prodr16>;
using C8 = Complex<R4, f90_sumc8, f90_prodc8>;
using C16 = Complex<R8, f90_sumc16, f90_prodc16>;
using C20 = Complex<R10, f90_sumc20, f90_prodc20>;
using C32 = Complex<R16, f90_sumc32, f90_prodc32>;

template <class T> bool same_value(const std::byte *a, const std::byte *b) {
    for (int p = 0; p < T::parts; ++p)
        if (std::memcmp(a + p * T::part, b + p * T::part, T::used) != 0) return false;
    return true;
}

// ---- Random calls -----------------------------------------------------------

template <class T, class Operation>
std::vector<typename T::Value> naive(Operation operation, Array &array, int dim, MaskKind kind,
                                     Array &mask) {
    const Shape result = dim == 0 ? Shape{} : without(array.shape, dim);
    std::vector<typename T::Value> values(elements(result), T::start(operation));
    for (std::size_t i = 0; i < array.size(); ++i) {
        if (!selects(kind, mask, i)) continue;
        auto &value = values[result_index(array.shape, dim, i)];
        value = T::step(operation, value, T::get(array.at(i)));
    }
    return values;
}

// Any shape, layout, DIM and MASK; the result given or created.
template <class T, class Operation> void try_random_call(Random &random, Operation operation) {
    const Shape shape = random_shape(random);
    const int rank = int(shape.size());
    const int unit = T::storage >= 8 && pick(random, 0, 2) == 0 ? 4 : 0;
    Array array = make_array(random, shape, T::storage, coin(random), unit);
    for (std::size_t i = 0; i < array.size(); ++i) T::put(array.at(i), T::random(random));
    const auto kind = static_cast<MaskKind>(pick(random, 0, 5) % 4);
    Array mask = random_mask(random, shape, kind);
    const int dim = pick(random, 0, rank);
    RandomResult result(random, dim == 0 ? Shape{} : without(shape, dim), T::storage, dim != 0);

    Call call;
    call.checked().array(1, array.descriptor);
    if (dim != 0) call.value(2, dim);
    if (kind != MaskKind::None) call.array(3, mask.descriptor);
    result.attach(call);
    call(T::entry(operation));

    SCOPED_TRACE("rank " + std::to_string(rank) + ", DIM " + std::to_string(dim) + ", mask kind " +
                 std::to_string(int(kind)) + ", elements " + std::to_string(array.size()));
    const auto expected = naive<T>(operation, array, dim, kind, mask);
    for (std::size_t r = 0; r < expected.size(); ++r) {
        std::byte wanted[T::storage];
        T::put(wanted, expected[r]);
        ASSERT_TRUE(same_value<T>(result.at(r), wanted)) << "result element " << r;
    }
    ASSERT_EQ(result.complaint(T::used, T::parts, T::part), "");
}

template <class T> class NumericReduction : public testing::Test {};
using Types = testing::Types<I1, I2, I4, I8, R4, R8, R10, R16, C8, C16, C20, C32>;
TYPED_TEST_SUITE(NumericReduction, Types);

TYPED_TEST(NumericReduction, AgreesWithNaiveFolds) {
    Random random(random_seed());
    for (int i = 0; i < random_rounds(800) && !this->HasFatalFailure(); ++i) {
        try_random_call<TypeParam>(random, Sum{});
        try_random_call<TypeParam>(random, Product{});
    }
}

// ---- Literal cases ----------------------------------------------------------

template <class T>
T folded(f90_Intrinsic *intrinsic, std::vector<T> elements, int stride = 1,
         bool noncontig = false) {
    f90_ArrDesc array = over(elements, {std::int32_t(elements.size()) / stride});
    array.Dim[0].Stride = stride;
    array.NONCONTIG = noncontig;
    T value{};
    f90_ArrDesc result = scalar(&value, sizeof(T));
    Call().array(1, array).result(result)(intrinsic);
    return value;
}

TEST(NumericReductionValues, Literal) {
    EXPECT_EQ(folded<std::uint8_t>(f90_sumi1, {0xC8, 0x64}), 0x2C) << "wraps at its width";
    EXPECT_EQ(folded<float>(f90_sumr4, {1e8F, 1.0F, -1e8F}), 1.0F) << "accumulates in double";
    EXPECT_EQ(folded<float>(f90_prodr4, {1e30F, 1e30F, 1e-30F}), 1e30F);
    const std::vector<std::int32_t> numbers = {1, 10, 100, 1000};
    EXPECT_EQ(folded(f90_sumi4, numbers, 2, false), 11) << "only NONCONTIG brings Stride into play";
    EXPECT_EQ(folded(f90_sumi4, numbers, 2, true), 101);
}

// ---- Checks -----------------------------------------------------------------

// The message of SUM of a 3 x 4 array with arguments of these shapes.
std::string message(int dim, f90_ArrDesc result, f90_ArrDesc mask, bool create = false) {
    double storage = 1;
    f90_ArrDesc array = shaped({3, 4}, 8);
    array.BASE = result.BASE = mask.BASE = &storage;
    return fatal_message([&] {
        Call()
            .checked()
            .array(0, result, !create)
            .array(1, array)
            .value(2, dim)
            .array(3, mask)(f90_sumr8);
    });
}

TEST(NumericReductionChecks, ReportInOrder) {
    const f90_ArrDesc nine = shaped({9}, 8);
    const f90_ArrDesc wide = shaped({9, 9}, 4);
    EXPECT_EQ(message(3, nine, wide), report("SUM", wrong_dim(3, 2)));
    EXPECT_EQ(message(3, f90_ArrDesc{}, wide, true), report("SUM", wrong_dim(3, 2)));
    EXPECT_EQ(message(2, nine, wide), report("SUM", wrong_result("9", "3")));
    EXPECT_EQ(message(1, shaped({4}, 8), shaped({3, 9}, 4)),
              report("SUM", wrong_mask("3, 4", "3, 9")));
}

// Extents 0 and 1 are equal, and nothing is checked without the flag.
TEST(NumericReductionChecks, LetPass) {
    std::vector<std::int32_t> numbers = {1, 2, 3, 4};
    std::vector<std::int32_t> sums = {7, 7};
    f90_ArrDesc empty = shaped({0, 2}, 4);
    f90_ArrDesc square = over(numbers, {2, 2});
    f90_ArrDesc one = over(sums, {1});
    f90_ArrDesc nine = over(sums, {9});
    Call().checked().array(1, empty).value(2, 2).result(one)(f90_sumi4);
    EXPECT_EQ(sums[0], 7) << "an empty kept dimension writes nothing";
    Call().array(1, square).value(2, 2).result(nine)(f90_sumi4);
    EXPECT_EQ(sums[0], 4);
    EXPECT_EQ(sums[1], 6);
}

} // namespace

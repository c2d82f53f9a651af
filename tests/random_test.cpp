// RANDOM_NUMBER and RANDOM_SEED against the generator written naively, every word of the state
// after every call. The library takes its storage from this program, aligned to 4 bytes.
#include "support.h"

#include <cmath>
#include <gtest/gtest.h>

static const std::int32_t seed_at_start = TSeed; // before any call
static std::string taken;                        // the sizes of the blocks, one after the other
alignas(16) static std::uint32_t block[1 + 47 + 1];
void *f90_getspace(std::size_t bytes) {
    taken += std::to_string(bytes) + " ";
    return static_cast<std::uint32_t *>(std::memset(block, 'Z', sizeof block)) + 1;
}

namespace {

using namespace test;
// Words 0 to 42 are the lag table; then come both lags, the borrow and the Weyl word.
struct Generator {
    std::array<std::uint32_t, 47> words = {};
    Generator() {
        words[43] = 42, words[44] = 21, words[46] = 390878531;
        for (int bit = 0, a = 169, b = 178, c = 57, d = 23; bit < 43 * 32; ++bit) {
            const int t = a * b * c % 179;
            d = (53 * d + 1) % 169, a = b, b = c, c = t;
            words[bit / 32] |= std::uint32_t{t * d % 63 >= 32} << bit % 32;
        }
    }
    std::uint32_t &at_lag(int k) { return words[std::min(words[k], 42U)]; }
    std::int32_t draw() {
        std::uint32_t x = at_lag(44) - at_lag(43) - words[45];
        if (x >> 31 != 0) x -= 5, words[45] = 1;
        at_lag(43) = x;
        for (const int k : {43, 44}) words[k] = std::int32_t(words[k]) < 1 ? 42 : words[k] - 1;
        return x - (words[46] -= 362436069);
    }
};

// For a PUT: lags and borrows of any size, differences and words at the ends of their ranges.
Generator any_state(Random &random) {
    Generator state;
    for (auto &word : state.words) word = random();
    const int lags[] = {100, -1, INT32_MIN, INT32_MAX, 43, 42, 0, pick(random, 1, 41)};
    for (const int k : {43, 44}) state.words[k] = lags[pick(random, 0, 7)];
    state.words[45] = std::array{0, 1, 7, -3}[pick(random, 0, 3)];
    const std::uint32_t ends[] = {0, 1U << 31}, x = ends[pick(random, 0, 1)] + pick(random, -6, 6);
    if (coin(random)) state.at_lag(44) = x + state.at_lag(43) + state.words[45];
    const std::uint32_t word = ends[pick(random, 0, 1)] + pick(random, -131, 2);
    if (coin(random)) state.words[46] += Generator(state).draw() - word;
    return state;
}

template <class T> T real_of(std::int32_t word) {
    using Wide = std::conditional_t<sizeof(T) == 16, T, long double>;
    const auto factor = Wide(
        sizeof(T) == 4    ? 0x1p-32L
        : sizeof(T) == 8  ? 0x1.FFFFFFFF7FFFFp-33L
        : sizeof(T) == 12 ? 0xFFFFFFFFBFFFFFFFp-96L
                          : std::bit_cast<__float128>(std::array{~0U, ~0U, ~0x8000U, 0x3FDEFFFFU}));
    return T(word * factor + Wide(0.5));
}

// These tell whether the call makes a state where there is none.
template <class Element, auto one, auto many> bool draw(Random &random, Generator &generator) {
    using T = std::conditional_t<sizeof(Element) == 16, __float128, Element>;
    const int counts[] = {1, 0, INT32_MIN, pick(random, -3, 3), pick(random, 0, 200)};
    const int count = counts[pick(random, 0, 4)], first = 4 * pick(random, 1, 4);
    std::vector<std::byte> storage(std::max(count, 0) * sizeof(T) + 32, std::byte{0xA5});
    auto right = storage;
    for (int i = 0; i < count; ++i)
        write(&right[first + i * sizeof(T)], real_of<T>(generator.draw()));
    auto *const harvest = reinterpret_cast<Element *>(&storage[first]);
    count == 1 && coin(random) ? one(harvest) : many(harvest, count);
    EXPECT_TRUE(storage == right) << sizeof(T) << " bytes, " << count << " elements";
    return true;
}

bool seed(Random &random, Generator &generator) { // what does not count is not even there
    const int size = coin(random) ? 4 : 8, presence = random();
    const int deciding = presence & 1 ? 0 : presence & 2 ? 1 : presence & 4 ? 2 : 3;
    Array array =
        make_array(random, {pick(random, 47, 50)}, size, coin(random), coin(random) * 4, 8);
    if (deciding & 1) generator = deciding == 1 ? any_state(random) : Generator();
    auto right = array.storage;
    for (int k = 0; k < std::array{1, 47, 47, 0}[deciding]; ++k) {
        std::int64_t word = deciding == 0 ? 47 : std::int32_t(generator.words[k]);
        if (deciding == 1) word ^= std::int64_t{random()} << 32; // is not looked at
        std::memcpy(&right[array.offsets[k]], &word, size);
        if (deciding == 1) std::memcpy(array.at(k), &word, size);
    }
    f90_ArrDesc &d = array.descriptor;
    if (coin(random)) std::swap(d.SCALEFACTOR, d.Dim[0].Stride);
    d.ELSIZE = random(), d.EXTENT = random(), d.RANK = random();
    Call call;
    for (int n = 0; n < 3; ++n)
        call.slot(n, n != deciding ? 8 : std::uintptr_t(n != 0 ? &d : d.BASE));
    call.list.Shape = random(), call.list.Presence = presence, call.list.Flags = random();
    deciding == 3 && coin(random) ? InitMarsagliaRander()
                                  : call(size == 4 ? f90_randseed : f90_randseed8);
    EXPECT_TRUE(array.storage == right) << size << " bytes, presence " << presence;
    return deciding != 0;
}

TEST(RandomNumbers, AgreeWithModel) {
    EXPECT_EQ(seed_at_start, -1);
    Random random(random_seed());
    Generator generator;
    bool (*const calls[])(Random &, Generator &) = {
        draw<float, f90_randnum4, f90_randnum4a>, draw<double, f90_randnum8, f90_randnum8a>,
        draw<long double, f90_randnum10, f90_randnum10a>,
        draw<f90_Real16, f90_randnum16, f90_randnum16a>, seed};
    for (int i = 0; i < random_rounds(10000) && !HasFailure(); ++i) {
        if (i == 0 || pick(random, 0, 9) == 0) // as in a new process
            TSeed = -1 << pick(random, 0, 31), Rand_buf = nullptr, taken = "";
        const bool fresh = TSeed != 0;
        if (fresh) generator = Generator();
        const bool made = calls[std::min(pick(random, 0, 6), 4)](random, generator) || !fresh;
        ASSERT_EQ(TSeed == 0, made);
        ASSERT_EQ(taken, made ? "188 " : "");
        ASSERT_EQ(static_cast<void *>(Rand_buf), made ? block + 1 : nullptr);
        for (int k = 0; made && k < 47; ++k) ASSERT_EQ(block[1 + k], generator.words[k]) << k;
        ASSERT_TRUE(!made || (block[0] == 0x5A5A5A5A && block[48] == 0x5A5A5A5A));
    }
}

TEST(RandomNumbers, StartAndEndAsTold) {
    Call()(f90_randseed);
    const std::uint32_t lags[] = {0xA08A18DE, 0x0A17A819, 0x17858B92, 0xAF1B001D};
    EXPECT_EQ(std::memcmp(Rand_buf, lags, sizeof lags), 0);
    EXPECT_EQ(std::uint32_t(Rand_buf[42]), 0xCB8648BD);
    float first;
    double next[7]; // fine enough to tell the words that they come from
    f90_randnum4(&first);
    f90_randnum8a(next, 7);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(first), 0x3F45F4D6U);
    for (double &number : next) number = std::round((number - 0.5) * 0x1p32);
    EXPECT_EQ(std::vector(next, next + 3), (std::vector{1388353480., -1511310428., 673085401.}));
    EXPECT_EQ(std::vector(Rand_buf + 43, Rand_buf + 47), (std::vector{34, 13, 1, 0x6A79A61B}));
    EXPECT_EQ(Generator().draw(), 1173673386);
    EXPECT_TRUE(real_of<float>(INT32_MIN) == 0 && real_of<float>(2147483520) == 1);
    EXPECT_NEAR(real_of<double>(INT32_MIN), 2.91038e-11, 1e-16);
}

} // namespace

// RANDOM_NUMBER and RANDOM_SEED against the generator written naively, every word of the state
// after every call. This program gives the library its storage, aligned to 4 bytes.
#include "support.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace test;

static std::vector<std::size_t> spaces;
void *f90_getspace(std::size_t bytes) {
    static char blocks[16][200];
    spaces.push_back(bytes);
    return std::memset(blocks[spaces.size() % 16] + 4, 0x5A, bytes);
}

namespace {

// ---- The generator ----------------------------------------------------------

struct Model {
    std::array<std::int64_t, 47> words{}; // 43 lags, LagI, LagJ, Carry, Weyl, each of 32 bits

    Model() {
        std::int64_t a = 169, b = 178, c = 57, d = 23;
        for (int k = 0; k < 43; ++k)
            for (int bit = 0; bit < 32; ++bit) {
                const std::int64_t t = a * b * c % 179;
                d = (53 * d + 1) % 169;
                a = b, b = c, c = t;
                if (t * d % 63 >= 32) words[k] += std::int64_t{1} << bit;
            }
        words[43] = 42, words[44] = 21, words[45] = 0, words[46] = 390878531;
        for (auto &word : words) word = std::int32_t(word);
    }
    std::int32_t draw() {
        const auto within = [](std::int64_t lag) { return lag < 0 || lag > 42 ? 42 : lag; };
        const auto i = within(words[43]), j = within(words[44]);
        std::int64_t x = std::int32_t(words[j] - words[i] - words[45]);
        if (x < 0) {
            x = std::int32_t(x - 5);
            words[45] = 1;
        }
        words[i] = x;
        for (const int lag : {43, 44}) words[lag] = words[lag] - 1 < 0 ? 42 : words[lag] - 1;
        words[46] = std::int32_t(words[46] - 362436069);
        return std::int32_t(x - words[46]);
    }
};

template <class T> T bits(std::initializer_list<std::uint32_t> words) { // the low one first
    T value{};
    std::memcpy(static_cast<void *>(&value), words.begin(), used_bytes<T>);
    return value;
}

template <class T> T real_of(std::int32_t word) {
    if constexpr (sizeof(T) == 16) {
        const auto factor = bits<T>({~0U, ~0U, 0xFFFF7FFF, 0x3FDEFFFF});
        return factor * T(word) + T(0.5);
    } else {
        long double factor = 0x1p-32L;
        if (sizeof(T) == 8) factor = bits<double>({0xFFF7FFFF, 0x3DEFFFFF});
        if (sizeof(T) == 12) factor = bits<long double>({0xBFFFFFFF, 0xFFFFFFFF, 0x3FDE});
        const volatile long double product = word * factor; // rounded before the sum is
        const volatile long double sum = product + 0.5L;
        return T(sum);
    }
}

::testing::AssertionResult state_is(const Model &model) {
    for (int k = 0; k < 47; ++k)
        if (Rand_buf[k] != model.words[k])
            return ::testing::AssertionFailure() << "word " << k << " is " << Rand_buf[k];
    return ::testing::AssertionSuccess();
}

// ---- Calls ------------------------------------------------------------------

template <class T, class Element>
void draw_and_compare(Random &random, Model &model, void (*one)(Element *),
                      void (*many)(Element *, std::int32_t)) {
    const bool single = coin(random);
    const int count = single                    ? 1
                      : pick(random, 0, 3) == 0 ? pick(random, -2, 2)
                                                : pick(random, 0, 150);
    const int drawn = std::max(count, 0), shift = 4 * pick(random, 1, 3);
    std::vector<std::byte> storage(drawn * sizeof(T) + 32, std::byte{0xA5}), right = storage;
    auto *first = reinterpret_cast<Element *>(storage.data() + shift);
    for (int i = 0; i < drawn; ++i) write(&right[shift + i * sizeof(T)], real_of<T>(model.draw()));
    single ? one(first) : many(first, count);
    ASSERT_TRUE(storage == right) << sizeof(T) << " bytes, " << count << " elements";
    ASSERT_TRUE(state_is(model));
}

void draw_any(Random &random, Model &model) {
    switch (pick(random, 0, 3)) {
    case 0:
        return draw_and_compare<float>(random, model, f90_randnum4, f90_randnum4a);
    case 1:
        return draw_and_compare<double>(random, model, f90_randnum8, f90_randnum8a);
    case 2:
        return draw_and_compare<long double>(random, model, f90_randnum10, f90_randnum10a);
    default:
        return draw_and_compare<__float128>(random, model, f90_randnum16, f90_randnum16a);
    }
}

// The seed array of a call, of 4 or 8 bytes an element, of any stride and unit.
Array seed_array(Random &random, bool wide) {
    return make_array(random, {pick(random, 47, 50)}, wide ? 8 : 4, coin(random),
                      coin(random) ? 4 : 0, 8);
}

void put(Random &random, const Model &model) {
    const bool wide = coin(random);
    Array seed = seed_array(random, wide);
    for (int k = 0; k < 47; ++k) {
        write(seed.at(k), std::uint32_t(model.words[k]));
        if (wide) write(seed.at(k) + 4, std::uint32_t(random())); // not looked at
    }
    Call()
        .array(1, seed.descriptor)
        .array(2, seed.descriptor, coin(random))(wide ? f90_randseed8 : f90_randseed);
    ASSERT_TRUE(state_is(model));
}

void get(Random &random, const Model &model) {
    const bool wide = coin(random);
    Array seed = seed_array(random, wide);
    auto right = seed.storage;
    for (int k = 0; k < 47; ++k)
        wide ? write(&right[seed.offsets[k]], model.words[k])
             : write(&right[seed.offsets[k]], std::int32_t(model.words[k]));
    Call().slot(1, 8, false).array(2, seed.descriptor)(wide ? f90_randseed8 : f90_randseed);
    ASSERT_TRUE(seed.storage == right && state_is(model));
}

TEST(RandomNumbers, StartWithTheirFirstDraws) {
    f90_ArgList none = {};
    f90_randseed(&none);
    float first = 0;
    f90_randnum4(&first);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(first), 0x3F45F4D6U);
    Model model;
    for (const std::int32_t s : {1173673386, 1388353480, -1511310428, 673085401})
        EXPECT_EQ(model.draw(), s);
    EXPECT_EQ(model.words[45], 1);
    InitMarsagliaRander();
    const std::uint32_t words[] = {0xA08A18DE, 0x0A17A819, 0x17858B92, 0xAF1B001D};
    EXPECT_EQ(std::memcmp(Rand_buf, words, sizeof words), 0);
    EXPECT_EQ(std::uint32_t(Rand_buf[42]), 0xCB8648BDU);
    float draws[8];
    f90_randnum4a(draws, 8);
    EXPECT_EQ((std::vector<int>(Rand_buf + 43, Rand_buf + 47)),
              (std::vector<int>{34, 13, 1, 0x6A79A61B}));
}

TEST(RandomNumbers, AgreeWithTheModel) {
    Random random(random_seed());
    InitMarsagliaRander();
    Model model;
    const auto *block = Rand_buf;
    for (int i = 0; i < random_rounds(4000) && !HasFatalFailure(); ++i) {
        const int what = pick(random, 0, 19);
        if (what == 0) {
            model = Model();
            Call().slot(3, 8)(coin(random) ? f90_randseed : f90_randseed8); // nothing that counts
            ASSERT_TRUE(state_is(model));
        } else if (what == 1) {
            for (int k = 0; k < 47; ++k) model.words[k] = std::int32_t(random());
            const std::int32_t lags[] = {0,   1,  21,        42,        43,
                                         100, -1, INT32_MIN, INT32_MAX, pick(random, 0, 42)};
            for (const int k : {43, 44}) model.words[k] = lags[pick(random, 0, 9)];
            model.words[45] = std::array{0, 1, 7, -3, pick(random, 0, 1)}[pick(random, 0, 4)];
            put(random, model);
        } else if (what == 2) {
            get(random, model);
        } else {
            draw_any(random, model);
        }
    }
    EXPECT_EQ(Rand_buf, block);
}

// s = x - Weyl: with the borrow and the lags clear, x is the minuend.
TEST(RandomNumbers, ReachTheirEnds) {
    Random random(random_seed());
    for (const std::int32_t s :
         {INT32_MIN, INT32_MIN + 1, -1, 0, 1, 2147483519, 2147483520, INT32_MAX})
        for (int i = 0; i < 40; ++i) {
            Model model;
            model.words.fill(0);
            model.words[43] = 5, model.words[44] = 7;
            const std::int64_t x = std::uint32_t(random()) >> 1;
            model.words[7] = x;
            model.words[46] = std::int32_t(x - s + 362436069);
            EXPECT_EQ(Model(model).draw(), s);
            put(random, model);
            draw_any(random, model);
        }
    EXPECT_EQ(real_of<float>(INT32_MIN), 0.0F);
    EXPECT_EQ(real_of<float>(2147483520), 1.0F);
    EXPECT_LT(real_of<float>(2147483519), 1.0F);
    EXPECT_LT(real_of<double>(INT32_MAX), 1.0);
    EXPECT_GT(real_of<double>(INT32_MIN), 0.0);
}

// ---- The first call of a process ----------------------------------------------

// Which of the calls that may come first make the state.
TEST(RandomNumbers, AreSeededWhenTheyAreFirstWanted) {
    std::vector<std::int64_t> numbers(47);
    f90_ArrDesc seed = over(numbers, {47});
    const auto after = [&](const std::function<void()> &call) {
        return in_child([&] {
                   TSeed = -1;
                   Rand_buf = nullptr;
                   spaces.clear();
                   call();
                   const bool made =
                       TSeed == 0 && spaces == std::vector<std::size_t>{188} && state_is(Model());
                   std::printf("%s", made                            ? "made"
                                     : TSeed == -1 && spaces.empty() ? "none"
                                                                     : "wrong");
               })
            .out;
    };
    float harvest = 7;
    EXPECT_EQ(after([&] { f90_randnum4a(&harvest, 0); }), "made");
    EXPECT_EQ(after([&] { f90_randnum4a(&harvest, -5); }), "made");
    EXPECT_EQ(after([&] { Call().array(2, seed)(f90_randseed8); }), "made");
    EXPECT_EQ(after([&] { Call()(f90_randseed); }), "made");
    EXPECT_EQ(after([] { InitMarsagliaRander(); }), "made");
    EXPECT_EQ(after([&] { // SIZE alone, whatever else is present
                  std::int64_t size[2] = {-1, -1};
                  Call().slot(0, std::uintptr_t(size)).slot(1, 8).slot(2, 8)(f90_randseed8);
                  if (size[0] != 47 || size[1] != -1) TSeed = 1;
                  std::int32_t words[2] = {-1, -1};
                  Call().slot(0, std::uintptr_t(words)).slot(1, 8)(f90_randseed);
                  if (words[0] != 47 || words[1] != -1) TSeed = 1;
              }),
              "none");
    EXPECT_EQ(after([&] { // a PUT makes the block and fills it
                  const Model model;
                  for (int k = 0; k < 47; ++k) numbers[k] = model.words[k];
                  Call().array(1, seed)(f90_randseed8);
              }),
              "made");
}

} // namespace

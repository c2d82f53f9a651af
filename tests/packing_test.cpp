// PACK and UNPACK of every element size against a model and the machine's Fortran compiler.
// Operands end with what may be touched; counters tell which blocks a call leaves.
#include "guarded.h"
#include "support.h"

#include <gtest/gtest.h>

extern "C" void fortran_packing(int what, int n, int rows, int size, int length, const int *mask,
                                const void *array, const void *vector, void *result);

namespace {

using namespace test;
f90_Intrinsic *const members[][9] = {{f90_pack1, f90_pack2, f90_pack4, f90_pack8, f90_pack10,
                                      f90_pack16, f90_pack20, f90_pack32, f90_packn},
                                     {f90_unpack1, f90_unpack2, f90_unpack4, f90_unpack8,
                                      f90_unpack10, f90_unpack16, f90_unpack20, f90_unpack32,
                                      f90_unpackn}};

// ARRAY, or FIELD, has `shape`. FIELD may be a scalar, and so may MASK of PACK.
void try_call(Random &random, int k, bool unpack) {
    RandomResult result(random, {}, 1, true);
    const bool checked = coin(random), create = result.create, scalar = pick(random, 0, 3) == 0;
    const int spaced = std::array{0, 0, 1 << pick(random, 0, 3), 15}[pick(random, 0, 3)];
    const int spare = coin(random) ? 0 : pick(random, 1, 50), size = moved_sizes[k];
    const Shape shape = pick(random, 0, 7) ? random_shape(random) : Shape{pick(random, 300, 3000)};
    const Shape other = checked ? shape : Shape(shape.rbegin(), shape.rend());
    Shape extents = unpack && !create && !checked ? random_shape(random) : other; // of the result
    GuardedArray array(random, k, unpack && scalar ? Shape{} : shape, spaced & 1);
    GuardedArray mask(random, 2, !unpack && scalar ? Shape{} : other, spaced & 2);
    const bool high = unpack && mask.descriptor.NONCONTIG && coin(random); // true words lack bit 0
    std::vector<int> words(std::min(elements(shape), unpack ? elements(extents) : ~0U));
    const int share = std::array{0, 1, 32, 63, 64}[pick(random, 0, 4)];
    const int run = mask.shape.empty() ? INT32_MAX : coin(random) ? 1 : pick(random, 1, 99);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool on = i % run == 0 ? pick(random, 0, 63) < share : words[i - 1] != 0;
        words[i] = on << pick(random, high, 31);
        if (i < mask.size()) write(mask.at(i), words[i]);
    }
    const int n = words.size(), count = n - std::count(words.begin(), words.end(), 0);
    const int length = !unpack && coin(random) ? 0 : count + spare;
    GuardedArray vector(random, k, {unpack ? count : count + spare}, spaced & 4);
    vector.descriptor.EXTENT = high ? 0 : length; // by bits 0, which the check counts
    if (!unpack) extents = {length > 0 ? length : count + (create ? 0 : spare)};
    GuardedArray given(random, k, extents, spaced & 8);
    result.given = given;
    result.before.assign(given.pages.begin(), given.pages.end());
    Call call = Call().array(unpack ? 3 : 1, array.descriptor).array(2, mask.descriptor);
    call.array(unpack ? 1 : 3, vector.descriptor, unpack || length > 0 || coin(random));
    call.list.Flags = checked || (!unpack && (create ? n + length : extents[0]) == 0) ? 1 : ~1U;
    result.attach(call);
    call(members[unpack][k < 8 ? k : 8]);
    ASSERT_EQ(spaces_taken - spaces_given_back, create);
    result.given.storage.assign(given.pages.begin(), given.pages.end());
    std::vector<std::byte> theirs(spaced != 0 ? 0 : size * std::max(words.size(), vector.size()));
    if (!theirs.empty())
        fortran_packing(unpack + (unpack && scalar), size, n % 3 ? 1 : 3, n, vector.size(),
                        words.data(), array.descriptor.BASE, vector.descriptor.BASE, theirs.data());
    std::vector<const std::byte *> right;
    for (int i = 0, taken = 0; i < n; ++i)
        if (unpack || words[i] != 0)
            right.push_back(unpack && words[i] ? vector.at(taken++) : array.at(i % array.size()));
    for (int i = count; i < length && !unpack; ++i) right.push_back(vector.at(i));
    for (std::size_t i = 0; i < right.size(); ++i) {
        ASSERT_EQ(std::memcmp(result.at(i), right[i], size), 0) << i;
        ASSERT_TRUE(theirs.empty() || std::memcmp(&theirs[i * size], right[i], size) == 0) << i;
    }
    result.given.offsets.resize(right.size()); // what lies behind stays as it was
    ASSERT_EQ(result.complaint(size), "");
}

TEST(Packing, AgreesWithModelAndFortran) {
    Random random(random_seed());
    for (int i = random_rounds(4500); i-- && !HasFatalFailure();) try_call(random, i % 15, i % 2);
}

TEST(Packing, ChecksInOrder) {
    const std::string p = report("PACK", ""), u = report("UNPACK", ""), d = " It should have size ";
    const std::string r = " The RESULT array has size ", v = " Array argument VECTOR has size ";
    const std::string field =
        " Array arguments MASK and FIELD should have the same shape.\n"
        " The shape of argument MASK is:  (0, 1).\n The shape of argument FIELD is: (1, 0).\n";
    const std::vector<int> all(6, 2), some = {2, 3, 3, 0};
    struct {
        int unpack, walked, length; // a flag; NONCONTIG of MASK; EXTENT of VECTOR
        Shape array, mask, result;  // of ARRAY or FIELD; scalars, and results to create, have none
        std::vector<int> words;
        std::string message;
    } cases[] = {
        {0, 0, 4, {2, 3}, {3, 2}, {5}, all, p + r + "5." + d + "4.\n"},
        {0, 0, 4, {2, 3}, {}, {}, all, p + r + "4." + d + "6.\n"},
        {0, 0, 4, {2, 3}, {3, 2}, {}, all, p + wrong_mask("2, 3", "3, 2")},
        {0, 0, 0, {6}, {6, 1}, {3}, all, p + wrong_mask("6", "6, 1")},
        {0, 0, 0, {1, 0}, {0, 1}, {1}, {}, ""},
        {0, 1, 2, {4}, {4}, {}, some, p + v + "2." + d + "3.\n"},
        {0, 0, 0, {4}, {4}, {2}, some, p + r + "2." + d + "3.\n"},
        {0, 0, 4, {2, 3}, {6}, {0}, all, ""},
        {1, 0, -1, {1, 0}, {0, 1}, {1, 0}, {}, u + wrong_result("1, 0", "0, 1")},
        {1, 0, -1, {1, 0}, {0, 1}, {}, {}, u + field},
        {1, 0, 1, {2}, {2, 3}, {2}, all, u + v + "1." + d + "2.\n"},
        {1, 1, 1, {}, {4}, {4}, some, u + v + "1." + d + "2.\n"},
    };
    for (auto &c : cases) {
        f90_ArrDesc array = shaped(c.array, 4), mask = over(c.words, c.mask);
        f90_ArrDesc vector = shaped({c.length}, 4), result = shaped(c.result, 4);
        mask.NONCONTIG = c.walked;
        Call call = Call().checked().array(0, result, !c.result.empty()).array(2, mask);
        call.array(c.unpack ? 3 : 1, array).array(c.unpack ? 1 : 3, vector, c.length != 0);
        const auto run = [&] {
            std::atexit([] { std::fprintf(stderr, "%d", spaces_taken - spaces_given_back); });
            call(members[c.unpack][(&c - cases) % 9]);
            std::exit(1);
        };
        EXPECT_EQ(fatal_message(run), c.message + (c.result.empty() ? "1" : "0")) << &c - cases;
    }
}
} // namespace

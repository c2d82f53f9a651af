// TRANSFER between elements of all sizes, with and without SIZE, against the stream of bytes.
#include "guarded.h"

#include <gtest/gtest.h>

namespace {

using namespace test;
f90_Intrinsic *const members[][9] = {
    {f90_transfer1, f90_transfer2, f90_transfer4, f90_transfer8, f90_transfer10, f90_transfer16,
     f90_transfer20, f90_transfer32, f90_transfern},
    {f90_ktransfer1, f90_ktransfer2, f90_ktransfer4, f90_ktransfer8, f90_ktransfer10,
     f90_ktransfer16, f90_ktransfer20, f90_ktransfer32, f90_ktransfern}};

// The bytes of an array's elements, one after the other.
std::vector<std::byte *> stream(const GuardedArray &array, int size) {
    std::vector<std::byte *> bytes;
    for (std::size_t i = 0; i < array.size(); ++i)
        for (int b = 0; b < size; ++b) bytes.push_back(array.at(i) + b);
    return bytes;
}

void try_call(Random &random, int k, bool wide) {
    const int of = pick(random, 0, 14), spaced = pick(random, 0, 3);
    const auto part_of = [&](int i, bool room) { // elements may be parts of what lies there
        return room && pick(random, 0, 2) == 0 ? pick(random, 0, moved_sizes[i]) : moved_sizes[i];
    };
    const int size = part_of(of, spaced & 1), moved = part_of(k, k >= 8 && spaced & 2);
    const bool sized = coin(random) || moved == 0, scalar = coin(random);
    GuardedArray source(random, of, pick(random, 0, 3) ? random_shape(random) : Shape{},
                        spaced & 1);
    source.descriptor.ELSIZE = size;
    if (source.shape.empty() && wide) source.descriptor.EXTENT = 1;
    mprotect(source.pages.begin(), source.pages.size, PROT_READ);
    const int offered = source.size() * size, needed = moved ? (offered + moved - 1) / moved : 3;
    const int n = sized    ? std::max(std::array{0, needed, needed - 1, needed / 2,
                                              needed + pick(random, 1, 9)}[pick(random, 0, 4)],
                                      0)
                  : scalar ? 1
                           : needed;
    GuardedArray given(random, k, sized || !scalar ? Shape{n} : Shape{}, spaced & 2);
    given.descriptor.ELSIZE = moved;
    if (given.shape.empty()) given.descriptor.EXTENT = 1;
    f90_ArrDesc mold = shaped(scalar ? Shape{} : Shape{7}, moved);
    RandomResult result(random, {}, 1, true);
    result.given = given;
    result.created.ELSIZE = moved; // kept where that of MOLD is 0
    result.before.assign(given.pages.begin(), given.pages.end());
    Call call = Call().array(1, source.descriptor).array(2, mold);
    call.slot(3, n, sized).list.Flags = random();
    if (wide) call.list.Arg3.Word1 = 0;
    result.attach(call);
    const bool whole = given.descriptor.NONCONTIG != 0 && size == moved; // by the member's size
    const int taken = spaces_taken;
    call(members[wide][coin(random) || whole ? std::min(k, 8) : pick(random, 0, 8)]);
    ASSERT_EQ(spaces_taken - taken, result.create); // and none in between
    ASSERT_EQ(spaces_taken - spaces_given_back, result.create);

    result.given.storage.assign(given.pages.begin(), given.pages.end());
    const std::vector<std::byte *> from = stream(source, size);
    for (int i = 0; i < n * moved; ++i) {
        const std::byte there = result.at(i / moved)[i % moved];
        const std::byte was = result.create ? std::byte{'Z'} // as this program's storage starts
                                            : result.before[given.offsets[i / moved] + i % moved];
        const std::byte behind = sized ? std::byte{0} : was;
        ASSERT_EQ(there, i < offered ? *from[i] : behind) << "byte " << i;
    }
    const bool single = result.create && given.shape.empty(); // has bounds too
    ASSERT_TRUE(!single || (result.created.Dim[0].Lower == 1 && result.created.Dim[0].Upper == 1));
    ASSERT_EQ(result.complaint(moved), "");
}

TEST(Transfer, AgreesWithModel) {
    Random random(random_seed());
    for (int i = random_rounds(4500); i-- && !HasFatalFailure();) try_call(random, i % 15, i % 2);
}

TEST(Transfer, CreatesElementsOfAnotherSizeForAnEmptyMold) {
    std::vector<int> words = {1, 2, 3};
    f90_ArrDesc source = over(words, {3}), mold = shaped({1}, 0), result = shaped({}, 8);
    Call().created_result(result).array(1, source).array(2, mold).value(3, 2)(f90_transfern);
    EXPECT_EQ(result.ELSIZE, 8);
    EXPECT_EQ(result.EXTENT, 2);
    EXPECT_EQ(std::memcmp(result.BASE, std::array{1, 2, 3, 0}.data(), 16), 0);
    f90_freespace(result.BASE);
}

TEST(Transfer, ChecksSizes) {
    const auto negative = [](const std::string &size) {
        return " The SIZE argument has a value " + size + ". Its value should be nonnegative.\n";
    };
    const auto wrong = [](const std::string &there, const std::string &expected) {
        return " The RESULT array has size " + there + ". It should have size " + expected + ".\n";
    };
    const std::string k = "the k members tell less";
    struct {
        Shape mold, result;
        int low, high; // words of SIZE, which is absent when high is 7
        std::string plain, wide;
    } cases[] = {{{1}, {3}, 0, 7, "", ""},
                 {{}, {}, 0, 7, "", ""},
                 {{}, {5}, 0, 7, "", ""}, // a scalar result is not looked at
                 {{1}, {2}, 0, 7, wrong("2", "3"), k},
                 {{1}, {2}, 2, 0, "", ""},
                 {{}, {2}, 3, 0, wrong("2", "3"), k},
                 {{}, {2}, 2, -1, "", k},
                 {{}, {2}, -2, 0, negative("-2"), k},
                 {{}, {2}, -2, -1, negative("-2"), k}};
    for (auto &c : cases)
        for (const bool wide : {false, true}) {
            std::vector<int> words(5), moved(10);
            f90_ArrDesc source = over(words, {5}), result = over(moved, c.result);
            f90_ArrDesc mold = shaped(c.mold, 8);
            result.ELSIZE = result.SCALEFACTOR = 8;
            Call call = Call().checked().array(0, result).array(1, source).array(2, mold);
            call.slot(3, c.low, c.high != 7).list.Arg3.Word1 = c.high;
            const std::string &text = wide ? c.wide : c.plain;
            EXPECT_EQ(fatal_message([&] { call(members[wide][&c - cases]); }),
                      text.empty() ? "status 0: "
                      : wide       ? report_of_unknown("KTRANSFER")
                                   : report("TRANSFER", text))
                << &c - cases;
        }
}

// Results without bytes, so that counts beyond 32 bits can be told and nothing moves.
TEST(Transfer, ComparesCountsOf64Bits) {
    struct {
        int flags, offered, mold, high, low, extent; // SIZE is absent when low is -1
        bool reported;
    } cases[] = {{1, 0, 1, 1, 5, 5, false}, // SIZE by its low word
                 {1, 0, 1, 1, 5, 6, true},
                 {1, 0, 1, INT32_MIN, 0, 0, true},
                 {1, 0, 1, 0, INT32_MIN, INT32_MIN, false},
                 {1, (1 << 30) + 5, 1, 0, -1, 40, true}, // what SOURCE makes by all bits
                 {1, 1 << 30, 8, 0, -1, 1 << 30, false},
                 {~1, 0, 1, 0, 2, 3, false},
                 {1, 0, 1, 0, -1, 3, true},
                 {~1, 0, 1, 0, -1, 3, false}};
    for (auto &c : cases) {
        f90_ArrDesc source = shaped({c.offered}, 8), mold = shaped({1}, c.mold);
        f90_ArrDesc result = shaped({c.extent}, 0);
        Call call = Call().array(0, result).array(1, source).array(2, mold);
        call.slot(3, c.low, c.low != -1).list.Arg3.Word1 = c.high;
        call.list.Flags = c.flags;
        EXPECT_EQ(fatal_message([&] { call(f90_ktransfern); }),
                  c.reported ? report_of_unknown("KTRANSFER") : "status 0: ")
            << &c - cases;
    }
}
} // namespace

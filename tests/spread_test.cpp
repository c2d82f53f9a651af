// SPREAD of every element size against a model: runs about the length of a chunk, results
// longer than NCOPIES, scalars.
#include "guarded.h"

#include <gtest/gtest.h>

namespace {

using namespace test;
f90_Intrinsic *const members[] = {f90_spread1,  f90_spread2,  f90_spread4,
                                  f90_spread8,  f90_spread10, f90_spread16,
                                  f90_spread20, f90_spread32, f90_spreadn};

void try_call(Random &random, int k) {
    Shape shape = random_shape(random);
    const int size = moved_sizes[k], form = pick(random, 0, 7);
    if (form == 0) shape = {};
    if (form == 1)
        shape = {std::max(3600 * pick(random, 1, 3) / std::max(size, 1) + pick(random, -1, 1), 1),
                 pick(random, 1, 2)};
    if (shape.size() == 7) shape.pop_back();
    const int rank = shape.size(), dim = pick(random, 1, rank + 1);
    const int most = elements(shape) > 500 ? 5 : pick(random, 0, 9) ? 20 : 300;
    const int copies = pick(random, 0, 7) ? pick(random, 0, most) : -pick(random, 0, 5);
    const int spaced = std::array{0, 0, pick(random, 1, 2), 3}[pick(random, 0, 3)];
    Shape there = shape;
    there.insert(there.begin() + dim - 1,
                 std::max(copies, 0) + pick(random, 0, 1) * pick(random, 0, 3));
    const int along = there[dim - 1],
              below = elements(Shape(shape.begin(), shape.begin() + dim - 1));
    GuardedArray source(random, k, shape, spaced & 1), given(random, k, there, spaced & 2);
    RandomResult result(random, {}, 1, along == std::max(copies, 0));
    result.given = given;
    result.before.assign(given.pages.begin(), given.pages.end());
    Call call = Call().array(1, source.descriptor).value(2, dim).value(3, copies);
    call.list.Flags = random();
    result.attach(call);
    call(members[std::min(k, 8)]);
    ASSERT_EQ(spaces_taken - spaces_given_back, result.create);

    result.given.storage.assign(given.pages.begin(), given.pages.end());
    std::vector<std::ptrdiff_t> written;
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (int(i / below % along) >= copies) continue; // stays as it was
        const std::byte *from = source.at(i % below + i / below / along * below);
        ASSERT_EQ(std::memcmp(result.at(i), from, size), 0) << "element " << i;
        written.push_back(given.offsets[i]);
    }
    result.given.offsets = written;
    ASSERT_EQ(result.complaint(size), "");
}

TEST(Spread, AgreesWithModel) {
    Random random(random_seed());
    for (int i = random_rounds(3000); i-- && !HasFatalFailure();) try_call(random, i % 15);
}

TEST(Spread, ChecksWhatItHasCreated) {
    const std::string dim = " The DIM parameter had a value of ";
    const std::string range = ".\n Its value should be at least 1 and no larger than 3.\n";
    struct {
        int dim, copies;
        Shape result; // to create when empty
        std::string message;
    } cases[] = {{0, 2, {}, dim + "0" + range},
                 {4, 2, {2, 2, 3}, dim + "4" + range},
                 {2, 2, {}, ""},
                 {2, -9, {2, 0, 3}, ""},
                 {1, 4, {5, 2, 3}, ""},
                 {1, 6, {5, 2, 3}, wrong_result("5, 2, 3", "6, 2, 3")},
                 {3, 1, {2, 3, 0}, wrong_result("2, 3, 0", "2, 3, 1")},
                 {2, -1, {2, 4, 1}, wrong_result("2, 4, 1", "2, 0, 3")}};
    for (auto &c : cases) {
        std::vector<int> words(6), moved(60);
        f90_ArrDesc source = over(words, {2, 3}), result = over(moved, c.result);
        Call call = Call().checked().array(0, result, !c.result.empty()).array(1, source);
        call.value(2, c.dim).value(3, c.copies);
        const auto run = [&] {
            std::atexit([] { std::fprintf(stderr, "%d", spaces_taken - spaces_given_back); });
            call(f90_spread4);
            std::exit(1);
        };
        const std::string text = c.message.empty() ? "" : report("SPREAD", c.message);
        EXPECT_EQ(fatal_message(run), text + (c.result.empty() ? "1" : "0")) << &c - cases;
    }
}
} // namespace

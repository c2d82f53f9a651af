// TRANSPOSE of every element size, dense and by strides, against a naive model.
#include "guarded.h"
#include "support.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

f90_Intrinsic *const members[] = {f90_transpose1,  f90_transpose2,  f90_transpose4,
                                  f90_transpose8,  f90_transpose10, f90_transpose16,
                                  f90_transpose20, f90_transpose32, f90_transposen};

// Dense, or with room between columns, or between elements too, or row after row.
Shape random_steps(Random &random, const Shape &extents) {
    const int form = pick(random, 0, 3), most = form < 2 || elements(extents) > 3000 ? 1 : 3;
    const int inner = pick(random, 1, most), sign = form > 0 && coin(random) ? -1 : 1;
    const int outer = extents[form == 3] * inner + (form == 0 ? 0 : pick(random, 0, 20));
    const Shape steps = {form > 1 && coin(random) ? -inner : inner, sign * outer};
    return form == 3 ? Shape(steps.rbegin(), steps.rend()) : steps;
}

// A vector seen as a matrix. For sized members SCALEFACTOR is noise.
struct Matrix : GuardedArray {
    Matrix(Random &random, int k, const Shape &extents, const Shape &steps)
        : GuardedArray(random, k,
                       {elements(extents) == 0 ? 0
                                               : 1 + std::abs(steps[0]) * (extents[0] - 1) +
                                                     std::abs(steps[1]) * (extents[1] - 1)},
                       k >= 8 && steps != Shape{1, extents[0]}) {
        const std::vector<std::ptrdiff_t> places = offsets;
        int first = 0, unit = descriptor.Dim[0].Stride;
        for (int d = 0; d < 2; ++d) {
            const int lower = pick(random, -5, 5), less = (extents[d] == 0) * pick(random, 0, 3);
            descriptor.Dim[d] = {lower, lower + extents[d] - 1 - less, steps[d] * unit};
            first -= std::min(steps[d] * (extents[d] - 1), 0);
        }
        offsets.clear();
        for (int i = 0; i < int(elements(extents)); ++i)
            offsets.push_back(
                places[first + i % extents[0] * steps[0] + i / extents[0] * steps[1]]);
        if (steps != Shape{1, extents[0]}) descriptor.NONCONTIG = pick(random, 1, 255);
        if (k < 8) descriptor.SCALEFACTOR = random();
        descriptor.RANK = 2;
        descriptor.EXTENT = size();
        descriptor.BASE = size() == 0 ? nullptr : at(0);
        shape = extents;
    }
};

void try_call(Random &random, int k) {
    const int some[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100, 129};
    const auto any = [&] { return some[pick(random, 0, std::size(some) - 1)]; };
    const int size = moved_sizes[k], few = any() % 4;
    Shape extents = {any(), any()};
    if (pick(random, 0, 63) == 0) extents = {pick(random, 100, 300), pick(random, 100, 600)};
    if (pick(random, 0, 31) == 0) extents = {pick(random, 900, 1100), few};
    if (pick(random, 0, 31) == 0) extents = {few, pick(random, 900, 1100)};
    const Shape turned(extents.rbegin(), extents.rend());
    Matrix matrix(random, k, extents, random_steps(random, extents));
    Matrix given(random, k, turned, random_steps(random, turned));
    RandomResult result(random, {}, 1, true);
    result.given = given;
    result.before.assign(given.pages.begin(), given.pages.end());
    Call call = Call().array(1, matrix.descriptor);
    call.list.Flags = random();
    result.attach(call);
    mprotect(matrix.pages.begin(), matrix.pages.size, PROT_READ);
    const int taken = spaces_taken;
    call(members[std::min(k, 8)]);
    ASSERT_EQ(spaces_taken - taken, result.create); // and none in between
    ASSERT_EQ(spaces_taken - spaces_given_back, result.create);
    result.given.storage.assign(given.pages.begin(), given.pages.end());
    for (std::size_t i = 0; i < given.size(); ++i) {
        const std::byte *from = matrix.at(i / extents[1] + i % extents[1] * extents[0]);
        ASSERT_EQ(std::memcmp(result.at(i), from, size), 0) << "element " << i;
    }
    ASSERT_EQ(result.complaint(size), "");
}

TEST(Transpose, AgreesWithModel) {
    Random random(random_seed());
    for (int i = random_rounds(3000); i-- && !HasFatalFailure();) try_call(random, i % 15);
}

TEST(Transpose, ChecksAGivenResult) {
    const std::pair<Shape, std::string> cases[] = {
        {{3, 2}, ""}, {{2, 2}, "2, 2"}, {{3, 3}, "3, 3"}, {{2, 3}, "2, 3"}};
    for (auto &[shape, printed] : cases) {
        std::vector<int> words(6), moved(9);
        f90_ArrDesc matrix = over(words, {2, 3}), result = over(moved, shape);
        const std::string wrong = report("TRANSPOSE", wrong_result(printed, "3, 2"));
        Call call = Call().checked().array(0, result).array(1, matrix);
        const auto message = [&] { return fatal_message([&] { call(f90_transpose4); }); };
        EXPECT_EQ(message(), printed.empty() ? "status 0: " : wrong);
        call.list.Flags = ~1U;
        EXPECT_EQ(message(), "status 0: ");
        call.list.Flags = 1;
        call.list.Presence = 2;
        EXPECT_EQ(message(), "status 0: ");
    }
}

} // namespace

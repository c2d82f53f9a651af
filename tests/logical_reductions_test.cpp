// ALL, ANY, COUNT and KOUNT of every width against naive loops.
#include "support.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

enum class Reduction { All, Any, Count, Kount };

struct Member {
    const char *name;
    f90_Intrinsic *entry;
    Reduction reduction;
    int width;        // of an element of MASK
    int result_width; // of an element of the result
};

void PrintTo(const Member &member, std::ostream *out) { *out << member.name; }

const Member members[] = {
    {"f90_all1", f90_all1, Reduction::All, 1, 1},
    {"f90_all2", f90_all2, Reduction::All, 2, 2},
    {"f90_all4", f90_all4, Reduction::All, 4, 4},
    {"f90_all8", f90_all8, Reduction::All, 8, 8},
    {"f90_any1", f90_any1, Reduction::Any, 1, 1},
    {"f90_any2", f90_any2, Reduction::Any, 2, 2},
    {"f90_any4", f90_any4, Reduction::Any, 4, 4},
    {"f90_any8", f90_any8, Reduction::Any, 8, 8},
    {"f90_count1", f90_count1, Reduction::Count, 1, 4},
    {"f90_count2", f90_count2, Reduction::Count, 2, 4},
    {"f90_count4", f90_count4, Reduction::Count, 4, 4},
    {"f90_count8", f90_count8, Reduction::Count, 8, 4},
    {"f90_kcount1", f90_kcount1, Reduction::Kount, 1, 8},
    {"f90_kcount2", f90_kcount2, Reduction::Kount, 2, 8},
    {"f90_kcount4", f90_kcount4, Reduction::Kount, 4, 8},
    {"f90_kcount8", f90_kcount8, Reduction::Kount, 8, 8},
};

class LogicalReduction : public testing::TestWithParam<Member> {};

INSTANTIATE_TEST_SUITE_P(Members, LogicalReduction, testing::ValuesIn(members),
                         [](const auto &member) { return std::string(member.param.name); });

// True elements have one bit set, anywhere; `true_share` of 64 are true. ELSIZE may
// exceed the width: what lies behind an element is not its own.
Array random_mask(Random &random, const Shape &shape, int width, int true_share) {
    Array mask =
        make_array(random, shape, width * pick(random, 1, 2), coin(random), width == 8 ? 4 : 0);
    for (std::size_t i = 0; i < mask.size(); ++i) {
        std::memset(mask.at(i), 0, std::size_t(width));
        if (pick(random, 1, 64) <= true_share)
            mask.at(i)[pick(random, 0, width - 1)] = std::byte(1 << pick(random, 0, 7));
    }
    return mask;
}

bool is_true(const std::byte *element, int width) {
    for (int b = 0; b < width; ++b)
        if (element[b] != std::byte{0}) return true;
    return false;
}

std::vector<std::int64_t> naive(Reduction reduction, Array &mask, int dim, int width) {
    const Shape result = dim == 0 ? Shape{} : without(mask.shape, dim);
    std::vector<std::int64_t> values(elements(result), reduction == Reduction::All ? 1 : 0);
    for (std::size_t i = 0; i < mask.size(); ++i) {
        auto &value = values[result_index(mask.shape, dim, i)];
        const bool element = is_true(mask.at(i), width);
        switch (reduction) {
        case Reduction::All:
            value = value != 0 && element;
            break;
        case Reduction::Any:
            value = value != 0 || element;
            break;
        default:
            value += element;
        }
    }
    return values;
}

void try_random_call(Random &random, const Member &member) {
    const Shape shape = random_shape(random);
    const int rank = int(shape.size());
    const int shares[] = {0, 1, 32, 63, 64};
    Array mask = random_mask(random, shape, member.width, shares[pick(random, 0, 4)]);
    const int dim = pick(random, 0, rank);
    const bool along = dim != 0 && rank != 1;
    RandomResult result(random, along ? without(shape, dim) : Shape{}, member.result_width, along);

    Call call;
    call.checked().array(1, mask.descriptor);
    if (dim != 0) call.value(2, along ? dim : 5); // a rank 1 MASK has its DIM ignored
    result.attach(call);
    call(member.entry);

    SCOPED_TRACE("rank " + std::to_string(rank) + ", DIM " + std::to_string(dim) + ", elements " +
                 std::to_string(mask.size()));
    const auto expected = naive(member.reduction, mask, along ? dim : 0, member.width);
    for (std::size_t r = 0; r < expected.size(); ++r)
        ASSERT_EQ(std::memcmp(result.at(r), &expected[r], std::size_t(member.result_width)), 0)
            << "result element " << r;
    ASSERT_EQ(result.complaint(member.result_width), "");
}

TEST_P(LogicalReduction, AgreesWithNaiveLoops) {
    Random random(random_seed());
    for (int i = 0; i < random_rounds(1500) && !HasFatalFailure(); ++i)
        try_random_call(random, GetParam());
}

// Long enough for the counts of narrow vector lanes to overflow if they could,
// with the one odd element at every place that matters to an early end.
TEST_P(LogicalReduction, HoldsOverLongRuns) {
    const Member &member = GetParam();
    Random random(1);
    const int length = 140000;
    const std::size_t places[] = {0, 15, 64, 4095, 65535, length - 1};
    Array mask = make_array(random, {length}, member.width, false);
    const int usual = member.reduction == Reduction::Any ? 0 : 0x80;
    for (std::size_t i = 0; i < mask.size(); ++i)
        std::memset(mask.at(i), usual, std::size_t(member.width));
    for (const std::size_t place : places) {
        std::memset(mask.at(place), usual == 0 ? 2 : 0, std::size_t(member.width));
        std::int64_t value = -1;
        f90_ArrDesc result = scalar(&value, member.result_width);
        Call().array(1, mask.descriptor).result(result)(member.entry);
        const std::int64_t expected = naive(member.reduction, mask, 0, member.width)[0];
        EXPECT_EQ(std::memcmp(&value, &expected, std::size_t(member.result_width)), 0) << place;
        std::memset(mask.at(place), usual, std::size_t(member.width));
    }
}

TEST_P(LogicalReduction, ReportsMisuse) {
    const Member &member = GetParam();
    const char *const names[] = {"ALL", "ANY", "COUNT", "KOUNT"};
    const std::string name = names[int(member.reduction)];
    f90_ArrDesc mask = shaped({3, 0, 4}, member.width);
    f90_ArrDesc result = shaped({3, 5}, member.result_width);
    const auto expect = [&](Call call, const std::string &message) {
        call.array(1, mask).result(result);
        EXPECT_EQ(fatal_message([&] { call(member.entry); }),
                  name == "KOUNT" ? report_of_unknown(name) : report(name, message));
    };
    // DIM is checked whether checks are wanted or not.
    for (const int dim : {0, 4}) expect(Call().value(2, dim), wrong_dim(dim, 3));
    expect(Call().checked().value(2, 3), wrong_result("3, 5", "3, 0"));
}

} // namespace

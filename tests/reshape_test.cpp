// RESHAPE of every element size, with PAD and ORDER, against a model and the machine's Fortran
// compiler. SHAPE and ORDER are integers of 32 or 64 bits, of which the low words count.
#include "guarded.h"

#include <gtest/gtest.h>
#include <numeric>

extern "C" void fortran_reshape(int n, int size, int pads, const int *extents, const int *order,
                                const void *source, const void *pad, void *result);

namespace {

using namespace test;
f90_Intrinsic *const members[][9] = {
    {f90_reshape1, f90_reshape2, f90_reshape4, f90_reshape8, f90_reshape10, f90_reshape16,
     f90_reshape20, f90_reshape32, f90_reshapen},
    {f90_kreshape1, f90_kreshape2, f90_kreshape4, f90_kreshape8, f90_kreshape10, f90_kreshape16,
     f90_kreshape20, f90_kreshape32, f90_kreshapen}};

struct Integers : GuardedArray {
    Integers(Random &random, const Shape &values)
        : GuardedArray(random, pick(random, 2, 3), {int(values.size())}, coin(random)) {
        for (std::size_t i = 0; i < values.size(); ++i) write(at(i), values[i]);
    }
};

// Where element i of the stream goes: its number in array element order.
std::size_t place(const Shape &extents, const Shape &order, std::size_t i) {
    std::size_t at = 0;
    for (const int dim : order) {
        const auto below = elements(Shape(extents.begin(), extents.begin() + dim - 1));
        at += i % extents[dim - 1] * below;
        i /= extents[dim - 1];
    }
    return at;
}

Shape any_shape(Random &random) {
    const auto up_to = [&](int most) { return pick(random, 1, most); };
    switch (pick(random, 0, 7)) {
    case 0:
        return {up_to(150), up_to(150)};
    case 1:
        return {up_to(20), up_to(20), up_to(20)};
    case 2:
        return coin(random) ? Shape{up_to(3), up_to(3000)} : Shape{up_to(3000), up_to(3)};
    case 3: // of its levels and SOURCE's no two end together
        return {2, 4, 4, 4, 4, 4, 2};
    default:
        return random_shape(random);
    }
}

void try_call(Random &random, int k, bool wide) {
    const Shape shape = any_shape(random);
    const int total = elements(shape), size = moved_sizes[k], rank = shape.size();
    const int spaced = std::array{0, 0, 1 << pick(random, 0, 2), 7}[pick(random, 0, 3)];
    Shape order(rank), of_source = shape;
    std::iota(order.begin(), order.end(), 1);
    const bool ordered = coin(random);
    if (ordered && pick(random, 0, 7) != 0) std::shuffle(order.begin(), order.end(), random);
    std::shuffle(of_source.begin(), of_source.end(), random);
    if (total == 4096) of_source = Shape(6, 4);
    if (coin(random)) of_source = {pick(random, 0, 1) * (total + pick(random, 0, 5))};
    if (pick(random, 0, 2) == 0) of_source = {pick(random, 0, total)};
    if (pick(random, 0, 3) == 0) of_source.back() /= 2; // whole turns, and perhaps a part
    const int offered = elements(of_source), rest = std::max(total - offered, 0);
    const int pads = std::array{0, 1, 2, 7, rest - 1, rest, rest + 1, rest / 2}[pick(random, 0, 7)];
    const Shape of_pad =
        pads % 2 == 0 && coin(random) ? Shape{2, pads / 2} : Shape{std::max(pads, 0)};

    GuardedArray source(random, k, of_source, spaced & 1), pad(random, k, of_pad, spaced & 2);
    Integers of_shape(random, shape), of_order(random, order);
    GuardedArray given(random, k, shape, spaced & 4);
    RandomResult result(random, {}, 1, true);
    result.given = given;
    result.before.assign(given.pages.begin(), given.pages.end());
    Call call = Call().array(1, source.descriptor).array(2, of_shape.descriptor);
    call.array(3, pad.descriptor, pad.size() > 0 || coin(random));
    call.array(4, of_order.descriptor, ordered);
    call.list.Flags = rest == 0 || pad.size() > 0 ? random() : ~1U;
    result.attach(call);
    call(members[wide][std::min(k, 8)]);
    ASSERT_EQ(spaces_taken - spaces_given_back, result.create);

    result.given.storage.assign(given.pages.begin(), given.pages.end());
    std::vector<std::ptrdiff_t> written;
    std::string right(total * size, 0), theirs = right;
    for (int i = 0; i < total && (i < offered || pad.size() > 0); ++i) {
        const std::size_t to = place(shape, order, i);
        const std::byte *from = i < offered ? source.at(i) : pad.at((i - offered) % pad.size());
        ASSERT_EQ(std::memcmp(result.at(to), from, size), 0) << "element " << i;
        if (size > 0) std::memcpy(&right[to * size], from, size);
        written.push_back(given.offsets[to]);
    }
    result.given.offsets = written; // without PAD what lies behind stays as it was
    ASSERT_EQ(result.complaint(size), "");
    if (rank > 3 || spaced != 0 || size == 0 || int(written.size()) < total) return;
    Shape extents = shape;
    for (int dim = rank + 1; dim <= 3; ++dim) extents.push_back(1), order.push_back(dim);
    fortran_reshape(size, offered, pad.size(), extents.data(), order.data(), source.descriptor.BASE,
                    pad.descriptor.BASE, theirs.data());
    ASSERT_TRUE(right == theirs);
}

TEST(Reshape, AgreesWithModelAndFortran) {
    Random random(random_seed());
    for (int i = random_rounds(3000); i-- && !HasFatalFailure();) try_call(random, i % 15, i % 2);
}

TEST(Reshape, WantsAnOrderOfRank1) {
    Random random(random_seed());
    std::vector<int> words(4);
    Integers shape(random, {2, 2}), order(random, {2, 1});
    f90_ArrDesc source = over(words, {4}), result = {};
    order.descriptor.RANK = 2;
    order.descriptor.Dim[1] = {1, 1, 2};
    const std::string shapes = " Array arguments SHAPE and ORDER should have the same shape.\n"
                               " The shape of argument SHAPE is: (2).\n"
                               " The shape of argument ORDER is: (2, 1).\n";
    Call call = Call().checked().created_result(result).array(1, source);
    call.array(2, shape.descriptor).array(4, order.descriptor);
    EXPECT_EQ(fatal_message([&] { call(f90_reshape4); }), report("RESHAPE", shapes));
}

TEST(Reshape, ValidatesInOrder) {
    const auto size_of_shape = [](const std::string &size) {
        return " The SHAPE argument has size " + size +
               ".\n Its size should be at least 1 and no larger than 7.\n";
    };
    const auto negative = [](const std::string &shape) {
        return " The SHAPE argument should have only nonnegative elements.\n"
               " The contents of the SHAPE array is: (" +
               shape + ").\n";
    };
    const auto too_few = [](const std::string &needed, const std::string &there) {
        return " The size of the SOURCE array should be at least " + needed +
               ".\n The size of the SOURCE array is " + there + ".\n";
    };
    const auto no_permutation = [](const std::string &rank, const std::string &order) {
        return " The ORDER argument should be a permutation of the integers 1 to " + rank +
               ".\n The contents of the ORDER argument array is: (" + order + ").\n";
    };
    const std::string rank =
        " The rank of the RESULT array should be equal to the size of the SHAPE"
        " array.\n The rank of the RESULT array is 2. The size of the SHAPE"
        " array is 1.\n";
    const std::string sizes = " Array arguments SHAPE and ORDER should have the same shape.\n"
                              " The shape of argument SHAPE is: (2).\n"
                              " The shape of argument ORDER is: (3).\n";
    struct {
        int source, pad; // their EXTENTs; PAD is absent below 0
        Shape result;    // to create when empty
        Shape shape, order;
        std::string message;
    } cases[] = {
        {4, -1, {}, {}, {}, size_of_shape("0")},
        {4, -1, {2, 2}, {1, 1, 1, 1, 1, 1, 1, 1}, {}, size_of_shape("8")},
        {4, -1, {}, {1, 1, 1, 2, 1, 2, 1}, {7, 1, 2, 3, 6, 5, 4}, ""},
        {1, -1, {2, 2}, {-4}, {}, rank},
        {1, -1, {2, 2}, {3, -1}, {}, wrong_result("2, 2", "3, -1")},
        {1, -1, {2, 2}, {2, -1}, {}, negative("2, -1")},
        {3, 0, {2, 2}, {2, 2}, {2, 2, 2}, too_few("4", "3")},
        {3, 1, {2, 2}, {2, 2}, {2, 1}, ""},
        {0, -1, {}, {1 << 16, 1 << 16}, {2, 1}, ""}, // as 32-bit words multiply
        {4, -1, {}, {2, 2}, {1, 2, 2}, sizes},
        {4, -1, {}, {2, 2}, {1, 1}, no_permutation("2", "1, 1")},
        {4, -1, {}, {2, 2}, {0, 1}, no_permutation("2", "0, 1")},
        {4, -1, {}, {2, 2}, {1, 3}, no_permutation("2", "1, 3")},
    };
    Random random(random_seed());
    for (auto &c : cases)
        for (const bool wide : {false, true}) {
            std::array<int, 4> elements = {};
            f90_ArrDesc source = shaped({c.source}, 4), pad = shaped({c.pad}, 4);
            f90_ArrDesc result = shaped(c.result, 4);
            source.BASE = elements.data();
            Integers shape(random, c.shape), order(random, c.order);
            Call call = Call().checked().array(0, result, !c.result.empty()).array(1, source);
            call.array(2, shape.descriptor).array(3, pad, c.pad >= 0);
            call.array(4, order.descriptor, !c.order.empty());
            const std::string expected = c.message.empty() ? "status 0: "
                                         : wide            ? report_of_unknown("KRESHAPE")
                                                           : report("RESHAPE", c.message);
            const auto fatal = [&](f90_Intrinsic *entry) {
                return fatal_message([&] { call(entry); });
            };
            EXPECT_EQ(fatal(wide ? f90_kReshape_Validation : f90_Reshape_Validation), expected);
            if (c.message.empty()) continue;
            EXPECT_EQ(fatal(members[wide][(&c - cases) % 9]), expected);
        }
}
} // namespace

// MAXVAL, MINVAL, MAXLOC and MINLOC of every type, and the forms with 64-bit positions,
// against one model: the elements in array element order, each against the best so
// far, and what the search starts from.
#include "support.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace test;

enum Form { Value, Position, LongPosition };
enum Extreme { Greatest, Least };

// Values are bytes here and are read as numbers in comparisons only, so that the bits
// of a NaN stay what they are.
struct Type {
    const char *name;
    int storage, used;  // bytes of an element, and of its value
    const void *limits; // the least finite value and the greatest
    bool (*replaces[2])(const std::byte *element, const std::byte *best);
    WriteSort *write_sort;
    f90_Intrinsic *members[3][2];
};

void PrintTo(const Type &type, std::ostream *out) { *out << type.name; }

template <class T> const T limits[] = {least<T>, greatest<T>};

template <class T> bool more(const std::byte *element, const std::byte *best) {
    return read<T>(element) > read<T>(best);
}

// In the kinds that the processor knows, a NaN becomes the least and is replaced in turn.
template <class T> bool less(const std::byte *element, const std::byte *best) {
    constexpr bool hard = is_real<T> && !std::is_same_v<T, __float128>;
    return hard ? !(read<T>(element) >= read<T>(best)) : read<T>(element) < read<T>(best);
}

template <class T, class... M> Type type(const char *name, M... m) {
    return {name, sizeof(T), used_bytes<T>, limits<T>, {more<T>, less<T>}, write_sort<T>, {m...}};
}

const Type types[] = {
    type<std::int8_t>("i1", f90_maxvali1, f90_minvali1, f90_maxloci1, f90_minloci1, f90_kmaxloci1,
                      f90_kminloci1),
    type<std::int16_t>("i2", f90_maxvali2, f90_minvali2, f90_maxloci2, f90_minloci2, f90_kmaxloci2,
                       f90_kminloci2),
    type<std::int32_t>("i4", f90_maxvali4, f90_minvali4, f90_maxloci4, f90_minloci4, f90_kmaxloci4,
                       f90_kminloci4),
    type<std::int64_t>("i8", f90_maxvali8, f90_minvali8, f90_maxloci8, f90_minloci8, f90_kmaxloci8,
                       f90_kminloci8),
    type<float>("r4", f90_maxvalr4, f90_minvalr4, f90_maxlocr4, f90_minlocr4, f90_kmaxlocr4,
                f90_kminlocr4),
    type<double>("r8", f90_maxvalr8, f90_minvalr8, f90_maxlocr8, f90_minlocr8, f90_kmaxlocr8,
                 f90_kminlocr8),
    type<long double>("r10", f90_maxvalr10, f90_minvalr10, f90_maxlocr10, f90_minlocr10),
    type<__float128>("r16", f90_maxvalr16, f90_minvalr16, f90_maxlocr16, f90_minlocr16),
};

class Extrema : public testing::TestWithParam<Type> {};
INSTANTIATE_TEST_SUITE_P(Types, Extrema, testing::ValuesIn(types),
                         [](const auto &type) { return std::string(type.param.name); });

// ---- The model --------------------------------------------------------------

struct Search {
    const Type &type;
    Form form;
    Extreme extreme;
    Array &array;
    int along; // 0: the whole array
    MaskKind kind;
    Array &mask;
};
const int none = -1;

// Of an element; of none the start value, the finite limit at the other end.
const std::byte *value_of(const Search &s, int element) {
    if (element != none) return s.array.at(std::size_t(element));
    return static_cast<const std::byte *>(s.type.limits) + s.extreme * s.type.storage;
}

// Along a dimension, or in the one that result element r is for; none is (0, 1, 1...) there.
std::int64_t position_of(const Search &s, int element, int r) {
    if (element == none) return s.along == 0 && r != 0;
    const int dim = s.along == 0 ? r + 1 : s.along;
    return std::int64_t(position_along(s.array.shape, dim, std::size_t(element)));
}

// Number of the best element of each run. The forms with 32-bit positions start from the
// first selected element, the others from the start value or, where `by_first`, from the
// first element of the run if that is selected.
std::vector<int> best_of_runs(const Search &s) {
    const bool by_first = s.along != 0 || (s.form == Value && s.kind != MaskKind::Array &&
                                           s.array.descriptor.NONCONTIG == 0);
    std::vector<int> runs(s.along == 0 ? 1 : elements(without(s.array.shape, s.along)), none);
    for (std::size_t i = 0; i < s.array.size(); ++i) {
        if (!selects(s.kind, s.mask, i)) continue;
        int &best = runs[result_index(s.array.shape, s.along, i)];
        const bool first = by_first && position_along(s.array.shape, s.along, i) == 1;
        const bool starts = s.form == Position ? best == none : first;
        if (starts || s.type.replaces[s.extreme](s.array.at(i), value_of(s, best))) best = int(i);
    }
    return runs;
}

// ---- Random calls -----------------------------------------------------------

void try_call(Random &random, int dim, const Search &s) {
    const int rank = s.array.descriptor.RANK;
    const int size = s.form == Value ? s.type.storage : s.form == Position ? 4 : 8;
    const int used = s.form == Value ? s.type.used : size;
    const int unit = s.form != Position && size >= 8 && coin(random) ? 4 : 0;
    Shape shape = s.form == Value ? Shape{} : Shape{rank};
    if (s.along != 0) shape = without(s.array.shape, s.along);
    RandomResult result(random, shape, size, true, unit);

    Call call = Call().array(1, s.array.descriptor);
    call.list.Flags = coin(random) ? 1 : ~1U;
    if (s.kind != MaskKind::None) call.array(3, s.mask.descriptor);
    if (dim != 0) call.value(2, rank == 1 && call.list.Flags != 1 ? pick(random, 1, 9) : dim);
    result.attach(call);
    call(s.type.members[s.form][s.extreme]);

    SCOPED_TRACE("form " + std::to_string(s.form) + ", extreme " + std::to_string(s.extreme));
    const std::vector<int> best = best_of_runs(s);
    for (std::size_t r = 0; r < elements(shape); ++r) {
        const int element = best[std::min(r, best.size() - 1)];
        const std::int64_t position = position_of(s, element, int(r));
        const void *expected = &position;
        if (s.form == Value) expected = value_of(s, element);
        ASSERT_EQ(std::memcmp(result.at(r), expected, std::size_t(used)), 0) << "element " << r;
    }
    ASSERT_EQ(result.complaint(used), "");
    const f90_DimInfo first = result.created.Dim[0];
    ASSERT_TRUE(!result.create || !shape.empty() || (first.Lower == 0 && first.Upper == 0));
}

// All members of a type on one random array. The forms with 32-bit positions take it
// that Stride counts elements.
void try_random_calls(Random &random, const Type &type, const Shape &shape, int dim) {
    const int rank = int(shape.size());
    const int unit = type.storage >= 8 && pick(random, 0, 2) == 0 ? 4 : 0;
    Array array = make_array(random, shape, type.storage, coin(random), unit);
    fill(random, array, type.write_sort);
    const auto kind = static_cast<MaskKind>(pick(random, 0, 9) % 4);
    Array mask = random_mask(random, shape, kind);
    if (kind == MaskKind::False) array.descriptor.BASE = nullptr;
    SCOPED_TRACE("rank " + std::to_string(rank) + ", DIM " + std::to_string(dim) + ", mask kind " +
                 std::to_string(int(kind)) + ", elements " + std::to_string(array.size()));
    for (const Form form : {Value, Position, LongPosition})
        for (const Extreme e : {Greatest, Least})
            if (type.members[form][e] != nullptr && !testing::Test::HasFatalFailure() &&
                (form != Position || array.descriptor.SCALEFACTOR == type.storage))
                try_call(random, dim, {type, form, e, array, rank == 1 ? 0 : dim, kind, mask});
}

TEST_P(Extrema, AgreeWithTheModel) {
    Random random(random_seed());
    for (int i = 0; i < random_rounds(1500) && !HasFatalFailure(); ++i) {
        const Shape shape = random_shape(random);
        try_random_calls(random, GetParam(), shape, pick(random, 0, int(shape.size())));
    }
    // Longer than positions in 8-bit and 16-bit lanes would last.
    for (int i = 0; i < random_rounds(2) && !HasFatalFailure(); ++i)
        for (const int dim : {0, 1, 2})
            try_random_calls(random, GetParam(), dim == 2 ? Shape{9, 33000} : Shape{66000, 2}, dim);
}

// ---- Literal cases ----------------------------------------------------------

using Words = std::vector<std::int32_t>;

// What a call leaves in a result of n elements, all 7 before, word by word; of 64-bit
// positions the low word comes first.
Words answer(f90_Intrinsic *member, Call call, int n, int elsize = 4) {
    Words words(std::size_t(n * elsize / 4), 7);
    f90_ArrDesc result = shaped({n}, elsize);
    result.BASE = words.data();
    call.result(result)(member);
    return words;
}

TEST(ExtremaOfReals, WhatASearchStartsFrom) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float huge = greatest<float>;
    enum Layout { Dense, Noncontig, Masked };
    struct {
        std::vector<float> array;
        Layout layout;
        float values[2];
        int positions[2], long_positions[2];
    } cases[] = {
        {{}, Dense, {-huge, huge}, {0, 0}, {0, 0}},
        {{3, 7, 7, 1}, Dense, {7, 1}, {2, 4}, {2, 4}},
        {{nan, 1}, Dense, {nan, 1}, {1, 2}, {2, 2}},
        {{nan, 1}, Noncontig, {1, 1}, {1, 2}, {2, 2}},
        {{1, nan}, Dense, {1, nan}, {1, 2}, {1, 2}},
        {{1, nan, 5}, Dense, {5, 5}, {3, 3}, {3, 3}},
        {{1, 5, nan}, Dense, {5, nan}, {2, 3}, {2, 3}},
        {{nan, nan}, Masked, {-huge, nan}, {1, 2}, {0, 2}},
        {{-inf, -inf}, Dense, {-inf, -inf}, {1, 1}, {0, 1}},
        {{-inf, -inf}, Noncontig, {-huge, -inf}, {1, 1}, {0, 1}},
        {{-inf, -inf}, Masked, {-huge, -inf}, {1, 1}, {0, 1}},
        {{inf, inf}, Noncontig, {inf, huge}, {1, 1}, {1, 0}},
        {{-huge, -huge}, Dense, {-huge, -huge}, {1, 1}, {0, 1}},
        {{0.0F, -0.0F}, Dense, {0.0F, 0.0F}, {1, 1}, {1, 1}},
    };
    const auto &[value, position, long_position] = types[4].members;
    for (auto &c : cases) {
        const int n = int(c.array.size());
        Words words = {256, 1, INT32_MIN, 2};
        f90_ArrDesc array = over(c.array, {n});
        f90_ArrDesc mask = over(words, {n});
        array.NONCONTIG = c.layout == Noncontig;
        const Call call = Call().checked().array(1, array).array(3, mask, c.layout == Masked);
        SCOPED_TRACE("case " + std::to_string(&c - cases));
        for (const Extreme e : {Greatest, Least}) {
            EXPECT_EQ(answer(value[e], call, 1)[0], std::bit_cast<std::int32_t>(c.values[e]));
            EXPECT_EQ(answer(position[e], call, 1), Words{c.positions[e]});
            EXPECT_EQ(answer(long_position[e], call, 1, 8), (Words{c.long_positions[e], 0}));
        }
    }
}

TEST(ExtremaOfIntegers, ByExtents) {
    Words numbers = {3, 7, 5, 1};
    std::int32_t word = 0;
    f90_ArrDesc no = scalar(&word, 4);
    f90_ArrDesc cube = over(numbers, {2, 1, 2});
    EXPECT_EQ(answer(f90_maxvali4, Call().array(1, cube).value(2, 0), 1), Words{7}) << "no check";

    // A false MASK: a result along DIM is filled by its own extents.
    Call call = Call().array(1, cube).array(3, no);
    EXPECT_EQ(answer(f90_maxloci4, call, 3), (Words{0, 1, 1}));
    EXPECT_EQ(answer(f90_kmaxloci4, call, 3, 8), (Words{0, 0, 1, 0, 1, 0}));
    call.value(2, 1);
    EXPECT_EQ(answer(f90_maxvali4, call, 5), Words(5, INT32_MIN));
    EXPECT_EQ(answer(f90_minloci4, call, 5), Words(5, 0));
    EXPECT_EQ(answer(f90_kminloci4, call, 5, 8), Words(10, 0));

    // The checks take extents 0 and 1 for equal.
    f90_ArrDesc empty = shaped({0, 2}, 4);
    call = Call().checked().array(1, empty).value(2, 2);
    EXPECT_EQ(answer(f90_minvali4, call, 1), Words{INT32_MAX});
    EXPECT_EQ(answer(f90_minloci4, call, 1), Words{0});
    EXPECT_EQ(answer(f90_kminloci4, call, 1, 8), (Words{0, 0}));
    f90_ArrDesc pair = over(numbers, {1, 2});
    call.array(1, pair);
    EXPECT_EQ(answer(f90_maxvali4, call, 0), Words{}) << "nothing to write";
}

// Which of Stride, SCALEFACTOR and the element's size make a step.
TEST(ExtremaOfIntegers, BySteps) {
    Words numbers = {0, 9, 1, 4, 3, 6, 7, 0, 5};
    Words words = {1, 1, 0, 0, 1, 0, 1, 0, 0};
    f90_ArrDesc row = over(numbers, {2});
    row.Dim[0].Stride = 3;
    EXPECT_EQ(answer(f90_maxvali4, Call().array(1, row), 1), Words{9});
    EXPECT_EQ(answer(f90_maxloci4, Call().array(1, row), 1), Words{1}) << "offset 1 / 3, + 1";
    row.NONCONTIG = 1;
    EXPECT_EQ(answer(f90_maxvali4, Call().array(1, row), 1), Words{4});

    f90_ArrDesc array = over(numbers, {2, 2});
    f90_ArrDesc mask = over(words, {2, 2});
    array.NONCONTIG = 1;
    array.SCALEFACTOR = mask.SCALEFACTOR = 8;
    array.Dim[1].Stride = mask.Dim[1].Stride = 3;
    const Call whole = Call().array(1, array);
    const Call along = Call().array(1, array).value(2, 2);
    const Call masked = Call().array(1, array).array(3, mask);
    EXPECT_EQ(answer(f90_maxloci4, whole, 2), (Words{2, 2})) << "of 0 1, 4 6";
    EXPECT_EQ(answer(f90_maxloci4, along, 2), (Words{2, 1})) << "of 0 4, 9 3";
    EXPECT_EQ(answer(f90_maxloci4, masked, 2), (Words{2, 1})) << "of 0 9, 3";
    EXPECT_EQ(answer(f90_kmaxloci4, whole, 2, 8), (Words{1, 0, 2, 0})) << "of 0 1, 7 5";
    EXPECT_EQ(answer(f90_kmaxloci4, along, 2, 8), (Words{2, 0, 2, 0})) << "of 0 7, 1 5";
    EXPECT_EQ(answer(f90_kmaxloci4, masked, 2, 8), (Words{1, 0, 2, 0})) << "of 0, 7";
    array.SCALEFACTOR = 2;
    EXPECT_EQ(answer(f90_maxloci4, whole, 2), (Words{1, 2})) << "of 0 0, 4 4";

    Words spread(4, -1);
    f90_ArrDesc result = over(spread, {2});
    result.NONCONTIG = 1;
    result.SCALEFACTOR = 8;
    result.Dim[0].Stride = 2;
    Call(along).result(result)(f90_maxloci4);
    EXPECT_EQ(spread, (Words{2, -1, 1, -1}));
}

// ---- Checks -----------------------------------------------------------------

TEST_P(Extrema, ReportMisuse) {
    const struct {
        Form first;
        int dim;            // 0: none
        Shape mask, result; // no extents: to be created
        std::string report;
    } cases[] = {
        {Value, 4, {3, 0, 6}, {3, 5}, wrong_dim(4, 3)},
        {Value, -1, {3, 0, 6}, {}, wrong_dim(-1, 3)},
        {Value, 2, {3, 0, 6}, {}, wrong_mask("3, 0, 4", "3, 0, 6")},
        {Value, 3, {3, 0, 6}, {3, 5}, wrong_mask("3, 0, 4", "3, 0, 6")},
        {Value, 3, {3, 1, 4}, {3, 5}, wrong_result("3, 5", "3, 0")},
        {Position, 0, {3, 0, 6}, {2}, wrong_mask("3, 0, 4", "3, 0, 6")},
        {Position, 0, {3, 1, 4}, {2, 1}, " The RESULT array has size 2. It should have size 3.\n"},
        {Position, 0, {3, 1, 4}, {3, 1}, wrong_result("3, 1", "3")},
    };
    const std::string names[][2] = {
        {"MAXVAL", "MINVAL"}, {"MAXLOC", "MINLOC"}, {"KMAXLOC", "KMINLOC"}};
    const bool in_full = GetParam().storage == 8; // the first case is for all types
    for (const auto &c : cases)
        for (const Form form : {Value, Position, LongPosition})
            for (const Extreme e : {Greatest, Least}) {
                f90_Intrinsic *const member = GetParam().members[form][e];
                if (member == nullptr || form < c.first || (&c != cases && !in_full)) continue;
                f90_ArrDesc array = shaped({3, 0, 4}, GetParam().storage);
                f90_ArrDesc mask = shaped(c.mask, 4);
                f90_ArrDesc result = shaped(c.result, 8);
                Call call = Call().checked().array(0, result, !c.result.empty()).array(1, array);
                call.slot(2, std::uintptr_t(c.dim), c.dim != 0).array(3, mask);
                const std::string &name = names[form][e];
                EXPECT_EQ(fatal_message([&] { call(member); }),
                          form == LongPosition ? report_of_unknown(name) : report(name, c.report));
            }
}

} // namespace

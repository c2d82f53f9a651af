// The engines and kernels of MATMUL, every member of each family, against one naive model:
// which products make a sum, by which order of k, and when a sum is stored into C. Storage
// ends with the operands; what lies about the elements of C must stay.
#include "frame/elements.h"
#include "guarded.h"
#include "matmul/adaptive_engine.h"
#include "support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <tuple>

namespace {

using namespace test;
using Ints = std::vector<int>;

// ---- Types and families -----------------------------------------------------

// clang-format off
// Elements of one or two Part, in arithmetic held as Value: integers wide, logicals as bool.
template <class Element, class PartOf, class Value> struct Kind {
    using Api = Element; using Part = PartOf;
    static constexpr int size = sizeof(Api), part = sizeof(Part), parts = size / part;
    static constexpr bool logical = std::is_same_v<Value, bool>;
    using Number = std::array<Value, parts>;
};
// Of kernels: rows of a packed group; what kc is a multiple of in f90_Inner2x2; a chunk of k in
// products with a vector; what kc is a multiple of in f90_Inner1x2, in f90_Inner2x1. Of engines
// with fixed blocks: columns and rows of a block, a chunk of k, rows of a strip and of a unit.
struct Sizes { int group, step, chunk, row_step = 0, column_step = 0;
               int columns = 0, rows = 0, deep = 16, strip = 0, unit = 0; };
#define TYPE(T, Element, Part, Value, ...)                                                         \
    struct T : Kind<Element, Part, Value> { static constexpr Sizes sizes{__VA_ARGS__}; };
TYPE(Int1,      int8_t,        uint8_t,     uint64_t,    4, 2, 1536, 4, 2, 256, 128, 128, 32, 4)
TYPE(Int2,      int16_t,       uint16_t,    uint64_t,    4, 8,  512, 4, 2)
TYPE(Int4,      int32_t,       uint32_t,    uint64_t,    4, 4,  256, 4, 1,  96,  96,  64, 16, 4)
TYPE(Int8,      int64_t,       uint64_t,    uint64_t,    4, 2,  256, 4, 1,  64,  64,  64,  8, 4)
TYPE(Log1,      int8_t,        uint8_t,     bool,        0, 0,   16)
TYPE(Log2,      int16_t,       uint16_t,    bool,        0, 0,   16)
TYPE(Log4,      int32_t,       uint32_t,    bool,        0, 0,   16)
TYPE(Log8,      int64_t,       uint64_t,    bool,        0, 0,   16)
TYPE(Real4,     float,         float,       float,       4, 2,  512, 4, 2)
TYPE(Real8,     double,        double,      double,      4, 2,  256, 4, 2)
TYPE(Real10,    long double,   long double, long double, 4, 2,  128, 2, 2,  64,  64,  32,  8, 4)
TYPE(Real16,    __float128,    __float128,  __float128,  4, 2,  128, 2, 2)
TYPE(Complex8,  f90_Complex8,  float,       float,       4, 2,  128)
TYPE(Complex16, f90_Complex16, double,      double,      2, 2,  128, 2, 1,  96,  64,  32,  8, 2)
TYPE(Complex20, f90_Complex20, long double, long double, 2, 2,  128, 2, 2,  64,  64,  32,  8, 4)
TYPE(Complex32, f90_Complex32, __float128,  __float128,  4, 2,  128, 2, 2,  64,  64,  32,  8, 4)
template <class T> constexpr bool is_adaptive = !T::logical && T::sizes.columns == 0;

// With a vector, row stands for v x B and column for A x v.
enum Role { Engine, Forward, Inner, Edge, Tile, Whole, Split, Group, Copy, Gather, Zero };
struct Family { Role role; bool row = false, column = false; };
constexpr Family Engine2x2{Engine}, Engine1x2{Engine, true}, Engine2x1{Engine, false, true},
    Inner2x2{Inner}, Inner1x2{Inner, true}, Inner2x1{Inner, false, true}, Epilogue2x2{Edge},
    Epilogue1x2{Edge, true}, Epilogue2x1{Edge, false, true}, Blocking{Forward}, Vector{Tile},
    MatMulVxM{Whole, true}, MatMulMxV{Whole, false, true}, Trans2{Split}, ConvertBlock{Group},
    CopyBlock{Copy}, CopyVector{Gather}, InitVector{Zero};
// clang-format on

// ---- Model ------------------------------------------------------------------

// How one k comes into a sum. A complex sum takes the products one by one, or the product of
// this k when that is finished; in pairs, p(k) + p(k + 1) is added.
enum Form { OneByOne, Finished, Pairs };
// A sum that is stored into C, or added to it: first k and how many, form, whether it is added.
using Steps = std::vector<std::tuple<int, int, Form, bool>>;

template <class T, class Number = typename T::Number>
Number sum_of(const Number *a, const Number *b, int count, Form form) {
    Number sum = {};
    for (int k = 0; k < count; ++k) {
        const auto &[x, y] = std::tie(a[k], b[k]);
        if constexpr (T::parts == 1) {
            const bool pair = form == Pairs && ++k < count;
            sum[0] = sum[0] + (pair ? x[0] * y[0] + a[k][0] * b[k][0] : x[0] * y[0]);
        } else if (form == OneByOne) {
            sum = {sum[0] + x[0] * y[0] - x[1] * y[1], sum[1] + x[0] * y[1] + x[1] * y[0]};
        } else {
            sum = {sum[0] + (x[0] * y[0] - x[1] * y[1]), sum[1] + (x[0] * y[1] + x[1] * y[0])};
        }
    }
    return sum;
}

// What is left of k behind the whole chunks comes first: a multiple of `step`, then the rest.
Steps tail_first(int k, int chunk, int step, Form of_tail, Form of_chunks) {
    const int whole = k / chunk * chunk, stepped = (k - whole) / step * step;
    Steps steps = {{whole, stepped, of_tail, false}, // a zero, if there is none
                   {whole + stepped, k - whole - stepped, Finished, true}};
    for (int i = 0; i < whole; i += chunk) steps.push_back({i, chunk, of_chunks, true});
    return steps;
}

// The chunks of an adaptive engine, then columns and rows of a block.
Ints model_blocks(int k, int size) {
    const int longest = 16384 / size, align = 32 / size, half_rows = 131072 / size;
    const int fewest = k / longest + (k % longest != 0 ? 1 : 0);
    int chunk = (k / fewest + align - 1) / align * align;
    if (chunk % (128 / size) == 0) chunk -= 8;
    if (chunk == 0) chunk = k; // kind 16, k of 7 and 8
    Ints blocks(std::size_t(k / chunk), chunk);
    const int rest = k % chunk;
    if (rest > 0 && (blocks.empty() || chunk + rest >= longest)) blocks.push_back(0);
    if (rest > 0) blocks.back() += rest;
    const int basis = blocks[0], more = half_rows % basis >= basis / 2 ? 2 : 0;
    const int columns = std::max(65536 / size / basis / 2 * 2 - 2, 2);
    blocks.insert(blocks.end(), {columns, half_rows / basis * 2 + more});
    return blocks;
}

// The steps of an element of C in this row.
template <class T> Steps matrix_steps(int row, int m, int n, int k) {
    if constexpr (constexpr Sizes s = T::sizes; s.columns != 0) {
        const int place = row % s.rows; // in a block of so many rows:
        const int height = std::min(m - (row - place), s.rows), strips = height / s.strip * s.strip;
        const int units = strips + (height - strips) / s.unit * s.unit;
        return tail_first(k, s.deep, s.step, place < strips ? OneByOne : Finished,
                          place < units ? OneByOne : Finished);
    }
    const bool small = T::parts == 1 && std::int64_t{k} * n * T::size < 16000;
    const Ints blocks = small || T::logical ? Ints{k} : model_blocks(k, T::size);
    Steps steps;
    for (int i = 0, first = 0; i == 0 || first < k; first += blocks[i++])
        steps.push_back({first, blocks[i], OneByOne, i > 0});
    return steps;
}

// ---- Operands ---------------------------------------------------------------

// Any strides, of operands overlapping ones too; a stride of 1; dense lines, each behind the last.
enum Layout { Operand, Result, Along, Across, Packed };
// Lines of elements along k; of C, its rows. They lie between `from` and `to`.
template <class T> struct Lines {
    int count, length, across = 1, along = 1; // strides from line to line and in a line
    std::byte *base = nullptr, *from = nullptr, *to = nullptr;
    std::vector<typename T::Number> numbers = {};

    std::byte *at(int i, int part = 0) const {
        return base + (i / length * across + i % length * along) * T::size + part * T::part;
    }
    std::vector<std::byte> bytes() const { return {from, to}; }
    auto *first() const { return reinterpret_cast<typename T::Api *>(base); }
};

// Sorts of values for write_sort, special ones at times. Of logicals, + is false.
std::string random_mix(Random &random) {
    const std::string mix = std::array{"o", "of", "os+-", "+++++++o"}[pick(random, 0, 3)];
    return pick(random, 0, 3) == 0 ? std::string(200, mix[0]) + mix + "ijnhl" : mix;
}

// Storage ends on one side of the lines, or close by.
template <class T>
auto random_lines(Random &random, int area, int count, int length, Layout layout, std::string of) {
    static const Guarded all[] = {Guarded(8 << 20), Guarded(8 << 20), Guarded(8 << 20)};
    const Guarded &pages = all[area];
    Lines<T> lines = {count, length};
    const bool any = layout <= Result, dense_lines = any ? coin(random) : layout != Across;
    int &inner = dense_lines ? lines.along : lines.across;
    int &outer = dense_lines ? lines.across : lines.along;
    if (any && coin(random)) inner = pick(random, 1, 3);
    outer = inner * std::max(dense_lines ? length : count, 1) + pick(random, 0, 5) / 2;
    if (layout != Packed && coin(random)) outer = -outer;
    if (any && pick(random, 0, 2) == 0) inner = -inner;
    if (layout == Operand && pick(random, 0, 15) == 0) inner = outer = pick(random, -2, 2);
    lines.base = lines.from = lines.to = pages.end();
    if (count * length == 0) return lines; // not to be touched
    const auto [left, right] = std::minmax({0, (count - 1) * lines.across});
    const auto [down, up] = std::minmax({0, (length - 1) * lines.along});
    const int lowest = (left + down) * T::size, highest = (right + up + 1) * T::size;
    const int slack = coin(random) ? 0 : pick(random, 0, 15) * std::min(T::part, 4);
    lines.base = coin(random) ? pages.begin() + slack - lowest : pages.end() - slack - highest;
    lines.from = std::max(pages.begin(), lines.base + lowest - 1024);
    lines.to = std::min(pages.end(), lines.base + highest + 1024);
    using Part = typename T::Part;
    for (int i = 0; i < count * length * T::parts; ++i)
        write_sort<Part>(random, lines.at(i / T::parts, i % T::parts), of[random() % of.size()], i);
    lines.numbers.resize(std::size_t(count * length));
    for (int i = 0; i < count * length * T::parts; ++i)
        lines.numbers[i / T::parts][i % T::parts] =
            read<Part>(lines.at(i / T::parts, i % T::parts));
    return lines;
}

// Whether the call makes of each row of C what its steps make, a NaN for a NaN, and writes
// nothing else.
template <class T, class L = Lines<T>>
bool makes(const L &c, auto steps_of, const L &a, const L &b, auto function, auto arguments) {
    using Part = typename T::Part;
    const auto a_before = a.bytes(), b_before = b.bytes();
    auto wanted = c.bytes();
    std::apply(function, arguments);
    for (int i = 0; i < c.count * c.length; ++i) {
        const auto *const row = a.numbers.data() + i / c.length * a.length;
        const auto *const column = b.numbers.data() + i % c.length * b.length;
        auto number = c.numbers[i];
        for (const auto &[first, count, form, adds] : steps_of(i / c.length)) {
            auto sum = sum_of<T>(row + first, column + first, count, form);
            for (int p = 0; p < T::parts && adds; ++p) sum[p] = sum[p] + number[p];
            number = sum;
        }
        for (int p = 0; p < T::parts; ++p) {
            const Part got = read<Part>(c.at(i, p)), part = Part(number[p]);
            std::byte *const to = &wanted[c.at(i, p) - c.from];
            write(to, part);
            if (got != got && part != part) std::memcpy(to, c.at(i, p), used_bytes<Part>);
        }
    }
    return a.bytes() == a_before && b.bytes() == b_before && c.bytes() == wanted;
}

int near(Random &random, int of) { return abs(pick(random, 0, 2) * of + pick(random, -3, 9)); }
int few(Random &random) { return pick(random, 0, coin(random) ? 9 : 70); }
// What comes at i in packed lines of k: an element, by groups of g lines; a line, even ones first.
int grouped(int i, int g, int k) { return (i / (k * g) * g + i % g) * k + i / g % k; }
int split(int i, int lines) { return 2 * i < lines ? 2 * i : 2 * (i - (lines + 1) / 2) + 1; }

// ---- Properties -------------------------------------------------------------

// About the sizes of blocks and the limits of paths, within a budget of products.
template <class T> std::tuple<int, int, int> random_extents(Random &random) {
    const int budget = (pick(random, 0, 9) == 0 ? 1500000 : 30000) / (T::part == 16 ? 10 : 1);
    int columns = T::sizes.columns, rows = T::sizes.rows, k = near(random, T::sizes.deep);
    if constexpr (is_adaptive<T>) {
        const int most = 16384 / T::size;
        const int ks[] = {k, 16, few(random), near(random, most / 2), near(random, most)};
        k = std::max(ks[pick(random, 0, 4)], 1);
        const Ints blocks = model_blocks(k, T::size);
        columns = coin(random) ? blocks.end()[-2] : 16000 / T::size / k, rows = blocks.back();
        // More than the work area holds of chunks as short as this.
        if (T::parts == 2 && k == 1) return {coin(random) ? 22000 : 17000, pick(random, 1, 3), 1};
    }
    const int m = std::max(coin(random) ? near(random, rows) : few(random), int{is_adaptive<T>});
    const int n = std::max(coin(random) ? near(random, columns) : few(random), int{is_adaptive<T>});
    const bool fits = double(m) * n * k <= budget && std::max({m * n, m * k, n * k}) < 80000;
    return fits ? std::tuple(m, n, k) : random_extents<T>(random);
}

template <bool are_there = true> auto given(auto... arguments) {
    return std::get<are_there>(std::pair(std::tuple(), std::tuple(arguments...)));
}
// Vectors come without an extent and a stride, dense operands without their strides of 1.
template <class T, Family F, class L = Lines<T>>
auto arguments(int flag, int m, int n, int k, const L &a, const L &b, const L &c) {
    constexpr bool row = F.row, column = F.column, swaps = F.role == Forward;
    constexpr bool dense_a = F.role == Inner && !column, dense_b = F.role == Inner && !row;
    constexpr bool flagged = (F.role == Inner || F.role == Edge) && !(column && is_adaptive<T>);
    const int half = (n + 1) / 2, even = (m + 1) / 2;
    if constexpr (F.role == Tile)
        return std::tuple(flag, k, n, m, b.first(), b.first() + half * b.across, b.across,
                          a.first(), a.first() + even * a.across, a.across, c.first(), c.along,
                          c.across, half * c.along);
    else
        return std::tuple_cat(given<flagged>(flag), given<!row>(m), given<!column>(swaps ? k : n),
                              given(swaps ? n : k, a.first()), given<!(row || dense_a)>(a.across),
                              given<!dense_a>(a.along), given(b.first()), given<!dense_b>(b.along),
                              given<!column>(b.across), given(c.first()), given<!row>(c.across),
                              given<!column>(c.along));
}

template <class T, Family F> bool agrees(Random &random, auto function) {
    constexpr bool row = F.row, column = F.column, inner = F.role == Inner, tile = F.role == Tile;
    constexpr bool blocked = F.role == Forward || (F.role == Engine && !row && !column);
    constexpr Sizes sizes = T::sizes;
    constexpr int step = row ? sizes.row_step : column ? sizes.column_step : sizes.step;
    constexpr int group = inner && !row && !column ? sizes.group : 1;
    const int flag = std::array{0, 1, 1, 2, -1}[pick(random, 0, 4)], least = F.role == Whole;
    int m = row ? 1 : std::max(few(random) / group * group, least);
    int n = column ? 1 : std::max(few(random), least);
    int k = few(random) / 4 * (inner ? step : 1);
    if (F.role == Engine || F.role == Whole) k = std::max(near(random, sizes.chunk), least);
    if ((row || column) && pick(random, 0, 15) == 0)
        (row ? n : m) = pick(random, 71, k > 24 ? 200 : 200 + 9000 / T::size);
    if (blocked) std::tie(m, n, k) = random_extents<T>(random);
    const auto steps = [&](int i) -> Steps {
        // f90_Inner2x1 of kind 16 takes k in pairs in groups of four rows.
        const bool pairs = std::is_same_v<T, Real16> && column && i < m / 4 * 4;
        const Form form = F.role == Edge ? Finished : pairs ? Pairs : OneByOne;
        if (blocked) return matrix_steps<T>(i, m, n, k);
        if (T::logical || F.role == Whole) return {{0, k, form, false}};
        if (F.role == Engine) return tail_first(k, sizes.chunk, step, form, form);
        return {{0, k, form, flag == 1 || (column && is_adaptive<T>) || (tile && flag != 0)}};
    };
    const bool plain = coin(random);
    const Layout of_a = tile ? Packed : row && inner ? Along : plain ? Across : Operand;
    const Layout of_b = tile ? Packed : (!row && inner) || plain ? Along : Operand;
    const auto c = random_lines<T>(random, 2, m, n, plain ? Across : Result, random_mix(random));
    const auto b = random_lines<T>(random, 1, n, k, of_b, random_mix(random));
    auto a = random_lines<T>(random, 0, group > 1 ? 1 : m, group > 1 ? m * k : k,
                             group > 1 ? Packed : of_a, random_mix(random));
    const auto packed = a.numbers;
    a.length = k;
    for (int i = 0; i < m * k; ++i)
        a.numbers[tile ? split(i / k, m) * k + i % k : grouped(i, group, k)] = packed[i];
    return makes<T>(c, steps, a, b, function, arguments<T, F>(flag, m, n, k, a, b, c));
}

template <class T, Family F> bool copies(Random &random, auto function) {
    constexpr int group = F.role == Group ? T::sizes.group : 1;
    const int m = F.role >= Gather ? 1 : few(random) / group * group, k = few(random);
    const int kp = F.role == Split ? k + pick(random, 0, 9) : k;
    const auto src = random_lines<T>(random, 0, m, k, Operand, "ncs");
    auto dest = random_lines<T>(random, 1, 1, m * kp, F.role == Zero ? Result : Packed, "ncs");
    auto wanted = dest.bytes();
    for (int i = 0; i < m * kp; ++i)
        for (int p = 0, used = used_bytes<typename T::Part>; p < T::parts; ++p) {
            const int from = F.role == Split ? split(i / kp, m) * k + i % kp : grouped(i, group, k);
            std::byte *const to = &wanted[dest.at(i, p) - dest.from];
            std::memset(to, 0, used);
            if (F.role != Zero && i % kp < k) std::memcpy(to, src.at(from, p), used);
        }
    auto *const to = dest.first(), *const from = src.first();
    if constexpr (F.role == Split) function(to, from, m, k, src.across, src.along, kp);
    if constexpr (F.role == Group) function(to, from, m, k, src.across, src.along);
    if constexpr (F.role == Copy) function(to, from, k, m, src.along, src.across);
    if constexpr (F.role == Gather) function(to, from, k, src.along);
    if constexpr (F.role == Zero) function(to, k, dest.along);
    return dest.bytes() == wanted;
}

// ---- Literal cases ----------------------------------------------------------

// An element of a 1 x n product whose sums have these terms, by their k, and zeros.
template <class T>
T sum(void engine(int, int, int, T *, int, int, T *, int, int, T *, int, int), int n, int k,
      const std::vector<std::pair<int, double>> &terms) {
    std::vector<T> a(k), b(k * n, 1), c(n);
    for (const auto &[at, term] : terms) a[at] = T(term);
    engine(1, n, k, a.data(), 1, 1, b.data(), 1, k, c.data(), 1, 1);
    return c[0];
}

TEST(Order, Literal) {
    // Two chunks of 8 from 16,000 bytes of B on; below, one sum, which forgets small terms.
    EXPECT_EQ(sum(f90_Engine2x2Real8, 124, 16, {{0, 0x1p53}, {8, 1}, {9, 1}}), 0x1p53);
    EXPECT_EQ(sum(f90_Engine2x2Real8, 125, 16, {{0, 0x1p53}, {8, 1}, {9, 1}}), 0x1p53 + 2);
    // Chunks of 2040 and 8; k from 64 on before 0 to 31 and 32 to 63.
    EXPECT_EQ(sum(f90_Engine2x2Real8, 1, 2048, {{9, 0x1p53}, {2040, 1}, {2041, 1}}), 0x1p53 + 2);
    EXPECT_EQ(sum(f90_Engine2x2Real10, 1, 70, {{0, 0x1p64}, {32, -0x1p64}, {64, 1}}), 0);
}

// A is not read without a true element in B, and no row of it behind its first true pair.
TEST(Order, LogicalsLookNoFurther) {
    const Guarded pages(4096);
    auto *const start = reinterpret_cast<std::int32_t *>(pages.begin()), *const a = start + 100;
    std::int32_t none[2] = {}, both[2] = {2, 2}, c[32];
    f90_Engine2x2Log4(32, 1, 2, start - 64, 1, 32, none, 1, 2, c, 1, 32);
    EXPECT_EQ(std::count(c, c + 32, 0), 32);
    a[31] = 0; // of the second column only this row is there
    f90_Engine2x2Log4(32, 1, 2, a, 1, start - (a + 31), both, 1, 2, c, 1, 32);
    EXPECT_EQ(std::count(c, c + 32, 1), 32);
}

template <class T> Ints blocks_of(int k) {
    const auto [chunk, chunks, last, columns, rows] = quill::blocks_for<T>(k);
    Ints blocks(std::size_t(chunks - 1), chunk);
    blocks.insert(blocks.end(), {last, columns, rows});
    return blocks;
}

TEST(Blocks, Sizes) {
    Ints all;
    for (const int k : {5, 16, 100, 1000, 1040, 2047, 2048, 2049, 3003, 4096, 10000})
        for (const int number : blocks_of<quill::Real8>(k)) all.push_back(number);
    EXPECT_EQ(all,
              (Ints{5,  1636, 6554, 8,  8,    1022, 4096, 100,  78,   328,  1000, 6,  32,   1040, 4,
                    32, 2047, 2,    16, 2040, 8,    2,    16,   1016, 1033, 6,    32, 1496, 1507, 2,
                    22, 2040, 2040, 16, 2,    16,   1992, 1992, 1992, 1992, 2032, 2,  16}));
    EXPECT_EQ(blocks_of<quill::Real4>(5000), (Ints{2504, 2496, 4, 26}));
    EXPECT_EQ(blocks_of<quill::Int2>(10000), (Ints{5008, 4992, 4, 26}));
    EXPECT_EQ(blocks_of<quill::Real16>(1025), (Ints{504, 521, 6, 32}));
    for (int k = 1; k < 40000; ++k) {
        ASSERT_EQ(blocks_of<quill::Int2>(k), model_blocks(k, 2)) << k;
        ASSERT_EQ(blocks_of<quill::Real4>(k), model_blocks(k, 4)) << k;
        ASSERT_EQ(blocks_of<quill::Real8>(k), model_blocks(k, 8)) << k;
        ASSERT_EQ(blocks_of<quill::Complex8>(k), model_blocks(k, 8)) << k;
        ASSERT_EQ(blocks_of<quill::Real16>(k), model_blocks(k, 16)) << k;
    }
}

// A block of columns and one of rows, for tiles a second time, as rows of whole 32 bytes.
template <class T> bool fit_area(int k, int m) {
    const quill::Blocks blocks = quill::fitted<T>(quill::blocks_for<T>(k), m).blocks;
    const int pitch = (blocks.longest() * int{sizeof(T)} + 31) / 32 * 32;
    const int rows = blocks.columns + blocks.rows * (quill::has_tiles<T> ? 2 : 1);
    return std::min(blocks.columns, blocks.rows) > 0 && rows <= 688128 / pitch;
}
TEST(Blocks, FitTheWorkArea) {
    for (int k = 1; k < 20000; ++k)
        for (const int m : {1, 17, 100000})
            ASSERT_TRUE(fit_area<quill::Int2>(k, m) && fit_area<quill::Real4>(k, m) &&
                        fit_area<quill::Real8>(k, m) && fit_area<quill::Complex8>(k, m) &&
                        fit_area<quill::Real16>(k, m))
                << k << ", " << m;
}

// Of every visit the digits of chunk, row and column, + 2000 if A is packed, 1000 if B is copied.
Ints walk(int chunks, int rows, int columns) {
    Ints visits;
    quill::walk_blocks(chunks, rows, columns, [&](const quill::BlockVisit &visit) {
        const int packing = 2000 * visit.packs_a + 1000 * visit.copies_b;
        visits.push_back(packing + 100 * visit.chunk + 10 * visit.row + visit.column);
    });
    return visits;
}
TEST(Blocks, Walk) {
    EXPECT_EQ(walk(2, 1, 2), (Ints{3000, 1001, 3101, 1100}));
    EXPECT_EQ(walk(1, 3, 2), (Ints{3000, 1001, 2011, 1010, 2020, 1021}));
    EXPECT_EQ(walk(2, 2, 3), (Ints{3000, 1001, 1002, 2012, 1011, 1010, //
                                   3110, 1111, 1112, 2102, 1101, 1100}));
}

// clang-format off
#define CASE(property, F, T)                                                                       \
    TEST(F, T) {                                                                                   \
        Random random(random_seed());                                                              \
        for (int i = 0; i < random_rounds(T::part < 16 || F.role == Engine ? 200 : 50); ++i)       \
            ASSERT_TRUE((property<T, F>(random, f90_##F##T))) << "round " << i;                    \
    }
#define BLOCKS(T) CASE(agrees, Engine2x2, T) CASE(agrees, Inner2x2, T) CASE(agrees, Epilogue2x2, T)  \
    CASE(copies, ConvertBlock, T) CASE(copies, CopyBlock, T)
#define VECTORS(T) BLOCKS(T) CASE(agrees, Engine1x2, T) CASE(agrees, Inner1x2, T)                  \
    CASE(agrees, Epilogue1x2, T) CASE(agrees, Engine2x1, T) CASE(agrees, Inner2x1, T)              \
    CASE(agrees, Epilogue2x1, T) CASE(copies, CopyVector, T) CASE(copies, InitVector, T)
#define ADAPTIVE(T) CASE(agrees, Blocking, T) CASE(agrees, Vector, T) CASE(copies, Trans2, T)
#define WHOLE(T) CASE(agrees, MatMulVxM, T) CASE(agrees, MatMulMxV, T)
#define LOGICAL(T) CASE(agrees, Engine2x2, T) CASE(agrees, Engine1x2, T) CASE(agrees, Engine2x1, T)
VECTORS(Int1) VECTORS(Int2) VECTORS(Int4) VECTORS(Int8) VECTORS(Real4) VECTORS(Real8)
VECTORS(Real10) VECTORS(Real16) VECTORS(Complex16) VECTORS(Complex20) VECTORS(Complex32)
BLOCKS(Complex8) WHOLE(Complex8) WHOLE(Complex16)
ADAPTIVE(Int2) ADAPTIVE(Real4) ADAPTIVE(Real8) ADAPTIVE(Real16) ADAPTIVE(Complex8)
LOGICAL(Log1) LOGICAL(Log2) LOGICAL(Log4) LOGICAL(Log8)

} // namespace

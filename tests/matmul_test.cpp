// MATMUL of every type against sums written out here: of integers modulo 2^w, of reals to
// the last bit, in the order in which each path takes products. Logical operands lie in
// storage that ends with what searches read up to their hits.
#include "guarded.h"
#include "support.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

static std::ptrdiff_t asked; // bytes
static bool telling = false;

// The library asks here for storage, of results only; it starts as NaNs.
void *f90_getspace(std::size_t bytes) {
    asked = std::ptrdiff_t(bytes);
    if (telling) std::fprintf(stderr, "%zu bytes\n", bytes);
    return std::memset(std::malloc(bytes + 1), 0xFF, bytes);
}
void f90_freespace(void *space) { std::free(space); }

namespace {

using namespace test;

enum Form { Matrices, VectorMatrix, MatrixVector };
enum First { FromZero, FromBase };               // where an entry finds the first element
enum Sort { Logical, Integer, Adaptive, Fixed }; // of reals: how matrix x matrix cuts sums
enum Way { OneByOne, Finished, InPairs };        // how complex products, or two, join a sum

// A type of the language: elements of one or two T, computed with in pairs of V.
template <class T, class V, int n, f90_Intrinsic *function, First first, Sort kind> struct Type {
    static constexpr f90_Intrinsic *entry = function;
    static constexpr Sort sort = kind;
    static constexpr int part = sizeof(T), used = used_bytes<T>, parts = n, size = n * part;
    using Part = T;
    using Value = std::array<V, 2>;

    // Exact values have the same sums in any order. `share` of 64 are not zero; of logicals
    // one bit is set then, anywhere.
    static V random_part(Random &random, int share, bool exact) {
        const std::uint64_t bits = std::uint64_t{random()} << 32 | random();
        const bool zero = bits >> 58 >= unsigned(share);
        if (sort == Logical) return V(std::uint64_t{!zero} << bits % (8 * part));
        if (sort == Integer) return V(bits);
        if (exact) return V(pick(random, -16, 16)) / 16;
        if (zero) return coin(random) ? V(0) : -V(0);
        if (share == 63 && pick(random, 0, 499) == 0) return V(coin(random) ? NAN : INFINITY);
        const V fraction = bits * V(0x1p-64L) + random() * V(0x1p-96L) + random() * V(0x1p-128L);
        return (coin(random) ? 1 + fraction : -1 - fraction) * V(1 << pick(random, 0, 6));
    }
    // Puts in what an entry does not read; `unread` extents and empty ones end anywhere.
    static void spoil(Random &random, f90_ArrDesc &d, int unread) {
        (first == FromBase ? d.ZERO : d.BASE) = reinterpret_cast<void *>(random());
        d.EXTENT = d.ELSIZE = d.SCALEFACTOR = random();
        d.NONCONTIG = random();
        for (f90_DimInfo &dim : d.Dim)
            if (unread-- > 0 || dim.Upper < dim.Lower) dim.Upper = dim.Lower - pick(random, 1, 9);
    }
    static bool holds(const std::byte *at, const Value &value) {
        for (int p = 0; p < parts; ++p) {
            const T got = read<T>(at + p * part);
            const T right = T(sort == Logical ? value[p] != 0 : value[p]);
            const bool nans = got != got && right != right;
            if (!nans && std::memcmp(&got, &right, used) != 0) return false;
        }
        return true;
    }
};

using I1 = Type<std::uint8_t, std::uint64_t, 1, f90_matmuli1, FromZero, Integer>;
using I2 = Type<std::uint16_t, std::uint64_t, 1, f90_matmuli2, FromBase, Integer>;
using I4 = Type<std::uint32_t, std::uint64_t, 1, f90_matmuli4, FromZero, Integer>;
using I8 = Type<std::uint64_t, std::uint64_t, 1, f90_matmuli8, FromZero, Integer>;
using L1 = Type<std::uint8_t, double, 1, f90_matmull1, FromZero, Logical>;
using L2 = Type<std::uint16_t, double, 1, f90_matmull2, FromZero, Logical>;
using L4 = Type<std::uint32_t, double, 1, f90_matmull4, FromZero, Logical>;
using L8 = Type<std::uint64_t, double, 1, f90_matmull8, FromZero, Logical>;
using R4 = Type<float, float, 1, f90_matmulr4, FromBase, Adaptive>;
using R8 = Type<double, double, 1, f90_matmulr8, FromBase, Adaptive>;
using R10 = Type<long double, long double, 1, f90_matmulr10, FromZero, Fixed>;
using R16 = Type<__float128, __float128, 1, f90_matmulr16, FromBase, Adaptive>;
using C8 = Type<float, float, 2, f90_matmulc8, FromBase, Adaptive>;
using C16 = Type<double, double, 2, f90_matmulc16, FromBase, Fixed>;
using C20 = Type<long double, long double, 2, f90_matmulc20, FromZero, Fixed>;
using C32 = Type<__float128, __float128, 2, f90_matmulc32, FromZero, Fixed>;
template <class> class Matmul : public testing::Test {};
using Types = testing::Types<I1, I2, I4, I8, L1, L2, L4, L8, R4, R8, R10, R16, C8, C16, C20, C32>;
TYPED_TEST_SUITE(Matmul, Types);

// The products of k from first to last are summed from zero; the sum is added to C.
struct Piece {
    int first, last;
    Way way = OneByOne;
};
using Pieces = std::vector<Piece>;

Pieces adaptive_pieces(int k, int size) {
    const int most = 16384 / size, grain = 32 / size, conflict = 128 / size;
    int length = (k / ((k + most - 1) / most) + grain - 1) / grain * grain;
    if (length % conflict == 0 && length > 8) length -= 8;
    const bool apart = k % length != 0 && length + k % length >= most;
    Pieces pieces(std::max(k / length + apart, 1));
    for (int i = 0; i < int(pieces.size()); ++i) pieces[i] = {i * length, (i + 1) * length};
    pieces.back().last = k;
    return pieces;
}

// What makes up row i: one sum, or chunks, or what lies behind the full chunks and then them.
template <class T> Pieces pieces_of(Form form, int m, int n, int k, int i) {
    const bool adaptive = T::sort == Adaptive && form == Matrices;
    const bool small = adaptive && T::parts == 1 && k * n * T::size < 16000;
    const bool vectors = T::parts == 2 && T::part <= 8 && form != Matrices;
    if (T::sort <= Integer || k == 0 || small || vectors) return {{0, k}};
    if (adaptive) return adaptive_pieces(k, T::size);
    const int chunk = form == Matrices ? 32 : T::part <= 8 ? 2048 / T::part : 128;
    const int step = form == VectorMatrix && T::part <= 8 ? 4 : 2;
    const int unit = T::part == 8 ? 2 : 4; // of rows that are packed for a full chunk
    const int behind = k - k % chunk, last = k - k % chunk % step;
    Way tail = OneByOne, full = OneByOne;
    if (form == Matrices && i >= m / 8 * 8) tail = Finished;
    if (form == Matrices && i >= m / unit * unit) full = Finished;
    if (form == MatrixVector && T::size == 16 && i < m / 4 * 4) tail = full = InPairs;
    Pieces pieces = {{behind, last, tail}, {last, k, Finished}};
    for (int at = 0; at < behind; at += chunk) pieces.push_back({at, at + chunk, full});
    return pieces;
}

template <class Value> Value sum_of(const Pieces &pieces, const Value *a, const Value *b) {
    Value c = {};
    for (const auto [first, last, way] : pieces) {
        Value sum = {};
        auto held = sum[0]; // the first product of a pair
        for (int k = first; k < last; ++k) {
            const auto [ar, ai] = a[k];
            const auto [br, bi] = b[k];
            if (way == OneByOne)
                sum = {(sum[0] + ar * br) - ai * bi, (sum[1] + ar * bi) + ai * br};
            else if (way == InPairs && (k - first) % 2 == 0)
                held = ar * br;
            else
                sum = {sum[0] + (held + (ar * br - ai * bi)), sum[1] + (ar * bi + ai * br)};
        }
        c = {sum[0] + c[0], sum[1] + c[1]};
    }
    return c;
}

// An operand by its lines along k: a vector has one. Either dimension of a matrix may be
// the denser one.
template <class T> struct Operand {
    int count, k;
    std::vector<typename T::Value> values;
    Array array;
    std::ptrdiff_t from, to = 0; // of logicals: what is read, in storage
    std::unique_ptr<Guarded> pages;

    Operand(Random &random, int lines, int length, bool vector, bool k_first, bool exact)
        : count(lines), k(length), values(count * k) {
        const int share = std::array{64, 64, 64, 63, 63, 32, 8, 1, 0}[pick(random, 0, 8)];
        const bool k_dense = vector || coin(random);
        Shape shape = k_dense ? Shape{k, count} : Shape{count, k};
        shape.resize(vector ? 1 : 2);
        array = make_array(random, shape, T::size, coin(random));
        from = std::ptrdiff_t(array.storage.size());
        if (k_dense != k_first) std::swap(array.descriptor.Dim[0], array.descriptor.Dim[1]);
        const auto offsets = array.offsets;
        for (int i = 0; i < count * k; ++i) {
            array.offsets[i] = offsets[k_dense ? i : i % k * count + i / k];
            for (int p = 0; p < T::parts; ++p) {
                values[i][p] = T::random_part(random, share, exact);
                write(array.at(i) + p * T::part, typename T::Part(values[i][p]));
            }
        }
    }
    bool is_true(int line, int i) {
        const std::ptrdiff_t place = array.offsets[line * k + i];
        from = std::min(from, place), to = std::max(to, place + T::size);
        return values[line * k + i][0] != 0;
    }
    // Moves what is read to pages that end or begin with it.
    void hide(Random &random) {
        pages = std::make_unique<Guarded>(std::max(to - from, 0));
        std::byte *const at = coin(random) ? pages->begin() : pages->end() - (to - from);
        if (from < to) std::memcpy(at, array.storage.data() + from, to - from);
        const auto moved = std::uintptr_t(at) - std::uintptr_t(array.storage.data() + from);
        array.descriptor.ZERO = reinterpret_cast<void *>( // outside of both, it may be
            std::uintptr_t(array.descriptor.ZERO) + moved);
    }
};

// A logical product searches each line of `searched` up to its first true element; from
// there on, beside it, each line of `scanned` up to the first pair that is true.
template <class T> void hide_unread(Random &random, Operand<T> &scanned, Operand<T> &searched) {
    for (int s = 0, k = scanned.k; s < searched.count; ++s) {
        int start = 0;
        while (start < k && !searched.is_true(s, start)) ++start;
        for (int line = 0; line < scanned.count; ++line)
            for (int i = start; i < k; ++i)
                if (int{scanned.is_true(line, i)} & int{searched.is_true(s, i)}) break;
    }
    scanned.hide(random), searched.hide(random);
}

template <class T> void try_product(Random &random, Form form, int m, int n, int k) {
    const bool exact = pick(random, 0, 3) == 0, checked = coin(random), row = form == VectorMatrix;
    Operand<T> a(random, m, k, row, row, exact);
    Operand<T> b(random, n, k, form == MatrixVector, true, exact);
    if (T::sort == Logical) hide_unread(random, row ? b : a, row ? a : b);
    T::spoil(random, a.array.descriptor, 0);
    T::spoil(random, b.array.descriptor, checked ? 0 : 1);
    RandomResult result(random, form == Matrices ? Shape{m, n} : Shape{m * n}, T::size, true);
    for (int i = 0; i < m * n * T::parts; ++i)
        std::memset(result.given.at(i / T::parts) + i % T::parts * T::part, 0xFF, T::used);
    if (!result.create) T::spoil(random, result.given.descriptor, checked ? 0 : 2);
    Call call = Call().array(1, a.array.descriptor).array(2, b.array.descriptor);
    call.list.Flags = random() << 1 | unsigned(checked);
    result.attach(call);
    asked = -1;
    call(T::entry);

    SCOPED_TRACE(testing::Message() << form << ": " << m << ", " << n << ", " << k);
    ASSERT_EQ(asked, result.create ? m * n * T::size : -1);
    for (int element = 0; element < m * n; ++element) {
        const int i = element % m, j = element / m;
        const Pieces pieces = exact ? Pieces{{0, k}} : pieces_of<T>(form, m, n, k, i);
        const auto sum = sum_of(pieces, a.values.data() + i * k, b.values.data() + j * k);
        ASSERT_TRUE(T::holds(result.at(element), sum)) << i << ", " << j << ", " << exact;
    }
    ASSERT_EQ(result.complaint(T::used, T::parts, T::part), "");
}

// Short extents and a longer one; k and n where chunks and paths change; any extents.
TYPED_TEST(Matmul, AgreesWithNaiveSums) {
    const bool quad = TypeParam::part == 16;
    const int size = TypeParam::size, chunk = std::min(16384 / size, 8192);
    Random random(random_seed());
    const auto any = [&](int last) { return pick(random, 1, last); };
    for (int i = random_rounds(quad ? 140 : 500); i > 0 && !this->HasFatalFailure(); --i) {
        int m = pick(random, 0, 12), n = pick(random, 0, 12), k = pick(random, 0, 12);
        (coin(random) ? k : coin(random) ? m : n) = pick(random, 0, 300);
        const auto form = static_cast<Form>(i % 10 <= 2 ? 0 : pick(random, 0, 2));
        if (i % 10 == 1) m = any(5), n = any(5), k = chunk * any(2) + i / 10 % 3 - 1;
        if (i % 10 == 2) n = 1000 / size + i / 10 % 4 - 1, k = 16;
        if (i % 120 == 100) m = any(300), n = any(300);
        if (i % 120 == 100) k = any(std::clamp((quad ? 50000 : 3000000) / (m * n), 1, 3000));
        if (form == VectorMatrix) m = 1;
        if (form == MatrixVector) n = 1;
        try_product<TypeParam>(random, form, m, n, k);
    }
}

TYPED_TEST(Matmul, ReportsMisuse) {
    const std::string ranks = " At least one of the array arguments should have rank = 2\n";
    const std::string lengths = " The extent of the last dimension of MATRIX_A is 0.\n"
                                " The extent of the first dimension of MATRIX_B is 1.\n"
                                " These values should be equal.\n";
    const struct {
        unsigned flags;
        Shape a, b, result; // no extents: left to the library
        int created;        // elements
        std::string message;
    } cases[] = {
        {~1U, {3}, {3}, {}, 0, ranks},
        {~1U, {}, {3, 4}, {9}, 0, ranks},
        {1, {3, 4}, {}, {}, 0, ranks},
        {~1U, {3, 4}, {4, 5, 6}, {}, 0, ranks},
        {~1U, {2, 3, 4}, {4}, {}, 0, ranks},
        {1, {1, 1, 1, 1, 1, 1, 3}, {3, 4}, {}, 0, ranks},
        {1, {3, 0}, {1, 2}, {}, 6, lengths},
        {1, {0}, {1, 2}, {9, 9}, 0, lengths},
        {1, {3, 0}, {1}, {}, 3, lengths},
        {1, {3, 4}, {4, 2}, {3, 3}, 0, wrong_result("3, 3", "3, 2")},
        {1, {0, 4}, {4, 2}, {1, 2}, 0, wrong_result("1, 2", "0, 2")},
        {1, {4}, {4, 2}, {1, 2}, 0, wrong_result("1, 2", "2")},
        {1, {3, 4}, {4}, {4}, 0, wrong_result("4", "3")},
    };
    for (const auto &c : cases) {
        f90_ArrDesc a = shaped(c.a, 4), b = shaped(c.b, 4), result = shaped(c.result, 4);
        Call call = Call().array(0, result, !c.result.empty()).array(1, a).array(2, b);
        call.list.Flags = c.flags;
        const std::string bytes = std::to_string(c.created * TypeParam::size) + " bytes\n";
        EXPECT_EQ(fatal_message([&] { telling = true, call(TypeParam::entry); }),
                  (c.created == 0 ? "" : bytes) + report("MATMUL", c.message));
    }
}

} // namespace

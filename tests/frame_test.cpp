// The call frame: creation, sections, addresses, the walk, the debug prints and
// the reporter; and the quad layer of the host.
#include "host/quad.h"
#include "support.h"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using namespace test;

// A descriptor with the two words that subscript checking wants ahead of it.
using Range = std::pair<std::int32_t, std::int32_t>; // SubscriptMin and SubscriptEnd
struct Guarded {
    Range range = {-77, -77};
    f90_ArrDesc array = {};
};
static_assert(offsetof(Guarded, array) == 8);

struct SubscriptChecking {
    SubscriptChecking() { f90_SubscriptChecking = 1; }
    ~SubscriptChecking() { f90_SubscriptChecking = 0; }
};

// ---- Creation ---------------------------------------------------------------

TEST(Creation, FillsTheDescriptor) {
    const std::int32_t bounds[] = {3, 7, -1, 1};
    Guarded guarded;
    f90_ArrDesc &a = guarded.array;
    a.NONCONTIG = a.Reserved[0] = a.Reserved[1] = 9;
    f90_CreateArray(2, bounds, 8, &a);
    EXPECT_EQ(a.EXTENT, 15);
    EXPECT_EQ(a.SCALEFACTOR, 8);
    EXPECT_EQ(a.Dim[0].Stride, 1);
    EXPECT_EQ(a.Dim[1].Stride, 5);
    EXPECT_EQ(a.NONCONTIG + a.Reserved[0] + a.Reserved[1], 0);
    EXPECT_EQ(a.ZERO, static_cast<char *>(a.BASE) + 16);
    EXPECT_EQ(guarded.range, Range(-77, -77)) << "checking is off";
    std::memset(a.BASE, 1, 120);
    f90_freespace(a.BASE);
}

TEST(Creation, EmptyAndScalar) {
    const SubscriptChecking on;
    Guarded empty;
    const std::int32_t bounds[] = {5, 3, f90_DefaultBound, 4};
    f90_CreateArray(2, bounds, 4, &empty.array);
    EXPECT_EQ(empty.array.Dim[0].Upper, 4);
    EXPECT_EQ(empty.array.Dim[1].Lower, 1);
    EXPECT_EQ(empty.array.EXTENT, 0);
    EXPECT_EQ(empty.array.ZERO, empty.array.BASE);
    EXPECT_EQ(empty.range, Range(0, 0));
    f90_freespace(empty.array.BASE);

    Guarded single;
    f90_CreateArray(0, nullptr, 8, &single.array);
    EXPECT_EQ(single.array.EXTENT, 1);
    EXPECT_EQ(single.array.ZERO, single.array.BASE);
    EXPECT_EQ(single.range, Range(0, 1));
    f90_freespace(single.array.BASE);
}

TEST(Creation, RefusesWhatNoAddressHolds) {
    for (const std::int32_t extent : {65536, 0x7FFFFFFF}) {
        const std::int32_t bounds[] = {1, extent, 1, extent};
        f90_ArrDesc a = {};
        const std::string message = fatal_message([&] { f90_CreateArray(2, bounds, 16, &a); });
        EXPECT_TRUE(message.ends_with("f90_getspace: no storage for 4294967295 bytes.\n"))
            << message;
    }
}

// ---- Sections ---------------------------------------------------------------

TEST(Section, ClipsTriplets) {
    const struct {
        f90_SectionDim subscripts;
        std::int32_t upper, stride;
        int first; // subscript in the parent of the first element; 0: empty
    } cases[] = {
        {{3, 2, 9, 3}, 3, 3, 2},
        {{3, 10, 1, -4}, 3, -4, 10},
        {{3, -2, 10, 2}, 5, 2, 2},
        {{3, f90_DefaultBound, 4, f90_DefaultBound}, 4, 1, 1},
        {{3, 7, 3, 2}, 0, 2, 0},
        {{3, 3, 7, -1}, 0, -1, 0},
        {{3, -2147483647, 2147483647, 2147483647}, 0, 2147483647, 0},
    };
    std::int16_t storage[10] = {};
    f90_ArrDesc parent = shaped({10}, 2);
    parent.BASE = storage;
    for (const auto &c : cases) {
        f90_ArrDesc s = {};
        f90_CreateSection(&parent, &c.subscripts, &s);
        SCOPED_TRACE(c.subscripts.Lower);
        EXPECT_EQ(s.NONCONTIG, 1);
        EXPECT_EQ(s.EXTENT, c.upper);
        EXPECT_EQ(s.Dim[0].Lower, 1);
        EXPECT_EQ(s.Dim[0].Upper, c.upper);
        EXPECT_EQ(s.Dim[0].Stride, c.stride);
        EXPECT_EQ(s.BASE, c.first == 0 ? nullptr : storage + c.first - 1);
        EXPECT_EQ(s.ZERO, c.first == 0 ? nullptr : storage + c.first - 1 - c.stride);
    }
}

// Random sections of a random parent, walked and compared with their subscripts.
TEST(Section, WalkVisitsTheElements) {
    const SubscriptChecking on;
    Random random(random_seed());
    for (int round = 0; round < random_rounds(2000); ++round) {
        const int rank = pick(random, 0, 7);
        Guarded parent;
        std::vector<std::int32_t> bounds;
        for (int i = 0; i < rank; ++i) {
            bounds.push_back(pick(random, -3, 3));
            bounds.push_back(bounds.back() + pick(random, 0, rank > 4 ? 2 : 6));
        }
        f90_CreateArray(rank, bounds.data(), 4, &parent.array);
        std::vector<f90_SectionDim> subscripts;
        std::vector<std::byte *> expected = {static_cast<std::byte *>(parent.array.BASE)};
        int triplets = 0;
        for (int i = 0; i < rank; ++i) {
            const auto [lo, hi, stride] = parent.array.Dim[i];
            f90_SectionDim triplet = {pick(random, 0, 3) == 0 ? 1 : 3, pick(random, lo - 3, hi + 3),
                                      pick(random, lo - 3, hi + 3), pick(random, 1, 3)};
            if (pick(random, 0, 1) == 0) triplet.Stride = -triplet.Stride;
            if (triplet.Kind == 1 && pick(random, 0, 4) != 0) triplet.Lower = pick(random, lo, hi);
            subscripts.push_back(triplet);
            if (triplet.Kind == 1) triplet.Upper = triplet.Lower; // a triplet of one, for the model
            triplets += triplet.Kind == 3;
            std::vector<std::byte *> inner;
            inner.swap(expected);
            for (int s = triplet.Lower;
                 triplet.Stride > 0 ? s <= triplet.Upper : s >= triplet.Upper; s += triplet.Stride)
                for (std::byte *element : inner)
                    if (lo <= s && s <= hi) expected.push_back(element + 4 * (s - lo) * stride);
        }
        Guarded section;
        f90_CreateSection(&parent.array, subscripts.data(), &section.array);
        std::vector<std::byte *> visited;
        for (void *e = f90_FirstElemAddr(&section.array); e != nullptr; e = f90_NextElemAddr())
            visited.push_back(static_cast<std::byte *>(e));
        ASSERT_EQ(visited, expected);
        ASSERT_EQ(section.array.EXTENT, std::int32_t(expected.size()));
        ASSERT_EQ(section.array.RANK, triplets);
        ASSERT_TRUE(!expected.empty() || section.range == Range(0, 0));
        ASSERT_EQ(f90_NextElemAddr(), nullptr);
        f90_freespace(parent.array.BASE);
    }
}

TEST(Section, SubscriptsAreCheckedBySum) {
    const SubscriptChecking on;
    const std::int32_t bounds[] = {2, 3, 1, 2};
    Guarded a;
    f90_CreateArray(2, bounds, 4, &a.array);
    EXPECT_EQ(a.range, Range(4, 8));
    EXPECT_EQ(f90_ElemAddr(&a.array, 4, 1), static_cast<char *>(a.array.BASE) + 8);
    EXPECT_EQ(f90_ElemAddrContig(&a.array, 3), f90_ElemAddr(&a.array, 3, 2));
    for (const int bad : {1, 6}) // offsets 3 and 8
        EXPECT_EQ(fatal_message([&] { f90_ElemAddr(&a.array, bad, 1); }),
                  "f90_ElemAddr: Bad subscript.\n");
    f90_freespace(a.array.BASE);
}

// ---- Prints -----------------------------------------------------------------

TEST(Prints, AreByteExact) {
    f90_ArgList list = {0x8001, 0x9003, 0xFF, {1, 2}, {3, 4}, {5, 6}, {7, 8}, {0xABCDEF01, 9}};
    EXPECT_EQ(in_child([&] { f90_PrintArgList(&list); }).out,
              "- ARGUMENT LIST -      Presence:ffff9003    Shape:ffff8001   Flags:000000ff\n"
              "- Result:  00000001 00000002\n"
              "- ARG 1:   00000003 00000004    ARG 2:   00000005 00000006\n"
              "- ARG 3:   00000007 00000008    ARG 4:   abcdef01 00000009\n");
    f90_ArrDesc a = shaped({4, 3}, 8);
    char head[99];
    std::snprintf(head, sizeof head, "- ARRAY DESCRIPTOR     %p\n- ZERO:00000000  BASE:%08x --> ",
                  static_cast<void *>(&a), 0U);
    const char *const tail = "\n- EXTENT:12     ELSIZE:8    SCALEFACTOR:8\n"
                             "- RANK:2  NONCONTIG:0  1(1 4 1) 2(1 3 4) \n-\n";
    EXPECT_EQ(in_child([&] { f90_PrintArrDesc(&a); }).out,
              head + std::string(" NOT PRESENT") + tail);
    unsigned char bytes[32] = {0x7F, 0x80};
    a.BASE = bytes;
    EXPECT_TRUE(in_child([&] {
                    f90_PrintArrDesc(&a);
                }).out.ends_with(" --> 7fffffff80" + std::string(60, '0') + tail));
}

// ---- The reporter -----------------------------------------------------------

TEST(Reporter, PrintsEveryPlaceholder) {
    f90_ArrDesc matrix = shaped({3, 0}, 4);
    f90_ArrDesc single = scalar(nullptr, 4);
    const std::int32_t expected_shape[] = {2, -3, 4};
    const std::int32_t no_shape[] = {0};
    EXPECT_EQ(fatal_message([&] { f90_ArrLibError("SUM", 2, &matrix, expected_shape); }),
              report("SUM", wrong_result("3, 0", "-3, 4")));
    EXPECT_EQ(fatal_message([&] { f90_ArrLibError("CSHIFT", 3, &single, no_shape); }),
              report("CSHIFT", " The SHIFT array has shape:    (SCALAR).\n"
                               " The shape of SHIFT should be: (SCALAR).\n"));
    std::int32_t numbers[] = {1, 2, 3, 4, 5};
    f90_ArrDesc vector = shaped({3}, 4);
    vector.BASE = numbers;
    vector.Dim[0] = {-1, 1, 2};
    vector.ZERO = numbers + 2;
    const std::string head =
        report("RESHAPE", " The ORDER argument should be a permutation of the integers 1 to 3.\n"
                          " The contents of the ORDER argument array is: ");
    const auto misuse = [&] { f90_ArrLibError("RESHAPE", 7, 3, &vector); };
    EXPECT_EQ(fatal_message(misuse), head + "(1, 3, 5).\n");
    vector.EXTENT = 0;
    EXPECT_EQ(fatal_message(misuse), head + "(EMPTY).\n");
    vector.RANK = 0;
    EXPECT_EQ(fatal_message(misuse), head + "(SCALAR).\n");
}

// Every message of every name, digits left out, as one digest of the promised
// texts. One empty array serves every placeholder: as a number, as a shape, as a
// count of 0 and as values.
TEST(Reporter, KnowsEveryMessage) {
    const char names_and_counts[] =
        "ALL 2 ANY 2 COUNT 2 CSHIFT 3 DATEANDTIME 3 DOT_PRODUCT 1 EOSHIFT 4 MATMUL 3 "
        "MAXLOC 4 MAXVAL 3 MINLOC 4 MINVAL 3 MVBITS 2 PACK 3 PRODUCT 3 REPEAT 2 "
        "RESHAPE 7 SPREAD 2 SUM 3 TRANSFER 2 TRANSPOSE 1 TRIM 1 UNPACK 3 ";
    std::istringstream names(names_and_counts);
    f90_ArrDesc empty = shaped({0}, 4);
    std::string text;
    int messages = 0;
    for (std::string name; names >> name >> messages;)
        for (int n = 1; n <= messages; ++n)
            text +=
                fatal_message([&] { f90_ArrLibError(name.c_str(), n, &empty, &empty, &empty); });
    std::erase_if(text, [](char c) { return c == '-' || ('0' <= c && c <= '9'); });
    std::uint64_t digest = 0xCBF29CE484222325; // FNV-1a
    for (const char c : text) digest = (digest ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    EXPECT_EQ(digest, 0x58E8095FA8E4C39DU) << text;
}

// ---- Kind 16 ----------------------------------------------------------------

using quill::Quad;

std::string words(const Quad &q) {
    std::uint32_t w[4];
    std::memcpy(w, &q, sizeof w);
    char text[40];
    std::snprintf(text, sizeof text, "%08X %08X %08X %08X", w[3], w[2], w[1], w[0]);
    return text;
}

TEST(Quad, ReadsItsLiterals) {
    EXPECT_EQ(words(quill::string_to_fp128("0.0L")), "00000000 00000000 00000000 00000000");
    EXPECT_EQ(words(quill::string_to_fp128("1.0")), "3FFF0000 00000000 00000000 00000000");
    EXPECT_EQ(words(quill::string_to_fp128("5192296858534827628530496329220096.0")),
              "406F0000 00000000 00000000 00000000");
    EXPECT_EQ(words(quill::string_to_fp128("-1.1897314953572317650857593266280070162E+4932L")),
              "FFFEFFFF FFFFFFFF FFFFFFFF FFFFFFFF");
}

TEST(Quad, Computes) {
    Quad q(2147483647);
    EXPECT_EQ(static_cast<double>(q), 2147483647.0);
    q *= Quad(-0x7FFFFFFFFFFFFFFFLL);
    q /= Quad(2147483647L);
    q += Quad(1.0);
    q -= Quad(short{-1});
    EXPECT_EQ(words(q), words(Quad(-0x7FFFFFFFFFFFFFFDLL)));
    EXPECT_EQ(words(quill::ldexpq(Quad(3), 16382)), "7FFE8000 00000000 00000000 00000000");
    EXPECT_EQ(words(quill::ldexpq(Quad(3), -16495)), "00000000 00000000 00000000 00000002")
        << "ties to even";
}

// Against the compiler's own comparison, on words that make every class of number.
TEST(Quad, Compares) {
    const std::uint32_t parts[] = {0,          1,          0x80000000, 0x7FFF0000,
                                   0xFFFF0000, 0x7FFF8000, 0xFFFFFFFF};
    std::vector<Quad> values;
    for (const std::uint32_t high : parts)
        for (const std::uint32_t middle : parts)
            for (const std::uint32_t low : parts) {
                const std::uint32_t value[] = {low, 0, middle, high};
                std::memcpy(&values.emplace_back(), value, sizeof value);
            }
    for (const Quad &a : values)
        for (const Quad &b : values) {
            const __float128 x = a, y = b;
            const int less = quill::_compare_fp(a, b, 1, 0, 0);
            const int greater = quill::_compare_fp(a, b, 0, 2, 0);
            const int equal = quill::_compare_fp(a, b, 0, 0, 1);
            ASSERT_TRUE(less == (x < y) && greater == (x > y) && equal == (x == y))
                << words(a) << ", " << words(b);
        }
    EXPECT_EQ(quill::_compare_fp(values[0], values[0], 1, 1, 0), 0);
}

} // namespace

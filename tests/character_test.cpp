// The character intrinsics against the C++ library's searches and the machine's Fortran compiler.
// A program of its own, since it defines f90_getspace: every string and record, new ones too, has
// an inaccessible page at one end.
#include "guarded.h"

#include <gtest/gtest.h>
#include <memory>
#include <numeric>

using namespace test;
using String = std::string;

struct Text : Guarded {
    char *at;

    Text(bool ahead, std::size_t length, const char *argument = nullptr)
        : Guarded(length), at(reinterpret_cast<char *>(ahead ? begin() : end() - length)) {
        if (argument != nullptr) std::memcpy(at, argument, length);
        if (argument != nullptr) mprotect(begin(), size, PROT_READ);
    }
    bool has_become(const String &text) const { // and nothing about it has changed
        String all(size, '\xA5');
        all.replace(at - reinterpret_cast<char *>(begin()), text.size(), text);
        return std::memcmp(all.data(), begin(), size) == 0;
    }
};

static String journal; // +n for a block of n bytes that was taken, - for one given back
static std::unique_ptr<Text> space; // the last block
void *f90_getspace(std::size_t bytes) {
    if (bytes == SIZE_MAX) std::exit(7);
    journal += "+" + std::to_string(bytes);
    return (space = std::make_unique<Text>(false, bytes))->at;
}
void f90_freespace(void *) { journal += "-"; }
extern "C" void fortran_characters_(const char *string, const char *other, char *made,
                                    unsigned *numbers, unsigned n, unsigned m,
                                    unsigned made_length);
namespace {

f90_Intrinsic *const searches[] = {f90_index,  f90_scan,  f90_verify,
                                   f90_kindex, f90_kscan, f90_kverify};

// The record ends behind so many arguments, and no more of it changes than the result.
f90_Slot call(f90_Intrinsic *member, f90_ArgList list, int arguments) {
    static const Text records[] = {{false, 16}, {false, 24}, {false, 32}, {false, 40}};
    const Text &record = records[arguments];
    std::memcpy(record.at, &list, 16 + 8 * arguments);
    member(reinterpret_cast<f90_ArgList *>(record.at));
    std::memcpy(&list.Result, record.at + 8, 8);
    EXPECT_TRUE(record.has_become(String(reinterpret_cast<char *>(&list), 16 + 8 * arguments)));
    return list.Result;
}

// A call that must make this string, of the caller's storage or of new storage.
void try_making(Random &random, f90_Intrinsic *member, f90_ArgList list, const String &made) {
    const bool given = coin(random), checked = member == f90_trim || list.Flags & 1;
    const std::size_t size = made.size(), room = given ? size + pick(random, 0, 3) : 0;
    const std::size_t told[] = {size, room, SIZE_MAX, checked ? size : random() % (size + 1)};
    const Text result(coin(random), room);
    list.Presence = (list.Presence & ~1) | given;
    if (given) list.Result = {std::uintptr_t(result.at), told[pick(random, 0, 3)]};
    journal.clear();
    const f90_Slot slot = call(member, list, member == f90_trim ? 1 : 2);
    ASSERT_EQ(journal, given ? "" : "+" + std::to_string(size));
    const Text &there = given ? result : *space;
    ASSERT_TRUE(slot.Word0 == std::uintptr_t(there.at) && slot.Word1 == size);
    ASSERT_TRUE(there.has_become(made));
}

void try_calls(Random &random, const String &string, const String &other, int copies) {
    SCOPED_TRACE(testing::PrintToString(string) + " and " + testing::PrintToString(other));
    const unsigned n = string.size(), m = other.size(), end = string.find_last_not_of(' ') + 1;
    const Text text(coin(random), n, string.data()), sought(coin(random), m, other.data());
    const Text left(coin(random), n), right(coin(random), n);
    f90_ArgList list;
    std::memset(&list, pick(random, 1, 255), sizeof list);
    if (copies < 0) list.Flags &= ~1; // else it is reported
    for (const unsigned back : {0, 1}) {
        const std::size_t found[] = {
            1 + (back ? string.rfind(other) : string.find(other)), // npos + 1 is 0
            1 + (back ? string.find_last_of(other) : string.find_first_of(other)),
            1 + (back ? string.find_last_not_of(other) : string.find_first_not_of(other)), end,
            end};
        const unsigned times = n == 0 || copies < 0 ? 0 : copies;
        unsigned numbers[5] = {back, times};
        String made(2 * n + end + n * times, 0);
        fortran_characters_(string.data(), other.data(), made.data(), numbers, n, m, made.size());
        ASSERT_TRUE(std::equal(found, found + 5, numbers));
        list.Arg1 = {std::uintptr_t(text.at), n};
        list.Arg2 = {std::uintptr_t(sought.at), m};
        for (int i = 0; i < 18; ++i) { // an absent BACK's word contradicts, or is not there
            list.Presence = (list.Presence & ~8) | (back || i < 6 ? 8 : 0);
            list.Arg3.Word0 = std::array{0U, 1U, 1U, 1U, 2U, 1U << 31}[3 * back + i / 6];
            const f90_Slot result = call(searches[i % 6], list, back || i < 12 ? 3 : 2);
            ASSERT_EQ(result.Word0, found[i % 3]) << i << " " << back;
            ASSERT_EQ(result.Word1, i % 6 < 3 ? list.Result.Word1 : 0) << i << " " << back;
        }
        list.Arg2.Word0 = copies;
        try_making(random, f90_trim, list, made.substr(2 * n, end));
        try_making(random, f90_repeat, list, made.substr(2 * n + end));
        f90_adjustl(text.at, n, left.at);
        f90_adjustr(text.at, n, right.at);
        ASSERT_TRUE(left.has_become(made.substr(0, n)) && right.has_become(made.substr(n, n)));
        ASSERT_TRUE(unsigned(f90_lentrim(text.at, n)) == end && f90_klentrim(text.at, n) == end);
    }
}

String any(Random &random, const String &letters, int length) {
    String text(length, 0);
    for (char &letter : text) letter = letters[pick(random, 0, letters.size() - 1)];
    return text;
}

// Every length to 40, and with it in turn every number to two more; and longer strings.
TEST(Character, AgreesWithModelAndFortran) {
    Random random(random_seed());
    String bytes(256, 0);
    std::iota(bytes.begin(), bytes.end(), 0);
    for (int i = random_rounds(43 * 43); i-- && !HasFatalFailure();) {
        const bool longer = i % 43 > 40;
        const int n = longer ? pick(random, 41, pick(random, 0, 9) ? 200 : 4000) : i % 43;
        const int m = longer ? pick(random, 0, coin(random) ? 20 : n + 2) : i / 43 % (n + 3);
        const int copies = n ? pick(random, -1, 4) : pick(random, -1, 1) * INT32_MAX;
        const String sorts[] = {"x", "xy", "\t ", {"\0\t \x80\xA0\xFF", 6}, bytes};
        const String &letters = sorts[pick(random, 0, 4)], part = any(random, letters, m);
        String string = any(random, letters, n);
        for (int j = m && coin(random) ? 0 : n; j < n; ++j) string[j] = part[j % m];
        for (int spoiled = n ? pick(random, 0, 1 + n / (m + 1)) : 0; spoiled--;)
            string[pick(random, 0, n - 1)] ^= 1 << pick(random, 0, 7);
        try_calls(random, string, part, copies);

        std::shuffle(bytes.begin(), bytes.end(), random);
        const std::size_t size = std::array{0, 1, 2, 10, 62, 256}[pick(random, 0, 5)];
        String in(bytes, 0, size), out(bytes, size), set = in;
        if (size && coin(random)) set += any(random, in, pick(random, 1, 100));
        if (out.empty() || (size && coin(random))) in.swap(out);
        string = any(random, out, n);
        for (int few = n && !in.empty() ? pick(random, 0, 2) : 0; few--;)
            string[pick(random, 0, n - 1)] = in[0];
        try_calls(random, string, set, copies);
        const int ahead = std::min(n, m), behind = pick(random, 0, 1) * pick(random, 0, n - ahead);
        string.replace(0, ahead, ahead, ' ').replace(n - behind, behind, behind, ' ');
        try_calls(random, string, part, copies);
    }
}

// Only the last page of so long a string is there: what looks from the end reads no other.
TEST(Character, TakesLengthsWithoutSign) {
    const Text page(false, 4096, String(4096, 'x').data());
    const std::uintptr_t length = 0x80000010, start = std::uintptr_t(page.end()) - length;
    EXPECT_EQ(f90_lentrim(reinterpret_cast<char *>(start), length), INT32_MIN + 16);
    EXPECT_EQ(f90_klentrim(reinterpret_cast<char *>(start), length), INT32_MIN + 16);
    for (int i = 0; i < 6; ++i) {
        const f90_Slot string = {start, length}, other = {std::uintptr_t(i % 3 < 2 ? "x" : "y"), 1};
        const f90_Slot result = call(searches[i], {0, 8, 0, {7, 7}, string, other, {1, 0}, {}}, 3);
        EXPECT_TRUE(result.Word0 == length && result.Word1 == (i < 3 ? 7 : 0)) << i;
    }
}

TEST(Character, ReportsWrongLengths) {
    const String negative =
        " The NCOPIES argument has a value of -2. NCOPIES should be nonnegative.\n";
    const String has = " The RESULT character string has length ",
                 needs = ". It should have length ";
    struct {
        f90_Intrinsic *member;
        unsigned flags, length, copies, told; // of the result, which is given when it is not 7
        String outcome;
    } cases[] = {{f90_trim, 0, 5, 0, 1, has + "1" + needs + "2.\n"},
                 {f90_trim, ~0U, 5, 0, 0, has + "0" + needs + "2.\n"},
                 {f90_repeat, 1, 2, -2U, 0, negative},
                 {f90_repeat, ~0U, 2, -2U, 7, negative},
                 {f90_repeat, 1, 2, 3, 5, has + "5" + needs + "6.\n"},
                 {f90_repeat, 1, 1U << 31, 1, 0, has + "0" + needs + "-2147483648.\n"},
                 {f90_repeat, 1, 65537, 65537, 5, has + "5" + needs + "131073.\n"}, // by 32 bits
                 {f90_repeat, 0, 65536, 65536, 7, "status 7: "},
                 {f90_repeat, 1, 0x60000000, 3, 7, "status 7: "},
                 {f90_repeat, ~1U, SIZE_MAX, -2U, 7, "status 0: "}};
    for (auto &[member, flags, length, copies, told, outcome] : cases) {
        Call made = Call().slot(0, 0, told != 7).slot(1, std::uintptr_t("ab   ")).slot(2, copies);
        made.list.Flags = flags;
        made.list.Result.Word1 = told;
        made.list.Arg1.Word1 = length;
        const String name = member == f90_trim ? "TRIM" : "REPEAT";
        EXPECT_EQ(fatal_message([&] { made(member); }),
                  outcome[0] == ' ' ? report(name, outcome) : outcome);
    }
}
} // namespace

// The character intrinsics beside the C++ library's searches and the machine's Fortran compiler.
// A program of its own, since it defines f90_getspace. Inaccessible pages adjoin all that is used.
#include "guarded.h"

#include <gtest/gtest.h>
#include <memory>

using namespace test;
using String = std::string;
struct Text : Guarded {
    char *at;
    Text(bool ahead, std::size_t length, const char *argument = nullptr)
        : Guarded(length), at(reinterpret_cast<char *>(ahead ? begin() : end() - length)) {
        if (argument != nullptr)
            std::memcpy(at, argument, length), mprotect(begin(), size, PROT_READ);
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
                                    unsigned *numbers, unsigned, unsigned, unsigned); // lengths
static f90_Intrinsic *const finds[] = {f90_index,  f90_scan,  f90_verify,
                                       f90_kindex, f90_kscan, f90_kverify};

// The record ends behind so many arguments, and no more of it changes than the result.
static f90_Slot call(f90_Intrinsic *member, f90_ArgList list, int arguments) {
    static const Text records[] = {{false, 16}, {false, 24}, {false, 32}, {false, 40}};
    const Text &record = records[arguments];
    std::memcpy(record.at, &list, 16 + 8 * arguments);
    member(reinterpret_cast<f90_ArgList *>(record.at));
    std::memcpy(&list.Result, record.at + 8, 8);
    EXPECT_TRUE(record.has_become(String(reinterpret_cast<char *>(&list), 16 + 8 * arguments)));
    return list.Result;
}

// A call that must make this string, of the caller's storage or of new storage.
static void try_make(Random &random, f90_Intrinsic *member, f90_ArgList list, const String &made) {
    const bool given = coin(random), checked = member == f90_trim || list.Flags & 1;
    const std::size_t size = made.size(), room = given ? size + pick(random, 0, 3) : 0;
    const std::size_t told[] = {size, room, SIZE_MAX, checked ? size : random() % (size + 1)};
    const Text result(coin(random), room);
    list.Presence = (list.Presence & ~1) | given;
    if (given) list.Result = {std::uintptr_t(result.at), told[pick(random, 0, 3)]};
    const auto [address, length] = call(member, list, member == f90_trim ? 1 : 2);
    ASSERT_EQ(std::exchange(journal, ""), given ? "" : "+" + std::to_string(size));
    const Text &there = given ? result : *space;
    ASSERT_TRUE(address == std::uintptr_t(there.at) && length == size && there.has_become(made));
}

static void try_calls(Random &random, const String &string, const String &other) {
    SCOPED_TRACE(testing::PrintToString(string) + " and " + testing::PrintToString(other));
    const unsigned n = string.size(), m = other.size(), end = string.find_last_not_of(' ') + 1;
    const Text text(coin(random), n, string.data()), sought(coin(random), m, other.data());
    const Text left(coin(random), n), right(coin(random), n);
    const int copies = n == 0 ? pick(random, -1, 1) * INT32_MAX : pick(random, -1, 4);
    f90_ArgList list;
    std::memset(&list, pick(random, 1, 255), sizeof list);
    if (copies < 0) list.Flags &= ~1; // else it is reported
    list.Arg1 = {std::uintptr_t(text.at), n};
    String made;
    for (const unsigned back : {0, 1}) {
        unsigned numbers[4] = {back, n == 0 || copies < 0 ? 0U : copies};
        made.resize(2 * n + end + n * numbers[1]);
        fortran_characters_(string.data(), other.data(), made.data(), numbers, n, m, made.size());
        const std::size_t found[] = {
            1 + (back ? string.rfind(other) : string.find(other)),
            1 + (back ? string.find_last_of(other) : string.find_first_of(other)),
            1 + (back ? string.find_last_not_of(other) : string.find_first_not_of(other))};
        ASSERT_TRUE(std::equal(found, found + 3, numbers) && numbers[3] == end);
        list.Arg2 = {std::uintptr_t(sought.at), m};
        for (int i = 0; i < 18; ++i) { // an absent BACK's word contradicts, or is not there
            list.Presence = (list.Presence & ~8) | (back || i < 6 ? 8 : 0);
            list.Arg3.Word0 = std::array{0U, 1U, 1U, 1U, 2U, 1U << 31}[3 * back + i / 6];
            const auto [low, high] = call(finds[i % 6], list, back || i < 12 ? 3 : 2);
            ASSERT_TRUE(low == found[i % 3] && high == (i % 6 < 3 ? list.Result.Word1 : 0)) << i;
        }
    }
    f90_adjustl(text.at, n, left.at);
    f90_adjustr(text.at, n, right.at);
    ASSERT_TRUE(left.has_become(made.substr(0, n)) && right.has_become(made.substr(n, n)));
    ASSERT_TRUE(unsigned(f90_lentrim(text.at, n)) == end && f90_klentrim(text.at, n) == end);
    try_make(random, f90_trim, list, made.substr(2 * n, end));
    list.Arg2.Word0 = copies;
    try_make(random, f90_repeat, list, made.substr(2 * n + end));
}

// One letter among blanks, wherever the vectors of a search begin and end.
TEST(Character, FindsALetterAmongBlanks) {
    Random random(random_seed());
    for (int n = 1; n <= 150 && !HasFatalFailure(); ++n)
        for (const int place : {0, n - 1, pick(random, 0, n - 1)}) {
            String string(n, ' ');
            string[place] = 'x';
            try_calls(random, string, string.substr(place, pick(random, 1, 2)));
        }
}

// Every length to 40, and with it in turn every number to two more; and longer strings.
TEST(Character, AgreesWithModelAndFortran) {
    Random random(random_seed());
    const auto any = [&](const String &letters, int length) {
        String text(length, 0);
        for (char &letter : text) letter = letters[pick(random, 0, letters.size() - 1)];
        return text;
    };
    String bytes(256, 0);
    for (int i = 0; i < 256; ++i) bytes[i] = i;
    for (int i = random_rounds(43 * 43); i-- && !HasFatalFailure();) {
        const int n = i % 43 > 40 ? pick(random, 41, pick(random, 0, 9) ? 200 : 4000) : i % 43;
        const int m = n > 40 ? pick(random, 0, coin(random) ? 20 : n + 2) : i / 43 % (n + 3);
        const String sorts[] = {"x", "xy", "\t ", {"\0\t \x80\xA0\xFF", 6}, bytes};
        const String &letters = sorts[pick(random, 0, 4)], part = any(letters, m);
        String string = any(letters, n);
        for (int j = m && coin(random) ? 0 : n; j < n; ++j) string[j] = part[j % m];
        for (int spoiled = n ? pick(random, 0, 1 + n / (m + 1)) : 0; spoiled--;)
            string[pick(random, 0, n - 1)] ^= 1 << pick(random, 0, 7);
        try_calls(random, string, part);
        try_calls(random, String(n, ' ') + part + String(pick(random, 0, 40), ' '), string);
        std::shuffle(bytes.begin(), bytes.end(), random);
        const int size = std::array{0, 1, 2, 10, 62, 256}[pick(random, 0, 5)];
        const String in(bytes, 0, size), out(bytes, size);
        string = any(out.empty() || (size && coin(random)) ? in : out, n);
        for (int few = n ? pick(random, 0, 2) : 0; few--;)
            string[pick(random, 0, n - 1)] = bytes[pick(random, 0, 1) * 255];
        try_calls(random, string, coin(random) ? in : in + in.substr(size / 3));
    }
}

// Only the last page of so long a string is there: what looks from the end reads no other.
TEST(Character, TakesLengthsWithoutSign) {
    const Text page(false, 1, "x");
    const std::uintptr_t length = 0x80000010, start = std::uintptr_t(page.end()) - length;
    EXPECT_EQ(f90_lentrim(reinterpret_cast<char *>(start), length), INT32_MIN + 16);
    EXPECT_EQ(f90_klentrim(reinterpret_cast<char *>(start), length), INT32_MIN + 16);
    for (int i = 0; i < 6; ++i) {
        const f90_Slot string = {start, length}, other = {std::uintptr_t(i % 3 < 2 ? "x" : "y"), 1};
        const f90_Slot result = call(finds[i], {0, 8, 0, {7, 7}, string, other, {1, 0}, {}}, 3);
        EXPECT_TRUE(result.Word0 == length && result.Word1 == (i < 3 ? 7 : 0)) << i;
    }
}

TEST(Character, ReportsWrongLengths) {
    const auto ending = [](auto member, unsigned flags, unsigned n, unsigned copies, unsigned has) {
        const f90_Slot string = {std::uintptr_t("ab   "), n}; // 7: no result is given
        f90_ArgList list = {0, has != 7, flags, {0, has}, string, {copies, 0}, {}, {}};
        return fatal_message([&] { member(&list); });
    };
    const auto wrong = [](const char *name, int told, int needed) {
        return report(name, " The RESULT character string has length " + std::to_string(told) +
                                ". It should have length " + std::to_string(needed) + ".\n");
    };
    const String negative = report(
        "REPEAT", " The NCOPIES argument has a value of -2. NCOPIES should be nonnegative.\n");
    EXPECT_EQ(ending(f90_trim, 0, 5, 0, 1), wrong("TRIM", 1, 2));
    EXPECT_EQ(ending(f90_repeat, ~0U, 2, -2, 0), negative);
    EXPECT_EQ(ending(f90_repeat, 1, 2, 3, 5), wrong("REPEAT", 5, 6));
    EXPECT_EQ(ending(f90_repeat, 1, 1U << 31, 1, 0), wrong("REPEAT", 0, INT32_MIN));
    EXPECT_EQ(ending(f90_repeat, 1, 65537, 65537, 5), wrong("REPEAT", 5, 131073)); // by 32 bits
    EXPECT_EQ(ending(f90_repeat, 0, 65537, 65537, 7), "status 7: ");
    EXPECT_EQ(ending(f90_repeat, ~1U, SIZE_MAX, -2, 7), "status 0: ");
}

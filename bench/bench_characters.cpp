// The rows of the intrinsics of strings: the size is the bytes of STRING. The number in a name
// is the bytes of SUBSTRING or SET, or NCOPIES; what is sought lies as far away as it can.
#include "data.h"
#include "families.h"
#include "rows.h"

#include <cstring>
#include <random>
#include <variant>

namespace bench::strings {

using Peer = void(const char *string, const char *other, std::int32_t length,
                  std::int32_t other_length, std::int32_t result_length, void *result);

struct Peers {
    Peer *o2;
    Peer *o3;
};

// clang-format off
PEERS(string_adjustl); PEERS(string_adjustr); PEERS(string_len_trim); PEERS(string_trim);
PEERS(string_repeat); PEERS(string_index); PEERS(string_index_back); PEERS(string_scan);
PEERS(string_scan_back); PEERS(string_verify); PEERS(string_verify_back);
// clang-format on

namespace {

// ---- Strings ----------------------------------------------------------------

struct Operands {
    std::string string;
    std::string other;   // SUBSTRING or SET
    std::int32_t number; // its bytes, NCOPIES, or one in how many characters is a blank
    bool back;
    std::mt19937 random{1};
};
using Contents = void(Operands &operands);

// The library's word for lengths.
std::uint32_t bytes(const std::string &string) { return static_cast<std::uint32_t>(string.size()); }

// Characters that are as frequent as they are in `alphabet`.
std::string drawn(std::mt19937 &random, std::size_t length, const std::string &alphabet) {
    std::string string(length, ' ');
    for (char &character : string) character = alphabet[random() % alphabet.size()];
    return string;
}

const std::string letters = "aaaaaeeeeeeeiiiilllnnnnooooorrrrsssttttuu";
const std::string digits_and_letters =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
const std::string marks = " .,;:!?+-*/=()<>";

void text(Operands &operands) {
    operands.string = drawn(operands.random, operands.string.size(), letters);
}

std::size_t blanks(const Operands &operands) {
    const auto one_in = static_cast<std::size_t>(operands.number);
    return (operands.string.size() + one_in - 1) / one_in;
}

void indented_text(Operands &operands) {
    text(operands);
    operands.string.replace(0, blanks(operands), blanks(operands), ' ');
}

void padded_text(Operands &operands) {
    text(operands);
    const std::size_t count = blanks(operands);
    operands.string.replace(operands.string.size() - count, count, count, ' ');
}

void put_last(Operands &operands, const std::string &hit) {
    std::string &string = operands.string;
    string.replace(operands.back ? 0 : string.size() - hit.size(), hit.size(), hit);
}

// Of the same letters as the text, where more than one is sought.
void substring(Operands &operands) {
    text(operands);
    const std::size_t length = operands.other.size();
    do operands.other = length == 1 ? "z" : drawn(operands.random, length, letters);
    while (operands.string.find(operands.other) != std::string::npos);
    put_last(operands, operands.other);
}

void near_misses(Operands &operands) {
    const std::size_t length = operands.other.size();
    operands.other.assign(length, 'a');
    for (std::size_t i = 0; i < operands.string.size(); ++i)
        operands.string[i] = i % length == length - 1 ? 'b' : 'a';
    put_last(operands, operands.other);
}

void string_beside_set(Operands &operands) {
    operands.other = digits_and_letters.substr(0, operands.other.size());
    operands.string = drawn(operands.random, operands.string.size(), marks);
    put_last(operands, operands.other.substr(operands.other.size() - 1));
}

void string_of_set(Operands &operands) {
    operands.other = digits_and_letters.substr(0, operands.other.size());
    operands.string = drawn(operands.random, operands.string.size(), operands.other);
    put_last(operands, ".");
}

// ---- Rows -------------------------------------------------------------------

using Adjusting = void(const char *source, std::uint32_t length, char *destination);
using Measuring = std::int32_t(const char *string, std::uint32_t length);
using Intrinsic = void(f90_ArgList *arguments);

enum class Answer { Position, String, Trimmed, Copies };

struct Row {
    const char *name;
    std::variant<Adjusting *, Measuring *, Intrinsic *> ours;
    Peers peers;
    Answer answer;
    Contents *contents;
    std::int32_t number;
    std::vector<std::int32_t> lengths; // of STRING
    bool back = false;
};

// clang-format off
#define BLANKS(NAME, ENTRY, ANSWER, CONTENTS) \
    {#NAME " half", ENTRY, string_##NAME, Answer::ANSWER, CONTENTS, 2, {10000, 20}}, \
    {#NAME " few", ENTRY, string_##NAME, Answer::ANSWER, CONTENTS, 500, {10000, 20}}
#define REPEAT(COPIES, ...) \
    {"repeat " #COPIES, f90_repeat, string_repeat, Answer::Copies, text, COPIES, {__VA_ARGS__}}
#define SEARCH(NAME, WHAT, CONTENTS, NUMBER, ...) \
    {#NAME WHAT #NUMBER, f90_##NAME, string_##NAME, Answer::Position, CONTENTS, NUMBER, {__VA_ARGS__}}, \
    {#NAME WHAT #NUMBER " back", f90_##NAME, string_##NAME##_back, Answer::Position, CONTENTS, NUMBER, {__VA_ARGS__}, true}

const Row rows[] = {
    BLANKS(adjustl, f90_adjustl, String, indented_text), BLANKS(adjustr, f90_adjustr, String, padded_text),
    BLANKS(len_trim, f90_lentrim, Position, padded_text), BLANKS(trim, f90_trim, Trimmed, padded_text),
    REPEAT(1, 10000, 20), REPEAT(5, 20), REPEAT(100, 100), REPEAT(500, 20), REPEAT(10000, 1),
    SEARCH(index, " ", substring, 1, 10000), SEARCH(index, " ", substring, 4, 10000), SEARCH(index, " ", substring, 100, 10000),
    SEARCH(index, " near misses ", near_misses, 10, 10000), SEARCH(index, " near misses ", near_misses, 100, 10000),
    SEARCH(index, " ", substring, 3, 20),
    SEARCH(scan, " ", string_beside_set, 1, 10000, 20), SEARCH(scan, " ", string_beside_set, 10, 10000, 20),
    SEARCH(scan, " ", string_beside_set, 62, 10000, 20), SEARCH(verify, " ", string_of_set, 1, 10000, 20),
    SEARCH(verify, " ", string_of_set, 10, 10000, 20), SEARCH(verify, " ", string_of_set, 62, 10000, 20),
};
// clang-format on

// ---- Running a row ----------------------------------------------------------

std::int32_t result_length(Answer answer, const Operands &operands) {
    const auto length = static_cast<std::int32_t>(operands.string.size());
    switch (answer) {
    case Answer::String:
        return length;
    case Answer::Trimmed:
        return static_cast<std::int32_t>(operands.string.find_last_not_of(' ')) + 1;
    case Answer::Copies:
        return length * operands.number;
    case Answer::Position:
        break;
    }
    return sizeof(std::int32_t);
}

f90_Slot slot_of(const void *string, std::uint32_t length) {
    return {reinterpret_cast<std::uintptr_t>(string), length};
}

// What the library's call takes, and where its answer lies.
struct Job {
    const std::string &string;
    f90_ArgList *list;
    void *result;
};

Repeated our_call(Adjusting *adjust, const Job &job) {
    return repeated([=, from = job.string.data(), length = bytes(job.string),
                     to = static_cast<char *>(job.result)] { adjust(from, length, to); });
}

Repeated our_call(Measuring *measure, const Job &job) {
    return repeated(
        [=, string = job.string.data(), length = bytes(job.string),
         to = static_cast<std::int32_t *>(job.result)] { *to = measure(string, length); });
}

Repeated our_call(Intrinsic *intrinsic, const Job &job) {
    return repeated([=, list = job.list] { intrinsic(list); });
}

void compete(Table &table, const Row &row, std::int32_t length) {
    constexpr std::size_t most_bytes = 10000;
    static void *const storage[] = {allocate(most_bytes), allocate(most_bytes),
                                    allocate(most_bytes), allocate(most_bytes)};
    Operands operands{std::string(static_cast<std::size_t>(length), ' '),
                      std::string(static_cast<std::size_t>(row.number), ' '), row.number, row.back};
    row.contents(operands);
    const std::int32_t k = result_length(row.answer, operands);

    f90_ArgList list{};
    list.Presence = 1U << 0 | 1U << 1 | 1U << 2; // Result and two arguments
    if (row.back) list.Presence |= 1U << 3;
    list.Result = slot_of(storage[Ours], static_cast<std::uint32_t>(k));
    list.Arg1 = slot_of(operands.string.data(), bytes(operands.string));
    list.Arg2 = row.answer == Answer::Copies
                    ? slot(row.number)
                    : slot_of(operands.other.data(), bytes(operands.other));
    list.Arg3 = slot(1);
    const bool in_slot =
        row.answer == Answer::Position && std::holds_alternative<Intrinsic *>(row.ours);
    void *const results[contestants] = {in_slot ? &list.Result : storage[Ours], storage[PeerO2],
                                        storage[PeerO3], storage[Reference]};
    spoil(results, static_cast<std::size_t>(k));

    const auto peer_call = [&](Peer *peer, Contestant contestant) {
        return repeated([=, string = operands.string.data(), other = operands.other.data(),
                         number = row.number,
                         to = results[contestant]] { peer(string, other, length, number, k, to); });
    };
    const auto agrees = [&](Contestant peer) {
        const void *answer = results[peer];
        if (row.answer == Answer::Trimmed) answer = *static_cast<void **>(results[peer]);
        return std::memcmp(results[Ours], answer, static_cast<std::size_t>(k)) == 0;
    };
    const Job job{operands.string, &list, results[Ours]};
    run(table, {row.name,
                std::to_string(length),
                {std::visit([&](auto *entry) { return our_call(entry, job); }, row.ours),
                 peer_call(row.peers.o2, PeerO2), peer_call(row.peers.o3, PeerO3)},
                agrees});
}

} // namespace

} // namespace bench::strings

void bench::bench_characters(Table &table) {
    for (const strings::Row &row : strings::rows)
        for (const std::int32_t length : row.lengths)
            if (wanted(table, row.name)) strings::compete(table, row, length);
}

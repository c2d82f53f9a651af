// What the families that move elements have in common: peers, storage, and what a contest
// needs where elements go by size alone.
#pragma once

#include "harness.h"
#include "rows.h"

namespace bench::moving {

// The operands are those of the library's call. `count` is the number of elements in a
// result whose length the shape does not tell.
using Peer = void(const void *first, const void *second, const void *third, std::int32_t rows,
                  std::int32_t columns, std::int32_t count, void *result);

struct Peers {
    Peer *o2;
    Peer *o3;
};

constexpr std::int32_t more_words = 1 << 18; // of the second operand

struct Storage {
    void *first;
    void *second;
    void *third;
    void *results[contestants];
};

// One for all rows.
const Storage &shared_storage();

// The reference: memcpy of as many bytes of the first operand.
Repeated copies(std::size_t bytes);

// Whether a contestant left the same bytes behind as the library.
std::function<bool(Contestant)> same_bytes(std::size_t bytes);

// A contest whose operands stay the same from call to call.
struct Move {
    std::string name;
    const char *size;
    f90_Intrinsic *ours;
    f90_ArgList *list;
    Peers peers;
    std::int32_t rows; // these three for the peers
    std::int32_t columns;
    std::int32_t count;
    std::function<bool(Contestant)> agrees;
    Repeated reference; // may be empty
};
void run_move(Table &table, const Move &move);

} // namespace bench::moving

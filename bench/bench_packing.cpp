// The rows of PACK and UNPACK. A row is named after the bytes of an element and how much of
// MASK is true; v() is PACK's VECTOR, f() a FIELD of MASK's shape, "second" every second
// element of ARRAY or of such a FIELD. MASK lies elsewhere in every call, so that no branch
// predictor learns it.
#include "families.h"
#include "moving_rows.h"

#include <span>

namespace bench::moving {

// clang-format off
#define PEERS_OF(WHAT) PEERS(pack_##WHAT); PEERS(unpack_##WHAT)
PEERS_OF(1); PEERS_OF(2); PEERS_OF(4); PEERS_OF(8); PEERS_OF(10); PEERS_OF(12); PEERS_OF(16);
PEERS_OF(32); PEERS_OF(4_array); PEERS_OF(8_array); PEERS_OF(4_second); PEERS_OF(8_second);

namespace {

// ---- Rows -------------------------------------------------------------------

struct Mask {
    const char *suffix; // of the row's name
    Values values;
};
const Mask masks[] = {{" half", Values::Coins}, {" most", Values::MostlyTrue}, {" few", Values::MostlyFalse}};
const std::span all(masks);
const std::span half(masks, 1);

enum class Family { Pack, Unpack };

struct Row {
    const char *name;
    Family family;
    f90_Intrinsic *ours;
    Peers peers;
    Kind element;
    bool array; // VECTOR of PACK, or FIELD of UNPACK
    std::int32_t stride; // of what MASK selects from
    std::span<const Mask> masks;
    const Shapes &shapes;
};

#define PACK(NAME, ENTRY, PEERS, ...)                                                              \
    {"pack " NAME, Family::Pack, f90_pack##ENTRY, pack_##PEERS, __VA_ARGS__}
#define UNPACK(NAME, ENTRY, PEERS, ...)                                                            \
    {"unpack " NAME, Family::Unpack, f90_unpack##ENTRY, unpack_##PEERS, __VA_ARGS__}
#define BOTH(...) PACK(__VA_ARGS__), UNPACK(__VA_ARGS__)

const Row rows[] = {
    BOTH("1", 1, 1, int1, false, 1, half, second_cache),
    BOTH("2", 2, 2, int2, false, 1, half, second_cache),
    BOTH("4", 4, 4, real4, false, 1, all, caches),
    BOTH("8", 8, 8, real8, false, 1, all, caches),
    BOTH("10", 10, 10, characters(10), false, 1, half, second_cache),
    BOTH("12", n, 12, characters(12), false, 1, half, second_cache),
    BOTH("16", 16, 16, complex16, false, 1, half, second_cache),
    BOTH("32", 32, 32, complex32, false, 1, half, second_cache),
    PACK("4 v()", 4, 4_array, real4, true, 1, half, second_cache),
    PACK("8 v()", 8, 8_array, real8, true, 1, half, second_cache),
    UNPACK("4 f()", 4, 4_array, real4, true, 1, all, caches),
    UNPACK("8 f()", 8, 8_array, real8, true, 1, all, caches),
    PACK("4 second", 4, 4_second, real4, false, 2, half, second_cache),
    PACK("8 second", 8, 8_second, real8, false, 2, half, second_cache),
    UNPACK("4 second", 4, 4_second, real4, true, 2, half, second_cache),
    UNPACK("8 second", 8, 8_second, real8, true, 2, half, second_cache),
    BOTH("4 small", 4, 4, real4, false, 1, half, ten),
    BOTH("8 small", 8, 8, real8, false, 1, half, ten),
};
// clang-format on

// ---- A MASK that moves ------------------------------------------------------

// How many of `length` words, 0 or 1 each, are true: from each of the first places on.
std::vector<std::int32_t> counts_of_trues(const std::int32_t *words, std::int32_t length,
                                          std::int32_t places) {
    std::vector<std::int32_t> counts;
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < length; ++i) count += words[i];
    for (std::int32_t place = 0; place < places; ++place) {
        counts.push_back(count);
        count += words[place + length] - words[place];
    }
    return counts;
}

struct MovingMask {
    const std::int32_t *first_word;
    std::span<const std::int32_t> counts;
    std::size_t place = 0;

    void move() { place = (place + 7919) % counts.size(); }
    const std::int32_t *words() const { return first_word + place; }
    std::int32_t trues() const { return counts[place]; }
};

// ---- Running a row ----------------------------------------------------------

std::string name_of(const Row &row, const Mask &mask, const Shape &shape) {
    return row.name + full_name(mask.suffix, shape);
}

void compete(Table &table, const Row &row, const Mask &mask_row, const Shape &shape) {
    const Storage &storage = shared_storage();
    const std::int32_t count = shape.rows_of(row.element);
    const std::size_t size = row.element.size();
    const std::int32_t first_stride = row.family == Family::Pack ? row.stride : 1;
    const std::int32_t third_stride = row.family == Family::Unpack ? row.stride : 1;
    // The MASK of a small call stays in the nearest cache.
    const std::int32_t places = &row.shapes == &ten ? 1 << 12 : more_words;
    fill(row.element, Values::Spread, storage.first, first_stride * count, 1);
    fill(int4, mask_row.values, storage.second, count + places, 2);
    fill(row.element, Values::Spread, storage.third, third_stride * count, 3);
    spoil(storage.results, static_cast<std::size_t>(count) * size);

    f90_ArrDesc first = vector(storage.first, count, size, first_stride);
    f90_ArrDesc mask = vector(storage.second, count, sizeof(std::int32_t));
    f90_ArrDesc third =
        row.array ? vector(storage.third, count, size, third_stride) : scalar(storage.third, size);
    f90_ArrDesc result = vector(storage.results[Ours], count, size);
    f90_ArgList list{};
    list.Presence = 1U << 0 | 1U << 1 | 1U << 2; // Result, ARRAY or VECTOR, MASK
    if (row.family == Family::Unpack || row.array) list.Presence |= 1U << 3;
    list.Result = slot(result);
    list.Arg1 = slot(first);
    list.Arg2 = slot(mask);
    list.Arg3 = slot(third);

    const bool trues_alone = row.family == Family::Pack && !row.array; // are the result
    const auto *const words = static_cast<const std::int32_t *>(storage.second);
    const std::vector<std::int32_t> counts = counts_of_trues(words, count, places);
    const MovingMask moving_mask = {words, counts};
    const auto peer_call = [&](Peer *peer, Contestant contestant) {
        return repeated([=, masks = moving_mask, to = storage.results[contestant]]() mutable {
            masks.move();
            peer(storage.first, masks.words(), storage.third, count, 1, masks.trues(), to);
        });
    };
    const auto our_call = repeated([&, masks = moving_mask]() mutable {
        masks.move();
        mask.BASE = const_cast<std::int32_t *>(masks.words());
        if (trues_alone) result.EXTENT = result.Dim[0].Upper = masks.trues();
        row.ours(&list);
    });
    MovingMask of_first_call = moving_mask;
    of_first_call.move();
    const std::int32_t results = trues_alone ? of_first_call.trues() : count;
    run(table, {name_of(row, mask_row, shape),
                shape.size,
                {our_call, peer_call(row.peers.o2, PeerO2), peer_call(row.peers.o3, PeerO3)},
                same_bytes(static_cast<std::size_t>(results) * size)});
}

} // namespace

} // namespace bench::moving

void bench::bench_packing(Table &table) {
    for (const moving::Row &row : moving::rows)
        for (const moving::Mask &mask : row.masks)
            for (const Shape &shape : row.shapes)
                if (wanted(table, moving::name_of(row, mask, shape)))
                    moving::compete(table, row, mask, shape);
}

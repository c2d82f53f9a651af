// The shapes, the storage, and the run of a row of one array: its call record, the
// peers' arguments, a MASK that moves.
#include "reduction_rows.h"

#include <cmath>

namespace bench {

// ---- Shapes and storage -----------------------------------------------------

namespace {

// How far a MASK moves from its first place.
constexpr std::int32_t mask_stretch = 1 << 18;

Storage storage_for_all() {
    constexpr std::size_t most_result_bytes = 500 * sizeof(double);
    // Of the masked rows those of kind 4 have the most elements: one mask word to 4 bytes.
    Storage storage{allocate(most_bytes), allocate(most_bytes + mask_stretch * sizeof(int)), {}};
    for (void *&result : storage.results) result = allocate(most_result_bytes);
    return storage;
}

} // namespace

const Shapes middle_row = {{"", "500x500", 0, 500, 500, 250}};
const Shapes square = {{" dim=1", "3x3", 0, 3, 3, 1}, {" dim=2", "3x3", 0, 3, 3, 2}};
const Shapes oblong = {{" dim=1", "5x2", 0, 5, 2, 1}};

const Storage &shared_storage() {
    static const Storage all = storage_for_all();
    return all;
}

// ---- Running a row ----------------------------------------------------------

namespace {

f90_ArrDesc operand(const Row &row, const Shape &shape, void *base) {
    const std::int32_t count = shape.rows_of(row.element);
    const std::size_t size = row.element.size();
    switch (row.form) {
    case Form::EverySecond:
        return vector(base, (count + 1) / 2, size, 2);
    case Form::MatrixRow:
        return vector(static_cast<std::byte *>(base) + (shape.dim - 1) * static_cast<int>(size),
                      shape.columns, size, shape.rows);
    case Form::Along:
        return matrix(base, shape.rows, shape.columns, size);
    default:
        return vector(base, count, size);
    }
}

std::int32_t result_count(const Row &row, const Shape &shape) {
    if (row.form != Form::Along) return 1;
    return shape.dim == 1 ? shape.columns : shape.rows;
}

// Rounding errors of a product come and go with both signs. Sums are exact.
double tolerated_error(const Row &row, std::int32_t elements) {
    return row.values == Values::NearOne ? 8 * row.result.rounding * std::sqrt(elements) : 0;
}

// A MASK for every call: words from a new place of a long random stretch, which
// no branch predictor learns by heart.
struct MovingMask {
    const std::int32_t *words;
    std::int32_t place = 0;

    const std::int32_t *next() {
        place = (place + 7919) % mask_stretch;
        return words + place;
    }
};

constexpr unsigned result_present = 1U << 0;
constexpr unsigned array_present = 1U << 1;
constexpr unsigned dim_present = 1U << 2;
constexpr unsigned mask_present = 1U << 3;

void compete(Table &table, const Row &row, const Shape &shape, Answer answer) {
    const Storage &storage = shared_storage();
    const std::int32_t count = shape.rows_of(row.element);
    const std::int32_t elements = count * shape.columns;
    const std::int32_t results = result_count(row, shape);
    fill(row.element, row.values, storage.array, elements, 1);
    if (row.form == Form::Masked)
        fill(int4, Values::Coins, storage.other, elements + mask_stretch, 2);
    spoil(storage.results, static_cast<std::size_t>(results) * row.result.size());

    f90_ArrDesc array = operand(row, shape, storage.array);
    f90_ArrDesc mask = vector(storage.other, elements, sizeof(std::int32_t));
    f90_ArrDesc result = row.form == Form::Along || answer == Answer::Location
                             ? vector(storage.results[Ours], results, row.result.size())
                             : scalar(storage.results[Ours], row.result.size());
    f90_ArgList list{};
    list.Presence = result_present | array_present;
    if (row.form == Form::Along) list.Presence |= dim_present;
    if (row.form == Form::Masked) list.Presence |= mask_present;
    list.Result = slot(result);
    list.Arg1 = slot(array);
    list.Arg2 = slot(shape.dim);
    list.Arg3 = slot(mask);

    const MovingMask moving_mask = {static_cast<const std::int32_t *>(storage.other)};
    const auto peer_call = [&](Peer *peer, Contestant contestant) {
        return repeated([=, masks = moving_mask, array_base = storage.array,
                         result_base = storage.results[contestant]]() mutable {
            const void *mask_base = row.form == Form::Masked ? masks.next() : nullptr;
            peer(array_base, mask_base, count, shape.columns, shape.dim, result_base);
        });
    };
    const auto agrees = [&](Contestant peer) {
        return same(row.result, storage.results[Ours], storage.results[peer], results,
                    tolerated_error(row, elements));
    };
    run(table, {full_name(row.name, shape),
                shape.size,
                {repeated([&, masks = moving_mask]() mutable {
                     if (row.form == Form::Masked)
                         mask.BASE = const_cast<std::int32_t *>(masks.next());
                     row.ours(&list);
                 }),
                 peer_call(row.peers.o2, PeerO2), peer_call(row.peers.o3, PeerO3)},
                agrees});
}

} // namespace

void run_rows(Table &table, std::span<const Row> rows, Answer answer) {
    for (const Row &row : rows)
        for (const Shape &shape : row.shapes)
            if (wanted(table, full_name(row.name, shape))) compete(table, row, shape, answer);
}

} // namespace bench

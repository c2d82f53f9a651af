// The rows of SUM, PRODUCT, COUNT, ALL and ANY. A row names the library's entry,
// the peers, the data and how they lie; it is run for each of its shapes.
#include "data.h"
#include "families.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace bench {
namespace {

// ---- Peers ------------------------------------------------------------------

using Peer = void(const void *array, const void *mask, std::int32_t rows, std::int32_t columns,
                  std::int32_t dim, void *result);

struct Peers {
    Peer *o2;
    Peer *o3;
};

} // namespace

#define PEERS(NAME)                                                                                \
    extern "C" Peer o2_##NAME, o3_##NAME;                                                          \
    static constexpr Peers NAME{o2_##NAME, o3_##NAME};

PEERS(sum_r4)
PEERS(sum_r8)
PEERS(sum_r10)
PEERS(sum_r16)
PEERS(sum_c8)
PEERS(sum_c16)
PEERS(sum_i1)
PEERS(sum_i2)
PEERS(sum_i4)
PEERS(sum_i8)
PEERS(product_r4)
PEERS(product_r8)
PEERS(product_r10)
PEERS(product_r16)
PEERS(product_c8)
PEERS(product_c16)
PEERS(product_i4)
PEERS(count_l1)
PEERS(count_l2)
PEERS(count_l4)
PEERS(count_l8)
PEERS(all_l1)
PEERS(all_l2)
PEERS(all_l4)
PEERS(all_l8)
PEERS(any_l1)
PEERS(any_l2)
PEERS(any_l4)
PEERS(any_l8)
PEERS(sum_r4_masked)
PEERS(sum_r8_masked)
PEERS(sum_c16_masked)
PEERS(sum_i4_masked)
PEERS(product_r8_masked)
PEERS(sum_r4_second)
PEERS(sum_r8_second)
PEERS(sum_i4_second)
PEERS(count_l4_second)
PEERS(sum_r8_row)
PEERS(sum_r4_dim1)
PEERS(sum_r4_dim2)
PEERS(sum_r8_dim1)
PEERS(sum_r8_dim2)
PEERS(sum_i4_dim1)
PEERS(sum_i4_dim2)
PEERS(count_l4_dim1)
PEERS(count_l4_dim2)
PEERS(sum_r8_dim)
PEERS(sum_i4_dim)
PEERS(count_l4_dim)

#undef PEERS

namespace {

// ---- Rows -------------------------------------------------------------------

// How the reduced elements lie in the storage.
enum class Form {
    Whole,       // a vector
    Masked,      // a vector under a MASK of which half is true
    EverySecond, // element 1, 3, ... of a vector
    MatrixRow,   // row number `dim` of a matrix
    Along        // dimension `dim` of a matrix
};

struct Shape {
    const char *suffix; // of the row's name
    const char *size;
    std::int32_t bytes; // of a vector whose length is not given
    std::int32_t rows;
    std::int32_t columns;
    std::int32_t dim;

    std::int32_t rows_of(const Kind &element) const {
        return bytes == 0 ? rows : bytes / static_cast<std::int32_t>(element.size());
    }
};
using Shapes = std::vector<Shape>;

constexpr std::int32_t most_bytes = 96 << 20; // well beyond the last cache
const Shape l1 = {" L1", "24 KiB", 24 << 10, 0, 1, 0};
const Shapes first_cache = {l1};
const Shapes caches = {
    l1, {" L2", "256 KiB", 256 << 10, 0, 1, 0}, {" RAM", "96 MiB", most_bytes, 0, 1, 0}};
const Shapes dim1 = {{" dim=1", "500x500", 0, 500, 500, 1}};
const Shapes dim2 = {{" dim=2", "500x500", 0, 500, 500, 2}};
const Shapes middle_row = {{"", "500x500", 0, 500, 500, 250}};
const Shapes ten = {{"", "10", 0, 10, 1, 0}};
const Shapes square = {{" dim=1", "3x3", 0, 3, 3, 1}, {" dim=2", "3x3", 0, 3, 3, 2}};
const Shapes oblong = {{" dim=1", "5x2", 0, 5, 2, 1}};

struct Row {
    const char *name;
    f90_Intrinsic *ours;
    Peers peers;
    const Kind &element;
    const Kind &result;
    Values values;
    Form form;
    const Shapes &shapes;
};

// clang-format off
const Row rows[] = {
    {"sum r4 whole", f90_sumr4, sum_r4, real4, real4, Values::Sixteenths, Form::Whole, caches},
    {"sum r8 whole", f90_sumr8, sum_r8, real8, real8, Values::Sixteenths, Form::Whole, caches},
    {"sum r10 whole", f90_sumr10, sum_r10, real10, real10, Values::Sixteenths, Form::Whole, caches},
    {"sum r16 whole", f90_sumr16, sum_r16, real16, real16, Values::Sixteenths, Form::Whole, first_cache},
    {"sum c8 whole", f90_sumc8, sum_c8, complex8, complex8, Values::Sixteenths, Form::Whole, caches},
    {"sum c16 whole", f90_sumc16, sum_c16, complex16, complex16, Values::Sixteenths, Form::Whole, caches},
    {"sum i1 whole", f90_sumi1, sum_i1, int1, int1, Values::Integers, Form::Whole, caches},
    {"sum i2 whole", f90_sumi2, sum_i2, int2, int2, Values::Integers, Form::Whole, caches},
    {"sum i4 whole", f90_sumi4, sum_i4, int4, int4, Values::Integers, Form::Whole, caches},
    {"sum i8 whole", f90_sumi8, sum_i8, int8, int8, Values::Integers, Form::Whole, caches},

    {"product r4 whole", f90_prodr4, product_r4, real4, real4, Values::NearOne, Form::Whole, caches},
    {"product r8 whole", f90_prodr8, product_r8, real8, real8, Values::NearOne, Form::Whole, caches},
    {"product r10 whole", f90_prodr10, product_r10, real10, real10, Values::NearOne, Form::Whole, caches},
    {"product r16 whole", f90_prodr16, product_r16, real16, real16, Values::NearOne, Form::Whole, first_cache},
    {"product c8 whole", f90_prodc8, product_c8, complex8, complex8, Values::NearOne, Form::Whole, caches},
    {"product c16 whole", f90_prodc16, product_c16, complex16, complex16, Values::NearOne, Form::Whole, caches},
    {"product i4 whole", f90_prodi4, product_i4, int4, int4, Values::OddIntegers, Form::Whole, caches},

    {"sum r4", f90_sumr4, sum_r4_dim1, real4, real4, Values::Sixteenths, Form::Along, dim1},
    {"sum r4", f90_sumr4, sum_r4_dim2, real4, real4, Values::Sixteenths, Form::Along, dim2},
    {"sum r8", f90_sumr8, sum_r8_dim1, real8, real8, Values::Sixteenths, Form::Along, dim1},
    {"sum r8", f90_sumr8, sum_r8_dim2, real8, real8, Values::Sixteenths, Form::Along, dim2},
    {"sum i4", f90_sumi4, sum_i4_dim1, int4, int4, Values::Integers, Form::Along, dim1},
    {"sum i4", f90_sumi4, sum_i4_dim2, int4, int4, Values::Integers, Form::Along, dim2},
    // With a DIM that is known at run time only, the peer calls its library.
    {"sum r8 variable", f90_sumr8, sum_r8_dim, real8, real8, Values::Sixteenths, Form::Along, dim1},
    {"sum r8 variable", f90_sumr8, sum_r8_dim, real8, real8, Values::Sixteenths, Form::Along, dim2},
    {"sum i4 variable", f90_sumi4, sum_i4_dim, int4, int4, Values::Integers, Form::Along, dim1},
    {"sum i4 variable", f90_sumi4, sum_i4_dim, int4, int4, Values::Integers, Form::Along, dim2},

    {"sum r4 masked", f90_sumr4, sum_r4_masked, real4, real4, Values::Sixteenths, Form::Masked, caches},
    {"sum r8 masked", f90_sumr8, sum_r8_masked, real8, real8, Values::Sixteenths, Form::Masked, caches},
    {"sum c16 masked", f90_sumc16, sum_c16_masked, complex16, complex16, Values::Sixteenths, Form::Masked, caches},
    {"sum i4 masked", f90_sumi4, sum_i4_masked, int4, int4, Values::Integers, Form::Masked, caches},
    {"product r8 masked", f90_prodr8, product_r8_masked, real8, real8, Values::NearOne, Form::Masked, caches},

    {"count l1 whole", f90_count1, count_l1, int1, int4, Values::Coins, Form::Whole, caches},
    {"count l2 whole", f90_count2, count_l2, int2, int4, Values::Coins, Form::Whole, caches},
    {"count l4 whole", f90_count4, count_l4, int4, int4, Values::Coins, Form::Whole, caches},
    {"count l8 whole", f90_count8, count_l8, int8, int4, Values::Coins, Form::Whole, caches},
    {"count l4", f90_count4, count_l4_dim1, int4, int4, Values::Coins, Form::Along, dim1},
    {"count l4", f90_count4, count_l4_dim2, int4, int4, Values::Coins, Form::Along, dim2},

    {"all l1 whole", f90_all1, all_l1, int1, int1, Values::AllTrue, Form::Whole, caches},
    {"all l2 whole", f90_all2, all_l2, int2, int2, Values::AllTrue, Form::Whole, caches},
    {"all l4 whole", f90_all4, all_l4, int4, int4, Values::AllTrue, Form::Whole, caches},
    {"all l8 whole", f90_all8, all_l8, int8, int8, Values::AllTrue, Form::Whole, caches},
    {"any l1 whole", f90_any1, any_l1, int1, int1, Values::AllFalse, Form::Whole, caches},
    {"any l2 whole", f90_any2, any_l2, int2, int2, Values::AllFalse, Form::Whole, caches},
    {"any l4 whole", f90_any4, any_l4, int4, int4, Values::AllFalse, Form::Whole, caches},
    {"any l8 whole", f90_any8, any_l8, int8, int8, Values::AllFalse, Form::Whole, caches},

    {"sum r4 second", f90_sumr4, sum_r4_second, real4, real4, Values::Sixteenths, Form::EverySecond, caches},
    {"sum r8 second", f90_sumr8, sum_r8_second, real8, real8, Values::Sixteenths, Form::EverySecond, caches},
    {"sum i4 second", f90_sumi4, sum_i4_second, int4, int4, Values::Integers, Form::EverySecond, caches},
    {"count l4 second", f90_count4, count_l4_second, int4, int4, Values::Coins, Form::EverySecond, caches},
    {"sum r8 row", f90_sumr8, sum_r8_row, real8, real8, Values::Sixteenths, Form::MatrixRow, middle_row},

    {"small sum r8", f90_sumr8, sum_r8, real8, real8, Values::Sixteenths, Form::Whole, ten},
    {"small sum r8", f90_sumr8, sum_r8_dim, real8, real8, Values::Sixteenths, Form::Along, square},
    {"small sum i4", f90_sumi4, sum_i4_dim, int4, int4, Values::Integers, Form::Along, square},
    {"small count l4", f90_count4, count_l4, int4, int4, Values::Coins, Form::Whole, ten},
    {"small count l4", f90_count4, count_l4_dim, int4, int4, Values::Coins, Form::Along, oblong},
    {"small all l4", f90_all4, all_l4, int4, int4, Values::AllTrue, Form::Whole, ten},
};
// clang-format on

// ---- Running a row ----------------------------------------------------------

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
constexpr std::int32_t mask_stretch = 1 << 18;

struct MovingMask {
    const std::int32_t *words;
    std::int32_t place = 0;

    const std::int32_t *next() {
        place = (place + 7919) % mask_stretch;
        return words + place;
    }
};

struct Storage {
    void *array;
    void *mask;
    void *results[contestants];
};

Storage storage_for_all() {
    constexpr std::size_t most_result_bytes = 500 * sizeof(double);
    // Of the masked rows those of kind 4 have the most elements: one mask word to 4 bytes.
    Storage storage{allocate(most_bytes), allocate(most_bytes + mask_stretch * sizeof(int)), {}};
    for (void *&result : storage.results) result = allocate(most_result_bytes);
    return storage;
}

constexpr unsigned result_present = 1U << 0;
constexpr unsigned array_present = 1U << 1;
constexpr unsigned dim_present = 1U << 2;
constexpr unsigned mask_present = 1U << 3;

void compete(Table &table, const Row &row, const Shape &shape, const Storage &storage) {
    const std::int32_t count = shape.rows_of(row.element);
    const std::int32_t elements = count * shape.columns;
    const std::int32_t results = result_count(row, shape);
    fill(row.element, row.values, storage.array, elements, 1);
    if (row.form == Form::Masked)
        fill(int4, Values::Coins, storage.mask, elements + mask_stretch, 2);
    // What a contestant fails to write differs from the others' results.
    for (int c = 0; c < contestants; ++c)
        std::memset(storage.results[c], 0x11 * (c + 1),
                    static_cast<std::size_t>(results) * row.result.size());

    f90_ArrDesc array = operand(row, shape, storage.array);
    f90_ArrDesc mask = vector(storage.mask, elements, sizeof(std::int32_t));
    f90_ArrDesc result = row.form == Form::Along
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

    const MovingMask moving_mask = {static_cast<const std::int32_t *>(storage.mask)};
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
    run(table, {row.name + std::string(shape.suffix),
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

void bench_reductions(Table &table) {
    const Storage storage = storage_for_all();
    for (const Row &row : rows)
        for (const Shape &shape : row.shapes)
            if (wanted(table, row.name + std::string(shape.suffix)))
                compete(table, row, shape, storage);
}

} // namespace bench

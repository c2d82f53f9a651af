// The rows of TRANSFER. A row is named after the bytes of an element of SOURCE and of the
// result; "second" is every second element of either. The size is that of SOURCE.
#include "families.h"
#include "moving_rows.h"

#include <cstring>

namespace bench::moving {

// clang-format off
#define PEERS_OF(PAIR)                                                                             \
    PEERS(transfer_##PAIR); PEERS(transfer_##PAIR##_size); PEERS(transfer_##PAIR##_from_second);   \
    PEERS(transfer_##PAIR##_to_second); PEERS(transfer_##PAIR##_size_to_second)
PEERS_OF(4_1); PEERS_OF(4_4); PEERS_OF(4_8); PEERS_OF(8_1); PEERS_OF(8_4); PEERS_OF(8_8);
PEERS_OF(16_1); PEERS_OF(16_4); PEERS_OF(16_8); PEERS(transfer_4_16_scalar); PEERS(transfer_16_4_scalar);

namespace {

// ---- Rows -------------------------------------------------------------------

const Shapes one = {{" scalar", "1", 0, 1, 0, 0}}, four = {{" scalar", "4", 0, 4, 0, 0}};
const Shapes both = {l1, l2}, small = {{" small", "10", 0, 10, 0, 0}};

struct Row {
    const char *name;
    f90_Intrinsic *ours;
    Peers peers;
    std::size_t size; // of an element of the result
    Kind element; // of SOURCE
    const Shapes &shapes; // of SOURCE
    std::int32_t source_stride = 1, result_stride = 1;
    bool sized = false; // SIZE is given
};

#define ROW(NAME, TO, PEERS, ...) {"transfer " NAME, f90_transfer##TO, transfer_##PEERS, TO, __VA_ARGS__}
#define DENSE(FROM, TO, ELEMENT, SHAPES) ROW(#FROM " to " #TO, TO, FROM##_##TO, ELEMENT, SHAPES)
#define FROM_SECOND(FROM, TO, ELEMENT) \
    ROW(#FROM " second to " #TO, TO, FROM##_##TO##_from_second, ELEMENT, both, 2)
#define SECONDS(FROM, ELEMENT) \
    FROM_SECOND(FROM, 1, ELEMENT), FROM_SECOND(FROM, 4, ELEMENT), FROM_SECOND(FROM, 8, ELEMENT)
#define TO_SECOND(FROM, TO, ELEMENT) \
    ROW(#FROM " to " #TO " second", TO, FROM##_##TO##_to_second, ELEMENT, second_cache, 1, 2)

const Row rows[] = {
    DENSE(8, 1, real8, caches), DENSE(4, 8, real4, caches), DENSE(4, 4, real4, caches),
    SECONDS(4, real4), SECONDS(8, real8), SECONDS(16, complex16), TO_SECOND(8, 1, real8),
    TO_SECOND(4, 4, real4), TO_SECOND(8, 8, real8), TO_SECOND(4, 8, real4), TO_SECOND(8, 4, real8),
    ROW("4 to 8 size", 8, 4_8_size, real4, second_cache, 1, 1, true),
    ROW("8 to 4 size second", 4, 8_4_size_to_second, real8, second_cache, 1, 2, true),
    DENSE(4, 4, real4, small), DENSE(4, 8, real4, small), ROW("4 to 16", 16, 4_16_scalar, real4, four),
    ROW("4 second to 8", 8, 4_8_from_second, real4, small, 2), ROW("16 to 4", 4, 16_4_scalar, complex16, one),
};
// clang-format on

// ---- Running a row ----------------------------------------------------------

void compete(Table &table, const Row &row, const Shape &shape) {
    const Storage &storage = shared_storage();
    const std::int32_t elements = shape.rows_of(row.element);
    const std::size_t bytes = static_cast<std::size_t>(elements) * row.element.size();
    const std::int32_t results = static_cast<std::int32_t>(bytes / row.size);
    const std::size_t span = bytes * static_cast<std::size_t>(row.result_stride);
    fill(row.element, Values::Spread, storage.first, row.source_stride * elements, 1);
    for (void *result : storage.results) std::memset(result, 0x11, span); // gaps are to stay

    f90_ArrDesc source = vector(storage.first, elements, row.element.size(), row.source_stride);
    f90_ArrDesc mold = vector(storage.third, 1, row.size);
    f90_ArrDesc result = vector(storage.results[Ours], results, row.size, row.result_stride);
    if (&row.shapes == &one) source.RANK = 0;
    if (&row.shapes == &four) mold.RANK = result.RANK = 0;
    f90_ArgList list{};
    list.Presence = 1U << 0 | 1U << 1 | 1U << 2; // Result, SOURCE, MOLD
    if (row.sized) list.Presence |= 1U << 3;
    list.Result = slot(result);
    list.Arg1 = slot(source);
    list.Arg2 = slot(mold);
    list.Arg3 = slot(results);
    const bool moves_all = row.source_stride == 1 && row.result_stride == 1 && shape.bytes != 0;
    run_move(table, {full_name(row.name, shape), shape.size, row.ours, &list, row.peers, elements,
                     1, results, same_bytes(span), moves_all ? copies(bytes) : Repeated()});
}

} // namespace

} // namespace bench::moving

void bench::bench_transfer(Table &table) {
    for (const moving::Row &row : moving::rows)
        for (const Shape &shape : row.shapes)
            if (wanted(table, full_name(row.name, shape))) moving::compete(table, row, shape);
}

// The rows of CSHIFT and EOSHIFT. A row is named after the bytes of an element; s() is a
// SHIFT for each line, b a BOUNDARY for all lines, b() one for each. Strings (3, 10, 20 and
// 100 bytes) are given a BOUNDARY too.
#include "families.h"
#include "moving_rows.h"

namespace bench::moving {

// clang-format off
#define BOTH(WHAT) PEERS(cshift_##WHAT); PEERS(eoshift_##WHAT)
BOTH(1); BOTH(2); BOTH(3); BOTH(4); BOTH(8); BOTH(10); BOTH(16); BOTH(20); BOTH(32); BOTH(100);
BOTH(1_dim1); BOTH(4_dim1); BOTH(8_dim1); BOTH(8_dim1_each); BOTH(16_dim1); BOTH(1_dim2);
BOTH(4_dim2); BOTH(8_dim2); BOTH(16_dim2); BOTH(1_dim2_each); BOTH(4_dim2_each);
BOTH(8_dim2_each); BOTH(16_dim2_each); BOTH(8_second); BOTH(8_second_dim1); BOTH(8_second_dim2);
PEERS(eoshift_8_dim2_filled); PEERS(eoshift_8_dim2_filled_each);
PEERS(eoshift_8_dim2_each_filled); PEERS(eoshift_8_dim2_all_each);

namespace {

// ---- Rows -------------------------------------------------------------------

const Shapes small_dim2 = {{" dim=2", "2x5", 0, 2, 5, 2}};
const Shapes dim1_also_short = {dim1[0], {" dim=1", "3x100000", 0, 3, 100000, 1}};
const Shapes dim2_also_large = {dim2[0], {" dim=2", "3000x3000", 0, 3000, 3000, 2}};
const Shapes half_dim1 = {{" dim=1", "250x500", 0, 250, 500, 1}};
const Shapes half_dim2 = {{" dim=2", "250x500", 0, 250, 500, 2}};

enum class Family { Cshift, Eoshift };
enum Given { None, One, Each };

struct Row {
    const char *name;
    Family family;
    f90_Intrinsic *ours;
    Peers peers;
    Kind element;
    Given shift;
    Given boundary; // of EOSHIFT
    std::int32_t stride; // of ARRAY's first dimension
    const Shapes &shapes;
};

#define ROWS(NAME, ENTRY, PEERS, ...)                                                      \
    {"cshift " NAME, Family::Cshift, f90_cshift##ENTRY, cshift_##PEERS, __VA_ARGS__},              \
    {"eoshift " NAME, Family::Eoshift, f90_eoshift##ENTRY, eoshift_##PEERS, __VA_ARGS__}

const Row rows[] = {
    ROWS("1", 1, 1, int1, One, None, 1, second_cache),
    ROWS("2", 2, 2, int2, One, None, 1, second_cache),
    ROWS("4", 4, 4, real4, One, None, 1, caches),
    ROWS("8", 8, 8, real8, One, None, 1, caches),
    ROWS("16", 16, 16, complex16, One, None, 1, second_cache),
    ROWS("32", 32, 32, complex32, One, None, 1, second_cache),
    ROWS("3", n, 3, characters(3), One, One, 1, second_cache),
    ROWS("10", 10, 10, characters(10), One, One, 1, second_cache),
    ROWS("20", 20, 20, characters(20), One, One, 1, second_cache),
    ROWS("100", n, 100, characters(100), One, One, 1, second_cache),

    ROWS("1", 1, 1_dim1, int1, One, None, 1, dim1),
    ROWS("4", 4, 4_dim1, real4, One, None, 1, dim1),
    ROWS("8", 8, 8_dim1, real8, One, None, 1, dim1_also_short),
    ROWS("16", 16, 16_dim1, complex16, One, None, 1, dim1),
    ROWS("8 s()", 8, 8_dim1_each, real8, Each, None, 1, dim1_also_short),

    ROWS("1", 1, 1_dim2, int1, One, None, 1, dim2),
    ROWS("4", 4, 4_dim2, real4, One, None, 1, dim2),
    ROWS("8", 8, 8_dim2, real8, One, None, 1, dim2_also_large),
    ROWS("16", 16, 16_dim2, complex16, One, None, 1, dim2),
    ROWS("1 s()", 1, 1_dim2_each, int1, Each, None, 1, dim2),
    ROWS("4 s()", 4, 4_dim2_each, real4, Each, None, 1, dim2),
    ROWS("8 s()", 8, 8_dim2_each, real8, Each, None, 1, dim2_also_large),
    ROWS("16 s()", 16, 16_dim2_each, complex16, Each, None, 1, dim2),
    {"eoshift 8 b", Family::Eoshift, f90_eoshift8, eoshift_8_dim2_filled, real8, One, One, 1, dim2},
    {"eoshift 8 b()", Family::Eoshift, f90_eoshift8, eoshift_8_dim2_filled_each, real8, One, Each, 1, dim2},
    {"eoshift 8 s() b", Family::Eoshift, f90_eoshift8, eoshift_8_dim2_each_filled, real8, Each, One, 1, dim2},
    {"eoshift 8 s() b()", Family::Eoshift, f90_eoshift8, eoshift_8_dim2_all_each, real8, Each, Each, 1, dim2},

    ROWS("8 second", 8, 8_second, real8, One, None, 2, second_cache),
    ROWS("8 second", 8, 8_second_dim1, real8, One, None, 2, half_dim1),
    ROWS("8 second", 8, 8_second_dim2, real8, One, None, 2, half_dim2),

    ROWS("4 small", 4, 4, real4, One, None, 1, ten),
    ROWS("8 small", 8, 8, real8, One, None, 1, ten),
    ROWS("4 small", 4, 4_dim2, real4, One, None, 1, small_dim2),
    ROWS("8 small", 8, 8_dim2, real8, One, None, 1, small_dim2),
    ROWS("8 small s()", 8, 8_dim2_each, real8, Each, None, 1, small_dim2),
};
// clang-format on

// ---- Running a row ----------------------------------------------------------

f90_ArrDesc operand(void *base, std::size_t size, const Shape &shape, std::int32_t count,
                    std::int32_t stride = 1) {
    return shape.columns == 1 ? vector(base, count, size, stride)
                              : matrix(base, count, shape.columns, size, stride);
}

f90_ArrDesc one_or_each(Given given, void *base, std::int32_t lines, std::size_t size) {
    return given == Each ? vector(base, lines, size) : scalar(base, size);
}

// A third of the line for all of them, or up to the whole line, either way.
void fill_shift(Given given, void *storage, std::int32_t lines, std::int32_t length) {
    auto *const shift = static_cast<std::int32_t *>(storage);
    fill(int4, Values::Spread, shift, lines, 2);
    for (std::int32_t i = 0; i < lines; ++i) shift[i] %= length + 1;
    if (given == One) shift[0] = length / 3;
}

void compete(Table &table, const Row &row, const Shape &shape) {
    const Storage &storage = shared_storage();
    const std::int32_t count = shape.rows_of(row.element);
    const std::int32_t elements = count * shape.columns;
    const std::int32_t dim = shape.dim == 2 ? 2 : 1;
    const std::int32_t lines = dim == 1 ? shape.columns : count;
    const std::size_t size = row.element.size();
    const std::size_t bytes = static_cast<std::size_t>(elements) * size;
    fill(row.element, Values::Spread, storage.first, row.stride * elements, 1);
    fill_shift(row.shift, storage.second, lines, elements / lines);
    fill(row.element, Values::Spread, storage.third, lines, 3);
    spoil(storage.results, bytes);

    f90_ArrDesc array = operand(storage.first, size, shape, count, row.stride);
    f90_ArrDesc shift = one_or_each(row.shift, storage.second, lines, sizeof(std::int32_t));
    f90_ArrDesc boundary = one_or_each(row.boundary, storage.third, lines, size);
    f90_ArrDesc result = operand(storage.results[Ours], size, shape, count);
    f90_ArgList list{};
    list.Presence = 1U << 0 | 1U << 1 | 1U << 2; // Result, ARRAY, SHIFT
    list.Result = slot(result);
    list.Arg1 = slot(array);
    list.Arg2 = slot(shift);
    if (row.family == Family::Cshift) {
        list.Presence |= 1U << 3;
        list.Arg3 = slot(dim);
    } else {
        list.Presence |= (row.boundary == None ? 0U : 1U << 3) | 1U << 4;
        list.Arg3 = slot(boundary);
        list.Arg4 = slot(dim);
    }

    const bool moves_lines = dim == 1 && row.stride == 1 && &row.shapes != &ten;
    run_move(table,
             {full_name(row.name, shape), shape.size, row.ours, &list, row.peers, count,
              shape.columns, 0, same_bytes(bytes), moves_lines ? copies(bytes) : Repeated()});
}

} // namespace

} // namespace bench::moving

void bench::bench_shifts(Table &table) {
    for (const moving::Row &row : moving::rows)
        for (const Shape &shape : row.shapes)
            if (wanted(table, full_name(row.name, shape))) moving::compete(table, row, shape);
}

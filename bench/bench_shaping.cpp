// The rows of RESHAPE, SPREAD and TRANSPOSE. A row is named after the bytes of an element; pad
// is the number of PAD's elements (SOURCE is a tenth of the result then), dim that of SPREAD.
// The size is that of the result.
#include "families.h"
#include "moving_rows.h"

namespace bench::moving {

// clang-format off
#define PEERS_OF(SIZE)                                                                             \
    PEERS(reshape_##SIZE); PEERS(reshape_##SIZE##_pad1); PEERS(reshape_##SIZE##_pad7);             \
    PEERS(reshape_##SIZE##_21); PEERS(reshape_##SIZE##_312); PEERS(reshape_##SIZE##_231);          \
    PEERS(spread_##SIZE##_scalar); PEERS(spread_##SIZE##_vector1); PEERS(spread_##SIZE##_vector2); \
    PEERS(spread_##SIZE##_matrix1); PEERS(spread_##SIZE##_matrix2);                                \
    PEERS(spread_##SIZE##_matrix3); PEERS(transpose_##SIZE); PEERS(transpose_##SIZE##_second)
PEERS_OF(1); PEERS_OF(2); PEERS_OF(4); PEERS_OF(8); PEERS_OF(12); PEERS_OF(16); PEERS_OF(32);

namespace {

// ---- Rows -------------------------------------------------------------------

using Extents = std::vector<std::int32_t>;
const Extents order21 = {2, 1}, order312 = {3, 1, 2}, order231 = {2, 3, 1};
const Kind element1 = int1, element2 = int2, element4 = real4, element8 = real8;
const Kind element12 = characters(12), element16 = complex16, element32 = complex32;

const Shape m100 = {"", "100x100", 0, 100, 100, 0}, m500 = {"", "500x500", 0, 500, 500, 0};
const Shape odd500 = {"", "501x499", 0, 501, 499, 0}, m1500 = {"", "1500x1500", 0, 1500, 1500, 0};
const Shapes matrices = {m100, m500, odd500, {"", "3000x3000", 0, 3000, 3000, 0},
                         {"", "3001x2999", 0, 3001, 2999, 0}};
const Shapes of_wide = {m100, m500, odd500, m1500};
const Shapes small = {{" small", "2x5", 0, 2, 5, 0}}, half = {{"", "500x250", 0, 500, 250, 0}};
const Shapes narrow = {{"", "3x100000", 0, 3, 100000, 0}, {"", "100000x3", 0, 100000, 3, 0}};
const Shapes cube = {{"", "40x50x30", 0, 40, 50, 0, 30}};
const Shapes cubes = {cube[0], {"", "200x200x200", 0, 200, 200, 0, 200}};
const Shapes lengths = {{"", "32000", 0, 32000, 0, 1}}, ten_copies = {{" small", "10", 0, 10, 0, 1}};
const Shapes cube_dim1 = {{" dim=1", "20x100x100", 0, 20, 100, 1, 100}};
const Shapes cube_dim2 = {{" dim=2", "100x20x100", 0, 100, 20, 2, 100}};
const Shapes cube_dim3 = {{" dim=3", "100x100x20", 0, 100, 100, 3, 20}};
const Shapes more_dim1 = {{" dim=1", "3000x3000", 0, 3000, 3000, 1},
                          {" small dim=1", "2x5", 0, 2, 5, 1}};
const Shapes more_dim2 = {{" dim=2", "3000x3000", 0, 3000, 3000, 2},
                          {" small dim=2", "2x5", 0, 2, 5, 2}};

enum class Family { Reshape, Spread, Transpose };

struct Row {
    const char *name;
    Family family;
    f90_Intrinsic *ours;
    Peers peers;
    Kind element;
    const Shapes &shapes; // of the result
    std::int32_t pad = 0; // elements
    Extents order = {};
    std::int32_t stride = 1; // of MATRIX's first dimension
};

#define RESHAPE(SIZE, ENTRY, PEERS, ...) \
    {"reshape " SIZE, Family::Reshape, f90_reshape##ENTRY, reshape_##PEERS, __VA_ARGS__}
#define PLAIN(SIZE, SHAPES) RESHAPE(#SIZE, SIZE, SIZE, element##SIZE, SHAPES)
#define PADDED(SIZE, ENTRY, SHAPES) \
    RESHAPE(#SIZE " pad=1", ENTRY, SIZE##_pad1, element##SIZE, SHAPES, 1), \
    RESHAPE(#SIZE " pad=7", ENTRY, SIZE##_pad7, element##SIZE, SHAPES, 7)
#define ORDERED(SIZE, ORDER, SHAPES) \
    RESHAPE(#SIZE " order=" #ORDER, SIZE, SIZE##_##ORDER, element##SIZE, SHAPES, 0, order##ORDER)
#define SPREAD(SIZE, SOURCE, SHAPES) \
    {"spread " #SIZE, Family::Spread, f90_spread##SIZE, spread_##SIZE##_##SOURCE, element##SIZE, SHAPES}
#define SPREADS(SIZE) SPREAD(SIZE, scalar, lengths), \
    SPREAD(SIZE, vector1, dim1), SPREAD(SIZE, vector2, dim2), SPREAD(SIZE, matrix1, cube_dim1), \
    SPREAD(SIZE, matrix2, cube_dim2), SPREAD(SIZE, matrix3, cube_dim3)
#define TRANSPOSE(SIZE, ENTRY, SHAPES) \
    {"transpose " #SIZE, Family::Transpose, f90_transpose##ENTRY, transpose_##SIZE, element##SIZE, SHAPES}

const Row rows[] = {
    PLAIN(1, caches), PLAIN(4, caches), PLAIN(8, caches), PLAIN(8, small),
    PADDED(1, 1, caches), PADDED(4, 4, caches), PADDED(8, 8, caches),
    PADDED(12, n, second_cache), PADDED(16, 16, second_cache), PADDED(8, 8, small),
    ORDERED(1, 21, matrices), ORDERED(2, 21, matrices), ORDERED(4, 21, matrices),
    ORDERED(8, 21, matrices), ORDERED(16, 21, of_wide), ORDERED(8, 21, small),
    ORDERED(1, 312, cube), ORDERED(4, 312, cubes), ORDERED(8, 312, cubes),
    ORDERED(16, 312, cube), ORDERED(4, 231, cubes), ORDERED(8, 231, cubes),

    SPREADS(1), SPREADS(4), SPREADS(8), SPREADS(16), SPREAD(8, scalar, ten_copies),
    SPREAD(8, vector1, more_dim1), SPREAD(8, vector2, more_dim2),

    TRANSPOSE(1, 1, matrices), TRANSPOSE(2, 2, matrices), TRANSPOSE(4, 4, matrices),
    TRANSPOSE(8, 8, matrices), TRANSPOSE(12, n, of_wide), TRANSPOSE(16, 16, of_wide),
    TRANSPOSE(32, 32, of_wide), TRANSPOSE(4, 4, narrow), TRANSPOSE(8, 8, narrow), TRANSPOSE(8, 8, small),
    {"transpose 8 second", Family::Transpose, f90_transpose8, transpose_8_second, real8, half, 0, {}, 2},
};
// clang-format on

// ---- Running a row ----------------------------------------------------------

Extents extents_of(const Shape &shape, const Kind &element) {
    if (shape.bytes != 0) return {shape.rows_of(element) / 8, 8};
    if (shape.planes != 0) return {shape.rows, shape.columns, shape.planes};
    return shape.columns != 0 ? Extents{shape.rows, shape.columns} : Extents{shape.rows};
}

f90_ArrDesc dense(void *base, const Extents &extents, std::size_t size) {
    f90_ArrDesc array = scalar(base, size);
    for (const std::int32_t extent : extents) {
        array.ZERO = static_cast<std::byte *>(array.ZERO) - array.EXTENT * array.SCALEFACTOR;
        array.Dim[array.RANK++] = {1, extent, array.EXTENT};
        array.EXTENT *= extent;
    }
    return array;
}

f90_ArrDesc source_of(const Row &row, std::int32_t dim, const f90_ArrDesc &result, void *base) {
    const std::size_t size = row.element.size();
    if (row.family == Family::Reshape)
        return vector(base, row.pad == 0 ? result.EXTENT : result.EXTENT / 10, size);
    if (row.family == Family::Transpose)
        return matrix(base, result.Dim[1].Upper, result.Dim[0].Upper, size, row.stride);
    Extents extents;
    for (std::int32_t d = 0; d < result.RANK; ++d)
        if (d != dim - 1) extents.push_back(result.Dim[d].Upper);
    return dense(base, extents, size);
}

void compete(Table &table, const Row &row, const Shape &shape) {
    const Storage &storage = shared_storage();
    Extents extents = extents_of(shape, row.element);
    Extents order = row.order;
    const std::size_t size = row.element.size();
    f90_ArrDesc result = dense(storage.results[Ours], extents, size);
    f90_ArrDesc source = source_of(row, shape.dim, result, storage.first);
    f90_ArrDesc shape_of_result = vector(extents.data(), result.RANK, sizeof(std::int32_t));
    f90_ArrDesc pad = vector(storage.third, row.pad, size);
    f90_ArrDesc permutation = vector(order.data(), std::ssize(order), sizeof(std::int32_t));
    f90_ArgList list{};
    list.Presence = 1U << 0 | 1U << 1; // Result, SOURCE or MATRIX
    list.Result = slot(result);
    list.Arg1 = slot(source);
    if (row.family == Family::Reshape) {
        list.Presence |= 1U << 2;
        if (row.pad != 0) list.Presence |= 1U << 3;
        if (!order.empty()) list.Presence |= 1U << 4;
        list.Arg2 = slot(shape_of_result);
        list.Arg3 = slot(pad);
        list.Arg4 = slot(permutation);
    } else if (row.family == Family::Spread) {
        list.Presence |= 1U << 2 | 1U << 3;
        list.Arg2 = slot(shape.dim);
        list.Arg3 = slot(result.Dim[shape.dim - 1].Upper);
    }

    const std::size_t bytes = static_cast<std::size_t>(result.EXTENT) * size;
    fill(row.element, Values::Spread, storage.first, row.stride * source.EXTENT, 1);
    fill(row.element, Values::Spread, storage.third, row.pad, 3);
    spoil(storage.results, bytes);
    const bool moves_all = row.family == Family::Reshape && row.pad == 0 && order.empty();
    run_move(table,
             {full_name(row.name, shape), shape.size, row.ours, &list, row.peers, extents[0],
              result.Dim[1].Upper, row.pad != 0 ? source.EXTENT : shape.planes, same_bytes(bytes),
              moves_all && shape.bytes != 0 ? copies(bytes) : Repeated()});
}

} // namespace

} // namespace bench::moving

void bench::bench_shaping(Table &table) {
    for (const moving::Row &row : moving::rows)
        for (const Shape &shape : row.shapes)
            if (wanted(table, full_name(row.name, shape))) moving::compete(table, row, shape);
}

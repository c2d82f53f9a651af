// The rows of DOT_PRODUCT. A peer that sums in a narrower format than the library
// shows what that costs, and does not count.
#include "families.h"
#include "reduction_rows.h"

namespace bench {

// clang-format off
PEERS(dot_product_r4); PEERS(dot_product_r8); PEERS(dot_product_r10); PEERS(dot_product_r16);
PEERS(dot_product_c8); PEERS(dot_product_c16); PEERS(dot_product_i1); PEERS(dot_product_i2);
PEERS(dot_product_i4); PEERS(dot_product_i8); PEERS(dot_product_l1); PEERS(dot_product_l2);
PEERS(dot_product_l4); PEERS(dot_product_l8); PEERS(dot_product_r8_second);
// clang-format on

namespace {

// ---- Rows -------------------------------------------------------------------

// A size is that of both vectors.
const Shape pair_l1 = {" L1", "24 KiB", 12 << 10, 0, 1, 0};
const Shapes first_pair = {pair_l1};
const Shapes pairs = {
    pair_l1, {" L2", "256 KiB", 128 << 10, 0, 1, 0}, {" RAM", "96 MiB", 48 << 20, 0, 1, 0}};

struct PairRow {
    const char *name;
    f90_Intrinsic *ours;
    Peers peers;
    const Kind &element;
    Values values_a;
    Values values_b;
    std::int32_t stride; // of both vectors
    Rival rival;
    const Shapes &shapes;
};

// clang-format off
const PairRow rows[] = {
    {"dot_product r4", f90_dotprr4, dot_product_r4, real4, Values::Sixteenths, Values::Sixteenths, 1, Rival::O2, pairs},
    {"dot_product r8", f90_dotprr8, dot_product_r8, real8, Values::Sixteenths, Values::Sixteenths, 1, Rival::O2, pairs},
    {"dot_product r10", f90_dotprr10, dot_product_r10, real10, Values::Sixteenths, Values::Sixteenths, 1, Rival::Better, pairs},
    {"dot_product r16", f90_dotprr16, dot_product_r16, real16, Values::Sixteenths, Values::Sixteenths, 1, Rival::Better, first_pair},
    {"dot_product c8", f90_dotprc8, dot_product_c8, complex8, Values::Sixteenths, Values::Sixteenths, 1, Rival::O2, pairs},
    {"dot_product c16", f90_dotprc16, dot_product_c16, complex16, Values::Sixteenths, Values::Sixteenths, 1, Rival::O2, pairs},
    {"dot_product i1", f90_dotpri1, dot_product_i1, int1, Values::Spread, Values::Spread, 1, Rival::Better, pairs},
    {"dot_product i2", f90_dotpri2, dot_product_i2, int2, Values::Spread, Values::Spread, 1, Rival::Better, pairs},
    {"dot_product i4", f90_dotpri4, dot_product_i4, int4, Values::Spread, Values::Spread, 1, Rival::Better, pairs},
    {"dot_product i8", f90_dotpri8, dot_product_i8, int8, Values::Spread, Values::Spread, 1, Rival::Better, pairs},

    {"dot_product l1 false", f90_dotprl1, dot_product_l1, int1, Values::AllFalse, Values::AllTrue, 1, Rival::Better, pairs},
    {"dot_product l2 false", f90_dotprl2, dot_product_l2, int2, Values::AllFalse, Values::AllTrue, 1, Rival::Better, pairs},
    {"dot_product l4 false", f90_dotprl4, dot_product_l4, int4, Values::AllFalse, Values::AllTrue, 1, Rival::Better, pairs},
    {"dot_product l8 false", f90_dotprl8, dot_product_l8, int8, Values::AllFalse, Values::AllTrue, 1, Rival::Better, pairs},
    {"dot_product l1 true", f90_dotprl1, dot_product_l1, int1, Values::AllTrue, Values::AllFalse, 1, Rival::Better, pairs},
    {"dot_product l2 true", f90_dotprl2, dot_product_l2, int2, Values::AllTrue, Values::AllFalse, 1, Rival::Better, pairs},
    {"dot_product l4 true", f90_dotprl4, dot_product_l4, int4, Values::AllTrue, Values::AllFalse, 1, Rival::Better, pairs},
    {"dot_product l8 true", f90_dotprl8, dot_product_l8, int8, Values::AllTrue, Values::AllFalse, 1, Rival::Better, pairs},
    {"dot_product l1 coins", f90_dotprl1, dot_product_l1, int1, Values::Coins, Values::OppositeCoins, 1, Rival::Better, pairs},
    {"dot_product l2 coins", f90_dotprl2, dot_product_l2, int2, Values::Coins, Values::OppositeCoins, 1, Rival::Better, pairs},
    {"dot_product l4 coins", f90_dotprl4, dot_product_l4, int4, Values::Coins, Values::OppositeCoins, 1, Rival::Better, pairs},
    {"dot_product l8 coins", f90_dotprl8, dot_product_l8, int8, Values::Coins, Values::OppositeCoins, 1, Rival::Better, pairs},

    {"dot_product r8 second", f90_dotprr8, dot_product_r8_second, real8, Values::Sixteenths, Values::Sixteenths, 2, Rival::O2, pairs},

    {"small dot_product r8", f90_dotprr8, dot_product_r8, real8, Values::Sixteenths, Values::Sixteenths, 1, Rival::O2, ten},
    {"small dot_product i4", f90_dotpri4, dot_product_i4, int4, Values::Spread, Values::Spread, 1, Rival::Better, ten},
};
// clang-format on

// ---- Running a row ----------------------------------------------------------

// A result of at most 8 bytes goes into the slot, a wider one to the address in it.
void compete(Table &table, const PairRow &row, const Shape &shape) {
    const std::int32_t count = shape.rows_of(row.element);
    const std::int32_t section = (count + row.stride - 1) / row.stride;
    const std::size_t size = row.element.size();
    const Storage &storage = shared_storage();
    void *const a = storage.array;
    void *const b = storage.other;
    fill(row.element, row.values_a, a, count, 1);
    fill(row.element, row.values_b, b, count, row.values_b == Values::OppositeCoins ? 1 : 2);

    f90_ArrDesc vector_a = vector(a, section, size, row.stride);
    f90_ArrDesc vector_b = vector(b, section, size, row.stride);
    f90_ArgList list{};
    list.Presence = 1U << 0 | 1U << 1 | 1U << 2; // Result, VECTOR_A, VECTOR_B
    list.Result.Word0 = reinterpret_cast<std::uintptr_t>(storage.results[Ours]);
    list.Arg1 = slot(vector_a);
    list.Arg2 = slot(vector_b);
    void *const results[contestants] = {
        size <= sizeof list.Result ? &list.Result : storage.results[Ours], storage.results[PeerO2],
        storage.results[PeerO3], storage.results[Reference]};
    spoil(results, size);

    const auto peer_call = [&](Peer *peer, Contestant contestant) {
        return repeated(
            [=, result = results[contestant]] { peer(a, b, count, shape.columns, 0, result); });
    };
    const auto agrees = [&](Contestant peer) {
        return same(row.element, results[Ours], results[peer], 1, 0);
    };
    run(table, {full_name(row.name, shape),
                shape.size,
                {repeated([&] { row.ours(&list); }), peer_call(row.peers.o2, PeerO2),
                 peer_call(row.peers.o3, PeerO3)},
                agrees,
                row.rival});
}

} // namespace

void bench_dot_product(Table &table) {
    for (const PairRow &row : rows)
        for (const Shape &shape : row.shapes)
            if (wanted(table, full_name(row.name, shape))) compete(table, row, shape);
}

} // namespace bench

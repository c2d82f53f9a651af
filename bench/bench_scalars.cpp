// The rows of the intrinsics of one number, and of RANDOM_NUMBER. A time is that of as many
// calls, one after the other, as the size says; of "random" without "one" that of a single call.
#include "data.h"
#include "families.h"
#include "rows.h"

#include <cmath>
#include <cstring>
#include <random>

namespace bench {

using Peer = void(const void *x, const void *y, const std::int32_t *i, std::int32_t count,
                  void *results);
struct Peers {
    Peer *o2;
    Peer *o3;
};
// clang-format off
#define MODEL_PEERS(K)                                                                             \
    PEERS(exponent_r##K); PEERS(fraction_r##K); PEERS(nearest_r##K); PEERS(rrspacing_r##K);        \
    PEERS(scale_r##K); PEERS(setexp_r##K); PEERS(spacing_r##K); PEERS(modulo_r##K);                \
    PEERS(random_r##K); PEERS(random_one_r##K)
MODEL_PEERS(4); MODEL_PEERS(8); MODEL_PEERS(10); MODEL_PEERS(16);
PEERS(ceiling_r4); PEERS(ceiling_r8); PEERS(ceilingk_r4); PEERS(ceilingk_r8); PEERS(floor_r4);
PEERS(floor_r8); PEERS(floork_r4); PEERS(floork_r8); PEERS(modulo_i4); PEERS(modulo_i8);
// clang-format on

namespace {

// ---- The library's calls ----------------------------------------------------------

struct Numbers {
    void *x;
    void *y;
    std::int32_t *i;
};
using Calls = void(const Numbers &numbers, std::int32_t count, void *results);

template <class Function> struct Signature;
template <class R, class T> struct Signature<R (*)(const T *)> {
    template <R (*function)(const T *)>
    static void calls(const Numbers &numbers, std::int32_t count, void *results) {
        const auto *x = static_cast<const T *>(numbers.x);
        for (std::int32_t k = 0; k < count; ++k) static_cast<R *>(results)[k] = function(x + k);
    }
};
template <class R, class T, class S> struct Signature<R (*)(const T *, const S *)> {
    template <R (*function)(const T *, const S *)>
    static void calls(const Numbers &numbers, std::int32_t count, void *results) {
        constexpr bool takes_power = !std::is_same_v<T, S>;
        const auto *x = static_cast<const T *>(numbers.x);
        const auto *y = static_cast<const S *>(takes_power ? numbers.i : numbers.y);
        for (std::int32_t k = 0; k < count; ++k)
            static_cast<R *>(results)[k] = function(x + k, y + k);
    }
};
template <class T> struct Signature<void (*)(T *)> {
    template <void (*function)(T *)>
    static void calls(const Numbers &, std::int32_t count, void *results) {
        for (std::int32_t k = 0; k < count; ++k) function(static_cast<T *>(results) + k);
    }
};
template <class T> struct Signature<void (*)(T *, std::int32_t)> {
    template <void (*function)(T *, std::int32_t)>
    static void calls(const Numbers &, std::int32_t count, void *results) {
        function(static_cast<T *>(results), count);
    }
};
template <auto function>
constexpr Calls *calls_of = Signature<decltype(function)>::template calls<function>;

// ---- Rows -------------------------------------------------------------------------

enum class Range {
    Wide,
    Integers,
    FewBits,
    ManyBits,
    None
}; // of x, or of the quotients of x and y

struct Row {
    const char *name;
    Calls *ours;
    Peers peers;
    const Kind &number;
    std::size_t result_size;
    Range range;
    std::int32_t count = 1024;
};

// clang-format off
#define ROW(NAME, OURS, PEERS, NUMBER, SIZE, RANGE, ...) \
    {NAME, calls_of<&f90_##OURS>, PEERS, NUMBER, SIZE, Range::RANGE __VA_OPT__(,) __VA_ARGS__}
#define MODEL_ROWS(K, SIZE) \
    ROW("exponent r" #K, exponent##K, exponent_r##K, real##K, 4, Wide), \
    ROW("fraction r" #K, fraction##K, fraction_r##K, real##K, SIZE, Wide), \
    ROW("nearest r" #K, nearest##K, nearest_r##K, real##K, SIZE, Wide), \
    ROW("rrspacing r" #K, rrspacing##K, rrspacing_r##K, real##K, SIZE, Wide), \
    ROW("scale r" #K, scale##K, scale_r##K, real##K, SIZE, Wide), \
    ROW("setexp r" #K, setexp##K, setexp_r##K, real##K, SIZE, Wide), \
    ROW("spacing r" #K, spacing##K, spacing_r##K, real##K, SIZE, Wide), \
    ROW("modulo r" #K " few bits", modulor##K, modulo_r##K, real##K, SIZE, FewBits), \
    ROW("modulo r" #K " 20 bits", modulor##K, modulo_r##K, real##K, SIZE, ManyBits), \
    ROW("random r" #K, randnum##K##a, random_r##K, real##K, SIZE, None, 10000), \
    ROW("random one r" #K, randnum##K, random_one_r##K, real##K, SIZE, None)
#define ROUNDING_ROWS(NAME, K) \
    ROW(#NAME " r" #K, NAME##K, NAME##_r##K, real##K, 4, Integers), \
    ROW(#NAME "k r" #K, NAME##k##K, NAME##k_r##K, real##K, 8, Integers)
const Row rows[] = {
    MODEL_ROWS(4, 4), MODEL_ROWS(8, 8), MODEL_ROWS(10, 12), MODEL_ROWS(16, 16),
    ROUNDING_ROWS(ceiling, 4), ROUNDING_ROWS(ceiling, 8), ROUNDING_ROWS(floor, 4), ROUNDING_ROWS(floor, 8),
    ROW("modulo i4 few bits", moduloi4, modulo_i4, int4, 4, FewBits),
    ROW("modulo i4 20 bits", moduloi4, modulo_i4, int4, 4, ManyBits),
    ROW("modulo i8 few bits", moduloi8, modulo_i8, int8, 8, FewBits),
    ROW("modulo i8 20 bits", moduloi8, modulo_i8, int8, 8, ManyBits),
};
// clang-format on

// ---- Running a row ------------------------------------------------------------------

// Stores a value, with digits at random where the type has more than a double.
void put(const Kind &kind, void *numbers, std::int32_t index, double value,
         std::minstd_rand &random) {
    auto *at = static_cast<std::byte *>(numbers) + static_cast<std::size_t>(index) * kind.size();
    kind.put(at, value);
    const int more_bytes = &kind == &real10 ? 1 : &kind == &real16 ? 7 : 0;
    for (int byte = 0; byte < more_bytes; ++byte) at[byte] = static_cast<std::byte>(random() / 8);
}

// Either sign; y is never zero. Integers of which a quotient is made fill their type.
void fill(const Row &row, const Numbers &numbers) {
    std::minstd_rand random(1);
    const auto uniform = [&](double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random);
    };
    const bool integers = row.number.rounding == 0;
    const auto digits = static_cast<int>(8 * row.number.size()) - 2;
    for (std::int32_t k = 0; k < row.count; ++k) {
        const double sign_x = random() / 8 % 2 == 0 ? 1 : -1,
                     sign_y = random() / 8 % 2 == 0 ? 1 : -1;
        const double bits = row.range == Range::ManyBits ? 20 : 3;
        double x = std::exp2(uniform(-30, 30)), y = uniform(1, 2);
        if (row.range == Range::Integers) x = uniform(0, 1e9), y = uniform(3, 1000);
        if (row.range == Range::FewBits || row.range == Range::ManyBits) {
            if (integers) y *= std::exp2(digits - bits);
            x = y * std::exp2(uniform(bits - 1, bits));
        }
        put(row.number, numbers.x, k, sign_x * x, random);
        put(row.number, numbers.y, k, sign_y * y, random);
        numbers.i[k] = static_cast<std::int32_t>(random() / 8 % 40) - 20;
    }
}

// Random numbers lie in their interval and are not all equal. It is open above, but the
// library's of kind 4 can be 1.
bool looks_random(const Row &row, const void *results, bool ours) {
    const bool closed = ours && &row.number == &real4;
    const auto at = [&](std::int32_t k) {
        return row.number.get(static_cast<const std::byte *>(results) +
                              static_cast<std::size_t>(k) * row.result_size);
    };
    bool different = false;
    for (std::int32_t k = 0; k < row.count; ++k) {
        if (!(at(k) >= 0 && (at(k) < 1 || (closed && at(k) == 1)))) return false;
        different = different || at(k) != at(0);
    }
    return different;
}

void compete(Table &table, const Row &row) {
    constexpr std::size_t bytes = 10000 * 16;
    static const Numbers numbers = {allocate(bytes), allocate(bytes),
                                    static_cast<std::int32_t *>(allocate(bytes))};
    static void *const results[contestants] = {allocate(bytes), allocate(bytes), allocate(bytes),
                                               allocate(bytes)};
    fill(row, numbers);
    for (void *result : results) std::memset(result, 0, bytes); // filler of kind 10 stays
    const std::size_t size = static_cast<std::size_t>(row.count) * row.result_size;
    const auto peer_call = [&](Peer *peer, Contestant contestant) {
        return repeated([=, count = row.count, result = results[contestant]] {
            peer(numbers.x, numbers.y, numbers.i, count, result);
        });
    };
    const auto agrees = [&](Contestant peer) {
        if (row.range == Range::None)
            return looks_random(row, results[Ours], true) &&
                   looks_random(row, results[peer], false);
        return std::memcmp(results[peer], results[Ours], size) == 0;
    };
    run(table, {row.name,
                std::to_string(row.count),
                {repeated([&] { row.ours(numbers, row.count, results[Ours]); }),
                 peer_call(row.peers.o2, PeerO2), peer_call(row.peers.o3, PeerO3)},
                agrees});
}

} // namespace

void bench_scalars(Table &table) {
    for (const Row &row : rows)
        if (wanted(table, row.name)) compete(table, row);
}

} // namespace bench

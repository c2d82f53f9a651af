// Element types and values. Values are drawn for a stretch of elements, the rest
// repeats it: long enough that no branch predictor learns it.
#include "data.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <type_traits>

namespace bench {

// ---- Kinds ------------------------------------------------------------------

namespace {

template <class T> void put(void *part, double value) {
    T stored;
    if constexpr (std::is_integral_v<T>)
        stored = static_cast<T>(static_cast<std::int64_t>(value)); // cut to its width
    else
        stored = static_cast<T>(value);
    std::memcpy(part, &stored, sizeof stored);
}

template <class T> long double get(const void *part) {
    T stored;
    std::memcpy(&stored, part, sizeof stored);
    return static_cast<long double>(stored);
}

template <class T> constexpr Kind kind(int parts, double rounding) {
    return {sizeof(T), parts, rounding, put<T>, get<T>};
}

constexpr double rounding4 = 0x1p-24;
constexpr double rounding8 = 0x1p-53;
constexpr double rounding10 = 0x1p-64; // also what a comparison sees of kind 16

} // namespace

constinit const Kind int1 = kind<std::int8_t>(1, 0);
constinit const Kind int2 = kind<std::int16_t>(1, 0);
constinit const Kind int4 = kind<std::int32_t>(1, 0);
constinit const Kind int8 = kind<std::int64_t>(1, 0);
constinit const Kind real4 = kind<float>(1, rounding4);
constinit const Kind real8 = kind<double>(1, rounding8);
constinit const Kind real10 = kind<long double>(1, rounding10);
constinit const Kind real16 = kind<__float128>(1, rounding10);
constinit const Kind complex8 = kind<float>(2, rounding4);
constinit const Kind complex16 = kind<double>(2, rounding8);
constinit const Kind complex20 = kind<long double>(2, rounding10);
constinit const Kind complex32 = kind<__float128>(2, rounding10);

Kind characters(int length) { return kind<std::int8_t>(length, 0); }

// ---- Values -----------------------------------------------------------------

namespace {

double value(Values values, std::int32_t index, std::uint32_t random, int part) {
    const double sixteenths = (static_cast<int>(random % 33) - 16) / 16.0;
    switch (values) {
    case Values::Spread:
        return static_cast<std::int32_t>(random) * (0x1p21 + 1); // exact
    case Values::Ascending:
        return index;
    case Values::Integers:
        return static_cast<std::int32_t>(random);
    case Values::OddIntegers:
        return static_cast<std::int32_t>(random | 1U);
    case Values::Sixteenths:
        return sixteenths;
    case Values::NearOne:
        return (part == 0 ? 1 : 0) + sixteenths / 8192;
    case Values::Coins:
        return random >> 31;
    case Values::OppositeCoins:
        return 1 - (random >> 31);
    case Values::Sparse:
        return random % 100 == 0;
    case Values::MostlyTrue:
        return random % 16 != 0;
    case Values::MostlyFalse:
        return random % 16 == 0;
    case Values::AllTrue:
        return 1;
    case Values::AllFalse:
        break;
    }
    return 0;
}

} // namespace

void fill(const Kind &kind, Values values, void *storage, std::int32_t count, unsigned seed) {
    constexpr std::int32_t stretch = 1000003;
    std::mt19937 random(seed);
    auto *const first = static_cast<std::byte *>(storage);
    auto *part = first;
    for (std::int32_t i = 0; i < std::min(count, stretch); ++i) {
        for (int p = 0; p < kind.parts; ++p, part += kind.part_size)
            kind.put(part, value(values, i, random(), p));
    }
    const std::byte *const end = first + kind.size() * static_cast<std::size_t>(count);
    while (part < end) {
        const std::size_t bytes = static_cast<std::size_t>(std::min(part - first, end - part));
        std::memcpy(part, first, bytes);
        part += bytes;
    }
}

void *allocate(std::size_t bytes) {
    constexpr std::size_t line = 64;
    void *storage = std::aligned_alloc(line, (bytes + line - 1) / line * line);
    if (storage == nullptr) {
        std::fprintf(stderr, "no storage for %zu bytes\n", bytes);
        std::exit(EXIT_FAILURE);
    }
    return storage;
}

// ---- Comparison -------------------------------------------------------------

bool same(const Kind &kind, const void *a, const void *b, std::int32_t count, double error) {
    auto *at = static_cast<const std::byte *>(a);
    auto *other = static_cast<const std::byte *>(b);
    for (std::int32_t i = 0; i < count; ++i, at += kind.size(), other += kind.size()) {
        long double largest = 0;
        long double difference = 0;
        for (int p = 0; p < kind.parts; ++p) {
            const std::size_t offset = kind.part_size * static_cast<std::size_t>(p);
            const long double x = kind.get(at + offset);
            const long double y = kind.get(other + offset);
            largest = std::max(largest, std::fabs(x));
            difference = std::max(difference, std::fabs(x - y));
            if (std::isnan(x) || std::isnan(y)) return false;
        }
        if (difference > error * largest) return false;
    }
    return true;
}

} // namespace bench

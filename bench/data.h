// What the contests work on: the element types, storage filled with values fit
// for an intrinsic, and the comparison of two answers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace bench {

// An element type. A complex number has two parts, every other one is its part.
struct Kind {
    std::size_t part_size;
    int parts;
    double rounding; // relative error of one operation, 0 for integers and logicals
    void (*put)(void *part, double value);
    long double (*get)(const void *part);

    std::size_t size() const { return part_size * static_cast<std::size_t>(parts); }
};

// Logicals are integers of their size.
extern const Kind int1, int2, int4, int8;
extern const Kind real4, real8, real10, real16;
extern const Kind complex8, complex16, complex20, complex32;

// A string of that length.
Kind characters(int length);

enum class Values {
    Spread,        // over what integers of up to 4 bytes hold and 53 bits of wider types
    Ascending,     // by 1 each
    Integers,      // of 32 bits at most, either sign
    OddIntegers,   // the same whose product never becomes 0
    Sixteenths,    // multiples of 1/16 from -1 to 1: their sum, and that of products of
                   // two, is exact in any order
    NearOne,       // their product stays near 1
    Coins,         // true or false at random
    OppositeCoins, // drawn with the same seed: true where Coins are false
    Sparse,        // one in 100 is true
    MostlyTrue,    // 15 in 16 are
    MostlyFalse,   // one in 16 is
    AllTrue,
    AllFalse
};

// Fills `count` elements; another seed gives other values of the same sort.
void fill(const Kind &kind, Values values, void *storage, std::int32_t count, unsigned seed);

// Storage that starts on a cache line and lasts as long as the process.
void *allocate(std::size_t bytes);

// Whether `count` elements at a and b are the same, each within `error` of the
// larger of its parts.
bool same(const Kind &kind, const void *a, const void *b, std::int32_t count, double error);

} // namespace bench

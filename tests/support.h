// What the tests share: random arrays whose every element's place is known
// without the library, the naive walk over them, argument records, and calls in a
// process of their own.
#pragma once

#include "quillfn/quillfn.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace test {

using Random = std::mt19937;
using Shape = std::vector<std::int32_t>;

inline int pick(Random &random, int lowest, int highest) {
    return std::uniform_int_distribution<int>(lowest, highest)(random);
}

inline bool coin(Random &random) { return pick(random, 0, 1) == 0; }

// Seed and number of rounds of a randomised test; QUILLFN_SEED and QUILLFN_ROUNDS
// (a factor) in the environment change them for longer runs.
unsigned random_seed();
int random_rounds(int usual);

// How far apart the bit patterns lie that a test of all reals of kind 4 takes; QUILLFN_STEP
// changes it, 1 takes all.
std::uint32_t step_through_all(int usual);

// ---- Values -----------------------------------------------------------------

template <class T> constexpr bool is_real = !std::numeric_limits<T>::is_integer;
// Of kind 10 the last two bytes of an element are nobody's.
template <class T> constexpr int used_bytes = std::is_same_v<T, long double> ? 10 : sizeof(T);

template <class T> void write(std::byte *at, const T &value) {
    std::memcpy(at, &value, used_bytes<T>);
}
template <class T> T read(const std::byte *at) {
    T value{};
    std::memcpy(static_cast<void *>(&value), at, used_bytes<T>);
    return value;
}

// The finite limits of a type.
template <class T> constexpr T greatest = std::numeric_limits<T>::max();
template <>
constexpr auto greatest<__float128> = std::bit_cast<__float128>(std::array{~0U, ~0U, ~0U,
                                                                           0x7FFEFFFFU});
template <class T>
constexpr T least = is_real<T> ? static_cast<T>(-greatest<T>) : std::numeric_limits<T>::min();

// Writes a value of a sort: o any, f few, = one and the same, < > by its place i, c close
// to others, s tiny, + - zeros, h l finite limits, i j infinities, n NaNs of any sign and
// payload, half of them signalling. Integers have limits where reals have the last three.
template <class T> void write_sort(Random &random, std::byte *at, char sort, int i) {
    using Double = std::numeric_limits<double>;
    const auto as_t = [](auto number) { return static_cast<T>(number); };
    const std::uint64_t bits = std::uint64_t{random()} << (sizeof(T) == 8 && coin(random) ? 32 : 0);
    const T any = is_real<T> ? as_t(std::int32_t(bits)) / T{100} : as_t(bits);
    const T few = as_t(pick(random, -2, 2));
    const T high = is_real<T> ? as_t(Double::infinity()) : greatest<T>;
    const T low = is_real<T> ? as_t(-high) : least<T>;
    const T nan = is_real<T> && coin(random) ? as_t(Double::quiet_NaN()) : high;
    const T zero = 0;
    const T values[] = {any,  few,         as_t(1),     as_t(i),  as_t(-i), few, zero,
                        zero, as_t(-zero), greatest<T>, least<T>, high,     low, nan};
    write(at, values[std::string("of=<>cs+-hlijn").find(sort)]);
    const int random_bytes = sort == 'c' ? used_bytes<T> / 2 : sort == 'n' || sort == 's';
    for (int b = 0; b < random_bytes; ++b) at[b] = std::byte(pick(random, 1, 255));
    if (random_bytes == 1 && coin(random)) at[used_bytes<T> - 1] ^= std::byte{0x80};
}
using WriteSort = void(Random &random, std::byte *at, char sort, int i);

// ---- Arrays -----------------------------------------------------------------

// An array in storage of its own, every byte of which starts as 0xA5.
struct Array {
    f90_ArrDesc descriptor = {};
    Shape shape;
    std::vector<std::byte> storage;
    std::vector<std::ptrdiff_t> offsets; // of each element in storage, in array element order

    std::size_t size() const { return offsets.size(); }
    std::byte *at(std::size_t i) { return storage.data() + offsets[i]; }
};

// A dense array, or one that is spaced: with gaps, strides of both signs and, where
// `unit` is less than the element's size, a SCALEFACTOR of `unit` bytes. Bases are
// aligned to 4 bytes at the most; NONCONTIG, of any value, may be set on dense arrays
// too, and Stride behind an empty dimension need not be 0. The storage ends with the last
// element but for `guard` bytes on either side.
Array make_array(Random &random, const Shape &shape, int elsize, bool spaced, int unit = 0,
                 int guard = 0);

// Much of one sort of values and less of others, and single values at the ends and about
// the boundaries of vectors and regions.
void fill(Random &random, Array &array, WriteSort *write_sort);

// Ranks 1 to 7, small extents, some of them 0; or one dimension of hundreds or, now
// and then, thousands of elements.
Shape random_shape(Random &random);
Shape without(const Shape &shape, int dim);
std::size_t elements(const Shape &shape);

// Number of the result element, along dim (from 1; 0: a single result), that
// element i of an array belongs to.
std::size_t result_index(const Shape &shape, int dim, std::size_t i);
// The element's position along dim, from 1; without dim in the whole array.
std::size_t position_along(const Shape &shape, int dim, std::size_t i);

// The MASK of a call: an array of 32-bit words of any layout, true words with one bit
// set, anywhere; or a scalar.
enum class MaskKind { None, Array, True, False };
Array random_mask(Random &random, const Shape &shape, MaskKind kind);
bool selects(MaskKind kind, Array &mask, std::size_t i);

// Which byte outside of the elements' values differs from `before`; empty when
// none does. A value is `parts` runs of `used` bytes, one every `part` bytes.
std::string strays(const Array &array, const std::vector<std::byte> &before, int used,
                   int parts = 1, int part = 0);

// The descriptor of a scalar at `value`.
f90_ArrDesc scalar(void *value, int elsize);
// A dense array without storage, of the given extents; and one over these values.
f90_ArrDesc shaped(const Shape &extents, int elsize);
template <class T> f90_ArrDesc over(std::vector<T> &values, const Shape &extents) {
    f90_ArrDesc array = shaped(extents, sizeof(T));
    array.BASE = values.data();
    return array;
}

// A record under construction; sets bits of Presence as it goes. Numbers are those
// of the slots: 0 the result, 1 to 4 the arguments.
struct Call {
    f90_ArgList list = {};

    Call &slot(int number, std::uintptr_t word, bool present = true) {
        f90_Slot *const slots[] = {&list.Result, &list.Arg1, &list.Arg2, &list.Arg3, &list.Arg4};
        *slots[number] = {word, 0xDEADBEEF};
        list.Presence = static_cast<std::uint16_t>(list.Presence | int{present} << number);
        return *this;
    }
    Call &array(int number, f90_ArrDesc &descriptor, bool present = true) {
        return slot(number, reinterpret_cast<std::uintptr_t>(&descriptor), present);
    }
    Call &result(f90_ArrDesc &given) { return array(0, given); }
    Call &created_result(f90_ArrDesc &empty) { return array(0, empty, false); }
    Call &value(int number, int value) { return slot(number, std::uintptr_t(value)); }
    Call &checked() { return list.Flags = 1, *this; }
    void operator()(f90_Intrinsic *intrinsic) { intrinsic(&list); }
};

// The result of a random call: the caller's, of any layout (`unit` as in make_array),
// or left to the library, its descriptor full of what was there before.
struct RandomResult {
    Array given;
    std::vector<std::byte> before;
    f90_ArrDesc created = {};
    bool create;

    RandomResult(Random &random, const Shape &shape, int elsize, bool may_create, int unit = 0);
    void attach(Call &call);
    const std::byte *at(std::size_t i) const;
    // What is wrong with it apart from its values: a created descriptor, or bytes
    // outside of a given result's values (see strays). Frees what was created.
    std::string complaint(int used, int parts = 1, int part = 0);
};

// What a call in a process of its own wrote, and its exit status.
struct Outcome {
    int status;
    std::string out;
    std::string err;
};
Outcome in_child(const std::function<void()> &body);

// The message of a call that must end the process with status 1; otherwise text
// that no message equals.
std::string fatal_message(const std::function<void()> &body);

// What is reported under a name, and under one without messages of its own. Shapes
// are lists of extents as they are printed.
std::string report(const std::string &name, const std::string &message);
std::string report_of_unknown(const std::string &name);
std::string wrong_dim(int dim, int rank);
std::string wrong_mask(const std::string &array, const std::string &mask);
std::string wrong_result(const std::string &result, const std::string &expected);

} // namespace test

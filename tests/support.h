// What the tests share: random arrays whose every element's place is known
// without the library, the naive walk over them, argument records, and calls in a
// process of their own.
#pragma once

#include "quillfn/quillfn.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <random>
#include <string>
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

template <class T> void write(std::byte *at, const T &value) {
    std::memcpy(at, &value, sizeof value);
}

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
// aligned to 4 bytes at the most; NONCONTIG may be set on dense arrays too, and
// Stride behind an empty dimension need not be 0. The storage ends with the last
// element but for `guard` bytes on either side.
Array make_array(Random &random, const Shape &shape, int elsize, bool spaced, int unit = 0,
                 int guard = 0);

// Ranks 1 to 7, small extents, some of them 0; or one long dimension.
Shape random_shape(Random &random);
Shape without(const Shape &shape, int dim);
std::size_t elements(const Shape &shape);

// Number of the result element, along dim (from 1; 0: a single result), that
// element i of an array belongs to.
std::size_t result_index(const Shape &shape, int dim, std::size_t i);

// Which byte outside of the elements' values differs from `before`; empty when
// none does. A value is `parts` runs of `used` bytes, one every `part` bytes.
std::string strays(const Array &array, const std::vector<std::byte> &before, int used,
                   int parts = 1, int part = 0);

// The descriptor of a scalar at `value`.
f90_ArrDesc scalar(void *value, int elsize);
// A dense array without storage, of the given extents.
f90_ArrDesc shaped(std::initializer_list<std::int32_t> extents, int elsize);

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

// The result of a random call: the caller's, of any layout, or left to the library.
struct RandomResult {
    Array given;
    std::vector<std::byte> before;
    f90_ArrDesc created = {};
    bool create;

    RandomResult(Random &random, const Shape &shape, int elsize, bool may_create);
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

} // namespace test

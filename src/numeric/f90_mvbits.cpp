// MVBITS: a run of bits of FROM takes the place of as many of TO. Positions are checked at every
// call; their sums are those of numbers, which do not wrap.
#include "frame/elements.h"

namespace quill {
namespace {

void check(int number, std::int32_t position, std::int32_t length, std::int32_t width) {
    if (position < 0 || length < 0 || std::int64_t{position} + length > width)
        f90_ArrLibError("MVBITS", number, position, length, width);
}

template <class Integer>
void move_bits(Integer from, std::int32_t from_position, std::int32_t length, void *to_address,
               std::int32_t to_position) {
    using Field = std::make_unsigned_t<Integer>;
    constexpr std::int32_t width = 8 * sizeof(Field);
    check(1, from_position, length, width);
    check(2, to_position, length, width);
    if (length == 0) return;
    const auto to = static_cast<Bytes>(to_address);
    const auto mask = static_cast<Field>(static_cast<Field>(-1) >> (width - length));
    const auto moved = static_cast<Field>((static_cast<Field>(from) >> from_position) & mask);
    store(to,
          static_cast<Field>((load<Field>(to) & ~(mask << to_position)) | (moved << to_position)));
}

} // namespace
} // namespace quill

extern "C" {

void f90_mvbits1(std::int8_t from, std::int32_t frompos, std::int32_t len, std::int8_t *to,
                 std::int32_t topos) {
    quill::move_bits(from, frompos, len, to, topos);
}
void f90_mvbits2(std::int16_t from, std::int32_t frompos, std::int32_t len, std::int16_t *to,
                 std::int32_t topos) {
    quill::move_bits(from, frompos, len, to, topos);
}
void f90_mvbits4(std::int32_t from, std::int32_t frompos, std::int32_t len, std::int32_t *to,
                 std::int32_t topos) {
    quill::move_bits(from, frompos, len, to, topos);
}
void f90_mvbits8(std::int64_t from, std::int32_t frompos, std::int32_t len, std::int64_t *to,
                 std::int32_t topos) {
    quill::move_bits(from, frompos, len, to, topos);
}

} // extern "C"

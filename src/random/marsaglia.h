// The generator: a subtract-with-borrow recurrence with lags 43 and 22 and a Weyl sequence, whose
// difference is a draw. All of its state is what RANDOM_SEED hands out, and may be what a
// program has put there. A draw becomes a real by one product and one sum, in the 80-bit format
// for the kinds that it holds.
#pragma once

#include "frame/elements.h"

#include <algorithm>
#include <bit>

namespace quill {

constexpr std::int32_t last_lag = 42;

struct Generator {
    std::uint32_t LagTable[last_lag + 1];
    std::int32_t LagI; // of the word that is replaced
    std::int32_t LagJ; // of the word that it is taken from
    std::uint32_t Carry;
    std::uint32_t Weyl;
};
static_assert(sizeof(Generator) == 47 * 4);

// The process's generator, which is made and seeded when it is first wanted.
inline Generator &generator() {
    if (TSeed != 0) InitMarsagliaRander();
    return *reinterpret_cast<Generator *>(Rand_buf);
}

// ---- Draws --------------------------------------------------------------------------

inline std::int32_t lag_within_table(std::int32_t lag) {
    return lag < 0 || lag > last_lag ? last_lag : lag;
}

// A lag `draws` later: it counts down, from where it is, and starts over.
inline std::int32_t later(std::int32_t lag, std::int32_t draws) {
    return lag < draws ? last_lag : lag - draws;
}

// How many draws, of at most `most`, come before a lag starts over or into the table.
inline std::int32_t straight_draws(const Generator &state, std::int32_t most) {
    const bool within =
        lag_within_table(state.LagI) == state.LagI && lag_within_table(state.LagJ) == state.LagJ;
    return within ? std::min({state.LagI, state.LagJ, most - 1}) + 1 : 1;
}

// Calls visit for so many draws. Once a difference has been negative there is always a borrow:
// which of them are negative nobody can predict, hence no branch.
template <class Visit>
[[gnu::always_inline]] inline void for_each_draw(Generator &state, std::int32_t count,
                                                 Visit visit) {
    while (count > 0) {
        const std::int32_t draws = straight_draws(state, count);
        std::uint32_t *replaced = state.LagTable + lag_within_table(state.LagI);
        const std::uint32_t *minuend = state.LagTable + lag_within_table(state.LagJ);
        std::uint32_t borrow = state.Carry;
        std::uint32_t weyl = state.Weyl;
        for (std::int32_t i = 0; i > -draws; --i) {
            const std::uint32_t difference = minuend[i] - replaced[i] - borrow;
            const std::uint32_t negative = difference >> 31;
            borrow = negative != 0 ? 1 : borrow;
            const std::uint32_t x = difference - 5 * negative;
            replaced[i] = x;
            weyl -= 362436069;
            visit(static_cast<std::int32_t>(x - weyl));
        }
        state.LagI = later(state.LagI, draws);
        state.LagJ = later(state.LagJ, draws);
        state.Carry = borrow;
        state.Weyl = weyl;
        count -= draws;
    }
}

// ---- Reals --------------------------------------------------------------------------

// Twopm32_0 of a kind: 2^-32, in wider kinds than 4 a little less, so that none gives 1.
template <class Real> struct Scaling;
template <> struct Scaling<Real4> { static constexpr long double Twopm32_0 = 0x1p-32L; };
template <> struct Scaling<Real8> {
    static constexpr long double Twopm32_0 = std::bit_cast<double>(0x3DEFFFFF'FFF7FFFF);
};
template <> struct Scaling<Real10> {
    static constexpr long double Twopm32_0 = 0x0.FFFFFFFFBFFFFFFFp-32L;
};

// The product and the sum are rounded to 64 bits each, the rest follows as it is stored.
template <class Real> [[gnu::always_inline]] inline void store_scaled(Bytes at, std::int32_t word) {
    const long double half = 0.5L;
    store(at, static_cast<Real>(static_cast<long double>(word) * Scaling<Real>::Twopm32_0 + half));
}

template <> inline void store_scaled<Real16>(Bytes at, std::int32_t word) {
    QuadBits bits{Quad(0.0)};
    bits.high = 0x3FDEFFFF'FFFF7FFF;
    bits.low = ~std::uint64_t{0};
    Quad product = std::bit_cast<Quad>(bits);
    product *= Quad(word);
    Quad real(0.5);
    real += product;
    store(at, real.number);
}

// ---- RANDOM_NUMBER ------------------------------------------------------------------

template <class Real> void random_numbers(void *harvest, std::int32_t count) {
    auto at = static_cast<Bytes>(harvest);
    for_each_draw(generator(), count, [&at](std::int32_t word) {
        store_scaled<Real>(at, word);
        at += sizeof(Real);
    });
}

template <class Real> void random_number(void *harvest) { random_numbers<Real>(harvest, 1); }

} // namespace quill

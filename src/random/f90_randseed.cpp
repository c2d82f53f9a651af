// RANDOM_SEED, and the generator's seeding: its state is always the same afterwards.
#include "random/marsaglia.h"

std::int32_t *Rand_buf = nullptr;
std::int32_t TSeed = -1;

namespace quill {
namespace {

constexpr std::int32_t state_words = sizeof(Generator) / 4;
constexpr std::uint32_t first_weyl = 390878531;

// ---- Seeding ------------------------------------------------------------------------

// A lagged product and a linear congruence, which give the bits of the lag table.
struct SeedSequence {
    std::int32_t a, b, c, d;

    bool next_bit() {
        const std::int32_t t = a * b % 179 * c % 179;
        d = (53 * d + 1) % 169;
        a = b;
        b = c;
        c = t;
        return t * d % 63 >= 32; // not 64
    }
};

void seed(Generator &state) {
    const auto start = static_cast<std::int32_t>(state.Weyl);
    SeedSequence bits = {start % 179, (start >> 8) % 179, (start >> 16) % 179, (start >> 24) % 169};
    for (std::uint32_t &word : state.LagTable) {
        word = 0;
        for (int bit = 0; bit < 32; ++bit) word |= std::uint32_t{bits.next_bit()} << bit;
    }
    state.LagI = last_lag;
    state.LagJ = last_lag / 2;
    state.Carry = 0;
}

// ---- RANDOM_SEED --------------------------------------------------------------------

// Calls visit(address of element k of an array, word k of the state), k by k.
template <class Visit> void for_each_word(const f90_ArrDesc &array, Visit visit) {
    auto *words = reinterpret_cast<std::uint32_t *>(&generator());
    for (std::int32_t k = 0; k < state_words; ++k)
        visit(base(array) + k * byte_step(array, 0), words[k]);
}

// The first argument that is present decides. Elements of 64 bits give their low words, and
// words go into them with their sign.
template <class Integer> void random_seed(const f90_ArgList *list) {
    using Stored = std::make_unsigned_t<Integer>;
    if (result_given(*list)) {
        store(reinterpret_cast<Bytes>(list->Result.Word0), Stored{state_words});
    } else if (argument_given(*list, 1)) {
        for_each_word(descriptor(list->Arg1), [](ConstBytes element, std::uint32_t &word) {
            word = static_cast<std::uint32_t>(load<Stored>(element));
        });
    } else if (argument_given(*list, 2)) {
        for_each_word(descriptor(list->Arg2), [](Bytes element, std::uint32_t word) {
            store(element, static_cast<Stored>(static_cast<std::int32_t>(word)));
        });
    } else {
        InitMarsagliaRander();
    }
}

} // namespace
} // namespace quill

extern "C" {

void InitMarsagliaRander(void) {
    if (TSeed != 0) {
        Rand_buf = static_cast<std::int32_t *>(f90_getspace(sizeof(quill::Generator)));
        TSeed = 0;
    }
    auto &state = *reinterpret_cast<quill::Generator *>(Rand_buf);
    state.Weyl = quill::first_weyl;
    quill::seed(state);
}

void f90_randseed(f90_ArgList *list) { quill::random_seed<std::int32_t>(list); }
void f90_randseed8(f90_ArgList *list) { quill::random_seed<std::int64_t>(list); }

} // extern "C"

// SYSTEM_CLOCK: each width has its own rate, and starts over after COUNT_MAX. Without a clock
// COUNT is -COUNT_MAX and the others are 0.
#include "clocks/seconds.h"
#include "frame/elements.h"

#include <limits>
#include <sys/time.h>

namespace quill {
namespace {

// ---- Counts, before they start over ---------------------------------------------------

timeval read_gettimeofday() {
    timeval now = {};
    gettimeofday(&now, nullptr);
    return now;
}

std::uint16_t milliseconds() {
    const timeb now = read_ftime();
    return static_cast<std::uint16_t>(static_cast<std::uint32_t>(now.time) * 1000U + now.millitm);
}

std::uint32_t hundreds_of_microseconds() {
    const timeval now = read_gettimeofday();
    const auto part = static_cast<double>(static_cast<long double>(now.tv_usec) * 0.01);
    return static_cast<std::uint32_t>(now.tv_sec) * 10000U +
           static_cast<std::uint32_t>(static_cast<std::int32_t>(part));
}

std::uint64_t microseconds() {
    const timeval now = read_gettimeofday();
    return static_cast<std::uint64_t>(std::int64_t{now.tv_sec} * 1000000 + now.tv_usec);
}

// ---- SYSTEM_CLOCK ---------------------------------------------------------------------

template <class Integer> void store_if(bool given, const f90_Slot &slot, Integer integer) {
    if (given) store(reinterpret_cast<Bytes>(slot.Word0), integer);
}

template <class Stored> void system_clock(const f90_ArgList *list, Stored count, Stored rate) {
    constexpr auto greatest = static_cast<Stored>(static_cast<Stored>(-1) >> 1);
    const bool works = has_clock();
    const auto instead = static_cast<Stored>(greatest + 2); // -greatest
    store_if<Stored>(result_given(*list), list->Result, works ? count & greatest : instead);
    store_if<Stored>(argument_given(*list, 1), list->Arg1, works ? rate : 0);
    store_if<Stored>(argument_given(*list, 2), list->Arg2, works ? greatest : 0);
}

} // namespace
} // namespace quill

extern "C" {

void f90_sysclock2(f90_ArgList *list) {
    quill::system_clock<std::uint16_t>(list, quill::milliseconds(), 1000);
}
void f90_sysclock(f90_ArgList *list) {
    quill::system_clock<std::uint32_t>(list, quill::hundreds_of_microseconds(), 10000);
}
void f90_sysclock8(f90_ArgList *list) {
    quill::system_clock<std::uint64_t>(list, quill::microseconds(), 1000000);
}

} // extern "C"

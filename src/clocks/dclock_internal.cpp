// The clock that reads the processor's counter, and measures it when it is first asked. That
// call is not locked, and there is no system call in any later one.
#include "frame/records.h"

#include <sys/time.h>

namespace quill {
namespace {

std::int32_t first = -1; // not 0 as long as the counter has not been measured
double rfrequency;       // seconds of one tick

void rdtsc(std::uint64_t *counter) { *counter = __builtin_ia32_rdtsc(); }

// By halves without sign: the processor converts signed integers only.
long double number(std::uint64_t counter) {
    return static_cast<long double>(static_cast<std::uint32_t>(counter >> 32)) * 4294967296.0L +
           static_cast<long double>(static_cast<std::uint32_t>(counter));
}

long double seconds_between(const timeval &from, const timeval &to) {
    return static_cast<long double>(to.tv_sec - from.tv_sec) +
           static_cast<long double>(to.tv_usec - from.tv_usec) * 1e-06;
}

// Through memory, so that it takes time.
void spin(std::uint64_t times) {
    volatile std::uint64_t counter = 0;
    while (counter < times) counter = counter + 1;
}

// Ticks per second: over ever longer spins until one takes long enough. What one reading of the
// clock takes is taken off.
double get_frequency() {
    constexpr long double long_enough = 0.05;
    for (std::uint64_t times = 1000000;; times *= 2) {
        timeval before;
        timeval start;
        timeval end;
        std::uint64_t first_tick;
        std::uint64_t last_tick;
        gettimeofday(&before, nullptr);
        gettimeofday(&start, nullptr);
        rdtsc(&first_tick);
        spin(times);
        rdtsc(&last_tick);
        gettimeofday(&end, nullptr);
        const long double elapsed = seconds_between(start, end) - seconds_between(before, start);
        if (elapsed >= long_enough)
            return static_cast<double>((number(last_tick) - number(first_tick)) / elapsed);
    }
}

} // namespace
} // namespace quill

extern "C" double QUILLf90_dclock(void) {
    if (quill::first != 0) {
        quill::first = 0;
        quill::rfrequency = 1.0 / quill::get_frequency();
    }
    std::uint64_t counter;
    quill::rdtsc(&counter);
    return static_cast<double>(quill::number(counter) * quill::rfrequency);
}

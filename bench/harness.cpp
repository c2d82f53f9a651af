// Timing and the table. Samples of the contestants are taken in turn, so
// that a change of the machine's speed meets all of them; the median stands.
#include "harness.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace bench {

// ---- Timing -----------------------------------------------------------------

namespace {

constexpr double shortest_sample = 3e-3; // seconds
constexpr double long_call = 10e-3;
constexpr int most_samples = 11;
constexpr int samples_of_long_calls = 5;

// Time on the processor: while another process runs, the clock stands still.
double now() {
    std::timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double seconds(const Repeated &calls, long times) {
    const double start = now();
    calls(times);
    return now() - start;
}

// How many calls make a sample long enough.
long calibrated(const Repeated &calls) {
    long times = 1;
    for (;;) {
        const double elapsed = seconds(calls, times);
        if (elapsed >= shortest_sample) return times;
        const double growth = 1.2 * shortest_sample / std::max(elapsed, 1e-7);
        times = static_cast<long>(static_cast<double>(times) * std::clamp(growth, 1.2, 100.0)) + 1;
    }
}

// The contestants from the first on that take part.
int entered(const Contest &contest) { return contest.calls[Reference] ? contestants : Reference; }

struct Timing {
    double seconds_per_call[contestants];
};

Timing measure(const Contest &contest) {
    const int parties = entered(contest);
    long times[contestants];
    double samples[contestants][most_samples];
    for (int c = 0; c < parties; ++c) times[c] = calibrated(contest.calls[c]);

    int count = most_samples;
    for (int s = 0; s < count; ++s) {
        for (int c = 0; c < parties; ++c) {
            samples[c][s] = seconds(contest.calls[c], times[c]) / static_cast<double>(times[c]);
            if (samples[c][s] > long_call) count = samples_of_long_calls;
        }
    }

    Timing timing;
    for (int c = 0; c < parties; ++c) {
        std::sort(samples[c], samples[c] + count);
        timing.seconds_per_call[c] = samples[c][count / 2];
    }
    return timing;
}

void check_answers(const Contest &contest) {
    const char *const names[] = {"the library", "peer O2", "peer O3", contest.reference};
    const int parties = entered(contest);
    for (int c = 0; c < parties; ++c) contest.calls[c](1);
    for (int c = PeerO2; c < parties; ++c) {
        if (contest.agrees(static_cast<Contestant>(c))) continue;
        std::fflush(stdout);
        std::fprintf(stderr, "%s %s: %s and %s give different answers\n", contest.name.c_str(),
                     contest.size.c_str(), names[Ours], names[c]);
        std::exit(EXIT_FAILURE);
    }
}

void print_time(double seconds_per_call) {
    if (seconds_per_call < 10e-6)
        std::printf(" %9.1f ns", seconds_per_call * 1e9);
    else
        std::printf(" %9.1f us", seconds_per_call * 1e6);
}

} // namespace

// ---- The table --------------------------------------------------------------

bool wanted(const Table &table, const std::string &name) {
    return name.find(table.filter) != std::string::npos;
}

void spoil(void *const (&results)[contestants], std::size_t bytes) {
    for (int c = 0; c < contestants; ++c) std::memset(results[c], 0x11 * (c + 1), bytes);
}

void print_heading() {
    std::printf("%-26s %9s %12s %12s %12s %7s %12s %7s\n", "", "size", "ours", "peer O2", "peer O3",
                "ratio", "reference", "ratio");
}

void run(Table &table, const Contest &contest) {
    check_answers(contest);
    const Timing timing = measure(contest);
    const double *times = timing.seconds_per_call;
    const bool o2_alone = contest.rival == Rival::O2;
    const double rival = o2_alone ? times[PeerO2] : std::min(times[PeerO2], times[PeerO3]);
    const double ratio = rival / times[Ours];
    std::printf("%-26s %9s", contest.name.c_str(), contest.size.c_str());
    for (const Contestant c : {Ours, PeerO2, PeerO3}) print_time(times[c]);
    std::printf(" %7.2f%s", ratio, o2_alone ? " O2" : "");
    if (contest.calls[Reference]) {
        print_time(times[Reference]);
        std::printf(" %7.2f %s", times[Reference] / times[Ours], contest.reference);
    }
    std::printf("\n");
    std::fflush(stdout);
    ++table.rows;
    if (ratio < 1) ++table.slower_rows;
}

void print_summary(const Table &table) {
    std::printf("%d rows, %d of them slower than the peer that counts\n", table.rows,
                table.slower_rows);
}

// ---- Descriptors ------------------------------------------------------------

namespace {

f90_ArrDesc without_dimensions(void *base, std::int32_t count, std::size_t elsize) {
    f90_ArrDesc array{};
    array.ZERO = base;
    array.BASE = base;
    array.EXTENT = count;
    array.ELSIZE = static_cast<std::int32_t>(elsize);
    array.SCALEFACTOR = array.ELSIZE;
    return array;
}

// Subscripts run from 1.
void add_dimension(f90_ArrDesc &array, std::int32_t count, std::int32_t stride) {
    array.Dim[array.RANK++] = {1, count, stride};
    array.ZERO = static_cast<std::byte *>(array.ZERO) - stride * array.SCALEFACTOR;
}

} // namespace

f90_ArrDesc scalar(void *base, std::size_t elsize) { return without_dimensions(base, 1, elsize); }

f90_ArrDesc vector(void *base, std::int32_t count, std::size_t elsize, std::int32_t stride) {
    f90_ArrDesc array = without_dimensions(base, count, elsize);
    add_dimension(array, count, stride);
    array.NONCONTIG = stride == 1 ? 0 : 1;
    return array;
}

f90_ArrDesc matrix(void *base, std::int32_t rows, std::int32_t columns, std::size_t elsize,
                   std::int32_t stride) {
    f90_ArrDesc array = without_dimensions(base, rows * columns, elsize);
    add_dimension(array, rows, stride);
    add_dimension(array, columns, rows * stride);
    array.NONCONTIG = stride == 1 ? 0 : 1;
    return array;
}

f90_Slot slot(f90_ArrDesc &array) { return {reinterpret_cast<std::uintptr_t>(&array), 0}; }

f90_Slot slot(std::int32_t value) { return {static_cast<std::uintptr_t>(value), 0}; }

} // namespace bench

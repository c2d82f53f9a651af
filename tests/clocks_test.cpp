// Clocks and dates on a platform that this program supplies: the library calls these functions
// by name, as it does its own clock for CPU_TIME.
#include "guarded.h"

#include <cmath>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/time.h>
#include <sys/timeb.h>
#include <sys/times.h>
#include <unistd.h>
#include <x86intrin.h>

static struct {
    std::time_t date, seconds; // of time, and of the finer clocks
    int microseconds, milliseconds, minutes_west, ticks;
    tms used;
    clock_t elapsed;
    int failing_clock; // which call of clock fails, from 1
    bool no_local_time;
} platform;
static timeval (*told_time)();             // by gettimeofday
static const double *told_clock;           // by QUILLf90_dclock
static std::string journal;                // initials of what was called
static std::vector<std::uint64_t> counter; // of the processor, when the time was told

template <class Function, class... T> static auto genuine(const char *name, T... arguments) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name))(arguments...);
}
extern "C" {
clock_t clock() noexcept {
    journal += "c";
    const bool fails = std::ranges::count(journal, 'c') == platform.failing_clock;
    return !fails ? 0 : platform.failing_clock == 1 ? -1 : INT32_MIN;
}
int gettimeofday(timeval *now, void *zone) noexcept {
    if (told_time == nullptr) return genuine<int(timeval *, void *)>("gettimeofday", now, zone);
    return *now = told_time(), 0;
}
std::time_t time(std::time_t *now) noexcept {
    journal += "t";
    return now == nullptr ? platform.date : *now = platform.date;
}
std::tm *localtime(const std::time_t *date) noexcept {
    journal += "l";
    if (platform.no_local_time) return nullptr;
    return genuine<std::tm *(const std::time_t *)>("localtime", date);
}
int ftime(timeb *now) {
    journal += "f";
    now->time = platform.seconds, now->millitm = platform.milliseconds;
    return now->timezone = platform.minutes_west, now->dstflag = 1, 0;
}
clock_t times(tms *used) noexcept { return *used = platform.used, platform.elapsed; }
long sysconf(int name) noexcept {
    return name == _SC_CLK_TCK ? platform.ticks : genuine<long(int)>("sysconf", name);
}
double QUILLf90_dclock() { return told_clock ? *told_clock : genuine<double()>("QUILLf90_dclock"); }
}

namespace {

using namespace test;
template <class T>
void expect_counts(f90_Intrinsic *member, const char *calls, std::int64_t count, int rate) {
    const bool fails = platform.failing_clock != 0;
    const std::int64_t most = greatest<T>, no = 0;
    const std::array right = {fails ? -most : count & most, fails ? no : rate, fails ? no : most};
    for (int presence = 0; presence < 16; ++presence) {
        std::array<std::byte, 48> storage = {}, expected = {};
        Call call;
        for (int i = 0; i < 3; ++i) { // what is absent is not there
            const bool present = (presence >> i & 1) != 0;
            if (present) write(&expected[12 * i + 4], T(right[i]));
            call.slot(i, present ? std::uintptr_t(&storage[12 * i + 4]) : 8);
        }
        call.list.Presence = presence;
        journal = "";
        call(member);
        EXPECT_EQ(journal, calls);
        EXPECT_EQ(storage, expected) << "presence " << presence;
    }
}

TEST(Clocks, CountInTheirUnits) {
    Random random(random_seed());
    const auto any = [&](std::vector<int> values) { // half of the time one of these
        return coin(random) ? values[pick(random, 0, values.size() - 1)] : int(random());
    };
    told_time = [] {
        journal += "g";
        return timeval{platform.seconds, platform.microseconds};
    };
    for (int i = 0; i < random_rounds(1000) && !HasFailure(); ++i) {
        const std::int64_t s = any({0, 1, -1, 32, 214748, 1700000000, INT32_MAX, INT32_MIN});
        const int us = std::abs(any({0, 99, 100, 364799, 364800, 999999}) % 1000000);
        const int ms = std::abs(any({0, 1, 767, 768, 999}) % 1000), ticks = any({1, 100}) & 1023;
        const tms used = {any({12}), any({1000}), any({30}), any({4})};
        const clock_t elapsed = any({-1, -2});
        platform = {0, std::time_t(s), us, ms, 0, ticks + 1, used, elapsed, coin(random), false};
        expect_counts<std::int16_t>(f90_sysclock2, "fc", s * 1000 + ms, 1000);
        expect_counts<std::int32_t>(f90_sysclock, "gc", s * 10000 + us / 100, 10000);
        expect_counts<std::int64_t>(f90_sysclock8, "gc", s * 1000000 + us, 1000000);
        const auto sum = std::int64_t{used.tms_utime} + used.tms_cutime + used.tms_cstime;
        EXPECT_EQ(mclock_(), elapsed == -1 ? -1 : std::int32_t(sum * 1000) / (ticks + 1));
    }
    told_time = nullptr;
}

// Reading the time seems to take 0.9 s, and the passes 0, 0.015, 0.03 s and so on.
void measure_by_a_told_time() {
    counter.reserve(99);
    told_time = [] {
        const int pass = counter.size() / 3;
        const int us = std::array{0, 900000, 1800000 + 15000 * pass}[counter.size() % 3];
        counter.push_back(__rdtsc());
        return timeval{100 * pass + us / 1000000, us % 1000000};
    };
    QUILLf90_dclock();
    ASSERT_EQ(counter.size(), 15U);
    const auto ticks = [](int pass) {
        return double(counter[3 * pass + 2] - counter[3 * pass + 1]);
    };
    const double span = ticks(4);
    EXPECT_GT(span, 0.4 * 16e6); // each of the increments goes through memory
    EXPECT_GT(span, 4 * std::min({ticks(0), ticks(1), ticks(2) / 2}));
    const double from = __rdtsc(), time = QUILLf90_dclock(), to = __rdtsc();
    EXPECT_GE(time, 0.06 / span * from * 0.9999);
    EXPECT_LE(time, 0.06 / span * to * 1.01);
}

void measure_by_the_machine() {
    static timeval now; // as it was told last
    told_time = [] {
        counter.push_back(__rdtsc());
        return genuine<int(timeval *, void *)>("gettimeofday", &now, nullptr), now;
    };
    const auto seconds = [] { return told_time(), double(now.tv_sec) + 1e-6 * now.tv_usec; };
    const double start = seconds();
    QUILLf90_dclock();
    EXPECT_EQ(counter.size() % 3, 1U);
    const double since = seconds(), first = QUILLf90_dclock();
    EXPECT_GE(since - start, 0.05);
    double last = first, passed = 0;
    for (; passed < 0.05; passed = seconds() - since) {
        counter.clear();
        EXPECT_LE(std::exchange(last, QUILLf90_dclock()), last);
        EXPECT_TRUE(counter.empty()) << "readings of a clock after the first call";
    }
    EXPECT_NEAR(QUILLf90_dclock() - first, passed, 0.25 * passed);
}

TEST(Clocks, MeasureTheProcessor) {
    for (const auto process : {measure_by_a_told_time, measure_by_the_machine})
        EXPECT_EQ(in_child(process).out, "");
}

template <class Element> void expect_cpu_time(void (*cputime)(Element *)) {
    using T = std::conditional_t<sizeof(Element) == 16, __float128, Element>;
    const double most = std::numeric_limits<float>::max();
    alignas(16) std::array<std::byte, 24> storage = {}, right = {};
    for (const double told : {0.1, 1e9 / 3, 0x1.000001p0, 5e-324, -1e300, most, 1e300,
                              std::nextafter(most, 1e300), HUGE_VAL, std::nan("")}) {
        told_clock = &told;
        cputime(reinterpret_cast<Element *>(&storage[4]));
        write(&right[4], T(told > most ? most : told));
        EXPECT_EQ(storage, right) << sizeof(T) << " bytes, " << told;
    }
    told_clock = nullptr;
}

TEST(Clocks, TellCpuTime) {
    expect_cpu_time(f90_cputime4);
    expect_cpu_time(f90_cputime8);
    expect_cpu_time(f90_cputime10);
    expect_cpu_time(f90_cputime16);
}

// Three strings of up to 20 bytes, before an inaccessible page, that a child writes too.
struct Strings : Guarded {
    Strings() : Guarded(60) {
        const int shared = MAP_SHARED | MAP_ANONYMOUS | MAP_FIXED;
        mmap(begin(), size, PROT_READ | PROT_WRITE, shared, -1, 0);
    }
    char *at(int i) const { return reinterpret_cast<char *>(end() - 60 + 20 * i); }
};

Call with_strings(const Strings &strings, const std::array<int, 3> &lengths) {
    std::memset(strings.at(0), '.', 60);
    Call call;
    for (int i = 0; i < 3; ++i) call.slot(i, std::uintptr_t(strings.at(i)));
    call.list.Result.Word1 = lengths[0], call.list.Arg1.Word1 = lengths[1];
    return call.list.Arg2.Word1 = lengths[2], call;
}

// What a date that the platform is set to reads in full.
struct Reading {
    std::array<std::string, 3> texts;
    std::array<int, 8> values;
};

Reading set_platform(Random &random, bool time_is_wanted) {
    const std::pair<const char *, int> zones[] = {
        {"UTC", 0}, {"XYZ5", 300}, {"ABC-5:30", -330}, {"XYZ0:30", 30}};
    const auto &[zone, of_zone] = zones[pick(random, 0, 3)];
    const int wests[] = {0, 0, 300, -330, -30, 599, 600, INT16_MAX, INT16_MIN, int(random())};
    const int told = std::int16_t(wests[pick(random, 0, 9)]), west = told != 0 ? told : of_zone;
    const int ms = std::array{0, 7, 45, 999, time_is_wanted ? 100 : 65535}[pick(random, 0, 4)];
    const std::time_t date = pick(random, -2100000000, 2100000000), local = date - 60 * of_zone;
    platform = {date, 5, 0, ms, told, 0, {}, 0, pick(random, 0, 6), pick(random, 0, 7) == 0};
    setenv("TZ", zone, 1);
    const std::tm tm = *std::gmtime(&local);
    char text[20];
    std::strftime(text, sizeof text, "%Y%m%d%H%M%S.", &tm);
    const auto two = [](int n) { return (n < 10 ? "0" : "") + std::to_string(n).substr(0, 2); };
    return {{std::string(text, 8), text + 8 + std::to_string(1000 + ms).substr(1),
             (west > 0 ? "-" : "+") + two(std::abs(west / 60)) + two(std::abs(west % 60))},
            {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, -west, tm.tm_hour, tm.tm_min, tm.tm_sec,
             ms}};
}

void try_date(Random &random, const Strings &strings) {
    const int presence = random(), size = 2 << pick(random, 0, 2);
    const auto &[texts, values] = set_platform(random, presence & 2);
    const bool checked = coin(random), misused = checked && pick(random, 0, 4) == 0;
    int clocks = 0;
    const auto fails = [&] { return ++clocks == platform.failing_clock || platform.no_local_time; };
    std::string message;
    const auto misuse = [&](bool is, const auto &...parts) {
        if (is && checked && message.empty()) message = (" Argument " + ... + std::string(parts));
    };
    const std::string of = " of the intrinsic function DATEANDTIME ";
    std::array<int, 3> lengths = {}, least = {8, 10, 5};
    std::string fields(60, '.');
    for (int i = 0; i < 3; ++i) {
        lengths[i] = pick(random, checked ? least[i] - misused : 0, 13);
        if ((presence >> i & 1) == 0) continue;
        misuse(lengths[i] < least[i], std::to_string(i + 1), of, "has string length ",
               std::to_string(lengths[i]), ".\n It should have string length at least ",
               std::to_string(least[i]), ".\n");
        if (!message.empty()) break;
        std::string text = fails() ? "" : texts[i].substr(0, lengths[i]);
        text.resize(lengths[i], ' ');
        fields.replace(20 * i, lengths[i], text);
    }
    const bool wanted = presence & 8, none = wanted && fails();
    const int least_extent = none && !checked ? -1 : misused ? 4 * pick(random, -1, 2) : 8;
    const int extent = pick(random, least_extent, 11);
    const int rank = checked && !misused ? 1 : pick(random, 0, 7);
    misuse(wanted && extent < 8, "4", of, "is an array with ", std::to_string(extent),
           " elements.\n It should be an array with at least 8 elements.\n");
    misuse(wanted && rank != 1, "4", of, "is a rank ", std::to_string(rank),
           " array.\n It should be a rank 1 array.\n");
    Array array = make_array(random, {11}, size, coin(random), std::min(size, 4), 8);
    auto stored = array.storage;
    for (int i = 0; wanted && message.empty() && i < (none ? extent : 8); ++i) {
        const std::int64_t value = none ? -(INT64_MAX >> (64 - 8 * size)) : values[i];
        std::memcpy(&stored[array.offsets[i]], &value, size);
    }

    f90_ArrDesc &d = array.descriptor;
    if (coin(random)) std::swap(d.SCALEFACTOR, d.Dim[0].Stride);
    d.Dim[0].Upper -= 11 - extent, d.ELSIZE = random(), d.EXTENT = random(), d.RANK = rank;
    Call call = with_strings(strings, lengths).array(3, d);
    call.list.Presence = presence, call.list.Flags = (random() & ~1U) | checked;
    f90_Intrinsic *const forms[] = {f90_dateandtime2, f90_dateandtime, f90_dateandtime8};
    const auto ask = [&] { call(forms[size / 4]); };
    journal = "";
    if (message.empty()) {
        ask();
        EXPECT_TRUE(platform.no_local_time || journal == "tlf" + std::string(clocks, 'c'))
            << journal;
    } else {
        EXPECT_EQ(fatal_message(ask), report("DATEANDTIME", message));
    }
    EXPECT_EQ(std::string(strings.at(0), 60), fields);
    EXPECT_TRUE(array.storage == stored) << size << " bytes";
}

TEST(DateAndTime, AgreesWithModel) {
    Random random(random_seed());
    const Strings strings;
    for (int i = 0; i < random_rounds(1500) && !HasFailure(); ++i) try_date(random, strings);
}

TEST(DateAndTime, TellsTheZone) {
    const Strings strings;
    const std::tuple<const char *, int, const char *> cases[] = {
        {"UTC", 0, "20010203............040506.007..........+0000..............."},
        {"UTC", -330, "20010203............040506.007..........+0530..............."},
        {"XYZ5XDT,0/0,J365/25", 0, "20010203............000506.007..........-0500..............."}};
    for (const auto &[zone, west, right] : cases) {
        platform = {981173106, 5, 0, 7, west, 0, {}, 0, 0, false};
        setenv("TZ", zone, 1);
        with_strings(strings, {8, 10, 5})(f90_dateandtime);
        EXPECT_EQ(std::string(strings.at(0), 60), right) << zone;
    }
    Call call = with_strings(strings, {8, 10, -1}).checked(); // ends nowhere, but is not too short
    EXPECT_EQ(in_child([&] { call(f90_dateandtime); }).err.find("DATEANDTIME"), std::string::npos);
}

} // namespace

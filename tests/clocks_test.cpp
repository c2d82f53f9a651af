// Clocks and dates, by a platform that this program supplies: the library calls these functions
// by name. Unless a time is fixed they are the C library's.
#include "support.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/timeb.h>
#include <sys/times.h>

using namespace test;

namespace {

struct Platform {
    bool fixed = false;
    std::time_t seconds = 0;
    int microseconds = 0, milliseconds = 0, minutes_west = 0;
    int failing_clock = 0; // the number of the call of clock that fails
    bool no_local_time = false;
    tms used = {};
    clock_t elapsed = 0;
};
Platform platform;
int clock_calls, gettimeofday_calls;

template <class Function> Function *c_library(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

clock_t clock() noexcept {
    if (!platform.fixed) return c_library<clock_t()>("clock")();
    return ++clock_calls == platform.failing_clock ? -1 : 7;
}
int gettimeofday(timeval *now, void *zone) noexcept {
    ++gettimeofday_calls;
    if (!platform.fixed) return c_library<int(timeval *, void *)>("gettimeofday")(now, zone);
    *now = {platform.seconds, platform.microseconds};
    return 0;
}
std::time_t time(std::time_t *now) noexcept {
    if (!platform.fixed) return c_library<std::time_t(std::time_t *)>("time")(now);
    if (now != nullptr) *now = platform.seconds;
    return platform.seconds;
}
std::tm *localtime(const std::time_t *seconds) noexcept {
    if (platform.no_local_time) return nullptr;
    return c_library<std::tm *(const std::time_t *)>("localtime")(seconds);
}
int ftime(timeb *now) {
    *now = {platform.seconds, static_cast<unsigned short>(platform.milliseconds),
            static_cast<short>(platform.minutes_west), 1};
    return 0;
}
clock_t times(tms *used) noexcept {
    *used = platform.used;
    return platform.elapsed;
}

} // extern "C"

namespace {

struct FixedPlatform {
    explicit FixedPlatform(const Platform &fixed) {
        platform = fixed;
        platform.fixed = true;
        clock_calls = 0;
    }
    ~FixedPlatform() { platform = Platform(); }
};

std::uintptr_t address(const void *at) { return reinterpret_cast<std::uintptr_t>(at); }

// ---- SYSTEM_CLOCK and mclock_ -------------------------------------------------

template <class Integer>
void expect_counts(f90_Intrinsic *member, std::int64_t count, Integer rate, int failing) {
    constexpr Integer untouched = 0x5A, greatest = std::numeric_limits<Integer>::max();
    const auto wrapped = static_cast<Integer>(count & greatest);
    const Integer right[] = {failing ? static_cast<Integer>(-greatest) : wrapped,
                             failing ? Integer{0} : rate, failing ? Integer{0} : greatest};
    for (int present = 0; present < 8; ++present) {
        Integer answers[] = {untouched, untouched, untouched, untouched};
        Call call;
        for (int i = 0; i < 3; ++i) call.slot(i, address(&answers[i]), (present >> i & 1) != 0);
        clock_calls = 0;
        call(member);
        EXPECT_EQ(clock_calls, 1);
        EXPECT_EQ(answers[3], untouched);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(answers[i], present >> i & 1 ? right[i] : untouched);
    }
}

TEST(SystemClock, CountsInThreeWidths) {
    const std::array<int, 3> readings[] = {{0, 0, 0},
                                           {1, 99, 999},
                                           {1, 100, 1},
                                           {1700000000, 999999, 999},
                                           {214748, 364799, 32},
                                           {214748, 364800, 0},
                                           {32, 767000, 768},
                                           {INT32_MAX, 123456, 5},
                                           {-1, 999999, 999},
                                           {INT32_MIN, 1, 1}};
    for (const auto &[seconds, microseconds, milliseconds] : readings)
        for (const int failing : {0, 1}) {
            const FixedPlatform fixed({.seconds = seconds,
                                       .microseconds = microseconds,
                                       .milliseconds = milliseconds,
                                       .failing_clock = failing});
            const std::int64_t s = seconds;
            expect_counts<std::int16_t>(f90_sysclock2, s * 1000 + milliseconds, 1000, failing);
            expect_counts<std::int32_t>(f90_sysclock, s * 10000 + microseconds / 100, 10000,
                                        failing);
            expect_counts<std::int64_t>(f90_sysclock8, s * 1000000 + microseconds, 1000000,
                                        failing);
        }
}

TEST(Mclock, CountsUserTimeAndChildren) {
    const std::pair<Platform, int> cases[] = {
        {{.used = {12, 1000, 30, 4}, .elapsed = 9}, 460},
        {{.used = {1, 1, 1, 1}, .elapsed = -1}, -1},
        {{.used = {2147483, 0, 1, 0}, .elapsed = 1}, -21474832}, // wraps before it is divided
        {{.used = {-1, 0, 0, 0}, .elapsed = 1}, -10}};
    ASSERT_EQ(sysconf(_SC_CLK_TCK), 100);
    for (const auto &[given, milliseconds] : cases) {
        const FixedPlatform fixed(given);
        EXPECT_EQ(mclock_(), milliseconds);
    }
}

// ---- The processor's clock ----------------------------------------------------

double monotonic() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

template <class T, class Element> void expect_time_between(void (*cputime)(Element *)) {
    std::array<std::byte, sizeof(T) + 8> storage, before;
    storage.fill(std::byte{0xA5});
    before = storage;
    const double earlier = QUILLf90_dclock();
    cputime(reinterpret_cast<Element *>(storage.data() + 4));
    const double later = QUILLf90_dclock();
    const auto time = read<T>(storage.data() + 4);
    EXPECT_TRUE(time >= static_cast<T>(earlier) && time <= static_cast<T>(later)) << sizeof(T);
    EXPECT_TRUE(static_cast<double>(time) == static_cast<double>(time)) << sizeof(T);
    std::copy_n(before.data() + 4, used_bytes<T>, storage.data() + 4);
    EXPECT_TRUE(storage == before) << sizeof(T);
}

TEST(ProcessorClock, MeasuresItselfOnceAndRunsOn) {
    const double start = monotonic();
    QUILLf90_dclock();
    EXPECT_GE(monotonic() - start, 0.05);
    const int calls = gettimeofday_calls;
    EXPECT_GE(calls, 3);
    const double before = QUILLf90_dclock(), from = monotonic();
    while (monotonic() < from + 0.1) EXPECT_LE(before, QUILLf90_dclock());
    EXPECT_NEAR((QUILLf90_dclock() - before) / (monotonic() - from), 1.0, 0.1);
    EXPECT_EQ(gettimeofday_calls, calls) << "only the first call looks at another clock";
    expect_time_between<float>(f90_cputime4);
    expect_time_between<double>(f90_cputime8);
    expect_time_between<long double>(f90_cputime10);
    expect_time_between<__float128>(f90_cputime16);
}

// ---- DATE_AND_TIME --------------------------------------------------------------

f90_Intrinsic *const forms[] = {f90_dateandtime2, f90_dateandtime, f90_dateandtime8};
constexpr int bytes_of_form[] = {2, 4, 8};

// 2001-02-03 04:05:06.007 in a zone that the process has by TZ and ftime tells or does not.
struct InZone {
    FixedPlatform fixed;
    InZone(const char *zone, int minutes_west, int failing_clock = 0, bool no_local_time = false)
        : fixed({.seconds = 981173106,
                 .milliseconds = 7,
                 .minutes_west = minutes_west,
                 .failing_clock = failing_clock,
                 .no_local_time = no_local_time}) {
        setenv("TZ", zone, 1);
    }
};

// The strings that a call leaves, each in a field of '.', between brackets.
std::string texts(const std::array<int, 3> &lengths, int present, bool checked,
                  f90_Intrinsic *form) {
    std::string fields(3 * 20, '.');
    Call call;
    for (int i = 0; i < 3; ++i) {
        f90_Slot *const slots[] = {&call.list.Result, &call.list.Arg1, &call.list.Arg2};
        call.slot(i, address(&fields[20 * i]), (present >> i & 1) != 0);
        slots[i]->Word1 = lengths[i];
    }
    call.list.Flags = checked;
    call(form);
    std::string text;
    for (int i = 0; i < 3; ++i)
        text += '[' + fields.substr(20 * i, std::max(lengths[i], 0) + 1) + ']';
    return text;
}

TEST(DateAndTime, WritesItsStrings) {
    struct Case {
        const char *zone;
        int minutes_west, failing_clock, present;
        std::array<int, 3> lengths;
        bool checked;
        const char *right;
    };
    const Case cases[] = {
        {"UTC", 0, 0, 7, {8, 10, 5}, true, "[20010203.][040506.007.][+0000.]"},
        {"UTC", 0, 0, 7, {12, 11, 8}, true, "[20010203    .][040506.007 .][+0000   .]"},
        {"UTC", 300, 0, 7, {8, 10, 5}, true, "[20010203.][040506.007.][-0500.]"},
        {"UTC", -330, 0, 7, {8, 10, 5}, true, "[20010203.][040506.007.][+0530.]"},
        {"UTC", 32767, 0, 4, {8, 10, 5}, true, "[.........][...........][-5407.]"},
        {"XYZ5", 0, 0, 7, {8, 10, 5}, true, "[20010202.][230506.007.][-0500.]"},
        {"XYZ5", 60, 0, 7, {8, 10, 5}, true, "[20010202.][230506.007.][-0100.]"},
        {"ABC-5:30", 0, 0, 7, {8, 10, 5}, true, "[20010203.][093506.007.][+0530.]"},
        {"UTC", 0, 0, 0, {8, 10, 5}, true, "[.........][...........][......]"},
        {"UTC", 0, 0, 2, {1, 10, 1}, true, "[..][040506.007.][..]"},
        {"UTC", 0, 1, 7, {9, 10, 5}, true, "[         .][040506.007.][+0000.]"},
        {"UTC", 0, 2, 7, {8, 11, 5}, true, "[20010203.][           .][+0000.]"},
        {"UTC", 0, 3, 7, {8, 10, 6}, true, "[20010203.][040506.007.][      .]"},
        {"UTC", 300, 0, 7, {3, 8, 2}, false, "[200.][040506.0.][-0.]"},
        {"UTC", 0, 0, 7, {0, 0, 0}, false, "[.][.][.]"}};
    for (const Case &c : cases)
        for (f90_Intrinsic *form : forms) {
            const InZone zone(c.zone, c.minutes_west, c.failing_clock);
            EXPECT_EQ(texts(c.lengths, c.present, c.checked, form), c.right) << c.zone;
        }
    const InZone nowhere("UTC", 0, 0, true);
    EXPECT_EQ(texts({8, 10, 5}, 7, true, f90_dateandtime), "[        .][          .][     .]");
}

template <class Integer> void expect_values(Random &random, f90_Intrinsic *form) {
    for (const int failing : {0, 0, 1}) {
        const InZone zone("XYZ3:30", coin(random) ? 0 : 210, failing);
        Array values = make_array(random, {pick(random, 8, 11)}, sizeof(Integer), coin(random),
                                  coin(random) ? std::min<int>(sizeof(Integer), 4) : 0, 8);
        auto right = values.storage;
        const int local[] = {2001, 2, 3, -210, 0, 35, 6, 7};
        for (std::size_t i = 0; i < (failing ? values.size() : 8); ++i)
            write(&right[values.offsets[i]],
                  failing ? static_cast<Integer>(-std::numeric_limits<Integer>::max())
                          : Integer(local[i]));
        Call().array(3, values.descriptor).checked()(form);
        EXPECT_TRUE(values.storage == right) << sizeof(Integer) << " bytes, " << failing;
    }
}

TEST(DateAndTime, FillsValues) {
    Random random(random_seed());
    for (int i = 0; i < random_rounds(50); ++i) {
        expect_values<std::int16_t>(random, f90_dateandtime2);
        expect_values<std::int32_t>(random, f90_dateandtime);
        expect_values<std::int64_t>(random, f90_dateandtime8);
    }
}

std::string too_short(int argument, int length, int least) {
    return " Argument " + std::to_string(argument) +
           " of the intrinsic function DATEANDTIME has string length " + std::to_string(length) +
           ".\n It should have string length at least " + std::to_string(least) + ".\n";
}

TEST(DateAndTime, ReportsMisuseOneArgumentAfterTheOther) {
    const std::string array = " Argument 4 of the intrinsic function DATEANDTIME is a";
    struct Case {
        std::array<int, 3> lengths;
        Shape shape;
        std::string message, date;
    };
    const Case cases[] = {
        {{7, 9, 4}, {7}, too_short(1, 7, 8), "..."},
        {{8, 9, 4}, {7}, too_short(2, 9, 10), "200"},
        {{8, 10, 0}, {7}, too_short(3, 0, 5), "200"},
        {{8, 10, -1},
         {7},
         array + "n array with 7 elements.\n It should be an array with at least 8 elements.\n",
         "200"},
        {{8, 10, 5},
         {0, 9},
         array + "n array with 0 elements.\n It should be an array with at least 8 elements.\n",
         "200"},
        {{8, 10, 5}, {8, 1}, array + " rank 2 array.\n It should be a rank 1 array.\n", "200"}};
    auto *shared = static_cast<char *>(
        mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    for (const Case &c : cases)
        for (int f = 0; f < 3; ++f) {
            const InZone zone("UTC", 0);
            std::memset(shared, '.', 128);
            f90_ArrDesc values = shaped(c.shape, bytes_of_form[f]);
            Call call = Call()
                            .slot(0, address(shared))
                            .slot(1, address(shared + 32))
                            .slot(2, address(shared + 64));
            call.array(3, values).checked();
            call.list.Result.Word1 = c.lengths[0];
            call.list.Arg1.Word1 = c.lengths[1];
            call.list.Arg2.Word1 = c.lengths[2] < 0 ? 5 : c.lengths[2];
            EXPECT_EQ(fatal_message([&] { call(forms[f]); }), report("DATEANDTIME", c.message));
            EXPECT_EQ(std::string(shared, 3), c.date);
        }
    munmap(shared, 4096);
}

} // namespace

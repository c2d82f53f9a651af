// DATE_AND_TIME: one reading of the clock for all arguments. Each argument is checked, and the
// clock asked for once more, right before it is written.
#include "clocks/seconds.h"
#include "frame/elements.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace quill {
namespace {

// ---- The reading ----------------------------------------------------------------------

struct Moment {
    std::tm local;
    std::int32_t milliseconds;
    std::int32_t minutes_west;
    bool known; // there is a local time
};

// The C library's ftime may report zone 0 always; localtime has set the zone then.
Moment read_moment() {
    const std::time_t seconds = std::time(nullptr);
    const std::tm *local = std::localtime(&seconds);
    const timeb now = read_ftime();
    const std::int32_t zone = now.timezone;
    return {local == nullptr ? std::tm{} : *local, now.millitm,
            zone != 0 ? zone : static_cast<std::int32_t>(::timezone / 60), local != nullptr};
}

bool available(const Moment &moment) { return has_clock() && moment.known; }

// ---- DATE, TIME and ZONE --------------------------------------------------------------

// Text, and blanks behind it; of a string that is too short no more is written.
void fill(const f90_Slot &string, const char *text, std::size_t length) {
    const auto to = reinterpret_cast<char *>(string.Word0);
    const std::size_t written = std::min<std::size_t>(length, string.Word1);
    std::memcpy(to, text, written);
    std::memset(to + written, ' ', string.Word1 - written);
}

void check_length(const f90_ArgList &list, int argument, const f90_Slot &string, int least) {
    if (checks_wanted(list) && string.Word1 < static_cast<std::uint32_t>(least))
        f90_ArrLibError("DATEANDTIME", 1, argument, static_cast<std::int32_t>(string.Word1), least);
}

using Write = int(const Moment &moment, char *text); // the length of what it has written

void answer_text(const f90_ArgList &list, int argument, const f90_Slot &string, int least,
                 const Moment &moment, Write *write) {
    check_length(list, argument, string, least);
    char text[64];
    const int length = available(moment) ? write(moment, text) : 0;
    fill(string, text, static_cast<std::size_t>(length));
}

int write_date(const Moment &moment, char *text) {
    return static_cast<int>(std::strftime(text, 9, "%Y%m%d", &moment.local));
}

int write_time(const Moment &moment, char *text) {
    std::strftime(text, 8, "%H%M%S.", &moment.local);
    std::sprintf(text + 7, "%03i", moment.milliseconds);
    return 10;
}

void write_two_digits(char *text, std::int32_t number) {
    char digits[12];
    std::sprintf(digits, "%02i", std::abs(number));
    std::memcpy(text, digits, 2);
}

// A zone west of Greenwich reads as negative.
int write_zone(const Moment &moment, char *text) {
    text[0] = moment.minutes_west > 0 ? '-' : '+';
    write_two_digits(text + 1, moment.minutes_west / 60);
    write_two_digits(text + 3, moment.minutes_west % 60);
    return 5;
}

// ---- VALUES ---------------------------------------------------------------------------

void check_values(const f90_ArrDesc &values) {
    const auto elements =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(values.Dim[0].Upper) -
                                  static_cast<std::uint32_t>(values.Dim[0].Lower) + 1U);
    if (elements < 8) f90_ArrLibError("DATEANDTIME", 2, elements);
    if (values.RANK != 1) f90_ArrLibError("DATEANDTIME", 3, std::int32_t{values.RANK});
}

template <class Integer> void answer_values(const f90_ArrDesc &values, const Moment &moment) {
    using Stored = std::make_unsigned_t<Integer>;
    const auto store_element = [&](std::int32_t i, Integer element) {
        store(base(values) + i * byte_step(values, 0), static_cast<Stored>(element));
    };
    if (!available(moment)) {
        for (std::int32_t i = 0; i < extent(values.Dim[0]); ++i)
            store_element(i, -std::numeric_limits<Integer>::max());
        return;
    }
    const std::tm &local = moment.local;
    const std::int32_t elements[] = {local.tm_year + 1900, local.tm_mon + 1,   local.tm_mday,
                                     -moment.minutes_west, local.tm_hour,      local.tm_min,
                                     local.tm_sec,         moment.milliseconds};
    for (std::int32_t i = 0; i < 8; ++i) store_element(i, static_cast<Integer>(elements[i]));
}

// ---- DATE_AND_TIME --------------------------------------------------------------------

template <class Integer> void date_and_time(const f90_ArgList *list) {
    const Moment moment = read_moment();
    if (result_given(*list)) answer_text(*list, 1, list->Result, 8, moment, write_date);
    if (argument_given(*list, 1)) answer_text(*list, 2, list->Arg1, 10, moment, write_time);
    if (argument_given(*list, 2)) answer_text(*list, 3, list->Arg2, 5, moment, write_zone);
    if (!argument_given(*list, 3)) return;
    const f90_ArrDesc &values = descriptor(list->Arg3);
    if (checks_wanted(*list)) check_values(values);
    answer_values<Integer>(values, moment);
}

} // namespace
} // namespace quill

extern "C" {

void f90_dateandtime2(f90_ArgList *list) { quill::date_and_time<std::int16_t>(list); }
void f90_dateandtime(f90_ArgList *list) { quill::date_and_time<std::int32_t>(list); }
void f90_dateandtime8(f90_ArgList *list) { quill::date_and_time<std::int64_t>(list); }

} // extern "C"

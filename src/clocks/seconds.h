// What SYSTEM_CLOCK and DATE_AND_TIME share: the C library's old clock, and the sign that there
// is none.
#pragma once

#include <ctime>
#include <sys/timeb.h>

namespace quill {

inline bool has_clock() { return std::clock() >= 0; }

// Seconds, milliseconds and zone. Programs may have an ftime of their own, which is asked
// although the C library's header would have another function used.
inline timeb read_ftime() {
    timeb now = {};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    ftime(&now);
#pragma GCC diagnostic pop
    return now;
}

} // namespace quill

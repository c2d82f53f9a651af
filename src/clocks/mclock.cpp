// mclock_: milliseconds of the process's user time and of all time of the children that it has
// waited for. Its own system time does not count.
#include "frame/records.h"

#include <sys/times.h>
#include <unistd.h>

extern "C" std::int32_t mclock_(void) {
    tms used = {};
    if (times(&used) == -1) return -1;
    const auto ticks = static_cast<std::uint32_t>(used.tms_utime) +
                       static_cast<std::uint32_t>(used.tms_cutime) +
                       static_cast<std::uint32_t>(used.tms_cstime);
    return static_cast<std::int32_t>(ticks * 1000U) / sysconf(_SC_CLK_TCK);
}

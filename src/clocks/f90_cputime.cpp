// CPU_TIME: the processor's clock, elapsed time rather than the process's own.
#include "frame/elements.h"

#include <limits>

namespace quill {
namespace {

// No kind gets more than kind 4 can hold.
double cpu_time() {
    constexpr double greatest = std::numeric_limits<float>::max();
    const double seconds = QUILLf90_dclock();
    return seconds > greatest ? greatest : seconds;
}

template <class Real> void store_cpu_time(void *time) {
    store(static_cast<Bytes>(time), static_cast<Real>(cpu_time()));
}

} // namespace
} // namespace quill

extern "C" {

void f90_cputime4(float *time) { quill::store_cpu_time<quill::Real4>(time); }
void f90_cputime8(double *time) { quill::store_cpu_time<quill::Real8>(time); }
void f90_cputime10(long double *time) { quill::store_cpu_time<quill::Real10>(time); }
void f90_cputime16(f90_Real16 *time) { quill::store_cpu_time<quill::Real16>(time); }

} // extern "C"

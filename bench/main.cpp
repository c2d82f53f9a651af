// quillfn_bench [FILTER]: the library beside gfortran's intrinsics, compiled with
// -O2 and with -O3 -march=native -mfpmath=sse, matrix products beside OpenBLAS too
// where it is installed, plain moves beside memcpy. Runs the rows whose name contains
// FILTER. A time is that of one call whose argument record is already filled, but of intrinsics
// of one number that of as many calls as the size says.
#include "families.h"
#include "openblas.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

std::string processor() {
    std::ifstream cpuinfo("/proc/cpuinfo");
    for (std::string line; std::getline(cpuinfo, line);)
        if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
    return "unknown";
}

} // namespace

int main(int argc, char **argv) {
    if (argc > 2) {
        std::fprintf(stderr, "usage: %s [FILTER]\n", argv[0]);
        return EXIT_FAILURE;
    }
    bench::Table table{argc == 2 ? argv[1] : ""};
    std::printf("Processor: %s\n", processor().c_str());
    std::printf("ratio: time of the better peer / our time; above 1 the library is faster\n");
    std::printf("O2 behind it: of peer O2, because peer O3 sums in a narrower format\n");
    std::printf("second ratio: time of the reference named behind it / our time. %s\n\n",
                bench::openblas_version().c_str());
    bench::print_heading();
    bench::bench_reductions(table);
    bench::bench_extrema(table);
    bench::bench_dot_product(table);
    bench::bench_matmul(table);
    bench::bench_shifts(table);
    bench::bench_packing(table);
    bench::bench_shaping(table);
    bench::bench_transfer(table);
    bench::bench_characters(table);
    bench::bench_scalars(table);
    if (table.rows == 0) {
        std::fprintf(stderr, "no row's name contains \"%s\"\n", table.filter);
        return EXIT_FAILURE;
    }
    bench::print_summary(table);
    return EXIT_SUCCESS;
}

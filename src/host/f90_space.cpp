// Storage of results and temporaries, over malloc and free. A program or a
// run-time loaded earlier replaces both by defining them.
#include "quillfn/quillfn.h"

#include <cstdio>
#include <cstdlib>

extern "C" {

void *f90_getspace(std::size_t bytes) {
    void *space = std::malloc(bytes == 0 ? 1 : bytes);
    if (space == nullptr) {
        std::fprintf(stderr, "f90_getspace: no storage for %zu bytes.\n", bytes);
        std::fflush(stderr);
        std::exit(EXIT_FAILURE);
    }
    return space;
}

void f90_freespace(void *space) { std::free(space); }

} // extern "C"

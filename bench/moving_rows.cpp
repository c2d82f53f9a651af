// The storage of rows that move elements, memcpy's part, and the comparison of results.
#include "moving_rows.h"

#include <cstring>

namespace bench::moving {

namespace {

Storage storage_for_all() {
    constexpr std::size_t most_words = most_bytes / 4 + more_words;
    Storage storage{allocate(most_bytes), allocate(most_words * 4), allocate(most_bytes), {}};
    for (void *&result : storage.results) result = allocate(most_bytes);
    return storage;
}

} // namespace

const Storage &shared_storage() {
    static const Storage all = storage_for_all();
    return all;
}

Repeated copies(std::size_t bytes) {
    const Storage &storage = shared_storage();
    return repeated([bytes, to = storage.results[Reference], from = storage.first] {
        std::memcpy(to, from, bytes);
    });
}

std::function<bool(Contestant)> same_bytes(std::size_t bytes) {
    return [bytes, &storage = shared_storage()](Contestant peer) {
        const void *expected = peer == Reference ? storage.first : storage.results[Ours];
        return std::memcmp(storage.results[peer], expected, bytes) == 0;
    };
}

} // namespace bench::moving

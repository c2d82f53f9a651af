// The storage of rows that move elements, memcpy's part, the comparison of results, and the
// contest.
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

void run_move(Table &table, const Move &move) {
    const Storage &storage = shared_storage();
    const auto peer_call = [&](Peer *peer, Contestant contestant) {
        return repeated([=, rows = move.rows, columns = move.columns, count = move.count,
                         to = storage.results[contestant]] {
            peer(storage.first, storage.second, storage.third, rows, columns, count, to);
        });
    };
    const auto our_call = repeated([ours = move.ours, list = move.list] { ours(list); });
    run(table, {move.name,
                move.size,
                {our_call, peer_call(move.peers.o2, PeerO2), peer_call(move.peers.o3, PeerO3),
                 move.reference},
                move.agrees,
                Rival::Better,
                "memcpy"});
}

} // namespace bench::moving

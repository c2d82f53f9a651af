// What the rows of most families have in common: how peers are declared, and shapes. A row
// is run for each of its shapes.
#pragma once

#include "data.h"

#include <string>
#include <vector>

namespace bench {

// The Peers of a family: its Peer NAME, compiled as each of the competitors.
#define PEERS(NAME)                                                                                \
    extern "C" Peer o2_##NAME, o3_##NAME;                                                          \
    static constexpr Peers NAME { o2_##NAME, o3_##NAME }

struct Shape {
    const char *suffix; // of the row's name
    const char *size;
    std::int32_t bytes; // of a vector whose length is not given
    std::int32_t rows;
    std::int32_t columns;
    std::int32_t dim;
    std::int32_t planes = 0; // of rank 3 alone

    std::int32_t rows_of(const Kind &element) const {
        return bytes == 0 ? rows : bytes / static_cast<std::int32_t>(element.size());
    }
};
using Shapes = std::vector<Shape>;

constexpr std::int32_t most_bytes = 96 << 20; // well beyond the last cache
inline const Shape l1 = {" L1", "24 KiB", 24 << 10, 0, 1, 0};
inline const Shape l2 = {" L2", "256 KiB", 256 << 10, 0, 1, 0};
inline const Shapes first_cache = {l1};
inline const Shapes second_cache = {l2};
inline const Shapes caches = {l1, l2, {" RAM", "96 MiB", most_bytes, 0, 1, 0}};
inline const Shapes dim1 = {{" dim=1", "500x500", 0, 500, 500, 1}};
inline const Shapes dim2 = {{" dim=2", "500x500", 0, 500, 500, 2}};
inline const Shapes ten = {{"", "10", 0, 10, 1, 0}};

inline std::string full_name(const std::string &row, const Shape &shape) {
    return row + shape.suffix;
}

} // namespace bench

// What the families of reductions have in common: peers, shapes, storage, and rows
// of one array. A row names the library's entry, the peers, the data and how they
// lie; it is run for each of its shapes.
#pragma once

#include "harness.h"
#include "rows.h"

#include <span>

namespace bench {

// ---- Peers ------------------------------------------------------------------

// `other` is the MASK, or VECTOR_B.
using Peer = void(const void *array, const void *other, std::int32_t rows, std::int32_t columns,
                  std::int32_t dim, void *result);

struct Peers {
    Peer *o2;
    Peer *o3;
};

// ---- Shapes -----------------------------------------------------------------

extern const Shapes middle_row, square, oblong;

// ---- Storage ----------------------------------------------------------------

struct Storage {
    void *array;
    void *other; // a MASK, or VECTOR_B
    void *results[contestants];
};

// One for all rows.
const Storage &shared_storage();

// ---- Rows of one array ------------------------------------------------------

// How the reduced elements lie in the storage.
enum class Form {
    Whole,       // a vector
    Masked,      // a vector under a MASK of which half is true
    EverySecond, // element 1, 3, ... of a vector
    MatrixRow,   // row number `dim` of a matrix
    Along        // dimension `dim` of a matrix
};

struct Row {
    const char *name;
    f90_Intrinsic *ours;
    Peers peers;
    const Kind &element;
    const Kind &result;
    Values values;
    Form form;
    const Shapes &shapes;
};

// What the result without DIM is.
enum class Answer { Value, Location };

void run_rows(Table &table, std::span<const Row> rows, Answer answer);

} // namespace bench

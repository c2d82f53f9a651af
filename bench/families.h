// The families of the benchmark: each runs its rows of the table.
#pragma once

#include "harness.h"

namespace bench {

void bench_reductions(Table &table);
void bench_extrema(Table &table);
void bench_dot_product(Table &table);
void bench_matmul(Table &table);
void bench_shifts(Table &table);
void bench_packing(Table &table);
void bench_shaping(Table &table);
void bench_transfer(Table &table);
void bench_characters(Table &table);
void bench_scalars(Table &table);

} // namespace bench

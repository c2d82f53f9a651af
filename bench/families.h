// The families of the benchmark: each runs its rows of the table.
#pragma once

#include "harness.h"

namespace bench {

void bench_reductions(Table &table);

} // namespace bench

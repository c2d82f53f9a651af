// The rows of MAXVAL, MINVAL, MAXLOC and MINLOC.
#include "families.h"
#include "reduction_rows.h"

namespace bench {

// clang-format off
PEERS(maxval_i1); PEERS(maxval_i2); PEERS(maxval_i4); PEERS(maxval_i8); PEERS(maxval_r4);
PEERS(maxval_r8); PEERS(maxval_r10); PEERS(maxval_r16); PEERS(minval_i1); PEERS(minval_i2);
PEERS(minval_i4); PEERS(minval_i8); PEERS(minval_r4); PEERS(minval_r8); PEERS(minval_r10);
PEERS(minval_r16); PEERS(maxloc_i1); PEERS(maxloc_i2); PEERS(maxloc_i4); PEERS(maxloc_i8);
PEERS(maxloc_r4); PEERS(maxloc_r8); PEERS(maxloc_r10); PEERS(maxloc_r16); PEERS(minloc_i1);
PEERS(minloc_i2); PEERS(minloc_i4); PEERS(minloc_i8); PEERS(minloc_r4); PEERS(minloc_r8);
PEERS(minloc_r10); PEERS(minloc_r16); PEERS(maxval_i4_masked); PEERS(maxval_r4_masked);
PEERS(maxval_r8_masked); PEERS(minval_r8_masked); PEERS(maxloc_i4_masked); PEERS(maxloc_r8_masked);
PEERS(maxval_r8_second); PEERS(maxval_r8_row); PEERS(maxval_i4_dim1); PEERS(maxval_i4_dim2);
PEERS(maxval_r4_dim1); PEERS(maxval_r4_dim2); PEERS(maxval_r8_dim1); PEERS(maxval_r8_dim2);
PEERS(minval_r8_dim1); PEERS(minval_r8_dim2); PEERS(maxloc_i4_dim1); PEERS(maxloc_i4_dim2);
PEERS(maxloc_r8_dim1); PEERS(maxloc_r8_dim2); PEERS(maxval_r8_dim); PEERS(minval_r8_dim);
PEERS(maxloc_i4_dim); PEERS(maxloc_r8_dim);

namespace {

const Row value_rows[] = {
    {"maxval i1 whole", f90_maxvali1, maxval_i1, int1, int1, Values::Spread, Form::Whole, caches},
    {"maxval i2 whole", f90_maxvali2, maxval_i2, int2, int2, Values::Spread, Form::Whole, caches},
    {"maxval i4 whole", f90_maxvali4, maxval_i4, int4, int4, Values::Spread, Form::Whole, caches},
    {"maxval i8 whole", f90_maxvali8, maxval_i8, int8, int8, Values::Spread, Form::Whole, caches},
    {"maxval r4 whole", f90_maxvalr4, maxval_r4, real4, real4, Values::Spread, Form::Whole, caches},
    {"maxval r8 whole", f90_maxvalr8, maxval_r8, real8, real8, Values::Spread, Form::Whole, caches},
    {"maxval r10 whole", f90_maxvalr10, maxval_r10, real10, real10, Values::Spread, Form::Whole, caches},
    {"maxval r16 whole", f90_maxvalr16, maxval_r16, real16, real16, Values::Spread, Form::Whole, first_cache},
    {"minval i1 whole", f90_minvali1, minval_i1, int1, int1, Values::Spread, Form::Whole, caches},
    {"minval i2 whole", f90_minvali2, minval_i2, int2, int2, Values::Spread, Form::Whole, caches},
    {"minval i4 whole", f90_minvali4, minval_i4, int4, int4, Values::Spread, Form::Whole, caches},
    {"minval i8 whole", f90_minvali8, minval_i8, int8, int8, Values::Spread, Form::Whole, caches},
    {"minval r4 whole", f90_minvalr4, minval_r4, real4, real4, Values::Spread, Form::Whole, caches},
    {"minval r8 whole", f90_minvalr8, minval_r8, real8, real8, Values::Spread, Form::Whole, caches},
    {"minval r10 whole", f90_minvalr10, minval_r10, real10, real10, Values::Spread, Form::Whole, caches},
    {"minval r16 whole", f90_minvalr16, minval_r16, real16, real16, Values::Spread, Form::Whole, first_cache},

    {"maxval i4", f90_maxvali4, maxval_i4_dim1, int4, int4, Values::Spread, Form::Along, dim1},
    {"maxval i4", f90_maxvali4, maxval_i4_dim2, int4, int4, Values::Spread, Form::Along, dim2},
    {"maxval r4", f90_maxvalr4, maxval_r4_dim1, real4, real4, Values::Spread, Form::Along, dim1},
    {"maxval r4", f90_maxvalr4, maxval_r4_dim2, real4, real4, Values::Spread, Form::Along, dim2},
    {"maxval r8", f90_maxvalr8, maxval_r8_dim1, real8, real8, Values::Spread, Form::Along, dim1},
    {"maxval r8", f90_maxvalr8, maxval_r8_dim2, real8, real8, Values::Spread, Form::Along, dim2},
    {"minval r8", f90_minvalr8, minval_r8_dim1, real8, real8, Values::Spread, Form::Along, dim1},
    {"minval r8", f90_minvalr8, minval_r8_dim2, real8, real8, Values::Spread, Form::Along, dim2},
    {"maxval r8 variable", f90_maxvalr8, maxval_r8_dim, real8, real8, Values::Spread, Form::Along, dim1},
    {"maxval r8 variable", f90_maxvalr8, maxval_r8_dim, real8, real8, Values::Spread, Form::Along, dim2},
    {"minval r8 variable", f90_minvalr8, minval_r8_dim, real8, real8, Values::Spread, Form::Along, dim1},
    {"minval r8 variable", f90_minvalr8, minval_r8_dim, real8, real8, Values::Spread, Form::Along, dim2},

    {"maxval i4 masked", f90_maxvali4, maxval_i4_masked, int4, int4, Values::Spread, Form::Masked, caches},
    {"maxval r4 masked", f90_maxvalr4, maxval_r4_masked, real4, real4, Values::Spread, Form::Masked, caches},
    {"maxval r8 masked", f90_maxvalr8, maxval_r8_masked, real8, real8, Values::Spread, Form::Masked, caches},
    {"minval r8 masked", f90_minvalr8, minval_r8_masked, real8, real8, Values::Spread, Form::Masked, caches},

    {"maxval r8 second", f90_maxvalr8, maxval_r8_second, real8, real8, Values::Spread, Form::EverySecond, caches},
    {"maxval r8 row", f90_maxvalr8, maxval_r8_row, real8, real8, Values::Spread, Form::MatrixRow, middle_row},

    {"small maxval i4", f90_maxvali4, maxval_i4, int4, int4, Values::Spread, Form::Whole, ten},
    {"small maxval r8", f90_maxvalr8, maxval_r8, real8, real8, Values::Spread, Form::Whole, ten},
    {"small maxval r8", f90_maxvalr8, maxval_r8_dim, real8, real8, Values::Spread, Form::Along, square},
};

const Row location_rows[] = {
    {"maxloc i1 whole", f90_maxloci1, maxloc_i1, int1, int4, Values::Spread, Form::Whole, caches},
    {"maxloc i2 whole", f90_maxloci2, maxloc_i2, int2, int4, Values::Spread, Form::Whole, caches},
    {"maxloc i4 whole", f90_maxloci4, maxloc_i4, int4, int4, Values::Spread, Form::Whole, caches},
    {"maxloc i8 whole", f90_maxloci8, maxloc_i8, int8, int4, Values::Spread, Form::Whole, caches},
    {"maxloc r4 whole", f90_maxlocr4, maxloc_r4, real4, int4, Values::Spread, Form::Whole, caches},
    {"maxloc r8 whole", f90_maxlocr8, maxloc_r8, real8, int4, Values::Spread, Form::Whole, caches},
    {"maxloc r10 whole", f90_maxlocr10, maxloc_r10, real10, int4, Values::Spread, Form::Whole, first_cache},
    {"maxloc r16 whole", f90_maxlocr16, maxloc_r16, real16, int4, Values::Spread, Form::Whole, first_cache},
    {"minloc i1 whole", f90_minloci1, minloc_i1, int1, int4, Values::Spread, Form::Whole, caches},
    {"minloc i2 whole", f90_minloci2, minloc_i2, int2, int4, Values::Spread, Form::Whole, caches},
    {"minloc i4 whole", f90_minloci4, minloc_i4, int4, int4, Values::Spread, Form::Whole, caches},
    {"minloc i8 whole", f90_minloci8, minloc_i8, int8, int4, Values::Spread, Form::Whole, caches},
    {"minloc r4 whole", f90_minlocr4, minloc_r4, real4, int4, Values::Spread, Form::Whole, caches},
    {"minloc r8 whole", f90_minlocr8, minloc_r8, real8, int4, Values::Spread, Form::Whole, caches},
    {"minloc r10 whole", f90_minlocr10, minloc_r10, real10, int4, Values::Spread, Form::Whole, first_cache},
    {"minloc r16 whole", f90_minlocr16, minloc_r16, real16, int4, Values::Spread, Form::Whole, first_cache},
    // Every element is the largest so far.
    {"maxloc i4 ascending", f90_maxloci4, maxloc_i4, int4, int4, Values::Ascending, Form::Whole, first_cache},
    {"maxloc r8 ascending", f90_maxlocr8, maxloc_r8, real8, int4, Values::Ascending, Form::Whole, first_cache},

    {"maxloc i4", f90_maxloci4, maxloc_i4_dim1, int4, int4, Values::Spread, Form::Along, dim1},
    {"maxloc i4", f90_maxloci4, maxloc_i4_dim2, int4, int4, Values::Spread, Form::Along, dim2},
    {"maxloc r8", f90_maxlocr8, maxloc_r8_dim1, real8, int4, Values::Spread, Form::Along, dim1},
    {"maxloc r8", f90_maxlocr8, maxloc_r8_dim2, real8, int4, Values::Spread, Form::Along, dim2},
    {"maxloc i4 variable", f90_maxloci4, maxloc_i4_dim, int4, int4, Values::Spread, Form::Along, dim1},
    {"maxloc i4 variable", f90_maxloci4, maxloc_i4_dim, int4, int4, Values::Spread, Form::Along, dim2},
    {"maxloc r8 variable", f90_maxlocr8, maxloc_r8_dim, real8, int4, Values::Spread, Form::Along, dim1},
    {"maxloc r8 variable", f90_maxlocr8, maxloc_r8_dim, real8, int4, Values::Spread, Form::Along, dim2},

    {"maxloc i4 masked", f90_maxloci4, maxloc_i4_masked, int4, int4, Values::Spread, Form::Masked, caches},
    {"maxloc r8 masked", f90_maxlocr8, maxloc_r8_masked, real8, int4, Values::Spread, Form::Masked, caches},

    {"small maxloc i4", f90_maxloci4, maxloc_i4, int4, int4, Values::Spread, Form::Whole, ten},
    {"small maxloc r8", f90_maxlocr8, maxloc_r8, real8, int4, Values::Spread, Form::Whole, ten},
    {"small maxloc r8", f90_maxlocr8, maxloc_r8_dim, real8, int4, Values::Spread, Form::Along, square},
};

} // namespace
// clang-format on

void bench_extrema(Table &table) {
    run_rows(table, value_rows, Answer::Value);
    run_rows(table, location_rows, Answer::Location);
}

} // namespace bench

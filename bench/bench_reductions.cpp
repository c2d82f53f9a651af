// The rows of SUM, PRODUCT, COUNT, ALL and ANY.
#include "families.h"
#include "reduction_rows.h"

namespace bench {

// clang-format off
PEERS(sum_r4); PEERS(sum_r8); PEERS(sum_r10); PEERS(sum_r16); PEERS(sum_c8); PEERS(sum_c16);
PEERS(sum_i1); PEERS(sum_i2); PEERS(sum_i4); PEERS(sum_i8); PEERS(product_r4); PEERS(product_r8);
PEERS(product_r10); PEERS(product_r16); PEERS(product_c8); PEERS(product_c16); PEERS(product_i4);
PEERS(count_l1); PEERS(count_l2); PEERS(count_l4); PEERS(count_l8); PEERS(all_l1); PEERS(all_l2);
PEERS(all_l4); PEERS(all_l8); PEERS(any_l1); PEERS(any_l2); PEERS(any_l4); PEERS(any_l8);
PEERS(sum_r4_masked); PEERS(sum_r8_masked); PEERS(sum_c16_masked); PEERS(sum_i4_masked);
PEERS(product_r8_masked); PEERS(sum_r4_second); PEERS(sum_r8_second); PEERS(sum_i4_second);
PEERS(count_l4_second); PEERS(sum_r8_row); PEERS(sum_r4_dim1); PEERS(sum_r4_dim2);
PEERS(sum_r8_dim1); PEERS(sum_r8_dim2); PEERS(sum_i4_dim1); PEERS(sum_i4_dim2);
PEERS(count_l4_dim1); PEERS(count_l4_dim2); PEERS(sum_r8_dim); PEERS(sum_i4_dim);
PEERS(count_l4_dim);

namespace {

const Row rows[] = {
    {"sum r4 whole", f90_sumr4, sum_r4, real4, real4, Values::Sixteenths, Form::Whole, caches},
    {"sum r8 whole", f90_sumr8, sum_r8, real8, real8, Values::Sixteenths, Form::Whole, caches},
    {"sum r10 whole", f90_sumr10, sum_r10, real10, real10, Values::Sixteenths, Form::Whole, caches},
    {"sum r16 whole", f90_sumr16, sum_r16, real16, real16, Values::Sixteenths, Form::Whole, first_cache},
    {"sum c8 whole", f90_sumc8, sum_c8, complex8, complex8, Values::Sixteenths, Form::Whole, caches},
    {"sum c16 whole", f90_sumc16, sum_c16, complex16, complex16, Values::Sixteenths, Form::Whole, caches},
    {"sum i1 whole", f90_sumi1, sum_i1, int1, int1, Values::Integers, Form::Whole, caches},
    {"sum i2 whole", f90_sumi2, sum_i2, int2, int2, Values::Integers, Form::Whole, caches},
    {"sum i4 whole", f90_sumi4, sum_i4, int4, int4, Values::Integers, Form::Whole, caches},
    {"sum i8 whole", f90_sumi8, sum_i8, int8, int8, Values::Integers, Form::Whole, caches},

    {"product r4 whole", f90_prodr4, product_r4, real4, real4, Values::NearOne, Form::Whole, caches},
    {"product r8 whole", f90_prodr8, product_r8, real8, real8, Values::NearOne, Form::Whole, caches},
    {"product r10 whole", f90_prodr10, product_r10, real10, real10, Values::NearOne, Form::Whole, caches},
    {"product r16 whole", f90_prodr16, product_r16, real16, real16, Values::NearOne, Form::Whole, first_cache},
    {"product c8 whole", f90_prodc8, product_c8, complex8, complex8, Values::NearOne, Form::Whole, caches},
    {"product c16 whole", f90_prodc16, product_c16, complex16, complex16, Values::NearOne, Form::Whole, caches},
    {"product i4 whole", f90_prodi4, product_i4, int4, int4, Values::OddIntegers, Form::Whole, caches},

    {"sum r4", f90_sumr4, sum_r4_dim1, real4, real4, Values::Sixteenths, Form::Along, dim1},
    {"sum r4", f90_sumr4, sum_r4_dim2, real4, real4, Values::Sixteenths, Form::Along, dim2},
    {"sum r8", f90_sumr8, sum_r8_dim1, real8, real8, Values::Sixteenths, Form::Along, dim1},
    {"sum r8", f90_sumr8, sum_r8_dim2, real8, real8, Values::Sixteenths, Form::Along, dim2},
    {"sum i4", f90_sumi4, sum_i4_dim1, int4, int4, Values::Integers, Form::Along, dim1},
    {"sum i4", f90_sumi4, sum_i4_dim2, int4, int4, Values::Integers, Form::Along, dim2},
    // With a DIM that is known at run time only, the peer calls its library.
    {"sum r8 variable", f90_sumr8, sum_r8_dim, real8, real8, Values::Sixteenths, Form::Along, dim1},
    {"sum r8 variable", f90_sumr8, sum_r8_dim, real8, real8, Values::Sixteenths, Form::Along, dim2},
    {"sum i4 variable", f90_sumi4, sum_i4_dim, int4, int4, Values::Integers, Form::Along, dim1},
    {"sum i4 variable", f90_sumi4, sum_i4_dim, int4, int4, Values::Integers, Form::Along, dim2},

    {"sum r4 masked", f90_sumr4, sum_r4_masked, real4, real4, Values::Sixteenths, Form::Masked, caches},
    {"sum r8 masked", f90_sumr8, sum_r8_masked, real8, real8, Values::Sixteenths, Form::Masked, caches},
    {"sum c16 masked", f90_sumc16, sum_c16_masked, complex16, complex16, Values::Sixteenths, Form::Masked, caches},
    {"sum i4 masked", f90_sumi4, sum_i4_masked, int4, int4, Values::Integers, Form::Masked, caches},
    {"product r8 masked", f90_prodr8, product_r8_masked, real8, real8, Values::NearOne, Form::Masked, caches},

    {"count l1 whole", f90_count1, count_l1, int1, int4, Values::Coins, Form::Whole, caches},
    {"count l2 whole", f90_count2, count_l2, int2, int4, Values::Coins, Form::Whole, caches},
    {"count l4 whole", f90_count4, count_l4, int4, int4, Values::Coins, Form::Whole, caches},
    {"count l8 whole", f90_count8, count_l8, int8, int4, Values::Coins, Form::Whole, caches},
    {"count l4", f90_count4, count_l4_dim1, int4, int4, Values::Coins, Form::Along, dim1},
    {"count l4", f90_count4, count_l4_dim2, int4, int4, Values::Coins, Form::Along, dim2},

    {"all l1 whole", f90_all1, all_l1, int1, int1, Values::AllTrue, Form::Whole, caches},
    {"all l2 whole", f90_all2, all_l2, int2, int2, Values::AllTrue, Form::Whole, caches},
    {"all l4 whole", f90_all4, all_l4, int4, int4, Values::AllTrue, Form::Whole, caches},
    {"all l8 whole", f90_all8, all_l8, int8, int8, Values::AllTrue, Form::Whole, caches},
    {"any l1 whole", f90_any1, any_l1, int1, int1, Values::AllFalse, Form::Whole, caches},
    {"any l2 whole", f90_any2, any_l2, int2, int2, Values::AllFalse, Form::Whole, caches},
    {"any l4 whole", f90_any4, any_l4, int4, int4, Values::AllFalse, Form::Whole, caches},
    {"any l8 whole", f90_any8, any_l8, int8, int8, Values::AllFalse, Form::Whole, caches},

    {"sum r4 second", f90_sumr4, sum_r4_second, real4, real4, Values::Sixteenths, Form::EverySecond, caches},
    {"sum r8 second", f90_sumr8, sum_r8_second, real8, real8, Values::Sixteenths, Form::EverySecond, caches},
    {"sum i4 second", f90_sumi4, sum_i4_second, int4, int4, Values::Integers, Form::EverySecond, caches},
    {"count l4 second", f90_count4, count_l4_second, int4, int4, Values::Coins, Form::EverySecond, caches},
    {"sum r8 row", f90_sumr8, sum_r8_row, real8, real8, Values::Sixteenths, Form::MatrixRow, middle_row},

    {"small sum r8", f90_sumr8, sum_r8, real8, real8, Values::Sixteenths, Form::Whole, ten},
    {"small sum r8", f90_sumr8, sum_r8_dim, real8, real8, Values::Sixteenths, Form::Along, square},
    {"small sum i4", f90_sumi4, sum_i4_dim, int4, int4, Values::Integers, Form::Along, square},
    {"small count l4", f90_count4, count_l4, int4, int4, Values::Coins, Form::Whole, ten},
    {"small count l4", f90_count4, count_l4_dim, int4, int4, Values::Coins, Form::Along, oblong},
    {"small all l4", f90_all4, all_l4, int4, int4, Values::AllTrue, Form::Whole, ten},
};

} // namespace
// clang-format on

void bench_reductions(Table &table) { run_rows(table, rows, Answer::Value); }

} // namespace bench

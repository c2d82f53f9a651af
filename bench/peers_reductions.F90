! The peers of SUM, PRODUCT, COUNT, ALL and ANY.
#include "peers.inc"

! ---- Whole arrays -------------------------------------------------------------

REDUCTION(sum_r4, real(4) :: a(rows), real(4) :: r, sum(a))
REDUCTION(sum_r8, real(8) :: a(rows), real(8) :: r, sum(a))
REDUCTION(sum_r10, real(10) :: a(rows), real(10) :: r, sum(a))
REDUCTION(sum_r16, real(16) :: a(rows), real(16) :: r, sum(a))
REDUCTION(sum_c8, complex(4) :: a(rows), complex(4) :: r, sum(a))
REDUCTION(sum_c16, complex(8) :: a(rows), complex(8) :: r, sum(a))
REDUCTION(sum_i1, integer(1) :: a(rows), integer(1) :: r, sum(a))
REDUCTION(sum_i2, integer(2) :: a(rows), integer(2) :: r, sum(a))
REDUCTION(sum_i4, integer(4) :: a(rows), integer(4) :: r, sum(a))
REDUCTION(sum_i8, integer(8) :: a(rows), integer(8) :: r, sum(a))

REDUCTION(product_r4, real(4) :: a(rows), real(4) :: r, product(a))
REDUCTION(product_r8, real(8) :: a(rows), real(8) :: r, product(a))
REDUCTION(product_r10, real(10) :: a(rows), real(10) :: r, product(a))
REDUCTION(product_r16, real(16) :: a(rows), real(16) :: r, product(a))
REDUCTION(product_c8, complex(4) :: a(rows), complex(4) :: r, product(a))
REDUCTION(product_c16, complex(8) :: a(rows), complex(8) :: r, product(a))
REDUCTION(product_i4, integer(4) :: a(rows), integer(4) :: r, product(a))

REDUCTION(count_l1, logical(1) :: a(rows), integer(4) :: r, count(a))
REDUCTION(count_l2, logical(2) :: a(rows), integer(4) :: r, count(a))
REDUCTION(count_l4, logical(4) :: a(rows), integer(4) :: r, count(a))
REDUCTION(count_l8, logical(8) :: a(rows), integer(4) :: r, count(a))

REDUCTION(all_l1, logical(1) :: a(rows), logical(1) :: r, all(a))
REDUCTION(all_l2, logical(2) :: a(rows), logical(2) :: r, all(a))
REDUCTION(all_l4, logical(4) :: a(rows), logical(4) :: r, all(a))
REDUCTION(all_l8, logical(8) :: a(rows), logical(8) :: r, all(a))

REDUCTION(any_l1, logical(1) :: a(rows), logical(1) :: r, any(a))
REDUCTION(any_l2, logical(2) :: a(rows), logical(2) :: r, any(a))
REDUCTION(any_l4, logical(4) :: a(rows), logical(4) :: r, any(a))
REDUCTION(any_l8, logical(8) :: a(rows), logical(8) :: r, any(a))

! ---- Under a mask -------------------------------------------------------------

REDUCTION(sum_r4_masked, real(4) :: a(rows), real(4) :: r, sum(a, mask=m))
REDUCTION(sum_r8_masked, real(8) :: a(rows), real(8) :: r, sum(a, mask=m))
REDUCTION(sum_c16_masked, complex(8) :: a(rows), complex(8) :: r, sum(a, mask=m))
REDUCTION(sum_i4_masked, integer(4) :: a(rows), integer(4) :: r, sum(a, mask=m))
REDUCTION(product_r8_masked, real(8) :: a(rows), real(8) :: r, product(a, mask=m))

! ---- Sections -----------------------------------------------------------------

REDUCTION(sum_r4_second, real(4) :: a(rows), real(4) :: r, sum(a(1:rows:2)))
REDUCTION(sum_r8_second, real(8) :: a(rows), real(8) :: r, sum(a(1:rows:2)))
REDUCTION(sum_i4_second, integer(4) :: a(rows), integer(4) :: r, sum(a(1:rows:2)))
REDUCTION(count_l4_second, logical(4) :: a(rows), integer(4) :: r, count(a(1:rows:2)))
REDUCTION(sum_r8_row, real(8) :: a(rows, columns), real(8) :: r, sum(a(d, :)))

! ---- Along a dimension --------------------------------------------------------

REDUCTION(sum_r4_dim1, real(4) :: a(rows, columns), real(4) :: r(columns), sum(a, dim=1))
REDUCTION(sum_r4_dim2, real(4) :: a(rows, columns), real(4) :: r(rows), sum(a, dim=2))
REDUCTION(sum_r8_dim1, real(8) :: a(rows, columns), real(8) :: r(columns), sum(a, dim=1))
REDUCTION(sum_r8_dim2, real(8) :: a(rows, columns), real(8) :: r(rows), sum(a, dim=2))
REDUCTION(sum_i4_dim1, integer(4) :: a(rows, columns), integer(4) :: r(columns), sum(a, dim=1))
REDUCTION(sum_i4_dim2, integer(4) :: a(rows, columns), integer(4) :: r(rows), sum(a, dim=2))
REDUCTION(count_l4_dim1, logical(4) :: a(rows, columns), integer(4) :: r(columns), count(a, dim=1))
REDUCTION(count_l4_dim2, logical(4) :: a(rows, columns), integer(4) :: r(rows), count(a, dim=2))

! Of a dimension known at run time only: these go to the peer's run-time library.
REDUCTION(sum_r8_dim, real(8) :: a(rows, columns), real(8) :: r(columns), sum(a, dim=d))
REDUCTION(sum_i4_dim, integer(4) :: a(rows, columns), integer(4) :: r(columns), sum(a, dim=d))
REDUCTION(count_l4_dim, logical(4) :: a(rows, columns), integer(4) :: r(columns), count(a, dim=d))

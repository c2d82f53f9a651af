! The peers of MAXVAL, MINVAL, MAXLOC and MINLOC.
#include "peers.inc"

! ---- Whole arrays -------------------------------------------------------------

REDUCTION(maxval_i1, integer(1) :: a(rows), integer(1) :: r, maxval(a))
REDUCTION(maxval_i2, integer(2) :: a(rows), integer(2) :: r, maxval(a))
REDUCTION(maxval_i4, integer(4) :: a(rows), integer(4) :: r, maxval(a))
REDUCTION(maxval_i8, integer(8) :: a(rows), integer(8) :: r, maxval(a))
REDUCTION(maxval_r4, real(4) :: a(rows), real(4) :: r, maxval(a))
REDUCTION(maxval_r8, real(8) :: a(rows), real(8) :: r, maxval(a))
REDUCTION(maxval_r10, real(10) :: a(rows), real(10) :: r, maxval(a))
REDUCTION(maxval_r16, real(16) :: a(rows), real(16) :: r, maxval(a))

REDUCTION(minval_i1, integer(1) :: a(rows), integer(1) :: r, minval(a))
REDUCTION(minval_i2, integer(2) :: a(rows), integer(2) :: r, minval(a))
REDUCTION(minval_i4, integer(4) :: a(rows), integer(4) :: r, minval(a))
REDUCTION(minval_i8, integer(8) :: a(rows), integer(8) :: r, minval(a))
REDUCTION(minval_r4, real(4) :: a(rows), real(4) :: r, minval(a))
REDUCTION(minval_r8, real(8) :: a(rows), real(8) :: r, minval(a))
REDUCTION(minval_r10, real(10) :: a(rows), real(10) :: r, minval(a))
REDUCTION(minval_r16, real(16) :: a(rows), real(16) :: r, minval(a))

REDUCTION(maxloc_i1, integer(1) :: a(rows), integer(4) :: r(1), maxloc(a))
REDUCTION(maxloc_i2, integer(2) :: a(rows), integer(4) :: r(1), maxloc(a))
REDUCTION(maxloc_i4, integer(4) :: a(rows), integer(4) :: r(1), maxloc(a))
REDUCTION(maxloc_i8, integer(8) :: a(rows), integer(4) :: r(1), maxloc(a))
REDUCTION(maxloc_r4, real(4) :: a(rows), integer(4) :: r(1), maxloc(a))
REDUCTION(maxloc_r8, real(8) :: a(rows), integer(4) :: r(1), maxloc(a))
REDUCTION(maxloc_r10, real(10) :: a(rows), integer(4) :: r(1), maxloc(a))
REDUCTION(maxloc_r16, real(16) :: a(rows), integer(4) :: r(1), maxloc(a))

REDUCTION(minloc_i1, integer(1) :: a(rows), integer(4) :: r(1), minloc(a))
REDUCTION(minloc_i2, integer(2) :: a(rows), integer(4) :: r(1), minloc(a))
REDUCTION(minloc_i4, integer(4) :: a(rows), integer(4) :: r(1), minloc(a))
REDUCTION(minloc_i8, integer(8) :: a(rows), integer(4) :: r(1), minloc(a))
REDUCTION(minloc_r4, real(4) :: a(rows), integer(4) :: r(1), minloc(a))
REDUCTION(minloc_r8, real(8) :: a(rows), integer(4) :: r(1), minloc(a))
REDUCTION(minloc_r10, real(10) :: a(rows), integer(4) :: r(1), minloc(a))
REDUCTION(minloc_r16, real(16) :: a(rows), integer(4) :: r(1), minloc(a))

! ---- Under a mask -------------------------------------------------------------

REDUCTION(maxval_i4_masked, integer(4) :: a(rows), integer(4) :: r, maxval(a, mask=m))
REDUCTION(maxval_r4_masked, real(4) :: a(rows), real(4) :: r, maxval(a, mask=m))
REDUCTION(maxval_r8_masked, real(8) :: a(rows), real(8) :: r, maxval(a, mask=m))
REDUCTION(minval_r8_masked, real(8) :: a(rows), real(8) :: r, minval(a, mask=m))
REDUCTION(maxloc_i4_masked, integer(4) :: a(rows), integer(4) :: r(1), maxloc(a, mask=m))
REDUCTION(maxloc_r8_masked, real(8) :: a(rows), integer(4) :: r(1), maxloc(a, mask=m))

! ---- Sections -----------------------------------------------------------------

REDUCTION(maxval_r8_second, real(8) :: a(rows), real(8) :: r, maxval(a(1:rows:2)))
REDUCTION(maxval_r8_row, real(8) :: a(rows, columns), real(8) :: r, maxval(a(d, :)))

! ---- Along a dimension --------------------------------------------------------

REDUCTION(maxval_i4_dim1, integer(4) :: a(rows, columns), integer(4) :: r(columns), maxval(a, dim=1))
REDUCTION(maxval_i4_dim2, integer(4) :: a(rows, columns), integer(4) :: r(rows), maxval(a, dim=2))
REDUCTION(maxval_r4_dim1, real(4) :: a(rows, columns), real(4) :: r(columns), maxval(a, dim=1))
REDUCTION(maxval_r4_dim2, real(4) :: a(rows, columns), real(4) :: r(rows), maxval(a, dim=2))
REDUCTION(maxval_r8_dim1, real(8) :: a(rows, columns), real(8) :: r(columns), maxval(a, dim=1))
REDUCTION(maxval_r8_dim2, real(8) :: a(rows, columns), real(8) :: r(rows), maxval(a, dim=2))
REDUCTION(minval_r8_dim1, real(8) :: a(rows, columns), real(8) :: r(columns), minval(a, dim=1))
REDUCTION(minval_r8_dim2, real(8) :: a(rows, columns), real(8) :: r(rows), minval(a, dim=2))
REDUCTION(maxloc_i4_dim1, integer(4) :: a(rows, columns), integer(4) :: r(columns), maxloc(a, dim=1))
REDUCTION(maxloc_i4_dim2, integer(4) :: a(rows, columns), integer(4) :: r(rows), maxloc(a, dim=2))
REDUCTION(maxloc_r8_dim1, real(8) :: a(rows, columns), integer(4) :: r(columns), maxloc(a, dim=1))
REDUCTION(maxloc_r8_dim2, real(8) :: a(rows, columns), integer(4) :: r(rows), maxloc(a, dim=2))

! Of a dimension known at run time only: these go to the peer's run-time library.
REDUCTION(maxval_r8_dim, real(8) :: a(rows, columns), real(8) :: r(columns), maxval(a, dim=d))
REDUCTION(minval_r8_dim, real(8) :: a(rows, columns), real(8) :: r(columns), minval(a, dim=d))
REDUCTION(maxloc_i4_dim, integer(4) :: a(rows, columns), integer(4) :: r(columns), maxloc(a, dim=d))
REDUCTION(maxloc_r8_dim, real(8) :: a(rows, columns), integer(4) :: r(columns), maxloc(a, dim=d))

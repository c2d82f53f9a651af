! The peers of CSHIFT and EOSHIFT: a is ARRAY, b SHIFT, c BOUNDARY. Names end with the bytes
! of an element and with what is shifted; "each" is a SHIFT for each line.
#include "peers_moving.inc"

! ---- Vectors ------------------------------------------------------------------

#define VECTORS(SIZE, TYPE) \
MOVE(cshift_/**/SIZE, TYPE, a(rows), integer(4) :: b, c, r(rows), r, cshift(a, b)) ;\
MOVE(eoshift_/**/SIZE, TYPE, a(rows), integer(4) :: b, c, r(rows), r, eoshift(a, b))

#define STRINGS(SIZE) \
MOVE_STRINGS(cshift_/**/SIZE, SIZE, integer(4) :: b, r, cshift(a, b)) ;\
MOVE_STRINGS(eoshift_/**/SIZE, SIZE, integer(4) :: b, r, eoshift(a, b, c(1)))

VECTORS(1, integer(1))
VECTORS(2, integer(2))
VECTORS(4, real(4))
VECTORS(8, real(8))
VECTORS(16, complex(8))
VECTORS(32, complex(16))
STRINGS(3)
STRINGS(10)
STRINGS(20)
STRINGS(100)

! ---- Matrices -----------------------------------------------------------------

#define SHIFT(NAME, TYPE, B, C, VALUE) \
MOVE(NAME, TYPE, a(rows, columns), integer(4) :: B, C, r(rows, columns), r, VALUE)

#define MATRICES(SIZE, TYPE) \
SHIFT(cshift_/**/SIZE/**/_dim1, TYPE, b, c, cshift(a, b, dim=1)) ;\
SHIFT(eoshift_/**/SIZE/**/_dim1, TYPE, b, c, eoshift(a, b, dim=1)) ;\
SHIFT(cshift_/**/SIZE/**/_dim2, TYPE, b, c, cshift(a, b, dim=2)) ;\
SHIFT(eoshift_/**/SIZE/**/_dim2, TYPE, b, c, eoshift(a, b, dim=2)) ;\
SHIFT(cshift_/**/SIZE/**/_dim2_each, TYPE, b(rows), c, cshift(a, b, dim=2)) ;\
SHIFT(eoshift_/**/SIZE/**/_dim2_each, TYPE, b(rows), c, eoshift(a, b, dim=2))

MATRICES(1, integer(1))
MATRICES(4, real(4))
MATRICES(8, real(8))
MATRICES(16, complex(8))

SHIFT(cshift_8_dim1_each, real(8), b(columns), c, cshift(a, b, dim=1))
SHIFT(eoshift_8_dim1_each, real(8), b(columns), c, eoshift(a, b, dim=1))
SHIFT(eoshift_8_dim2_filled, real(8), b, c, eoshift(a, b, c, dim=2))
SHIFT(eoshift_8_dim2_filled_each, real(8), b, c(rows), eoshift(a, b, c, dim=2))
SHIFT(eoshift_8_dim2_each_filled, real(8), b(rows), c, eoshift(a, b, c, dim=2))
SHIFT(eoshift_8_dim2_all_each, real(8), b(rows), c(rows), eoshift(a, b, c, dim=2))

! ---- Sections -----------------------------------------------------------------

MOVE(cshift_8_second, real(8), a(2*rows), integer(4) :: b, c, r(rows), r, cshift(a(::2), b))
MOVE(eoshift_8_second, real(8), a(2*rows), integer(4) :: b, c, r(rows), r, eoshift(a(::2), b))

#define SECOND_ROWS(NAME, VALUE) \
MOVE(NAME, real(8), a(2*rows, columns), integer(4) :: b, c, r(rows, columns), r, VALUE)

SECOND_ROWS(cshift_8_second_dim1, cshift(a(::2, :), b, dim=1))
SECOND_ROWS(eoshift_8_second_dim1, eoshift(a(::2, :), b, dim=1))
SECOND_ROWS(cshift_8_second_dim2, cshift(a(::2, :), b, dim=2))
SECOND_ROWS(eoshift_8_second_dim2, eoshift(a(::2, :), b, dim=2))

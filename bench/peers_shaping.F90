! The peers of RESHAPE, SPREAD and TRANSPOSE: a is SOURCE or MATRIX, c PAD. Names end with the
! bytes of an element and with the elements of PAD, ORDER, or DIM. The result has the extents
! rows, columns and, of rank 3, k; with PAD, SOURCE has k elements.
#include "peers_moving.inc"

#define DECLARED type, bind(c) :: twelve ; integer(4) :: words(3) ; end type ; integer(4) :: b

#define VECTOR(NAME, TYPE, A, VALUE) \
MOVE(NAME, TYPE, A, DECLARED, c, r(rows), r, VALUE)
#define MATRIX(NAME, TYPE, A, C, VALUE) \
MOVE(NAME, TYPE, A, DECLARED, C, r(rows, columns), r, VALUE)
#define CUBE(NAME, TYPE, A, VALUE) \
MOVE(NAME, TYPE, A, DECLARED, c, r(rows, columns, k), r, VALUE)

#define MEMBERS(SIZE, TYPE) \
MATRIX(reshape_/**/SIZE, TYPE, a(rows*columns), c, reshape(a, [rows, columns])) ;\
MATRIX(reshape_/**/SIZE/**/_pad1, TYPE, a(k), c(1), reshape(a, [rows, columns], pad=c)) ;\
MATRIX(reshape_/**/SIZE/**/_pad7, TYPE, a(k), c(7), reshape(a, [rows, columns], pad=c)) ;\
MATRIX(reshape_/**/SIZE/**/_21, TYPE, a(rows*columns), c, reshape(a, [rows, columns], order=[2, 1])) ;\
CUBE(reshape_/**/SIZE/**/_312, TYPE, a(rows*columns*k), reshape(a, [rows, columns, k], order=[3, 1, 2])) ;\
CUBE(reshape_/**/SIZE/**/_231, TYPE, a(rows*columns*k), reshape(a, [rows, columns, k], order=[2, 3, 1])) ;\
VECTOR(spread_/**/SIZE/**/_scalar, TYPE, a, spread(a, 1, rows)) ;\
MATRIX(spread_/**/SIZE/**/_vector1, TYPE, a(columns), c, spread(a, 1, rows)) ;\
MATRIX(spread_/**/SIZE/**/_vector2, TYPE, a(rows), c, spread(a, 2, columns)) ;\
CUBE(spread_/**/SIZE/**/_matrix1, TYPE, a(columns, k), spread(a, 1, rows)) ;\
CUBE(spread_/**/SIZE/**/_matrix2, TYPE, a(rows, k), spread(a, 2, columns)) ;\
CUBE(spread_/**/SIZE/**/_matrix3, TYPE, a(rows, columns), spread(a, 3, k)) ;\
MATRIX(transpose_/**/SIZE, TYPE, a(columns, rows), c, transpose(a)) ;\
MATRIX(transpose_/**/SIZE/**/_second, TYPE, a(2*columns, rows), c, transpose(a(::2, :)))

MEMBERS(1, integer(1))
MEMBERS(2, integer(2))
MEMBERS(4, real(4))
MEMBERS(8, real(8))
MEMBERS(12, type(twelve))
MEMBERS(16, complex(8))
MEMBERS(32, complex(16))

! The peers of PACK and UNPACK: a is ARRAY or UNPACK's VECTOR, b MASK, c VECTOR or FIELD.
! Names end with the bytes of an element. k elements are true.
#include "peers_moving.inc"

#define PACKING(NAME, TYPE, A, C, TARGET, VALUE) \
MOVE(NAME, TYPE, A, logical(4) :: b(rows), C, r(rows), TARGET, VALUE)

#define VECTORS(SIZE, TYPE) \
PACKING(pack_/**/SIZE, TYPE, a(rows), c, r(1:k), pack(a, b)) ;\
PACKING(unpack_/**/SIZE, TYPE, a(rows), c, r, unpack(a, b, c))

#define STRINGS(SIZE) \
MOVE_STRINGS(pack_/**/SIZE, SIZE, logical(4) :: b(rows), r(1:k), pack(a, b)) ;\
MOVE_STRINGS(unpack_/**/SIZE, SIZE, logical(4) :: b(rows), r, unpack(a, b, c(1)))

! With a VECTOR or a FIELD of many elements; of every second one.
#define MORE_VECTORS(SIZE, TYPE) \
PACKING(pack_/**/SIZE/**/_array, TYPE, a(rows), c(rows), r, pack(a, b, c)) ;\
PACKING(unpack_/**/SIZE/**/_array, TYPE, a(rows), c(rows), r, unpack(a, b, c)) ;\
PACKING(pack_/**/SIZE/**/_second, TYPE, a(2*rows), c, r(1:k), pack(a(::2), b)) ;\
PACKING(unpack_/**/SIZE/**/_second, TYPE, a(rows), c(2*rows), r, unpack(a, b, c(::2)))

VECTORS(1, integer(1))
VECTORS(2, integer(2))
VECTORS(4, real(4))
VECTORS(8, real(8))
VECTORS(16, complex(8))
VECTORS(32, complex(16))
STRINGS(10)
STRINGS(12)
MORE_VECTORS(4, real(4))
MORE_VECTORS(8, real(8))

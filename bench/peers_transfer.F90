! The peers of TRANSFER: a is SOURCE; MOLD is c, or b where it is a scalar. Names tell the bytes
! of an element of SOURCE and of the result, which has k elements, and what is a section.
#include "peers_moving.inc"

#define BYTES(NAME, FROM, A, TO, R, TARGET, VALUE) \
MOVE(transfer_/**/NAME, TO, b, FROM :: A, c(1), R, TARGET, VALUE)

#define DENSE(NAME, FROM, TO) \
BYTES(NAME, FROM, a(rows), TO, r(k), r, transfer(a, c)) ;\
BYTES(NAME/**/_size, FROM, a(rows), TO, r(k), r, transfer(a, c, k)) ;\
BYTES(NAME/**/_from_second, FROM, a(2*rows), TO, r(k), r, transfer(a(::2), c)) ;\
BYTES(NAME/**/_to_second, FROM, a(rows), TO, r(2*k), r(::2), transfer(a, c)) ;\
BYTES(NAME/**/_size_to_second, FROM, a(rows), TO, r(2*k), r(::2), transfer(a, c, k))

DENSE(4_1, real(4), integer(1))
DENSE(4_4, real(4), integer(4))
DENSE(4_8, real(4), real(8))
DENSE(8_1, real(8), integer(1))
DENSE(8_4, real(8), integer(4))
DENSE(8_8, real(8), integer(8))
DENSE(16_1, complex(8), integer(1))
DENSE(16_4, complex(8), integer(4))
DENSE(16_8, complex(8), real(8))
BYTES(4_16_scalar, real(4), a(rows), complex(8), r, r, transfer(a, b))
BYTES(16_4_scalar, complex(8), a, integer(4), r(k), r, transfer(a, c))

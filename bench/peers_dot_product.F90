! The peers of DOT_PRODUCT. Their parameter list is that of the other reductions,
! with VECTOR_B in place of the MASK.

! r = VALUE, made of the vectors a and b.
#define DOT_PRODUCT(NAME, TYPE, VALUE) \
subroutine NAME(a, b, rows, columns, d, r) bind(C, name=PEER//"NAME") ;\
  implicit none ;\
  integer(4), value :: rows, columns, d ;\
  TYPE :: a(rows), b(rows), r ;\
  r = VALUE ;\
end subroutine

DOT_PRODUCT(dot_product_r4, real(4), dot_product(a, b))
DOT_PRODUCT(dot_product_r8, real(8), dot_product(a, b))
DOT_PRODUCT(dot_product_r10, real(10), dot_product(a, b))
DOT_PRODUCT(dot_product_r16, real(16), dot_product(a, b))
DOT_PRODUCT(dot_product_c8, complex(4), dot_product(a, b))
DOT_PRODUCT(dot_product_c16, complex(8), dot_product(a, b))
DOT_PRODUCT(dot_product_i1, integer(1), dot_product(a, b))
DOT_PRODUCT(dot_product_i2, integer(2), dot_product(a, b))
DOT_PRODUCT(dot_product_i4, integer(4), dot_product(a, b))
DOT_PRODUCT(dot_product_i8, integer(8), dot_product(a, b))
DOT_PRODUCT(dot_product_l1, logical(1), dot_product(a, b))
DOT_PRODUCT(dot_product_l2, logical(2), dot_product(a, b))
DOT_PRODUCT(dot_product_l4, logical(4), dot_product(a, b))
DOT_PRODUCT(dot_product_l8, logical(8), dot_product(a, b))

DOT_PRODUCT(dot_product_r8_second, real(8), dot_product(a(1:rows:2), b(1:rows:2)))

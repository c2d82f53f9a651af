! The peers of MATMUL: square matrices of n x n, vectors of n.

! r = VALUE, where A, B and RESULT declare the shapes.
#define MATMUL_OF(NAME, TYPE, A, B, RESULT, VALUE) \
subroutine NAME(a, b, n, r) bind(C, name=PEER//"NAME") ;\
  implicit none ;\
  integer(4), value :: n ;\
  TYPE :: A, B, RESULT ;\
  r = VALUE ;\
end subroutine

#define MATRIX_MATRIX(NAME, TYPE) MATMUL_OF(NAME, TYPE, a(n, n), b(n, n), r(n, n), matmul(a, b))
#define TRANSPOSED_MATRIX(NAME, TYPE) MATMUL_OF(NAME, TYPE, a(n, n), b(n, n), r(n, n), matmul(transpose(a), b))
#define VECTOR_MATRIX(NAME, TYPE) MATMUL_OF(NAME, TYPE, a(n), b(n, n), r(n), matmul(a, b))
#define MATRIX_VECTOR(NAME, TYPE) MATMUL_OF(NAME, TYPE, a(n, n), b(n), r(n), matmul(a, b))

MATRIX_MATRIX(matmul_r4, real(4))
MATRIX_MATRIX(matmul_r8, real(8))
MATRIX_MATRIX(matmul_r10, real(10))
MATRIX_MATRIX(matmul_r16, real(16))
MATRIX_MATRIX(matmul_c8, complex(4))
MATRIX_MATRIX(matmul_c16, complex(8))
MATRIX_MATRIX(matmul_c20, complex(10))
MATRIX_MATRIX(matmul_c32, complex(16))
MATRIX_MATRIX(matmul_i1, integer(1))
MATRIX_MATRIX(matmul_i2, integer(2))
MATRIX_MATRIX(matmul_i4, integer(4))
MATRIX_MATRIX(matmul_i8, integer(8))
MATRIX_MATRIX(matmul_l1, logical(1))
MATRIX_MATRIX(matmul_l2, logical(2))
MATRIX_MATRIX(matmul_l4, logical(4))
MATRIX_MATRIX(matmul_l8, logical(8))

TRANSPOSED_MATRIX(matmul_r8_transposed, real(8))

VECTOR_MATRIX(matmul_r4_vector_matrix, real(4))
VECTOR_MATRIX(matmul_r8_vector_matrix, real(8))
VECTOR_MATRIX(matmul_i4_vector_matrix, integer(4))
VECTOR_MATRIX(matmul_c16_vector_matrix, complex(8))

MATRIX_VECTOR(matmul_r4_matrix_vector, real(4))
MATRIX_VECTOR(matmul_r8_matrix_vector, real(8))
MATRIX_VECTOR(matmul_i4_matrix_vector, integer(4))
MATRIX_VECTOR(matmul_c16_matrix_vector, complex(8))

/* The engines and kernels below the MATMUL entries, for compiled code that calls them
 * directly; quillfn.h includes this file. They work on addresses and strides: no
 * descriptors, no checks, no storage but the stack (f90_Blocking needs 672 KiB of it).
 *
 * A is m x k, B is k x n, C = A x B is m x n; v is a vector of k elements. An operand
 * comes as the address of its first element, aligned to 4 bytes or to a shorter element,
 * and a stride in elements, of either sign, for each dimension: as1 from row to row, as2
 * from column to column. Operands are only read. With acc 1 a finished sum is added to
 * what C holds; with another acc (in f90_Vector: with 0) it is stored, and C is not read.
 *
 * The types stand for their suffixes: Int1 to Int8, Log1 to Log8 (by bytes), Real4 to
 * Real16, Complex8 to Complex32. Those of kinds 10 and 16 have C++ linkage. */
#ifndef QUILLFN_MATMUL_H
#define QUILLFN_MATMUL_H

#ifndef QUILLFN_EXPORT
#error "include quillfn/quillfn.h"
#endif

typedef struct f90_Complex8 {
    float re;
    float im;
} f90_Complex8;

typedef struct f90_Complex16 {
    double re;
    double im;
} f90_Complex16;

/* ---- Families ------------------------------------------------------------- */

/* C = A x B. */
#define QUILLFN_MATRIX_ENGINE(T, E)                                                                \
    QUILLFN_EXPORT void f90_Engine2x2##T(int m, int n, int k, E *a, int as1, int as2, E *b,        \
                                         int bs1, int bs2, E *c, int cs1, int cs2);

/* f90_Blocking: C = A x B with m, n and k of at least 1, in chunks of k. f90_Trans2 packs
 * a block of A into rows of kp elements, those of even index first, with zeros behind the
 * kc elements of each. f90_Vector multiplies such a block by columns, bpitch apart from
 * blo (the first half of them) and bhi on; apitch apart lie rows of even index from aeven
 * and of odd index from aodd on; cpair is the distance in C from a column of the first
 * half to its partner in the second. */
#define QUILLFN_ADAPTIVE_ENGINE(T, E)                                                              \
    QUILLFN_EXPORT void f90_Blocking##T(int m, int k, int n, E *a, int as1, int as2, E *b,         \
                                        int bs1, int bs2, E *c, int cs1, int cs2);                 \
    QUILLFN_EXPORT void f90_Trans2##T(E *dest, E *src, int rows, int kc, int as1, int as2,         \
                                      int kp);                                                     \
    QUILLFN_EXPORT void f90_Vector##T(int acc, int kp, int columns, int rows, E *blo, E *bhi,      \
                                      int bpitch, E *aeven, E *aodd, int apitch, E *c, int cs2,    \
                                      int cs1, int cpair);

/* f90_ConvertBlock packs rows of A, a multiple of 4 (Complex16 and Complex20: of 2), in
 * groups of so many: k after k, in each the group's elements. f90_CopyBlock packs columns
 * of B, kc elements each. f90_Inner2x2 multiplies groups at p by columns that are dense
 * along k and bcs apart, f90_Epilogue2x2 any rows by any columns. kc of f90_Inner2x2 is a
 * multiple of 2 (Int2: of 8, Int4: of 4). */
#define QUILLFN_BLOCK_KERNELS(T, E)                                                                \
    QUILLFN_EXPORT void f90_ConvertBlock##T(E *dest, E *src, int rows, int kc, int as1, int as2);  \
    QUILLFN_EXPORT void f90_CopyBlock##T(E *dest, E *src, int kc, int columns, int bs1, int bs2);  \
    QUILLFN_EXPORT void f90_Inner2x2##T(int acc, int rows, int columns, int kc, E *p, E *b,        \
                                        int bcs, E *c, int cs1, int cs2);                          \
    QUILLFN_EXPORT void f90_Epilogue2x2##T(int acc, int rows, int columns, int kc, E *a, int as1,  \
                                           int as2, E *b, int bs1, int bs2, E *c, int cs1,         \
                                           int cs2);

/* c = v x B, n elements; c = A x v, m elements. */
#define QUILLFN_VECTOR_ENGINES(T, E)                                                               \
    QUILLFN_EXPORT void f90_Engine1x2##T(int n, int k, E *v, int vs, E *b, int bs1, int bs2, E *c, \
                                         int cs);                                                  \
    QUILLFN_EXPORT void f90_Engine2x1##T(int m, int k, E *a, int as1, int as2, E *v, int vs, E *c, \
                                         int cs);

/* f90_CopyVector gathers count elements, f90_InitVector stores zeros. f90_Inner1x2 and
 * f90_Epilogue1x2 are one chunk of v x B, the former with a dense v and kc a multiple of 4
 * (of 2 for kinds wider than 8). */
#define QUILLFN_VECTOR_KERNELS(T, E)                                                               \
    QUILLFN_EXPORT void f90_CopyVector##T(E *dest, E *src, int count, int stride);                 \
    QUILLFN_EXPORT void f90_InitVector##T(E *dest, int count, int stride);                         \
    QUILLFN_EXPORT void f90_Inner1x2##T(int acc, int n, int kc, E *v, E *b, int bs1, int bs2,      \
                                        E *c, int cs);                                             \
    QUILLFN_EXPORT void f90_Epilogue1x2##T(int acc, int n, int kc, E *v, int vs, E *b, int bs1,    \
                                           int bs2, E *c, int cs);

/* One chunk of A x v, f90_Inner2x1 with a dense v and kc even (Int4, Int8, Complex16:
 * any). Those without acc always add. */
#define QUILLFN_COLUMN_KERNELS(T, E)                                                               \
    QUILLFN_EXPORT void f90_Inner2x1##T(int acc, int m, int kc, E *a, int as1, int as2, E *v,      \
                                        E *c, int cs);                                             \
    QUILLFN_EXPORT void f90_Epilogue2x1##T(int acc, int m, int kc, E *a, int as1, int as2, E *v,   \
                                           int vs, E *c, int cs);
#define QUILLFN_ADDING_COLUMN_KERNELS(T, E)                                                        \
    QUILLFN_EXPORT void f90_Inner2x1##T(int m, int kc, E *a, int as1, int as2, E *v, E *c,         \
                                        int cs);                                                   \
    QUILLFN_EXPORT void f90_Epilogue2x1##T(int m, int kc, E *a, int as1, int as2, E *v, int vs,    \
                                           E *c, int cs);

/* c = v x B and c = A x v without chunks; m, n and k are at least 1. */
#define QUILLFN_COMPLEX_VECTOR_ENGINES(T, E)                                                       \
    QUILLFN_EXPORT void f90_MatMulVxM##T(int n, int k, E *v, int vs, E *b, int bs1, int bs2, E *c, \
                                         int cs);                                                  \
    QUILLFN_EXPORT void f90_MatMulMxV##T(int m, int k, E *a, int as1, int as2, E *v, int vs, E *c, \
                                         int cs);

/* ---- Members -------------------------------------------------------------- */

/* clang-format off */
#ifdef __cplusplus
extern "C" {
#endif

QUILLFN_MATRIX_ENGINE(Int1, int8_t)
QUILLFN_MATRIX_ENGINE(Int2, int16_t)
QUILLFN_MATRIX_ENGINE(Int4, int32_t)
QUILLFN_MATRIX_ENGINE(Int8, int64_t)
QUILLFN_MATRIX_ENGINE(Log1, int8_t)
QUILLFN_MATRIX_ENGINE(Log2, int16_t)
QUILLFN_MATRIX_ENGINE(Log4, int32_t)
QUILLFN_MATRIX_ENGINE(Log8, int64_t)
QUILLFN_MATRIX_ENGINE(Real4, float)
QUILLFN_MATRIX_ENGINE(Real8, double)
QUILLFN_MATRIX_ENGINE(Complex8, f90_Complex8)
QUILLFN_MATRIX_ENGINE(Complex16, f90_Complex16)

QUILLFN_ADAPTIVE_ENGINE(Int2, int16_t)
QUILLFN_ADAPTIVE_ENGINE(Real4, float)
QUILLFN_ADAPTIVE_ENGINE(Real8, double)
QUILLFN_ADAPTIVE_ENGINE(Complex8, f90_Complex8)

QUILLFN_BLOCK_KERNELS(Int1, int8_t)
QUILLFN_BLOCK_KERNELS(Int2, int16_t)
QUILLFN_BLOCK_KERNELS(Int4, int32_t)
QUILLFN_BLOCK_KERNELS(Int8, int64_t)
QUILLFN_BLOCK_KERNELS(Real4, float)
QUILLFN_BLOCK_KERNELS(Real8, double)
QUILLFN_BLOCK_KERNELS(Complex8, f90_Complex8)
QUILLFN_BLOCK_KERNELS(Complex16, f90_Complex16)

QUILLFN_VECTOR_ENGINES(Int1, int8_t)
QUILLFN_VECTOR_ENGINES(Int2, int16_t)
QUILLFN_VECTOR_ENGINES(Int4, int32_t)
QUILLFN_VECTOR_ENGINES(Int8, int64_t)
QUILLFN_VECTOR_ENGINES(Log1, int8_t)
QUILLFN_VECTOR_ENGINES(Log2, int16_t)
QUILLFN_VECTOR_ENGINES(Log4, int32_t)
QUILLFN_VECTOR_ENGINES(Log8, int64_t)
QUILLFN_VECTOR_ENGINES(Real4, float)
QUILLFN_VECTOR_ENGINES(Real8, double)
QUILLFN_VECTOR_ENGINES(Complex16, f90_Complex16)

QUILLFN_VECTOR_KERNELS(Int1, int8_t)
QUILLFN_VECTOR_KERNELS(Int2, int16_t)
QUILLFN_VECTOR_KERNELS(Int4, int32_t)
QUILLFN_VECTOR_KERNELS(Int8, int64_t)
QUILLFN_VECTOR_KERNELS(Real4, float)
QUILLFN_VECTOR_KERNELS(Real8, double)
QUILLFN_VECTOR_KERNELS(Complex16, f90_Complex16)

QUILLFN_COLUMN_KERNELS(Int1, int8_t)
QUILLFN_COLUMN_KERNELS(Int4, int32_t)
QUILLFN_COLUMN_KERNELS(Int8, int64_t)
QUILLFN_COLUMN_KERNELS(Complex16, f90_Complex16)

QUILLFN_ADDING_COLUMN_KERNELS(Int2, int16_t)
QUILLFN_ADDING_COLUMN_KERNELS(Real4, float)
QUILLFN_ADDING_COLUMN_KERNELS(Real8, double)

QUILLFN_COMPLEX_VECTOR_ENGINES(Complex8, f90_Complex8)
QUILLFN_COMPLEX_VECTOR_ENGINES(Complex16, f90_Complex16)

#ifdef __cplusplus
} // extern "C"

struct f90_Complex20 { // each part 10 bytes in 12
    long double re;
    long double im;
};

struct f90_Complex32 { // 4-byte aligned, as every address here is, whatever its type says
    __float128 re __attribute__((packed, aligned(4)));
    __float128 im __attribute__((packed, aligned(4)));
};

QUILLFN_MATRIX_ENGINE(Real10, long double)
QUILLFN_MATRIX_ENGINE(Real16, __float128)
QUILLFN_MATRIX_ENGINE(Complex20, f90_Complex20)
QUILLFN_MATRIX_ENGINE(Complex32, f90_Complex32)

QUILLFN_ADAPTIVE_ENGINE(Real16, __float128)

QUILLFN_BLOCK_KERNELS(Real10, long double)
QUILLFN_BLOCK_KERNELS(Real16, __float128)
QUILLFN_BLOCK_KERNELS(Complex20, f90_Complex20)
QUILLFN_BLOCK_KERNELS(Complex32, f90_Complex32)

QUILLFN_VECTOR_ENGINES(Real10, long double)
QUILLFN_VECTOR_ENGINES(Real16, __float128)
QUILLFN_VECTOR_ENGINES(Complex20, f90_Complex20)
QUILLFN_VECTOR_ENGINES(Complex32, f90_Complex32)

QUILLFN_VECTOR_KERNELS(Real10, long double)
QUILLFN_VECTOR_KERNELS(Real16, __float128)
QUILLFN_VECTOR_KERNELS(Complex20, f90_Complex20)
QUILLFN_VECTOR_KERNELS(Complex32, f90_Complex32)

QUILLFN_COLUMN_KERNELS(Real10, long double)
QUILLFN_COLUMN_KERNELS(Complex20, f90_Complex20)
QUILLFN_COLUMN_KERNELS(Complex32, f90_Complex32)

QUILLFN_ADDING_COLUMN_KERNELS(Real16, __float128)
#endif
/* clang-format on */

#endif

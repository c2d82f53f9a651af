/* quillfn.h: the Fortran 90 intrinsic procedures for compiled code, 32-bit x86 Linux.
 *
 * The records below are binary: compiled code fills them and the library reads
 * and writes them in place, so names, order and widths are fixed. Usable from
 * C99 and C++. docs/calling.md explains the records and works through a call. */
#ifndef QUILLFN_QUILLFN_H
#define QUILLFN_QUILLFN_H

#include <stddef.h>
#include <stdint.h>

/* What leaves the library. Functions align the stack for themselves: compiled
 * code keeps it 4-byte aligned only. */
#define QUILLFN_DATA __attribute__((visibility("default")))
#define QUILLFN_EXPORT __attribute__((visibility("default"), force_align_arg_pointer))

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Records -------------------------------------------------------------- */

enum {
    /* Most dimensions that an array can have. */
    f90_MaxRank = 7,
    /* In a bound or step of a section, or a lower bound of f90_CreateArray: the default. */
    f90_DefaultBound = -2147483647 - 1
};

/* One dimension: its subscripts run from Lower to Upper (empty when Upper is
 * less than Lower); neighbours lie Stride x SCALEFACTOR bytes apart. */
typedef struct f90_DimInfo {
    int32_t Lower;
    int32_t Upper;
    int32_t Stride;
} f90_DimInfo;

/* An array. A descriptor of lower rank may be shorter: the library touches the
 * first RANK dimensions only. The element with subscripts s lies at
 * ZERO + SCALEFACTOR x (s[0] x Dim[0].Stride + s[1] x Dim[1].Stride + ...). */
typedef struct f90_ArrDesc {
    void *ZERO;                   /* where the element with all subscripts 0 would lie */
    void *BASE;                   /* first element; null for a missing or empty section */
    int32_t EXTENT;               /* number of elements */
    int32_t ELSIZE;               /* bytes of one element */
    int32_t SCALEFACTOR;          /* bytes of one unit of Stride */
    int8_t RANK;                  /* number of dimensions, 0 to 7 */
    uint8_t NONCONTIG;            /* 0: the elements are one dense run from BASE, in order */
    uint8_t Reserved[2];          /* written 0 by the creators, read by nobody */
    f90_DimInfo Dim[f90_MaxRank]; /* Dim[0] varies fastest */
} f90_ArrDesc;

/* One argument. Word0 holds the address of a descriptor or of a string, or a
 * 32-bit value; Word1 the length of a string. */
typedef struct f90_Slot {
    uintptr_t Word0;
    uintptr_t Word1;
} f90_Slot;

/* The argument record of an array intrinsic. */
typedef struct f90_ArgList {
    uint16_t Shape;    /* the compiler's own; only printed */
    uint16_t Presence; /* bit 0: Result exists; bits 1 to 4: Arg1 to Arg4 are present */
    uint32_t Flags;    /* bit 0: check shapes and sizes */
    f90_Slot Result;
    f90_Slot Arg1;
    f90_Slot Arg2;
    f90_Slot Arg3;
    f90_Slot Arg4;
} f90_ArgList;

/* One dimension of a section of an array. Lower, Upper and Stride may each be
 * f90_DefaultBound: the array's own bound, or a step of 1. */
typedef struct f90_SectionDim {
    int32_t Kind; /* 1: the single subscript Lower; 3: the triplet Lower:Upper:Stride */
    int32_t Lower;
    int32_t Upper;
    int32_t Stride; /* not 0 */
} f90_SectionDim;

/* An array intrinsic: reads its arguments from the record, answers through it. */
typedef __attribute__((force_align_arg_pointer)) void f90_Intrinsic(f90_ArgList *arguments);

/* ---- Storage -------------------------------------------------------------- */

/* Storage of results and temporaries. The library calls both through its
 * symbol table, so a program that defines them supplies its own. The library's
 * own are malloc and free; f90_getspace gives a valid address for 0 bytes too
 * and ends the process, with a message and status 1, when there is no storage. */
QUILLFN_EXPORT void *f90_getspace(size_t bytes);
QUILLFN_EXPORT void f90_freespace(void *space);

/* ---- Arrays --------------------------------------------------------------- */

/* Non-zero: f90_ElemAddr checks subscripts, and two int32_t words, the lowest
 * valid offset and one more than the highest, stand ahead of every descriptor
 * that f90_CreateArrayM, f90_CreateArray and f90_CreateSection fill: reserve 8
 * bytes there. The library only reads it. */
extern QUILLFN_DATA int32_t f90_SubscriptChecking;

/* Completes a descriptor of which RANK, ELSIZE and each Lower and Upper are
 * set: a dense array in storage from f90_getspace, which the caller owns. */
QUILLFN_EXPORT void f90_CreateArrayM(f90_ArrDesc *array);

/* The same from rank pairs (lower, upper) in bounds; only a lower bound may be
 * f90_DefaultBound, which stands for 1. */
QUILLFN_EXPORT void f90_CreateArray(int32_t rank, const int32_t *bounds, int32_t elsize,
                                    f90_ArrDesc *array);

/* Describes a section of a dense array in *section; it shares the storage.
 * subscripts holds one record per dimension of parent. Triplets are clipped to the
 * bounds; a single subscript out of bounds gives an empty section. */
QUILLFN_EXPORT void f90_CreateSection(const f90_ArrDesc *parent, const f90_SectionDim *subscripts,
                                      f90_ArrDesc *section);

/* Address of the element with the given subscripts, one int32_t per dimension. */
QUILLFN_EXPORT void *f90_ElemAddr(const f90_ArrDesc *array, ...);

/* Address of element number index, from 0, of a dense array. Checks nothing. */
QUILLFN_EXPORT void *f90_ElemAddrContig(const f90_ArrDesc *array, int32_t index);

/* Walk over all elements, the first dimension fastest: the address of the first
 * and of each next element, null at the end. One walk at a time in a process. */
QUILLFN_EXPORT void *f90_FirstElemAddr(const f90_ArrDesc *array);
QUILLFN_EXPORT void *f90_NextElemAddr(void);

/* Print a record on standard output, for debugging. */
QUILLFN_EXPORT void f90_PrintArgList(const f90_ArgList *list);
QUILLFN_EXPORT void f90_PrintArrDesc(const f90_ArrDesc *array);

/* ---- Errors --------------------------------------------------------------- */

/* Writes message number of the intrinsic name to standard error and ends the
 * process with status 1. The values follow in the order of the message's
 * placeholders: int32_t, const f90_ArrDesc *, or const int32_t * (a count and
 * that many extents). */
QUILLFN_EXPORT __attribute__((noreturn)) void f90_ArrLibError(const char *name, int32_t number,
                                                              ...);

/* ---- Reductions ----------------------------------------------------------- */

/* ALL(MASK, DIM), ANY(MASK, DIM): Arg1 MASK, Arg2 DIM; by bytes of a logical. */
extern QUILLFN_EXPORT f90_Intrinsic f90_all1, f90_all2, f90_all4, f90_all8;
extern QUILLFN_EXPORT f90_Intrinsic f90_any1, f90_any2, f90_any4, f90_any8;

/* COUNT(MASK, DIM): Arg1 MASK, Arg2 DIM; by bytes of a logical of MASK. The
 * result is a 32-bit integer, of the k forms a 64-bit integer. */
extern QUILLFN_EXPORT f90_Intrinsic f90_count1, f90_count2, f90_count4, f90_count8;
extern QUILLFN_EXPORT f90_Intrinsic f90_kcount1, f90_kcount2, f90_kcount4, f90_kcount8;

/* SUM(ARRAY, DIM, MASK), PRODUCT(ARRAY, DIM, MASK): Arg1 ARRAY, Arg2 DIM, Arg3
 * MASK (32-bit words); by type: integer, real, complex, and bytes of a value. */
extern QUILLFN_EXPORT f90_Intrinsic f90_sumi1, f90_sumi2, f90_sumi4, f90_sumi8;
extern QUILLFN_EXPORT f90_Intrinsic f90_sumr4, f90_sumr8, f90_sumr10, f90_sumr16;
extern QUILLFN_EXPORT f90_Intrinsic f90_sumc8, f90_sumc16, f90_sumc20, f90_sumc32;
extern QUILLFN_EXPORT f90_Intrinsic f90_prodi1, f90_prodi2, f90_prodi4, f90_prodi8;
extern QUILLFN_EXPORT f90_Intrinsic f90_prodr4, f90_prodr8, f90_prodr10, f90_prodr16;
extern QUILLFN_EXPORT f90_Intrinsic f90_prodc8, f90_prodc16, f90_prodc20, f90_prodc32;

/* MAXVAL(ARRAY, DIM, MASK), MINVAL(ARRAY, DIM, MASK): arguments as of SUM. A
 * result without DIM may be left to the library too. */
extern QUILLFN_EXPORT f90_Intrinsic f90_maxvali1, f90_maxvali2, f90_maxvali4, f90_maxvali8;
extern QUILLFN_EXPORT f90_Intrinsic f90_maxvalr4, f90_maxvalr8, f90_maxvalr10, f90_maxvalr16;
extern QUILLFN_EXPORT f90_Intrinsic f90_minvali1, f90_minvali2, f90_minvali4, f90_minvali8;
extern QUILLFN_EXPORT f90_Intrinsic f90_minvalr4, f90_minvalr8, f90_minvalr10, f90_minvalr16;

/* MAXLOC(ARRAY, DIM, MASK), MINLOC(ARRAY, DIM, MASK): arguments as of SUM. The
 * result holds positions from 1: without DIM one for each dimension of ARRAY, with
 * DIM the position along it. They are 32-bit integers, of the k forms 64-bit ones. */
extern QUILLFN_EXPORT f90_Intrinsic f90_maxloci1, f90_maxloci2, f90_maxloci4, f90_maxloci8;
extern QUILLFN_EXPORT f90_Intrinsic f90_maxlocr4, f90_maxlocr8, f90_maxlocr10, f90_maxlocr16;
extern QUILLFN_EXPORT f90_Intrinsic f90_minloci1, f90_minloci2, f90_minloci4, f90_minloci8;
extern QUILLFN_EXPORT f90_Intrinsic f90_minlocr4, f90_minlocr8, f90_minlocr10, f90_minlocr16;
extern QUILLFN_EXPORT f90_Intrinsic f90_kmaxloci1, f90_kmaxloci2, f90_kmaxloci4, f90_kmaxloci8;
extern QUILLFN_EXPORT f90_Intrinsic f90_kmaxlocr4, f90_kmaxlocr8;
extern QUILLFN_EXPORT f90_Intrinsic f90_kminloci1, f90_kminloci2, f90_kminloci4, f90_kminloci8;
extern QUILLFN_EXPORT f90_Intrinsic f90_kminlocr4, f90_kminlocr8;

/* DOT_PRODUCT(VECTOR_A, VECTOR_B): Arg1 VECTOR_A, Arg2 VECTOR_B; by type: integer,
 * logical, real, complex, and bytes of a value. A result of at most 8 bytes is stored
 * in the slot Result, a wider one at the address in its Word0. */
extern QUILLFN_EXPORT f90_Intrinsic f90_dotpri1, f90_dotpri2, f90_dotpri4, f90_dotpri8;
extern QUILLFN_EXPORT f90_Intrinsic f90_dotprl1, f90_dotprl2, f90_dotprl4, f90_dotprl8;
extern QUILLFN_EXPORT f90_Intrinsic f90_dotprr4, f90_dotprr8, f90_dotprr10, f90_dotprr16;
extern QUILLFN_EXPORT f90_Intrinsic f90_dotprc8, f90_dotprc16, f90_dotprc20, f90_dotprc32;

/* ---- Moving elements ------------------------------------------------------ */

/* These move elements by size and look at no type. A name ends with the bytes of an
 * element, or with n for any other size, which ELSIZE of the first argument tells then.
 * The result must not share storage with an argument. */

/* CSHIFT(ARRAY, SHIFT, DIM): Arg1 ARRAY, Arg2 SHIFT (32-bit integers; of rank 0, or one for
 * each line along DIM), Arg3 DIM, 1 when absent. */
extern QUILLFN_EXPORT f90_Intrinsic f90_cshift1, f90_cshift2, f90_cshift4, f90_cshift8;
extern QUILLFN_EXPORT f90_Intrinsic f90_cshift10, f90_cshift16, f90_cshift20, f90_cshift32;
extern QUILLFN_EXPORT f90_Intrinsic f90_cshiftn;

/* EOSHIFT(ARRAY, SHIFT, BOUNDARY, DIM): Arg1 ARRAY, Arg2 SHIFT as of CSHIFT, Arg3 BOUNDARY
 * (elements; of rank 0, or one for each line along DIM), Arg4 DIM, 1 when absent. Without
 * BOUNDARY zero bytes move in, in the n member blanks. */
extern QUILLFN_EXPORT f90_Intrinsic f90_eoshift1, f90_eoshift2, f90_eoshift4, f90_eoshift8;
extern QUILLFN_EXPORT f90_Intrinsic f90_eoshift10, f90_eoshift16, f90_eoshift20, f90_eoshift32;
extern QUILLFN_EXPORT f90_Intrinsic f90_eoshiftn;

/* PACK(ARRAY, MASK, VECTOR): Arg1 ARRAY, Arg2 MASK (32-bit words; of rank 0, or of ARRAY's
 * shape), Arg3 VECTOR. A given result may be longer than what is packed: without VECTOR its
 * tail is left alone. */
extern QUILLFN_EXPORT f90_Intrinsic f90_pack1, f90_pack2, f90_pack4, f90_pack8;
extern QUILLFN_EXPORT f90_Intrinsic f90_pack10, f90_pack16, f90_pack20, f90_pack32;
extern QUILLFN_EXPORT f90_Intrinsic f90_packn;

/* UNPACK(VECTOR, MASK, FIELD): Arg1 VECTOR, Arg2 MASK (32-bit words), Arg3 FIELD, of rank 0
 * or of MASK's shape. */
extern QUILLFN_EXPORT f90_Intrinsic f90_unpack1, f90_unpack2, f90_unpack4, f90_unpack8;
extern QUILLFN_EXPORT f90_Intrinsic f90_unpack10, f90_unpack16, f90_unpack20, f90_unpack32;
extern QUILLFN_EXPORT f90_Intrinsic f90_unpackn;

/* RESHAPE(SOURCE, SHAPE, PAD, ORDER): Arg1 SOURCE, Arg2 SHAPE, Arg3 PAD, Arg4 ORDER. Of each
 * element of SHAPE and ORDER a 32-bit word is read, the low one of wider integers. Without
 * PAD, or with an empty one, the result ends where SOURCE does. The k members report
 * as KRESHAPE. */
extern QUILLFN_EXPORT f90_Intrinsic f90_reshape1, f90_reshape2, f90_reshape4, f90_reshape8;
extern QUILLFN_EXPORT f90_Intrinsic f90_reshape10, f90_reshape16, f90_reshape20, f90_reshape32;
extern QUILLFN_EXPORT f90_Intrinsic f90_reshapen;
extern QUILLFN_EXPORT f90_Intrinsic f90_kreshape1, f90_kreshape2, f90_kreshape4, f90_kreshape8;
extern QUILLFN_EXPORT f90_Intrinsic f90_kreshape10, f90_kreshape16, f90_kreshape20, f90_kreshape32;
extern QUILLFN_EXPORT f90_Intrinsic f90_kreshapen;

/* The checks of RESHAPE alone, of the same record: they return where the record is sound. */
extern QUILLFN_EXPORT f90_Intrinsic f90_Reshape_Validation, f90_kReshape_Validation;

/* SPREAD(SOURCE, DIM, NCOPIES): Arg1 SOURCE, Arg2 DIM, Arg3 NCOPIES; a negative NCOPIES is 0.
 * A given result may be longer along DIM: what is behind NCOPIES is left alone. */
extern QUILLFN_EXPORT f90_Intrinsic f90_spread1, f90_spread2, f90_spread4, f90_spread8;
extern QUILLFN_EXPORT f90_Intrinsic f90_spread10, f90_spread16, f90_spread20, f90_spread32;
extern QUILLFN_EXPORT f90_Intrinsic f90_spreadn;

/* TRANSPOSE(MATRIX): Arg1 MATRIX, of rank 2. Stride counts elements, but in the n member
 * units of SCALEFACTOR. */
extern QUILLFN_EXPORT f90_Intrinsic f90_transpose1, f90_transpose2, f90_transpose4, f90_transpose8;
extern QUILLFN_EXPORT f90_Intrinsic f90_transpose10, f90_transpose16, f90_transpose20,
    f90_transpose32;
extern QUILLFN_EXPORT f90_Intrinsic f90_transposen;

/* TRANSFER(SOURCE, MOLD, SIZE): Arg1 SOURCE, Arg2 MOLD, of which RANK and ELSIZE are read,
 * Arg3 SIZE, of 64 bits in the k members, which report as KTRANSFER. A name ends with the
 * bytes of MOLD's elements. Behind the bytes of SOURCE there are zeros where SIZE is given, and
 * elsewhere what there was. A scalar SOURCE of a k member has EXTENT 1. */
extern QUILLFN_EXPORT f90_Intrinsic f90_transfer1, f90_transfer2, f90_transfer4, f90_transfer8;
extern QUILLFN_EXPORT f90_Intrinsic f90_transfer10, f90_transfer16, f90_transfer20, f90_transfer32;
extern QUILLFN_EXPORT f90_Intrinsic f90_transfern;
extern QUILLFN_EXPORT f90_Intrinsic f90_ktransfer1, f90_ktransfer2, f90_ktransfer4, f90_ktransfer8;
extern QUILLFN_EXPORT f90_Intrinsic f90_ktransfer10, f90_ktransfer16, f90_ktransfer20,
    f90_ktransfer32;
extern QUILLFN_EXPORT f90_Intrinsic f90_ktransfern;

/* ---- MATMUL --------------------------------------------------------------- */

/* MATMUL(MATRIX_A, MATRIX_B): Arg1 MATRIX_A, Arg2 MATRIX_B, both of the entry's type:
 * integer, logical, real, complex, and bytes of a value. One of them may be a vector. Stride
 * counts elements. The result must not share storage with an operand. */
extern QUILLFN_EXPORT f90_Intrinsic f90_matmuli1, f90_matmuli2, f90_matmuli4, f90_matmuli8;
extern QUILLFN_EXPORT f90_Intrinsic f90_matmull1, f90_matmull2, f90_matmull4, f90_matmull8;
extern QUILLFN_EXPORT f90_Intrinsic f90_matmulr4, f90_matmulr8, f90_matmulr10, f90_matmulr16;
extern QUILLFN_EXPORT f90_Intrinsic f90_matmulc8, f90_matmulc16, f90_matmulc20, f90_matmulc32;

/* ---- Characters ------------------------------------------------------------ */

/* A string is an address and a length in bytes, without sign; only the byte 20
 * (hexadecimal) is a blank. Results are positions and lengths from 1. */

/* ADJUSTL, ADJUSTR: length bytes go from source to destination, which must not overlap. */
QUILLFN_EXPORT void f90_adjustl(const char *source, uint32_t length, char *destination);
QUILLFN_EXPORT void f90_adjustr(const char *source, uint32_t length, char *destination);

/* LEN_TRIM. */
QUILLFN_EXPORT int32_t f90_lentrim(const char *string, uint32_t length);
QUILLFN_EXPORT int64_t f90_klentrim(const char *string, uint32_t length);

/* INDEX(STRING, SUBSTRING, BACK), SCAN(STRING, SET, BACK), VERIFY(STRING, SET, BACK): Arg1
 * STRING and Arg2 SUBSTRING or SET, strings in both words of the slot, Arg3 BACK, true unless
 * it is 0. The result is stored in the slot Result: of the k forms in both words. */
extern QUILLFN_EXPORT f90_Intrinsic f90_index, f90_scan, f90_verify;
extern QUILLFN_EXPORT f90_Intrinsic f90_kindex, f90_kscan, f90_kverify;

/* REPEAT(STRING, NCOPIES): Arg1 STRING, Arg2 NCOPIES. TRIM(STRING): Arg1 STRING. The result is
 * a string in the slot Result: the caller's, of which the length is set, or one that the
 * library takes from f90_getspace for the caller. */
extern QUILLFN_EXPORT f90_Intrinsic f90_repeat, f90_trim;

/* ---- Numbers --------------------------------------------------------------- */

/* These take addresses, aligned to 4 bytes or to a shorter value, and read only. A name ends
 * with the bytes of a real. A NaN comes back quiet where the x87 carries the result. */

/* A value of real kind 16, low word first. Results of that kind come in it. */
typedef struct f90_Real16 {
    uint32_t Words[4];
} f90_Real16;

/* EXPONENT(X), FRACTION(X), RRSPACING(X), SPACING(X), NEAREST(X, S), SCALE(X, I) and
 * SET_EXPONENT(X, I), from the bits of X. */
#define QUILLFN_MODEL(K, R)                                                                        \
    QUILLFN_EXPORT int32_t f90_exponent##K(const R *x);                                            \
    QUILLFN_EXPORT R f90_fraction##K(const R *x);                                                  \
    QUILLFN_EXPORT R f90_nearest##K(const R *x, const R *s);                                       \
    QUILLFN_EXPORT R f90_rrspacing##K(const R *x);                                                 \
    QUILLFN_EXPORT R f90_scale##K(const R *x, const int32_t *i);                                   \
    QUILLFN_EXPORT R f90_setexp##K(const R *x, const int32_t *i);                                  \
    QUILLFN_EXPORT R f90_spacing##K(const R *x);

/* CEILING(X), FLOOR(X): of 32 bits, of the k forms 64, of the h forms 16. A value that does not
 * fit, and a NaN, give the lowest integer. */
#define QUILLFN_ROUNDING(K, R)                                                                     \
    QUILLFN_EXPORT int32_t f90_ceiling##K(const R *x);                                             \
    QUILLFN_EXPORT int64_t f90_ceilingk##K(const R *x);                                            \
    QUILLFN_EXPORT int16_t f90_ceilingh##K(const R *x);                                            \
    QUILLFN_EXPORT int32_t f90_floor##K(const R *x);                                               \
    QUILLFN_EXPORT int64_t f90_floork##K(const R *x);                                              \
    QUILLFN_EXPORT int16_t f90_floorh##K(const R *x);

/* MODULO(A, P); A where P is 0. */
#define QUILLFN_MODULO(K, T) QUILLFN_EXPORT T f90_modulo##K(const T *a, const T *p);

#define QUILLFN_REAL(K, R)                                                                         \
    QUILLFN_MODEL(K, R)                                                                            \
    QUILLFN_ROUNDING(K, R)                                                                         \
    QUILLFN_MODULO(r##K, R)

QUILLFN_REAL(4, float)
QUILLFN_REAL(8, double)
QUILLFN_REAL(10, long double)
QUILLFN_REAL(16, f90_Real16)
QUILLFN_MODULO(i1, int8_t)
QUILLFN_MODULO(i2, int16_t)
QUILLFN_MODULO(i4, int32_t)
QUILLFN_MODULO(i8, int64_t)

#undef QUILLFN_MODEL
#undef QUILLFN_ROUNDING
#undef QUILLFN_MODULO
#undef QUILLFN_REAL

/* SELECTED_INT_KIND(R): Arg1 R. SELECTED_REAL_KIND(P, R): Arg1 P, Arg2 R, at least one of them.
 * The kind, or a negative number for none, is stored in Word0 of the slot Result. */
extern QUILLFN_EXPORT f90_Intrinsic f90_selintkind, f90_selrealkind;

/* MVBITS(FROM, FROMPOS, LEN, TO, TOPOS); always checked. */
QUILLFN_EXPORT void f90_mvbits1(int8_t from, int32_t frompos, int32_t len, int8_t *to,
                                int32_t topos);
QUILLFN_EXPORT void f90_mvbits2(int16_t from, int32_t frompos, int32_t len, int16_t *to,
                                int32_t topos);
QUILLFN_EXPORT void f90_mvbits4(int32_t from, int32_t frompos, int32_t len, int32_t *to,
                                int32_t topos);
QUILLFN_EXPORT void f90_mvbits8(int64_t from, int32_t frompos, int32_t len, int64_t *to,
                                int32_t topos);

/* NULL: ZERO and BASE of the descriptor at Result become null; nothing is released. */
extern QUILLFN_EXPORT f90_Intrinsic f90_Null;

/* ---- Random numbers -------------------------------------------------------- */

/* One generator serves the whole process, without a lock. */

/* RANDOM_NUMBER: one real, or count of them without gaps (of kind 10 12 bytes apart), one draw
 * for each; of a kind 10 real 10 bytes are written. */
QUILLFN_EXPORT void f90_randnum4(float *harvest);
QUILLFN_EXPORT void f90_randnum8(double *harvest);
QUILLFN_EXPORT void f90_randnum10(long double *harvest);
QUILLFN_EXPORT void f90_randnum16(f90_Real16 *harvest);
QUILLFN_EXPORT void f90_randnum4a(float *harvest, int32_t count);
QUILLFN_EXPORT void f90_randnum8a(double *harvest, int32_t count);
QUILLFN_EXPORT void f90_randnum10a(long double *harvest, int32_t count);
QUILLFN_EXPORT void f90_randnum16a(f90_Real16 *harvest, int32_t count);

/* RANDOM_SEED(SIZE, PUT, GET): Result the address of SIZE, Arg1 the descriptor of PUT, Arg2
 * that of GET, of 32-bit integers, or in the second form of 64-bit ones; the first that is
 * present alone counts. PUT and GET have 47 elements. */
extern QUILLFN_EXPORT f90_Intrinsic f90_randseed, f90_randseed8;

/* Puts the generator into the state that it starts from. */
QUILLFN_EXPORT void InitMarsagliaRander(void);

/* The state, 47 words from f90_getspace; and whether there is none yet. */
extern QUILLFN_DATA int32_t *Rand_buf;
extern QUILLFN_DATA int32_t TSeed;

/* ---- Clocks and dates ------------------------------------------------------ */

/* Seconds by the processor's counter. The first call measures the counter, which takes 0.05
 * seconds or more; nothing else may call the clock meanwhile. */
QUILLFN_EXPORT double QUILLf90_dclock(void);

/* CPU_TIME: the same, at most the greatest real of kind 4. */
QUILLFN_EXPORT void f90_cputime4(float *time);
QUILLFN_EXPORT void f90_cputime8(double *time);
QUILLFN_EXPORT void f90_cputime10(long double *time);
QUILLFN_EXPORT void f90_cputime16(f90_Real16 *time);

/* SYSTEM_CLOCK(COUNT, COUNT_RATE, COUNT_MAX): Result, Arg1 and Arg2 their addresses, each if
 * present; 32-bit integers, of the other forms 16- and 64-bit ones. */
extern QUILLFN_EXPORT f90_Intrinsic f90_sysclock, f90_sysclock2, f90_sysclock8;

/* Milliseconds of user time, and of all time of children that have ended; -1 when unknown. */
QUILLFN_EXPORT int32_t mclock_(void);

/* DATE_AND_TIME(DATE, TIME, ZONE, VALUES): Result, Arg1 and Arg2 strings of at least 8, 10 and
 * 5 bytes, Arg3 a descriptor of at least 8 elements, each if present; 32-bit integers, of the
 * other forms 16- and 64-bit ones. */
extern QUILLFN_EXPORT f90_Intrinsic f90_dateandtime, f90_dateandtime2, f90_dateandtime8;

#ifdef __cplusplus
}
#endif

/* Their engines and kernels. */
#include "quillfn/matmul.h"

#endif

// The members of the MATMUL families: the engines of each type, and the definitions of the
// exported engines and kernels, which turn addresses and strides into operands. The units
// list which type has which.
#pragma once

#include "matmul/adaptive_engine.h"
#include "matmul/entry.h"
#include "matmul/fixed_engine.h"
#include "matmul/logical_engines.h"
#include "matmul/vector_engines.h"

namespace quill {

// Numbers but the narrower complex ones have chunked vector engines.
enum class Blocking { Adaptive, Fixed };
enum class Vectors { Chunked, Whole };

template <class T, Blocking blocks, Vectors vectors, bool newer_entry> struct NumericEngines {
    using Element = T;
    static constexpr bool entry_sees_to_empty = newer_entry;

    static void matrix_matrix(int m, int n, int k, const Matrix &a, const Matrix &b,
                              const Matrix &c) {
        if constexpr (blocks == Blocking::Adaptive)
            blocking<T>(m, k, n, a, b, c);
        else
            fixed_product<T>(m, n, k, a, b, c);
    }
    static void vector_matrix(int n, int k, const Matrix &v, const Matrix &b, const Matrix &c) {
        if constexpr (vectors == Vectors::Chunked)
            engine_1x2<T>(n, k, v, b, c);
        else
            whole_1x2<T>(n, k, v, b, c);
    }
    static void matrix_vector(int m, int k, const Matrix &a, const Matrix &v, const Matrix &c) {
        if constexpr (vectors == Vectors::Chunked)
            engine_2x1<T>(m, k, a, v, c);
        else
            whole_2x1<T>(m, k, a, v, c);
    }
};

template <class T>
using AdaptiveEngines = NumericEngines<T, Blocking::Adaptive, Vectors::Chunked, true>;
template <class T> using FixedEngines = NumericEngines<T, Blocking::Fixed, Vectors::Chunked, false>;
using EnginesOfComplex8 = NumericEngines<Complex8, Blocking::Adaptive, Vectors::Whole, true>;
using EnginesOfComplex16 = NumericEngines<Complex16, Blocking::Fixed, Vectors::Whole, true>;

template <class T> struct LogicalEngines {
    using Element = T;
    static constexpr bool entry_sees_to_empty = false;

    static void matrix_matrix(int m, int n, int k, const Matrix &a, const Matrix &b,
                              const Matrix &c) {
        logical_2x2<T>(m, n, k, a, b, c);
    }
    static void vector_matrix(int n, int k, const Matrix &v, const Matrix &b, const Matrix &c) {
        logical_1x2<T>(n, k, v, b, c);
    }
    static void matrix_vector(int m, int k, const Matrix &a, const Matrix &v, const Matrix &c) {
        logical_2x1<T>(m, k, a, v, c);
    }
};

} // namespace quill

// T is the suffix of a type, E its element in the public declarations.

#define MATRIX_ENGINE(T, E, ENGINE)                                                                \
    void f90_Engine2x2##T(int m, int n, int k, E *a, int as1, int as2, E *b, int bs1, int bs2,     \
                          E *c, int cs1, int cs2) {                                                \
        ENGINE<quill::T>(m, n, k, quill::matrix<quill::T>(a, as1, as2),                            \
                         quill::matrix<quill::T>(b, bs1, bs2),                                     \
                         quill::matrix<quill::T>(c, cs1, cs2));                                    \
    }

#define VECTOR_ENGINES(T, E, ENGINE1X2, ENGINE2X1)                                                 \
    void f90_Engine1x2##T(int n, int k, E *v, int vs, E *b, int bs1, int bs2, E *c, int cs) {      \
        ENGINE1X2<quill::T>(n, k, quill::row<quill::T>(v, vs),                                     \
                            quill::matrix<quill::T>(b, bs1, bs2), quill::row<quill::T>(c, cs));    \
    }                                                                                              \
    void f90_Engine2x1##T(int m, int k, E *a, int as1, int as2, E *v, int vs, E *c, int cs) {      \
        ENGINE2X1<quill::T>(m, k, quill::matrix<quill::T>(a, as1, as2),                            \
                            quill::column<quill::T>(v, vs), quill::column<quill::T>(c, cs));       \
    }

#define COMPLEX_VECTOR_ENGINES(T, E)                                                               \
    void f90_MatMulVxM##T(int n, int k, E *v, int vs, E *b, int bs1, int bs2, E *c, int cs) {      \
        quill::whole_1x2<quill::T>(n, k, quill::row<quill::T>(v, vs),                              \
                                   quill::matrix<quill::T>(b, bs1, bs2),                           \
                                   quill::row<quill::T>(c, cs));                                   \
    }                                                                                              \
    void f90_MatMulMxV##T(int m, int k, E *a, int as1, int as2, E *v, int vs, E *c, int cs) {      \
        quill::whole_2x1<quill::T>(m, k, quill::matrix<quill::T>(a, as1, as2),                     \
                                   quill::column<quill::T>(v, vs),                                 \
                                   quill::column<quill::T>(c, cs));                                \
    }

#define ADAPTIVE_ENGINE(T, E)                                                                      \
    void f90_Blocking##T(int m, int k, int n, E *a, int as1, int as2, E *b, int bs1, int bs2,      \
                         E *c, int cs1, int cs2) {                                                 \
        quill::blocking<quill::T>(m, k, n, quill::matrix<quill::T>(a, as1, as2),                   \
                                  quill::matrix<quill::T>(b, bs1, bs2),                            \
                                  quill::matrix<quill::T>(c, cs1, cs2));                           \
    }                                                                                              \
    void f90_Engine2x2##T(int m, int n, int k, E *a, int as1, int as2, E *b, int bs1, int bs2,     \
                          E *c, int cs1, int cs2) {                                                \
        f90_Blocking##T(m, k, n, a, as1, as2, b, bs1, bs2, c, cs1, cs2);                           \
    }                                                                                              \
    void f90_Trans2##T(E *dest, E *src, int rows, int kc, int as1, int as2, int kp) {              \
        quill::trans2<quill::T>(quill::address(dest), quill::matrix<quill::T>(src, as1, as2),      \
                                rows, kc, kp);                                                     \
    }                                                                                              \
    void f90_Vector##T(int acc, int kp, int columns, int rows, E *blo, E *bhi, int bpitch,         \
                       E *aeven, E *aodd, int apitch, E *c, int cs2, int cs1, int cpair) {         \
        const quill::Matrix b = quill::matrix<quill::T>(blo, 1, bpitch);                           \
        const quill::Matrix a = quill::matrix<quill::T>(aeven, apitch, 1);                         \
        quill::vector_kernel<quill::T>(                                                            \
            acc != 0, kp, columns, rows, quill::halves(b, bhi), quill::halves(a, aodd),            \
            quill::matrix<quill::T>(c, cs1, cs2), quill::bytes<quill::T>(cpair));                  \
    }

#define BLOCK_KERNELS(T, E)                                                                        \
    void f90_ConvertBlock##T(E *dest, E *src, int rows, int kc, int as1, int as2) {                \
        quill::convert_block<quill::T, quill::rows_of_group<quill::T>>(                            \
            quill::address(dest), quill::matrix<quill::T>(src, as1, as2), rows, kc);               \
    }                                                                                              \
    void f90_CopyBlock##T(E *dest, E *src, int kc, int columns, int bs1, int bs2) {                \
        quill::copy_columns<quill::T>(quill::address(dest),                                        \
                                      quill::matrix<quill::T>(src, bs1, bs2), kc, columns, kc);    \
    }                                                                                              \
    void f90_Inner2x2##T(int acc, int rows, int columns, int kc, E *p, E *b, int bcs, E *c,        \
                         int cs1, int cs2) {                                                       \
        quill::inner_2x2<quill::T, quill::rows_of_group<quill::T>>(                                \
            acc == 1, rows, columns, kc, quill::address(p), quill::matrix<quill::T>(b, 1, bcs),    \
            quill::matrix<quill::T>(c, cs1, cs2));                                                 \
    }                                                                                              \
    void f90_Epilogue2x2##T(int acc, int rows, int columns, int kc, E *a, int as1, int as2, E *b,  \
                            int bs1, int bs2, E *c, int cs1, int cs2) {                            \
        quill::epilogue_2x2<quill::T>(                                                             \
            acc == 1, rows, columns, kc, quill::matrix<quill::T>(a, as1, as2),                     \
            quill::matrix<quill::T>(b, bs1, bs2), quill::matrix<quill::T>(c, cs1, cs2));           \
    }

#define VECTOR_KERNELS(T, E)                                                                       \
    void f90_CopyVector##T(E *dest, E *src, int count, int stride) {                               \
        quill::copy_vector<quill::T>(quill::address(dest), quill::address(src), count,             \
                                     quill::bytes<quill::T>(stride));                              \
    }                                                                                              \
    void f90_InitVector##T(E *dest, int count, int stride) {                                       \
        quill::clear<quill::T>(quill::column<quill::T>(dest, stride), count, 1);                   \
    }                                                                                              \
    void f90_Inner1x2##T(int acc, int n, int kc, E *v, E *b, int bs1, int bs2, E *c, int cs) {     \
        quill::inner_1x2<quill::T>(acc == 1, n, kc, quill::row<quill::T>(v, 1),                    \
                                   quill::matrix<quill::T>(b, bs1, bs2),                           \
                                   quill::row<quill::T>(c, cs));                                   \
    }                                                                                              \
    void f90_Epilogue1x2##T(int acc, int n, int kc, E *v, int vs, E *b, int bs1, int bs2, E *c,    \
                            int cs) {                                                              \
        quill::epilogue_1x2<quill::T>(acc == 1, n, kc, quill::row<quill::T>(v, vs),                \
                                      quill::matrix<quill::T>(b, bs1, bs2),                        \
                                      quill::row<quill::T>(c, cs));                                \
    }

#define COLUMN_KERNELS(T, E)                                                                       \
    void f90_Inner2x1##T(int acc, int m, int kc, E *a, int as1, int as2, E *v, E *c, int cs) {     \
        quill::inner_2x1<quill::T>(acc == 1, m, kc, quill::matrix<quill::T>(a, as1, as2),          \
                                   quill::column<quill::T>(v, 1), quill::column<quill::T>(c, cs)); \
    }                                                                                              \
    void f90_Epilogue2x1##T(int acc, int m, int kc, E *a, int as1, int as2, E *v, int vs, E *c,    \
                            int cs) {                                                              \
        quill::epilogue_2x1<quill::T>(acc == 1, m, kc, quill::matrix<quill::T>(a, as1, as2),       \
                                      quill::column<quill::T>(v, vs),                              \
                                      quill::column<quill::T>(c, cs));                             \
    }

#define ADDING_COLUMN_KERNELS(T, E)                                                                \
    void f90_Inner2x1##T(int m, int kc, E *a, int as1, int as2, E *v, E *c, int cs) {              \
        quill::inner_2x1<quill::T>(true, m, kc, quill::matrix<quill::T>(a, as1, as2),              \
                                   quill::column<quill::T>(v, 1), quill::column<quill::T>(c, cs)); \
    }                                                                                              \
    void f90_Epilogue2x1##T(int m, int kc, E *a, int as1, int as2, E *v, int vs, E *c, int cs) {   \
        quill::epilogue_2x1<quill::T>(true, m, kc, quill::matrix<quill::T>(a, as1, as2),           \
                                      quill::column<quill::T>(v, vs),                              \
                                      quill::column<quill::T>(c, cs));                             \
    }

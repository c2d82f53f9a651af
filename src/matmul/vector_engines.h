// MATMUL with a vector: f90_Engine1x2 and f90_Engine2x1 in chunks of K, the part that
// fills no chunk first; f90_MatMulVxM and f90_MatMulMxV of the narrower complex types
// without chunks.
#pragma once

#include "matmul/kernels.h"
#include "matmul/lines.h"
#include "matmul/packing.h"

#include <algorithm>

namespace quill {

// How f90_Engine2x1 begins: it clears C and always adds; or the tail is stored, of which a
// last odd k is a sum of its own; or the tail is stored as one sum.
enum class Begin { ZeroFirst, SplitTail, WholeTail };

// In elements: a chunk of K, what the tail of f90_Engine1x2 is cut to a multiple of.
struct VectorChunks {
    int chunk;
    int k_step;
    Begin begin;
};
// clang-format off
template <class T> constexpr VectorChunks vector_chunks{};
template <> inline constexpr VectorChunks vector_chunks<Int1>      {1536, 4, Begin::SplitTail};
template <> inline constexpr VectorChunks vector_chunks<Int2>      { 512, 4, Begin::ZeroFirst};
template <> inline constexpr VectorChunks vector_chunks<Int4>      { 256, 4, Begin::WholeTail};
template <> inline constexpr VectorChunks vector_chunks<Int8>      { 256, 4, Begin::WholeTail};
template <> inline constexpr VectorChunks vector_chunks<Real4>     { 512, 4, Begin::ZeroFirst};
template <> inline constexpr VectorChunks vector_chunks<Real8>     { 256, 4, Begin::ZeroFirst};
template <> inline constexpr VectorChunks vector_chunks<Real10>    { 128, 2, Begin::SplitTail};
template <> inline constexpr VectorChunks vector_chunks<Real16>    { 128, 2, Begin::ZeroFirst};
template <> inline constexpr VectorChunks vector_chunks<Complex16> { 128, 2, Begin::WholeTail};
template <> inline constexpr VectorChunks vector_chunks<Complex20> { 128, 2, Begin::SplitTail};
template <> inline constexpr VectorChunks vector_chunks<Complex32> { 128, 2, Begin::SplitTail};
// clang-format on

// ---- One chunk --------------------------------------------------------------

template <class T>
void inner_1x2(bool add, int columns, int kc, const Matrix &v, const Matrix &b, const Matrix &c) {
    const Matrix lines{b.at, b.step2, b.step1};
    if (!multiply_lines<T, Place::First>({add, columns, kc, lines, v.at, {c.at, c.step2, 0}}))
        kernel_1x2<T, OneByOne>(add, columns, kc, v, b, c);
}

template <class T>
void epilogue_1x2(bool add, int columns, int kc, const Matrix &v, const Matrix &b,
                  const Matrix &c) {
    kernel_1x2<T, Finished>(add, columns, kc, v, b, c);
}

template <class T>
void inner_2x1(bool add, int rows, int kc, const Matrix &a, const Matrix &v, const Matrix &c) {
    constexpr int at_once = is_complex<T> ? 2 : 4;
    if constexpr (std::is_same_v<T, Real16>)
        inner_2x1_by_pairs(rows, kc, a, v, c);
    else if (!multiply_lines<T, Place::Second>({add, rows, kc, a, v.at, c}))
        kernel_2x1<T, OneByOne, at_once>(add, rows, kc, a, v, c);
}

template <class T>
void epilogue_2x1(bool add, int rows, int kc, const Matrix &a, const Matrix &v, const Matrix &c) {
    kernel_2x1<T, Finished, 4>(add, rows, kc, a, v, c);
}

// v from k0 on, dense: itself, or gathered.
template <class T> Bytes dense_piece(Bytes staging, Bytes v, std::ptrdiff_t step, int k0, int kc) {
    if (step == bytes<T>(1)) return v + k0 * step;
    copy_vector<T>(staging, v + k0 * step, kc, step);
    return staging;
}

// ---- The engines ------------------------------------------------------------

template <class T> void panel_1x2(int n, int k, const Matrix &v, const Matrix &b, const Matrix &c) {
    constexpr VectorChunks sizes = vector_chunks<T>;
    alignas(4) std::byte staging[sizes.chunk * sizeof(T)];
    const auto inner = [&](bool add, int k0, int kc) {
        Bytes piece = dense_piece<T>(staging, v.at, v.step2, k0, kc);
        inner_1x2<T>(add, n, kc, row<T>(piece, 1), b.from(k0, 0), c);
    };
    const int full = k / sizes.chunk * sizes.chunk;
    const int tail = k - full;
    const int stepped = tail / sizes.k_step * sizes.k_step;
    if (tail == 0) clear<T>(c, 1, n);
    if (stepped > 0) inner(false, full, stepped);
    if (tail > stepped)
        epilogue_1x2<T>(stepped > 0, n, tail - stepped, v.from(0, full + stepped),
                        b.from(full + stepped, 0), c);
    for (int k0 = 0; k0 < full; k0 += sizes.chunk) inner(true, k0, sizes.chunk);
}

// v and c are rows. Where K has several chunks, B is read in panels of columns, down all of
// K, in as few streams as the processor can follow.
template <class T>
void engine_1x2(int n, int k, const Matrix &v, const Matrix &b, const Matrix &c) {
    const int panel = k > vector_chunks<T>.chunk ? 96 : n;
    for (int j = 0; j < n; j += panel)
        panel_1x2<T>(std::min(panel, n - j), k, v, b.from(0, j), c.from(0, j));
}

// v and c are columns.
template <class T>
void engine_2x1(int m, int k, const Matrix &a, const Matrix &v, const Matrix &c) {
    constexpr VectorChunks sizes = vector_chunks<T>;
    alignas(4) std::byte staging[sizes.chunk * sizeof(T)];
    const auto inner = [&](bool add, int k0, int kc) {
        Bytes piece = dense_piece<T>(staging, v.at, v.step1, k0, kc);
        inner_2x1<T>(add, m, kc, a.from(0, k0), column<T>(piece, 1), c);
    };
    const int full = k / sizes.chunk * sizes.chunk;
    const int tail = k - full;
    const int stepped = sizes.begin == Begin::WholeTail ? tail : tail / 2 * 2;
    const bool cleared = sizes.begin == Begin::ZeroFirst || tail == 0;
    if (cleared) clear<T>(c, m, 1);
    if (stepped > 0) inner(cleared, full, stepped);
    if (tail > stepped)
        epilogue_2x1<T>(cleared || stepped > 0, m, tail - stepped, a.from(0, full + stepped),
                        v.from(full + stepped, 0), c);
    for (int k0 = 0; k0 < full; k0 += sizes.chunk) inner(true, k0, sizes.chunk);
}

// All of K in one sum. C of f90_MatMulMxV with unit stride is promised to carry the running
// sum, rounded after every k: so is a sum in a register of the element's width.
template <class T> void whole_1x2(int n, int k, const Matrix &v, const Matrix &b, const Matrix &c) {
    if (v.step2 == bytes<T>(1))
        inner_1x2<T>(false, n, k, v, b, c);
    else
        kernel_1x2<T, OneByOne>(false, n, k, v, b, c);
}
template <class T> void whole_2x1(int m, int k, const Matrix &a, const Matrix &v, const Matrix &c) {
    if (v.step1 == bytes<T>(1))
        inner_2x1<T>(false, m, k, a, v, c);
    else
        kernel_2x1<T, OneByOne, 4>(false, m, k, a, v, c);
}

} // namespace quill

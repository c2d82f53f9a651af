// f90_Engine2x2 of INTEGER(1), (4) and (8), the 80-bit real and the wider complex types:
// blocks of C of a fixed size, each finished before the next. The part of K that fills no
// K block comes first, so the highest k are summed first.
#pragma once

#include "matmul/kernels.h"
#include "matmul/packing.h"
#include "matmul/tile.h"

#include <algorithm>

namespace quill {

// In elements: columns and rows of a block of C, the K block, rows of a strip of A, rows of
// a kernel's group, its step along K, and what rows left over are packed in multiples of.
struct FixedBlocks {
    int columns;
    int rows;
    int k_block;
    int strip;
    int group;
    int k_step;
    int left_over;
};
// clang-format off
template <class T> constexpr FixedBlocks fixed_blocks{};
template <> inline constexpr FixedBlocks fixed_blocks<Int1>      {256, 128, 128, 32, 4, 2, 4};
template <> inline constexpr FixedBlocks fixed_blocks<Int4>      { 96,  96,  64, 16, 4, 4, 4};
template <> inline constexpr FixedBlocks fixed_blocks<Int8>      { 64,  64,  64,  8, 4, 2, 4};
template <> inline constexpr FixedBlocks fixed_blocks<Real10>    { 64,  64,  32,  8, 4, 2, 4};
template <> inline constexpr FixedBlocks fixed_blocks<Complex16> { 96,  64,  32,  8, 2, 2, 2};
template <> inline constexpr FixedBlocks fixed_blocks<Complex20> { 64,  64,  32,  8, 2, 2, 4};
template <> inline constexpr FixedBlocks fixed_blocks<Complex32> { 64,  64,  32,  8, 4, 2, 4};
// clang-format on

// The members of the adaptive types, which nothing here calls, pack in groups of 4.
template <class T> constexpr int rows_of_group = 4;
template <> inline constexpr int rows_of_group<Complex16> = fixed_blocks<Complex16>.group;
template <> inline constexpr int rows_of_group<Complex20> = fixed_blocks<Complex20>.group;

// ---- Rows of a block --------------------------------------------------------

// A block of C in the making: how many columns, how many k, and the source of B.
struct BlockPass {
    bool add;
    int columns;
    int kc;
    Matrix b;
    Bytes strip;
};

// `rows` of a block, at most a strip of them, through the strip.
template <class T, class Form>
void multiply_strip(const BlockPass &pass, int rows, const Matrix &a, const Matrix &c) {
    if constexpr (is_vectorisable<T>) {
        const int width = tile_width<T>(rows, fixed_blocks<T>.strip);
        pack_tiles<T>(width, pass.strip, alternating(a), rows, pass.kc);
        multiply_tiles<T, Form>(width, pass.add, rows, pass.columns, pass.kc, pass.strip, pass.b,
                                c);
    } else if constexpr (std::is_same_v<Form, OneByOne>) {
        convert_block<T, rows_of_group<T>>(pass.strip, a, rows, pass.kc);
        inner_2x2<T, rows_of_group<T>>(pass.add, rows, pass.columns, pass.kc, pass.strip, pass.b,
                                       c);
    } else {
        epilogue_2x2<T>(pass.add, rows, pass.columns, pass.kc, a, pass.b, c);
    }
}

// Rows first to last of the block, strip by strip.
template <class T, class Form>
void multiply_rows(const BlockPass &pass, int first, int last, const Matrix &a, const Matrix &c) {
    for (int i = first; i < last; i += fixed_blocks<T>.strip)
        multiply_strip<T, Form>(pass, std::min(fixed_blocks<T>.strip, last - i), a.from(i, 0),
                                c.from(i, 0));
}

// B itself where it is dense along k, or its copy in the panel.
template <class T> Matrix source(Bytes panel, const Matrix &b, int kc, int columns) {
    if (b.step1 == bytes<T>(1)) return b;
    copy_columns<T>(panel, b, kc, columns, kc);
    return {panel, bytes<T>(1), bytes<T>(kc)};
}

// ---- The engine -------------------------------------------------------------

// The part of K that fills no K block, which makes the block of C: the kernel's steps in
// whole strips of rows, the rows left over, and then the last k by all rows.
template <class T>
void tail_pass(Bytes panel, Bytes strip, int rows, int columns, int kc, const Matrix &a,
               const Matrix &b, const Matrix &c) {
    constexpr FixedBlocks sizes = fixed_blocks<T>;
    if (kc == 0) return clear<T>(c, rows, columns);
    const int stepped = kc / sizes.k_step * sizes.k_step;
    if (stepped > 0) {
        const int whole = rows / sizes.strip * sizes.strip;
        const BlockPass pass{false, columns, stepped, source<T>(panel, b, stepped, columns), strip};
        multiply_rows<T, OneByOne>(pass, 0, whole, a, c);
        multiply_rows<T, Finished>(pass, whole, rows, a, c);
    }
    if (const int rest = kc - stepped; rest > 0) {
        const Matrix last = source<T>(panel, b.from(stepped, 0), rest, columns);
        multiply_rows<T, Finished>({stepped > 0, columns, rest, last, strip}, 0, rows,
                                   a.from(0, stepped), c);
    }
}

// A K block, added to the block of C. Rows that fill no strip are packed but for the last
// few.
template <class T>
void full_pass(Bytes panel, Bytes strip, int rows, int columns, const Matrix &a, const Matrix &b,
               const Matrix &c) {
    constexpr FixedBlocks sizes = fixed_blocks<T>;
    const int whole = rows / sizes.strip * sizes.strip;
    const int packed = whole + (rows - whole) / sizes.left_over * sizes.left_over;
    const BlockPass pass{true, columns, sizes.k_block, source<T>(panel, b, sizes.k_block, columns),
                         strip};
    multiply_rows<T, OneByOne>(pass, 0, packed, a, c);
    multiply_rows<T, Finished>(pass, packed, rows, a, c);
}

// m, n and k may be 0.
template <class T>
[[gnu::noinline]] void fixed_product(int m, int n, int k, const Matrix &a, const Matrix &b,
                                     const Matrix &c) {
    constexpr FixedBlocks sizes = fixed_blocks<T>;
    constexpr int lane_bytes =
        is_vectorisable<T> ? planes<T> * int{sizeof(Lane<T>)} : int{sizeof(T)};
    alignas(64) std::byte panel[sizes.columns * sizes.k_block * sizeof(T)];
    alignas(64) std::byte strip[sizes.strip * sizes.k_block * lane_bytes];
    const int full = k / sizes.k_block * sizes.k_block;
    for (int j = 0; j < n; j += sizes.columns)
        for (int i = 0; i < m; i += sizes.rows) {
            const int columns = std::min(sizes.columns, n - j);
            const int rows = std::min(sizes.rows, m - i);
            const Matrix block = c.from(i, j);
            tail_pass<T>(panel, strip, rows, columns, k - full, a.from(i, full), b.from(full, j),
                         block);
            for (int k0 = 0; k0 < full; k0 += sizes.k_block)
                full_pass<T>(panel, strip, rows, columns, a.from(i, k0), b.from(k0, j), block);
        }
}

} // namespace quill

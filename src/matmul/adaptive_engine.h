// f90_Engine2x2 and f90_Blocking of INTEGER(2), REAL(4), REAL(8), COMPLEX of 32-bit parts
// and kind 16: block sizes from K, blocks packed into one work area on the stack, K
// outermost. Each chunk of K gives every element of C one sum; block sizes decide speed
// alone.
#pragma once

#include "matmul/kernels.h"
#include "matmul/packing.h"
#include "matmul/tile.h"

#include <algorithm>

namespace quill {

// ---- Block sizes ------------------------------------------------------------

// In elements: the longest chunk of K, what a chunk is rounded up to, the multiple that a
// chunk avoids by so many elements, and how much of B and half of A a block may hold.
struct AdaptiveLimits {
    int longest;
    int align;
    int conflict;
    int columns;
    int rows;
    int reduction;
    bool small_path;
};
// clang-format off
template <class T> constexpr AdaptiveLimits adaptive_limits{};
template <> inline constexpr AdaptiveLimits adaptive_limits<Int2>     {8192, 16, 64, 32768, 65536, 8, true};
template <> inline constexpr AdaptiveLimits adaptive_limits<Real4>    {4096,  8, 32, 16384, 32768, 8, true};
template <> inline constexpr AdaptiveLimits adaptive_limits<Real8>    {2048,  4, 16,  8192, 16384, 8, true};
template <> inline constexpr AdaptiveLimits adaptive_limits<Complex8> {2048,  4, 16,  8192, 16384, 8, false};
template <> inline constexpr AdaptiveLimits adaptive_limits<Real16>   {1024,  2,  8,  4096,  8192, 8, true};
// clang-format on

constexpr int rounded_up(int count, int multiple) {
    return (count + multiple - 1) / multiple * multiple;
}

// The chunks of K: `chunks` of them, all of length `chunk` but the last; and how many
// columns of B and rows of A a block has.
struct Blocks {
    int chunk;
    int chunks;
    int last;
    int columns;
    int rows;

    constexpr int longest() const { return std::max(chunks > 1 ? chunk : last, last); }
    constexpr int length(int number) const { return number < chunks - 1 ? chunk : last; }
};

// K spread evenly over the fewest chunks, then aligned, and moved off the conflicts.
constexpr int chunk_length(const AdaptiveLimits &limits, int k) {
    const int fewest = (k - 1) / limits.longest + 1;
    const int chunk = rounded_up(k / fewest, limits.align);
    if (chunk % limits.conflict != 0) return chunk;
    return chunk > limits.reduction ? chunk - limits.reduction : k;
}

template <class T> constexpr Blocks blocks_for(int k) {
    constexpr AdaptiveLimits limits = adaptive_limits<T>;
    Blocks blocks{};
    blocks.chunk = chunk_length(limits, k);
    blocks.chunks = k / blocks.chunk;
    blocks.last = blocks.chunk;
    const int rest = k % blocks.chunk;
    if (rest > 0 && blocks.chunks > 0 && blocks.chunk + rest < limits.longest) {
        blocks.last += rest;
    } else if (rest > 0) {
        ++blocks.chunks;
        blocks.last = rest;
    }
    const int basis = blocks.length(0);
    blocks.columns = std::max(limits.columns / basis / 2 * 2 - 2, 2);
    blocks.rows = limits.rows / basis * 2 + (limits.rows % basis >= basis / 2 ? 2 : 0);
    return blocks;
}

// ---- The walk ---------------------------------------------------------------

// One block of C in one chunk. A is packed by the first block of a pass along N, B copied
// by every block but the one on which the pass before it, of the same chunk, ended.
struct BlockVisit {
    int chunk;
    int row;
    int column;
    bool packs_a;
    bool copies_b;
    int next_column; // of this pass; at its end the same
};

// A serpentine in both dimensions: each pass, and each chunk, starts where the last ended.
template <class Visit>
void walk_blocks(int chunks, int row_blocks, int column_blocks, Visit visit) {
    int row = 0;
    int column = 0;
    int down = 1;
    int right = 1;
    for (int chunk = 0; chunk < chunks; ++chunk, down = -down)
        for (int i = 0; i < row_blocks; ++i, right = -right) {
            for (int j = 0; j < column_blocks; ++j) {
                const int next = j + 1 < column_blocks ? column + right : column;
                visit(BlockVisit{chunk, row, column, j == 0, j > 0 || i == 0, next});
                column = next;
            }
            if (i + 1 < row_blocks) row += down;
        }
}

// A dimension of C cut into blocks, all of `size` but the last.
struct Cut {
    int size;
    int count;
    int last;

    Cut(int extent, int block)
        : size(block), count((extent - 1) / block + 1), last(extent - (count - 1) * block) {}
    int at(int number) const { return number < count - 1 ? size : last; }
    int largest() const { return count > 1 ? size : last; }
};

// ---- The engine -------------------------------------------------------------

// The types whose products are made of tiles; the others use the plain kernel.
template <class T> constexpr bool has_tiles = is_vectorisable<T>;

// The work area holds so many rows of the longest chunk, and room to align tiles.
constexpr int area_rows = 42;
constexpr int cache_line = 64;
template <class T> constexpr int area_spare = has_tiles<T> ? 256 : 0;

// Below so many bytes of B nothing is blocked.
constexpr int small_limit = 16000;

// Block sizes as the engine takes them, and the width of its vectors: as many whole blocks
// of columns at once as a tile has columns, rows in whole tiles, and everything capped by
// what the area holds.
struct Fit {
    Blocks blocks;
    int width;
};

template <class T> Fit fitted(Blocks blocks, int m) {
    constexpr AdaptiveLimits limits = adaptive_limits<T>;
    const int area = area_rows * limits.longest / rounded_up(blocks.longest(), limits.align);
    if constexpr (has_tiles<T>) {
        const int at_once = TileKernel<T, OneByOne>::columns_at_once;
        blocks.columns *= std::max(at_once / blocks.columns, 1);
        blocks.columns = std::min(blocks.columns, area / 4 / 2 * 2);
        const int room = (area - blocks.columns) / 2; // A lies there twice
        const int width = tile_width<T>(std::min(m, blocks.rows), room);
        const int tile = rows_of_tile<T>(width);
        blocks.rows = std::min(rounded_up(blocks.rows, tile), room / tile * tile);
        return {blocks, width};
    } else {
        blocks.columns = std::min(blocks.columns, area / 2 / 2 * 2);
        blocks.rows = std::min(blocks.rows, area - blocks.columns);
        return {blocks, 0};
    }
}

// Zeros behind kc elements of rows of kp.
template <class T> void pad(Bytes to, int rows, int kc, int kp) {
    clear<T>({to + bytes<T>(kc), bytes<T>(1), bytes<T>(kp)}, kp - kc, rows);
}

// Where tiles start behind so many rows of kp elements.
template <class T> std::ptrdiff_t tiles_at(int rows, int kp) {
    const std::ptrdiff_t behind = rows * bytes<T>(kp);
    return (behind + cache_line - 1) / cache_line * cache_line;
}

// The next block of B, to be brought near by a product of so many tiles.
template <class T> Upcoming upcoming_block(const Matrix &next, int columns, int kc, int tiles) {
    if (next.step1 != bytes<T>(1)) return {};
    const std::ptrdiff_t length = bytes<T>(kc);
    const int lines = columns * static_cast<int>(length / Upcoming::line + 1);
    const int calls = tiles * ((kc - 1) / Upcoming::interval + 1);
    return {next.at, next.at + length, next.step2, length, (lines - 1) / calls + 1};
}

// A block of C from the work area; `next` is the block of B that will be copied next.
template <class T>
void multiply_block(int width, bool add, int rows, int columns, int kp, Bytes area,
                    const Halves &packed_a, ConstBytes tiles, const Matrix &c, const Matrix &next) {
    const Matrix b{area, bytes<T>(1), bytes<T>(kp)};
    if constexpr (has_tiles<T>) {
        const int tiles_of_c = ((rows - 1) / rows_of_tile<T>(width) + 1) *
                               ((columns - 1) / TileKernel<T, OneByOne>::columns_at_once + 1);
        multiply_tiles<T, OneByOne>(width, add, rows, columns, kp, tiles, b, c,
                                    upcoming_block<T>(next, columns, kp, tiles_of_c));
    } else {
        const int half = (columns + 1) / 2;
        vector_kernel<T>(add, kp, columns, rows, {b, half * b.step2}, packed_a, c, half * c.step2);
    }
}

// The work area: rows of kp elements, first columns of B, then A by rows of even and of
// odd index, and behind them A in tile order.
template <class T>
void blocked_product(Bytes area, int m, int k, int n, const Matrix &a, const Matrix &b,
                     const Matrix &c) {
    const Fit fit = fitted<T>(blocks_for<T>(k), m);
    const Blocks &blocks = fit.blocks;
    const Cut down(m, blocks.rows);
    const Cut right(n, blocks.columns);
    const int half = (right.largest() + 1) / 2;
    int padded = -1; // the last chunk for which B's rows were padded
    walk_blocks(blocks.chunks, down.count, right.count, [&](const BlockVisit &visit) {
        const int k0 = visit.chunk * blocks.chunk;
        const int kc = blocks.length(visit.chunk);
        const int kp = rounded_up(kc, adaptive_limits<T>.align);
        const std::ptrdiff_t pitch = bytes<T>(kp);
        const int i0 = visit.row * down.size;
        const int j0 = visit.column * right.size;
        const int rows = down.at(visit.row);
        const int columns = right.at(visit.column);
        const Halves packed_a{{area + 2 * half * pitch, pitch, bytes<T>(1)},
                              (rows + 1) / 2 * pitch};
        Bytes tiles = area + tiles_at<T>(2 * half + down.largest(), kp);
        if (visit.packs_a) {
            trans2<T>(packed_a.first.at, a.from(i0, k0), rows, kc, kp);
            if constexpr (has_tiles<T>) pack_tiles<T>(fit.width, tiles, packed_a, rows, kp);
        }
        if (visit.copies_b) {
            copy_columns<T>(area, b.from(k0, j0), kc, columns, kp);
            if (padded != visit.chunk) pad<T>(area, 2 * half, kc, kp);
            padded = visit.chunk;
        }
        multiply_block<T>(fit.width, visit.chunk > 0, rows, columns, kp, area, packed_a, tiles,
                          c.from(i0, j0), b.from(k0, visit.next_column * right.size));
    });
}

// ---- Small products ---------------------------------------------------------

// One sum over all of K for each element. A is taken a tile of rows at a time, in place
// where it lies as tiles do; B in place where its columns are dense.
template <class T>
void small_product(Bytes area, int m, int k, int n, const Matrix &a, const Matrix &b,
                   const Matrix &c) {
    if constexpr (has_tiles<T>) {
        Matrix columns = b;
        Bytes tile = area;
        if (b.step1 != bytes<T>(1)) {
            copy_columns<T>(area, b, k, n, k);
            columns = {area, bytes<T>(1), bytes<T>(k)};
            tile = area + small_limit; // B is smaller
        }
        const int width = tile_width<T>(m, m);
        const int tile_rows = rows_of_tile<T>(width);
        const int in_place = a.step1 == bytes<T>(1) ? m / tile_rows * tile_rows : 0;
        TileProduct in_a{false, in_place, n, k, a.at, a.step2, width, columns, c, {}};
        if (in_place > 0) run_at_width<TileKernel<T, OneByOne>>(width, in_a);
        for (int i = in_place; i < m; i += tile_rows) {
            const int rows = std::min(tile_rows, m - i);
            pack_tiles<T>(width, tile, alternating(a.from(i, 0)), rows, k);
            multiply_tiles<T, OneByOne>(width, false, rows, n, k, tile, columns, c.from(i, 0));
        }
    } else {
        for (int j = 0; j < n; ++j)
            kernel_2x1<T, OneByOne, 4>(false, m, k, a, b.from(0, j), c.from(0, j));
    }
}

// ---- The family -------------------------------------------------------------

// All storage is this area on the stack. m, k and n are at least 1.
template <class T>
[[gnu::noinline]] void blocking(int m, int k, int n, const Matrix &a, const Matrix &b,
                                const Matrix &c) {
    constexpr AdaptiveLimits limits = adaptive_limits<T>;
    alignas(cache_line) std::byte area[area_rows * limits.longest * sizeof(T) + area_spare<T>];
    const std::int64_t b_bytes = std::int64_t{k} * n * std::int64_t{sizeof(T)};
    if (limits.small_path && b_bytes < small_limit)
        small_product<T>(area, m, k, n, a, b, c);
    else
        blocked_product<T>(area, m, k, n, a, b, c);
}

} // namespace quill

// Storage between inaccessible pages: a read or write just outside of it ends the
// process. And arrays in such storage, for the families that move elements by size.
#pragma once

#include "support.h"

#include <algorithm>
#include <sys/mman.h>

namespace test {

// It starts as 0xA5 bytes.
struct Guarded {
    static constexpr std::size_t guard = 256 << 10; // bytes on either side
    std::size_t size;                               // whole pages
    std::byte *mapping;

    explicit Guarded(std::size_t least) : size((least + 4095) / 4096 * 4096) {
        mapping = static_cast<std::byte *>(
            mmap(nullptr, size + 2 * guard, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(begin(), size, PROT_READ | PROT_WRITE);
        std::memset(begin(), 0xA5, size);
    }
    Guarded(const Guarded &) = delete;
    ~Guarded() { munmap(mapping, size + 2 * guard); }

    std::byte *begin() const { return mapping + guard; } // right behind an inaccessible page
    std::byte *end() const { return begin() + size; }    // the next page is inaccessible
};

// Elements of the members that move them by size, in the order of the members: from 8 on those
// of the n member.
inline const int moved_sizes[] = {1, 2, 4, 8, 10, 16, 20, 32, 0, 1, 3, 8, 12, 24, 100};

// Elements of the k-th of these sizes, full of noise as the room about them, close to one of
// the inaccessible pages. A scalar's EXTENT is noise too.
struct GuardedArray : Array {
    Guarded pages;

    GuardedArray(Random &random, int k, const Shape &extents, bool spaced)
        : Array(make_array(random, extents, std::max(moved_sizes[k], 1), spaced,
                           k < 8 ? std::min(4, moved_sizes[k] & -moved_sizes[k]) : 1)),
          pages(storage.size()) {
        const int ahead = coin(random) ? 0 : pages.size - storage.size();
        for (std::ptrdiff_t &offset : offsets) offset += ahead;
        auto *const first = size() == 0 ? nullptr : at(0);
        const auto moved = std::uintptr_t(first) - std::uintptr_t(descriptor.BASE);
        descriptor.ZERO = reinterpret_cast<void *>(std::uintptr_t(descriptor.ZERO) + moved);
        descriptor.BASE = first;
        descriptor.ELSIZE = moved_sizes[k];
        if (extents.empty()) descriptor.EXTENT = pick(random, 0, 1);
        unsigned any = random();
        for (auto *b = pages.begin(); b < pages.end();) *b++ = std::byte((any += 0x9E3779B1) >> 24);
    }
    std::byte *at(std::size_t i) const { return pages.begin() + offsets[i]; }
};

// The storage that the library has taken from this program, and what it gave back.
extern int spaces_taken, spaces_given_back;

} // namespace test

// Storage between inaccessible pages: a read or write just outside of it ends the
// process. It starts as 0xA5 bytes.
#pragma once

#include <cstddef>
#include <cstring>
#include <sys/mman.h>

namespace test {

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

} // namespace test

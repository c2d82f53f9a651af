// Moves of elements that are told apart by size alone: of one, of a run, of a section. A size
// that the name of an entry tells is a template parameter of the loops over a run.
#pragma once

#include "frame/cursor.h"
#include "frame/lanes.h"

#include <algorithm>
#include <cstring>

namespace quill {

// ---- Bytes --------------------------------------------------------------------

// Count bytes as the first and the last T of them, which may overlap.
template <class T> void copy_ends(Bytes to, ConstBytes from, std::size_t count) {
    T first;
    T last;
    std::memcpy(&first, from, sizeof(T));
    std::memcpy(&last, from + count - sizeof(T), sizeof(T));
    std::memcpy(to, &first, sizeof(T));
    std::memcpy(to + count - sizeof(T), &last, sizeof(T));
}

typedef std::int64_t SixteenBytes __attribute__((vector_size(16)));

// memcpy, in place for few bytes. Steps and sizes vary from call to call, so that it is
// never known to the compiler how few.
inline void copy_bytes(Bytes to, ConstBytes from, std::size_t count) {
    if (count > 64) {
        std::memcpy(to, from, count);
    } else if (count > 32) {
        copy_ends<SixteenBytes[2]>(to, from, count);
    } else if (count >= 16) {
        copy_ends<SixteenBytes>(to, from, count);
    } else if (count >= 8) {
        copy_ends<std::uint64_t>(to, from, count);
    } else if (count >= 4) {
        copy_ends<std::uint32_t>(to, from, count);
    } else if (count > 0) {
        copy_ends<std::uint8_t>(to, from, count);
        to[count / 2] = from[count / 2];
    }
}

// Fills `bytes` with the first `pattern` of them, over and over. What stands already is copied
// on, in parts that stay in the nearest cache.
inline void copy_on(Bytes to, std::size_t pattern, std::size_t bytes) {
    constexpr std::size_t near = 4096;
    std::size_t part = pattern;
    for (std::size_t done = pattern; done < bytes; done += part) {
        if (done < near) part = done;
        if (part > bytes - done) part = bytes - done;
        copy_bytes(to + done, to, part);
    }
}

// ---- Runs of elements -------------------------------------------------------------

// In place of a size that the name of an entry tells: ELSIZE.
constexpr std::int32_t any_size = 0;

template <std::int32_t Size>
void move_element(Bytes to, ConstBytes from, [[maybe_unused]] std::int32_t elsize) {
    if constexpr (Size == any_size)
        copy_bytes(to, from, static_cast<std::size_t>(elsize));
    else
        std::memcpy(to, from, Size);
}

template <class Size> std::size_t bytes_of(std::int32_t count, Size size) {
    return static_cast<std::size_t>(count) * static_cast<std::size_t>(size);
}

// What holds an element of 1 to 8 bytes in one register.
template <std::int32_t Size>
using InRegister =
    std::conditional_t<Size == 8, double, std::conditional_t<Size == 4, float, SignedOfSize<Size>>>;

// An element on its way into a vector: built in memory, narrow stores would hold up the vector's
// load. Always inlined: an x87 result would make a signalling NaN quiet.
template <std::int32_t Size> [[gnu::always_inline]] inline InRegister<Size> loaded(ConstBytes at) {
    typedef InRegister<Size> AtAnyAddress __attribute__((may_alias, aligned(1)));
    return *reinterpret_cast<const AtAnyAddress *>(at);
}

// Sixteen bytes of the elements from `from` on, a step apart.
template <std::int32_t Size> auto gathered(ConstBytes from, std::ptrdiff_t step) {
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return Lanes<InRegister<Size>, 16>{loaded<Size>(from + i * step)...};
    }
    (std::make_integer_sequence<int, 16 / Size>());
}

// Sixteen bytes of the element at `from`, over and over.
template <std::int32_t Size> auto sixteen_bytes_of(ConstBytes from) {
    if constexpr (Size == 16)
        return load_lanes<SixteenBytes>(from);
    else
        return gathered<Size>(from, 0);
}

// Makes count elements without gaps out of the one at `from`. Of a size that divides a vector
// whole vectors are stored, the last of them up to the end.
template <std::int32_t Size>
void repeat_element(Bytes to, ConstBytes from, std::int32_t size, std::int32_t count) {
    const std::size_t bytes = bytes_of(count, size);
    if constexpr (Size == 1 || Size == 2 || Size == 4 || Size == 8 || Size == 16) {
        const auto pattern = sixteen_bytes_of<Size>(from);
        if (bytes < sizeof pattern) {
            for (std::size_t i = 0; i < bytes; i += Size) std::memcpy(to + i, &pattern, Size);
            return;
        }
        for (std::size_t i = 0; i < bytes - sizeof pattern; i += sizeof pattern)
            std::memcpy(to + i, &pattern, sizeof pattern);
        std::memcpy(to + bytes - sizeof pattern, &pattern, sizeof pattern);
    } else {
        move_element<Size>(to, from, size);
        copy_on(to, bytes_of(1, size), bytes);
    }
}

// Elements that become neighbours go by vectors. A function of its own: beside calls the
// compiler would keep its counter in memory.
template <std::int32_t Size>
[[gnu::noinline]] void move_strided(std::int32_t elsize, Bytes to, std::ptrdiff_t to_step,
                                    ConstBytes from, std::ptrdiff_t from_step, std::int32_t count) {
    if constexpr (Size == 4 || Size == 8) {
        constexpr std::int32_t together = 16 / Size;
        if (to_step == Size) {
#pragma GCC unroll 2
            for (; count >= together; count -= together) {
                const auto elements = gathered<Size>(from, from_step);
                std::memcpy(to, &elements, sizeof elements);
                to += sizeof elements;
                from += together * from_step;
            }
        }
    }
#pragma GCC unroll 4
    for (; count > 0; --count) {
        move_element<Size>(to, from, elsize);
        to += to_step;
        from += from_step;
    }
}

// Moves count elements, Size bytes or else elsize of each; a from_step of 0 repeats one.
// Neighbours in dense storage lie elsize apart, also where less of each is moved.
template <std::int32_t Size>
void move_run(std::int32_t elsize, Bytes to, std::ptrdiff_t to_step, ConstBytes from,
              std::ptrdiff_t from_step, std::int32_t count) {
    constexpr std::int32_t few = 4;
    const std::int32_t size = Size == any_size ? elsize : Size;
    if (to_step == elsize && from_step == elsize)
        return copy_bytes(to, from, bytes_of(count, elsize));
    if (to_step == size && from_step == 0 && count > few)
        return repeat_element<Size>(to, from, size, count);
    move_strided<Size>(elsize, to, to_step, from, from_step, count);
}

// What a family knows of its elements: how runs of them are moved. The loops stand behind
// an address, so that a family's body serves every size.
using MoveRun = void(std::int32_t elsize, Bytes to, std::ptrdiff_t to_step, ConstBytes from,
                     std::ptrdiff_t from_step, std::int32_t count);
struct Elements {
    std::int32_t elsize;
    MoveRun *move_run;
};

inline void move_run(const Elements &elements, Bytes to, std::ptrdiff_t to_step, ConstBytes from,
                     std::ptrdiff_t from_step, std::int32_t count) {
    if (to_step == elements.elsize && from_step == elements.elsize)
        copy_bytes(to, from, bytes_of(count, elements.elsize)); // without the way to the loops
    else if (count > 0)
        elements.move_run(elements.elsize, to, to_step, from, from_step, count);
}

// The loops for elements of `size` bytes: reals of 10 bytes and pairs of them take 12 and 24.
inline MoveRun *move_run_of(std::int32_t size) {
    switch (size) {
    case 1:
        return move_run<1>;
    case 2:
        return move_run<2>;
    case 4:
        return move_run<4>;
    case 8:
        return move_run<8>;
    case 10:
        return move_run<10>;
    case 12:
        return move_run<12>;
    case 16:
        return move_run<16>;
    case 20:
        return move_run<20>;
    case 24:
        return move_run<24>;
    case 32:
        return move_run<32>;
    default:
        return move_run<any_size>;
    }
}

// Elements of `size` bytes, all of which are moved.
inline Elements elements_of(std::int32_t size) { return {size, move_run_of(size)}; }

// The next `count` elements of two walks.
inline void move_stream(const Elements &elements, Cursor &to, Cursor &from, std::int32_t count) {
    while (const std::int32_t part = std::min({count, to.left, from.left})) {
        move_run(elements, to.at, to.step(), from.at, from.step(), part);
        advance(to, part);
        advance(from, part);
        count -= part;
    }
}

// ---- Sections -------------------------------------------------------------------

// The elements to be moved: their steps where they go, and where they come from.
using Moves = Nest<2>;

inline void move_section(const Elements &elements, const Moves &moves, Bytes to, Bytes from) {
    for_each_run(moves, {{to, from}}, [&](const Positions<2> &at, const Run<2> &run) {
        move_run(elements, at.at[0], run.step.by[0], at.at[1], run.step.by[1], run.count);
        return true;
    });
}

} // namespace quill

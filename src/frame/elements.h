// The element types of the typed families: how each is stored, loaded and held
// in arithmetic. Storage is only 4-byte aligned for elements of 8 bytes and more,
// so every access goes through load and store. Integers are held unsigned: their
// arithmetic wraps.
#pragma once

#include "frame/records.h"
#include "host/quad.h"

#include <type_traits>

namespace quill {

// Real part first; the imaginary part follows a part's storage size behind it.
template <class Part> struct Complex {
    Part re;
    Part im;
};

using Int1 = std::uint8_t;
using Int2 = std::uint16_t;
using Int4 = std::uint32_t;
using Int8 = std::uint64_t;
using Real4 = float;
using Real8 = double;
using Real10 = long double; // 10 bytes in 12
using Real16 = __float128;
using Complex8 = Complex<Real4>;
using Complex16 = Complex<Real8>;
using Complex20 = Complex<Real10>; // imaginary part at byte 12
using Complex32 = Complex<Real16>;

static_assert(sizeof(Real10) == 12 && sizeof(Complex20) == 24 && sizeof(Complex32) == 32);

// A word of a MASK of the numeric families, or of SHIFT, SHAPE or ORDER.
using Word = std::uint32_t;

// Whether the processor's vectors hold a T, or its parts.
template <class T> constexpr bool is_vectorisable = !std::is_same_v<T, Real10>;
template <> inline constexpr bool is_vectorisable<Real16> = false;
template <class Part> constexpr bool is_vectorisable<Complex<Part>> = is_vectorisable<Part>;

// A value in another width of its type. This, as a load, is always part of its caller:
// returned through the x87, a signalling NaN would come out quiet.
template <class To, class From> struct Conversion {
    [[gnu::always_inline]] static To of(const From &from) { return static_cast<To>(from); }
};
template <class To, class From> struct Conversion<Complex<To>, Complex<From>> {
    static Complex<To> of(const Complex<From> &from) {
        return {static_cast<To>(from.re), static_cast<To>(from.im)};
    }
};
template <class To, class From> [[gnu::always_inline]] inline To converted(const From &from) {
    return Conversion<To, From>::of(from);
}

// A start value, 0 or 1. Of kind 16 its literal is read at every call.
template <class T> T number(int small) { return static_cast<T>(small); }
template <> inline Real16 number<Real16>(int small) {
    return string_to_fp128(small == 0 ? "0.0L" : "1.0L");
}

// An element in storage, whatever it was stored as.
template <class T> struct Storage {
    typedef T __attribute__((may_alias, aligned(alignof(T) < 4 ? alignof(T) : 4))) Stored;
    [[gnu::always_inline]] static T load(ConstBytes at) {
        return *reinterpret_cast<const Stored *>(at);
    }
    static void store(Bytes at, const T &element) { *reinterpret_cast<Stored *>(at) = element; }
};

// Of an 80-bit real, 10 bytes are moved: the other 2 are nobody's. Volatile, so that no loop of
// such stores becomes a memcpy or memset of 12 bytes each.
template <> struct Storage<Real10> {
    typedef Real10 __attribute__((may_alias, aligned(4))) Stored;
    [[gnu::always_inline]] static Real10 load(ConstBytes at) {
        return *reinterpret_cast<const Stored *>(at);
    }
    static void store(Bytes at, Real10 element) {
        *reinterpret_cast<volatile Stored *>(at) = element;
    }
};

template <> struct Storage<Real16> {
    static Real16 load(ConstBytes at) { return reinterpret_cast<const Quad *>(at)->number; }
    static void store(Bytes at, Real16 element) { reinterpret_cast<Quad *>(at)->number = element; }
};

template <class Part> struct Storage<Complex<Part>> {
    static Complex<Part> load(ConstBytes at) {
        return {Storage<Part>::load(at), Storage<Part>::load(at + sizeof(Part))};
    }
    static void store(Bytes at, const Complex<Part> &element) {
        Storage<Part>::store(at, element.re);
        Storage<Part>::store(at + sizeof(Part), element.im);
    }
};

template <class T> [[gnu::always_inline]] inline T load(ConstBytes at) {
    return Storage<T>::load(at);
}
template <class T> void store(Bytes at, const T &element) { Storage<T>::store(at, element); }

} // namespace quill

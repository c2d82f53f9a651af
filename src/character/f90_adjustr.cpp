// ADJUSTR: trailing blanks go to the start. Source and destination do not overlap.
#include "character/strings.h"
#include "frame/moves.h"

extern "C" void f90_adjustr(const char *source, std::uint32_t length, char *destination) {
    const std::uint32_t kept =
        quill::length_without_trailing_blanks(quill::string_at(source, length));
    const std::uint32_t blanks = length - kept;
    std::memset(destination, quill::blank, blanks);
    quill::copy_bytes(reinterpret_cast<quill::Bytes>(quill::behind(destination, blanks)),
                      reinterpret_cast<quill::ConstBytes>(source), kept);
}

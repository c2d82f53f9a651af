// ADJUSTL: leading blanks go to the end. Source and destination do not overlap.
#include "character/strings.h"
#include "frame/moves.h"

extern "C" void f90_adjustl(const char *source, std::uint32_t length, char *destination) {
    const std::uint32_t blanks = quill::leading_blanks(quill::string_at(source, length));
    const std::uint32_t rest = length - blanks;
    quill::copy_bytes(reinterpret_cast<quill::Bytes>(destination),
                      reinterpret_cast<quill::ConstBytes>(quill::behind(source, blanks)), rest);
    std::memset(quill::behind(destination, rest), quill::blank, blanks);
}

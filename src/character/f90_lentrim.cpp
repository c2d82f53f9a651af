// LEN_TRIM: the length without trailing blanks. A count beyond the 32-bit integers is negative
// in both forms.
#include "character/strings.h"

extern "C" {

std::int32_t f90_lentrim(const char *string, std::uint32_t length) {
    return static_cast<std::int32_t>(
        quill::length_without_trailing_blanks(quill::string_at(string, length)));
}

std::int64_t f90_klentrim(const char *string, std::uint32_t length) {
    return f90_lentrim(string, length);
}

} // extern "C"

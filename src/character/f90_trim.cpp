// TRIM: STRING without trailing blanks. A given result that is too short is reported whatever
// Flags says; one that is longer is not padded.
#include "character/strings.h"
#include "frame/moves.h"

extern "C" void f90_trim(f90_ArgList *list) {
    const quill::String string = quill::string_in(list->Arg1);
    const std::uint32_t length = quill::length_without_trailing_blanks(string);
    f90_Slot &result = list->Result;
    if (!quill::result_given(*list))
        result.Word0 = reinterpret_cast<std::uintptr_t>(f90_getspace(length));
    else if (length > result.Word1)
        f90_ArrLibError("TRIM", 1, static_cast<std::int32_t>(result.Word1),
                        static_cast<std::int32_t>(length));
    quill::copy_bytes(reinterpret_cast<quill::Bytes>(result.Word0),
                      reinterpret_cast<quill::ConstBytes>(string.at), length);
    result.Word1 = length;
}

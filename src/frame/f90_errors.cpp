// The fatal reporter and its table of texts. Slots of a name follow each other,
// the name first, so message n of a name stands n slots behind it. The forms
// with 64-bit integers sign with names that have no slot, and so always end in
// the text for an unknown name.
#include "frame/records.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace quill {
namespace {

// ---- Texts ------------------------------------------------------------------

constexpr const char *WrongDimValue = " The DIM parameter had a value of @I.\n"
                                      " Its value should be at least 1 and no larger than @I.\n";
constexpr const char *WrongResultShape = " The RESULT array has shape:    @B.\n"
                                         " The shape of RESULT should be: @G.\n";
constexpr const char *OtherWrongResultShape = " The RESULT array has shape:    @B.\n"
                                              " The shape of RESULT should be: @B.\n";
constexpr const char *WrongShiftShape = " The SHIFT array has shape:    @B.\n"
                                        " The shape of SHIFT should be: @G.\n";
constexpr const char *WrongResultSize = " The RESULT array has size @I. It should have size @I.\n";
constexpr const char *MismatchArrayMask =
    " Array arguments ARRAY and MASK should have the same shape.\n"
    " The shape of argument ARRAY is: @B.\n"
    " The shape of argument MASK is:  @B.\n";
constexpr const char *WrongVectorSize =
    " Array argument VECTOR has size @I. It should have size @I.\n";
constexpr const char *WrongResultLength =
    " The RESULT character string has length @I. It should have length @I.\n";

// clang-format off
constexpr const char *TF_errlist[] = {
    "ALL", WrongDimValue, WrongResultShape,
    "ANY", WrongDimValue, WrongResultShape,
    "COUNT", WrongDimValue, WrongResultShape,
    "CSHIFT", WrongDimValue, OtherWrongResultShape, WrongShiftShape,
    "DATEANDTIME",
        " Argument @I of the intrinsic function DATEANDTIME has string length @I.\n"
        " It should have string length at least @I.\n",
        " Argument 4 of the intrinsic function DATEANDTIME is an array with @I elements.\n"
        " It should be an array with at least 8 elements.\n",
        " Argument 4 of the intrinsic function DATEANDTIME is a rank @I array.\n"
        " It should be a rank 1 array.\n",
    "DOT_PRODUCT",
        " Array arguments VECTOR_A and VECTOR_B should have the same shape.\n"
        " The shape of argument VECTOR_A is: @B.\n"
        " The shape of argument VECTOR_B is: @B.\n",
    "EOSHIFT", WrongDimValue, OtherWrongResultShape,
        " The BOUNDARY array has shape:    @B.\n"
        " The shape of BOUNDARY should be: @G.\n",
        WrongShiftShape,
    "MATMUL",
        " At least one of the array arguments should have rank = 2\n",
        " The extent of the last dimension of MATRIX_A is @I.\n"
        " The extent of the first dimension of MATRIX_B is @I.\n"
        " These values should be equal.\n",
        WrongResultShape,
    "MAXLOC", WrongResultSize, WrongResultShape, MismatchArrayMask, WrongDimValue,
    "MAXVAL", WrongDimValue, MismatchArrayMask, WrongResultShape,
    "MINLOC", WrongResultSize, WrongResultShape, MismatchArrayMask, WrongDimValue,
    "MINVAL", WrongDimValue, MismatchArrayMask, WrongResultShape,
    "MVBITS",
        " Argument FROMPOS has the value @I and argument LEN has the value @I.\n"
        " Both arguments should have nonnegative values and their sum should be less than or"
        " equal to @I.\n",
        " Argument TOPOS has the value @I and argument LEN has the value @I.\n"
        " Both arguments should have nonnegative values and their sum should be less than or"
        " equal to @I.\n",
    "PACK", MismatchArrayMask, WrongVectorSize, WrongResultSize,
    "PRODUCT", WrongDimValue, WrongResultShape, MismatchArrayMask,
    "REPEAT",
        " The NCOPIES argument has a value of @I. NCOPIES should be nonnegative.\n",
        WrongResultLength,
    "RESHAPE",
        " The SHAPE argument has size @I.\n"
        " Its size should be at least 1 and no larger than 7.\n",
        " The SHAPE argument should have only nonnegative elements.\n"
        " The contents of the SHAPE array is: @V.\n",
        " The rank of the RESULT array should be equal to the size of the SHAPE array.\n"
        " The rank of the RESULT array is @I. The size of the SHAPE array is @I.\n",
        " The RESULT array has shape:    @B.\n"
        " The shape of RESULT should be: @V.\n",
        " The size of the SOURCE array should be at least @I.\n"
        " The size of the SOURCE array is @I.\n",
        " Array arguments SHAPE and ORDER should have the same shape.\n"
        " The shape of argument SHAPE is: @B.\n"
        " The shape of argument ORDER is: @B.\n",
        " The ORDER argument should be a permutation of the integers 1 to @I.\n"
        " The contents of the ORDER argument array is: @V.\n",
    "SPREAD", WrongDimValue, WrongResultShape,
    "SUM", WrongDimValue, WrongResultShape, MismatchArrayMask,
    "TRANSFER",
        " The SIZE argument has a value @I. Its value should be nonnegative.\n",
        WrongResultSize,
    "TRANSPOSE", WrongResultShape,
    "TRIM", WrongResultLength,
    "UNPACK", OtherWrongResultShape,
        " Array arguments MASK and FIELD should have the same shape.\n"
        " The shape of argument MASK is:  @B.\n"
        " The shape of argument FIELD is: @B.\n",
        WrongVectorSize,
    nullptr,
};
// clang-format on

// ---- Placeholders -----------------------------------------------------------

// One element of a printed list, with what separates or ends it.
void print_item(std::int32_t item, bool last) { std::fprintf(stderr, last ? "%d)" : "%d, ", item); }

void PrintBadShape(const f90_ArrDesc &array) {
    std::fputs(array.RANK > 0 ? "(" : "(SCALAR)", stderr);
    for (int i = 0; i < array.RANK; ++i) print_item(extent(array.Dim[i]), i == array.RANK - 1);
}

void PrintGoodShape(const std::int32_t *vector) {
    const std::int32_t count = vector[0];
    std::fputs(count > 0 ? "(" : "(SCALAR)", stderr);
    for (std::int32_t i = 1; i <= count; ++i) print_item(vector[i], i == count);
}

void PrintVectorValues(const f90_ArrDesc &array) {
    if (array.RANK < 1 || array.EXTENT <= 0) {
        std::fputs(array.RANK < 1 ? "(SCALAR)" : "(EMPTY)", stderr);
        return;
    }
    std::fputs("(", stderr);
    const std::int32_t elements = extent(array.Dim[0]);
    for (std::int32_t i = 0; i < elements; ++i) {
        const std::int32_t subscript = array.Dim[0].Lower + i;
        std::int32_t element;
        std::memcpy(&element, from_origin(array, subscript_offset(array, &subscript, 1)),
                    sizeof element);
        print_item(element, i == elements - 1);
    }
}

// ---- The report -------------------------------------------------------------

[[noreturn]] void end_process() {
    std::fflush(stderr);
    std::exit(EXIT_FAILURE);
}

// The name's own slot of the table, or the null slot at its end.
const char *const *find_name(const char *name) {
    const char *const *slot = TF_errlist;
    while (*slot != nullptr && std::strcmp(*slot, name) != 0) ++slot;
    return slot;
}

void print_message(const char *text, std::va_list values) {
    for (const char *at; (at = std::strchr(text, '@')) != nullptr; text = at + 2) {
        std::fwrite(text, 1, static_cast<std::size_t>(at - text), stderr);
        switch (at[1]) {
        case 'I':
            std::fprintf(stderr, "%d", va_arg(values, int));
            break;
        case 'B':
            PrintBadShape(*va_arg(values, const f90_ArrDesc *));
            break;
        case 'G':
            PrintGoodShape(va_arg(values, const std::int32_t *));
            break;
        case 'V':
            PrintVectorValues(*va_arg(values, const f90_ArrDesc *));
            break;
        default:
            break;
        }
    }
    std::fputs(text, stderr);
}

} // namespace
} // namespace quill

extern "C" void f90_ArrLibError(const char *name, std::int32_t number, ...) {
    const char *const *slot = quill::find_name(name);
    if (*slot == nullptr) {
        std::fprintf(stderr,
                     "ERROR calling the error handler by the\n"
                     " intrinsic subprogram, signed by %s.\n",
                     name);
        quill::end_process();
    }
    std::fprintf(stderr, "ERROR calling the intrinsic subprogram %s:\n", name);
    std::va_list values;
    va_start(values, number);
    quill::print_message(slot[number], values);
    va_end(values);
    quill::end_process();
}

! The library's reductions behind functions that read as the intrinsics do. SUM
! and PRODUCT are the same text for each type of element; COUNT, ALL and ANY
! stand below it. Results without DIM always go to the caller's storage.

#define ELEMENT integer(4)
module library_integer4
    use quillfn_records, sum_entry => f90_sumi4, product_entry => f90_prodi4
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(4)
module library_real4
    use quillfn_records, sum_entry => f90_sumr4, product_entry => f90_prodr4
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(8)
module library_real8
    use quillfn_records, sum_entry => f90_sumr8, product_entry => f90_prodr8
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(10)
module library_real10
    use quillfn_records, sum_entry => f90_sumr10, product_entry => f90_prodr10
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(16)
module library_real16
    use quillfn_records, sum_entry => f90_sumr16, product_entry => f90_prodr16
#include "library_calls.inc"
end module
#undef ELEMENT

module library_logical4
    use quillfn_records
    implicit none
    private
    public :: library_count, library_all, library_any

    interface library_count
        module procedure count_of_matrix, count_along
    end interface
    interface library_all
        module procedure all_of_matrix, all_along
    end interface
    interface library_any
        module procedure any_of_matrix, any_along
    end interface

contains

    function count_of_matrix(mask) result(total)
        logical(4), intent(in), target :: mask(:, :)
        integer(4), target :: total
        type(f90_ArrDesc) :: answer
        total = -1
        answer = describe(total)
        call reduce(f90_count4, describe(mask), answer)
    end function

    ! The library creates the result.
    function count_along(mask, dim) result(counts)
        logical(4), intent(in), target :: mask(:, :)
        integer, intent(in) :: dim
        integer(4), allocatable :: counts(:)
        integer(4), pointer :: elements(:)
        type(f90_ArrDesc) :: created
        call reduce(f90_count4, describe(mask), created, dim)
        call c_f_pointer(created%BASE, elements, [created%EXTENT])
        counts = elements
        call f90_freespace(created%BASE)
    end function

    function all_of_matrix(mask) result(answer)
        logical(4), intent(in), target :: mask(:, :)
        logical(4) :: answer
        answer = whole(f90_all4, mask)
    end function

    function all_along(mask, dim) result(answers)
        logical(4), intent(in), target :: mask(:, :)
        integer, intent(in) :: dim
        logical(4) :: answers(size(mask, 3 - dim))
        answers = along(f90_all4, mask, dim)
    end function

    function any_of_matrix(mask) result(answer)
        logical(4), intent(in), target :: mask(:, :)
        logical(4) :: answer
        answer = whole(f90_any4, mask)
    end function

    function any_along(mask, dim) result(answers)
        logical(4), intent(in), target :: mask(:, :)
        integer, intent(in) :: dim
        logical(4) :: answers(size(mask, 3 - dim))
        answers = along(f90_any4, mask, dim)
    end function

    function whole(entry, mask) result(truth)
        procedure(f90_Intrinsic) :: entry
        logical(4), intent(in), target :: mask(:, :)
        logical(4), target :: truth
        type(f90_ArrDesc) :: answer
        truth = .false.
        answer = describe(truth)
        call reduce(entry, describe(mask), answer)
    end function

    ! The result is ours: the library stores into truths.
    function along(entry, mask, dim) result(truths)
        procedure(f90_Intrinsic) :: entry
        logical(4), intent(in), target :: mask(:, :)
        integer, intent(in) :: dim
        logical(4), target :: truths(size(mask, 3 - dim))
        type(f90_ArrDesc) :: answer
        truths = .false.
        answer = describe(truths)
        call reduce(entry, describe(mask), answer, dim)
    end function

end module

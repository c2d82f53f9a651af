! The library's reductions behind functions that read as the intrinsics do. Those
! of integers and reals are the same text for each type of element; the k form of
! MAXLOC stands above it, COUNT, ALL, ANY and DOT_PRODUCT of the other types below.
! Scalar results always go to the caller's storage.

module library_integers
    use quillfn_records
    implicit none
    private
    public :: created_integers, library_kmaxloc

contains

    ! The library creates the result.
    function created_integers(entry, array, dim) result(integers)
        procedure(f90_Intrinsic) :: entry
        type(f90_ArrDesc), intent(in) :: array
        integer, intent(in), optional :: dim
        integer(4), allocatable :: integers(:)
        integer(4), pointer :: elements(:)
        type(f90_ArrDesc) :: created
        call reduce(entry, array, created, dim)
        call c_f_pointer(created%BASE, elements, [created%EXTENT])
        integers = elements
        call f90_freespace(created%BASE)
    end function

    ! MAXLOC with KIND=8: positions of 64 bits. The library creates the result.
    function library_kmaxloc(array, dim) result(places)
        real(8), intent(in), target :: array(:, :)
        integer, intent(in) :: dim
        integer(8), allocatable :: places(:)
        integer(8), pointer :: elements(:)
        type(f90_ArrDesc) :: created
        call reduce(f90_kmaxlocr8, describe(array), created, dim)
        call c_f_pointer(created%BASE, elements, [created%EXTENT])
        places = elements
        call f90_freespace(created%BASE)
    end function

end module

#define ELEMENT integer(4)
module library_integer4
    use quillfn_records, sum_entry => f90_sumi4, product_entry => f90_prodi4, &
        dot_product_entry => f90_dotpri4, maxval_entry => f90_maxvali4, &
        minval_entry => f90_minvali4, maxloc_entry => f90_maxloci4, minloc_entry => f90_minloci4
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(4)
module library_real4
    use quillfn_records, sum_entry => f90_sumr4, product_entry => f90_prodr4, &
        dot_product_entry => f90_dotprr4, maxval_entry => f90_maxvalr4, &
        minval_entry => f90_minvalr4, maxloc_entry => f90_maxlocr4, minloc_entry => f90_minlocr4
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(8)
module library_real8
    use quillfn_records, sum_entry => f90_sumr8, product_entry => f90_prodr8, &
        dot_product_entry => f90_dotprr8, maxval_entry => f90_maxvalr8, &
        minval_entry => f90_minvalr8, maxloc_entry => f90_maxlocr8, minloc_entry => f90_minlocr8
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(10)
module library_real10
    use quillfn_records, sum_entry => f90_sumr10, product_entry => f90_prodr10, &
        dot_product_entry => f90_dotprr10, maxval_entry => f90_maxvalr10, &
        minval_entry => f90_minvalr10, maxloc_entry => f90_maxlocr10, minloc_entry => f90_minlocr10
#include "library_calls.inc"
end module
#undef ELEMENT

#define ELEMENT real(16)
module library_real16
    use quillfn_records, sum_entry => f90_sumr16, product_entry => f90_prodr16, &
        dot_product_entry => f90_dotprr16, maxval_entry => f90_maxvalr16, &
        minval_entry => f90_minvalr16, maxloc_entry => f90_maxlocr16, minloc_entry => f90_minlocr16
#include "library_calls.inc"
end module
#undef ELEMENT

module library_complex8
    use quillfn_records
    implicit none
    private
    public :: library_dot_product

    interface library_dot_product
        module procedure dot_product_of_vectors
    end interface

contains

    function dot_product_of_vectors(vector_a, vector_b) result(total)
        complex(8), intent(in), target :: vector_a(:), vector_b(:)
        complex(8), target :: total
        type(f90_ArrDesc) :: answer
        total = 0
        answer = describe(total)
        call multiply(f90_dotprc16, describe(vector_a), describe(vector_b), answer)
    end function

end module

module library_logical4
    use quillfn_records
    use library_integers
    implicit none
    private
    public :: library_count, library_all, library_any, library_dot_product

    interface library_count
        module procedure count_of_matrix, count_along
    end interface
    interface library_all
        module procedure all_of_matrix, all_along
    end interface
    interface library_any
        module procedure any_of_matrix, any_along
    end interface
    interface library_dot_product
        module procedure dot_product_of_vectors
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

    function count_along(mask, dim) result(counts)
        logical(4), intent(in), target :: mask(:, :)
        integer, intent(in) :: dim
        integer(4), allocatable :: counts(:)
        counts = created_integers(f90_count4, describe(mask), dim)
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

    function dot_product_of_vectors(vector_a, vector_b) result(truth)
        logical(4), intent(in), target :: vector_a(:), vector_b(:)
        logical(4), target :: truth
        type(f90_ArrDesc) :: answer
        truth = .false.
        answer = describe(truth)
        call multiply(f90_dotprl4, describe(vector_a), describe(vector_b), answer)
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

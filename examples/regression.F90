! The least-squares fit of a table's first column by a constant and its other columns,
! with the library's MATMUL, in the three widest kinds. The solution of the normal
! equations is the program's own, the same text in each kind. Fits are told apart by
! their right digits: those that they share with coefficients known to 15 digits.

module regression
    implicit none
    private
    public :: fit, certified_digits, right_digits, report

    integer, parameter :: wide = 16
    integer, parameter :: certified_digits = 15

    ! Distances are the greatest of a matrix or vector, in epsilons of the kind.
    type :: fit
        character(8) :: name
        real(wide), allocatable :: coefficients(:)
        real(wide) :: from_compiler      ! X'X by the library from that by the compiler
        real(wide) :: between_forms      ! matrix by vector from vector by matrix
    end type

contains

    ! How many leading digits are right: the value is no further from the certified
    ! one than half a unit of the last of them. A value that is not a number has none.
    elemental function right_digits(value, certified) result(digits)
        real(wide), intent(in) :: value, certified
        integer :: digits
        integer :: magnitude
        magnitude = floor(log10(abs(certified)))
        do digits = certified_digits, 1, -1
            if (abs(value - certified) <= 0.5_wide * 10.0_wide**(magnitude + 1 - digits)) exit
        end do
    end function

    subroutine report(labels, certified, fits)
        character(*), intent(in) :: labels(:)
        real(wide), intent(in) :: certified(:)
        type(fit), intent(in) :: fits(:)
        integer :: i, j

        do i = 1, size(certified)
            print '(2x,a)', trim(labels(i))
            print '(4x,a,es22.14)', 'certified', certified(i)
            do j = 1, size(fits)
                print '(4x,a,1x,es22.14,i6)', fits(j)%name, fits(j)%coefficients(i), &
                    right_digits(fits(j)%coefficients(i), certified(i))
            end do
        end do
        print '(/2x,a28,*(a10))', '', adjustr(fits%name)
        print '(2x,a28,*(i10))', 'right digits of 15, at least', &
            (minval(right_digits(fits(j)%coefficients, certified)), j = 1, size(fits))
        print '(2x,a28,*(f10.2))', 'X''X from the compiler''s     ', fits%from_compiler
        print '(2x,a28,*(f10.2))', 'X''y from y X                ', fits%between_forms
    end subroutine

end module

#define ELEMENT real(8)
module regression_real8
    use matrix_products_real8
#include "regression.inc"
end module
#undef ELEMENT

#define ELEMENT real(10)
module regression_real10
    use matrix_products_real10
#include "regression.inc"
end module
#undef ELEMENT

#define ELEMENT real(16)
module regression_real16
    use matrix_products_real16
#include "regression.inc"
end module
#undef ELEMENT

! Calls of the library's intrinsics that take plain arguments, number by number and string by
! string; INDEX, SCAN and VERIFY take the record, with strings in both words of a slot.
module library_scalars
    use, intrinsic :: iso_c_binding
    use quillfn_records
    implicit none
    private
    public :: library_exponent, library_fraction, library_spacing, library_modulo, &
        library_len_trim, library_adjustr, library_index, library_scan, library_verify, &
        library_random_number

    interface
        integer(c_int32_t) function f90_exponent8(x) bind(C)
            import :: c_double, c_int32_t
            real(c_double), intent(in) :: x
        end function
        real(c_double) function f90_fraction8(x) bind(C)
            import :: c_double
            real(c_double), intent(in) :: x
        end function
        real(c_double) function f90_spacing8(x) bind(C)
            import :: c_double
            real(c_double), intent(in) :: x
        end function
        real(c_double) function f90_modulor8(a, p) bind(C)
            import :: c_double
            real(c_double), intent(in) :: a, p
        end function
        integer(c_int32_t) function f90_lentrim(string, length) bind(C)
            import :: c_char, c_int32_t
            character(c_char), intent(in) :: string(*)
            integer(c_int32_t), value :: length
        end function
        subroutine f90_adjustr(source, length, destination) bind(C)
            import :: c_char, c_int32_t
            character(c_char), intent(in) :: source(*)
            integer(c_int32_t), value :: length
            character(c_char), intent(out) :: destination(*)
        end subroutine
        subroutine f90_randnum8a(harvest, count) bind(C)
            import :: c_double, c_int32_t
            real(c_double), intent(out) :: harvest(*)
            integer(c_int32_t), value :: count
        end subroutine
    end interface

    procedure(f90_Intrinsic), bind(C) :: f90_index, f90_scan, f90_verify

contains

    ! ---- Numbers --------------------------------------------------------------

    function library_exponent(numbers) result(exponents)
        real(8), intent(in) :: numbers(:)
        integer(4) :: exponents(size(numbers))
        integer :: i
        exponents = [(f90_exponent8(numbers(i)), i = 1, size(numbers))]
    end function

    function library_fraction(numbers) result(fractions)
        real(8), intent(in) :: numbers(:)
        real(8) :: fractions(size(numbers))
        integer :: i
        fractions = [(f90_fraction8(numbers(i)), i = 1, size(numbers))]
    end function

    function library_spacing(numbers) result(spacings)
        real(8), intent(in) :: numbers(:)
        real(8) :: spacings(size(numbers))
        integer :: i
        spacings = [(f90_spacing8(numbers(i)), i = 1, size(numbers))]
    end function

    function library_modulo(numbers, divisors) result(rests)
        real(8), intent(in) :: numbers(:), divisors(:)
        real(8) :: rests(size(numbers))
        integer :: i
        rests = [(f90_modulor8(numbers(i), divisors(i)), i = 1, size(numbers))]
    end function

    subroutine library_random_number(harvest)
        real(8), intent(out), contiguous :: harvest(:)
        call f90_randnum8a(harvest, size(harvest))
    end subroutine

    ! ---- Strings --------------------------------------------------------------

    function library_len_trim(strings) result(lengths)
        character(*), intent(in) :: strings(:)
        integer(4) :: lengths(size(strings))
        integer :: i
        lengths = [(f90_lentrim(strings(i), len(strings)), i = 1, size(strings))]
    end function

    function library_adjustr(strings) result(adjusted)
        character(*), intent(in) :: strings(:)
        character(len(strings)) :: adjusted(size(strings))
        integer :: i
        do i = 1, size(strings)
            call f90_adjustr(strings(i), len(strings), adjusted(i))
        end do
    end function

    function library_index(strings, substring, back) result(positions)
        character(*), intent(in), target :: strings(:), substring
        logical, intent(in) :: back
        integer(4) :: positions(size(strings))
        positions = positions_by(f90_index, strings, substring, back)
    end function

    function library_scan(strings, set, back) result(positions)
        character(*), intent(in), target :: strings(:), set
        logical, intent(in) :: back
        integer(4) :: positions(size(strings))
        positions = positions_by(f90_scan, strings, set, back)
    end function

    function library_verify(strings, set, back) result(positions)
        character(*), intent(in), target :: strings(:), set
        logical, intent(in) :: back
        integer(4) :: positions(size(strings))
        positions = positions_by(f90_verify, strings, set, back)
    end function

    ! BACK is a value; the result comes in the slot itself.
    function positions_by(intrinsic, strings, other, back) result(positions)
        procedure(f90_Intrinsic) :: intrinsic
        character(*), intent(in), target :: strings(:), other
        logical, intent(in) :: back
        integer(4) :: positions(size(strings))
        type(f90_ArgList) :: arguments
        integer :: i

        arguments%Presence = arg1_present + arg2_present + arg3_present
        arguments%Arg2 = string_slot(other)
        arguments%Arg3%Word0 = merge(1, 0, back)
        do i = 1, size(strings)
            arguments%Arg1 = string_slot(strings(i))
            call intrinsic(arguments)
            positions(i) = int(arguments%Result%Word0, 4)
        end do
    end function

    function string_slot(string) result(slot)
        character(*), intent(in), target :: string
        type(f90_Slot) :: slot
        slot = f90_Slot(transfer(c_loc(string), 0_c_intptr_t), len(string))
    end function

end module

! The character intrinsics as the machine's Fortran compiler has them, by its own convention of
! calls: new strings one behind the other, and the numbers, first of which were BACK and NCOPIES.
subroutine fortran_characters(string, other, made, numbers)
    character(*) :: string, other, made
    integer :: numbers(5)
    made = adjustl(string) // adjustr(string) // trim(string) // repeat(string, numbers(2))
    associate (back => numbers(1) /= 0)
        numbers = [index(string, other, back), scan(string, other, back), &
                   verify(string, other, back), len_trim(string), len(trim(string))]
    end associate
end subroutine

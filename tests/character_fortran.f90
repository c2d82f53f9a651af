! The character intrinsics by the machine's Fortran compiler: new strings one behind the other, and
! numbers, the first of which were BACK and NCOPIES.
subroutine fortran_characters(string, other, made, numbers)
    character(*) :: string, other, made
    integer :: numbers(4)
    made = adjustl(string) // adjustr(string) // trim(string) // repeat(string, numbers(2))
    numbers = [index(string, other, numbers(1) /= 0), scan(string, other, numbers(1) /= 0), &
               verify(string, other, numbers(1) /= 0), len_trim(string)]
end subroutine

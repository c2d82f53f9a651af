! The character intrinsics by the machine's Fortran compiler, BACK and NCOPIES first in numbers.
subroutine fortran_characters(string, other, made, numbers)
    character(*) :: string, other, made
    integer :: numbers(4)
    made = adjustl(string) // adjustr(string) // trim(string) // repeat(string, numbers(2))
    numbers = [index(string, other, numbers(1) /= 0), scan(string, other, numbers(1) /= 0), &
               verify(string, other, numbers(1) /= 0), len_trim(string)]
end subroutine

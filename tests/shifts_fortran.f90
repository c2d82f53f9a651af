! CSHIFT and EOSHIFT as the machine's Fortran compiler has them, of elements of n bytes. `form`:
! 1 EOSHIFT, + 2 SHIFT and + 4 BOUNDARY for each line, + 8 blanks move in, + 16 zeros, in `words`.
subroutine fortran_shift(form, n, e, dim, shift, boundary, array, words, moved) bind(C)
    use, intrinsic :: iso_c_binding
    integer(c_int), value :: form, n, dim
    integer(c_int) :: e(3), shift(merge(e(2), e(1), dim == 1), merge(e(2), e(3), dim == 3))
    integer(c_int) :: words(e(1), e(2), e(3))
    character(c_char) :: boundary(*), array(*), moved(*)
    if (form == 17) words = eoshift(words, shift(1, 1), dim=dim)
    if (form == 19) words = eoshift(words, shift, dim=dim)
    if (form < 16) call move(boundary, array, moved)
contains
    subroutine move(boundary, array, moved)
        character(n) :: boundary(size(shift, 1), size(shift, 2))
        character(n), dimension(e(1), e(2), e(3)) :: array, moved
        if (form == 0) moved = cshift(array, shift(1, 1), dim)
        if (form == 2) moved = cshift(array, shift, dim)
        if (form == 1) moved = eoshift(array, shift(1, 1), boundary(1, 1), dim)
        if (form == 3) moved = eoshift(array, shift, boundary(1, 1), dim)
        if (form == 5) moved = eoshift(array, shift(1, 1), boundary, dim)
        if (form == 7) moved = eoshift(array, shift, boundary, dim)
        if (form == 9) moved = eoshift(array, shift(1, 1), dim=dim)
        if (form == 11) moved = eoshift(array, shift, dim=dim)
    end subroutine
end subroutine

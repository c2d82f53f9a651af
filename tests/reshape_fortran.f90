! RESHAPE and SPREAD as the machine's Fortran compiler has them, on dense arrays of elements of n
! bytes. The result has the extents e; `dim` is 0 for RESHAPE.
subroutine fortran_reshape(dim, n, elements, pads, e, order, array, pad, moved) bind(C)
    use, intrinsic :: iso_c_binding
    integer(c_int), value :: dim, n, elements, pads
    integer(c_int) :: e(3), order(3)
    character(c_char) :: array(*), pad(*), moved(*)
    call move(array, array, pad, moved)
contains
    subroutine move(array, matrix, pad, moved)
        character(n) :: array(elements), pad(pads), moved(e(1), e(2), e(3))
        character(n) :: matrix(e(merge(2, 1, dim == 1)), e(merge(2, 3, dim == 3)))
        if (dim == 0) moved = reshape(array, e, pad, order)
        if (dim > 0) moved = spread(matrix, dim, e(dim))
    end subroutine
end subroutine

! RESHAPE and SPREAD as the machine's Fortran compiler has them, on dense arrays of elements of
! n bytes: to a result of rank 3, and of a matrix along each dimension.
subroutine fortran_reshape(n, size, pads, extents, order, source, pad, result) bind(C)
    use, intrinsic :: iso_c_binding
    integer(c_int), value :: n, size, pads
    integer(c_int) :: extents(3), order(3)
    character(c_char) :: source(*), pad(*), result(*)
    call move(source, pad, result)
contains
    subroutine move(source, pad, result)
        character(n) :: source(size), pad(pads), result(extents(1), extents(2), extents(3))
        result = reshape(source, extents, pad, order)
    end subroutine
end subroutine

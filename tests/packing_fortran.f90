! PACK and UNPACK as the machine's Fortran compiler has them, on dense arrays of elements of
! n bytes. `what` is 0 for PACK, 1 and 2 for UNPACK with an array and with a scalar FIELD.
subroutine fortran_packing(what, n, rows, size, length, mask, array, vector, result) bind(C)
    use, intrinsic :: iso_c_binding
    integer(c_int), value :: what, n, rows, size, length
    integer(c_int) :: mask(rows, size / rows)
    character(c_char) :: array(*), vector(*), result(*)
    call move(array, array, vector, result, result)
contains
    subroutine move(array, scalar, vector, packed, unpacked)
        character(n) :: array(rows, size / rows), scalar(1), vector(length), packed(length)
        character(n) :: unpacked(rows, size / rows)
        if (what == 0) packed = pack(array, mask /= 0, vector)
        if (what == 1) unpacked = unpack(vector, mask /= 0, array)
        if (what == 2) unpacked = unpack(vector, mask /= 0, scalar(1))
    end subroutine
end subroutine

! MODULO, CEILING, FLOOR and MVBITS as the machine's Fortran compiler has them.
subroutine fortran_reals(x) ! A and P, that become MODULO, CEILING(A) and FLOOR(A)
    real(16) :: x(3)
    x = [modulo(x(1), x(2)), real(ceiling(x(1), 8), 16), real(floor(x(1), 8), 16)]
end subroutine
subroutine fortran_integers(x, frompos, length, topos) ! A or FROM, P that becomes MODULO, TO
    integer(8) :: x(3)
    integer :: frompos, length, topos
    x(2) = modulo(x(1), x(2))
    call mvbits(x(1), frompos, length, x(3), topos)
end subroutine

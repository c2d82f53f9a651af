! The floating-point model as the machine's Fortran compiler has it, of x(1) and, for NEAREST,
! x(2). The results follow; an exponent is a real there.
subroutine fortran_model4(x, i)
    integer(4) :: i
    real(4) :: x(9)
    x(3:5) = [real(exponent(x(1)), 4), fraction(x(1)), nearest(x(1), x(2))]
    x(6:9) = [rrspacing(x(1)), scale(x(1), i), set_exponent(x(1), i), spacing(x(1))]
end subroutine
subroutine fortran_model8(x, i)
    integer(4) :: i
    real(8) :: x(9)
    x(3:5) = [real(exponent(x(1)), 8), fraction(x(1)), nearest(x(1), x(2))]
    x(6:9) = [rrspacing(x(1)), scale(x(1), i), set_exponent(x(1), i), spacing(x(1))]
end subroutine
subroutine fortran_model10(x, i)
    integer(4) :: i
    real(10) :: x(9)
    x(3:5) = [real(exponent(x(1)), 10), fraction(x(1)), nearest(x(1), x(2))]
    x(6:9) = [rrspacing(x(1)), scale(x(1), i), set_exponent(x(1), i), spacing(x(1))]
end subroutine
subroutine fortran_model16(x, i)
    integer(4) :: i
    real(16) :: x(9)
    x(3:5) = [real(exponent(x(1)), 16), fraction(x(1)), nearest(x(1), x(2))]
    x(6:9) = [rrspacing(x(1)), scale(x(1), i), set_exponent(x(1), i), spacing(x(1))]
end subroutine

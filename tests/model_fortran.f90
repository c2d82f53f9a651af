! The floating-point model as the machine's Fortran compiler has it.
subroutine fortran_model4(x, s, i, r)
    real(4) :: x, s, r(7)
    r = [real(exponent(x), 4), fraction(x), nearest(x, s), rrspacing(x), &
         scale(x, i), set_exponent(x, i), spacing(x)]
end subroutine
subroutine fortran_model8(x, s, i, r)
    real(8) :: x, s, r(7)
    r = [real(exponent(x), 8), fraction(x), nearest(x, s), rrspacing(x), &
         scale(x, i), set_exponent(x, i), spacing(x)]
end subroutine
subroutine fortran_model10(x, s, i, r)
    real(10) :: x, s, r(7)
    r = [real(exponent(x), 10), fraction(x), nearest(x, s), rrspacing(x), &
         scale(x, i), set_exponent(x, i), spacing(x)]
end subroutine
subroutine fortran_model16(x, s, i, r)
    real(16) :: x, s, r(7)
    r = [real(exponent(x), 16), fraction(x), nearest(x, s), rrspacing(x), &
         scale(x, i), set_exponent(x, i), spacing(x)]
end subroutine

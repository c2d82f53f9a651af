! The peers of the intrinsics of one number, as a loop over n of them, and of RANDOM_NUMBER.

! r = VALUE for each of x, y and i.
#define EACH(NAME, NUMBER, RESULT, VALUE) \
subroutine NAME(x, y, i, n, r) bind(c, name=PEER//"NAME") ;\
  implicit none ;\
  integer(4), value :: n ;\
  integer(4) :: i(n), k ;\
  NUMBER :: x(n), y(n) ;\
  RESULT :: r(n) ;\
  do k = 1, n ;\
    r(k) = VALUE ;\
  end do ;\
end subroutine

#define DRAWS(NAME, NUMBER) \
subroutine NAME(x, y, i, n, r) bind(c, name=PEER//"NAME") ;\
  implicit none ;\
  integer(4), value :: n ;\
  integer(4) :: i(n) ;\
  NUMBER :: x(n), y(n), r(n) ;\
  call random_number(r) ;\
end subroutine

#define SINGLE_DRAWS(NAME, NUMBER) \
subroutine NAME(x, y, i, n, r) bind(c, name=PEER//"NAME") ;\
  implicit none ;\
  integer(4), value :: n ;\
  integer(4) :: i(n), k ;\
  NUMBER :: x(n), y(n), r(n) ;\
  do k = 1, n ;\
    call random_number(r(k)) ;\
  end do ;\
end subroutine

#define MODEL(K) \
EACH(exponent_r/**/K, real(K), integer(4), exponent(x(k))) ;\
EACH(fraction_r/**/K, real(K), real(K), fraction(x(k))) ;\
EACH(nearest_r/**/K, real(K), real(K), nearest(x(k), y(k))) ;\
EACH(rrspacing_r/**/K, real(K), real(K), rrspacing(x(k))) ;\
EACH(scale_r/**/K, real(K), real(K), scale(x(k), i(k))) ;\
EACH(setexp_r/**/K, real(K), real(K), set_exponent(x(k), i(k))) ;\
EACH(spacing_r/**/K, real(K), real(K), spacing(x(k))) ;\
EACH(modulo_r/**/K, real(K), real(K), modulo(x(k), y(k))) ;\
DRAWS(random_r/**/K, real(K)) ;\
SINGLE_DRAWS(random_one_r/**/K, real(K))

MODEL(4)
MODEL(8)
MODEL(10)
MODEL(16)

#define ROUNDING(K) \
EACH(ceiling_r/**/K, real(K), integer(4), ceiling(x(k))) ;\
EACH(floor_r/**/K, real(K), integer(4), floor(x(k))) ;\
EACH(ceilingk_r/**/K, real(K), integer(8), ceiling(x(k), 8)) ;\
EACH(floork_r/**/K, real(K), integer(8), floor(x(k), 8))

ROUNDING(4)
ROUNDING(8)

EACH(modulo_i4, integer(4), integer(4), modulo(x(k), y(k)))
EACH(modulo_i8, integer(8), integer(8), modulo(x(k), y(k)))

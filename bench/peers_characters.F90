! The peers of the intrinsics of strings: a(1) is STRING, of n bytes, b(1) SUBSTRING or SET, of m
! bytes; of REPEAT m is NCOPIES. A result that is a string has k bytes: exactly those that it
! takes, so that none are filled up with blanks.

! r(1) = VALUE, where RESULT declares r to C, for which a string is an array of its bytes, and
! ANSWER to Fortran.
#define STRINGS(NAME, RESULT, ANSWER, VALUE) \
subroutine NAME(a, b, n, m, k, r) bind(c, name=PEER//"NAME") ;\
  implicit none ;\
  integer(4), value :: n, m, k ;\
  character(1) :: a(n), b(m) ;\
  RESULT ;\
  call set(a, b, r) ;\
contains ;\
  subroutine set(a, b, r) ;\
    character(n) :: a(1) ;\
    character(m) :: b(1) ;\
    ANSWER ;\
    r(1) = VALUE ;\
  end subroutine ;\
end subroutine

#define STRING(NAME, VALUE) STRINGS(NAME, character(1) :: r(k), character(k) :: r(1), VALUE)
#define POSITION(NAME, VALUE) STRINGS(NAME, integer(4) :: r(1), integer(4) :: r(1), VALUE)

STRING(string_adjustl, adjustl(a(1)))
STRING(string_adjustr, adjustr(a(1)))
STRING(string_repeat, repeat(a(1), m))

! To a variable of a fixed length the compiler copies without a look at the blanks, so the
! result is a variable that takes TRIM's length, and r its address. Of an array's element the
! compiler would make a copy first, so STRING is a scalar.
subroutine string_trim(a, b, n, m, k, r) bind(c, name=PEER//"string_trim")
  use, intrinsic :: iso_c_binding, only: c_loc, c_ptr
  implicit none
  integer(4), value :: n, m, k
  character(1) :: a(n), b(m)
  type(c_ptr) :: r
  call as_string(a)
contains
  subroutine as_string(a)
    character(n) :: a(1)
    call set(a(1))
  end subroutine
  subroutine set(string)
    character(n) :: string
    character(:), allocatable, target, save :: trimmed
    trimmed = trim(string)
    r = c_loc(trimmed)
  end subroutine
end subroutine

POSITION(string_len_trim, len_trim(a(1)))
POSITION(string_index, index(a(1), b(1)))
POSITION(string_index_back, index(a(1), b(1), back=.true.))
POSITION(string_scan, scan(a(1), b(1)))
POSITION(string_scan_back, scan(a(1), b(1), back=.true.))
POSITION(string_verify, verify(a(1), b(1)))
POSITION(string_verify_back, verify(a(1), b(1), back=.true.))

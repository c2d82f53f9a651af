! The library's MATMUL behind functions that read as the intrinsic does, and its
! comparison with the intrinsic: the same text for each type of element.

#define ELEMENT integer(1)
module matrix_products_integer1
    use quillfn_records, matmul_entry => f90_matmuli1
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT integer(2)
module matrix_products_integer2
    use quillfn_records, matmul_entry => f90_matmuli2
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT integer(4)
module matrix_products_integer4
    use quillfn_records, matmul_entry => f90_matmuli4
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT integer(8)
module matrix_products_integer8
    use quillfn_records, matmul_entry => f90_matmuli8
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT logical(1)
module matrix_products_logical1
    use quillfn_records, matmul_entry => f90_matmull1
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT logical(2)
module matrix_products_logical2
    use quillfn_records, matmul_entry => f90_matmull2
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT logical(4)
module matrix_products_logical4
    use quillfn_records, matmul_entry => f90_matmull4
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT logical(8)
module matrix_products_logical8
    use quillfn_records, matmul_entry => f90_matmull8
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT real(4)
module matrix_products_real4
    use quillfn_records, matmul_entry => f90_matmulr4
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT real(8)
module matrix_products_real8
    use quillfn_records, matmul_entry => f90_matmulr8
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT real(10)
module matrix_products_real10
    use quillfn_records, matmul_entry => f90_matmulr10
#include "matrix_products.inc"
end module
#undef ELEMENT

#define ELEMENT real(16)
module matrix_products_real16
    use quillfn_records, matmul_entry => f90_matmulr16
#include "matrix_products.inc"
end module
#undef ELEMENT

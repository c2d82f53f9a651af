! The library's RESHAPE, SPREAD, TRANSPOSE and TRANSFER behind functions that read as the
! intrinsics do, and their comparison with them: the same text for each type of element.
! One type takes the entries whose SIZE has 64 bits.

#define ELEMENT integer(4)
module shaped_integer4
    use quillfn_records, reshape_entry => f90_kreshape4, spread_entry => f90_spread4, &
        transpose_entry => f90_transpose4, transfer_entry => f90_ktransfer4, &
        transfer_to_bytes_entry => f90_ktransfer1
#include "shaped_tables.inc"
end module
#undef ELEMENT

#define ELEMENT real(4)
module shaped_real4
    use quillfn_records, reshape_entry => f90_reshape4, spread_entry => f90_spread4, &
        transpose_entry => f90_transpose4, transfer_entry => f90_transfer4, &
        transfer_to_bytes_entry => f90_transfer1
#include "shaped_tables.inc"
end module
#undef ELEMENT

#define ELEMENT real(8)
module shaped_real8
    use quillfn_records, reshape_entry => f90_reshape8, spread_entry => f90_spread8, &
        transpose_entry => f90_transpose8, transfer_entry => f90_transfer8, &
        transfer_to_bytes_entry => f90_transfer1
#include "shaped_tables.inc"
end module
#undef ELEMENT

#define ELEMENT real(16)
module shaped_real16
    use quillfn_records, reshape_entry => f90_reshape16, spread_entry => f90_spread16, &
        transpose_entry => f90_transpose16, transfer_entry => f90_transfer16, &
        transfer_to_bytes_entry => f90_transfer1
#include "shaped_tables.inc"
end module
#undef ELEMENT

! 7 bytes, for which there is no entry of their own.
#define ELEMENT character(7)
module shaped_character7
    use quillfn_records, reshape_entry => f90_reshapen, spread_entry => f90_spreadn, &
        transpose_entry => f90_transposen, transfer_entry => f90_transfern, &
        transfer_to_bytes_entry => f90_transfer1
#include "shaped_tables.inc"
end module
#undef ELEMENT

#define ELEMENT character(20)
module shaped_character20
    use quillfn_records, reshape_entry => f90_reshape20, spread_entry => f90_spread20, &
        transpose_entry => f90_transpose20, transfer_entry => f90_transfer20, &
        transfer_to_bytes_entry => f90_transfer1
#include "shaped_tables.inc"
end module
#undef ELEMENT

! 12 bytes, of which the entries of 10 would move 10.
#define ELEMENT real(10)
module shaped_real10
    use quillfn_records, reshape_entry => f90_reshapen, spread_entry => f90_spreadn, &
        transpose_entry => f90_transposen, transfer_entry => f90_transfern, &
        transfer_to_bytes_entry => f90_transfer1
#include "shaped_tables.inc"
end module
#undef ELEMENT

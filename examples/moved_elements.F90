! The library's CSHIFT, EOSHIFT, PACK and UNPACK behind functions that read as the
! intrinsics do, and their comparison with them: the same text for each type of
! element. The entries know sizes, not types. Those of n bytes let blanks in at the
! end of what EOSHIFT moves, the others zeros: a type that wants others says so.

#define ELEMENT integer(4)
module moved_integer4
    use quillfn_records, cshift_entry => f90_cshift4, eoshift_entry => f90_eoshift4, &
        pack_entry => f90_pack4, unpack_entry => f90_unpack4
#include "moved_elements.inc"
end module
#undef ELEMENT

#define ELEMENT real(4)
module moved_real4
    use quillfn_records, cshift_entry => f90_cshift4, eoshift_entry => f90_eoshift4, &
        pack_entry => f90_pack4, unpack_entry => f90_unpack4
#include "moved_elements.inc"
end module
#undef ELEMENT

#define ELEMENT real(8)
module moved_real8
    use quillfn_records, cshift_entry => f90_cshift8, eoshift_entry => f90_eoshift8, &
        pack_entry => f90_pack8, unpack_entry => f90_unpack8
#include "moved_elements.inc"
end module
#undef ELEMENT

#define ELEMENT real(16)
module moved_real16
    use quillfn_records, cshift_entry => f90_cshift16, eoshift_entry => f90_eoshift16, &
        pack_entry => f90_pack16, unpack_entry => f90_unpack16
#include "moved_elements.inc"
end module
#undef ELEMENT

! 7 bytes, for which there is no entry of their own.
#define ELEMENT character(7)
module moved_character7
    use quillfn_records, cshift_entry => f90_cshiftn, eoshift_entry => f90_eoshiftn, &
        pack_entry => f90_packn, unpack_entry => f90_unpackn
#include "moved_elements.inc"
end module
#undef ELEMENT

#define ELEMENT character(20)
#define DEFAULT_BOUNDARY ''
module moved_character20
    use quillfn_records, cshift_entry => f90_cshift20, eoshift_entry => f90_eoshift20, &
        pack_entry => f90_pack20, unpack_entry => f90_unpack20
#include "moved_elements.inc"
end module
#undef ELEMENT
#undef DEFAULT_BOUNDARY

! 12 bytes, of which the entries of 10 would move 10.
#define ELEMENT real(10)
#define DEFAULT_BOUNDARY 0
module moved_real10
    use quillfn_records, cshift_entry => f90_cshiftn, eoshift_entry => f90_eoshiftn, &
        pack_entry => f90_packn, unpack_entry => f90_unpackn
#include "moved_elements.inc"
end module
#undef ELEMENT
#undef DEFAULT_BOUNDARY

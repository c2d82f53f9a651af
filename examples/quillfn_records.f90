! The records of quillfn/quillfn.h for Fortran, as compiled code fills them, and
! the entries of the library that the examples call. The layout is binary: order
! and widths are those of the C header, addresses are 32-bit words.
module quillfn_records
    use, intrinsic :: iso_c_binding
    implicit none

    integer, parameter :: f90_MaxRank = 7

    ! One dimension: subscripts Lower to Upper, neighbours Stride elements apart.
    type, bind(C) :: f90_DimInfo
        integer(c_int32_t) :: Lower
        integer(c_int32_t) :: Upper
        integer(c_int32_t) :: Stride
    end type

    ! An array. One whose BASE is null holds no elements yet: the calls below ask the
    ! library to create it.
    type, bind(C) :: f90_ArrDesc
        type(c_ptr) :: ZERO = c_null_ptr
        type(c_ptr) :: BASE = c_null_ptr
        integer(c_int32_t) :: EXTENT = 0
        integer(c_int32_t) :: ELSIZE = 0
        integer(c_int32_t) :: SCALEFACTOR = 0
        integer(c_int8_t) :: RANK = 0
        integer(c_int8_t) :: NONCONTIG = 0
        integer(c_int8_t) :: Reserved(2) = 0
        type(f90_DimInfo) :: Dim(f90_MaxRank) = f90_DimInfo(1, 0, 0)
    end type

    ! One argument: the address of a descriptor, or a 32-bit value, in Word0.
    type, bind(C) :: f90_Slot
        integer(c_intptr_t) :: Word0 = 0
        integer(c_intptr_t) :: Word1 = 0
    end type

    type, bind(C) :: f90_ArgList
        integer(c_int16_t) :: Shape = 0
        integer(c_int16_t) :: Presence = 0
        integer(c_int32_t) :: Flags = 0
        type(f90_Slot) :: Result
        type(f90_Slot) :: Arg1
        type(f90_Slot) :: Arg2
        type(f90_Slot) :: Arg3
        type(f90_Slot) :: Arg4
    end type

    ! Bits of Presence.
    integer(c_int16_t), parameter :: result_given = 1
    integer(c_int16_t), parameter :: arg1_present = 2
    integer(c_int16_t), parameter :: arg2_present = 4
    integer(c_int16_t), parameter :: arg3_present = 8
    integer(c_int16_t), parameter :: arg4_present = 16

    ! Bit of Flags.
    integer(c_int32_t), parameter :: check_shapes = 1

    ! ---- Entries of the library ---------------------------------------------

    abstract interface
        subroutine f90_Intrinsic(arguments) bind(C)
            import :: f90_ArgList
            type(f90_ArgList), intent(inout) :: arguments
        end subroutine
    end interface

    procedure(f90_Intrinsic), bind(C) :: f90_sumi4, f90_sumr4, f90_sumr8, f90_sumr10, f90_sumr16
    procedure(f90_Intrinsic), bind(C) :: f90_prodi4, f90_prodr4, f90_prodr8, f90_prodr10, f90_prodr16
    procedure(f90_Intrinsic), bind(C) :: f90_count4, f90_all4, f90_any4
    procedure(f90_Intrinsic), bind(C) :: &
        f90_maxvali4, f90_maxvalr4, f90_maxvalr8, f90_maxvalr10, f90_maxvalr16, &
        f90_minvali4, f90_minvalr4, f90_minvalr8, f90_minvalr10, f90_minvalr16, &
        f90_maxloci4, f90_maxlocr4, f90_maxlocr8, f90_maxlocr10, f90_maxlocr16, f90_kmaxlocr8, &
        f90_minloci4, f90_minlocr4, f90_minlocr8, f90_minlocr10, f90_minlocr16, &
        f90_dotpri4, f90_dotprr4, f90_dotprr8, f90_dotprr10, f90_dotprr16, f90_dotprc16, f90_dotprl4
    procedure(f90_Intrinsic), bind(C) :: &
        f90_matmuli1, f90_matmuli2, f90_matmuli4, f90_matmuli8, &
        f90_matmull1, f90_matmull2, f90_matmull4, f90_matmull8, &
        f90_matmulr4, f90_matmulr8, f90_matmulr10, f90_matmulr16
    procedure(f90_Intrinsic), bind(C) :: &
        f90_cshift4, f90_cshift8, f90_cshift16, f90_cshift20, f90_cshiftn, &
        f90_eoshift4, f90_eoshift8, f90_eoshift16, f90_eoshift20, f90_eoshiftn, &
        f90_pack4, f90_pack8, f90_pack16, f90_pack20, f90_packn, &
        f90_unpack4, f90_unpack8, f90_unpack16, f90_unpack20, f90_unpackn, &
        f90_reshape4, f90_reshape8, f90_reshape16, f90_reshape20, f90_reshapen, f90_kreshape4, &
        f90_spread4, f90_spread8, f90_spread16, f90_spread20, f90_spreadn, &
        f90_transpose4, f90_transpose8, f90_transpose16, f90_transpose20, f90_transposen, &
        f90_transfer4, f90_transfer8, f90_transfer16, f90_transfer20, f90_transfern, &
        f90_ktransfer4, f90_transfer1, f90_ktransfer1

    interface
        subroutine f90_freespace(space) bind(C)
            import :: c_ptr
            type(c_ptr), value :: space
        end subroutine
    end interface

    ! ---- Records of Fortran data --------------------------------------------

    private :: descriptor, address_of, bytes_of, word

contains

    ! The descriptor of a scalar or an array of any type. Of an array it takes
    ! sections as they lie in storage; there must be elements, and the caller's
    ! variable must have TARGET for as long as the descriptor is used.
    function describe(variable) result(array)
        class(*), intent(in), target :: variable(..)
        type(f90_ArrDesc) :: array
        integer, allocatable :: next(:)

        select rank (variable)
        rank (0)
            array = descriptor(address_of(variable), bytes_of(variable), [integer ::], &
                               [integer(c_intptr_t) ::])
        rank (1)
            array = descriptor(address_of(variable(1)), bytes_of(variable(1)), shape(variable), &
                               [address_of(variable(min(2, size(variable))))])
        rank (2)
            next = min(2, shape(variable))
            array = descriptor(address_of(variable(1, 1)), bytes_of(variable(1, 1)), shape(variable), &
                               [address_of(variable(next(1), 1)), address_of(variable(1, next(2)))])
        rank (3)
            next = min(2, shape(variable))
            array = descriptor(address_of(variable(1, 1, 1)), bytes_of(variable(1, 1, 1)), &
                               shape(variable), [address_of(variable(next(1), 1, 1)), &
                               address_of(variable(1, next(2), 1)), &
                               address_of(variable(1, 1, next(3)))])
        rank default
            error stop 'describe: an array of rank 3 at the most is needed'
        end select
    end function

    ! From the addresses of the first element and of its neighbour along each
    ! dimension; along a dimension with one element that is the first again, and
    ! any stride does.
    pure function descriptor(first, bytes, extents, neighbours) result(array)
        integer(c_intptr_t), intent(in) :: first
        integer, intent(in) :: bytes
        integer, intent(in) :: extents(:)
        integer(c_intptr_t), intent(in) :: neighbours(:)
        type(f90_ArrDesc) :: array
        integer :: i, stride, dense_stride

        dense_stride = 1
        do i = 1, size(extents)
            stride = int(neighbours(i) - first) / bytes
            if (extents(i) == 1) stride = dense_stride
            if (stride /= dense_stride) array%NONCONTIG = 1
            array%Dim(i) = f90_DimInfo(1, extents(i), stride)
            dense_stride = dense_stride * extents(i)
        end do
        array%RANK = int(size(extents), c_int8_t)
        array%EXTENT = product(extents)
        array%ELSIZE = bytes
        array%SCALEFACTOR = bytes
        array%BASE = transfer(first, c_null_ptr)
        ! All lower bounds are 1.
        array%ZERO = transfer(first - bytes * sum(array%Dim(1:array%RANK)%Stride), c_null_ptr)
    end function

    ! The transpose of a matrix, without a copy: its dimensions change places.
    pure function transposed(matrix) result(array)
        type(f90_ArrDesc), intent(in) :: matrix
        type(f90_ArrDesc) :: array
        array = matrix
        array%Dim(1:2) = matrix%Dim(2:1:-1)
        array%NONCONTIG = 1
    end function

    function address_of(variable) result(address)
        type(*), intent(in), target :: variable
        integer(c_intptr_t) :: address
        address = transfer(c_loc(variable), address)
    end function

    ! gfortran's STORAGE_SIZE passes over the length of a string of no declared type.
    function bytes_of(element) result(bytes)
        class(*), intent(in) :: element
        integer :: bytes
        select type (element)
        type is (character(*))
            bytes = len(element)
        class default
            bytes = storage_size(element) / 8
        end select
    end function

    ! ---- Calls --------------------------------------------------------------

    ! Calls a reduction: Arg1 is the array, Arg2 DIM, Arg3 MASK. The result goes to
    ! the storage that answer describes; when it describes none, the library
    ! creates the array and completes answer, and f90_freespace takes BASE back.
    subroutine reduce(entry, array, answer, dim, mask)
        procedure(f90_Intrinsic) :: entry
        type(f90_ArrDesc), intent(in), target :: array
        type(f90_ArrDesc), intent(inout), target :: answer
        integer(c_int32_t), intent(in), optional :: dim
        type(f90_ArrDesc), intent(in), target, optional :: mask
        type(f90_ArgList) :: arguments

        arguments%Flags = check_shapes
        arguments%Result%Word0 = word(answer)
        if (c_associated(answer%BASE)) arguments%Presence = result_given
        arguments%Arg1%Word0 = word(array)
        arguments%Presence = ior(arguments%Presence, arg1_present)
        if (present(dim)) then
            arguments%Arg2%Word0 = dim
            arguments%Presence = ior(arguments%Presence, arg2_present)
        end if
        if (present(mask)) then
            arguments%Arg3%Word0 = word(mask)
            arguments%Presence = ior(arguments%Presence, arg3_present)
        end if
        call entry(arguments)
    end subroutine

    ! Calls DOT_PRODUCT: Arg1 and Arg2 are the vectors. The value goes to the scalar
    ! that answer describes; the library leaves one of at most 8 bytes in the slot.
    ! answer is INOUT because gfortran takes what a descriptor that is only IN leads
    ! to for unchanged.
    subroutine multiply(entry, vector_a, vector_b, answer)
        procedure(f90_Intrinsic) :: entry
        type(f90_ArrDesc), intent(in), target :: vector_a, vector_b
        type(f90_ArrDesc), intent(inout) :: answer
        type(f90_ArgList), target :: arguments
        integer(c_int8_t), pointer :: value(:), slot(:)

        arguments%Flags = check_shapes
        arguments%Presence = ior(result_given, ior(arg1_present, arg2_present))
        arguments%Result%Word0 = transfer(answer%BASE, arguments%Result%Word0)
        arguments%Arg1%Word0 = word(vector_a)
        arguments%Arg2%Word0 = word(vector_b)
        call entry(arguments)
        if (answer%ELSIZE <= storage_size(arguments%Result) / 8) then
            call c_f_pointer(answer%BASE, value, [answer%ELSIZE])
            call c_f_pointer(c_loc(arguments%Result), slot, [answer%ELSIZE])
            value = slot
        end if
    end subroutine

    ! Calls MATMUL or an intrinsic that moves elements: Arg1 and, where there are such,
    ! Arg2 to Arg4 are arrays or scalars; values, such as DIM, are named after their
    ! slots. The result goes where that of reduce goes.
    subroutine transform(entry, arg1, arg2, answer, arg3, arg4, value2, value3, value4)
        procedure(f90_Intrinsic) :: entry
        type(f90_ArrDesc), intent(in), target :: arg1
        type(f90_ArrDesc), intent(inout), target :: answer
        type(f90_ArrDesc), intent(in), target, optional :: arg2, arg3, arg4
        integer(c_int32_t), intent(in), optional :: value2, value3, value4
        type(f90_ArgList) :: arguments

        arguments%Flags = check_shapes
        arguments%Presence = arg1_present
        arguments%Result%Word0 = word(answer)
        if (c_associated(answer%BASE)) arguments%Presence = ior(arguments%Presence, result_given)
        arguments%Arg1%Word0 = word(arg1)
        call fill(arguments%Arg2, arg2_present, arg2, value2)
        call fill(arguments%Arg3, arg3_present, arg3, value3)
        call fill(arguments%Arg4, arg4_present, arg4, value4)
        call entry(arguments)

    contains

        subroutine fill(slot, bit, array, value)
            type(f90_Slot), intent(inout) :: slot
            integer(c_int16_t), intent(in) :: bit
            type(f90_ArrDesc), intent(in), target, optional :: array
            integer(c_int32_t), intent(in), optional :: value
            if (present(array)) slot%Word0 = word(array)
            if (present(value)) slot%Word0 = value
            if (present(array) .or. present(value)) &
                arguments%Presence = ior(arguments%Presence, bit)
        end subroutine

    end subroutine

    ! The address of a descriptor, as a slot holds it.
    function word(array)
        type(f90_ArrDesc), intent(in), target :: array
        integer(c_intptr_t) :: word
        word = address_of(array)
    end function

end module

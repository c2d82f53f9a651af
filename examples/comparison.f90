! Prints the compiler's values and the library's side by side, judges each pair by
! the rounding that its kind allows and keeps the tally. Every value is widened to
! REAL(16), which holds those of all other kinds exactly.
module comparison
    implicit none
    private
    public :: explain_allowance, print_title, open_section, compare, compare_moved, report_moved, &
        judge, exact

    ! In place of the number of terms: values that nothing rounds, hence equal.
    integer, parameter :: exact = 0

    integer, parameter :: wide = 16

    ! A value: 8 columns before the decimal point, at most 18 after it.
    integer, parameter :: integer_width = 8
    integer, parameter :: fraction_width = 18
    integer, parameter :: value_width = integer_width + 1 + fraction_width
    integer, parameter :: label_width = 25
    integer, parameter :: distance_width = 8

    ! How values of one kind are shown and how far two may lie apart.
    type :: kind_rule
        character(10) :: name
        real(wide) :: epsilon     ! 0: values must be equal
        integer :: decimals       ! 0: an integer; -1: shown as true or false
        logical :: per_term       ! whether every element may add to the difference
    end type

    ! Epsilons that kinds 8, 10 and 16 may differ by.
    integer, parameter :: same_width_epsilons = 4

    integer :: pairs = 0
    integer :: differing = 0

    ! Elements that one call moved, in all kinds together.
    type :: tally
        character(46) :: call = ''
        integer :: pairs = 0
        integer :: differing = 0
    end type
    type(tally), allocatable :: moved(:)

contains

    subroutine explain_allowance
        print '(a)', &
            'Each line below shows one value twice: as the compiler''s own intrinsic gives it and', &
            'as the library gives it. "apart" is their distance in epsilons: EPSILON of the kind', &
            'times the compiler''s value. Values are compared in full, also where fewer digits', &
            'are shown. They agree when they are no further apart than this:', &
            '', &
            '  REAL(4)      one epsilon for each element: the library adds and multiplies in', &
            '               double precision and rounds once, the compiler at every element'
        print '(a,i0,a)', '  REAL(8)      ', same_width_epsilons, &
            ' epsilons: both work in element order at the element''s width,'
        print '(a)', &
            '  REAL(10)     but a compiler is free to keep a value in a wider register or to', &
            '  REAL(16)     take elements in another order', &
            '  INTEGER      0', &
            '  LOGICAL      0', &
            '', &
            'Dot products of REAL(4) and REAL(8) the library sums in the 80-bit extended format and', &
            'rounds once, so there REAL(8) too has one epsilon for each element. Extrema, their', &
            'places, moved elements and matrix products, here of whole numbers, are equal in all kinds.'
    end subroutine

    subroutine open_section(title, explanation)
        character(*), intent(in) :: title, explanation
        call print_title(title, explanation)
        call print_line('', 'compiler', 'library', '   apart')
    end subroutine

    subroutine print_title(title, explanation)
        character(*), intent(in) :: title, explanation
        print '(/a/a/a/)', title, repeat('-', len(title)), explanation
    end subroutine

    subroutine print_line(label, compiler, library, apart)
        character(*), intent(in) :: label, compiler, library, apart
        character(label_width) :: label_column
        character(value_width) :: compiler_column, library_column
        label_column = label
        compiler_column = compiler
        library_column = library
        print '(4x,a,2(1x,a),1x,a)', label_column, compiler_column, library_column, apart
    end subroutine

    ! Compares values that come of `terms` elements each. The values are integers,
    ! reals or logicals, both of one kind. Where the library rounds once and the
    ! compiler does not, every element may add to the difference, whatever the kind.
    subroutine compare(labels, terms, compiler, library, rounded_once)
        character(*), intent(in) :: labels(:)
        integer, intent(in) :: terms
        class(*), intent(in) :: compiler(:), library(:)
        logical, intent(in), optional :: rounded_once
        type(kind_rule) :: rule
        real(wide) :: ours(size(labels)), theirs(size(labels))
        integer :: allowed, i

        if (size(compiler) /= size(labels) .or. size(library) /= size(labels)) &
            error stop 'compare: as many labels, compiler''s values and library''s are needed'
        rule = rule_of(compiler)
        if (present(rounded_once)) rule%per_term = rule%per_term .or. rounded_once
        allowed = merge(terms, same_width_epsilons, rule%per_term .or. terms == exact)
        theirs = widened(compiler)
        ours = widened(library)
        print '(2x,a)', trim(rule%name)
        do i = 1, size(labels)
            call compare_pair(rule, labels(i), allowed, theirs(i), ours(i))
        end do
    end subroutine

    subroutine compare_pair(rule, label, allowed, compiler, library)
        type(kind_rule), intent(in) :: rule
        character(*), intent(in) :: label
        integer, intent(in) :: allowed
        real(wide), intent(in) :: compiler, library
        real(wide) :: difference
        logical :: agrees

        difference = abs(library - compiler)
        ! Written so that a value that is not a number agrees with none.
        agrees = difference <= allowed * rule%epsilon * abs(compiler)
        pairs = pairs + 1
        if (.not. agrees) differing = differing + 1
        call print_line(label, shown(rule, compiler), shown(rule, library), &
                        trim(distance(rule, difference, abs(compiler)) // &
                             merge('           ', ' <-- DIFFER', agrees)))
    end subroutine

    ! Compares what a call moved, element by element and bit by bit. The elements come
    ! as strings of their bytes, of which the first `significant` must be equal.
    subroutine compare_moved(kind, call, significant, compiler, library)
        character(*), intent(in) :: kind, call, compiler(:), library(:)
        integer, intent(in) :: significant
        type(tally) :: this
        integer, allocatable :: differ(:)
        integer :: i, row

        if (size(compiler) /= size(library)) error stop kind // ', ' // call // ': sizes differ'
        differ = pack([(i, i = 1, size(compiler))], &
                      compiler(:)(:significant) /= library(:)(:significant))
        if (size(differ) > 0) print '(2x,4a,*(1x,i0))', kind, ', ', call, ' <-- DIFFER, elements', differ
        if (.not. allocated(moved)) allocate (moved(0))
        this = tally(call)
        row = findloc(moved%call, this%call, dim=1)
        if (row == 0) then
            moved = [moved, this]
            row = size(moved)
        end if
        moved(row)%pairs = moved(row)%pairs + size(compiler)
        moved(row)%differing = moved(row)%differing + size(differ)
        pairs = pairs + size(compiler)
        differing = differing + size(differ)
    end subroutine

    subroutine report_moved
        print '(2x,a,2a11)', repeat(' ', len(moved%call)), 'elements', 'differing'
        print '(2x,a,2i11)', moved
    end subroutine

    ! Prints the tally; a difference ends the program with status 1.
    subroutine judge
        print '()'
        if (differing == 0) then
            print '(a,i0,a)', 'all ', pairs, ' pairs agree'
        else
            print '(i0,a,i0,a)', differing, ' of ', pairs, &
                ' pairs differ by more than rounding allows'
            stop 1, quiet=.true.
        end if
    end subroutine

    ! ---- Kinds --------------------------------------------------------------

    function rule_of(values) result(rule)
        class(*), intent(in) :: values(:)
        type(kind_rule) :: rule
        select type (values)
        type is (real(4))
            rule = kind_rule('REAL(4)', epsilon(values), 6, .true.)
        type is (real(8))
            rule = kind_rule('REAL(8)', epsilon(values), 12, .false.)
        type is (real(10))
            rule = kind_rule('REAL(10)', epsilon(values), 15, .false.)
        type is (real(16))
            rule = kind_rule('REAL(16)', epsilon(values), fraction_width, .false.)
        type is (integer(1))
            rule = kind_rule('INTEGER(1)', 0, 0, .false.)
        type is (integer(2))
            rule = kind_rule('INTEGER(2)', 0, 0, .false.)
        type is (integer(4))
            rule = kind_rule('INTEGER(4)', 0, 0, .false.)
        type is (integer(8))
            rule = kind_rule('INTEGER(8)', 0, 0, .false.)
        type is (logical(1))
            rule = kind_rule('LOGICAL(1)', 0, -1, .false.)
        type is (logical(2))
            rule = kind_rule('LOGICAL(2)', 0, -1, .false.)
        type is (logical(4))
            rule = kind_rule('LOGICAL(4)', 0, -1, .false.)
        type is (logical(8))
            rule = kind_rule('LOGICAL(8)', 0, -1, .false.)
        class default
            error stop 'compare: values of an unknown kind'
        end select
    end function

    ! Of a logical the bits: true is what the compiler stores for it.
    function widened(values) result(wider)
        class(*), intent(in) :: values(:)
        real(wide) :: wider(size(values))
        select type (values)
        type is (real(4))
            wider = values
        type is (real(8))
            wider = values
        type is (real(10))
            wider = values
        type is (real(16))
            wider = values
        type is (integer(1))
            wider = values
        type is (integer(2))
            wider = values
        type is (integer(4))
            wider = values
        type is (integer(8))
            wider = values
        type is (logical(1))
            wider = transfer(values, [0_1])
        type is (logical(2))
            wider = transfer(values, [0_2])
        type is (logical(4))
            wider = transfer(values, [0_4])
        type is (logical(8))
            wider = transfer(values, [0_8])
        class default
            error stop 'compare: values of an unknown kind'
        end select
    end function

    ! ---- Columns of the listing ---------------------------------------------

    ! A value with its decimal point in a fixed place; zeros at the end, except
    ! the one after the point, are left out.
    function shown(rule, value) result(text)
        type(kind_rule), intent(in) :: rule
        real(wide), intent(in) :: value
        character(value_width) :: text
        character(16) :: layout
        integer :: last

        if (rule%decimals < 0) then
            text = merge('    true', '   false', abs(value) > 0)
        else if (rule%decimals == 0) then
            write (text, '(i8)') int(value)
        else
            write (layout, '(a,i0,a,i0,a)') '(f', integer_width + 1 + rule%decimals, '.', &
                rule%decimals, ')'
            write (text, layout) value
            last = max(verify(text, '0 ', back=.true.), integer_width + 2)
            text(last + 1:) = ''
        end if
    end function

    ! In epsilons; a dash for what cannot be told in five digits of them.
    function distance(rule, difference, magnitude) result(text)
        type(kind_rule), intent(in) :: rule
        real(wide), intent(in) :: difference, magnitude
        character(distance_width) :: text
        text = repeat(' ', distance_width - 1) // '-'
        if (difference <= 0) then
            text = repeat(' ', distance_width - 1) // '0'
        else if (difference < 99999 * rule%epsilon * magnitude) then
            write (text, '(f8.2)') difference / (rule%epsilon * magnitude)
        end if
    end function

end module

! Reduces Longley's table of economic series in every numeric kind, once with the
! compiler's own intrinsics and once with the library, prints both and fails when
! a pair differs by more than rounding allows. One procedure for each section.
program longley
    use, intrinsic :: iso_fortran_env, only: error_unit
    use comparison
    use library_integer4
    use library_logical4
    use library_real4
    use library_real8
    use library_real10
    use library_real16
    implicit none

    integer, parameter :: years = 16
    integer, parameter :: series = 7
    integer, parameter :: deflator = 2

    character(12), parameter :: names(series) = [character(12) :: &
        'employment', 'deflator', 'GNP', 'unemployed', 'armed forces', 'population', 'year']
    character(36), parameter :: units(series) = [character(36) :: &
        'thousands', '1954 = 100; INTEGER(4) holds tenths', 'million dollars', 'thousands', &
        'thousands', 'thousands, 14 years and over', 'of the common era']

    ! The table in each kind: a row for each year, a column for each series.
    real(4) :: real4(years, series)
    real(8) :: real8(years, series)
    real(10) :: real10(years, series)
    real(16) :: real16(years, series)
    integer(4) :: int4(years, series)

    ! Which entries exceed the mean of their series.
    logical(4) :: above(years, series)

    call read_table
    call introduce
    call sums_of_series
    call products_of_growth
    call counts_above_mean
    call conditions
    call sums_under_mask
    call sums_of_sections
    call judge

contains

    ! ---- The table ----------------------------------------------------------

    function table_path() result(path)
        character(:), allocatable :: path
        integer :: length
        call get_command_argument(1, length=length)
        if (length == 0) then
            path = 'examples/data/longley.txt'
        else
            allocate (character(length) :: path)
            call get_command_argument(1, path)
        end if
    end function

    ! Lines that begin with # are comments.
    subroutine read_table
        character(256) :: line
        integer :: unit, status, row

        open (newunit=unit, file=table_path(), status='old', action='read', iostat=status)
        if (status /= 0) call give_up('cannot open ' // table_path())
        row = 0
        do while (row < years)
            read (unit, '(a)', iostat=status) line
            if (status /= 0) call give_up('fewer than 16 rows in ' // table_path())
            if (line == '' .or. line(1:1) == '#') cycle
            row = row + 1
            read (line, *, iostat=status) real16(row, :)
            if (status /= 0) call give_up('a row without 7 numbers in ' // table_path())
        end do
        close (unit)

        real4 = real(real16, 4)
        real8 = real(real16, 8)
        real10 = real(real16, 10)
        int4 = nint(real16)
        int4(:, deflator) = nint(10 * real16(:, deflator))
        above = real16 > spread(sum(real16, dim=1) / years, 1, years)
    end subroutine

    subroutine give_up(message)
        character(*), intent(in) :: message
        write (error_unit, '(2a)') 'longley: ', message
        stop 1, quiet=.true.
    end subroutine

    subroutine introduce
        integer :: i
        print '(a)', 'Reductions of Longley''s economic series, by the compiler and by libquillfn'
        print '(/a,i0,a,i0,a,i0,a,i0,3a)', 'The table: ', years, ' years (', int4(1, series), ' to ', &
            int4(years, series), ') by ', series, ' series, from ', table_path(), '.'
        print '()'
        print '(2x,a,1x,a)', (names(i), trim(units(i)), i = 1, series)
        print '()'
        call explain_allowance
    end subroutine

    ! ---- Sections -----------------------------------------------------------

    subroutine sums_of_series
        character(18) :: means(series)

        call open_section('Sums and means', &
            'SUM(table, DIM=1), and that divided by the number of years. The library creates the result.')
        call compare(names, years, sum(int4, dim=1), library_sum(int4, dim=1))
        call compare(names, years, sum(real4, dim=1), library_sum(real4, dim=1))
        call compare(names, years, sum(real8, dim=1), library_sum(real8, dim=1))
        call compare(names, years, sum(real10, dim=1), library_sum(real10, dim=1))
        call compare(names, years, sum(real16, dim=1), library_sum(real16, dim=1))

        means = 'mean ' // names
        call compare(means, years, sum(real4, dim=1) / years, library_sum(real4, dim=1) / years)
        call compare(means, years, sum(real8, dim=1) / years, library_sum(real8, dim=1) / years)
        call compare(means, years, sum(real10, dim=1) / years, library_sum(real10, dim=1) / years)
        call compare(means, years, sum(real16, dim=1) / years, library_sum(real16, dim=1) / years)
    end subroutine

    subroutine products_of_growth
        integer, parameter :: changes = years - 1
        character(*), parameter :: one(1) = ['employment alone']
        real(4) :: growth4(changes, series)
        real(8) :: growth8(changes, series)
        real(10) :: growth10(changes, series)
        real(16) :: growth16(changes, series)

        growth4 = real4(2:, :) / real4(:changes, :)
        growth8 = real8(2:, :) / real8(:changes, :)
        growth10 = real10(2:, :) / real10(:changes, :)
        growth16 = real16(2:, :) / real16(:changes, :)

        call open_section('Products', &
            'PRODUCT(growth, DIM=1), of each year over the year before. The result is the caller''s.')
        call compare(names, changes, product(growth4, dim=1), library_product(growth4, dim=1))
        call compare(names, changes, product(growth8, dim=1), library_product(growth8, dim=1))
        call compare(names, changes, product(growth10, dim=1), library_product(growth10, dim=1))
        call compare(names, changes, product(growth16, dim=1), library_product(growth16, dim=1))

        call open_section('Product of one column', 'PRODUCT(growth(:, 1)). The result is the caller''s.')
        call compare(one, changes, [product(growth4(:, 1))], [library_product(growth4(:, 1))])
        call compare(one, changes, [product(growth8(:, 1))], [library_product(growth8(:, 1))])
        call compare(one, changes, [product(growth10(:, 1))], [library_product(growth10(:, 1))])
        call compare(one, changes, [product(growth16(:, 1))], [library_product(growth16(:, 1))])

        call products_of_digits
    end subroutine

    ! At most 9 to the power 8, which an INTEGER(4) holds.
    subroutine products_of_digits
        integer(4) :: digits(years, series)

        digits = int4
        do while (any(digits > 9))
            where (digits > 9) digits = digits / 10
        end do
        call open_section('Products of leading digits', &
            'PRODUCT(digits(2::2, :), DIM=1), every second year. The result is the caller''s.')
        call compare(names, years / 2, product(digits(2::2, :), dim=1), &
                     library_product(digits(2::2, :), dim=1))
    end subroutine

    subroutine counts_above_mean
        character(*), parameter :: one(1) = ['whole table']

        call open_section('Counts of values above the mean of their series', &
            'COUNT(table > mean), into the caller''s scalar; along DIM=1 (years) and DIM=2 (series),' // &
            new_line('') // 'where the library creates the result.')
        call compare(one, size(above), [count(above)], [library_count(above)])
        call compare(names, years, count(above, dim=1), library_count(above, dim=1))
        call compare(year_labels(1), series, count(above, dim=2), library_count(above, dim=2))
    end subroutine

    subroutine conditions
        logical(4), dimension(years - 1, series) :: rises, falls
        character(26), parameter :: tables(2) = [character(26) :: &
            'all are positive', 'one exceeds 600000']
        character(26), parameter :: changes(2) = [character(26) :: &
            'all rise in all years', 'one falls in some year']

        rises = int4(2:, :) > int4(:years - 1, :)
        falls = int4(2:, :) < int4(:years - 1, :)

        call open_section('Conditions on the whole table', &
            'ALL(table > 0), ANY(table > 600000); ALL(rises), ANY(falls), of a year against the year' // &
            new_line('') // 'before. The results are the caller''s.')
        call compare(tables, size(int4), [all(int4 > 0), any(int4 > 600000)], &
                     [library_all(int4 > 0), library_any(int4 > 600000)])
        call compare(changes, size(rises), [all(rises), any(falls)], &
                     [library_all(rises), library_any(falls)])

        call open_section('Conditions along a dimension', &
            'ALL(rises, DIM=1), ANY(falls, DIM=1), ALL(rises(:, :3), DIM=2). The results are the caller''s.')
        call compare(names // ' always rises', years - 1, all(rises, dim=1), library_all(rises, dim=1))
        call compare(names // ' ever falls', years - 1, any(falls, dim=1), library_any(falls, dim=1))
        call compare(year_labels(2) // ' first three rise', 3, all(rises(:, :3), dim=2), &
                     library_all(rises(:, :3), dim=2))
    end subroutine

    subroutine sums_under_mask
        character(*), parameter :: one(1) = ['unemployed, armed forces']
        integer, parameter :: terms = 2 * years
        logical(4) :: counts(years, 2)

        call open_section('Sums of values above the mean of their series', &
            'SUM(table, DIM=1, MASK=table > mean). The library creates the result.')
        call compare(names, years, sum(int4, 1, above), library_sum(int4, 1, above))
        call compare(names, years, sum(real4, 1, above), library_sum(real4, 1, above))
        call compare(names, years, sum(real8, 1, above), library_sum(real8, 1, above))
        call compare(names, years, sum(real10, 1, above), library_sum(real10, 1, above))
        call compare(names, years, sum(real16, 1, above), library_sum(real16, 1, above))

        call open_section('Sum of two series where above the mean', &
            'SUM(table(:, 4:5), MASK=table(:, 4:5) > mean). The result is the caller''s.')
        counts = above(:, 4:5)
        call compare(one, terms, [sum(int4(:, 4:5), mask=counts)], &
                     [library_sum(int4(:, 4:5), mask=counts)])
        call compare(one, terms, [sum(real4(:, 4:5), mask=counts)], &
                     [library_sum(real4(:, 4:5), mask=counts)])
        call compare(one, terms, [sum(real8(:, 4:5), mask=counts)], &
                     [library_sum(real8(:, 4:5), mask=counts)])
        call compare(one, terms, [sum(real10(:, 4:5), mask=counts)], &
                     [library_sum(real10(:, 4:5), mask=counts)])
        call compare(one, terms, [sum(real16(:, 4:5), mask=counts)], &
                     [library_sum(real16(:, 4:5), mask=counts)])
    end subroutine

    subroutine sums_of_sections
        character(26), parameter :: runs(2) = [character(26) :: 'row of 1954', 'deflator, last year first']

        call open_section('Sums of every second year', &
            'SUM(table(1::2, :), DIM=1), of a section with gaps. The library creates the result.')
        call compare(names, years / 2, sum(int4(1::2, :), 1), library_sum(int4(1::2, :), 1))
        call compare(names, years / 2, sum(real4(1::2, :), 1), library_sum(real4(1::2, :), 1))
        call compare(names, years / 2, sum(real8(1::2, :), 1), library_sum(real8(1::2, :), 1))
        call compare(names, years / 2, sum(real10(1::2, :), 1), library_sum(real10(1::2, :), 1))
        call compare(names, years / 2, sum(real16(1::2, :), 1), library_sum(real16(1::2, :), 1))

        call open_section('Sums of a row and of a column from its end', &
            'SUM(table(8, :)), which adds unlike units, and SUM(table(16:1:-1, 2)). The results are' // &
            new_line('') // 'the caller''s.')
        call compare(runs, years, [sum(int4(8, :)), sum(int4(years:1:-1, deflator))], &
                     [library_sum(int4(8, :)), library_sum(int4(years:1:-1, deflator))])
        call compare(runs, years, [sum(real4(8, :)), sum(real4(years:1:-1, deflator))], &
                     [library_sum(real4(8, :)), library_sum(real4(years:1:-1, deflator))])
        call compare(runs, years, [sum(real8(8, :)), sum(real8(years:1:-1, deflator))], &
                     [library_sum(real8(8, :)), library_sum(real8(years:1:-1, deflator))])
        call compare(runs, years, [sum(real10(8, :)), sum(real10(years:1:-1, deflator))], &
                     [library_sum(real10(8, :)), library_sum(real10(years:1:-1, deflator))])
        call compare(runs, years, [sum(real16(8, :)), sum(real16(years:1:-1, deflator))], &
                     [library_sum(real16(8, :)), library_sum(real16(years:1:-1, deflator))])
    end subroutine

    ! The years of the table from row `first` on, as labels.
    function year_labels(first) result(labels)
        integer, intent(in) :: first
        character(4) :: labels(first:years)
        write (labels, '(i4)') int4(first:, series)
    end function

end program

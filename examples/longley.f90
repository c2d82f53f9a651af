! Reduces Longley's table of economic series in every numeric kind (sums, products,
! extrema and their places, dot products, counts and conditions), multiplies matrices
! of every kind and shifts, packs, reshapes and transposes the table, once with the compiler's own
! intrinsics and once with the library, and fails when a pair differs by more than
! rounding allows. It takes numbers and names apart the same way, and draws samples at random.
! Then it fits employment by the other series and fails when the widest kind does not
! show every certified digit. One procedure for each section.
program longley
    use, intrinsic :: iso_fortran_env, only: error_unit
    use comparison
    use library_complex8
    use library_integer4
    use library_integers, only: library_kmaxloc
    use library_logical4
    use library_real4
    use library_real8
    use library_real10
    use library_real16
    use library_scalars
    use matrix_products_integer1
    use matrix_products_integer2
    use matrix_products_integer4
    use matrix_products_integer8
    use matrix_products_logical1
    use matrix_products_logical2
    use matrix_products_logical4
    use matrix_products_logical8
    use matrix_products_real4
    use matrix_products_real8
    use matrix_products_real10
    use matrix_products_real16
    use moved_character20, only: compare_moves_of_labels => compare_moves
    use moved_character7
    use moved_integer4
    use moved_real4
    use moved_real8
    use moved_real10
    use moved_real16
    use shaped_character20, only: compare_shapes_of_labels => compare_shapes
    use shaped_character7, only: compare_shapes
    use shaped_integer4
    use shaped_real4
    use shaped_real8
    use shaped_real10
    use shaped_real16
    use regression
    use regression_real8
    use regression_real10
    use regression_real16
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

    ! The coefficients of 1 and of the other series that NIST certifies for employment.
    real(16) :: certified(series)

    call read_table
    call read_certified
    call introduce
    call sums_of_series
    call products_of_growth
    call counts_above_mean
    call conditions
    call sums_under_mask
    call sums_of_sections
    call extrema_of_series
    call places_of_extrema
    call dot_products_of_series
    call dot_products_of_changes
    call products_of_moves
    call changes_from_year_to_year
    call years_above_mean
    call deviations_from_mean
    call years_in_rows
    call bytes_of_numbers
    call moved_elements
    call numbers_taken_apart
    call names_looked_through
    call mean_by_resampling
    call regression_of_employment
    call judge

contains

    ! ---- The data -----------------------------------------------------------

    function table_path() result(path)
        character(:), allocatable :: path
        path = argument(1, 'examples/data/longley.txt')
    end function

    ! Unless named, the file beside the table.
    function certified_path() result(path)
        character(:), allocatable :: path
        path = table_path()
        path = argument(2, path(:index(path, '/', back=.true.)) // 'longley_certified.txt')
    end function

    function argument(position, default) result(text)
        integer, intent(in) :: position
        character(*), intent(in) :: default
        character(:), allocatable :: text
        integer :: length
        call get_command_argument(position, length=length)
        if (length == 0) then
            text = default
        else
            allocate (character(length) :: text)
            call get_command_argument(position, text)
        end if
    end function

    ! The rows of a file of numbers. Lines that begin with # are comments.
    subroutine read_rows(path, rows)
        character(*), intent(in) :: path
        real(16), intent(out) :: rows(:, :)
        character(256) :: line
        integer :: unit, status, row

        open (newunit=unit, file=path, status='old', action='read', iostat=status)
        if (status /= 0) call give_up('cannot open ' // path)
        row = 0
        do while (row < size(rows, 1))
            read (unit, '(a)', iostat=status) line
            if (status /= 0) call give_up('too few rows in ' // path)
            if (line == '' .or. line(1:1) == '#') cycle
            row = row + 1
            read (line, *, iostat=status) rows(row, :)
            if (status /= 0) call give_up('a row with too few numbers in ' // path)
        end do
        close (unit)
    end subroutine

    subroutine read_certified
        real(16) :: rows(series, 1)
        call read_rows(certified_path(), rows)
        certified = rows(:, 1)
    end subroutine

    subroutine read_table
        call read_rows(table_path(), real16)
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
        print '(a)', 'Reductions, matrix products and moves of Longley''s economic series, by the compiler', &
            'and by libquillfn'
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

    subroutine extrema_of_series
        character(25) :: labels(2 * series)
        logical(4) :: below(years, series)

        labels = ['greatest ' // names, 'smallest ' // names]
        call open_section('Extrema', &
            'MAXVAL(table, DIM=1), MINVAL(table, DIM=1). The library creates the results.')
        call compare(labels, exact, [maxval(int4, 1), minval(int4, 1)], &
                     [library_maxval(int4, 1), library_minval(int4, 1)])
        call compare(labels, exact, [maxval(real4, 1), minval(real4, 1)], &
                     [library_maxval(real4, 1), library_minval(real4, 1)])
        call compare(labels, exact, [maxval(real8, 1), minval(real8, 1)], &
                     [library_maxval(real8, 1), library_minval(real8, 1)])
        call compare(labels, exact, [maxval(real10, 1), minval(real10, 1)], &
                     [library_maxval(real10, 1), library_minval(real10, 1)])
        call compare(labels, exact, [maxval(real16, 1), minval(real16, 1)], &
                     [library_maxval(real16, 1), library_minval(real16, 1)])

        labels = ['next above, ' // names, 'next below, ' // names]
        call open_section('Values next to the mean of their series', &
            'MINVAL(table, DIM=1, MASK=table > mean), MAXVAL(table, DIM=1, MASK=table <= mean).' // &
            new_line('') // 'The library creates the results.')
        below = .not. above
        call compare(labels, exact, [minval(int4, 1, above), maxval(int4, 1, below)], &
                     [library_minval(int4, 1, above), library_maxval(int4, 1, below)])
        call compare(labels, exact, [minval(real4, 1, above), maxval(real4, 1, below)], &
                     [library_minval(real4, 1, above), library_maxval(real4, 1, below)])
        call compare(labels, exact, [minval(real8, 1, above), maxval(real8, 1, below)], &
                     [library_minval(real8, 1, above), library_maxval(real8, 1, below)])
        call compare(labels, exact, [minval(real10, 1, above), maxval(real10, 1, below)], &
                     [library_minval(real10, 1, above), library_maxval(real10, 1, below)])
        call compare(labels, exact, [minval(real16, 1, above), maxval(real16, 1, below)], &
                     [library_minval(real16, 1, above), library_maxval(real16, 1, below)])
    end subroutine

    subroutine places_of_extrema
        character(*), parameter :: place(4) = [character(16) :: &
            'greatest, row', 'greatest, column', 'smallest, row', 'smallest, column']

        call open_section('Years of the extrema', &
            'MAXLOC(table, DIM=1), MINLOC(table, DIM=1): the years at these positions. The library' // &
            new_line('') // 'creates the positions.')
        call compare(['greatest ' // names, 'smallest ' // names], exact, &
                     int4([maxloc(int4, 1), minloc(int4, 1)], series), &
                     int4([library_maxloc(int4, 1), library_minloc(int4, 1)], series))

        call open_section('Places in the table', &
            'MAXLOC(table), in the column of GNP, and MINLOC(table(:, 4:5)), of unemployed and armed' // &
            new_line('') // 'forces. The library creates the results, a row and a column each.')
        call compare('INTEGER ' // place, exact, [maxloc(int4), minloc(int4(:, 4:5))], &
                     [library_maxloc(int4), library_minloc(int4(:, 4:5))])
        call compare('REAL(4) ' // place, exact, [maxloc(real4), minloc(real4(:, 4:5))], &
                     [library_maxloc(real4), library_minloc(real4(:, 4:5))])
        call compare('REAL(8) ' // place, exact, [maxloc(real8), minloc(real8(:, 4:5))], &
                     [library_maxloc(real8), library_minloc(real8(:, 4:5))])
        call compare('REAL(10) ' // place, exact, [maxloc(real10), minloc(real10(:, 4:5))], &
                     [library_maxloc(real10), library_minloc(real10(:, 4:5))])
        call compare('REAL(16) ' // place, exact, [maxloc(real16), minloc(real16(:, 4:5))], &
                     [library_maxloc(real16), library_minloc(real16(:, 4:5))])

        call open_section('Positions of 64 bits', &
            'MAXLOC(table, DIM=1, KIND=8) of REAL(8). The library creates the positions.')
        call compare(names, exact, maxloc(real8, 1, kind=8), library_kmaxloc(real8, 1))
    end subroutine

    subroutine dot_products_of_series
        character(*), parameter :: pairs(2) = [character(25) :: &
            'employment . GNP', 'employment reversed . GNP']
        real(4), dimension(years) :: people4, gnp4
        real(8), dimension(years) :: people8, gnp8
        real(10), dimension(years) :: people10, gnp10
        real(16), dimension(years) :: people16, gnp16

        people4 = real4(:, 1) / 1000; gnp4 = real4(:, 3) / 1000
        people8 = real8(:, 1) / 1000; gnp8 = real8(:, 3) / 1000
        people10 = real10(:, 1) / 1000; gnp10 = real10(:, 3) / 1000
        people16 = real16(:, 1) / 1000; gnp16 = real16(:, 3) / 1000

        call open_section('Dot products of series', &
            'DOT_PRODUCT(employment, GNP), DOT_PRODUCT(employment(16:1:-1), GNP), in millions and in' // &
            new_line('') // 'thousand millions. In the table''s units INTEGER(4) would overflow.')
        call compare(pairs, years, [dot_product(people4, gnp4), dot_product(people4(16:1:-1), gnp4)], &
                     [library_dot_product(people4, gnp4), library_dot_product(people4(16:1:-1), gnp4)])
        call compare(pairs, years, [dot_product(people8, gnp8), dot_product(people8(16:1:-1), gnp8)], &
                     [library_dot_product(people8, gnp8), library_dot_product(people8(16:1:-1), gnp8)], &
                     rounded_once=.true.)
        call compare(pairs, years, [dot_product(people10, gnp10), dot_product(people10(16:1:-1), gnp10)], &
                     [library_dot_product(people10, gnp10), library_dot_product(people10(16:1:-1), gnp10)])
        call compare(pairs, years, [dot_product(people16, gnp16), dot_product(people16(16:1:-1), gnp16)], &
                     [library_dot_product(people16, gnp16), library_dot_product(people16(16:1:-1), gnp16)])
    end subroutine

    ! Whole numbers, which leave nothing to round.
    subroutine dot_products_of_changes
        character(*), parameter :: pairs(2) = [character(25) :: &
            'employment . employment', 'employment . armed forces']
        character(*), parameter :: products(3) = ['z . z', 'z . w', 'w . z']
        integer(4) :: changes(years - 1, series)
        logical(4) :: falls(years - 1, series)
        integer :: j
        complex(8) :: z(years - 1), w(years - 1), theirs(3), ours(3)

        changes = int4(2:, :) - int4(:years - 1, :)
        call open_section('Dot products of changes', &
            'DOT_PRODUCT(changes(:, 1), changes(:, j)), of a year over the year before.')
        call compare(pairs, exact, [(dot_product(changes(:, 1), changes(:, j)), j = 1, 5, 4)], &
                     [(library_dot_product(changes(:, 1), changes(:, j)), j = 1, 5, 4)])

        z = cmplx(changes(:, 1), changes(:, 4), 8)
        w = cmplx(changes(:, 6), changes(:, 5), 8)
        theirs = [dot_product(z, z), dot_product(z, w), dot_product(w, z)]
        ours = [library_dot_product(z, z), library_dot_product(z, w), library_dot_product(w, z)]
        call open_section('Dot products of COMPLEX(8)', &
            'DOT_PRODUCT(z, w), the sum of CONJG(z) * w. The parts of z are the changes of employment' // &
            new_line('') // 'and unemployed, those of w the changes of population and armed forces.')
        call compare(products // ', real part', exact, real(theirs), real(ours))
        call compare(products // ', imaginary part', exact, aimag(theirs), aimag(ours))

        falls = changes < 0
        call open_section('Falls in the same year', &
            'DOT_PRODUCT(falls(:, 1), falls(:, j)): whether there is a year in which both fell.')
        call compare(['employment, unemployed  ', 'employment, armed forces'], years - 1, &
                     [(dot_product(falls(:, 1), falls(:, j)), j = 4, 5)], &
                     [(library_dot_product(falls(:, 1), falls(:, j)), j = 4, 5)])
    end subroutine

    ! Moves are small, so that every kind holds the sums of their products.
    subroutine products_of_moves
        integer, parameter :: terms = years - 1, early = 7
        integer(4) :: changes(terms, series), moves(terms, series), periods(2, terms)
        logical(4) :: leaps(terms, series), within(2, terms)

        changes = int4(2:, :) - int4(:terms, :)
        moves = nint(changes * real(terms) / spread(sum(abs(changes), dim=1), 1, terms))
        moves = max(-2, min(2, moves))
        periods = 0
        periods(1, :early) = 1
        periods(2, early + 1:) = 1
        leaps = moves == 2
        within = periods == 1

        call open_section('Matrix products of moves', &
            'A move is a change in units of the mean change, rounded, from -2 to 2; to logical kinds, a' // &
            new_line('') // 'rise by 2. MATMUL(TRANSPOSE(moves), moves), of three series and two, and' // &
            new_line('') // 'MATMUL(periods, moves), of early and late years, also with a vector in place of either.')
        call compare_products(int(moves, 1), int(periods, 1))
        call compare_products(int(moves, 2), int(periods, 2))
        call compare_products(int(moves, 4), int(periods, 4))
        call compare_products(int(moves, 8), int(periods, 8))
        call compare_products(logical(leaps, 1), logical(within, 1))
        call compare_products(logical(leaps, 2), logical(within, 2))
        call compare_products(logical(leaps, 4), logical(within, 4))
        call compare_products(logical(leaps, 8), logical(within, 8))
        call compare_products(real(moves, 4), real(periods, 4))
        call compare_products(real(moves, 8), real(periods, 8))
        call compare_products(real(moves, 10), real(periods, 10))
        call compare_products(real(moves, 16), real(periods, 16))
    end subroutine

    subroutine changes_from_year_to_year
        character(13) :: labels(years)
        real(8), dimension(years, series) :: turned, ended, bounded
        integer :: i

        call print_title('Changes from year to year', &
            'table - CSHIFT(table, -1), by the library. Before the first year CSHIFT puts the last one,' // &
            new_line('') // 'EOSHIFT zeros, and EOSHIFT with BOUNDARY=table(1, :) the first year itself.')
        turned = real8 - library_cshift(real8, -1)
        ended = real8 - library_eoshift(real8, -1)
        bounded = real8 - library_eoshift(real8, -1, real8(1, :))
        labels = year_labels(1)
        print '(15x,6a13)', adjustr(names(:series - 1))
        print '(2x,a,6f13.1)', labels(1)(:5) // 'CSHIFT  ', turned(1, :series - 1), &
            labels(1)(:5) // 'EOSHIFT ', ended(1, :series - 1), &
            labels(1)(:5) // 'BOUNDARY', bounded(1, :series - 1), &
            (labels(i), turned(i, :series - 1), i = 2, years)
    end subroutine

    subroutine years_above_mean
        character(7), parameter :: gap = '   .'
        character(7) :: labels(years), spread_out(years)
        integer :: i, j

        call print_title('Years above the mean of their series', &
            'PACK(years, table(:, j) > mean), spread over all years again by UNPACK, both by the library.')
        labels = year_labels(1)
        do j = 1, series
            spread_out = library_unpack(library_pack(labels, above(:, j)), above(:, j), gap)
            if (any(spread_out /= merge(labels, gap, above(:, j)))) &
                call give_up('years above the mean have changed their places')
            print '(2x,a,16(1x,a))', names(j), (spread_out(i)(:4), i = 1, years)
        end do
    end subroutine

    ! Lags bring the greatest rise of each series to the same row.
    subroutine deviations_from_mean
        real(8) :: means(years, series), deviations(series, years)
        character(7) :: labels(years)
        integer :: i

        call print_title('Deviations from the mean of each series, in per cent', &
            'SPREAD(means, 1, years) beside the table, and a line for each year by TRANSPOSE, by the library.')
        means = library_spread(sum(real8, 1) / years, 1, years)
        deviations = library_transpose(100 * (real8 - means) / means)
        labels = year_labels(1)
        print '(6x,*(a13))', adjustr(names)
        print '(2x,a4,7f13.2)', (labels(i), deviations(:, i), i = 1, years)
    end subroutine

    subroutine years_in_rows
        integer, parameter :: in_row = 5
        integer(4) :: rows(in_row, (years + in_row - 1) / in_row)

        call print_title('The years in rows of five', &
            'RESHAPE(table(:, year), [5, 4], PAD=[0]) by the library.')
        rows = library_reshape(int4(:, series), shape(rows), [0])
        if (any(pack(rows, rows /= 0) /= int4(:, series))) call give_up('the years have moved')
        print '(2x,*(i6))', rows(:, 1)
        print '(2x,5i6)', rows(:, 2:)
    end subroutine

    subroutine bytes_of_numbers
        real(8) :: first_year(1)

        call print_title('The first year in storage', &
            'TRANSFER of it as REAL(8) to bytes, the least significant first, and back, by the library.')
        associate (bytes => library_bytes(real8(1, series)))
            first_year = library_elements(bytes, 0.0_8, 1)
            print '(2x,f7.1,a,*(1x,z2.2))', real8(1, series), ':', bytes
        end associate
        if (any(library_bytes(first_year) /= library_bytes(real8(1, series)))) &
            call give_up('the first year does not come back')
    end subroutine

    subroutine moved_elements
        character(7) :: texts(years, series)
        character(20) :: labels(years, series)
        integer(4) :: lags(series)

        lags = maxloc(int4(2:, :) - int4(:years - 1, :), dim=1) - years / 2
        write (texts, '(i7)') int4
        labels = spread(names, 1, years) // spread(year_labels(1), 2, series)

        call print_title('Moved elements', &
            'These calls in each of seven types: INTEGER(4), REAL(4), REAL(8), REAL(10), REAL(16) and' // &
            new_line('') // 'CHARACTER of 7 and 20. Elements of compiler and library must be equal to the bit.')
        call compare_moves('INTEGER(4)', int4, above, lags)
        call compare_moves('REAL(4)', real4, above, lags)
        call compare_moves('REAL(8)', real8, above, lags)
        call compare_moves('REAL(10)', real10, above, lags)
        call compare_moves('REAL(16)', real16, above, lags)
        call compare_moves('CHARACTER(7)', texts, above, lags)
        call compare_moves_of_labels('CHARACTER(20)', labels, above, lags)
        call compare_shapes('INTEGER(4)', int4)
        call compare_shapes('REAL(4)', real4)
        call compare_shapes('REAL(8)', real8)
        call compare_shapes('REAL(10)', real10)
        call compare_shapes('REAL(16)', real16)
        call compare_shapes('CHARACTER(7)', texts)
        call compare_shapes_of_labels('CHARACTER(20)', labels)
        call report_moved
    end subroutine

    subroutine numbers_taken_apart
        associate (first => real8(1, :), last => real8(years, :))
            call open_section('Numbers taken apart', &
                'EXPONENT, FRACTION and SPACING of the first year, and MODULO(last year, first year).')
            call compare('exponent, ' // names, exact, exponent(first), library_exponent(first))
            call compare('fraction, ' // names, exact, fraction(first), library_fraction(first))
            call compare('spacing, ' // names, exact, spacing(first), library_spacing(first))
            call compare('modulo, ' // names, exact, modulo(last, first), library_modulo(last, first))
        end associate
    end subroutine

    subroutine names_looked_through
        character(*), parameter :: vowels = 'aeiouAEIOU'
        character(*), parameter :: letters = 'abcdefghijklmnopqrstuvwxyzGNP'

        call open_section('Names looked through', &
            'LEN_TRIM; INDEX of "me", SCAN for the last vowel, VERIFY for what is no letter.')
        call compare('length, ' // names, exact, len_trim(names), library_len_trim(names))
        call compare('index, ' // names, exact, index(names, 'me'), library_index(names, 'me', .false.))
        call compare('scan, ' // names, exact, scan(names, vowels, .true.), &
                     library_scan(names, vowels, .true.))
        call compare('verify, ' // names, exact, verify(names, letters), &
                     library_verify(names, letters, .false.))
        if (any(adjustr(names) /= library_adjustr(names))) call give_up('ADJUSTR differs')
    end subroutine

    ! Means of as many years as there are, each year drawn at random: their deviation is the
    ! error of the mean, which theory puts at that of the series over the root of its length.
    subroutine mean_by_resampling
        integer, parameter :: samples = 4000
        real(8) :: means(samples), drawn(years), center, error, mean, deviation
        integer :: i

        call print_title('The mean of employment and its error', &
            'From 4000 samples of 16 years that RANDOM_NUMBER of the library draws, and from theory.')
        do i = 1, samples
            call library_random_number(drawn)
            means(i) = sum(real8(1 + int(years * drawn), 1)) / years
        end do
        center = sum(real8(:, 1)) / years
        error = norm2(real8(:, 1) - center) / years
        mean = sum(means) / samples
        deviation = norm2(means - mean) / sqrt(real(samples, 8))
        print '(2x,a,f12.1,a,f8.1)', 'samples', mean, ' +-', deviation
        print '(2x,a,f12.1,a,f8.1)', 'theory ', center, ' +-', error
        if (abs(deviation - error) > 0.05_8 * error) &
            call give_up('the samples are not those of a random generator')
    end subroutine

    ! Every term of X'X and X'y is positive, so sums of 16 terms in any two orders are
    ! less than 16 epsilons apart.
    subroutine regression_of_employment
        character(*), parameter :: title = 'Regression of employment'
        type(fit) :: fits(3)

        fits = [fitted(real8), fitted(real10), fitted(real16)]
        print '(/a/a/3(a/))', title, repeat('-', len(title)), &
            'Coefficients b of X''X b = X''y, where X is 1 and the other series, and how many of their', &
            'digits are those of NIST''s. MATMUL gets the transpose of X as X with its strides exchanged.', &
            'Last, how far X''X is from the compiler''s and X''y from MATMUL(y, X), at most, in epsilons.'
        call report([character(12) :: 'constant', names(2:)], certified, fits)
        if (.not. all(fits%from_compiler < years)) call give_up('the library''s X''X is not the compiler''s')
        if (.not. all(fits%between_forms < years)) call give_up('the two forms of X''y differ')
        if (any(right_digits(fits(3)%coefficients, certified) < certified_digits)) &
            call give_up('REAL(16) does not show every certified digit')
    end subroutine

    ! The years of the table from row `first` on, as labels.
    function year_labels(first) result(labels)
        integer, intent(in) :: first
        character(4) :: labels(first:years)
        write (labels, '(i4)') int4(first:, series)
    end function

end program

! Soil samples by field, year and depth: a Fortran client, with labels in flat character arrays.
module ztb
  use iso_c_binding
  implicit none

  interface
    subroutine xcreate(db) bind(C, name="xcreate")
      import
      type(c_ptr), intent(out) :: db
    end subroutine

    subroutine xfree(db) bind(C, name="xfree")
      import
      type(c_ptr), intent(inout) :: db
    end subroutine

    integer(c_int) function getLastError(db, text) bind(C, name="c__ztbgetlasterror")
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(out) :: text(256)
    end function

    integer(c_int) function addSymbol(db, name, dim, kind, userInfo, text, symbol) &
        bind(C, name="c__ztbaddsymbol")
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*), text(*)
      integer(c_int), value :: dim, kind, userInfo
      type(c_ptr), intent(out) :: symbol
    end function

    integer(c_int) function addSymbolOver(db, name, dim, kind, userInfo, text, domains, &
        domainNames, symbol) bind(C, name="c__ztbaddsymbolx")
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*), text(*)
      integer(c_int), value :: dim, kind, userInfo
      type(c_ptr), intent(in) :: domains(*), domainNames(*)
      type(c_ptr), intent(out) :: symbol
    end function

    integer(c_int) function findSymbol(db, name, symbol) bind(C, name="c__ztbfindsymbol")
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*)
      type(c_ptr), intent(out) :: symbol
    end function

    integer(c_int) function mergeLabel(db, label, number) bind(C, name="c__ztbmergeuel")
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: label(*)
      integer(c_int), intent(out) :: number
    end function

    integer(c_int) function addRaw(db, symbol, keys, values, text) &
        bind(C, name="c__ztbaddrecordraw")
      import
      type(c_ptr), value :: db, symbol
      integer(c_int), intent(in) :: keys(*)
      real(c_double), intent(in) :: values(5)
      character(kind=c_char), intent(in) :: text(*)
    end function

    integer(c_int) function firstRecord(db, symbol, record) bind(C, name="c__ztbfindfirstrecord")
      import
      type(c_ptr), value :: db, symbol
      type(c_ptr), intent(out) :: record
    end function

    integer(c_int) function moveNext(db, record) bind(C, name="c__ztbrecordmovenext")
      import
      type(c_ptr), value :: db, record
    end function

    integer(c_int) function freeRecord(db, record) bind(C, name="c__ztbfreesymboliterator")
      import
      type(c_ptr), value :: db, record
    end function

    integer(c_int) function deleteRecord(db, record) bind(C, name="c__ztbdeleterecord")
      import
      type(c_ptr), value :: db, record
    end function

    integer(c_int) function getLevel(db, record, level) bind(C, name="c__ztbgetlevel")
      import
      type(c_ptr), value :: db, record
      real(c_double), intent(out) :: level
    end function

    integer(c_int) function getKeys(db, record, dim, keys) bind(C, name="n__ztbgetkeys")
      import
      type(c_ptr), value :: db, record
      integer(c_int), value :: dim
      character(kind=c_char), intent(inout) :: keys(256, 20)
    end function

    integer(c_int) function getDomain(db, symbol, dim, domains, names) &
        bind(C, name="n__ztbgetdomain")
      import
      type(c_ptr), value :: db, symbol
      integer(c_int), value :: dim
      type(c_ptr), intent(out) :: domains(*)
      character(kind=c_char), intent(inout) :: names(256, 20)
    end function

    integer(c_int) function symbolInfo(db, symbol, key, ival, dval, sval) &
        bind(C, name="c__ztbsymbolinfo")
      import
      type(c_ptr), value :: db, symbol, dval, sval
      integer(c_int), value :: key
      integer(c_int), intent(out) :: ival
    end function

    integer(c_int) function writeFile(db, name, noDomainCheck) bind(C, name="c__ztbwriterxf")
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*)
      integer(c_int), value :: noDomainCheck
    end function

    integer(c_int) function openFile(db, name) bind(C, name="c__ztbinitfromrxf")
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*)
    end function
  end interface

contains

  ! The text of a zero-terminated string.
  function text(chars) result(string)
    character(kind=c_char), intent(in) :: chars(256)
    character(len=:), allocatable :: string
    integer :: i
    string = ""
    do i = 1, 256
      if (chars(i) == c_null_char) exit
      string = string // chars(i)
    end do
  end function

  subroutine must(status, db, what)
    integer(c_int), intent(in) :: status
    type(c_ptr), intent(in) :: db
    character(len=*), intent(in) :: what
    if (status /= 1) then
      print '(4a)', "failed: ", what, ": ", lastError(db)
      stop 1
    end if
  end subroutine

  function lastError(db) result(string)
    type(c_ptr), intent(in) :: db
    character(len=:), allocatable :: string
    character(kind=c_char) :: chars(256)
    integer(c_int) :: status
    status = getLastError(db, chars)
    string = text(chars)
  end function

  ! Numbers of three labels, added where they are new.
  function numbersOf(db, first, second, third) result(numbers)
    type(c_ptr), intent(in) :: db
    character(len=*), intent(in) :: first, second, third
    integer(c_int) :: numbers(3)
    call must(mergeLabel(db, first // c_null_char, numbers(1)), db, first)
    call must(mergeLabel(db, second // c_null_char, numbers(2)), db, second)
    call must(mergeLabel(db, third // c_null_char, numbers(3)), db, third)
  end function

  subroutine addSample(db, acidity, field, year, depth, value)
    type(c_ptr), intent(in) :: db, acidity
    character(len=*), intent(in) :: field, year, depth
    real(c_double), intent(in) :: value
    real(c_double) :: values(5)
    values = [value, 0d0, 0d0, 0d0, 0d0]
    call must(addRaw(db, acidity, numbersOf(db, field, year, depth), values, c_null_char), db, &
              "add sample")
  end subroutine

  subroutine printSamples(db)
    type(c_ptr), intent(in) :: db
    type(c_ptr) :: acidity, record
    character(kind=c_char) :: keys(256, 20)
    real(c_double) :: level
    call must(findSymbol(db, "acidity" // c_null_char, acidity), db, "find")
    call must(firstRecord(db, acidity, record), db, "first")
    do
      call must(getKeys(db, record, 3_c_int, keys), db, "keys")
      call must(getLevel(db, record, level), db, "level")
      print '(2x,a,1x,a,1x,a,f8.3)', text(keys(:, 1)), text(keys(:, 2)), text(keys(:, 3)), level
      if (moveNext(db, record) == 0) exit
    end do
    print '(2x,a)', lastError(db)
    call must(freeRecord(db, record), db, "free")
  end subroutine

  subroutine printDomain(db)
    type(c_ptr), intent(in) :: db
    type(c_ptr) :: acidity, fields, domains(20)
    character(kind=c_char) :: names(256, 20)
    integer(c_int) :: count
    call must(findSymbol(db, "acidity" // c_null_char, acidity), db, "find")
    call must(findSymbol(db, "fields" // c_null_char, fields), db, "find")
    call must(getDomain(db, acidity, 3_c_int, domains, names), db, "domain")
    call must(symbolInfo(db, acidity, 3_c_int, count, c_null_ptr, c_null_ptr), db, "count")
    print '(2x,i0,6a,l2,l2)', count, " over ", text(names(:, 1)), ", ", text(names(:, 2)), ", ", &
      text(names(:, 3)), c_associated(domains(1), fields), c_associated(domains(3))
  end subroutine

end module

program soil
  use ztb
  implicit none
  type(c_ptr) :: db, fields, acidity, record, symbol
  type(c_ptr) :: domains(3), domainNames(3)
  character(kind=c_char), target :: depthName(7) = ["d", "e", "p", "t", "h", "s", c_null_char]
  character(kind=c_char), target :: starName(2) = ["*", c_null_char]
  character(len=1000) :: fileName
  real(c_double) :: nothing(5) = 0d0
  integer(c_int) :: number

  call get_command_argument(1, fileName)
  call xcreate(db)
  call must(addSymbol(db, "fields" // c_null_char, 1_c_int, 0_c_int, 0_c_int, &
                      "where samples are taken" // c_null_char, fields), db, "fields")
  call must(mergeLabel(db, "upper meadow" // c_null_char, number), db, "label")
  call must(addRaw(db, fields, [number], nothing, "north side" // c_null_char), db, "element")
  call must(mergeLabel(db, "brook" // c_null_char, number), db, "label")
  call must(addRaw(db, fields, [number], nothing, c_null_char), db, "element")

  domains = [fields, c_null_ptr, c_null_ptr]
  domainNames = [c_null_ptr, c_loc(starName), c_loc(depthName)]
  call must(addSymbolOver(db, "acidity" // c_null_char, 3_c_int, 1_c_int, 0_c_int, &
                          "pH value" // c_null_char, domains, domainNames, acidity), db, "acidity")
  call addSample(db, acidity, "brook", "1939", "10cm", 6.25d0)
  call addSample(db, acidity, "upper meadow", "1939", "30cm", 5.5d0)
  call addSample(db, acidity, "upper meadow", "1939", "10cm", 5.875d0)
  call addSample(db, acidity, "Brook", "1940", "10cm", 6.5d0)
  call addSample(db, acidity, "brook", "1939", "10CM", 6.375d0)

  print '(a)', "samples:"
  call printSamples(db)
  print '(a)', "domain:"
  call printDomain(db)

  print '(a)', "failures:"
  number = findSymbol(db, "moisture" // c_null_char, symbol)
  print '(2x,i0,1x,a)', number, lastError(db)
  number = addRaw(db, acidity, [1_c_int, 2_c_int, 77_c_int], nothing, c_null_char)
  print '(2x,i0,1x,a)', number, lastError(db)
  number = addSymbol(db, "acidity" // c_null_char, 1_c_int, 0_c_int, 0_c_int, c_null_char, symbol)
  print '(2x,i0,1x,a)', number, lastError(db)

  call must(writeFile(db, trim(fileName) // c_null_char, 0_c_int), db, "write")
  call xfree(db)
  print '(a,l2)', "freed:", .not. c_associated(db)

  call xcreate(db)
  call must(openFile(db, trim(fileName) // c_null_char), db, "open")
  print '(a)', "read back:"
  call printDomain(db)
  call must(findSymbol(db, "acidity" // c_null_char, acidity), db, "find")
  call must(firstRecord(db, acidity, record), db, "first")
  call must(deleteRecord(db, record), db, "delete")
  call must(freeRecord(db, record), db, "free")
  print '(a)', "without the first:"
  call printSamples(db)
  call xfree(db)
end program

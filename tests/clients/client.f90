! A Fortran client on the n__ names, whose arrays of strings are flat blocks: makes a database,
! reads it, writes a file, opens it again.
!
!   client_fortran FILE.rxf
module ztb
  use, intrinsic :: iso_c_binding
  implicit none

  integer(c_int), parameter :: set_type = 0, parameter_type = 1
  integer(c_int), parameter :: info_uel_count = 1, symbol_info_text = 5
  integer, parameter :: text_size = 256

  interface
    subroutine xcreate(db) bind(c)
      import
      type(c_ptr), intent(inout) :: db
    end subroutine
    integer(c_int) function ztbfree(db) bind(c)
      import
      type(c_ptr), intent(inout) :: db
    end function
    integer(c_int) function c__ztbaddsymbol(db, name, dim, type, info, text, sym) bind(c)
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*), text(*)
      integer(c_int), value :: dim, type, info
      type(c_ptr), intent(out) :: sym
    end function
    integer(c_int) function c__ztbaddsymbolx(db, name, dim, type, info, text, domains, names, &
                                             sym) bind(c)
      import
      type(c_ptr), value :: db, names
      character(kind=c_char), intent(in) :: name(*), text(*)
      integer(c_int), value :: dim, type, info
      type(c_ptr), intent(in) :: domains(*)
      type(c_ptr), intent(out) :: sym
    end function
    integer(c_int) function c__ztbfindsymbol(db, name, sym) bind(c)
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*)
      type(c_ptr), intent(out) :: sym
    end function
    integer(c_int) function c__ztbaddrecord(db, sym, keys, rec) bind(c)
      import
      type(c_ptr), value :: db, sym
      type(c_ptr), intent(in) :: keys(*)
      type(c_ptr), intent(out) :: rec
    end function
    integer(c_int) function c__ztbfindrecord(db, sym, keys, rec) bind(c)
      import
      type(c_ptr), value :: db, sym
      type(c_ptr), intent(in) :: keys(*)
      type(c_ptr), intent(out) :: rec
    end function
    integer(c_int) function c__ztbfindfirstrecord(db, sym, rec) bind(c)
      import
      type(c_ptr), value :: db, sym
      type(c_ptr), intent(out) :: rec
    end function
    integer(c_int) function c__ztbrecordmovenext(db, rec) bind(c)
      import
      type(c_ptr), value :: db, rec
    end function
    integer(c_int) function c__ztbfreesymboliterator(db, rec) bind(c)
      import
      type(c_ptr), value :: db, rec
    end function
    integer(c_int) function c__ztbsetlevel(db, rec, value) bind(c)
      import
      type(c_ptr), value :: db, rec
      real(c_double), value :: value
    end function
    integer(c_int) function c__ztbgetlevel(db, rec, value) bind(c)
      import
      type(c_ptr), value :: db, rec
      real(c_double), intent(out) :: value
    end function
    integer(c_int) function c__ztbinfo(db, key, ival, dval, sval) bind(c)
      import
      type(c_ptr), value :: db, dval, sval
      integer(c_int), value :: key
      integer(c_int), intent(out) :: ival
    end function
    integer(c_int) function c__ztbsymbolinfo(db, sym, key, ival, dval, sval) bind(c)
      import
      type(c_ptr), value :: db, sym, ival, dval
      integer(c_int), value :: key
      character(kind=c_char), intent(out) :: sval(*)
    end function
    integer(c_int) function c__ztbgetlasterror(db, msg) bind(c)
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(out) :: msg(*)
    end function
    integer(c_int) function c__ztbwriterxf(db, name, no_domain_check) bind(c)
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*)
      integer(c_int), value :: no_domain_check
    end function
    integer(c_int) function c__ztbinitfromrxf(db, name) bind(c)
      import
      type(c_ptr), value :: db
      character(kind=c_char), intent(in) :: name(*)
    end function
    integer(c_int) function n__ztbgetkeys(db, rec, dim, keys) bind(c)
      import
      type(c_ptr), value :: db, rec
      integer(c_int), value :: dim
      character(kind=c_char), intent(out) :: keys(*)
    end function
    integer(c_int) function n__ztbgetdomain(db, sym, dim, domains, names) bind(c)
      import
      type(c_ptr), value :: db, sym
      integer(c_int), value :: dim
      type(c_ptr), intent(out) :: domains(*)
      character(kind=c_char), intent(out) :: names(*)
    end function
  end interface

contains

  ! A zero-terminated text as a Fortran string.
  function string(chars) result(text)
    character(kind=c_char), intent(in) :: chars(:)
    character(len=:), allocatable :: text
    integer :: i
    text = ''
    do i = 1, size(chars)
      if (chars(i) == c_null_char) exit
      text = text // chars(i)
    end do
  end function

end module

program client
  use ztb
  implicit none
  type(c_ptr) :: db
  character(len=1000) :: argument
  character(len=:), allocatable :: file
  integer(c_int) :: status

  if (command_argument_count() /= 1) then
    write (0, '(a)') 'usage: client_fortran FILE.rxf'
    stop 2
  end if
  call get_command_argument(1, argument)
  file = trim(argument) // c_null_char

  db = c_null_ptr
  call xcreate(db)
  call build()
  call show()
  print '(a,i0)', 'written ', c__ztbwriterxf(db, file, 0_c_int)
  status = ztbfree(db)

  call xcreate(db)
  print '(a,i0)', 'opened ', c__ztbinitfromrxf(db, file)
  call show()
  status = ztbfree(db)
  deallocate (file)

contains

  subroutine add(sym, first, second, level)
    type(c_ptr), intent(in) :: sym
    character(len=*), intent(in) :: first
    character(len=*), intent(in), optional :: second
    real(c_double), intent(in), optional :: level
    character(len=64), target :: labels(2)
    type(c_ptr) :: keys(2), rec
    integer(c_int) :: result
    labels(1) = first // c_null_char
    if (present(second)) labels(2) = second // c_null_char
    keys = [c_loc(labels(1)), c_loc(labels(2))]
    result = c__ztbaddrecord(db, sym, keys, rec)
    if (present(level)) result = c__ztbsetlevel(db, rec, level)
    result = c__ztbfreesymboliterator(db, rec)
  end subroutine

  subroutine build()
    type(c_ptr) :: domains(2), ship
    integer(c_int) :: result
    result = c__ztbaddsymbol(db, 'plant' // c_null_char, 1_c_int, set_type, 0_c_int, &
                             c_null_char, domains(1))
    result = c__ztbaddsymbol(db, 'market' // c_null_char, 1_c_int, set_type, 0_c_int, &
                             c_null_char, domains(2))
    call add(domains(1), 'seattle')
    call add(domains(1), 'san-diego')
    call add(domains(2), 'new-york')
    call add(domains(2), 'chicago')
    result = c__ztbaddsymbolx(db, 'ship' // c_null_char, 2_c_int, parameter_type, 0_c_int, &
                              'Cases shipped' // c_null_char, domains, c_null_ptr, ship)
    call add(ship, 'san-diego', 'new-york', 275.0_c_double)
    call add(ship, 'seattle', 'chicago', 300.0_c_double)
    call add(ship, 'seattle', 'new-york', 50.0_c_double)
  end subroutine

  subroutine show()
    type(c_ptr) :: ship, rec, domains(20), keys(2)
    character(kind=c_char) :: block(text_size * 20), text(text_size)
    character(len=64), target :: unknown(2)
    integer(c_int) :: count, result
    real(c_double) :: level
    result = c__ztbinfo(db, info_uel_count, count, c_null_ptr, c_null_ptr)
    print '(a,i0)', 'labels ', count
    result = c__ztbfindsymbol(db, 'SHIP' // c_null_char, ship)
    result = c__ztbsymbolinfo(db, ship, symbol_info_text, c_null_ptr, c_null_ptr, text)
    print '(2a)', 'text ', string(text)
    result = n__ztbgetdomain(db, ship, 2_c_int, domains, block)
    print '(4a)', 'domain ', string(block), ' ', string(block(text_size + 1:))
    result = c__ztbfindfirstrecord(db, ship, rec)
    do while (result /= 0)
      result = n__ztbgetkeys(db, rec, 2_c_int, block)
      result = c__ztbgetlevel(db, rec, level)
      print '(4a,i0)', string(block), ' ', string(block(text_size + 1:)), ' ', nint(level)
      result = c__ztbrecordmovenext(db, rec)
    end do
    result = c__ztbfreesymboliterator(db, rec)
    unknown(1) = 'nowhere' // c_null_char
    unknown(2) = 'chicago' // c_null_char
    keys = [c_loc(unknown(1)), c_loc(unknown(2))]
    result = c__ztbfindrecord(db, ship, keys, rec)
    result = c__ztbgetlasterror(db, text)
    print '(2a)', 'error ', string(text)
  end subroutine

end program

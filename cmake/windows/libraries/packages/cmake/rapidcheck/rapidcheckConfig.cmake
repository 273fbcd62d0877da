# Not there for Windows: the tests that use it are among those of tests/windows/left_out.txt.
if(NOT TARGET rapidcheck)
  add_library(rapidcheck INTERFACE IMPORTED)
endif()

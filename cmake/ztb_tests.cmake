# How the tests of a program become tests of ctest.

# Adds the tests of a gtest program under the program's name, each as a process of its own. Where all
# are to run, with ZTB_JOIN, and under a sanitizer, a start takes longer than most tests, so that there
# a few processes share them. Under a sanitizer long series of random cases are told to be shorter by
# ZTB_SHORT_SERIES.
#
#   ISOLATED       each test needs its own process, in every build
#   LIBRARY_PATH   the built libraries are found by LD_LIBRARY_PATH; it stands in for run paths,
#                  which a sanitizer that opens a library on behalf of ours does not know
function(ztb_discover_tests target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "ISOLATED;LIBRARY_PATH" "" "")
  set(environment "")
  if(arg_LIBRARY_PATH)
    set(environment "LD_LIBRARY_PATH=${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
  endif()
  set(leaks "")
  if(ZTB_SANITIZE MATCHES address)
    set(file ${PROJECT_SOURCE_DIR}/tests/leaks_of_others.txt)
    set(leaks ENVIRONMENT_MODIFICATION
      "LSAN_OPTIONS=set:suppressions=${file},print_suppressions=0")
  endif()
  if(WIN32)
    # Under Wine a start takes longest of all.
    if(${target} IN_LIST left_out_programs)
      set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
      return()
    endif()
    ztb_left_out_tests(filter ${target})
    add_test(NAME ${target} COMMAND ${target} --gtest_filter=-${filter})
  elseif((ZTB_SANITIZE OR ZTB_JOIN) AND NOT arg_ISOLATED)
    if(ZTB_SANITIZE)
      list(APPEND environment ZTB_SHORT_SERIES=1)
    endif()
    set(processes 4)
    math(EXPR last "${processes} - 1")
    foreach(index RANGE ${last})
      add_test(NAME ${target}.${index} COMMAND ${target})
      set(own ${environment} GTEST_TOTAL_SHARDS=${processes} GTEST_SHARD_INDEX=${index})
      set_tests_properties(${target}.${index} PROPERTIES ENVIRONMENT "${own}" ${leaks})
    endforeach()
  else()
    gtest_discover_tests(${target} TEST_PREFIX ${target}. DISCOVERY_TIMEOUT 60
      PROPERTIES ENVIRONMENT "${environment}" ${leaks})
  endif()
endfunction()

# Compiles the `*_test.cpp` files of a program in groups, which takes less than half the time: what
# they share of the test framework is made once a group. The unnamed namespace of each file becomes
# one with a name, so that names of one file do not meet those of another.
function(ztb_join_tests target)
  get_target_property(sources ${target} SOURCES)
  get_target_property(folder ${target} SOURCE_DIR)
  set(tests ${sources})
  list(FILTER tests INCLUDE REGEX "_test[.]cpp$")
  list(LENGTH tests left)
  if(left LESS 2)
    return()
  endif()
  list(REMOVE_ITEM sources ${tests})
  set(program [[
    FNR == 1 { print "#line 1 \"" FILENAME "\""; ++file }
    /^namespace [{]$/ { print "namespace joined_" group "_" file " {"; next }
    { print }]])
  set(number 0)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/joined)
  while(left GREATER 0)
    list(SUBLIST tests 0 16 group)
    list(REMOVE_ITEM tests ${group})
    list(TRANSFORM group PREPEND ${folder}/)
    set(joined ${CMAKE_BINARY_DIR}/joined/${target}_${number}.cpp)
    execute_process(COMMAND awk -v group=${number} "${program}" ${group} OUTPUT_FILE ${joined}.new
      COMMAND_ERROR_IS_FATAL ANY)
    configure_file(${joined}.new ${joined} COPYONLY)
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${group})
    list(APPEND sources ${joined})
    list(LENGTH tests left)
    math(EXPR number "${number} + 1")
  endwhile()
  set_target_properties(${target} PROPERTIES SOURCES "${sources}")
endfunction()

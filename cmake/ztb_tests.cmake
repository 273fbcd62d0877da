# How the tests of a program become tests of ctest.

# Adds the tests of a gtest program under the program's name, each as a process of its own. Under a
# sanitizer a start takes longer than most tests, so that there a few processes share them.
#
#   ISOLATED       each test needs its own process, with sanitizers too
#   LIBRARY_PATH   the built libraries are found by LD_LIBRARY_PATH; it stands in for run paths,
#                  which a sanitizer that opens a library on behalf of ours does not know
function(ztb_discover_tests target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "ISOLATED;LIBRARY_PATH" "" "")
  set(environment "")
  if(arg_LIBRARY_PATH)
    set(environment "LD_LIBRARY_PATH=${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
  endif()
  if(ZTB_SANITIZE AND NOT arg_ISOLATED)
    set(processes 4)
    math(EXPR last "${processes} - 1")
    foreach(index RANGE ${last})
      add_test(NAME ${target}.${index} COMMAND ${target})
      set(own ${environment} GTEST_TOTAL_SHARDS=${processes} GTEST_SHARD_INDEX=${index})
      set_tests_properties(${target}.${index} PROPERTIES ENVIRONMENT "${own}")
    endforeach()
  else()
    gtest_discover_tests(${target} TEST_PREFIX ${target}. DISCOVERY_TIMEOUT 60
      PROPERTIES ENVIRONMENT "${environment}")
  endif()
endfunction()

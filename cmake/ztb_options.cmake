# Compiler settings that hold for every target of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# Peers are named without a prefix there, and found in the folder of the program.
if(WIN32)
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
  set(CMAKE_SHARED_MODULE_PREFIX "")
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endif()

# The libraries find each other, and the tool finds them, by relative run paths only, so that an
# installed tree can be moved.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH_USE_LINK_PATH OFF)

add_library(ztb_options INTERFACE)
target_compile_options(ztb_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wcast-qual -Wformat=2 -Wno-format-nonliteral
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
  $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>)
# g++ 12 sees overlapping copies inside std::string's operator+ where there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(ztb_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
else()
  # Part of the language, which clang++ leaves out on its own.
  target_compile_options(ztb_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fsized-deallocation>)
endif()
# Formats are those of C and not of Microsoft's runtime, which the compiler takes them for; the other
# builds look at them.
if(WIN32)
  target_compile_definitions(ztb_options INTERFACE 
    __USE_MINGW_ANSI_STDIO=1 _FILE_OFFSET_BITS=64 WIN32_LEAN_AND_MEAN NOMINMAX)
  target_compile_options(ztb_options INTERFACE -Wno-format)
endif()
if(ZTB_WERROR)
  target_compile_options(ztb_options INTERFACE -Werror)
endif()
# For files whose code runs once: the compiler takes half the time. In a group with others, which
# files with options of their own do not join, it takes less still.
function(ztb_compile_quickly)
  if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT ZTB_JOIN)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O1)
  endif()
endfunction()
if(ZTB_SANITIZE)
  target_compile_options(ztb_options INTERFACE
    -fsanitize=${ZTB_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ztb_options INTERFACE -fsanitize=${ZTB_SANITIZE})
  if(ZTB_SANITIZE MATCHES address)
    # It takes terabytes of address space, which tests that bound it have to know; not every
    # compiler tells by a macro of its own.
    target_compile_definitions(ztb_options INTERFACE ZTB_ADDRESS_SANITIZER)
  endif()
  # The one runtime of all programs and libraries. A program of another compiler, which does not
  # know it, must load it first.
  set(runtime asan)
  if(ZTB_SANITIZE MATCHES thread)
    set(runtime tsan)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(library libclang_rt.${runtime}-${CMAKE_SYSTEM_PROCESSOR}.so)
  else()
    set(library lib${runtime}.so)
  endif()
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
    OUTPUT_VARIABLE ZTB_SANITIZER_RUNTIME OUTPUT_STRIP_TRAILING_WHITESPACE)
  # A fuzzer is one program, which has the runtime in itself. So has what the thread sanitizer looks
  # at, where clang's shared runtime ends at once.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND NOT ZTB_BUILD_FUZZERS AND runtime STREQUAL "asan")
    get_filename_component(folder ${ZTB_SANITIZER_RUNTIME} DIRECTORY)
    target_link_options(ztb_options INTERFACE -shared-libsan
      $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:LINKER:-rpath,${folder}>)
  endif()
endif()

# There are some hundred programs to link; lld takes a fifth of the time where it is there.
find_program(ZTB_LLD ld.lld)
if(ZTB_LLD AND NOT WIN32)
  add_link_options(-fuse-ld=lld)
endif()

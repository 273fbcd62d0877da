# 64-bit Windows by mingw-w64, GCC with threads of POSIX; what is built runs under Wine.
#
# Every program and library has the compiler's runtime in itself, so that a folder of them runs where
# it is put.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# Libraries and headers are those of the compiler and those that scripts/windows-libraries built;
# never the machine's own.
set(ZTB_WINDOWS_LIBRARIES ${CMAKE_CURRENT_LIST_DIR}/../../build/windows-libraries/installed)
cmake_path(NORMAL_PATH ZTB_WINDOWS_LIBRARIES)
# The program wine itself is a script that also asks for the 32-bit one. Its settings and drives lie in
# the build folder.
set(CMAKE_CROSSCOMPILING_EMULATOR
  env WINEPREFIX=${ZTB_WINDOWS_LIBRARIES}/../wine WINEDEBUG=-all
  WINEDLLOVERRIDES=winedbg.exe=d /usr/lib/wine/wine64)
set(CMAKE_FIND_ROOT_PATH ${ZTB_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${ZTB_WINDOWS_LIBRARIES}/lib/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} "")

set(ZLIB_USE_STATIC_LIBS ON)
set(static "-static -static-libgcc -static-libstdc++")
set(CMAKE_EXE_LINKER_FLAGS_INIT ${static})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${static})
set(CMAKE_MODULE_LINKER_FLAGS_INIT ${static})

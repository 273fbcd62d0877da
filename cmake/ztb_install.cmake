# What `cmake --install` puts in place: a tree of lib/, bin/ and include/ that works wherever it is
# moved to, with a CMake package and a pkg-config file that find everything by relative paths.
#
#   find_package(ztb)   gives ztb::ztbcclib64, the library for C, and ztb::ztb, the C++ wrapper;
#                       ztb::model for programs that solve models (ztb/model.h, model.hpp);
#                       ztb::rxf for programs that look into exchange files (ztb/rxf.h, rxf.hpp);
#                       ztb::formats for programs that read and write the files of others
#                       (ztb/formats.h, ztb/arrow.h);
#                       ztb::sweep for programs that solve sweeps (ztb/sweep.h, sweep.hpp);
#                       ztb::view for programs that show files in the browser (ztb/view.h);
#                       ztb::sql for programs that query databases in SQL (ztb/sql.h)
#   pkg-config ztb      the same for other build systems; ztb-model, ztb-rxf, ztb-formats,
#                       ztb-sweep, ztb-sql, ztb-view

include(CMakePackageConfigHelpers)

# The C++ wrapper is headers alone. What C++ it needs stands in ztb-config.cmake, where programs in C
# alone can do without it.
add_library(ztb_wrapper INTERFACE)
target_compile_features(ztb_wrapper INTERFACE $<BUILD_INTERFACE:cxx_std_20>)
target_link_libraries(ztb_wrapper INTERFACE ztbcclib64)
set_target_properties(ztb_wrapper PROPERTIES EXPORT_NAME ztb)
add_library(ztb::ztb ALIAS ztb_wrapper)
add_library(ztb::ztbcclib64 ALIAS ztbcclib64)

install(TARGETS ztbcclib64 ztb_wrapper EXPORT ztb-targets LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
# The library opens these at run time; they are found in the same folder, and the solver catalogue
# beside them.
install(TARGETS nmtmdclib64 LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
# Programs that look into exchange files link this one, which the library opens too.
set_target_properties(rxfcclib64 PROPERTIES EXPORT_NAME rxf)
install(TARGETS rxfcclib64 EXPORT ztb-targets LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
add_library(ztb::rxf ALIAS rxfcclib64)
# Programs that read and write the files of others link this one; the command opens it.
set_target_properties(ztbformats PROPERTIES EXPORT_NAME formats)
install(TARGETS ztbformats EXPORT ztb-targets LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
add_library(ztb::formats ALIAS ztbformats)
# Programs that query databases in SQL link this one; the other is what SQLite's own program loads.
install(TARGETS ztbsql EXPORT ztb-targets LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
install(TARGETS ztbsqlite LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
# Programs that solve sweeps link this one; the command opens it.
set_target_properties(ztbsweep PROPERTIES EXPORT_NAME sweep)
install(TARGETS ztbsweep EXPORT ztb-targets LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
add_library(ztb::sweep ALIAS ztbsweep)
# Programs that show files in the browser link this one; the command opens it.
set_target_properties(ztbview PROPERTIES EXPORT_NAME view)
install(TARGETS ztbview EXPORT ztb-targets LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
add_library(ztb::view ALIAS ztbview)
# Programs that open models link this one, by ztb::model.
install(TARGETS lomudclib64 EXPORT ztb-targets LIBRARY DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
add_library(ztb::lomudclib64 ALIAS lomudclib64)
add_library(ztb_model INTERFACE)
target_link_libraries(ztb_model INTERFACE ztb_wrapper lomudclib64)
set_target_properties(ztb_model PROPERTIES EXPORT_NAME model)
add_library(ztb::model ALIAS ztb_model)
install(TARGETS ztb_model EXPORT ztb-targets)
install(FILES ${PROJECT_SOURCE_DIR}/providers/model/vltcmpNT.txt
  DESTINATION ${ZTB_LIBRARY_FOLDER} COMPONENT libraries)
if(TARGET ztb)
  install(TARGETS ztb RUNTIME DESTINATION bin COMPONENT command)
  if(TARGET ztb_texts)
    get_target_property(texts ztb_texts BINARY_DIR)
    install(FILES ${texts}/ztb.1 DESTINATION share/man/man1 COMPONENT command)
    install(FILES ${texts}/ztb.bash DESTINATION share/bash-completion/completions RENAME ztb
      COMPONENT command)
    install(FILES ${texts}/_ztb DESTINATION share/zsh/site-functions COMPONENT command)
    install(FILES ${texts}/ztb.fish DESTINATION share/fish/vendor_completions.d COMPONENT command)
  endif()
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ztb DESTINATION include COMPONENT development
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

set(ZTB_PACKAGE_FOLDER ${ZTB_LIBRARY_FOLDER}/cmake/ztb)
install(EXPORT ztb-targets NAMESPACE ztb::
  DESTINATION ${ZTB_PACKAGE_FOLDER} COMPONENT development)
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/ztb-config.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/ztb-config.cmake
  INSTALL_DESTINATION ${ZTB_PACKAGE_FOLDER})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ztb-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ztb-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/ztb-config-version.cmake
        DESTINATION ${ZTB_PACKAGE_FOLDER} COMPONENT development)

# The files of pkg-config tell the folders relative to their own.
file(RELATIVE_PATH ZTB_UP_TO_PREFIX /${ZTB_LIBRARY_FOLDER}/pkgconfig /)
string(REGEX REPLACE "/$" "" ZTB_UP_TO_PREFIX ${ZTB_UP_TO_PREFIX})
foreach(package ztb ztb-model ztb-rxf ztb-formats ztb-sweep ztb-sql ztb-view)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in
    ${CMAKE_CURRENT_BINARY_DIR}/${package}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${package}.pc
    DESTINATION ${ZTB_LIBRARY_FOLDER}/pkgconfig COMPONENT development)
endforeach()

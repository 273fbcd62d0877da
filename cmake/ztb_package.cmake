# Debian packages, which scripts/package makes with CPack: what goes into which, what each needs, and
# the files that only a package has. Without ZTB_DEBIAN_FILES an installed tree is as ever.
#
#   libztb5       the libraries and the solver catalogue
#   libztb-dev    headers, CMake package, pkg-config files, examples
#   ztb           the command, with its manual, completions and the documents
#   python3-ztb   the Python package
#   ztb-solvers   the solver libraries

option(ZTB_DEBIAN_FILES "Install the files that only Debian packages have" OFF)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ztb)
set(CPACK_PACKAGE_VENDOR "The ZTB authors")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package has a synopsis of its own; what the project is would come in front of it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Nobody reads mail at this address: who gives packages to others names himself.
set(ZTB_MAINTAINER "The ZTB authors <authors@ztb.invalid>" CACHE STRING
  "Who answers for the Debian packages")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${ZTB_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(package_sources ${PROJECT_SOURCE_DIR}/cmake/package)
# Descriptions are wrapped where a terminal would.
string(JOIN "\n" about_ztb
  "ZTB keeps the sets, parameters, variables and equations of optimization"
  "models in memory, reads and writes exchange files, and ties data to"
  "models and solvers.")
set(same_version "libztb5 (= ${PROJECT_VERSION})")
set(CPACK_COMPONENTS_ALL "")

# Tells of a package: its component, name, section and synopsis; behind DESCRIPTION a paragraph, and
# behind DEPENDS, RECOMMENDS, SUGGESTS and CONTROL what it has of these.
function(ztb_package component name section synopsis)
  cmake_parse_arguments(PARSE_ARGV 4 PACKAGE "" "DESCRIPTION;DEPENDS;RECOMMENDS;SUGGESTS" "CONTROL")
  string(TOUPPER ${component} upper)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${synopsis}\n${PACKAGE_DESCRIPTION}" PARENT_SCOPE)
  foreach(relation DEPENDS RECOMMENDS SUGGESTS)
    set(CPACK_DEBIAN_${upper}_PACKAGE_${relation} "${PACKAGE_${relation}}" PARENT_SCOPE)
  endforeach()
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA "${PACKAGE_CONTROL}" PARENT_SCOPE)
  if(NOT ZTB_DEBIAN_FILES)
    return()
  endif()
  set(documents share/doc/${name})
  install(FILES ${package_sources}/copyright DESTINATION ${documents} COMPONENT ${component})
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz DESTINATION ${documents} COMPONENT ${component})
  if(EXISTS ${package_sources}/${name}.lintian-overrides)
    install(FILES ${package_sources}/${name}.lintian-overrides
      DESTINATION share/lintian/overrides RENAME ${name} COMPONENT ${component})
  endif()
endfunction()

ztb_package(libraries libztb5 libs "in-memory database of indexed data for models"
  DESCRIPTION "${about_ztb}\nThis package holds its libraries."
  RECOMMENDS ztb-solvers
  SUGGESTS libglpk40
  CONTROL ${package_sources}/libztb5/triggers)
ztb_package(development libztb-dev libdevel "in-memory database of indexed data for models, headers"
  DESCRIPTION "${about_ztb}\nThis package holds what programs in C and C++ need that use it."
  DEPENDS ${same_version}
  SUGGESTS "cmake, pkg-config")
ztb_package(command ztb math "command for data of models: import, show, compare, solve, sweep"
  DESCRIPTION "${about_ztb}\nThis package holds its command."
  DEPENDS ${same_version}
  RECOMMENDS ztb-solvers)
# The extension module is for one version of Python.
if(ZTB_BUILD_PYTHON)
  string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" python_version "${ZTB_PYTHON_VERSION}")
  math(EXPR next_python "${CMAKE_MATCH_2} + 1")
  set(next_python ${CMAKE_MATCH_1}.${next_python})
  ztb_package(python python3-ztb python "in-memory database of indexed data for models, Python"
    DESCRIPTION "${about_ztb}\nThis package holds the package for Python 3."
    DEPENDS "${same_version}, python3 (>= ${python_version}~), python3 (<< ${next_python}~), python3-numpy"
    RECOMMENDS "python3-pandas, ztb-solvers"
    CONTROL ${package_sources}/python3-ztb/postinst ${package_sources}/python3-ztb/prerm)
endif()
ztb_package(solvers ztb-solvers math "solver libraries for ZTB: Clp, Cbc, GLPK, Ipopt, Bonmin"
  DESCRIPTION "${about_ztb}\nThis package holds what ties ZTB to the solvers."
  DEPENDS ${same_version}
  CONTROL ${package_sources}/libztb5/triggers)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_MULTIARCH same)

if(ZTB_DEBIAN_FILES)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION share/doc/ztb COMPONENT command)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION share/doc/ztb COMPONENT command)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION share/doc/libztb-dev
    COMPONENT development)
  # Last of all: manual pages are compressed.
  install(CODE [[
    file(GLOB pages "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/share/man/man*/*.[0-9]")
    foreach(page IN LISTS pages)
      execute_process(COMMAND gzip -9nf ${page} COMMAND_ERROR_IS_FATAL ANY)
    endforeach()]] COMPONENT command)
endif()

include(CPack)

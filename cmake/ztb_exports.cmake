# What a library exports and nothing else: the names of a map file, which may have wildcards, and on
# Windows those of the .def file beside it, one by one. Tests hold the one against the other.
#
#   ztb_export_only(TARGET MAP)    MAP is in the folder of the caller
function(ztb_export_only target map)
  set(map ${CMAKE_CURRENT_SOURCE_DIR}/${map})
  if(WIN32)
    cmake_path(REPLACE_EXTENSION map def OUTPUT_VARIABLE names)
    target_sources(${target} PRIVATE ${names})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${names})
  else()
    target_link_options(${target} PRIVATE LINKER:--exclude-libs,ALL LINKER:--version-script=${map})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
  endif()
endfunction()

# Headers alone, those of the machine's package.
if(NOT TARGET CLI11::CLI11)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${ZTB_WINDOWS_LIBRARIES}/include)
endif()

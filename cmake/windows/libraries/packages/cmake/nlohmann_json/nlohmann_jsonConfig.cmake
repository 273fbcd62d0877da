# Headers alone, those of the machine's package.
if(NOT TARGET nlohmann_json::nlohmann_json)
  add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
  target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${ZTB_WINDOWS_LIBRARIES}/include)
endif()

# Writes the files of the page as one C++ file: cmake -D OUT=FILE -P embed.cmake -- PAGE...
set(types html text/html js text/javascript css text/css svg image/svg+xml png image/png
          txt text/plain)
set(arrays "")
set(table "")
set(number 0)
set(is_page OFF)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(at RANGE ${last})
  set(file "${CMAKE_ARGV${at}}")
  if(NOT is_page)
    if(file STREQUAL "--")
      set(is_page ON)
    endif()
    continue()
  endif()
  get_filename_component(name "${file}" NAME)
  string(REGEX MATCH "[a-z]+$" ending "${name}")
  list(FIND types "${ending}" found)
  if(found EQUAL -1)
    message(FATAL_ERROR "${file}: a page has no files of this kind")
  endif()
  math(EXPR found "${found} + 1")
  list(GET types ${found} type)
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
  string(APPEND arrays "constexpr unsigned char file${number}[] = {${bytes}0};\n")
  string(APPEND table "    {\"${name}\", \"${type}\", file${number}, sizeof(file${number}) - 1},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE "${OUT}" "#include \"view/page_files.h\"

namespace view {

namespace {

${arrays}
constexpr PageFile files[] = {
${table}    {\"\", \"\", nullptr, 0},
};

}  // namespace

const PageFile* findPageFile(std::string_view name) {
  for (const PageFile& file : files) {
    if (!name.empty() && file.name == name) return &file;
  }
  return nullptr;
}

}  // namespace view
")

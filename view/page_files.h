// The files of the page, which lie in the library.
#ifndef ZTB_VIEW_PAGE_FILES_H_
#define ZTB_VIEW_PAGE_FILES_H_

#include <cstddef>
#include <string_view>

namespace view {

struct PageFile {
  std::string_view name;
  std::string_view type;
  const unsigned char* bytes;
  std::size_t size;
};

// The file of this name; null for any other, whatever stands in the file system.
const PageFile* findPageFile(std::string_view name);

}  // namespace view

#endif  // ZTB_VIEW_PAGE_FILES_H_

// The C functions of ztb/formats.h that tell of formats.

#include <ztb/formats.h>

#include "formats/format_table.h"

#define FORMATS_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

int abilitiesOf(const formats::Format& format) {
  return (format.openTable != nullptr ? ZTB_FORMAT_READS_TABLES : 0) |
         (format.makeTables != nullptr ? ZTB_FORMAT_WRITES_TABLES : 0) |
         (format.openDatabase != nullptr ? ZTB_FORMAT_READS_DATABASES : 0) |
         (format.writeDatabase != nullptr ? ZTB_FORMAT_WRITES_DATABASES : 0);
}

}  // namespace

FORMATS_EXPORT int ztbFormatCount() {
  return static_cast<int>(formats::formatTable().size());
}

FORMATS_EXPORT int ztbFormat(int number, ztbFormatInfo* info) {
  if (number < 0 || number >= ztbFormatCount() || info == nullptr) return 0;
  const formats::Format& format = formats::formatTable()[static_cast<std::size_t>(number)];
  *info = {format.name, format.endings, abilitiesOf(format), format.missingToRead,
           format.missingToWrite};
  return 1;
}

FORMATS_EXPORT int ztbFormatOfFile(const char* path) {
  const formats::Format* format = path == nullptr ? nullptr : formats::formatOfFile(path);
  return format == nullptr ? -1 : static_cast<int>(format - formats::formatTable().data());
}

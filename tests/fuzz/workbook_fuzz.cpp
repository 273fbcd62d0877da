// Workbooks: a sheet, texts and styles of any bytes, parted by zero bytes, in a zip file around
// them; or, from bytes that begin as one, the whole file.

#include <zip.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "formats/excel/xlsx_tables.h"
#include "tests/fuzz/memory_file.h"
#include "tools/text/failure.h"

namespace {

constexpr std::string_view relations =
    "<Relationships><Relationship Id='r' Type='/officeDocument' Target='xl/w.xml'/>"
    "</Relationships>";
constexpr std::string_view workbook =
    "<workbook><sheets><sheet name='S' id='r'/></sheets></workbook>";
constexpr std::string_view sheetRelation =
    "<Relationships><Relationship Id='r' Target='s.xml'/></Relationships>";

void addPart(void* zip, const char* name, std::string_view bytes) {
  if (zipOpenNewFileInZip(zip, name, nullptr, nullptr, 0, nullptr, 0, nullptr, 0, 0) != ZIP_OK ||
      zipWriteInFileInZip(zip, bytes.data(), static_cast<unsigned>(bytes.size())) != ZIP_OK ||
      zipCloseFileInZip(zip) != ZIP_OK) {
    std::abort();
  }
}

void putWorkbook(const std::string& path, std::string_view bytes) {
  void* zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
  if (zip == nullptr) std::abort();
  addPart(zip, "_rels/.rels", relations);
  addPart(zip, "xl/w.xml", workbook);
  addPart(zip, "xl/_rels/w.xml.rels", sheetRelation);
  for (const char* part : {"xl/s.xml", "xl/sharedStrings.xml", "xl/styles.xml"}) {
    const std::string_view piece = bytes.substr(0, bytes.find('\0'));
    if (!piece.empty()) addPart(zip, part, piece);
    bytes.remove_prefix(std::min(bytes.size(), piece.size() + 1));
  }
  if (zipClose(zip, nullptr) != ZIP_OK) std::abort();
}

void readSheet(const std::string& path, const std::string& part, bool exact) {
  constexpr std::size_t fewProblems = 5;
  try {
    formats::ProblemList problems(fewProblems);
    const auto reader = formats::openXlsx({.path = path, .part = part, .exact = exact});
    std::size_t fields = 0;
    for (bool header = true; reader->next(problems); header = false) {
      if (header) fields = reader->fields().size();
      if (reader->fields().size() != fields) std::abort();
      for (const formats::TableField& field : reader->fields()) {
        if (field.text.data()[field.text.size()] != '\0') std::abort();
      }
    }
  } catch (const tool::Failure&) {
    return;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const formatfuzz::MemoryFile file;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.starts_with("PK")) {
    file.put(bytes);
  } else {
    file.put("");
    putWorkbook(file.path(), bytes);
  }
  readSheet(file.path(), "", false);
  readSheet(file.path(), "", true);
  readSheet(file.path(), "B2:D9", false);
  return 0;
}

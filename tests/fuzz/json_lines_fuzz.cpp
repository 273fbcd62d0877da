// Tables and whole databases as JSON lines, of any bytes.

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "formats/json/json_lines.h"
#include "tests/fuzz/memory_file.h"
#include "tools/text/failure.h"

namespace {

constexpr std::size_t fewProblems = 5;

void readRows(formats::TableReader& reader, formats::ProblemList& problems) {
  std::size_t fields = 0;
  for (bool header = true; reader.next(problems); header = false) {
    if (header) fields = reader.fields().size();
    if (reader.fields().size() != fields) std::abort();
    for (const formats::TableField& field : reader.fields()) {
      if (field.text.data() != nullptr && field.text.data()[field.text.size()] != '\0') {
        std::abort();
      }
    }
  }
}

void readDatabase(const std::string& path) {
  formats::ProblemList problems(fewProblems);
  const std::unique_ptr<formats::DatabaseReader> reader = formats::openJsonDatabase(path);
  const std::vector<formats::ManifestEntry> entries = reader->symbols(problems);
  if (!problems.empty()) return;
  if (const auto labels = reader->labels()) readRows(*labels, problems);
  for (const formats::ManifestEntry& entry : entries) {
    if (entry.type == ztb::Type::alias || isUniverse(entry)) continue;
    const std::unique_ptr<formats::TableReader> records = reader->records(entry);
    while (records->next(problems)) {
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const formatfuzz::MemoryFile file;
  file.put({reinterpret_cast<const char*>(data), size});
  try {
    formats::ProblemList problems(fewProblems);
    readRows(*formats::openJsonLines({.path = file.path(), .part = {}}), problems);
  } catch (const tool::Failure&) {
  }
  try {
    readDatabase(file.path());
  } catch (const tool::Failure&) {
  }
  return 0;
}

// Tables of comma-separated values: what was read and written again is read as the same, and what
// is read in chunks, where that is not given up, is what is read row by row.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "formats/tables/csv_bulk.h"
#include "formats/tables/csv_reader.h"
#include "formats/tables/csv_text.h"
#include "tests/fuzz/memory_file.h"
#include "tools/text/failure.h"
#include "tools/text/progress.h"

namespace {

using Row = std::vector<std::string>;

struct Table {
  std::vector<Row> rows;
  std::string again;
  bool good = true;
};

Table readTable(const std::string& path, char separator) {
  constexpr std::size_t fewProblems = 5;
  formats::CsvText again({.separator = separator});
  Table table;
  formats::ProblemList problems(fewProblems);
  formats::CsvReader reader(path, separator);
  while (reader.next(problems)) {
    Row& row = table.rows.emplace_back();
    for (const formats::TableField& field : reader.fields()) {
      if (field.text.data()[field.text.size()] != '\0') std::abort();
      row.emplace_back(field.text);
      if (field.text.empty() && !field.quoted) {
        again.missing();
      } else {
        again.label(field.text);
      }
    }
    again.endRow();
  }
  table.again = again.chars();
  table.good = problems.empty();
  return table;
}

// Rows below the header, of labels alone, as they are read in chunks; nothing where it gives up.
void compareChunks(const std::string& path, char separator, const Table& table) {
  constexpr std::size_t tinyChunk = 64;
  formats::CsvBulkForm form{.separator = separator, .columnCount = table.rows.front().size()};
  for (std::size_t column = 0; column < form.columnCount; ++column) {
    form.columns.labels.push_back(column);
  }
  form.chunkBytes = tinyChunk;
  formats::CsvBulk bulk;
  tool::Progress progress(false);
  if (!bulk.read(path, form, progress)) return;
  if (!table.good) std::abort();
  std::vector<std::string> labels{""};
  bulk.numberLabels([&labels](const std::string& label) {
    labels.push_back(label);
    return static_cast<int>(labels.size()) - 1;
  });
  std::size_t at = 1;
  for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
    const formats::CsvBulk::Piece& piece = bulk.piece(number);
    for (std::size_t row = 0; row < piece.rows; ++row, ++at) {
      if (at >= table.rows.size() || table.rows[at].size() != form.columnCount) std::abort();
      for (std::size_t column = 0; column < form.columnCount; ++column) {
        const auto label = static_cast<std::size_t>(piece.labels[column][row]);
        if (labels[label] != table.rows[at][column]) std::abort();
      }
    }
  }
  if (at != table.rows.size()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const formatfuzz::MemoryFile file;
  if (size == 0) return 0;
  constexpr std::string_view separators = ",;\t a'";
  const char separator = separators[data[0] % separators.size()];
  file.put({reinterpret_cast<const char*>(data) + 1, size - 1});
  try {
    const Table table = readTable(file.path(), separator);
    if (!table.rows.empty()) compareChunks(file.path(), separator, table);
    // In front of all stands what no byte order mark begins with.
    file.put("x\n" + table.again);
    const Table back = readTable(file.path(), separator);
    std::size_t at = 1;
    for (const Row& row : table.rows) {
      // A row of one missing field is an empty line.
      if (row.size() == 1 && row.front().empty() &&
          (at == back.rows.size() || back.rows[at] != row)) {
        continue;
      }
      if (at == back.rows.size() || back.rows[at++] != row) std::abort();
    }
    if (at != back.rows.size() || !back.good) std::abort();
  } catch (const tool::Failure&) {
    return 0;
  }
  return 0;
}

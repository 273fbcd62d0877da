#include <fmt/format.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <utility>

#include "formats/excel/cell_range.h"
#include "formats/excel/xlsx_tables.h"
#include "formats/file_name.h"
#include "formats/tables/exact_text.h"
#include "tools/files/new_file.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Rows of a sheet below its head.
constexpr std::size_t mostRows = mostSheetRows - 1;
constexpr std::size_t longestSheetName = 31;
constexpr std::size_t longestCell = 32767;
constexpr double columnWidth = 16;

class XlsxWriter : public TableWriter {
 public:
  explicit XlsxWriter(const std::string& path)
      : path_(path), folder_(folderOf(path)), published_(path) {
    // Rows go to the file as they come, and only one is held.
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    // Parts are put together in files without names beside the workbook, where there is to be room.
    options.tmpdir = folder_.data();
    book_ = workbook_new_opt(published_.temporary().c_str(), &options);
    if (book_ == nullptr) throw std::bad_alloc();
    bold_ = workbook_add_format(book_);
    format_set_bold(bold_);
  }
  XlsxWriter(const XlsxWriter&) = delete;
  XlsxWriter& operator=(const XlsxWriter&) = delete;
  ~XlsxWriter() override {
    if (book_ == nullptr) return;
    closeParts();
    lxw_workbook_free(book_);
  }

  std::vector<std::string> namesFor(const std::string& name, std::size_t rows) override {
    std::vector<std::string>& names = names_[name];
    const std::size_t sheets = std::max<std::size_t>(1, (rows + mostRows - 1) / mostRows);
    for (std::size_t sheet = 1; sheet <= sheets; ++sheet) {
      names.push_back(freeName(name, sheet == 1 ? "" : fmt::format(" ({})", sheet)));
    }
    if (sheets > 1) {
      notes_.push_back(fmt::format("{}: {} has {}, more than a sheet holds: they stand in {}",
                                   path_, name, tool::counted(rows, "record"),
                                   tool::counted(sheets, "sheet")));
    }
    return names;
  }

  void begin(const TableHead& head) override {
    head_ = head;
    const auto planned = names_.find(head.name);
    sheetNames_ = planned != names_.end() ? planned->second : std::vector<std::string>{};
    const bool hasNumbers = std::ranges::any_of(
        head.columns, [](const TableColumn& column) { return column.kind == ColumnKind::number; });
    if (head_.columns.size() + 1 > mostSheetColumns) {
      throw tool::Failure(
          fmt::format("{}: {} has {}, a sheet holds {}", path_, head.name,
                      tool::counted(head.columns.size(), "column"), mostSheetColumns - 1),
          ZTB_ERROR_LIMIT);
    }
    keepsBits_ = hasNumbers;
    sheet_ = 0;
    beginSheet();
  }

  void label(std::string_view text) override {
    // Where nothing is spelled out, it would come back as a cell that is missing.
    if (text.empty() && !head_.exact) failCell(text);
    writeText(text);
  }
  void text(std::string_view text) override {
    if (text.empty()) {
      ++column_;
    } else {
      writeText(text);
    }
  }
  void number(double value) override {
    const double rounded = roundedAsWorkbook(value);
    // The largest of all would be rounded to infinity.
    if (tool::isSpecial(value) || !std::isfinite(rounded)) {
      const tool::NumberText word(value);
      return writeString(std::string(word.view()));
    }
    // Other programs drop the sign of a zero.
    if (keepsBits_ && (rounded != value || (value == 0 && std::signbit(value)))) {
      bits_ += fmt::format("{}{}={:016x}", bits_.empty() ? "" : " ", column_ + 1,
                           std::bit_cast<std::uint64_t>(value));
    }
    check(worksheet_write_number(worksheet_, row_, column(), value, nullptr));
  }
  void missing() override { ++column_; }

  void endRow() override {
    if (!bits_.empty()) {
      column_ = static_cast<std::uint16_t>(head_.columns.size());
      writeString(bits_);
      bits_.clear();
    }
    column_ = 0;
    ++row_;
    if (row_ > mostRows) full_ = true;
  }
  void end() override {}

  [[nodiscard]] std::string growingFile() const override { return published_.temporary(); }

  void finish() override {
    endSheet();
    lxw_workbook* book = std::exchange(book_, nullptr);
    const lxw_error error = workbook_close(book);
    // No part was looked at then.
    if (error == LXW_ERROR_CREATING_XLSX_FILE) closeParts();
    check(error);
#ifdef ZTB_READS_EXCEL
    requireWholeWorkbook(published_.temporary(), path_, sheetRows_);
#endif
    published_.publish();
  }
  [[nodiscard]] std::vector<std::string> notes() const override {
    return notes_;
  }

 private:
  void check(lxw_error error) const {
    if (error != LXW_NO_ERROR) {
      throw tool::Failure(fmt::format("{}: cannot be written: {}", path_, lxw_strerror(error)));
    }
  }

  // The library closes the files of parts only when it puts them into the workbook.
  void closeParts() {
    for (std::FILE* part : std::exchange(parts_, {})) std::fclose(part);
  }

  // The name of a sheet: at most 31 chars, none of []:*?/\, no quote at its ends, and not that of
  // another sheet.
  std::string freeName(const std::string& name, const std::string& behind) {
    std::string base;
    for (const char c : name) {
      const bool taken = std::string_view("[]:*?/\\'").find(c) != std::string_view::npos;
      base += taken || static_cast<unsigned char>(c) < ' ' || static_cast<unsigned char>(c) > 0x7E
                  ? '_'
                  : c;
    }
    std::string result;
    for (int number = 1;; ++number) {
      const std::string suffix = behind + (number == 1 ? "" : fmt::format("_{}", number));
      result =
          base.substr(0, longestSheetName - std::min(suffix.size(), longestSheetName)) + suffix;
      if (!tool::sameFolded(result, "history") && taken_.insert(tool::folded(result)).second) {
        return result;
      }
    }
  }

  void endSheet() {
    if (worksheet_ == nullptr) return;
    if (std::ferror(worksheet_->optimize_tmpfile) != 0) {
      throw tool::Failure(fmt::format("{}: cannot be written: {}", path_, tool::systemText(errno)));
    }
    sheetRows_.push_back(row_);
    worksheet_ = nullptr;
  }

  void beginSheet() {
    endSheet();
    if (sheet_ == sheetNames_.size()) {
      // The table of labels, or one that was not told of before.
      const bool first = sheet_ == 0;
      const std::string behind = first ? "" : fmt::format(" ({})", sheet_ + 1);
      const bool ofCatalogue = head_.name == "_labels" || head_.name == "_symbols";
      sheetNames_.push_back(ofCatalogue ? head_.name + behind : freeName(head_.name, behind));
    }
    const std::string& name = sheetNames_[sheet_++];
    worksheet_ = workbook_add_worksheet(book_, name.c_str());
    if (worksheet_ == nullptr) {
      throw tool::Failure(fmt::format("{}: no sheet can be called {}", path_, name));
    }
    parts_.push_back(worksheet_->optimize_tmpfile);
    worksheet_freeze_panes(worksheet_, 1, static_cast<lxw_col_t>(std::min(head_.keys, mostFrozen)));
    const auto columns = static_cast<lxw_col_t>(head_.columns.size());
    if (columns > 0) {
      check(worksheet_set_column(worksheet_, 0, static_cast<lxw_col_t>(columns - 1), columnWidth,
                                 nullptr));
    }
    if (keepsBits_) {
      lxw_row_col_options hidden{};
      hidden.hidden = LXW_TRUE;
      check(worksheet_set_column_opt(worksheet_, columns, columns, columnWidth, nullptr, &hidden));
    }
    row_ = 0;
    column_ = 0;
    full_ = false;
    for (const TableColumn& column : head_.columns) writeText(column.name, bold_);
    if (keepsBits_) writeText(exactColumn, bold_);
    column_ = 0;
    row_ = 1;
  }

  // The place of the next cell; a row that no sheet holds begins another one.
  lxw_col_t column() {
    if (full_) {
      const std::uint16_t at = column_;
      beginSheet();
      column_ = at;
    }
    return column_++;
  }

  void writeText(std::string_view text, lxw_format* format = nullptr) {
    std::string room;
    writeString(std::string(head_.exact ? spelled(text, TextForm::xml, room) : text), format);
  }

  void writeString(const std::string& text, lxw_format* format = nullptr) {
    const lxw_col_t at = column();
    if (text.size() > longestCell) {
      throw tool::Failure(
          fmt::format("{}: a text of {} bytes does not fit into a cell", path_, text.size()),
          ZTB_ERROR_LIMIT);
    }
    if (!head_.exact) {
      // A backslash in front means something only where texts are spelled out.
      const std::string_view rest =
          std::string_view(text).substr(std::min(text.find_first_not_of('\\'), text.size()));
      std::string room;
      if (!rest.empty() && spelled(rest, TextForm::xml, room) != rest) failCell(text);
    }
    check(worksheet_write_string(worksheet_, row_, at, text.c_str(), format));
  }

  [[noreturn]] void failCell(std::string_view text) const {
    throw tool::Failure(
        fmt::format("{}: {} cannot stand in a cell of a workbook", path_, tool::inQuotes(text)),
        ZTB_ERROR_REFUSED);
  }

  static constexpr std::size_t mostFrozen = 4;

  tool::PointNumbers pointNumbers_;
  std::string path_;
  std::string folder_;
  tool::NewFile published_;
  lxw_workbook* book_ = nullptr;
  lxw_format* bold_ = nullptr;
  lxw_worksheet* worksheet_ = nullptr;
  std::vector<std::FILE*> parts_;
  TableHead head_;
  // The sheets of the tables of records, and all names that are taken, in folded letters.
  std::map<std::string, std::vector<std::string>> names_;
  std::set<std::string> taken_{"_symbols", "_labels"};
  std::vector<std::string> sheetNames_;
  std::size_t sheet_ = 0;
  // The last row of each sheet that is complete.
  std::vector<std::size_t> sheetRows_;
  std::vector<std::string> notes_;
  bool keepsBits_ = false;
  std::string bits_;
  std::uint32_t row_ = 0;
  std::uint16_t column_ = 0;
  bool full_ = false;
};

}  // namespace

std::unique_ptr<TableWriter> makeXlsx(const TableTarget& target) {
  return std::make_unique<XlsxWriter>(target.path);
}

void writeXlsxDatabase(const DatabaseExport& database) {
  XlsxWriter writer(database.path);
  writeTables(writer, database);
  for (const std::string& note : writer.notes()) database.notes.push_back(note);
}

}  // namespace formats

#include "formats/parquet/symbol_stream.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>
#include <ztb/column_names.hpp>

#include "formats/arrow/arrow_stream.h"
#include "formats/arrow/file_blocks.h"
#include "formats/parquet/duckdb_session.h"
#include "formats/parquet/parquet_names.h"
#include "formats/tables/exact_text.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"

namespace formats {

namespace {

// Of values that compare equal DuckDB keeps one: zeros with a sign, and NaNs.
bool isLost(double value) {
  constexpr std::uint64_t notAvailable = 0x7FF8000000000000;
  return (value == 0 && std::signbit(value)) ||
         (std::isnan(value) && std::bit_cast<std::uint64_t>(value) != notAvailable);
}

// The slots with a value that DuckDB would not keep.
std::vector<std::size_t> slotsToSpell(const tool::ExchangeFile& file,
                                      const tool::FileSymbol& symbol) {
  std::vector<std::size_t> slots;
  if (symbol.type == ztb::Type::set) return slots;
  std::vector<bool> isIn(static_cast<std::size_t>(symbol.valueCount));
  try {
    ztb::RxfRecords records(file.file(), file.file().symbol(symbol.number));
    while (records.next()) {
      for (std::size_t slot = 0; slot < isIn.size(); ++slot) {
        isIn[slot] =
            isIn[slot] || std::ranges::any_of(records.values(static_cast<int>(slot)), isLost);
      }
    }
  } catch (const ztb::Error& error) {
    throw tool::failureOf(file.path(), error);
  }
  for (std::size_t slot = 0; slot < isIn.size(); ++slot) {
    if (isIn[slot]) slots.push_back(slot);
  }
  return slots;
}

// Behind the label columns one for each such slot, with the text of each zero and NaN, and an empty
// one for other values. Texts are numbered behind the labels.
class SpelledBlocks : public FileBlocks {
 public:
  SpelledBlocks(const tool::ExchangeFile& file, const tool::FileSymbol& symbol,
                std::vector<std::size_t> slots, tool::Progress& progress, bool spells)
      : FileBlocks(file, symbol, spells),
        slots_(std::move(slots)),
        progress_(progress),
        first_(file.labelCount() + 1),
        texts_{""} {}

  RecordBlock next() override {
    RecordBlock block = FileBlocks::next();
    records_ += block.count;
    progress_.count(records_);
    if (block.count == 0) return block;
    for (const std::size_t slot : slots_) {
      std::vector<int>& column = block.keys.emplace_back(block.count, first_);
      const std::vector<double>& values = block.values[slot];
      for (std::size_t row = 0; row < values.size(); ++row) {
        if (values[row] == 0 || std::isnan(values[row])) column[row] = numberOf(values[row]);
      }
    }
    return block;
  }
  std::string_view label(int number) override {
    return number < first_ ? FileBlocks::label(number)
                           : texts_[static_cast<std::size_t>(number - first_)];
  }

 private:
  int numberOf(double value) {
    const auto [known, isNew] = numbers_.try_emplace(std::bit_cast<std::uint64_t>(value),
                                                     first_ + static_cast<int>(texts_.size()));
    if (isNew) texts_.emplace_back(tool::NumberText(value).view());
    return known->second;
  }

  std::vector<std::size_t> slots_;
  tool::Progress& progress_;
  int first_;
  std::size_t records_ = 0;
  std::vector<std::string> texts_;
  std::map<std::uint64_t, int> numbers_;
};

class LabelBlocks : public RecordBlocks {
 public:
  explicit LabelBlocks(const tool::ExchangeFile& file) : file_(file) {}

  RecordBlock next() override {
    constexpr int most = 65536;
    RecordBlock block;
    for (; next_ <= file_.labelCount() && block.count < most; ++next_, ++block.count) {
      block.texts.add(spelled(file_.label(next_), TextForm::json, room_));
    }
    return block;
  }
  std::string_view label(int number) override { return file_.label(number); }

 private:
  const tool::ExchangeFile& file_;
  int next_ = 1;
  std::string room_;
};

std::string listOf(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + sqlName(name);
  return list;
}

}  // namespace

std::string keyColumnName(std::string_view domain) {
  if (domain.empty()) return "\\";
  std::string room;
  std::string name(spelled(domain, TextForm::json, room));
  if (!name.ends_with(exactEnding)) return name;
  // With its blank spelled out.
  name.replace(name.size() - exactEnding.size(), 1, "\\x20");
  return name.starts_with('\\') ? name : '\\' + name;
}

std::string makeSymbolStream(const DatabaseExport& database, const tool::FileSymbol& symbol,
                             bool exact, ArrowArrayStream* stream) {
  ArrowColumns columns;
  for (const std::string& name :
       ztb::keyColumns(symbol.name, symbol.type, tool::domainNames(symbol))) {
    columns.keys.push_back(keyColumnName(name));
  }
  columns.contents = ztb::contentColumns(symbol.type);
  columns.isSet = symbol.type == ztb::Type::set;
  std::vector<std::string> written = columns.keys;
  written.insert(written.end(), columns.contents.begin(), columns.contents.end());
  const std::vector<std::size_t> slots =
      exact ? slotsToSpell(database.file, symbol) : std::vector<std::size_t>{};
  for (const std::size_t slot : slots) {
    columns.keys.push_back(columns.contents[slot] + std::string(exactEnding));
    written.push_back(columns.keys.back());
  }
  auto blocks =
      std::make_unique<SpelledBlocks>(database.file, symbol, slots, database.progress, exact);
  makeArrowStream(std::move(columns), std::move(blocks), std::make_unique<ArrowOwner>(), stream);
  return listOf(written);
}

std::string makeLabelStream(const tool::ExchangeFile& file, ArrowArrayStream* stream) {
  ArrowColumns columns;
  columns.contents = {"label"};
  columns.isSet = true;
  makeArrowStream(std::move(columns), std::make_unique<LabelBlocks>(file),
                  std::make_unique<ArrowOwner>(), stream);
  return "label";
}

}  // namespace formats

#include "formats/parquet/parquet_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "formats/arrow/arrow_stream.h"
#include "formats/parquet/parquet_names.h"
#include "formats/parquet/parquet_tables.h"
#include "formats/parquet/symbol_stream.h"
#include "formats/tables/exact_text.h"

namespace formats {

namespace {

// Stands for a value that is missing; no number that comes along.
const double missingNumber = std::bit_cast<double>(std::uint64_t{0xFFF8000000000FED});

bool isText(ColumnKind kind) {
  return kind == ColumnKind::label || kind == ColumnKind::text;
}

// Columns that live longer, in blocks.
class ColumnBlocks : public RecordBlocks {
 public:
  ColumnBlocks(std::vector<const std::vector<int>*> texts,
               std::vector<const std::vector<double>*> numbers,
               const std::vector<std::string>& entries)
      : texts_(std::move(texts)), numbers_(std::move(numbers)), entries_(entries) {}

  RecordBlock next() override {
    constexpr std::size_t most = 65536;
    const std::size_t rows = !texts_.empty()     ? texts_.front()->size()
                             : !numbers_.empty() ? numbers_.front()->size()
                                                 : 0;
    RecordBlock block;
    block.count = std::min(most, rows - at_);
    for (const std::vector<int>* column : texts_) block.keys.push_back(part(*column, block.count));
    for (const std::vector<double>* column : numbers_) {
      block.values.push_back(part(*column, block.count));
    }
    at_ += block.count;
    return block;
  }
  std::string_view label(int number) override { return entries_[static_cast<std::size_t>(number)]; }

 private:
  template <class T>
  [[nodiscard]] std::vector<T> part(const std::vector<T>& column, std::size_t count) const {
    const auto begin = column.begin() + static_cast<std::ptrdiff_t>(at_);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
  }

  std::vector<const std::vector<int>*> texts_;
  std::vector<const std::vector<double>*> numbers_;
  const std::vector<std::string>& entries_;
  std::size_t at_ = 0;
};

// A writer with a session of its own.
class OneParquetFile : public TableWriter {
 public:
  explicit OneParquetFile(const std::string& path) : writer_(session_, path) {}
  void begin(const TableHead& head) override { writer_.begin(head); }
  void label(std::string_view text) override { writer_.label(text); }
  void text(std::string_view text) override { writer_.text(text); }
  void number(double value) override { writer_.number(value); }
  void missing() override { writer_.missing(); }
  void endRow() override { writer_.endRow(); }
  void end() override { writer_.end(); }
  void finish() override { writer_.finish(); }

 private:
  DuckdbSession session_;
  ParquetWriter writer_;
};

}  // namespace

void ParquetWriter::begin(const TableHead& head) {
  exact_ = head.exact;
  for (const TableColumn& column : head.columns) {
    const bool isKey = columns_.size() < head.keys;
    columns_.push_back({.name = isKey ? keyColumnName(column.name) : column.name,
                        .kind = column.kind,
                        .texts = {},
                        .numbers = {}});
  }
}

void ParquetWriter::text(std::string_view text) {
  addText(exact_ ? spelled(text, TextForm::json, room_) : text);
}

void ParquetWriter::addText(std::string_view text) {
  const auto [known, isNew] =
      places_.try_emplace(std::string(text), static_cast<int>(texts_.size()));
  if (isNew) texts_.emplace_back(text);
  columns_[at_++].texts.push_back(known->second);
}

void ParquetWriter::number(double value) {
  columns_[at_++].numbers.push_back(value);
}

void ParquetWriter::missing() {
  if (isText(columns_[at_].kind)) {
    addText("");
  } else {
    number(missingNumber);
  }
}

void ParquetWriter::addColumn(const std::string& name, std::vector<double> values) {
  columns_.push_back(
      {.name = name, .kind = ColumnKind::integer, .texts = {}, .numbers = std::move(values)});
}

std::string ParquetWriter::list() const {
  std::string list;
  for (const Column& column : columns_) {
    const std::string name = sqlName(column.name);
    list += list.empty() ? "" : ", ";
    list += column.kind == ColumnKind::integer ? fmt::format("{0}::bigint as {0}", name) : name;
  }
  return list;
}

void ParquetWriter::finish(const std::string& options) {
  ArrowColumns columns;
  columns.naAsNull = true;
  columns.na = missingNumber;
  std::vector<const std::vector<int>*> texts;
  std::vector<const std::vector<double>*> numbers;
  for (const Column& column : columns_) {
    if (isText(column.kind)) {
      columns.keys.push_back(column.name);
      texts.push_back(&column.texts);
    } else {
      columns.contents.push_back(column.name);
      numbers.push_back(&column.numbers);
    }
  }
  OwnedStream stream;
  makeArrowStream(std::move(columns),
                  std::make_unique<ColumnBlocks>(std::move(texts), std::move(numbers), texts_),
                  std::make_unique<ArrowOwner>(), &stream.stream());
  session_.writeParquet(stream.stream(), list(), path_, options);
}

std::unique_ptr<TableWriter> makeParquet(const TableTarget& target) {
  return std::make_unique<OneParquetFile>(target.path);
}

void writeParquetSymbol(const DatabaseExport& database) {
  DuckdbSession session;
  OwnedStream stream;
  const tool::FileSymbol& symbol = *database.symbols.front();
  const std::string list = makeSymbolStream(database, symbol, false, &stream.stream());
  session.writeParquet(stream.stream(), list, database.path);
  database.records = symbol.recordCount;
}

}  // namespace formats

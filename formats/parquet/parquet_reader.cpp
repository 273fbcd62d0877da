#include "formats/parquet/parquet_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

#include "formats/file_name.h"
#include "formats/parquet/parquet_columns.h"
#include "formats/parquet/parquet_names.h"
#include "formats/parquet/parquet_tables.h"
#include "formats/tables/exact_text.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

// Whole numbers below 10^15, and powers of ten up to it, are doubles, so that one divided by the
// other is the nearest double.
constexpr int mostExactDigits = 15;

// A column of "DECIMAL(18,3)". The digits of a longer one are more than a double keeps.
ParquetColumn decimalOf(std::string name, std::string_view type) {
  const std::string column = sqlName(name);
  const std::string_view width = type.substr(type.find('(') + 1);
  const std::string_view scale = type.substr(type.find(',') + 1);
  if (scale == "0)") {
    return {std::move(name), ParquetColumn::Kind::whole, column + "::varchar"};
  }
  int digits = 0;
  std::from_chars(width.data(), width.data() + width.size(), digits);
  if (digits <= mostExactDigits) {
    return {std::move(name), ParquetColumn::Kind::number, column + "::double"};
  }
  return {std::move(name), ParquetColumn::Kind::decimal,
          fmt::format("rtrim(rtrim({}::varchar, '0'), '.')", column)};
}

// How a column of one of DuckDB's types is read.
ParquetColumn columnOf(std::string name, std::string_view type) {
  const std::string column = sqlName(name);
  const auto is = [&](std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, type) != names.end();
  };
  if (is({"DOUBLE", "FLOAT", "BOOLEAN"})) {
    return {std::move(name), ParquetColumn::Kind::number, column + "::double"};
  }
  if (type.starts_with("DECIMAL(")) return decimalOf(std::move(name), type);
  if (is({"TINYINT", "SMALLINT", "INTEGER", "BIGINT", "HUGEINT", "UTINYINT", "USMALLINT",
          "UINTEGER", "UBIGINT", "UHUGEINT"})) {
    return {std::move(name), ParquetColumn::Kind::whole, column + "::varchar"};
  }
  if (is({"DATE", "VARCHAR", "UUID", "TIME"}) || type.starts_with("ENUM")) {
    return {std::move(name), ParquetColumn::Kind::text, column + "::varchar"};
  }
  if (is({"TIMESTAMP", "TIMESTAMP_S", "TIMESTAMP_MS", "TIMESTAMP_NS"})) {
    return {std::move(name), ParquetColumn::Kind::text,
            fmt::format("case when {0} = date_trunc('day', {0}) then {0}::date::varchar else "
                        "replace({0}::varchar, ' ', 'T') end",
                        column)};
  }
  // A moment, spelled as Arrow's are; as a text of DuckDB it would stand in the time zone of this
  // machine.
  if (type == "TIMESTAMP WITH TIME ZONE") {
    return {std::move(name), ParquetColumn::Kind::text,
            fmt::format("case when isfinite({0}) then replace(make_timestamp(epoch_us({0}))"
                        "::varchar, ' ', 'T') || '+00:00' else {0}::varchar end",
                        column)};
  }
  return {std::move(name), ParquetColumn::Kind::unfit, "null::varchar"};
}

}  // namespace

std::vector<ParquetColumn> parquetColumns(const DuckdbSession& session, const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(tool::pathOf(path), error)) {
    throw tool::Failure(fmt::format("{}: no such file", path), ZTB_ERROR_NO_FILE);
  }
  std::vector<ParquetColumn> columns;
  const auto query = session.query("describe select * from " + parquetSource(path), path);
  for (DuckdbRows rows = query->next(); rows.count() > 0; rows = query->next()) {
    for (std::size_t row = 0; row < rows.count(); ++row) {
      columns.push_back(columnOf(std::string(rows.text(0, row)), rows.text(1, row)));
    }
  }
  return columns;
}

std::string parquetQuery(const std::vector<ParquetColumn>& columns, const std::string& path) {
  std::string list;
  for (const ParquetColumn& column : columns) {
    list += (list.empty() ? "" : ", ") + column.expression;
  }
  return fmt::format("select {} from {}", list, parquetSource(path));
}

ParquetReader::ParquetReader(std::shared_ptr<const DuckdbSession> session, const std::string& path,
                             bool exact, std::size_t most)
    : TableReader(path),
      session_(std::move(session)),
      exact_(exact),
      columns_(parquetColumns(*session_, path)) {
  columns_.resize(std::min(columns_.size(), most));
  fieldCount_ = columns_.size();
  exactOf_.resize(columns_.size());
  if (exact_) splitExact();
  texts_.resize(columns_.size());
}

void ParquetReader::splitExact() {
  while (fieldCount_ > 0 && columns_[fieldCount_ - 1].name.ends_with(exactEnding)) --fieldCount_;
  for (std::size_t column = fieldCount_; column < columns_.size(); ++column) {
    const std::string& name = columns_[column].name;
    const auto fields = std::span(columns_).first(fieldCount_);
    const auto field = std::ranges::find(
        fields, std::string_view(name).substr(0, name.size() - exactEnding.size()),
        &ParquetColumn::name);
    if (field != fields.end()) exactOf_[static_cast<std::size_t>(field - fields.begin())] = column;
  }
}

std::string_view ParquetReader::kept(std::size_t column, std::string_view text) {
  texts_[column] = text;
  return texts_[column];
}

TableField ParquetReader::fieldAt(std::size_t column) {
  TableField field{.text = "", .quoted = false, .at = {.line = row_, .column = column + 1}};
  if (columns_[column].kind == ParquetColumn::Kind::unfit) {
    field.fault = "is of a nested type or bytes, expected a text or a number";
    return field;
  }
  if (rows_.isNull(column, at_)) return field;
  if (columns_[column].kind == ParquetColumn::Kind::number) {
    const std::size_t exact = exactOf_[column];
    if (exact != 0 && columns_[exact].kind == ParquetColumn::Kind::text &&
        !rows_.isNull(exact, at_) && !rows_.text(exact, at_).empty()) {
      field.text = kept(exact, rows_.text(exact, at_));
      return field;
    }
    field.isNumber = true;
    field.number = rows_.doubles(column)[at_];
    return field;
  }
  field.quoted = true;
  const std::string_view text = rows_.text(column, at_);
  const std::optional<std::string> plain = exact_ ? unspelled(text) : std::string(text);
  if (!plain) {
    field.fault = "begins with a backslash, and is no text that was spelled out";
    return field;
  }
  field.text = kept(column, *plain);
  if (columns_[column].kind != ParquetColumn::Kind::text) {
    field.isNumber = true;
    std::from_chars(field.text.data(), field.text.data() + field.text.size(), field.number);
    if (columns_[column].kind == ParquetColumn::Kind::whole &&
        fmt::format("{:.0f}", field.number) != field.text) {
      field.rounded = field.text;
    }
  }
  return field;
}

bool ParquetReader::next(ProblemList& problems) {
  static_cast<void>(problems);
  fields_.clear();
  if (!headed_) {
    headed_ = true;
    for (std::size_t column = 0; column < fieldCount_; ++column) {
      const std::string& name = columns_[column].name;
      fields_.push_back(
          {.text = kept(column, exact_ ? unspelled(name).value_or(name) : name), .quoted = true});
    }
    return true;
  }
  if (query_ == nullptr) query_ = session_->query(parquetQuery(columns_, path_), path_);
  while (at_ == rows_.count()) {
    rows_ = query_->next();
    at_ = 0;
    if (rows_.count() == 0) return false;
  }
  ++row_;
  for (std::size_t column = 0; column < fieldCount_; ++column) {
    fields_.push_back(fieldAt(column));
  }
  ++at_;
  return true;
}

std::unique_ptr<BulkRows> ParquetReader::columns(const BulkColumnPlaces& wanted,
                                                 tool::Progress& progress) {
  if (columns_.size() > fieldCount_) return nullptr;  // values are put together of two columns
  return ParquetColumns::read(*session_, path_, {.columns = columns_, .exact = exact_}, wanted,
                              progress);
}

std::string ParquetReader::place(TextPosition at) const {
  return at.line == 0 ? path_ : fmt::format("{}: row {}", path_, at.line);
}

std::string ParquetReader::shortPlace(TextPosition at) const {
  return fmt::format("row {}", at.line);
}

}  // namespace formats

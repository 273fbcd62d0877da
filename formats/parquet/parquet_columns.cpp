#include "formats/parquet/parquet_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <optional>
#include <span>

#include "formats/tables/exact_text.h"

namespace formats {

namespace {

// From here on not every whole number is a double.
constexpr double firstInexact = 9007199254740992;  // 2^53

using Kind = ParquetColumn::Kind;

bool isOf(const ParquetColumn& column, std::initializer_list<Kind> kinds) {
  return std::ranges::find(kinds, column.kind) != kinds.end();
}

bool isWithin(std::span<const double> numbers) {
  return std::ranges::all_of(numbers,
                             [](double number) { return std::abs(number) < firstInexact; });
}

}  // namespace

std::unique_ptr<ParquetColumns> ParquetColumns::read(const DuckdbSession& session,
                                                     const std::string& path,
                                                     const ParquetForm& form,
                                                     const BulkColumnPlaces& wanted,
                                                     tool::Progress& progress) {
  std::vector<ParquetColumn> asked;
  for (const std::size_t place : wanted.labels) {
    if (!isOf(form.columns[place], {Kind::text, Kind::whole, Kind::decimal})) return nullptr;
    asked.push_back(form.columns[place]);
  }
  // By column of numbers, whether they were whole ones.
  std::vector<bool> whole;
  for (const std::size_t place : wanted.numbers) {
    const ParquetColumn& column = form.columns[place];
    if (!isOf(column, {Kind::number, Kind::whole, Kind::decimal})) return nullptr;
    asked.push_back(column);
    // Of a long decimal as a double DuckDB does not give the nearest one.
    const bool viaText = column.kind == Kind::decimal;
    asked.back().expression = sqlName(column.name) + (viaText ? "::varchar::double" : "::double");
    whole.push_back(column.kind == Kind::whole);
  }
  auto result = std::make_unique<ParquetColumns>(form.exact);
  result->rows_.labels.resize(wanted.labels.size());
  result->rows_.numbers.resize(wanted.numbers.size());
  result->latest_.assign(wanted.labels.size(), LabelDictionary::none);
  const auto query = session.query(parquetQuery(asked, path), path);
  for (DuckdbRows rows = query->next(); rows.count() > 0; rows = query->next()) {
    if (!result->add(rows, whole)) return nullptr;
    progress.count(result->rows_.rows);
  }
  return result;
}

bool ParquetColumns::add(const DuckdbRows& rows, const std::vector<bool>& whole) {
  const std::size_t keys = rows_.labels.size();
  for (std::size_t column = 0; column < keys + whole.size(); ++column) {
    for (std::size_t row = 0; rows.hasNulls(column) && row < rows.count(); ++row) {
      if (rows.isNull(column, row)) return false;
    }
  }
  for (std::size_t column = 0; column < whole.size(); ++column) {
    const std::span<const double> numbers(rows.doubles(keys + column), rows.count());
    if (whole[column] && !isWithin(numbers)) return false;
    std::vector<double>& into = rows_.numbers[column];
    into.insert(into.end(), numbers.begin(), numbers.end());
  }
  rows_.rows += rows.count();
  return addLabels(rows);
}

bool ParquetColumns::addLabels(const DuckdbRows& rows) {
  for (std::size_t row = 0; row < rows.count(); ++row) {
    for (std::size_t column = 0; column < latest_.size(); ++column) {
      std::string_view text = rows.text(column, row);
      std::optional<std::string> plain;
      if (exact_ && text.starts_with('\\')) {
        plain = unspelled(text);
        if (!plain) return false;
        text = *plain;
      }
      int& latest = latest_[column];
      if (latest == LabelDictionary::none || dictionary_.label(latest) != text) {
        latest = dictionary_.find(text);
        if (latest == LabelDictionary::none) return false;
      }
      rows_.labels[column].push_back(latest);
    }
  }
  return true;
}

void ParquetColumns::numberLabels(const std::function<int(const std::string& label)>& number) {
  std::vector<int> numbers(dictionary_.size());
  for (std::size_t label = 0; label < numbers.size(); ++label) {
    numbers[label] = number(dictionary_.label(static_cast<int>(label)));
  }
  for (std::vector<int>& column : rows_.labels) {
    for (int& label : column) label = numbers[static_cast<std::size_t>(label)];
  }
}

}  // namespace formats

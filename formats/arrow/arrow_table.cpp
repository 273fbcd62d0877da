#include "formats/arrow/arrow_table.h"

#include <fmt/format.h>

#include <utility>
#include <ztb/error.hpp>

namespace formats {

namespace {

[[noreturn]] void failTable(const std::string& text) {
  throw ztb::Error("ztbArrowFill", text);
}

// A batch that is released when it goes.
struct OwnedBatch {
  OwnedBatch() = default;
  OwnedBatch(const OwnedBatch&) = delete;
  OwnedBatch& operator=(const OwnedBatch&) = delete;
  ~OwnedBatch() {
    if (array.release != nullptr) array.release(&array);
  }
  ArrowArray array{};
};

}  // namespace

ArrowTable::ArrowTable(ArrowArrayStream* stream) : stream_(*stream) {
  // The caller's structure is an ended one from now on.
  stream->release = nullptr;
  if (stream_.release == nullptr) failTable("the stream was released already");
  try {
    requireSuccess(stream_.get_schema(&stream_, &schema_));
    if (std::string_view(schema_.format) != "+s" || schema_.dictionary != nullptr) {
      failTable(fmt::format("the stream is no table, but {}", columnTypeText(schema_)));
    }
    for (std::int64_t column = 0; column < schema_.n_children; ++column) {
      const char* name = schema_.children[column]->name;
      names_.emplace_back(name == nullptr ? "" : name);
    }
  } catch (...) {
    if (schema_.release != nullptr) schema_.release(&schema_);
    stream_.release(&stream_);
    throw;
  }
}

ArrowTable::~ArrowTable() {
  schema_.release(&schema_);
  stream_.release(&stream_);
}

void ArrowTable::requireSuccess(int result) {
  if (result == 0) return;
  const char* text = stream_.get_last_error(&stream_);
  failTable(text == nullptr ? fmt::format("the stream failed with the number {}", result)
                            : std::string(text));
}

std::optional<ColumnType> ArrowTable::contentType(std::size_t column) const {
  const ArrowSchema& schema = *schema_.children[column];
  if (schema.dictionary == nullptr) return columnTypeOf(schema.format);
  // No entries of entries.
  return schema.dictionary->dictionary == nullptr ? columnTypeOf(schema.dictionary->format)
                                                  : std::nullopt;
}

bool ArrowTable::canBeLabel(std::size_t column) const {
  const std::optional<ColumnType> type = contentType(column);
  return type && type->canBeLabel();
}

bool ArrowTable::isNumber(std::size_t column) const {
  const std::optional<ColumnType> type = contentType(column);
  return type && type->isNumber() && schema_.children[column]->dictionary == nullptr;
}

void ArrowTable::checkTypes(const ColumnPlan& plan) const {
  const auto refuse = [&](std::size_t column, const char* expected) {
    const ArrowSchema& schema = *schema_.children[column];
    failTable(fmt::format("column {}: is {}{}, expected {}", names_[column],
                          schema.dictionary == nullptr ? "" : "a dictionary of ",
                          schema.dictionary == nullptr ? columnTypeText(schema)
                          : schema.dictionary->dictionary == nullptr
                              ? columnTypeText(*schema.dictionary)
                              : "dictionaries",
                          expected));
  };
  for (const std::size_t column : plan.keys) {
    if (!canBeLabel(column)) refuse(column, "labels: texts, whole numbers or dates");
  }
  for (const std::size_t column : plan.numbers) {
    if (!isNumber(column)) refuse(column, "numbers");
  }
  if (plan.text && contentType(*plan.text).value_or(ColumnType{}).kind != ColumnClass::text) {
    refuse(*plan.text, "texts");
  }
}

bool ArrowTable::nextBatch(ArrowArray& batch) {
  requireSuccess(stream_.get_next(&stream_, &batch));
  if (batch.release == nullptr) return false;
  if (batch.n_children != schema_.n_children || batch.length < 0 || batch.offset < 0) {
    failTable("the stream is damaged: a batch has not the columns of its schema");
  }
  refuseNullRows(batch);
  return true;
}

// Where nobody has counted them, the marks tell.
void ArrowTable::refuseNullRows(const ArrowArray& batch) const {
  const auto* marks = batch.n_buffers < 1 || batch.null_count == 0
                          ? nullptr
                          : static_cast<const std::uint8_t*>(batch.buffers[0]);
  if (marks == nullptr && batch.null_count <= 0) return;
  for (std::int64_t row = 0; row < batch.length; ++row) {
    const std::int64_t bit = batch.offset + row;
    if (marks == nullptr || (marks[bit / 8] >> (bit % 8) & 1U) == 0) {
      failTable(fmt::format("row {}: a row cannot be null",
                            rows_.rowCount + static_cast<std::size_t>(row)));
    }
  }
}

void ArrowTable::read(const ColumnPlan& plan) {
  checkTypes(plan);
  rows_.keys.resize(plan.keys.size());
  rows_.numbers.resize(plan.numbers.size());
  while (true) {
    OwnedBatch batch;
    if (!nextBatch(batch.array)) return;
    readBatch(plan, batch.array);
    rows_.rowCount += static_cast<std::size_t>(batch.array.length);
  }
}

void ArrowTable::readBatch(const ColumnPlan& plan, const ArrowArray& batch) {
  for (std::size_t key = 0; key < plan.keys.size(); ++key) {
    readLabels(plan.keys[key], batch, rows_.keys[key]);
  }
  for (std::size_t number = 0; number < plan.numbers.size(); ++number) {
    readNumbers(plan.numbers[number], batch, rows_.numbers[number]);
  }
  if (plan.text) readTexts(*plan.text, batch);
}

ColumnCells ArrowTable::cellsOf(std::size_t column, const ArrowArray& batch,
                                const ColumnType& type) const {
  return {type,
          *batch.children[column],
          batch.offset,
          static_cast<std::size_t>(batch.length),
          {.column = names_[column], .row = rows_.rowCount}};
}

template <class Take>
void ArrowTable::eachText(std::size_t column, const ArrowArray& batch, Take&& take) {
  const ArrowSchema& schema = *schema_.children[column];
  const std::optional<ColumnType> type = columnTypeOf(schema.format);
  if (!type) failTable(fmt::format("column {}: is damaged: an index is no number", names_[column]));
  const ColumnCells cells = cellsOf(column, batch, *type);
  std::string room;
  if (schema.dictionary == nullptr) {
    for (std::size_t row = 0; row < cells.count(); ++row) {
      take(row, cells.isNull(row) ? std::nullopt : std::optional(cells.label(row, room)), -1);
    }
    return;
  }
  const ArrowArray* entries = batch.children[column]->dictionary;
  if (entries == nullptr ||
      (type->kind != ColumnClass::integer && type->kind != ColumnClass::unsignedInteger)) {
    failTable(fmt::format("column {}: is damaged: it has no dictionary", names_[column]));
  }
  const std::optional<ColumnType> entryType = columnTypeOf(schema.dictionary->format);
  const auto entryCount = static_cast<std::size_t>(entries->length);
  const ColumnCells texts(*entryType, *entries, 0, entryCount, {.column = names_[column]});
  for (std::size_t row = 0; row < cells.count(); ++row) {
    if (cells.isNull(row)) {
      take(row, std::nullopt, -1);
      continue;
    }
    const std::size_t entry = cells.index(row, entryCount);
    take(row, texts.isNull(entry) ? std::nullopt : std::optional(texts.label(entry, room)),
         static_cast<int>(entry));
  }
}

void ArrowTable::readLabels(std::size_t column, const ArrowArray& batch, LabelColumn& labels) {
  // The places of the labels of a dictionary that came up in this batch.
  std::vector<int> places;
  eachText(column, batch, [&](std::size_t row, std::optional<std::string_view> text, int entry) {
    if (!text) {
      failTable(fmt::format("column {}, row {}: a label is missing", names_[column],
                            rows_.rowCount + row));
    }
    const auto place = static_cast<std::size_t>(entry);
    if (entry < 0) {
      labels.rows.push_back(labels.add(*text));
      return;
    }
    if (place >= places.size()) places.resize(place + 1, -1);
    if (places[place] < 0) places[place] = labels.add(*text);
    labels.rows.push_back(places[place]);
  });
}

void ArrowTable::readTexts(std::size_t column, const ArrowArray& batch) {
  eachText(column, batch, [&](std::size_t, std::optional<std::string_view> text, int) {
    rows_.texts.emplace_back(text.value_or(""));
  });
}

void ArrowTable::readNumbers(std::size_t column, const ArrowArray& batch, NumberColumn& numbers) {
  const ColumnType type = *columnTypeOf(schema_.children[column]->format);
  const ColumnCells cells = cellsOf(column, batch, type);
  const std::size_t before = numbers.rows.size();
  if (const double* all = cells.doubles()) {
    numbers.rows.insert(numbers.rows.end(), all, all + cells.count());
  } else {
    numbers.rows.resize(before + cells.count());
  }
  for (std::size_t row = 0; row < cells.count(); ++row) {
    if (cells.isNull(row)) {
      numbers.nulls.resize(before + row + 1);
      numbers.nulls[before + row] = true;
    } else if (cells.doubles() == nullptr) {
      numbers.rows[before + row] = cells.number(row);
    }
  }
  if (!numbers.nulls.empty()) numbers.nulls.resize(numbers.rows.size());
}

}  // namespace formats

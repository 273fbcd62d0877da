#include "formats/tables/record_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Labels have one spelling, the first; that of the line that is told may be another one.
constexpr std::string_view kFolding = " (the case of letters does not matter)";

bool isEmpty(const TableField& field) {
  return field.fault == nullptr && !field.isNumber &&
         field.text.find_first_not_of(' ') == std::string_view::npos;
}

}  // namespace

std::string labelProblem(std::string_view label) {
  const std::string_view trimmed = label.substr(0, label.find_last_not_of(' ') + 1);
  if (!label.empty() && trimmed.empty()) {
    return "a label cannot be blanks alone";
  }
  if (std::ranges::any_of(label, [](char c) { return static_cast<unsigned char>(c) < ' '; })) {
    return fmt::format("label {} holds a control character", tool::inQuotes(label));
  }
  if (label.find('\'') != std::string_view::npos && label.find('"') != std::string_view::npos) {
    return fmt::format("label >{}< holds both kinds of quote", tool::shortened(label));
  }
  if (trimmed.size() > ZTB_MAX_NAME_LENGTH) {
    return fmt::format("label {} has {} bytes, at most {} are allowed", tool::inQuotes(trimmed),
                       trimmed.size(), static_cast<int>(ZTB_MAX_NAME_LENGTH));
  }
  return {};
}

void RecordImport::problem(const TableReader& reader, std::size_t column, const std::string& text) {
  problems_.add(reader.place(reader.fields()[column].at),
                fmt::format("{}: {}", (*columns_)[column], text));
}

void RecordImport::readRows(TableReader& reader, const std::vector<std::string>& columns,
                            const std::vector<ImportTarget>& targets) {
  progress_.step("reading " + reader.path());
  columns_ = &columns;
  if (readBulk(reader, targets)) {
    return;
  }
  progress_.step("reading " + reader.path());
  std::vector<RecordTable> tables;
  tables.reserve(targets.size());
  for (const ImportTarget& target : targets) {
    tables.emplace_back(target.keyColumns.size(), target.valueColumns.size());
  }
  std::size_t rows = 0;
  while (reader.next(problems_)) {
    progress_.count(++rows);
    progress_.share(reader.share());
    const std::size_t count = reader.fields().size();
    if (count != columns.size()) {
      problems_.add(
          reader.place(reader.position()),
          fmt::format("has {}, the header has {}", tool::counted(count, "field"), columns.size()));
      continue;
    }
    rowLabels_.assign(count, std::nullopt);
    rowLabelsKnown_.assign(count, false);
    for (std::size_t index = 0; index < targets.size(); ++index) {
      readRecord(reader, targets[index], tables[index]);
    }
  }
  for (std::size_t index = 0; index < targets.size(); ++index) {
    store(reader, targets[index], tables[index]);
  }
}

std::size_t RecordImport::readLabels(TableReader& reader) {
  std::size_t rows = 0;
  const std::vector<std::string> columns{"label"};
  columns_ = &columns;
  while (reader.next(problems_)) {
    ++rows;
    if (reader.fields().size() != 1) {
      problems_.add(reader.place(reader.position()),
                    fmt::format("has {}, expected one label",
                                tool::counted(reader.fields().size(), "field")));
      continue;
    }
    rowLabels_.assign(1, std::nullopt);
    rowLabelsKnown_.assign(1, false);
    const int known = database_.labelCount();
    const std::optional<int> number = labelNumber(reader, 0);
    if (number && *number <= known) {
      problem(reader, 0,
              fmt::format("label {} stands twice", tool::inQuotes(reader.fields()[0].text)));
    }
  }
  return rows;
}

// The number of the label in a column, which is added if it is new; nothing, with the problem
// reported once a row, if it cannot be one.
std::optional<int> RecordImport::labelNumber(const TableReader& reader, std::size_t column) {
  if (rowLabelsKnown_[column]) {
    return rowLabels_[column];
  }
  rowLabelsKnown_[column] = true;
  const TableField& field = reader.fields()[column];
  const std::string_view text = textOf(field);
  KnownLabel& known = knownLabels_[std::hash<std::string_view>()(text) % knownLabels_.size()];
  if (!text.empty() && known.text == text) {
    rowLabels_[column] = known.number;
    return known.number;
  }
  std::string reason = labelProblem(text);
  if (text.empty() && !field.quoted) {
    reason = "is empty, expected a label (the empty label is written \"\")";
  }
  if (field.fault != nullptr) {
    reason = field.fault;
  }
  if (!reason.empty()) {
    problem(reader, column, reason);
    return std::nullopt;
  }
  const int number = database_.mergeLabel(text.data());
  known.text = text;
  known.number = number;
  rowLabels_[column] = number;
  return number;
}

std::string_view RecordImport::textOf(const TableField& field) {
  if (!field.isNumber || !field.text.empty()) return field.text;
  digits_ = tool::NumberText(field.number).view();
  return digits_;
}

bool RecordImport::readRecord(const TableReader& reader, const ImportTarget& target,
                              RecordTable& table) {
  if (target.skipEmpty && std::ranges::all_of(target.valueColumns, [&](std::size_t column) {
        return isEmpty(reader.fields()[column]);
      })) {
    return true;
  }
  bool good = true;
  keys_.clear();
  keyPlaces_.clear();
  for (const std::size_t column : target.keyColumns) {
    const std::optional<int> number = labelNumber(reader, column);
    good = good && number.has_value();
    keys_.push_back(number.value_or(0));
    keyPlaces_.push_back(reader.fields()[column].at.column);
  }
  good = readValues(reader, target) && good;
  std::string_view text;
  if (target.textColumn) {
    const TableField& field = reader.fields()[*target.textColumn];
    good = acceptText(reader, field) && good;
    text = textOf(field);
  }
  if (good) {
    table.add(keys_, values_, text, {.line = reader.position().line, .columns = keyPlaces_});
  }
  return good;
}

bool RecordImport::readValues(const TableReader& reader, const ImportTarget& target) {
  bool good = true;
  values_.clear();
  for (std::size_t value = 0; value < target.valueColumns.size(); ++value) {
    const std::size_t column = target.valueColumns[value];
    const TableField& field = reader.fields()[column];
    if (target.skipEmpty && isEmpty(field)) {
      values_.push_back(target.defaults[target.valueFields[value]]);
      continue;
    }
    std::string reason;
    if (field.fault != nullptr) {
      reason = field.fault;
    } else {
      values_.push_back(field.isNumber ? field.number
                                       : tool::parseNumber(field.text, reason, decimal_));
    }
    if (!reason.empty()) {
      problem(reader, column, reason);
      good = false;
    } else if (!field.rounded.empty()) {
      warnings_.add(reader.place(field.at),
                    fmt::format("warning: {}: {} is no double, the nearest one is taken",
                                (*columns_)[column], field.rounded));
    }
  }
  return good;
}

// Whether a text can be kept. The database keeps one spelling of texts that differ in the case of
// letters only, which is worth a warning.
bool RecordImport::acceptText(const TableReader& reader, const TableField& field) {
  const auto column = static_cast<std::size_t>(&field - reader.fields().data());
  if (field.fault != nullptr) {
    problem(reader, column, field.fault);
    return false;
  }
  if (field.text.size() > ZTB_MAX_TEXT_LENGTH) {
    problem(reader, column,
            fmt::format("text has {} bytes, at most {} are allowed", field.text.size(),
                        static_cast<int>(ZTB_MAX_TEXT_LENGTH)));
    return false;
  }
  if (field.text.find('\0') != std::string_view::npos) {
    problem(reader, column, "text holds a zero byte");
    return false;
  }
  const auto [known, isNew] = texts_.try_emplace(tool::folded(field.text), field.text);
  if (!isNew && known->second != field.text) {
    warnings_.add(reader.place(field.at),
                  fmt::format("warning: text {} is kept as {}, its first spelling",
                              tool::inQuotes(field.text), tool::inQuotes(known->second)));
  }
  return true;
}

void RecordImport::store(const TableReader& reader, const ImportTarget& target,
                         const RecordTable& table) {
  if (checkDomains_) {
    checkRecords(reader, target, table);
    remember(target, table);
  }
  ztb::Symbol symbol = target.symbol;
  progress_.step(fmt::format("storing {}", symbol.name().view()));
  const std::vector<std::size_t> order = table.order();
  progress_.expect(order.size());
  for (std::size_t index = 0; index < order.size(); ++index) {
    const std::size_t record = order[index];
    if (index > 0 && std::ranges::equal(table.keys(order[index - 1]), table.keys(record))) {
      if (!target.distinct) {
        reportDuplicate(reader, target, table, order[index - 1], record);
      }
      continue;
    }
    ++recordCount_;
    progress_.count(index);
    if (symbol.type() == ztb::Type::set) {
      const std::string_view text = table.text(record);
      symbol.putElementUnchecked(table.keys(record), text.empty() ? nullptr : text.data());
    } else {
      std::array<double, ztb::fieldCount> values = target.defaults;
      const std::span<const double> read = table.values(record);
      for (std::size_t value = 0; value < read.size(); ++value) {
        values[target.valueFields[value]] = read[value];
      }
      symbol.putUnchecked(table.keys(record), values);
    }
  }
}

void RecordImport::reportDuplicate(const TableReader& reader, const ImportTarget& target,
                                   const RecordTable& table, std::size_t first,
                                   std::size_t second) {
  problems_.add(reader.place(table.place(second, 0)),
                fmt::format("record {} of {} stands in {} already{}", recordText(table, second),
                            target.symbol.name().view(), reader.shortPlace(table.place(first, 0)),
                            target.keyColumns.empty() ? "" : kFolding));
}

std::string RecordImport::recordText(const RecordTable& table, std::size_t record) const {
  std::string text;
  for (const int key : table.keys(record)) {
    text += fmt::format("{}\"{}\"", text.empty() ? "" : ",", database_.label(key).view());
  }
  return "(" + text + ")";
}

// The set that is the domain of a position, as far as its records were read. One that was added
// after the symbol is known to it by name only.
const RecordImport::Member* RecordImport::memberOf(const ztb::Domain& domain) const {
  const std::optional<ztb::Symbol> set =
      domain.set ? domain.set : database_.findSymbol(domain.name);
  const auto found = set ? members_.find(set->handle()) : members_.end();
  return found == members_.end() ? nullptr : &found->second;
}

void RecordImport::checkRecords(const TableReader& reader, const ImportTarget& target,
                                const RecordTable& table) {
  const std::vector<ztb::Domain> domains = target.symbol.domains();
  for (std::size_t position = 0; position < domains.size(); ++position) {
    const Member* member = memberOf(domains[position]);
    if (member == nullptr) {
      continue;
    }
    const std::vector<bool>& labels = member->labels;
    for (std::size_t record = 0; record < table.size(); ++record) {
      const auto number = static_cast<std::size_t>(table.keys(record)[position]);
      if (number >= labels.size() || !labels[number]) {
        problems_.add(
            reader.place(table.place(record, position)),
            fmt::format("label {} (position {} of {}) is not in set {}",
                        tool::inQuotes(database_.label(static_cast<int>(number)).view()),
                        position + 1, target.symbol.name().view(), domains[position].name.view()));
      }
    }
  }
}

void RecordImport::know(const ztb::Symbol& set) {
  std::vector<bool>& labels = members_[set.handle()].labels;
  labels.resize(static_cast<std::size_t>(database_.labelCount()) + 1);
  for (const ztb::Row row : set.rows()) {
    labels[static_cast<std::size_t>(row.keys.front())] = true;
  }
}

void RecordImport::remember(const ImportTarget& target, const RecordTable& table) {
  if (target.symbol.type() != ztb::Type::set || target.symbol.dimension() != 1) {
    return;
  }
  std::vector<bool>& labels = members_[target.symbol.handle()].labels;
  labels.resize(static_cast<std::size_t>(database_.labelCount()) + 1);
  for (std::size_t record = 0; record < table.size(); ++record) {
    labels[static_cast<std::size_t>(table.keys(record).front())] = true;
  }
}

}  // namespace formats

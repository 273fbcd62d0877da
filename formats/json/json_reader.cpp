#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <ztb/column_names.hpp>

#include "formats/json/json_lines.h"
#include "formats/json/json_object.h"
#include "formats/json/text_lines.h"
#include "formats/tables/exact_text.h"
#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// A row that was taken out of a line: texts in a heap of all, and numbers.
struct StoredField {
  std::size_t begin = 0;
  std::size_t size = 0;
  double number = 0;
  bool isNumber = false;
  bool missing = false;
};

// The rows of one symbol, or of the labels.
struct StoredRows {
  std::size_t columns = 0;
  std::vector<StoredField> fields;
  std::vector<std::size_t> lines;
};

class StoredTable : public TableReader {
 public:
  StoredTable(std::string path, const StoredRows& rows, const std::string& heap,
              std::vector<std::string> header)
      : TableReader(std::move(path)), rows_(rows), heap_(heap), header_(std::move(header)) {}

  bool next(ProblemList& problems) override {
    (void)problems;
    fields_.clear();
    if (!headerRead_) {
      headerRead_ = true;
      for (const std::string& name : header_) fields_.push_back({.text = name, .quoted = true});
      return true;
    }
    if (row_ == rows_.lines.size()) return false;
    line_ = rows_.lines[row_];
    for (std::size_t column = 0; column < rows_.columns; ++column) {
      const StoredField& stored = rows_.fields[row_ * rows_.columns + column];
      fields_.push_back({.text = std::string_view(heap_).substr(stored.begin, stored.size),
                         .quoted = !stored.isNumber && !stored.missing,
                         .at = {.line = line_, .column = 0},
                         .isNumber = stored.isNumber,
                         .number = stored.number});
    }
    ++row_;
    return true;
  }
  [[nodiscard]] TextPosition position() const override { return {.line = line_, .column = 0}; }
  [[nodiscard]] std::string place(TextPosition at) const override {
    return placeText(path_, {.line = at.line, .column = 0});
  }

 private:
  const StoredRows& rows_;
  const std::string& heap_;
  std::vector<std::string> header_;
  bool headerRead_ = false;
  std::size_t row_ = 0;
  std::size_t line_ = 0;
};

class JsonDatabase : public DatabaseReader {
 public:
  explicit JsonDatabase(const std::string& path) : path_(tool::inputName(path)), lines_(path) {}

  std::vector<ManifestEntry> symbols(ProblemList& problems) override {
    labels_.columns = 1;
    while (lines_.next()) {
      std::string fault = parseJsonObject(lines_.line(), object_);
      if (fault.empty()) fault = takeLine();
      if (!fault.empty()) problems.add(placeText(path_, {.line = lines_.number()}), fault);
    }
    if (entries_.empty() && labels_.lines.empty() && problems.empty() && !countsLine_) {
      problems.add(path_, "has no line of a symbol or label: it holds no whole database");
    }
    // Lines that could not be read are told already.
    if (problems.empty()) checkCounts(problems);
    return entries_;
  }
  [[nodiscard]] std::string place(const ManifestEntry& entry) const override {
    return placeText(path_, {.line = entry.at.line});
  }
  std::unique_ptr<TableReader> labels() override {
    if (labels_.lines.empty()) return nullptr;
    return std::make_unique<StoredTable>(path_, labels_, heap_, std::vector<std::string>{"label"});
  }
  std::unique_ptr<TableReader> records(const ManifestEntry& entry) override {
    std::vector<std::string> header = ztb::keyColumns(entry.name, entry.type, entry.domains);
    for (const std::string& name : ztb::contentColumns(entry.type)) header.push_back(name);
    return std::make_unique<StoredTable>(path_, records_[tool::folded(entry.name)], heap_,
                                         std::move(header));
  }

 private:
  // The first line and those of symbols tell what follows; one that was written by hand need not.
  void checkCounts(ProblemList& problems) const {
    const auto check = [&](std::size_t line, std::size_t found, std::size_t told, const char* what,
                           const std::string& whose = {}) {
      if (found >= told) return;
      problems.add(placeText(path_, {.line = line}),
                   fmt::format("tells of {}{}, the file has {}: its end is missing",
                               tool::counted(told, what), whose, found));
    };
    if (countsLine_) {
      check(*countsLine_, entries_.size(), symbolsTold_, "symbol");
      check(*countsLine_, labels_.lines.size(), labelsTold_, "label");
    }
    for (const ManifestEntry& entry : entries_) {
      const std::string name = tool::folded(entry.name);
      check(entry.at.line, records_.at(name).lines.size(), recordsTold_.at(name), "record",
            " of " + entry.name);
    }
  }

  // The count that the line at hand tells under a name, 0 for none.
  [[nodiscard]] std::size_t countOf(std::string_view name, std::string& fault) const {
    const JsonValue* value = object_.find(name);
    if (value == nullptr) return 0;
    constexpr double most = 9007199254740992.0;  // whole numbers above have gaps
    if (value->kind != JsonValue::Kind::number || value->number < 0 || value->number > most ||
        std::floor(value->number) != value->number) {
      fault = fmt::format("{}: is no count", name);
      return 0;
    }
    return static_cast<std::size_t>(value->number);
  }

  std::string takeCounts() {
    std::string fault;
    countsLine_ = lines_.number();
    symbolsTold_ = countOf("symbols", fault);
    labelsTold_ = countOf("labels", fault);
    return fault;
  }

  std::string takeLine() {
    if (object_.find("symbol") != nullptr) return takeSymbol();
    if (object_.find("symbols") != nullptr) return takeCounts();
    if (const JsonValue* label = object_.find("label")) {
      if (label->kind != JsonValue::Kind::text) return "label: is no text";
      if (!addText(labels_, label->text)) {
        labels_.fields.pop_back();
        return "label: a backslash stands before no escape";
      }
      labels_.lines.push_back(lines_.number());
      return {};
    }
    if (object_.find("of") != nullptr) return takeRecord();
    return "has none of the keys symbol, label and of";
  }

  [[nodiscard]] std::string textOf(std::string_view name, std::string& fault) const {
    const JsonValue* value = object_.find(name);
    if (value == nullptr) return {};
    const std::optional<std::string> text = unspelled(value->text);
    if (value->kind != JsonValue::Kind::text || !text) fault = fmt::format("{}: is no text", name);
    return text.value_or("");
  }

  std::string takeSymbol() {
    std::string fault;
    ManifestEntry entry;
    entry.at = {.line = lines_.number(), .column = 0};
    entry.name = textOf("symbol", fault);
    entry.text = textOf("text", fault);
    entry.aliasOf = textOf("alias_of", fault);
    const std::string typeName = textOf("type", fault);
    const std::optional<ztb::Type> type = tool::typeOfWord(typeName);
    if (!type) return "type: expected set, parameter, variable, equation or alias";
    entry.type = *type;
    if (const JsonValue* domains = object_.find("domains")) {
      if (domains->kind != JsonValue::Kind::list) return "domains: is no array of texts";
      for (const std::string& domain : domains->items) {
        entry.domains.push_back(unspelled(domain).value_or(domain));
      }
    }
    if (const JsonValue* info = object_.find("user_info")) {
      entry.userInfo = static_cast<int>(info->number);
      if (info->kind != JsonValue::Kind::number || entry.userInfo != info->number) {
        return "user_info: is no whole number";
      }
    }
    const std::size_t told = countOf("records", fault);
    if (!fault.empty()) return fault;
    recordsTold_[tool::folded(entry.name)] = told;
    StoredRows& rows = records_[tool::folded(entry.name)];
    rows.columns = entry.domains.size() + ztb::contentColumns(entry.type).size();
    types_[tool::folded(entry.name)] = entry.type;
    entries_.push_back(std::move(entry));
    return {};
  }

  std::string takeRecord() {
    std::string fault;
    const std::string name = tool::folded(textOf("of", fault));
    const auto found = records_.find(name);
    if (!fault.empty()) return fault;
    if (found == records_.end()) {
      return fmt::format("of: no line before tells of a symbol {}", tool::inQuotes(name));
    }
    StoredRows& rows = found->second;
    static const std::vector<std::string> none;
    const JsonValue* keys = object_.find("keys");
    if (keys != nullptr && keys->kind != JsonValue::Kind::list) {
      return "keys: is no array of texts";
    }
    const std::vector<std::string>& labels = keys == nullptr ? none : keys->items;
    const std::vector<std::string> contents = ztb::contentColumns(types_[name]);
    if (labels.size() + contents.size() != rows.columns) {
      return fmt::format("keys: has {}, expected {}", tool::counted(labels.size(), "label"),
                         rows.columns - contents.size());
    }
    const std::size_t before = rows.fields.size();
    for (const std::string& label : labels) {
      if (!addText(rows, label)) fault = "keys: a backslash stands before no escape";
    }
    for (const std::string& content : contents) {
      const JsonValue* value = object_.find(content);
      if (value == nullptr || value->kind == JsonValue::Kind::null) {
        rows.fields.push_back(
            {.begin = 0, .size = 0, .number = 0, .isNumber = false, .missing = true});
      } else if (value->kind == JsonValue::Kind::number) {
        rows.fields.push_back({.begin = 0, .size = 0, .number = value->number, .isNumber = true});
      } else if (const char* nested = nestingFault(*value)) {
        fault = fmt::format("{}: {}", content, nested);
      } else if (!addText(rows, value->text)) {
        fault = fmt::format("{}: a backslash stands before no escape", content);
      }
    }
    if (fault.empty()) {
      rows.lines.push_back(lines_.number());
    } else {
      rows.fields.resize(before);
    }
    return fault;
  }

  // Each text is followed by a zero char.
  bool addText(StoredRows& rows, std::string_view text) {
    const std::optional<std::string> plain = unspelled(text);
    rows.fields.push_back({.begin = heap_.size(), .size = plain ? plain->size() : 0});
    heap_ += plain.value_or("");
    heap_ += '\0';
    return plain.has_value();
  }

  std::string path_;
  TextLines lines_;
  JsonObject object_;
  std::string heap_ = std::string(1, '\0');
  StoredRows labels_;
  std::vector<ManifestEntry> entries_;
  std::map<std::string, StoredRows> records_;
  std::map<std::string, ztb::Type> types_;
  // What the lines of the catalogue tell of those that follow.
  std::optional<std::size_t> countsLine_;
  std::size_t symbolsTold_ = 0;
  std::size_t labelsTold_ = 0;
  std::map<std::string, std::size_t> recordsTold_;
};

}  // namespace

std::unique_ptr<DatabaseReader> openJsonDatabase(const std::string& path) {
  return std::make_unique<JsonDatabase>(path);
}

}  // namespace formats

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unordered_map>

#include "formats/json/json_lines.h"
#include "formats/json/json_object.h"
#include "formats/json/text_lines.h"
#include "tools/files/standard_streams.h"
#include "tools/files/system_files.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Whether a file can be read a second time from its front.
bool canBeReadAgain(const std::string& path) {
  std::error_code error;
  return path != "-" && std::filesystem::is_regular_file(tool::pathOf(path), error);
}

class JsonTable : public TableReader {
 public:
  explicit JsonTable(const TableSource& source)
      : TableReader(tool::inputName(source.path)),
        file_(source.path),
        used_(source.used),
        lines_(source.path) {}

  bool next(ProblemList& problems) override {
    if (names_.empty()) return readHeader(problems);
    for (;;) {
      if (pending_) {
        pending_ = false;
      } else if (!readObject(problems)) {
        return false;
      }
      if (takeRow(problems)) return true;
    }
  }
  [[nodiscard]] TextPosition position() const override { return {.line = number_, .column = 0}; }

 private:
  struct HeldLine {
    std::string text;
    std::size_t number = 0;
  };

  // Reads up to the next line that is an object.
  bool readObject(ProblemList& problems) {
    for (;;) {
      std::string fault;
      if (!held_.empty()) {
        number_ = held_.front().number;
        fault = parseJsonObject(held_.front().text, object_);
        held_.pop_front();
      } else if (lines_.next()) {
        number_ = lines_.number();
        fault = parseJsonObject(lines_.line(), object_);
      } else {
        return false;
      }
      if (fault.empty()) return true;
      problems.add(place(position()), fault);
    }
  }

  bool readHeader(ProblemList& problems) {
    if (!readObject(problems)) return false;
    addColumns(object_);
    if (!hasUsedColumns()) findColumns();
    fields_.clear();
    for (const std::string& name : names_) {
      fields_.push_back({.text = name, .quoted = true, .at = position()});
    }
    pending_ = true;
    return !names_.empty();
  }

  void addColumns(const JsonObject& object) {
    for (const std::string& name : object.names) {
      if (places_.try_emplace(name, names_.size()).second) names_.push_back(name);
    }
  }

  // Whether the columns that are known so far are those that are used.
  [[nodiscard]] bool hasUsedColumns() const {
    return !used_.all && std::ranges::all_of(used_.names, [&](const auto& choices) {
      return std::ranges::any_of(choices, [&](const std::string& choice) {
        return places_.contains(choice) ||
               std::ranges::any_of(
                   names_, [&](const std::string& name) { return tool::sameFolded(name, choice); });
      });
    });
  }

  // Takes the keys of all lines as columns. What is wrong with a line is told when its row is read;
  // of what cannot be read again, like a pipe, the lines are held meanwhile.
  void findColumns() {
    foundAll_ = true;
    JsonObject object;
    if (canBeReadAgain(file_)) {
      TextLines lines(file_);
      while (lines.next()) {
        if (parseJsonObject(lines.line(), object).empty()) addColumns(object);
      }
      return;
    }
    while (lines_.next()) {
      held_.push_back({.text = std::string(lines_.line()), .number = lines_.number()});
      if (parseJsonObject(lines_.line(), object).empty()) addColumns(object);
    }
  }

  // The place of a key, which is mostly where it stands.
  [[nodiscard]] std::optional<std::size_t> placeOf(const std::string& name,
                                                   std::size_t member) const {
    if (member < names_.size() && names_[member] == name) return member;
    const auto found = places_.find(name);
    return found == places_.end() ? std::nullopt : std::optional(found->second);
  }

  // Keys that are no columns are not used.
  bool takeRow(ProblemList& problems) {
    fields_.assign(names_.size(), {.text = "", .at = position()});
    for (std::size_t member = 0; member < object_.names.size(); ++member) {
      const std::optional<std::size_t> found = placeOf(object_.names[member], member);
      if (!found) {
        if (!foundAll_) continue;
        problems.add(place(position()), fmt::format("the key {} was not there a moment ago",
                                                    tool::inQuotes(object_.names[member])));
        return false;
      }
      TableField& field = fields_[*found];
      const JsonValue& value = object_.values[member];
      field.text = value.text;
      field.quoted = value.kind == JsonValue::Kind::text;
      field.isNumber = value.kind == JsonValue::Kind::number;
      field.number = value.number;
      if (value.rounded) field.rounded = value.text;
      field.fault = nestingFault(value);
    }
    return true;
  }

  std::string file_;
  UsedColumns used_;
  TextLines lines_;
  std::deque<HeldLine> held_;
  std::size_t number_ = 0;
  JsonObject object_;
  bool pending_ = false;
  bool foundAll_ = false;
  std::vector<std::string> names_;
  std::unordered_map<std::string, std::size_t> places_;
};

}  // namespace

std::unique_ptr<TableReader> openJsonLines(const TableSource& source) {
  return std::make_unique<JsonTable>(source);
}

}  // namespace formats

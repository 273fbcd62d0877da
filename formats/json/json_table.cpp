#include <fmt/format.h>

#include <optional>
#include <unordered_map>

#include "formats/json/json_lines.h"
#include "formats/json/json_object.h"
#include "formats/json/text_lines.h"
#include "tools/files/standard_streams.h"
#include "tools/text/words.h"

namespace formats {

namespace {

class JsonTable : public TableReader {
 public:
  explicit JsonTable(const std::string& path) : TableReader(tool::inputName(path)), lines_(path) {}

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
  [[nodiscard]] TextPosition position() const override {
    return {.line = lines_.number(), .column = 0};
  }

 private:
  // Reads up to the next line that is an object.
  bool readObject(ProblemList& problems) {
    while (lines_.next()) {
      const std::string fault = parseJsonObject(lines_.line(), object_);
      if (fault.empty()) return true;
      problems.add(place(position()), fault);
    }
    return false;
  }

  bool readHeader(ProblemList& problems) {
    if (!readObject(problems)) return false;
    names_ = object_.names;
    for (std::size_t place = 0; place < names_.size(); ++place) places_[names_[place]] = place;
    fields_.clear();
    for (const std::string& name : names_) {
      fields_.push_back({.text = name, .quoted = true, .at = position()});
    }
    pending_ = true;
    return !names_.empty();
  }

  // The place of a key, which is mostly where it stands.
  [[nodiscard]] std::optional<std::size_t> placeOf(const std::string& name,
                                                   std::size_t member) const {
    if (member < names_.size() && names_[member] == name) return member;
    const auto found = places_.find(name);
    return found == places_.end() ? std::nullopt : std::optional(found->second);
  }

  bool takeRow(ProblemList& problems) {
    fields_.assign(names_.size(), {.text = "", .at = position()});
    for (std::size_t member = 0; member < object_.names.size(); ++member) {
      const std::optional<std::size_t> found = placeOf(object_.names[member], member);
      if (!found) {
        problems.add(place(position()), fmt::format("the first line has no key {}",
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

  TextLines lines_;
  JsonObject object_;
  bool pending_ = false;
  std::vector<std::string> names_;
  std::unordered_map<std::string, std::size_t> places_;
};

}  // namespace

std::unique_ptr<TableReader> openJsonLines(const TableSource& source) {
  return std::make_unique<JsonTable>(source.path);
}

}  // namespace formats

#include "formats/shaped_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <deque>

#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

namespace {

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

bool contains(const std::vector<std::string>& names, std::string_view name) {
  return std::ranges::any_of(
      names, [&](const std::string& other) { return tool::sameFolded(other, name); });
}

class ShapedReader : public TableReader {
 public:
  ShapedReader(std::unique_ptr<TableReader> reader, TableShape shape)
      : TableReader(reader->path()), reader_(std::move(reader)), shape_(std::move(shape)) {}

  bool next(ProblemList& problems) override {
    if (!headerRead_) {
      headerRead_ = true;
      return readHeader(problems);
    }
    if (shape_.wide.empty()) {
      if (!reader_->next(problems)) return false;
      take(reader_->fields());
    } else if (!nextSpread(problems)) {
      return false;
    }
    changeUnits();
    return true;
  }

  [[nodiscard]] TextPosition position() const override { return reader_->position(); }
  [[nodiscard]] std::string place(TextPosition at) const override { return reader_->place(at); }
  [[nodiscard]] std::string shortPlace(TextPosition at) const override {
    return reader_->shortPlace(at);
  }

 private:
  bool readHeader(ProblemList& problems) {
    if (!reader_->next(problems)) return false;
    for (const TableField& field : reader_->fields()) {
      names_.push_back(renamed(field.text));
      titles_.push_back({.text = {}, .quoted = true, .at = field.at});
    }
    for (const auto& [old, name] : shape_.renames) {
      if (!contains(renamed_, old)) {
        problems.add(reader_->place(reader_->position()),
                     fmt::format("no column {} to rename", tool::inQuotes(old)));
      }
    }
    for (const std::string& name : shape_.spread) {
      if (!contains(names_, name)) {
        problems.add(reader_->place(reader_->position()),
                     fmt::format("no column {} to spread", tool::inQuotes(name)));
      }
    }
    for (std::size_t column = 0; column < names_.size(); ++column) {
      titles_[column].text = names_[column];
      const bool spreads =
          !shape_.wide.empty() && (shape_.spread.empty() ? !contains(shape_.kept, names_[column])
                                                         : contains(shape_.spread, names_[column]));
      (spreads ? spread_ : kept_).push_back(column);
    }
    fields_.clear();
    for (const std::size_t column : kept_) fields_.push_back(titles_[column]);
    if (!shape_.wide.empty()) {
      const TextPosition at = reader_->position();
      fields_.push_back({.text = shape_.wide, .quoted = true, .at = at});
      fields_.push_back({.text = spreadValues, .quoted = true, .at = at});
    }
    nextSpread_ = spread_.size();
    for (const UnitChange& change : shape_.units) {
      const auto found = std::ranges::find_if(fields_, [&](const TableField& field) {
        return tool::sameFolded(field.text, change.column);
      });
      if (found == fields_.end()) {
        problems.add(reader_->place(reader_->position()),
                     fmt::format("no column {} of another unit", tool::inQuotes(change.column)));
      } else {
        changes_.emplace_back(static_cast<std::size_t>(found - fields_.begin()), &change);
      }
    }
    return true;
  }

  // Words for special values and what is no number stay as they are.
  void changeUnits() {
    for (const auto& [column, change] : changes_) {
      if (column >= fields_.size()) continue;
      TableField& field = fields_[column];
      std::string fault;
      const double number =
          field.isNumber ? field.number : tool::parseNumber(field.text, fault, shape_.decimal);
      if (field.fault != nullptr || !fault.empty() || tool::isSpecial(number)) continue;
      const double changed = number * change->factor / change->divisor;
      if (tool::isSpecial(changed) || !std::isfinite(changed) || (changed == 0) != (number == 0)) {
        field.fault = "is too large or too small in the other unit";
        continue;
      }
      field.text = {};
      field.isNumber = true;
      field.number = changed;
    }
  }

  std::string renamed(std::string_view title) {
    for (const auto& [old, name] : shape_.renames) {
      if (tool::sameFolded(old, title)) {
        renamed_.push_back(old);
        return name;
      }
    }
    return std::string(title);
  }

  // Takes a row over, with dates in their ISO form.
  void take(const std::vector<TableField>& fields) {
    fields_ = fields;
    dates_.clear();
    if (!shape_.dates) return;
    for (TableField& field : fields_) makeIso(field);
  }

  void makeIso(TableField& field) {
    if (field.isNumber) return;
    if (std::optional<std::string> date = isoDate(field.text, *shape_.dates)) {
      field.text = dates_.emplace_back(*std::move(date));
    }
  }

  bool nextSpread(ProblemList& problems) {
    for (;;) {
      const std::vector<TableField>& row = reader_->fields();
      while (nextSpread_ < spread_.size()) {
        const std::size_t column = spread_[nextSpread_++];
        if (row.size() != names_.size()) {
          nextSpread_ = spread_.size();
          problems.add(reader_->place(reader_->position()),
                       fmt::format("has {}, the header has {}", tool::counted(row.size(), "field"),
                                   names_.size()));
          break;
        }
        const TableField& cell = row[column];
        if (cell.text.empty() && !cell.isNumber && cell.fault == nullptr) continue;
        dates_.clear();
        fields_.clear();
        for (const std::size_t kept : kept_) fields_.push_back(row[kept]);
        fields_.push_back({.text = names_[column], .quoted = true, .at = row[column].at});
        if (shape_.dates) {
          for (TableField& field : fields_) makeIso(field);
        }
        fields_.push_back(row[column]);
        return true;
      }
      if (!reader_->next(problems)) return false;
      nextSpread_ = 0;
    }
  }

  std::unique_ptr<TableReader> reader_;
  TableShape shape_;
  bool headerRead_ = false;
  std::vector<std::string> names_;
  std::vector<TableField> titles_;
  std::vector<std::string> renamed_;
  std::vector<std::size_t> kept_;
  std::vector<std::size_t> spread_;
  std::size_t nextSpread_ = 0;
  std::vector<std::pair<std::size_t, const UnitChange*>> changes_;
  std::deque<std::string> dates_;
};

}  // namespace

void parseWide(const std::string& argument, TableShape& shape) {
  const std::size_t colon = argument.find(':');
  shape.wide = trimmed(std::string_view(argument).substr(0, colon));
  if (colon != std::string::npos) {
    for (const std::string& name :
         tool::splitAtCommas(std::string_view(argument).substr(colon + 1))) {
      shape.spread.push_back(trimmed(name));
    }
  }
  if (shape.wide.empty() || contains(shape.spread, "")) {
    throw tool::UsageError(fmt::format("--wide {}: expected NAME, or NAME: COLUMN, ...", argument));
  }
}

void parseRename(const std::string& argument, TableShape& shape) {
  const std::size_t equals = argument.find('=');
  std::string old = trimmed(std::string_view(argument).substr(0, equals));
  std::string name =
      equals == std::string::npos ? "" : trimmed(std::string_view(argument).substr(equals + 1));
  // Without an old name it is the column without a title.
  if (name.empty()) {
    throw tool::UsageError(fmt::format("--rename {}: expected OLD=NEW", argument));
  }
  shape.renames.emplace_back(std::move(old), std::move(name));
}

void parseUnits(const std::string& argument, TableShape& shape) {
  const auto refuse = [&] {
    throw tool::UsageError(fmt::format(
        "--units {}: expected COLUMN = NUMBER or COLUMN = NUMBER/NUMBER, none of them 0",
        argument));
  };
  const auto number = [&](std::string_view text) {
    std::string fault;
    const double value = tool::parseNumber(trimmed(text), fault);
    if (!fault.empty() || value == 0 || tool::isSpecial(value) || !std::isfinite(value)) refuse();
    return value;
  };
  const std::size_t equals = argument.rfind('=');
  if (equals == std::string::npos) refuse();
  UnitChange change{.column = trimmed(std::string_view(argument).substr(0, equals))};
  if (change.column.empty()) refuse();
  const std::string_view numbers = std::string_view(argument).substr(equals + 1);
  const std::size_t slash = numbers.find('/');
  change.factor = number(numbers.substr(0, slash));
  if (slash != std::string_view::npos) change.divisor = number(numbers.substr(slash + 1));
  shape.units.push_back(std::move(change));
}

void parseDates(const std::string& argument, TableShape& shape) {
  if (argument == "dmy") {
    shape.dates = DateOrder::dayFirst;
  } else if (argument == "mdy") {
    shape.dates = DateOrder::monthFirst;
  } else if (argument == "ymd") {
    shape.dates = DateOrder::yearFirst;
  } else {
    throw tool::UsageError(fmt::format("--dates {}: expected dmy, mdy or ymd", argument));
  }
}

std::optional<std::string> isoDate(std::string_view text, DateOrder order) {
  constexpr std::size_t longest = 10;
  if (text.size() > longest) return std::nullopt;
  std::array<int, 3> numbers{};
  std::array<std::size_t, 3> digits{};
  const char* at = text.data();
  const char* const end = text.data() + text.size();
  char parting = 0;
  for (std::size_t part = 0; part < numbers.size(); ++part) {
    if (part > 0) {
      if (at == end || (*at != '.' && *at != '/' && *at != '-') || (part == 2 && *at != parting)) {
        return std::nullopt;
      }
      parting = *at++;
    }
    if (at == end || *at < '0' || *at > '9') return std::nullopt;
    const auto result = std::from_chars(at, end, numbers[part]);
    digits[part] = static_cast<std::size_t>(result.ptr - at);
    at = result.ptr;
  }
  if (at != end) return std::nullopt;
  const std::size_t yearPart = order == DateOrder::yearFirst ? 0 : 2;
  const std::size_t monthPart = order == DateOrder::monthFirst ? 0 : 1;
  const std::size_t dayPart = 3 - yearPart - monthPart;
  const int year = numbers[yearPart];
  const int month = numbers[monthPart];
  const int day = numbers[dayPart];
  constexpr std::array<int, 12> lengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (digits[yearPart] != 4 || digits[monthPart] > 2 || digits[dayPart] > 2 || month < 1 ||
      month > 12) {
    return std::nullopt;
  }
  const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  const int length = lengths[static_cast<std::size_t>(month) - 1] + (month == 2 && leap ? 1 : 0);
  if (day < 1 || day > length) return std::nullopt;
  return fmt::format("{:04}-{:02}-{:02}", year, month, day);
}

std::unique_ptr<TableReader> shaped(std::unique_ptr<TableReader> reader, const TableShape& shape) {
  if (shape.plain()) return reader;
  return std::make_unique<ShapedReader>(std::move(reader), shape);
}

}  // namespace formats

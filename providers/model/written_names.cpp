#include "providers/model/written_names.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "providers/model/file_signs.h"
#include "providers/model/format_writers.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/text_source.h"

namespace lomu {

namespace {

constexpr std::string_view kMark = " ztb: ";
constexpr std::string_view kWas = " was ";

bool holds(const std::string& name, bool isLp) {
  return isLp ? isLpName(name) : isMpsName(name);
}
// In MPS a number in the place of a set's name may be its priority.
bool holdsOf(const OrderedSet& set, bool isLp) {
  constexpr std::string_view kOfNumbers = "0123456789+-.";
  return holds(set.name, isLp) &&
         (isLp || kOfNumbers.find(set.name.front()) == std::string_view::npos);
}
template <class Item>
bool holdsOf(const Item& item, bool isLp) {
  return holds(item.name, isLp);
}

std::string replaced(std::string name, std::string_view signs) {
  for (char& c : name) {
    if (isControl(c) || signs.find(c) != std::string_view::npos) c = '_';
  }
  return name;
}

// A name that the format holds, as much like this one as can be.
std::string alike(const std::string& name, bool isLp) {
  const std::string cut = name.substr(0, kMaxFileName - 1);
  const std::string plain = replaced(cut, isLp ? " +-*^<>=:\\" : " ");
  for (const std::string& tried :
       {plain, "_" + plain, "_" + replaced(plain, "[]()"), "_" + replaced(plain, "[]()'")}) {
    if (holds(tried, isLp)) return tried;
  }
  return "_";
}

std::string distinct(const std::string& name, const std::unordered_set<std::string>& taken,
                     bool isLp) {
  std::string found = name;
  for (std::size_t number = 2; taken.contains(found) || !holds(found, isLp); ++number) {
    const std::string ending = "_" + std::to_string(number);
    const std::string begin = replaced(name.substr(0, kMaxFileName - ending.size()), "[]()'");
    found = begin + ending;
  }
  return found;
}

class Changes {
 public:
  explicit Changes(bool isLp) : isLp_(isLp) {}

  template <class Items>
  void add(std::string_view kind, Items& items, std::unordered_set<std::string>& taken) {
    for (auto& item : items) {
      if (holdsOf(item, isLp_)) continue;
      const std::string own = std::exchange(item.name, {});
      item.name = alike(own, isLp_);
      if (!holdsOf(item, isLp_)) item.name = "_" + item.name;
      item.name = distinct(item.name, taken, isLp_);
      taken.insert(item.name);
      ++count_;
      if (first_.empty()) first_ = shown(own) + " as " + shown(item.name);
      // A line end would end the comment.
      if (std::any_of(own.begin(), own.end(), isControl)) continue;
      lines_.append(isLp_ ? "\\" : "*").append(kMark).append(kind).append(" ");
      lines_.append(item.name).append(kWas).append(own).append("\n");
    }
  }

  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] std::string comments() const { return lines_; }
  [[nodiscard]] std::string note() const {
    return std::to_string(count_) + (count_ == 1 ? " name" : " names") + " cannot stand in " +
           (isLp_ ? "an LP" : "an MPS") + " file and " + (count_ == 1 ? "was" : "were") +
           " changed: " + first_ + (count_ == 1 ? "" : " first") +
           "; comments at its beginning tell " + (count_ == 1 ? "it" : "all");
  }

 private:
  bool isLp_;
  std::size_t count_ = 0;
  std::string lines_;
  std::string first_;
};

template <class Items>
bool allHeld(const Items& items, bool isLp) {
  return std::all_of(items.begin(), items.end(),
                     [&](const auto& item) { return holdsOf(item, isLp); });
}

template <class Items>
void addNames(const Items& items, std::unordered_set<std::string>& names) {
  for (const auto& item : items) names.insert(item.name);
}

// The lines of comments of ours that a file begins with.
std::vector<std::string> commentsOf(const std::string& file) {
  TextSource source(file);
  std::vector<std::string> lines;
  std::string text;
  constexpr std::size_t kPiece = 1 << 12;
  for (;;) {
    std::size_t end = text.find('\n');
    while (end != std::string::npos) {
      const std::string line = text.substr(0, end);
      text.erase(0, end + 1);
      if (line.empty() || std::string_view(line).substr(1, kMark.size()) != kMark) return lines;
      lines.push_back(line.substr(1 + kMark.size()));
      end = text.find('\n');
    }
    // No line of ours is as long.
    if (text.size() > kPiece) return lines;
    std::string piece(kPiece, '\0');
    piece.resize(source.read(piece.data(), piece.size()));
    if (piece.empty()) return lines;
    text += piece;
  }
}

using Names = std::map<std::string, std::string, std::less<>>;

template <class Items>
void restore(const Names& own, Items& items) {
  std::unordered_set<std::string> names;
  const auto nameOf = [&](const std::string& written) {
    const auto found = own.find(written);
    return found == own.end() ? written : found->second;
  };
  for (const auto& item : items) {
    if (!names.insert(nameOf(item.name)).second) return;
  }
  for (auto& item : items) item.name = nameOf(item.name);
}

}  // namespace

std::optional<WrittenNames> writtenNames(const ModelData& model, bool isLp) {
  if (allHeld(model.columns, isLp) && allHeld(model.rows, isLp) && allHeld(model.sets, isLp)) {
    return std::nullopt;
  }
  WrittenNames written{model, {}, {}};
  Changes changes(isLp);
  std::unordered_set<std::string> columns;
  std::unordered_set<std::string> labels;
  addNames(model.columns, columns);
  addNames(model.rows, labels);
  addNames(model.sets, labels);
  changes.add("column", written.model.columns, columns);
  changes.add("row", written.model.rows, labels);
  changes.add("set", written.model.sets, labels);
  written.comments = changes.comments();
  written.note = changes.note();
  return written;
}

void restoreNames(const std::string& file, ModelData& model) {
  Names columns;
  Names rows;
  Names sets;
  for (const std::string& line : commentsOf(file)) {
    const std::size_t kind = line.find(' ');
    const std::size_t was = line.find(kWas, kind);
    if (was == std::string::npos) continue;
    const std::string written = line.substr(kind + 1, was - kind - 1);
    const std::string own = line.substr(was + kWas.size());
    if (own.size() > kMaxFileName || std::any_of(own.begin(), own.end(), isControl)) continue;
    Names& names = line.starts_with("column ") ? columns : line.starts_with("row ") ? rows : sets;
    names[written] = own;
  }
  if (!columns.empty()) restore(columns, model.columns);
  if (!rows.empty()) restore(rows, model.rows);
  if (!sets.empty()) restore(sets, model.sets);
}

}  // namespace lomu

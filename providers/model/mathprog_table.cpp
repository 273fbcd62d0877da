#include "providers/model/mathprog_table.h"

#include <algorithm>
#include <cstddef>

namespace lomu {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// Where what begins at `at` ends, if it is a comment; else `at`.
std::size_t behindComment(std::string_view text, std::size_t at) {
  if (text[at] == '#') return std::min(text.find('\n', at), text.size());
  if (text.substr(at, 2) != "/*") return at;
  const std::size_t end = text.find("*/", at + 2);
  return end == std::string_view::npos ? text.size() : end + 2;
}

// Where a label in quotes ends, in which a quote is doubled.
std::size_t behindQuotes(std::string_view text, std::size_t at) {
  const char quote = text[at];
  for (std::size_t end = text.find(quote, at + 1); end != std::string_view::npos;
       end = text.find(quote, end + 2)) {
    if (end + 1 >= text.size() || text[end + 1] != quote) return end + 1;
  }
  return text.size();
}

// Labels, numbers, names and signs of a statement; commas, which stand where one likes, are left
// out.
std::vector<std::string_view> entriesOf(std::string_view text) {
  constexpr std::string_view signs = ":;()[]'\"#,";
  std::vector<std::string_view> entries;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t first = at;
    at = behindComment(text, at);
    if (at != first) continue;
    const char c = text[at++];
    if (c == ',' || kBlanks.find(c) != std::string_view::npos) continue;
    if (c == '\'' || c == '"') {
      at = behindQuotes(text, first);
    } else if (c == ':') {
      at += text.substr(first, 2) == ":=" ? 1 : 0;
    } else if (signs.find(c) == std::string_view::npos) {
      while (at < text.size() && signs.find(text[at]) == std::string_view::npos &&
             kBlanks.find(text[at]) == std::string_view::npos) {
        ++at;
      }
    }
    entries.push_back(text.substr(first, at - first));
  }
  return entries;
}

bool isSign(std::string_view entry) {
  return entry.size() == 1 && std::string_view(":()[]").find(entry[0]) != std::string_view::npos;
}

}  // namespace

std::optional<MathProgTable> MathProgTable::of(std::string_view statement) {
  const std::vector<std::string_view> entries = entriesOf(statement);
  std::size_t at = 1;
  if (entries.empty() || entries[0] != "param") return std::nullopt;
  if (entries.size() > 3 && entries[1] == "default") at = 3;
  if (at >= entries.size() || entries[at] != ":") return std::nullopt;
  MathProgTable table;
  table.statement_ = statement;
  for (++at; at < entries.size() && entries[at] != ":="; ++at) {
    if (entries[at] == ":" && table.names_.size() == 1 && !table.hasSet_) {
      table.hasSet_ = true;
      table.colon_ = entries[at];
    } else if (isSign(entries[at]) || entries[at] == ";") {
      return std::nullopt;
    } else {
      table.names_.push_back(entries[at]);
    }
  }
  for (++at; at < entries.size() && entries[at] != ";"; ++at) {
    if (isSign(entries[at]) || entries[at] == ":=") return std::nullopt;
    table.entries_.push_back(entries[at]);
  }
  return table;
}

std::optional<std::string> MathProgTable::without(
    const std::function<bool(std::string_view)>& isDropped, int labels) const {
  const std::size_t parameters = names_.size() - (hasSet_ ? 1 : 0);
  const std::size_t width = static_cast<std::size_t>(labels) + parameters;
  if (labels < 1 || entries_.size() % width != 0) return std::nullopt;
  std::string text(statement_);
  const auto blank = [&](std::string_view entry) {
    const auto place = static_cast<std::size_t>(entry.data() - statement_.data());
    text.replace(place, entry.size(), entry.size(), ' ');
  };
  const bool keepsSet = hasSet_ && !isDropped(names_[0]);
  const auto firstParameter = names_.begin() + (hasSet_ ? 1 : 0);
  if (std::all_of(firstParameter, names_.end(), isDropped)) {
    // Nothing but the set is left, or nothing at all.
    std::string lines(static_cast<std::size_t>(std::ranges::count(text, '\n')), '\n');
    if (!keepsSet) return lines;
    std::string set = "set " + std::string(names_[0]) + " :=";
    for (std::size_t first = 0; first < entries_.size(); first += width) {
      for (std::size_t k = 0; k < static_cast<std::size_t>(labels); ++k) {
        set += k > 0 ? ", " : labels > 1 ? " (" : " ";
        set += entries_[first + k];
      }
      if (labels > 1) set += ")";
    }
    return set + ";" + lines;
  }
  if (hasSet_ && !keepsSet) {
    blank(names_[0]);
    blank(colon_);
  }
  std::vector<bool> drops(static_cast<std::size_t>(labels), false);
  for (auto name = firstParameter; name != names_.end(); ++name) {
    drops.push_back(isDropped(*name));
    if (drops.back()) blank(*name);
  }
  for (std::size_t k = 0; k < entries_.size(); ++k) {
    if (drops[k % width]) blank(entries_[k]);
  }
  // Commas that stood beside what is gone.
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (const std::size_t behind = behindComment(text, at); behind != at) {
      at = behind - 1;
    } else if (text[at] == '\'' || text[at] == '"') {
      at = behindQuotes(text, at) - 1;
    } else if (text[at] == ',') {
      text[at] = ' ';
    }
  }
  return text;
}

}  // namespace lomu

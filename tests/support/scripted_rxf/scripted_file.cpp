#include "tests/support/scripted_rxf/scripted_file.h"

#include <algorithm>
#include <charconv>

namespace scripted {
namespace {

char folded(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(const std::string& left, const std::string& right) {
  return std::ranges::equal(left, right, [](char a, char b) { return folded(a) == folded(b); });
}

std::string spelled(const std::string& text) {
  return quoted(text);
}

template <typename Number>
std::string spelled(Number number) {
  char text[64];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, number);
  return {text, end.ptr};
}

template <typename T>
std::string enclosed(char open, const std::vector<T>& items, char close) {
  std::string result(1, open);
  for (const T& item : items) {
    if (result.size() > 1) result += ' ';
    result += spelled(item);
  }
  return result + close;
}

}  // namespace

int File::find(const std::string& name) const {
  if (name == "*") return 0;
  const auto found = std::ranges::find_if(
      symbols, [&](const Symbol& symbol) { return sameName(symbol.name, name); });
  return found == symbols.end() ? -1 : static_cast<int>(found - symbols.begin()) + 1;
}

std::string File::dump() const {
  std::string result;
  for (const std::string& text : texts) result += "text " + quoted(text) + '\n';
  for (const std::string& label : labels) result += "label " + quoted(label) + '\n';
  int number = 0;
  for (const Symbol& symbol : symbols) {
    result += "symbol " + spelled(++number) + ' ' + quoted(symbol.name) + ' ' +
              spelled(symbol.dim) + ' ' + spelled(symbol.type) + ' ' + spelled(symbol.userInfo) +
              ' ' + quoted(symbol.text) + '\n';
    if (!symbol.domain.empty()) {
      result += (symbol.relaxed ? "relaxed " : "domain ") + parenthesised(symbol.domain) + '\n';
    }
    for (const Record& record : symbol.records) {
      result += "record " + bracketed(record.keys) + ' ' + bracketed(record.values) + '\n';
    }
  }
  return result;
}

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

std::string bracketed(const std::vector<int>& keys) {
  return enclosed('[', keys, ']');
}

std::string bracketed(const std::vector<double>& values) {
  return enclosed('[', values, ']');
}

std::string parenthesised(const std::vector<std::string>& names) {
  return enclosed('(', names, ')');
}

}  // namespace scripted

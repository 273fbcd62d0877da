#include "providers/model/element_name.h"

#include <optional>

namespace lomu {

namespace {

constexpr std::size_t kMaxDimension = 20;

class LabelReader {
 public:
  // `text` is what stands between the outer brackets.
  explicit LabelReader(std::string_view text) : text_(text) {}

  std::optional<std::vector<std::string>> read() {
    std::vector<std::string> labels;
    do {
      std::optional<std::string> label = readLabel();
      if (!label || label->empty() || labels.size() == kMaxDimension) return std::nullopt;
      labels.push_back(std::move(*label));
    } while (takeComma());
    if (position_ != text_.size()) return std::nullopt;
    return labels;
  }

 private:
  [[nodiscard]] bool more() const { return position_ < text_.size(); }
  [[nodiscard]] char next() const { return text_[position_]; }

  void skipBlanks() {
    while (more() && next() == ' ') ++position_;
  }

  bool takeComma() {
    if (!more() || next() != ',') return false;
    ++position_;
    return true;
  }

  std::optional<std::string> readLabel() {
    skipBlanks();
    if (more() && (next() == '\'' || next() == '"')) return readQuoted();
    return readPlain();
  }

  std::optional<std::string> readQuoted() {
    const char quote = text_[position_++];
    std::string label;
    while (more()) {
      const char c = text_[position_++];
      if (c != quote) {
        label += c;
      } else if (more() && next() == quote) {
        label += quote;
        ++position_;
      } else {
        skipBlanks();
        return label;
      }
    }
    return std::nullopt;
  }

  std::optional<std::string> readPlain() {
    std::string label;
    int depth = 0;
    for (; more() && (depth > 0 || next() != ','); ++position_) {
      const char c = next();
      if (c == '[' || c == '(') ++depth;
      if ((c == ']' || c == ')') && --depth < 0) return std::nullopt;
      label += c;
    }
    if (depth != 0) return std::nullopt;
    while (!label.empty() && label.back() == ' ') label.pop_back();
    return label;
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

ElementName parseElementName(std::string_view name) {
  ElementName plain{std::string(name), {}};
  const std::size_t open = name.find_first_of("[(");
  if (open == std::string_view::npos || open == 0) return plain;
  if (name.back() != (name[open] == '[' ? ']' : ')')) return plain;
  auto labels = LabelReader(name.substr(open + 1, name.size() - open - 2)).read();
  if (!labels) return plain;
  return {std::string(name.substr(0, open)), std::move(*labels)};
}

}  // namespace lomu

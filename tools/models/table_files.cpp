#include "tools/models/table_files.h"

#include <cstddef>

namespace tool {

namespace {

bool isWordChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Steps through the words, texts in quotes and single signs of a model; comments are left out.
class Tokens {
 public:
  explicit Tokens(std::string_view model) : rest_(model) {}

  // False at the end. A text in quotes comes without them and with each doubled one as one.
  bool next() {
    skipComments();
    if (rest_.empty()) return false;
    const char first = rest_.front();
    quoted_ = first == '\'' || first == '"';
    text_.clear();
    if (quoted_) {
      takeQuoted(first);
      return true;
    }
    std::size_t length = 1;
    while (isWordChar(first) && length < rest_.size() && isWordChar(rest_[length])) ++length;
    text_ = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return true;
  }

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] bool quoted() const { return quoted_; }
  [[nodiscard]] bool is(std::string_view word) const { return !quoted_ && text_ == word; }

 private:
  void skipComments() {
    while (!rest_.empty()) {
      if (rest_.front() == '#') {
        drop(rest_.find('\n'), 1);
      } else if (rest_.starts_with("/*")) {
        drop(rest_.find("*/", 2), 2);
      } else if (static_cast<unsigned char>(rest_.front()) <= ' ') {
        rest_.remove_prefix(1);
      } else {
        return;
      }
    }
  }

  void drop(std::size_t end, std::size_t length) {
    rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end + length);
  }

  void takeQuoted(char quote) {
    rest_.remove_prefix(1);
    while (!rest_.empty()) {
      const char c = rest_.front();
      rest_.remove_prefix(1);
      if (c == quote) {
        if (rest_.empty() || rest_.front() != quote) return;
        rest_.remove_prefix(1);
      }
      text_ += c;
    }
  }

  std::string_view rest_;
  std::string text_;
  bool quoted_ = false;
};

}  // namespace

std::vector<std::string> tableInputs(std::string_view model) {
  std::vector<std::string> inputs;
  Tokens tokens(model);
  while (tokens.next()) {
    if (!tokens.is("table")) continue;
    bool reads = false;
    while (tokens.next() && !tokens.is(":") && !tokens.is(";")) {
      reads = reads || tokens.is("IN");
      if (reads && tokens.quoted()) inputs.push_back(tokens.text());
    }
  }
  return inputs;
}

}  // namespace tool

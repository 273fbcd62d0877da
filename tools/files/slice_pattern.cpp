#include "tools/files/slice_pattern.h"

#include <fmt/format.h>

#include <cstddef>

#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

namespace {

// Matches text against pattern, in which "*" stands for any run of chars. On a mismatch the latest
// star takes one char more; no star before it needs another look.
bool matchesWildcard(std::string_view pattern, std::string_view text) {
  std::size_t inPattern = 0;
  std::size_t inText = 0;
  std::size_t star = std::string_view::npos;
  std::size_t starText = 0;
  while (inText < text.size()) {
    if (inPattern < pattern.size() && pattern[inPattern] == '*') {
      star = inPattern++;
      starText = inText;
    } else if (inPattern < pattern.size() &&
               ztb::foldedChar(pattern[inPattern]) == ztb::foldedChar(text[inText])) {
      ++inPattern;
      ++inText;
    } else if (star != std::string_view::npos) {
      inPattern = star + 1;
      inText = ++starText;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}

class SliceParser {
 public:
  explicit SliceParser(std::string_view slice) : slice_(slice) {}

  std::vector<PositionPattern> parse() {
    std::vector<PositionPattern> patterns;
    do {
      skipBlanks();
      patterns.push_back(at_ < slice_.size() && slice_[at_] == '"' ? quoted() : plain());
      if (patterns.back().text.empty() && !patterns.back().quoted) {
        fail(fmt::format("position {} is empty: write * for any label, \"\" for the empty one",
                         patterns.size()));
      }
    } while (comma());
    return patterns;
  }

 private:
  void skipBlanks() {
    while (at_ < slice_.size() && slice_[at_] == ' ') {
      ++at_;
    }
  }

  PositionPattern plain() {
    const std::size_t end = std::min(slice_.find(',', at_), slice_.size());
    std::string_view text = slice_.substr(at_, end - at_);
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    at_ = end;
    return {.text = std::string(text), .quoted = false};
  }

  PositionPattern quoted() {
    PositionPattern pattern{.text = {}, .quoted = true};
    for (++at_; at_ < slice_.size(); ++at_) {
      if (slice_[at_] == '"') {
        if (at_ + 1 == slice_.size() || slice_[at_ + 1] != '"') {
          ++at_;
          skipBlanks();
          return pattern;
        }
        ++at_;
      }
      pattern.text += slice_[at_];
    }
    fail("a quote is not closed");
  }

  bool comma() {
    if (at_ == slice_.size()) {
      return false;
    }
    if (slice_[at_] != ',') {
      fail("a comma is expected behind a closing quote");
    }
    ++at_;
    return true;
  }

  [[noreturn]] void fail(const std::string& reason) const {
    throw UsageError(fmt::format("--slice {}: {}", slice_, reason));
  }

  std::string_view slice_;
  std::size_t at_ = 0;
};

}  // namespace

bool PositionPattern::any() const {
  return !quoted && text.find_first_not_of('*') == std::string::npos;
}

bool PositionPattern::exact() const {
  return quoted || text.find('*') == std::string::npos;
}

bool PositionPattern::matches(std::string_view label) const {
  return exact() ? sameFolded(text, label) : matchesWildcard(text, label);
}

std::vector<PositionPattern> parseSlice(std::string_view slice) {
  return SliceParser(slice).parse();
}

}  // namespace tool

#include "tools/text/words.h"

#include <fmt/format.h>

#include <algorithm>
#include <ztb/display_text.hpp>

namespace tool {

namespace {

constexpr std::array<std::string_view, 5> typeWords{"set", "parameter", "variable", "equation",
                                                    "alias"};

constexpr std::array<std::string_view, 3> storeWords{"map", "vector", "trie"};

// Texts that messages quote whole, and what they quote of longer ones.
constexpr std::size_t longestWhole = 100;
constexpr std::size_t bytesOfLonger = 40;

// The beginning of a long text. It ends before a UTF-8 sequence that would not be whole.
std::string beginningOf(std::string_view text) {
  std::size_t end = bytesOfLonger;
  for (int back = 0; back < 3 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U; ++back) {
    --end;
  }
  return ztb::displayText(text.substr(0, end)) + "...";
}

}  // namespace

bool startsFolded(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && sameFolded(text.substr(0, prefix.size()), prefix);
}

std::string_view typeWord(ztb::Type type) {
  const auto index = static_cast<std::size_t>(type);
  return index < typeWords.size() ? typeWords[index] : "unknown";
}

std::optional<ztb::Type> typeOfWord(std::string_view word) {
  for (std::size_t index = 0; index < typeWords.size(); ++index) {
    if (sameFolded(word, typeWords[index])) {
      return static_cast<ztb::Type>(index);
    }
  }
  return std::nullopt;
}

std::string_view storeWord(ztb::Store store) {
  const auto index = static_cast<std::size_t>(store);
  return index < storeWords.size() ? storeWords[index] : "unknown";
}

std::optional<ztb::Store> storeOfWord(std::string_view word) {
  const auto* found = std::ranges::find_if(
      storeWords, [&](std::string_view known) { return sameFolded(known, word); });
  if (found == storeWords.end()) {
    return std::nullopt;
  }
  return static_cast<ztb::Store>(found - storeWords.begin());
}

std::string shortened(std::string_view text) {
  return text.size() <= longestWhole ? ztb::displayText(text)
                                     : fmt::format("{} ({} bytes)", beginningOf(text), text.size());
}

std::string inQuotes(std::string_view text) {
  return text.size() <= longestWhole
             ? fmt::format("'{}'", ztb::displayText(text))
             : fmt::format("'{}' ({} bytes)", beginningOf(text), text.size());
}

std::vector<std::string> splitAtCommas(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t begin = 0;;) {
    const std::size_t end = text.find(',', begin);
    words.emplace_back(text.substr(begin, end - begin));
    if (end == std::string_view::npos) return words;
    begin = end + 1;
  }
}

std::string counted(std::size_t count, std::string_view noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

}  // namespace tool

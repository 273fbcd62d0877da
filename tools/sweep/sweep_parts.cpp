#include "tools/sweep/sweep_parts.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "tools/text/failure.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

fs::path folderOf(const std::string& out) {
  const fs::path folder = fs::path(out).parent_path();
  return folder.empty() ? fs::path(".") : folder;
}

std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  if (error) {
    throw Failure(withFile(folder.string(), error.message()));
  }
  return names;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The digits that text begins with, which are cut off.
std::string_view takeDigits(std::string_view& text) {
  const auto end = std::ranges::find_if_not(text, isDigit);
  const auto digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(digits.size());
  return digits;
}

// The digits behind the prefix in a name that ends with them; nothing in any other name.
std::string_view digitsOf(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) {
    return {};
  }
  name.remove_prefix(prefix.size());
  const std::string_view digits = takeDigits(name);
  return name.empty() ? digits : std::string_view();
}

// The number that a part's name ends with; nothing if no part has such digits.
std::optional<int> partNumber(std::string_view digits) {
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || digits.starts_with('0') || number > SweepParts::kLargestNumber) {
    return std::nullopt;
  }
  return number;
}

// The number of the part with this name.
std::optional<int> numberOf(std::string_view name, std::string_view prefix) {
  return partNumber(digitsOf(name, prefix));
}

void removeFile(const fs::path& file) {
  std::error_code error;
  fs::remove(file, error);
  if (error) {
    throw Failure(withFile(file.string(), "cannot be removed: " + error.message()));
  }
}

// Whether the name is that of a part being written: a point in front, and ".0.rxftmp" behind.
bool isUnfinished(std::string_view name, std::string_view prefix) {
  if (!name.starts_with('.') || !name.substr(1).starts_with(prefix)) {
    return false;
  }
  name.remove_prefix(1 + prefix.size());
  if (!partNumber(takeDigits(name)) || !name.starts_with('.')) {
    return false;
  }
  name.remove_prefix(1);
  return !takeDigits(name).empty() && name == ".rxftmp";
}

}  // namespace

std::string SweepParts::file(int number) const {
  return out_ + ".part" + std::to_string(number);
}

std::vector<int> SweepParts::numbers() const {
  const std::string prefix = fs::path(out_).filename().string() + ".part";
  std::vector<int> numbers;
  for (const std::string& name : namesIn(folderOf(out_))) {
    if (const std::optional<int> number = numberOf(name, prefix)) {
      numbers.push_back(*number);
    }
  }
  std::ranges::sort(numbers);
  return numbers;
}

std::string SweepParts::misnumbered() const {
  const std::string prefix = fs::path(out_).filename().string() + ".part";
  for (const std::string& name : namesIn(folderOf(out_))) {
    const std::string_view digits = digitsOf(name, prefix);
    if (!digits.empty() && !partNumber(digits)) {
      return (fs::path(out_).parent_path() / name).string();
    }
  }
  return "";
}

void SweepParts::remove(int number) const {
  removeFile(file(number));
}

void SweepParts::remove() const {
  const std::string prefix = fs::path(out_).filename().string() + ".part";
  for (const std::string& name : namesIn(folderOf(out_))) {
    if (numberOf(name, prefix) || isUnfinished(name, prefix)) {
      removeFile(folderOf(out_) / name);
    }
  }
}

}  // namespace tool

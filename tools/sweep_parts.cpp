#include "tools/sweep_parts.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "tools/failure.h"

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

// The number that text begins with, which is cut off; nothing if there is none.
std::optional<int> takeNumber(std::string_view& text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || text.starts_with('-')) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

// The number of the part with this name.
std::optional<int> numberOf(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) {
    return std::nullopt;
  }
  name.remove_prefix(prefix.size());
  const std::optional<int> number = takeNumber(name);
  return name.empty() ? number : std::nullopt;
}

// Whether the name is that of a part being written: a point in front, and ".0.rxftmp" behind.
bool isUnfinished(std::string_view name, std::string_view prefix) {
  if (!name.starts_with('.') || !name.substr(1).starts_with(prefix)) {
    return false;
  }
  name.remove_prefix(1 + prefix.size());
  if (!takeNumber(name) || !name.starts_with('.')) {
    return false;
  }
  name.remove_prefix(1);
  return takeNumber(name) && name == ".rxftmp";
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

void SweepParts::remove() const {
  const std::string prefix = fs::path(out_).filename().string() + ".part";
  for (const std::string& name : namesIn(folderOf(out_))) {
    if (numberOf(name, prefix) || isUnfinished(name, prefix)) {
      const fs::path part = folderOf(out_) / name;
      std::error_code error;
      fs::remove(part, error);
      if (error) {
        throw Failure(withFile(part.string(), "cannot be removed: " + error.message()));
      }
    }
  }
}

}  // namespace tool

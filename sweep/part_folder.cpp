#include "sweep/part_folder.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace sweep {

using tool::Failure;
using tool::withFile;

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPartEnding = ".rxf";
constexpr std::string_view kBasisEnding = ".basis";
constexpr std::string_view kSavedEnding = ".sweep";
constexpr std::string_view kJobEnding = ".job";
constexpr std::string_view kLogEnding = ".log";
constexpr std::size_t kKeyLength = 16;

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  const fs::path path = tool::pathOf(folder);
  if (!fs::exists(path, error)) return names;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(tool::nameOf(entry->path().filename()));
  }
  if (error) throw Failure(withFile(folder, error.message()));
  std::ranges::sort(names);
  return names;
}

bool isKey(std::string_view text) {
  return text.size() == kKeyLength && std::ranges::all_of(text, [](char c) {
           return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
         });
}

// The number that a text begins with, which is cut off; nothing where none is written as parts
// write it.
std::optional<int> takeNumber(std::string_view& text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const auto length = static_cast<std::size_t>(end - text.data());
  if (error != std::errc() || number < 0 || (text.front() == '0' && length > 1)) {
    return std::nullopt;
  }
  text.remove_prefix(length);
  return number;
}

// The scenarios of the part with this name; nothing for the name of no part.
std::optional<std::pair<int, int>> rangeOf(std::string_view name) {
  if (name.size() < kKeyLength || !isKey(name.substr(0, kKeyLength))) return std::nullopt;
  name.remove_prefix(kKeyLength);
  if (!name.starts_with('-')) return std::nullopt;
  name.remove_prefix(1);
  const std::optional<int> first = name.empty() ? std::nullopt : takeNumber(name);
  if (!first || !name.starts_with('-')) return std::nullopt;
  name.remove_prefix(1);
  const std::optional<int> end = name.empty() ? std::nullopt : takeNumber(name);
  if (!end || name != kPartEnding || *end <= *first) return std::nullopt;
  return std::pair(*first, *end);
}

// Whether a name goes on behind the key as those of a log do.
bool isLog(std::string_view rest) {
  if (!rest.starts_with('.') || !rest.ends_with(kLogEnding)) return false;
  rest.remove_prefix(1);
  return takeNumber(rest) && rest == kLogEnding;
}

void removeFile(const std::string& file) {
  std::error_code error;
  fs::remove(tool::pathOf(file), error);
  if (error) throw Failure(withFile(file, "cannot be removed: " + error.message()));
}

}  // namespace

std::string PartFolder::path(const std::string& name) const {
  return tool::nameOf(tool::pathOf(folder_) / tool::pathOf(name));
}

void PartFolder::make() const {
  std::error_code error;
  fs::create_directory(tool::pathOf(folder_), error);
  if (error) throw Failure(withFile(folder_, "cannot be made: " + error.message()));
  if (!fs::is_directory(tool::pathOf(folder_), error))
    throw Failure(withFile(folder_, "is no folder"));
}

std::string PartFolder::part(int first, int end) const {
  return path(key_ + '-' + std::to_string(first) + '-' + std::to_string(end) +
              std::string(kPartEnding));
}

std::string PartFolder::basis() const {
  return path(key_ + std::string(kBasisEnding));
}

std::vector<Part> PartFolder::parts() const {
  std::vector<Part> parts;
  for (const std::string& name : namesIn(folder_)) {
    if (!name.starts_with(key_)) continue;
    if (const auto range = rangeOf(name))
      parts.push_back({path(name), range->first, range->second});
  }
  std::ranges::sort(parts, [](const Part& one, const Part& other) {
    return std::tie(one.first, one.end) < std::tie(other.first, other.end);
  });
  return parts;
}

std::optional<std::string> PartFolder::foreign() const {
  for (const std::string& name : namesIn(folder_)) {
    if (rangeOf(name) && !name.starts_with(key_)) return path(name);
  }
  return std::nullopt;
}

void PartFolder::remove(bool ofAll) const {
  for (const std::string& name : namesIn(folder_)) {
    // What a writer that was killed left has a point in front.
    const bool isUnfinished = name.starts_with('.');
    const std::string_view shown = std::string_view(name).substr(isUnfinished ? 1 : 0);
    if (shown.size() <= kKeyLength || !isKey(shown.substr(0, kKeyLength))) continue;
    const std::string_view rest = shown.substr(kKeyLength);
    const bool isOfSweep = isUnfinished
                               ? rest.starts_with('-') || rest.starts_with('.')
                               : rangeOf(shown) || rest == kBasisEnding || rest == kSavedEnding ||
                                     rest == kJobEnding || isLog(rest);
    if (isOfSweep && (ofAll || shown.starts_with(key_))) removeFile(path(name));
  }
  std::error_code error;
  fs::remove(tool::pathOf(folder_), error);  // refused while anything is in it
}

std::vector<std::string> PartFolder::saved(const std::string& folder) {
  std::vector<std::string> files;
  for (const std::string& name : namesIn(folder)) {
    if (name.size() == kKeyLength + kSavedEnding.size() && name.ends_with(kSavedEnding) &&
        isKey(std::string_view(name).substr(0, kKeyLength))) {
      files.push_back(tool::nameOf(tool::pathOf(folder) / tool::pathOf(name)));
    }
  }
  return files;
}

std::string PartFolder::saved(const std::string& folder, const std::string& key) {
  return tool::nameOf(tool::pathOf(folder) / (key + std::string(kSavedEnding)));
}

}  // namespace sweep

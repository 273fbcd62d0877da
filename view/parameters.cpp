#include "view/parameters.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "tools/text/words.h"

namespace view {

namespace {

constexpr int badRequest = 400;

std::size_t numberIn(const std::string& name, const std::string& text, std::size_t most) {
  std::size_t number = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number);
  if (error != std::errc{} || end != last || number > most) {
    throw RequestError(badRequest, fmt::format("{}: {} is no whole number from 0 to {}", name,
                                               tool::inQuotes(text), most));
  }
  return number;
}

}  // namespace

const std::string* Parameters::find(const std::string& name) const {
  const auto found =
      std::ranges::find(parameters_, name, &std::pair<std::string, std::string>::first);
  return found == parameters_.end() ? nullptr : &found->second;
}

std::vector<std::string> Parameters::all(const std::string& name) const {
  std::vector<std::string> values;
  for (const auto& [known, value] : parameters_) {
    if (known == name) values.push_back(value);
  }
  return values;
}

const std::string& Parameters::text(const std::string& name) const {
  const std::string* found = find(name);
  if (found == nullptr) throw RequestError(badRequest, name + ": is missing");
  return *found;
}

std::string Parameters::text(const std::string& name, const std::string& otherwise) const {
  const std::string* found = find(name);
  return found == nullptr ? otherwise : *found;
}

std::size_t Parameters::number(const std::string& name, std::size_t otherwise,
                               std::size_t most) const {
  const std::string* found = find(name);
  return found == nullptr ? otherwise : numberIn(name, *found, most);
}

bool Parameters::flag(const std::string& name) const {
  return number(name, 0, 1) == 1;
}

std::vector<std::size_t> Parameters::numbers(const std::string& name, std::size_t end) const {
  std::vector<std::size_t> result;
  const std::string* found = find(name);
  if (found == nullptr || found->empty()) return result;
  for (const std::string& word : tool::splitAtCommas(*found)) {
    if (end == 0) throw RequestError(badRequest, name + ": there is no position");
    const std::size_t number = numberIn(name, word, end - 1);
    if (std::ranges::find(result, number) != result.end()) {
      throw RequestError(badRequest, fmt::format("{}: {} stands there twice", name, number));
    }
    result.push_back(number);
  }
  return result;
}

}  // namespace view

#include "formats/arrow/dictionary.h"

#include <algorithm>
#include <string>
#include <ztb/error.hpp>

#include "formats/tables/exact_text.h"

namespace formats {

void requireUtf8(std::string_view text, const char* kind) {
  if (!isUtf8(text)) {
    throw ztb::Error("ztbArrowExport",
                     std::string(kind) + " '" + std::string(text) + "' is no UTF-8");
  }
}

void Dictionary::encode(std::vector<int>& numbers, RecordBlocks& labels) {
  const auto isKnown = [&](int number) {
    const auto place = static_cast<std::size_t>(number);
    return place < places_.size() && places_[place] >= 0;
  };
  if (!std::ranges::all_of(numbers, isKnown)) {
    makeFor(numbers, labels);
  }
  for (int& number : numbers) number = places_[static_cast<std::size_t>(number)];
}

void Dictionary::makeFor(const std::vector<int>& numbers, RecordBlocks& labels) {
  for (const int number : numbers_) places_[static_cast<std::size_t>(number)] = -1;
  numbers_.clear();
  const int largest = *std::ranges::max_element(numbers);
  places_.resize(std::max(places_.size(), static_cast<std::size_t>(largest) + 1), -1);
  for (const int number : numbers) {
    int& place = places_[static_cast<std::size_t>(number)];
    if (place < 0) {
      place = 0;
      numbers_.push_back(number);
    }
  }
  std::ranges::sort(numbers_);
  auto texts = std::make_shared<TextColumn>();
  for (std::size_t place = 0; place < numbers_.size(); ++place) {
    places_[static_cast<std::size_t>(numbers_[place])] = static_cast<int>(place);
    const std::string_view label = labels.label(numbers_[place]);
    requireUtf8(label, "label");
    texts->add(label);
  }
  texts_ = std::move(texts);
}

}  // namespace formats

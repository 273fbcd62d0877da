// Labels of rows by columns, each kept once.
#ifndef ZTB_FORMATS_TABLES_LABEL_DICTIONARY_H_
#define ZTB_FORMATS_TABLES_LABEL_DICTIONARY_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/tables/record_import.h"

namespace formats {

// The labels that a thread met, numbered from 0 as it met them.
class LabelDictionary {
 public:
  static constexpr int none = -1;

  // The number of a label; none for a text that cannot be one.
  int find(std::string_view text) {
    const std::uint64_t hash = hashOf(text);
    std::size_t place = hash & (places_.size() - 1);
    for (; places_[place] != 0; place = (place + 1) & (places_.size() - 1)) {
      const auto known = static_cast<std::size_t>(places_[place] - 1);
      if (hashes_[known] == hash && labels_[known] == text) return places_[place] - 1;
    }
    if (text.empty() || !labelProblem(text).empty()) return none;
    labels_.emplace_back(text);
    hashes_.push_back(hash);
    latestChunks_.push_back(0);
    places_[place] = static_cast<int>(labels_.size());
    if (2 * labels_.size() > places_.size()) grow();
    return static_cast<int>(labels_.size()) - 1;
  }

  // Whether a label is met for the first time in a chunk; chunks are numbered from 1.
  bool isFresh(int label, std::size_t chunk) {
    std::size_t& latest = latestChunks_[static_cast<std::size_t>(label)];
    return std::exchange(latest, chunk) != chunk;
  }

  [[nodiscard]] std::size_t size() const { return labels_.size(); }
  [[nodiscard]] const std::string& label(int number) const {
    return labels_[static_cast<std::size_t>(number)];
  }
  // The numbers that labels got in the end; 0 for none yet.
  std::vector<int> numbers;

 private:
  static std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = text.size();
    while (!text.empty()) {
      std::uint64_t word = 0;
      const std::size_t count = std::min(text.size(), sizeof word);
      std::memcpy(&word, text.data(), count);
      hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
      hash ^= hash >> 29U;
      text.remove_prefix(count);
    }
    return hash;
  }

  void grow() {
    places_.assign(2 * places_.size(), 0);
    for (std::size_t label = 0; label < labels_.size(); ++label) {
      std::size_t place = hashes_[label] & (places_.size() - 1);
      while (places_[place] != 0) place = (place + 1) & (places_.size() - 1);
      places_[place] = static_cast<int>(label) + 1;
    }
  }

  std::deque<std::string> labels_;
  std::vector<std::uint64_t> hashes_;
  std::vector<std::size_t> latestChunks_;
  std::vector<int> places_ = std::vector<int>(1024);
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_LABEL_DICTIONARY_H_

#include "providers/model/dictionary.h"

#include <algorithm>
#include <array>
#include <utility>
#include <ztb/case_folding.hpp>

#include "providers/model/dictionary_builder.h"
#include "providers/model/distinct_names.h"

namespace lomu {

Dictionary::Dictionary(const ModelData& data) : spare_(std::make_unique<DictionarySearch>()) {
  searches_.reserve(1);
  DictionaryBuilder(*this).build(data);
}

int Dictionary::find(std::string_view name) const {
  if (name.size() > kMaxNameLength) return 0;
  std::array<char, kMaxNameLength> folded{};
  std::transform(name.begin(), name.end(), folded.begin(), ztb::foldedChar);
  const auto found = numberOf_.find(std::string_view(folded.data(), name.size()));
  return found == numberOf_.end() ? 0 : found->second;
}

DictionarySearch* Dictionary::openSearch(int symbol, const int* keys) {
  if (symbol < 1 || static_cast<std::size_t>(symbol) > symbols_.size()) return nullptr;
  const DictionarySymbol& walked = symbols_[static_cast<std::size_t>(symbol) - 1];
  if (spare_ == nullptr) spare_ = std::make_unique<DictionarySearch>();
  searches_.push_back(std::move(spare_));
  searches_.back()->begin(*this, walked, keys);
  return searches_.back().get();
}

void Dictionary::closeSearch(const void* search) {
  const auto found = std::find_if(searches_.begin(), searches_.end(),
                                  [&](const auto& open) { return open.get() == search; });
  if (found == searches_.end()) return;
  spare_ = std::move(*found);
  searches_.erase(found);
}

}  // namespace lomu

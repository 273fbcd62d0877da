#include "providers/model/dictionary.h"

#include <algorithm>
#include <utility>

#include "providers/model/dictionary_builder.h"

namespace lomu {

Dictionary::Dictionary(const ModelData& data) : spare_(std::make_unique<DictionarySearch>()) {
  searches_.reserve(1);
  DictionaryBuilder(*this).build(data);
}

int Dictionary::find(std::string_view name) const {
  return numberOf_.find(symbols_, name) + 1;
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

#include "providers/model/dictionary.h"

#include <algorithm>

#include "providers/model/dictionary_builder.h"
#include "providers/model/distinct_names.h"

namespace lomu {

Dictionary::Dictionary(const ModelData& data) {
  DictionaryBuilder(*this).build(data);
}

int Dictionary::find(std::string_view name) const {
  const auto found = numberOf_.find(foldedName(name));
  return found == numberOf_.end() ? 0 : found->second;
}

Dictionary::Place Dictionary::place(const std::vector<Entry>& entries, int number) const {
  if (number < 0 || static_cast<std::size_t>(number) >= entries.size()) return {0, nullptr};
  const Entry& entry = entries[static_cast<std::size_t>(number)];
  return {entry.symbol, keys_.data() + entry.keys};
}

}  // namespace lomu

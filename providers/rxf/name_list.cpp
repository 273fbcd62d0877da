#include "providers/rxf/name_list.h"

#include <algorithm>
#include <array>

#include "providers/rxf/checksum.h"
#include "providers/rxf/limits.h"
#include "providers/rxf/names.h"

namespace rxffile {

std::uint64_t NameList::hashOf(std::string_view name) {
  std::array<char, kMaxLabelLength> folded;
  const std::size_t length = std::min(name.size(), folded.size());
  std::transform(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(length), folded.begin(),
                 foldCase);
  return checksum(folded.data(), length);
}

std::size_t NameList::slotFor(std::string_view name, std::uint64_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  const auto tag = static_cast<std::uint32_t>(hash >> 32U);
  std::size_t i = hash & mask;
  while (slots_[i].number != 0 &&
         (slots_[i].tag != tag || !sameFolded(names_.at(slots_[i].number), name))) {
    i = (i + 1) & mask;
  }
  return i;
}

std::uint32_t NameList::find(std::string_view name) const {
  if (slots_.empty()) return 0;
  return slots_[slotFor(name, hashOf(name))].number;
}

std::uint32_t NameList::add(std::string_view name) {
  if (2 * (static_cast<std::size_t>(size()) + 1) > slots_.size()) grow();
  const std::uint64_t hash = hashOf(name);
  Slot& slot = slots_[slotFor(name, hash)];
  if (slot.number != 0) return 0;
  names_.add(name);
  slot = {static_cast<std::uint32_t>(hash >> 32U), size()};
  return size();
}

void NameList::grow() {
  const std::size_t capacity = slots_.empty() ? 64 : slots_.size() * 2;
  std::vector<Slot> larger(capacity, Slot{0, 0});
  for (std::uint32_t number = 1; number <= size(); ++number) {
    const std::uint64_t hash = hashOf(names_.at(number));
    std::size_t i = hash & (capacity - 1);
    while (larger[i].number != 0) i = (i + 1) & (capacity - 1);
    larger[i] = {static_cast<std::uint32_t>(hash >> 32U), number};
  }
  slots_ = std::move(larger);
}

}  // namespace rxffile

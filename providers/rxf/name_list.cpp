#include "providers/rxf/name_list.h"

#include <algorithm>
#include <array>
#include <ztb/case_folding.hpp>

#include "providers/rxf/checksum.h"
#include "providers/rxf/limits.h"
#include "providers/rxf/names.h"

namespace rxffile {

std::uint32_t NameList::hashOf(std::string_view name) {
  std::array<char, kMaxTextLength> folded;
  const std::size_t length = std::min(name.size(), folded.size());
  std::transform(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(length), folded.begin(),
                 ztb::foldedChar);
  return static_cast<std::uint32_t>(checksum(folded.data(), length));
}

std::size_t NameList::slotFor(std::string_view name, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t i = hash & mask;
  while (slots_[i].number != 0 &&
         (slots_[i].hash != hash || !ztb::sameFolded(names_.at(slots_[i].number), name))) {
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
  const std::uint32_t hash = hashOf(name);
  Slot& slot = slots_[slotFor(name, hash)];
  if (slot.number != 0) return 0;
  names_.add(name);
  slot = {hash, size()};
  return size();
}

void NameList::grow() {
  std::vector<Slot> larger(slots_.empty() ? 64 : slots_.size() * 2, Slot{0, 0});
  const std::size_t mask = larger.size() - 1;
  for (const Slot& slot : slots_) {
    if (slot.number == 0) continue;
    std::size_t i = slot.hash & mask;
    while (larger[i].number != 0) i = (i + 1) & mask;
    larger[i] = slot;
  }
  slots_ = std::move(larger);
}

}  // namespace rxffile

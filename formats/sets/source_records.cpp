#include "formats/sets/source_records.h"

#include <algorithm>
#include <bit>

namespace formats {

FileRecords::FileRecords(const MergedFile& source, const tool::FileSymbol& symbol, bool hasCase,
                         const KeyPacking& packing)
    : source_(source),
      isSet_(symbol.type == ztb::Type::set),
      hasCase_(hasCase),
      packing_(packing),
      walk_(*source.file, symbol) {
  values_.resize(static_cast<std::size_t>(symbol.valueCount));
  place_ = source.place;
}

void FileRecords::enterBlock() {
  const ztb::RxfRecords& block = walk_.block();
  const std::size_t words = packing_.words();
  keys_.assign(block.size() * words, 0);
  std::size_t place = 0;
  if (hasCase_) {
    for (std::size_t record = 0; record < block.size(); ++record) {
      packing_.put(keys_.data() + record * words, 0, source_.caseLabel);
    }
    place = 1;
  }
  for (int position = 0; position < block.dimension(); ++position, ++place) {
    const std::span<const int> labels = block.keys(position);
    for (std::size_t record = 0; record < labels.size(); ++record) {
      packing_.put(keys_.data() + record * words, place,
                   source_.labels[static_cast<std::size_t>(labels[record])]);
    }
  }
  columns_.clear();
  for (int slot = 0; slot < block.valueCount(); ++slot) columns_.push_back(block.values(slot));
  at_ = 0;
}

bool FileRecords::next() {
  if (columns_.empty() || ++at_ == columns_.front().size()) {
    if (!walk_.next()) return false;
    enterBlock();
  }
  key_ = keys_.data() + at_ * packing_.words();
  for (std::size_t slot = 0; slot < values_.size(); ++slot) values_[slot] = columns_[slot][at_];
  if (isSet_) values_[0] = source_.texts[static_cast<std::size_t>(values_[0])];
  return true;
}

// A row is the key, the place of the file, the values.
SortedRecords::SortedRecords(const KeyPacking& packing, std::size_t valueCount,
                             const std::string& folder)
    : keyWords_(packing.words()), sorter_(keyWords_, keyWords_ + 1 + valueCount, folder) {
  values_.resize(valueCount);
}

void SortedRecords::add(FileRecords& records) {
  std::vector<std::uint64_t> row(keyWords_ + 1 + values_.size());
  while (records.next()) {
    std::copy_n(records.key(), keyWords_, row.begin());
    row[keyWords_] = records.place();
    for (std::size_t slot = 0; slot < values_.size(); ++slot) {
      row[keyWords_ + 1 + slot] = std::bit_cast<std::uint64_t>(records.values()[slot]);
    }
    sorter_.add(row.data());
  }
}

bool SortedRecords::next() {
  if (!sorter_.next()) return false;
  key_ = sorter_.row();
  place_ = key_[keyWords_];
  for (std::size_t slot = 0; slot < values_.size(); ++slot) {
    values_[slot] = std::bit_cast<double>(key_[keyWords_ + 1 + slot]);
  }
  return true;
}

}  // namespace formats

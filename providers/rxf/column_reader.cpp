#include "providers/rxf/column_reader.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace rxffile {

ColumnReader::ColumnReader(std::shared_ptr<const RxfReader> reader, std::uint32_t number)
    : reader_(std::move(reader)), number_(number), blocks_(reader_->file(), decompressor_) {
  const std::uint32_t labels = reader_->labels().size();
  std::uint32_t records = labels;
  std::size_t dim = 1;
  std::size_t slots = 1;
  if (number_ != 0) {
    const SymbolEntry& entry = reader_->symbols().at(number_);
    records = entry.recordCount;
    dim = static_cast<std::size_t>(entry.dim);
    slots = static_cast<std::size_t>(slotsOfType(entry.type));
    blocks_.start(entry, number_, reader_->symbols().name(number_), labels,
                  reader_->texts().size());
  }
  const std::size_t room = std::min(records, kBlockRecords);
  keys_.assign(dim, std::vector<std::int32_t>(room));
  values_.assign(slots, std::vector<double>(room));
}

std::uint32_t ColumnReader::next() {
  if (failure_ != nullptr) throw Failure(*failure_);
  if (again_) {
    again_ = false;
    return count_;
  }
  return number_ == 0 ? countLabels() : readBlock();
}

bool ColumnReader::skip() {
  if (failure_ != nullptr) throw Failure(*failure_);
  if (again_) {
    again_ = false;
    return true;
  }
  if (number_ == 0) return countLabels() > 0;
  if (blocks_.atEnd()) return false;
  pass([&] { blocks_.skip(); });
  return true;
}

std::uint32_t ColumnReader::readBlock() {
  if (blocks_.atEnd()) return 0;
  pass([&] { blocks_.next(decoded_); });
  decode();
  return count_;
}

// Has `work` go behind the next block, and remembers why it cannot.
template <class Work>
void ColumnReader::pass(const Work& work) {
  count_ = 0;
  try {
    work();
  } catch (const Malformed& malformed) {
    failure_ = std::make_unique<Failure>(
        ErrorNumber::damaged, blocks_.damageText(blocks_.place().index, malformed.what()));
    damaged_ = true;
  } catch (const Failure& failure) {
    failure_ = std::make_unique<Failure>(
        failure.number(),
        DetailText("%s: %s", reader_->file().shownName().c_str(), failure.detail().c_str()));
  }
  block_ = blocks_.place().index + 1;
  offset_ = blocks_.place().offset;
  if (failure_ != nullptr) throw Failure(*failure_);
}

void ColumnReader::decode() {
  decoded_.rewind();
  while (const std::size_t count = decoded_.next(specials_, keyPiece_, valuePieces_)) {
    for (std::size_t j = 0; j < keys_.size(); ++j) {
      std::copy_n(keyPiece_.columns[j].data(), count, keys_[j].data() + count_);
    }
    for (std::size_t s = 0; s < values_.size(); ++s) {
      std::copy_n(valuePieces_[s].data(), count, values_[s].data() + count_);
    }
    count_ += static_cast<std::uint32_t>(count);
  }
}

// The universe needs no block: label numbers count up, and no label has a text.
std::uint32_t ColumnReader::countLabels() {
  const std::uint32_t left = reader_->labels().size() - labels_;
  if (left == 0) return 0;
  count_ = std::min(kBlockRecords, left);
  std::iota(keys_[0].begin(), keys_[0].begin() + count_, static_cast<std::int32_t>(labels_ + 1));
  labels_ += count_;
  ++block_;
  return count_;
}

void ColumnReader::rewind() {
  failure_.reset();
  damaged_ = false;
  again_ = block_ == 1 && count_ > 0;
  if (again_) return;
  block_ = 0;
  offset_ = 0;
  labels_ = 0;
  count_ = 0;
  if (number_ != 0) {
    blocks_.start(reader_->symbols().at(number_), number_, reader_->symbols().name(number_),
                  reader_->labels().size(), reader_->texts().size());
  }
}

bool ColumnReader::skipDamage() {
  if (!damaged_ || blocks_.lost()) return false;
  damaged_ = false;
  failure_.reset();
  return true;
}

}  // namespace rxffile

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
  columns_.shape(dim, slots, std::min(records, kBlockRecords));
}

std::uint32_t ColumnReader::next() {
  if (failure_ != nullptr) throw Failure(*failure_);
  if (again_) {
    again_ = false;
    return count();
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
  ahead_.stop();
  inARow_ = false;
  pass([&] { blocks_.skip(); });
  return true;
}

std::uint32_t ColumnReader::readBlock() {
  if (blocks_.atEnd()) return 0;
  pass([&] {
    if (ahead_.running() && ahead_.take(blocks_, columns_)) return;
    blocks_.next(decoded_);
    columns_.decode(decoded_, specials_, room_);
  });
  if (inARow_ && block_ == 2) ahead_.start(blocks_, specials_, columns_);
  return count();
}

// Has `work` go behind the next block, and remembers why it cannot.
template <class Work>
void ColumnReader::pass(const Work& work) {
  columns_.setCount(0);
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

// The universe needs no block: label numbers count up, and no label has a text.
std::uint32_t ColumnReader::countLabels() {
  const std::uint32_t left = reader_->labels().size() - labels_;
  if (left == 0) return 0;
  const std::uint32_t taken = std::min(kBlockRecords, left);
  std::iota(columns_.keys(0), columns_.keys(0) + taken, labels_ + 1);
  std::fill_n(columns_.values(0), taken, 0.0);
  columns_.setCount(taken);
  labels_ += taken;
  ++block_;
  return taken;
}

void ColumnReader::rewind() {
  failure_.reset();
  damaged_ = false;
  again_ = block_ == 1 && columns_.count() > 0;
  if (again_) return;
  block_ = 0;
  offset_ = 0;
  labels_ = 0;
  columns_.setCount(0);
  inARow_ = true;
  ahead_.stop();
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

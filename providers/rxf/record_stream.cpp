#include "providers/rxf/record_stream.h"

namespace rxffile {

namespace {

// Memory for verified blocks that wait for delivery.
constexpr std::size_t kKeptBytes = std::size_t{4} << 20U;

}  // namespace

void RecordStream::start(const SymbolEntry& entry, std::uint32_t number, std::string_view name,
                         std::uint32_t labelCount, std::uint32_t textCount,
                         const SpecialTable& specials, Verify verify) {
  stop();
  verify_ = verify;
  specials_ = specials;
  dim_ = static_cast<std::size_t>(entry.dim);
  piece_.shape(dim_, static_cast<std::size_t>(slotsOfType(entry.type)));
  reader_.start(entry, number, name, labelCount, textCount);
  try {
    if (verify_ == Verify::ahead) verifyBlocks();
  } catch (...) {
    stop();
    throw;
  }
  open_ = true;
}

void RecordStream::stop() {
  ahead_.stop();
  open_ = false;
  kept_ = 0;
  waiting_.clear();
  current_ = nullptr;
  deliveredKept_ = 0;
  deliveredWaiting_ = 0;
  first_ = true;
  piece_.fill(0);
}

void RecordStream::verifyBlocks() {
  std::size_t held = 0;
  while (!reader_.atEnd()) {
    DecodedBlock& block = blockToKeep();
    readVerified(block);
    if (held < kKeptBytes) {
      held += block.held();
      ++kept_;
    } else {
      waiting_.push_back(reader_.place());
    }
  }
}

// Reads the next block of the file.
void RecordStream::readVerified(DecodedBlock& block) {
  try {
    reader_.next(block);
  } catch (const Malformed& malformed) {
    throw damageAt(reader_.place(), malformed);
  }
}

Failure RecordStream::damageAt(const BlockReader::Place& place, const Malformed& malformed) const {
  return {ErrorNumber::damaged,
          DetailText("%s: %s", reader_.placeText(place.index).c_str(), malformed.what())};
}

// The first block that is not in use.
DecodedBlock& RecordStream::blockToKeep() {
  if (kept_ == blocks_.size()) blocks_.push_back(std::make_unique<DecodedBlock>());
  return *blocks_[kept_];
}

bool RecordStream::refill() {
  piece_.fill(0);
  if (!open_) return false;
  PieceRoom& room = piece_.room();
  std::size_t count = 0;
  while (current_ == nullptr || (count = current_->next(specials_, room.keys, room.values)) == 0) {
    if (ahead_.running() && takeAhead()) {
      joinToPrevious();
      return true;
    }
    if (!nextBlock()) return false;
  }
  piece_.fill(count);
  joinToPrevious();
  return true;
}

// The next block, if the thread gives it.
bool RecordStream::takeAhead() {
  current_ = nullptr;
  try {
    if (!ahead_.take(reader_, columns_)) return false;
  } catch (const Malformed& malformed) {
    throw damageAt(reader_.place(), malformed);
  }
  piece_.lend(columns_);
  return true;
}

// The first record of a block does not know the record before it.
void RecordStream::joinToPrevious() {
  if (!first_) {
    std::size_t changed = 0;
    while (changed < dim_ && piece_.keys(changed)[0] == last_[changed]) ++changed;
    piece_.setFirstChanged(changed);
  }
  first_ = false;
  for (std::size_t j = 0; j < dim_; ++j) last_[j] = piece_.keys(j)[piece_.count() - 1];
}

bool RecordStream::nextBlock() {
  current_ = nullptr;
  if (verify_ == Verify::onTheWay) {
    if (reader_.atEnd()) return false;
    DecodedBlock& block = blockToKeep();
    const bool first = reader_.atStart();
    readVerified(block);
    current_ = &block;
    if (first) ahead_.start(reader_, specials_, columns_);
  } else if (deliveredKept_ < kept_) {
    current_ = blocks_[deliveredKept_++].get();
  } else if (deliveredWaiting_ < waiting_.size()) {
    const BlockReader::Place& waiting = waiting_[deliveredWaiting_++];
    DecodedBlock& block = blockToKeep();
    try {
      reader_.again(waiting, block);
    } catch (const Malformed& malformed) {
      throw damageAt(waiting, malformed);
    }
    current_ = &block;
  } else {
    return false;
  }
  current_->rewind();
  return true;
}

}  // namespace rxffile

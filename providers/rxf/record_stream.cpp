#include "providers/rxf/record_stream.h"

#include <algorithm>

#include "providers/rxf/failure.h"

namespace rxffile {

namespace {

// Memory for verified blocks that wait for delivery.
constexpr std::size_t kKeptBytes = std::size_t{4} << 20U;

}  // namespace

RecordStream::RecordStream(const InputFile& file, ErrorLog& log)
    : log_(log), reader_(file, decompressor_) {}

std::uint32_t RecordStream::start(const SymbolEntry& entry, std::uint32_t number,
                                  std::string_view name, std::uint32_t labelCount,
                                  const SpecialTable& specials) {
  stop();
  specials_ = specials;
  dim_ = static_cast<std::size_t>(entry.dim);
  piece_.shape(dim_, static_cast<std::size_t>(slotsOfType(entry.type)));
  reader_.start(entry, number, name, labelCount);
  open_ = true;
  return verifyBlocks();
}

void RecordStream::stop() {
  open_ = false;
  kept_ = 0;
  waiting_.clear();
  current_ = nullptr;
  deliveredKept_ = 0;
  deliveredWaiting_ = 0;
  first_ = true;
  piece_.fill(0);
}

std::uint32_t RecordStream::verifyBlocks() {
  std::uint32_t records = 0;
  std::size_t held = 0;
  while (!reader_.atEnd()) {
    DecodedBlock& block = blockToKeep();
    try {
      reader_.next(block);
    } catch (const Malformed& malformed) {
      recordDamage(
          reader_.place().index, malformed.what(),
          reader_.lost() ? "it and all behind it are left out" : "its records are left out");
      continue;
    } catch (const Failure& failure) {
      log_.record(failure.number(), failure.detail());
      break;
    }
    records += block.count();
    if (held < kKeptBytes) {
      held += block.held();
      ++kept_;
    } else {
      waiting_.push_back(reader_.place());
    }
  }
  return records;
}

// The first block that is not in use.
DecodedBlock& RecordStream::blockToKeep() {
  if (kept_ == blocks_.size()) blocks_.push_back(std::make_unique<DecodedBlock>());
  return *blocks_[kept_];
}

bool RecordStream::refill() {
  piece_.fill(0);
  if (!open_) return false;
  std::size_t count = 0;
  while (current_ == nullptr ||
         (count = current_->next(specials_, piece_.keys(), piece_.values())) == 0) {
    if (!nextBlock()) return false;
  }
  joinToPrevious(count);
  piece_.fill(count);
  return true;
}

// The first record of a block does not know the record before it.
void RecordStream::joinToPrevious(std::size_t count) {
  KeyPiece& keys = piece_.keys();
  if (!first_) {
    std::size_t changed = 0;
    while (changed < dim_ && keys.columns[changed][0] == last_[changed]) ++changed;
    keys.firstChanged[0] = static_cast<std::uint8_t>(changed);
  }
  first_ = false;
  for (std::size_t j = 0; j < dim_; ++j) last_[j] = keys.columns[j][count - 1];
}

bool RecordStream::nextBlock() {
  current_ = nullptr;
  if (deliveredKept_ < kept_) {
    current_ = blocks_[deliveredKept_++].get();
  } else if (deliveredWaiting_ < waiting_.size()) {
    const BlockReader::Place& waiting = waiting_[deliveredWaiting_++];
    if (!reload(waiting, blockToKeep())) {
      deliveredWaiting_ = waiting_.size();
      return false;
    }
    current_ = &blockToKeep();
  } else {
    return false;
  }
  current_->rewind();
  return true;
}

// Reads a block again that was verified. Only a file that was changed meanwhile can fail here.
bool RecordStream::reload(const BlockReader::Place& waiting, DecodedBlock& block) {
  try {
    reader_.again(waiting, block);
  } catch (const Malformed& malformed) {
    recordDamage(waiting.index, malformed.what(), "it was changed while it was read");
    return false;
  } catch (const Failure& failure) {
    log_.record(failure.number(), failure.detail());
    return false;
  }
  return true;
}

void RecordStream::recordDamage(std::uint32_t index, const char* reason, const char* consequence) {
  log_.record(ErrorNumber::damaged,
              DetailText("%s; %s", reader_.damageText(index, reason).c_str(), consequence));
}

}  // namespace rxffile

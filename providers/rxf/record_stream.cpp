#include "providers/rxf/record_stream.h"

#include <algorithm>

#include "providers/rxf/failure.h"

namespace rxffile {

namespace {

// Memory for verified blocks that wait for delivery.
constexpr std::size_t kKeptBytes = std::size_t{4} << 20U;

}  // namespace

RecordStream::RecordStream(const InputFile& file, Decompressor& decompressor, ErrorLog& log)
    : file_(file), decompressor_(decompressor), log_(log) {}

std::uint32_t RecordStream::start(const SymbolEntry& entry, std::uint32_t number,
                                  std::string_view name, std::uint32_t labelCount,
                                  const SpecialTable& specials) {
  stop();
  number_ = number;
  name_ = name;
  labelCount_ = labelCount;
  specials_ = specials;
  dim_ = static_cast<std::size_t>(entry.dim);
  piece_.shape(dim_, static_cast<std::size_t>(slotsOfType(entry.type)));
  entry_ = &entry;
  return verifyBlocks();
}

void RecordStream::stop() {
  entry_ = nullptr;
  kept_ = 0;
  waiting_.clear();
  current_ = nullptr;
  deliveredKept_ = 0;
  deliveredWaiting_ = 0;
  first_ = true;
  piece_.fill(0);
}

std::uint32_t RecordStream::verifyBlocks() {
  const std::uint32_t blocks = entry_->blockCount();
  std::uint64_t offset = entry_->dataOffset;
  std::uint32_t records = 0;
  std::size_t held = 0;
  std::array<std::uint32_t, kMaxDimension> last{};
  for (std::uint32_t index = 0; index < blocks; ++index) {
    const std::uint64_t at = offset;
    DecodedBlock& block = blockToKeep();
    FrameHead head;
    try {
      head = readBlock(index, offset, block);
      block.verify(head.count, entry_->dim, slotsOfType(entry_->type), labelCount_, decompressor_);
      const std::uint32_t* first = block.keys().firstKeys();
      if (records != 0 &&
          !std::lexicographical_compare(last.begin(), last.begin() + dim_, first, first + dim_)) {
        throw Malformed(DetailText("its records do not ascend from the block before"));
      }
    } catch (const Malformed& malformed) {
      const bool lost = offset == at;
      recordDamage(index, malformed.what(),
                   lost ? "it and all behind it are left out" : "its records are left out");
      if (lost) break;
      continue;
    } catch (const Failure& failure) {
      log_.record(failure.number(), failure.detail());
      break;
    }
    std::copy_n(block.keys().lastKeys(), dim_, last.begin());
    records += block.count();
    if (held < kKeptBytes) {
      held += block.held();
      ++kept_;
    } else {
      waiting_.push_back({index, at, head.bodyChecksum});
    }
  }
  return records;
}

// The first block that is not in use.
DecodedBlock& RecordStream::blockToKeep() {
  if (kept_ == blocks_.size()) blocks_.push_back(std::make_unique<DecodedBlock>());
  return *blocks_[kept_];
}

// Reads block `index` at `offset`, which moves behind the block as soon as its head is known to be
// right, and checks it against its checksums. Throws Malformed, Failure.
FrameHead RecordStream::readBlock(std::uint32_t index, std::uint64_t& offset, DecodedBlock& block) {
  const std::uint64_t end = entry_->dataOffset + entry_->dataLength;
  if (end - offset < kFrameHeadBytes) throw Malformed(DetailText("no room for its head"));
  FrameHead::Encoded bytes;
  file_.read(offset, bytes.data(), bytes.size());
  const FrameHead head = FrameHead::decode(bytes, kRecordKind, number_, index);
  const std::uint64_t bodyAt = offset + kFrameHeadBytes;
  if (head.bodyLength > kMaxBlockBytes || head.bodyLength > end - bodyAt) {
    throw Malformed(DetailText("%u bytes go beyond the symbol's data", head.bodyLength));
  }
  offset = bodyAt + head.bodyLength;
  const std::uint32_t expected =
      std::min(kBlockRecords, entry_->recordCount - index * kBlockRecords);
  if (head.count != expected) {
    throw Malformed(DetailText("%u records, expected %u", head.count, expected));
  }
  std::uint8_t* body = block.body(head.bodyLength);
  file_.read(bodyAt, body, head.bodyLength);
  head.verifyBody(body);
  return head;
}

bool RecordStream::refill() {
  piece_.fill(0);
  if (entry_ == nullptr) return false;
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
    const Waiting& waiting = waiting_[deliveredWaiting_++];
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
bool RecordStream::reload(const Waiting& waiting, DecodedBlock& block) {
  std::uint64_t offset = waiting.offset;
  try {
    const FrameHead head = readBlock(waiting.index, offset, block);
    if (head.bodyChecksum != waiting.checksum) throw Malformed(DetailText("it is another block"));
    block.parse(head.count, entry_->dim, slotsOfType(entry_->type), labelCount_, decompressor_);
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
  log_.record(ErrorNumber::damaged, DetailText("block %u of %u of symbol %s in %s: %s; %s",
                                               index + 1, entry_->blockCount(), name_.c_str(),
                                               file_.shownName().c_str(), reason, consequence));
}

}  // namespace rxffile

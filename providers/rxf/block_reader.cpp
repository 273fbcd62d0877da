#include "providers/rxf/block_reader.h"

#include <algorithm>

#include "providers/rxf/failure.h"

namespace rxffile {

void BlockReader::start(const SymbolEntry& entry, std::uint32_t number, std::string_view name,
                        std::uint32_t labelCount, std::uint32_t textCount) {
  entry_ = &entry;
  number_ = number;
  name_ = name;
  labelCount_ = labelCount;
  textCount_ = textCount;
  at_ = {};
  at_.offset = entry.dataOffset;
  // The second block and those behind it come from the disk while the first is worked on.
  if (entry.blockCount() > 1) file_.willRead(entry.dataOffset, entry.dataLength);
}

// Has `work` take the next block, and moves behind that.
template <class Work>
void BlockReader::pass(const Work& work) {
  at_.place = {at_.index, at_.offset, 0};
  std::uint64_t behind = at_.offset;
  try {
    work(behind);
  } catch (const Malformed&) {
    file_.requireUnchanged();
    at_.lost = behind == at_.offset;
    at_.index = at_.lost ? entry_->blockCount() : at_.index + 1;
    at_.offset = behind;
    throw;
  } catch (const Failure&) {
    file_.requireUnchanged();
    throw;
  }
  file_.requireUnchanged();
  ++at_.index;
  at_.offset = behind;
}

void BlockReader::next(DecodedBlock& block) {
  pass([&](std::uint64_t& behind) {
    const FrameHead head = readBlock(at_.index, behind, block);
    at_.place.checksum = head.bodyChecksum;
    block.verify(head.count, entry_->dim, slotsOfType(entry_->type), labelCount_, decompressor_);
    if (entry_->type == kTypeSet) block.verifyTextNumbers(textCount_);
    checkOrder(block);
  });
}

void BlockReader::skip() {
  pass([&](std::uint64_t& behind) { readHead(at_.index, behind); });
  at_.first = true;
}

// Throws Malformed when the records do not come behind those of the whole block before.
void BlockReader::checkOrder(const DecodedBlock& block) {
  const std::size_t dim = static_cast<std::size_t>(entry_->dim);
  const std::uint32_t* first = block.keys().firstKeys();
  if (!at_.first &&
      !std::lexicographical_compare(at_.last.begin(), at_.last.begin() + dim, first, first + dim)) {
    throw Malformed(DetailText("its records do not ascend from the block before"));
  }
  std::copy_n(block.keys().lastKeys(), dim, at_.last.begin());
  at_.first = false;
}

void BlockReader::again(const Place& place, DecodedBlock& block) {
  std::uint64_t offset = place.offset;
  file_.requireUnchanged();
  const FrameHead head = readBlock(place.index, offset, block);
  if (head.bodyChecksum != place.checksum) throw Malformed(DetailText("it is another block"));
  block.parse(head.count, entry_->dim, slotsOfType(entry_->type), labelCount_, decompressor_);
}

// Reads the head of block `index` at `offset`, which moves behind the block as soon as the head is
// known to be right. Throws Malformed, Failure.
FrameHead BlockReader::readHead(std::uint32_t index, std::uint64_t& offset) const {
  const std::uint64_t end = entry_->dataOffset + entry_->dataLength;
  if (end - offset < kFrameHeadBytes) throw Malformed(DetailText("no room for its head"));
  FrameHead::Encoded bytes;
  const DetailText where = placeText(index);
  file_.read(offset, bytes.data(), bytes.size(), where.c_str());
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
  return head;
}

// Reads all of the block, and checks it against its checksums.
FrameHead BlockReader::readBlock(std::uint32_t index, std::uint64_t& offset, DecodedBlock& block) {
  const FrameHead head = readHead(index, offset);
  std::uint8_t* body = block.body(head.bodyLength);
  file_.read(offset - head.bodyLength, body, head.bodyLength, placeText(index).c_str());
  head.verifyBody(body);
  return head;
}

DetailText BlockReader::placeText(std::uint32_t index) const {
  return DetailText("block %u of %u of symbol %s", index + 1, entry_->blockCount(), name_.c_str());
}

DetailText BlockReader::damageText(std::uint32_t index, const char* reason) const {
  return DetailText("%s in %s: %s", placeText(index).c_str(), file_.shownName().c_str(), reason);
}

}  // namespace rxffile

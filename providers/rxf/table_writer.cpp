#include "providers/rxf/table_writer.h"

#include "providers/rxf/checksum.h"
#include "providers/rxf/frame.h"
#include "providers/rxf/limits.h"

namespace rxffile {

namespace {

// Labels and texts are written once and read at every opening.
constexpr int kTableLevel = 3;

}  // namespace

void TableWriter::addText(std::string_view text) {
  makeRoom(text.size() + 1);
  appendText(content_, text);
  ++count_;
}

void TableWriter::addEntry(const Bytes& entry) {
  makeRoom(entry.size());
  content_.insert(content_.end(), entry.begin(), entry.end());
  ++count_;
}

Section TableWriter::finish() {
  if (count_ != 0) writeChunk();
  return {begin_, file_.position() - begin_};
}

void TableWriter::makeRoom(std::size_t size) {
  if (content_.size() + size > kMaxChunkBytes) writeChunk();
}

void TableWriter::writeChunk() {
  body_.clear();
  appendLittle(body_, static_cast<std::uint32_t>(content_.size()));
  const std::size_t length =
      compressor_.append(content_.data(), content_.size(), kTableLevel, body_);
  if (length == 0 || content_.size() / length >= kMaxExpansion) {
    body_.resize(sizeof(std::uint32_t));
    body_.insert(body_.end(), content_.begin(), content_.end());
  }
  FrameHead head;
  head.kind = kind_;
  head.index = index_++;
  head.count = count_;
  head.bodyLength = static_cast<std::uint32_t>(body_.size());
  head.bodyChecksum = checksum(body_.data(), body_.size());
  const FrameHead::Encoded bytes = head.encode();
  file_.append(bytes.data(), bytes.size());
  file_.append(body_.data(), body_.size());
  content_.clear();
  count_ = 0;
}

}  // namespace rxffile

#include "providers/rxf/table_reader.h"

#include <algorithm>

#include "providers/rxf/frame.h"
#include "providers/rxf/limits.h"

namespace rxffile {

namespace {

constexpr std::size_t kLengthBytes = sizeof(std::uint32_t);

}  // namespace

void TableReader::read(const Section& section, std::uint32_t entryCount,
                       const std::function<void(ByteReader&)>& takeEntry) {
  std::uint64_t at = section.offset;
  const std::uint64_t end = section.offset + section.length;
  std::uint32_t taken = 0;
  std::uint32_t index = 0;
  try {
    for (; at < end; ++index) {
      at += readChunk(at, end, index);
      if (count_ > entryCount - taken) {
        throw Malformed(DetailText("more than %u entries", entryCount));
      }
      ByteReader in(content_.data(), content_.size());
      for (std::uint32_t i = 0; i < count_; ++i, ++taken) takeEntry(in);
      if (in.left() != 0) throw Malformed(DetailText("%zu bytes too many", in.left()));
    }
    if (taken != entryCount) {
      throw Malformed(DetailText("%u entries, expected %u", taken, entryCount));
    }
  } catch (const Malformed& malformed) {
    throw Failure(ErrorNumber::damaged,
                  DetailText("%s table of %s, chunk %u, entry %u: %s", what_,
                             file_.shownName().c_str(), index + 1, taken + 1, malformed.what()));
  }
}

std::uint64_t TableReader::readChunk(std::uint64_t offset, std::uint64_t end, std::uint32_t index) {
  if (end - offset < kFrameHeadBytes + kLengthBytes) {
    throw Malformed(DetailText("%llu bytes left, too few for a chunk",
                               static_cast<unsigned long long>(end - offset)));
  }
  FrameHead::Encoded bytes;
  file_.read(offset, bytes.data(), bytes.size());
  const FrameHead head = FrameHead::decode(bytes, kind_, 0, index);
  if (head.bodyLength < kLengthBytes || head.bodyLength > kLengthBytes + kMaxChunkBytes ||
      head.bodyLength > end - offset - kFrameHeadBytes) {
    throw Malformed(DetailText("body of %u bytes goes beyond the table", head.bodyLength));
  }
  body_.resize(head.bodyLength);
  file_.read(offset + kFrameHeadBytes, body_.data(), body_.size());
  head.verifyBody(body_.data());
  const auto length = loadLittle<std::uint32_t>(body_.data());
  const std::uint8_t* stored = body_.data() + kLengthBytes;
  const std::size_t storedLength = body_.size() - kLengthBytes;
  const std::size_t most = std::min<std::size_t>(kMaxChunkBytes, kMaxExpansion * storedLength);
  if (length > most) {
    throw Malformed(DetailText("content of %u bytes, at most %zu", length, most));
  }
  content_.resize(length);
  if (storedLength == length) {
    std::copy_n(stored, storedLength, content_.begin());
  } else {
    decompressor_.decompress(stored, storedLength, content_.data(), content_.size());
  }
  count_ = head.count;
  return kFrameHeadBytes + head.bodyLength;
}

}  // namespace rxffile

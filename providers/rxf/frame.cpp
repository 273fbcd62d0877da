#include "providers/rxf/frame.h"

#include "providers/rxf/bytes.h"
#include "providers/rxf/checksum.h"

namespace rxffile {

namespace {

constexpr std::size_t kChecksummedHead = kFrameHeadBytes - sizeof(std::uint64_t);

}  // namespace

FrameHead::Encoded FrameHead::encode() const {
  Encoded bytes{};
  storeLittle(&bytes[0], kind);
  storeLittle(&bytes[4], owner);
  storeLittle(&bytes[8], index);
  storeLittle(&bytes[12], count);
  storeLittle(&bytes[16], bodyLength);
  storeLittle(&bytes[20], std::uint32_t{0});
  storeLittle(&bytes[24], bodyChecksum);
  storeLittle(&bytes[32], checksum(bytes.data(), kChecksummedHead));
  return bytes;
}

FrameHead FrameHead::decode(const Encoded& bytes, std::uint32_t kind, std::uint32_t owner,
                            std::uint32_t index) {
  const auto stored = loadLittle<std::uint64_t>(&bytes[32]);
  const std::uint64_t computed = checksum(bytes.data(), kChecksummedHead);
  if (stored != computed) {
    throw Malformed(DetailText("checksum of the head is %016llx, expected %016llx",
                               static_cast<unsigned long long>(computed),
                               static_cast<unsigned long long>(stored)));
  }
  FrameHead head;
  head.kind = loadLittle<std::uint32_t>(&bytes[0]);
  head.owner = loadLittle<std::uint32_t>(&bytes[4]);
  head.index = loadLittle<std::uint32_t>(&bytes[8]);
  head.count = loadLittle<std::uint32_t>(&bytes[12]);
  head.bodyLength = loadLittle<std::uint32_t>(&bytes[16]);
  head.bodyChecksum = loadLittle<std::uint64_t>(&bytes[24]);
  if (head.kind != kind || loadLittle<std::uint32_t>(&bytes[20]) != 0) {
    throw Malformed(DetailText("another kind of block (%08x, expected %08x)", head.kind, kind));
  }
  if (head.owner != owner || head.index != index) {
    throw Malformed(DetailText("block %u of symbol %u stands here, expected block %u of symbol %u",
                               head.index + 1, head.owner, index + 1, owner));
  }
  return head;
}

void FrameHead::verifyBody(const void* body) const {
  const std::uint64_t computed = checksum(body, bodyLength);
  if (computed != bodyChecksum) {
    throw Malformed(DetailText("checksum is %016llx, expected %016llx",
                               static_cast<unsigned long long>(computed),
                               static_cast<unsigned long long>(bodyChecksum)));
  }
}

}  // namespace rxffile

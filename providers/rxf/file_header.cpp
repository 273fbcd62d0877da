#include "providers/rxf/file_header.h"

#include <algorithm>

#include "providers/rxf/bytes.h"
#include "providers/rxf/checksum.h"
#include "providers/rxf/failure.h"
#include "providers/rxf/limits.h"

namespace rxffile {

namespace {

// The bytes behind the letters show a file that was transferred as text.
constexpr std::array<std::uint8_t, 8> kMagic = {0x89, 'R', 'X', 'F', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::size_t kVersionAt = 8;
constexpr std::size_t kChecksumAt = kFileHeaderBytes - sizeof(std::uint64_t);

using Number = unsigned long long;

Failure headerDamage(const InputFile& file, const char* reason) {
  return {ErrorNumber::damaged, DetailText("header of %s: %s", file.shownName().c_str(), reason)};
}

// The first bytes of the file, checked to be those of an exchange file that this library knows.
FileHeader::Encoded readBytes(const InputFile& file) {
  FileHeader::Encoded bytes{};
  const std::size_t available =
      static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), bytes.size()));
  file.read(0, bytes.data(), available);
  const std::size_t compared = std::min(available, kMagic.size());
  if (available == 0 || !std::equal(kMagic.begin(), kMagic.begin() + compared, bytes.begin())) {
    throw Failure(ErrorNumber::notRxfFile, DetailText("%s", file.shownName().c_str()));
  }
  const auto version = loadLittle<std::uint32_t>(&bytes[kVersionAt]);
  if (available >= kVersionAt + sizeof version && version > kFormatVersion) {
    throw Failure(ErrorNumber::newerVersion,
                  DetailText("%s has version %u, this library reads version %u",
                             file.shownName().c_str(), version, kFormatVersion));
  }
  if (available < bytes.size()) {
    throw Failure(
        ErrorNumber::cutShort,
        DetailText("%s has %llu bytes, its header alone needs %zu", file.shownName().c_str(),
                   static_cast<Number>(file.size()), bytes.size()));
  }
  const auto stored = loadLittle<std::uint64_t>(&bytes[kChecksumAt]);
  const std::uint64_t computed = checksum(bytes.data(), kChecksumAt);
  if (stored != computed) {
    throw headerDamage(file, DetailText("checksum is %016llx, expected %016llx",
                                        static_cast<Number>(computed), static_cast<Number>(stored))
                                 .c_str());
  }
  if (version != kFormatVersion) throw headerDamage(file, "version 0, expected 1");
  return bytes;
}

}  // namespace

FileHeader::Encoded FileHeader::encode() const {
  Encoded bytes{};
  std::copy(kMagic.begin(), kMagic.end(), bytes.begin());
  storeLittle(&bytes[kVersionAt], kFormatVersion);
  storeLittle(&bytes[12], labelCount);
  storeLittle(&bytes[16], textCount);
  storeLittle(&bytes[20], symbolCount);
  storeLittle(&bytes[24], fileLength);
  storeLittle(&bytes[32], info.offset);
  storeLittle(&bytes[40], info.length);
  storeLittle(&bytes[48], labels.length);
  storeLittle(&bytes[56], texts.length);
  storeLittle(&bytes[64], symbols.length);
  storeLittle(&bytes[kChecksumAt], checksum(bytes.data(), kChecksumAt));
  return bytes;
}

FileHeader FileHeader::read(const InputFile& file) {
  const Encoded bytes = readBytes(file);
  FileHeader header;
  header.labelCount = loadLittle<std::uint32_t>(&bytes[12]);
  header.textCount = loadLittle<std::uint32_t>(&bytes[16]);
  header.symbolCount = loadLittle<std::uint32_t>(&bytes[20]);
  header.fileLength = loadLittle<std::uint64_t>(&bytes[24]);
  if (file.size() < header.fileLength) {
    throw Failure(
        ErrorNumber::cutShort,
        DetailText("%s has %llu bytes, expected %llu", file.shownName().c_str(),
                   static_cast<Number>(file.size()), static_cast<Number>(header.fileLength)));
  }
  if (file.size() > header.fileLength) {
    throw headerDamage(
        file, DetailText("the file has %llu bytes, expected %llu", static_cast<Number>(file.size()),
                         static_cast<Number>(header.fileLength))
                  .c_str());
  }
  if (std::max({header.labelCount, header.textCount, header.symbolCount}) > kMaxCount) {
    throw headerDamage(file, "a count is above 2147483647");
  }
  auto at = loadLittle<std::uint64_t>(&bytes[32]);
  std::size_t field = 40;
  bool fits = at >= kFileHeaderBytes && at <= header.fileLength;
  for (Section* section : {&header.info, &header.labels, &header.texts, &header.symbols}) {
    const auto length = loadLittle<std::uint64_t>(&bytes[field]);
    field += sizeof length;
    fits = fits && length <= header.fileLength - at;
    *section = {at, length};
    if (fits) at += length;
  }
  if (!fits || at != header.fileLength) {
    throw headerDamage(file, "the tables do not fill the file to its end");
  }
  return header;
}

}  // namespace rxffile

#include "providers/rxf/symbol_directory.h"

#include <utility>

#include "providers/rxf/frame.h"
#include "providers/rxf/names.h"

namespace rxffile {

namespace {

// Where the records lie: each block has a head, and all blocks lie before the tables.
void checkData(const SymbolEntry& entry, const FileHeader& header) {
  if (entry.recordCount > kMaxCount || (entry.dim == 0 && entry.recordCount > 1)) {
    throw Malformed(DetailText("%u records of dimension %d", entry.recordCount, entry.dim));
  }
  const std::uint64_t end = header.info.offset;
  if (entry.dataOffset < kFileHeaderBytes || entry.dataOffset > end ||
      entry.dataLength > end - entry.dataOffset ||
      entry.dataLength < std::uint64_t{kFrameHeadBytes} * entry.blockCount()) {
    throw Malformed(DetailText("records at byte %llu, %llu bytes, outside the file's data",
                               static_cast<unsigned long long>(entry.dataOffset),
                               static_cast<unsigned long long>(entry.dataLength)));
  }
}

void decodeDomains(ByteReader& in, SymbolEntry& entry) {
  const auto kind = in.number<std::uint8_t>();
  entry.domainKind = static_cast<DomainKind>(kind);
  if (entry.domainKind == DomainKind::none) return;
  if (entry.domainKind != DomainKind::relaxed && entry.domainKind != DomainKind::strict) {
    throw Malformed(DetailText("domain of kind %u", static_cast<unsigned>(kind)));
  }
  for (int d = 0; d < entry.dim; ++d) {
    const std::string_view name = in.text();
    if (name.find('\0') != std::string_view::npos) {
      throw Malformed(DetailText("name of domain %d holds a zero", d + 1));
    }
    entry.domains.emplace_back(name);
  }
}

}  // namespace

std::uint32_t SymbolDirectory::add(std::string_view name, SymbolEntry entry) {
  entries_.push_back(std::move(entry));
  std::uint32_t number = 0;
  try {
    number = names_.add(name);
  } catch (...) {
    entries_.pop_back();
    throw;
  }
  if (number == 0) entries_.pop_back();
  return number;
}

void SymbolDirectory::encode(std::uint32_t number, Bytes& out) const {
  const SymbolEntry& entry = at(number);
  appendText(out, name(number));
  out.push_back(static_cast<std::uint8_t>(entry.type));
  appendLittle(out, static_cast<std::uint32_t>(entry.userInfo));
  if (entry.isAlias()) return;
  appendText(out, entry.text);
  out.push_back(static_cast<std::uint8_t>(entry.dim));
  appendLittle(out, entry.recordCount);
  appendLittle(out, entry.dataOffset);
  appendLittle(out, entry.dataLength);
  out.push_back(static_cast<std::uint8_t>(entry.domainKind));
  for (const std::string& domain : entry.domains) appendText(out, domain);
}

void SymbolDirectory::decodeNext(ByteReader& in, const FileHeader& header) {
  const std::string_view name = in.text();
  if (const char* reason = nameRefusal(name)) throw Malformed(DetailText("name: %s", reason));
  SymbolEntry entry;
  entry.type = in.number<std::uint8_t>();
  entry.userInfo = static_cast<std::int32_t>(in.number<std::uint32_t>());
  if (entry.isAlias()) {
    checkAlias(entry);
  } else {
    entry.text = in.text();
    entry.dim = in.number<std::uint8_t>();
    if (entry.type > kTypeAlias || entry.dim > kMaxDimension ||
        entry.text.find('\0') != std::string::npos) {
      throw Malformed(DetailText("symbol of type %d and dimension %d", entry.type, entry.dim));
    }
    entry.recordCount = in.number<std::uint32_t>();
    entry.dataOffset = in.number<std::uint64_t>();
    entry.dataLength = in.number<std::uint64_t>();
    checkData(entry, header);
    decodeDomains(in, entry);
  }
  if (add(name, std::move(entry)) == 0) throw Malformed(DetailText("name stands twice"));
}

void SymbolDirectory::checkAlias(SymbolEntry& entry) const {
  const std::int64_t target = entry.userInfo;
  if (target != 0 &&
      (!holds(target) || entries_[static_cast<std::size_t>(target - 1)].type != kTypeSet)) {
    throw Malformed(DetailText("alias of symbol %d, which is no set before it", entry.userInfo));
  }
  entry.dim = target == 0 ? 1 : entries_[static_cast<std::size_t>(target - 1)].dim;
}

}  // namespace rxffile

#include "providers/rxf/memory_limit.h"

#include <array>
#include <cmath>
#include <utility>

#include "providers/rxf/failure.h"
#include "providers/rxf/memory_estimate.h"

namespace rxffile {

namespace {

thread_local std::uint64_t limitOfThread = 0;
thread_local int takenOfThread = 0;
thread_local int symbolsBeingWritten = 0;

// Bytes for people: "1 GiB", "2.1 GiB". `round` is std::ceil for what is needed and std::floor for
// what there is, so that a need never reads like a limit that it is above.
DetailText sizeText(std::uint64_t bytes, double (*round)(double)) {
  constexpr std::array<const char*, 5> units = {"B", "KiB", "MiB", "GiB", "TiB"};
  auto size = static_cast<double>(bytes);
  std::size_t unit = 0;
  for (; size >= 1024 && unit + 1 < units.size(); ++unit) size /= 1024;
  const double rounded = round(size * 10) / 10;
  return DetailText("%.*f %s", rounded == std::trunc(rounded) ? 0 : 1, rounded, units.at(unit));
}

}  // namespace

std::uint64_t MemoryLimit::setForThread(std::uint64_t bytes) {
  takenOfThread = 0;
  return std::exchange(limitOfThread, bytes);
}

MemoryLimit MemoryLimit::takeFromThread() {
  ++takenOfThread;
  MemoryLimit limit;
  limit.limit_ = limitOfThread;
  return limit;
}

int MemoryLimit::takenByThread() {
  return takenOfThread;
}

MemoryLimit::SymbolWriting::SymbolWriting() {
  ++symbolsBeingWritten;
}

MemoryLimit::SymbolWriting::~SymbolWriting() {
  --symbolsBeingWritten;
}

void MemoryLimit::count(std::uint32_t number, const SymbolEntry& entry) {
  if (limit_ == 0 || symbolsBeingWritten > 0) return;
  if (number >= counted_.size()) counted_.resize(number + 1);
  if (counted_[number]) return;
  const std::uint64_t needed =
      memoryOfRecords(entry.recordCount, entry.dim, slotsOfType(entry.type), kStoreTreeMap);
  if (needed > limit_ - used_) {
    const DetailText before = used_ == 0 ? DetailText()
                                         : DetailText(", what was read before about %s",
                                                      sizeText(used_, std::ceil).c_str());
    throw Failure(ErrorNumber::limitExceeded,
                  DetailText("its %u records need about %s in memory%s, the limit is %s",
                             entry.recordCount, sizeText(needed, std::ceil).c_str(), before.c_str(),
                             sizeText(limit_, std::floor).c_str()));
  }
  counted_[number] = true;
  used_ += needed;
}

}  // namespace rxffile

#include "tools/files/memory_room.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

namespace {

unsigned long long limitOfThread() {
  const unsigned long long limit = ztbRxfMemoryLimit(0);
  ztbRxfMemoryLimit(limit);
  return limit;
}

// "62.5 KiB", "2 GiB": powers of 1024, as --max-memory takes them. `round` is std::ceil for what is
// needed and std::floor for what there is, so that a need never reads like a limit that it is
// above.
std::string sizeText(unsigned long long bytes, double (*round)(double)) {
  static constexpr std::array<const char*, 5> units{"B", "KiB", "MiB", "GiB", "TiB"};
  auto size = static_cast<double>(bytes);
  std::size_t unit = 0;
  for (; size >= 1024 && unit + 1 < units.size(); ++unit) size /= 1024;
  std::string number = fmt::format("{:.1f}", round(size * 10) / 10);
  if (number.ends_with(".0")) number.resize(number.size() - 2);
  return number + ' ' + units.at(unit);
}

}  // namespace

void MemoryRoom::take(const FileSymbol& symbol, std::size_t records) {
  const unsigned long long limit = limitOfThread();
  if (limit == 0) return;
  const unsigned long long whole =
      ztbRxfMemory(file_.file().handle(), symbol.number, static_cast<int>(ztb::Store::map));
  const unsigned long long needed =
      records == symbol.recordCount ? whole : whole / symbol.recordCount * records;
  if (used_ > limit || needed > limit - used_) {
    const std::string before =
        used_ == 0 ? ""
                   : fmt::format(", what was read before about {}", sizeText(used_, std::ceil));
    throw Failure(withFile(
        file_.path(),
        fmt::format("symbol {}: {} need about {} in memory{}, the limit is {} (--max-memory)",
                    symbol.name, counted(records, "record"), sizeText(needed, std::ceil), before,
                    sizeText(limit, std::floor))));
  }
  used_ += needed;
}

}  // namespace tool

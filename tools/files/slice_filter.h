// Picks the records of a slice by their label numbers.
#ifndef ZTB_TOOLS_FILES_SLICE_FILTER_H_
#define ZTB_TOOLS_FILES_SLICE_FILTER_H_

#include <span>
#include <string>
#include <vector>

#include "tools/files/exchange_file.h"

namespace tool {

// Patterns are matched once against each label, not against each record.
class SliceFilter {
 public:
  // Lets every record through.
  SliceFilter() = default;
  // slice as parseSlice takes it. Throws UsageError unless it has a pattern for each position, and
  // Failure for a plain label that the file does not have.
  SliceFilter(const std::string& slice, const ExchangeFile& file, const FileSymbol& symbol);

  [[nodiscard]] bool matches(std::span<const int> keys) const;

 private:
  // For each position, whether a label number matches; empty where all do.
  std::vector<std::vector<bool>> allowed_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_SLICE_FILTER_H_

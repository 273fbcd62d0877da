// The records of a symbol in the order of a value.
#ifndef ZTB_TOOLS_FILES_RECORD_ORDER_H_
#define ZTB_TOOLS_FILES_RECORD_ORDER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "tools/files/record_walk.h"

namespace tool {

// A record, as it is shown.
struct ShownRecord {
  std::span<const int> keys;
  std::span<const double> values;
};

// What is ascending where values are: -inf, numbers with eps just above 0, inf. Behind them, also
// when they descend, stand undef, na, and other NaNs.
std::uint64_t orderOfValue(double value, bool descending);

struct RecordOrder {
  std::size_t slot = 0;
  bool descending = false;
  // Only so many records are asked for.
  std::size_t most = 0;
};

// Visits the records of a walk that `wanted` lets through, in the order of a value, those with one
// value in the order of the walk, until `visit` gives false. In bounded memory: what does not fit
// stands in a temporary file meanwhile.
void walkInOrder(RecordWalk& walk, const FileSymbol& symbol, const RecordOrder& order,
                 const std::function<bool(std::span<const int>)>& wanted,
                 const std::function<bool(const ShownRecord&)>& visit);

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_RECORD_ORDER_H_

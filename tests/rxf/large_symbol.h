// A file with a symbol that is large enough to be read with a thread's help, and a small one.
#ifndef ZTB_TESTS_RXF_LARGE_SYMBOL_H_
#define ZTB_TESTS_RXF_LARGE_SYMBOL_H_

#include <string>

#include "providers/rxf/blocks_ahead.h"
#include "providers/rxf/limits.h"

namespace rxftest {

// Two blocks are read before the others, at the most.
constexpr int kLargeBlocks = static_cast<int>(rxffile::BlocksAhead::kFewestBlocks) + 3;
constexpr int kLargeRecords = (kLargeBlocks - 1) * static_cast<int>(rxffile::kBlockRecords) + 77;
constexpr int kLargeSide = 1000;

// The keys of record `i` of the large symbol, and its value.
constexpr int largeRow(int i) {
  return 1 + i / kLargeSide;
}
constexpr int largeColumn(int i) {
  return 1 + i % kLargeSide;
}
inline double largeValue(int i) {
  return i % 5 == 0 ? 1.0 / (i + 1) : i * 0.25;
}

// Writes the symbols p, of two dimensions, and behind it q, a scalar that is 42.
void writeLargeSymbol(const std::string& path);

// The offset of the body of a block of p, counted from 1.
std::size_t bodyOfBlock(const std::string& bytes, int block);

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_LARGE_SYMBOL_H_

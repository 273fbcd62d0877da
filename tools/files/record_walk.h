// A walk over the records of one symbol of a file, in ascending order of their label numbers, in
// the memory of one block.
#ifndef ZTB_TOOLS_FILES_RECORD_WALK_H_
#define ZTB_TOOLS_FILES_RECORD_WALK_H_

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/rxf.hpp>

#include "tools/files/exchange_file.h"

namespace tool {

class RecordWalk {
 public:
  // The file lives longer than the walk. The walk begins before the first record.
  RecordWalk(const ExchangeFile& file, const FileSymbol& symbol);

  // Goes to the next record; false behind the last. Throws Failure that names file, symbol and
  // block when the block that it enters cannot be read or is damaged.
  bool next() {
    if (++at_ < records_.size()) [[likely]] {
      take();
      return true;
    }
    return enterBlock();
  }

  // The record: label numbers, values, and the text of an element of a set.
  [[nodiscard]] std::span<const int> keys() const { return {keys_.data(), dimension_}; }
  [[nodiscard]] std::span<const double> values() const { return {values_.data(), valueCount_}; }
  [[nodiscard]] std::string_view text() const;

  // Back to before the first record. A symbol of one block is not read again.
  void rewind();

  // To before the first record whose first label number is `number` or greater. Of the blocks on
  // the way only a few are read, the others' heads alone; what was learnt of them is kept for the
  // next time. A damaged block is passed where that record is certain to stand behind it. Throws as
  // next() does. REQUIRES: the symbol has a position.
  void seek(int number);

 private:
  // The first label numbers of a block's first and last record; 0 as long as nobody knows.
  struct Span {
    int first = 0;
    int last = 0;
    bool isDamaged = false;
  };

  bool enterBlock();
  void take();
  [[nodiscard]] std::size_t findBlock(int number);
  [[nodiscard]] bool isDamaged(std::size_t block);
  void moveBefore(std::size_t block);

  const ExchangeFile& file_;
  ztb::RxfRecords records_;
  std::size_t dimension_;
  std::size_t valueCount_;
  std::size_t blockCount_;
  std::size_t at_ = 0;
  std::size_t passed_ = 0;  // blocks that were entered or skipped
  bool hasFailed_ = false;
  std::vector<Span> spans_;  // of all blocks; empty before the first seek()
  std::array<std::span<const int>, ZTB_MAX_DIMENSION> keyColumns_;
  std::array<std::span<const double>, ztb::fieldCount> valueColumns_;
  std::array<int, ZTB_MAX_DIMENSION> keys_{};
  std::array<double, ztb::fieldCount> values_{};
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_RECORD_WALK_H_

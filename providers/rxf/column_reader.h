// The records of one symbol of an open file by columns, block by block.
//
// Memory is that of a few blocks, whatever the symbol has: nothing else of it is kept. From the
// second block on in a row, those behind are decoded by a thread ahead of their delivery
// (BlocksAhead) where there are many; whoever looks at the first one only, or skips some, has the
// others left alone.
#ifndef ZTB_PROVIDERS_RXF_COLUMN_READER_H_
#define ZTB_PROVIDERS_RXF_COLUMN_READER_H_

#include <cstdint>
#include <memory>

#include "providers/rxf/block_columns.h"
#include "providers/rxf/block_reader.h"
#include "providers/rxf/blocks_ahead.h"
#include "providers/rxf/decoded_block.h"
#include "providers/rxf/failure.h"
#include "providers/rxf/rxf_reader.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class ColumnReader {
 public:
  // Reads symbol `number` of the file, which is no alias; 0 is the universe, a set with a record
  // for each label. REQUIRES: the file holds it.
  ColumnReader(std::shared_ptr<const RxfReader> reader, std::uint32_t number);

  // Reads the next block and gives the number of its records, 0 behind the last. Throws Failure,
  // and the same again with every call until rewind() or skipDamage(): damaged with the place,
  // changed, readFailed, cutShort. std::bad_alloc leaves the block to be read again.
  std::uint32_t next();

  // Goes behind the next block without reading its records; false behind the last. Throws as next()
  // does.
  bool skip();

  // The columns of the block that next() gave last. REQUIRES: position below the dimension, slot
  // below the number of values.
  [[nodiscard]] const std::int32_t* keys(int position) const {
    return reinterpret_cast<const std::int32_t*>(columns_.keys(static_cast<std::size_t>(position)));
  }
  [[nodiscard]] const double* values(int slot) const {
    return columns_.values(static_cast<std::size_t>(slot));
  }
  [[nodiscard]] int dimension() const { return static_cast<int>(columns_.dim()); }
  [[nodiscard]] int valueCount() const { return static_cast<int>(columns_.slots()); }

  // Back to the first block. If it is the one that next() gave last it is not read again.
  void rewind();

  // After damage: false when no block behind it can be found, and without damage.
  bool skipDamage();

  // The block that next() gave last or failed to read, from 1, and its offset; 0 before the first.
  [[nodiscard]] std::uint32_t blockNumber() const { return block_; }
  [[nodiscard]] std::uint64_t blockOffset() const { return offset_; }

 private:
  template <class Work>
  void pass(const Work& work);
  std::uint32_t readBlock();
  std::uint32_t countLabels();
  [[nodiscard]] std::uint32_t count() const { return static_cast<std::uint32_t>(columns_.count()); }

  std::shared_ptr<const RxfReader> reader_;
  std::uint32_t number_;
  Decompressor decompressor_;
  BlockReader blocks_;
  DecodedBlock decoded_;
  PieceRoom room_;
  const SpecialTable specials_;
  BlockColumns columns_;
  std::uint32_t block_ = 0;
  std::uint64_t offset_ = 0;
  // Labels of the universe that were handed out.
  std::uint32_t labels_ = 0;
  // The first block is in the columns and to be handed out.
  bool again_ = false;
  std::unique_ptr<Failure> failure_;
  bool damaged_ = false;
  // No block was skipped since the first.
  bool inARow_ = true;
  BlocksAhead ahead_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_COLUMN_READER_H_

// The records of one symbol of an open file, delivered one by one.
//
// start() verifies every block of the symbol before the first record goes out, since the number of
// records is told there: damaged blocks are left out of it and recorded in the log, whole ones are
// delivered. A few verified blocks are kept, so that small symbols are decoded once; of larger ones
// the blocks behind those are read again, and the memory does not depend on the number of records.
#ifndef ZTB_PROVIDERS_RXF_RECORD_STREAM_H_
#define ZTB_PROVIDERS_RXF_RECORD_STREAM_H_

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "providers/rxf/decoded_block.h"
#include "providers/rxf/error_log.h"
#include "providers/rxf/input_file.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/symbol_entry.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class RecordStream {
 public:
  RecordStream(const InputFile& file, Decompressor& decompressor, ErrorLog& log);

  // Begins with a symbol and returns how many records next() will deliver. `labelCount` bounds the
  // keys; special values are delivered as `specials` has them. `entry` is to stay until stop().
  std::uint32_t start(const SymbolEntry& entry, std::uint32_t number, std::string_view name,
                      std::uint32_t labelCount, const SpecialTable& specials);

  // Delivers the next record: dim keys, 1 or 5 values and the first position, from 1, that differs
  // from the record before (1 for the first record, 0 for a scalar). False, with nothing written,
  // when there is none. Null arguments are left out.
  bool next(int* keys, double* values, int* firstChanged) {
    if (at_ == ready_) [[unlikely]] {
      if (!decodePiece()) return false;
    }
    if (keys != nullptr) copyKeys(keys);
    if (values != nullptr) {
      values[0] = columns_[0][at_];
      for (std::size_t s = 1; s < slots_; ++s) values[s] = columns_[s][at_];
    }
    if (firstChanged != nullptr) *firstChanged = changed_[at_] + (dim_ != 0 ? 1 : 0);
    ++at_;
    return true;
  }

  // Ends delivery.
  void stop();

  [[nodiscard]] bool open() const { return entry_ != nullptr; }

 private:
  using Piece = std::array<double, kPieceRecords>;

  void copyKeys(int* keys) const {
    const std::int32_t* row = rows_.data() + at_ * dim_;
    switch (dim_) {
      case 1:
        keys[0] = row[0];
        break;
      case 2:
        std::memcpy(keys, row, 2 * sizeof(int));
        break;
      case 3:
        std::memcpy(keys, row, 3 * sizeof(int));
        break;
      case 4:
        std::memcpy(keys, row, 4 * sizeof(int));
        break;
      default:
        std::memcpy(keys, row, dim_ * sizeof(int));
    }
  }

  bool decodePiece();
  bool nextBlock();
  std::uint32_t verifyBlocks();
  void loadBlock(std::uint32_t index, std::uint64_t& offset, DecodedBlock& block);
  void recordDamage(std::uint32_t index, const char* reason, const char* consequence);
  void joinToPrevious(std::size_t count);
  DecodedBlock& blockToKeep();

  const InputFile& file_;
  Decompressor& decompressor_;
  ErrorLog& log_;

  const SymbolEntry* entry_ = nullptr;
  std::uint32_t number_ = 0;
  std::string name_;
  std::uint32_t labelCount_ = 0;
  SpecialTable specials_;
  std::size_t dim_ = 0;
  std::size_t slots_ = 1;

  // Blocks verified and kept: the first kept_ whole ones.
  std::vector<std::unique_ptr<DecodedBlock>> blocks_;
  std::size_t kept_ = 0;
  std::vector<std::uint32_t> damaged_;
  std::uint32_t walkable_ = 0;  // blocks whose heads lead on

  // Where delivery is.
  DecodedBlock* current_ = nullptr;
  std::size_t deliveredKept_ = 0;
  std::uint32_t nextIndex_ = 0;
  std::size_t nextDamaged_ = 0;
  std::uint64_t nextOffset_ = 0;
  bool first_ = true;
  std::array<std::int32_t, kMaxDimension> last_{};

  // The piece that is decoded.
  std::size_t at_ = 0;
  std::size_t ready_ = 0;
  std::vector<std::int32_t> rows_;
  std::array<std::uint8_t, kPieceRecords> changed_{};
  std::array<Piece, kMaxSlots> columns_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RECORD_STREAM_H_

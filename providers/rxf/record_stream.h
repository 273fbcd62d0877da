// The records of one symbol of an open file, delivered one by one.
//
// start() verifies every block of the symbol before the first record goes out, since the number of
// records is told there: damaged blocks are left out of it and recorded in the log, whole ones are
// delivered. A few verified blocks are kept, so that small symbols are decoded once; of larger ones
// the blocks behind those are read again. Of a block that is not kept only its place and checksum
// are remembered, 24 bytes for 65536 records.
#ifndef ZTB_PROVIDERS_RXF_RECORD_STREAM_H_
#define ZTB_PROVIDERS_RXF_RECORD_STREAM_H_

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "providers/rxf/block_reader.h"
#include "providers/rxf/decoded_block.h"
#include "providers/rxf/error_log.h"
#include "providers/rxf/input_file.h"
#include "providers/rxf/record_piece.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/symbol_entry.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class RecordStream {
 public:
  RecordStream(const InputFile& file, ErrorLog& log);

  // Begins with a symbol and returns how many records next() will deliver. `labelCount` bounds the
  // keys; special values are delivered as `specials` has them. `entry` is to stay until stop().
  std::uint32_t start(const SymbolEntry& entry, std::uint32_t number, std::string_view name,
                      std::uint32_t labelCount, const SpecialTable& specials);

  // The records that wait for delivery. When they are used up, refill() brings the next ones; false
  // when there are none.
  RecordPiece& piece() { return piece_; }
  bool refill();

  // Ends delivery.
  void stop();

  [[nodiscard]] bool open() const { return open_; }

 private:
  bool nextBlock();
  std::uint32_t verifyBlocks();
  bool reload(const BlockReader::Place& waiting, DecodedBlock& block);
  void recordDamage(std::uint32_t index, const char* reason, const char* consequence);
  void joinToPrevious(std::size_t count);
  DecodedBlock& blockToKeep();

  ErrorLog& log_;
  Decompressor decompressor_;
  BlockReader reader_;
  bool open_ = false;
  SpecialTable specials_;
  std::size_t dim_ = 0;

  // Blocks verified and kept: the first kept_ whole ones.
  std::vector<std::unique_ptr<DecodedBlock>> blocks_;
  std::size_t kept_ = 0;
  // Those behind them, to be read again.
  std::vector<BlockReader::Place> waiting_;

  // Where delivery is.
  DecodedBlock* current_ = nullptr;
  std::size_t deliveredKept_ = 0;
  std::size_t deliveredWaiting_ = 0;
  bool first_ = true;
  std::array<std::uint32_t, kMaxDimension> last_{};

  RecordPiece piece_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RECORD_STREAM_H_

// The records of one symbol of an open file, delivered one by one.
//
// A symbol is delivered whole or not at all: start() verifies every block of it before the first
// record goes out, or, for those who can take back what they got, each block before its own records
// do; what goes wrong is a Failure that names the block. When all were verified, a few blocks are
// kept, so that small symbols are decoded once; of larger ones the blocks behind those are read
// again. Of a block that is not kept only its place and checksum are remembered, 24 bytes for 65536
// records. Blocks that are verified on the way, and are many, are decoded by a thread ahead of
// their delivery (BlocksAhead), which is over when the last of them is delivered.
#ifndef ZTB_PROVIDERS_RXF_RECORD_STREAM_H_
#define ZTB_PROVIDERS_RXF_RECORD_STREAM_H_

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "providers/rxf/block_columns.h"
#include "providers/rxf/block_reader.h"
#include "providers/rxf/blocks_ahead.h"
#include "providers/rxf/decoded_block.h"
#include "providers/rxf/failure.h"
#include "providers/rxf/input_file.h"
#include "providers/rxf/record_piece.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/symbol_entry.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class RecordStream {
 public:
  explicit RecordStream(const InputFile& file) : reader_(file, decompressor_) {}

  // When the blocks are verified.
  enum class Verify { ahead, onTheWay };

  // Begins with a symbol, all of whose records are known to be right afterwards if they are
  // verified ahead. `labelCount` bounds the keys and `textCount` a set's text numbers; special
  // values are delivered as `specials` has them. `entry` is to stay until stop(). Failures:
  // damaged, changed, cutShort, readFailed; nothing is open then.
  void start(const SymbolEntry& entry, std::uint32_t number, std::string_view name,
             std::uint32_t labelCount, std::uint32_t textCount, const SpecialTable& specials,
             Verify verify);

  // The records that wait for delivery. When they are used up, refill() brings the next ones; false
  // when there are none. Failures: those of start(); no more is delivered then.
  RecordPiece& piece() { return piece_; }
  bool refill();

  // Ends delivery.
  void stop();

  [[nodiscard]] bool open() const { return open_; }

 private:
  bool nextBlock();
  bool takeAhead();
  void verifyBlocks();
  void readVerified(DecodedBlock& block);
  [[nodiscard]] Failure damageAt(const BlockReader::Place& place, const Malformed& malformed) const;
  void joinToPrevious();
  DecodedBlock& blockToKeep();

  Decompressor decompressor_;
  BlockReader reader_;
  bool open_ = false;
  Verify verify_ = Verify::ahead;
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

  // The block that was decoded ahead and is delivered, and what decodes those behind it.
  BlockColumns columns_;
  BlocksAhead ahead_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RECORD_STREAM_H_

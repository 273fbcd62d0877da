// A thread that reads, verifies and decodes the next block of a symbol while its caller works on
// the one before.
//
// It begins where a BlockReader stands. Whoever takes the blocks has them in the order of the file,
// and at the same block the same failure, as if the reader itself had read on; the reader follows,
// so that it can go on by itself from any block on. That it does where there is no thread: not for
// few blocks, not where the process may not use a second processor, not without memory for one, and
// not behind a fork, in the child. The thread ends behind the last block, at the first failure, and
// with stop(); none is left when take() has given the last block.
#ifndef ZTB_PROVIDERS_RXF_BLOCKS_AHEAD_H_
#define ZTB_PROVIDERS_RXF_BLOCKS_AHEAD_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "providers/rxf/block_columns.h"
#include "providers/rxf/block_reader.h"
#include "providers/rxf/special_table.h"

namespace rxffile {

class BlocksAhead {
 public:
  // Fewer blocks take less time than a thread gains.
  static constexpr std::uint32_t kFewestBlocks = 6;

  BlocksAhead();
  BlocksAhead(const BlocksAhead&) = delete;
  BlocksAhead& operator=(const BlocksAhead&) = delete;
  ~BlocksAhead();

  // Begins with the block behind the last one that `reader` read, unless that does not pay or no
  // thread can be had. `columns` are what take() will fill; where they have no room for a block
  // yet, it is made.
  void start(const BlockReader& reader, const SpecialTable& specials,
             BlockColumns& columns) noexcept;

  [[nodiscard]] bool running() const { return work_ != nullptr; }

  // Puts the next block into `columns`, and `reader` behind it. Throws what BlockReader::next()
  // throws, with `reader` as that leaves it. False, with nothing changed, where the thread ran out
  // of memory or is that of another process; then, and behind a failure and the last block, none
  // is running. REQUIRES: running(), `reader` is where start() or the last call left it, and
  // `columns` have the room that they had then.
  bool take(BlockReader& reader, BlockColumns& columns);

  // Ends the thread.
  void stop() noexcept;

 private:
  struct Work;
  [[nodiscard]] bool leftBehind() noexcept;

  std::unique_ptr<Work> work_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_BLOCKS_AHEAD_H_

// The blocks of one symbol's records, in the order of the file, each verified before anything of it
// is handed out.
//
// Both the stream that delivers record by record and the reader that hands out columns stand on
// this one.
#ifndef ZTB_PROVIDERS_RXF_BLOCK_READER_H_
#define ZTB_PROVIDERS_RXF_BLOCK_READER_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "providers/rxf/decoded_block.h"
#include "providers/rxf/detail_text.h"
#include "providers/rxf/frame.h"
#include "providers/rxf/input_file.h"
#include "providers/rxf/limits.h"
#include "providers/rxf/symbol_entry.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class BlockReader {
 public:
  // Where a block stands and what it is, to read it a second time.
  struct Place {
    std::uint32_t index = 0;
    std::uint64_t offset = 0;
    std::uint64_t checksum = 0;
  };

  // How far it is; what was read before does not count for it.
  struct Position {
    std::uint32_t index = 0;
    std::uint64_t offset = 0;
    Place place;
    bool lost = false;
    // Keys of the last record of the block before, unless there was none or it was not read.
    bool first = true;
    std::array<std::uint32_t, kMaxDimension> last{};
  };

  BlockReader(const InputFile& file, Decompressor& decompressor)
      : file_(file), decompressor_(decompressor) {}

  // One that stands where `other` does and reads on by itself.
  BlockReader(const BlockReader& other, Decompressor& decompressor)
      : file_(other.file_),
        decompressor_(decompressor),
        entry_(other.entry_),
        number_(other.number_),
        name_(other.name_),
        labelCount_(other.labelCount_),
        textCount_(other.textCount_),
        at_(other.at_) {}

  // Begins with the first block of a symbol. `labelCount` bounds the keys, and `textCount` the text
  // numbers of a set. `entry` is to stay until the next start.
  void start(const SymbolEntry& entry, std::uint32_t number, std::string_view name,
             std::uint32_t labelCount, std::uint32_t textCount);

  // Whether no block is left.
  [[nodiscard]] bool atEnd() const { return at_.index == entry_->blockCount(); }
  // Whether no block was read yet.
  [[nodiscard]] bool atStart() const { return at_.index == 0; }
  [[nodiscard]] std::uint32_t blocksLeft() const { return entry_->blockCount() - at_.index; }

  [[nodiscard]] const Position& position() const { return at_; }
  // Goes where another reader of the same symbol is.
  void moveTo(const Position& position) { at_ = position; }

  // The shape of the records.
  [[nodiscard]] std::size_t dim() const { return static_cast<std::size_t>(entry_->dim); }
  [[nodiscard]] std::size_t slots() const {
    return static_cast<std::size_t>(slotsOfType(entry_->type));
  }

  [[nodiscard]] SystemCalls& calls() const { return file_.calls(); }

  // The block that next() reads, or that it failed to read: its index, from 0, and its offset.
  [[nodiscard]] const Place& place() const { return at_.place; }

  // Reads the next block into `block` and verifies all of it, also that its records come behind
  // those of the whole block before. Throws Malformed when it is damaged, and Failure when the file
  // cannot be read or was changed since it was opened, after which the block can be asked for
  // again; after Malformed the next call is for the block behind; when the length of the damaged
  // one is not known there is none, and lost() holds. REQUIRES: not atEnd().
  void next(DecodedBlock& block);

  // Goes behind the next block, of which the head alone is read and verified. Throws as next()
  // does. REQUIRES: not atEnd().
  void skip();

  // Whether the blocks behind the damaged one cannot be found.
  [[nodiscard]] bool lost() const { return at_.lost; }

  // Reads a block again that next() has verified. Throws Malformed when it is another now, and
  // Failure.
  void again(const Place& place, DecodedBlock& block);

  // "block 2 of 3 of symbol p", and with that "block 2 of 3 of symbol p in FILE: REASON".
  [[nodiscard]] DetailText placeText(std::uint32_t index) const;
  [[nodiscard]] DetailText damageText(std::uint32_t index, const char* reason) const;

 private:
  template <class Work>
  void pass(const Work& work);
  FrameHead readHead(std::uint32_t index, std::uint64_t& offset) const;
  FrameHead readBlock(std::uint32_t index, std::uint64_t& offset, DecodedBlock& block);
  void checkOrder(const DecodedBlock& block);

  const InputFile& file_;
  Decompressor& decompressor_;

  const SymbolEntry* entry_ = nullptr;
  std::uint32_t number_ = 0;
  std::string name_;
  std::uint32_t labelCount_ = 0;
  std::uint32_t textCount_ = 0;

  Position at_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_BLOCK_READER_H_

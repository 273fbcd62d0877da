// Records of a symbol of a database, block by block. No record handle is kept between two blocks,
// so that the database may end before its blocks do.
#ifndef ZTB_FORMATS_ARROW_DATABASE_BLOCKS_H_
#define ZTB_FORMATS_ARROW_DATABASE_BLOCKS_H_

#include <array>
#include <memory>
#include <string>
#include <ztb/ztb.hpp>

#include "formats/arrow/record_blocks.h"

namespace formats {

class DatabaseBlocks : public RecordBlocks {
 public:
  // Blocks of `most` records. Where values lie as a column they are held and not copied.
  DatabaseBlocks(const ztb::Symbol& symbol, std::size_t most);

  // Throws ztb::Error when records of the database have changed since this was made.
  RecordBlock next() override;
  std::string_view label(int number) override;

 private:
  [[nodiscard]] ztb::detail::OwnedRecord toNext() const;
  bool showInPlace(RecordBlock& block) const;
  [[nodiscard]] std::shared_ptr<const ztbHeldValues> holdValues() const;
  void readTexts(RecordBlock& block) const;

  ztbRec* database_;
  void* symbol_;
  std::size_t positions_;
  std::size_t slots_;
  std::size_t most_;
  bool isSet_;
  unsigned changes_;
  std::size_t left_;
  std::size_t read_ = 0;
  // The last record of the block before.
  std::array<int, ZTB_MAX_DIMENSION> last_{};
  ztb::Text label_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_DATABASE_BLOCKS_H_

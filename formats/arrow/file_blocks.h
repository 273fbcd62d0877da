// Records of a symbol of an exchange file, in blocks as the file has them.
#ifndef ZTB_FORMATS_ARROW_FILE_BLOCKS_H_
#define ZTB_FORMATS_ARROW_FILE_BLOCKS_H_

#include <string>

#include "formats/arrow/record_blocks.h"
#include "tools/files/exchange_file.h"

namespace formats {

class FileBlocks : public RecordBlocks {
 public:
  // The file lives longer than the blocks. With `spells`, labels and texts that are no UTF-8 are
  // spelled out, as formats/tables/exact_text.h tells; without, they stand as they are.
  FileBlocks(const tool::ExchangeFile& file, const tool::FileSymbol& symbol, bool spells);

  // Throws tool::Failure for a block that cannot be read.
  RecordBlock next() override;
  std::string_view label(int number) override;

 private:
  std::string_view shown(std::string_view text);

  const tool::ExchangeFile& file_;
  ztb::RxfRecords records_;
  bool isSet_;
  bool spells_;
  std::string room_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_FILE_BLOCKS_H_

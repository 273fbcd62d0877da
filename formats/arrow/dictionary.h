// The labels of one column, as dictionaries that its batches share as long as they can.
#ifndef ZTB_FORMATS_ARROW_DICTIONARY_H_
#define ZTB_FORMATS_ARROW_DICTIONARY_H_

#include <memory>
#include <vector>

#include "formats/arrow/record_blocks.h"

namespace formats {

// A dictionary holds the labels of the batch that it was made for, in the order of their numbers;
// it stays the same while batches have no other labels. So it is never larger than a batch.
class Dictionary {
 public:
  // Makes places in the dictionary of label numbers. Throws ztb::Error for a label that is no
  // UTF-8.
  void encode(std::vector<int>& numbers, RecordBlocks& labels);
  [[nodiscard]] const std::shared_ptr<const TextColumn>& texts() const { return texts_; }

 private:
  void makeFor(const std::vector<int>& numbers, RecordBlocks& labels);

  std::shared_ptr<const TextColumn> texts_ = std::make_shared<TextColumn>();
  std::vector<int> numbers_;
  // By label number, the place in the dictionary, or -1.
  std::vector<int> places_;
};

// Throws ztb::Error unless a text of this kind is UTF-8.
void requireUtf8(std::string_view text, const char* kind);

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_DICTIONARY_H_

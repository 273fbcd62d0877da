// Blocks of records as an Arrow stream.
#ifndef ZTB_FORMATS_ARROW_ARROW_STREAM_H_
#define ZTB_FORMATS_ARROW_ARROW_STREAM_H_

#include <ztb/arrow.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "formats/arrow/record_blocks.h"

namespace formats {

// What the columns of a stream are.
struct ArrowColumns {
  std::vector<std::string> keys;
  std::vector<std::string> contents;
  bool isSet = false;
  bool naAsNull = false;
  // The double that goes out as a null.
  double na = 0;
};

// What stands around all that a stream does with its blocks, and ends with it.
class ArrowOwner {
 public:
  ArrowOwner() = default;
  ArrowOwner(const ArrowOwner&) = delete;
  ArrowOwner& operator=(const ArrowOwner&) = delete;
  virtual ~ArrowOwner() = default;
  // Throws ztb::Error where the blocks cannot be used.
  virtual void run(const std::function<void()>& work) { work(); }
};

// Fills *stream, which owns all that is given here until it is released.
void makeArrowStream(ArrowColumns columns, std::unique_ptr<RecordBlocks> blocks,
                     std::unique_ptr<ArrowOwner> owner, ArrowArrayStream* stream);

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_ARROW_STREAM_H_

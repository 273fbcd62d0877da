// Records of a symbol by columns, block by block, from whatever holds them.
#ifndef ZTB_FORMATS_ARROW_RECORD_BLOCKS_H_
#define ZTB_FORMATS_ARROW_RECORD_BLOCKS_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace formats {

// Texts one behind the other, as Arrow has them: text i ends where text i + 1 begins.
struct TextColumn {
  std::vector<std::int32_t> begins{0};
  std::string chars;

  void add(std::string_view text) {
    chars += text;
    begins.push_back(static_cast<std::int32_t>(chars.size()));
  }
};

struct RecordBlock {
  std::size_t count = 0;
  std::vector<std::vector<int>> keys;       // label numbers, an array for each position
  std::vector<std::vector<double>> values;  // an array for each slot; none of a set
  // The values of the only slot where they lie, in place of values, and what they stay with.
  const double* inPlace = nullptr;
  std::shared_ptr<const void> held;
  TextColumn texts;  // of a set
};

class RecordBlocks {
 public:
  RecordBlocks() = default;
  RecordBlocks(const RecordBlocks&) = delete;
  RecordBlocks& operator=(const RecordBlocks&) = delete;
  virtual ~RecordBlocks() = default;

  // The next records; their count is 0 behind the last.
  virtual RecordBlock next() = 0;
  // The label of a number; valid until the next call.
  virtual std::string_view label(int number) = 0;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_RECORD_BLOCKS_H_

#include "tests/rxf/large_symbol.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"

namespace rxftest {

void writeLargeSymbol(const std::string& path) {
  const auto object = std::make_unique<rxffile::RxfObject>(rxffile::operatingSystem());
  ASSERT_EQ(object->openWrite(path.c_str(), ""), 0);
  object->startLabels();
  for (int i = 1; i <= kLargeSide; ++i) object->addLabel(("l" + std::to_string(i)).c_str());
  object->finishLabels();
  object->startWriting("p", "", 2, kParameter, 0);
  for (int i = 0; i < kLargeRecords; ++i) {
    const std::array<int, 2> keys{largeRow(i), largeColumn(i)};
    const double value = largeValue(i);
    ASSERT_TRUE(object->write(keys.data(), &value));
  }
  object->finishWriting();
  object->startWriting("q", "", 0, kParameter, 0);
  const double answer = 42;
  object->write(nullptr, &answer);
  object->finishWriting();
  ASSERT_EQ(object->close(), 0);
}

// The first block begins behind the file's head of 96 bytes; a block's own head of 40 tells at 16
// how long its body is.
std::size_t bodyOfBlock(const std::string& bytes, int block) {
  std::size_t at = 96;
  for (;; --block) {
    if (block == 1) return at + 40;
    std::size_t length = 0;
    for (std::size_t i = 4; i-- > 0;) {
      length = length << 8U | static_cast<unsigned char>(bytes[at + 16 + i]);
    }
    at += 40 + length;
  }
}

}  // namespace rxftest

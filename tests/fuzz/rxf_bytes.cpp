#include "tests/fuzz/rxf_bytes.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "providers/rxf/rxf_object.h"

namespace rxffuzz {

namespace {

using rxffile::RxfObject;

// A few bytes can stand for many records; more than these are not read from one symbol.
constexpr int kRecordsRead = 70000;

// The one file that can be opened is the bytes.
class MemoryCalls : public rxffile::SystemCalls {
 public:
  MemoryCalls(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  int open(const char* /*path*/, int /*flags*/, mode_t /*mode*/) override { return 1000; }
  int close(int /*fd*/) override { return 0; }
  int fstat(int /*fd*/, struct stat* status) override {
    *status = {};
    status->st_mode = S_IFREG;
    status->st_size = static_cast<off_t>(size_);
    return 0;
  }
  ssize_t pread(int /*fd*/, void* to, std::size_t size, off_t offset) override {
    const auto at = static_cast<std::size_t>(offset);
    if (at >= size_) return 0;
    const std::size_t count = std::min(size, size_ - at);
    std::memcpy(to, data_ + at, count);
    return static_cast<ssize_t>(count);
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

void readSymbol(RxfObject& object, int number, int labelCount) {
  std::array<char, 256> text{};
  int dim = 0;
  int type = 0;
  int recordCount = 0;
  int userInfo = 0;
  require(object.symbolInfo(number, text.data(), &dim, &type), "symbol is there");
  require(object.findSymbol(text.data()) == number, "symbol is found by its name");
  require(object.symbolInfoX(number, &recordCount, &userInfo, text.data()), "symbol is there");
  std::vector<std::array<char, 256>> buffers(20);
  std::array<char*, 20> names{};
  for (std::size_t d = 0; d < names.size(); ++d) names[d] = buffers[d].data();
  object.symbolDomain(number, names.data());
  bool started = false;
  const int count = object.startReading(number, started);
  require(count <= recordCount, "no more records than announced");
  std::vector<int> previous;
  for (int i = 0; i < std::min(count, kRecordsRead); ++i) {
    std::array<int, 20> keys{};
    std::array<double, 5> values{};
    int firstChanged = -1;
    require(object.read(keys.data(), values.data(), &firstChanged), "announced record comes");
    const std::vector<int> now(keys.begin(), keys.begin() + dim);
    for (const int key : now) require(key >= 1 && key <= labelCount, "key is a label");
    if (i > 0) {
      require(previous < now, "records ascend");
      const auto changed = std::mismatch(now.begin(), now.end(), previous.begin()).first;
      require(firstChanged == changed - now.begin() + 1, "first changed position is right");
    }
    previous = now;
  }
  if (started) require(object.finishReading(), "reading ends");
}

}  // namespace

void readBytes(const std::uint8_t* data, std::size_t size) {
  MemoryCalls calls(data, size);
  const auto object = std::make_unique<RxfObject>(calls);
  std::array<char, 256> text{};
  const int error = object->openRead("bytes");
  if (error != 0) {
    object->errorText(error, text.data());
    require(std::strncmp(text.data(), "Unknown", 7) != 0, "error has a text");
    return;
  }
  int symbolCount = 0;
  int labelCount = 0;
  object->systemInfo(&symbolCount, &labelCount);
  for (int i = 1; i <= labelCount; ++i) require(object->label(i, text.data()), "label is there");
  for (int i = 1; object->elementText(i, text.data()); ++i) {
  }
  for (int i = 1; i <= symbolCount; ++i) readSymbol(*object, i, labelCount);
}

}  // namespace rxffuzz

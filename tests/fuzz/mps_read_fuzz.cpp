// MPS files of any bytes, plain or packed: read or refused with a place in the file.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "providers/model/model_error.h"
#include "providers/model/mps_reader.h"

namespace {

// A file without a place in any folder.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("mps", 0)) {
    if (descriptor_ < 0) std::abort();
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void fill(const std::uint8_t* data, std::size_t size) const {
    if (ftruncate(descriptor_, 0) != 0) std::abort();
    if (pwrite(descriptor_, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
  }
  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const MemoryFile file;
  file.fill(data, size);
  try {
    const auto model = lomu::readMps(file.path());
    const auto require = [](int number, const auto& all) {
      if (number < 0 || static_cast<std::size_t>(number) >= all.size()) std::abort();
    };
    for (const auto& term : model.terms) {
      require(term.row, model.rows);
      require(term.column, model.columns);
    }
    for (const auto& product : model.products) {
      require(product.row, model.rows);
      require(product.column1, model.columns);
      require(product.column2, model.columns);
    }
    for (const auto& set : model.sets) {
      for (const auto& member : set.members) require(member.column, model.columns);
    }
  } catch (const lomu::ModelError& error) {
    if (!std::string_view(error.what()).starts_with(file.path() + ":")) std::abort();
  }
  return 0;
}

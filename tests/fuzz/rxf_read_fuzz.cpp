#include "tests/fuzz/rxf_bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  rxffuzz::readBytes(data, size);
  return 0;
}

#include <string>

#include "tests/fuzz/rxf_bytes.h"
#include "tests/rxf/reseal.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  rxftest::reseal(bytes);
  rxffuzz::readBytes(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return 0;
}

// Reads everything of an exchange file that lies in memory and ends the process when what is
// delivered could not have been written.
#ifndef ZTB_TESTS_FUZZ_RXF_BYTES_H_
#define ZTB_TESTS_FUZZ_RXF_BYTES_H_

#include <cstddef>
#include <cstdint>

namespace rxffuzz {

void readBytes(const std::uint8_t* data, std::size_t size);

}  // namespace rxffuzz

#endif  // ZTB_TESTS_FUZZ_RXF_BYTES_H_

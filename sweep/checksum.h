// Checksums of what a sweep is made from: XXH3 of 64 bits.
#ifndef ZTB_SWEEP_CHECKSUM_H_
#define ZTB_SWEEP_CHECKSUM_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace sweep {

std::uint64_t checksumOfText(std::string_view text);
// Of the bytes of a file. Throws Failure if it cannot be read, or is no regular file.
std::uint64_t checksumOfFile(const std::string& path);

// A checksum as it stands in the text of sweep_inputs: sixteen digits.
std::string checksumDigits(std::uint64_t sum);

// The word "key=..." of a text of such words, empty for none.
std::string_view inputsWord(std::string_view text, std::string_view key);

}  // namespace sweep

#endif  // ZTB_SWEEP_CHECKSUM_H_

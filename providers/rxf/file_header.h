// The first 96 bytes of an exchange file: what it is, how long it is, and where its tables lie.
#ifndef ZTB_PROVIDERS_RXF_FILE_HEADER_H_
#define ZTB_PROVIDERS_RXF_FILE_HEADER_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "providers/rxf/input_file.h"

namespace rxffile {

inline constexpr std::size_t kFileHeaderBytes = 96;
inline constexpr std::uint32_t kFormatVersion = 1;

// A run of bytes of the file that holds the chunks of one table.
struct Section {
  std::uint64_t offset = 0;
  std::uint64_t length = 0;
};

struct FileHeader {
  std::uint64_t fileLength = 0;
  std::uint32_t labelCount = 0;
  std::uint32_t textCount = 0;
  std::uint32_t symbolCount = 0;
  // The tables follow one another from here to the end of the file: information, labels, texts,
  // symbols.
  Section info;
  Section labels;
  Section texts;
  Section symbols;

  using Encoded = std::array<std::uint8_t, kFileHeaderBytes>;

  [[nodiscard]] Encoded encode() const;

  // Reads and checks the header. Failures: notRxfFile, newerVersion, cutShort, damaged, readFailed.
  // Afterwards every section lies in the file and every count is within the limits.
  static FileHeader read(const InputFile& file);
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_FILE_HEADER_H_

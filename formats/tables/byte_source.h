// The bytes of a file, unpacked where it is packed.
#ifndef ZTB_FORMATS_TABLES_BYTE_SOURCE_H_
#define ZTB_FORMATS_TABLES_BYTE_SOURCE_H_

#include <cstddef>
#include <memory>
#include <string>

namespace formats {

class ByteSource {
 public:
  ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  virtual ~ByteSource() = default;

  // Reads up to `size` bytes; 0 at the end only. Throws Failure if the file cannot be read or what
  // was packed is damaged or cut short.
  virtual std::size_t read(char* into, std::size_t size) = 0;
};

// Opens a file, "-" being standard input. A name that ends in .gz or .zst is unpacked. Throws
// Failure if that cannot be done.
std::unique_ptr<ByteSource> openBytes(const std::string& path);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_BYTE_SOURCE_H_

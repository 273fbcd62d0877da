// One table of a file, chunk by chunk, so that no more memory is taken than the file has content.
#ifndef ZTB_PROVIDERS_RXF_TABLE_READER_H_
#define ZTB_PROVIDERS_RXF_TABLE_READER_H_

#include <cstdint>
#include <functional>

#include "providers/rxf/bytes.h"
#include "providers/rxf/file_header.h"
#include "providers/rxf/input_file.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class TableReader {
 public:
  // `what` names the table in error texts.
  TableReader(const InputFile& file, Decompressor& decompressor, std::uint32_t kind,
              const char* what)
      : file_(file), decompressor_(decompressor), kind_(kind), what_(what) {}

  // Calls `takeEntry` for each of the table's entries in order; it takes one entry from the front
  // of what it is given, and throws Malformed when it cannot. Failures: damaged, cutShort,
  // readFailed.
  void read(const Section& section, std::uint32_t entryCount,
            const std::function<void(ByteReader&)>& takeEntry);

 private:
  // Reads the chunk at `offset`, leaves its content in content_ and its entry count in count_, and
  // returns the bytes that it takes in the file.
  std::uint64_t readChunk(std::uint64_t offset, std::uint64_t end, std::uint32_t index);

  const InputFile& file_;
  Decompressor& decompressor_;
  std::uint32_t kind_;
  const char* what_;
  Bytes body_;
  Bytes content_;
  std::uint32_t count_ = 0;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_TABLE_READER_H_

// One table of a file: entries are gathered to chunks, each of which is compressed and checksummed.
#ifndef ZTB_PROVIDERS_RXF_TABLE_WRITER_H_
#define ZTB_PROVIDERS_RXF_TABLE_WRITER_H_

#include <cstdint>
#include <string_view>

#include "providers/rxf/bytes.h"
#include "providers/rxf/file_header.h"
#include "providers/rxf/output_file.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class TableWriter {
 public:
  TableWriter(OutputFile& file, Compressor& compressor, std::uint32_t kind)
      : file_(file), compressor_(compressor), kind_(kind), begin_(file.position()) {}

  // Adds a text with its length before it. REQUIRES: at most 255 bytes.
  void addText(std::string_view text);

  // Adds an entry of any content. REQUIRES: less than kMaxChunkBytes.
  void addEntry(const Bytes& entry);

  // Writes what is left and returns where the table lies.
  Section finish();

 private:
  void makeRoom(std::size_t size);
  void writeChunk();

  OutputFile& file_;
  Compressor& compressor_;
  std::uint32_t kind_;
  std::uint64_t begin_;
  std::uint32_t index_ = 0;
  std::uint32_t count_ = 0;
  Bytes content_;
  Bytes body_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_TABLE_WRITER_H_

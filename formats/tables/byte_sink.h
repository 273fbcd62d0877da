// Bytes on their way into a new file, packed where its name asks for it.
#ifndef ZTB_FORMATS_TABLES_BYTE_SINK_H_
#define ZTB_FORMATS_TABLES_BYTE_SINK_H_

#include <memory>
#include <string>
#include <string_view>

namespace formats {

class ByteSink {
 public:
  ByteSink() = default;
  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;
  virtual ~ByteSink() = default;

  // Takes the bytes on. Throws Failure if they cannot be written.
  virtual void write(std::string_view bytes) = 0;
  // Completes the file and gives it its name. Throws Failure if that cannot be done; called once.
  virtual void finish() = 0;
};

// Begins a new file, "-" being standard output, which is written to as it is. A name that ends in
// .gz or .zst is packed. Nothing stands under the name before finish(), and a file there is
// replaced by it. Throws Failure if the file cannot be made.
std::unique_ptr<ByteSink> makeBytes(const std::string& path);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_BYTE_SINK_H_

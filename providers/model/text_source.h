// The bytes of a model file, plain or packed (.gz), block by block.
#ifndef ZTB_PROVIDERS_MODEL_TEXT_SOURCE_H_
#define ZTB_PROVIDERS_MODEL_TEXT_SOURCE_H_

#include <cstddef>
#include <string>

namespace lomu {

// Throws ModelError unless it is an ordinary file with something in it that can be opened.
void checkReadable(const std::string& file);

// Whether the name ends so, in any case of letters, with something before it.
bool hasEnding(const std::string& file, const std::string& ending);

class TextSource {
 public:
  // Opens the file; one whose name ends in .gz is unpacked. Throws ModelError as checkReadable.
  explicit TextSource(std::string file);
  ~TextSource();
  TextSource(const TextSource&) = delete;
  TextSource& operator=(const TextSource&) = delete;

  // Up to `size` bytes; fewer at the end only, 0 behind it. Throws ModelError when the file cannot
  // be read or is packed badly.
  std::size_t read(char* bytes, std::size_t size);

  [[nodiscard]] const std::string& file() const { return file_; }
  // Of the file as it lies on disk.
  [[nodiscard]] std::size_t fileSize() const { return size_; }

 private:
  std::string file_;
  std::size_t size_ = 0;
  void* stream_;  // zlib's, which passes files that are not packed through
  bool packed_;
};

// All of a file. Throws ModelError, also when there are more bytes than the largest int tells.
std::string readText(const std::string& file);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_TEXT_SOURCE_H_

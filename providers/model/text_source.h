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
  // Opens the file; one that begins as packed ones do is unpacked, whatever its name, and one whose
  // name ends in .gz has to be packed. Throws ModelError as checkReadable.
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
  void readAhead();
  std::size_t readPlain(char* bytes, std::size_t size);
  std::size_t readPacked(char* bytes, std::size_t size);

  std::string file_;
  std::size_t size_ = 0;
  int descriptor_;
  void* stream_ = nullptr;  // zlib's, which then has the descriptor; null for a plain file
};

// All of a file. Throws ModelError, also when there are more bytes than the largest int tells.
std::string readText(const std::string& file);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_TEXT_SOURCE_H_

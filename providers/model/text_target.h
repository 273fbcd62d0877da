// A text file that is written: it comes into being whole, or not at all.
#ifndef ZTB_PROVIDERS_MODEL_TEXT_TARGET_H_
#define ZTB_PROVIDERS_MODEL_TEXT_TARGET_H_

#include <cstdio>
#include <string>
#include <string_view>

namespace lomu {

class TextTarget {
 public:
  // Begins a file beside `file`, which is not touched before publish(). Throws ModelError, also
  // where `file` is a link, a device or a folder.
  explicit TextTarget(std::string file);
  // Removes what was not published.
  ~TextTarget();
  TextTarget(const TextTarget&) = delete;
  TextTarget& operator=(const TextTarget&) = delete;

  TextTarget& operator<<(std::string_view text);
  // The shortest text that reads back as the same number.
  TextTarget& operator<<(double number);

  // Puts the file in its place. Throws ModelError when anything could not be written.
  void publish();

 private:
  [[noreturn]] void fail(int error) const;

  std::string file_;
  std::string temporary_;
  std::FILE* stream_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_TEXT_TARGET_H_

// What files are called in messages that stand under another name for a while: input that came
// through a pipe, or a database that was written out to be read from a file.
#ifndef ZTB_FORMATS_SHOWN_NAMES_H_
#define ZTB_FORMATS_SHOWN_NAMES_H_

#include <string>
#include <utility>
#include <vector>

namespace formats {

class ShownNames {
 public:
  // Texts that name the file at `path` are to name it `shown`. The path is a whole one, which
  // stands in a text for nothing else.
  void add(const std::string& path, const std::string& shown);

  // The text with these names.
  [[nodiscard]] std::string applied(std::string text) const;

 private:
  std::vector<std::pair<std::string, std::string>> names_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SHOWN_NAMES_H_

// A file that the viewer shows.
#ifndef ZTB_VIEW_OPENED_FILE_H_
#define ZTB_VIEW_OPENED_FILE_H_

#include <string>

#include "tools/files/exchange_file.h"

namespace view {

enum class FileKind { data, sweep };

class OpenedFile {
 public:
  // Throws Failure that names the file if it cannot be opened.
  explicit OpenedFile(const std::string& path);

  [[nodiscard]] const tool::ExchangeFile& exchange() const { return exchange_; }
  [[nodiscard]] FileKind kind() const { return kind_; }
  // Its name without the folder.
  [[nodiscard]] std::string name() const;

  // The symbol of this name, of an alias its set. Throws RequestError where there is none.
  [[nodiscard]] const tool::FileSymbol& symbol(const std::string& name) const;

 private:
  tool::ExchangeFile exchange_;
  FileKind kind_;
};

}  // namespace view

#endif  // ZTB_VIEW_OPENED_FILE_H_

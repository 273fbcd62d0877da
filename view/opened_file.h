// A file that the viewer shows: an exchange file or, by its ending, a model.
#ifndef ZTB_VIEW_OPENED_FILE_H_
#define ZTB_VIEW_OPENED_FILE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "tools/files/exchange_file.h"

namespace view {

enum class FileKind { data, sweep, model };

class OpenedFile {
 public:
  // Throws Failure that names the file if it cannot be opened.
  explicit OpenedFile(const std::string& path);
  // An exchange file that is shown under another name.
  OpenedFile(const std::string& path, const std::string& name);

  // Throws RequestError for a model.
  [[nodiscard]] const tool::ExchangeFile& exchange() const;
  [[nodiscard]] FileKind kind() const { return kind_; }
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::uint64_t bytes() const { return bytes_; }
  // Its name without the folder.
  [[nodiscard]] const std::string& name() const { return name_; }
  // A number that no other file of the process has.
  [[nodiscard]] std::size_t id() const { return id_; }

  // The symbol of this name, of an alias its set. Throws RequestError where there is none.
  [[nodiscard]] const tool::FileSymbol& symbol(const std::string& name) const;

 private:
  static std::size_t nextId();

  std::string path_;
  std::string name_;
  std::size_t id_ = nextId();
  // Of a model none.
  std::unique_ptr<tool::ExchangeFile> exchange_;
  FileKind kind_ = FileKind::model;
  std::uint64_t bytes_ = 0;
};

}  // namespace view

#endif  // ZTB_VIEW_OPENED_FILE_H_

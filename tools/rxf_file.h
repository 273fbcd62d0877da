// An RXF file seen through the exchange-file library itself, for what the database does not tell:
// record counts without reading records, and damage met while they are read.
#ifndef ZTB_TOOLS_RXF_FILE_H_
#define ZTB_TOOLS_RXF_FILE_H_

#include <memory>
#include <string>
#include <vector>

namespace tool {

// What the file's table of symbols says of one of them.
struct RxfSymbol {
  std::string name;
  int number = 0;
  int dimension = 0;
  int type = 0;
  int recordCount = 0;
};

// A file open for reading, closed when this object ends. The library is taken from the folder of
// libztbcclib64.so, otherwise from the loader's path.
class RxfFile {
 public:
  // Throws Failure, with the path and the library's text, if the file cannot be opened.
  explicit RxfFile(const std::string& path);
  RxfFile(const RxfFile&) = delete;
  RxfFile& operator=(const RxfFile&) = delete;
  ~RxfFile();

  [[nodiscard]] int labelCount() const;
  // All symbols in the order of the file, aliases included.
  [[nodiscard]] std::vector<RxfSymbol> symbols() const;
  // Records of the symbol of this name, as the file's table of symbols says; 0 if there is none.
  [[nodiscard]] int recordCount(const std::string& name) const;

  // Reads every record of a symbol and gives a text for each thing that is wrong with them; an
  // empty list says that they are intact.
  [[nodiscard]] std::vector<std::string> readRecords(const RxfSymbol& symbol) const;
  // The same for the symbol of this name; an empty list, too, if there is none.
  [[nodiscard]] std::vector<std::string> readRecords(const std::string& name) const;

 private:
  struct Library;
  class Object;

  static const Library& library();
  [[nodiscard]] RxfSymbol symbol(int number) const;
  [[nodiscard]] int findSymbol(const std::string& name) const;
  [[nodiscard]] std::vector<std::string> takeErrors() const;

  std::unique_ptr<Object> object_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_RXF_FILE_H_

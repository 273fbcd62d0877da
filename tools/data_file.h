// An RXF file opened for looking at: the database that mirrors it, and the certainty that records
// handed out are the records of the file.
#ifndef ZTB_TOOLS_DATA_FILE_H_
#define ZTB_TOOLS_DATA_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/ztb.hpp>

#include "tools/rxf_file.h"

namespace tool {

// One file, open as a database and through the exchange-file library. The database leaves out
// damaged records without a word, so a command asks requireIntact before it shows any.
class DataFile {
 public:
  // The records are held in the store given. Throws Failure that names the file if it cannot be
  // opened.
  explicit DataFile(const std::string& path, ztb::Store store = ztb::Store::map);

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] ztb::Database& database() { return database_; }
  [[nodiscard]] const RxfFile& file() const { return file_; }

  // Label of a number from 1 on.
  [[nodiscard]] std::string_view label(int number) const {
    return labels_[static_cast<std::size_t>(number)];
  }
  [[nodiscard]] int labelCount() const { return static_cast<int>(labels_.size()) - 1; }

  // All symbols in order, aliases included.
  [[nodiscard]] std::vector<ztb::Symbol> symbols() const;
  // The symbol of this name; an alias stays one, "*" is the universe. Throws Failure if there is
  // none.
  [[nodiscard]] ztb::Symbol symbol(const std::string& name) const;
  // The symbol that an alias stands for; any other symbol itself.
  [[nodiscard]] ztb::Symbol resolved(const ztb::Symbol& symbol) const;

  // Records of a symbol as the file tells, without reading them; labels for the universe.
  [[nodiscard]] int recordCount(const ztb::Symbol& symbol) const;

  // Reads all records of the symbol, which is no alias, and throws Failure that names file, symbol
  // and damage unless all are intact.
  void requireIntact(const ztb::Symbol& symbol) const;

 private:
  std::string path_;
  RxfFile file_;
  ztb::Database database_;
  std::vector<std::string> labels_;
};

// "price(food)", "nutrition(food, nutrient)", "pi" for a scalar, "*" for the universe.
std::string signature(const ztb::Symbol& symbol);

// Names of the domains of a symbol, one for each position; "*" stands for the universe, and for any
// position of an alias or of the universe.
std::vector<std::string> domainNames(const ztb::Symbol& symbol);

}  // namespace tool

#endif  // ZTB_TOOLS_DATA_FILE_H_

// An RXF file opened for looking at, without a database: one open, and each block of records read
// and verified when it is walked over.
#ifndef ZTB_TOOLS_FILES_EXCHANGE_FILE_H_
#define ZTB_TOOLS_FILES_EXCHANGE_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/rxf.hpp>

namespace tool {

// The domain of a position: the number of a set or alias of one position, 0 for the universe, or -1
// where only a name is known.
struct FileDomain {
  std::string name;
  int set = -1;
};

// A symbol as the file tells, its domains looked up among the file's symbols.
struct FileSymbol {
  int number = 0;
  std::string name;
  std::string text;
  ztb::Type type = ztb::Type::set;
  int dimension = 0;
  int valueCount = 1;
  int userInfo = 0;
  std::size_t recordCount = 0;  // of an alias that of its set
  int aliasTarget = -1;         // of an alias the number of its set, 0 for the universe
  std::vector<FileDomain> domains;

  [[nodiscard]] bool isAlias() const { return type == ztb::Type::alias; }
  [[nodiscard]] bool isUniverse() const { return number == 0; }
};

class ExchangeFile {
 public:
  // "-" is standard input. Throws Failure that names the file if it cannot be opened.
  explicit ExchangeFile(const std::string& path);

  // The name of the file in messages.
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const ztb::RxfFile& file() const { return file_; }

  // Label of a number from 1 on.
  [[nodiscard]] std::string_view label(int number) const {
    return labels_[static_cast<std::size_t>(number)];
  }
  [[nodiscard]] int labelCount() const { return static_cast<int>(labels_.size()) - 1; }

  // All symbols in order, aliases included.
  [[nodiscard]] const std::vector<FileSymbol>& symbols() const { return symbols_; }
  // The symbol of a number; 0 is the universe.
  [[nodiscard]] const FileSymbol& symbolAt(int number) const {
    return number == 0 ? universe_ : symbols_[static_cast<std::size_t>(number) - 1];
  }
  // The symbol of this name, null if there is none; an alias stays one, "*" is the universe.
  [[nodiscard]] const FileSymbol* findSymbol(const std::string& name) const;
  // The same; throws Failure if there is none.
  [[nodiscard]] const FileSymbol& symbol(const std::string& name) const;
  // The symbol that an alias stands for; any other symbol itself.
  [[nodiscard]] const FileSymbol& resolved(const FileSymbol& symbol) const {
    return symbol.isAlias() ? symbolAt(symbol.aliasTarget) : symbol;
  }

 private:
  [[nodiscard]] FileSymbol described(int number) const;

  std::string path_;
  ztb::RxfFile file_;
  std::vector<std::string_view> labels_;
  std::vector<FileSymbol> symbols_;
  FileSymbol universe_;
};

// "price(food)", "nutrition(food, nutrient)", "pi" for a scalar, "*" for the universe; fit for a
// terminal, whatever the domains are called.
std::string signature(const FileSymbol& symbol);

// Names of the domains of a symbol, one for each position; "*" stands for the universe, and for any
// position of an alias or of the universe.
std::vector<std::string> domainNames(const FileSymbol& symbol);

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_EXCHANGE_FILE_H_

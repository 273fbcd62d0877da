// An exchange file that is made of others: labels, symbols with their records, texts.
#ifndef ZTB_FORMATS_SETS_SET_OUTPUT_H_
#define ZTB_FORMATS_SETS_SET_OUTPUT_H_

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/rxf.hpp>

#include "tools/files/exchange_file.h"
#include "tools/text/progress.h"

namespace formats {

// What a new symbol is, beside its records.
struct NewSymbol {
  std::string name;
  std::string text;
  ztb::Type type = ztb::Type::set;
  int userInfo = 0;
  // Records are held against the domains; otherwise these are names.
  bool checked = false;
  std::vector<std::string> domains;
  // Of an alias, the name of its set.
  std::string aliasOf;

  [[nodiscard]] bool isAlias() const { return type == ztb::Type::alias; }
  [[nodiscard]] std::size_t dimension() const { return domains.size(); }
};

// The symbol as its file has it.
NewSymbol describeNew(const tool::ExchangeFile& file, const tool::FileSymbol& symbol);

// Nothing stands under the name before publish(). Throws Failure where a file cannot be written.
class SetOutput {
 public:
  SetOutput(const std::string& path, std::string shownName, tool::Progress& progress);

  // In the order of a file: labels, symbols each with its records, texts.
  void addLabel(std::string_view label);
  void addLabels(const tool::ExchangeFile& file);
  void addSymbol(const NewSymbol& symbol);
  // Records by columns.
  void addColumns(std::size_t count, const std::vector<const int*>& keys,
                  const std::vector<const double*>& values);
  // One record of the symbol that was added last.
  void addRecord(std::span<const int> keys, std::span<const double> values);
  // All records of a symbol whose labels and texts have the same numbers here.
  void copyRecords(const tool::ExchangeFile& file, const tool::FileSymbol& symbol);
  void addText(std::string_view text);
  void addTexts(const tool::ExchangeFile& file);
  // Closes the files that it was made of first, since the new one may take the place of one of
  // them.
  void publish(std::vector<std::unique_ptr<tool::ExchangeFile>>& sources);

  [[nodiscard]] std::size_t recordCount() const { return recordCount_; }
  [[nodiscard]] std::size_t symbolCount() const { return symbolCount_; }

 private:
  void flush();

  std::string shownName_;
  tool::Progress& progress_;
  ztb::RxfOutput output_;
  std::size_t recordCount_ = 0;
  std::size_t symbolCount_ = 0;
  // Records that were added one by one, by columns.
  std::size_t held_ = 0;
  std::vector<std::vector<int>> keys_;
  std::vector<std::vector<double>> values_;
};

// The blocks of a symbol of a file.
class BlockWalk {
 public:
  BlockWalk(const tool::ExchangeFile& file, const tool::FileSymbol& symbol);
  // Goes to the next block; false behind the last. Throws Failure that names file, symbol and block
  // when that is damaged.
  bool next();
  [[nodiscard]] const ztb::RxfRecords& block() const { return records_; }

 private:
  const tool::ExchangeFile& file_;
  ztb::RxfRecords records_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_SET_OUTPUT_H_

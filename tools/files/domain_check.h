// Finds the records of a file that hold labels outside the sets that their symbols name as domains.
#ifndef ZTB_TOOLS_FILES_DOMAIN_CHECK_H_
#define ZTB_TOOLS_FILES_DOMAIN_CHECK_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tools/files/exchange_file.h"
#include "tools/files/record_walk.h"
#include "tools/text/progress.h"
#include "tools/text/table_printer.h"

namespace tool {

// Records outside their domains are counted when the check is made and found again when they are
// printed, so that they take no memory; what is kept is a bit for each label and domain set.
class DomainCheck {
 public:
  // Checks every symbol. The file has to be intact and lives longer; damage throws Failure.
  DomainCheck(const ExchangeFile& file, Progress& progress);

  // Symbols with a record outside its domains, and such records.
  [[nodiscard]] std::size_t symbolCount() const { return symbols_.size(); }
  [[nodiscard]] std::size_t recordCount() const;

  // The report for people: a table for each symbol, and a line for each position not checked.
  void print(const TableStyle& style) const;
  // The same as JSON, positions counted from 1.
  void printJson() const;

 private:
  // Labels of a set, by their numbers; null where all are in it, or it is known by name only.
  using Members = std::vector<bool>;

  // What was counted of a symbol that has a record outside.
  struct Found {
    const FileSymbol* symbol;
    std::size_t records;
  };
  struct Unchecked {
    const FileSymbol* symbol;
    std::size_t position;
  };

  const Members* membersOf(int set);
  void checkSymbol(const FileSymbol& symbol, Progress& progress);
  [[nodiscard]] std::vector<const Members*> domainsOf(const FileSymbol& symbol) const;
  template <typename Use>
  void eachOutside(const FileSymbol& symbol, const Use& use) const;
  void printTable(const Found& found, const TableStyle& style) const;

  const ExchangeFile& file_;
  std::map<int, Members> members_;
  std::vector<Found> symbols_;
  std::vector<Unchecked> unchecked_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_DOMAIN_CHECK_H_

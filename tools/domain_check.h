// Finds the records of a file that hold labels outside the sets that their symbols name as domains.
#ifndef ZTB_TOOLS_DOMAIN_CHECK_H_
#define ZTB_TOOLS_DOMAIN_CHECK_H_

#include <cstddef>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tools/data_file.h"
#include "tools/progress.h"

namespace tool {

// A record with a label outside its domain: its label numbers, and for each position whether the
// label there is outside.
struct Violation {
  std::vector<int> keys;
  std::vector<bool> outside;
};

// The violations of one symbol, in the order of its records.
struct SymbolViolations {
  ztb::Symbol symbol;
  std::vector<Violation> records;
};

// A position, from 0, whose domain is known by its name only, so that no label of it can be
// checked.
struct UncheckedPosition {
  ztb::Symbol symbol;
  std::size_t position;
  std::string domain;
};

struct DomainReport {
  // Symbols with a violation, in the order of the file.
  std::vector<SymbolViolations> symbols;
  std::vector<UncheckedPosition> unchecked;

  [[nodiscard]] std::size_t recordCount() const;
};

// Reads and checks every symbol by itself: a check of the whole database would pass over some
// symbols of a file. The file has to be intact; the records of its symbols other than sets are
// dropped on the way.
DomainReport checkDomains(const DataFile& file, Progress& progress);

// The report for people: a table for each symbol, and a line for each position not checked.
void printDomainReport(const DataFile& file, const DomainReport& report);

// The same as JSON, positions counted from 1.
void printDomainReportJson(const DataFile& file, const DomainReport& report);

}  // namespace tool

#endif  // ZTB_TOOLS_DOMAIN_CHECK_H_

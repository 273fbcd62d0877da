// A whole database as a file of another program has it.
#ifndef ZTB_FORMATS_DATABASE_READER_H_
#define ZTB_FORMATS_DATABASE_READER_H_

#include <memory>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/tables/manifest.h"
#include "formats/tables/problem_list.h"
#include "formats/tables/table_reader.h"

namespace formats {

class DatabaseReader {
 public:
  DatabaseReader() = default;
  DatabaseReader(const DatabaseReader&) = delete;
  DatabaseReader& operator=(const DatabaseReader&) = delete;
  virtual ~DatabaseReader() = default;

  // The symbols in their order. What is wrong with an entry goes to problems, and it is left out.
  virtual std::vector<ManifestEntry> symbols(ProblemList& problems) = 0;
  // Where an entry was read, for messages.
  [[nodiscard]] virtual std::string place(const ManifestEntry& entry) const = 0;
  // All labels in the order of their numbers, as a table of one column; null where there is none.
  virtual std::unique_ptr<TableReader> labels() = 0;
  // The records of a symbol that is no alias: the keys, then what ztb::contentColumns tells.
  virtual std::unique_ptr<TableReader> records(const ManifestEntry& entry) = 0;
};

}  // namespace formats

#endif  // ZTB_FORMATS_DATABASE_READER_H_

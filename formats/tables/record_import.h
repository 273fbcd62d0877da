// Turns rows of CSV files into records of a database, and reports all that is wrong with them.
#ifndef ZTB_FORMATS_TABLES_RECORD_IMPORT_H_
#define ZTB_FORMATS_TABLES_RECORD_IMPORT_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/tables/problem_list.h"
#include "formats/tables/record_table.h"
#include "formats/tables/table_reader.h"
#include "tools/text/progress.h"

namespace formats {

// What is wrong with a label, or nothing. The library would take one of blanks alone for no label,
// and would end it at a zero char.
std::string labelProblem(std::string_view label);

// Where the records of one symbol stand in the rows of a file, as places of columns from 0.
struct ImportTarget {
  ztb::Symbol symbol;
  std::vector<std::size_t> keyColumns;
  std::vector<std::size_t> valueColumns;
  // The value of a record that each of valueColumns gives; the others are those of defaults.
  std::vector<std::size_t> valueFields;
  std::array<double, ztb::fieldCount> defaults{};
  std::optional<std::size_t> textColumn;
  // A record that stands in many rows is taken once, as its first row has it.
  bool distinct = false;
  // A row whose values are all empty has no record.
  bool skipEmpty = false;
};

class BulkRows;
struct BulkColumns;

// Reads files into one database. Problems and warnings go to the lists of the caller; the database
// holds part of the records when there were problems, and is not to be written then.
class RecordImport {
 public:
  RecordImport(ztb::Database& database, ProblemList& problems, ProblemList& warnings,
               tool::Progress& progress)
      : database_(database), problems_(problems), warnings_(warnings), progress_(progress) {}

  // From now on each label is looked up in the domain set of its position, which must have been
  // read before the symbol that names it.
  void checkDomains() { checkDomains_ = true; }

  // A set of one position whose elements are there already, in which labels are looked up.
  void know(const ztb::Symbol& set);

  // Reads the rows behind the header, which has columnCount fields, into all targets at once.
  void readRows(TableReader& reader, const std::vector<std::string>& columns,
                const std::vector<ImportTarget>& targets);

  // Reads the labels of a one-column file, so that they get their numbers in its order; gives how
  // many rows it had.
  std::size_t readLabels(TableReader& reader);

  // From now on numbers have this char where others have a point.
  void setDecimalChar(char decimal) { decimal_ = decimal; }

  // How much of a big CSV file each processor reads at once; a file of less than twice as much is
  // read row by row.
  void setChunkBytes(std::size_t bytes) { chunkBytes_ = bytes; }

  [[nodiscard]] std::size_t recordCount() const { return recordCount_; }

 private:
  struct Member {
    // Whether each label number is in the set.
    std::vector<bool> labels;
  };

  // A label that was read before, and is spelled like it.
  struct KnownLabel {
    std::string text;
    int number = 0;
  };

  // Reads a big table by columns, a CSV file with all processors; false, with no record stored,
  // where its rows have to be looked at one by one.
  bool readBulk(TableReader& reader, const std::vector<ImportTarget>& targets);
  // Whether the records of a target have nothing wrong with them; `order` becomes their order,
  // empty for that of the file.
  bool orderBulk(const BulkRows& bulk, const BulkColumns& columns,
                 std::vector<std::uint32_t>& order) const;
  bool insideDomains(const BulkRows& bulk, const BulkColumns& columns);
  void storeBulk(const BulkRows& bulk, const BulkColumns& columns,
                 const std::vector<std::uint32_t>& order);

  // What a field shows, followed by a zero char; valid until the next call.
  std::string_view textOf(const TableField& field);
  std::optional<int> labelNumber(const TableReader& reader, std::size_t column);
  bool readRecord(const TableReader& reader, const ImportTarget& target, RecordTable& table);
  bool readValues(const TableReader& reader, const ImportTarget& target);
  bool acceptText(const TableReader& reader, const TableField& field);
  void store(const TableReader& reader, const ImportTarget& target, const RecordTable& table);
  void reportDuplicate(const TableReader& reader, const ImportTarget& target,
                       const RecordTable& table, std::size_t first, std::size_t second);
  [[nodiscard]] const Member* memberOf(const ztb::Domain& domain) const;
  void checkRecords(const TableReader& reader, const ImportTarget& target,
                    const RecordTable& table);
  void remember(const ImportTarget& target, const RecordTable& table);
  [[nodiscard]] std::string recordText(const RecordTable& table, std::size_t record) const;
  void problem(const TableReader& reader, std::size_t column, const std::string& text);

  ztb::Database& database_;
  ProblemList& problems_;
  ProblemList& warnings_;
  tool::Progress& progress_;
  bool checkDomains_ = false;
  char decimal_ = '.';
  std::size_t chunkBytes_ = std::size_t{4} << 20U;
  std::size_t recordCount_ = 0;
  const std::vector<std::string>* columns_ = nullptr;
  // Label number of each column of the row at hand, as far as it was asked for.
  std::vector<std::optional<int>> rowLabels_;
  std::vector<bool> rowLabelsKnown_;
  // The latest labels, each at a place that its text tells.
  std::vector<KnownLabel> knownLabels_ = std::vector<KnownLabel>(4096);
  std::string digits_;
  std::vector<int> keys_;
  std::vector<std::size_t> keyPlaces_;
  std::vector<double> values_;
  // First spelling of each text, by its folded form.
  std::unordered_map<std::string, std::string> texts_;
  std::map<void*, Member> members_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_RECORD_IMPORT_H_

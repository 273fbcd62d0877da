// Compares two files: symbols by name, records by labels, whatever their numbers.
#ifndef ZTB_TOOLS_FILES_DATABASE_DIFF_H_
#define ZTB_TOOLS_FILES_DATABASE_DIFF_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/files/exchange_file.h"
#include "tools/text/progress.h"

namespace tool {

enum class Change { gone, added, changed };

struct DiffOptions {
  // Largest difference of two ordinary numbers that still counts as none. Without it numbers are
  // the same only with the same bits. Special values are the same only if they are of one kind.
  std::optional<double> tolerance;
  // Records to keep for each symbol; the others are only counted.
  std::size_t keptRecords = 0;
};

// What a record holds: a text, or values.
struct RecordContent {
  std::string text;
  std::vector<double> values;
};

struct RecordDifference {
  Change change = Change::changed;
  std::vector<std::string> keys;
  // Empty for an added or a gone record.
  RecordContent before;
  RecordContent after;
};

struct AttributeDifference {
  std::string name;
  std::string before;
  std::string after;
};

struct SymbolDifference {
  Change change = Change::changed;
  std::string name;
  ztb::Type type = ztb::Type::set;
  std::string signature;
  std::vector<AttributeDifference> attributes;
  std::size_t goneRecords = 0;
  std::size_t addedRecords = 0;
  std::size_t changedRecords = 0;
  std::vector<RecordDifference> records;
};

struct DatabaseDifference {
  std::vector<SymbolDifference> symbols;
  // What was compared and found the same or not.
  std::size_t comparedSymbols = 0;
  std::size_t comparedRecords = 0;
};

// Symbols of before in their order, then those that after has in addition; only those that differ.
// Records are not compared when type or dimension differ. Throws Failure for damaged records.
//
// Records of both files are walked over side by side, in the memory of a block each, where the
// labels that both have stand in the same order in both and those that only after has stand behind
// them; otherwise the records of after, one symbol at a time, are held in memory and sorted.
DatabaseDifference compare(const ExchangeFile& before, const ExchangeFile& after,
                           const DiffOptions& options, Progress& progress);

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_DATABASE_DIFF_H_

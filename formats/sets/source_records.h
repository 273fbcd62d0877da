// The records of a symbol of files that are put together, with the label and text numbers of the
// file that is made.
#ifndef ZTB_FORMATS_SETS_SOURCE_RECORDS_H_
#define ZTB_FORMATS_SETS_SOURCE_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "formats/sets/key_packing.h"
#include "formats/sets/set_output.h"
#include "formats/tables/row_sorter.h"

namespace formats {

// A file that others are put together with.
struct MergedFile {
  const tool::ExchangeFile* file = nullptr;
  // Its place among the files, from 0.
  std::size_t place = 0;
  // Numbers in the file that is made, by those of this one; 0 stays 0.
  std::vector<int> labels;
  std::vector<int> texts;
  // Whether labels are in one order in both.
  bool inOrder = true;
  // The label of the file's own case, 0 without cases.
  int caseLabel = 0;
};

// Records in the order of their new keys.
class RecordStream {
 public:
  RecordStream() = default;
  RecordStream(const RecordStream&) = delete;
  RecordStream& operator=(const RecordStream&) = delete;
  virtual ~RecordStream() = default;

  // Goes to the next record; false behind the last. Throws Failure when one cannot be read.
  virtual bool next() = 0;
  // The record: its keys, packed, its values, and the place of its file. Valid until next().
  [[nodiscard]] const std::uint64_t* key() const { return key_; }
  [[nodiscard]] std::span<const double> values() const { return values_; }
  [[nodiscard]] std::size_t place() const { return place_; }

 protected:
  const std::uint64_t* key_ = nullptr;
  std::vector<double> values_;
  std::size_t place_ = 0;
};

// The records of one file, in the order in which that has them.
class FileRecords : public RecordStream {
 public:
  // With `hasCase` the file's case stands in front of the keys. All that is given outlives this.
  FileRecords(const MergedFile& source, const tool::FileSymbol& symbol, bool hasCase,
              const KeyPacking& packing);
  bool next() override;

 private:
  void enterBlock();

  const MergedFile& source_;
  bool isSet_;
  bool hasCase_;
  const KeyPacking& packing_;
  BlockWalk walk_;
  // The keys of the present block, record by record.
  std::vector<std::uint64_t> keys_;
  std::vector<std::span<const double>> columns_;
  std::size_t at_ = 0;
};

// The records of any number of files, sorted by their new keys; those of one key in the order of
// the files.
class SortedRecords : public RecordStream {
 public:
  // `folder` is one for temporary files.
  SortedRecords(const KeyPacking& packing, std::size_t valueCount, const std::string& folder);
  void add(FileRecords& records);
  bool next() override;

 private:
  std::size_t keyWords_;
  RowSorter sorter_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_SOURCE_RECORDS_H_

// Which records of a symbol a request asks for: by a condition, as `ztb where` takes it, and by
// patterns or lists of labels for positions.
#ifndef ZTB_VIEW_RECORD_FILTER_H_
#define ZTB_VIEW_RECORD_FILTER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "formats/sets/condition.h"
#include "view/opened_file.h"
#include "view/parameters.h"

namespace view {

class RecordFilter {
 public:
  // Reads "where", "p0", "p1", ... and "in0", ... Throws RequestError and UsageError.
  RecordFilter(const OpenedFile& file, const tool::FileSymbol& symbol,
               const Parameters& parameters);

  // Whether it lets every record through.
  [[nodiscard]] bool takesAll() const { return !condition_ && allowed_.empty(); }
  // Which records of a block it lets through, as 1; gives how many.
  std::size_t evaluate(const ztb::RxfRecords& block, std::vector<std::uint8_t>& chosen) const;

  // The same for two filters that ask for the same in the same words.
  [[nodiscard]] const std::string& words() const { return words_; }

 private:
  struct AllowedLabels {
    std::size_t position;
    // Of each label number, 1 where it is asked for.
    std::vector<std::uint8_t> labels;
  };

  void readPosition(const OpenedFile& file, const Parameters& parameters, std::size_t position);

  std::unique_ptr<formats::SymbolCondition> condition_;
  std::vector<AllowedLabels> allowed_;
  std::string words_;
};

}  // namespace view

#endif  // ZTB_VIEW_RECORD_FILTER_H_

// A walk over the records of a symbol that a request asks for, block by block, with its progress
// told.
#ifndef ZTB_VIEW_RECORD_SCAN_H_
#define ZTB_VIEW_RECORD_SCAN_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "view/api.h"
#include "view/record_filter.h"

namespace view {

class RecordScan {
 public:
  // The file, the symbol and the filter that the parameters name. The symbol's records count for
  // the progress `times` times.
  explicit RecordScan(Question& question, std::size_t times = 1);
  // The same of "f2" and "s2", without which they are those of "f" and "s".
  struct SecondSide {};
  static constexpr SecondSide secondSide{};
  RecordScan(Question& question, SecondSide side);

  [[nodiscard]] const OpenedFile& file() const { return *file_; }
  [[nodiscard]] const tool::FileSymbol& symbol() const { return symbol_; }
  [[nodiscard]] std::size_t dimension() const {
    return static_cast<std::size_t>(symbol_.dimension);
  }
  [[nodiscard]] const RecordFilter& filter() const { return filter_; }
  // Whether it is a variable or equation, whose fields are level, marginal, lower, upper and scale.
  [[nodiscard]] bool hasBounds() const {
    return symbol_.type == ztb::Type::variable || symbol_.type == ztb::Type::equation;
  }

  // Goes to the next block; false behind the last. Throws Failure that names the file, and what
  // Job::count throws.
  bool next();
  // The present block, how many of its records are asked for, and which, as 1.
  [[nodiscard]] const ztb::RxfRecords& block() const { return records_; }
  [[nodiscard]] std::size_t chosenCount() const { return chosenCount_; }
  [[nodiscard]] const std::vector<std::uint8_t>& chosen() const { return chosen_; }
  // For work with the records that were read: announces some, and tells that some was done. Throws
  // what Job::count throws.
  void expectWork(std::size_t amount) { job_.expect(amount); }
  void work(std::size_t amount) { job_.work(amount); }
  // Goes behind so many blocks.
  void skip(std::size_t blocks);
  void rewind() { records_.rewind(); }

  // The label of a number.
  [[nodiscard]] std::string_view label(int number) const { return file_->exchange().label(number); }

  // The value that a parameter "field" names, the first without one. Throws RequestError, also for
  // a set.
  [[nodiscard]] int slot(const Parameters& parameters) const;
  // A position that a parameter names. Throws RequestError.
  [[nodiscard]] std::size_t position(const Parameters& parameters, const char* name) const;

 private:
  RecordScan(Question& question, std::size_t times, std::shared_ptr<const OpenedFile> file,
             const std::string& symbol);

  std::shared_ptr<const OpenedFile> file_;
  const tool::FileSymbol& symbol_;
  RecordFilter filter_;
  Job& job_;
  ztb::RxfRecords records_;
  std::vector<std::uint8_t> chosen_;
  std::size_t chosenCount_ = 0;
};

}  // namespace view

#endif  // ZTB_VIEW_RECORD_SCAN_H_

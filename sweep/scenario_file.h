// The scenario file of a sweep: the labels to sweep over, and the parameters that drive the model.
#ifndef ZTB_SWEEP_SCENARIO_FILE_H_
#define ZTB_SWEEP_SCENARIO_FILE_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/files/exchange_file.h"

namespace sweep {

// What the file says of the set swept over. Where there is no set of the name, the labels in the
// first positions that have it as their domain's name stand in for one. Scenarios stand in the
// order of the file's labels, so that neighbours have neighbouring records. The file is opened
// once and stays the one that it was.
class ScenarioFile {
 public:
  // Throws Failure if nothing can be swept over.
  ScenarioFile(const std::string& path, const std::string& over);

  [[nodiscard]] const tool::ExchangeFile& file() const { return file_; }
  // The set's name as the file writes it, and its text.
  [[nodiscard]] const std::string& over() const { return over_; }
  [[nodiscard]] const std::string& text() const { return text_; }

  // Scenarios by number from 0: the number of its label in the file, the label, and the text of
  // the element.
  [[nodiscard]] int count() const { return static_cast<int>(numbers_.size()); }
  [[nodiscard]] int number(int scenario) const { return numbers_[at(scenario)]; }
  [[nodiscard]] std::string_view label(int scenario) const {
    return file_.label(numbers_[at(scenario)]);
  }
  [[nodiscard]] std::string_view elementText(int scenario) const {
    return texts_.empty() ? std::string_view() : file_.file().text(texts_[at(scenario)]);
  }
  // The scenario with a label, in letters of any case.
  [[nodiscard]] std::optional<int> find(const std::string& label) const;

  // Throws Failure with the first record of a scenario, in the parameters over the set, that holds
  // `na` or `undef`, with which no model can be solved. Reads all blocks of these parameters but
  // damaged ones, which are told to whoever needs them.
  void requireNumbers() const;

  // The parameters whose first domain is the set, and all other parameters.
  [[nodiscard]] const std::vector<const tool::FileSymbol*>& driving() const { return driving_; }
  [[nodiscard]] const std::vector<const tool::FileSymbol*>& others() const { return others_; }

 private:
  static std::size_t at(int scenario) { return static_cast<std::size_t>(scenario); }
  void takeSet(const tool::FileSymbol& named, const std::string& over);
  void takeLabels(const std::string& over);

  tool::ExchangeFile file_;
  std::string over_;
  std::string text_;
  std::vector<int> numbers_;  // ascending
  std::vector<int> texts_;    // empty where no element has one
  std::vector<const tool::FileSymbol*> driving_;
  std::vector<const tool::FileSymbol*> others_;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_SCENARIO_FILE_H_

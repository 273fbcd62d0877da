// What is there of a sweep: which part, or result of before, has the results of each chunk.
#ifndef ZTB_SWEEP_PART_INDEX_H_
#define ZTB_SWEEP_PART_INDEX_H_

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sweep/part_results.h"
#include "sweep/scenario_file.h"
#include "tools/files/exchange_file.h"

namespace sweep {

class PartIndex {
 public:
  // Chunks of `size` scenarios, nothing of which is there.
  PartIndex(const ScenarioFile& scenarios, int size);

  [[nodiscard]] int chunkCount() const { return static_cast<int>(chunks_.size()); }
  [[nodiscard]] int begin(int chunk) const { return chunk * size_; }
  [[nodiscard]] int end(int chunk) const;

  // Takes a file with results of the scenarios from `first` to before `end`. Of each chunk the
  // results of the file with the most of its scenarios count, of those the one with the fewest
  // that failed, of those the last. Throws Failure when the file cannot be read, where it is from a
  // sweep with other inputs, and where it lacks one of the scenarios.
  void take(const std::string& file, int first, int end, std::string_view inputs);
  // Takes a file with results of all scenarios, which may be all that there is and is then not read
  // again: so its records are read as a whole, and damage throws Failure here.
  void takeResult(const std::string& file, std::string_view inputs);

  // The text of sweep_inputs in a file; throws Failure if the file is no sweep's.
  static std::string inputsOf(const tool::ExchangeFile& file);

  [[nodiscard]] const Outcome& outcome(int scenario) const {
    return outcomes_[static_cast<std::size_t>(scenario)];
  }
  // Why the solve of a scenario failed, where that is known.
  [[nodiscard]] std::string reason(int scenario) const;
  [[nodiscard]] const std::set<std::string>& unmatched() const { return unmatched_; }
  // Scenarios of a chunk without an outcome, and those whose solve failed.
  [[nodiscard]] int missing(int chunk) const { return at(chunk).missing; }
  [[nodiscard]] int failed(int chunk) const { return at(chunk).failed; }
  // The file with the results of a chunk; null where there is none.
  [[nodiscard]] const std::string* file(int chunk) const {
    return at(chunk).source < 0 ? nullptr : &files_[static_cast<std::size_t>(at(chunk).source)];
  }

 private:
  struct Chunk {
    int source = -1;
    int missing = 0;
    int failed = 0;
  };
  // What a file has, by scenario from its first one on.
  struct Content {
    std::vector<Outcome> outcomes;
    std::map<int, std::string> reasons;
  };

  [[nodiscard]] const Chunk& at(int chunk) const {
    return chunks_[static_cast<std::size_t>(chunk)];
  }
  Content read(const tool::ExchangeFile& file, int first, int end) const;

  const ScenarioFile& scenarios_;
  int size_;
  std::vector<Chunk> chunks_;
  std::vector<std::string> files_;
  std::vector<Outcome> outcomes_;
  std::map<int, std::string> reasons_;
  std::set<std::string> unmatched_;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_PART_INDEX_H_

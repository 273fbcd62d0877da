// The records of the scenarios of a chunk, and their way into the model.
//
// Of the scenario file only the blocks with the records of a chunk are read, and the few that it
// takes to find them; nothing is kept but the records of the present chunk, and those of the
// parameters that are not swept over.
#ifndef ZTB_SWEEP_CHUNK_DATA_H_
#define ZTB_SWEEP_CHUNK_DATA_H_

#include <cstddef>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "sweep/scenario_file.h"
#include "tools/files/record_walk.h"
#include "tools/models/model_session.h"

namespace sweep {

class ChunkData {
 public:
  // Throws Failure where a parameter over the set drives nothing in the model.
  ChunkData(const ScenarioFile& scenarios, tool::ModelSession& session);

  // Reads the scenarios from `first` to before `end`, and writes the parameters that are not swept
  // over into the model, whose session was renewed if it had been used.
  void begin(int first, int end);
  // Writes the records of one of them into the model. Throws ztb::Error.
  void apply(int scenario);

  // Parameters with records that met no column of the model since the last call of forgetUnmatched.
  [[nodiscard]] const std::set<std::string>& unmatched() const { return unmatched_; }
  void forgetUnmatched() { unmatched_.clear(); }

 private:
  // Records by the label numbers of the scenario file.
  struct Records {
    std::vector<int> keys;
    std::vector<double> values;
  };
  struct Parameter {
    const tool::FileSymbol* source = nullptr;
    std::unique_ptr<tool::RecordWalk> walk;
    Records records;                  // of the present chunk
    std::vector<std::size_t> begins;  // of each scenario's records, and the end of the last one's
  };

  void read(Parameter& parameter, int first, int end);
  void write(const tool::FileSymbol& source, int dimension, const Records& records,
             std::size_t begin, std::size_t end);
  int sessionNumber(int number);

  const ScenarioFile& scenarios_;
  tool::ModelSession& session_;
  std::vector<Parameter> parameters_;
  std::vector<Parameter> others_;
  int first_ = 0;
  // Numbers of the file's labels in the session's database; 0 where not asked for yet.
  std::vector<int> numbers_;
  std::vector<int> asked_;
  std::set<std::string> unmatched_;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_CHUNK_DATA_H_

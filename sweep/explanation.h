// Why scenarios of a sweep have no solution: the rows and bounds that cannot hold together, and the
// records in which a scenario differs from the nearest one that has a solution.
#ifndef ZTB_SWEEP_EXPLANATION_H_
#define ZTB_SWEEP_EXPLANATION_H_

#include <map>
#include <string>
#include <vector>

#include "sweep/chunk_solver.h"
#include "sweep/part_index.h"
#include "sweep/scenario_file.h"

namespace sweep {

class Explanation {
 public:
  // Reads the records of all scenarios. Throws Failure.
  explicit Explanation(const ScenarioFile& scenarios);

  // The text for a scenario, which is solved once more. The nearest scenario is the one with the
  // fewest records that are other or missing in one of the two.
  std::string of(int scenario, const PartIndex& index, ChunkSolver& solver) const;

 private:
  // Values by the records' names, such as "price(Milk)".
  using Records = std::map<std::string, double>;

  [[nodiscard]] std::string nearestText(int scenario, const PartIndex& index) const;

  const ScenarioFile& scenarios_;
  std::vector<Records> records_;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_EXPLANATION_H_

// What a solve has left: how it ended, and levels and marginals as a file that is shown like any
// other.
#ifndef ZTB_VIEW_MODEL_SOLUTION_H_
#define ZTB_VIEW_MODEL_SOLUTION_H_

#include <cstddef>
#include <optional>
#include <string>

#include "tools/files/scratch_folder.h"
#include "view/opened_file.h"

namespace view {

struct ModelSolution {
  // What was asked for: a solver, empty for the one that suits, and seconds, 0 for any time.
  std::string asked;
  std::size_t seconds = 0;

  std::string solver;
  std::string status;
  std::string solveStatus;
  double objective = 0;
  double bound = 0;
  double time = 0;
  double iterations = 0;

  tool::ScratchFolder folder;
  // Nothing where there is no solution.
  std::optional<OpenedFile> file;
};

// How far a level is from the nearer of its bounds; below 0 outside of them, infinite without any.
// Special values that are no numbers have none: NaN.
double slackOf(double level, double lower, double upper);

}  // namespace view

#endif  // ZTB_VIEW_MODEL_SOLUTION_H_

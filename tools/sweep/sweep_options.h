// What the command line of `ztb sweep` asks for.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_OPTIONS_H_
#define ZTB_TOOLS_SWEEP_SWEEP_OPTIONS_H_

#include <optional>
#include <string>
#include <vector>

namespace tool {

struct SweepOptions {
  std::string model;
  std::string modelData;  // empty: none
  std::string data;       // that fills a MathProg model; empty: none
  std::vector<std::string> drives;
  std::string scenarios;
  std::string over;
  std::string solver;  // empty: the standard one for the model
  std::string out;
  std::vector<std::string> reports;
  int jobs = 1;
  // Seconds after which a worker that solves nothing is ended.
  std::optional<int> stall;
  bool resume = false;
  bool explain = false;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_OPTIONS_H_

// What a sweep is made from: files, names, and what decides the results beside them.
#ifndef ZTB_SWEEP_OPTIONS_H_
#define ZTB_SWEEP_OPTIONS_H_

#include <optional>
#include <string>
#include <vector>

namespace sweep {

struct Options {
  std::string model;
  std::string modelData;  // empty: none
  std::string data;       // that fills a MathProg model; empty: none
  std::vector<std::string> drives;
  std::string scenarios;
  std::string over;
  std::string solver;  // empty: the standard one for the model
  std::vector<std::string> reports;
  std::optional<int> chunk;  // scenarios of a chunk; none: a sixty-fourth of the sweep
  std::string timeLimit;     // seconds that a solve may take; empty: no limit
};

}  // namespace sweep

#endif  // ZTB_SWEEP_OPTIONS_H_

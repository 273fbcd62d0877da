// The files beside the result file of a sweep in which results stand until the sweep ends:
// OUT.part1, OUT.part2, ..., each with the results of some scenarios.
#ifndef ZTB_TOOLS_SWEEP_PARTS_H_
#define ZTB_TOOLS_SWEEP_PARTS_H_

#include <string>
#include <vector>

namespace tool {

class SweepParts {
 public:
  explicit SweepParts(std::string out) : out_(std::move(out)) {}

  [[nodiscard]] std::string file(int number) const;
  // Numbers of the parts that are there, in ascending order.
  [[nodiscard]] std::vector<int> numbers() const;
  // Removes all parts, and what a writer that was killed left of one. Throws Failure if a part
  // stays.
  void remove() const;

 private:
  std::string out_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_PARTS_H_

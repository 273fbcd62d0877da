// The files beside the result file of a sweep in which results stand until the sweep ends:
// OUT.part1, OUT.part2, ... to OUT.part999999999, each with the results of some scenarios. A file
// with another number, or one written in another way (part01), is none of them and is left alone.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_PARTS_H_
#define ZTB_TOOLS_SWEEP_SWEEP_PARTS_H_

#include <string>
#include <vector>

namespace tool {

class SweepParts {
 public:
  static constexpr int kLargestNumber = 999'999'999;

  explicit SweepParts(std::string out) : out_(std::move(out)) {}

  [[nodiscard]] std::string file(int number) const;
  // Numbers of the parts that are there, in ascending order.
  [[nodiscard]] std::vector<int> numbers() const;
  // The file that looks like a part but has a number that no part has; empty if there is none.
  [[nodiscard]] std::string misnumbered() const;
  // Removes one part. Throws Failure if it stays.
  void remove(int number) const;
  // Removes all parts, and what a writer that was killed left of one. Throws Failure if a part
  // stays.
  void remove() const;

 private:
  std::string out_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_PARTS_H_
